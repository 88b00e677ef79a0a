// The overlap-save engine: blocks of the plan's length, each overlapping the one before by tapsLen - 1 samples, through
// the spectrum of the taps (A. V. Oppenheim, R. W. Schafer: Discrete-Time Signal Processing, section 8.7).
#pragma once

#include "filters/fir/context.h"
#include "filters/fir/direct.h"

namespace kels {

/// Filters a block, which may be filtered in place: the samples of every transform are in the work array and in the
/// line before its results are stored.
template <class Family>
KelStatus filter_overlap_save(SingleRate<Family>& own, const typename Family::Sample* src, typename Family::Sample* dst,
                              int count, int scaleFactor) {
    using Spectrum = typename Family::Taps;
    using S = Spectral<Spectrum>;
    const int past = own.tapsLen - 1, most = own.transformLen - past;
    const auto* plan = own.plan.get();
    Spectrum* const work = own.work.get();
    for (int fresh; count > 0; count -= fresh, src += fresh, dst += fresh) {
        fresh = std::min(most, count);
        own.stream(src, fresh).copy(-past, past + fresh, reals(work));
        std::fill(work + past + fresh, work + own.transformLen, Spectrum{});
        own.advance(src, fresh);
        KelStatus status = S::forward(work, work, plan, nullptr);
        if (status == kelStatusOk) status = S::multiply(own.spectrum.get(), work, own.transformLen);
        if (status == kelStatusOk) status = S::inverse(work, work, plan, nullptr);
        if (status == kelStatusOk)
            status = store_transformed(reals(work + past), reals(dst), fresh * parts<Spectrum>, scaleFactor);
        if (status != kelStatusOk) return status;
    }
    return kelStatusOk;
}

} // namespace kels
