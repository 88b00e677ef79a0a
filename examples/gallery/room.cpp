// A room: speech convolved with two seconds of noise that dies away. What that costs, sample by sample and by
// transforms, for rooms from small to large.
#include "gallery.h"

#include <chrono>
#include <cmath>

using namespace examples;

namespace {

/// Noise that falls by 60 dB over its length, of energy 1.
Samples response(int length) {
    Samples result = noise(std::size_t(length), 1, 21), decay(result.size());
    check(kelsVectorRamp_32f(decay.data(), length, 0, float(-std::log(1000.0) / length)));
    check(kelsExp_32f_I(decay.data(), length));
    check(kelsMul_32f_I(decay.data(), result.data(), length));
    check(kelsMulC_32f_I(float(1 / (rms(result) * std::sqrt(length))), result.data(), length));
    return result;
}

Samples sample_by_sample(const Samples& samples, const Samples& taps) {
    Samples result(samples.size()), ring(2 * taps.size());
    int index = 0;
    check(kelsFIR_Direct_32f(samples.data(), result.data(), int(samples.size()), taps.data(), int(taps.size()),
                             ring.data(), &index));
    return result;
}

Samples by_transforms(const Samples& samples, const Samples& taps) {
    Samples result(samples.size() + taps.size() - 1);
    check(kelsConv_32f(samples.data(), int(samples.size()), taps.data(), int(taps.size()), result.data()));
    result.resize(samples.size());
    return result;
}

double seconds_of(Samples (*way)(const Samples&, const Samples&), const Samples& samples, const Samples& taps) {
    const auto start = std::chrono::steady_clock::now();
    way(samples, taps);
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

std::string examples::show(const Run& run) {
    constexpr int two_seconds = 2 * speech_rate, piece = speech_rate / 50;
    Samples dry = speech("Rear_Center.wav");
    const std::size_t end = dry.size() / piece; // of the last word
    dry.resize(dry.size() + two_seconds);
    const std::vector<double> before = levels(dry, piece),
                              after = levels(by_transforms(dry, response(two_seconds)), piece);
    double fall = 0; // in a second of 50 pieces, the mean of 25
    for (std::size_t i = end; i < end + 25; ++i) fall += (after[i] - after[i + 50]) / 25;

    std::vector<double> lengths, direct, fast;
    double alike = 1000;
    const Samples second(&dry[0], &dry[speech_rate]);
    for (int length = run.small ? 3000 : two_seconds; length >= 46; length /= 2) {
        const Samples taps = response(length);
        lengths.push_back(double(length) / speech_rate);
        direct.push_back(seconds_of(sample_by_sample, second, taps));
        seconds_of(by_transforms, second, taps); // a first call finds cold caches
        fast.push_back(seconds_of(by_transforms, second, taps));
        alike = std::fmin(alike, signal_to_noise(sample_by_sample(second, taps), by_transforms(second, taps)));
    }
    claim(std::abs(fall - 30) < 4 && alike > 110,
          text("The tail falls by %.1f dB in a second, not by 30, or both ways agree to %.0f dB only.", fall, alike));

    Picture picture(1000, 450);
    picture.data("levels", axis(before.size(), 0.02), before, after).data("costs", lengths, direct, fast)
        << "set multiplot layout 1,2 margins 0.08,0.98,0.15,0.88 spacing 0.11\n";
    picture.title("\"Rear center\", dry and in the room")
        << "set yrange [-110:0]\nset xlabel 'Time in s'\nset ylabel 'Level in dB'\nplot "
        << "$levels using 1:3 with lines linetype 1 title 'in the room', $levels with lines linetype 4 title 'dry'\n";
    picture.title("A second of sound through rooms of any length")
        << "set logscale xy\nset key top left\nset xrange [0.001:2]\nset yrange [1e-5:10]\nset format y '10^{%T}'\n"
        << "set xlabel 'Length of the response in s'\nset ylabel 'Seconds to compute'\nplot 1 with lines linetype 4 "
        << "title 'real time', $costs with linespoints linetype 2 title 'sample by sample', "
        << "$costs using 1:3 with linespoints linetype 1 title 'by transforms'\n";
    picture.draw(run.png);
    return text("a room of %.2g s costs %.2g s a second sample by sample, %.2g s by transforms, to %.0f dB alike.",
                lengths[0], direct[0], fast[0], alike);
}
