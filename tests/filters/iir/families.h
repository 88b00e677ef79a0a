// The families of IIR filters as the tests see them: types and functions.
#pragma once

#include "filters/streams.h"
#include "kels/iir.h"

namespace iir_test {

using namespace filter_test;

#define KELS_IIR(taps, samples, ending, ending_in_place)                                                               \
    struct Functions##taps##_##samples {                                                                               \
        KELS_FILTER_FUNCTIONS(IIR, taps, samples, ending, ending_in_place)                                             \
        static constexpr auto init_cascade = kelsIIRInitAlloc##taps##_BiQuad_##samples;                                \
    };                                                                                                                 \
    using Family##taps##_##samples = Family<Functions##taps##_##samples>;
KELS_FILTERS(KELS_IIR)
#undef KELS_IIR

using Families = testing::Types<Family_32f, Family_32fc, Family32f_16s, Family32fc_16sc, Family32s_16s, Family32sc_16sc,
                                Family_64f, Family_64fc, Family64f_32f, Family64fc_32fc, Family64f_32s, Family64fc_32sc,
                                Family64f_16s, Family64fc_16sc>;

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
