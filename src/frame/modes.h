// The modes of the floating-point units, for functions that do not follow the caller's, or follow them to the letter.
//
// The SIMD unit does the arithmetic on samples; the x87 unit does what needs extended precision: tables, and the
// elements that leave the range of doubles. Whoever has set modes in either finds them unchanged after a call.
//
// Memory is the fence of all that stands here: what is computed from loaded values and stored is computed under the
// modes of its place. A value that comes or goes in a register passes through `settled`.
#pragma once

#include <cstdint>
#include <type_traits>

namespace kels {

/// The value as it is here: no part of its computation moves past, to where other modes are set.
template <class T>
[[gnu::always_inline]] inline T settled(T x) {
    asm volatile("" : "+m"(x));
    return x;
}

/// A word of modes in the SIMD unit, put back at the end.
class SimdModes {
public:
    static constexpr std::uint32_t standard = 0x1F80, rounding = 0x6000;

    SimdModes(const SimdModes&) = delete;
    SimdModes& operator=(const SimdModes&) = delete;

protected:
    SimdModes() = default;
    /// The modes under `fields` become those of `modes`, if the unit has others.
    void set(std::uint32_t modes, std::uint32_t fields) {
        asm volatile("stmxcsr %0" : "=m"(caller));
        const std::uint32_t wanted = (caller & ~fields) | (modes & fields);
        changed = ((wanted ^ caller) & ~raised) != 0;
        if (changed) load(wanted);
    }
    ~SimdModes() {
        if (changed) load(caller);
    }

private:
    static constexpr std::uint32_t raised = 0x3F;
    std::uint32_t caller = standard;
    bool changed = false;

    static void load(std::uint32_t word) { asm volatile("ldmxcsr %0" : : "m"(word) : "memory"); }
};

/// While it lives, if needed, the SIMD unit rounds to nearest, takes denormals as they are and masks every exception.
/// Asking for the modes takes longer than 64 elements of a conversion, so that it is left out where nothing depends on
/// them.
class DefaultModes : SimdModes {
public:
    explicit DefaultModes(bool needed) {
        if (needed) set(standard, ~0U);
    }
};

/// The x87 unit's control word: to ask takes no longer than an addition.
class X87Modes {
public:
    static constexpr std::uint16_t precision = 0x300, rounding = 0xC00;

    static std::uint16_t current() {
        std::uint16_t word;
        asm volatile("fnstcw %0" : "=m"(word));
        return word;
    }
    X87Modes(const X87Modes&) = delete;
    X87Modes& operator=(const X87Modes&) = delete;

protected:
    X87Modes(std::uint16_t modes, std::uint16_t fields) : caller(current()) {
        const auto wanted = static_cast<std::uint16_t>((caller & ~fields) | modes);
        changed = wanted != caller;
        if (changed) load(wanted);
    }
    ~X87Modes() {
        if (changed) load(caller);
    }

private:
    std::uint16_t caller;
    bool changed;

    static void load(std::uint16_t word) { asm volatile("fldcw %0" : : "m"(word) : "memory"); }
};

/// While it lives, a long double has all of its 64 bits, and is rounded to nearest.
struct ExtendedPrecision : private X87Modes {
    ExtendedPrecision() : X87Modes(precision, precision | rounding) {}
};

/// While it lives, a long double has all of its 64 bits, and is rounded as the caller wishes.
struct ExtendedPrecisionRoundedByCaller : private X87Modes {
    ExtendedPrecisionRoundedByCaller() : X87Modes(precision, precision) {}
};

/// While it lives, what is made for later calls comes out the same whatever modes the caller has set.
struct ModesOfCreation {
    DefaultModes simd{true};
    ExtendedPrecision x87;
};

/// Whether the SIMD unit rounds to nearest. Two sums tell sooner than its register.
[[gnu::always_inline]] inline bool simd_rounds_to_nearest() {
    const double quarter = settled(0x1p-54); // of the last place of 1
    return 1 + quarter == 1 && 1 + 3 * quarter > 1;
}

/// While it lives, the SIMD unit rounds to nearest: for kernels that recover rounding errors, and know by an infinity
/// that something has overflowed.
class RoundedToNearest : SimdModes {
public:
    RoundedToNearest() {
        if (!simd_rounds_to_nearest()) set(standard, rounding);
    }
};

/// While it lives, the SIMD unit rounds in the mode that the caller has set: in the x87 unit, as `fegetround` tells.
class RoundedByCaller : SimdModes {
public:
    RoundedByCaller() {
        const auto mode = static_cast<std::uint16_t>(X87Modes::current() & X87Modes::rounding);
        if (mode != 0 || !simd_rounds_to_nearest()) set(standard | std::uint32_t{mode} << 3, ~0U);
    }
};

/// Modes that only some types of a template need.
struct CallersModes {};
template <bool Needed, class Modes>
using ModesIf = std::conditional_t<Needed, Modes, CallersModes>;

} // namespace kels
