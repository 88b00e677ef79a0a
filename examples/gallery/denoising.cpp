// Noise is taken out of speech: a bank of filters splits it into bands, and what is small in a band is noise and goes.
#include "gallery.h"

#include <cmath>
#include <utility>

using namespace examples;

namespace {

constexpr int depth = 6, length = 8;
constexpr double deviations = 1.8; // of the noise, below which a coefficient is small

Samples alternated(Samples taps, float sign) {
    for (float& tap : taps) tap *= std::exchange(sign, -sign);
    return taps;
}

// Daubechies' wavelet of four vanishing moments (Ten Lectures on Wavelets, table 6.1).
const Samples low = {0.2303778133F,  0.7148465706F, 0.6308807679F, -0.0279837694F,
                     -0.1870348117F, 0.0308413818F, 0.0328830117F, -0.0105974018F};
const Samples low_back(low.rbegin(), low.rend()), high = alternated(low_back, 1), high_back = alternated(low, -1);

/// How many samples a signal comes late out of this level and those below it: the high band waits for the low one.
constexpr int delay(int level) { return level == depth ? 0 : length - 1 + 2 * delay(level + 1); }

/// Moves everything toward zero by the threshold, what is below it to zero.
void shrink(Samples& band, double threshold) {
    Samples limited(band.size());
    check(kelsThreshold_LT_32f(band.data(), limited.data(), int(band.size()), float(-threshold)));
    check(kelsThreshold_GT_32f_I(limited.data(), int(limited.size()), float(threshold)));
    check(kelsSub_32f_I(limited.data(), band.data(), int(band.size())));
}

/// Through the bank from one level on and back, with every high band shrunk; `delay(level)` samples late.
Samples shrunk(const Samples& samples, double threshold, int level = 0) {
    if (level == depth) return samples;
    Samples lows(samples.size() / 2), highs(lows.size()), result(samples.size());
    const auto forward = make<kelsWTFwdInitAlloc_32f, kelsWTFwdFree_32f>(low.data(), length, 0, high.data(), length, 0);
    check(kelsWTFwd_32f(samples.data(), lows.data(), highs.data(), int(lows.size()), forward.get()));
    shrink(highs, threshold);
    lows = shrunk(lows, threshold, level + 1);
    const auto inverse = make<kelsWTInvInitAlloc_32f, kelsWTInvFree_32f>(low_back.data(), length, 0, high_back.data(),
                                                                         length, 2 * delay(level + 1));
    check(kelsWTInv_32f(lows.data(), highs.data(), int(lows.size()), result.data(), inverse.get()));
    return result;
}

Samples denoised(Samples samples, double threshold) {
    const std::size_t length_before = samples.size(), whole = 1 << depth;
    samples.resize((length_before + delay(0)) / whole * whole + whole);
    samples = shrunk(samples, threshold);
    return {samples.begin() + delay(0), samples.begin() + delay(0) + std::ptrdiff_t(length_before)};
}

} // namespace

std::string examples::show(const Run& run) {
    const Samples clean = speech("Rear_Center.wav");
    const double deviation = rms(clean) * std::pow(10, -10 / 20.0); // 10 dB below the speech
    Samples heard = noise(clean.size(), deviation, 3);
    check(kelsAdd_32f_I(clean.data(), heard.data(), int(heard.size())));
    const Samples result = denoised(heard, deviations * deviation), same = denoised(clean, 0);
    const double before = signal_to_noise(clean, heard), after = signal_to_noise(clean, result);
    claim(signal_to_noise(clean, same) > 120 && after > before + 6,
          text("From %.1f dB the thresholds come to %.1f dB only, or the bands are not sound.", before, after));
    Picture picture(1100, 400);
    const Samples* const shown[] = {&clean, &heard, &result};
    const std::string titles[] = {"Speech", text("In noise: SNR %.1f dB", before), text("Cleaned: SNR %.1f dB", after)};
    picture << heat << "set multiplot layout 1,3 margins 0.06,0.9,0.17,0.87 spacing 0.02\nunset key\nunset grid\n"
            << "unset colorbox\nset cbrange [-100:-20]\nset xrange [0:1.3]\nset yrange [0:8]\nset xlabel 'Time in s'\n";
    for (int i = 0; i < 3; ++i) {
        const std::string spectra = image(picture, text("s%d", i), spectrogram(*shown[i], speech_rate, 10, 256), 8000);
        picture << (i == 0 ? "set ylabel 'Frequency in kHz'\n" : "set format y ''\nunset ylabel\n");
        if (i == 2) picture << "set colorbox user origin 0.91,0.17 size 0.015,0.7\nset cblabel 'Level in dB'\n";
        picture.title(titles[i]) << "plot " << spectra << '\n';
    }
    picture.draw(run.png);
    return text("thresholds in %d bands lift speech in noise from %.1f to %.1f dB.", depth, before, after);
}
