// Telephone digits out of noise: each is a pair of tones, one of four low and one of four high frequencies. What was
// dialled is told by the strongest of each, as Goertzel's algorithm measures them.
#include "gallery.h"

#include <cmath>

using namespace examples;

namespace {

constexpr int rate = 8000, length = 205; // 26 ms
constexpr float frequencies[2][4] = {{697.F / rate, 770.F / rate, 852.F / rate, 941.F / rate},
                                     {1209.F / rate, 1336.F / rate, 1477.F / rate, 1633.F / rate}};

/// Two tones of amplitude 1 that begin anywhere in their periods.
Samples dialled(int digit, Kel32u& seed) {
    Samples sum(length), high(length);
    float phases[2];
    check(kelsRandUniform_Direct_32f(phases, 2, 0, 6.28F, &seed));
    check(kelsTone_Direct_32f(sum.data(), length, 1, frequencies[0][digit / 4], &phases[0]));
    check(kelsTone_Direct_32f(high.data(), length, 1, frequencies[1][digit % 4], &phases[1]));
    check(kelsAdd_32f_I(high.data(), sum.data(), length));
    return sum;
}

int strongest(const std::vector<Kel32fc>& samples, const float (&tones)[4]) {
    Kel32fc values[4];
    check(kelsGoertzTwo_32fc(samples.data(), length, &values[0], &tones[0]));
    check(kelsGoertzTwo_32fc(samples.data(), length, &values[2], &tones[2]));
    float powers[4], most = 0;
    int index = 0;
    check(kelsPowerSpectr_32fc(values, powers, 4));
    check(kelsMaxIndx_32f(powers, 4, &most, &index));
    return index;
}

int decoded(const Samples& samples) {
    std::vector<Kel32fc> complex(length);
    check(kelsRealToCplx_32f(samples.data(), nullptr, complex.data(), length));
    return 4 * strongest(complex, frequencies[0]) + strongest(complex, frequencies[1]);
}

/// The share of wrong digits in theory: two decisions between four orthogonal tones of unknown phase, each with a
/// quarter of the length times the signal-to-noise ratio as its energy over the noise's density.
double predicted(double ratio) {
    const double e = std::pow(10, ratio / 10) * length / 4;
    const double wrong = 3.0 / 2 * std::exp(-e / 2) - std::exp(-2 * e / 3) + 1.0 / 4 * std::exp(-3 * e / 4);
    return 1 - (1 - wrong) * (1 - wrong);
}

} // namespace

std::string examples::show(const Run& run) {
    const int digits = run.small ? 1000 : 20000;
    std::vector<double> ratios, shares, theory;
    Kel32u seed = 1;
    double shown = 0;
    for (double ratio = -20; ratio <= -2; ratio += 1) {
        int wrong = 0;
        const Samples hiss = noise(std::size_t(digits) * length, std::pow(10, -ratio / 20), Kel32u(-ratio));
        for (int i = 0; i < digits; ++i) {
            Samples samples = dialled(i % 16, seed);
            check(kelsAdd_32f_I(&hiss[std::size_t(i) * length], samples.data(), length));
            wrong += decoded(samples) != i % 16;
        }
        const double share = double(wrong) / digits, expected = predicted(ratio);
        claim(std::abs(share - expected) < 0.15 * expected + 4 * std::sqrt(expected / digits) + 1.0 / digits,
              text("At %.0f dB %.4f of the digits are wrong; theory has %.4f.", ratio, share, expected));
        if (ratio == -8) shown = share;
        theory.push_back(expected), ratios.push_back(ratio), shares.push_back(wrong ? share : NAN);
    }
    Picture picture(900, 480);
    picture.data("digits", ratios, shares, theory).title("Telephone digits of 26 ms in noise")
        << "set logscale y\nset format y '10^{%T}'\nset yrange [2e-5:1]\nset xrange [-20.5:-3.5]\n"
        << "set xlabel 'Signal-to-noise ratio in dB, over 4 kHz'\nset ylabel 'Share of wrong digits'\n"
        << "plot $digits using 1:3 with lines linetype 4 title 'theory', "
        << "$digits using 1:2 with points linetype 1 pointsize 1.3 title 'measured'\n";
    picture.draw(run.png);
    return text("in noise 8 dB above the tones %.2f %% of the digits are wrong, as theory has it.", 100 * shown);
}
