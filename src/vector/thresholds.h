// What the thresholds have in common.
#pragma once

#include "frame/calling_frame.h"
#include "frame/simd.h"
#include "kels/status.h"

#include <type_traits>
#include <utility>

namespace kels {

/// Which elements are replaced.
enum class Side { below, above };

/// The comparison that a mode selects.
constexpr Side side(int cmpMode) { return cmpMode == 4 ? Side::above : Side::below; }

/// Calls body with the side as a type.
template <class Body>
auto with_side(Side side, Body body) {
    return side == Side::below ? body(std::integral_constant<Side, Side::below>{})
                               : body(std::integral_constant<Side, Side::above>{});
}

/// Lanes on the side of the level; those of numbers with no order are below it.
template <Side S, class V>
[[gnu::always_inline]] inline auto beyond(V x, V level) {
    if constexpr (S == Side::above)
        return x > level;
    else if constexpr (std::is_integral_v<Element<V>>)
        return x < level;
    else
        return !(x >= level);
}

/// A call with a level that may not be negative.
template <class T, class Level, class Kernel>
KelStatus level_call(const T* src, T* dst, int len, Level level, Kernel&& kernel) {
    return vector_call({src, dst}, len, [&] {
        if (level < 0) return kelStatusNegThreshLevel;
        return run(std::forward<Kernel>(kernel));
    });
}

} // namespace kels
