// Transforms that fit the cache: kernels and tables by order.
#pragma once

#include "transforms/fft_plan.h"

namespace kels {

/// Orders up to this one run in the cache with their scratch on the stack: 64 KiB.
template <class T>
inline constexpr int top_in_cache_order = sizeof(T) == 4 ? 13 : 12;

template <class Layout, class T>
FftKernel<T> in_cache_kernel(int order);

/// The twiddle table that the kernel of the plan's complex order reads.
template <class T>
void lay_in_cache(FftPlan<T>& plan, TableSpace& space);

} // namespace kels
