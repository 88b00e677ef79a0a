// Plans over 16-bit data. Short transforms run in fixed point from tables in Q14, the others in single precision
// through a plan of their own; the hint moves the border.

#include "transforms/fft/plan_16s.h"

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
void lay_tables(KelsFftPlan_16s& plan, bool real, TableSpace& space) {
    plan.fixed_tables = lay_fixed_tables(real ? plan.order - 1 : plan.order, space);
    if (real) plan.recombination = lay_recombination_roots(plan.order, space);
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

    auto plan = make_record<KelsFftPlan_16s>(id);
    if (!plan) return kelStatusNoMemory;
    plan->order = order;
    plan->hint = hint;
    if (!normalise(*plan, flag)) return kelStatusBadFftFlag;

    if (order > 0 && order <= top_fixed_order(hint)) {
        plan->fixedPath = 1;
        plan->tables = make_tables([&](TableSpace& space) { lay_tables(*plan, real, space); });
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
