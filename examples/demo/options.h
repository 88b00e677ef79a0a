// The command line.
#pragma once

#include "band_pass.h"

#include <filesystem>
#include <optional>

namespace examples::demo {

struct Options {
    std::filesystem::path input;                          ///< a file, or the name of a test signal
    BandPass band{.low = 300, .high = 3400, .taps = 511}; // the band of a telephone line
    int up = 1, down = 1;
    int biquads = 0; ///< order of the prototype of a cascade beside the filter; 0 without one
    std::filesystem::path out = "demo";
};

/// Nothing when the user asked for the help text, which has been printed then.
std::optional<Options> parse_options(int argc, char** argv);

} // namespace examples::demo
