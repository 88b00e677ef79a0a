// Transforms of 16-bit data of any length: to singles, through their transform in place, and back.

#include "transforms/dft/plan.h"
#include "transforms/dft/sixteen_bits.h"

namespace kels {
namespace {

template <DftPlanId id>
KelStatus check(const KelsDftPlan_16s* plan, std::initializer_list<const void*> data) {
    if (const KelStatus status = check_record(plan, id); status != kelStatusOk) return status;
    return std::any_of(data.begin(), data.end(), [](const void* p) { return !p; }) ? kelStatusNullPtr : kelStatusOk;
}

using Interleaved32f = KelStatus (*)(const Kel32fc*, Kel32fc*, const KelsDftPlan_32f*, Kel8u*);

KelStatus transform(const Kel16sc* src, Kel16sc* dst, const KelsDftPlan_16s* plan, int scale, Kel8u* buffer,
                    Interleaved32f run) {
    if (const KelStatus status = check<dft_C_16sc>(plan, {src, dst}); status != kelStatusOk) return status;
    if (plan->len == 1) {
        *dst = {scaled_value(src->re, scale), scaled_value(src->im, scale)};
        return kelStatusOk;
    }
    const int len = plan->len;
    const SingleWork work(2 * std::int64_t{len}, buffer, plan->workBytes);
    if (!work.values) return kelStatusNoMemory;
    kelsConvert_16s32f(&src->re, work.values, 2 * len);
    auto* points = reinterpret_cast<Kel32fc*>(work.values);
    const KelStatus status = run(points, points, plan->pFloatPlan.get(), work.behind);
    if (status == kelStatusOk) convert_back(work.values, &dst->re, 2 * len, scale);
    return status;
}

using Split32f = KelStatus (*)(const Kel32f*, const Kel32f*, Kel32f*, Kel32f*, const KelsDftPlan_32f*, Kel8u*);

KelStatus transform(const Kel16s* src_re, const Kel16s* src_im, Kel16s* dst_re, Kel16s* dst_im,
                    const KelsDftPlan_16s* plan, int scale, Kel8u* buffer, Split32f run) {
    if (const KelStatus status = check<dft_C_16s>(plan, {src_re, src_im, dst_re, dst_im}); status != kelStatusOk)
        return status;
    if (plan->len == 1) {
        const Kel16s re = scaled_value(*src_re, scale), im = scaled_value(*src_im, scale);
        *dst_re = re;
        *dst_im = im;
        return kelStatusOk;
    }
    const int len = plan->len;
    const SingleWork work(2 * std::int64_t{len}, buffer, plan->workBytes);
    if (!work.values) return kelStatusNoMemory;
    Kel32f *re = work.values, *im = re + len;
    kelsConvert_16s32f(src_re, re, len);
    kelsConvert_16s32f(src_im, im, len);
    const KelStatus status = run(re, im, re, im, plan->pFloatPlan.get(), work.behind);
    if (status != kelStatusOk) return status;
    convert_back(re, dst_re, len, scale);
    convert_back(im, dst_im, len, scale);
    return kelStatusOk;
}

using Real32f = KelStatus (*)(const Kel32f*, Kel32f*, const KelsDftPlan_32f*, Kel8u*);

/// `in_ccs`, `out_ccs`: which of the two is a CCS spectrum, of more values than the length.
template <bool in_ccs, bool out_ccs>
KelStatus real_transform(const Kel16s* src, Kel16s* dst, const KelsDftPlan_16s* plan, int scale, Kel8u* buffer,
                         Real32f run) {
    if (const KelStatus status = check<dft_R_16s>(plan, {src, dst}); status != kelStatusOk) return status;
    if (plan->len == 1) {
        dst[0] = scaled_value(src[0], scale);
        if (out_ccs) dst[1] = 0;
        return kelStatusOk;
    }
    const int len = plan->len, ccs = (len | 1) + 1;
    const SingleWork work(std::int64_t{len} + (in_ccs || out_ccs ? 2 : 0), buffer, plan->workBytes);
    if (!work.values) return kelStatusNoMemory;
    kelsConvert_16s32f(src, work.values, in_ccs ? ccs : len);
    const KelStatus status = run(work.values, work.values, plan->pFloatPlan.get(), work.behind);
    if (status == kelStatusOk) convert_back(work.values, dst, out_ccs ? ccs : len, scale);
    return status;
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsDFTFwd_CToC_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, const KelsDftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return transform(src, dst, plan, scaleFactor, buffer, kelsDFTFwd_CToC_32fc); }
KelStatus kelsDFTInv_CToC_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, const KelsDftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return transform(src, dst, plan, scaleFactor, buffer, kelsDFTInv_CToC_32fc); }
KelStatus kelsDFTFwd_CToC_16s_Sfs(const Kel16s* srcRe, const Kel16s* srcIm, Kel16s* dstRe, Kel16s* dstIm, const KelsDftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return transform(srcRe, srcIm, dstRe, dstIm, plan, scaleFactor, buffer, kelsDFTFwd_CToC_32f); }
KelStatus kelsDFTInv_CToC_16s_Sfs(const Kel16s* srcRe, const Kel16s* srcIm, Kel16s* dstRe, Kel16s* dstIm, const KelsDftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return transform(srcRe, srcIm, dstRe, dstIm, plan, scaleFactor, buffer, kelsDFTInv_CToC_32f); }

KelStatus kelsDFTFwd_RToPerm_16s_Sfs(const Kel16s* src, Kel16s* dst, const KelsDftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return real_transform<false, false>(src, dst, plan, scaleFactor, buffer, kelsDFTFwd_RToPerm_32f); }
KelStatus kelsDFTFwd_RToPack_16s_Sfs(const Kel16s* src, Kel16s* dst, const KelsDftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return real_transform<false, false>(src, dst, plan, scaleFactor, buffer, kelsDFTFwd_RToPack_32f); }
KelStatus kelsDFTFwd_RToCCS_16s_Sfs (const Kel16s* src, Kel16s* dst, const KelsDftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return real_transform<false, true>(src, dst, plan, scaleFactor, buffer, kelsDFTFwd_RToCCS_32f); }
KelStatus kelsDFTInv_PermToR_16s_Sfs(const Kel16s* src, Kel16s* dst, const KelsDftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return real_transform<false, false>(src, dst, plan, scaleFactor, buffer, kelsDFTInv_PermToR_32f); }
KelStatus kelsDFTInv_PackToR_16s_Sfs(const Kel16s* src, Kel16s* dst, const KelsDftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return real_transform<false, false>(src, dst, plan, scaleFactor, buffer, kelsDFTInv_PackToR_32f); }
KelStatus kelsDFTInv_CCSToR_16s_Sfs (const Kel16s* src, Kel16s* dst, const KelsDftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return real_transform<true, false>(src, dst, plan, scaleFactor, buffer, kelsDFTInv_CCSToR_32f); }
}
// clang-format on
