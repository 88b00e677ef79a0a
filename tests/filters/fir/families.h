// The families of FIR filters as the tests see them: types, functions, and the facts that show.
#pragma once

#include "filters/streams.h"
#include "kels/fir.h"
#include "kels/fir_direct.h"

namespace fir_test {

using namespace filter_test;

/// `least`: contexts of as many taps hold a plan; 0 is never.
template <class T, class S, int least, auto init_, auto init_multi_rate_, auto get_taps_, auto direct_block_,
          auto direct_in_place_, auto direct_one_, auto direct_one_in_place_, auto rates_, auto rates_in_place_,
          auto... of_contexts>
struct Fir : filter_test::Family<T, S, S, of_contexts...> {
    static constexpr auto init = init_;
    static constexpr auto init_multi_rate = init_multi_rate_;
    static constexpr auto get_taps = get_taps_;
    static constexpr auto direct_block = direct_block_;
    static constexpr auto direct_in_place = direct_in_place_;
    static constexpr auto direct_one = direct_one_;
    static constexpr auto direct_one_in_place = direct_one_in_place_;
    static constexpr auto rates = rates_;
    static constexpr auto rates_in_place = rates_in_place_;
    static constexpr int least_for_plan = least;

    using Base = filter_test::Family<T, S, S, of_contexts...>;
    /// In place a plan runs at any length.
    static constexpr bool plan_in_place_always =
        !Base::complex && !Base::integer_taps && !(Base::single_taps && Base::integer_samples);
    /// Where the rules have a transform, ties go to even.
    static constexpr bool ties_to_even =
        Base::integer_samples && !Base::integer_taps && (sizeof(Part<S>) == 4 || Base::single_taps);
    /// A multi-rate filter of factors 1 and 1 is one of one rate.
    static constexpr bool degenerates =
        std::is_same_v<T, Kel32f> && (std::is_same_v<S, Kel32f> || std::is_same_v<S, Kel16s>);
};

using Family_32f = Fir<Kel32f, Kel32f, 32, kelsFIRInitAlloc_32f, kelsFIRMRInitAlloc_32f, kelsFIRGetTaps_32f,
                       kelsFIR_Direct_32f, kelsFIR_Direct_32f_I, kelsFIROne_Direct_32f, kelsFIROne_Direct_32f_I,
                       kelsFIRMR_Direct_32f, kelsFIRMR_Direct_32f_I, kelsFIRFree_32f, kelsFIRGetDlyLine_32f,
                       kelsFIRSetDlyLine_32f, kelsFIR_32f, kelsFIR_32f_I, kelsFIROne_32f>;
using Family_32fc = Fir<Kel32fc, Kel32fc, 16, kelsFIRInitAlloc_32fc, kelsFIRMRInitAlloc_32fc, kelsFIRGetTaps_32fc,
                        kelsFIR_Direct_32fc, kelsFIR_Direct_32fc_I, kelsFIROne_Direct_32fc, kelsFIROne_Direct_32fc_I,
                        kelsFIRMR_Direct_32fc, kelsFIRMR_Direct_32fc_I, kelsFIRFree_32fc, kelsFIRGetDlyLine_32fc,
                        kelsFIRSetDlyLine_32fc, kelsFIR_32fc, kelsFIR_32fc_I, kelsFIROne_32fc>;
using Family_32f_16s = Fir<Kel32f, Kel16s, 128, kelsFIRInitAlloc32f_16s, kelsFIRMRInitAlloc32f_16s,
                           kelsFIRGetTaps32f_16s, kelsFIR32f_Direct_16s_Sfs, kelsFIR32f_Direct_16s_ISfs,
                           kelsFIROne32f_Direct_16s_Sfs, kelsFIROne32f_Direct_16s_ISfs, kelsFIRMR32f_Direct_16s_Sfs,
                           kelsFIRMR32f_Direct_16s_ISfs, kelsFIRFree32f_16s, kelsFIRGetDlyLine32f_16s,
                           kelsFIRSetDlyLine32f_16s, kelsFIR32f_16s_Sfs, kelsFIR32f_16s_ISfs, kelsFIROne32f_16s_Sfs>;
using Family_32fc_16sc =
    Fir<Kel32fc, Kel16sc, 32, kelsFIRInitAlloc32fc_16sc, kelsFIRMRInitAlloc32fc_16sc, kelsFIRGetTaps32fc_16sc,
        kelsFIR32fc_Direct_16sc_Sfs, kelsFIR32fc_Direct_16sc_ISfs, kelsFIROne32fc_Direct_16sc_Sfs,
        kelsFIROne32fc_Direct_16sc_ISfs, kelsFIRMR32fc_Direct_16sc_Sfs, kelsFIRMR32fc_Direct_16sc_ISfs,
        kelsFIRFree32fc_16sc, kelsFIRGetDlyLine32fc_16sc, kelsFIRSetDlyLine32fc_16sc, kelsFIR32fc_16sc_Sfs,
        kelsFIR32fc_16sc_ISfs, kelsFIROne32fc_16sc_Sfs>;
using Family_32s_16s = Fir<Kel32s, Kel16s, 0, kelsFIRInitAlloc32s_16s, kelsFIRMRInitAlloc32s_16s, kelsFIRGetTaps32s_16s,
                           kelsFIR32s_Direct_16s_Sfs, kelsFIR32s_Direct_16s_ISfs, kelsFIROne32s_Direct_16s_Sfs,
                           kelsFIROne32s_Direct_16s_ISfs, kelsFIRMR32s_Direct_16s_Sfs, kelsFIRMR32s_Direct_16s_ISfs,
                           kelsFIRFree32s_16s, kelsFIRGetDlyLine32s_16s, kelsFIRSetDlyLine32s_16s, kelsFIR32s_16s_Sfs,
                           kelsFIR32s_16s_ISfs, kelsFIROne32s_16s_Sfs>;
using Family_32sc_16sc =
    Fir<Kel32sc, Kel16sc, 0, kelsFIRInitAlloc32sc_16sc, kelsFIRMRInitAlloc32sc_16sc, kelsFIRGetTaps32sc_16sc,
        kelsFIR32sc_Direct_16sc_Sfs, kelsFIR32sc_Direct_16sc_ISfs, kelsFIROne32sc_Direct_16sc_Sfs,
        kelsFIROne32sc_Direct_16sc_ISfs, kelsFIRMR32sc_Direct_16sc_Sfs, kelsFIRMR32sc_Direct_16sc_ISfs,
        kelsFIRFree32sc_16sc, kelsFIRGetDlyLine32sc_16sc, kelsFIRSetDlyLine32sc_16sc, kelsFIR32sc_16sc_Sfs,
        kelsFIR32sc_16sc_ISfs, kelsFIROne32sc_16sc_Sfs>;
using Family_64f = Fir<Kel64f, Kel64f, 32, kelsFIRInitAlloc_64f, kelsFIRMRInitAlloc_64f, kelsFIRGetTaps_64f,
                       kelsFIR_Direct_64f, kelsFIR_Direct_64f_I, kelsFIROne_Direct_64f, kelsFIROne_Direct_64f_I,
                       kelsFIRMR_Direct_64f, kelsFIRMR_Direct_64f_I, kelsFIRFree_64f, kelsFIRGetDlyLine_64f,
                       kelsFIRSetDlyLine_64f, kelsFIR_64f, kelsFIR_64f_I, kelsFIROne_64f>;
using Family_64fc = Fir<Kel64fc, Kel64fc, 16, kelsFIRInitAlloc_64fc, kelsFIRMRInitAlloc_64fc, kelsFIRGetTaps_64fc,
                        kelsFIR_Direct_64fc, kelsFIR_Direct_64fc_I, kelsFIROne_Direct_64fc, kelsFIROne_Direct_64fc_I,
                        kelsFIRMR_Direct_64fc, kelsFIRMR_Direct_64fc_I, kelsFIRFree_64fc, kelsFIRGetDlyLine_64fc,
                        kelsFIRSetDlyLine_64fc, kelsFIR_64fc, kelsFIR_64fc_I, kelsFIROne_64fc>;
using Family_64f_32f =
    Fir<Kel64f, Kel32f, 32, kelsFIRInitAlloc64f_32f, kelsFIRMRInitAlloc64f_32f, kelsFIRGetTaps64f_32f,
        kelsFIR64f_Direct_32f, kelsFIR64f_Direct_32f_I, kelsFIROne64f_Direct_32f, kelsFIROne64f_Direct_32f_I,
        kelsFIRMR64f_Direct_32f, kelsFIRMR64f_Direct_32f_I, kelsFIRFree64f_32f, kelsFIRGetDlyLine64f_32f,
        kelsFIRSetDlyLine64f_32f, kelsFIR64f_32f, kelsFIR64f_32f_I, kelsFIROne64f_32f>;
using Family_64fc_32fc =
    Fir<Kel64fc, Kel32fc, 16, kelsFIRInitAlloc64fc_32fc, kelsFIRMRInitAlloc64fc_32fc, kelsFIRGetTaps64fc_32fc,
        kelsFIR64fc_Direct_32fc, kelsFIR64fc_Direct_32fc_I, kelsFIROne64fc_Direct_32fc, kelsFIROne64fc_Direct_32fc_I,
        kelsFIRMR64fc_Direct_32fc, kelsFIRMR64fc_Direct_32fc_I, kelsFIRFree64fc_32fc, kelsFIRGetDlyLine64fc_32fc,
        kelsFIRSetDlyLine64fc_32fc, kelsFIR64fc_32fc, kelsFIR64fc_32fc_I, kelsFIROne64fc_32fc>;
using Family_64f_32s = Fir<Kel64f, Kel32s, 32, kelsFIRInitAlloc64f_32s, kelsFIRMRInitAlloc64f_32s,
                           kelsFIRGetTaps64f_32s, kelsFIR64f_Direct_32s_Sfs, kelsFIR64f_Direct_32s_ISfs,
                           kelsFIROne64f_Direct_32s_Sfs, kelsFIROne64f_Direct_32s_ISfs, kelsFIRMR64f_Direct_32s_Sfs,
                           kelsFIRMR64f_Direct_32s_ISfs, kelsFIRFree64f_32s, kelsFIRGetDlyLine64f_32s,
                           kelsFIRSetDlyLine64f_32s, kelsFIR64f_32s_Sfs, kelsFIR64f_32s_ISfs, kelsFIROne64f_32s_Sfs>;
using Family_64fc_32sc =
    Fir<Kel64fc, Kel32sc, 16, kelsFIRInitAlloc64fc_32sc, kelsFIRMRInitAlloc64fc_32sc, kelsFIRGetTaps64fc_32sc,
        kelsFIR64fc_Direct_32sc_Sfs, kelsFIR64fc_Direct_32sc_ISfs, kelsFIROne64fc_Direct_32sc_Sfs,
        kelsFIROne64fc_Direct_32sc_ISfs, kelsFIRMR64fc_Direct_32sc_Sfs, kelsFIRMR64fc_Direct_32sc_ISfs,
        kelsFIRFree64fc_32sc, kelsFIRGetDlyLine64fc_32sc, kelsFIRSetDlyLine64fc_32sc, kelsFIR64fc_32sc_Sfs,
        kelsFIR64fc_32sc_ISfs, kelsFIROne64fc_32sc_Sfs>;
using Family_64f_16s = Fir<Kel64f, Kel16s, 32, kelsFIRInitAlloc64f_16s, kelsFIRMRInitAlloc64f_16s,
                           kelsFIRGetTaps64f_16s, kelsFIR64f_Direct_16s_Sfs, kelsFIR64f_Direct_16s_ISfs,
                           kelsFIROne64f_Direct_16s_Sfs, kelsFIROne64f_Direct_16s_ISfs, kelsFIRMR64f_Direct_16s_Sfs,
                           kelsFIRMR64f_Direct_16s_ISfs, kelsFIRFree64f_16s, kelsFIRGetDlyLine64f_16s,
                           kelsFIRSetDlyLine64f_16s, kelsFIR64f_16s_Sfs, kelsFIR64f_16s_ISfs, kelsFIROne64f_16s_Sfs>;
using Family_64fc_16sc =
    Fir<Kel64fc, Kel16sc, 16, kelsFIRInitAlloc64fc_16sc, kelsFIRMRInitAlloc64fc_16sc, kelsFIRGetTaps64fc_16sc,
        kelsFIR64fc_Direct_16sc_Sfs, kelsFIR64fc_Direct_16sc_ISfs, kelsFIROne64fc_Direct_16sc_Sfs,
        kelsFIROne64fc_Direct_16sc_ISfs, kelsFIRMR64fc_Direct_16sc_Sfs, kelsFIRMR64fc_Direct_16sc_ISfs,
        kelsFIRFree64fc_16sc, kelsFIRGetDlyLine64fc_16sc, kelsFIRSetDlyLine64fc_16sc, kelsFIR64fc_16sc_Sfs,
        kelsFIR64fc_16sc_ISfs, kelsFIROne64fc_16sc_Sfs>;

using Families = testing::Types<Family_32f, Family_32fc, Family_32f_16s, Family_32fc_16sc, Family_32s_16s,
                                Family_32sc_16sc, Family_64f, Family_64fc, Family_64f_32f, Family_64fc_32fc,
                                Family_64f_32s, Family_64fc_32sc, Family_64f_16s, Family_64fc_16sc>;

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
