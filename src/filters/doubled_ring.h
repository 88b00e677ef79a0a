// The doubled ring: a delay line of 2 len elements with every sample written twice, at an index and `len` behind it, so
// that the last `len` samples always stand side by side, oldest first, from the index on.
#pragma once

#include <algorithm>
#include <cstdint>

namespace kels {

/// The oldest sample of the window has no influence any more once the next one is pushed in its place.
template <class Sample>
struct DoubledRing {
    Sample* line;
    int* index;

    bool missing() const { return !line || !index; }
    const Sample* window() const { return line + *index; }

    void push(Sample sample, int len) const {
        line[*index] = line[*index + len] = sample;
        if (++*index == len) *index = 0;
    }

    /// The last of many samples, whatever they are more than the ring holds.
    void push(const Sample* src, int count, int len) const {
        const int skipped = std::max(count - len, 0);
        int at = static_cast<int>((std::int64_t{*index} + skipped) % len);
        for (int i = skipped; i < count;) {
            const int some = std::min(count - i, len - at);
            std::copy_n(src + i, some, line + at);
            std::copy_n(src + i, some, line + at + len);
            i += some;
            at += some;
            if (at == len) at = 0;
        }
        *index = at;
    }
};

} // namespace kels
