// The filters that are measured. Every contender takes its work from here, so that the same ones meet.
#pragma once

#include "data.h"
#include "harness.h"

#include <array>

namespace bench {

inline constexpr int fir_taps[] = {16, 31, 32, 64, 128, 512};
inline constexpr int fir_blocks[] = {128, 4096, 65536}; // 128: no longer than the plan of 32 taps or more

/// One block of one filter, the stream going on from call to call. The operations are those of the defining sum,
/// whatever a contender does in its place.
template <class Sample>
Work fir_work(const std::string& function, int taps, int block) {
    constexpr double operations = parts<Sample> == 1 ? 2 : 8;
    const std::string size = std::to_string(taps) + " taps";
    const std::string operation = function + " on " + std::to_string(block) + " samples";
    return {"fir", operation, size, double(block), operations * taps * block, "GFLOP/s"};
}

/// Registers a contender for all taps and blocks: `make(taps, block)` gives its callable.
template <class Sample, class Make>
void contend_fir(const std::string& function, const std::string& who, Make make) {
    for (const int block : fir_blocks)
        for (const int taps : fir_taps)
            contend(fir_work<Sample>(function, taps, block), who, [=] { return make(taps, block); });
}

/// The same for calls of one sample each: `make(taps, samples)`.
template <class Sample, class Make>
void contend_fir_one(const std::string& function, const std::string& who, Make make) {
    constexpr int samples = 1024;
    for (const int taps : fir_taps) {
        Work work = fir_work<Sample>(function, taps, samples);
        work.operation = function + ", one sample a call";
        contend(work, who, [=] { return make(taps, samples); });
    }
}

/// A rate change: up, down, and taps, 32 of them meeting an output.
struct RateChange {
    int up, down, taps;
    int periods() const { return 4096 / down; }
};
inline constexpr RateChange rate_changes[] = {{3, 2, 96}, {2, 3, 64}, {4, 1, 128}, {1, 4, 32}, {160, 147, 5120}};

/// Registers a contender for all rate changes: `make(change)`. An element is an input sample.
template <class Sample, class Make>
void contend_rate_change(const std::string& function, const std::string& who, Make make) {
    for (const RateChange& change : rate_changes) {
        const double inputs = double(change.periods()) * change.down, outputs = double(change.periods()) * change.up;
        const double operations = (parts<Sample> == 1 ? 2 : 8) * outputs * change.taps / change.up;
        const std::string size = std::to_string(change.up) + "/" + std::to_string(change.down) + ", " +
                                 std::to_string(change.taps) + " taps";
        contend({"fir", function + ", changing the rate", size, inputs, operations, "GFLOP/s"}, who,
                [=] { return make(change); });
    }
}

} // namespace bench
