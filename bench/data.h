// The arrays that contenders work on.
#pragma once

#include "kels.h"

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
template <>
struct Part<Kel16sc> {
    using type = Kel16s;
};
template <>
struct Part<Kel32sc> {
    using type = Kel32s;
};
template <>
struct Part<Kel64sc> {
    using type = Kel64s;
};
template <>
struct Part<Kel32fc> {
    using type = Kel32f;
};
template <>
struct Part<Kel64fc> {
    using type = Kel64f;
};

/// The same noise every time: from -1 to 1 in floating point, else of all values.
template <class T>
Array<T> noise(std::size_t n) {
    using Real = typename Part<T>::type;
    Array<T> array = zeros<T>(n);
    Real* values = reinterpret_cast<Real*>(array.get());
    std::mt19937 random(1);
    for (std::size_t i = 0; i < n * (sizeof(T) / sizeof(Real)); ++i)
        if constexpr (std::is_floating_point_v<Real>)
            values[i] = Real(random() / 2147483648.0 - 1);
        else
            values[i] = Real(random());
    return array;
}

} // namespace bench
