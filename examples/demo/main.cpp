// One recording, one band-pass, and everything a careful user would want to see of it: the filtered sound, proof that
// the cut into blocks does not matter, the levels, the speed, and a picture of the spectra.
#include "band_pass.h"
#include "failure.h"
#include "filter.h"
#include "level.h"
#include "options.h"
#include "output.h"
#include "plot.h"
#include "spectrum.h"
#include "wav_file.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace demo {
namespace {

// Of the recording's peak: the rounding of the transforms inside the filter, with room to spare.
constexpr double tolerance = 2e-6;

struct Filtered {
    Recording recording;
    double seconds; ///< spent filtering
};

Filtered filter_all(const std::vector<float>& taps, const Recording& recording) {
    Filtered filtered{recording, 0};
    const auto start = std::chrono::steady_clock::now();
    for (std::vector<float>& samples : filtered.recording.channels) samples = filter_stream(taps, samples);
    filtered.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return filtered;
}

double greatest_difference(const std::vector<float>& a, const std::vector<float>& b) {
    double greatest = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double difference = std::abs(double(a[i]) - b[i]);
        if (!std::isfinite(difference)) return difference;
        greatest = std::max(greatest, difference);
    }
    return greatest;
}

using Way = std::vector<float> (*)(const std::vector<float>& taps, const std::vector<float>& samples);

/// Filters the recording in another way and compares: equal but for rounding, or the demo has failed.
void compare(const char* name, Way way, const std::vector<float>& taps, const Recording& recording, double peak,
             const Recording& streamed) {
    double greatest = 0;
    for (std::size_t c = 0; c < recording.channels.size(); ++c) {
        const double difference = greatest_difference(way(taps, recording.channels[c]), streamed.channels[c]);
        if (!(difference <= tolerance * peak))
            throw Failure(std::string("The stream differs from ") + name + " by more than rounding.");
        greatest = std::max(greatest, difference);
    }
    std::printf("Check      stream against %-15s differs by at most %.1e of the peak\n", name,
                greatest == 0 ? 0 : greatest / peak);
}

void print_level(const char* name, const Level& level) {
    if (level.peak == 0)
        std::printf("%-10s silent\n", name);
    else
        std::printf("%-10s RMS %6.1f dBFS, peak %6.1f dBFS\n", name, decibels(level.rms), decibels(level.peak));
}

void print_question(const Options& options, const Recording& recording) {
    const std::size_t channels = recording.channels.size();
    std::printf("Recording  %s: %.2f s, %d Hz, %zu channel%s\n", options.input.c_str(), recording.seconds(),
                recording.rate, channels, channels == 1 ? "" : "s");
    std::printf("Filter     %d taps, windowed sinc, %g to %g Hz\n", options.band.taps, options.band.low,
                options.band.high);
}

/// Both files are complete before either takes its place.
void write_results(const Options& options, const Recording& recording, const Recording& filtered) {
    const OutputDirectory directory(options.out);
    const std::string stem = options.input.stem().string();
    PendingFile wav(directory, stem + "-filtered.wav"), png(directory, stem + "-spectrum.png");
    write_wav(wav.part(), filtered);
    char filter[80];
    std::snprintf(filter, sizeof filter, ", band-pass %g to %g Hz, %d taps", options.band.low, options.band.high,
                  options.band.taps);
    plot(png.part(), options.input.filename().string() + filter, spectrum_of(recording), spectrum_of(filtered),
         options.band);
    wav.commit();
    png.commit();
    std::printf("Written    %s\n           %s\n", wav.final_path().c_str(), png.final_path().c_str());
}

void run(const Options& options) {
    const Recording recording = read_wav(options.input);
    require_possible(options.band, recording.rate);
    print_question(options, recording);

    const std::vector<float> taps = design(options.band, recording.rate);
    const auto [filtered, seconds] = filter_all(taps, recording);
    const Level before = level_of(recording), after = level_of(filtered);
    print_level("Before", before);
    print_level("After", after);
    if (after.peak > 1)
        std::printf("           (a WAV of integers holds no more than 0 dBFS: the peaks are clipped)\n");
    std::printf("Speed      %.0f times real time, in blocks of uneven lengths\n", recording.seconds() / seconds);

    compare("one call", filter_at_once, taps, recording, before.peak, filtered);
    compare("single samples", filter_one_by_one, taps, recording, before.peak, filtered);
    write_results(options, recording, filtered);
}

} // namespace
} // namespace demo

int main(int argc, char** argv) {
    try {
        if (const auto options = demo::parse_options(argc, argv)) demo::run(*options);
        return EXIT_SUCCESS;
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "kels-demo: There is not enough memory.\n");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kels-demo: %s\n", error.what());
    }
    return EXIT_FAILURE;
}
