// What exact evaluation gives, in extended precision: the measure for arithmetic.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace kels_test {

/// The step from |x| to the next number.
template <class T>
long double ulp(T x) {
    x = std::fabs(x);
    return static_cast<long double>(std::nextafter(x, std::numeric_limits<T>::infinity())) - x;
}

template <class T>
bool is_quiet_nan(const T& x) {
    using Bits = std::conditional_t<sizeof(T) == 4, std::uint32_t, std::uint64_t>;
    return std::isnan(x) && ((std::bit_cast<Bits>(x) >> (std::numeric_limits<T>::digits - 2)) & 1);
}

template <class T>
bool same_bits(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0);
}

/// The integer R that is stored for an exact value: times 2^-factor, rounded to nearest, ties to even, saturated.
template <class R>
R scaled(long double exact, int factor = 0) {
    using Limits = std::numeric_limits<R>;
    constexpr int far = 300; // beyond it every factor gives the same
    const long double rounded = std::nearbyint(std::ldexp(exact, -std::clamp(factor, -far, far)));
    if (rounded <= Limits::min()) return Limits::min();
    return rounded >= Limits::max() ? Limits::max() : static_cast<R>(rounded);
}

/// a b + c d, the error of each product kept: right where the products cancel.
inline long double sum_of_products(long double a, long double b, long double c, long double d) {
    const long double p = a * b, q = c * d;
    const long double sum = p + q;
    if (!std::isfinite(sum)) return sum;
    const long double error = std::fma(a, b, -p) + std::fma(c, d, -q);
    return error == 0 ? sum : sum + error;
}

struct ExactComplex {
    long double re, im;
};

template <class Complex>
ExactComplex complex_product(Complex a, Complex b) {
    const long double ar = a.re, ai = a.im, br = b.re, bi = b.im;
    return {sum_of_products(ar, br, -ai, bi), sum_of_products(ar, bi, ai, br)};
}

} // namespace kels_test
