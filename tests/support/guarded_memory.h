// Memory between unmapped pages, and calls that survive touching them.
#pragma once

#include <cstddef>
#include <functional>

namespace kels_test {

/// Room for at least `bytes`, with an unmapped page before the first byte and one behind the last.
class GuardedMemory {
public:
    explicit GuardedMemory(std::size_t bytes);
    ~GuardedMemory();
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    std::byte* begin() const { return first; }
    std::byte* end() const { return last; }

private:
    std::byte* mapping;
    std::size_t mapped;
    std::byte* first;
    std::byte* last;
};

/// Runs the call on a small stack, 72 KiB for the library; false if it touched memory that is not there, or memory that
/// is not aligned as it wants. Nothing is unwound then.
bool runs_without_fault(const std::function<void()>& call);

} // namespace kels_test
