// The one way in which a step of an example gives up: a sentence for the person who started it.
#pragma once

#include "kels.h"

#include <stdexcept>
#include <string>

namespace examples {

struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Turns a library status other than success into a failure that names the place of the call.
inline void check(KelStatus status, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    if (status != kelStatusOk)
        throw Failure("The call in " + std::string(file) + ", line " + std::to_string(line) +
                      ", failed: " + kelGetStatusString(status) + ".");
}

} // namespace examples
