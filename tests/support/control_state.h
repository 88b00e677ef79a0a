// The control words of both floating-point units, read and loaded by the tests' own means.
#pragma once

#include <cstdint>

namespace kels_test {

struct ControlState {
    std::uint16_t x87;
    std::uint32_t mxcsr;

    static ControlState current() {
        ControlState s;
        asm volatile("fnstcw %0" : "=m"(s.x87));
        asm volatile("stmxcsr %0" : "=m"(s.mxcsr));
        return s;
    }

    void load() const {
        asm volatile("fldcw %0" : : "m"(x87));
        asm volatile("ldmxcsr %0" : : "m"(mxcsr));
    }

    /// The same modes and masks; exceptions that arithmetic raised do not count.
    bool same_modes(const ControlState& other) const {
        constexpr std::uint32_t raised = 0x3F;
        return x87 == other.x87 && (mxcsr & ~raised) == (other.mxcsr & ~raised);
    }
};

/// Modes that a caller may have set, everything masked: rounding up, down and toward zero in both units, with less
/// precision in one and denormal results flushed in the other.
inline constexpr ControlState odd_modes[] = {{0x0B7F, 0x5F80}, {0x067F, 0x3F80}, {0x0C7F, 0xFF80}};

/// Puts the words back.
class KeepControlState {
public:
    KeepControlState() = default;
    ~KeepControlState() { before.load(); }
    KeepControlState(const KeepControlState&) = delete;
    KeepControlState& operator=(const KeepControlState&) = delete;

private:
    ControlState before = ControlState::current();
};

} // namespace kels_test
