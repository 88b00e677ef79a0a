// Exact sums of integers, for any length.
#pragma once

#include "frame/reduction.h"
#include "frame/simd.h"

namespace kels {

/// Sums of 32-bit terms of at most 2^16, emptied into 64 bits before they overflow, after folding too.
template <int Lanes>
struct SmallTerms {
    static_assert(Lanes * steps_to_settle <= 1 << 14);
    Vec<int, Lanes> sum{};
    Kel64s total = 0;

    [[gnu::always_inline]] void add(Vec<int, Lanes> terms) { sum += terms; }
    [[gnu::always_inline]] void settle() {
        total += sum_of_lanes(sum);
        sum = Vec<int, Lanes>{};
    }
    [[gnu::always_inline]] Kel64s result() {
        settle();
        return total;
    }
};

/// Sums of unsigned 32-bit terms. A lane of 64 bits takes two of them, as one number of 64 bits, and once more the
/// upper one alone; what the first sum loses beyond 64 bits is a part of the upper terms.
template <int Lanes>
struct LargeTerms {
    using Terms = Vec<std::uint32_t, Lanes>;
    using Pairs = Vec<std::uint64_t, Lanes / 2>;
    Pairs both_terms{}, upper_terms{};

    [[gnu::always_inline]] void add(Terms terms) {
        const Pairs pairs = bits_as<Pairs>(terms);
        both_terms += pairs;
        upper_terms += pairs >> splat<Pairs>(32);
    }
    [[gnu::always_inline]] std::uint64_t result() const {
        const Pairs lower_terms = both_terms - (upper_terms << splat<Pairs>(32));
        return sum_of_lanes(lower_terms + upper_terms);
    }
};

/// Sums of terms from -2^31 + 1 to 2^31, the last of which has wrapped to -2^31.
template <int Lanes>
struct SignedTerms {
    static constexpr std::uint32_t bias = 0x7FFFFFFF;
    LargeTerms<Lanes> biased;
    std::uint64_t added = 0;

    [[gnu::always_inline]] void add(Vec<int, Lanes> terms) {
        using Terms = Vec<std::uint32_t, Lanes>;
        biased.add(bits_as<Terms>(terms) + splat<Terms>(bias));
        added += Lanes;
    }
    [[gnu::always_inline]] Kel64s result() const { return static_cast<Kel64s>(biased.result() - bias * added); }
};

} // namespace kels
