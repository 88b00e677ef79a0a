// Numbers as the unevaluated sum of two doubles, for sums of doubles that keep the rounding errors of every step.
#pragma once

#include "frame/error_free.h"
#include "frame/simd.h"

#include <array>
#include <cmath>

namespace kels {

/// The low part is at most half a unit in the last place of the high one. Either is NaN where a step has overflowed.
struct TwoDoubles {
    double high = 0, low = 0;

    double rounded() const { return high + low; }
    /// Nothing has overflowed, nor will in a few steps more.
    bool in_range() const { return std::fabs(rounded()) <= 0x1p1000; }
};

/// The sum of two doubles of any size.
inline TwoDoubles two_doubles(double a, double b) {
    const double sum = a + b;
    return {sum, sum_error(a, b, sum)};
}

inline TwoDoubles operator-(TwoDoubles a) { return {-a.high, -a.low}; }

inline TwoDoubles operator+(TwoDoubles a, TwoDoubles b) {
    const TwoDoubles sum = two_doubles(a.high, b.high);
    return two_doubles(sum.high, sum.low + (a.low + b.low));
}

inline TwoDoubles operator-(TwoDoubles a, TwoDoubles b) { return a + -b; }

inline TwoDoubles operator*(TwoDoubles a, TwoDoubles b) {
    const double product = a.high * b.high;
    return two_doubles(product, product_error(a.high, b.high, product) + (a.high * b.low + a.low * b.high));
}

inline TwoDoubles operator/(TwoDoubles a, double b) {
    const double q = a.high / b, product = q * b;
    return two_doubles(q, (((a.high - product) - product_error(q, b, product)) + a.low) / b);
}

/// The root of a, rounded to one double.
inline double root(TwoDoubles a) {
    const double r = std::sqrt(a.rounded()), square = r * r;
    if (r == 0) return r;
    return r + (((a.high - square) - product_error(r, r, square)) + a.low) / (2 * r);
}

/// Adds terms to running sums, lane by lane, and the rounding errors to other sums.
template <class V>
[[gnu::always_inline]] inline void add_with_error(V& high, V& low, V terms) {
    const V sum = high + terms, of_terms = sum - high, of_high = subtract_by_fma(sum, of_terms);
    low += subtract_by_fma(high, of_high) + subtract_by_fma(terms, of_terms);
    high = sum;
}

/// Sums that keep the rounding errors of every step. Two halves of the terms are added to each other first, so that
/// half as many lanes hold the sums, and the way from one step to the next is half as long.
template <class Terms>
class LaneSums {
public:
    [[gnu::always_inline]] void add(Terms terms) { add(terms, Terms{}); }
    /// Terms of two doubles.
    [[gnu::always_inline]] void add(Terms terms, Terms errors) {
        Sums sum = half<0>(terms), error = half<0>(errors) + half<1>(errors);
        add_with_error(sum, error, half<1>(terms));
        add_with_error(high, low, sum);
        low += error;
    }
    [[gnu::always_inline]] void add_product(Terms a, Terms b) {
        const Terms product = a * b;
        add(product, product_error(a, b, product));
    }
    /// Sums of the lanes of one kind, which come by turns.
    template <int Kinds = 1>
    [[gnu::always_inline]] std::array<TwoDoubles, Kinds> totals() const {
        return fold<Kinds>(high, low);
    }

private:
    using Sums = Vec<double, lanes<Terms> / 2>;
    Sums high{}, low{};

    template <int Kinds, class V>
    [[gnu::always_inline]] static std::array<TwoDoubles, Kinds> fold(V high, V low) {
        if constexpr (lanes < V >> Kinds) {
            auto sum = half<0>(high), error = half<0>(low) + half<1>(low);
            add_with_error(sum, error, half<1>(high));
            return fold<Kinds>(sum, error);
        } else {
            double parts[2][Kinds];
            store(parts[0], high);
            store(parts[1], low);
            std::array<TwoDoubles, Kinds> sums;
            for (int kind = 0; kind < Kinds; ++kind) sums[kind] = two_doubles(parts[0][kind], parts[1][kind]);
            return sums;
        }
    }
};

} // namespace kels
