// What every family's functions do: the checks, the choice of the engine, and the delay line after it. Nothing is
// allocated: scratch is the context's, or on the stack.
#pragma once

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

/// Tile by tile: the line takes the samples of one before its outputs are stored, so that they may be the same array.
template <class Family>
void filter_by_sums(SingleRate<Family>& own, const typename Family::Sample* src, typename Family::Sample* dst,
                    int count, int scaleFactor) {
    Tile<SumsOf<Family>> tile;
    const auto round = rounding<Family>(scaleFactor, own.tapsFactor);
    for (int outputs; count > 0; count -= outputs, src += outputs, dst += outputs) {
        outputs = std::min(tile.most_outputs, count);
        tile.sum(own.stream(src, outputs), 0, outputs, own.stored_coefficients(), own.tapsLen);
        own.advance(src, outputs);
        tile.store(dst, outputs, round);
    }
}

template <class Family>
bool transforms(const SingleRate<Family>& own, int count, bool in_place) {
    return beyond_plan(own, count) || (in_place && Family::plan_in_place_always && own.fftLen >= 1);
}

// Each runs an engine over `count` iterations.

template <class Family>
KelStatus filter(SingleRate<Family>& own, const typename Family::Sample* src, typename Family::Sample* dst, int count,
                 int scaleFactor) {
    if constexpr (Family::has_plans)
        if (transforms(own, count, src == dst)) return filter_overlap_save(own, src, dst, count, scaleFactor);
    filter_by_sums(own, src, dst, count, scaleFactor);
    return kelStatusOk;
}

/// Where the source is no destination.
template <class Family>
void filter_apart(MultiRate<Family>& own, const typename Family::Sample* src, typename Family::Sample* dst, int count,
                  int scaleFactor) {
    const std::ptrdiff_t samples = std::ptrdiff_t{count} * own.rates.down,
                         outputs = std::ptrdiff_t{count} * own.rates.up;
    filter_polyphase<SumsOf<Family>>(own.stream(src, samples), own.stored_phases(), own.rates, dst, outputs,
                                     rounding<Family>(scaleFactor, own.tapsFactor));
    own.advance(src, samples);
}

/// In place the samples go through the context's room. Where there are more outputs than samples, these first move to
/// the end of the array: so far ahead, no output overtakes them.
template <class Family>
KelStatus filter(MultiRate<Family>& own, const typename Family::Sample* src, typename Family::Sample* dst, int count,
                 int scaleFactor) {
    if (src != dst) {
        filter_apart(own, src, dst, count, scaleFactor);
        return kelStatusOk;
    }
    const std::ptrdiff_t up = own.rates.up, down = own.rates.down;
    if (up > down) {
        auto* const last = dst + count * (up - down);
        std::memmove(last, src, static_cast<std::size_t>(count * down) * sizeof *src);
        src = last;
    }
    for (int some; count > 0; count -= some, src += some * down, dst += some * up) {
        some = std::min(count, own.roomIterations);
        std::copy_n(src, some * down, own.room.get());
        filter_apart(own, own.room.get(), dst, some, scaleFactor);
    }
    return kelStatusOk;
}

/// The source may be the destination.
template <class Family>
KelStatus filter_block(const typename Family::Sample* src, typename Family::Sample* dst, int count,
                       KelFirContext* context, int scaleFactor = 0) {
    return with_either_rate<Family>(context, [=](auto& own) {
        if (!src || !dst) return kelStatusNullPtr;
        if (count < 1) return kelStatusBadSize;
        return filter(own, src, dst, count, scaleFactor);
    });
}

template <class Family>
KelStatus filter_in_place(typename Family::Sample* samples, int count, KelFirContext* context, int scaleFactor = 0) {
    return filter_block<Family>(samples, samples, count, context, scaleFactor);
}

template <class Family>
KelStatus filter_one(typename Family::Sample sample, typename Family::Sample* out, KelFirContext* context,
                     int scaleFactor = 0) {
    return with_single_rate<Family>(context, [=](SingleRate<Family>& own) {
        if (!out) return kelStatusNullPtr;
        own.push(sample);
        const typename SumsOf<Family>::Coefficient* taps = own.coefficients.get();
        *out = rounded_sample<typename Family::Sample>(
            SumsOf<Family>::dot_of_fresh(reals(own.window()), taps, own.tapsLen),
            rounding<Family>(scaleFactor, own.tapsFactor));
        return kelStatusOk;
    });
}

} // namespace kels
