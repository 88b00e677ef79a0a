/** @file
 *  The whole library in one include.
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
#include "kels/statistics.h"
#include "kels/fft.h"
#include "kels/spectrum.h"
#include "kels/fir.h"
#include "kels/fir_direct.h"

#endif
