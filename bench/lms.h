// The adaptive filters that are measured. Every contender takes its work from here, so that the same ones meet.
#pragma once

#include "data.h"
#include "harness.h"

namespace bench {

inline constexpr int lms_taps[] = {8, 16, 32, 64, 128, 256, 1024};
inline constexpr int lms_block = 1024;

/// Registers a contender for all numbers of taps: `make(taps)` gives what filters one block. A tap costs two products
/// and two sums a sample, one each for the output and for the update.
template <class Make>
void contend_lms(const std::string& function, const std::string& who, Make make) {
    for (const int taps : lms_taps)
        contend({"lms", function, std::to_string(taps) + " taps", double(lms_block), 4.0 * taps * lms_block, "GFLOP/s"},
                who, [=] { return make(taps); });
}

} // namespace bench
