// Thresholds of complex elements, on their magnitude.
//
//   replacement:  squared magnitudes are compared in double precision, in extended precision where that is too coarse;
//   clipping:     both parts are multiplied by level / magnitude:
//                   16sc   in double precision, which is far finer than the corrections to a part before its rounding;
//                   32fc   in steps of 24 bits (steps_of_24_bits.h);
//                   64fc   with sums of two doubles (expanded.h), in extended precision where those leave their range.
//
// Most vectors have nothing to clip. That is found out first.

#include "kels/thresholds.h"

#include "frame/blocks.h"
#include "frame/complex_vector.h"
#include "frame/expanded.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "vector/complex_lanes.h"
#include "vector/extended_lanes.h"
#include "vector/steps_of_24_bits.h"
#include "vector/thresholds.h"

#include <bit>
#include <cmath>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

template <class V>
[[gnu::always_inline]] inline Complex<V> select(auto mask, Complex<V> a, Complex<V> b) {
    return {mask ? a.re : b.re, mask ? a.im : b.im};
}

template <class V, class T>
[[gnu::always_inline]] inline Complex<V> splat_complex(T z) {
    return {splat<V>(z.re), splat<V>(z.im)};
}

// Replacement

/// Elements i, i + 1 ... of 16-bit parts are taken as words of 32 bits.
using Pair = Kel32u;

template <class V>
[[gnu::always_inline]] inline auto squared_moduli(V parts) {
    return bits_as<Vec<Pair, lanes<V> / 2>>(add_products(parts, parts)); // without a sign, 2^31 has not wrapped
}

template <class W>
[[gnu::always_inline]] inline auto parts_of(W pairs) {
    return bits_as<Vec<Kel16s, lanes<W> * 2>>(pairs);
}

KelStatus replace(const Kel16sc* src, Kel16sc* dst, int len, Side side, Kel16s level, Kel16sc value) {
    return level_call(src, dst, len, level, [=] {
        with_side(side, [=](auto s) {
            const auto replaced = [=](auto parts) KELS_INLINE {
                const auto m = squared_moduli(parts);
                using W = std::remove_const_t<decltype(m)>;
                const W limit = splat<W>(static_cast<Pair>(level * level));
                return parts_of(beyond<s>(m, limit) ? splat<W>(std::bit_cast<Pair>(value)) : bits_as<W>(parts));
            };
            map_blocks<2>(reals(dst), Index{len} * 2, replaced, reals(src));
        });
    });
}

/// Squared moduli in double precision that are clear of this are on the side of the level that they seem to be on. A
/// level whose square is near the ends of the range is never clear.
struct Doubtful {
    Kel64f from = -std::numeric_limits<Kel64f>::infinity(), to = std::numeric_limits<Kel64f>::infinity();

    explicit Doubtful(Kel64f level) {
        if (!(level >= 0x1p-400 && level <= 0x1p400)) return;
        from = level * level * (1 - 0x1p-50);
        to = level * level * (1 + 0x1p-50);
    }
};

/// Lanes beyond the level, in extended precision. Elements only pass beside it: it would change some NaNs.
template <Side S, class V>
[[gnu::noinline]] auto beyond_in_extended(Complex<V> z, long double level) {
    using T = Element<V>;
    using Mask = Vec<std::make_signed_t<Word<T>>, lanes<V>>;
    T re[lanes<V>], im[lanes<V>];
    Element<Mask> mask[lanes<V>];
    store(re, z.re);
    store(im, z.im);
    const ExtendedPrecision modes;
    const long double l = settled(level), limit = l * l;
    for (int i = 0; i < lanes<V>; ++i) {
        const long double a = settled(re[i]), b = settled(im[i]);
        mask[i] = settled<Element<Mask>>(beyond<S>(a * a + b * b, limit) ? -1 : 0);
    }
    return load<Mask>(mask);
}

template <Side S, class V>
[[gnu::always_inline]] inline auto beyond_level(Complex<V> z, Part<Element<V>> level, Doubtful doubtful) {
    const auto wide = to_doubles(z);
    const auto m = wide.re * wide.re + wide.im * wide.im;
    if (any_lane(((m < doubtful.from) | (m > doubtful.to)) == 0)) [[unlikely]]
        return beyond_in_extended<S>(z, level);
    using W = std::remove_const_t<decltype(m)>;
    return convert<std::make_signed_t<Word<Element<V>>>>(beyond<S>(m, splat<W>(doubtful.to)));
}

template <class T>
KelStatus replace(const T* src, T* dst, int len, Side side, Part<T> level, T value) {
    return level_call(src, dst, len, level, [=] {
        with_side(side, [=, doubtful = Doubtful(level)](auto s) {
            const auto replaced = [=](auto z) KELS_INLINE {
                return select(beyond_level<s>(z, level, doubtful), splat_complex<decltype(z.re)>(value), z);
            };
            map_complex(src, dst, len, replaced);
        });
    });
}

// Clipping of integers

/// What is added to the size of a part before it is cut, or taken from it before it is rounded up.
template <Side S>
inline constexpr Kel64f correction = S == Side::above ? 0x1p-37 : 0x1p-33;

/// Sizes of parts times level / modulus, as whole numbers.
template <Side S, class V>
[[gnu::always_inline]] inline auto clipped_size(V size, V modulus, Kel16s level) {
    const V exact = size * level / modulus;
    if constexpr (S == Side::above) {
        return to_integer<true>(exact + correction<S>);
    } else {
        const V corrected = exact - correction<S>;
        const V below = convert<Kel64f>(to_integer<true>(corrected));
        return to_integer<true>(below < corrected ? below + 1 : below);
    }
}

template <Side S, class W>
[[gnu::always_inline]] inline W clipped_part(W part, auto modulus, Kel16s level) {
    const auto size = magnitude(convert<Kel64f>(part));
    const W clipped = clipped_size<S>(size, modulus, level);
    return part < 0 ? -clipped : clipped;
}

/// The elements of one vector, beyond the level or not.
template <Side S, int Lanes>
[[gnu::noinline]] void clip_vector(Kel16s* parts, Kel16s level) {
    const DefaultModes modes(true);
    using W = Vec<int, Lanes / 2>;
    using U = Vec<Pair, Lanes / 2>;
    const auto v = load<Vec<Kel16s, Lanes>>(parts);
    const U m = squared_moduli(v), limit = splat<U>(static_cast<Pair>(level * level));
    const auto modulus = square_root(convert<Kel64f>(m));
    const W pairs = bits_as<W>(v);
    const W re = clipped_part<S>(static_cast<W>(pairs << splat<W>(16)) >> splat<W>(16), modulus, level);
    const W im = clipped_part<S>(pairs >> splat<W>(16), modulus, level);
    const W clipped = m == 0 ? splat<W>(level) : (re & 0xFFFF) | static_cast<W>(im << splat<W>(16));
    store(parts, beyond<S>(m, limit) ? clipped : pairs);
}

/// Several vectors are looked at together, and one by one only if there is something to clip.
template <Side S, class V>
[[gnu::always_inline]] inline V clipped(V parts, Kel16s level) {
    const auto m = squared_moduli(parts);
    using U = std::remove_const_t<decltype(m)>;
    if (!any_lane(beyond<S>(m, splat<U>(static_cast<Pair>(level * level))))) [[likely]]
        return parts;
    if constexpr (lanes < V >> max_lanes<Kel16s>) {
        return both(clipped<S>(half<0>(parts), level), clipped<S>(half<1>(parts), level));
    } else {
        Kel16s changed[lanes<V>];
        store(changed, parts);
        clip_vector<S, lanes<V>>(changed, level);
        return load<V>(changed);
    }
}

template <Side S>
void clip_parts(const Kel16s* src, Kel16s* dst, Index n, Kel16s level) {
    using Vectors = Vec<Kel16s, 4 * max_lanes<Kel16s>>;
    Index i = 0;
    for (; i + lanes<Vectors> <= n; i += lanes<Vectors>) store(dst + i, clipped<S>(load<Vectors>(src + i), level));
    map_blocks<2>(
        dst + i, n - i, [=](auto parts) KELS_INLINE { return clipped<S>(parts, level); }, src + i);
}

KelStatus clip(const Kel16sc* src, Kel16sc* dst, int len, Side side, Kel16s level) {
    return level_call(src, dst, len, level, [=] {
        with_side(side, [=](auto s) { clip_parts<s>(reals(src), reals(dst), Index{len} * 2, level); });
    });
}

// Clipping of singles. What a magnitude without an order does is a matter of where the result goes: raised in place,
// the real part is replaced, as that of a zero is; lowered out of place, both parts are multiplied.

enum class Place { other, same };

template <Side S, Place Where, class V>
[[gnu::always_inline]] inline Complex<V> clipped(Complex<V> z, V m, Kel32f level) {
    const V limit = step(splat<V>(level) * splat<V>(level)), factor = step(square_root(step(limit / m)));
    const Complex<V> scaled = {z.re * factor, z.im * factor};
    if constexpr (S == Side::above) {
        return select(Where == Place::same ? m > limit : !(m <= limit), scaled, z);
    } else {
        const Complex<V> raised = {splat<V>(level), m == 0 ? V{} : z.im};
        const auto changed = Where == Place::same ? !(m >= limit) : m < limit;
        return select(changed, select((m > 0) | (m < 0), scaled, raised), z);
    }
}

template <Side S, Place Where>
void clip_singles(const Kel32fc* src, Kel32fc* dst, Index n, Kel32f level) {
    const bool plain_level = is_plain_level(level);
    const auto clip_lanes = [=](auto z) KELS_INLINE {
        using V = decltype(z.re);
        const V m = squared_modulus_in_steps(z);
        if (plain_level && all_plain(z, m)) [[likely]] {
            const V limit = splat<V>(level * level);
            return any_lane(S == Side::above ? m > limit : m < limit) ? clipped<S, Where>(z, m, level) : z;
        }
        const auto wide = to_doubles(z);
        return to_parts<Kel32f>(clipped<S, Where>(wide, squared_modulus_in_steps(wide), level));
    };
    map_complex(src, dst, n, clip_lanes);
}

KelStatus clip(const Kel32fc* src, Kel32fc* dst, int len, Side side, Kel32f level) {
    return level_call(src, dst, len, level,
                      [=] { with_side(side, [=](auto s) { clip_singles<s, Place::other>(src, dst, len, level); }); });
}

KelStatus clip_in_place(Kel32fc* dst, int len, Side side, Kel32f level) {
    return level_call(dst, dst, len, level,
                      [=] { with_side(side, [=](auto s) { clip_singles<s, Place::same>(dst, dst, len, level); }); });
}

// Clipping of doubles

template <Side S>
Complex<Kel64f> clipped_one(Complex<Kel64f> z, long double level) {
    const long double re = z.re, im = z.im, m = re * re + im * im, limit = level * level;
    if (S == Side::above ? !(m > limit) : !(m < limit)) return z;
    if (m == 0) return {static_cast<Kel64f>(level), 0};
    const long double factor = std::sqrt(limit / m);
    return {static_cast<Kel64f>(re * factor), static_cast<Kel64f>(im * factor)};
}

/// z level / modulus; lanes of zeros, and where the range is left, may be anything but finite.
template <class V>
[[gnu::always_inline]] inline Complex<V> with_modulus(Complex<V> z, V level) {
    const Expanded<V> modulus = root(two_squares(z.re, z.im));
    const V reciprocal = 1 / modulus.high, re = z.re * level, im = z.im * level;
    return {divide(Expanded<V>{re, product_error(z.re, level, re)}, modulus, reciprocal),
            divide(Expanded<V>{im, product_error(z.im, level, im)}, modulus, reciprocal)};
}

KelStatus clip(const Kel64fc* src, Kel64fc* dst, int len, Side side, Kel64f level) {
    return level_call(src, dst, len, level, [=] {
        with_side(side, [=](auto s) {
            const bool safe_level = level >= 0x1p-400 && level <= 0x1p400;
            const auto clip_lanes = [=](auto z) KELS_INLINE {
                using V = decltype(z.re);
                const V m = z.re * z.re + z.im * z.im, limit = splat<V>(level * level);
                const auto changed = s == Side::above ? m > limit : m < limit;
                if (safe_level && !any_lane(changed)) [[likely]]
                    return z;
                const auto zero = (z.re == 0) & (z.im == 0);
                const Complex<V> scaled = with_modulus(z, splat<V>(level)), raised = {splat<V>(level), V{}};
                const Complex<V> result = select(changed, select(zero, raised, scaled), z);
                const auto not_finite = (result.re - result.re) + (result.im - result.im) != 0;
                const auto doubtful =
                    is_small(z.re) | is_small(z.im) | not_finite | (splat<V>(safe_level ? 0 : 1) != 0);
                if (any_lane(doubtful)) [[unlikely]]
                    return with_extended_lanes(
                        result, doubtful, [=](Complex<Kel64f> one) { return clipped_one<s>(one, level); }, z);
                return result;
            };
            const RoundedToNearest modes;
            map_complex(src, dst, len, clip_lanes);
        });
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsThreshold_16sc  (const Kel16sc* a, Kel16sc* d, int n, Kel16s level, int cmpMode) { return clip(a, d, n, side(cmpMode), level); }
KelStatus kelsThreshold_16sc_I(Kel16sc* d, int n, Kel16s level, int cmpMode)                   { return clip(d, d, n, side(cmpMode), level); }
KelStatus kelsThreshold_32fc  (const Kel32fc* a, Kel32fc* d, int n, Kel32f level, int cmpMode) { return clip(a, d, n, side(cmpMode), level); }
KelStatus kelsThreshold_32fc_I(Kel32fc* d, int n, Kel32f level, int cmpMode)                   { return clip_in_place(d, n, side(cmpMode), level); }
KelStatus kelsThreshold_64fc  (const Kel64fc* a, Kel64fc* d, int n, Kel64f level, int cmpMode) { return clip(a, d, n, side(cmpMode), level); }
KelStatus kelsThreshold_64fc_I(Kel64fc* d, int n, Kel64f level, int cmpMode)                   { return clip(d, d, n, side(cmpMode), level); }

KelStatus kelsThreshold_LT_16sc  (const Kel16sc* a, Kel16sc* d, int n, Kel16s level) { return clip(a, d, n, Side::below, level); }
KelStatus kelsThreshold_LT_16sc_I(Kel16sc* d, int n, Kel16s level)                   { return clip(d, d, n, Side::below, level); }
KelStatus kelsThreshold_LT_32fc  (const Kel32fc* a, Kel32fc* d, int n, Kel32f level) { return clip(a, d, n, Side::below, level); }
KelStatus kelsThreshold_LT_32fc_I(Kel32fc* d, int n, Kel32f level)                   { return clip_in_place(d, n, Side::below, level); }
KelStatus kelsThreshold_LT_64fc  (const Kel64fc* a, Kel64fc* d, int n, Kel64f level) { return clip(a, d, n, Side::below, level); }
KelStatus kelsThreshold_LT_64fc_I(Kel64fc* d, int n, Kel64f level)                   { return clip(d, d, n, Side::below, level); }

KelStatus kelsThreshold_GT_16sc  (const Kel16sc* a, Kel16sc* d, int n, Kel16s level) { return clip(a, d, n, Side::above, level); }
KelStatus kelsThreshold_GT_16sc_I(Kel16sc* d, int n, Kel16s level)                   { return clip(d, d, n, Side::above, level); }
KelStatus kelsThreshold_GT_32fc  (const Kel32fc* a, Kel32fc* d, int n, Kel32f level) { return clip(a, d, n, Side::above, level); }
KelStatus kelsThreshold_GT_32fc_I(Kel32fc* d, int n, Kel32f level)                   { return clip_in_place(d, n, Side::above, level); }
KelStatus kelsThreshold_GT_64fc  (const Kel64fc* a, Kel64fc* d, int n, Kel64f level) { return clip(a, d, n, Side::above, level); }
KelStatus kelsThreshold_GT_64fc_I(Kel64fc* d, int n, Kel64f level)                   { return clip(d, d, n, Side::above, level); }

KelStatus kelsThreshold_LTVal_16sc  (const Kel16sc* a, Kel16sc* d, int n, Kel16s level, Kel16sc value) { return replace(a, d, n, Side::below, level, value); }
KelStatus kelsThreshold_LTVal_16sc_I(Kel16sc* d, int n, Kel16s level, Kel16sc value)                   { return replace(d, d, n, Side::below, level, value); }
KelStatus kelsThreshold_LTVal_32fc  (const Kel32fc* a, Kel32fc* d, int n, Kel32f level, Kel32fc value) { return replace(a, d, n, Side::below, level, value); }
KelStatus kelsThreshold_LTVal_32fc_I(Kel32fc* d, int n, Kel32f level, Kel32fc value)                   { return replace(d, d, n, Side::below, level, value); }
KelStatus kelsThreshold_LTVal_64fc  (const Kel64fc* a, Kel64fc* d, int n, Kel64f level, Kel64fc value) { return replace(a, d, n, Side::below, level, value); }
KelStatus kelsThreshold_LTVal_64fc_I(Kel64fc* d, int n, Kel64f level, Kel64fc value)                   { return replace(d, d, n, Side::below, level, value); }

KelStatus kelsThreshold_GTVal_16sc  (const Kel16sc* a, Kel16sc* d, int n, Kel16s level, Kel16sc value) { return replace(a, d, n, Side::above, level, value); }
KelStatus kelsThreshold_GTVal_16sc_I(Kel16sc* d, int n, Kel16s level, Kel16sc value)                   { return replace(d, d, n, Side::above, level, value); }
KelStatus kelsThreshold_GTVal_32fc  (const Kel32fc* a, Kel32fc* d, int n, Kel32f level, Kel32fc value) { return replace(a, d, n, Side::above, level, value); }
KelStatus kelsThreshold_GTVal_32fc_I(Kel32fc* d, int n, Kel32f level, Kel32fc value)                   { return replace(d, d, n, Side::above, level, value); }
KelStatus kelsThreshold_GTVal_64fc  (const Kel64fc* a, Kel64fc* d, int n, Kel64f level, Kel64fc value) { return replace(a, d, n, Side::above, level, value); }
KelStatus kelsThreshold_GTVal_64fc_I(Kel64fc* d, int n, Kel64f level, Kel64fc value)                   { return replace(d, d, n, Side::above, level, value); }
}
// clang-format on
