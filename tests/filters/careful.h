// Calls of a test that chooses what it calls, where the fuzzer's drives leave that to an input.
#pragma once

#include "fuzz/sequence.h"
#include "support/life_cycle.h"

namespace kels_test {

/// The calls of a test of its own: arrays by turns before and behind a page that may not be touched, a small stack, and
/// no allocation, unless it is told that there is one: what a context needs it has since its creation.
class Careful {
public:
    bool allocates = false;

    Edge edge() { return ++arrays % 2 == 0 ? Edge::front : Edge::back; }
    template <class Call>
    KelStatus attempt(Call call) const {
        KelStatus status = kelStatusOk;
        const long before = allocations();
        EXPECT_TRUE(runs_without_fault([&] { status = call(); })) << "touches what is not its own";
        EXPECT_EQ(allocations() != before, allocates);
        return status;
    }
    template <class Call>
    KelStatus plainly(Call call) const {
        return attempt(call);
    }

private:
    int arrays = 0;
};

/// The context that make(&context) makes, which may allocate.
template <class Context, class Make>
Owned<Context> made(Careful&, KelStatus (*release)(Context*), Make make) {
    Context* context = nullptr;
    EXPECT_EQ(make(&context), kelStatusOk);
    return {context, release};
}

} // namespace kels_test
