// How a transform meets the caller's data: interleaved or in two arrays, forward or inverse, scaled or not.
//
// The inverse transform is the forward one with real and imaginary parts exchanged on both ends.
#pragma once

#include "frame/complex_vector.h"

namespace kels {

/// How a transform meets its data.
struct Mode {
    bool inverse; ///< conjugate root
    bool scaled;  ///< multiply the results by the plan's factor
};

/// Complex data of the caller, at any address: interleaved from `re` on, or in two arrays.
template <class T>
struct Points {
    T *re, *im;

    operator Points<const T>() const requires(!std::is_const_v<T>) { return {re, im}; }
};

/// Interleaved data as points; null stays null.
template <class T>
Points<T> interleaved_points(T* p) {
    return {p, p};
}

/// Layouts of the caller's data. `order(lane)` is the number of the point that a lane holds after `read`.
template <Mode mode, class V>
struct Interleaved {
    using T = Element<V>;

    static constexpr int order(int lane) { return lane_order<V>(lane); }
    [[gnu::always_inline]] static Complex<V> read(Points<const T> p, std::ptrdiff_t i) {
        const Complex<V> z = load_interleaved<V>(p.re + 2 * i);
        return mode.inverse ? Complex<V>{z.im, z.re} : z;
    }
    [[gnu::always_inline]] static void write(Points<T> p, std::ptrdiff_t i, Complex<V> z, T factor) {
        if constexpr (mode.scaled) z = {z.re * splat<V>(factor), z.im * splat<V>(factor)};
        store_interleaved<V>(p.re + 2 * i, mode.inverse ? Complex<V>{z.im, z.re} : z);
    }
};

template <Mode mode, class V>
struct Split {
    using T = Element<V>;

    static constexpr int order(int lane) { return lane; }
    [[gnu::always_inline]] static Complex<V> read(Points<const T> p, std::ptrdiff_t i) {
        const V re = load<V>(p.re + i), im = load<V>(p.im + i);
        return mode.inverse ? Complex<V>{im, re} : Complex<V>{re, im};
    }
    [[gnu::always_inline]] static void write(Points<T> p, std::ptrdiff_t i, Complex<V> z, T factor) {
        if constexpr (mode.scaled) z = {z.re * splat<V>(factor), z.im * splat<V>(factor)};
        store<V>(p.re + i, mode.inverse ? z.im : z.re);
        store<V>(p.im + i, mode.inverse ? z.re : z.im);
    }
};

} // namespace kels
