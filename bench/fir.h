// The filters that are measured. Every contender takes its work from here, so that the same ones meet.
#pragma once

#include "data.h"
#include "harness.h"

namespace bench {

inline constexpr int fir_taps[] = {16, 31, 64, 128, 512};
inline constexpr int fir_blocks[] = {4096, 65536};

/// One block of one filter, the stream going on from call to call. The operations are those of the defining sum,
/// whatever a contender does in its place.
template <class Sample>
Work fir_work(const char* function, int taps, int block) {
    constexpr double operations = parts<Sample> == 1 ? 2 : 8;
    const std::string size = std::to_string(taps) + " taps";
    const std::string operation = std::string(function) + " on " + std::to_string(block) + " samples";
    return {"fir", operation, size, double(block), operations * taps * block, "GFLOP/s"};
}

/// Registers a contender for all taps and blocks: `make(taps, block)` gives its callable.
template <class Sample, class Make>
void contend_fir(const char* function, const std::string& who, Make make) {
    for (const int block : fir_blocks)
        for (const int taps : fir_taps)
            contend(fir_work<Sample>(function, taps, block), who, [=] { return make(taps, block); });
}

} // namespace bench
