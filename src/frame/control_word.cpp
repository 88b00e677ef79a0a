// Control and status words of the x87 unit and of the SIMD unit, and the classification of doubles.

#include "kels/services.h"

#include <bit>
#include <cstdint>
#include <cstring>

#include <xmmintrin.h>

namespace kels {
namespace {

Kel32u x87_control() {
    std::uint16_t word;
    asm volatile("fnstcw %0" : "=m"(word));
    return word;
}

void load_x87_control(Kel32u value) {
    const auto word = static_cast<std::uint16_t>(value);
    asm volatile("fldcw %0" : : "m"(word));
}

Kel32u x87_status() {
    std::uint16_t word;
    asm volatile("fnstsw %0" : "=m"(word));
    return word;
}

Kel32u clear_x87_exceptions() {
    const Kel32u before = x87_status();
    asm volatile("fnclex");
    return before;
}

constexpr Kel32u replace(Kel32u word, Kel32u value, Kel32u mask) { return (word & ~mask) | (value & mask); }

// The portable form of the x87 words. Reserved bits of the control word have none and stay as they are.
struct Translation {
    Kel32u x87, portable;
};

constexpr Translation exceptions[] = {{0x01, 0x10}, {0x02, 0x80000}, {0x04, 0x8},
                                      {0x08, 0x4},  {0x10, 0x2},     {0x20, 0x1}};

constexpr Kel32u exceptions_to_portable(Kel32u x87) {
    Kel32u portable = 0;
    for (const Translation& e : exceptions) portable |= x87 & e.x87 ? e.portable : 0;
    return portable;
}

constexpr Kel32u exceptions_to_x87(Kel32u portable) {
    Kel32u x87 = 0;
    for (const Translation& e : exceptions) x87 |= portable & e.portable ? e.x87 : 0;
    return x87;
}

// Precision codes of either word. Code 1 of the x87 unit is reserved; pairing it keeps the translation one to one.
constexpr Kel32u portable_precision[] = {2, 3, 1, 0};
constexpr Kel32u x87_precision[] = {3, 2, 0, 1};

constexpr Kel32u control_to_portable(Kel32u x87) {
    return exceptions_to_portable(x87) | (x87 & 0x0C00) >> 2 | portable_precision[x87 >> 8 & 3] << 16 |
           (x87 & 0x1000) << 6;
}

constexpr Kel32u control_to_x87(Kel32u portable) {
    return exceptions_to_x87(portable) | (portable & 0x300) << 2 | x87_precision[portable >> 16 & 3] << 8 |
           (portable & 0x40000) >> 6;
}

Kel32u set_portable_control(Kel32u value, Kel32u mask) {
    constexpr Kel32u translated = 0x1F3F;
    const Kel32u before = x87_control();
    const Kel32u wanted = control_to_x87(replace(control_to_portable(before), value, mask));
    load_x87_control(replace(before, wanted, translated));
    return control_to_portable(wanted);
}

Kel32u set_x87_control(Kel32u value, Kel32u mask) {
    const Kel32u before = x87_control();
    if (mask != 0) load_x87_control(replace(before, value, mask));
    return before;
}

// All of `value` goes in, whatever the mask clears.
Kel32u set_x87_modes(Kel32u value, Kel32u mask) {
    const Kel32u before = x87_control();
    if ((before & mask) != value) load_x87_control((before & ~mask) | value);
    return before;
}

Kel32u set_mxcsr(Kel32u value, Kel32u mask) {
    const Kel32u before = _mm_getcsr();
    if (mask != 0) _mm_setcsr(replace(before, value, mask));
    return before;
}

Kel32u set_mxcsr_rounding(Kel32u value) {
    constexpr Kel32u rounding = 0x6000;
    const Kel32u before = _mm_getcsr();
    if ((before & rounding) != value) _mm_setcsr(replace(before, value, rounding));
    return before;
}

int knows_denormals_are_zeros() {
    constexpr int mask_offset = 28;
    alignas(16) unsigned char state[512];
    asm volatile("fxsave %0" : "=m"(state));
    Kel32u mxcsr_mask;
    std::memcpy(&mxcsr_mask, state + mask_offset, sizeof mxcsr_mask);
    return static_cast<int>(mxcsr_mask >> 6 & 1);
}

constexpr std::uint64_t magnitude_bits = 0x7FFFFFFFFFFFFFFF;
constexpr std::uint64_t infinity_bits = 0x7FF0000000000000;

std::uint64_t magnitude(double x) { return std::bit_cast<std::uint64_t>(x) & magnitude_bits; }

} // namespace
} // namespace kels

extern "C" {
// clang-format off
KelStatus kelSetFlushToZero   (int) { return kelStatusCpuNotSupported; }
KelStatus kelSetDenormAreZeros(int) { return kelStatusCpuNotSupported; }

Kel32u kel_set_rcpc_fpu(Kel32u value, Kel32u mask) { return kels::set_x87_modes(value, mask); }
void   kel_set_cw_fpu  (Kel32u word)               { kels::load_x87_control(word); }
Kel32u ks_set_cw_fpu   (Kel32u value, Kel32u mask) { return kels::set_x87_control(value, mask); }
Kel32u ks_get_cw_fpu   (void)                      { return kels::x87_control(); }
Kel32u ks_get_sw_fpu   (void)                      { return kels::x87_status(); }
Kel32u ks_clear_fpu    (void)                      { return kels::clear_x87_exceptions(); }

Kel32u kel_control87(Kel32u value, Kel32u mask) { return kels::set_portable_control(value, mask); }
Kel32u kel_status87 (void)                      { return kels::exceptions_to_portable(kels::x87_status()); }
Kel32u kel_clear87  (void)                      { return kels::exceptions_to_portable(kels::clear_x87_exceptions()); }

Kel32u ks_set_sx2     (Kel32u value, Kel32u mask) { return kels::set_mxcsr(value, mask); }
Kel32u ks_get_sx2     (void)                      { return _mm_getcsr(); }
Kel32u kel_clear_sx2  (void)                      { return kels::set_mxcsr(0x1F80, 0xFFFFFFFF); }
Kel32u kel_set_rc_sx2 (Kel32u value)              { return kels::set_mxcsr_rounding(value); }
void   kel_set_cw_sx2 (Kel32u word)               { _mm_setcsr(word); }
int    kel_tst_daz_sx2(void)                      { return kels::knows_denormals_are_zeros(); }

int kel_isnan (double x) { return kels::magnitude(x) > kels::infinity_bits; }
int kel_finite(double x) { return kels::magnitude(x) < kels::infinity_bits; }
// clang-format on
}
