// The overlap-save engine: blocks of the plan's length, each overlapping the one before by tapsLen - 1 samples, through
// the spectrum of the taps (A. V. Oppenheim, R. W. Schafer: Discrete-Time Signal Processing, section 8.7).
#pragma once

#include "filters/fir/context.h"
#include "filters/fir/direct.h"

namespace kels {

/// Filters a block.
template <class Family>
KelStatus filter_overlap_save(const SingleRate<Family>& context, const Stream<typename Family::Sample>& stream,
                              typename Family::Sample* dst, int scaleFactor) {
    using Spectrum = typename Family::Taps;
    using S = Spectral<Spectrum>;
    constexpr int width = parts<Spectrum>;

    const std::ptrdiff_t N = context.transformLen, past = context.tapsLen - 1, fresh = N - past;
    const auto* plan = context.plan.get();
    int buffer_bytes = 0;
    if (const KelStatus status = S::buffer_size(plan, &buffer_bytes); status != kelStatusOk) return status;
    const Owned<Spectrum> work = make_owned<Spectrum>(static_cast<std::size_t>(N));
    const Owned<Kel8u> buffer = buffer_bytes > 0 ? make_owned<Kel8u>(static_cast<std::size_t>(buffer_bytes)) : nullptr;
    if (!work || (buffer_bytes > 0 && !buffer)) return kelStatusNoMemory;

    for (std::ptrdiff_t first = 0; first < stream.count; first += fresh) {
        const std::ptrdiff_t begin = first - past, end = begin + N;
        const Spectrum* block = work.get();
        if (std::is_same_v<typename Family::Sample, Spectrum> && begin >= 0 && end <= stream.count) {
            block = reinterpret_cast<const Spectrum*>(stream.src + begin);
        } else {
            stream.copy(begin, N, reals(work.get()));
            if (end > stream.count) std::fill(work.get() + (stream.count - begin), work.get() + N, Spectrum{});
        }

        KelStatus status = S::forward(block, work.get(), plan, buffer.get());
        if (status == kelStatusOk) status = S::multiply(context.spectrum.get(), work.get(), static_cast<int>(N));
        if (status == kelStatusOk) status = S::inverse(work.get(), work.get(), plan, buffer.get());
        if (status == kelStatusOk)
            status = store_transformed(reals(work.get() + past), reals(dst + first),
                                       static_cast<int>(std::min(fresh, stream.count - first)) * width, scaleFactor);
        if (status != kelStatusOk) return status;
    }
    return kelStatusOk;
}

} // namespace kels
