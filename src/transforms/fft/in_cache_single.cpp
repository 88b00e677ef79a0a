// Kernels of single precision.

#include "transforms/fft/in_cache_kernels.h"

namespace kels {

template FftKernel<Kel32f> in_cache_kernel<Interleaved<false>, Kel32f>(int);
template FftKernel<Kel32f> in_cache_kernel<Interleaved<true>, Kel32f>(int);
template FftKernel<Kel32f> in_cache_kernel<Split, Kel32f>(int);
template void lay_in_cache<Interleaved<false>, Interleaved<true>>(FftPlan<Kel32f>&, TableSpace&);
template void lay_in_cache<Split, Split>(FftPlan<Kel32f>&, TableSpace&);

} // namespace kels
