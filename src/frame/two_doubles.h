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

/// a / b, rounded to one double.
inline double quotient(TwoDoubles a, double b) {
    const double q = a.high / b, product = q * b;
    return q + (((a.high - product) - product_error(q, b, product)) + a.low) / b;
}

/// The root of a, rounded to one double.
inline double root(TwoDoubles a) {
    const double r = std::sqrt(a.rounded()), square = r * r;
    if (r == 0) return r;
    return r + (((a.high - square) - product_error(r, r, square)) + a.low) / (2 * r);
}

/// A running sum in every lane.
template <class V>
struct LaneSums {
    V high{}, low{};

    [[gnu::always_inline]] void add(V term) {
        const V sum = high + term;
        low += sum_error(high, term, sum);
        high = sum;
    }
    [[gnu::always_inline]] void add(V term, V error) {
        add(term);
        low += error;
    }
    /// Adds products with their rounding errors.
    [[gnu::always_inline]] void add_product(V a, V b) {
        const V product = a * b;
        add(product, product_error(a, b, product));
    }
    /// Sums of the lanes of one kind, which come by turns.
    template <int Kinds>
    [[gnu::always_inline]] std::array<TwoDoubles, Kinds> totals() const {
        if constexpr (lanes < V >> Kinds) {
            LaneSums<Vec<double, lanes<V> / 2>> halves{half<0>(high), half<0>(low)};
            halves.add(half<1>(high), half<1>(low));
            return halves.template totals<Kinds>();
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
