// Complex transforms of any length: the checks, then the plan's way.

#include "transforms/dft/plan.h"

namespace kels {
namespace {

template <bool inverse, class T, class Source, class Sink>
KelStatus run_complex(const DftPlan<T>& plan, Source source, Sink sink, Kel8u* buffer) {
    const Work<T> work(plan.points.work(), buffer, plan.workBytes);
    if (!work.get()) return kelStatusNoMemory;
    run_any_length(plan.points, source, sink, inverse, plan.factor(inverse), work.get());
    return kelStatusOk;
}

template <DftPlanId id, bool inverse, class Sample, class Plan>
KelStatus interleaved_transform(const Sample* src, Sample* dst, const Plan* plan, Kel8u* buffer) {
    using T = decltype(Sample::re);
    using Fft = Spectral<Sample>;
    if (const KelStatus status = check_record(plan, id); status != kelStatusOk) return status;
    if (!src || !dst) return kelStatusNullPtr;
    if (plan->usesFft) return (inverse ? Fft::inverse : Fft::forward)(src, dst, plan->pFftPlan.get(), buffer);
    return run_complex<inverse, T>(*plan, InterleavedSource<T>{reinterpret_cast<const T*>(src)},
                                   InterleavedSink<T>{reinterpret_cast<T*>(dst)}, buffer);
}

template <DftPlanId id, bool inverse, class T, class Plan, class Fft>
KelStatus split_transform(const T* src_re, const T* src_im, T* dst_re, T* dst_im, const Plan* plan, Kel8u* buffer,
                          Fft fft) {
    if (const KelStatus status = check_record(plan, id); status != kelStatusOk) return status;
    if (!src_re || !src_im || !dst_re || !dst_im) return kelStatusNullPtr;
    if (plan->usesFft) return fft(src_re, src_im, dst_re, dst_im, plan->pFftPlan.get(), buffer);
    return run_complex<inverse, T>(*plan, SplitSource<T>{src_re, src_im}, SplitSink<T>{dst_re, dst_im}, buffer);
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsDFTFwd_CToC_32fc(const Kel32fc* src, Kel32fc* dst, const KelsDftPlan_32f* plan, Kel8u* buffer) { return interleaved_transform<dft_C_32fc, false>(src, dst, plan, buffer); }
KelStatus kelsDFTInv_CToC_32fc(const Kel32fc* src, Kel32fc* dst, const KelsDftPlan_32f* plan, Kel8u* buffer) { return interleaved_transform<dft_C_32fc, true>(src, dst, plan, buffer); }
KelStatus kelsDFTFwd_CToC_64fc(const Kel64fc* src, Kel64fc* dst, const KelsDftPlan_64f* plan, Kel8u* buffer) { return interleaved_transform<dft_C_64fc, false>(src, dst, plan, buffer); }
KelStatus kelsDFTInv_CToC_64fc(const Kel64fc* src, Kel64fc* dst, const KelsDftPlan_64f* plan, Kel8u* buffer) { return interleaved_transform<dft_C_64fc, true>(src, dst, plan, buffer); }

KelStatus kelsDFTFwd_CToC_32f(const Kel32f* srcRe, const Kel32f* srcIm, Kel32f* dstRe, Kel32f* dstIm, const KelsDftPlan_32f* plan, Kel8u* buffer) { return split_transform<dft_C_32f, false>(srcRe, srcIm, dstRe, dstIm, plan, buffer, kelsFFTFwd_CToC_32f); }
KelStatus kelsDFTInv_CToC_32f(const Kel32f* srcRe, const Kel32f* srcIm, Kel32f* dstRe, Kel32f* dstIm, const KelsDftPlan_32f* plan, Kel8u* buffer) { return split_transform<dft_C_32f, true>(srcRe, srcIm, dstRe, dstIm, plan, buffer, kelsFFTInv_CToC_32f); }
KelStatus kelsDFTFwd_CToC_64f(const Kel64f* srcRe, const Kel64f* srcIm, Kel64f* dstRe, Kel64f* dstIm, const KelsDftPlan_64f* plan, Kel8u* buffer) { return split_transform<dft_C_64f, false>(srcRe, srcIm, dstRe, dstIm, plan, buffer, kelsFFTFwd_CToC_64f); }
KelStatus kelsDFTInv_CToC_64f(const Kel64f* srcRe, const Kel64f* srcIm, Kel64f* dstRe, Kel64f* dstIm, const KelsDftPlan_64f* plan, Kel8u* buffer) { return split_transform<dft_C_64f, true>(srcRe, srcIm, dstRe, dstIm, plan, buffer, kelsFFTInv_CToC_64f); }
}
// clang-format on
