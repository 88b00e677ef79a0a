// Recursions of doubles, eight at a time: that many samples, or half as many complex ones. What a block's samples and
// the state before it add to its results and to the state behind it are constants of the filter. Multiplied by those,
// no result waits for the one before; only the state goes from block to block.
//
// A filter is prepared for that if its poles lie inside the unit circle and its constants make no more of a rounding
// than eight samples of the recursion do, so that the recursion's bound holds: of many poles close together they are
// far larger than the sums that they make. They would turn an infinity or a NaN into NaNs of the whole block, and
// overflow where sums are large. Other filters, and blocks that are not calm, go through the recursion.
#pragma once

#include "filters/iir/numbers.h"

#include <algorithm>

namespace kels {

namespace look_ahead {

inline constexpr int block = 8;
using Block = Vec<Kel64f, block>;

/// No sum of a prepared filter overflows: all magnitudes are below 2^500, and numbers.
bool calm(const Kel64f* x, std::ptrdiff_t count);

} // namespace look_ahead

/// Runs `ahead(in, out, blocks)` over whole blocks of calm stretches, `recursion(in, out, count)` over what is left;
/// `count` numbers of one part or two.
template <int Parts, class CalmState, class Ahead, class Recursion>
void in_calm_blocks(const Kel64f* in, Kel64f* out, std::ptrdiff_t count, bool serves, const CalmState& calm_state,
                    const Ahead& ahead, const Recursion& recursion) {
    using namespace look_ahead;
    constexpr std::ptrdiff_t stretch = 1024, numbers = block / Parts;
    while (count > 0) {
        std::ptrdiff_t some = std::min(count, stretch);
        const std::ptrdiff_t blocks = some / numbers;
        if (serves && blocks > 0 && calm(in, blocks * block) && calm_state()) {
            some = blocks * numbers;
            ahead(in, out, blocks);
        } else {
            recursion(in, out, some);
        }
        in += Parts * some;
        out += Parts * some;
        count -= some;
    }
}

/// One section with a gain before it.
class SectionAhead {
public:
    /// False if that is not safe.
    bool prepare(Kel64f gain, Kel64f c1, Kel64f c2, Kel64f c3, Kel64f c4);
    /// Filters whole blocks; the state moves on.
    void run(const Kel64f* in, Kel64f* out, std::ptrdiff_t blocks, Kel64f* w1, Kel64f* w2) const;

private:
    static constexpr int block = look_ahead::block;
    Kel64f of_sample_[block][block]; ///< what each sample adds to every w of its block
    Kel64f of_w1_[block], of_w2_[block];
    Kel64f c3_, c4_;
};

/// A filter in the transposed direct form II. What one double adds to another is a constant in complex filters too:
/// their numbers stand with both parts side by side, in blocks and in registers.
class TransposedAhead {
public:
    static constexpr int block = look_ahead::block;
    static constexpr int most = 32; ///< doubles in registers

    static bool serves(std::int64_t doubles) { return doubles >= 1 && doubles <= most; }
    /// For registers of so many doubles; false for want of memory.
    bool allocate(int doubles);
    /// Takes b[0] to b[order] and a[1] to a[order]. False if that is not safe.
    template <bool complex>
    bool prepare(const Plane<Kel64f, complex>& b, const Plane<Kel64f, complex>& a);
    /// Filters whole blocks; the state, zeros behind it up to one block more than its own, moves on.
    void run(const Kel64f* in, Kel64f* out, std::ptrdiff_t blocks, Kel64f* state) const;

private:
    Kel64f* column(int i) const { return columns_.get() + i * rows_; }
    template <class N>
    bool as_exact_as_the_recursion(const N* b, const N* a) const;
    template <int Chunks, int Columns>
    void run_chunks(const Kel64f* in, Kel64f* out, std::ptrdiff_t blocks, Kel64f* state) const;

    int doubles_ = 0, rows_ = 0;
    /// What each double of a block, then each of the first registers, adds to the results and to the registers behind.
    Owned<Kel64f> columns_;
};

} // namespace kels
