// What the programs of the gallery have in common: how they run, and the handful of steps that many of them take.
#pragma once

#include "failure.h"
#include "kels.h"
#include "owned.h"
#include "picture.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace examples {

using Samples = std::vector<float>;

struct Run {
    bool small;                ///< as a test: less of the same work
    std::filesystem::path png; ///< where the picture goes
};

/// What each program defines: draws its picture, checks what it claims, and returns the sentence to print.
std::string show(const Run& run);

/// Fails with the sentence unless it holds.
void claim(bool holds, const std::string& otherwise);

/// As printf would print it.
[[gnu::format(printf, 1, 2)]] std::string text(const char* format, ...);

/// A spoken recording: one channel at 48 kHz, full scale being 1.
Samples speech(const std::string& name);
inline constexpr int speech_rate = 48000;

/// Normal noise.
Samples noise(std::size_t length, double deviation, std::uint32_t seed);

/// The root of the mean square.
double rms(const Samples& samples);

/// The level of a signal over that of its difference to what became of it, in dB.
double signal_to_noise(const Samples& signal, const Samples& became);

/// The level of one piece after the other, in dB.
std::vector<double> levels(const Samples& samples, std::size_t piece);

/// 20 log10 of a ratio of amplitudes.
double decibels(double ratio);

/// The index of every element, times a factor: the time of samples, the frequency of bins.
std::vector<double> axis(std::size_t length, double factor);

/// The spectra of overlapping pieces of a signal, under a Hann window, a sine of full scale being 0 dB.
struct Spectrogram {
    std::size_t bins = 0;     ///< from 0 Hz up to half the rate
    double hertz = 0;         ///< from bin to bin
    double seconds = 0;       ///< from piece to piece; the first is centred on the first sample
    std::vector<float> level; ///< in dB, all bins of one piece after the other
};
Spectrogram spectrogram(const Samples& samples, int rate, int order, int hop);

/// The spectrogram as a data block `$name`, a row a piece, up to a frequency; and the words that plot it as an image.
std::string image(Picture& picture, const std::string& name, const Spectrogram& spectrogram, double highest);

/// From black by way of blue, red and yellow to white: brighter is more. In steps, so that pictures stay small.
inline constexpr const char* heat = "set palette maxcolors 28 defined (0 '#05051a', 0.3 '#28418f', 0.55 '#a8327d', "
                                    "0.8 '#f58b3c', 1 '#fff8c8')\n";

} // namespace examples
