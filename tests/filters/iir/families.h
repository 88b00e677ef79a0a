// The families of IIR filters as the tests see them: types and functions.
#pragma once

#include "filters/samples.h"
#include "kels/iir.h"

#include <memory>

namespace iir_test {

using namespace filter_test;

template <class T, class S>
struct Family {
    using Taps = T;
    using Sample = S;
    static constexpr bool integer_taps = std::is_integral_v<Part<T>>;
    static constexpr bool integer_samples = std::is_integral_v<Part<S>>;
    static constexpr bool single_taps = std::is_same_v<Part<T>, Kel32f>;
    static constexpr bool complex = parts<S> == 2;
};

struct Family_32f : Family<Kel32f, Kel32f> {
    static constexpr const char* name = "32f";
    static constexpr auto init = kelsIIRInitAlloc_32f;
    static constexpr auto init_cascade = kelsIIRInitAlloc_BiQuad_32f;
    static constexpr auto release = kelsIIRFree_32f;
    static constexpr auto get_line = kelsIIRGetDlyLine_32f;
    static constexpr auto set_line = kelsIIRSetDlyLine_32f;
    static constexpr auto block = kelsIIR_32f;
    static constexpr auto in_place = kelsIIR_32f_I;
    static constexpr auto one = kelsIIROne_32f;
};

struct Family_32fc : Family<Kel32fc, Kel32fc> {
    static constexpr const char* name = "32fc";
    static constexpr auto init = kelsIIRInitAlloc_32fc;
    static constexpr auto init_cascade = kelsIIRInitAlloc_BiQuad_32fc;
    static constexpr auto release = kelsIIRFree_32fc;
    static constexpr auto get_line = kelsIIRGetDlyLine_32fc;
    static constexpr auto set_line = kelsIIRSetDlyLine_32fc;
    static constexpr auto block = kelsIIR_32fc;
    static constexpr auto in_place = kelsIIR_32fc_I;
    static constexpr auto one = kelsIIROne_32fc;
};

struct Family_32f_16s : Family<Kel32f, Kel16s> {
    static constexpr const char* name = "32f_16s";
    static constexpr auto init = kelsIIRInitAlloc32f_16s;
    static constexpr auto init_cascade = kelsIIRInitAlloc32f_BiQuad_16s;
    static constexpr auto release = kelsIIRFree32f_16s;
    static constexpr auto get_line = kelsIIRGetDlyLine32f_16s;
    static constexpr auto set_line = kelsIIRSetDlyLine32f_16s;
    static constexpr auto block = kelsIIR32f_16s_Sfs;
    static constexpr auto in_place = kelsIIR32f_16s_ISfs;
    static constexpr auto one = kelsIIROne32f_16s_Sfs;
};

struct Family_32fc_16sc : Family<Kel32fc, Kel16sc> {
    static constexpr const char* name = "32fc_16sc";
    static constexpr auto init = kelsIIRInitAlloc32fc_16sc;
    static constexpr auto init_cascade = kelsIIRInitAlloc32fc_BiQuad_16sc;
    static constexpr auto release = kelsIIRFree32fc_16sc;
    static constexpr auto get_line = kelsIIRGetDlyLine32fc_16sc;
    static constexpr auto set_line = kelsIIRSetDlyLine32fc_16sc;
    static constexpr auto block = kelsIIR32fc_16sc_Sfs;
    static constexpr auto in_place = kelsIIR32fc_16sc_ISfs;
    static constexpr auto one = kelsIIROne32fc_16sc_Sfs;
};

struct Family_32s_16s : Family<Kel32s, Kel16s> {
    static constexpr const char* name = "32s_16s";
    static constexpr auto init = kelsIIRInitAlloc32s_16s;
    static constexpr auto init_cascade = kelsIIRInitAlloc32s_BiQuad_16s;
    static constexpr auto release = kelsIIRFree32s_16s;
    static constexpr auto get_line = kelsIIRGetDlyLine32s_16s;
    static constexpr auto set_line = kelsIIRSetDlyLine32s_16s;
    static constexpr auto block = kelsIIR32s_16s_Sfs;
    static constexpr auto in_place = kelsIIR32s_16s_ISfs;
    static constexpr auto one = kelsIIROne32s_16s_Sfs;
};

struct Family_32sc_16sc : Family<Kel32sc, Kel16sc> {
    static constexpr const char* name = "32sc_16sc";
    static constexpr auto init = kelsIIRInitAlloc32sc_16sc;
    static constexpr auto init_cascade = kelsIIRInitAlloc32sc_BiQuad_16sc;
    static constexpr auto release = kelsIIRFree32sc_16sc;
    static constexpr auto get_line = kelsIIRGetDlyLine32sc_16sc;
    static constexpr auto set_line = kelsIIRSetDlyLine32sc_16sc;
    static constexpr auto block = kelsIIR32sc_16sc_Sfs;
    static constexpr auto in_place = kelsIIR32sc_16sc_ISfs;
    static constexpr auto one = kelsIIROne32sc_16sc_Sfs;
};

struct Family_64f : Family<Kel64f, Kel64f> {
    static constexpr const char* name = "64f";
    static constexpr auto init = kelsIIRInitAlloc_64f;
    static constexpr auto init_cascade = kelsIIRInitAlloc_BiQuad_64f;
    static constexpr auto release = kelsIIRFree_64f;
    static constexpr auto get_line = kelsIIRGetDlyLine_64f;
    static constexpr auto set_line = kelsIIRSetDlyLine_64f;
    static constexpr auto block = kelsIIR_64f;
    static constexpr auto in_place = kelsIIR_64f_I;
    static constexpr auto one = kelsIIROne_64f;
};

struct Family_64fc : Family<Kel64fc, Kel64fc> {
    static constexpr const char* name = "64fc";
    static constexpr auto init = kelsIIRInitAlloc_64fc;
    static constexpr auto init_cascade = kelsIIRInitAlloc_BiQuad_64fc;
    static constexpr auto release = kelsIIRFree_64fc;
    static constexpr auto get_line = kelsIIRGetDlyLine_64fc;
    static constexpr auto set_line = kelsIIRSetDlyLine_64fc;
    static constexpr auto block = kelsIIR_64fc;
    static constexpr auto in_place = kelsIIR_64fc_I;
    static constexpr auto one = kelsIIROne_64fc;
};

struct Family_64f_32f : Family<Kel64f, Kel32f> {
    static constexpr const char* name = "64f_32f";
    static constexpr auto init = kelsIIRInitAlloc64f_32f;
    static constexpr auto init_cascade = kelsIIRInitAlloc64f_BiQuad_32f;
    static constexpr auto release = kelsIIRFree64f_32f;
    static constexpr auto get_line = kelsIIRGetDlyLine64f_32f;
    static constexpr auto set_line = kelsIIRSetDlyLine64f_32f;
    static constexpr auto block = kelsIIR64f_32f;
    static constexpr auto in_place = kelsIIR64f_32f_I;
    static constexpr auto one = kelsIIROne64f_32f;
};

struct Family_64fc_32fc : Family<Kel64fc, Kel32fc> {
    static constexpr const char* name = "64fc_32fc";
    static constexpr auto init = kelsIIRInitAlloc64fc_32fc;
    static constexpr auto init_cascade = kelsIIRInitAlloc64fc_BiQuad_32fc;
    static constexpr auto release = kelsIIRFree64fc_32fc;
    static constexpr auto get_line = kelsIIRGetDlyLine64fc_32fc;
    static constexpr auto set_line = kelsIIRSetDlyLine64fc_32fc;
    static constexpr auto block = kelsIIR64fc_32fc;
    static constexpr auto in_place = kelsIIR64fc_32fc_I;
    static constexpr auto one = kelsIIROne64fc_32fc;
};

struct Family_64f_32s : Family<Kel64f, Kel32s> {
    static constexpr const char* name = "64f_32s";
    static constexpr auto init = kelsIIRInitAlloc64f_32s;
    static constexpr auto init_cascade = kelsIIRInitAlloc64f_BiQuad_32s;
    static constexpr auto release = kelsIIRFree64f_32s;
    static constexpr auto get_line = kelsIIRGetDlyLine64f_32s;
    static constexpr auto set_line = kelsIIRSetDlyLine64f_32s;
    static constexpr auto block = kelsIIR64f_32s_Sfs;
    static constexpr auto in_place = kelsIIR64f_32s_ISfs;
    static constexpr auto one = kelsIIROne64f_32s_Sfs;
};

struct Family_64fc_32sc : Family<Kel64fc, Kel32sc> {
    static constexpr const char* name = "64fc_32sc";
    static constexpr auto init = kelsIIRInitAlloc64fc_32sc;
    static constexpr auto init_cascade = kelsIIRInitAlloc64fc_BiQuad_32sc;
    static constexpr auto release = kelsIIRFree64fc_32sc;
    static constexpr auto get_line = kelsIIRGetDlyLine64fc_32sc;
    static constexpr auto set_line = kelsIIRSetDlyLine64fc_32sc;
    static constexpr auto block = kelsIIR64fc_32sc_Sfs;
    static constexpr auto in_place = kelsIIR64fc_32sc_ISfs;
    static constexpr auto one = kelsIIROne64fc_32sc_Sfs;
};

struct Family_64f_16s : Family<Kel64f, Kel16s> {
    static constexpr const char* name = "64f_16s";
    static constexpr auto init = kelsIIRInitAlloc64f_16s;
    static constexpr auto init_cascade = kelsIIRInitAlloc64f_BiQuad_16s;
    static constexpr auto release = kelsIIRFree64f_16s;
    static constexpr auto get_line = kelsIIRGetDlyLine64f_16s;
    static constexpr auto set_line = kelsIIRSetDlyLine64f_16s;
    static constexpr auto block = kelsIIR64f_16s_Sfs;
    static constexpr auto in_place = kelsIIR64f_16s_ISfs;
    static constexpr auto one = kelsIIROne64f_16s_Sfs;
};

struct Family_64fc_16sc : Family<Kel64fc, Kel16sc> {
    static constexpr const char* name = "64fc_16sc";
    static constexpr auto init = kelsIIRInitAlloc64fc_16sc;
    static constexpr auto init_cascade = kelsIIRInitAlloc64fc_BiQuad_16sc;
    static constexpr auto release = kelsIIRFree64fc_16sc;
    static constexpr auto get_line = kelsIIRGetDlyLine64fc_16sc;
    static constexpr auto set_line = kelsIIRSetDlyLine64fc_16sc;
    static constexpr auto block = kelsIIR64fc_16sc_Sfs;
    static constexpr auto in_place = kelsIIR64fc_16sc_ISfs;
    static constexpr auto one = kelsIIROne64fc_16sc_Sfs;
};

using Families = testing::Types<Family_32f, Family_32fc, Family_32f_16s, Family_32fc_16sc, Family_32s_16s,
                                Family_32sc_16sc, Family_64f, Family_64fc, Family_64f_32f, Family_64fc_32fc,
                                Family_64f_32s, Family_64fc_32sc, Family_64f_16s, Family_64fc_16sc>;

using Context = std::unique_ptr<KelIirContext, KelStatus (*)(KelIirContext*)>;

/// A filter of any order or a cascade; integer taps have a factor.
template <class F>
KelStatus init(KelIirContext** context, bool cascade, const typename F::Taps* taps, int size, int tapsFactor,
               const typename F::Taps* state) {
    const auto make = cascade ? F::init_cascade : F::init;
    if constexpr (F::integer_taps)
        return make(context, taps, size, tapsFactor, state);
    else
        return make(context, taps, size, state);
}

template <class F>
Context make(bool cascade, const std::vector<typename F::Taps>& taps, int tapsFactor = 0,
             const std::vector<typename F::Taps>& state = {}) {
    KelIirContext* context = nullptr;
    const int size = static_cast<int>(cascade ? taps.size() / 6 : taps.size() / 2 - 1);
    EXPECT_EQ(init<F>(&context, cascade, taps.data(), size, tapsFactor, state.empty() ? nullptr : state.data()),
              kelStatusOk);
    return {context, F::release};
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
