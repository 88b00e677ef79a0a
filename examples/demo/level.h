// How loud a recording is.
#pragma once

#include "wav_file.h"

#include <algorithm>
#include <cmath>

namespace examples::demo {

/// Relative to full scale: 1 is a sample of 1 as peak, and a square wave of full scale as RMS.
struct Level {
    double rms = 0, peak = 0;
};

inline Level level_of(const Recording& recording) {
    double squares = 0, peak = 0;
    for (const std::vector<float>& samples : recording.channels)
        for (const double x : samples) {
            squares += x * x;
            peak = std::max(peak, std::abs(x));
        }
    return {std::sqrt(squares / double(recording.length() * recording.channels.size())), peak};
}

inline double decibels(double amplitude) { return 20 * std::log10(amplitude); }

} // namespace examples::demo
