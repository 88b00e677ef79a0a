// The arithmetic of a rate change: which taps and which samples an output meets.
//
// Sample n stands at tick n up + upPhase of a stream `up` times as fast, and output m is taken at its tick
// t = m down + downPhase. It meets taps p, p + up, p + 2 up ... from its newest sample on, where p, the phase, is
// (t - upPhase) mod up.
#pragma once

#include "kels/status.h"

#include <algorithm>
#include <cstddef>

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

/// The phase and the newest sample of one output after the other.
class Walk {
public:
    explicit Walk(const Rates& rates)
        : up(static_cast<unsigned>(rates.up)), whole(rates.down / rates.up),
          remainder(static_cast<unsigned>(rates.down % rates.up)) {
        const int tick = rates.downPhase - rates.upPhase; // above -up
        newest_ = tick < 0 ? -1 : tick / rates.up;
        phase_ = static_cast<unsigned>(tick < 0 ? tick + rates.up : tick % rates.up);
    }
    void next() {
        newest_ += whole;
        phase_ += remainder;
        if (phase_ >= up) {
            phase_ -= up;
            ++newest_;
        }
    }
    int phase() const { return static_cast<int>(phase_); }
    std::ptrdiff_t newest() const { return newest_; }

private:
    unsigned up;
    int whole;
    unsigned remainder, phase_;
    std::ptrdiff_t newest_;
};

} // namespace kels
