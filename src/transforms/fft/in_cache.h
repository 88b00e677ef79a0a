// Transforms that fit the cache: kernels and tables by order.
#pragma once

#include "transforms/fft/plan.h"

namespace kels {

/// Orders up to this one run in the cache with their scratch on the stack: 64 KiB, and a row.
template <class T>
inline constexpr int top_in_cache_order = sizeof(T) == 4 ? 13 : 12;

template <class Layout, class T>
FftKernel<T> in_cache_kernel(int order);

/// The tables that the kernels of both directions read at the plan's complex order.
template <class Layout, class Inverse, class T>
void lay_in_cache(FftPlan<T>& plan, TableSpace& space);

} // namespace kels
