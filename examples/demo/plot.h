// The picture of the spectra.
#pragma once

#include "band_pass.h"
#include "spectrum.h"

#include <filesystem>
#include <string>

namespace demo {

/// Draws both spectra over one logarithmic frequency axis, the pass band shaded, as a PNG.
void plot(const std::filesystem::path& png, const std::string& title, const Spectrum& before, const Spectrum& after,
          const BandPass& band);

} // namespace demo
