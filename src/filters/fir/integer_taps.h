// Integer taps and the power of two that they are counted in: reduced to 16 bits when a filter is made, and found for a
// caller who has real ones.
#pragma once

#include "frame/numeric.h"
#include "frame/simd.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <type_traits>

namespace kels {

/// By how much integer taps are shifted down: until the largest magnitude is at most 32766. Real taps never are.
template <class Taps>
int excess_bits(const Taps* taps, int tapsLen) {
    int shift = 0;
    if constexpr (std::is_integral_v<Part<Taps>>) {
        const auto* values = reals(taps);
        Kel32u most = 0;
        for (std::ptrdiff_t i = 0; i < std::ptrdiff_t{tapsLen} * parts<Taps>; ++i)
            most = std::max(most, values[i] < 0 ? 0 - static_cast<Kel32u>(values[i]) : static_cast<Kel32u>(values[i]));
        for (; most >= 32767; most /= 2) ++shift;
    }
    return shift;
}

template <class Taps>
Taps shifted_down(const Taps& tap, int shift) {
    if constexpr (std::is_integral_v<Taps>)
        return tap >> shift;
    else if constexpr (std::is_integral_v<Part<Taps>>)
        return {tap.re >> shift, tap.im >> shift};
    else
        return tap;
}

/// Integer taps times 2^factor, for real ones: the largest of them between 16383.5 and 32767, to nearest, ties away
/// from zero. What is no number, or infinite, becomes the lowest integer.
class TapsAsIntegers {
public:
    /// For `count` values.
    TapsAsIntegers(const Kel32f* taps, std::ptrdiff_t count) {
        Kel64f most = 0;
        for (std::ptrdiff_t i = 0; i < count; ++i)
            if (std::isfinite(taps[i])) most = std::max(most, std::fabs(Kel64f{taps[i]}));
        while (most > 32767) {
            most /= 2;
            scale /= 2;
            ++factor_;
        }
        while (most > 0 && 2 * most < 32767 && factor_ <= 0) {
            most *= 2;
            scale *= 2;
            --factor_;
        }
    }
    int factor() const { return factor_; }

    Kel32s operator()(Kel32f tap) const {
        const Kel64f scaled = tap * scale;
        return to_integer<true>(scaled + (scaled < 0 ? -0.5 : 0.5));
    }

private:
    Kel64f scale = 1;
    int factor_ = 0;
};

} // namespace kels
