// Roots of unity, the entries of every table.
#pragma once

#include <cmath>
#include <cstddef>
#include <numbers>

namespace kels {

/// One root of unity exp(-2 pi i k / n), rounded once. The angle is folded into the first octant, where sine and cosine
/// of extended precision lose nothing.
template <class T>
void write_root(T* out, std::size_t k, std::size_t n) {
    const std::size_t octant = 8 * (k % n) / n; // n is a power of two below 2^31
    long double numerator = static_cast<long double>(k % n);
    const long double quarter = static_cast<long double>(n) / 4;
    const int turns = static_cast<int>((octant + 1) / 2); // nearest multiple of a quarter turn
    numerator -= turns * quarter;
    const long double angle = 2 * std::numbers::pi_v<long double> * (numerator / static_cast<long double>(n));
    const long double c = std::cos(angle), s = -std::sin(angle);
    const long double re[4] = {c, s, -c, -s}, im[4] = {s, -c, -s, c};
    out[0] = static_cast<T>(re[turns % 4]);
    out[1] = static_cast<T>(im[turns % 4]);
}

/// Roots exp(-2 pi i exponent(lane) / n) as a vector of V real and one of V imaginary parts; gives the place behind.
template <int V, class T, class F>
T* write_root_vectors(T* table, std::size_t n, F exponent) {
    for (int lane = 0; lane < V; ++lane) {
        T root[2];
        write_root(root, static_cast<std::size_t>(exponent(static_cast<std::size_t>(lane))), n);
        table[lane] = root[0];
        table[V + lane] = root[1];
    }
    return table + 2 * V;
}

} // namespace kels
