// Adaptive filters driven step by step: samples in, outputs and updates when they are asked for.
//
// The taps meet every tapStride-th sample of the ring; those of an update are errDly samples older than those of an
// output. Everything is 32-bit arithmetic that wraps.

#include "kels/lms.h"

#include "filters/doubled_ring.h"
#include "frame/blocks.h"
#include "frame/record.h"

#include <algorithm>

/// Complex numbers are two parts of the arrays, so that either family can end the other's record.
struct KelLmsMrContext {
    Kel32u id = 0;
    int tapsLen = 0, tapStride = 0, errDly = 0;
    int dlyLen = 0; ///< tapStride tapsLen + errDly
    int index = 0;
    int mu = 0;
    kels::Owned<Kel32s> taps; ///< the last first
    kels::Owned<Kel16s> line;
};

namespace kels {
namespace {

using Context = KelLmsMrContext;

struct RealFamily {
    static constexpr Kel32u id = 0x4C4D5352;
    using Tap = Kel32s;
    using Sample = Kel16s;
};

struct ComplexFamily {
    static constexpr Kel32u id = 0x4C4D5343;
    using Tap = Kel32sc;
    using Sample = Kel16sc;
};

template <class Family>
typename Family::Tap* taps_of(const Context& context) {
    return reinterpret_cast<typename Family::Tap*>(context.taps.get());
}

template <class Family>
typename Family::Sample* line_of(const Context& context) {
    return reinterpret_cast<typename Family::Sample*>(context.line.get());
}

/// The sample that the last tap meets in an update; in an output it is errDly behind.
template <class Family>
const typename Family::Sample* window_of(const Context& context) {
    return line_of<Family>(context) + context.index + (context.tapStride - 1);
}

bool is_index(const Context& context, int index) { return index >= 0 && index < context.dlyLen; }

// Products: words that wrap, as unsigned integers do.

constexpr Kel32u word(Kel32s x) { return static_cast<Kel32u>(x); }

/// Upper half of a tap.
constexpr Kel32u upper(Kel32s tap) { return word(tap >> 16); }

struct RealSum {
    Kel32u sum = 0;

    void add(Kel32s tap, Kel16s x) { sum += upper(tap) * word(x); }
    void store(Kel32s* dst) const { *dst = static_cast<Kel32s>(sum); }
};

struct ComplexSum {
    Kel32u re = 0, im = 0;

    void add(Kel32sc tap, Kel16sc x) {
        re += upper(tap.re) * word(x.re) - upper(tap.im) * word(x.im);
        im += word(x.re) * upper(tap.im) + word(x.im) * upper(tap.re);
    }
    void store(Kel32sc* dst) const { *dst = {static_cast<Kel32s>(re), static_cast<Kel32s>(im)}; }
};

void adapt(Kel32s& tap, Kel32s error, Kel16s x) { tap = static_cast<Kel32s>(word(tap) + word(x) * word(error)); }

/// By the error times the conjugate of the sample.
void adapt(Kel32sc& tap, Kel32sc error, Kel16sc x) {
    tap.re = static_cast<Kel32s>(word(tap.re) + (word(x.re) * word(error.re) + word(x.im) * word(error.im)));
    tap.im = static_cast<Kel32s>(word(tap.im) + (word(x.re) * word(error.im) - word(x.im) * word(error.re)));
}

Kel32s stepped(const Context& context, Kel32s error) {
    return static_cast<Kel32s>(word(context.mu) * word(error) + 16384) >> 15;
}

Kel32sc stepped(const Context& context, Kel32sc error) {
    return {stepped(context, error.re), stepped(context, error.im)};
}

/// Calls body(tap, sample) for tapsLen taps; neighbouring samples have a loop of their own, which the compiler can turn
/// into vectors.
template <class Family, class Body>
[[gnu::always_inline]] inline void each_tap(const Context& context, const typename Family::Sample* window,
                                            const Body& body) {
    typename Family::Tap* taps = taps_of<Family>(context);
    const Index count = context.tapsLen, stride = context.tapStride;
    if (stride == 1)
        for (Index i = 0; i < count; ++i) body(taps[i], window[i]);
    else
        for (Index i = 0; i < count; ++i) body(taps[i], window[i * stride]);
}

// Operations

template <class Family>
KelStatus output(typename Family::Tap* dst, const Context* context) {
    return with_record<Context>(context, Family::id, !dst, [=](const Context& own) {
        std::conditional_t<parts<typename Family::Tap> == 1, RealSum, ComplexSum> sum;
        each_tap<Family>(own, window_of<Family>(own) + own.errDly,
                         [&](const auto& tap, const auto& x) KELS_INLINE { sum.add(tap, x); });
        sum.store(dst);
        return kelStatusOk;
    });
}

template <class Family>
KelStatus put(typename Family::Sample sample, Context* context) {
    return with_record<Context>(context, Family::id, false, [=](Context& own) {
        DoubledRing<typename Family::Sample>{line_of<Family>(own), &own.index}.push(sample, own.dlyLen);
        return kelStatusOk;
    });
}

template <class Family>
KelStatus put_and_output(typename Family::Sample sample, typename Family::Tap* dst, Context* context) {
    if (!dst) return kelStatusNullPtr;
    if (const KelStatus status = put<Family>(sample, context)) return status;
    return output<Family>(dst, context);
}

template <class Family>
KelStatus update(typename Family::Tap error, Context* context) {
    return with_record<Context>(context, Family::id, false, [=](Context& own) {
        const auto step = stepped(own, error);
        each_tap<Family>(own, window_of<Family>(own),
                         [=](auto& tap, const auto& x) KELS_INLINE { adapt(tap, step, x); });
        return kelStatusOk;
    });
}

// Taps, step and delay line

template <class Family>
void store_taps(Context& context, const typename Family::Tap* taps) {
    if (taps)
        std::reverse_copy(taps, taps + context.tapsLen, taps_of<Family>(context));
    else
        std::fill_n(taps_of<Family>(context), context.tapsLen, typename Family::Tap{});
}

template <class Family>
void store_line(Context& context, const typename Family::Sample* ring, int index) {
    auto* line = line_of<Family>(context);
    for (auto* half : {line, line + context.dlyLen})
        if (ring)
            std::copy_n(ring, context.dlyLen, half);
        else
            std::fill_n(half, context.dlyLen, typename Family::Sample{});
    context.index = index;
}

template <class Family>
KelStatus set_taps(Context* context, const typename Family::Tap* taps) {
    return with_record<Context>(context, Family::id, false, [=](Context& own) {
        store_taps<Family>(own, taps);
        return kelStatusOk;
    });
}

template <class Family>
KelStatus get_taps(const Context* context, typename Family::Tap* taps) {
    return with_record<Context>(context, Family::id, !taps, [=](const Context& own) {
        std::reverse_copy(taps_of<Family>(own), taps_of<Family>(own) + own.tapsLen, taps);
        return kelStatusOk;
    });
}

/// Of a context of either family.
template <class Family>
KelStatus show_taps(Context* context, typename Family::Tap** taps) {
    if (!context || !taps) return kelStatusNullPtr;
    *taps = taps_of<Family>(*context);
    return kelStatusOk;
}

template <class Family>
KelStatus set_mu(Context* context, int mu) {
    return with_record<Context>(context, Family::id, false, [=](Context& own) {
        own.mu = mu;
        return kelStatusOk;
    });
}

template <class Family>
KelStatus set_line(Context* context, const typename Family::Sample* ring, int index) {
    return with_record<Context>(context, Family::id, false, [=](Context& own) {
        if (!is_index(own, index)) return kelStatusBadDlyLineIndex;
        store_line<Family>(own, ring, index);
        return kelStatusOk;
    });
}

template <class Family>
KelStatus get_line(const Context* context, typename Family::Sample* ring, int* index) {
    return with_record<Context>(context, Family::id, !ring || !index, [=](const Context& own) {
        std::copy_n(line_of<Family>(own), own.dlyLen, ring);
        *index = own.index;
        return kelStatusOk;
    });
}

template <class Family>
KelStatus get_sample(const Context* context, typename Family::Sample* sample, int index) {
    return with_record<Context>(context, Family::id, !sample, [=](const Context& own) {
        const Kel64s first = Kel64s{own.index} + own.errDly + own.tapStride - 1;
        if (index < 0 || index > own.dlyLen || first + index >= 2 * Kel64s{own.dlyLen}) return kelStatusBadArg;
        *sample = window_of<Family>(own)[Index{own.errDly} + index];
        return kelStatusOk;
    });
}

// Life

template <class Family>
KelStatus make(Context** result, const typename Family::Tap* taps, int tapsLen, const typename Family::Sample* ring,
               int index, int tapStride, int errDly, int mu) {
    if (!result) return kelStatusNullPtr;
    if (tapsLen < 1 || tapStride < 1 || errDly < 0) return kelStatusBadSize;
    const Kel64s dlyLen = Kel64s{tapStride} * tapsLen + errDly;
    if (index < 0 || index >= dlyLen) return kelStatusBadSize;
    auto context = make_record<Context>(Family::id);
    if (!context) return kelStatusNoMemory;
    context->taps = make_owned_product<Kel32s>(tapsLen, parts<typename Family::Tap>);
    context->line = make_owned_product<Kel16s>(dlyLen, 2 * parts<typename Family::Sample>);
    if (!context->taps || !context->line) return kelStatusNoMemory;
    context->tapsLen = tapsLen;
    context->tapStride = tapStride;
    context->errDly = errDly;
    context->dlyLen = static_cast<int>(dlyLen);
    context->mu = mu;
    store_taps<Family>(*context, taps);
    store_line<Family>(*context, ring, index);
    *result = context.release();
    return kelStatusOk;
}

KelStatus release(Context* context) {
    if (context) DeleteRecord{}(context);
    return kelStatusOk;
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsFIRLMSMRInitAlloc32s_16s  (KelLmsMrContext** state, const Kel32s*  taps, int len, const Kel16s*  line, int index, int stride, int delay, int mu) { return make<RealFamily>   (state, taps, len, line, index, stride, delay, mu); }
KelStatus kelsFIRLMSMRInitAlloc32sc_16sc(KelLmsMrContext** state, const Kel32sc* taps, int len, const Kel16sc* line, int index, int stride, int delay, int mu) { return make<ComplexFamily>(state, taps, len, line, index, stride, delay, mu); }

KelStatus kelsFIRLMSMRFree32s_16s  (KelLmsMrContext* state) { return release(state); }
KelStatus kelsFIRLMSMRFree32sc_16sc(KelLmsMrContext* state) { return release(state); }

KelStatus kelsFIRLMSMRSetTaps32s_16s         (KelLmsMrContext* state, const Kel32s*  taps)                   { return set_taps<RealFamily>   (state, taps); }
KelStatus kelsFIRLMSMRSetTaps32sc_16sc       (KelLmsMrContext* state, const Kel32sc* taps)                   { return set_taps<ComplexFamily>(state, taps); }
KelStatus kelsFIRLMSMRGetTaps32s_16s         (const KelLmsMrContext* state, Kel32s*  taps)                   { return get_taps<RealFamily>   (state, taps); }
KelStatus kelsFIRLMSMRGetTaps32sc_16sc       (const KelLmsMrContext* state, Kel32sc* taps)                   { return get_taps<ComplexFamily>(state, taps); }
KelStatus kelsFIRLMSMRGetTapsPointer32s_16s  (KelLmsMrContext* state, Kel32s**  taps)                        { return show_taps<RealFamily>   (state, taps); }
KelStatus kelsFIRLMSMRGetTapsPointer32sc_16sc(KelLmsMrContext* state, Kel32sc** taps)                        { return show_taps<ComplexFamily>(state, taps); }
KelStatus kelsFIRLMSMRSetMu32s_16s           (KelLmsMrContext* state, int mu)                                { return set_mu<RealFamily>   (state, mu); }
KelStatus kelsFIRLMSMRSetMu32sc_16sc         (KelLmsMrContext* state, int mu)                                { return set_mu<ComplexFamily>(state, mu); }
KelStatus kelsFIRLMSMRSetDlyLine32s_16s      (KelLmsMrContext* state, const Kel16s*  line, int index)        { return set_line<RealFamily>   (state, line, index); }
KelStatus kelsFIRLMSMRSetDlyLine32sc_16sc    (KelLmsMrContext* state, const Kel16sc* line, int index)        { return set_line<ComplexFamily>(state, line, index); }
KelStatus kelsFIRLMSMRGetDlyLine32s_16s      (const KelLmsMrContext* state, Kel16s*  line, int* index)       { return get_line<RealFamily>   (state, line, index); }
KelStatus kelsFIRLMSMRGetDlyLine32sc_16sc    (const KelLmsMrContext* state, Kel16sc* line, int* index)       { return get_line<ComplexFamily>(state, line, index); }
KelStatus kelsFIRLMSMRGetDlyVal32s_16s       (const KelLmsMrContext* state, Kel16s*  sample, int index)      { return get_sample<RealFamily>   (state, sample, index); }
KelStatus kelsFIRLMSMRGetDlyVal32sc_16sc     (const KelLmsMrContext* state, Kel16sc* sample, int index)      { return get_sample<ComplexFamily>(state, sample, index); }

KelStatus kelsFIRLMSMRPutVal32s_16s      (Kel16s  sample, KelLmsMrContext* state)               { return put<RealFamily>   (sample, state); }
KelStatus kelsFIRLMSMRPutVal32sc_16sc    (Kel16sc sample, KelLmsMrContext* state)               { return put<ComplexFamily>(sample, state); }
KelStatus kelsFIRLMSMROne32s_16s         (Kel32s*  dst, const KelLmsMrContext* state)           { return output<RealFamily>   (dst, state); }
KelStatus kelsFIRLMSMROne32sc_16sc       (Kel32sc* dst, const KelLmsMrContext* state)           { return output<ComplexFamily>(dst, state); }
KelStatus kelsFIRLMSMROneVal32s_16s      (Kel16s  sample, Kel32s*  dst, KelLmsMrContext* state) { return put_and_output<RealFamily>   (sample, dst, state); }
KelStatus kelsFIRLMSMROneVal32sc_16sc    (Kel16sc sample, Kel32sc* dst, KelLmsMrContext* state) { return put_and_output<ComplexFamily>(sample, dst, state); }
KelStatus kelsFIRLMSMRUpdateTaps32s_16s  (Kel32s  error, KelLmsMrContext* state)                { return update<RealFamily>   (error, state); }
KelStatus kelsFIRLMSMRUpdateTaps32sc_16sc(Kel32sc error, KelLmsMrContext* state)                { return update<ComplexFamily>(error, state); }
}
// clang-format on
