// The transforms of any length that are measured, cosine transforms, and the making of plans.
#pragma once

#include "data.h"
#include "harness.h"

#include <cmath>
#include <span>

namespace bench {

/// Products of small factors, then primes.
constexpr int dft_lengths[] = {15, 60, 240, 1000, 3000, 44100, 127, 1009, 10007};
constexpr int dct_lengths[] = {8, 64, 1024, 4096, 1000, 1001, 997};
/// Plans of powers of two and of other lengths.
constexpr int plan_lengths[] = {1024, 4096, 1000, 1009};

/// The count of operations is the customary one: 5 N log2 N for a complex transform, half of it for a real one.
inline Work any_length_work(const char* family, const std::string& operation, int length, bool real) {
    const double operations = (real ? 2.5 : 5.0) * length * std::log2(length);
    return {family, operation, std::to_string(length), double(length), operations, "GFLOP/s"};
}

template <class Real>
Work dft_work(bool real, int length) {
    const std::string precision = sizeof(Real) == 4 ? "single " : "double ";
    return any_length_work("dft", precision + (real ? "real forward to CCS" : "complex forward"), length, real);
}

inline Work dct_work(int length) { return any_length_work("dct", "single cosine transform", length, true); }

inline Work plan_work(int length) { return any_length_work("dft", "making a plan, single complex", length, false); }

} // namespace bench
