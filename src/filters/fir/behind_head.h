// What all taps but the first make of a stream: levels of partitions, each of longer frames than the one before. A
// level has the taps from its frame's length on, up to those of the next one, so that it waits for nothing but whole
// frames.
#pragma once

#include "filters/fir/partitions.h"

namespace kels {

template <class T>
struct BehindHead {
    static constexpr int most_levels = 2, longest_head = 256;
    static constexpr int width = parts<T>;

    Partitions<T> level[most_levels];
    Kel64f* outputs[most_levels] = {};
    Kel64f bound[most_levels] = {}; ///< of the outputs' errors
    Kel64f norm_of_head = 0;
    int levels = 0;
    int position = 0;                 ///< in a frame of the last level
    double cost = 0;                  ///< of a sample without the head, by costs.h
    std::uint64_t moment = no_moment; ///< of the stream that this has come to

    int head() const { return level[0].frame; }

    /// Frames of the levels, each a multiple of the one before; 0 is none.
    template <class Taps>
    bool make(const Taps* taps, int tapsLen, const int (&frames)[most_levels], PlansByOrder<T>& plans) {
        Kel64f squares = 0;
        bool silent = true;
        for (int i = 0; i < frames[0] * width; ++i) {
            const auto tap = static_cast<Kel64f>(reals(taps)[i]);
            squares += tap * tap;
            silent &= tap == 0;
        }
        norm_of_head = silent ? 0 : std::max(std::sqrt(squares), least_size);
        for (; levels < most_levels && frames[levels] > 0; ++levels) {
            const bool last = levels + 1 == most_levels || frames[levels + 1] == 0;
            const int end = last ? tapsLen : frames[levels + 1];
            if (!level[levels].make(taps, frames[levels], end, frames[levels], plans)) return false;
        }
        return true;
    }

    /// Begins with a stream that has come to its position 0.
    template <class Stream>
    void start(const Stream& stream) {
        for (int i = 0; i < levels; ++i) {
            for (int piece = level[i].pieces; piece > 1; --piece) level[i].take(stream, -piece * level[i].frame);
            end_frame(i, stream);
        }
        position = 0;
    }

    /// Adds what comes next to the sums of some samples, no more than are left of the first level's frame.
    Kel64f add(Kel64f* sums, int count) const {
        Kel64f all = 0;
        for (int i = 0; i < levels; ++i) {
            const Kel64f* from = outputs[i] + position % level[i].frame * width;
            each(count * width, [=](auto j) { sums[j] += from[j]; });
            all += bound[i];
        }
        return all;
    }

    /// The stream has had those samples.
    template <class Stream>
    void advance(const Stream& stream, int count) {
        position += count;
        for (int i = 0; i < levels; ++i)
            if (position % level[i].frame == 0) end_frame(i, stream);
        if (position == level[levels - 1].frame) position = 0;
    }

private:
    template <class Stream>
    void end_frame(int i, const Stream& stream) {
        level[i].take(stream, -level[i].frame);
        bound[i] = level[i].sum(outputs[i]);
    }
};

} // namespace kels
