// Transforms by definition and by halving, in extended precision.
#pragma once

#include <cmath>
#include <complex>
#include <cstddef>
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

/// exp(2 pi i k / 2^20), evaluated once for all references.
inline const std::vector<Extended>& circle() {
    static const std::vector<Extended> roots = [] {
        constexpr std::size_t n = std::size_t{1} << 20;
        std::vector<Extended> all(n);
        for (std::size_t k = 0; k < n; ++k) all[k] = root_of_unity(1, k, n);
        return all;
    }();
    return roots;
}

/// The transform of any power of two up to 2^20, sign -1 forward: odd and even samples apart, joined by a butterfly.
inline std::vector<Extended> reference_transform(const std::vector<Extended>& x, int sign) {
    const std::size_t n = x.size();
    if (n <= 4) {
        std::vector<Extended> y(n);
        for (std::size_t k = 0; k < n; ++k)
            for (std::size_t i = 0; i < n; ++i) y[k] += x[i] * root_of_unity(sign, i * k, n);
        return y;
    }
    std::vector<Extended> even(n / 2), odd(n / 2), y(n);
    for (std::size_t i = 0; i < n / 2; ++i) {
        even[i] = x[2 * i];
        odd[i] = x[2 * i + 1];
    }
    even = reference_transform(even, sign);
    odd = reference_transform(odd, sign);
    const std::vector<Extended>& roots = circle();
    for (std::size_t k = 0; k < n / 2; ++k) {
        const Extended root = roots[k * (roots.size() / n)];
        const Extended turned = odd[k] * (sign < 0 ? std::conj(root) : root);
        y[k] = even[k] + turned;
        y[k + n / 2] = even[k] - turned;
    }
    return y;
}

} // namespace kels_test
