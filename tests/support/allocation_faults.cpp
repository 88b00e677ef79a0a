#include "support/allocation_faults.h"

#include "kels/services.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include <dlfcn.h>

namespace kels_test {
namespace {

std::atomic<long> count = 0;
std::atomic<long> live = 0;
std::atomic<long> failing = 0; // the allocation that fails, by its number; 0 for none
std::atomic<bool> failed = false;

template <class Function>
Function* library_function(const char* name) {
    void* found = dlsym(RTLD_NEXT, name);
    if (!found) {
        std::fprintf(stderr, "%s: %s\n", name, dlerror());
        std::abort();
    }
    return reinterpret_cast<Function*>(found);
}

} // namespace

long allocations() { return count; }
long live_blocks() { return live; }

FailingAllocation::FailingAllocation(int n) {
    failed = false;
    failing = count + n;
}
FailingAllocation::~FailingAllocation() { failing = 0; }
bool FailingAllocation::happened() const { return failed; }

void for_each_allocation_failure(const std::function<KelStatus()>& call) {
    const long live_before = live;
    for (long n = 1;; ++n) {
        const FailingAllocation failing_one(static_cast<int>(n));
        const KelStatus status = call();
        ASSERT_EQ(live, live_before) << "blocks left, allocation " << n << " failing";
        if (!failing_one.happened()) {
            ASSERT_GT(n, 1) << "allocated nothing, so nothing was tried";
            ASSERT_GE(status, kelStatusOk) << "after " << n - 1 << " allocations, none failing";
            return;
        }
        ASSERT_EQ(status, kelStatusNoMemory) << "allocation " << n << " failing";
    }
}

} // namespace kels_test

extern "C" {

Kel8u* kelsMalloc_8u(int len) {
    using namespace kels_test;
    static const auto next = library_function<Kel8u*(int)>("kelsMalloc_8u");
    if (++count == failing) {
        failed = true;
        return nullptr;
    }
    Kel8u* p = next(len);
    live += p != nullptr;
    return p;
}

void kelsFree(void* p) {
    using namespace kels_test;
    static const auto next = library_function<void(void*)>("kelsFree");
    live -= p != nullptr;
    next(p);
}
}
