// Cosine and sine of a part of the circle, summed from their series by the compiler: the constants of butterflies and
// tables.
#pragma once

#include <numbers>

namespace kels {

struct CirclePoint {
    long double cosine, sine;
};

/// At 2 pi k / n. The angle is folded into the first eighth of the circle, so that symmetries are exact.
constexpr CirclePoint circle_point(long long k, long long n) {
    const long long octant = 8 * (k % n) / n, rest = 8 * (k % n) - octant * n;
    const long long inside = octant % 2 ? n - rest : rest;
    const long double angle =
        std::numbers::pi_v<long double> / 4 * static_cast<long double>(inside) / static_cast<long double>(n);
    long double terms[24] = {1}, sums[2] = {0, 0};
    for (int i = 1; i < 24; ++i) terms[i] = terms[i - 1] * angle / i;
    for (int i = 24; i-- > 0;) sums[i % 2] += i % 4 < 2 ? terms[i] : -terms[i]; // the small ones first
    const bool high = (octant + 1) & 2;
    const long double c = high ? sums[1] : sums[0], s = high ? sums[0] : sums[1];
    return {(octant + 2) & 4 ? -c : c, octant & 4 ? -s : s};
}

} // namespace kels
