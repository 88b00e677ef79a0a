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

#include "frame/two_doubles.h"

#include <array>
#include <cstddef>
#include <type_traits>
#include <utility>

namespace kels {

/// Roots in the read-only table of the whole circle.
inline constexpr int table_roots = 4096;

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

    /// exp(-2 pi i k / n) for k below n, rounded once.
    template <class T>
    [[gnu::always_inline]] void write(T* out, std::size_t k) const {
        const auto exponent = static_cast<double>(static_cast<std::ptrdiff_t>(k));
        const int octant = static_cast<int>(exponent * eighths_);
        double inside = exponent * 8 - octant * n_; // of n parts of the octant, exact as all but the angle is
        if (octant % 2) inside = n_ - inside;
        const int j = static_cast<int>(inside * steps_ + 0.5);
        const double rest = inside * (table_roots / 8) - j * n_;
        const TableRoot& entry = eighth_of_circle[static_cast<std::size_t>(j)];
        double c = entry.cosine, s = entry.sine;
        if (rest != 0) turn<std::is_same_v<T, double>>(c, s, entry, rest);
        if ((octant + 1) & 2) std::swap(c, s);
        out[0] = static_cast<T>((octant + 2) & 4 ? -c : c);
        out[1] = static_cast<T>(octant & 4 ? s : -s);
    }

private:
    double n_, eighths_, steps_;
    TwoDoubles angle_; // 2 pi / (4096 n)

    /// The entry turned by `parts` 4096ths of an n-th of the circle; with the rests if exact.
    template <bool exact>
    [[gnu::always_inline]] void turn(double& c, double& s, const TableRoot& entry, double parts) const {
        const double d = parts * angle_.high, square = d * d;
        const double less = square * (square * (1.0 / 24) - 0.5);    // cos d - 1
        double more = d * square * (square * (1.0 / 120) - 1.0 / 6); // sin d - d
        const double cosine = entry.cosine, sine = entry.sine;
        if constexpr (exact) {
            more += product_error(parts, angle_.high, d) + parts * angle_.low;
            const auto sum = [&](double a, double a_rest, double b, double b_rest) KELS_INLINE { // a cos d + b sin d
                const double product = b * d, high = a + product;
                const double low = sum_error(a, product, high) + product_error(b, d, product);
                return high + (low + (a_rest + b_rest * d + (a * less + b * more)));
            };
            c = sum(cosine, entry.cosine_rest, -sine, -entry.sine_rest);
            s = sum(sine, entry.sine_rest, cosine, entry.cosine_rest);
        } else {
            more += d;
            c = cosine + (cosine * less - sine * more);
            s = sine + (sine * less + cosine * more);
        }
    }
};

/// One root of unity exp(-2 pi i k / n), k below n, rounded once.
template <class T>
void write_root(T* out, std::size_t k, const Circle& circle) {
    circle.write(out, k);
}

/// Roots exp(-2 pi i exponent(lane) / n), exponents below n, as a vector of V real and one of V imaginary parts; gives
/// the place behind.
template <int V, class T, class F>
T* write_root_vectors(T* table, const Circle& circle, F exponent) {
    for (int lane = 0; lane < V; ++lane) {
        T root[2];
        circle.write(root, static_cast<std::size_t>(exponent(static_cast<std::size_t>(lane))));
        table[lane] = root[0];
        table[V + lane] = root[1];
    }
    return table + 2 * V;
}

} // namespace kels
