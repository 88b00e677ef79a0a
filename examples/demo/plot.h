// The picture of the spectra.
#pragma once

#include "band_pass.h"
#include "spectrum.h"

#include <filesystem>
#include <string>
#include <vector>

namespace examples::demo {

/// A spectrum and what it is called.
struct Curve {
    const char* name;
    Spectrum spectrum;
};

/// Draws spectra over one logarithmic frequency axis, the pass band shaded, as a PNG: what was before, and what the
/// filters, one or two, made of it.
void plot(const std::filesystem::path& png, const std::string& title, const Spectrum& before,
          const std::vector<Curve>& after, const BandPass& band);

} // namespace examples::demo
