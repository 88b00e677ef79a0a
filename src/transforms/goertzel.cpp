// The spectrum at single frequencies: sum of x[n] exp(i w (N - n)).
//
// The recursion of second order that gives the evaluation its name loses accuracy as the square of the length where w
// is small. Here the samples are dealt out to lanes, B of them, each of which sums its own by Horner's rule,
//
//     z[j] = z[j] exp(i w B) + x[B b + j],
//
// and in the end sample by sample's turn is caught up: sum of z[j] exp(i w (B - j)). The lanes hide the latency of a
// step, and their number is the same at every level. A length that is no multiple of B begins with zeros.
//
// Singles and integers are summed in double precision, without fused operations, so that every level gives the same
// bits; doubles as the sum of two. Where those leave their range, extended precision takes over.

#include "kels/goertzel.h"

#include "frame/calling_frame.h"
#include "frame/complex_vector.h"
#include "frame/math/harmonic.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "frame/two_doubles.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <limits>
#include <type_traits>
#include <utility>

namespace kels {
namespace {

constexpr int stretch = 16;
using V = Vec<Kel64f, stretch>;
using Extended = std::complex<long double>;

long double angle_of(long double freq) { return static_cast<long double>(6.283185307179586) * freq; }

/// What turns the lanes: every one by a stretch of samples, and in the end each by those that remain to it.
template <class Turn>
struct Turns {
    Turn by_stretch, by_remaining;
};

/// std::complex looks for infinities.
Extended product(Extended a, Extended b) {
    return {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
}

Extended turn(long double angle) {
    long double c, s;
    sincosl(angle, &s, &c);
    return {c, s};
}

// Sums of lanes

struct PlainSums {
    using Turn = SineCosine<V>;
    Complex<V> z{};

    /// A whole stretch remains to the first lane.
    static Turns<Turn> turns(long double angle, const Kel64f (&remaining)[stretch]) {
        const RoundedToNearest modes;
        const Turn each = Harmonic(settled(angle), 0).at<Grade::same_everywhere>(load<V>(remaining));
        const V sines = settled(each.sine), cosines = settled(each.cosine);
        return {{splat<V>(sines[0]), splat<V>(cosines[0])}, {sines, cosines}};
    }
    [[gnu::always_inline]] void turn_and_add(const Turn& by, Complex<V> x) {
        z = {(z.re * by.cosine - z.im * by.sine) + x.re, (z.re * by.sine + z.im * by.cosine) + x.im};
    }
    Complex<Kel64f> total() const { return {sum_of_lanes(z.re), sum_of_lanes(z.im)}; }
};

struct CompensatedSums {
    struct Turn {
        V c, s, c_low, s_low; ///< cosines and sines, and what these lack
    };
    Complex<V> high{}, low{};

    /// Those by powers of two are turns by an angle that is exact.
    static Turns<Turn> turns(long double angle, const Kel64f (&remaining)[stretch]) {
        Extended power[stretch + 1];
        for (int m = 1; m <= stretch; ++m) {
            const int low = m & -m;
            power[m] = low == m ? turn(angle * m) : product(power[m - low], power[low]);
        }
        return {lanes_of([&](int) { return power[stretch]; }),
                lanes_of([&](int lane) { return power[static_cast<int>(remaining[lane])]; })};
    }
    [[gnu::always_inline]] void turn_and_add(const Turn& by, Complex<V> x) {
        V re, im, re_low, im_low;
        step(by.c, by.c_low, -by.s, -by.s_low, x.re, re, re_low);
        step(by.s, by.s_low, by.c, by.c_low, x.im, im, im_low);
        high = {re, im};
        low = {re_low, im_low};
    }
    Complex<Kel64f> total() const { return {total(high.re, low.re), total(high.im, low.im)}; }

private:
    template <class F>
    static Turn lanes_of(const F& turn_of_lane) {
        Kel64f part[4][stretch];
        for (int lane = 0; lane < stretch; ++lane) {
            const Extended z = turn_of_lane(lane);
            part[0][lane] = static_cast<Kel64f>(z.real());
            part[1][lane] = static_cast<Kel64f>(z.imag());
            part[2][lane] = static_cast<Kel64f>(z.real() - part[0][lane]);
            part[3][lane] = static_cast<Kel64f>(z.imag() - part[1][lane]);
        }
        return {load<V>(part[0]), load<V>(part[1]), load<V>(part[2]), load<V>(part[3])};
    }
    /// high.re a + high.im b + x as the sum of two.
    [[gnu::always_inline]] void step(V a, V a_low, V b, V b_low, V x, V& result, V& result_low) const {
        const V p = high.re * a, q = high.im * b, pq = p + q, sum = pq + x;
        V rest = product_error(high.re, a, p) + product_error(high.im, b, q);
        rest += sum_error(p, q, pq) + sum_error(pq, x, sum);
        rest += fma(high.re, a_low, high.im * b_low) + fma(low.re, a, low.im * b);
        result = sum + rest;
        result_low = rest - (result - sum);
    }
    static Kel64f total(V terms, V errors) {
        LaneSums<V> sums;
        sums.add(terms, errors);
        return sums.totals()[0].rounded();
    }
};

/// Neither an overflow nor a loss to denormals on the way; silence has none.
bool in_range(Complex<Kel64f> sum) {
    const Kel64f size = std::max(std::fabs(sum.re), std::fabs(sum.im));
    return size == 0 ||
           (size > 0x1p-900 && size < std::numeric_limits<Kel64f>::infinity() && sum.re + sum.im == sum.re + sum.im);
}

Complex<Kel64f> sum_in_extended_precision(const Kel64fc* src, int len, Extended turn) {
    Extended z = 0;
    for (int i = 0; i < len; ++i) z = product(z + Extended(src[i].re, src[i].im), turn);
    return {static_cast<Kel64f>(z.real()), static_cast<Kel64f>(z.imag())};
}

// Evaluation

template <class Sample>
using Parts = Vec<Part<Sample>, stretch>;

template <class Sample>
[[gnu::always_inline]] inline Complex<V> read(const Sample* src) {
    const auto z = load_interleaved<Parts<Sample>>(reals(src));
    return {convert<Kel64f>(z.re), convert<Kel64f>(z.im)};
}

/// The frequencies share every sample that is read.
template <class Sums, int Count, class Sample, class Frequency>
void evaluate(const Sample* src, int len, const Frequency* freq, Complex<Kel64f>* results) {
    const ExtendedPrecision modes;
    const auto with = [&]<std::size_t... F>(std::index_sequence<F...>) KELS_INLINE {
        Kel64f remaining[stretch];
        for (int lane = 0; lane < stretch; ++lane) remaining[lane] = stretch - lane_order<Parts<Sample>>(lane);
        const Turns<typename Sums::Turn> turns[] = {Sums::turns(angle_of(freq[F]), remaining)...};
        Sums sums[Count];

        Sample first[stretch] = {};
        const std::ptrdiff_t ahead = len % stretch;
        std::copy_n(src, ahead, first + stretch - ahead);
        const Complex<V> x = read(first);
        (sums[F].turn_and_add(turns[F].by_stretch, x), ...);
        for (std::ptrdiff_t i = ahead; i < len; i += stretch) {
            const Complex<V> block = read(src + i);
            (sums[F].turn_and_add(turns[F].by_stretch, block), ...);
        }

        (sums[F].turn_and_add(turns[F].by_remaining, Complex<V>{}), ...);
        ((results[F] = sums[F].total()), ...);
        if constexpr (std::is_same_v<Sample, Kel64fc>)
            ((in_range(results[F]) ||
              (results[F] = sum_in_extended_precision(src, len, turn(angle_of(freq[F]))), true)),
             ...);
    };
    with(std::make_index_sequence<Count>{});
}

/// Calls store(i, result) for each frequency.
template <class Sums, int Count, class Sample, class Frequency, class Store>
KelStatus goertzel(const Sample* src, int len, Sample* val, const Frequency* freq, const Store& store) {
    return vector_call({src, val, freq}, len, [&] {
        for (int i = 0; i < Count; ++i)
            if (!(freq[i] >= 0 && freq[i] < 1)) return kelStatusBadRelFreq;
        const DefaultModes modes(std::is_integral_v<Part<Sample>>);
        Complex<Kel64f> results[Count];
        evaluate<Sums, Count>(src, len, freq, results);
        for (int i = 0; i < Count; ++i) val[i] = store(results[i]);
        return kelStatusOk;
    });
}

template <class Sample>
Sample rounded_once(Complex<Kel64f> z) {
    return {static_cast<Part<Sample>>(z.re), static_cast<Part<Sample>>(z.im)};
}

template <int Count, class Sample, class Frequency>
KelStatus goertzel(const Sample* src, int len, Sample* val, const Frequency* freq) {
    using Sums = std::conditional_t<std::is_same_v<Sample, Kel64fc>, CompensatedSums, PlainSums>;
    return goertzel<Sums, Count>(src, len, val, freq, rounded_once<Sample>);
}

/// Times 2^-factor, to nearest with ties away from zero, saturated.
Kel16s scaled(Kel64f value, int factor) {
    constexpr int far = 2000; // beyond it every factor gives the same
    const Kel64f rounded = std::round(std::ldexp(value, -std::clamp(factor, -far, far)));
    return static_cast<Kel16s>(
        std::clamp<Kel64f>(rounded, std::numeric_limits<Kel16s>::min(), std::numeric_limits<Kel16s>::max()));
}

KelStatus goertzel_scaled(const Kel16sc* src, int len, Kel16sc* val, Kel32f freq, int factor) {
    return goertzel<PlainSums, 1>(src, len, val, &freq, [=](Complex<Kel64f> z) -> Kel16sc {
        return {scaled(static_cast<Kel32f>(z.re), factor), scaled(static_cast<Kel32f>(z.im), factor)};
    });
}

KelStatus goertzel_two_scaled(const Kel16sc* src, int len, Kel16sc* val, const Kel32f* freq, int factor) {
    return goertzel<PlainSums, 2>(src, len, val, freq, [=](Complex<Kel64f> z) -> Kel16sc {
        return {scaled(z.re, factor), scaled(z.im, factor)};
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsGoertz_32fc    (const Kel32fc* src, int len, Kel32fc* val, Kel32f freq)                   { return goertzel<1>(src, len, val, &freq); }
KelStatus kelsGoertz_64fc    (const Kel64fc* src, int len, Kel64fc* val, Kel64f freq)                   { return goertzel<1>(src, len, val, &freq); }
KelStatus kelsGoertz_16sc_Sfs(const Kel16sc* src, int len, Kel16sc* val, Kel32f freq, int scaleFactor) { return goertzel_scaled(src, len, val, freq, scaleFactor); }

KelStatus kelsGoertzTwo_32fc    (const Kel32fc* src, int len, Kel32fc* val, const Kel32f* freq)                   { return goertzel<2>(src, len, val, freq); }
KelStatus kelsGoertzTwo_64fc    (const Kel64fc* src, int len, Kel64fc* val, const Kel64f* freq)                   { return goertzel<2>(src, len, val, freq); }
KelStatus kelsGoertzTwo_16sc_Sfs(const Kel16sc* src, int len, Kel16sc* val, const Kel32f* freq, int scaleFactor) { return goertzel_two_scaled(src, len, val, freq, scaleFactor); }
}
// clang-format on
