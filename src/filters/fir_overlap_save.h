// The overlap-save engine: blocks of the plan's length, each overlapping the one before by tapsLen - 1 samples, through
// the spectrum of the taps (A. V. Oppenheim, R. W. Schafer: Discrete-Time Signal Processing, section 8.7).
#pragma once

#include "filters/fir_direct.h"

namespace kels {

/// Filters a block whose history is the context's window. The delay line stays as it is.
template <class Family>
KelStatus filter_overlap_save(const FirContext<Family>& context, const typename Family::Sample* src,
                              typename Family::Sample* dst, int count) {
    using Sample = typename Family::Sample;
    using Spectrum = typename Family::Spectrum;
    using S = Spectral<Spectrum>;

    const std::ptrdiff_t N = context.transformLen, past = context.tapsLen - 1, fresh = N - past;
    const auto* plan = context.plan.get();
    int buffer_bytes = 0;
    if (const KelStatus status = S::buffer_size(plan, &buffer_bytes); status != kelStatusOk) return status;
    const Owned<Spectrum> work = make_owned<Spectrum>(static_cast<std::size_t>(N));
    const Owned<Kel8u> buffer = buffer_bytes > 0 ? make_owned<Kel8u>(static_cast<std::size_t>(buffer_bytes)) : nullptr;
    if (!work || (buffer_bytes > 0 && !buffer)) return kelStatusNoMemory;

    const Stream<Sample> stream{context.window() + 1, context.tapsLen - 1, src, count};
    for (std::ptrdiff_t first = 0; first < count; first += fresh) {
        const std::ptrdiff_t begin = first - past;
        const Spectrum* block = work.get();
        if (std::is_same_v<Sample, Spectrum> && begin >= 0 && begin + N <= count)
            block = reinterpret_cast<const Spectrum*>(src + begin);
        else
            stream.copy(begin, N, reinterpret_cast<Component<Spectrum>*>(work.get()));

        KelStatus status = S::forward(block, work.get(), plan, buffer.get());
        if (status == kelStatusOk) status = S::multiply(context.spectrum.get(), work.get(), static_cast<int>(N));
        if (status == kelStatusOk) status = S::inverse(work.get(), work.get(), plan, buffer.get());
        if (status != kelStatusOk) return status;
        std::copy_n(work.get() + past, std::min(fresh, count - first), dst + first);
    }
    return kelStatusOk;
}

} // namespace kels
