// The modes of the SIMD unit, which does all floating-point arithmetic here, for functions that do not follow the
// caller's.
#pragma once

#include <cstdint>

namespace kels {

/// While it lives, if needed, the unit rounds to nearest, takes denormals as they are and masks every exception. Memory
/// is its fence: what is computed from loaded values, and stored, is computed under these modes. Asking for the modes
/// takes longer than 64 elements of a conversion, so that it is left out where nothing depends on them.
class DefaultModes {
public:
    explicit DefaultModes(bool needed) {
        if (!needed) return;
        asm volatile("stmxcsr %0" : "=m"(caller));
        if ((caller & ~raised) != standard) load(standard);
    }
    ~DefaultModes() {
        if ((caller & ~raised) != standard) load(caller);
    }
    DefaultModes(const DefaultModes&) = delete;
    DefaultModes& operator=(const DefaultModes&) = delete;

private:
    static constexpr std::uint32_t raised = 0x3F, standard = 0x1F80;
    std::uint32_t caller = standard;

    static void load(std::uint32_t word) { asm volatile("ldmxcsr %0" : : "m"(word) : "memory"); }
};

} // namespace kels
