/** @file
 *  The whole library in one include.
 *
 *  What holds for every function, where its header does not say otherwise:
 *
 *  **Rounding modes.** The control words of the floating-point units are found unchanged after every call. Integer
 *  results do not depend on them, but for those of filters with real taps, whose sums do by their last places; nor does
 *  what is made for later calls, a plan or a context. The few results that are said to follow *the caller's rounding
 *  mode* follow the one that `fegetround` tells, which is that of the x87 unit and what ::ks_set_cw_fpu sets. Other
 *  real results are rounded by the SIMD unit: in another mode than to nearest they may be off by their last places.
 *  Complex products, quotients, squares and roots, and reductions of doubles, are evaluated to nearest in any mode. The
 *  precision that is set in the x87 unit changes nothing.
 *
 *  **NaNs.** Which NaN comes out where two meet is free, and may differ from level to level.
 *
 *  **Elements.** The value of an element depends on its operands alone: not on its neighbours, its place, the length or
 *  the alignment of the vector, or whether the call is in place.
 *
 *  **Stack.** A call takes at most 72 KiB.
 */
#ifndef KELS_H
#define KELS_H

#include "kels/types.h"
#include "kels/status.h"
#include "kels/services.h"
#include "kels/movement.h"
#include "kels/arithmetic.h"
#include "kels/conversion.h"
#include "kels/division.h"
#include "kels/roots.h"
#include "kels/logic.h"
#include "kels/thresholds.h"
#include "kels/companding.h"
#include "kels/exponential.h"
#include "kels/polar.h"
#include "kels/statistics.h"
#include "kels/fft.h"
#include "kels/dft.h"
#include "kels/dct.h"
#include "kels/spectrum.h"
#include "kels/goertzel.h"
#include "kels/fir.h"
#include "kels/fir_direct.h"
#include "kels/iir.h"
#include "kels/lms.h"
#include "kels/convolution.h"
#include "kels/rate_change.h"
#include "kels/median.h"
#include "kels/haar.h"
#include "kels/filter_bank.h"
#include "kels/search.h"
#include "kels/random.h"
#include "kels/windows.h"
#include "kels/tones.h"
#include "kels/ramps.h"

#endif
