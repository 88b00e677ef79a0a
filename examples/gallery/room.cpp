// Speech in a room: convolved with two seconds of noise that dies away, and what that costs, from small rooms to large.
#include "gallery.h"

#include <chrono>
#include <cmath>

using namespace examples;

namespace {

/// Noise that falls by 60 dB over its length, of energy 1.
Samples response(int length) {
    Samples result = noise(std::size_t(length), std::sqrt(2 * std::log(1000.0) / length), 21), decay(result.size());
    check(kelsVectorRamp_32f(decay.data(), length, 0, float(-std::log(1000.0) / length)));
    check(kelsExp_32f_I(decay.data(), length));
    check(kelsMul_32f_I(decay.data(), result.data(), length));
    return result;
}

Samples sample_by_sample(const Samples& x, const Samples& taps) {
    Samples y(x.size()), ring(2 * taps.size());
    int index = 0;
    check(kelsFIR_Direct_32f(x.data(), y.data(), int(x.size()), taps.data(), int(taps.size()), ring.data(), &index));
    return y;
}

Samples by_transforms(const Samples& x, const Samples& taps) {
    Samples y(x.size() + taps.size() - 1);
    check(kelsConv_32f(x.data(), int(x.size()), taps.data(), int(taps.size()), y.data()));
    y.resize(x.size());
    return y;
}

double least_seconds(Samples (*way)(const Samples&, const Samples&), const Samples& samples, const Samples& taps) {
    double least = INFINITY;
    for (int round = 0; round < 3; ++round) {
        const auto start = std::chrono::steady_clock::now();
        way(samples, taps);
        least = std::fmin(least, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return least;
}

} // namespace

std::string examples::show(const Run& run) {
    constexpr int two_seconds = 2 * speech_rate, piece = speech_rate / 50;
    Samples dry = speech("Rear_Center.wav");
    const std::size_t end = dry.size();
    dry.resize(end + two_seconds);
    const Samples wet = by_transforms(dry, response(two_seconds));
    const std::vector<double> before = levels(dry, piece), after = levels(wet, piece);
    const std::vector<double> tail = levels({&wet[end], &wet[end] + two_seconds}, speech_rate / 2); // in half seconds

    std::vector<double> lengths, direct, fast;
    double alike = 1000;
    const Samples second(&dry[0], &dry[speech_rate]);
    for (int length = run.small ? 3000 : two_seconds; length >= 46; length /= 2) {
        const Samples taps = response(length);
        lengths.push_back(double(length) / speech_rate);
        direct.push_back(least_seconds(sample_by_sample, second, taps));
        alike = std::fmin(alike, signal_to_noise(sample_by_sample(second, taps), by_transforms(second, taps)));
        fast.push_back(least_seconds(by_transforms, second, taps));
    }
    claim(std::abs(tail[0] - tail[2] - 30) < 4 && alike > 110,
          text("The tail falls by %.1f dB a second, both ways agree to %.0f dB.", tail[0] - tail[2], alike));

    Picture picture(1000, 450);
    picture.data("levels", axis(before.size(), 0.02), before, after).data("costs", lengths, direct, fast)
        << "set multiplot layout 1,2 margins 0.09,0.98,0.15,0.88 spacing 0.12\n";
    picture.title("\"Rear center\", dry and in the room")
        << "set yrange [-110:0]\nset xlabel 'Time in s'\nset ylabel 'Level in dB'\nplot "
        << "$levels using 1:3 with lines linetype 1 title 'in the room', $levels with lines linetype 4 title 'dry'\n";
    picture.title("The time for a second of sound")
        << "set key top left\nset xrange [0.001:2]\nset yrange [1e-5:10]\nset logscale xy\nset format y '10^{%T}'\n"
        << "set xlabel 'Length of the response in s'\nset ylabel 'Seconds to compute'\nplot $costs with linespoints "
        << "linetype 2 title 'sample by sample', $costs using 1:3 with linespoints linetype 1 title 'by transforms'\n";
    picture.draw(run.png);
    return text("a room of %.2g s costs %.2g s a second, by transforms %.2g s.", lengths[0], direct[0], fast[0]);
}
