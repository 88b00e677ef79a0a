#include "support/guarded_memory.h"

#include <csetjmp>
#include <csignal>
#include <cstdio>
#include <cstdlib>

#include <sys/mman.h>
#include <unistd.h>

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
    struct sigaction action = {};
    action.sa_handler = on_fault;
    action.sa_flags = SA_NODEFER;
    sigaction(SIGSEGV, &action, &before_segv);
    sigaction(SIGBUS, &action, &before_bus);
}

} // namespace

GuardedMemory::GuardedMemory(std::size_t bytes) {
    const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    const std::size_t room = (bytes + page - 1) / page * page;
    mapped = room + 2 * page;
    void* p = mmap(nullptr, mapped, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (p == MAP_FAILED || mprotect(static_cast<std::byte*>(p) + page, room, PROT_READ | PROT_WRITE) != 0) {
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
    call();
    armed = 0;
    return true;
}

} // namespace kels_test
