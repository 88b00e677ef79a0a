// Points of the plane, from a complex vector or from an array for each part: lanes of them, in their natural order.
#pragma once

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/complex_vector.h"
#include "frame/numeric.h"
#include "frame/simd.h"

#include <cstdint>
#include <type_traits>

namespace kels {

/// T is the type of a part.
template <class T>
struct JoinedPoints {
    using Element = T;
    const T* parts;
    bool any_null() const { return !parts; }
};

template <class T>
struct SplitPoints {
    using Element = T;
    const T *re, *im;
    bool any_null() const { return !re || !im; }
};

template <class C>
JoinedPoints<Part<C>> points(const C* complex) {
    return {reals(complex)};
}
template <class T>
SplitPoints<T> points(const T* re, const T* im) {
    return {re, im};
}

/// Real and imaginary parts of points i, i + 1 ...; those of 16 bits as 32.
template <int Lanes, class T>
[[gnu::always_inline]] inline auto parts_at(SplitPoints<T> p, Index i) {
    using V = Vec<T, Lanes>;
    if constexpr (sizeof(T) == 2)
        return Complex<Vec<int, Lanes>>{convert<int>(load<V>(p.re + i)), convert<int>(load<V>(p.im + i))};
    else
        return Complex<V>{load<V>(p.re + i), load<V>(p.im + i)};
}
template <int Lanes, class T>
[[gnu::always_inline]] inline auto parts_at(JoinedPoints<T> p, Index i) {
    if constexpr (sizeof(T) == 2) {
        using V = Vec<int, Lanes>;
        const V pairs = load<V>(p.parts + 2 * i);
        return Complex<V>{(pairs << splat<V>(16)) >> splat<V>(16), pairs >> splat<V>(16)};
    } else if constexpr (Lanes == 1) {
        return Complex<T>{p.parts[2 * i], p.parts[2 * i + 1]};
    } else {
        using V = Vec<T, Lanes>;
        const V first = load<V>(p.parts + 2 * i), second = load<V>(p.parts + 2 * i + Lanes);
        return Complex<V>{shuffle<[](int lane) { return 2 * lane; }>(first, second),
                          shuffle<[](int lane) { return 2 * lane + 1; }>(first, second)};
    }
}

/// re^2 + im^2 of 16-bit points; 2^31 has wrapped.
template <int Lanes>
[[gnu::always_inline]] inline Vec<int, Lanes> squared_moduli_at(JoinedPoints<Kel16s> p, Index i) {
    const auto pairs = load<Vec<std::int16_t, 2 * Lanes>>(p.parts + 2 * i);
    return add_products(pairs, pairs);
}
template <int Lanes>
[[gnu::always_inline]] inline Vec<int, Lanes> squared_moduli_at(SplitPoints<Kel16s> p, Index i) {
    // A part beside a zero is a pair, too.
    const auto squares = [](const Kel16s* part) KELS_INLINE {
        const auto pairs =
            bits_as<Vec<std::int16_t, 2 * Lanes>>(convert<std::uint32_t>(load<Vec<std::uint16_t, Lanes>>(part)));
        return add_products(pairs, pairs);
    };
    using U = Vec<std::uint32_t, Lanes>;
    return (Vec<int, Lanes>)((U)squares(p.re + i) + (U)squares(p.im + i));
}

/// dst[i] = at(width, i), which gives lanes of results for points.
template <class Points, class R, class F>
[[gnu::always_inline]] inline void map_points(Points, R* dst, Index n, const F& at) {
    using W = std::conditional_t<sizeof(typename Points::Element) == 8, std::uint64_t, std::uint32_t>;
    each_block<W>(n, at, [=](auto, Index i, auto v) KELS_INLINE { store(dst + i, v); });
}

/// The frame of a call: the points' arrays, then the destination, then the length.
template <class Points, class R, class Kernel>
KelStatus points_call(Points p, R* dst, int len, Kernel kernel) {
    if (p.any_null()) [[unlikely]]
        return kelStatusNullPtr;
    return vector_call({dst}, len, kernel);
}

} // namespace kels
