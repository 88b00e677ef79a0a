// Design of the band-pass filter.
#pragma once

#include <vector>

namespace examples::demo {

struct BandPass {
    double low;  ///< Hz, at least 0
    double high; ///< Hz, at most half the sampling rate
    int taps;    ///< odd
};

/// Fails with a sentence when no such filter exists at this sampling rate.
void require_possible(const BandPass& band, int rate);

/// The taps h[0] to h[taps - 1] of a linear-phase band-pass with a gain of 1 in the middle of the band.
std::vector<float> design(const BandPass& band, int rate);

} // namespace examples::demo
