// A kit for Viterbi decoding of four-dimensional trellis codes with 16, 32 or 64 states. All of it is integer
// arithmetic.

#include "frame/calling_frame.h"
#include "frame/simd.h"
#include "kels/search.h"

#include <cstddef>
#include <cstdint>
#include <utility>

namespace kels {
namespace {

// The sizes of a code

constexpr int known_states(int state) { return state == 16 || state == 32 ? state : 64; }
constexpr int branches(int states) { return states / 4 < 16 ? states / 4 : 16; }
constexpr int symbols(int states) { return states / 2; }

// Points around a received one

constexpr int grid_step = 256;

/// The tile of labels, repeated over the plane.
struct Labels {
    const Kel8u* tile;
    int mask;

    int at(int column, int row) const { return tile[(column & 3) + 4 * (row & 3)] & mask; }
};

struct Candidate {
    int distance, code;
    Kel32u word() const { return static_cast<Kel32u>(distance) | static_cast<Kel32u>(code) << 16; }
};

/// The second one if they are equally near.
Candidate nearer(Candidate first, Candidate second) { return first.distance < second.distance ? first : second; }

constexpr int scaled_square(int x) { return x * x >> 4; }

void find_variants(Kel16sc sample, Kel16sc* reference, Kel32u* variants, const Kel8u* tile, int state) {
    constexpr int half = grid_step / 2;
    const int dx = (sample.re & (grid_step - 1)) ^ half, dy = (sample.im & (grid_step - 1)) ^ half;
    const int x0 = sample.re - dx, y0 = sample.im - dy;
    *reference = {static_cast<Kel16s>(x0), static_cast<Kel16s>(y0)};

    const Labels label{tile, state == 16 ? 3 : 7};
    const int c = ((x0 - half) >> 8) + 2, r = ((y0 - half) >> 8) + 2; // the tile starts two steps off the origin
    const int A = scaled_square(dx), C = scaled_square(grid_step - dx), E = scaled_square(grid_step + dx),
              G = scaled_square(2 * grid_step - dx);
    const int B = scaled_square(dy), D = scaled_square(grid_step - dy), F = scaled_square(grid_step + dy),
              H = scaled_square(2 * grid_step - dy);
    variants[label.at(c, r)] = Candidate{A + B, 0}.word();
    variants[label.at(c + 1, r)] = Candidate{C + B, 1}.word();
    variants[label.at(c + 1, r + 1)] = Candidate{C + D, 2}.word();
    variants[label.at(c, r + 1)] = Candidate{A + D, 3}.word();
    if (state == 16) return;
    variants[label.at(c, r + 2)] = nearer({A + H, 4}, {B + G, 8}).word();
    variants[label.at(c + 1, r + 2)] = nearer({C + H, 5}, {B + E, 9}).word();
    variants[label.at(c + 1, r - 1)] = nearer({G + D, 6}, {A + F, 10}).word();
    variants[label.at(c, r - 1)] = nearer({C + F, 7}, {D + E, 11}).word();
}

// Pairs of labels, one for each point

/// Best pair so far of one subset.
class BestPair {
public:
    explicit BestPair(const Kel32u* both_points) : words(both_points) {}

    void consider(int a, int b) {
        const Kel32u first = words[a], second = words[8 + b], sum = (first & 0xFFFF) + (second & 0xFFFF);
        if (sum >= least) return;
        least = sum;
        codes = (first >> 16 & 0xFF) | second >> 16 << 8;
    }

    /// Label k >> 2 of the first point with the one of the second that the subset has for it, and the pair opposite.
    void consider_opposite(int k, int labels) {
        const int a = k >> 2, b = (k + a) & 3, half = labels / 2;
        consider(a, b);
        consider((a + half) & (labels - 1), (b + half) & (labels - 1));
    }

    void put(Kel16u* symbol) const {
        symbol[0] = static_cast<Kel16u>(codes);
        symbol[1] = static_cast<Kel16u>(least);
    }

private:
    const Kel32u* words;
    Kel32u least = UINT32_MAX, codes = 0;
};

void build_symbols(const Kel32u* variants, Kel16u* symbol, int state, int inversion) {
    const int states = known_states(state), count = symbols(states);
    inversion &= count - 1;
    for (int i = 0; i < count; ++i, symbol += 2) {
        BestPair best(variants);
        const int j = i ^ inversion;
        if (states == 16) {
            best.consider_opposite(j, 4);
        } else if (states == 32) {
            const int k = j + (i & 8) * 2;
            best.consider_opposite(k ^ 8, 8);
            best.consider_opposite(k, 8);
        } else {
            best.consider_opposite(j, 8);
        }
        best.put(symbol);
    }
}

// A stage of the trellis

struct Stage {
    const Kel16u* path_error;
    const Kel8u* next_state;
    Kel16u* new_error;
    const Kel16u* symbols;
    Kel32u* path;
};

/// The rule as it stands, for tables that the other way does not take.
template <int States>
void step_one_by_one(const Stage& stage) {
    const Kel8u* next = stage.next_state;
    for (int s = 0; s < States; ++s)
        for (int k = 0; k < branches(States); ++k) {
            const int n = *next++;
            const Kel16u* symbol = stage.symbols + 2 * (2 * k + (s & 1));
            const int total = stage.path_error[s] + static_cast<Kel16s>(symbol[1]);
            if (total >= stage.new_error[n]) continue;
            stage.new_error[n] = static_cast<Kel16u>(total);
            stage.path[n] = symbol[0] | static_cast<Kel32u>(s) << 16;
        }
}

/// Whether every successor is a state, and no total negative, so that it stays as it is in 16 bits.
template <int States>
bool is_plain(const Stage& stage) {
    Kel8u successors = 0;
    for (int i = 0; i < States * branches(States); ++i) successors |= stage.next_state[i];
    Kel16u metrics = 0;
    for (int i = 0; i < 2 * branches(States); ++i) metrics |= stage.symbols[2 * i + 1];
    return successors < States && metrics < 0x8000;
}

/// Totals and the order of the branches in one number, the total above: what is selected is the least one, without a
/// branch of the program. Whoever holds the place has order 0, and so keeps it against an equal total.
template <int States>
void step(const Stage& stage) {
    if (!is_plain<States>(stage)) return step_one_by_one<States>(stage);
    constexpr int count = branches(States), order_bits = 11;
    static_assert(States * count < 1 << order_bits);
    Kel32u least[States], increment[2][count];
    for (int n = 0; n < States; ++n) least[n] = static_cast<Kel32u>(stage.new_error[n]) << order_bits;
    for (int odd = 0; odd < 2; ++odd)
        for (int k = 0; k < count; ++k)
            increment[odd][k] =
                (static_cast<Kel32u>(stage.symbols[2 * (2 * k + odd) + 1]) << order_bits) + static_cast<Kel32u>(k + 1);

    const Kel8u* next = stage.next_state;
    for (int s = 0; s < States; ++s, next += count) {
        const auto base = (static_cast<Kel32u>(stage.path_error[s]) << order_bits) + static_cast<Kel32u>(s * count);
        unrolled<count>([&](auto k) KELS_INLINE {
            const Kel32u candidate = base + increment[s & 1][k];
            Kel32u& holder = least[next[k]];
            holder = candidate < holder ? candidate : holder;
        });
    }

    for (int n = 0; n < States; ++n) {
        const Kel32u order = least[n] & ((1U << order_bits) - 1);
        if (order == 0) continue;
        const Kel32u s = (order - 1) / count, k = (order - 1) % count;
        stage.new_error[n] = static_cast<Kel16u>(least[n] >> order_bits);
        stage.path[n] = stage.symbols[2 * (2 * k + (s & 1))] | s << 16;
    }
}

void calculate_states(const Stage& stage, int state) {
    if (state < 1) return;
    switch (known_states(state)) {
    case 16:
        return step<16>(stage);
    case 32:
        return step<32>(stage);
    default:
        return step<64>(stage);
    }
}

KelStatus checked(Pointers arguments, auto&& kernel) {
    return vector_call(arguments, 1, std::forward<decltype(kernel)>(kernel));
}

} // namespace
} // namespace kels

using namespace kels;

KelStatus kelsGetVarPointDV_16sc(const Kel16sc* pSrc, Kel16sc* pDst, Kel32u* pVariantPoint, const Kel8u* pLabel,
                                 int state) {
    return checked({pSrc, pDst, pVariantPoint, pLabel},
                   [=] { find_variants(*pSrc, pDst, pVariantPoint, pLabel, state); });
}

KelStatus kelsBuildSymblTableDV4D_16sc(const Kel32u* pVariantPoint, Kel16u* pSymbols, int state, int bitInversion) {
    return checked({pVariantPoint, pSymbols}, [=] { build_symbols(pVariantPoint, pSymbols, state, bitInversion); });
}

KelStatus kelsCalcStatesDV_16sc(const Kel16u* pPathError, const Kel8u* pNextState, Kel16u* pNewError,
                                const Kel16u* pSymbols, Kel32u* pPathTable, int state, int presentIndex) {
    return checked({pPathError, pNextState, pNewError, pSymbols, pPathTable}, [=] {
        calculate_states({pPathError, pNextState, pNewError, pSymbols, pPathTable + std::ptrdiff_t{presentIndex}},
                         state);
    });
}
