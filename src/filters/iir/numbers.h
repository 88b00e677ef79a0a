// The numbers that recursions are made of: reals or complex numbers, one or a lane each, doubles or integers.
#pragma once

#include "frame/complex_vector.h"
#include "frame/memory.h"
#include "frame/numeric.h"
#include "frame/simd.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <type_traits>

namespace kels {

template <class V, bool complex>
using Number = std::conditional_t<complex, Complex<V>, V>;

/// c + a b and c - a b, in one rounding if `Fused` and the level has it.
template <bool Fused, class V>
[[gnu::always_inline]] inline V plus_product(V c, V a, V b) {
    return Fused ? fma(a, b, c) : c + a * b;
}
template <bool Fused, class V>
[[gnu::always_inline]] inline V minus_product(V c, V a, V b) {
    return Fused ? fma(-a, b, c) : c - a * b;
}
template <bool Fused, class V>
[[gnu::always_inline]] inline Complex<V> plus_product(Complex<V> c, Complex<V> a, Complex<V> b) {
    return {minus_product<Fused>(plus_product<Fused>(c.re, a.re, b.re), a.im, b.im),
            plus_product<Fused>(plus_product<Fused>(c.im, a.re, b.im), a.im, b.re)};
}
template <bool Fused, class V>
[[gnu::always_inline]] inline Complex<V> minus_product(Complex<V> c, Complex<V> a, Complex<V> b) {
    return {plus_product<Fused>(minus_product<Fused>(c.re, a.re, b.re), a.im, b.im),
            minus_product<Fused>(minus_product<Fused>(c.im, a.re, b.im), a.im, b.re)};
}

template <bool Fused, class V>
[[gnu::always_inline]] inline V product(V a, V b) {
    return a * b;
}
template <bool Fused, class V>
[[gnu::always_inline]] inline Complex<V> product(Complex<V> a, Complex<V> b) {
    return {minus_product<Fused>(a.re * b.re, a.im, b.im), plus_product<Fused>(a.re * b.im, a.im, b.re)};
}

/// The same number in every lane, and the number in the first one.
template <class V>
[[gnu::always_inline]] inline V all_lanes(Element<V> x) {
    return splat<V>(x);
}
template <class V>
[[gnu::always_inline]] inline Complex<V> all_lanes(Complex<Element<V>> z) {
    return {splat<V>(z.re), splat<V>(z.im)};
}
template <class V>
[[gnu::always_inline]] inline auto first_number(V v) {
    if constexpr (lanes<V> == 1)
        return v;
    else
        return v[0];
}
template <class V>
[[gnu::always_inline]] inline auto first_number(Complex<V> z) {
    return Complex<Element<V>>{first_number(z.re), first_number(z.im)};
}

/// The number of one lane in all of them.
template <int Lane, class V>
[[gnu::always_inline]] inline V spread(V v) {
    return shuffle<[](int) { return Lane; }>(v, v);
}
template <int Lane, class V>
[[gnu::always_inline]] inline Complex<V> spread(Complex<V> z) {
    return {spread<Lane>(z.re), spread<Lane>(z.im)};
}

/// One vector out of two, part by part.
template <class V, class F>
[[gnu::always_inline]] inline V by_parts(V a, V b, const F& f) {
    return f(a, b);
}
template <class V, class F>
[[gnu::always_inline]] inline Complex<V> by_parts(Complex<V> a, Complex<V> b, const F& f) {
    return {f(a.re, b.re), f(a.im, b.im)};
}

/// Numbers of a stream, parts side by side.
template <bool complex, class E>
[[gnu::always_inline]] inline Number<E, complex> sample_at(const E* x, std::ptrdiff_t i) {
    if constexpr (complex)
        return {x[2 * i], x[2 * i + 1]};
    else
        return x[i];
}
template <class E>
[[gnu::always_inline]] inline void put_sample(E* y, std::ptrdiff_t i, E z) {
    y[i] = z;
}
template <class E>
[[gnu::always_inline]] inline void put_sample(E* y, std::ptrdiff_t i, Complex<E> z) {
    y[2 * i] = z.re;
    y[2 * i + 1] = z.im;
}

/// Numbers in a table: the real parts side by side, and `size` behind them the imaginary ones.
template <class E, bool complex>
struct Plane {
    E* first = nullptr;
    std::ptrdiff_t size = 0;

    template <class V = E>
    [[gnu::always_inline]] Number<V, complex> get(std::ptrdiff_t i) const {
        if constexpr (complex)
            return {load<V>(first + i), load<V>(first + size + i)};
        else
            return load<V>(first + i);
    }
    template <class V>
    [[gnu::always_inline]] void put(std::ptrdiff_t i, V z) const {
        store(first + i, z);
    }
    template <class V>
    [[gnu::always_inline]] void put(std::ptrdiff_t i, Complex<V> z) const {
        store(first + i, z.re);
        store(first + size + i, z.im);
    }
};

/// Lays planes out in memory that is made for them, all zero; false for want of it.
template <class E, bool complex>
bool lay_out(Owned<E>& memory, std::int64_t size, std::initializer_list<Plane<E, complex>*> planes) {
    constexpr int reals = complex ? 2 : 1;
    memory = make_owned_product<E>(size, static_cast<std::int64_t>(planes.size()) * reals);
    if (!memory) return false;
    E* free = memory.get();
    for (Plane<E, complex>* plane : planes) {
        *plane = {free, static_cast<std::ptrdiff_t>(size)};
        free += size * reals;
    }
    std::fill(memory.get(), free, E{0});
    return true;
}

/// A real number as a tap.
template <class Tap>
Tap real_tap(Part<Tap> value) {
    Tap tap{};
    *reals(&tap) = value;
    return tap;
}

template <class Tap>
bool is_zero(const Tap& tap) {
    if constexpr (parts<Tap> == 2)
        return tap.re == 0 && tap.im == 0;
    else
        return tap == 0;
}

template <class Tap>
bool is_same(const Tap& a, const Tap& b) {
    if constexpr (parts<Tap> == 2)
        return a.re == b.re && a.im == b.im;
    else
        return a == b;
}

/// A tap or a stored state as a number of elements E, and back.
template <class E, class Tap>
Number<E, parts<Tap> == 2> as_number(const Tap& tap) {
    if constexpr (parts<Tap> == 2)
        return {static_cast<E>(tap.re), static_cast<E>(tap.im)};
    else
        return static_cast<E>(tap);
}
template <class Tap, class E>
Tap as_tap(E value) {
    return static_cast<Tap>(value);
}
template <class Tap, class E>
Tap as_tap(const Complex<E>& value) {
    return {static_cast<Part<Tap>>(value.re), static_cast<Part<Tap>>(value.im)};
}

} // namespace kels
