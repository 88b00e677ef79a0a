// Objects that the library makes and releases: plans, contexts, states.
#pragma once

#include "kels/status.h"
#include "support/allocation_faults.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <type_traits>
#include <vector>

namespace kels_test {

template <class Object>
using Owned = std::unique_ptr<Object, KelStatus (*)(Object*)>;

template <class Object, class... A>
Owned<Object> made(KelStatus (*make)(Object**, A...), KelStatus (*release)(Object*),
                   std::type_identity_t<A>... arguments) {
    Object* object = nullptr;
    EXPECT_EQ(make(&object, arguments...), kelStatusOk);
    return {object, release};
}

/// What a pointer holds that no call may change.
template <class Object>
Object* untouched() {
    static char elsewhere;
    return reinterpret_cast<Object*>(&elsewhere);
}

/// make(&object) is refused, and leaves the pointer alone.
template <class Object, class... A>
void expect_not_made(KelStatus status, KelStatus (*make)(Object**, A...), std::type_identity_t<A>... arguments) {
    Object* object = untouched<Object>();
    EXPECT_EQ(make(&object, arguments...), status);
    EXPECT_EQ(object, untouched<Object>());
}

/// Every allocation failing in turn leaves nothing behind, and the pointer alone or, where that is the rule, null.
template <bool clears = false, class Object, class... A>
void expect_clean_failures(KelStatus (*make)(Object**, A...), KelStatus (*release)(Object*),
                           std::type_identity_t<A>... arguments) {
    for_each_allocation_failure([&] {
        Object* object = untouched<Object>();
        const KelStatus status = make(&object, arguments...);
        if (status == kelStatusOk)
            EXPECT_EQ(release(object), kelStatusOk);
        else
            EXPECT_EQ(object, clears ? nullptr : untouched<Object>());
        return status;
    });
}

/// What f gives does not depend on other threads that call it too.
template <class F>
void expect_same_on_threads(const F& f) {
    const auto wanted = f();
    std::vector<std::remove_const_t<decltype(wanted)>> results(4);
    std::vector<std::thread> threads;
    for (auto& result : results)
        threads.emplace_back([&] {
            for (int i = 0; i < 20; ++i) result = f();
        });
    for (std::thread& thread : threads) thread.join();
    for (const auto& result : results) EXPECT_EQ(result, wanted);
}

} // namespace kels_test
