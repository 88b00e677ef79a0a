// Transforms by definition and by halving, in extended precision.
#pragma once

#include "support/random_data.h"

#include <bit>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <vector>

namespace kels_test {

using Extended = std::complex<long double>;

/// exp(sign 2 pi i k / n).
inline Extended root_of_unity(int sign, std::size_t k, std::size_t n) {
    const long double angle =
        2 * std::numbers::pi_v<long double> * static_cast<long double>(k % n) / static_cast<long double>(n);
    return {std::cos(angle), sign * std::sin(angle)};
}

/// exp(sign 2 pi i k / n) for all k.
inline std::vector<Extended> roots_of_unity(int sign, std::size_t n) {
    std::vector<Extended> all(n);
    for (std::size_t k = 0; k < n; ++k) all[k] = root_of_unity(sign, k, n);
    return all;
}

/// The transform of any power of two up to 2^20, sign -1 forward: odd and even samples apart, joined by a butterfly.
inline std::vector<Extended> reference_transform(const std::vector<Extended>& x, int sign) {
    static const std::vector<Extended> circle = roots_of_unity(1, std::size_t{1} << 20);
    const std::size_t n = x.size();
    if (n == 1) return x;
    std::vector<Extended> even(n / 2), odd(n / 2), y(n);
    for (std::size_t i = 0; i < n / 2; ++i) {
        even[i] = x[2 * i];
        odd[i] = x[2 * i + 1];
    }
    even = reference_transform(even, sign);
    odd = reference_transform(odd, sign);
    for (std::size_t k = 0; k < n / 2; ++k) {
        const Extended root = circle[k * (circle.size() / n)];
        const Extended turned = odd[k] * (sign < 0 ? std::conj(root) : root);
        y[k] = even[k] + turned;
        y[k + n / 2] = even[k] - turned;
    }
    return y;
}

/// Results that are known: all of a power of two and of short transforms, some of long ones.
struct Known {
    std::vector<std::size_t> at;
    std::vector<Extended> values;

    /// value(k) for up to 400 of n results.
    template <class Value>
    static Known some_of(std::size_t n, const Value& value) {
        constexpr std::size_t most = 400;
        Random random("bins");
        Known known;
        for (std::size_t i = 0; i < std::min(n, most); ++i) {
            known.at.push_back(n <= most ? i : random.bits() % n);
            known.values.push_back(value(known.at.back()));
        }
        return known;
    }

    /// Relative RMS error of got(k), the known values times scale.
    template <class Got>
    double error(long double scale, const Got& got) const {
        long double error = 0, level = 0;
        for (std::size_t i = 0; i < at.size(); ++i) {
            error += std::norm(static_cast<Extended>(got(at[i])) - values[i] * scale);
            level += std::norm(values[i] * scale);
        }
        return static_cast<double>(std::sqrt(error / level));
    }
};

inline Known fourier_transform(const std::vector<Extended>& x, int sign) {
    const std::size_t n = x.size();
    if (std::has_single_bit(n)) {
        Known all = {{}, reference_transform(x, sign)};
        for (std::size_t k = 0; k < n; ++k) all.at.push_back(k);
        return all;
    }
    const std::vector<Extended> roots = roots_of_unity(sign, n);
    return Known::some_of(n, [&](std::size_t k) {
        Extended sum = 0;
        for (std::size_t j = 0, at = 0; j < n; ++j, at = (at + k) % n) sum += x[j] * roots[at];
        return sum;
    });
}

template <class T>
Known cosine_transform(const std::vector<T>& x, bool inverse) {
    const std::size_t n = x.size();
    const std::vector<Extended> roots = roots_of_unity(1, 4 * n);
    const long double dc = 1 / std::sqrt(static_cast<long double>(n)), ac = std::sqrt(2 / static_cast<long double>(n));
    return Known::some_of(n, [&](std::size_t at) {
        long double sum = 0;
        for (std::size_t j = 0; j < n; ++j) {
            const std::uint64_t k = inverse ? j : at, sample = inverse ? at : j; // their product may pass 32 bits
            sum += (k == 0 ? dc : ac) * x[j] * roots[(2 * sample + 1) * k % (4 * n)].real();
        }
        return sum;
    });
}

} // namespace kels_test
