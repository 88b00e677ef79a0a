// The control words of both floating-point units, read and loaded by the tests' own means.
#pragma once

#include <gtest/gtest.h>

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

/// The modes that a program starts with.
inline constexpr ControlState default_modes = {0x037F, 0x1F80};

/// The precision field of 24 bits, which cuts sums and products. An emulator may cut what is loaded as well, a double
/// that passes through the x87 unit in a 32-bit program's calls included; there, 53 bits.
inline std::uint16_t least_precision() {
    constexpr std::uint16_t bits_24 = 0x000, bits_53 = 0x200;
    const std::uint16_t before = ControlState::current().x87, narrow = (before & ~0x300U) | bits_24;
    const double loaded = 1 + 0x1p-52;
    double stored;
    asm volatile("fldcw %1; fldl %2; fstpl %0; fldcw %3" : "=m"(stored) : "m"(narrow), "m"(loaded), "m"(before));
    return stored == loaded ? bits_24 : bits_53;
}

/// Modes that a caller may have set, everything masked: rounding up, down and toward zero in both units, but not in the
/// same one, with less precision in the x87 unit and denormal results flushed in the other.
inline const ControlState odd_modes[] = {
    {0x0B7F, 0x3F80}, {0x067F, 0x7F80}, {static_cast<std::uint16_t>(0x0C7F | least_precision()), 0xDF80}};

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

/// Runs f under other modes.
template <class F>
auto under(const ControlState& modes, const F& f) {
    const KeepControlState keep;
    modes.load();
    return f();
}

/// f under each of the odd modes, which it must leave set, and a check of what it did under the usual ones.
template <class F, class Check>
void in_odd_modes(const F& f, const Check& check) {
    for (const ControlState& modes : odd_modes) {
        const bool kept = under(modes, [&] {
            f();
            return ControlState::current().same_modes(modes);
        });
        EXPECT_TRUE(kept) << "x87 word " << modes.x87 << ", MXCSR " << modes.mxcsr;
        check();
    }
}
template <class F>
void in_odd_modes(const F& f) {
    in_odd_modes(f, [] {});
}

} // namespace kels_test
