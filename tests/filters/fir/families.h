// The families of FIR filters as the tests see them: types, functions, and the facts that show.
#pragma once

#include "filters/streams.h"
#include "kels/fir.h"
#include "kels/fir_direct.h"

namespace fir_test {

using namespace filter_test;

template <class Functions>
struct Fir : filter_test::Family<Functions> {
    using Base = filter_test::Family<Functions>;
    static constexpr bool to_16_bits = Base::single_taps && Base::integer_samples;
    /// Contexts of as many taps hold a plan; 0 is never.
    static constexpr int least_for_plan = Base::integer_taps ? 0
                                                             : (to_16_bits ? 128 : 32) / (!Base::complex ? 1
                                                                                          : to_16_bits   ? 4
                                                                                                         : 2);
    /// In place a plan runs at any length.
    static constexpr bool plan_in_place_always = !Base::complex && !Base::integer_taps && !to_16_bits;
    /// Where the rules have a transform, ties go to even.
    static constexpr bool ties_to_even =
        Base::integer_samples && !Base::integer_taps && (sizeof(Part<typename Base::Sample>) == 4 || Base::single_taps);
    /// A multi-rate filter of factors 1 and 1 is one of one rate.
    static constexpr bool degenerates = std::is_same_v<typename Base::Taps, Kel32f>;
};

#define KELS_FIR(taps, samples, ending, ending_in_place)                                                               \
    struct Functions##taps##_##samples {                                                                               \
        KELS_FILTER_FUNCTIONS(FIR, taps, samples, ending, ending_in_place)                                             \
        static constexpr auto init_multi_rate = kelsFIRMRInitAlloc##taps##_##samples;                                  \
        static constexpr auto get_taps = kelsFIRGetTaps##taps##_##samples;                                             \
        static constexpr auto direct_block = kelsFIR##taps##_Direct_##samples##ending;                                 \
        static constexpr auto direct_in_place = kelsFIR##taps##_Direct_##samples##ending_in_place;                     \
        static constexpr auto direct_one = kelsFIROne##taps##_Direct_##samples##ending;                                \
        static constexpr auto direct_one_in_place = kelsFIROne##taps##_Direct_##samples##ending_in_place;              \
        static constexpr auto rates = kelsFIRMR##taps##_Direct_##samples##ending;                                      \
        static constexpr auto rates_in_place = kelsFIRMR##taps##_Direct_##samples##ending_in_place;                    \
    };                                                                                                                 \
    using Family##taps##_##samples = Fir<Functions##taps##_##samples>;
KELS_FILTERS(KELS_FIR)
#undef KELS_FIR

using Families = testing::Types<Family_32f, Family_32fc, Family32f_16s, Family32fc_16sc, Family32s_16s, Family32sc_16sc,
                                Family_64f, Family_64fc, Family64f_32f, Family64fc_32fc, Family64f_32s, Family64fc_32sc,
                                Family64f_16s, Family64fc_16sc>;

struct Rates {
    int up = 1, upPhase = 0, down = 1, downPhase = 0;
};

// The functions that make a context and read its taps, under one signature.

template <class F>
KelStatus init(KelFirContext** context, const typename F::Taps* taps, int count, int tapsFactor,
               const typename F::Sample* line) {
    if constexpr (F::integer_taps)
        return F::init(context, taps, count, tapsFactor, line);
    else
        return F::init(context, taps, count, line);
}

template <class F>
KelStatus init_multi_rate(KelFirContext** context, const typename F::Taps* taps, int count, int tapsFactor, int up,
                          int upPhase, int down, int downPhase, const typename F::Sample* line) {
    if constexpr (F::integer_taps)
        return F::init_multi_rate(context, taps, count, tapsFactor, up, upPhase, down, downPhase, line);
    else
        return F::init_multi_rate(context, taps, count, up, upPhase, down, downPhase, line);
}

template <class F>
KelStatus get_taps(const KelFirContext* context, typename F::Taps* taps) {
    int factor;
    if constexpr (F::integer_taps)
        return F::get_taps(context, taps, &factor);
    else
        return F::get_taps(context, taps);
}

using Context = kels_test::Owned<KelFirContext>;

template <class F>
Context make(const std::vector<typename F::Taps>& taps, const std::vector<typename F::Sample>& newest_first = {}) {
    return kels_test::made(init<F>, F::release, taps.data(), static_cast<int>(taps.size()), 0,
                           newest_first.empty() ? nullptr : newest_first.data());
}

template <class F>
Context make_multi_rate(const std::vector<typename F::Taps>& taps, const Rates& r) {
    return kels_test::made(init_multi_rate<F>, F::release, taps.data(), static_cast<int>(taps.size()), 0, r.up,
                           r.upPhase, r.down, r.downPhase, nullptr);
}

/// Length of the plan that decides between the engines; 0 without one.
template <class F>
int plan_length(int taps) {
    if (F::least_for_plan == 0 || taps < F::least_for_plan) return 0;
    int order = 0;
    while ((1 << order) <= taps) ++order;
    return 1 << (order < 8 ? order + 1 : order);
}

} // namespace fir_test
