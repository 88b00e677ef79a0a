// Averaged power spectrum of a recording.
#pragma once

#include "wav_file.h"

#include <vector>

namespace examples::demo {

struct Spectrum {
    double spacing = 0;           ///< Hz from one bin to the next
    std::vector<double> decibels; ///< per bin from 0 Hz up; a sine of full scale reads 0 dB
};

/// Mean over all channels of the power in windowed, half overlapping segments (Welch's method). The segments have a
/// fixed number of samples at the usual rate, and last about as long at any other.
Spectrum spectrum_of(const Recording& recording, int usual_rate);

} // namespace examples::demo
