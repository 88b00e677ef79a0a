// Integer powers of e as sums of two doubles, for integer results that are right to the last of 64 bits.
#pragma once

#include "frame/two_doubles.h"

#include <cmath>
#include <cstdint>

namespace kels {

/// e^k for k from `first` on.
class PowersOfE {
public:
    static constexpr int first = -64, last = 127;

    double high[last - first + 1]{}, low[last - first + 1]{};

    constexpr PowersOfE() {
        const Pair e = {0x1.5bf0a8b145769p+1, 0x1.4d57ee2b1013ap-53},
                   inverse = {0x1.78b56362cef38p-2, -0x1.ca8a4270fadf5p-57};
        Pair power = {1, 0};
        for (int k = 0; k <= last; ++k, power = product(power, e)) set(k, power);
        power = inverse;
        for (int k = -1; k >= first; --k, power = product(power, inverse)) set(k, power);
    }

private:
    struct Pair {
        double high, low;
    };

    constexpr void set(int k, Pair power) {
        high[k - first] = power.high;
        low[k - first] = power.low;
    }

    static constexpr double upper_half(double a) {
        const double shifted = a * 134217729; // 2^27 + 1
        return shifted - (shifted - a);
    }
    /// By halves of the factors (T. J. Dekker): nothing fuses when the compiler computes.
    static constexpr Pair product(Pair a, Pair b) {
        const double p = a.high * b.high, ah = upper_half(a.high), bh = upper_half(b.high);
        const double al = a.high - ah, bl = b.high - bh;
        const double error = al * bl - (((p - ah * bh) - al * bh) - ah * bl);
        const double rest = error + (a.high * b.low + a.low * b.high), sum = p + rest;
        return {sum, (p - sum) + rest};
    }
};

inline constexpr PowersOfE powers_of_e;

/// A number of any size: value 2^exponent.
struct ScaledTwoDoubles {
    TwoDoubles value;
    std::int64_t exponent;
};

inline ScaledTwoDoubles operator*(ScaledTwoDoubles a, ScaledTwoDoubles b) {
    const TwoDoubles product = a.value * b.value;
    int e = 0;
    std::frexp(product.high, &e);
    return {{std::ldexp(product.high, -e), std::ldexp(product.low, -e)}, a.exponent + b.exponent + e};
}

/// e^k, by squaring.
inline ScaledTwoDoubles power_of_e(std::int64_t k) {
    const int base = k < 0 ? -1 : 1;
    ScaledTwoDoubles power = {{1, 0}, 0};
    ScaledTwoDoubles square = {{powers_of_e.high[base - PowersOfE::first], powers_of_e.low[base - PowersOfE::first]},
                               0};
    for (std::uint64_t bits = static_cast<std::uint64_t>(k < 0 ? -k : k); bits != 0; bits >>= 1) {
        if (bits & 1) power = power * square;
        square = square * square;
    }
    return power;
}

} // namespace kels
