// One recording, one band-pass, and everything a careful user would want to see of it: the filtered sound, proof that
// the cut into blocks does not matter, the levels, the speed, and a picture of the spectra.
#include "band_pass.h"
#include "biquads.h"
#include "failure.h"
#include "filter.h"
#include "level.h"
#include "options.h"
#include "output.h"
#include "plot.h"
#include "spectrum.h"
#include "test_signal.h"
#include "wav_file.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>

namespace examples::demo {
namespace {

// Of the recording's peak: the rounding of the transforms inside the filter, with room to spare.
constexpr double tolerance = 2e-6;

struct Filtered {
    Recording recording;
    double seconds; ///< spent filtering
};

/// `filter` takes the samples of a channel.
template <class Filter>
Filtered filter_all(const Recording& recording, int rate, Filter filter) {
    Filtered filtered{recording, 0};
    filtered.recording.rate = rate;
    const auto start = std::chrono::steady_clock::now();
    for (std::vector<float>& samples : filtered.recording.channels) samples = filter(samples);
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

/// Filters the recording in another way and compares: equal but for rounding, or the demo has failed.
template <class Filter>
void compare(const char* name, const Recording& recording, double peak, const Recording& streamed,
             std::vector<float> (*way)(const Filter& filter, const std::vector<float>& samples), const Filter& filter) {
    double greatest = 0;
    for (std::size_t c = 0; c < recording.channels.size(); ++c) {
        const double difference = greatest_difference(way(filter, recording.channels[c]), streamed.channels[c]);
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
    if (options.up != 1 || options.down != 1)
        std::printf("Rate       %d samples for every %d: %d Hz\n", options.up, options.down,
                    recording.rate * options.up / options.down);
}

/// Both files are complete before either takes its place.
void write_results(const Options& options, const Recording& recording, const Recording& filtered,
                   const std::vector<Curve>& after) {
    const OutputDirectory directory(options.out);
    const std::string stem = options.input.stem().string();
    PendingFile wav(directory, stem + "-filtered.wav"), png(directory, stem + "-spectrum.png");
    write_wav(wav.part(), filtered);
    char filter[80];
    std::snprintf(filter, sizeof filter, ", band-pass %g to %g Hz, %d taps", options.band.low, options.band.high,
                  options.band.taps);
    plot(png.part(), options.input.filename().string() + filter, spectrum_of(recording, recording.rate), after,
         options.band);
    wav.commit();
    png.commit();
    std::printf("Written    %s\n           %s\n", wav.final_path().c_str(), png.final_path().c_str());
}

/// The band lies below half of either rate, and both rates are whole numbers.
void require_possible(const Options& options, int rate) {
    constexpr int most = 100; // factor
    if (options.up < 1 || options.up > most || options.down < 1 || options.down > most)
        throw Failure("--up and --down take numbers from 1 to " + std::to_string(most) + ".");
    const long long fast = (long long)rate * options.up;
    if (fast % options.down != 0 || fast > 10'000'000)
        throw Failure("A rate of " + std::to_string(rate) + " Hz times " + std::to_string(options.up) + " by " +
                      std::to_string(options.down) + " is not possible.");
    if (options.biquads > 0 && (options.up > 1 || options.down > 1))
        throw Failure("--biquads filters at the recording's own rate, without --up and --down.");
    require_possible(options.band, std::min(rate, int(fast / options.down)));
}

/// Taps for the fast rate, at which the filter works when it changes the rate; there `up - 1` of `up` samples are
/// zeros.
Filtering filtering_of(const Options& options, int rate) {
    Filtering filtering{design(options.band, rate * options.up), options.up, options.down};
    for (float& tap : filtering.taps) tap *= float(options.up);
    return filtering;
}

/// A test signal, or what the file holds. A bare word that is neither may be a slip in the name of a signal.
Recording recording_of(const std::filesystem::path& input) {
    if (std::optional<Recording> made = make_signal(input.string())) return *std::move(made);
    if (input.filename() == input && !input.has_extension() && !exists(input))
        throw Failure(input.string() + " does not exist, and the signals that need no file are " + signal_names() +
                      ".");
    return read_wav(input);
}

/// The same band by other means: a cascade of second-order sections, its speed, and the spectrum behind it.
Curve in_sections(const Options& options, const Recording& recording, double peak) {
    const std::vector<double> sections = design_biquads(options.band, options.biquads, recording.rate);
    const auto [filtered, seconds] = filter_all(recording, recording.rate, [&](const std::vector<float>& samples) {
        return filter_in_sections(sections, samples);
    });
    std::printf("Biquads    Butterworth prototype of order %d, %zu sections\n", options.biquads, sections.size() / 6);
    print_level("Behind", level_of(filtered));
    std::printf("Speed      %.0f times real time, in blocks of uneven lengths\n", recording.seconds() / seconds);
    compare("one call", recording, peak, filtered, filter_in_sections_at_once, sections);
    return {"after the biquads", spectrum_of(filtered, recording.rate)};
}

void run(const Options& options) {
    const Recording recording = recording_of(options.input);
    require_possible(options, recording.rate);
    print_question(options, recording);

    const Filtering filtering = filtering_of(options, recording.rate);
    const int rate = recording.rate * filtering.up / filtering.down;
    const auto [filtered, seconds] = filter_all(
        recording, rate, [&](const std::vector<float>& samples) { return filter_stream(filtering, samples); });
    const Level before = level_of(recording), after = level_of(filtered);
    print_level("Before", before);
    print_level("After", after);
    if (after.peak > 1)
        std::printf("           (a WAV of integers holds no more than 0 dBFS: the peaks are clipped)\n");
    const double samples = double(recording.length()) * double(recording.channels.size());
    std::printf("Speed      %.0f times real time, %.2f ns a sample, in blocks of uneven lengths\n",
                recording.seconds() / seconds, 1e9 * seconds / samples);

    compare("one call", recording, before.peak, filtered, filter_at_once, filtering);
    if (!filtering.changes_rate())
        compare("single samples", recording, before.peak, filtered, filter_one_by_one, filtering);
    compare("no context", recording, before.peak, filtered, filter_without_context, filtering);
    std::vector<Curve> curves{{"after", spectrum_of(filtered, recording.rate)}};
    if (options.biquads > 0) curves.push_back(in_sections(options, recording, before.peak));
    write_results(options, recording, filtered, curves);
}

} // namespace
} // namespace examples::demo

int main(int argc, char** argv) {
    try {
        if (const auto options = examples::demo::parse_options(argc, argv)) examples::demo::run(*options);
        return EXIT_SUCCESS;
    } catch (const std::bad_alloc&) {
        std::fprintf(stderr, "kels-demo: There is not enough memory.\n");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "kels-demo: %s\n", error.what());
    }
    return EXIT_FAILURE;
}
