// FIR filters with a state: the checks, the choice of the engine, and the delay line after it.

#include "kels/fir.h"

#include "filters/fir_overlap_save.h"

namespace kels {
namespace {

template <class Family>
KelStatus free_context(KelFirContext* context) {
    return with_context<Family>(context, false, [](FirContext<Family>& own) {
        DeleteContext<Family>{}(&own);
        return kelStatusOk;
    });
}

template <class Family>
KelStatus get_taps(const KelFirContext* context, typename Family::Taps* out) {
    return with_context<Family>(context, !out, [=](const FirContext<Family>& own) {
        std::reverse_copy(own.taps.get(), own.taps.get() + own.tapsLen, out);
        return kelStatusOk;
    });
}

template <class Family>
KelStatus get_delay_line(const KelFirContext* context, typename Family::Sample* newest_first) {
    return with_context<Family>(context, !newest_first, [=](const FirContext<Family>& own) {
        std::reverse_copy(own.window(), own.window() + own.tapsLen, newest_first);
        return kelStatusOk;
    });
}

template <class Family>
KelStatus set_delay_line(KelFirContext* context, const typename Family::Sample* newest_first) {
    return with_context<Family>(context, false, [=](FirContext<Family>& own) {
        own.start(newest_first);
        return kelStatusOk;
    });
}

/// Runs one engine over a block that does not alias the destination, then moves the delay line on.
template <class Family>
KelStatus filter(FirContext<Family>& own, bool overlap_save, const typename Family::Sample* src,
                 typename Family::Sample* dst, int count) {
    if (overlap_save) {
        const KelStatus status = filter_overlap_save(own, src, dst, count);
        if (status != kelStatusOk) return status;
    } else {
        filter_direct(own, src, dst, count);
    }
    own.advance(src, count);
    return kelStatusOk;
}

template <class Family>
bool long_enough(const FirContext<Family>& own, int count) {
    return own.fftLen >= 1 && own.fftLen < count;
}

template <class Family>
KelStatus filter_block(const typename Family::Sample* src, typename Family::Sample* dst, int count,
                       KelFirContext* context) {
    return with_context<Family>(context, false, [=](FirContext<Family>& own) {
        if (!src || !dst) return kelStatusNullPtr;
        if (count < 1) return kelStatusBadSize;
        return filter(own, long_enough(own, count), src, dst, count);
    });
}

template <class Family>
KelStatus filter_in_place(typename Family::Sample* samples, int count, KelFirContext* context) {
    return with_context<Family>(context, false, [=](FirContext<Family>& own) {
        if (!samples) return kelStatusNullPtr;
        if (count < 1) return kelStatusBadSize;
        const bool overlap_save = Family::plan_in_place_always ? own.fftLen >= 1 : long_enough(own, count);
        const auto copy = make_owned<typename Family::Sample>(static_cast<std::size_t>(count));
        if (!copy) return kelStatusNoMemory;
        std::copy_n(samples, count, copy.get());
        return filter(own, overlap_save, copy.get(), samples, count);
    });
}

template <class Family>
KelStatus filter_one(typename Family::Sample sample, typename Family::Sample* out, KelFirContext* context) {
    return with_context<Family>(context, false, [=](FirContext<Family>& own) {
        if (!out) return kelStatusNullPtr;
        own.line[own.index] = own.line[own.index + own.tapsLen] = sample;
        if (++own.index == own.tapsLen) own.index = 0;
        *out = filter_window(own);
        return kelStatusOk;
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsFIRInitAlloc_32f (KelFirContext** state, const Kel32f*  taps, int tapsLen, const Kel32f*  dlyLine) { return make_context<Fir_32f> (state, taps, tapsLen, dlyLine); }
KelStatus kelsFIRInitAlloc_32fc(KelFirContext** state, const Kel32fc* taps, int tapsLen, const Kel32fc* dlyLine) { return make_context<Fir_32fc>(state, taps, tapsLen, dlyLine); }
KelStatus kelsFIRInitAlloc_64f (KelFirContext** state, const Kel64f*  taps, int tapsLen, const Kel64f*  dlyLine) { return make_context<Fir_64f> (state, taps, tapsLen, dlyLine); }
KelStatus kelsFIRInitAlloc_64fc(KelFirContext** state, const Kel64fc* taps, int tapsLen, const Kel64fc* dlyLine) { return make_context<Fir_64fc>(state, taps, tapsLen, dlyLine); }

KelStatus kelsFIRFree_32f (KelFirContext* state) { return free_context<Fir_32f> (state); }
KelStatus kelsFIRFree_32fc(KelFirContext* state) { return free_context<Fir_32fc>(state); }
KelStatus kelsFIRFree_64f (KelFirContext* state) { return free_context<Fir_64f> (state); }
KelStatus kelsFIRFree_64fc(KelFirContext* state) { return free_context<Fir_64fc>(state); }

KelStatus kelsFIRGetTaps_32f (const KelFirContext* state, Kel32f*  taps) { return get_taps<Fir_32f> (state, taps); }
KelStatus kelsFIRGetTaps_32fc(const KelFirContext* state, Kel32fc* taps) { return get_taps<Fir_32fc>(state, taps); }
KelStatus kelsFIRGetTaps_64f (const KelFirContext* state, Kel64f*  taps) { return get_taps<Fir_64f> (state, taps); }
KelStatus kelsFIRGetTaps_64fc(const KelFirContext* state, Kel64fc* taps) { return get_taps<Fir_64fc>(state, taps); }

KelStatus kelsFIRGetDlyLine_32f (const KelFirContext* state, Kel32f*  dlyLine) { return get_delay_line<Fir_32f> (state, dlyLine); }
KelStatus kelsFIRGetDlyLine_32fc(const KelFirContext* state, Kel32fc* dlyLine) { return get_delay_line<Fir_32fc>(state, dlyLine); }
KelStatus kelsFIRGetDlyLine_64f (const KelFirContext* state, Kel64f*  dlyLine) { return get_delay_line<Fir_64f> (state, dlyLine); }
KelStatus kelsFIRGetDlyLine_64fc(const KelFirContext* state, Kel64fc* dlyLine) { return get_delay_line<Fir_64fc>(state, dlyLine); }

KelStatus kelsFIRSetDlyLine_32f (KelFirContext* state, const Kel32f*  dlyLine) { return set_delay_line<Fir_32f> (state, dlyLine); }
KelStatus kelsFIRSetDlyLine_32fc(KelFirContext* state, const Kel32fc* dlyLine) { return set_delay_line<Fir_32fc>(state, dlyLine); }
KelStatus kelsFIRSetDlyLine_64f (KelFirContext* state, const Kel64f*  dlyLine) { return set_delay_line<Fir_64f> (state, dlyLine); }
KelStatus kelsFIRSetDlyLine_64fc(KelFirContext* state, const Kel64fc* dlyLine) { return set_delay_line<Fir_64fc>(state, dlyLine); }

KelStatus kelsFIR_32f (const Kel32f*  src, Kel32f*  dst, int numIters, KelFirContext* state) { return filter_block<Fir_32f> (src, dst, numIters, state); }
KelStatus kelsFIR_32fc(const Kel32fc* src, Kel32fc* dst, int numIters, KelFirContext* state) { return filter_block<Fir_32fc>(src, dst, numIters, state); }
KelStatus kelsFIR_64f (const Kel64f*  src, Kel64f*  dst, int numIters, KelFirContext* state) { return filter_block<Fir_64f> (src, dst, numIters, state); }
KelStatus kelsFIR_64fc(const Kel64fc* src, Kel64fc* dst, int numIters, KelFirContext* state) { return filter_block<Fir_64fc>(src, dst, numIters, state); }

KelStatus kelsFIR_32f_I (Kel32f*  srcDst, int numIters, KelFirContext* state) { return filter_in_place<Fir_32f> (srcDst, numIters, state); }
KelStatus kelsFIR_32fc_I(Kel32fc* srcDst, int numIters, KelFirContext* state) { return filter_in_place<Fir_32fc>(srcDst, numIters, state); }
KelStatus kelsFIR_64f_I (Kel64f*  srcDst, int numIters, KelFirContext* state) { return filter_in_place<Fir_64f> (srcDst, numIters, state); }
KelStatus kelsFIR_64fc_I(Kel64fc* srcDst, int numIters, KelFirContext* state) { return filter_in_place<Fir_64fc>(srcDst, numIters, state); }

KelStatus kelsFIROne_32f (Kel32f  src, Kel32f*  dstVal, KelFirContext* state) { return filter_one<Fir_32f> (src, dstVal, state); }
KelStatus kelsFIROne_32fc(Kel32fc src, Kel32fc* dstVal, KelFirContext* state) { return filter_one<Fir_32fc>(src, dstVal, state); }
KelStatus kelsFIROne_64f (Kel64f  src, Kel64f*  dstVal, KelFirContext* state) { return filter_one<Fir_64f> (src, dstVal, state); }
KelStatus kelsFIROne_64fc(Kel64fc src, Kel64fc* dstVal, KelFirContext* state) { return filter_one<Fir_64fc>(src, dstVal, state); }
}
// clang-format on
