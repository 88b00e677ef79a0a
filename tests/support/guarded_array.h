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

/// Where the array touches the page, or is `offset` bytes away from it, it has none to spare; elsewhere it is as any
/// other.
template <class T>
class GuardedArray {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    GuardedArray(std::size_t n, Edge edge, std::size_t offset = 0) : memory(n * sizeof(T) + offset), count(n) {
        std::byte* const at = edge == Edge::back ? memory.end() - n * sizeof(T) - offset : memory.begin() + offset;
        first = reinterpret_cast<T*>(at);
    }
    GuardedArray(const std::vector<T>& values, Edge edge, std::size_t offset = 0)
        : GuardedArray(values.size(), edge, offset) {
        fill(values);
    }

    void fill(const std::vector<T>& values) { copy_bytes(values.data(), first, values.size()); }
    T* data() { return first; }
    const T* data() const { return first; }
    /// Copied as bytes: an offset may be odd.
    std::vector<T> values() const {
        std::vector<T> copy(count);
        copy_bytes(first, copy.data(), count);
        return copy;
    }

private:
    static void copy_bytes(const T* from, T* to, std::size_t n) {
        std::copy_n(reinterpret_cast<const std::byte*>(from), n * sizeof(T), reinterpret_cast<std::byte*>(to));
    }

    GuardedMemory memory;
    std::size_t count;
    T* first;
};

} // namespace kels_test
