// Plans over 16-bit data. Short transforms run in fixed point from tables in Q14, the others in single precision
// through a plan of their own; the hint moves the border.

#include "transforms/fft_plan_16s.h"

#include <cmath>
#include <new>

namespace kels {
namespace {

/// Transforms up to this order run in fixed point.
constexpr int top_fixed_order(int hint) { return hint == kelHintDefault ? 8 : hint == kelHintWideFixed ? 10 : 0; }

/// Sets the shifts that a flag stands for; false for any other value.
bool normalise(KelsFftPlan_16s& plan, int flag) {
    switch (flag) {
    case kelFftNormFwd:
        plan.shiftFwd = plan.order;
        return true;
    case kelFftNormInv:
        plan.shiftInv = plan.order;
        return true;
    case kelFftNormSqrt:
        plan.shiftFwd = plan.shiftInv = plan.order / 2;
        plan.oddSqrt = plan.order % 2;
        return true;
    default:
        return flag == kelFftNormNone;
    }
}

/// The tables of a plan that runs in fixed point; real data take a complex transform of half the length.
void lay_fixed_tables(KelsFftPlan_16s& plan, bool real, TableSpace& space) {
    const int order = plan.order, complex_order = real ? order - 1 : order;
    if (order < 2) return;
    Kel16s* circle = space.take<Kel16s>(std::size_t{4} << order);
    Kel16s* complex_circle = real && complex_order >= 2 ? space.take<Kel16s>(std::size_t{4} << complex_order) : circle;
    Kel32s* bits = complex_order >= 2 ? space.take<Kel32s>((std::size_t{1} << (complex_order - 2)) + 1) : nullptr;
    Kel16s* base = space.take<Kel16s>((std::size_t{1} << (order - 2)) + 1); // read while the others are made
    if (!base) return;

    kels_createTabTwdBase_16s(base, order);
    kels_createTabTwd_R4_16s(circle, order, base, order);
    if (real) plan.pTwdReal = circle;
    if (complex_order < 2) return;
    if (real) kels_createTabTwd_R4_16s(complex_circle, complex_order, base, order);
    plan.pTwd = complex_circle;
    kels_createTabBitRev(bits, complex_order);
    plan.pBitRev = bits;
}

template <PlanId id>
KelStatus make_float_plan(KelsFftPlan_16s& plan, int flag) {
    constexpr auto make = id == plan_C_16sc  ? kelsFFTInitAlloc_C_32fc
                          : id == plan_C_16s ? kelsFFTInitAlloc_C_32f
                                             : kelsFFTInitAlloc_R_32f;
    constexpr auto release = id == plan_C_16sc  ? kelsFFTFree_C_32fc
                             : id == plan_C_16s ? kelsFFTFree_C_32f
                                                : kelsFFTFree_R_32f;
    KelsFftPlan_32f* made = nullptr;
    const KelStatus status = make(&made, plan.order, flag, kelHintDefault);
    plan.pFloatPlan = {made, release};
    return status;
}

/// Bytes for the data in the wider type, and what else the transform inside wants: complex points and a copy of two
/// arrays, or real points with the two more values of CCS.
Kel32s data_bytes(const KelsFftPlan_16s& plan, bool real) {
    const Kel32s points = 1 << plan.order;
    if (real) return 4 * points + 24;
    return (plan.fixedPath ? 12 : 8) * points + 16;
}

template <PlanId id>
KelStatus make_plan(KelsFftPlan_16s** result, int order, int flag, int hint) {
    constexpr bool real = id == plan_R_16s;
    if (!result) return kelStatusNullPtr;
    if (order < 0 || order > 30) return kelStatusBadFftOrder;

    void* memory = allocate<KelsFftPlan_16s>(1);
    if (!memory) return kelStatusNoMemory;
    std::unique_ptr<KelsFftPlan_16s, DeletePlan> plan(new (memory) KelsFftPlan_16s);
    plan->planId = id;
    plan->order = order;
    plan->hint = hint;
    if (!normalise(*plan, flag)) return kelStatusBadFftFlag;

    if (order > 0 && order <= top_fixed_order(hint)) {
        plan->fixedPath = 1;
        plan->tables = make_tables([&](TableSpace& space) { lay_fixed_tables(*plan, real, space); });
        if (!plan->tables) return kelStatusNoMemory;
        plan->workBytes = data_bytes(*plan, real);
    } else if (order > 0) {
        if (const KelStatus status = make_float_plan<id>(*plan, flag)) return status;
        plan->workBytes = data_bytes(*plan, real) + plan->pFloatPlan->workBytes;
    }
    *result = plan.release();
    return kelStatusOk;
}

} // namespace
} // namespace kels

using namespace kels;

void kels_createTabTwdBase_16s(Kel16s* base, int order) {
    const int points = 1 << order;
    const long double step = 6.283185307179586L / points;
    for (int k = 0; k <= points / 4; ++k) {
        const long double sine = k <= points / 8 ? std::sin(k * step) : std::cos((points / 4 - k) * step);
        base[k] = static_cast<Kel16s>(sine * 16384 + 0.5L);
    }
}

void kels_createTabTwd_R4_16s(Kel16s* table, int order, const Kel16s* base, int baseOrder) {
    const int points = 1 << order, quarter = points / 4, step = 1 << (baseOrder - order);
    for (int k = 0; k < points; ++k) {
        const int in_quarter = k % quarter;
        int c = base[(quarter - in_quarter) * step], s = base[in_quarter * step];
        for (int turn = 0; turn < k / quarter; ++turn) { // by a quarter
            const int was = c;
            c = -s;
            s = was;
        }
        const int entry[] = {c, s, -s, c};
        for (int i = 0; i < 4; ++i) table[4 * k + i] = static_cast<Kel16s>(entry[i]);
    }
}

void kels_createTabBitRev(Kel32s* table, int order) {
    const int count = 1 << (order - 2);
    Kel32s *front = table, *back = table + count;
    *back = 0;
    for (int i = 1, j = 0; i < count; ++i) {
        int carry = count / 2; // j becomes i reversed: the carry runs from the highest bit down
        for (; j & carry; carry /= 2) j -= carry;
        j += carry;
        if (i < j) {
            *front++ = 4 * i;
            *front++ = 4 * j;
        } else if (i == j) {
            *--back = 4 * i;
        }
    }
    *front = 0;
}

// clang-format off
extern "C" {
KelStatus kelsFFTInitAlloc_C_16sc(KelsFftPlan_16s** plan, int order, int flag, int hint) { return make_plan<plan_C_16sc>(plan, order, flag, hint); }
KelStatus kelsFFTInitAlloc_C_16s (KelsFftPlan_16s** plan, int order, int flag, int hint) { return make_plan<plan_C_16s>(plan, order, flag, hint); }
KelStatus kelsFFTInitAlloc_R_16s (KelsFftPlan_16s** plan, int order, int flag, int hint) { return make_plan<plan_R_16s>(plan, order, flag, hint); }

KelStatus kelsFFTFree_C_16sc(KelsFftPlan_16s* plan) { return free_plan<plan_C_16sc>(plan); }
KelStatus kelsFFTFree_C_16s (KelsFftPlan_16s* plan) { return free_plan<plan_C_16s>(plan); }
KelStatus kelsFFTFree_R_16s (KelsFftPlan_16s* plan) { return free_plan<plan_R_16s>(plan); }

KelStatus kelsFFTGetBufSize_C_16sc(const KelsFftPlan_16s* plan, int* size) { return buffer_size<plan_C_16sc>(plan, size); }
KelStatus kelsFFTGetBufSize_C_16s (const KelsFftPlan_16s* plan, int* size) { return buffer_size<plan_C_16s>(plan, size); }
KelStatus kelsFFTGetBufSize_R_16s (const KelsFftPlan_16s* plan, int* size) { return buffer_size<plan_R_16s>(plan, size); }
}
// clang-format on
