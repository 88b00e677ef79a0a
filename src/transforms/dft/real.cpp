// Real transforms of any length: the checks, the work memory, then the plan's way.

#include "transforms/dft/real_transform.h"

namespace kels {
namespace {

template <class T>
using RealTransform = KelStatus (*)(const T*, T*, const typename Spectral<T>::Plan*, Kel8u*);

template <DftPlanId id, class T, class Plan, class Run>
KelStatus transform(const T* src, T* dst, const Plan* plan, Kel8u* buffer, RealTransform<T> fft, Run&& run) {
    if (const KelStatus status = check_record(plan, id); status != kelStatusOk) return status;
    if (!src || !dst) return kelStatusNullPtr;
    if (plan->usesFft) return fft(src, dst, plan->pFftPlan.get(), buffer);
    const Work<T> work(real_work<T>(*plan), buffer, plan->workBytes);
    if (!work.get()) return kelStatusNoMemory;
    run(work.get());
    return kelStatusOk;
}

template <DftPlanId id, Layout layout, class T, class Plan>
KelStatus forward(const T* src, T* dst, const Plan* plan, Kel8u* buffer, RealTransform<T> fft) {
    return transform<id>(src, dst, plan, buffer, fft, [=](T* work) {
        const std::ptrdiff_t n = plan->len;
        run_real_forward<T>(*plan, src, {layout, dst, n}, work);
        if (layout == Layout::ccs) dst[1] = 0;
        if (layout == Layout::ccs && n % 2 == 0) dst[n + 1] = 0;
    });
}

template <DftPlanId id, Layout layout, class T, class Plan>
KelStatus inverse(const T* src, T* dst, const Plan* plan, Kel8u* buffer, RealTransform<T> fft) {
    return transform<id>(src, dst, plan, buffer, fft, [=](T* work) {
        run_real_inverse<T>(*plan, {layout, src, plan->len}, dst, work);
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsDFTFwd_RToPerm_32f(const Kel32f* src, Kel32f* dst, const KelsDftPlan_32f* plan, Kel8u* buffer) { return forward<dft_R_32f, Layout::perm>(src, dst, plan, buffer, kelsFFTFwd_RToPerm_32f); }
KelStatus kelsDFTFwd_RToPack_32f(const Kel32f* src, Kel32f* dst, const KelsDftPlan_32f* plan, Kel8u* buffer) { return forward<dft_R_32f, Layout::pack>(src, dst, plan, buffer, kelsFFTFwd_RToPack_32f); }
KelStatus kelsDFTFwd_RToCCS_32f (const Kel32f* src, Kel32f* dst, const KelsDftPlan_32f* plan, Kel8u* buffer) { return forward<dft_R_32f, Layout::ccs>(src, dst, plan, buffer, kelsFFTFwd_RToCCS_32f); }
KelStatus kelsDFTFwd_RToPerm_64f(const Kel64f* src, Kel64f* dst, const KelsDftPlan_64f* plan, Kel8u* buffer) { return forward<dft_R_64f, Layout::perm>(src, dst, plan, buffer, kelsFFTFwd_RToPerm_64f); }
KelStatus kelsDFTFwd_RToPack_64f(const Kel64f* src, Kel64f* dst, const KelsDftPlan_64f* plan, Kel8u* buffer) { return forward<dft_R_64f, Layout::pack>(src, dst, plan, buffer, kelsFFTFwd_RToPack_64f); }
KelStatus kelsDFTFwd_RToCCS_64f (const Kel64f* src, Kel64f* dst, const KelsDftPlan_64f* plan, Kel8u* buffer) { return forward<dft_R_64f, Layout::ccs>(src, dst, plan, buffer, kelsFFTFwd_RToCCS_64f); }

KelStatus kelsDFTInv_PermToR_32f(const Kel32f* src, Kel32f* dst, const KelsDftPlan_32f* plan, Kel8u* buffer) { return inverse<dft_R_32f, Layout::perm>(src, dst, plan, buffer, kelsFFTInv_PermToR_32f); }
KelStatus kelsDFTInv_PackToR_32f(const Kel32f* src, Kel32f* dst, const KelsDftPlan_32f* plan, Kel8u* buffer) { return inverse<dft_R_32f, Layout::pack>(src, dst, plan, buffer, kelsFFTInv_PackToR_32f); }
KelStatus kelsDFTInv_CCSToR_32f (const Kel32f* src, Kel32f* dst, const KelsDftPlan_32f* plan, Kel8u* buffer) { return inverse<dft_R_32f, Layout::ccs>(src, dst, plan, buffer, kelsFFTInv_CCSToR_32f); }
KelStatus kelsDFTInv_PermToR_64f(const Kel64f* src, Kel64f* dst, const KelsDftPlan_64f* plan, Kel8u* buffer) { return inverse<dft_R_64f, Layout::perm>(src, dst, plan, buffer, kelsFFTInv_PermToR_64f); }
KelStatus kelsDFTInv_PackToR_64f(const Kel64f* src, Kel64f* dst, const KelsDftPlan_64f* plan, Kel8u* buffer) { return inverse<dft_R_64f, Layout::pack>(src, dst, plan, buffer, kelsFFTInv_PackToR_64f); }
KelStatus kelsDFTInv_CCSToR_64f (const Kel64f* src, Kel64f* dst, const KelsDftPlan_64f* plan, Kel8u* buffer) { return inverse<dft_R_64f, Layout::ccs>(src, dst, plan, buffer, kelsFFTInv_CCSToR_64f); }
}
// clang-format on
