// How a real value becomes an integer result.
#pragma once

#include "kels/types.h"

#include <cmath>

namespace kels {

/// In the mode that the caller has set in the x87 unit, where the value was computed.
inline Kel64s rounded_in_caller_mode(long double value) { return std::llrint(value); }

} // namespace kels
