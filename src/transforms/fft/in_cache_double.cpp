// Kernels of double precision.

#include "transforms/fft/in_cache_kernels.h"

namespace kels {

template FftKernel<Kel64f> in_cache_kernel<Interleaved<false>, Kel64f>(int);
template FftKernel<Kel64f> in_cache_kernel<Interleaved<true>, Kel64f>(int);
template FftKernel<Kel64f> in_cache_kernel<Split, Kel64f>(int);
template void lay_in_cache<Interleaved<false>, Interleaved<true>>(FftPlan<Kel64f>&, TableSpace&);
template void lay_in_cache<Split, Split>(FftPlan<Kel64f>&, TableSpace&);

} // namespace kels
