// Straight lines, and chirps whose phase grows with the square of the index.
//
//   lines:   i slope + offset as the sum of two doubles, rounded once;
//   chirps:  magn sin((c n) n), c = (pi / 2) / len. The argument is that of extended precision, to its last bit where
//            it matters: products of 64 bits by integers are exact as sums of two doubles, and rounded to 64 bits.

#include "kels/ramps.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/error_free.h"
#include "frame/expanded.h"
#include "frame/math/circular.h"
#include "frame/math/harmonic.h"
#include "frame/memory.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "kels/statistics.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numbers>
#include <type_traits>

namespace kels {
namespace {

/// dst[i] = f(i), for lanes of i as doubles, some vectors together.
template <int Vectors = 1, class T, class F>
void generate(T* dst, Index n, const F& f) {
    in_widest<double, 1, 2, Vectors * max_lanes<double>>(n, [&](auto width) KELS_INLINE {
        const auto block = [&](Index i)
                               KELS_INLINE { store(dst + i, f(counted<Vec<double, width>>(static_cast<double>(i)))); };
        for (Index i = 0; i < n - width; i += width) block(i);
        block(n - width);
    });
}

/// Whole numbers within T, whose unsigned 32 bits go through the signed ones.
template <class T, class V>
[[gnu::always_inline]] inline auto to_type(V whole) {
    if constexpr (std::is_same_v<T, Kel32u>) {
        const auto upper = whole >= 0x1p31;
        const auto bits = convert<Kel32u>(to_integer<true>(upper ? whole - 0x1p31 : whole));
        const auto top = convert<Kel32u>(to_integer<true>(upper ? splat<V>(1) : V{}));
        return bits + (top << splat<Vec<Kel32u, lanes<V>>>(31));
    } else {
        return convert<T>(to_integer<true>(whole));
    }
}

// Lines

/// 32-bit lanes limited to T.
template <class T, class V>
[[gnu::always_inline]] inline auto limited(V t) {
    if constexpr (std::is_same_v<T, Kel32u>)
        return bits_as<Vec<T, lanes<V>>>(t > 0 ? t : V{});
    else
        return saturate<T>(t);
}

/// high + low: the exact sum but for the last places of the low part.
template <class V>
[[gnu::always_inline]] inline Expanded<V> line(V i, double slope, double offset) {
    const V product = i * slope, sum = product + offset;
    return {sum, sum_error(product, splat<V>(offset), sum) + product_error(i, splat<V>(slope), product)};
}

template <class V>
[[gnu::always_inline]] inline V settled_sum(Expanded<V> y) {
    const V sum = y.high + y.low;
    const auto moved = (y.low != 0) & (sum - sum == 0); // a negative zero stays one
    return moved ? sum : y.high;
}

/// Halves away from zero, then limited, NaNs to the top: signed numbers are rounded to double before they are cut.
template <class T, class V>
[[gnu::always_inline]] inline auto rounded_line(Expanded<V> y) {
    constexpr double most = std::numeric_limits<T>::max(), least = std::numeric_limits<T>::min();
    const V half = y.high > 0 ? splat<V>(0.5) : splat<V>(-0.5), sum = y.high + half;
    const V rest = sum_error(y.high, half, sum) + y.low;
    if constexpr (std::is_signed_v<T>) {
        const V v = settled_sum(Expanded<V>{sum, rest}), below = v < most ? v : splat<V>(most);
        return to_type<T>(below > least ? below : splat<V>(least));
    } else {
        // Unsigned ones are cut in extended precision, which may be less than the integer that a double rounds to.
        const auto is_whole = (sum + 0x1p52) - 0x1p52 == sum;
        const V v = (is_whole & (rest < sum * -0x1p-64)) ? sum - 0.5 : sum;
        return to_type<T>(y.high <= 0 ? V{} : v < most ? v : splat<V>(most));
    }
}

/// Whether y = i slope + offset and y + 0.5 are doubles below 2^30 for all i below n: the last place of a single is
/// more than 2^-24 of it.
bool is_exact(double slope, double offset, int n) {
    const double range = std::fabs(slope) * n + std::fabs(offset) + 1;
    const auto holds = [range](double x) { return x == 0 || range <= 0x1p29 * std::fabs(x); };
    return range < 0x1p29 && holds(slope) && holds(offset);
}

/// Lines of singles, as long as the products are exact: one rounding does.
template <class V>
[[gnu::always_inline]] inline V short_line(V i, double slope, double offset) {
    return fma(i, splat<V>(slope), splat<V>(offset));
}

template <class T>
void fill_line(T* dst, int len, double slope, double offset) {
    if constexpr (std::is_floating_point_v<T>) {
        if (len <= 1 << 29)
            return generate<4>(dst, len, [=](auto i) KELS_INLINE { return convert<T>(short_line(i, slope, offset)); });
    } else {
        if (is_exact(slope, offset, len))
            return generate<4>(dst, len, [=](auto i) KELS_INLINE {
                const auto y = short_line(i, slope, offset);
                return limited<T>(to_integer<true>(y + with_sign_of(splat<decltype(y)>(0.5), y)));
            });
    }
    generate(dst, len, [=](auto i) KELS_INLINE {
        const auto y = line(i, slope, offset);
        if constexpr (std::is_floating_point_v<T>)
            return convert<T>(settled_sum(y));
        else
            return rounded_line<T>(y);
    });
}

template <class T>
KelStatus ramp(T* dst, int len, Kel32f offset, Kel32f slope) {
    return vector_call({dst}, len, [=] {
        const DefaultModes modes(true);
        fill_line(dst, len, double{settled(slope)}, double{settled(offset)});
    });
}

// Chirps

/// x n, rounded to 64 bits, for x of 64 bits.
template <class V>
[[gnu::always_inline]] inline Expanded<V> extended_product(Expanded<V> x, V n) {
    const V product = x.high * n, error = product_error(x.high, n, product) + x.low * n;
    return extended(Expanded<V>{product, error});
}

/// sin((c n) n): to the double, before its sign.
template <Grade G, class V>
[[gnu::always_inline]] inline V chirp(V n, Expanded<double> c) {
    const Expanded<V> phase = extended_product(extended_product(Expanded<V>{splat<V>(c.high), splat<V>(c.low)}, n), n);
    const FoldedAngle<V> a = folded_angle<Grade::for_double>(phase.high);
    const V tail = a.low + phase.low, high = a.high + tail;
    const V low = sum_error(a.high, tail, high) + sum_error(a.low, phase.low, tail);
    const Unrounded<V> s = sine_of_folded<G>(high, low), cosine = cosine_of_folded<G>(high, low);
    using B = Bits<V>;
    const auto odd = (a.quarters & splat<B>(1)) != 0;
    const V size = odd ? cosine.head + cosine.tail : s.head + s.tail;
    return with_sign_of(size, bits_as<V>((a.quarters & splat<B>(2)) << splat<B>(62)));
}

/// c in radians and in quarter turns.
struct Rate {
    Expanded<double> radians;
    TwoDoubles quarters;

    explicit Rate(long double c) : Rate(two_doubles(c)) {}

private:
    explicit Rate(TwoDoubles c) : radians{c.high, c.low}, quarters(quarter_turns(c)) {}
};

/// The same for indices of less than 2^26, whose squares are exact: but for an error of some 2^-37, to which the
/// rounding of (c n) n adds less than len 2^-62.
template <class V>
[[gnu::always_inline]] inline V rough_chirp(V n, const Rate& rate) {
    const V square = n * n, high = splat<V>(rate.quarters.high), product = square * high;
    const Whole<V> whole = nearest_whole(product);
    const V part = (product - whole.real) + (product_error(square, high, product) + square * rate.quarters.low);
    const V r = part * (std::numbers::pi / 2);
    const Unrounded<V> s = sine_of_folded<Grade::for_single>(r, V{}),
                       cosine = cosine_of_folded<Grade::for_single>(r, V{});
    using B = Bits<V>;
    const V size = (whole.low_bits & splat<B>(1)) != 0 ? cosine.head + cosine.tail : s.head + s.tail;
    return with_sign_of(size, bits_as<V>((whole.low_bits & splat<B>(2)) << splat<B>(62)));
}
constexpr int rough_lengths = 1 << 26;

template <class T>
inline constexpr bool may_be_rough = std::is_same_v<T, Kel32f> || (std::is_integral_v<T> && sizeof(T) <= 2);

/// Halves away from zero.
template <class T, class V>
[[gnu::always_inline]] inline auto rounded_wave(V x) {
    return to_type<T>(x < 0 ? x - 0.5 : x + 0.5);
}

/// Whether a lane is so near to an integer, by this distance, that it might be on its other side.
template <class V>
[[gnu::always_inline]] inline bool any_beside_whole(V v, V distance) {
    return any_lane(magnitude(v - nearest_whole(v).real) < distance);
}

/// Samples by the rough chirp, unless its error may show.
template <class T, class V>
[[gnu::always_inline]] inline auto rough_wave(V n, const Rate& rate, double top, [[maybe_unused]] double least) {
    const V y = rough_chirp(n, rate), x = y * top;
    const auto exactly = [&]() KELS_INLINE { return chirp<Grade::same_everywhere>(n, rate.radians); };
    if constexpr (std::is_integral_v<T>) {
        if (any_beside_whole(magnitude(x) + 0.5, splat<V>(0x1p-18))) [[unlikely]]
            return rounded_wave<T>(exactly() * top);
        return rounded_wave<T>(x);
    } else {
        const auto small = magnitude(y) < splat<V>(least);
        if (any_lane(small)) [[unlikely]]
            return convert<T>(small ? exactly() * top : x);
        return convert<T>(x);
    }
}

template <class T>
inline constexpr Grade grade_of = std::is_same_v<T, Kel64f> ? Grade::for_double : Grade::same_everywhere;

/// (pi / 2) / len in extended precision.
long double rate(int len) { return static_cast<long double>(1.5707963267948966) / settled(len); }

template <class T>
KelStatus chirps(T* dst, int len, T magn) {
    return vector_call({dst}, len, [=] {
        const ModesOfCreation modes;
        const double top = static_cast<double>(settled(magn));
        if (std::is_signed_v<T> && top < 0) return kelStatusNegMagnitude;
        if (len == 1) {
            *dst = 0;
            return kelStatusOk;
        }
        const Rate c(rate(len));
        if constexpr (may_be_rough<T>) {
            if (len <= rough_lengths) {
                const double least = std::max(0x1p-16, len * 0x1p-36);
                generate(dst, len, [=](auto n) KELS_INLINE { return rough_wave<T>(n, c, top, least); });
                return kelStatusOk;
            }
        }
        generate(dst, len, [=](auto n) KELS_INLINE {
            const auto x = chirp<grade_of<T>>(n, c.radians) * top;
            if constexpr (std::is_floating_point_v<T>)
                return convert<T>(x);
            else
                return rounded_wave<T>(x);
        });
        return kelStatusOk;
    });
}

/// Chirps stretched from 0 to the magnitude. The extremes, and what comes near to the next integer, are those of
/// extended precision.
template <class T>
class Stretched {
public:
    Stretched(double* room, int len, double magn) : x(room), n(len), c(static_cast<double>(rate(len))), top(magn) {
        const Rate by(c);
        if (may_be_rough<T> && len <= rough_lengths)
            generate(x, n, [&, this](auto i) KELS_INLINE { return rough_chirp(i, by) * top; });
        else
            generate(x, n,
                     [&, this](auto i) KELS_INLINE { return chirp<Grade::same_everywhere>(i, by.radians) * top; });
        const Extremes found = extremes();
        for (int i = 0; i < n; ++i)
            if (x[i] <= found.low + top * error || x[i] >= found.high - top * error) [[unlikely]]
                x[i] = by_rule(i);
        const Extremes exact = extremes();
        const long double range = static_cast<long double>(exact.high) - exact.low;
        from = exact.low;
        factor = range > 0 ? static_cast<double>(top / range) : 0;
    }

    void store_to(T* dst) const {
        in_widest<double>(n, [&](auto width) KELS_INLINE {
            for (Index i = 0; i < n - width; i += width) store_block<width>(dst, i);
            store_block<width>(dst, n - width);
        });
    }

private:
    /// More than that of x, in units of the magnitude.
    static constexpr double error = may_be_rough<T> ? 0x1p-34 : 0x1p-40;

    double* x;
    int n;
    double c, top, from = 0, factor = 0;

    struct Extremes {
        double low, high;
    };
    Extremes extremes() const {
        Extremes found;
        kelsMin_64f(x, n, &found.low);
        kelsMax_64f(x, n, &found.high);
        return found;
    }

    double by_rule(Index i) const {
        return static_cast<double>(std::sin(static_cast<long double>(c) * i * i) * static_cast<long double>(top));
    }

    template <int Lanes>
    [[gnu::always_inline]] void store_block(T* dst, Index i) const {
        using V = Vec<double, Lanes>;
        const V y = (load<V>(x + i) - from) * factor, v = y + 0.5;
        store(dst + i, to_type<T>(v));
        const double least = may_be_rough<T> ? 0x1p-16 : 0x1p-30;
        if (any_beside_whole(v, least + v * 0x1p-45)) [[unlikely]]
            for (Index k = i; k < i + Lanes; ++k) dst[k] = cut_by_rule(k);
    }

    T cut_by_rule(Index i) const {
        const long double v = (static_cast<long double>(by_rule(i)) - from) * factor + 0.5L;
        return static_cast<T>(static_cast<std::int64_t>(v));
    }
};

template <class T>
KelStatus stretched_chirps(T* dst, int len, T magn) {
    return vector_call({dst}, len, [=] {
        const ModesOfCreation modes;
        if (len == 1) {
            *dst = 0;
            return kelStatusOk;
        }
        const Owned<double> scratch = make_owned<double>(static_cast<std::size_t>(len));
        if (!scratch) return kelStatusNoMemory;
        Stretched<T>(scratch.get(), len, magn).store_to(dst);
        return kelStatusOk;
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsVectorRamp_8u (Kel8u*  d, int n, Kel32f offset, Kel32f slope) { return ramp(d, n, offset, slope); }
KelStatus kelsVectorRamp_8s (Kel8s*  d, int n, Kel32f offset, Kel32f slope) { return ramp(d, n, offset, slope); }
KelStatus kelsVectorRamp_16u(Kel16u* d, int n, Kel32f offset, Kel32f slope) { return ramp(d, n, offset, slope); }
KelStatus kelsVectorRamp_16s(Kel16s* d, int n, Kel32f offset, Kel32f slope) { return ramp(d, n, offset, slope); }
KelStatus kelsVectorRamp_32u(Kel32u* d, int n, Kel32f offset, Kel32f slope) { return ramp(d, n, offset, slope); }
KelStatus kelsVectorRamp_32s(Kel32s* d, int n, Kel32f offset, Kel32f slope) { return ramp(d, n, offset, slope); }
KelStatus kelsVectorRamp_32f(Kel32f* d, int n, Kel32f offset, Kel32f slope) { return ramp(d, n, offset, slope); }
KelStatus kelsVectorRamp_64f(Kel64f* d, int n, Kel32f offset, Kel32f slope) { return ramp(d, n, offset, slope); }

KelStatus kelsVectorJaehne_8u (Kel8u*  d, int n, Kel8u  magn) { return stretched_chirps(d, n, magn); }
KelStatus kelsVectorJaehne_8s (Kel8s*  d, int n, Kel8s  magn) { return chirps(d, n, magn); }
KelStatus kelsVectorJaehne_16u(Kel16u* d, int n, Kel16u magn) { return stretched_chirps(d, n, magn); }
KelStatus kelsVectorJaehne_16s(Kel16s* d, int n, Kel16s magn) { return chirps(d, n, magn); }
KelStatus kelsVectorJaehne_32u(Kel32u* d, int n, Kel32u magn) { return stretched_chirps(d, n, magn); }
KelStatus kelsVectorJaehne_32s(Kel32s* d, int n, Kel32s magn) { return chirps(d, n, magn); }
KelStatus kelsVectorJaehne_32f(Kel32f* d, int n, Kel32f magn) { return chirps(d, n, magn); }
KelStatus kelsVectorJaehne_64f(Kel64f* d, int n, Kel64f magn) { return chirps(d, n, magn); }
}
// clang-format on
