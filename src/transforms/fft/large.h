// Transforms beyond the cache: kernel and tables.
#pragma once

#include "transforms/fft/plan.h"

namespace kels {

template <class Layout, class T>
FftKernel<T> large_kernel();

/// The tables that the kernel reads at the plan's complex order.
template <class Layout, class T>
void lay_large(FftPlan<T>& plan, TableSpace& space);

} // namespace kels
