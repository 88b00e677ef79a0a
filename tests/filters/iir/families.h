// The families of IIR filters as the tests see them: types and functions.
#pragma once

#include "filters/streams.h"
#include "kels/iir.h"

namespace iir_test {

using namespace filter_test;

template <class T, class S, auto init_, auto init_cascade_, auto... of_contexts>
struct Iir : filter_test::Family<T, S, T, of_contexts...> {
    static constexpr auto init = init_;
    static constexpr auto init_cascade = init_cascade_;
};

using Family_32f = Iir<Kel32f, Kel32f, kelsIIRInitAlloc_32f, kelsIIRInitAlloc_BiQuad_32f, kelsIIRFree_32f,
                       kelsIIRGetDlyLine_32f, kelsIIRSetDlyLine_32f, kelsIIR_32f, kelsIIR_32f_I, kelsIIROne_32f>;
using Family_32fc = Iir<Kel32fc, Kel32fc, kelsIIRInitAlloc_32fc, kelsIIRInitAlloc_BiQuad_32fc, kelsIIRFree_32fc,
                        kelsIIRGetDlyLine_32fc, kelsIIRSetDlyLine_32fc, kelsIIR_32fc, kelsIIR_32fc_I, kelsIIROne_32fc>;
using Family_32f_16s = Iir<Kel32f, Kel16s, kelsIIRInitAlloc32f_16s, kelsIIRInitAlloc32f_BiQuad_16s, kelsIIRFree32f_16s,
                           kelsIIRGetDlyLine32f_16s, kelsIIRSetDlyLine32f_16s, kelsIIR32f_16s_Sfs, kelsIIR32f_16s_ISfs,
                           kelsIIROne32f_16s_Sfs>;
using Family_32fc_16sc = Iir<Kel32fc, Kel16sc, kelsIIRInitAlloc32fc_16sc, kelsIIRInitAlloc32fc_BiQuad_16sc,
                             kelsIIRFree32fc_16sc, kelsIIRGetDlyLine32fc_16sc, kelsIIRSetDlyLine32fc_16sc,
                             kelsIIR32fc_16sc_Sfs, kelsIIR32fc_16sc_ISfs, kelsIIROne32fc_16sc_Sfs>;
using Family_32s_16s = Iir<Kel32s, Kel16s, kelsIIRInitAlloc32s_16s, kelsIIRInitAlloc32s_BiQuad_16s, kelsIIRFree32s_16s,
                           kelsIIRGetDlyLine32s_16s, kelsIIRSetDlyLine32s_16s, kelsIIR32s_16s_Sfs, kelsIIR32s_16s_ISfs,
                           kelsIIROne32s_16s_Sfs>;
using Family_32sc_16sc = Iir<Kel32sc, Kel16sc, kelsIIRInitAlloc32sc_16sc, kelsIIRInitAlloc32sc_BiQuad_16sc,
                             kelsIIRFree32sc_16sc, kelsIIRGetDlyLine32sc_16sc, kelsIIRSetDlyLine32sc_16sc,
                             kelsIIR32sc_16sc_Sfs, kelsIIR32sc_16sc_ISfs, kelsIIROne32sc_16sc_Sfs>;
using Family_64f = Iir<Kel64f, Kel64f, kelsIIRInitAlloc_64f, kelsIIRInitAlloc_BiQuad_64f, kelsIIRFree_64f,
                       kelsIIRGetDlyLine_64f, kelsIIRSetDlyLine_64f, kelsIIR_64f, kelsIIR_64f_I, kelsIIROne_64f>;
using Family_64fc = Iir<Kel64fc, Kel64fc, kelsIIRInitAlloc_64fc, kelsIIRInitAlloc_BiQuad_64fc, kelsIIRFree_64fc,
                        kelsIIRGetDlyLine_64fc, kelsIIRSetDlyLine_64fc, kelsIIR_64fc, kelsIIR_64fc_I, kelsIIROne_64fc>;
using Family_64f_32f =
    Iir<Kel64f, Kel32f, kelsIIRInitAlloc64f_32f, kelsIIRInitAlloc64f_BiQuad_32f, kelsIIRFree64f_32f,
        kelsIIRGetDlyLine64f_32f, kelsIIRSetDlyLine64f_32f, kelsIIR64f_32f, kelsIIR64f_32f_I, kelsIIROne64f_32f>;
using Family_64fc_32fc = Iir<Kel64fc, Kel32fc, kelsIIRInitAlloc64fc_32fc, kelsIIRInitAlloc64fc_BiQuad_32fc,
                             kelsIIRFree64fc_32fc, kelsIIRGetDlyLine64fc_32fc, kelsIIRSetDlyLine64fc_32fc,
                             kelsIIR64fc_32fc, kelsIIR64fc_32fc_I, kelsIIROne64fc_32fc>;
using Family_64f_32s = Iir<Kel64f, Kel32s, kelsIIRInitAlloc64f_32s, kelsIIRInitAlloc64f_BiQuad_32s, kelsIIRFree64f_32s,
                           kelsIIRGetDlyLine64f_32s, kelsIIRSetDlyLine64f_32s, kelsIIR64f_32s_Sfs, kelsIIR64f_32s_ISfs,
                           kelsIIROne64f_32s_Sfs>;
using Family_64fc_32sc = Iir<Kel64fc, Kel32sc, kelsIIRInitAlloc64fc_32sc, kelsIIRInitAlloc64fc_BiQuad_32sc,
                             kelsIIRFree64fc_32sc, kelsIIRGetDlyLine64fc_32sc, kelsIIRSetDlyLine64fc_32sc,
                             kelsIIR64fc_32sc_Sfs, kelsIIR64fc_32sc_ISfs, kelsIIROne64fc_32sc_Sfs>;
using Family_64f_16s = Iir<Kel64f, Kel16s, kelsIIRInitAlloc64f_16s, kelsIIRInitAlloc64f_BiQuad_16s, kelsIIRFree64f_16s,
                           kelsIIRGetDlyLine64f_16s, kelsIIRSetDlyLine64f_16s, kelsIIR64f_16s_Sfs, kelsIIR64f_16s_ISfs,
                           kelsIIROne64f_16s_Sfs>;
using Family_64fc_16sc = Iir<Kel64fc, Kel16sc, kelsIIRInitAlloc64fc_16sc, kelsIIRInitAlloc64fc_BiQuad_16sc,
                             kelsIIRFree64fc_16sc, kelsIIRGetDlyLine64fc_16sc, kelsIIRSetDlyLine64fc_16sc,
                             kelsIIR64fc_16sc_Sfs, kelsIIR64fc_16sc_ISfs, kelsIIROne64fc_16sc_Sfs>;

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
    const kels_test::GuardedArray<typename F::Taps> h(taps, kels_test::Edge::back), d(state, kels_test::Edge::back);
    const int size = static_cast<int>(cascade ? taps.size() / 6 : taps.size() / 2 - 1);
    return kels_test::made(init_of<F>(cascade), F::release, h.data(), size, tapsFactor,
                           state.empty() ? nullptr : d.data());
}

template <class F>
std::vector<typename F::Sample> filtered(Way way, const std::vector<typename F::Sample>& x, const Context& context,
                                         int scaleFactor = 0) {
    static kels_test::Careful careful;
    Through<F, KelIirContext> through{context.get(), scaleFactor};
    return filter_test::filtered(careful, through, way, x, static_cast<int>(x.size()), x.size());
}

template <class F>
std::vector<typename F::Taps> state_of(const Context& context, std::size_t size) {
    static kels_test::Careful careful;
    return kels_test::results<typename F::Taps>(careful, size,
                                                [&](auto* state) { return F::get_line(context.get(), state); });
}

} // namespace iir_test
