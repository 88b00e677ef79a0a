#include "gallery.h"

#include "speech.h"
#include "wav_file.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace examples {

void claim(bool holds, const std::string& otherwise) {
    if (!holds) throw Failure(otherwise);
}

std::string text(const char* format, ...) {
    char line[1000];
    std::va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(line, sizeof line, format, arguments);
    va_end(arguments);
    return line;
}

Samples speech(const std::string& name) {
    Recording recording = read_wav(find_speech(name));
    claim(recording.rate == speech_rate && recording.channels.size() == 1, name + " is not the recording it was.");
    return std::move(recording.channels.front());
}

Samples noise(std::size_t length, double deviation, std::uint32_t seed) {
    Samples samples(length);
    check(kelsRandGauss_Direct_32f(samples.data(), int(length), 0, float(deviation), &seed));
    return samples;
}

double rms(const Samples& samples) {
    float norm = 0;
    check(kelsNorm_L2_32f(samples.data(), int(samples.size()), &norm));
    return norm / std::sqrt(double(samples.size()));
}

double signal_to_noise(const Samples& signal, const Samples& became) {
    const int length = int(std::min(signal.size(), became.size()));
    float level = 0, difference = 0;
    check(kelsNorm_L2_32f(signal.data(), length, &level));
    check(kelsNormDiff_L2_32f(signal.data(), became.data(), length, &difference));
    return decibels(level / double(difference));
}

std::vector<double> levels(const Samples& samples, std::size_t piece) {
    constexpr double silence = 1e-10;
    std::vector<double> result;
    for (std::size_t start = 0; start + piece <= samples.size(); start += piece)
        result.push_back(decibels(std::max(silence, rms({&samples[start], &samples[start] + piece}))));
    return result;
}

double decibels(double ratio) { return 20 * std::log10(ratio); }

std::vector<double> axis(std::size_t length, double factor) {
    std::vector<double> values(length);
    for (std::size_t i = 0; i < length; ++i) values[i] = double(i) * factor;
    return values;
}

Spectrogram spectrogram(const Samples& samples, int rate, int order, int hop) {
    const std::size_t length = std::size_t{1} << order, bins = length / 2 + 1;
    const auto plan = make<kelsFFTInitAlloc_R_32f, kelsFFTFree_R_32f>(order, kelFftNormNone, kelHintDefault);
    Spectrogram result{bins, double(rate) / double(length), double(hop) / rate, {}};
    Samples padded(length / 2), windowed(length);
    padded.insert(padded.end(), samples.begin(), samples.end());
    padded.resize(padded.size() + length / 2);
    std::vector<Kel32fc> spectrum(bins);
    const double full_scale = double(length) / 4; // of a sine, half of the sum of the window
    for (std::size_t start = 0; start + length <= padded.size(); start += std::size_t(hop)) {
        check(kelsWinHann_32f(&padded[start], windowed.data(), int(length)));
        check(kelsFFTFwd_RToCCS_32f(windowed.data(), &spectrum[0].re, plan.get(), nullptr));
        result.level.resize(result.level.size() + bins);
        float* const level = &*result.level.end() - bins;
        check(kelsPowerSpectr_32fc(spectrum.data(), level, int(bins)));
        check(kelsThreshold_LT_32f_I(level, int(bins), 1e-14F)); // the logarithm of nothing
        check(kelsLn_32f_I(level, int(bins)));
        check(kelsMulC_32f_I(float(10 / std::log(10.0)), level, int(bins)));
        check(kelsSubC_32f_I(float(decibels(full_scale)), level, int(bins)));
    }
    return result;
}

std::string image(Picture& picture, const std::string& name, const Spectrogram& s, double highest) {
    const std::size_t shown = std::min(s.bins, std::size_t(highest / s.hertz) + 1);
    std::vector<float> levels;
    for (std::size_t piece = 0; piece < s.level.size(); piece += s.bins)
        levels.insert(levels.end(), &s.level[piece], &s.level[piece] + shown);
    picture.matrix(name, levels, shown);
    return text("$%s matrix using ($2*%g):($1*%g/1000):3 with image notitle", name.c_str(), s.seconds, s.hertz);
}

} // namespace examples

int main(int argc, char** argv) {
    using namespace examples;
    const std::string name = std::filesystem::path(argv[0]).filename();
    try {
        const bool small = argc == 3 && argv[1] == std::string("--small");
        if (!small && argc != 2) throw Failure("Usage: " + name + " [--small] <directory of the picture>");
        const std::filesystem::path directory = argv[argc - 1];
        create_directories(directory);
        std::printf("%s: %s\n", name.c_str(), show({small, directory / (name + ".png")}).c_str());
        return EXIT_SUCCESS;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", name.c_str(), error.what());
        return EXIT_FAILURE;
    }
}
