// Where a transform reads its points and writes its results: sources and sinks, which take any range of neighbouring
// indices as vectors of points. One of interleaved points has the address for passes to go to directly.
#pragma once

#include "transforms/dft/points.h"

namespace kels {

template <class T>
struct InterleavedSource {
    const T* data;

    template <class V>
    [[gnu::always_inline]] V read(std::ptrdiff_t i) const {
        return load<V>(data + 2 * i);
    }
};

template <class T>
struct InterleavedSink {
    T* data;

    template <class V>
    [[gnu::always_inline]] void write(std::ptrdiff_t i, V z) const {
        store(data + 2 * i, z);
    }
};

/// Two arrays.
template <class T>
struct SplitSource {
    const T *re, *im;

    template <class V>
    [[gnu::always_inline]] V read(std::ptrdiff_t i) const {
        using H = Vec<T, points_in<V>>;
        return joined_parts(load<H>(re + i), load<H>(im + i));
    }
};

template <class T>
struct SplitSink {
    T *re, *im;

    template <class V>
    [[gnu::always_inline]] void write(std::ptrdiff_t i, V z) const {
        store(re + i, real_parts(z));
        store(im + i, imaginary_parts(z));
    }
};

/// Real samples.
template <class T>
struct RealSource {
    const T* data;

    template <class V>
    [[gnu::always_inline]] V read(std::ptrdiff_t i) const {
        using H = Vec<T, points_in<V>>;
        return joined_parts(load<H>(data + i), H{});
    }
};

/// The real parts of the results, all that there is to the others being rounding.
template <class T>
struct RealSink {
    T* data;

    template <class V>
    [[gnu::always_inline]] void write(std::ptrdiff_t i, V z) const {
        store(data + i, real_parts(z));
    }
};

/// Half of a conjugate-symmetric sequence of odd length n: the real value 0 at `zeroth`, complex value k from 1 to
/// (n - 1) / 2 at bins + 2k.
template <class T>
struct HalfSource {
    const T *zeroth, *bins;
    std::ptrdiff_t n;

    template <class V>
    [[gnu::always_inline]] V read(std::ptrdiff_t i) const {
        constexpr int P = points_in<V>;
        if (i > 0 && i + P - 1 <= n / 2) return load<V>(bins + 2 * i);
        if (i > n / 2) return mirrored(load<V>(bins + 2 * (n - i - P + 1)));
        T z[2 * P];
        for (int p = 0; p < P; ++p) {
            const std::ptrdiff_t k = i + p;
            z[2 * p] = k == 0 ? *zeroth : k <= n / 2 ? bins[2 * k] : bins[2 * (n - k)];
            z[2 * p + 1] = k == 0 ? 0 : k <= n / 2 ? bins[2 * k + 1] : -bins[2 * (n - k) + 1];
        }
        return load<V>(z);
    }
};

template <class T>
struct HalfSink {
    T *zeroth, *bins;
    std::ptrdiff_t n;

    template <class V>
    [[gnu::always_inline]] void write(std::ptrdiff_t i, V z) const {
        constexpr int P = points_in<V>;
        if (i > n / 2) return;
        if (i > 0 && i + P - 1 <= n / 2) return store(bins + 2 * i, z);
        T parts[2 * P];
        store(parts, z);
        for (int p = 0; p < P && i + p <= n / 2; ++p) {
            T* at = i + p == 0 ? zeroth : bins + 2 * (i + p);
            at[0] = parts[2 * p];
            if (i + p > 0) at[1] = parts[2 * p + 1];
        }
    }
};

template <class>
inline constexpr bool interleaved = false;
template <class T>
inline constexpr bool interleaved<InterleavedSource<T>> = true;
template <class T>
inline constexpr bool interleaved<InterleavedSink<T>> = true;

/// Points to neighbouring indices of a sink.
template <class T, class Sink>
void copy_points(const T* points, std::ptrdiff_t count, Sink sink, std::ptrdiff_t first) {
    each_vector<T>(count, [&]<int P>(std::integral_constant<int, P>, std::ptrdiff_t i)
                              KELS_INLINE { sink.write(first + i, load<PointVec<T, P>>(points + 2 * i)); });
}

} // namespace kels
