// Trellis-coded modulation: pairs of points from a four-dimensional code of 16 states, against points without a code,
// at the same eight bits a pair and the same mean power.
#include "gallery.h"
#include "trellis_code.h"

#include <algorithm>
#include <cmath>

using namespace examples;

namespace {

/// Four levels a coordinate: 16 points, each for itself.
constexpr double plain_power = 4 * (1 + 9) / 2;

std::vector<Pair> plain(const std::vector<Kel16s>& bytes) {
    std::vector<Pair> sent;
    for (const int b : bytes)
        sent.push_back({2 * (b & 3) - 3, 2 * (b >> 2 & 3) - 3, 2 * (b >> 4 & 3) - 3, 2 * (b >> 6) - 3});
    return sent;
}

std::vector<Pair> nearest(const std::vector<Kel16sc>& received) {
    const auto level = [](int x) { return std::clamp(2 * (x >> 8) + 1, -3, 3); };
    std::vector<Pair> pairs;
    for (std::size_t i = 0; i < received.size(); i += 2)
        pairs.push_back(
            {level(received[i].re), level(received[i].im), level(received[i + 1].re), level(received[i + 1].im)});
    return pairs;
}

/// What a receiver hears of pairs of some mean power, at a ratio of signal to noise in dB.
std::vector<Kel16sc> heard(const std::vector<Pair>& sent, double power, double ratio) {
    Samples samples = noise(4 * sent.size(), std::sqrt(power / 4) * std::pow(10, -ratio / 20), Kel32u(1000 * ratio));
    for (std::size_t i = 0; i < samples.size(); ++i) samples[i] += float(sent[i / 4][i % 4]);
    std::vector<Kel16sc> received(2 * sent.size());
    check(kelsConvert_32f16s_Sfs(samples.data(), &received[0].re, int(samples.size()), kelRndNear, -7)); // times 128
    return received;
}

double share_of_errors(const std::vector<Pair>& sent, const std::vector<Pair>& decided) {
    std::size_t errors = 0, counted = sent.size() - 50; // the last ones are decided too early
    for (std::size_t i = 0; i < counted; ++i) errors += sent[i] != decided[i];
    return errors ? double(errors) / double(counted) : NAN;
}

/// Where the line through the shares, on a logarithmic scale, crosses a level.
double crossing(const std::vector<double>& ratios, const std::vector<double>& shares, double level) {
    std::size_t i = 1;
    while (i + 1 < shares.size() && !(shares[i] < level)) ++i;
    const double part = std::log(shares[i - 1] / level) / std::log(shares[i - 1] / shares[i]);
    return ratios[i - 1] + part * (ratios[i] - ratios[i - 1]);
}

} // namespace

std::string examples::show(const Run& run) {
    const TrellisCode code;
    std::vector<Kel16s> bytes(run.small ? 20000 : 300000);
    Kel32u seed = 1;
    check(kelsRandUniform_Direct_16s(bytes.data(), int(bytes.size()), 0, 256, &seed));
    const std::vector<Pair> coded = code.encoded(bytes), uncoded = plain(bytes);
    std::vector<double> ratios, with, without;
    for (double ratio = 10; ratio <= 20; ratio += 0.5) {
        ratios.push_back(ratio);
        with.push_back(share_of_errors(coded, code.decoded(heard(coded, code.power(), ratio))));
        without.push_back(share_of_errors(uncoded, nearest(heard(uncoded, plain_power, ratio))));
    }
    const double level = run.small ? 1e-3 : 1e-4,
                 gain = crossing(ratios, without, level) - crossing(ratios, with, level);
    claim(gain > (run.small ? 2.4 : 3.2), text("The code gains %.2f dB only.", gain));
    Picture picture(900, 480);
    picture.data("shares", ratios, without, with).title("Eight bits in two points: a trellis code of 16 states")
        << "set logscale y\nset format y '10^{%T}'\nset yrange [4e-6:1]\nset xrange [10:20]\n"
        << "set xlabel 'Signal-to-noise ratio in dB'\nset ylabel 'Share of wrong pairs'\n"
        << "plot $shares using 1:2 with linespoints linetype 2 title 'without a code', "
        << "$shares using 1:3 with linespoints linetype 1 title 'trellis code'\n";
    picture.draw(run.png);
    return text("at %g wrong pairs in all the code gains %.1f dB over points without a code.", level, gain);
}
