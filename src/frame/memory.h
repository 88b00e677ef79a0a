// Memory for contexts, tables and scratch. Everything the library allocates comes from kelsMalloc_8u, so that its
// alignment holds everywhere and a test can stand in for it.
#pragma once

#include "kels/services.h"

#include <climits>
#include <cstddef>
#include <cstdint>
#include <memory>

namespace kels {

/// Room for `count` elements, aligned to 32 bytes, not cleared; null when memory or the byte count runs out.
template <class T>
T* allocate(std::size_t count) {
    if (count > static_cast<std::size_t>(INT_MAX) / sizeof(T)) return nullptr;
    return reinterpret_cast<T*>(kelsMalloc_8u(static_cast<int>(count * sizeof(T))));
}

struct Release {
    void operator()(void* p) const { kelsFree(p); }
};

/// Owner of an array from `allocate`: what a failing creation leaves behind releases itself.
template <class T>
using Owned = std::unique_ptr<T[], Release>;

template <class T>
Owned<T> make_owned(std::size_t count) {
    return Owned<T>(allocate<T>(count));
}

/// The same for a times b elements, where the product may be too large for an int.
template <class T>
Owned<T> make_owned_product(std::int64_t a, std::int64_t b) {
    if (a > INT_MAX / b) return nullptr;
    return make_owned<T>(static_cast<std::size_t>(a * b));
}

} // namespace kels
