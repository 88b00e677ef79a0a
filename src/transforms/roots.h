// Roots of unity, the entries of every table.
//
// exp(-2 pi i k / n) is the root of 4096 nearest to it, turned by what is left. The roots of 4096 lie in read-only
// data, an eighth of the circle as sums of two doubles; symmetry gives the others, so that mirrored exponents have the
// same bits. What is left is less than 2 pi / 8192 in magnitude: a few terms of the series give its sine and cosine,
// and the product is formed in two doubles too. So a double is within 0.51 units in the last place, and a single is
// rounded as if once but for one in millions.
//
// The arithmetic is that of the SIMD unit: the x87 words have no part in it, and whoever lays tables sets the modes
// (frame/tables.h).
#pragma once

#include "frame/complex_vector.h"
#include "frame/two_doubles.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace kels {

/// Roots in the read-only table of the whole circle, and how many are made at a time.
inline constexpr int table_roots = 4096, root_lanes = std::max(4, max_lanes<double>);

/// Cosine and sine of 2 pi j / 4096 as sums of two doubles.
struct TableRoot {
    double cosine, sine, cosine_rest, sine_rest;
};

/// For j from 0 to an eighth of the circle.
extern const std::array<TableRoot, table_roots / 8 + 1> eighth_of_circle;

/// The circle divided into n equal parts, n below 2^31.
class Circle {
public:
    // Implicit, so that a count stands where one root is wanted.
    Circle(std::size_t n) : n_(static_cast<double>(n)), eighths_(8 / n_), steps_(table_roots / 8 / n_) {
        const double two_pi = 6.283185307179586477, two_pi_rest = 2.4492935982947064e-16;
        const double parts = n_ * table_roots;
        angle_.high = two_pi / parts;
        const double product = angle_.high * parts;
        angle_.low = ((two_pi - product) - product_error(angle_.high, parts, product) + two_pi_rest) / parts;
    }

    /// Exponents of roots that are made together, below n (or 2 n, where nobody keeps the root), and the roots as real
    /// and as imaginary parts.
    using Exponents = Vec<int, root_lanes>;
    static Exponents progression(std::size_t first, std::size_t step) {
        return [=]<int... lane>(std::integer_sequence<int, lane...>) KELS_INLINE {
            return splat<Exponents>(static_cast<int>(first)) +
                   splat<Exponents>(static_cast<int>(step)) * Exponents{lane...};
        }
        (std::make_integer_sequence<int, root_lanes>{});
    }
    template <class T>
    struct Roots {
        Vec<T, root_lanes> re, im;
    };
    template <class T>
    [[gnu::always_inline]] Roots<T> roots(Exponents k) const {
        const Lanes exponent = convert<double>(k);
        const Exponents octants = convert<int>(exponent * splat<Lanes>(eighths_));
        const Whole octant = convert<std::int64_t>(octants);
        // Of n parts of the octant, exact as all but the angle is.
        const Lanes ahead = exponent * splat<Lanes>(8) - convert<double>(octants) * splat<Lanes>(n_);
        const Lanes inside = (octant & 1) != 0 ? splat<Lanes>(n_) - ahead : ahead;
        const Exponents j = convert<int>(inside * splat<Lanes>(steps_) + splat<Lanes>(0.5));
        const Lanes rest = inside * splat<Lanes>(table_roots / 8) - convert<double>(j) * splat<Lanes>(n_);
        const Turned z = turned<std::is_same_v<T, double>>(j, rest);
        const auto steep = ((octant + 1) & 2) != 0;
        const Lanes c = steep ? z.sine : z.cosine, s = steep ? z.cosine : z.sine;
        return {convert<T>(((octant + 2) & 4) != 0 ? -c : c), convert<T>((octant & 4) != 0 ? s : -s)};
    }

    /// Writes exp(-2 pi i (first + i step) / n) for every i below `count`, each rounded once.
    template <class T>
    void write(T* out, std::size_t count, std::size_t first, std::size_t step) const {
        if (count < root_lanes) {
            for (std::size_t i = 0; i < count; ++i) write(out + 2 * i, first + i * step);
            return;
        }
        for (std::size_t i = 0; i < count; i += root_lanes) {
            const std::size_t at = std::min(i, count - root_lanes); // the last ones reach back
            const Roots<T> z = roots<T>(progression(first + at * step, step));
            store(out + 2 * at, zip(z.re, z.im));
        }
    }

    /// Writes all n roots, n a power of two from 8 on: those of an eighth of the circle, and turned and mirrored, with
    /// the bits that they have by themselves, the others.
    template <class T>
    void write_all(T* out) const {
        using V = Vec<T, max_lanes<T>>;
        constexpr int pairs = lanes<V> / 2;
        const auto n = static_cast<std::ptrdiff_t>(n_), eighth = n / 8;
        if (eighth < pairs) return write(out, static_cast<std::size_t>(n), 0, 1);
        for (std::ptrdiff_t k = 0; k <= eighth; k += root_lanes)
            write(out + 2 * k, root_lanes, static_cast<std::size_t>(k), 1);
        for (std::ptrdiff_t k = 0; k < eighth; k += pairs) {
            const V z = load<V>(out + 2 * k), next = load<V>(out + 2 * (k + 1));
            const V right = negated_every_other<1>(swapped(z)), next_right = negated_every_other<1>(swapped(next));
            const auto write_from = [&](std::ptrdiff_t quarter, V w) KELS_INLINE { store(out + 2 * (quarter + k), w); };
            const auto write_below = [&](std::ptrdiff_t quarter, V w)
                                         KELS_INLINE { store(out + 2 * (quarter - k - pairs), mirrored(w)); };
            write_below(n / 4, -next_right);
            write_from(n / 4, right);
            write_below(n / 2, -next);
            write_from(n / 2, -z);
            write_below(3 * n / 4, next_right);
            write_from(3 * n / 4, -right);
            write_below(n, next);
        }
    }

    /// exp(-2 pi i k / n).
    template <class T>
    void write(T* out, std::size_t k) const {
        const Roots<T> z = roots<T>(progression(k, 0));
        out[0] = z.re[0];
        out[1] = z.im[0];
    }

private:
    double n_, eighths_, steps_;
    TwoDoubles angle_; // 2 pi / (4096 n)

    using Lanes = Vec<double, root_lanes>;
    using Whole = Vec<std::int64_t, root_lanes>;
    struct Turned {
        Lanes cosine, sine;
    };

    /// Entries j turned by `parts` 4096ths of an n-th of the circle; with the rests if exact.
    template <bool exact>
    [[gnu::always_inline]] Turned turned(Exponents j, Lanes parts) const {
        using Entry = Vec<double, 4>;
        Entry entries[root_lanes / 4][4]; // turned from a root in each to cosines, sines and their rests
        unrolled<root_lanes>([&](auto i) KELS_INLINE {
            entries[i / 4][i % 4] = load<Entry>(&eighth_of_circle[static_cast<std::size_t>(j[int{i}])]);
        });
        Lanes part[4];
        unrolled<root_lanes / 4>([&](auto i) KELS_INLINE { transpose<Entry>(entries[i]); });
        unrolled<4>([&](auto i) KELS_INLINE {
            if constexpr (root_lanes == 4)
                part[i] = entries[0][i];
            else
                part[i] = both(entries[0][i], entries[1][i]);
        });
        const auto& [cosine, sine, cosine_rest, sine_rest] = part;
        const Lanes angle = splat<Lanes>(angle_.high), d = parts * angle, square = d * d;
        const Lanes less = square * (square * splat<Lanes>(1.0 / 24) - splat<Lanes>(0.5));    // cos d - 1
        Lanes more = d * square * (square * splat<Lanes>(1.0 / 120) - splat<Lanes>(1.0 / 6)); // sin d - d
        if constexpr (exact) {
            more += product_error(parts, angle, d) + parts * splat<Lanes>(angle_.low);
            const auto sum = [&](Lanes a, Lanes a_rest, Lanes b, Lanes b_rest) KELS_INLINE { // a cos d + b sin d
                const Lanes product = b * d, high = a + product;
                const Lanes low = sum_error(a, product, high) + product_error(b, d, product);
                return high + (low + (a_rest + b_rest * d + (a * less + b * more)));
            };
            return {sum(cosine, cosine_rest, -sine, -sine_rest), sum(sine, sine_rest, cosine, cosine_rest)};
        } else {
            more += d;
            return {cosine + (cosine * less - sine * more), sine + (sine * less + cosine * more)};
        }
    }
};

/// Roots exp(-2 pi i exponent(lane) / n), exponents below n, as a vector of V real and one of V imaginary parts; gives
/// the place behind.
template <int V, class T, class F>
T* write_root_vectors(T* table, const Circle& circle, F exponent) {
    constexpr int group = std::min(V, root_lanes);
    for (int lane = 0; lane < V; lane += group) {
        alignas(64) int exponents[root_lanes] = {};
        for (int i = 0; i < group; ++i) exponents[i] = static_cast<int>(exponent(static_cast<std::size_t>(lane + i)));
        const auto z = circle.roots<T>(load<Circle::Exponents>(exponents));
        store(table + lane, slice<group, 0>(z.re));
        store(table + V + lane, slice<group, 0>(z.im));
    }
    return table + 2 * V;
}

} // namespace kels
