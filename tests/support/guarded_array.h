// An array that ends at an unmapped page, or begins behind one.
#pragma once

#include "support/guarded_memory.h"

#include <algorithm>
#include <initializer_list>
#include <span>
#include <type_traits>
#include <vector>

namespace kels_test {

enum class Edge { front, back };
inline constexpr std::initializer_list<Edge> edges = {Edge::front, Edge::back};

/// Where the array touches the page, it has none to spare; elsewhere it is as any other.
template <class T>
class GuardedArray {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    GuardedArray(std::size_t n, Edge edge) : memory(n * sizeof(T)), count(n) {
        first = reinterpret_cast<T*>(edge == Edge::back ? memory.end() - n * sizeof(T) : memory.begin());
    }
    GuardedArray(const std::vector<T>& values, Edge edge) : GuardedArray(values.size(), edge) {
        std::copy(values.begin(), values.end(), first);
    }

    T* data() { return first; }
    const T* data() const { return first; }
    std::vector<T> values() const { return {first, first + count}; }

private:
    GuardedMemory memory;
    std::size_t count;
    T* first;
};

} // namespace kels_test
