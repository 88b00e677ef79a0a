// Clicks are taken out of speech by a median of five samples, and hardly by any average: a median leaves out what
// stands alone, an average spreads it.
#include "gallery.h"

#include <algorithm>
#include <cmath>

using namespace examples;

namespace {

Samples clicked(const Samples& samples, std::size_t clicks) {
    Samples result = samples, places(clicks), heights(clicks);
    Kel32u seed = 5;
    check(kelsRandUniform_Direct_32f(places.data(), int(clicks), 0, float(samples.size() - 1), &seed));
    check(kelsRandUniform_Direct_32f(heights.data(), int(clicks), -0.8F, 0.8F, &seed));
    for (std::size_t i = 0; i < clicks; ++i) result[std::size_t(places[i])] = heights[i];
    return result;
}

/// Every sample with its neighbours, `length` in all.
Samples averaged(const Samples& samples, int length) {
    const Samples taps(std::size_t(length), 1.0F / float(length));
    const auto filter = make<kelsFIRInitAlloc_32f, kelsFIRFree_32f>(taps.data(), length, nullptr);
    Samples padded = samples, result(samples.size() + std::size_t(length / 2));
    padded.resize(result.size());
    check(kelsFIR_32f(padded.data(), result.data(), int(result.size()), filter.get()));
    result.erase(result.begin(), result.begin() + length / 2);
    return result;
}

} // namespace

std::string examples::show(const Run& run) {
    const Samples clean = speech("Front_Left.wav"), heard = clicked(clean, 200);
    Samples median(clean.size());
    check(kelsFilterMedian_32f(heard.data(), median.data(), int(heard.size()), 5));
    Samples average;
    int best = 0;
    for (int length = 3; length <= 41; length += 2) {
        const Samples tried = averaged(heard, length);
        if (best && signal_to_noise(clean, tried) <= signal_to_noise(clean, average)) continue;
        average = tried;
        best = length;
    }
    const double before = signal_to_noise(clean, heard), after = signal_to_noise(clean, median),
                 linear = signal_to_noise(clean, average);
    claim(after > before + 10 && after > linear + 5,
          text("From %.1f dB the median comes to %.1f dB, the average to %.1f dB.", before, after, linear));

    constexpr std::size_t first = 9000, shown = 480;
    const auto cut = [](const Samples& samples) { return Samples(&samples[first], &samples[first] + shown); };
    Picture picture(900, 640);
    picture.data("shown", axis(shown, 1e3 / speech_rate), cut(clean), cut(heard), cut(median), cut(average))
        << "set multiplot layout 3,1 margins 0.1,0.97,0.1,0.91 spacing 0.11\nset key horizontal\n"
        << "set yrange [-0.4:0.8]\nset ytics 0.4\nset ylabel 'Amplitude'\nset format x ''\n";
    const std::string lines[] = {"with clicks", "median of 5", text("average of %d, the best one", best)};
    const double ratios[] = {before, after, linear};
    for (int i = 0; i < 3; ++i) {
        if (i == 2) picture << "set format x\nset xlabel 'Time in ms'\n";
        picture.title(text("Signal-to-noise ratio %.1f dB", ratios[i]))
            << "plot $shown using 1:2 with lines linetype 4 linewidth 5 title 'clean speech', $shown using 1:" << i + 3
            << " with lines linetype " << (i == 1 ? 1 : 2) << " linewidth 1.5 title '" << lines[i] << "'\n";
    }
    picture.draw(run.png);
    return text("a median of 5 lifts speech with 200 clicks from %.1f to %.1f dB, the best average to %.1f dB.", before,
                after, linear);
}
