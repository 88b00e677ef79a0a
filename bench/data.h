// The arrays that contenders work on.
#pragma once

#include "kels.h"

#include <complex>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <random>
#include <type_traits>

namespace bench {

struct ReleaseAligned {
    void operator()(void* p) const { ::operator delete (p, std::align_val_t{64}); }
};

/// Aligned to a cache line, for every contender alike.
template <class T>
using Array = std::unique_ptr<T[], ReleaseAligned>;

template <class T>
Array<T> zeros(std::size_t n) {
    static_assert(std::is_trivially_copyable_v<T>);
    return Array<T>(new (::operator new (n * sizeof(T), std::align_val_t{64})) T[n]{});
}

/// What a record of samples is made of.
template <class T>
struct Part {
    using type = T;
};
template <class T>
requires requires(T z) { z.re; }
struct Part<T> {
    using type = decltype(T::re);
};
template <class T>
struct Part<std::complex<T>> {
    using type = T;
};

/// 2 in a complex type.
template <class T>
inline constexpr std::size_t parts = std::is_same_v<T, typename Part<T>::type> ? 1 : 2;

/// The same noise every time: from -1 to 1 in floating point, else of all values.
template <class T>
Array<T> noise(std::size_t n) {
    using Real = typename Part<T>::type;
    Array<T> array = zeros<T>(n);
    Real* values = reinterpret_cast<Real*>(array.get());
    std::mt19937 random(1);
    for (std::size_t i = 0; i < n * parts<T>; ++i)
        if constexpr (std::is_floating_point_v<Real>)
            values[i] = Real(random() / 2147483648.0 - 1);
        else
            values[i] = Real(random());
    return array;
}

} // namespace bench
