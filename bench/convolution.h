// The convolutions and correlations that are measured. Every contender takes its work from here, so that the same ones
// meet.
#pragma once

#include "data.h"
#include "harness.h"

namespace bench {

struct Convolution {
    int long_len, short_len;
    int results() const { return long_len + short_len - 1; }
};
inline constexpr Convolution convolutions[] = {{1024, 32}, {4096, 256}, {65536, 256}, {65536, 65536}};

struct Autocorrelation {
    int len, lags;
};
inline constexpr Autocorrelation autocorrelations[] = {
    {1024, 16}, {4096, 64}, {4096, 500}, {4096, 1000}, {65536, 1000}};

/// Registers a contender for all sizes: `make(size)` gives what does the work once. Rates are those of the sums that
/// define the results, two operations a term.
template <class Make>
void contend_convolution(const std::string& function, const std::string& who, Make make) {
    for (const Convolution& size : convolutions)
        contend({"convolution", function, std::to_string(size.long_len) + " x " + std::to_string(size.short_len),
                 double(size.results()), 2.0 * size.long_len * size.short_len, "GFLOP/s"},
                who, [=] { return make(size); });
}
template <class Make>
void contend_autocorrelation(const std::string& function, const std::string& who, Make make) {
    for (const Autocorrelation& size : autocorrelations)
        contend({"convolution", function, std::to_string(size.len) + ", " + std::to_string(size.lags) + " lags",
                 double(size.lags), 2.0 * size.lags * (size.len - size.lags / 2.0), "GFLOP/s"},
                who, [=] { return make(size); });
}

} // namespace bench
