// Complex transforms: the checks, then the plan's kernel.

#include "transforms/fft/plan.h"

namespace kels {
namespace {

template <PlanId id, bool inverse, class T, class Plan>
KelStatus complex_transform(Points<const T> src, Points<T> dst, const Plan* plan) {
    if (const KelStatus status = check_record(plan, id); status != kelStatusOk) return status;
    if (!src.re || !src.im || !dst.re || !dst.im) return kelStatusNullPtr;
    transform(*plan, inverse, src, dst);
    return kelStatusOk;
}

template <PlanId id, bool inverse, class Sample, class Plan>
KelStatus interleaved(const Sample* src, Sample* dst, const Plan* plan) {
    using T = decltype(Sample::re);
    return complex_transform<id, inverse, T>(interleaved_points(reinterpret_cast<const T*>(src)),
                                             interleaved_points(reinterpret_cast<T*>(dst)), plan);
}

template <PlanId id, bool inverse, class T, class Plan>
KelStatus split(const T* src_re, const T* src_im, T* dst_re, T* dst_im, const Plan* plan) {
    Points<const T> src = {src_re, src_im};
    Points<T> dst = {dst_re, dst_im};
    if (inverse) { // the forward kernel with the parts exchanged
        src = src.exchanged();
        dst = dst.exchanged();
    }
    return complex_transform<id, inverse>(src, dst, plan);
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsFFTFwd_CToC_32fc(const Kel32fc* src, Kel32fc* dst, const KelsFftPlan_32f* plan, Kel8u*) { return interleaved<plan_C_32fc, false>(src, dst, plan); }
KelStatus kelsFFTFwd_CToC_64fc(const Kel64fc* src, Kel64fc* dst, const KelsFftPlan_64f* plan, Kel8u*) { return interleaved<plan_C_64fc, false>(src, dst, plan); }
KelStatus kelsFFTInv_CToC_32fc(const Kel32fc* src, Kel32fc* dst, const KelsFftPlan_32f* plan, Kel8u*) { return interleaved<plan_C_32fc, true>(src, dst, plan); }
KelStatus kelsFFTInv_CToC_64fc(const Kel64fc* src, Kel64fc* dst, const KelsFftPlan_64f* plan, Kel8u*) { return interleaved<plan_C_64fc, true>(src, dst, plan); }

KelStatus kelsFFTFwd_CToC_32f(const Kel32f* srcRe, const Kel32f* srcIm, Kel32f* dstRe, Kel32f* dstIm, const KelsFftPlan_32f* plan, Kel8u*) { return split<plan_C_32f, false>(srcRe, srcIm, dstRe, dstIm, plan); }
KelStatus kelsFFTFwd_CToC_64f(const Kel64f* srcRe, const Kel64f* srcIm, Kel64f* dstRe, Kel64f* dstIm, const KelsFftPlan_64f* plan, Kel8u*) { return split<plan_C_64f, false>(srcRe, srcIm, dstRe, dstIm, plan); }
KelStatus kelsFFTInv_CToC_32f(const Kel32f* srcRe, const Kel32f* srcIm, Kel32f* dstRe, Kel32f* dstIm, const KelsFftPlan_32f* plan, Kel8u*) { return split<plan_C_32f, true>(srcRe, srcIm, dstRe, dstIm, plan); }
KelStatus kelsFFTInv_CToC_64f(const Kel64f* srcRe, const Kel64f* srcIm, Kel64f* dstRe, Kel64f* dstIm, const KelsFftPlan_64f* plan, Kel8u*) { return split<plan_C_64f, true>(srcRe, srcIm, dstRe, dstIm, plan); }
}
// clang-format on
