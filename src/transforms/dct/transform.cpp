// Cosine transforms: the checks, the work memory, then the way of the length. 16-bit data go through singles.

#include "transforms/dct/transform.h"

#include "transforms/dct/straight.h"
#include "transforms/dft/sixteen_bits.h"

namespace kels {
namespace {

/// The FFT of a real power of two.
template <class T>
struct RealFft;
template <>
struct RealFft<Kel32f> {
    static constexpr auto forward = kelsFFTFwd_RToPerm_32f, inverse = kelsFFTInv_PermToR_32f;
};
template <>
struct RealFft<Kel64f> {
    static constexpr auto forward = kelsFFTFwd_RToPerm_64f, inverse = kelsFFTInv_PermToR_64f;
};

/// An odd length through a convolution, whose memory is all that there is.
template <class T>
bool is_bare(const DftPlan<T>& real) {
    return !real.usesFft && real.real_way == RealWay::whole && real.points.way == Way::chirp;
}

template <class T>
void forward(const DctPlan<T>& plan, const T* src, T* dst, T* work) {
    const std::ptrdiff_t n = plan.len;
    const DftPlan<T>& real = *plan.real;
    if (is_bare(real))
        return run_chirp(real.points.chirp, PermutedSource<T>{src, n}, TurnedSink<T>{plan, dst}, false, T(1), work);
    T* v = work;
    permute(src, v, n);
    const Spectrum<T> bins(Layout::perm, v, n);
    if (real.usesFft)
        RealFft<T>::forward(v, v, real.pFftPlan.get(), nullptr);
    else
        run_real_forward(real, v, bins, work + n);
    turn_bins<T>(plan, {Layout::perm, v, n}, dst);
}

template <class T>
void inverse(const DctPlan<T>& plan, const T* src, T* dst, T* work) {
    const std::ptrdiff_t n = plan.len;
    const DftPlan<T>& real = *plan.real;
    if (is_bare(real))
        return run_chirp(real.points.chirp, TurnedSource<T>{plan, src}, PermutedSink<T>{dst, n}, true, T(1), work);
    T* v = work;
    turn_back<T>(plan, src, {Layout::perm, v, n});
    if (real.usesFft)
        RealFft<T>::inverse(v, v, real.pFftPlan.get(), nullptr);
    else
        run_real_inverse<T>(real, {Layout::perm, v, n}, v, work + n);
    permute_back(v, dst, n);
}

template <DctPlanId id, bool inverted, class T, class Plan>
KelStatus transform(const T* src, T* dst, const Plan* plan, Kel8u* buffer) {
    if (const KelStatus status = check_record(plan, id); status != kelStatusOk) return status;
    if (!src || !dst) return kelStatusNullPtr;
    if (!plan->real) {
        run_straight_dct<inverted>(plan->len, src, dst);
        return kelStatusOk;
    }
    const Work<T> work(is_bare<T>(*plan->real) ? plan->real->points.work() : dct_work<T>(*plan), buffer,
                       plan->workBytes);
    if (!work.get()) return kelStatusNoMemory;
    (inverted ? inverse<T> : forward<T>)(*plan, src, dst, work.get());
    return kelStatusOk;
}

using SingleTransform = KelStatus (*)(const Kel32f*, Kel32f*, const KelsDctPlan_32f*, Kel8u*);

template <DctPlanId id>
KelStatus transform(const Kel16s* src, Kel16s* dst, const KelsDctPlan_16s* plan, int scale, Kel8u* buffer,
                    SingleTransform run) {
    if (const KelStatus status = check_record(plan, id); status != kelStatusOk) return status;
    if (!src || !dst) return kelStatusNullPtr;
    if (plan->len == 1) {
        *dst = scaled_value(*src, scale);
        return kelStatusOk;
    }
    const SingleWork work(plan->len, buffer, plan->workBytes);
    if (!work.values) return kelStatusNoMemory;
    kelsConvert_16s32f(src, work.values, plan->len);
    const KelStatus status = run(work.values, work.values, plan->pFloatPlan.get(), work.behind);
    if (status == kelStatusOk) convert_back(work.values, dst, plan->len, scale);
    return status;
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsDCTFwd_32f(const Kel32f* src, Kel32f* dst, const KelsDctPlan_32f* plan, Kel8u* buffer) { return transform<dct_forward_32f, false>(src, dst, plan, buffer); }
KelStatus kelsDCTInv_32f(const Kel32f* src, Kel32f* dst, const KelsDctPlan_32f* plan, Kel8u* buffer) { return transform<dct_inverse_32f, true>(src, dst, plan, buffer); }
KelStatus kelsDCTFwd_64f(const Kel64f* src, Kel64f* dst, const KelsDctPlan_64f* plan, Kel8u* buffer) { return transform<dct_forward_64f, false>(src, dst, plan, buffer); }
KelStatus kelsDCTInv_64f(const Kel64f* src, Kel64f* dst, const KelsDctPlan_64f* plan, Kel8u* buffer) { return transform<dct_inverse_64f, true>(src, dst, plan, buffer); }

KelStatus kelsDCTFwd_16s_Sfs(const Kel16s* src, Kel16s* dst, const KelsDctPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return transform<dct_forward_16s>(src, dst, plan, scaleFactor, buffer, kelsDCTFwd_32f); }
KelStatus kelsDCTInv_16s_Sfs(const Kel16s* src, Kel16s* dst, const KelsDctPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return transform<dct_inverse_16s>(src, dst, plan, scaleFactor, buffer, kelsDCTInv_32f); }
}
// clang-format on
