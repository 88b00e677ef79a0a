// How a real value becomes an integer result.
#pragma once

#include "frame/modes.h"
#include "kels/types.h"

#include <cmath>

namespace kels {

/// In the mode of the x87 unit, where the value was computed.
inline Kel64s rounded(long double value) { return settled(static_cast<Kel64s>(std::llrint(value))); }

} // namespace kels
