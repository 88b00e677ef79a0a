// Transforms of any length as a convolution with a chirp (L. I. Bluestein): with c[k] = exp(-pi i k^2 / N),
//
//   X[k] = c[k] sum over n of (x[n] c[n]) conj(c[k - n]),
//
// which is cyclic of any power of two L >= 2N - 1, through the FFT. The inverse transform exchanges real and imaginary
// parts on both ends.
#pragma once

#include "frame/tables.h"
#include "transforms/dft/ends.h"
#include "transforms/fft/functions.h"
#include "transforms/roots.h"

#include <memory>

namespace kels {

template <class T>
struct ChirpTransform {
    std::ptrdiff_t length = 0, convolution = 0; ///< N and L
    const T* chirp = nullptr;                   ///< c[k], for k below N
    const T* spectrum = nullptr;                ///< of conj(c), divided by L
    OwnedPlan<ComplexOf<T>> fft;
};

/// The order of L; may be too high for a plan.
constexpr int convolution_order(std::ptrdiff_t length) {
    int order = 0;
    while (std::int64_t{1} << order < 2 * std::int64_t{length} - 1) ++order;
    return order;
}

/// Lays the tables; the plan of the FFT is there.
template <class T>
void lay_chirp(ChirpTransform<T>& transform, TableSpace& space) {
    const std::ptrdiff_t n = transform.length, L = transform.convolution;
    T* chirp = space.take<T>(static_cast<std::size_t>(2 * n));
    T* spectrum = space.take<T>(static_cast<std::size_t>(2 * L));
    transform.chirp = chirp;
    transform.spectrum = spectrum;
    if (!spectrum) return;
    const Circle circle(static_cast<std::size_t>(2 * n));
    for (std::ptrdiff_t k = 0, square = 0; k < n; ++k) { // k^2 modulo 2N
        circle.write(chirp + 2 * k, static_cast<std::size_t>(square));
        square += 2 * k + 1;
        if (square >= 2 * n) square -= 2 * n;
    }
    std::fill(spectrum, spectrum + 2 * L, T(0));
    const T scale = 1 / static_cast<T>(L);
    for (std::ptrdiff_t k = 0; k < n; ++k)
        for (const std::ptrdiff_t at : {k, (L - k) % L}) {
            spectrum[2 * at] = scale * chirp[2 * k];
            spectrum[2 * at + 1] = -scale * chirp[2 * k + 1];
        }
    using Sample = ComplexOf<T>;
    auto* points = reinterpret_cast<Sample*>(spectrum);
    Spectral<Sample>::forward(points, points, transform.fft.get(), nullptr);
}

/// The transform of a source to a sink, which may be the same memory; `work` is room for L points.
template <class T, class Source, class Sink>
void run_chirp(const ChirpTransform<T>& transform, Source source, Sink sink, bool inverse, T factor, T* work) {
    const std::ptrdiff_t n = transform.length, L = transform.convolution;
    const T* chirp = transform.chirp;
    const auto exchanged = [=](auto z) KELS_INLINE { return inverse ? swapped(z) : z; };
    each_vector<T>(n, [&]<int P>(std::integral_constant<int, P>, std::ptrdiff_t i) KELS_INLINE {
        using V = PointVec<T, P>;
        const V z = exchanged(source.template read<V>(i));
        store(work + 2 * i, point_product(z, load<V>(chirp + 2 * i)));
    });
    std::fill(work + 2 * n, work + 2 * L, T(0));
    using Sample = ComplexOf<T>;
    auto* points = reinterpret_cast<Sample*>(work);
    Spectral<Sample>::forward(points, points, transform.fft.get(), nullptr);
    each_vector<T>(L, [&]<int P>(std::integral_constant<int, P>, std::ptrdiff_t i) KELS_INLINE {
        using V = PointVec<T, P>;
        store(work + 2 * i, point_product(load<V>(work + 2 * i), load<V>(transform.spectrum + 2 * i)));
    });
    Spectral<Sample>::inverse(points, points, transform.fft.get(), nullptr);
    each_vector<T>(n, [&]<int P>(std::integral_constant<int, P>, std::ptrdiff_t i) KELS_INLINE {
        using V = PointVec<T, P>;
        const V z = point_product(load<V>(work + 2 * i), load<V>(chirp + 2 * i)) * splat<V>(factor);
        sink.write(i, exchanged(z));
    });
}

} // namespace kels
