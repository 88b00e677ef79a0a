// How a transform meets the caller's data: interleaved complex numbers or two arrays.
//
// The inverse transform is the forward one with real and imaginary parts exchanged on both ends: an interleaved layout
// exchanges them in registers, two arrays are passed in the other order.
#pragma once

#include "frame/complex_vector.h"
#include "transforms/fft/lanes.h"

#include <cstdint>
#include <type_traits>
#include <utility>

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
// i-th point on; and `write`. `keep` and `kept` are for what lies in the caller's array between two sweeps: the same
// lanes in the room of the same points, but with no shuffles. `read_across` leaves the points in the order of
// `lane_point` for a transposition in two steps, and `write_across` takes them in their own. `Forward` is the layout
// without an exchange, and `width` the values of one array that a point takes.

template <bool inverse>
struct Interleaved {
    using Forward = Interleaved<false>;
    static constexpr bool is_inverse = inverse;
    static constexpr int width = 2;

    /// As they are: what works on vectors of pairs has an inverse of its own.
    template <class V>
    struct PairsOf {
        using T = Element<V>;
        /// The points from the i-th on, at addresses that the compiler takes as they are.
        template <class E>
        [[gnu::always_inline]] static Points<E> opaque(Points<E> p, std::ptrdiff_t i) {
            return interleaved_points(opaque_address(p.re + 2 * i));
        }
        [[gnu::always_inline]] static V read(Points<const T> p, std::ptrdiff_t i) { return load<V>(p.re + 2 * i); }
        [[gnu::always_inline]] static void write(Points<T> p, std::ptrdiff_t i, V z) { store(p.re + 2 * i, z); }
    };

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
        [[gnu::always_inline]] static Complex<V> kept(Points<const T> p, std::ptrdiff_t i) {
            return {load<V>(p.re + 2 * i), load<V>(p.re + 2 * i + lanes<V>)};
        }
        [[gnu::always_inline]] static void keep(Points<T> p, std::ptrdiff_t i, Complex<V> z) {
            store<V>(p.re + 2 * i, z.re);
            store<V>(p.re + 2 * i + lanes<V>, z.im);
        }
        [[gnu::always_inline]] static Complex<V> read_across(Points<const T> p, std::ptrdiff_t i) {
            const V lo = load<V>(p.re + 2 * i), hi = load<V>(p.re + 2 * i + lanes<V>);
            const V even = shuffle<[](int lane) { return 2 * lane_point<V>(lane); }>(lo, hi);
            const V odd = shuffle<[](int lane) { return 2 * lane_point<V>(lane) + 1; }>(lo, hi);
            return inverse ? Complex<V>{odd, even} : Complex<V>{even, odd};
        }
        template <int S>
        [[gnu::always_inline]] static void write_pieces(Points<T> p, std::ptrdiff_t i, std::ptrdiff_t spacing,
                                                        Complex<V> z) {
            // Two halves of a piece, or two pieces, or twice two, which come side by side when they are that short.
            const V re = inverse ? z.im : z.re, im = inverse ? z.re : z.im;
            store(p.re + 2 * i, shuffle<joined<0>>(re, im));
            store(p.re + 2 * i + (2 * S == lanes<V> ? 2 * spacing : lanes<V>), shuffle<joined<1>>(re, im));
        }

    private:
        /// Real and imaginary parts by turns, of one half of the results.
        template <int half>
        static constexpr auto joined =
            [](int lane) { return lane % 2 * lanes<V> + lane_of_result<V>(half * lanes<V> / 2 + lane / 2); };
    };
};

struct Split {
    using Forward = Split;
    static constexpr bool is_inverse = false;
    static constexpr int width = 1;

    /// Numbers from both arrays joined to pairs.
    template <class V>
    struct PairsOf {
        using T = Element<V>;
        using H = Vec<T, lanes<V> / 2>;
        template <class E>
        [[gnu::always_inline]] static Points<E> opaque(Points<E> p, std::ptrdiff_t i) {
            return {opaque_address(p.re + i), opaque_address(p.im + i)};
        }
        [[gnu::always_inline]] static V read(Points<const T> p, std::ptrdiff_t i) {
            const V v = both(load<H>(p.re + i), load<H>(p.im + i));
            return shuffle<[](int lane) { return lane % 2 * (lanes<V> / 2) + lane / 2; }>(v, v);
        }
        [[gnu::always_inline]] static void write(Points<T> p, std::ptrdiff_t i, V z) {
            const V v = shuffle<[](int lane) { return 2 * lane % lanes<V> + 2 * lane / lanes<V>; }>(z, z);
            store(p.re + i, half<0>(v));
            store(p.im + i, half<1>(v));
        }
    };

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
        [[gnu::always_inline]] static Complex<V> kept(Points<const T> p, std::ptrdiff_t i) { return read(p, i); }
        [[gnu::always_inline]] static void keep(Points<T> p, std::ptrdiff_t i, Complex<V> z) { write(p, i, z); }
        [[gnu::always_inline]] static Complex<V> read_across(Points<const T> p, std::ptrdiff_t i) {
            const Complex<V> z = read(p, i);
            return {shuffle<[](int lane) { return lane_point<V>(lane); }>(z.re, z.re),
                    shuffle<[](int lane) { return lane_point<V>(lane); }>(z.im, z.im)};
        }
        template <int S>
        [[gnu::always_inline]] static void write_pieces(Points<T> p, std::ptrdiff_t i, std::ptrdiff_t spacing,
                                                        Complex<V> z) {
            const V re = shuffle<lane_of_result<V>>(z.re, z.re), im = shuffle<lane_of_result<V>>(z.im, z.im);
            unrolled<lanes<V> / S>([&](auto piece) KELS_INLINE {
                store(p.re + i + piece * spacing, slice<S, piece>(re));
                store(p.im + i + piece * spacing, slice<S, piece>(im));
            });
        }
    };
};

} // namespace kels
