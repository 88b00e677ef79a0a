// Processor queries, straight from CPUID and the time-stamp counter.

#include "frame/cpu_type.h"
#include "kels/services.h"

#include <cstring>

#include <cpuid.h>
#include <x86intrin.h>

namespace kels {
namespace {

struct Registers {
    Kel32u eax, ebx, ecx, edx;
};

Registers cpuid(Kel32u leaf) {
    Registers r;
    __cpuid(leaf, r.eax, r.ebx, r.ecx, r.edx);
    return r;
}

int bit(Kel32u word, int position) { return static_cast<int>(word >> position & 1); }

constexpr int rdtsc_bit = 4, sx1_bit = 23, sx2_bit = 25, sx3_bit = 26;

int has_feature(int position) { return bit(cpuid(1).edx, position); }

// A processor has CPUID if its identification flag can be toggled.
int has_cpuid() {
    constexpr auto id_flag = decltype(__readeflags()){1} << 21;
    const auto before = __readeflags();
    __writeeflags(before ^ id_flag);
    const auto after = __readeflags();
    __writeeflags(before);
    return ((before ^ after) & id_flag) != 0;
}

int is_target_vendor() {
    const Registers r = cpuid(0);
    const Kel32u name[3] = {r.ebx, r.edx, r.ecx};
    return std::memcmp(name, "GenuineIntel", sizeof name) == 0;
}

void identify(KelCpuIdent& record) {
    const Registers version = cpuid(1);
    const Registers caches = cpuid(2);
    record.family = version.eax >> 8 & 0xF;
    record.stepping = version.eax & 0xF;
    record.model = version.eax >> 4 & 0xF;
    record.processorType = 0;
    record.features = version.edx;
    record.cacheDescriptorsA = caches.eax;
    record.cacheDescriptorsD = caches.edx;
    record.sx1Present = bit(version.edx, sx1_bit);
    record.sx2Present = bit(version.edx, sx2_bit);
    record.sx3Present = bit(version.edx, sx3_bit);
}

int cpu_type_here() {
    if (!has_cpuid() || !is_target_vendor()) return 0;
    KelCpuIdent cpu;
    identify(cpu);
    return cpu_type(cpu);
}

} // namespace
} // namespace kels

extern "C" {
// clang-format off
int                kelGetCpuType       (void) { return kels::cpu_type_here(); }
unsigned long long kelGetCpuClocks     (void) { return __rdtsc(); }
int                kel_has_cpuid       (void) { return kels::has_cpuid(); }
int                kel_max_cpuid_input (void) { return static_cast<int>(kels::cpuid(0).eax); }
int                kel_has_rdtsc       (void) { return kels::has_feature(kels::rdtsc_bit); }
int                kel_is_sx1_extension(void) { return kels::has_feature(kels::sx1_bit); }
int                kel_is_sx2_extension(void) { return kels::has_feature(kels::sx2_bit); }
int                kel_is_sx3_extension(void) { return kels::has_feature(kels::sx3_bit); }
int                kel_is_TargetVendor (void) { return kels::is_target_vendor(); }
void               kel_get_cpu_ident   (KelCpuIdent* record) { kels::identify(*record); }
unsigned long long kel_get_cpu_counter (void) { return __rdtsc(); }
// clang-format on
}
