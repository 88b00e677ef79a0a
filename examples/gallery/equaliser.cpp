// A five-band equaliser: gains are asked for, a cascade of five sections is made of them, and its response is measured.
// Each is a bell, the bilinear transform of (s^2 + A s/Q + 1) / (s^2 + s/(A Q) + 1), of gain A^2 at its middle. As the
// bells reach into each other, their gains are found by going back and forth.
#include "gallery.h"

#include <cmath>
#include <complex>
#include <numbers>

using namespace examples;
using std::numbers::pi;

namespace {

constexpr int rate = 48000, order = 16, length = 1 << order, bands = 5;
constexpr double q = 0.9;
const std::vector<double> frequencies = {80, 300, 1000, 3500, 10000}, asked = {6, -4, 3, -8, 5};

/// b0, b1, b2, a0, a1, a2 of a bell.
void append(std::vector<double>& taps, double frequency, double gain) {
    const double w = 2 * pi * frequency / rate, a = std::pow(10, gain / 40), alpha = std::sin(w) / (2 * q);
    const double b1 = -2 * std::cos(w);
    taps.insert(taps.end(), {1 + alpha * a, b1, 1 - alpha * a, 1 + alpha / a, b1, 1 - alpha / a});
}

/// The formula: what the sections do at a frequency, in dB.
double designed(const std::vector<double>& taps, double frequency) {
    const std::complex<double> z = std::polar(1.0, -2 * pi * frequency / rate);
    double level = 0;
    for (const double* t = taps.data(); t != taps.data() + taps.size(); t += 6)
        level += decibels(std::abs((t[0] + z * (t[1] + z * t[2])) / (t[3] + z * (t[4] + z * t[5]))));
    return level;
}

std::vector<double> design() {
    std::vector<double> gains = asked, taps;
    for (int round = 0; round < 60; ++round) {
        taps.clear();
        for (std::size_t i = 0; i < bands; ++i) append(taps, frequencies[i], gains[i]);
        for (std::size_t i = 0; i < bands; ++i) gains[i] += asked[i] - designed(taps, frequencies[i]);
    }
    return taps;
}

/// The spectrum of the answer to an impulse, in dB.
std::vector<double> measured(const std::vector<double>& taps) {
    std::vector<Kel64fc> spectrum(length / 2 + 1);
    double* const samples = &spectrum[0].re; // transformed in place
    samples[0] = 1;
    const auto filter = make<kelsIIRInitAlloc_BiQuad_64f, kelsIIRFree_64f>(taps.data(), bands, nullptr);
    check(kelsIIR_64f_I(samples, length, filter.get()));
    const auto plan = make<kelsFFTInitAlloc_R_64f, kelsFFTFree_R_64f>(order, kelFftNormNone, kelHintDefault);
    check(kelsFFTFwd_RToCCS_64f(samples, samples, plan.get(), nullptr));
    std::vector<double> levels(spectrum.size());
    check(kelsMagnitude_64fc(spectrum.data(), levels.data(), int(levels.size())));
    for (double& level : levels) level = decibels(level);
    return levels;
}

} // namespace

std::string examples::show(const Run& run) {
    const std::vector<double> taps = design(), levels = measured(taps),
                              hertz = axis(levels.size(), double(rate) / length);
    double off = 0, missed = 0;
    for (std::size_t k = 0; k < levels.size(); ++k) off = std::max(off, std::abs(levels[k] - designed(taps, hertz[k])));
    for (std::size_t i = 0; i < bands; ++i)
        missed = std::max(missed, std::abs(designed(taps, frequencies[i]) - asked[i]));
    claim(off < 1e-9 && missed < 1e-3, text("%g dB off its formula, %g dB off what was asked.", off, missed));
    Picture picture(900, 480);
    picture.data("measured", hertz, levels).data("asked", frequencies, asked);
    picture.title("A five-band equaliser of five second-order sections")
        << "set logscale x\nset xrange [20:20000]\nset yrange [-12:12]\nset ytics 3\n"
        << "set xtics (20, 50, 100, 200, 500, '1k' 1000, '2k' 2000, '5k' 5000, '10k' 10000, '20k' 20000)\n"
        << "set xlabel 'Frequency in Hz'\nset ylabel 'Gain in dB'\n"
        << "plot $measured with lines linetype 1 title 'measured, by an impulse', "
        << "$asked with points linetype 2 pointsize 1.6 title 'asked for'\n";
    picture.draw(run.png);
    return text("five bands: %.0e dB off the gains asked for, and %.0e dB off the formula anywhere.", missed, off);
}
