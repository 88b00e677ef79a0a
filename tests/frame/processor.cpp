#include "frame/cpu_type.h"
#include "kels/services.h"

#include <gtest/gtest.h>

#include <cstring>

#include <cpuid.h>

namespace {

struct Registers {
    unsigned eax = 0, ebx = 0, ecx = 0, edx = 0;
    explicit Registers(unsigned leaf) { __cpuid(leaf, eax, ebx, ecx, edx); }
    int feature(int bit) const { return edx >> bit & 1; }
};

TEST(Processor, QueriesAgreeWithTheInstruction) {
    const Registers vendor(0), version(1);
    EXPECT_EQ(kel_has_cpuid(), 1);
    EXPECT_EQ(kel_max_cpuid_input(), static_cast<int>(vendor.eax));
    EXPECT_EQ(kel_has_rdtsc(), version.feature(4));
    EXPECT_EQ(kel_is_sx1_extension(), version.feature(23));
    EXPECT_EQ(kel_is_sx2_extension(), version.feature(25));
    EXPECT_EQ(kel_is_sx3_extension(), version.feature(26));
    const unsigned name[] = {vendor.ebx, vendor.edx, vendor.ecx};
    EXPECT_EQ(kel_is_TargetVendor(), std::memcmp(name, "GenuineIntel", 12) == 0);
}

TEST(Processor, IdentificationFillsAllButTheReservedWord) {
    KelCpuIdent cpu;
    std::memset(&cpu, 0x5A, sizeof cpu);
    kel_get_cpu_ident(&cpu);
    const Registers version(1), caches(2);
    EXPECT_EQ(cpu.family, version.eax >> 8 & 15);
    EXPECT_EQ(cpu.stepping, version.eax & 15);
    EXPECT_EQ(cpu.model, version.eax >> 4 & 15);
    EXPECT_EQ(cpu.processorType, 0u);
    EXPECT_EQ(cpu.features, version.edx);
    EXPECT_EQ(cpu.cacheDescriptorsA, caches.eax);
    EXPECT_EQ(cpu.cacheDescriptorsD, caches.edx);
    EXPECT_EQ(cpu.sx1Present, static_cast<unsigned>(version.feature(23)));
    EXPECT_EQ(cpu.reserved, 0x5A5A5A5Au);
    EXPECT_EQ(cpu.sx2Present, static_cast<unsigned>(version.feature(25)));
    EXPECT_EQ(cpu.sx3Present, static_cast<unsigned>(version.feature(26)));
    EXPECT_EQ(sizeof cpu, 44u);
}

int type_of(Kel32u family, Kel32u sx1, Kel32u sx2, Kel32u sx3) {
    return kels::cpu_type({.family = family, .sx1Present = sx1, .sx2Present = sx2, .sx3Present = sx3});
}

TEST(Processor, TypeFollowsFamilyThenExtensions) {
    for (unsigned sx1 : {0u, 1u})
        for (unsigned sx2 : {0u, 1u}) {
            for (unsigned sx3 : {0u, 1u}) EXPECT_EQ(type_of(7, sx1, sx2, sx3), 16);
            EXPECT_EQ(type_of(15, sx1, sx2, 1), 6);
            EXPECT_EQ(type_of(15, sx1, sx2, 0), 0);
            EXPECT_EQ(type_of(6, sx1, sx2, 1), 6);
            EXPECT_EQ(type_of(5, sx1, sx2, 1), sx1 ? 2 : 1);
        }
    EXPECT_EQ(type_of(6, 0, 1, 0), 5);
    EXPECT_EQ(type_of(6, 1, 1, 0), 5);
    EXPECT_EQ(type_of(6, 1, 0, 0), 4);
    EXPECT_EQ(type_of(6, 0, 0, 0), 3);
    for (unsigned family : {0u, 4u, 8u, 14u}) EXPECT_EQ(type_of(family, 1, 1, 1), 0);
}

TEST(Processor, TypeOfAnotherVendorIsZero) {
    KelCpuIdent cpu;
    kel_get_cpu_ident(&cpu);
    EXPECT_EQ(kelGetCpuType(), kel_is_TargetVendor() ? kels::cpu_type(cpu) : 0);
}

TEST(Processor, ClocksAdvance) {
    const unsigned long long a = kelGetCpuClocks(), b = kel_get_cpu_counter(), c = kelGetCpuClocks();
    EXPECT_LT(a, c);
    EXPECT_LE(a, b);
    EXPECT_LE(b, c);
}

} // namespace
