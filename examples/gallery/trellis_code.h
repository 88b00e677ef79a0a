// A four-dimensional trellis code of 16 states, by the library's kit: what it sends, and Viterbi's algorithm to decode
// it.
#pragma once

#include "kels.h"

#include <array>
#include <vector>

namespace examples {

/// Two points of the plane, their coordinates in halves of the grid's step: odd numbers.
using Pair = std::array<int, 4>;

inline int power(const Pair& p) { return p[0] * p[0] + p[1] * p[1] + p[2] * p[2] + p[3] * p[3]; }

class TrellisCode {
public:
    TrellisCode();

    /// The mean power of its pairs.
    double power() const;

    /// A byte chooses a pair: two bits a branch of the trellis, six bits one of the 64 pairs of that branch.
    std::vector<Pair> encoded(const std::vector<Kel16s>& bytes) const;

    /// The pairs that were most likely sent, out of points in units of half a step over 128.
    std::vector<Pair> decoded(const std::vector<Kel16sc>& received) const;

private:
    static constexpr int states = 16, branches = 4, types = 8, pairs_of_a_type = 64;
    Kel8u next_[states * branches];
    std::vector<Pair> pairs_[types];
};

} // namespace examples
