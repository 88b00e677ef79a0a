// The transform along the lanes of vectors: the last digit of an in-cache transform, which lies in the lanes while the
// passes before go over whole vectors.
//
// A vector of V elements has P parts of 128 bits with G elements each. It is read so that lane w of part p holds point
// P w + p. A set of S vectors, of transforms j = 0 to S - 1, is transformed together:
//
//   the lower digit of j changes places with w, and butterflies over w, the upper digit of the point, give ka;
//   a turn by exp(-2 pi i p ka / V);
//   the upper digit of j and the lower one of ka change places with p, and butterflies over p give kb, the result being
//   number ka + G kb.
//
// What is left in the lanes are V / S pieces of S results that stand side by side in memory, one for every j. S is half
// as many as the lanes, so that an interleaved piece is one whole vector. A vector of four elements or less is
// transposed as a whole and has one piece.
#pragma once

#include "transforms/fft/butterflies.h"

#include <algorithm>
#include <array>

namespace kels {

template <class V>
struct LaneDigits {
    static constexpr int G = lanes<V> <= 4 ? lanes<V> : part<V>;
    static constexpr int P = lanes<V> / G;
    static constexpr int S = P == 1 ? lanes<V> : lanes<V> / 2;
};

/// The point of its V neighbouring ones that a lane holds. Where vectors are transposed as a whole, the order that is
/// cheapest to read serves: the points become registers, which can be named at will.
template <class V>
constexpr int lane_point(int lane) {
    using D = LaneDigits<V>;
    return D::P == 1 ? lane_order<V>(lane) : D::P * (lane % D::G) + lane / D::G;
}

/// The lane that holds result j of piece i, at i S + j.
template <class V>
constexpr int lane_of_result(int at) {
    int lane = at;
    if (LaneDigits<V>::P == 1)
        for (lane = 0; lane_order<V>(lane) != at;) ++lane;
    return lane;
}

/// cos(2 pi k / 32).
constexpr long double cosine_32(int k) {
    constexpr long double quarter[] = {1,
                                       0.98078528040323044913L,
                                       0.92387953251128675613L,
                                       0.83146961230254523708L,
                                       0.70710678118654752440L,
                                       0.55557023301960222474L,
                                       0.38268343236508977173L,
                                       0.19509032201612826785L,
                                       0};
    k %= 32;
    if (k > 16) k = 32 - k;
    return k <= 8 ? quarter[k] : -quarter[16 - k];
}

/// exp(-2 pi i p ka / V) for ka from 0 to G - 1: a vector of real and one of imaginary parts each.
template <class V>
inline constexpr auto lane_roots = [] {
    using D = LaneDigits<V>;
    std::array<std::array<Element<V>, 2 * lanes<V>>, D::G> roots{};
    for (int ka = 0; ka < D::G; ++ka)
        for (int lane = 0; lane < lanes<V>; ++lane) {
            const int k = 32 / lanes<V> * (lane / D::G) * ka;
            roots[ka][lane] = static_cast<Element<V>>(cosine_32(k));
            roots[ka][lanes<V> + lane] = static_cast<Element<V>>(cosine_32(k + 8)); // -sin
        }
    return roots;
}();

/// Exchanges a digit of the lanes with the digit of N registers: `exchange_reals` does it for real vectors.
template <int N, class V, class Exchange>
[[gnu::always_inline]] inline void exchange(Complex<V>* x, Exchange exchange_reals) {
    V re[N], im[N];
    unrolled<N>([&](auto i) KELS_INLINE {
        re[i] = x[i].re;
        im[i] = x[i].im;
    });
    exchange_reals(re);
    exchange_reals(im);
    unrolled<N>([&](auto i) KELS_INLINE { x[i] = {re[i], im[i]}; });
}

/// V vectors whose lanes are one digit.
template <class V>
[[gnu::always_inline]] inline void transform_whole(Complex<V>* x) {
    constexpr int N = lanes<V>;
    Complex<V> y[N];
    unrolled<N>([&](auto lane) KELS_INLINE { y[lane] = x[lane_order<V>(lane)]; });
    exchange<N>(y, [](auto& rows) KELS_INLINE { transpose<V>(rows); });
    unrolled<N>([&](auto lane) KELS_INLINE { x[lane_point<V>(lane)] = y[lane]; });
    butterfly<N>(x);
}

/// S vectors. Vector h P + kb of the result holds as piece i result number lane_result(h, kb) + i of the transforms.
template <int S, class V>
[[gnu::always_inline]] inline void lane_transform(Complex<V>* x) {
    constexpr int G = LaneDigits<V>::G, P = LaneDigits<V>::P;
    if constexpr (P == 1) {
        transform_whole(x);
    } else {
        constexpr int upper = S / G;
        Complex<V> y[S];
        unrolled<upper>([&](auto j) KELS_INLINE {
            Complex<V>* z = x + j * G;
            exchange<G>(z, [](auto& rows) KELS_INLINE { transpose_inside_parts<V>(rows); });
            butterfly<G>(z);
            unrolled<G>([&](auto ka) KELS_INLINE {
                const Element<V>* root = lane_roots<V>[ka].data();
                y[ka * upper + j] = ka == 0 ? z[ka] : z[ka] * Complex<V>{load<V>(root), load<V>(root + lanes<V>)};
            });
        });
        unrolled<S / P>([&](auto h) KELS_INLINE {
            Complex<V>* z = y + h * P;
            exchange<P>(z, [](auto& rows) KELS_INLINE { transpose_parts<V>(rows); });
            butterfly<P>(z);
            unrolled<P>([&](auto kb) KELS_INLINE { x[h * P + kb] = z[kb]; });
        });
    }
}

template <int S, class V>
constexpr int lane_result(int h, int kb) {
    return h * (lanes<V> / S) + LaneDigits<V>::G * kb;
}

} // namespace kels
