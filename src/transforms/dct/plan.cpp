// Plans of the discrete cosine transform: made whole or not at all, read by every transform, released once.
//
// The size of the work buffer that a caller sees follows from length, hint and element type by a rule that callers
// count on; the transforms need no more.

#include "transforms/dct/plan.h"

#include "frame/modes.h"
#include "transforms/dct/transform.h"

#include <bit>
#include <climits>

namespace kels {
namespace {

/// Longer lengths that are no powers of two are said to be convolutions.
constexpr int longest_sum = 100;
/// Powers of two from this one on, with the hint for it, are said to go through an FFT of twice the length.
constexpr int first_doubled = 1024;

constexpr std::int64_t too_large = -1;

/// Bytes of work buffer; too_large where there is no plan of such a length.
template <class T>
std::int64_t work_size(int len, int hint) {
    constexpr std::int64_t size = sizeof(T);
    if (straight_dct(len)) return 0;
    std::int64_t bytes = size * len + 16;
    if (std::has_single_bit(static_cast<unsigned>(len))) {
        if (hint == kelHintFloat && len >= first_doubled)
            bytes = 2 * size * len + 16 + work_bytes<T>(std::countr_zero(static_cast<unsigned>(len)));
    } else if (len > longest_sum) {
        const int order = convolution_order(len);
        bytes = (2 * size << order) + 16;
        if (bytes <= INT_MAX) bytes += work_bytes<T>(order);
    }
    return bytes > INT_MAX ? too_large : bytes;
}

template <class T>
KelStatus make_real_plan(DctPlan<T>& plan) {
    typename DctPlan<T>::RealPlan* made = nullptr;
    KelStatus status;
    if constexpr (sizeof(T) == 4)
        status = kelsDFTInitAlloc_R_32f(&made, plan.len, kelFftNormNone, kelHintDefault);
    else
        status = kelsDFTInitAlloc_R_64f(&made, plan.len, kelFftNormNone, kelHintDefault);
    plan.real.reset(made);
    return status;
}

template <DctPlanId id, bool inverse, class Plan>
KelStatus make_plan(Plan** result, int len, int hint) {
    using T = decltype(Plan::scale);
    if (!result) return kelStatusNullPtr;
    if (len < 1) return kelStatusBadSize;
    const ModesOfCreation modes;

    auto plan = make_record<Plan>(id);
    if (!plan) return kelStatusNoMemory;
    plan->len = len;
    const std::int64_t size = work_size<T>(len, hint);
    if (size == too_large) return kelStatusNoMemory;
    plan->workBytes = static_cast<Kel32s>(size);
    plan->scale = settled(static_cast<T>(1 / std::sqrt(static_cast<long double>(settled(plan->len)))));
    if (!straight_dct(len)) {
        if (const KelStatus status = make_real_plan<T>(*plan); status != kelStatusOk) return status;
        plan->tables = make_tables([&](TableSpace& space) { plan->turns = lay_dct_turns<inverse, T>(len, space); });
        if (!plan->tables) return kelStatusNoMemory;
    }
    *result = plan.release();
    return kelStatusOk;
}

template <DctPlanId id>
KelStatus make_plan(KelsDctPlan_16s** result, int len, int hint) {
    constexpr bool forward = id == dct_forward_16s;
    constexpr auto make = forward ? kelsDCTFwdInitAlloc_32f : kelsDCTInvInitAlloc_32f;
    if (!result) return kelStatusNullPtr;
    if (len < 1) return kelStatusBadSize;
    auto plan = make_record<KelsDctPlan_16s>(id);
    if (!plan) return kelStatusNoMemory;
    plan->len = len;
    plan->hint = hint;
    if (len > 1) {
        KelsDctPlan_32f* made = nullptr;
        if (const KelStatus status = make(&made, len, kelHintWideFixed)) return status;
        plan->pFloatPlan = {made, forward ? kelsDCTFwdFree_32f : kelsDCTInvFree_32f};
        const std::int64_t size = 4 * std::int64_t{len} + 16 + made->workBytes;
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
KelStatus kelsDCTFwdInitAlloc_16s(KelsDctPlan_16s** plan, int len, int hint) { return make_plan<dct_forward_16s>(plan, len, hint); }
KelStatus kelsDCTInvInitAlloc_16s(KelsDctPlan_16s** plan, int len, int hint) { return make_plan<dct_inverse_16s>(plan, len, hint); }
KelStatus kelsDCTFwdInitAlloc_32f(KelsDctPlan_32f** plan, int len, int hint) { return make_plan<dct_forward_32f, false>(plan, len, hint); }
KelStatus kelsDCTInvInitAlloc_32f(KelsDctPlan_32f** plan, int len, int hint) { return make_plan<dct_inverse_32f, true>(plan, len, hint); }
KelStatus kelsDCTFwdInitAlloc_64f(KelsDctPlan_64f** plan, int len, int hint) { return make_plan<dct_forward_64f, false>(plan, len, hint); }
KelStatus kelsDCTInvInitAlloc_64f(KelsDctPlan_64f** plan, int len, int hint) { return make_plan<dct_inverse_64f, true>(plan, len, hint); }

KelStatus kelsDCTFwdFree_16s(KelsDctPlan_16s* plan) { return free_plan<dct_forward_16s>(plan); }
KelStatus kelsDCTInvFree_16s(KelsDctPlan_16s* plan) { return free_plan<dct_inverse_16s>(plan); }
KelStatus kelsDCTFwdFree_32f(KelsDctPlan_32f* plan) { return free_plan<dct_forward_32f>(plan); }
KelStatus kelsDCTInvFree_32f(KelsDctPlan_32f* plan) { return free_plan<dct_inverse_32f>(plan); }
KelStatus kelsDCTFwdFree_64f(KelsDctPlan_64f* plan) { return free_plan<dct_forward_64f>(plan); }
KelStatus kelsDCTInvFree_64f(KelsDctPlan_64f* plan) { return free_plan<dct_inverse_64f>(plan); }

KelStatus kelsDCTFwdGetBufSize_16s(const KelsDctPlan_16s* plan, int* size) { return buffer_size<dct_forward_16s>(plan, size); }
KelStatus kelsDCTInvGetBufSize_16s(const KelsDctPlan_16s* plan, int* size) { return buffer_size<dct_inverse_16s>(plan, size); }
KelStatus kelsDCTFwdGetBufSize_32f(const KelsDctPlan_32f* plan, int* size) { return buffer_size<dct_forward_32f>(plan, size); }
KelStatus kelsDCTInvGetBufSize_32f(const KelsDctPlan_32f* plan, int* size) { return buffer_size<dct_inverse_32f>(plan, size); }
KelStatus kelsDCTFwdGetBufSize_64f(const KelsDctPlan_64f* plan, int* size) { return buffer_size<dct_forward_64f>(plan, size); }
KelStatus kelsDCTInvGetBufSize_64f(const KelsDctPlan_64f* plan, int* size) { return buffer_size<dct_inverse_64f>(plan, size); }
}
// clang-format on
