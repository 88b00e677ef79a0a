// Integer taps, which stand for themselves times 2^tapsFactor: divided by the leading coefficients, or found for real
// ones.
#pragma once

#include "filters/iir/rules.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace kels {

/// Runs f with the rule for taps of a factor under a scale.
template <class F>
void with_fixed_rule(int tapsFactor, int scaleFactor, const F& f) {
    const std::int64_t feedback = tapsFactor, input = feedback - scaleFactor;
    if (ShiftDown::serves(input) && ShiftDown::serves(feedback))
        f(FixedRule<ShiftDown>{ShiftDown(input), ShiftDown(feedback)});
    else
        f(FixedRule<ShiftAnyhow>{ShiftAnyhow(input), ShiftAnyhow(feedback)});
}

// Quotients in 64 bits, toward zero.

inline Word64 quotient(Word64 a, Word64 b) {
    const auto divisor = static_cast<std::int64_t>(b);
    if (divisor == -1) return 0 - a; // the lowest integer has no negative
    return static_cast<Word64>(static_cast<std::int64_t>(a) / divisor);
}
inline Complex<Word64> quotient(Complex<Word64> u, Complex<Word64> a) {
    const Word64 square = a.re * a.re + a.im * a.im;
    return {quotient(u.re * a.re + u.im * a.im, square), quotient(u.im * a.re - u.re * a.im, square)};
}

/// 1 as a tap, limited to 32 bits.
template <class Tap>
Tap unit_tap(int tapsFactor) {
    const Kel32s one = tapsFactor > 0     ? 0
                       : tapsFactor > -31 ? Kel32s{1} << -tapsFactor
                                          : std::numeric_limits<Kel32s>::max();
    return real_tap<Tap>(one);
}

/// Integer taps over a leading coefficient that is not zero.
template <class Tap>
struct TapsOver {
    using Value = Number<Word64, parts<Tap> == 2>;
    ShiftAnyhow up;
    Value leading;

    TapsOver(const Tap& tap, int tapsFactor) : up(-std::int64_t{tapsFactor}), leading(as_number<Word64>(tap)) {}
    Tap operator()(const Tap& tap) const {
        return as_tap<Tap>(limited(quotient(shifted(up, as_number<Word64>(tap)), leading)));
    }
};

// Both give false where a leading coefficient is zero. `put(i, tap)` takes the stored taps.

/// b[0] to b[order], then a[1] to a[order], each over a[0]; as they are if that is 1.
template <class Tap, class Put>
bool divide_polynomials(const Tap* taps, int order, int tapsFactor, const Put& put) {
    const std::ptrdiff_t n = order;
    const Tap& a0 = taps[n + 1];
    if (is_zero(a0)) return false;
    const TapsOver<Tap> over(a0, tapsFactor);
    const bool unit = is_same(a0, unit_tap<Tap>(tapsFactor));
    for (std::ptrdiff_t i = 0; i <= 2 * n + 1; ++i)
        if (i != n + 1) put(i <= n ? i : i - 1, unit ? taps[i] : over(taps[i]));
    return true;
}

/// The gain, then a1/a0, a2/a0, b1/b0, b2/b0 of each section.
template <class Tap, class Put>
bool divide_sections(const Tap* taps, int sections, int tapsFactor, const Put& put) {
    auto gain = shifted(ShiftAnyhow(-std::int64_t{tapsFactor}), as_number<Word64>(real_tap<Tap>(1)));
    for (std::ptrdiff_t s = 0; s < sections; ++s, taps += 6) {
        const Tap &b0 = taps[0], &a0 = taps[3];
        if (is_zero(a0) || is_zero(b0)) return false;
        const TapsOver<Tap> over_a(a0, tapsFactor), over_b(b0, tapsFactor);
        gain = quotient(product<false>(gain, over_b.leading), over_a.leading);
        put(4 * s + 1, over_a(taps[4]));
        put(4 * s + 2, over_a(taps[5]));
        put(4 * s + 3, over_b(taps[1]));
        put(4 * s + 4, over_b(taps[2]));
    }
    put(0, as_tap<Tap>(limited(gain)));
    return true;
}

/// Real values as integers times 2^factor, the largest from 2^30 to 2^31, to nearest, ties away from zero. What does
/// not fit is limited; what is no number, or infinite, becomes the lowest integer.
class ValuesAsIntegers {
public:
    ValuesAsIntegers(const Kel32f* values, std::ptrdiff_t count) {
        constexpr Kel64f top = 0x1p31;
        Kel64f most = 0;
        for (std::ptrdiff_t i = 0; i < count; ++i)
            if (std::isfinite(values[i])) most = std::max(most, std::fabs(Kel64f{values[i]}));
        if (most == 0) return;
        int up = 0;
        for (; most > top; most /= 2) --up;
        if (up == 0) {
            for (; most < top; most *= 2) ++up;
            --up;
        }
        scale = power_of_two<Kel64f>(up);
        factor_ = -up;
    }
    int factor() const { return factor_; }

    Kel32s operator()(Kel32f value) const {
        constexpr Kel64f most = std::numeric_limits<Kel32s>::max();
        const Kel64f scaled = value * scale;
        if (scaled > most && std::isfinite(scaled)) return std::numeric_limits<Kel32s>::max();
        return to_integer<true>(scaled + (scaled < 0 ? -0.5 : 0.5));
    }

private:
    Kel64f scale = 1;
    int factor_ = 0;
};

} // namespace kels
