// The arithmetic of a rate change: which taps and which samples an output meets.
//
// Sample n stands at tick n up + upPhase of a stream `up` times as fast, and output m is taken at its tick
// t = m down + downPhase. It meets taps p, p + up, p + 2 up ... from its newest sample on, where p, the phase, is
// (t - upPhase) mod up.
#pragma once

#include "kels/status.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kels {

struct Rates {
    int up, upPhase, down, downPhase;

    KelStatus check() const {
        if (up < 1 || down < 1) return kelStatusBadMrFactor;
        if (upPhase < 0 || upPhase >= up || downPhase < 0 || downPhase >= down) return kelStatusBadMrPhase;
        return kelStatusOk;
    }
};

/// The taps, dealt out to the phases by turns: the first of them may have one more than the last.
class PhaseLengths {
public:
    PhaseLengths(int tapsLen, int up) : least((tapsLen - 1) / up), longer((tapsLen - 1) % up + 1) {}

    int longest() const { return least + 1; }
    int of(int phase) const { return phase < longer ? least + 1 : least; }
    std::ptrdiff_t before(int phase) const { return std::ptrdiff_t{phase} * least + std::min(phase, longer); }

private:
    int least, longer;
};

/// An output: the phase of its taps and the position of its newest sample.
struct Place {
    std::ptrdiff_t newest;
    int phase;

    static Place of_first(const Rates& rates) {
        const int tick = rates.downPhase - rates.upPhase; // above -up
        return tick < 0 ? Place{-1, tick + rates.up} : Place{tick / rates.up, tick % rates.up};
    }
    Place later(std::int64_t outputs, const Rates& rates) const {
        const std::int64_t ticks = phase + outputs * rates.down;
        return {newest + static_cast<std::ptrdiff_t>(ticks / rates.up), static_cast<int>(ticks % rates.up)};
    }
};

/// How many outputs from one of this phase on have their newest sample less than `span` behind its own.
inline std::int64_t outputs_within(int span, int phase, const Rates& rates) {
    return (std::int64_t{span} * rates.up - phase - 1) / rates.down + 1;
}

} // namespace kels
