// Speech, as windows, real transforms and logarithms show it: time runs to the right, frequency upwards.
#include "gallery.h"

#include <algorithm>
#include <cmath>

using namespace examples;

namespace {

/// The mean over all pieces of the energy in the bins, one after the other, over all of it.
std::vector<double> shares(const Spectrogram& s) {
    std::vector<double> energy(s.bins);
    for (std::size_t i = 0; i < s.level.size(); ++i) energy[i % s.bins] += std::pow(10, s.level[i] / 10);
    double sum = 0;
    for (double& bin : energy) bin = sum += bin;
    for (double& bin : energy) bin /= sum;
    return energy;
}

/// What pieces under a Hann window, a quarter of their length apart, hold of every sample's energy: 3/2 of it.
double energy_ratio(const Samples& samples, const Spectrogram& s) {
    double energy = 0;
    for (std::size_t i = 0; i < s.level.size(); ++i) {
        const std::size_t k = i % s.bins;
        energy += std::pow(10, s.level[i] / 10) * (k == 0 || k == s.bins - 1 ? 1 : 2);
    }
    const double length = double(2 * (s.bins - 1)), full_scale = length / 4;
    return energy * full_scale * full_scale / length / (1.5 * std::pow(rms(samples), 2) * double(samples.size()));
}

} // namespace

std::string examples::show(const Run& run) {
    const Samples samples = speech("Front_Center.wav");
    const Spectrogram fine = spectrogram(samples, speech_rate, 10, 256);
    const double ratio = energy_ratio(samples, fine);
    claim(std::abs(ratio - 1) < 1e-3, text("The spectra hold %.4f of the energy of the samples.", ratio));
    const std::vector<double> share = shares(fine);
    const auto most = std::ranges::lower_bound(share, 0.9) - share.begin();

    Picture picture(900, 480);
    const std::string spectra = image(picture, "spectra", fine, 10000);
    picture.title("\"Front center\": Hann window, 1,024 samples at 48 kHz")
        << heat << "unset grid\nunset key\nset xlabel 'Time in s'\nset ylabel 'Frequency in kHz'\n"
        << "set xrange [0:" << double(samples.size()) / speech_rate << "]\nset yrange [0:10]\nset cbrange [-100:-20]\n"
        << "set cblabel 'Level in dB'\nplot " << spectra << '\n';
    picture.draw(run.png);
    return text(
        "%zu spectra of 1,024 samples hold %.4f of the energy of the speech; nine tenths of it lie below %.0f Hz.",
        fine.level.size() / fine.bins, ratio, double(most) * fine.hertz);
}
