#include "options.h"

#include "biquads.h"
#include "failure.h"
#include "speech.h"
#include "test_signal.h"

#include <CLI/CLI.hpp>

#include <iostream>

namespace examples::demo {
std::optional<Options> parse_options(int argc, char** argv) {
    Options options;
    CLI::App app("Filters a WAV recording with a band-pass, checks the result, and draws the spectra before and after.",
                 "kels-demo");
    const CLI::Option* input = app.add_option(
        "--input", options.input,
        "the recording (default: the spoken one of alsa-utils), or a signal that is made here: " + signal_names() +
            "; a file of such a name is ./tone");
    app.add_option("--low", options.band.low, "lower edge of the pass band in Hz")->capture_default_str();
    app.add_option("--high", options.band.high, "upper edge of the pass band in Hz")->capture_default_str();
    app.add_option("--taps", options.band.taps, "length of the filter, odd")->capture_default_str();
    app.add_option("--up", options.up, "resample: this many samples ...")->capture_default_str();
    app.add_option("--down", options.down, "... for every so many of the recording")->capture_default_str();
    const CLI::Option* biquads = app.add_option(
        "--biquads", options.biquads, "filter also in second-order sections, made of a prototype of this order");
    app.add_option("--out", options.out, "directory for the filtered WAV and the PNG")->capture_default_str();
    try {
        app.parse(argc, argv);
    } catch (const CLI::CallForHelp&) {
        std::cout << app.help();
        return std::nullopt;
    } catch (const CLI::ParseError& error) {
        throw Failure(std::string(error.what()) + " (see --help).");
    }
    if (biquads->count() > 0) require_possible_order(options.biquads);
    if (input->count() == 0) options.input = find_speech("Front_Center.wav");
    return options;
}

} // namespace examples::demo
