#include "kels/services.h"
#include "support/control_state.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstdint>

namespace {

using kels_test::ControlState;

constexpr Kel32u rounding = 0x0C00, precision = 0x0300, masks = 0x3F, reset = 0x037F;
constexpr Kel32u up = 0x0800, down = 0x0400, to_zero = 0x0C00;

Kel32u x87() { return ControlState::current().x87; }
Kel32u mxcsr() { return ControlState::current().mxcsr; }

/// Starts every test from the words of a fresh process and puts the caller's back.
class ControlWord : public testing::Test {
    kels_test::KeepControlState keep;

protected:
    void SetUp() override { ControlState{reset, 0x1F80}.load(); }
    void TearDown() override { asm volatile("fnclex"); }
};

/// Raises divide by zero and inexact, which stay masked.
void raise_x87_exceptions() {
    const volatile long double zero = 0, one = 1, three = 3;
    [[maybe_unused]] const volatile long double infinity = one / zero, third = one / three;
}

TEST_F(ControlWord, SettingUnderAMaskKeepsTheRest) {
    EXPECT_EQ(ks_set_cw_fpu(up | 0x3F, rounding), reset);
    EXPECT_EQ(x87(), reset | up);
    EXPECT_EQ(ks_set_cw_fpu(0, precision), reset | up);
    EXPECT_EQ(x87(), 0x087Fu);
    EXPECT_EQ(ks_set_cw_fpu(0xFFFF, 0), 0x087Fu);
    EXPECT_EQ(ks_get_cw_fpu(), 0x087Fu);
    kel_set_cw_fpu(0x0E7F);
    EXPECT_EQ(x87(), 0x0E7Fu);
}

TEST_F(ControlWord, ModesOrTheWholeValueIn) {
    EXPECT_EQ(kel_set_rcpc_fpu(to_zero, rounding), reset);
    EXPECT_EQ(x87(), 0x0F7Fu);
    EXPECT_EQ(kel_set_rcpc_fpu(to_zero, rounding), 0x0F7Fu);
    EXPECT_EQ(x87(), 0x0F7Fu);
    // A value beyond its mask adds its bits.
    EXPECT_EQ(kel_set_rcpc_fpu(down | 0x1000, rounding), 0x0F7Fu);
    EXPECT_EQ(x87(), 0x177Fu);
}

TEST_F(ControlWord, RoundingTakesEffect) {
    const volatile long double x = 2.5L;
    const auto rounded = [&] {
        int n;
        const long double v = x;
        asm volatile("fistpl %0" : "=m"(n) : "t"(v) : "st");
        return n;
    };
    EXPECT_EQ(rounded(), 2);
    ks_set_cw_fpu(up, rounding);
    EXPECT_EQ(rounded(), 3);
    kel_control87(0x100, 0x300);
    EXPECT_EQ(rounded(), 2);
}

TEST_F(ControlWord, StatusShowsAndClearsExceptions) {
    ks_clear_fpu();
    EXPECT_EQ(ks_get_sw_fpu() & masks, 0u);
    EXPECT_EQ(kel_status87(), 0u);
    raise_x87_exceptions();
    EXPECT_EQ(ks_get_sw_fpu() & masks, 0x24u);
    EXPECT_EQ(kel_status87(), 0x9u);
    EXPECT_EQ(kel_clear87(), 0x9u);
    EXPECT_EQ(kel_status87(), 0u);
    raise_x87_exceptions();
    EXPECT_EQ(ks_clear_fpu() & masks, 0x24u);
    EXPECT_EQ(ks_get_sw_fpu() & masks, 0u);
}

struct Translation {
    Kel32u x87, field, portable;
};

constexpr Translation translations[] = {
    {0x0001, 0x0001, 0x10},    {0x0002, 0x0002, 0x80000}, {0x0004, 0x0004, 0x8}, {0x0008, 0x0008, 0x4},
    {0x0010, 0x0010, 0x2},     {0x0020, 0x0020, 0x1},     {0x0000, 0x0C00, 0},   {0x0400, 0x0C00, 0x100},
    {0x0800, 0x0C00, 0x200},   {0x0C00, 0x0C00, 0x300},   {0x0300, 0x0300, 0},   {0x0200, 0x0300, 0x10000},
    {0x0000, 0x0300, 0x20000}, {0x1000, 0x1000, 0x40000},
};

constexpr Kel32u all_masked = 0x8001F;

TEST_F(ControlWord, PortableWordReadsEveryField) {
    EXPECT_EQ(kel_control87(0, 0), all_masked);
    for (const Translation& t : translations) {
        kel_set_cw_fpu((reset & ~t.field) | t.x87);
        const Kel32u others = t.field == t.x87 && t.field < 0x40 ? all_masked & ~t.portable : all_masked;
        EXPECT_EQ(kel_control87(0, 0), others | t.portable) << std::hex << t.x87;
    }
}

TEST_F(ControlWord, PortableWordSetsEveryField) {
    for (const Translation& t : translations) {
        kel_set_cw_fpu(reset);
        const Kel32u mask = t.field == rounding ? 0x300 : t.field == precision ? 0x30000 : t.portable;
        EXPECT_EQ(kel_control87(t.portable, mask), (all_masked & ~mask) | t.portable) << std::hex << t.x87;
        EXPECT_EQ(x87(), (reset & ~t.field) | t.x87);
    }
    // An exception is unmasked by its bit alone, and bits outside the mask do not count.
    kel_set_cw_fpu(reset);
    EXPECT_EQ(kel_control87(0x300, 0x8), all_masked & ~0x8u);
    EXPECT_EQ(x87(), reset & ~0x4u);
}

TEST_F(ControlWord, StatusTranslatesEveryFlag) {
    for (const Translation& t : translations) {
        if (t.field > 0x20) break;
        struct Environment {
            std::uint32_t control, status, rest[5];
        } environment;
        asm volatile("fnstenv %0" : "=m"(environment));
        environment.status = t.x87;
        asm volatile("fldenv %0" : : "m"(environment));
        EXPECT_EQ(kel_status87(), t.portable) << std::hex << t.x87;
        kel_clear87();
        kel_set_cw_fpu(reset);
    }
}

TEST_F(ControlWord, SimdRegisterIsSetUnderAMask) {
    EXPECT_EQ(ks_get_sx2() & ~masks, 0x1F80u);
    EXPECT_EQ(ks_set_sx2(0xFFFF, 0x8000) & ~masks, 0x1F80u);
    EXPECT_EQ(mxcsr() & ~masks, 0x9F80u);
    EXPECT_EQ(ks_set_sx2(0xFFFF, 0) & ~masks, 0x9F80u);
    EXPECT_EQ(kel_set_rc_sx2(0x4000) & ~masks, 0x9F80u);
    EXPECT_EQ(kel_set_rc_sx2(0x4000) & ~masks, 0xDF80u);
    EXPECT_EQ(mxcsr() & ~masks, 0xDF80u);
    kel_set_cw_sx2(0x3FA5);
    EXPECT_EQ(mxcsr(), 0x3FA5u);
    EXPECT_EQ(kel_clear_sx2(), 0x3FA5u);
    EXPECT_EQ(mxcsr(), 0x1F80u);
}

TEST_F(ControlWord, DenormalsAreZerosIsKnownWhereItCanBeSet) {
    ASSERT_EQ(kel_tst_daz_sx2(), 1) << "every processor with 128-bit packed doubles on sale knows it";
    kel_set_cw_sx2(0x1FC0);
    const volatile double denormal = 0x1p-1070, large = 0x1p1000;
    const volatile double product = denormal * large;
    EXPECT_EQ(product, 0.0);
}

TEST_F(ControlWord, DenormalControlIsNotSupported) {
    for (int flag : {0, 1, -5}) {
        EXPECT_EQ(kelSetFlushToZero(flag), kelStatusCpuNotSupported);
        EXPECT_EQ(kelSetDenormAreZeros(flag), kelStatusCpuNotSupported);
    }
    EXPECT_EQ(mxcsr() & ~masks, 0x1F80u);
}

TEST(Classification, GoesByTheBits) {
    constexpr std::uint64_t numbers[] = {
        0x0000000000000000, 0x8000000000000000, 0x0000000000000001, 0x800FFFFFFFFFFFFF,
        0x3FF0000000000000, 0x7FEFFFFFFFFFFFFF, 0x7FF0000000000000, 0xFFF0000000000000,
        0x7FF0000000000001, 0xFFF7FFFFFFFFFFFF, 0x7FF8000000000000, 0xFFFFFFFFFFFFFFFF,
    };
    for (const std::uint64_t bits : numbers) {
        const std::uint64_t magnitude = bits & 0x7FFFFFFFFFFFFFFF, infinity = 0x7FF0000000000000;
        EXPECT_EQ(kel_isnan(std::bit_cast<double>(bits)), magnitude > infinity) << std::hex << bits;
        EXPECT_EQ(kel_finite(std::bit_cast<double>(bits)), magnitude < infinity) << std::hex << bits;
    }
}

} // namespace
