// Which elements of a long vector are divided in groups, and what a group does to them.
//
// From 32 elements on, blocks of 32 bytes are worked in groups whose elements share one reciprocal, that of the product
// of their divisors. Callers see little of it: that product has the range of extended precision, so a quotient is what
// it would be alone. They do see that an infinite divisor makes the shared reciprocal zero, unless another divisor of
// the group is a zero or a NaN: then every element of the group is divided by itself.
#pragma once

#include "frame/blocks.h"

#include <cmath>
#include <cstdint>

namespace kels {

/// Elements ahead of the grouped ones, and the grouped ones; the rest is behind them.
struct Stretch {
    Index ahead, grouped;
};

/// Where the grouped elements begin: at the first one; or at the first 32-byte boundary, where all arrays reach it with
/// the same element, and otherwise at the first one or nowhere.
enum class Begin { at_first, at_boundary_or_first, at_boundary };

template <class T, class... Arrays>
Stretch grouped_stretch(Begin begin, int len, const Arrays*... arrays) {
    constexpr int shortest = 32, boundary = 32;
    constexpr Index block = boundary / static_cast<Index>(sizeof(T));
    if (len < shortest) return {0, 0};
    const std::uintptr_t offsets[] = {reinterpret_cast<std::uintptr_t>(arrays) % boundary...};
    bool together = offsets[0] % sizeof(T) == 0;
    for (const std::uintptr_t offset : offsets) together = together && offset == offsets[0];
    if (begin == Begin::at_boundary && !together) return {0, 0};
    const bool at_first = begin == Begin::at_first || !together;
    const Index ahead = at_first ? 0 : static_cast<Index>((boundary - offsets[0]) % boundary / sizeof(T));
    return {ahead, (len - ahead) / block * block};
}

enum class Outcome { quotient, divided_by_zero, lost };

/// What becomes of element i of a vector of whole groups. A NaN counts as a zero divisor. An infinite divisor takes the
/// others of its group with it: zero times infinity is what they are. Alone in its group it has its own quotient.
template <int Group, class T>
Outcome outcome(const T* divisors, int i) {
    const auto counts_as_zero = [](T x) { return !(x < 0 || x > 0); };
    if (counts_as_zero(divisors[i])) return Outcome::divided_by_zero;
    bool others_infinite = false;
    for (int j = i / Group * Group; j < i / Group * Group + Group; ++j) {
        if (counts_as_zero(divisors[j])) return Outcome::quotient;
        if (j != i && std::isinf(divisors[j])) others_infinite = true;
    }
    return others_infinite ? Outcome::lost : Outcome::quotient;
}

} // namespace kels
