// The multi-rate engine: an output is one dot product of the taps of its phase, which stand together, and the samples
// from its newest one back.
#pragma once

#include "filters/fir/direct.h"
#include "filters/fir/rates.h"

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
    static constexpr int span = 1024 / width;     ///< samples from the newest of its first output to that of its last
    static constexpr int segment = Sums::segment; ///< taps of a phase at once

    PolyphaseTile(const Rates& change, const Place& place, std::ptrdiff_t outputs, int longest)
        : rates(change), first(place), count(static_cast<int>(std::min<std::int64_t>(
                                           {most(longest), outputs, outputs_within(span, place.phase, change)}))),
          last(place.later(count - 1, change).newest) {}

    /// Outputs whose sums have room, beside those of their rounding errors where a phase has several segments.
    static constexpr int most(int longest) {
        return keeps_errors<Sums> && longest > segment ? most_outputs / 4 : most_outputs;
    }

    int outputs() const { return count; }

    template <class Stream, class Phases>
    void sum(const Stream& stream, const Phases& phases) {
        totals.start(count * width);
        const int longest = phases.lengths.longest();
        for (int skipped = 0; skipped < longest; skipped += segment) {
            const int taps = std::min(segment, longest - skipped);
            const std::ptrdiff_t needed = last - first.newest + taps;
            stream.copy(first.newest - skipped - taps + 1, needed, line);
            std::fill_n(line + needed * width, slack, typename Sums::Line{});
            typename Sums::Total* const into = totals.next();
            for (int pass = 0; pass < phases.passes(); ++pass) add_dots(phases, skipped, taps, pass, into);
            totals.take();
        }
        totals.finish();
    }

    template <class Sample, class Rounding>
    void store(Sample* dst, const Rounding& rounding) const {
        store_rounded(totals.sums(), reals(dst), count * width, rounding);
    }

private:
    /// Every `up`-th output meets the same taps, and samples `down` further.
    template <class Phases>
    void add_dots(const Phases& phases, int skipped, int taps, int pass, typename Sums::Total* into) {
        alignas(64) typename Sums::Coefficient room[Phases::room];
        Place place = first;
        for (int i = 0; i < std::min(count, rates.up); ++i, place = place.later(1, rates)) {
            const int met = std::min(taps, phases.lengths.of(place.phase) - skipped);
            if (met <= 0) continue;
            const auto* x = line + (place.newest - first.newest + taps - met) * width;
            const auto* h = phases.segment(place.phase, skipped, met, pass, room);
            Sums::add_dots(x, rates.down, h, met, (count - 1 - i) / rates.up + 1, into + i * width, rates.up, pass);
        }
    }

    static constexpr int slack = 8; // dot products may reach behind the last sample

    SegmentSums<Sums, most_outputs * width> totals;
    alignas(64) typename Sums::Line line[(span + segment) * width + slack];
    const Rates& rates;
    Place first;
    int count;
    std::ptrdiff_t last;
};

/// Makes all outputs of a block.
template <class Sums, class Stream, class Phases, class Sample, class Rounding>
void filter_polyphase(const Stream& stream, const Phases& phases, const Rates& rates, Sample* dst,
                      std::ptrdiff_t outputs, const Rounding& rounding) {
    Place place = Place::of_first(rates);
    for (std::ptrdiff_t done = 0; done < outputs;) {
        PolyphaseTile<Sums> tile(rates, place, outputs - done, phases.lengths.longest());
        tile.sum(stream, phases);
        tile.store(dst + done, rounding);
        done += tile.outputs();
        place = place.later(tile.outputs(), rates);
    }
}

} // namespace kels
