// The integer sequence behind all noise: a subtract-with-borrow generator on the modulus 2^32 - 18, plus a linear
// congruential one modulo 2^32.
//
// The first is serial, two additions and a shift from one borrow to the next, and runs ahead through a buffer; the
// second jumps ahead, as many draws at once as it has lanes.
#pragma once

#include "frame/numeric.h"
#include "frame/simd.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace kels {

/// The draws behind one another in a buffer.
inline constexpr int block_of_draws = 256;

struct Draws {
    alignas(64) std::int32_t value[block_of_draws];
};

class DrawGenerator {
public:
    explicit DrawGenerator(std::uint32_t seed) : x0(seed), x1(next(x0)), x2(next(x1)) {}

    /// The newest value of the subtract-with-borrow sequence: all that a seed keeps.
    std::uint32_t newest() const { return x0; }

    /// The next n draws, as many as a block has at most.
    void draw(Draws& draws, int n) {
        subtract_with_borrow(draws, n);
        add_congruential(draws, n);
    }

private:
    static constexpr std::uint32_t factor = 69069, term = 1013904243;
    static constexpr std::uint32_t next(std::uint32_t x) { return x * factor + term; }

    std::uint32_t congruential = 1131199209;
    std::uint32_t x0, x1, x2; // the newest value and those before it
    std::uint32_t borrow = ~0U;

    void subtract_with_borrow(Draws& draws, int n) {
        std::uint32_t a = x0, b = x1, c = x2, all_ones_if_negative = borrow;
        for (int i = 0; i < n; ++i) {
            const std::uint32_t t = b - c + all_ones_if_negative;
            all_ones_if_negative = static_cast<std::uint32_t>(static_cast<std::int32_t>(t) >> 31);
            c = b;
            b = a;
            a = t - (all_ones_if_negative & 18);
            draws.value[i] = static_cast<std::int32_t>(a);
        }
        x0 = a;
        x1 = b;
        x2 = c;
        borrow = all_ones_if_negative;
    }

    static constexpr int together = 16;

    /// The factors and terms of 1, 2 ... steps.
    struct Jumps {
        alignas(64) std::uint32_t factors[together], terms[together];
    };
    static constexpr Jumps jumps = [] {
        Jumps all{};
        std::uint32_t f = 1, t = 0;
        for (int i = 0; i < together; ++i) {
            f *= factor;
            t = t * factor + term;
            all.factors[i] = f;
            all.terms[i] = t;
        }
        return all;
    }();

    void add_congruential(Draws& draws, int n) {
        using V = Vec<std::uint32_t, together>;
        const V jump = splat<V>(jumps.factors[together - 1]), step = splat<V>(jumps.terms[together - 1]);
        V x = splat<V>(congruential) * load<V>(jumps.factors) + load<V>(jumps.terms);
        for (int i = 0; i < n; i += together) { // beyond n, what is there does not count
            store(draws.value + i, load<V>(draws.value + i) + x);
            x = x * jump + step;
        }
        congruential = static_cast<std::uint32_t>(draws.value[n - 1]) - x0;
    }
};

} // namespace kels
