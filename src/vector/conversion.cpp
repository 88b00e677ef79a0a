// Conversion between sample types.
//
// What is rounded to a real type is rounded as the caller wishes. Integers of real numbers are made in three steps: the
// number times 2^-scaleFactor; what the type cannot hold replaced by a neighbour of the type's range, NaNs by their
// sign; the conversion instruction, in the mode that the caller names.

#include "kels/conversion.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "frame/simd.h"

#include <algorithm>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

/// What converting Ts to Rs needs, where it is not exact.
template <class T, class R>
using ModesOf = ModesIf < std::numeric_limits<R>::digits<std::numeric_limits<T>::digits, RoundedByCaller>;

// Widening, narrowing and rounding by one instruction

template <class T, class R>
KelStatus convert_to(const T* src, R* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        [[maybe_unused]] const ModesOf<T, R> modes;
        map_blocks(
            dst, len, [](auto x) KELS_INLINE { return convert<R>(x); }, src);
    });
}

KelStatus saturate_to(const Kel32s* src, Kel16s* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        map_blocks(
            dst, len, [](auto x) KELS_INLINE { return saturate<Kel16s>(x); }, src);
    });
}

/// Nothing becomes an infinity or a NaN: infinities become the largest numbers, NaNs the positive one.
KelStatus limit_to(const Kel64f* src, Kel32f* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const RoundedByCaller modes;
        const auto limited = [](auto x) KELS_INLINE {
            const auto y = convert<Kel32f>(x);
            using V = std::remove_const_t<decltype(y)>;
            const V largest = splat<V>(std::numeric_limits<Kel32f>::max()), below = y < largest ? y : largest;
            return below > -largest ? below : -largest;
        };
        map_blocks(dst, len, limited, src);
    });
}

// Integers to real numbers: the factor is limited so that nothing overflows and nothing is a denormal.

template <class T, class R>
KelStatus convert_scaled(const T* src, R* dst, int len, int scaleFactor) {
    constexpr int most = std::numeric_limits<R>::max_exponent - 2, least = -(most + 1 - digits<T>);
    return vector_call({src, dst}, len, [=] {
        [[maybe_unused]] const ModesOf<T, R> modes;
        const R power = power_of_two<R>(-std::clamp(scaleFactor, least, most));
        map_blocks(
            dst, len, [=](auto x) KELS_INLINE { return convert<R>(x) * power; }, src);
    });
}

// Real numbers to integers

/// x 2^-factor. One power of two does not reach from the largest number to the smallest, two do; what is lost to
/// denormals on the way is far below a half in the end.
template <class T>
class Power {
public:
    explicit Power(int factor) {
        using Limits = std::numeric_limits<T>;
        constexpr int all_vanishes = Limits::max_exponent + 2;
        constexpr int all_saturates = Limits::digits - Limits::min_exponent + 33;
        const int exponent = -std::clamp(factor, -all_saturates, all_vanishes);
        first = power_of_two<T>(exponent / 2);
        second = power_of_two<T>(exponent - exponent / 2);
    }
    template <class V>
    [[gnu::always_inline]] V operator()(V x) const {
        return x * first * second;
    }

private:
    T first, second;
};

/// Singles, or doubles that are wider than R: what lies above R becomes its largest value. What lies below becomes the
/// lowest by the instruction, and so do NaNs.
template <class R, bool TowardZero, class V>
requires std::is_same_v<R, Kel32s>
[[gnu::always_inline]] inline auto to_range(V r) {
    constexpr R max = std::numeric_limits<R>::max();
    const V limit = splat<V>(static_cast<Element<V>>(max));
    if constexpr (sizeof(Element<V>) > sizeof(R)) {
        return to_integer<TowardZero>(r > limit ? limit : r);
    } else {
        const auto t = to_integer<TowardZero>(r);
        return r >= limit ? splat<Vec<R, lanes<V>>>(max) : t;
    }
}

/// The magnitude is limited, a NaN's too, and the sign put back.
template <class R, bool TowardZero, class V>
requires(std::is_signed_v<R> && sizeof(R) < sizeof(Kel32s)) [[gnu::always_inline]] inline auto to_range(V r) {
    using Bits = Vec<Kel32u, lanes<V>>;
    const Bits sign = bits_as<Bits>(r) & splat<Bits>(0x80000000);
    const V size = bits_as<V>(bits_as<Bits>(r) ^ sign), limit = splat<V>(Kel32f{1 << digits<R>});
    const V limited = size < limit ? size : limit;
    return saturate<R>(to_integer<TowardZero>(bits_as<V>(bits_as<Bits>(limited) | sign)));
}

/// All that has the sign bit becomes 0.
template <class R, bool TowardZero, class V>
requires std::is_unsigned_v<R>
[[gnu::always_inline]] inline auto to_range(V r) {
    using Bits = Vec<Kel32s, lanes<V>>;
    const Bits bits = bits_as<Bits>(r);
    const V positive = bits_as<V>(bits < 0 ? Bits{} : bits), limit = splat<V>(std::numeric_limits<R>::max());
    return convert<R>(to_integer<TowardZero>(positive < limit ? positive : limit));
}

template <bool TowardZero, class T, class R>
void round_to(const T* src, R* dst, int len, int scaleFactor) {
    if (scaleFactor == 0)
        map_blocks(
            dst, len, [](auto x) KELS_INLINE { return to_range<R, TowardZero>(x); }, src);
    else
        map_blocks(
            dst, len, [power = Power<T>(scaleFactor)](auto x) KELS_INLINE { return to_range<R, TowardZero>(power(x)); },
            src);
}

template <class T, class R>
KelStatus convert_rounded(const T* src, R* dst, int len, int rndMode, int scaleFactor) {
    return vector_call({src, dst}, len, [=] {
        // Below this factor denormals count.
        constexpr int denormals_count = std::numeric_limits<T>::min_exponent;
        const bool nearest = rndMode == kelRndNear;
        const DefaultModes modes((nearest && !nearest_in_any_mode) || scaleFactor <= denormals_count);
        if (nearest)
            round_to<false>(src, dst, len, scaleFactor);
        else
            round_to<true>(src, dst, len, scaleFactor);
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsConvert_8s16s (const Kel8s*  a, Kel16s* d, int n) { return convert_to(a, d, n); }
KelStatus kelsConvert_16s32s(const Kel16s* a, Kel32s* d, int n) { return convert_to(a, d, n); }
KelStatus kelsConvert_8s32f (const Kel8s*  a, Kel32f* d, int n) { return convert_to(a, d, n); }
KelStatus kelsConvert_8u32f (const Kel8u*  a, Kel32f* d, int n) { return convert_to(a, d, n); }
KelStatus kelsConvert_16s32f(const Kel16s* a, Kel32f* d, int n) { return convert_to(a, d, n); }
KelStatus kelsConvert_16u32f(const Kel16u* a, Kel32f* d, int n) { return convert_to(a, d, n); }
KelStatus kelsConvert_32f64f(const Kel32f* a, Kel64f* d, int n) { return convert_to(a, d, n); }
KelStatus kelsConvert_32s64f(const Kel32s* a, Kel64f* d, int n) { return convert_to(a, d, n); }
KelStatus kelsConvert_32s32f(const Kel32s* a, Kel32f* d, int n) { return convert_to(a, d, n); }
KelStatus kelsConvert_32s16s(const Kel32s* a, Kel16s* d, int n) { return saturate_to(a, d, n); }
KelStatus kelsConvert_64f32f(const Kel64f* a, Kel32f* d, int n) { return limit_to(a, d, n); }

KelStatus kelsConvert_16s32f_Sfs(const Kel16s* a, Kel32f* d, int n, int s) { return convert_scaled(a, d, n, s); }
KelStatus kelsConvert_16s64f_Sfs(const Kel16s* a, Kel64f* d, int n, int s) { return convert_scaled(a, d, n, s); }
KelStatus kelsConvert_32s32f_Sfs(const Kel32s* a, Kel32f* d, int n, int s) { return convert_scaled(a, d, n, s); }
KelStatus kelsConvert_32s64f_Sfs(const Kel32s* a, Kel64f* d, int n, int s) { return convert_scaled(a, d, n, s); }

KelStatus kelsConvert_32f8s_Sfs (const Kel32f* a, Kel8s*  d, int n, int rnd, int s) { return convert_rounded(a, d, n, rnd, s); }
KelStatus kelsConvert_32f8u_Sfs (const Kel32f* a, Kel8u*  d, int n, int rnd, int s) { return convert_rounded(a, d, n, rnd, s); }
KelStatus kelsConvert_32f16s_Sfs(const Kel32f* a, Kel16s* d, int n, int rnd, int s) { return convert_rounded(a, d, n, rnd, s); }
KelStatus kelsConvert_32f16u_Sfs(const Kel32f* a, Kel16u* d, int n, int rnd, int s) { return convert_rounded(a, d, n, rnd, s); }
KelStatus kelsConvert_32f32s_Sfs(const Kel32f* a, Kel32s* d, int n, int rnd, int s) { return convert_rounded(a, d, n, rnd, s); }
KelStatus kelsConvert_64f32s_Sfs(const Kel64f* a, Kel32s* d, int n, int rnd, int s) { return convert_rounded(a, d, n, rnd, s); }
}
// clang-format on
