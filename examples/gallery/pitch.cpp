// The pitch of a voice: how far a sound must be moved until it is most like itself. It is drawn over the spectrogram,
// along the lowest of the lines that a voice has at the multiples of its pitch.
#include "gallery.h"

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace examples;

namespace {

constexpr int length = 2048, hop = 480, shortest = speech_rate / 500, longest = speech_rate / 70;

/// The pitch of a piece in Hz, or NaN where nothing repeats itself.
double pitch(const float* piece, double least_power) {
    Samples likeness(longest + 1);
    check(kelsAutoCorr_NormB_32f(piece, length, likeness.data(), longest + 1));
    if (likeness[0] < least_power) return NAN;
    float most = 0;
    int lag = 0;
    check(kelsMaxIndx_32f(&likeness[shortest], longest - shortest, &most, &lag));
    lag += shortest;
    if (most < 0.6F * likeness[0]) return NAN;
    // Twice the period is as good: the first summit that comes near the highest one.
    for (int i = shortest + 1; i < lag; ++i)
        if (likeness[std::size_t(i)] > 0.9F * most && likeness[std::size_t(i)] > likeness[std::size_t(i) + 1]) lag = i;
    const double a = likeness[std::size_t(lag) - 1], b = likeness[std::size_t(lag)], c = likeness[std::size_t(lag) + 1];
    return speech_rate / (lag + (a - c) / (2 * (a - 2 * b + c))); // at the top of a parabola
}

std::vector<double> pitches(const Samples& samples) {
    std::vector<double> result;
    const double least_power = 0.02 * rms(samples) * rms(samples);
    for (std::size_t start = 0; start + length <= samples.size(); start += hop)
        result.push_back(pitch(&samples[start], least_power));
    return result;
}

/// Where the middle of a piece lies.
double seconds(std::size_t piece) { return double(piece * hop + length / 2) / speech_rate; }

/// A voice whose pitch rises from 100 to 200 Hz in two seconds, as a sum of ten harmonics.
double rising(double t) { return 100 + 50 * t; }
Samples made() {
    Samples samples(2 * speech_rate);
    for (std::size_t n = 0; n < samples.size(); ++n) {
        const double t = double(n) / speech_rate, phase = 2 * std::numbers::pi * (100 * t + 25 * t * t);
        for (int k = 1; k <= 10; ++k) samples[n] += float(std::cos(k * phase) / (10 * k));
    }
    return samples;
}

} // namespace

std::string examples::show(const Run& run) {
    const std::vector<double> known = pitches(made());
    double off = 0;
    for (std::size_t i = 0; i < known.size(); ++i) off = std::max(off, std::abs(known[i] / rising(seconds(i)) - 1));
    claim(off < 0.01, text("A known pitch comes out %.2f %% off.", 100 * off));

    Samples samples;
    for (const char* name : {"Front_Center.wav", "Rear_Left.wav"})
        std::ranges::copy(speech(name), std::back_inserter(samples));
    const std::vector<double> found = pitches(samples);
    std::vector<double> times, voiced;
    for (std::size_t i = 0; i < found.size(); ++i) times.push_back(seconds(i));
    std::ranges::copy_if(found, std::back_inserter(voiced), [](double f) { return f > 0; });
    const auto [low, high] = std::ranges::minmax(voiced);
    Picture picture(900, 480);
    const std::string spectra = image(picture, "spectra", spectrogram(samples, speech_rate, 12, 256), 1500);
    picture.data("pitch", times, found).title("\"Front center. Rear left.\" and the pitch of the voice")
        << heat << "unset grid\nset key opaque fillcolor '#303030' textcolor '#ffffff'\nset xlabel 'Time in s'\n"
        << "set ylabel 'Frequency in kHz'\nset cblabel 'Level in dB'\nset xrange [0:"
        << double(samples.size()) / speech_rate << "]\nset yrange [0:1.5]\nset cbrange [-100:-20]\nplot " << spectra
        << ", $pitch using 1:($2/1000) with points pointtype 7 pointsize 0.6 linecolor '#40ff90' title 'pitch'\n";
    picture.draw(run.png);
    return text("the voice speaks between %.0f and %.0f Hz; a known pitch comes out within %.2f %%.", low, high,
                100 * off);
}
