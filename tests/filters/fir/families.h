// The families of FIR filters as the tests see them: types, functions, and the facts that show.
#pragma once

#include "filters/samples.h"
#include "kels/fir.h"

#include <memory>

namespace fir_test {

using namespace filter_test;

/// `least`: contexts of as many taps hold a plan; 0 is never. `always`: in place it runs at any length.
template <class T, class S, int least, bool always>
struct Family {
    using Taps = T;
    using Sample = S;
    static constexpr int least_for_plan = least;
    static constexpr bool plan_in_place_always = always;
    static constexpr bool integer_taps = std::is_integral_v<Part<T>>;
    static constexpr bool integer_samples = std::is_integral_v<Part<S>>;
    static constexpr bool complex = parts<S> == 2;
    /// Where the rules have a transform, ties go to even.
    static constexpr bool ties_to_even =
        integer_samples && !integer_taps && (sizeof(Part<S>) == 4 || sizeof(Part<T>) == 4);
    /// A multi-rate filter of factors 1 and 1 is one of one rate.
    static constexpr bool degenerates =
        std::is_same_v<T, Kel32f> && (std::is_same_v<S, Kel32f> || std::is_same_v<S, Kel16s>);
};

struct Family_32f : Family<Kel32f, Kel32f, 32, true> {
    static constexpr const char* name = "32f";
    static constexpr auto init = kelsFIRInitAlloc_32f;
    static constexpr auto init_multi_rate = kelsFIRMRInitAlloc_32f;
    static constexpr auto release = kelsFIRFree_32f;
    static constexpr auto get_taps = kelsFIRGetTaps_32f;
    static constexpr auto get_line = kelsFIRGetDlyLine_32f;
    static constexpr auto set_line = kelsFIRSetDlyLine_32f;
    static constexpr auto block = kelsFIR_32f;
    static constexpr auto in_place = kelsFIR_32f_I;
    static constexpr auto one = kelsFIROne_32f;
};

struct Family_32fc : Family<Kel32fc, Kel32fc, 16, false> {
    static constexpr const char* name = "32fc";
    static constexpr auto init = kelsFIRInitAlloc_32fc;
    static constexpr auto init_multi_rate = kelsFIRMRInitAlloc_32fc;
    static constexpr auto release = kelsFIRFree_32fc;
    static constexpr auto get_taps = kelsFIRGetTaps_32fc;
    static constexpr auto get_line = kelsFIRGetDlyLine_32fc;
    static constexpr auto set_line = kelsFIRSetDlyLine_32fc;
    static constexpr auto block = kelsFIR_32fc;
    static constexpr auto in_place = kelsFIR_32fc_I;
    static constexpr auto one = kelsFIROne_32fc;
};

struct Family_32f_16s : Family<Kel32f, Kel16s, 128, false> {
    static constexpr const char* name = "32f_16s";
    static constexpr auto init = kelsFIRInitAlloc32f_16s;
    static constexpr auto init_multi_rate = kelsFIRMRInitAlloc32f_16s;
    static constexpr auto release = kelsFIRFree32f_16s;
    static constexpr auto get_taps = kelsFIRGetTaps32f_16s;
    static constexpr auto get_line = kelsFIRGetDlyLine32f_16s;
    static constexpr auto set_line = kelsFIRSetDlyLine32f_16s;
    static constexpr auto block = kelsFIR32f_16s_Sfs;
    static constexpr auto in_place = kelsFIR32f_16s_ISfs;
    static constexpr auto one = kelsFIROne32f_16s_Sfs;
};

struct Family_32fc_16sc : Family<Kel32fc, Kel16sc, 32, false> {
    static constexpr const char* name = "32fc_16sc";
    static constexpr auto init = kelsFIRInitAlloc32fc_16sc;
    static constexpr auto init_multi_rate = kelsFIRMRInitAlloc32fc_16sc;
    static constexpr auto release = kelsFIRFree32fc_16sc;
    static constexpr auto get_taps = kelsFIRGetTaps32fc_16sc;
    static constexpr auto get_line = kelsFIRGetDlyLine32fc_16sc;
    static constexpr auto set_line = kelsFIRSetDlyLine32fc_16sc;
    static constexpr auto block = kelsFIR32fc_16sc_Sfs;
    static constexpr auto in_place = kelsFIR32fc_16sc_ISfs;
    static constexpr auto one = kelsFIROne32fc_16sc_Sfs;
};

struct Family_32s_16s : Family<Kel32s, Kel16s, 0, false> {
    static constexpr const char* name = "32s_16s";
    static constexpr auto init = kelsFIRInitAlloc32s_16s;
    static constexpr auto init_multi_rate = kelsFIRMRInitAlloc32s_16s;
    static constexpr auto release = kelsFIRFree32s_16s;
    static constexpr auto get_taps = kelsFIRGetTaps32s_16s;
    static constexpr auto get_line = kelsFIRGetDlyLine32s_16s;
    static constexpr auto set_line = kelsFIRSetDlyLine32s_16s;
    static constexpr auto block = kelsFIR32s_16s_Sfs;
    static constexpr auto in_place = kelsFIR32s_16s_ISfs;
    static constexpr auto one = kelsFIROne32s_16s_Sfs;
};

struct Family_32sc_16sc : Family<Kel32sc, Kel16sc, 0, false> {
    static constexpr const char* name = "32sc_16sc";
    static constexpr auto init = kelsFIRInitAlloc32sc_16sc;
    static constexpr auto init_multi_rate = kelsFIRMRInitAlloc32sc_16sc;
    static constexpr auto release = kelsFIRFree32sc_16sc;
    static constexpr auto get_taps = kelsFIRGetTaps32sc_16sc;
    static constexpr auto get_line = kelsFIRGetDlyLine32sc_16sc;
    static constexpr auto set_line = kelsFIRSetDlyLine32sc_16sc;
    static constexpr auto block = kelsFIR32sc_16sc_Sfs;
    static constexpr auto in_place = kelsFIR32sc_16sc_ISfs;
    static constexpr auto one = kelsFIROne32sc_16sc_Sfs;
};

struct Family_64f : Family<Kel64f, Kel64f, 32, true> {
    static constexpr const char* name = "64f";
    static constexpr auto init = kelsFIRInitAlloc_64f;
    static constexpr auto init_multi_rate = kelsFIRMRInitAlloc_64f;
    static constexpr auto release = kelsFIRFree_64f;
    static constexpr auto get_taps = kelsFIRGetTaps_64f;
    static constexpr auto get_line = kelsFIRGetDlyLine_64f;
    static constexpr auto set_line = kelsFIRSetDlyLine_64f;
    static constexpr auto block = kelsFIR_64f;
    static constexpr auto in_place = kelsFIR_64f_I;
    static constexpr auto one = kelsFIROne_64f;
};

struct Family_64fc : Family<Kel64fc, Kel64fc, 16, false> {
    static constexpr const char* name = "64fc";
    static constexpr auto init = kelsFIRInitAlloc_64fc;
    static constexpr auto init_multi_rate = kelsFIRMRInitAlloc_64fc;
    static constexpr auto release = kelsFIRFree_64fc;
    static constexpr auto get_taps = kelsFIRGetTaps_64fc;
    static constexpr auto get_line = kelsFIRGetDlyLine_64fc;
    static constexpr auto set_line = kelsFIRSetDlyLine_64fc;
    static constexpr auto block = kelsFIR_64fc;
    static constexpr auto in_place = kelsFIR_64fc_I;
    static constexpr auto one = kelsFIROne_64fc;
};

struct Family_64f_32f : Family<Kel64f, Kel32f, 32, true> {
    static constexpr const char* name = "64f_32f";
    static constexpr auto init = kelsFIRInitAlloc64f_32f;
    static constexpr auto init_multi_rate = kelsFIRMRInitAlloc64f_32f;
    static constexpr auto release = kelsFIRFree64f_32f;
    static constexpr auto get_taps = kelsFIRGetTaps64f_32f;
    static constexpr auto get_line = kelsFIRGetDlyLine64f_32f;
    static constexpr auto set_line = kelsFIRSetDlyLine64f_32f;
    static constexpr auto block = kelsFIR64f_32f;
    static constexpr auto in_place = kelsFIR64f_32f_I;
    static constexpr auto one = kelsFIROne64f_32f;
};

struct Family_64fc_32fc : Family<Kel64fc, Kel32fc, 16, false> {
    static constexpr const char* name = "64fc_32fc";
    static constexpr auto init = kelsFIRInitAlloc64fc_32fc;
    static constexpr auto init_multi_rate = kelsFIRMRInitAlloc64fc_32fc;
    static constexpr auto release = kelsFIRFree64fc_32fc;
    static constexpr auto get_taps = kelsFIRGetTaps64fc_32fc;
    static constexpr auto get_line = kelsFIRGetDlyLine64fc_32fc;
    static constexpr auto set_line = kelsFIRSetDlyLine64fc_32fc;
    static constexpr auto block = kelsFIR64fc_32fc;
    static constexpr auto in_place = kelsFIR64fc_32fc_I;
    static constexpr auto one = kelsFIROne64fc_32fc;
};

struct Family_64f_32s : Family<Kel64f, Kel32s, 32, true> {
    static constexpr const char* name = "64f_32s";
    static constexpr auto init = kelsFIRInitAlloc64f_32s;
    static constexpr auto init_multi_rate = kelsFIRMRInitAlloc64f_32s;
    static constexpr auto release = kelsFIRFree64f_32s;
    static constexpr auto get_taps = kelsFIRGetTaps64f_32s;
    static constexpr auto get_line = kelsFIRGetDlyLine64f_32s;
    static constexpr auto set_line = kelsFIRSetDlyLine64f_32s;
    static constexpr auto block = kelsFIR64f_32s_Sfs;
    static constexpr auto in_place = kelsFIR64f_32s_ISfs;
    static constexpr auto one = kelsFIROne64f_32s_Sfs;
};

struct Family_64fc_32sc : Family<Kel64fc, Kel32sc, 16, false> {
    static constexpr const char* name = "64fc_32sc";
    static constexpr auto init = kelsFIRInitAlloc64fc_32sc;
    static constexpr auto init_multi_rate = kelsFIRMRInitAlloc64fc_32sc;
    static constexpr auto release = kelsFIRFree64fc_32sc;
    static constexpr auto get_taps = kelsFIRGetTaps64fc_32sc;
    static constexpr auto get_line = kelsFIRGetDlyLine64fc_32sc;
    static constexpr auto set_line = kelsFIRSetDlyLine64fc_32sc;
    static constexpr auto block = kelsFIR64fc_32sc_Sfs;
    static constexpr auto in_place = kelsFIR64fc_32sc_ISfs;
    static constexpr auto one = kelsFIROne64fc_32sc_Sfs;
};

struct Family_64f_16s : Family<Kel64f, Kel16s, 32, true> {
    static constexpr const char* name = "64f_16s";
    static constexpr auto init = kelsFIRInitAlloc64f_16s;
    static constexpr auto init_multi_rate = kelsFIRMRInitAlloc64f_16s;
    static constexpr auto release = kelsFIRFree64f_16s;
    static constexpr auto get_taps = kelsFIRGetTaps64f_16s;
    static constexpr auto get_line = kelsFIRGetDlyLine64f_16s;
    static constexpr auto set_line = kelsFIRSetDlyLine64f_16s;
    static constexpr auto block = kelsFIR64f_16s_Sfs;
    static constexpr auto in_place = kelsFIR64f_16s_ISfs;
    static constexpr auto one = kelsFIROne64f_16s_Sfs;
};

struct Family_64fc_16sc : Family<Kel64fc, Kel16sc, 16, false> {
    static constexpr const char* name = "64fc_16sc";
    static constexpr auto init = kelsFIRInitAlloc64fc_16sc;
    static constexpr auto init_multi_rate = kelsFIRMRInitAlloc64fc_16sc;
    static constexpr auto release = kelsFIRFree64fc_16sc;
    static constexpr auto get_taps = kelsFIRGetTaps64fc_16sc;
    static constexpr auto get_line = kelsFIRGetDlyLine64fc_16sc;
    static constexpr auto set_line = kelsFIRSetDlyLine64fc_16sc;
    static constexpr auto block = kelsFIR64fc_16sc_Sfs;
    static constexpr auto in_place = kelsFIR64fc_16sc_ISfs;
    static constexpr auto one = kelsFIROne64fc_16sc_Sfs;
};

using Families = testing::Types<Family_32f, Family_32fc, Family_32f_16s, Family_32fc_16sc, Family_32s_16s,
                                Family_32sc_16sc, Family_64f, Family_64fc, Family_64f_32f, Family_64fc_32fc,
                                Family_64f_32s, Family_64fc_32sc, Family_64f_16s, Family_64fc_16sc>;

struct Rates {
    int up = 1, upPhase = 0, down = 1, downPhase = 0;
};

template <class F>
KelStatus init(KelFirContext** context, const typename F::Taps* taps, int count, const typename F::Sample* line) {
    if constexpr (F::integer_taps)
        return F::init(context, taps, count, 0, line);
    else
        return F::init(context, taps, count, line);
}

template <class F>
KelStatus init_multi_rate(KelFirContext** context, const typename F::Taps* taps, int count, const Rates& r,
                          const typename F::Sample* line) {
    if constexpr (F::integer_taps)
        return F::init_multi_rate(context, taps, count, 0, r.up, r.upPhase, r.down, r.downPhase, line);
    else
        return F::init_multi_rate(context, taps, count, r.up, r.upPhase, r.down, r.downPhase, line);
}

template <class F>
KelStatus get_taps(const KelFirContext* context, typename F::Taps* taps) {
    int factor;
    if constexpr (F::integer_taps)
        return F::get_taps(context, taps, &factor);
    else
        return F::get_taps(context, taps);
}

using Context = std::unique_ptr<KelFirContext, KelStatus (*)(KelFirContext*)>;

template <class F>
Context make(const std::vector<typename F::Taps>& taps, const std::vector<typename F::Sample>& newest_first = {}) {
    KelFirContext* context = nullptr;
    const auto* line = newest_first.empty() ? nullptr : newest_first.data();
    EXPECT_EQ(init<F>(&context, taps.data(), static_cast<int>(taps.size()), line), kelStatusOk);
    return {context, F::release};
}

template <class F>
Context make_multi_rate(const std::vector<typename F::Taps>& taps, const Rates& rates,
                        const std::vector<typename F::Sample>& newest_first = {}) {
    KelFirContext* context = nullptr;
    const auto* line = newest_first.empty() ? nullptr : newest_first.data();
    EXPECT_EQ(init_multi_rate<F>(&context, taps.data(), static_cast<int>(taps.size()), rates, line), kelStatusOk);
    return {context, F::release};
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
