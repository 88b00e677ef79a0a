// What every family's functions do: the checks, the choice of the engine, and the delay line after it. Nothing is
// allocated: scratch is the context's, or on the stack.
#pragma once

#include "filters/fir/context.h"
#include "filters/fir/overlap_save.h"
#include "filters/fir/spectral_sums.h"

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
    return with_either_rate<Family>(context, [=](auto& own) {
        own.start(newest_first);
        return kelStatusOk;
    });
}

/// Tile by tile: the line takes the samples of one before its outputs are stored, so that they may be the same array.
template <class Family>
void filter_by_sums(SingleRate<Family>& own, const typename Family::Sample* src, typename Family::Sample* dst,
                    int count, const Storing<Family>& store) {
    constexpr int width = parts<typename Family::Sample>;
    if (summed_one_by_one<Family>(own.tapsLen, count)) {
        for (int i = 0; i < count; ++i) {
            own.push(src[i]);
            store_direct_sum(own, own.recent(1).src, dst + i, store);
        }
        return;
    }
    Tile<SumsOf<Family>> tile;
    for (int outputs; count > 0; count -= outputs, src += outputs, dst += outputs) {
        outputs = std::min(tile.most_outputs, count);
        tile.sum(own.stream(src, outputs), 0, outputs, own.stored_coefficients(), own.tapsLen);
        own.advance(src, outputs);
        store(tile.sums(), reals(dst), outputs * width);
    }
}

/// How the next samples of a call are filtered.
enum class Engine { direct, all_taps, half_of_taps, behind_head, plan };

struct Step {
    Engine engine;
    int samples;
};

/// The cheapest engines for `count` samples. In whole blocks the last samples may be left for another engine.
template <class Family>
class CheapestStep {
public:
    CheapestStep(const SingleRate<Family>& own, int count)
        : costs{double(own.tapsLen)}, samples(count), least(costs.least_direct(count)), best{Engine::direct, count} {}

    void consider(Engine engine, double cost) { consider(engine, cost, samples); }

    /// `before` is what has to be done before the first block where the engine has not come to it; in calls of whole
    /// blocks it has.
    void consider_blocks(Engine engine, double before, double block, int length) {
        const int whole = samples / length, rest = samples % length;
        if (rest == 0) before = 0;
        const double direct_rest = rest == 0 ? 0 : costs.least_direct(rest);
        const bool leaves_rest = whole > 0 && direct_rest < block;
        const double last = rest == 0 || leaves_rest ? direct_rest : block;
        consider(engine, price::call + before + whole * block + last, leaves_rest ? whole * length : samples);
    }

    const CostsOf<Family::complex> costs;
    const int samples;
    double cost() const { return least; }
    Step step() const { return best; }

private:
    double least;
    Step best;

    void consider(Engine engine, double cost, int taken) {
        if (cost >= least) return;
        least = cost;
        best = {engine, taken};
    }
};

template <class Family>
Step next_step(const SingleRate<Family>& own, int count, bool may_run_plan, bool begins) {
    CheapestStep<Family> cheapest(own, count);
    if (cheapest.cost() <= own.least_of_transforms) return cheapest.step();
    if constexpr (Family::has_plans)
        if (may_run_plan) cheapest.consider_blocks(Engine::plan, 0, own.block_cost, own.transformLen - own.tapsLen + 1);
    if constexpr (Family::rounds_sums) {
        for (const int i : {0, 1}) {
            const auto& frames = own.spectral.frames[i];
            if (frames.frame == 0) continue;
            const double frame = own.spectral.frame_cost[i];
            const double before = frames.moment == own.moment ? 0 : (frames.pieces - 1) * frame * price::taking;
            cheapest.consider_blocks(i == 0 ? Engine::all_taps : Engine::half_of_taps, before, frame, frames.frame);
        }
        if (const auto& behind = own.spectral.behind; begins && behind.levels > 0)
            cheapest.consider(Engine::behind_head,
                              price::behind_call + cheapest.costs.head(behind.head(), count) + count * behind.cost);
    }
    return cheapest.step();
}

template <class Family>
KelStatus filter_step(SingleRate<Family>& own, const Step& step, const typename Family::Sample* src,
                      typename Family::Sample* dst, const Storing<Family>& store) {
    if constexpr (Family::has_plans)
        if (step.engine == Engine::plan) return filter_overlap_save(own, src, dst, step.samples, store.scaleFactor);
    if constexpr (Family::rounds_sums) {
        if (step.engine == Engine::behind_head) {
            filter_behind_head(own, src, dst, step.samples, store);
            return kelStatusOk;
        }
        if (step.engine != Engine::direct) {
            auto& frames = own.spectral.frames[step.engine == Engine::all_taps ? 0 : 1];
            filter_frames(own, frames, src, dst, step.samples, store);
            return kelStatusOk;
        }
    }
    filter_by_sums(own, src, dst, step.samples, store);
    return kelStatusOk;
}

/// Where the rules have a transform, the plan's engine may run, or any that is closer to the sums; where they have the
/// direct engine, only those with its numbers. Whatever runs, a call rounds as the rules have it.
template <class Family>
KelStatus filter(SingleRate<Family>& own, const typename Family::Sample* src, typename Family::Sample* dst, int count,
                 int scaleFactor) {
    const bool may_run_plan = own.fftLen >= 1 && own.fftLen < count;
    const bool as_transformed = may_run_plan || (src == dst && Family::plan_in_place_always && own.fftLen >= 1);
    const Storing<Family> store{Family::transforms_tie_to_even && as_transformed, scaleFactor, own.tapsFactor};
    if (store.as_transformed && Family::single_taps_on_integers)
        return filter_step(own, {Engine::plan, count}, src, dst, store);
    KelStatus status = kelStatusOk;
    for (bool begins = true; count > 0 && status == kelStatusOk; begins = false) {
        const Step step = next_step(own, count, may_run_plan, begins);
        status = filter_step(own, step, src, dst, store);
        src += step.samples;
        dst += step.samples;
        count -= step.samples;
    }
    return status;
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
