// Allocations of the library, counted and made to fail. The test program stands in for the library's allocator, whose
// other memory all comes from kelsMalloc_8u.
#pragma once

#include "kels/status.h"

#include <functional>

namespace kels_test {

/// Calls of kelsMalloc_8u so far.
long allocations();

/// Blocks from kelsMalloc_8u that kelsFree has not had yet.
long live_blocks();

/// Calls with the first allocation failing, then the second and so on, until none is left to fail. Every failure must
/// give kelStatusNoMemory and the last call a success, and none may leave a block behind: what the call made in a
/// success it must release.
void for_each_allocation_failure(const std::function<KelStatus()>& call);

/// While it lives, the n-th allocation fails.
class FailingAllocation {
public:
    explicit FailingAllocation(int n);
    ~FailingAllocation();
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// Whether there was one.
    bool happened() const;
};

} // namespace kels_test
