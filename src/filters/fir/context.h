// The records of FIR filters with a state: taps, delay line, and what the engines need beside them.
#pragma once

#include "filters/fir/behind_head.h"
#include "filters/fir/costs.h"
#include "filters/fir/integer_taps.h"
#include "filters/fir/polyphase.h"
#include "frame/modes.h"
#include "frame/record.h"
#include "kels/fir.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

/// The first word of every context; what follows belongs to the family that it names.
struct KelFirContext {
    Kel32u id = 0;
};

namespace kels {

/// What contexts of both rates share. The window is the last `windowLen` samples, side by side, oldest first.
template <class Family>
struct FirContext : KelFirContext {
    using Taps = typename Family::Taps;
    using Sample = typename Family::Sample;
    using Sums = SumsOf<Family>;
    using Coefficient = typename Sums::Coefficient;

    int tapsLen = 0;
    int tapsFactor = 0; ///< of integer taps
    int windowLen = 0;
    std::ptrdiff_t lineLen = 0; ///< room of the line: some windows beside the present one
    std::ptrdiff_t index = 0;   ///< of the window in the line
    std::uint64_t moment = 0;   ///< changes whenever the window does
    Owned<Taps> taps;           ///< in the order they were given in, integer ones reduced
    Owned<Coefficient> coefficients;
    Owned<Sample> line;

    Sample* window() { return line.get() + index; }
    const Sample* window() const { return line.get() + index; }

    /// Takes a block in, or the end of one that is longer than what the line holds beside a window. The window slides
    /// along the line, and back to its start from the end; the windows since the block's begin stay readable.
    void advance(const Sample* src, std::ptrdiff_t count) {
        const std::ptrdiff_t taken = std::min<std::ptrdiff_t>(count, lineLen - windowLen);
        if (index + windowLen + taken > lineLen) {
            std::memmove(line.get(), window(), static_cast<std::size_t>(windowLen) * sizeof(Sample));
            index = 0;
        }
        std::copy_n(src + (count - taken), taken, window() + windowLen);
        index += taken;
        moment += static_cast<std::uint64_t>(count);
    }
    void push(Sample sample) { advance(&sample, 1); }

    /// Starts from the given samples, newest first, or from silence.
    void start(const Sample* newest_first) {
        index = 0;
        ++moment;
        if (newest_first)
            std::reverse_copy(newest_first, newest_first + windowLen, line.get());
        else
            std::fill_n(line.get(), windowLen, Sample{});
    }
};

/// Families without plans have none of this.
template <class Family>
struct TapsSpectrum {};

template <class Family>
requires Family::has_plans struct TapsSpectrum<Family> {
    using Spectrum = typename Family::Taps;
    int transformLen = 0; ///< points of the plan: longer than fftLen where that leaves more new samples a block
    double block_cost = 0;
    OwnedPlan<Spectrum> plan;
    Owned<Spectrum> spectrum, work;
};

/// The partitions of the engines in spectral_sums.h, where they are worth it.
template <class Family>
struct SpectralSums {};

template <class Family>
requires Family::rounds_sums struct SpectralSums<Family> {
    using Wide = std::conditional_t<Family::complex, Kel64fc, Kel64f>;
    PlansByOrder<Wide> plans;
    Partitions<Wide> frames[2];
    double frame_cost[2] = {};
    BehindHead<Wide> behind;
};

/// The oldest sample of the window has no influence any more.
template <class Family>
struct SingleRate : FirContext<Family>, TapsSpectrum<Family> {
    static constexpr Kel32u family_id = Family::single_rate_id;
    int fftLen = -1; ///< blocks longer than this run overlap-save; -1 without a plan
    double least_of_transforms = std::numeric_limits<double>::infinity(); ///< no call of theirs costs less

    auto stored_coefficients() const { return StoredCoefficients<SumsOf<Family>>{this->coefficients.get()}; }

    SpectralSums<Family> spectral;

    /// A block behind what influences it.
    Stream<typename Family::Sample> stream(const typename Family::Sample* src, int count) const {
        return {this->window() + 1, this->tapsLen - 1, src, count};
    }
    /// A block that the line has just taken in.
    Stream<typename Family::Sample> recent(int count) const {
        const auto* src = this->window() + (this->tapsLen - count);
        return {src - (this->tapsLen - 1), this->tapsLen - 1, src, count};
    }
};

/// The coefficients stand phase by phase, taps phase + k up, the last first; the line holds the history.
template <class Family>
struct MultiRate : FirContext<Family> {
    static constexpr Kel32u family_id = Family::multi_rate_id;
    Rates rates{};
    int roomIterations = 0;
    Owned<typename Family::Sample> room; ///< samples of as many iterations, for the in-place forms

    auto stored_phases() const {
        return StoredPhases<SumsOf<Family>>{this->coefficients.get(), PhaseLengths(this->tapsLen, rates.up)};
    }

    /// A block behind what influences it.
    Stream<typename Family::Sample> stream(const typename Family::Sample* src, std::ptrdiff_t count) const {
        return {this->window(), this->windowLen, src, count};
    }
};

// Making one

/// A context with its taps and delay line, without coefficients; null for want of memory.
template <class Context>
OwnedRecord<Context> make_context(const typename Context::Taps* taps, int tapsLen, int tapsFactor, int windowLen,
                                  std::int64_t lineLen, const typename Context::Sample* newest_first) {
    auto context = make_record<Context>(Context::family_id);
    if (!context) return nullptr;
    context->tapsLen = tapsLen;
    context->windowLen = windowLen;
    context->taps = make_owned<typename Context::Taps>(static_cast<std::size_t>(tapsLen));
    context->line = make_owned_product<typename Context::Sample>(lineLen, 1);
    context->lineLen = static_cast<std::ptrdiff_t>(lineLen);
    if (!context->taps || !context->line) return nullptr;
    const int shift = excess_bits(taps, tapsLen);
    context->tapsFactor = static_cast<int>(static_cast<unsigned>(tapsFactor) + static_cast<unsigned>(shift));
    std::transform(taps, taps + tapsLen, context->taps.get(), [=](auto tap) { return shifted_down(tap, shift); });
    context->start(newest_first);
    return context;
}

/// The order that decides between the engines: the least power of two above the taps, doubled below 2^8.
inline int switch_order(int tapsLen) {
    const int order = std::bit_width(static_cast<unsigned>(tapsLen));
    return order < 8 ? order + 1 : order;
}

/// The order of the transform that runs: four times the taps spend most of a block on new samples.
inline int transform_order(int tapsLen) {
    constexpr int longest = 24; // beyond, the plan of the switch alone
    const int order = std::bit_width(4 * static_cast<std::uint64_t>(tapsLen) - 1);
    return std::max(switch_order(tapsLen), std::min(order, longest));
}

template <class Family>
bool add_spectrum(SingleRate<Family>& context) {
    using Spectrum = typename Family::Taps;
    using S = Spectral<Spectrum>;
    const int order = transform_order(context.tapsLen);
    if (order > 30) return false;
    typename S::Plan* plan = nullptr;
    if (S::make(&plan, order, kelFftNormInv, kelHintDefault) != kelStatusOk) return false;
    context.plan.reset(plan);
    context.fftLen = 1 << switch_order(context.tapsLen);
    context.transformLen = 1 << order;
    const CostsOf<Family::complex> costs{double(context.tapsLen)};
    context.block_cost = costs.template block<Part<Spectrum>>(context.transformLen, 1);
    context.least_of_transforms = std::min(context.least_of_transforms, context.block_cost);
    context.spectrum = make_owned<Spectrum>(static_cast<std::size_t>(context.transformLen));
    context.work = make_owned<Spectrum>(static_cast<std::size_t>(context.transformLen));
    if (!context.spectrum || !context.work) return false;
    Spectrum* spectrum = context.spectrum.get();
    std::fill_n(std::copy_n(context.taps.get(), context.tapsLen, spectrum), context.transformLen - context.tapsLen,
                Spectrum{});
    return S::forward(spectrum, spectrum, plan, nullptr) == kelStatusOk;
}

/// Frames of all taps and of half of them, and levels behind a head of the least cost, where they beat direct sums.
/// `longest` frames, in samples, are what the line must hold beside the window.
template <class Family>
int longest_frame(int tapsLen) {
    constexpr int least = 64, most = 1 << 15;
    if (!Family::rounds_sums || tapsLen < least || tapsLen > most) return 0;
    return static_cast<int>(std::bit_ceil(static_cast<unsigned>(tapsLen)));
}

template <class Family>
bool add_partitions(SingleRate<Family>& context) {
    const int tapsLen = context.tapsLen, frame = longest_frame<Family>(tapsLen);
    if (frame == 0) return true;
    auto& own = context.spectral;
    const auto* taps = context.taps.get();
    if (!own.frames[0].make(taps, 0, tapsLen, frame, own.plans) ||
        !own.frames[1].make(taps, 0, tapsLen, frame / 2, own.plans))
        return false;

    const CostsOf<Family::complex> costs{double(tapsLen)};
    for (const int i : {0, 1}) {
        own.frame_cost[i] = costs.frame(own.frames[i].frame, own.frames[i].pieces);
        context.least_of_transforms = std::min(context.least_of_transforms, own.frame_cost[i]);
    }
    constexpr int typical = 64; // samples of a call
    int best[2] = {};
    double least = costs.direct(typical);
    for (int first = 32; first <= std::min(own.behind.longest_head, tapsLen / 2); first *= 2)
        for (int second = first; second <= tapsLen / 2; second *= 2) {
            const int level[2] = {first, second > first ? second : 0};
            const double cost = costs.behind_head(level, second > first ? 2 : 1),
                         all = costs.head(first, typical) + typical * cost;
            if (all < least) {
                least = all;
                own.behind.cost = cost;
                std::copy_n(level, 2, best);
            }
        }
    if (best[0] == 0) return true;
    context.least_of_transforms = std::min(context.least_of_transforms, price::behind_call);
    return own.behind.make(taps, tapsLen, best, own.plans);
}

template <class Family>
KelStatus make_single_rate(KelFirContext** result, const typename Family::Taps* taps, int tapsLen, int tapsFactor,
                           const typename Family::Sample* newest_first) {
    using Context = SingleRate<Family>;
    using Sums = SumsOf<Family>;
    if (!result || !taps) return kelStatusNullPtr;
    if (tapsLen < 1) return kelStatusBadFirLength;
    const ModesOfCreation modes;

    auto context =
        make_context<Context>(taps, tapsLen, tapsFactor, tapsLen,
                              2 * std::int64_t{tapsLen} + std::max(1024, longest_frame<Family>(tapsLen)), newest_first);
    if (!context) return kelStatusNoMemory;
    context->coefficients =
        make_owned_product<typename Context::Coefficient>(std::int64_t{tapsLen} + Sums::padding, Sums::per_tap);
    if (!context->coefficients) return kelStatusNoMemory;
    auto* out = context->coefficients.get();
    for (int tap = tapsLen - 1; tap >= 0; --tap, out += Sums::per_tap)
        Sums::put(context->taps[static_cast<std::size_t>(tap)], 0, out);
    std::fill_n(out, Sums::padding, typename Context::Coefficient{});

    if constexpr (Family::has_plans)
        if (tapsLen >= Family::least_for_plan && !add_spectrum(*context)) return kelStatusNoMemory;
    if constexpr (Family::rounds_sums)
        if (!add_partitions(*context)) return kelStatusNoMemory;
    *result = context.release();
    return kelStatusOk;
}

template <class Family>
KelStatus make_multi_rate(KelFirContext** result, const typename Family::Taps* taps, int tapsLen, int tapsFactor,
                          const Rates& rates, const typename Family::Sample* newest_first) {
    using Context = MultiRate<Family>;
    using Sums = SumsOf<Family>;
    if (!result || !taps) return kelStatusNullPtr;
    if (tapsLen < 1) return kelStatusBadFirLength;
    if (const KelStatus status = rates.check(); status != kelStatusOk) return status;
    if (Family::degenerates && rates.up == 1 && rates.down == 1)
        return make_single_rate<Family>(result, taps, tapsLen, tapsFactor, newest_first);
    const ModesOfCreation modes;

    const int history = PhaseLengths(tapsLen, rates.up).longest();
    auto context = make_context<Context>(taps, tapsLen, tapsFactor, history, 2 * std::int64_t{history}, newest_first);
    if (!context) return kelStatusNoMemory;
    context->rates = rates;
    context->coefficients = make_owned_product<typename Context::Coefficient>(tapsLen, Sums::per_tap);
    context->roomIterations = std::max(1, 1024 / rates.down);
    context->room = make_owned_product<typename Family::Sample>(context->roomIterations, rates.down);
    if (!context->coefficients || !context->room) return kelStatusNoMemory;
    put_phases<Sums>(context->taps.get(), tapsLen, rates.up, context->coefficients.get());
    *result = context.release();
    return kelStatusOk;
}

// Calling one

/// Runs f on a context of this family, whatever its rate; a null or foreign one gives its status.
template <class Family, class Context, class F>
KelStatus with_context(Context* context, bool any_array_null, F&& f) {
    using Own = std::conditional_t<std::is_const_v<Context>, const FirContext<Family>, FirContext<Family>>;
    if (!context || any_array_null) return kelStatusNullPtr;
    if (context->id != Family::single_rate_id && context->id != Family::multi_rate_id) return kelStatusContextMismatch;
    return f(static_cast<Own&>(*context));
}

template <class Family, class F>
KelStatus with_single_rate(KelFirContext* context, F&& f) {
    return with_record<SingleRate<Family>>(context, Family::single_rate_id, false, std::forward<F>(f));
}

/// Runs f on a context as what it is.
template <class Family, class F>
KelStatus with_either_rate(KelFirContext* context, F&& f) {
    if (context && context->id == Family::multi_rate_id) return f(static_cast<MultiRate<Family>&>(*context));
    return with_single_rate<Family>(context, f);
}

} // namespace kels
