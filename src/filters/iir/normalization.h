// Taps divided by the leading coefficients, in extended precision.
#pragma once

#include "filters/iir/numbers.h"

namespace kels {

using Extended = long double;

template <class Tap>
Number<Extended, parts<Tap> == 2> extended(const Tap& tap) {
    if constexpr (parts<Tap> == 2)
        return {tap.re, tap.im};
    else
        return tap;
}

inline Extended reciprocal(Extended x) { return 1 / x; }
inline Complex<Extended> reciprocal(Complex<Extended> z) {
    const Extended square = z.re * z.re + z.im * z.im;
    return {z.re / square, -z.im / square};
}

template <class Tap>
Tap rounded(Extended x) {
    return static_cast<Tap>(x);
}
template <class Tap>
Tap rounded(Complex<Extended> z) {
    return {static_cast<Part<Tap>>(z.re), static_cast<Part<Tap>>(z.im)};
}

// Both give false where a leading coefficient is zero. `put(i, tap)` takes the stored taps.

/// b[0] to b[order], then a[1] to a[order], each over a[0].
template <class Tap, class Put>
bool normalize_polynomials(const Tap* taps, int order, const Put& put) {
    const std::ptrdiff_t n = order;
    const Tap* const a = taps + n + 1;
    if (is_zero(a[0])) return false;
    const auto inverse = reciprocal(extended(a[0]));
    for (std::ptrdiff_t i = 0; i <= n; ++i) put(i, rounded<Tap>(extended(taps[i]) * inverse));
    for (std::ptrdiff_t i = 1; i <= n; ++i) put(n + i, rounded<Tap>(extended(a[i]) * inverse));
    return true;
}

/// The gain, then a1/a0, a2/a0, b1/b0, b2/b0 of each section.
template <class Tap, class Put>
bool normalize_sections(const Tap* taps, int sections, const Put& put) {
    auto gain = extended(real_tap<Tap>(1));
    for (std::ptrdiff_t s = 0; s < sections; ++s, taps += 6) {
        const Tap &b0 = taps[0], &a0 = taps[3];
        if (is_zero(a0) || is_zero(b0)) return false;
        const auto of_a = reciprocal(extended(a0)), of_b = reciprocal(extended(b0));
        gain = gain * extended(b0) * of_a;
        put(4 * s + 1, rounded<Tap>(extended(taps[4]) * of_a));
        put(4 * s + 2, rounded<Tap>(extended(taps[5]) * of_a));
        put(4 * s + 3, rounded<Tap>(extended(taps[1]) * of_b));
        put(4 * s + 4, rounded<Tap>(extended(taps[2]) * of_b));
    }
    put(0, rounded<Tap>(gain));
    return true;
}

} // namespace kels
