// Complex transforms: the checks, then the plan's kernel.

#include "transforms/fft_plan.h"

namespace kels {
namespace {

template <PlanId id, bool inverse, class Sample, class Plan>
KelStatus complex_transform(const Sample* src, Sample* dst, const Plan* plan) {
    if (!plan) return kelStatusNullPtr;
    if (plan->planId != id) return kelStatusContextMismatch;
    if (!src || !dst) return kelStatusNullPtr;
    transform(*plan, inverse, &src->re, &dst->re);
    return kelStatusOk;
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsFFTFwd_CToC_32fc(const Kel32fc* src, Kel32fc* dst, const KelsFftPlan_32f* plan, Kel8u*) { return complex_transform<plan_C_32fc, false>(src, dst, plan); }
KelStatus kelsFFTFwd_CToC_64fc(const Kel64fc* src, Kel64fc* dst, const KelsFftPlan_64f* plan, Kel8u*) { return complex_transform<plan_C_64fc, false>(src, dst, plan); }
KelStatus kelsFFTInv_CToC_32fc(const Kel32fc* src, Kel32fc* dst, const KelsFftPlan_32f* plan, Kel8u*) { return complex_transform<plan_C_32fc, true>(src, dst, plan); }
KelStatus kelsFFTInv_CToC_64fc(const Kel64fc* src, Kel64fc* dst, const KelsFftPlan_64f* plan, Kel8u*) { return complex_transform<plan_C_64fc, true>(src, dst, plan); }
}
// clang-format on
