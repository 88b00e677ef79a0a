// The record of a single-rate FIR filter: taps, delay line, and the tap spectrum of the overlap-save engine.
#pragma once

#include "filters/fir_family.h"
#include "frame/memory.h"
#include "kels/fir.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <new>

/// The first word of every context; what follows belongs to the family that it names.
struct KelFirContext {
    Kel32u id = 0;
};

namespace kels {

template <class T>
struct ReleasePlan {
    void operator()(typename Spectral<T>::Plan* plan) const { Spectral<T>::release(plan); }
};

/// The delay line is a doubled ring: a sample is written at `index` and `index + tapsLen`, so that the last `tapsLen`
/// samples always stand side by side, oldest first, from `line[index]`. The oldest of them has no influence any more.
template <class Family>
struct FirContext : KelFirContext {
    using Taps = typename Family::Taps;
    using Sample = typename Family::Sample;
    using Spectrum = typename Family::Spectrum;

    int tapsLen = 0;
    int index = 0;
    int fftLen = -1;      ///< blocks longer than this run overlap-save; -1 without a plan
    int transformLen = 0; ///< points of the plan: longer than fftLen where that leaves more new samples a block
    Owned<Taps> taps;     ///< reversed: taps[i] meets the i-th oldest sample
    Owned<Kel64f>
        coefficients; ///< the same in double precision, the imaginary parts of complex taps behind the real ones
    Owned<Sample> line;
    std::unique_ptr<typename Spectral<Spectrum>::Plan, ReleasePlan<Spectrum>> plan;
    Owned<Spectrum> spectrum;

    Sample* window() { return line.get() + index; }
    const Sample* window() const { return line.get() + index; }

    /// Makes the last `tapsLen` samples of the stream the window, after a block.
    void advance(const Sample* src, int count) {
        const auto length = static_cast<std::size_t>(tapsLen);
        const auto taken = static_cast<std::size_t>(std::min(count, tapsLen));
        std::memmove(line.get(), window() + taken, (length - taken) * sizeof(Sample));
        std::memcpy(line.get() + (length - taken), src + (count - static_cast<int>(taken)), taken * sizeof(Sample));
        index = 0;
    }

    /// Starts from the given samples, newest first, or from silence.
    void start(const Sample* newest_first) {
        index = 0;
        if (newest_first)
            std::reverse_copy(newest_first, newest_first + tapsLen, line.get());
        else
            std::memset(line.get(), 0, static_cast<std::size_t>(tapsLen) * sizeof(Sample));
    }
};

template <class Family>
struct DeleteContext {
    void operator()(FirContext<Family>* context) const {
        context->id = 0;
        context->~FirContext<Family>();
        kelsFree(context);
    }
};

/// The order that decides between the engines: the least power of two above the taps, doubled below 2^8.
inline int switch_order(int taps_len) {
    const int order = std::bit_width(static_cast<unsigned>(taps_len));
    return order < 8 ? order + 1 : order;
}

/// The order of the transform that runs: four times the taps spend most of a block on new samples.
inline int transform_order(int taps_len) {
    constexpr int longest = 24; // beyond, the plan of the switch alone
    const int order = std::bit_width(4 * static_cast<std::uint64_t>(taps_len) - 1);
    return std::max(switch_order(taps_len), std::min(order, longest));
}

template <class Family>
bool add_spectrum(FirContext<Family>& context, const typename Family::Taps* taps) {
    using Spectrum = typename Family::Spectrum;
    using S = Spectral<Spectrum>;
    const int order = transform_order(context.tapsLen);
    if (order > 30) return false;
    typename S::Plan* plan = nullptr;
    if (S::make(&plan, order, kelFftNormInv, kelHintDefault) != kelStatusOk) return false;
    context.plan.reset(plan);
    context.fftLen = 1 << switch_order(context.tapsLen);
    context.transformLen = 1 << order;
    const auto length = static_cast<std::size_t>(context.transformLen);
    context.spectrum = make_owned<Spectrum>(length);
    if (!context.spectrum) return false;
    std::memcpy(context.spectrum.get(), taps, static_cast<std::size_t>(context.tapsLen) * sizeof *taps);
    std::memset(context.spectrum.get() + context.tapsLen, 0,
                (length - static_cast<std::size_t>(context.tapsLen)) * sizeof *taps);
    return S::forward(context.spectrum.get(), context.spectrum.get(), plan, nullptr) == kelStatusOk;
}

template <class Taps>
void store_coefficients(const Taps* reversed, Kel64f* out, int count) {
    if constexpr (is_complex<Taps>) {
        for (int i = 0; i < count; ++i) {
            out[i] = reversed[i].re;
            out[count + i] = reversed[i].im;
        }
    } else {
        std::copy_n(reversed, count, out);
    }
}

template <class Family>
KelStatus make_context(KelFirContext** result, const typename Family::Taps* taps, int taps_len,
                       const typename Family::Sample* newest_first) {
    using Context = FirContext<Family>;
    if (!result || !taps) return kelStatusNullPtr;
    if (taps_len < 1) return kelStatusBadFirLength;

    void* memory = allocate<Context>(1);
    if (!memory) return kelStatusNoMemory;
    std::unique_ptr<Context, DeleteContext<Family>> context(new (memory) Context);
    const auto count = static_cast<std::size_t>(taps_len);
    context->id = Family::single_id;
    context->tapsLen = taps_len;
    context->taps = make_owned<typename Family::Taps>(count);
    context->coefficients = make_owned<Kel64f>(is_complex<typename Family::Taps> ? 2 * count : count);
    context->line = make_owned<typename Family::Sample>(2 * count);
    if (!context->taps || !context->coefficients || !context->line) return kelStatusNoMemory;

    std::reverse_copy(taps, taps + taps_len, context->taps.get());
    store_coefficients(context->taps.get(), context->coefficients.get(), taps_len);
    context->start(newest_first);
    if (taps_len >= Family::least_for_plan && !add_spectrum(*context, taps)) return kelStatusNoMemory;
    *result = context.release();
    return kelStatusOk;
}

/// Runs f on a context of this family; a null or foreign one gives its status. `arrays` are checked between the two.
template <class Family, class Context, class F>
KelStatus with_context(Context* context, bool any_array_null, F&& f) {
    using Own = std::conditional_t<std::is_const_v<Context>, const FirContext<Family>, FirContext<Family>>;
    if (!context || any_array_null) return kelStatusNullPtr;
    if (context->id != Family::single_id) return kelStatusContextMismatch;
    return f(static_cast<Own&>(*context));
}

} // namespace kels
