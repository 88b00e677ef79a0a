// Transforms that fit the outer cache: kernel and tables.
#pragma once

#include "transforms/fft/plan.h"

namespace kels {

/// Orders beyond those in cache, up to this one: a strip of the middle transforms fits the stack's scratch.
inline constexpr int top_blocked_order = 17;

template <class Layout, class T>
FftKernel<T> blocked_kernel(int order);

/// The tables that the kernel reads at the plan's complex order.
template <class Layout, class T>
void lay_blocked(FftPlan<T>& plan, TableSpace& space);

} // namespace kels
