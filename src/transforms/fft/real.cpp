// Real transforms: N samples as N/2 complex ones through the complex kernel, and the recombination of the halves. The
// packed layouts differ in where three values stand, and the recombination writes or reads them in place.

#include "transforms/fft/plan.h"
#include "transforms/fft/real_recombination.h"
#include "transforms/fft/shapes.h"
#include "transforms/packed_spectrum.h"

namespace kels {
namespace {

/// Where bin k >= 1 of an even length stands, less 2k.
constexpr std::ptrdiff_t shift(Layout layout) { return first_complex(layout, 2) - 2; }

/// The transform and the recombination in registers, to the bins and to bin 0 of the complex transform; false where
/// they do not fit.
template <class T>
bool forward_in_registers(const FftPlan<T>& plan, const T* src, T* bins, T& even, T& odd) {
    if (plan.complex_order < first_table_order || plan.complex_order > top_register_order) return false;
    return with_shape<T>(plan.complex_order, [&]<class Shape>(Shape) {
        using Passes = PairPasses<Interleaved<false>, T, Shape>;
        if constexpr (Passes::in_registers && Passes::vectors <= 16) {
            typename Passes::V z[Passes::vectors];
            Passes::transform(interleaved_points(src), plan.forward.roots, plan.forward.factor, z);
            even = z[0][0];
            odd = z[0][1];
            recombine_from_registers<Passes::vectors>(z, bins, plan.recombination);
        }
        return Passes::in_registers && Passes::vectors <= 16;
    });
}

template <Layout layout, class T>
void forward(const FftPlan<T>& plan, const T* src, T* dst) {
    const std::ptrdiff_t points = std::ptrdiff_t{1} << plan.order;
    if (points == 1) {
        dst[0] = plan.normFwd ? src[0] * plan.normFactor : src[0];
        if (layout == Layout::ccs) dst[1] = 0;
        return;
    }
    T even = 0, odd = 0;
    if (!forward_in_registers(plan, src, dst + shift(layout), even, odd)) {
        transform<T>(plan, false, interleaved_points(src), interleaved_points(dst));
        even = dst[0];
        odd = dst[1];
        recombine<false>(plan, dst, dst + shift(layout));
    }
    dst[0] = even + odd;
    dst[nyquist(layout, points)] = even - odd;
    if (layout == Layout::ccs) dst[1] = dst[points + 1] = 0;
}

template <Layout layout, class T>
void inverse(const FftPlan<T>& plan, const T* src, T* dst) {
    const std::ptrdiff_t points = std::ptrdiff_t{1} << plan.order;
    if (points == 1) {
        dst[0] = plan.normInv ? src[0] * plan.normFactor : src[0];
        return;
    }
    const T first = src[0], middle = src[nyquist(layout, points)];
    recombine<true>(plan, src + shift(layout), dst);
    dst[0] = first + middle;
    dst[1] = first - middle;
    transform<T>(plan, true, interleaved_points<const T>(dst), interleaved_points(dst));
}

template <PlanId id, class T, class Plan>
KelStatus real_transform(const T* src, T* dst, const Plan* plan, void (*run)(const FftPlan<T>&, const T*, T*)) {
    if (const KelStatus status = check_record(plan, id); status != kelStatusOk) return status;
    if (!src || !dst) return kelStatusNullPtr;
    run(*plan, src, dst);
    return kelStatusOk;
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsFFTFwd_RToPerm_32f(const Kel32f* src, Kel32f* dst, const KelsFftPlan_32f* plan, Kel8u*) { return real_transform<plan_R_32f>(src, dst, plan, forward<Layout::perm, Kel32f>); }
KelStatus kelsFFTFwd_RToPerm_64f(const Kel64f* src, Kel64f* dst, const KelsFftPlan_64f* plan, Kel8u*) { return real_transform<plan_R_64f>(src, dst, plan, forward<Layout::perm, Kel64f>); }
KelStatus kelsFFTFwd_RToPack_32f(const Kel32f* src, Kel32f* dst, const KelsFftPlan_32f* plan, Kel8u*) { return real_transform<plan_R_32f>(src, dst, plan, forward<Layout::pack, Kel32f>); }
KelStatus kelsFFTFwd_RToPack_64f(const Kel64f* src, Kel64f* dst, const KelsFftPlan_64f* plan, Kel8u*) { return real_transform<plan_R_64f>(src, dst, plan, forward<Layout::pack, Kel64f>); }
KelStatus kelsFFTFwd_RToCCS_32f (const Kel32f* src, Kel32f* dst, const KelsFftPlan_32f* plan, Kel8u*) { return real_transform<plan_R_32f>(src, dst, plan, forward<Layout::ccs, Kel32f>); }
KelStatus kelsFFTFwd_RToCCS_64f (const Kel64f* src, Kel64f* dst, const KelsFftPlan_64f* plan, Kel8u*) { return real_transform<plan_R_64f>(src, dst, plan, forward<Layout::ccs, Kel64f>); }

KelStatus kelsFFTInv_PermToR_32f(const Kel32f* src, Kel32f* dst, const KelsFftPlan_32f* plan, Kel8u*) { return real_transform<plan_R_32f>(src, dst, plan, inverse<Layout::perm, Kel32f>); }
KelStatus kelsFFTInv_PermToR_64f(const Kel64f* src, Kel64f* dst, const KelsFftPlan_64f* plan, Kel8u*) { return real_transform<plan_R_64f>(src, dst, plan, inverse<Layout::perm, Kel64f>); }
KelStatus kelsFFTInv_PackToR_32f(const Kel32f* src, Kel32f* dst, const KelsFftPlan_32f* plan, Kel8u*) { return real_transform<plan_R_32f>(src, dst, plan, inverse<Layout::pack, Kel32f>); }
KelStatus kelsFFTInv_PackToR_64f(const Kel64f* src, Kel64f* dst, const KelsFftPlan_64f* plan, Kel8u*) { return real_transform<plan_R_64f>(src, dst, plan, inverse<Layout::pack, Kel64f>); }
KelStatus kelsFFTInv_CCSToR_32f (const Kel32f* src, Kel32f* dst, const KelsFftPlan_32f* plan, Kel8u*) { return real_transform<plan_R_32f>(src, dst, plan, inverse<Layout::ccs, Kel32f>); }
KelStatus kelsFFTInv_CCSToR_64f (const Kel64f* src, Kel64f* dst, const KelsFftPlan_64f* plan, Kel8u*) { return real_transform<plan_R_64f>(src, dst, plan, inverse<Layout::ccs, Kel64f>); }
}
// clang-format on
