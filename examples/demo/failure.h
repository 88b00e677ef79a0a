// The one way in which a step of the demo gives up: a sentence for the person who started it.
#pragma once

#include "kels.h"

#include <stdexcept>
#include <string>

namespace demo {

struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Turns a library status other than success into a failure that names the call.
inline void check(KelStatus status, const char* call) {
    if (status != kelStatusOk) throw Failure(std::string(call) + " failed: " + kelGetStatusString(status) + ".");
}

} // namespace demo
