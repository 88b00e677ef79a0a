#include "support/guarded_memory.h"

#include <csetjmp>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <sys/mman.h>
#include <ucontext.h>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KELS_TEST_SANITIZED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define KELS_TEST_SANITIZED 1
#endif
#endif

namespace kels_test {
namespace {

sigjmp_buf return_point;
volatile sig_atomic_t armed = 0;

struct sigaction before_segv, before_bus;

void on_fault(int signal) {
    if (armed) siglongjmp(return_point, 1);
    // Any other fault is for whoever was there before, once the instruction is tried again.
    sigaction(signal, signal == SIGSEGV ? &before_segv : &before_bus, nullptr);
}

void catch_faults() {
    static std::byte room[1 << 16]; // for the handler, where a call has no stack left
    const stack_t own = {room, 0, sizeof room};
    sigaltstack(&own, nullptr);
    struct sigaction action = {};
    action.sa_handler = on_fault;
    action.sa_flags = SA_NODEFER | SA_ONSTACK;
    sigaction(SIGSEGV, &action, &before_segv);
    sigaction(SIGBUS, &action, &before_bus);
}

// A small stack

#ifdef KELS_TEST_SANITIZED
constexpr bool has_small_stack = false; // a sanitizer's frames are several times as large
#else
constexpr bool has_small_stack = true;
#endif

/// What a call of the library takes at most, and room for what a test does around it.
constexpr std::size_t small_stack_bytes = (72 + 8) << 10;

ucontext_t caller, callee;
const std::function<void()>* what_is_called = nullptr;

void on_entry() { (*what_is_called)(); }

void run_on_small_stack(const std::function<void()>& call) {
    static const GuardedMemory stack(small_stack_bytes);
    getcontext(&callee);
    callee.uc_stack.ss_sp = stack.begin();
    callee.uc_stack.ss_size = small_stack_bytes;
    callee.uc_link = &caller;
    what_is_called = &call;
    makecontext(&callee, on_entry, 0);
    swapcontext(&caller, &callee);
}

} // namespace

GuardedMemory::GuardedMemory(std::size_t bytes) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t room = (bytes + page - 1) / page * page;
    mapped = room + 2 * page;
    void* p = mmap(nullptr, mapped, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED ||
        (room > 0 && mprotect(static_cast<std::byte*>(p) + page, room, PROT_READ | PROT_WRITE) != 0)) {
        std::perror("guarded memory");
        std::abort();
    }
    mapping = static_cast<std::byte*>(p);
    first = mapping + page;
    last = first + room;
}

GuardedMemory::~GuardedMemory() { munmap(mapping, mapped); }

bool runs_without_fault(const std::function<void()>& call) {
    [[maybe_unused]] static const bool ready = (catch_faults(), true);
    if (sigsetjmp(return_point, 0) != 0) {
        armed = 0;
        return false;
    }
    armed = 1;
    if (has_small_stack)
        run_on_small_stack(call);
    else
        call();
    armed = 0;
    return true;
}

} // namespace kels_test
