// The families of IIR filters as the tests see them: types and functions.
#pragma once

#include "filters/samples.h"
#include "kels/iir.h"
#include "support/life_cycle.h"

namespace iir_test {

using namespace filter_test;

template <class T, class S, auto init_, auto init_cascade_, auto release_, auto get_line_, auto set_line_, auto block_,
          auto in_place_, auto one_>
struct Family {
    using Taps = T;
    using Sample = S;
    static constexpr auto init = init_;
    static constexpr auto init_cascade = init_cascade_;
    static constexpr auto release = release_;
    static constexpr auto get_line = get_line_;
    static constexpr auto set_line = set_line_;
    static constexpr auto block = block_;
    static constexpr auto in_place = in_place_;
    static constexpr auto one = one_;
    static constexpr bool integer_taps = std::is_integral_v<Part<T>>;
    static constexpr bool integer_samples = std::is_integral_v<Part<S>>;
    static constexpr bool single_taps = std::is_same_v<Part<T>, Kel32f>;
    static constexpr bool complex = parts<S> == 2;
};

struct Family_32f : Family<Kel32f, Kel32f, kelsIIRInitAlloc_32f, kelsIIRInitAlloc_BiQuad_32f, kelsIIRFree_32f,
                           kelsIIRGetDlyLine_32f, kelsIIRSetDlyLine_32f, kelsIIR_32f, kelsIIR_32f_I, kelsIIROne_32f> {
    static constexpr const char* name = "32f";
};
struct Family_32fc
    : Family<Kel32fc, Kel32fc, kelsIIRInitAlloc_32fc, kelsIIRInitAlloc_BiQuad_32fc, kelsIIRFree_32fc,
             kelsIIRGetDlyLine_32fc, kelsIIRSetDlyLine_32fc, kelsIIR_32fc, kelsIIR_32fc_I, kelsIIROne_32fc> {
    static constexpr const char* name = "32fc";
};
struct Family_32f_16s : Family<Kel32f, Kel16s, kelsIIRInitAlloc32f_16s, kelsIIRInitAlloc32f_BiQuad_16s,
                               kelsIIRFree32f_16s, kelsIIRGetDlyLine32f_16s, kelsIIRSetDlyLine32f_16s,
                               kelsIIR32f_16s_Sfs, kelsIIR32f_16s_ISfs, kelsIIROne32f_16s_Sfs> {
    static constexpr const char* name = "32f_16s";
};
struct Family_32fc_16sc : Family<Kel32fc, Kel16sc, kelsIIRInitAlloc32fc_16sc, kelsIIRInitAlloc32fc_BiQuad_16sc,
                                 kelsIIRFree32fc_16sc, kelsIIRGetDlyLine32fc_16sc, kelsIIRSetDlyLine32fc_16sc,
                                 kelsIIR32fc_16sc_Sfs, kelsIIR32fc_16sc_ISfs, kelsIIROne32fc_16sc_Sfs> {
    static constexpr const char* name = "32fc_16sc";
};
struct Family_32s_16s : Family<Kel32s, Kel16s, kelsIIRInitAlloc32s_16s, kelsIIRInitAlloc32s_BiQuad_16s,
                               kelsIIRFree32s_16s, kelsIIRGetDlyLine32s_16s, kelsIIRSetDlyLine32s_16s,
                               kelsIIR32s_16s_Sfs, kelsIIR32s_16s_ISfs, kelsIIROne32s_16s_Sfs> {
    static constexpr const char* name = "32s_16s";
};
struct Family_32sc_16sc : Family<Kel32sc, Kel16sc, kelsIIRInitAlloc32sc_16sc, kelsIIRInitAlloc32sc_BiQuad_16sc,
                                 kelsIIRFree32sc_16sc, kelsIIRGetDlyLine32sc_16sc, kelsIIRSetDlyLine32sc_16sc,
                                 kelsIIR32sc_16sc_Sfs, kelsIIR32sc_16sc_ISfs, kelsIIROne32sc_16sc_Sfs> {
    static constexpr const char* name = "32sc_16sc";
};
struct Family_64f : Family<Kel64f, Kel64f, kelsIIRInitAlloc_64f, kelsIIRInitAlloc_BiQuad_64f, kelsIIRFree_64f,
                           kelsIIRGetDlyLine_64f, kelsIIRSetDlyLine_64f, kelsIIR_64f, kelsIIR_64f_I, kelsIIROne_64f> {
    static constexpr const char* name = "64f";
};
struct Family_64fc
    : Family<Kel64fc, Kel64fc, kelsIIRInitAlloc_64fc, kelsIIRInitAlloc_BiQuad_64fc, kelsIIRFree_64fc,
             kelsIIRGetDlyLine_64fc, kelsIIRSetDlyLine_64fc, kelsIIR_64fc, kelsIIR_64fc_I, kelsIIROne_64fc> {
    static constexpr const char* name = "64fc";
};
struct Family_64f_32f
    : Family<Kel64f, Kel32f, kelsIIRInitAlloc64f_32f, kelsIIRInitAlloc64f_BiQuad_32f, kelsIIRFree64f_32f,
             kelsIIRGetDlyLine64f_32f, kelsIIRSetDlyLine64f_32f, kelsIIR64f_32f, kelsIIR64f_32f_I, kelsIIROne64f_32f> {
    static constexpr const char* name = "64f_32f";
};
struct Family_64fc_32fc : Family<Kel64fc, Kel32fc, kelsIIRInitAlloc64fc_32fc, kelsIIRInitAlloc64fc_BiQuad_32fc,
                                 kelsIIRFree64fc_32fc, kelsIIRGetDlyLine64fc_32fc, kelsIIRSetDlyLine64fc_32fc,
                                 kelsIIR64fc_32fc, kelsIIR64fc_32fc_I, kelsIIROne64fc_32fc> {
    static constexpr const char* name = "64fc_32fc";
};
struct Family_64f_32s : Family<Kel64f, Kel32s, kelsIIRInitAlloc64f_32s, kelsIIRInitAlloc64f_BiQuad_32s,
                               kelsIIRFree64f_32s, kelsIIRGetDlyLine64f_32s, kelsIIRSetDlyLine64f_32s,
                               kelsIIR64f_32s_Sfs, kelsIIR64f_32s_ISfs, kelsIIROne64f_32s_Sfs> {
    static constexpr const char* name = "64f_32s";
};
struct Family_64fc_32sc : Family<Kel64fc, Kel32sc, kelsIIRInitAlloc64fc_32sc, kelsIIRInitAlloc64fc_BiQuad_32sc,
                                 kelsIIRFree64fc_32sc, kelsIIRGetDlyLine64fc_32sc, kelsIIRSetDlyLine64fc_32sc,
                                 kelsIIR64fc_32sc_Sfs, kelsIIR64fc_32sc_ISfs, kelsIIROne64fc_32sc_Sfs> {
    static constexpr const char* name = "64fc_32sc";
};
struct Family_64f_16s : Family<Kel64f, Kel16s, kelsIIRInitAlloc64f_16s, kelsIIRInitAlloc64f_BiQuad_16s,
                               kelsIIRFree64f_16s, kelsIIRGetDlyLine64f_16s, kelsIIRSetDlyLine64f_16s,
                               kelsIIR64f_16s_Sfs, kelsIIR64f_16s_ISfs, kelsIIROne64f_16s_Sfs> {
    static constexpr const char* name = "64f_16s";
};
struct Family_64fc_16sc : Family<Kel64fc, Kel16sc, kelsIIRInitAlloc64fc_16sc, kelsIIRInitAlloc64fc_BiQuad_16sc,
                                 kelsIIRFree64fc_16sc, kelsIIRGetDlyLine64fc_16sc, kelsIIRSetDlyLine64fc_16sc,
                                 kelsIIR64fc_16sc_Sfs, kelsIIR64fc_16sc_ISfs, kelsIIROne64fc_16sc_Sfs> {
    static constexpr const char* name = "64fc_16sc";
};

using Families = testing::Types<Family_32f, Family_32fc, Family_32f_16s, Family_32fc_16sc, Family_32s_16s,
                                Family_32sc_16sc, Family_64f, Family_64fc, Family_64f_32f, Family_64fc_32fc,
                                Family_64f_32s, Family_64fc_32sc, Family_64f_16s, Family_64fc_16sc>;

using Context = kels_test::Owned<KelIirContext>;

/// A filter of any order or a cascade; integer taps have a factor.
template <class F, bool cascade>
KelStatus init(KelIirContext** context, const typename F::Taps* taps, int size, int tapsFactor,
               const typename F::Taps* state) {
    const auto make = cascade ? F::init_cascade : F::init;
    if constexpr (F::integer_taps)
        return make(context, taps, size, tapsFactor, state);
    else
        return make(context, taps, size, state);
}
template <class F>
auto init_of(bool cascade) {
    return cascade ? init<F, true> : init<F, false>;
}

template <class F>
Context make(bool cascade, const std::vector<typename F::Taps>& taps, int tapsFactor = 0,
             const std::vector<typename F::Taps>& state = {}) {
    const int size = static_cast<int>(cascade ? taps.size() / 6 : taps.size() / 2 - 1);
    return kels_test::made(init_of<F>(cascade), F::release, taps.data(), size, tapsFactor,
                           state.empty() ? nullptr : state.data());
}

/// The three ways of samples through a filter.
enum Way { as_block, in_place, one_by_one };

template <class F>
std::vector<typename F::Sample> filtered(Way way, const std::vector<typename F::Sample>& x, const Context& context,
                                         int scaleFactor = 0) {
    auto y = x;
    const int count = static_cast<int>(x.size());
    if (way == as_block) {
        EXPECT_EQ(call(F::block, scaleFactor, x.data(), y.data(), count, context.get()), kelStatusOk);
    } else if (way == in_place) {
        EXPECT_EQ(call(F::in_place, scaleFactor, y.data(), count, context.get()), kelStatusOk);
    } else {
        for (auto& v : y) EXPECT_EQ(call(F::one, scaleFactor, v, &v, context.get()), kelStatusOk);
    }
    return y;
}

template <class F>
std::vector<typename F::Taps> state_of(const Context& context, std::size_t size) {
    std::vector<typename F::Taps> state(size + 1); // an array even where there is none
    EXPECT_EQ(F::get_line(context.get(), state.data()), kelStatusOk);
    state.pop_back();
    return state;
}

} // namespace iir_test
