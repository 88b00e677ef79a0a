// The band-pass as a cascade of second-order sections.
#pragma once

#include "band_pass.h"

#include <vector>

namespace examples::demo {

/// Fails with a sentence when there is no such cascade.
void require_possible_order(int order);

/// b0, b1, b2, a0, a1, a2 of the sections of a Butterworth filter, made from a prototype of some order, with a gain of
/// 1 in the middle of the band.
std::vector<double> design_biquads(const BandPass& band, int order, int rate);

/// A channel through the cascade, in blocks of uneven lengths or in one call.
std::vector<float> filter_in_sections(const std::vector<double>& sections, const std::vector<float>& samples);
std::vector<float> filter_in_sections_at_once(const std::vector<double>& sections, const std::vector<float>& samples);

} // namespace examples::demo
