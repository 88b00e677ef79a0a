// Running estimates of level and power: y = y alpha + s (1 - alpha), one step a sample, in integers without rounding.

#include "frame/calling_frame.h"
#include "kels/search.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>

namespace kels {
namespace {

/// From here on an estimate runs away, whatever the samples, of at most 2^30, are: |y alpha + s (1 - alpha)| is at
/// least |alpha| (|y| - 3/2 2^30), and |alpha| is at least 2.
constexpr std::int64_t beyond_return = std::int64_t{1} << 33;

template <class Measure>
KelStatus update(const Kel16s* samples, int len, Kel32s* estimate, Kel16s alpha, const Measure& measure) {
    return vector_call({samples, estimate}, len, [=] {
        const std::int64_t keep = alpha, take = 1 - keep;
        std::int64_t y = *estimate;
        for (int i = 0; i < len; ++i) {
            y = y * keep + measure(samples[i]) * take;
            if (std::abs(y) <= beyond_return || std::abs(keep) < 2) continue;
            const bool turns_again = keep < 0 && (len - 1 - i) % 2 == 1;
            if (turns_again) y = -y;
            break;
        }
        *estimate = static_cast<Kel32s>(std::clamp<std::int64_t>(y, INT_MIN, INT_MAX));
    });
}

KelStatus update_linear(const Kel16s* samples, int len, Kel32s* estimate, int shift, Kel16s alpha) {
    shift = std::clamp(shift, 0, 15);
    return update(samples, len, estimate, alpha, [=](int x) { return std::int64_t{x >> shift}; });
}

KelStatus update_power(const Kel16s* samples, int len, Kel32s* estimate, int shift, Kel16s alpha) {
    shift = std::clamp(shift, 0, 31);
    return update(samples, len, estimate, alpha, [=](int x) { return std::int64_t{x * x >> shift}; });
}

} // namespace
} // namespace kels

// clang-format off
KelStatus kelsUpdateLinear_16s32s_I(const Kel16s* a, int n, Kel32s* y, int shift, Kel16s alpha) { return kels::update_linear(a, n, y, shift, alpha); }
KelStatus kelsUpdatePower_16s32s_I (const Kel16s* a, int n, Kel32s* y, int shift, Kel16s alpha) { return kels::update_power(a, n, y, shift, alpha); }
// clang-format on
