// A channel through the filter, in the ways a caller may take.
#pragma once

#include <algorithm>
#include <iterator>
#include <vector>

namespace examples::demo {

// From a sample to more than any usual filter has taps, so that every engine takes part; none a multiple of another.
inline constexpr int block_lengths[] = {1, 480, 17, 4096, 1023, 3, 9973, 64, 2050, 333};

/// Calls block(first, count) for the stream's blocks, in periods.
template <class Block>
void for_each_block(std::size_t periods, Block block) {
    std::size_t done = 0;
    for (std::size_t i = 0; done < periods; ++i) {
        const std::size_t count = std::min<std::size_t>(block_lengths[i % std::size(block_lengths)], periods - done);
        block(done, int(count));
        done += count;
    }
}

/// The taps, and the rate change that they make: `up` samples for every `down`.
struct Filtering {
    std::vector<float> taps;
    int up = 1, down = 1;

    bool changes_rate() const { return up > 1 || down > 1; }
};

/// As a stream arrives: in blocks of uneven lengths, one context carrying the stream over their borders.
std::vector<float> filter_stream(const Filtering& filtering, const std::vector<float>& samples);

/// In one call.
std::vector<float> filter_at_once(const Filtering& filtering, const std::vector<float>& samples);

/// Sample by sample; at one rate only.
std::vector<float> filter_one_by_one(const Filtering& filtering, const std::vector<float>& samples);

/// Without a context: taps and delay line are ours, and go along with the call.
std::vector<float> filter_without_context(const Filtering& filtering, const std::vector<float>& samples);

} // namespace examples::demo
