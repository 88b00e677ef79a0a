// Companding: A-law and mu-law codes, linear samples, and each other.
//
// Both laws write a magnitude as a floating-point number of a three-bit exponent and a four-bit fraction. So the codes
// of linear samples are read from the exponent and the upper fraction of their magnitudes as singles. Codes of one law
// in the other differ by little, which changes at a few steps.

#include "kels/companding.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/modes.h"
#include "frame/numeric.h"

#include <cstdint>

namespace kels {
namespace {

constexpr int sign_bit = 0x80, code_bits = 0x7F, fraction_bits = 4, fraction_mask = 15;

/// How far x is above a code, up to another one.
template <int From, int To, class V>
[[gnu::always_inline]] inline V rise(V x) {
    const V above = x > From ? x : splat<V>(From), limited = above < To ? above : splat<V>(To);
    return static_cast<V>(limited - From);
}

/// Exponent and upper fraction of 16-bit lanes above 0, as an unscaled code.
template <class V>
[[gnu::always_inline]] inline V floating_code(V x) {
    constexpr int kept = 23 - fraction_bits;
    const auto real = convert<Kel32f>(convert<int>(x));
    using Bits = Vec<int, lanes<V>>;
    return convert<Kel16s>(bits_as<Bits>(real) >> splat<Bits>(kept));
}

/// What `floating_code` gives for the lowest integer of n bits.
constexpr Kel16s code_of_bits(int n) { return static_cast<Kel16s>((126 + n) << fraction_bits); }

// A law converts the low seven bits of a code, their inversion undone, and magnitudes. A set sign bit is positive.

struct ALaw {
    static constexpr int inversion = 0x55;

    /// A code is a product: of a byte with the fraction, 256 more in all segments but the first, and of a power of two;
    /// to which something is added.
    [[maybe_unused]] static constexpr int fraction_shift = 4, below_fraction = 8, added = 0;
    [[maybe_unused]] static constexpr bool has_leading = true;
    static constexpr int power(int exponent) { return exponent > 0 ? 1 << (exponent - 1) : 1; }

    template <class V>
    [[gnu::always_inline]] static V expand(V code) {
        const V fraction = static_cast<V>(static_cast<V>(code & fraction_mask) << splat<V>(fraction_bits));
        const V exponent = static_cast<V>(code >> splat<V>(fraction_bits));
        const V leading = code > fraction_mask ? splat<V>(264) : splat<V>(8);
        const V shift = code > fraction_mask ? static_cast<V>(exponent - 1) : exponent;
        return static_cast<V>(static_cast<V>(fraction + leading) << shift);
    }

    /// Of a negative sample, 8 less than its absolute value: from -7 on.
    template <class V>
    [[gnu::always_inline]] static V magnitude(V x) {
        const V sign = x >> splat<V>(15);
        return static_cast<V>((x ^ sign) - (sign & 7));
    }

    /// The lowest exponent has no leading bit: what is less than 256 there, is less in the form of the others. The
    /// fraction of a negative magnitude has all bits set.
    template <class V>
    [[gnu::always_inline]] static V compress(V x) {
        const V lowest = static_cast<V>((x >> splat<V>(fraction_bits)) & fraction_mask);
        const V other = static_cast<V>(floating_code(x) - code_of_bits(8));
        return lowest > other ? lowest : other;
    }

    /// The code in mu-law.
    template <class V>
    [[gnu::always_inline]] static V recode(V code) {
        const V next = static_cast<V>(code + 1), shift = next < 8 ? next : splat<V>(8);
        const V twice = static_cast<V>(rise<23, 31>(code) + rise<43, 47>(code));
        const V down = static_cast<V>((twice >> splat<V>(1)) + rise<62, 63>(code) + rise<78, 79>(code));
        return static_cast<V>(code + shift - down);
    }
};

struct MuLaw {
    static constexpr int inversion = 0x7F;
    static constexpr Kel16s bias = 132, highest = 32767 - bias;

    [[maybe_unused]] static constexpr int fraction_shift = 3, below_fraction = bias, added = -bias;
    [[maybe_unused]] static constexpr bool has_leading = false;
    static constexpr int power(int exponent) { return 1 << exponent; }

    template <class V>
    [[gnu::always_inline]] static V expand(V code) {
        const V fraction = static_cast<V>(static_cast<V>(code & fraction_mask) << splat<V>(3));
        const V exponent = static_cast<V>(code >> splat<V>(fraction_bits));
        return static_cast<V>(static_cast<V>(static_cast<V>(fraction + bias) << exponent) - bias);
    }

    /// Limited to what has a code.
    template <class V>
    [[gnu::always_inline]] static V magnitude(V x) {
        const V lowest = splat<V>(-highest), limited = x < lowest ? lowest : x;
        const V size = limited < 0 ? static_cast<V>(-limited) : limited;
        return size < highest ? size : splat<V>(highest);
    }

    template <class V>
    [[gnu::always_inline]] static V compress(V x) {
        return static_cast<V>(floating_code(static_cast<V>(x + bias)) - code_of_bits(8));
    }

    /// The code in A-law.
    template <class V>
    [[gnu::always_inline]] static V recode(V code) {
        const V half = static_cast<V>(static_cast<V>(code + 1) >> splat<V>(1)), shift = half < 8 ? half : splat<V>(8);
        const V up = static_cast<V>(rise<32, 36>(code) + rise<47, 49>(code) + rise<63, 64>(code) + rise<79, 80>(code));
        return static_cast<V>(code - shift + up);
    }
};

template <class From, class To>
KelStatus recode(const Kel8u* src, Kel8u* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const auto recoded = [](auto x) KELS_INLINE {
            using V = decltype(x);
            const V other = From::recode(static_cast<V>((x ^ From::inversion) & code_bits));
            return static_cast<V>(other ^ To::inversion ^ (x & sign_bit));
        };
        map_blocks(dst, len, recoded, src);
    });
}

/// By the upper four bits of a code: the byte above that of the fraction, the power, and what is added.
template <class Law>
struct Segments {
    alignas(16) Kel8u leading[16], power_low[16], power_high[16], added_low[16], added_high[16];

    constexpr Segments() : leading(), power_low(), power_high(), added_low(), added_high() {
        for (int i = 0; i < 16; ++i) {
            const int exponent = i % 8, sign = i < 8 ? -1 : 1;
            const int power = sign * Law::power(exponent), added = sign * Law::added;
            leading[i] = exponent > 0;
            power_low[i] = static_cast<Kel8u>(power & 0xFF);
            power_high[i] = static_cast<Kel8u>(power >> 8 & 0xFF);
            added_low[i] = static_cast<Kel8u>(added & 0xFF);
            added_high[i] = static_cast<Kel8u>(added >> 8 & 0xFF);
        }
    }
};

/// By products, where bytes are looked up.
template <class Law, class V>
[[gnu::always_inline]] inline auto decoded_by_segments(V codes) {
    static constexpr Segments<Law> segments;
    constexpr Kel8u fractions = fraction_mask << Law::fraction_shift;
    const V code = dealt(static_cast<V>(codes ^ Law::inversion)), segment = code >> splat<V>(fraction_bits);
    const V fraction = static_cast<V>(static_cast<V>(code << splat<V>(Law::fraction_shift)) & fractions);
    const V leading = Law::has_leading ? lookup_byte(segments.leading, segment) : V{};
    const auto size = widened(static_cast<V>(fraction | Law::below_fraction), leading);
    const auto looked_up = [=](const Kel8u* low, const Kel8u* high)
                               KELS_INLINE { return widened(lookup_byte(low, segment), lookup_byte(high, segment)); };
    const auto product = size * looked_up(segments.power_low, segments.power_high);
    if constexpr (Law::added == 0)
        return product;
    else
        return product + looked_up(segments.added_low, segments.added_high);
}

template <class Law, class V>
[[gnu::always_inline]] inline auto decoded_by_shifts(V codes) {
    const auto code = convert<Kel16s>(codes);
    using S = std::remove_const_t<decltype(code)>;
    const S size = Law::expand(static_cast<S>((code ^ Law::inversion) & code_bits));
    return code < sign_bit ? static_cast<S>(-size) : size;
}

template <class Law, class V>
[[gnu::always_inline]] inline auto decoded(V codes) {
    // Wider registers have shifts of 16-bit lanes, which take a product without a leading bit less time.
    if constexpr (looks_up_bytes<V> && (Law::has_leading || sizeof(V) <= 32))
        return decoded_by_segments<Law>(codes);
    else
        return decoded_by_shifts<Law>(codes);
}

template <class Law>
KelStatus decode(const Kel8u* src, Kel16s* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        map_blocks(
            dst, len, [](auto codes) KELS_INLINE { return decoded<Law>(codes); }, src);
    });
}

constexpr Kel32f full_scale = 32768;

template <class Law>
KelStatus decode(const Kel8u* src, Kel32f* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const auto reals = [](auto codes) KELS_INLINE {
            return convert<Kel32f>(convert<int>(decoded<Law>(codes))) * (1 / full_scale);
        };
        map_blocks(dst, len, reals, src);
    });
}

template <class Law, class V>
[[gnu::always_inline]] inline auto encoded(V x) {
    const V code = static_cast<V>(Law::compress(Law::magnitude(x)) ^ Law::inversion);
    return convert<Kel8u>(static_cast<V>(code | ((~x >> splat<V>(8)) & sign_bit)));
}

template <class Law>
KelStatus encode(const Kel16s* src, Kel8u* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        map_blocks(
            dst, len, [](auto x) KELS_INLINE { return encoded<Law>(x); }, src);
    });
}

template <class Law>
KelStatus encode(const Kel32f* src, Kel8u* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const DefaultModes modes(!nearest_in_any_mode);
        const auto codes = [](auto x) KELS_INLINE {
            using V = decltype(x);
            const V highest = splat<V>(full_scale - 1), lowest = splat<V>(-full_scale);
            const V sample = x * full_scale, limited = sample < highest ? sample : highest; // a NaN too
            return encoded<Law>(convert<Kel16s>(to_integer<false>(limited > lowest ? limited : lowest)));
        };
        map_blocks(dst, len, codes, src);
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsALawToMuLaw_8u  (const Kel8u* a, Kel8u* d, int n)  { return recode<ALaw, MuLaw>(a, d, n); }
KelStatus kelsMuLawToALaw_8u  (const Kel8u* a, Kel8u* d, int n)  { return recode<MuLaw, ALaw>(a, d, n); }
KelStatus kelsALawToLin_8u16s (const Kel8u* a, Kel16s* d, int n) { return decode<ALaw>(a, d, n); }
KelStatus kelsMuLawToLin_8u16s(const Kel8u* a, Kel16s* d, int n) { return decode<MuLaw>(a, d, n); }
KelStatus kelsALawToLin_8u32f (const Kel8u* a, Kel32f* d, int n) { return decode<ALaw>(a, d, n); }
KelStatus kelsMuLawToLin_8u32f(const Kel8u* a, Kel32f* d, int n) { return decode<MuLaw>(a, d, n); }
KelStatus kelsLinToALaw_16s8u (const Kel16s* a, Kel8u* d, int n) { return encode<ALaw>(a, d, n); }
KelStatus kelsLinToMuLaw_16s8u(const Kel16s* a, Kel8u* d, int n) { return encode<MuLaw>(a, d, n); }
KelStatus kelsLinToALaw_32f8u (const Kel32f* a, Kel8u* d, int n) { return encode<ALaw>(a, d, n); }
KelStatus kelsLinToMuLaw_32f8u(const Kel32f* a, Kel8u* d, int n) { return encode<MuLaw>(a, d, n); }
}
// clang-format on
