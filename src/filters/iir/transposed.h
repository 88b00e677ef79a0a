// Filters of any order, in the transposed direct form II.
//
//     y = b0 x + d[0],   d[i] = b[i+1] x - a[i+1] y + d[i+1],   d[order-1] = b[order] x - a[order] y
//
// The rule of the taps says what a term is and what a register d keeps of its sum: it is stored once for a pair of
// samples in a block, else once a sample. From order 2 on a block takes pairs.
#pragma once

#include "filters/iir/look_ahead.h"
#include "filters/iir/rules.h"

namespace kels {

/// The elements that an engine computes with: doubles for real taps, words of 64 bits for integers.
template <class Taps>
using ElementFor = std::conditional_t<std::is_integral_v<Part<Taps>>, Word64, Kel64f>;

/// The engine for taps of one type. Numbers lie in planes padded to whole chunks of registers, zeros behind.
template <class Taps>
class TransposedForm {
public:
    using Tap = Taps;
    using Element = ElementFor<Taps>;
    static constexpr bool complex = parts<Taps> == 2;
    static constexpr int least_size = 0;

    /// For an order; false for want of memory.
    bool allocate(int order);
    /// Tap i of b[0] to b[order], a[1] to a[order], divided by a[0].
    void put_tap(std::ptrdiff_t i, const Taps& tap);
    void set_taps_factor(int factor) { taps_factor_ = factor; }

    void get_state(Taps* out) const;
    /// Null for silence.
    void set_state(const Taps* state);
    /// When all taps are there.
    void prepare();

    /// Filters `count` numbers, in place too.
    void run(const Element* in, Element* out, std::ptrdiff_t count, int scaleFactor);
    /// Filters one.
    void run_one(const Element* in, Element* out, int scaleFactor);

private:
    using Value = Number<Element, complex>;
    using Numbers = Plane<Element, complex>;
    static constexpr bool fixed = std::is_integral_v<Part<Taps>>;
    static constexpr bool looks_ahead = std::is_same_v<Part<Taps>, Kel64f>;
    static constexpr int chunk = 8;

    void rescale(int scaleFactor);
    bool is_calm() const;
    void run_ahead(const Kel64f* in, Kel64f* out, std::ptrdiff_t blocks);
    template <class Rule>
    Value step(const Rule& rule, Value x);
    template <class Rule>
    void run(const Rule& rule, const Element* in, Element* out, std::ptrdiff_t count);
    template <class Rule>
    void run_single(const Rule& rule, const Element* in, Element* out, std::ptrdiff_t count);
    template <int Order, class Rule>
    void run_few(const Rule& rule, const Element* in, Element* out, std::ptrdiff_t pairs);
    template <int Chunks, class Rule>
    void run_pairs(const Rule& rule, const Element* in, Element* out, std::ptrdiff_t pairs);

    int order_ = 0;
    int taps_factor_ = 0; ///< of integer taps
    std::ptrdiff_t chunks_ = 0;
    Owned<Element> memory_;
    Numbers b_, a_, d_;
    TransposedAhead ahead_; ///< of doubles
    bool ahead_serves_ = false;
};

} // namespace kels
