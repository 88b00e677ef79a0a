// The multi-rate engine: an output is one dot product of the taps of its phase, which stand together, and the samples
// from its newest one back.
#pragma once

#include "filters/fir_direct.h"
#include "filters/fir_rates.h"

namespace kels {

/// The coefficients of taps, phase by phase, the last tap of each first.
template <class Sums, class Taps>
void put_phases(const Taps* taps, int tapsLen, int up, typename Sums::Coefficient* out) {
    const PhaseLengths lengths(tapsLen, up);
    for (int phase = 0; phase < std::min(up, tapsLen); ++phase)
        for (int k = lengths.of(phase) - 1; k >= 0; --k, out += Sums::per_tap)
            Sums::put(taps[phase + std::ptrdiff_t{k} * up], 0, out);
}

/// Where the engine takes its coefficients from: a table of `put_phases`.
template <class Sums>
struct StoredPhases {
    using Coefficient = typename Sums::Coefficient;
    const Coefficient* first;
    PhaseLengths lengths;

    static constexpr int room = 1;
    static constexpr int passes() { return 1; }

    /// Taps skipped to skipped + count - 1 of a phase, the last of them first.
    const Coefficient* segment(int phase, int skipped, int count, int /*pass*/, Coefficient* /*room*/) const {
        return first + (lengths.before(phase) + lengths.of(phase) - skipped - count) * Sums::per_tap;
    }
};

/// Some outputs and the line of samples that they meet.
template <class Sums>
class PolyphaseTile {
public:
    static constexpr int width = Sums::width;
    static constexpr int most_outputs = 1024 / width;
    static constexpr int span = 1024 / width;    ///< samples from the newest of its first output to that of its last
    static constexpr int segment = 1024 / width; ///< taps of a phase at once

    /// Takes outputs from the walk, as many as there is room for.
    int take(Walk& walk, std::ptrdiff_t outputs) {
        first = walk;
        for (count = 0; count < most_outputs && count < outputs; ++count, walk.next()) {
            if (walk.newest() - first.newest() >= span) break;
            last = walk.newest();
        }
        return count;
    }

    template <class Stream, class Phases>
    void sum(const Stream& stream, const Phases& phases) {
        std::fill_n(total, count * width, typename Sums::Total{});
        const int longest = phases.lengths.longest();
        for (int skipped = 0; skipped < longest; skipped += segment) {
            const int taps = std::min(segment, longest - skipped);
            stream.copy(first.newest() - skipped - taps + 1, last - first.newest() + taps, line);
            for (int pass = 0; pass < phases.passes(); ++pass) add_dots(phases, skipped, taps, pass);
        }
    }

    template <class Sample, class Rounding>
    void store(Sample* dst, const Rounding& rounding) const {
        store_rounded(total, reals(dst), count * width, rounding);
    }

private:
    template <class Phases>
    void add_dots(const Phases& phases, int skipped, int taps, int pass) {
        alignas(64) typename Sums::Coefficient room[Phases::room];
        Walk at = first;
        for (int i = 0; i < count; ++i, at.next()) {
            const int met = std::min(taps, phases.lengths.of(at.phase()) - skipped);
            if (met <= 0) continue;
            const auto* x = line + (at.newest() - first.newest() + taps - met) * width;
            const auto* h = phases.segment(at.phase(), skipped, met, pass, room);
            const auto sum = Sums::dot(x, h, met);
            for (int part = 0; part < width; ++part) total[i * width + part] += Sums::placed(sum[part], pass);
        }
    }

    Walk first{Rates{1, 0, 1, 0}};
    std::ptrdiff_t last = 0;
    int count = 0;
    alignas(64) typename Sums::Line line[(span + segment) * width];
    alignas(64) typename Sums::Total total[most_outputs * width];
};

/// Makes all outputs of a block.
template <class Sums, class Stream, class Phases, class Sample, class Rounding>
void filter_polyphase(const Stream& stream, const Phases& phases, const Rates& rates, Sample* dst,
                      std::ptrdiff_t outputs, const Rounding& rounding) {
    PolyphaseTile<Sums> tile;
    Walk walk(rates);
    for (std::ptrdiff_t done = 0; done < outputs;) {
        const int count = tile.take(walk, outputs - done);
        tile.sum(stream, phases);
        tile.store(dst + done, rounding);
        done += count;
    }
}

} // namespace kels
