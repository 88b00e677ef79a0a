// How a transform meets the caller's data: interleaved complex numbers or two arrays.
//
// The inverse transform is the forward one with real and imaginary parts exchanged on both ends: an interleaved layout
// exchanges them in registers, two arrays are passed in the other order.
#pragma once

#include "frame/complex_vector.h"

#include <cstdint>
#include <type_traits>

namespace kels {

/// Complex data of the caller, at any address: interleaved from `re` on, or in two arrays.
template <class T>
struct Points {
    T *re, *im;

    operator Points<const T>() const requires(!std::is_const_v<T>) { return {re, im}; }
    Points exchanged() const { return {im, re}; }
};

/// Interleaved data as points; null stays null.
template <class T>
Points<T> interleaved_points(T* p) {
    return {p, p};
}

// A layout says, for vectors V: `order(lane)`, the number of the point that a lane holds after `read`; `read` from the
// i-th point on; and `write`. `Forward` is the layout of what lies between two sweeps of one transform, and `width` the
// values of one array that a point takes.

template <bool inverse>
struct Interleaved {
    using Forward = Interleaved<false>;
    static constexpr int width = 2;

    template <class V>
    struct Of {
        using T = Element<V>;

        static constexpr int order(int lane) { return lane_order<V>(lane); }
        [[gnu::always_inline]] static Complex<V> read(Points<const T> p, std::ptrdiff_t i) {
            const Complex<V> z = load_interleaved<V>(p.re + 2 * i);
            return inverse ? Complex<V>{z.im, z.re} : z;
        }
        [[gnu::always_inline]] static void write(Points<T> p, std::ptrdiff_t i, Complex<V> z) {
            store_interleaved<V>(p.re + 2 * i, inverse ? Complex<V>{z.im, z.re} : z);
        }
    };
};

struct Split {
    using Forward = Split;
    static constexpr int width = 1;

    template <class V>
    struct Of {
        using T = Element<V>;

        static constexpr int order(int lane) { return lane; }
        [[gnu::always_inline]] static Complex<V> read(Points<const T> p, std::ptrdiff_t i) {
            return {load<V>(p.re + i), load<V>(p.im + i)};
        }
        [[gnu::always_inline]] static void write(Points<T> p, std::ptrdiff_t i, Complex<V> z) {
            store<V>(p.re + i, z.re);
            store<V>(p.im + i, z.im);
        }
    };
};

} // namespace kels
