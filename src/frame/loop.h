// The element-wise loop: one body per index, every index independent of the others.
#pragma once

#include <cstddef>

namespace kels {

/// Calls body(i) for i from 0 to len - 1. The iterations are independent: an element is read before it is
/// written, and no body touches what another one writes. Stated so, an exactly in-place call vectorises too.
template <class Body>
inline void each(int len, Body body) {
    const std::ptrdiff_t n = len;
#if defined(__clang__)
#pragma clang loop vectorize(assume_safety)
#else
#pragma GCC ivdep
#endif
    for (std::ptrdiff_t i = 0; i < n; ++i) body(i);
}

} // namespace kels
