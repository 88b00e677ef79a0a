// What every family's functions do: the checks, the choice of the engine, and the delay line after it.
#pragma once

#include "filters/doubled_ring.h"
#include "filters/fir/context.h"
#include "filters/fir/overlap_save.h"

namespace kels {

template <class Family>
KelStatus free_context(KelFirContext* context) {
    return with_either_rate<Family>(context, []<class Own>(Own& own) {
        DeleteRecord{}(&own);
        return kelStatusOk;
    });
}

template <class Family>
KelStatus get_taps(const KelFirContext* context, typename Family::Taps* out) {
    return with_context<Family>(context, !out, [=](const FirContext<Family>& own) {
        std::copy_n(own.taps.get(), own.tapsLen, out);
        return kelStatusOk;
    });
}

template <class Family>
KelStatus get_delay_line(const KelFirContext* context, typename Family::Sample* newest_first) {
    return with_context<Family>(context, !newest_first, [=](const FirContext<Family>& own) {
        std::reverse_copy(own.window(), own.window() + own.windowLen, newest_first);
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

template <class Family>
bool beyond_plan(const SingleRate<Family>& own, int count) {
    return own.fftLen >= 1 && own.fftLen < count;
}

// Each runs an engine over `count` iterations that do not alias the destination, then moves the delay line on.

template <class Family>
KelStatus filter(SingleRate<Family>& own, bool overlap_save, const typename Family::Sample* src,
                 typename Family::Sample* dst, int count, int scaleFactor) {
    const auto stream = own.stream(src, count);
    if constexpr (Family::has_plans)
        if (overlap_save) {
            const KelStatus status = filter_overlap_save(own, stream, dst, scaleFactor);
            if (status == kelStatusOk) own.advance(src, count);
            return status;
        }
    filter_direct<SumsOf<Family>>(stream, own.stored_coefficients(), own.tapsLen, dst,
                                  rounding<Family>(scaleFactor, own.tapsFactor));
    own.advance(src, count);
    return kelStatusOk;
}

template <class Family>
KelStatus filter(MultiRate<Family>& own, bool /*overlap_save*/, const typename Family::Sample* src,
                 typename Family::Sample* dst, int count, int scaleFactor) {
    const std::ptrdiff_t samples = std::ptrdiff_t{count} * own.rates.down,
                         outputs = std::ptrdiff_t{count} * own.rates.up;
    filter_polyphase<SumsOf<Family>>(own.stream(src, samples), own.stored_phases(), own.rates, dst, outputs,
                                     rounding<Family>(scaleFactor, own.tapsFactor));
    own.advance(src, samples);
    return kelStatusOk;
}

// What a block costs in samples, and whether its engine is overlap-save.

template <class Family>
int samples_per_iteration(const SingleRate<Family>&) {
    return 1;
}
template <class Family>
int samples_per_iteration(const MultiRate<Family>& own) {
    return own.rates.down;
}

template <class Family>
bool transforms(const SingleRate<Family>& own, int count, bool in_place) {
    return beyond_plan(own, count) || (in_place && Family::plan_in_place_always && own.fftLen >= 1);
}
template <class Family>
bool transforms(const MultiRate<Family>&, int, bool) {
    return false;
}

template <class Family>
KelStatus filter_in_place(typename Family::Sample* samples, int count, KelFirContext* context, int scaleFactor = 0) {
    return with_either_rate<Family>(context, [=](auto& own) {
        if (!samples) return kelStatusNullPtr;
        if (count < 1) return kelStatusBadSize;
        const auto copy = make_owned_product<typename Family::Sample>(count, samples_per_iteration(own));
        if (!copy) return kelStatusNoMemory;
        std::copy_n(samples, std::ptrdiff_t{count} * samples_per_iteration(own), copy.get());
        return filter(own, transforms(own, count, true), copy.get(), samples, count, scaleFactor);
    });
}

/// The source as the destination is the in-place call.
template <class Family>
KelStatus filter_block(const typename Family::Sample* src, typename Family::Sample* dst, int count,
                       KelFirContext* context, int scaleFactor = 0) {
    if (src == dst) return filter_in_place<Family>(dst, count, context, scaleFactor);
    return with_either_rate<Family>(context, [=](auto& own) {
        if (!src || !dst) return kelStatusNullPtr;
        if (count < 1) return kelStatusBadSize;
        return filter(own, transforms(own, count, false), src, dst, count, scaleFactor);
    });
}

template <class Family>
KelStatus filter_one(typename Family::Sample sample, typename Family::Sample* out, KelFirContext* context,
                     int scaleFactor = 0) {
    return with_single_rate<Family>(context, [=](SingleRate<Family>& own) {
        if (!out) return kelStatusNullPtr;
        DoubledRing<typename Family::Sample>{own.line.get(), &own.index}.push(sample, own.tapsLen);
        const typename SumsOf<Family>::Coefficient* taps = own.coefficients.get();
        *out = rounded_sample<typename Family::Sample>(
            SumsOf<Family>::dot_of_fresh(reals(own.window()), taps, own.tapsLen),
            rounding<Family>(scaleFactor, own.tapsFactor));
        return kelStatusOk;
    });
}

} // namespace kels
