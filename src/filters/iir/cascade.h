// Cascades of second-order sections in direct form II behind one gain.
//
//     t = G x, then for each section:   w = t - c1 w1 - c2 w2,   t = w + c3 w1 + c4 w2,   w2 = w1,   w1 = w
//
// Of real taps everything is double but the state w1, w2, which is rounded to the taps' type where it is stored: once
// for a pair of samples in a block, else once a sample. Of integer taps it is limited to 32 bits after every sample.
#pragma once

#include "filters/iir/transposed.h"

namespace kels {

/// The engine for taps of one type. Sections stand in groups of up to eight, one a lane, the last of a group first.
template <class Taps>
class Cascade {
public:
    using Tap = Taps;
    using Element = ElementFor<Taps>;
    static constexpr bool complex = parts<Taps> == 2;
    static constexpr int least_size = 1;

    /// For a number of sections; false for want of memory.
    bool allocate(int sections);
    /// The gain, then c1 to c4 of each section.
    void put_tap(std::ptrdiff_t i, const Taps& tap);
    void set_taps_factor(int factor) { taps_factor_ = factor; }

    int state_size() const { return 2 * sections_; }
    void get_state(Taps* out) const;
    /// Null for silence.
    void set_state(const Taps* state);
    /// When all taps are there.
    void prepare();

    /// Filters `count` numbers, in place too.
    void run(const Element* in, Element* out, std::ptrdiff_t count, int scaleFactor);
    /// Filters one.
    void run_one(const Element* in, Element* out, int scaleFactor) { run(in, out, 1, scaleFactor); }

private:
    using Value = Number<Element, complex>;
    using Numbers = Plane<Element, complex>;
    static constexpr bool fixed = std::is_integral_v<Part<Taps>>;
    static constexpr bool looks_ahead = std::is_same_v<Taps, Kel64f>;
    static constexpr int most_ahead = 2; ///< sections one after the other; more are faster side by side
    static constexpr int group = 8;

    int sections_of(std::ptrdiff_t first) const;
    std::ptrdiff_t lane_of(std::ptrdiff_t section) const;
    void run_ahead(const Kel64f* in, Kel64f* out, std::ptrdiff_t blocks);
    template <class Rule>
    Value step(const Rule& rule, Value x);
    template <class Rule>
    void run(const Rule& rule, const Element* in, Element* out, std::ptrdiff_t count);
    template <int Lanes, class Rule>
    void run_group(const Rule& rule, std::ptrdiff_t first, const Element* in, Element* out, std::ptrdiff_t turns);

    int sections_ = 0;
    int taps_factor_ = 0; ///< of integer taps
    Owned<Element> memory_;
    Value gain_{};
    Numbers c_[4]; ///< c1 to c4
    Numbers w_[2];
    SectionAhead ahead_[looks_ahead ? most_ahead : 1]; ///< of doubles
    bool ahead_serves_ = false;
};

} // namespace kels
