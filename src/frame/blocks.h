// Element-wise operations in blocks of one vector. No length has a scalar remainder: the last block ends with the array
// and may overlap the one before.
#pragma once

#include "frame/numeric.h"
#include "frame/simd.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <type_traits>

namespace kels {

using Index = std::ptrdiff_t;

template <int Lanes>
using Width = std::integral_constant<int, Lanes>;

/// Calls body with the widest vector that n words fill: a narrower one than the level's, by steps down to `Least`
/// words, only where the whole array is shorter than one.
template <class W, int Least = 1, int Step = 2, int Lanes = max_lanes<W>, class Body>
[[gnu::always_inline]] inline void in_widest(Index n, const Body& body) {
    if (n >= Lanes)
        body(Width<Lanes>{});
    else if constexpr (Lanes > Least)
        in_widest<W, Least, Step, std::max(Lanes / Step, Least)>(n, body);
}

/// Covers words 0 to n - 1 with blocks, write(width, i, read(width, i)). The last block ends at n and may overlap the
/// one before: it is read first and written last, so that an operation exactly in place stays right.
template <class W, int Least = 1, class Read, class Write>
[[gnu::always_inline]] inline void each_block(Index n, const Read& read, const Write& write) {
    in_widest<W, Least, 4, std::max(max_lanes<W>, Least)>(n, [&](auto width) KELS_INLINE {
        const auto last = read(width, n - width);
        for (Index i = 0; i < n - width; i += width) write(width, i, read(width, i));
        write(width, n - width, last);
    });
}

/// A constant operand: one value for every element, or two by turns for the parts of complex samples.
template <class T, int Period>
struct Constant {
    T value[Period];
};

template <class T>
Constant<Part<T>, parts<T>> constant(T val) {
    return std::bit_cast<Constant<Part<T>, parts<T>>>(val);
}

template <class Operand>
struct OperandTraits;
template <class T>
struct OperandTraits<const T*> {
    using Element = T;
    static constexpr int period = 1;
};
template <class T, int Period>
struct OperandTraits<Constant<T, Period>> {
    using Element = T;
    static constexpr int period = Period;
};

template <class Operand>
using OperandElement = typename OperandTraits<Operand>::Element;

/// Elements i, i + 1, ... of an operand.
template <int Lanes, class T>
[[gnu::always_inline]] inline Vec<T, Lanes> block(const T* p, Index i) {
    return load<Vec<T, Lanes>>(p + i);
}

template <int Lanes, class T>
[[gnu::always_inline]] inline Vec<T, Lanes> block(const Constant<T, 1>& c, Index) {
    return splat<Vec<T, Lanes>>(c.value[0]);
}

template <int Lanes, class T>
[[gnu::always_inline]] inline Vec<T, Lanes> block(const Constant<T, 2>& c, Index) {
    return alternate<Vec<T, Lanes>>(c.value[0], c.value[1]);
}

/// dst[i] = f(operands[i]...): f maps lanes of the operands' elements to lanes of R. `Together` lanes are never parted.
template <int Together = 1, class R, class F, class... Operands>
[[gnu::always_inline]] inline void map_blocks(R* dst, Index n, const F& f, const Operands&... operands) {
    constexpr std::size_t narrowest = std::min({sizeof(R), sizeof(OperandElement<Operands>)...});
    constexpr int least = std::max({Together, OperandTraits<Operands>::period...});
    each_block<typename WordOf<narrowest>::type, least>(
        n, [&](auto width, Index i) KELS_INLINE { return f(block<width>(operands, i)...); },
        [=](auto, Index i, auto v) KELS_INLINE { store(dst + i, v); });
}

} // namespace kels
