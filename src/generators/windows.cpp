// Windows, applied.
//
// Weights belong to pairs of samples, one from either end. The cosines of Hann, Hamming and Blackman are those of the
// rotation C' = c C - s S, S' = s C + c S in extended precision. As the half angle phi of (c, s) has C = 1 - 2 z, z =
// sin^2(n phi), they are evaluated as functions of z, which lose nothing where weights are small. There the roundings
// of the rotation itself show: the first weights are taken from it.
//
// All of it is deterministic double arithmetic: nothing is fused for singles and integers.

#include "kels/windows.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/math/exponential.h"
#include "frame/math/harmonic.h"
#include "frame/modes.h"
#include "frame/numeric.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

// A weight on a sample

/// y rounded to nearest, halves away from zero, and limited.
template <class V>
[[gnu::always_inline]] inline auto rounded_short(V y) {
    const V away = y < 0 ? y - 0.5 : y + 0.5;
    const V above = away > -32768 ? away : splat<V>(-32768);
    return to_integer<true>(above < 32767 ? above : splat<V>(32767));
}

/// Products so near to a half that the weight in extended precision decides.
template <class V>
[[gnu::always_inline]] inline auto is_near_half(V y, V rounded) {
    return magnitude(magnitude(y - rounded) - 0.5) < splat<V>(0x1p-30);
}

/// Weighted samples, and whether the rule itself must do them over.
template <class V>
struct Weighted {
    V samples;
    bool doubtful;
};

template <class T, class V, class W>
[[gnu::always_inline]] inline Weighted<V> weighted(V x, W w) {
    bool doubtful = false;
    const V samples = in_doubles(
        [&](auto y, auto u) KELS_INLINE {
            if constexpr (std::is_integral_v<T>) {
                const auto rounded = rounded_short(y * u);
                doubtful |= any_lane(is_near_half(y * u, convert<double>(rounded)));
                return convert<T>(rounded);
            } else {
                return convert<T>(y * u);
            }
        },
        x, w);
    return {samples, doubtful};
}

/// The same in extended precision, as the rule has it.
template <class T>
T weighted(T x, long double w) {
    const long double y = x * w;
    if constexpr (std::is_floating_point_v<T>) {
        return static_cast<T>(y);
    } else {
        if (y > 32767) return 32767;
        if (!(y >= -32768)) return -32768;
        return static_cast<T>(static_cast<double>(y < 0 ? y - 0.5L : y + 0.5L));
    }
}

/// Sample n from either end.
template <class T>
void weigh_pair(const T* src, T* dst, int len, Index n, long double w) {
    for (const Index i : {n, len - 1 - n})
        for (int part = 0; part < parts<T>; ++part) reals(dst + i)[part] = weighted(reals(src + i)[part], w);
}

// Weights on both ends

constexpr int stretch = Stretches<Grade::same_everywhere>::length;

/// Lanes in which weights stand to their samples: one weight for both parts of a complex one.
template <class T, class W>
[[gnu::always_inline]] inline auto spread(W w) {
    if constexpr (parts<T> == 2)
        return zip(w, w);
    else
        return w;
}

/// Weights samples n, n + 1 ... from either end.
template <int Count, class T, class Rule>
[[gnu::always_inline]] inline void weigh_pairs(const T* src, T* dst, int len, Index n, const double* weights,
                                               Rule& rule) {
    using V = Vec<Part<T>, Count * parts<T>>;
    const Index mirror = len - Count - n;
    const auto w = load<Vec<double, Count>>(weights);
    const auto left = weighted<Part<T>>(load<V>(src + n), spread<T>(w));
    const auto right = weighted<Part<T>>(load<V>(src + mirror), spread<T>(reverse(w)));
    if (left.doubtful || right.doubtful) [[unlikely]] {
        for (int i = 0; i < Count; ++i) weigh_pair(src, dst, len, n + i, rule(n + i));
    } else {
        store(dst + n, left.samples);
        store(dst + mirror, right.samples);
    }
}

// 16-bit samples times weights of 32 bits, in 16-bit lanes

/// Weights from 0 to less than 1 in units of 2^-32, by halves.
struct Fractions {
    alignas(64) std::uint16_t high[stretch], low[stretch];

    /// Takes n weights, or says that one of them is out of range; those behind them are zeros.
    bool take(const double* weights, int n) {
        using V = Vec<double>;
        const V shifter = splat<V>(0x1p20); // its last place is 2^-32
        V least{}, most{};
        for (int j = 0; j < n; j += lanes<V>) {
            const V w = load<V>(weights + j), shifted = w + shifter;
            const auto bits = bits_as<Bits<V>>(shifted);
            store(high + j, convert<std::uint16_t>(bits >> splat<Bits<V>>(16)));
            store(low + j, convert<std::uint16_t>(bits));
            least = w < least ? w : least;
            most = most < shifted ? shifted : most;
        }
        return !any_lane(least < 0) && !any_lane(most >= shifter + 1);
    }
};

/// The upper halves of products.
template <class U>
[[gnu::always_inline]] inline U high_product(U a, U b) {
    using Products = Vec<std::uint32_t, lanes<U>>;
    return convert<std::uint16_t>((convert<std::uint32_t>(a) * convert<std::uint32_t>(b)) >> splat<Products>(16));
}

/// Samples times weights, and in which lanes they are not rounded for sure.
template <class V, class U>
struct RoundedProduct {
    V samples;
    U doubt; ///< 0 or 1, where it is so
};

/// The product's size is high_product(|x|, high) and a fraction of 16 bits, in whose last place all that is left out
/// comes to more than -1/2 and less than 3/2. The half by which it is rounded goes into the fraction first.
template <class V, class U>
[[gnu::always_inline]] inline RoundedProduct<V, U> rounded_product(V x, U high, U low) {
    const U size = bits_as<U>(x < 0 ? -x : x);
    const U upper = size * high, rest = high_product(size, low) | splat<U>(0x8000);
    const U fraction = upper + rest, carry = (upper | ~fraction) >> splat<U>(15);
    const V rounded = bits_as<V>(high_product(size, high) + carry);
    return {x < 0 ? -rounded : rounded, fraction + 1};
}

/// The same as weigh_pairs does. Doubts are left to that one.
template <int Count, class T, class Rule>
[[gnu::always_inline]] inline void weigh_shorts(const T* src, T* dst, int len, Index n, const Fractions& fractions,
                                                int j, const double* weights, Rule& rule) {
    using V = Vec<Kel16s, Count * parts<T>>;
    using U = Vec<std::uint16_t, Count>;
    const Index mirror = len - Count - n;
    const U high = load<U>(fractions.high + j), low = load<U>(fractions.low + j);
    const auto left = rounded_product(load<V>(src + n), spread<T>(high), spread<T>(low));
    const auto right = rounded_product(load<V>(src + mirror), spread<T>(reverse(high)), spread<T>(reverse(low)));
    if (any_lane((left.doubt < 2) | (right.doubt < 2))) [[unlikely]] {
        weigh_pairs<Count>(src, dst, len, n, weights + j, rule);
    } else {
        store(dst + n, left.samples);
        store(dst + mirror, right.samples);
    }
}

/// Calls weigh(width, j) for blocks of pairs from j on, as long as whole ones come before `count`, and gives the rest's
/// beginning.
template <int Count, class Weigh>
[[gnu::always_inline]] inline int in_blocks(int j, int count, const Weigh& weigh) {
    for (; j <= count - Count; j += Count) weigh(Width<Count>{}, j);
    return j;
}

/// Pairs from `from` on; fill(weights, n, count) gives their weights, by whole vectors. rule(n) is the weight in
/// extended precision, asked for in order.
template <class T, class Fill, class Rule>
void weigh_from(const T* src, T* dst, int len, Index from, Fill fill, Rule rule) {
    constexpr int together = max_lanes<Kel32f> / parts<T>;
    alignas(64) double weights[stretch];
    const Index pairs = len / 2;
    for (Index n = from; n < pairs; n += stretch) {
        const int count = static_cast<int>(std::min<Index>(pairs - n, stretch));
        fill(weights, n, count);
        int j = 0;
        if constexpr (std::is_integral_v<Part<T>>) {
            std::fill(weights + count, weights + stretch, 0.0);
            Fractions fractions;
            if (fractions.take(weights, count)) {
                const auto weigh = [&](auto width, int at) KELS_INLINE {
                    weigh_shorts<width>(src, dst, len, n + at, fractions, at, weights, rule);
                };
                j = in_blocks<max_lanes<Kel16s> / parts<T>>(j, count, weigh);
                j = in_blocks<8 / parts<T>>(j, count, weigh);
            }
        }
        const auto weigh = [&](auto width, int at)
                               KELS_INLINE { weigh_pairs<width>(src, dst, len, n + at, weights + at, rule); };
        j = in_blocks<together>(j, count, weigh);
        in_blocks<1>(j, count, weigh);
    }
    if (len % 2 != 0) dst[pairs] = src[pairs];
}

/// weight(n) for lanes of n.
template <class F>
auto filled_by(const F& weight) {
    return [weight](double* weights, Index n, int count) {
        using V = Vec<double>;
        for (int j = 0; j < count; j += lanes<V>) store(weights + j, weight(counted<V>(static_cast<double>(n + j))));
    };
}

/// Pointers and the length, then the window.
template <class T, class Kernel>
KelStatus window_call(const T* src, T* dst, int len, int shortest, const Kernel& kernel) {
    return vector_call({src, dst}, len, [&] {
        if (len < shortest) return kelStatusBadSize;
        const ModesOfCreation modes;
        return run(kernel);
    });
}

/// Ends that are zeros whatever the samples there.
template <class T>
void end_with_zeros(T* dst, int len) {
    dst[0] = dst[len - 1] = T{};
}

// Bartlett

template <class T>
KelStatus bartlett(const T* src, T* dst, int len) {
    return window_call(src, dst, len, 3, [=] {
        const long double step = 2 / static_cast<long double>(len - 1);
        const auto rounded = static_cast<double>(step);
        const auto sum = [step, sum = 0.0L, at = Index{0}](Index n) mutable {
            for (; at < n; ++at) sum += step;
            return sum;
        };
        weigh_from(src, dst, len, 0, filled_by([=](auto n) KELS_INLINE { return n * rounded; }), sum);
        end_with_zeros(dst, len);
    });
}

// Hann, Hamming, Blackman: weights by C, and by z

struct Hann {
    static constexpr bool ends_in_zeros = true, holds_sine_in_double = false, only_by_rule = false;

    long double by_cosine(long double c) const { return 0.5L * (1 - c); }
    template <class V>
    [[gnu::always_inline]] V by_square(V z) const {
        return z;
    }
};

struct Hamming {
    static constexpr bool ends_in_zeros = false, holds_sine_in_double = false, only_by_rule = false;
    static constexpr double mean = 0.54, swing = 0.46;

    long double by_cosine(long double c) const { return -static_cast<long double>(swing) * c + mean; }
    template <class V>
    [[gnu::always_inline]] V by_square(V z) const {
        return (mean - swing) + z * (2 * swing);
    }
};

struct Blackman {
    static constexpr bool ends_in_zeros = true, holds_sine_in_double = true;
    long double mean, minus_half;
    double linear, square; // of z
    bool only_by_rule;

    explicit Blackman(long double alpha)
        : mean((alpha + 1) / 2), minus_half(static_cast<double>(-(alpha / 2))),
          linear(static_cast<double>(1 + 4 * alpha)), square(static_cast<double>(4 * alpha)),
          only_by_rule(!std::isfinite(alpha)) {}

    long double by_cosine(long double c) const { return (mean - 0.5L * c) + minus_half * (2 * c * c - 1); }
    template <class V>
    [[gnu::always_inline]] V by_square(V z) const {
        return z * (linear - z * square);
    }
    /// Where the difference has lost so much that it shows.
    template <class V>
    [[gnu::always_inline]] auto is_near_zero(V z) const {
        return magnitude(linear - z * square) < splat<V>(std::fabs(square) * 0x1p-24);
    }
};

/// The rotation by a turn in m steps.
struct Rotation {
    long double c, s, cosine = 1, sine = 0;
    Index at = 0;

    Rotation(int m, bool sine_in_double) {
        c = std::cos(static_cast<long double>(6.283185307179586) / m);
        s = std::sqrt(1 - c * c);
        if (sine_in_double) s = static_cast<double>(s);
    }
    /// After n steps, no less than before.
    long double cosine_at(Index n) {
        for (; at < n; ++at) {
            const long double next = c * cosine + -s * sine;
            sine = sine * c + cosine * s;
            cosine = next;
        }
        return cosine;
    }
};

template <class T, class Shape>
void weigh_by_rotation(const T* src, T* dst, int len, const Shape& shape) {
    constexpr Index aligned = 32; // blocks begin where vectors of an aligned array do, and at every level the same
    const Index pairs = len / 2, by_rule = shape.only_by_rule ? pairs : std::min<Index>(pairs, 2 + len / 1024);
    const Index first = shape.only_by_rule ? pairs : by_rule / aligned * aligned;
    Rotation rotation(len - 1, Shape::holds_sine_in_double);
    const auto rule = [&](Index n) { return shape.by_cosine(rotation.cosine_at(n)); };
    for (Index n = 0; n < first; ++n) weigh_pair(src, dst, len, n, rule(n));
    Rotation early = rotation, ahead = rotation;
    double first_weights[aligned];
    for (Index n = first; n < by_rule; ++n)
        first_weights[n - first] = static_cast<double>(shape.by_cosine(early.cosine_at(n)));
    using Sines = Stretches<Grade::same_everywhere>;
    const long double half_angle = std::atan2(rotation.s, rotation.c) / 2;
    Sines sines(half_angle, 0, static_cast<double>(first), pairs - first);
    const auto fill = [&](double* weights, Index n, int count) {
        sines.go_to((n - first) / Sines::length);
        for (int j = 0; j < count; j += max_lanes<double>) {
            const auto s = sines.sine_at(j);
            store(weights + j, shape.by_square(s * s));
            if constexpr (std::is_same_v<Shape, Blackman>)
                if (any_lane(shape.is_near_zero(s * s))) [[unlikely]]
                    for (int i = 0; i < max_lanes<double>; ++i)
                        weights[j + i] = static_cast<double>(shape.by_cosine(ahead.cosine_at(n + j + i)));
        }
        if (n == first) std::copy_n(first_weights, by_rule - first, weights);
    };
    weigh_from(src, dst, len, first, fill, rule);
}

template <class T, class Shape>
void raised_cosine(const T* src, T* dst, int len, const Shape& shape) {
    if (Shape::ends_in_zeros && len == 3) {
        dst[1] = src[1];
        end_with_zeros(dst, len);
    } else {
        weigh_by_rotation(src, dst, len, shape);
    }
}

template <class T>
KelStatus hann(const T* src, T* dst, int len) {
    return window_call(src, dst, len, 3, [=] { raised_cosine(src, dst, len, Hann{}); });
}
template <class T>
KelStatus hamming(const T* src, T* dst, int len) {
    return window_call(src, dst, len, 3, [=] { raised_cosine(src, dst, len, Hamming{}); });
}

template <class T>
KelStatus blackman(const T* src, T* dst, int len, Kel32f alpha) {
    return window_call(src, dst, len, 3, [=] { raised_cosine(src, dst, len, Blackman(settled(alpha))); });
}
template <class T>
KelStatus blackman_q15(const T* src, T* dst, int len, int alpha) {
    return window_call(src, dst, len, 3, [=] { raised_cosine(src, dst, len, Blackman(settled(alpha) * 0x1p-15L)); });
}
template <class T>
KelStatus blackman_standard(const T* src, T* dst, int len) {
    return blackman(src, dst, len, -0.16F);
}

/// The side lobes next to the main one vanish.
Kel32f optimal_alpha(int len) {
    const ExtendedPrecision modes;
    const long double q = 0.5L / std::cos(static_cast<long double>(3.141592653589793) / settled(len - 1));
    return settled(static_cast<Kel32f>(-(q * q)));
}

/// The length comes before the pointers.
template <class T>
KelStatus blackman_optimal(const T* src, T* dst, int len) {
    return len < 4 ? kelStatusBadSize : blackman(src, dst, len, optimal_alpha(len));
}

// Kaiser

/// Approximations of the modified Bessel function I0: polynomials in (x / split)^2 below the split, and beyond it e^x /
/// sqrt(x) times one in split / x (M. Abramowitz and I. A. Stegun, 9.8.1, 9.8.2; the other one is finer).
struct Coarse {
    static constexpr double split = 3.75, reciprocal = 0.26666666666666666;
    static constexpr double near[] = {1, 3.5156229, 3.0899424, 1.2067492, 0.2659732, 0.0360768, 0.0045813};
    static constexpr double far[] = {0.39894228,  0.01328592, 0.00225319,  -0.00157565, 0.00916281,
                                     -0.02057706, 0.02635537, -0.01647633, 0.00392377};
};
struct Fine {
    static constexpr double split = 4, reciprocal = 0.25;
    static constexpr double near[] = {0.9999999985, 4.0000001935, 3.9999959541, 1.777809969,
                                      0.4443189384, 0.0713758187, 0.0075942968, 0.0008267816};
    static constexpr double far[] = {0.3989422809,  0.0124667783,  0.0017623668,  0.00026,      0.0022585672,
                                     -0.0128314822, 0.0495811118,  -0.1209940805, 0.1895476618, -0.1867783276,
                                     0.1113315511,  -0.0366694767, 0.0051246015};
};

template <class Approximation, class V>
[[gnu::always_inline]] inline V bessel_near(V x) {
    const V t = x * Approximation::reciprocal;
    return polynomial<Grade::same_everywhere>(t * t, Approximation::near);
}

/// Of x with the root and its reciprocal.
template <class Approximation, class V>
[[gnu::always_inline]] inline V bessel_far(V x) {
    const V inverse_root = 1 / square_root(x), u = Approximation::split * (inverse_root * inverse_root);
    return exponential<Grade::same_everywhere>(x) *
           (polynomial<Grade::same_everywhere>(u, Approximation::far) * inverse_root);
}

/// I0 of x, from 0 on.
template <class Approximation, class V>
[[gnu::always_inline]] inline V bessel(V x) {
    const auto beyond = x >= Approximation::split;
    if (!any_lane(beyond)) return bessel_near<Approximation>(x);
    const V far = bessel_far<Approximation>(x);
    return any_lane(x < Approximation::split) ? (beyond ? far : bessel_near<Approximation>(x)) : far;
}

/// For doubles: polynomials in extended precision, whose roundings do not add up, and factors rounded to double.
template <std::size_t N>
long double extended_polynomial(long double x, const double (&coefficients)[N]) {
    long double sum = coefficients[N - 1];
    for (std::size_t i = N - 1; i-- > 0;) sum = sum * x + coefficients[i];
    return sum;
}

template <class Approximation>
long double extended_bessel(double x) {
    if (x < Approximation::split) {
        const long double t = x * static_cast<long double>(Approximation::reciprocal);
        return extended_polynomial(t * t, Approximation::near);
    }
    const auto p = static_cast<double>(
        extended_polynomial(Approximation::split / static_cast<long double>(x), Approximation::far));
    return static_cast<long double>(exponential<Grade::for_double>(x)) * p / std::sqrt(x);
}

template <class Numerator, class Denominator, class T>
KelStatus kaiser_window(const T* src, T* dst, int len, double alpha) {
    constexpr double limit = std::is_same_v<Part<T>, Kel32f> ? 38 : 308;
    const double m = len - 1;
    const long double steepest = std::fabs(static_cast<long double>(alpha)) * m * 0.5L;
    if (!(steepest <= limit)) return kelStatusKaiserTooHuge;
    const double size = std::fabs(alpha);
    const auto last = static_cast<double>(steepest);
    const auto root = [=](auto n) KELS_INLINE { return square_root(n * (m - n)); };
    if constexpr (std::is_same_v<T, Kel64f>) {
        const auto divisor = static_cast<double>(extended_bessel<Denominator>(last));
        const auto rule = [=](Index n) {
            const long double argument = static_cast<long double>(root(static_cast<double>(n))) * size;
            return extended_bessel<Numerator>(static_cast<double>(argument)) / divisor;
        };
        for (Index n = 0; n < len / 2; ++n) weigh_pair(src, dst, len, n, rule(n));
        if (len % 2 != 0) dst[len / 2] = src[len / 2];
    } else {
        const double scale = 1 / bessel<Denominator>(last);
        const auto weight = [=](auto n) KELS_INLINE { return bessel<Numerator>(root(n) * size) * scale; };
        weigh_from(src, dst, len, 0, filled_by(weight),
                   [=](Index n) { return static_cast<long double>(weight(static_cast<double>(n))); });
    }
    return kelStatusOk;
}

template <class Numerator, class Denominator, class T>
KelStatus kaiser_by(const T* src, T* dst, int len, Kel32f alpha) {
    return window_call(src, dst, len, 1,
                       [=] { return kaiser_window<Numerator, Denominator>(src, dst, len, settled(alpha)); });
}

template <class T>
KelStatus kaiser(const T* src, T* dst, int len, Kel32f alpha) {
    return kaiser_by<Coarse, Coarse>(src, dst, len, alpha);
}
template <class T>
KelStatus kaiser_q15(const T* src, T* dst, int len, int alpha) {
    return window_call(src, dst, len, 1,
                       [=] { return kaiser_window<Coarse, Coarse>(src, dst, len, settled(alpha) * 0x1p-15); });
}

// The two functions on doubles differ in which approximation they divide by which.
KelStatus kaiser(const Kel64f* src, Kel64f* dst, int len, Kel32f alpha) {
    return kaiser_by<Coarse, Fine>(src, dst, len, alpha);
}
KelStatus kaiser_in_place(Kel64f* dst, int len, Kel32f alpha) { return kaiser_by<Fine, Coarse>(dst, dst, len, alpha); }

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsWinBartlett_16s   (const Kel16s* a, Kel16s* d, int n)   { return bartlett(a, d, n); }
KelStatus kelsWinBartlett_16s_I (Kel16s* d, int n)                    { return bartlett(d, d, n); }
KelStatus kelsWinBartlett_16sc  (const Kel16sc* a, Kel16sc* d, int n) { return bartlett(a, d, n); }
KelStatus kelsWinBartlett_16sc_I(Kel16sc* d, int n)                   { return bartlett(d, d, n); }
KelStatus kelsWinBartlett_32f   (const Kel32f* a, Kel32f* d, int n)   { return bartlett(a, d, n); }
KelStatus kelsWinBartlett_32f_I (Kel32f* d, int n)                    { return bartlett(d, d, n); }
KelStatus kelsWinBartlett_32fc  (const Kel32fc* a, Kel32fc* d, int n) { return bartlett(a, d, n); }
KelStatus kelsWinBartlett_32fc_I(Kel32fc* d, int n)                   { return bartlett(d, d, n); }

KelStatus kelsWinHann_16s   (const Kel16s* a, Kel16s* d, int n)   { return hann(a, d, n); }
KelStatus kelsWinHann_16s_I (Kel16s* d, int n)                    { return hann(d, d, n); }
KelStatus kelsWinHann_16sc  (const Kel16sc* a, Kel16sc* d, int n) { return hann(a, d, n); }
KelStatus kelsWinHann_16sc_I(Kel16sc* d, int n)                   { return hann(d, d, n); }
KelStatus kelsWinHann_32f   (const Kel32f* a, Kel32f* d, int n)   { return hann(a, d, n); }
KelStatus kelsWinHann_32f_I (Kel32f* d, int n)                    { return hann(d, d, n); }
KelStatus kelsWinHann_32fc  (const Kel32fc* a, Kel32fc* d, int n) { return hann(a, d, n); }
KelStatus kelsWinHann_32fc_I(Kel32fc* d, int n)                   { return hann(d, d, n); }

KelStatus kelsWinHamming_16s   (const Kel16s* a, Kel16s* d, int n)   { return hamming(a, d, n); }
KelStatus kelsWinHamming_16s_I (Kel16s* d, int n)                    { return hamming(d, d, n); }
KelStatus kelsWinHamming_16sc  (const Kel16sc* a, Kel16sc* d, int n) { return hamming(a, d, n); }
KelStatus kelsWinHamming_16sc_I(Kel16sc* d, int n)                   { return hamming(d, d, n); }
KelStatus kelsWinHamming_32f   (const Kel32f* a, Kel32f* d, int n)   { return hamming(a, d, n); }
KelStatus kelsWinHamming_32f_I (Kel32f* d, int n)                    { return hamming(d, d, n); }
KelStatus kelsWinHamming_32fc  (const Kel32fc* a, Kel32fc* d, int n) { return hamming(a, d, n); }
KelStatus kelsWinHamming_32fc_I(Kel32fc* d, int n)                   { return hamming(d, d, n); }

KelStatus kelsWinBlackman_16s   (const Kel16s* a, Kel16s* d, int n, Kel32f alpha)   { return blackman(a, d, n, alpha); }
KelStatus kelsWinBlackman_16s_I (Kel16s* d, int n, Kel32f alpha)                    { return blackman(d, d, n, alpha); }
KelStatus kelsWinBlackman_16sc  (const Kel16sc* a, Kel16sc* d, int n, Kel32f alpha) { return blackman(a, d, n, alpha); }
KelStatus kelsWinBlackman_16sc_I(Kel16sc* d, int n, Kel32f alpha)                   { return blackman(d, d, n, alpha); }
KelStatus kelsWinBlackman_32f   (const Kel32f* a, Kel32f* d, int n, Kel32f alpha)   { return blackman(a, d, n, alpha); }
KelStatus kelsWinBlackman_32f_I (Kel32f* d, int n, Kel32f alpha)                    { return blackman(d, d, n, alpha); }
KelStatus kelsWinBlackman_32fc  (const Kel32fc* a, Kel32fc* d, int n, Kel32f alpha) { return blackman(a, d, n, alpha); }
KelStatus kelsWinBlackman_32fc_I(Kel32fc* d, int n, Kel32f alpha)                   { return blackman(d, d, n, alpha); }

KelStatus kelsWinBlackmanStd_16s   (const Kel16s* a, Kel16s* d, int n)   { return blackman_standard(a, d, n); }
KelStatus kelsWinBlackmanStd_16s_I (Kel16s* d, int n)                    { return blackman_standard(d, d, n); }
KelStatus kelsWinBlackmanStd_16sc  (const Kel16sc* a, Kel16sc* d, int n) { return blackman_standard(a, d, n); }
KelStatus kelsWinBlackmanStd_16sc_I(Kel16sc* d, int n)                   { return blackman_standard(d, d, n); }
KelStatus kelsWinBlackmanStd_32f   (const Kel32f* a, Kel32f* d, int n)   { return blackman_standard(a, d, n); }
KelStatus kelsWinBlackmanStd_32f_I (Kel32f* d, int n)                    { return blackman_standard(d, d, n); }
KelStatus kelsWinBlackmanStd_32fc  (const Kel32fc* a, Kel32fc* d, int n) { return blackman_standard(a, d, n); }
KelStatus kelsWinBlackmanStd_32fc_I(Kel32fc* d, int n)                   { return blackman_standard(d, d, n); }

KelStatus kelsWinBlackmanOpt_16s   (const Kel16s* a, Kel16s* d, int n)   { return blackman_optimal(a, d, n); }
KelStatus kelsWinBlackmanOpt_16s_I (Kel16s* d, int n)                    { return blackman_optimal(d, d, n); }
KelStatus kelsWinBlackmanOpt_16sc  (const Kel16sc* a, Kel16sc* d, int n) { return blackman_optimal(a, d, n); }
KelStatus kelsWinBlackmanOpt_16sc_I(Kel16sc* d, int n)                   { return blackman_optimal(d, d, n); }
KelStatus kelsWinBlackmanOpt_32f   (const Kel32f* a, Kel32f* d, int n)   { return blackman_optimal(a, d, n); }
KelStatus kelsWinBlackmanOpt_32f_I (Kel32f* d, int n)                    { return blackman_optimal(d, d, n); }
KelStatus kelsWinBlackmanOpt_32fc  (const Kel32fc* a, Kel32fc* d, int n) { return blackman_optimal(a, d, n); }
KelStatus kelsWinBlackmanOpt_32fc_I(Kel32fc* d, int n)                   { return blackman_optimal(d, d, n); }

KelStatus kelsWinBlackmanQ15_16s   (const Kel16s* a, Kel16s* d, int n, int alpha)   { return blackman_q15(a, d, n, alpha); }
KelStatus kelsWinBlackmanQ15_16s_I (Kel16s* d, int n, int alpha)                    { return blackman_q15(d, d, n, alpha); }
KelStatus kelsWinBlackmanQ15_16sc  (const Kel16sc* a, Kel16sc* d, int n, int alpha) { return blackman_q15(a, d, n, alpha); }
KelStatus kelsWinBlackmanQ15_16sc_I(Kel16sc* d, int n, int alpha)                   { return blackman_q15(d, d, n, alpha); }

KelStatus kelsWinKaiser_16s   (const Kel16s* a, Kel16s* d, int n, Kel32f alpha)   { return kaiser(a, d, n, alpha); }
KelStatus kelsWinKaiser_16s_I (Kel16s* d, int n, Kel32f alpha)                    { return kaiser(d, d, n, alpha); }
KelStatus kelsWinKaiser_16sc  (const Kel16sc* a, Kel16sc* d, int n, Kel32f alpha) { return kaiser(a, d, n, alpha); }
KelStatus kelsWinKaiser_16sc_I(Kel16sc* d, int n, Kel32f alpha)                   { return kaiser(d, d, n, alpha); }
KelStatus kelsWinKaiser_32f   (const Kel32f* a, Kel32f* d, int n, Kel32f alpha)   { return kaiser(a, d, n, alpha); }
KelStatus kelsWinKaiser_32f_I (Kel32f* d, int n, Kel32f alpha)                    { return kaiser(d, d, n, alpha); }
KelStatus kelsWinKaiser_32fc  (const Kel32fc* a, Kel32fc* d, int n, Kel32f alpha) { return kaiser(a, d, n, alpha); }
KelStatus kelsWinKaiser_32fc_I(Kel32fc* d, int n, Kel32f alpha)                   { return kaiser(d, d, n, alpha); }
KelStatus kelsWinKaiser_64f   (const Kel64f* a, Kel64f* d, int n, Kel32f alpha)   { return kaiser(a, d, n, alpha); }
KelStatus kelsWinKaiser_64f_I (Kel64f* d, int n, Kel32f alpha)                    { return kaiser_in_place(d, n, alpha); }

KelStatus kelsWinKaiserQ15_16s   (const Kel16s* a, Kel16s* d, int n, int alpha)   { return kaiser_q15(a, d, n, alpha); }
KelStatus kelsWinKaiserQ15_16s_I (Kel16s* d, int n, int alpha)                    { return kaiser_q15(d, d, n, alpha); }
KelStatus kelsWinKaiserQ15_16sc  (const Kel16sc* a, Kel16sc* d, int n, int alpha) { return kaiser_q15(a, d, n, alpha); }
KelStatus kelsWinKaiserQ15_16sc_I(Kel16sc* d, int n, int alpha)                   { return kaiser_q15(d, d, n, alpha); }
}
// clang-format on
