// Eight bits a sample, three ways: A-law and mu-law keep the ratio of signal to noise over a wide range of levels,
// where linear samples lose what the signal loses.
#include "gallery.h"

#include <algorithm>
#include <cmath>

using namespace examples;

namespace {

/// Of A-law's samples 13 bits count; the others are to be zeros.
Samples through_a_law(const Samples& samples) {
    const int length = int(samples.size());
    std::vector<Kel16s> linear(samples.size());
    std::vector<Kel8u> codes(samples.size());
    Samples decoded(samples.size());
    check(kelsConvert_32f16s_Sfs(samples.data(), linear.data(), length, kelRndNear, -12)); // times 2^12
    check(kelsLShiftC_16s_I(3, linear.data(), length));
    check(kelsLinToALaw_16s8u(linear.data(), codes.data(), length));
    check(kelsALawToLin_8u32f(codes.data(), decoded.data(), length));
    return decoded;
}

Samples through_mu_law(const Samples& samples) {
    const int length = int(samples.size());
    std::vector<Kel8u> codes(samples.size());
    Samples decoded(samples.size());
    check(kelsLinToMuLaw_32f8u(samples.data(), codes.data(), length));
    check(kelsMuLawToLin_8u32f(codes.data(), decoded.data(), length));
    return decoded;
}

Samples through_linear(const Samples& samples) {
    const int length = int(samples.size());
    std::vector<Kel8s> codes(samples.size());
    Samples decoded(samples.size());
    check(kelsConvert_32f8s_Sfs(samples.data(), codes.data(), length, kelRndNear, -7)); // times 2^7
    check(kelsConvert_8s32f(codes.data(), decoded.data(), length));
    check(kelsMulC_32f_I(0x1p-7F, decoded.data(), length));
    return decoded;
}

} // namespace

std::string examples::show(const Run& run) {
    const std::size_t length = run.small ? 4000 : 40000;
    std::vector<double> levels, a, mu, linear;
    for (double level = -70; level <= 0; level += 0.5) {
        // A sine of full scale is 0 dB; its frequency has no simple ratio to the rate.
        Samples samples(length);
        float phase = 0;
        check(
            kelsTone_Direct_32f(samples.data(), int(length), float(0.999 * std::pow(10, level / 20)), 0.1271F, &phase));
        levels.push_back(level);
        a.push_back(signal_to_noise(samples, through_a_law(samples)));
        mu.push_back(signal_to_noise(samples, through_mu_law(samples)));
        linear.push_back(std::max(0.0, signal_to_noise(samples, through_linear(samples))));
    }
    const auto least = [&](const std::vector<double>& ratios) {
        return *std::min_element(ratios.begin() + 70, ratios.end());
    };
    claim(
        least(a) > 33 && least(mu) > 33 && least(linear) < 16,
        text("Down to -35 dB the laws keep %.1f and %.1f dB, and linear %.1f dB.", least(a), least(mu), least(linear)));

    Picture picture(900, 480);
    picture.data("ratios", levels, a, mu, linear).title("Eight bits a sample, three ways")
        << "set xlabel 'Level of a sine in dB, full scale being 0'\nset ylabel 'Signal-to-noise ratio in dB'\n"
        << "set yrange [0:55]\nset xrange [-70:0]\nset key top left\n"
        << "plot $ratios using 1:2 with lines linetype 1 title 'A-law', $ratios using 1:3 with lines linetype 2 title "
           "'mu-law', "
        << "$ratios using 1:4 with lines linetype 4 title 'linear'\n";
    picture.draw(run.png);
    return text(
        "down to 35 dB below full scale A-law keeps %.1f dB and mu-law %.1f dB; linear samples fall to %.1f dB.",
        least(a), least(mu), least(linear));
}
