// The direct engine: every output is its defining sum.
//
// Neighbouring outputs are summed side by side from a line that is assembled tile by tile. The line joins the history
// and the caller's block, so the sums know nothing of the seam, and they read past the last sample only there.
#pragma once

#include "filters/fir/integer_sums.h"
#include "filters/fir/real_sums.h"
#include "filters/fir/rounding.h"
#include "frame/loop.h"

#include <cstring>

namespace kels {

template <class Family>
using SumsOf = std::conditional_t<Family::integer_taps, IntegerSums<Family::complex>, RealSums<Family::complex>>;

/// The samples of a call behind its history: position 0 is src[0], the history ends at position -1.
template <class Sample, bool newest_first = false>
struct Stream {
    const Sample* history; ///< `past` samples
    int past;
    const Sample* src;
    std::ptrdiff_t count;

    /// Copies `length` samples from `position` on, as parts of type T, where there are some.
    template <class T>
    void copy(std::ptrdiff_t position, std::ptrdiff_t length, T* out) const {
        constexpr int width = parts<Sample>;
        const auto piece = [&](std::ptrdiff_t begin, std::ptrdiff_t end, auto read) {
            const std::ptrdiff_t from = std::max(position, begin), to = std::min(position + length, end);
            if (from >= to) return;
            T* to_place = out + (from - position) * width;
            each(static_cast<int>((to - from) * width),
                 [=](auto i) { to_place[i] = static_cast<T>(read((from - begin) * width + i)); });
        };
        const auto* old = reals(history);
        const auto* fresh = reals(src);
        if constexpr (newest_first)
            piece(-past, 0, [=, this](auto i) { return old[(past - 1 - i / width) * width + i % width]; });
        else
            piece(-past, 0, [=](auto i) { return old[i]; });
        piece(0, count, [=](auto i) { return fresh[i]; });
    }

    /// The same, with silence where there are none.
    template <class T>
    void copy_or_silence(std::ptrdiff_t position, std::ptrdiff_t length, T* out) const {
        constexpr int width = parts<Sample>;
        const std::ptrdiff_t first = std::clamp<std::ptrdiff_t>(-past - position, 0, length),
                             end = std::clamp<std::ptrdiff_t>(count - position, first, length);
        std::fill_n(out, first * width, T{});
        copy(position, length, out);
        std::fill(out + end * width, out + length * width, T{});
    }
};

/// Where the engine takes its coefficients, oldest sample first: from a context ...
template <class Sums>
struct StoredCoefficients {
    using Coefficient = typename Sums::Coefficient;
    const Coefficient* first;

    static constexpr int room = 1;
    static constexpr int passes() { return 1; }
    const Coefficient* segment(int tap, int /*count*/, int /*pass*/, Coefficient* /*room*/) const {
        return first + std::ptrdiff_t{tap} * Sums::per_tap;
    }
};

/// Whether sums of segments keep their rounding errors.
template <class Sums>
inline constexpr bool keeps_errors = std::is_floating_point_v<typename Sums::Total>;

/// Sums of some parts of outputs, segment by segment. With their rounding errors kept, real ones are as good after many
/// segments as after one; that takes thrice the room of the parts.
template <class Sums, int Room>
class SegmentSums {
    using Total = typename Sums::Total;

public:
    void start(int parts) {
        count = parts;
        stride = (parts + 7) / 8 * 8;
        segments = 0;
        std::fill_n(total, count, Total{});
    }

    /// Where the next segment is added.
    Total* next() {
        if (!keeps_errors<Sums> || segments++ == 0) return total;
        if (segments == 2) std::fill_n(total + stride, count, Total{});
        std::fill_n(total + 2 * stride, count, Total{});
        return total + 2 * stride;
    }

    /// The segment has been added.
    void take() {
        if constexpr (keeps_errors<Sums>)
            if (segments > 1)
                each(count, [this](auto i) { add_segment(total[i], total[stride + i], total[2 * stride + i]); });
    }

    void finish() {
        if constexpr (keeps_errors<Sums>)
            if (segments > 1) each(count, [this](auto i) { total[i] = with_error(total[i], total[stride + i]); });
    }

    Total* sums() { return total; }
    const Total* sums() const { return total; }

private:
    int count = 0, stride = 0, segments = 0;
    alignas(64) Total total[Room];
};

/// Adds the products of a strip of outputs and all taps to silence, segment by segment.
template <class Sums, int Outputs = 1024 / Sums::width, int Segment = Sums::segment>
class Tile {
public:
    static constexpr int most_outputs = Outputs, segment = Segment;

    /// Sums outputs first to first + outputs - 1.
    template <class Stream, class Taps>
    void sum(const Stream& stream, std::ptrdiff_t first, int outputs, const Taps& taps, int tapsLen) {
        constexpr int width = Sums::width;
        alignas(64) typename Sums::Coefficient room[Taps::room];
        totals.start(outputs * width + slack);
        for (int tap = 0; tap < tapsLen; tap += segment) {
            const int count = std::min(segment, tapsLen - tap), needed = outputs + count - 1;
            if constexpr (requires { stream.silent(first, needed); })
                if (stream.silent(first - (tapsLen - 1) + tap, needed)) continue; // it would add zeros
            stream.copy(first - (tapsLen - 1) + tap, needed, line);
            std::fill_n(line + needed * width, slack, typename Sums::Line{});
            typename Sums::Total* const into = totals.next();
            for (int pass = 0; pass < taps.passes(); ++pass)
                Sums::add_strips(line, taps.segment(tap, count, pass, room), count, into, outputs * width, pass);
            totals.take();
        }
        totals.finish();
    }

    typename Sums::Total* sums() { return totals.sums(); }

    template <class Sample, class Rounding>
    void store(Sample* dst, int outputs, const Rounding& rounding) const {
        store_rounded(totals.sums(), reals(dst), outputs * Sums::width, rounding);
    }

private:
    static constexpr int slack = 64; // vectors may reach behind the last sample
    alignas(64) typename Sums::Line line[(most_outputs + segment) * Sums::width + slack];
    SegmentSums<Sums, (keeps_errors<Sums> ? 3 : 1) * (most_outputs * Sums::width + slack)> totals;
};

} // namespace kels
