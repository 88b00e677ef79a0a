// Contexts and plans of the library in owners that release them.
#pragma once

#include "failure.h"

#include <memory>

namespace examples {

template <auto Free>
struct FreeBy {
    void operator()(auto* owned) const { Free(owned); }
};

/// What InitAlloc makes out of the arguments, in an owner that gives it to Free, the function of the same name.
template <auto InitAlloc, auto Free, class... Arguments>
auto make(Arguments... arguments) {
    const auto owned_by = [&]<class Owned>(KelStatus (*)(Owned*)) {
        Owned* made = nullptr;
        check(InitAlloc(&made, arguments...));
        return std::unique_ptr<Owned, FreeBy<Free>>(made);
    };
    return owned_by(Free);
}

} // namespace examples
