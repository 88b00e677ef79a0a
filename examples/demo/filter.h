// A channel through the filter, in the three ways a caller may take.
#pragma once

#include <vector>

namespace demo {

/// As a stream arrives: in blocks of uneven lengths, one context carrying the stream over their borders.
std::vector<float> filter_stream(const std::vector<float>& taps, const std::vector<float>& samples);

/// In one call.
std::vector<float> filter_at_once(const std::vector<float>& taps, const std::vector<float>& samples);

/// Sample by sample.
std::vector<float> filter_one_by_one(const std::vector<float>& taps, const std::vector<float>& samples);

} // namespace demo
