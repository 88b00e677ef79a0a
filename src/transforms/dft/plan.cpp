// Plans of transforms of any length: made whole or not at all, read by every transform, released once.
//
// The size of the work buffer that a caller sees follows from length, kind and element type by a rule that callers
// count on; the ways that the transforms go here need no more.

#include "transforms/dft/plan.h"

#include "frame/modes.h"
#include "transforms/dft/real_recombination.h"

#include <bit>
#include <climits>

namespace kels {
namespace {

/// Lengths up to this one are said to need room for their points alone; the others, for a convolution.
constexpr int short_length(bool real) { return real ? 180 : 150; }

constexpr std::int64_t too_large = -1;

/// Bytes of work buffer; too_large where there is no plan of such a length.
template <class T>
std::int64_t work_size(int len, bool real) {
    if (len <= longest_straight) return 0;
    if (len <= short_length(real)) return (real ? 1 : 2) * std::int64_t{sizeof(T)} * len + 16;
    const int order = convolution_order(len);
    const std::int64_t size = (std::int64_t{2 * sizeof(T)} << order) + 16;
    if (size > INT_MAX) return too_large;
    const std::int64_t all = size + work_bytes<T>(order);
    return all > INT_MAX ? too_large : all;
}

/// Sets the normalisation that a flag stands for; false for any other value.
template <class T>
bool normalise(DftPlan<T>& plan, int flag) {
    if (flag != kelFftNormFwd && flag != kelFftNormInv && flag != kelFftNormSqrt && flag != kelFftNormNone)
        return false;
    plan.normFwd = flag == kelFftNormFwd || flag == kelFftNormSqrt;
    plan.normInv = flag == kelFftNormInv || flag == kelFftNormSqrt;
    const auto points = static_cast<long double>(settled(plan.len));
    if (flag != kelFftNormNone)
        plan.normFactor = settled(static_cast<T>(flag == kelFftNormSqrt ? 1 / std::sqrt(points) : 1 / points));
    return true;
}

template <DftPlanId id>
KelStatus make_fft(KelsDftPlan_32f& plan, int flag, int hint) {
    constexpr auto make = id == dft_C_32fc  ? kelsFFTInitAlloc_C_32fc
                          : id == dft_C_32f ? kelsFFTInitAlloc_C_32f
                                            : kelsFFTInitAlloc_R_32f;
    constexpr auto release = id == dft_C_32fc  ? kelsFFTFree_C_32fc
                             : id == dft_C_32f ? kelsFFTFree_C_32f
                                               : kelsFFTFree_R_32f;
    KelsFftPlan_32f* made = nullptr;
    const KelStatus status = make(&made, std::countr_zero(static_cast<unsigned>(plan.len)), flag, hint);
    plan.pFftPlan = {made, release};
    return status;
}

template <DftPlanId id>
KelStatus make_fft(KelsDftPlan_64f& plan, int flag, int hint) {
    constexpr auto make = id == dft_C_64fc  ? kelsFFTInitAlloc_C_64fc
                          : id == dft_C_64f ? kelsFFTInitAlloc_C_64f
                                            : kelsFFTInitAlloc_R_64f;
    constexpr auto release = id == dft_C_64fc  ? kelsFFTFree_C_64fc
                             : id == dft_C_64f ? kelsFFTFree_C_64f
                                               : kelsFFTFree_R_64f;
    KelsFftPlan_64f* made = nullptr;
    const KelStatus status = make(&made, std::countr_zero(static_cast<unsigned>(plan.len)), flag, hint);
    plan.pFftPlan = {made, release};
    return status;
}

/// Chooses the way of a length that is no power of two from 8 on, and lays its tables.
template <class T>
KelStatus make_tables_of(DftPlan<T>& plan, bool real) {
    std::ptrdiff_t length = plan.len;
    if (real) plan.real_way = real_way<T>(length);
    if (real && plan.real_way == RealWay::halves) length /= 2;
    if (real && plan.real_way == RealWay::direct) {
        plan.points.way = Way::direct;
        plan.points.length = length;
    } else if (const KelStatus status = choose_way(plan.points, length); status != kelStatusOk) {
        return status;
    }
    if (plan.points.way == Way::straight && length == plan.len) return kelStatusOk;
    plan.tables = make_tables([&](TableSpace& space) {
        lay_any_length(plan.points, space);
        if (real && plan.real_way == RealWay::halves) plan.recombination = lay_any_recombination<T>(plan.len, space);
    });
    return plan.tables ? kelStatusOk : kelStatusNoMemory;
}

template <DftPlanId id, class Plan>
KelStatus make_plan(Plan** result, int len, int flag, int hint) {
    using T = decltype(Plan::normFactor);
    if (!result) return kelStatusNullPtr;
    if (len < 1) return kelStatusBadSize;
    const ModesOfCreation modes;

    auto plan = make_record<Plan>(id);
    if (!plan) return kelStatusNoMemory;
    plan->len = len;
    if (!normalise(*plan, flag)) return kelStatusBadFftFlag;

    KelStatus status = kelStatusOk;
    if (len > longest_straight && std::has_single_bit(static_cast<unsigned>(len))) {
        plan->usesFft = 1;
        status = make_fft<id>(*plan, flag, hint);
        if (status == kelStatusOk) plan->workBytes = plan->pFftPlan->workBytes;
    } else {
        const std::int64_t size = work_size<T>(len, is_real(id));
        if (size == too_large) return kelStatusNoMemory;
        plan->workBytes = static_cast<Kel32s>(size);
        status = make_tables_of<T>(*plan, is_real(id));
    }
    if (status == kelStatusOk) *result = plan.release();
    return status;
}

template <DftPlanId id>
KelStatus make_plan(KelsDftPlan_16s** result, int len, int flag, int hint) {
    constexpr auto make = id == dft_C_16sc  ? kelsDFTInitAlloc_C_32fc
                          : id == dft_C_16s ? kelsDFTInitAlloc_C_32f
                                            : kelsDFTInitAlloc_R_32f;
    constexpr auto release = id == dft_C_16sc  ? kelsDFTFree_C_32fc
                             : id == dft_C_16s ? kelsDFTFree_C_32f
                                               : kelsDFTFree_R_32f;
    if (!result) return kelStatusNullPtr;
    if (len < 1) return kelStatusBadSize;
    auto plan = make_record<KelsDftPlan_16s>(id);
    if (!plan) return kelStatusNoMemory;
    plan->len = len;
    plan->hint = hint;
    if (len > 1) {
        KelsDftPlan_32f* made = nullptr;
        if (const KelStatus status = make(&made, len, flag, kelHintWideFixed)) return status;
        plan->pFloatPlan = {made, release};
        const std::int64_t size =
            (is_real(id) ? 4 * std::int64_t{len} + 24 : 8 * std::int64_t{len} + 16) + made->workBytes;
        if (size > INT_MAX) return kelStatusNoMemory;
        plan->workBytes = static_cast<Kel32s>(size);
    }
    *result = plan.release();
    return kelStatusOk;
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsDFTInitAlloc_C_16sc(KelsDftPlan_16s** plan, int len, int flag, int hint) { return make_plan<dft_C_16sc>(plan, len, flag, hint); }
KelStatus kelsDFTInitAlloc_C_16s (KelsDftPlan_16s** plan, int len, int flag, int hint) { return make_plan<dft_C_16s>(plan, len, flag, hint); }
KelStatus kelsDFTInitAlloc_R_16s (KelsDftPlan_16s** plan, int len, int flag, int hint) { return make_plan<dft_R_16s>(plan, len, flag, hint); }
KelStatus kelsDFTInitAlloc_C_32fc(KelsDftPlan_32f** plan, int len, int flag, int hint) { return make_plan<dft_C_32fc>(plan, len, flag, hint); }
KelStatus kelsDFTInitAlloc_C_32f (KelsDftPlan_32f** plan, int len, int flag, int hint) { return make_plan<dft_C_32f>(plan, len, flag, hint); }
KelStatus kelsDFTInitAlloc_R_32f (KelsDftPlan_32f** plan, int len, int flag, int hint) { return make_plan<dft_R_32f>(plan, len, flag, hint); }
KelStatus kelsDFTInitAlloc_C_64fc(KelsDftPlan_64f** plan, int len, int flag, int hint) { return make_plan<dft_C_64fc>(plan, len, flag, hint); }
KelStatus kelsDFTInitAlloc_C_64f (KelsDftPlan_64f** plan, int len, int flag, int hint) { return make_plan<dft_C_64f>(plan, len, flag, hint); }
KelStatus kelsDFTInitAlloc_R_64f (KelsDftPlan_64f** plan, int len, int flag, int hint) { return make_plan<dft_R_64f>(plan, len, flag, hint); }

KelStatus kelsDFTFree_C_16sc(KelsDftPlan_16s* plan) { return free_plan<dft_C_16sc>(plan); }
KelStatus kelsDFTFree_C_16s (KelsDftPlan_16s* plan) { return free_plan<dft_C_16s>(plan); }
KelStatus kelsDFTFree_R_16s (KelsDftPlan_16s* plan) { return free_plan<dft_R_16s>(plan); }
KelStatus kelsDFTFree_C_32fc(KelsDftPlan_32f* plan) { return free_plan<dft_C_32fc>(plan); }
KelStatus kelsDFTFree_C_32f (KelsDftPlan_32f* plan) { return free_plan<dft_C_32f>(plan); }
KelStatus kelsDFTFree_R_32f (KelsDftPlan_32f* plan) { return free_plan<dft_R_32f>(plan); }
KelStatus kelsDFTFree_C_64fc(KelsDftPlan_64f* plan) { return free_plan<dft_C_64fc>(plan); }
KelStatus kelsDFTFree_C_64f (KelsDftPlan_64f* plan) { return free_plan<dft_C_64f>(plan); }
KelStatus kelsDFTFree_R_64f (KelsDftPlan_64f* plan) { return free_plan<dft_R_64f>(plan); }

KelStatus kelsDFTGetBufSize_C_16sc(const KelsDftPlan_16s* plan, int* size) { return buffer_size<dft_C_16sc>(plan, size); }
KelStatus kelsDFTGetBufSize_C_16s (const KelsDftPlan_16s* plan, int* size) { return buffer_size<dft_C_16s>(plan, size); }
KelStatus kelsDFTGetBufSize_R_16s (const KelsDftPlan_16s* plan, int* size) { return buffer_size<dft_R_16s>(plan, size); }
KelStatus kelsDFTGetBufSize_C_32fc(const KelsDftPlan_32f* plan, int* size) { return buffer_size<dft_C_32fc>(plan, size); }
KelStatus kelsDFTGetBufSize_C_32f (const KelsDftPlan_32f* plan, int* size) { return buffer_size<dft_C_32f>(plan, size); }
KelStatus kelsDFTGetBufSize_R_32f (const KelsDftPlan_32f* plan, int* size) { return buffer_size<dft_R_32f>(plan, size); }
KelStatus kelsDFTGetBufSize_C_64fc(const KelsDftPlan_64f* plan, int* size) { return buffer_size<dft_C_64fc>(plan, size); }
KelStatus kelsDFTGetBufSize_C_64f (const KelsDftPlan_64f* plan, int* size) { return buffer_size<dft_C_64f>(plan, size); }
KelStatus kelsDFTGetBufSize_R_64f (const KelsDftPlan_64f* plan, int* size) { return buffer_size<dft_R_64f>(plan, size); }
}
// clang-format on
