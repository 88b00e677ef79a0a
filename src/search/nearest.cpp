// The nearest entry of a sorted table.
//
// The index is the number of entries that a value passes: it passes entry i when it lies beyond the middle between i -
// 1 and i, or, where both are the same, when it reaches them; the first run of the table alone is not passed by a value
// that equals it. So a table becomes a sorted list of thresholds, and a search counts those below the value: in one
// block of lanes, and before that in the last thresholds of all blocks, and so on. Long tables, and those too long for
// the values there are, are bisected as they are.

#include "frame/calling_frame.h"
#include "frame/loop.h"
#include "frame/simd.h"
#include "kels/search.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

namespace kels {
namespace {

// Bisection

int nearest_by_bisection(int value, const Kel16u* table, int tableLen) {
    if (tableLen == 1 || value <= table[0]) return 0;
    if (value >= table[tableLen - 1]) return tableLen - 1;
    const Kel16u* below = table;
    for (int span = tableLen - 1; span > 1;) { // the span is cut alike on either side, which spares branches
        const int half = span / 2;
        const int not_above = (below[half] - value - 1) >> 31; // as bits
        below += half & not_above;
        span -= half;
    }
    const bool upper = value - below[0] > below[1] - value;
    return static_cast<int>(below - table) + upper;
}

// Counting

constexpr int block_lanes = std::max(16, max_lanes<Kel16u>);
using Block = Vec<Kel16u, block_lanes>;

constexpr Kel16u never_passed = 0xFFFF;

/// Thresholds in blocks, and above them the last threshold of each block, until one block has all. Every list ends with
/// one that is never passed.
class Thresholds {
public:
    static constexpr int longest_table = 4096;

    Thresholds(const Kel16u* table, int tableLen) {
        levels[0] = room;
        int count = tableLen - 1;
        const int first = table[0];
        each(count, [=, out = room](std::ptrdiff_t i) {
            const int a = table[i], b = table[i + 1], reached = a == b && a != first;
            out[i] = static_cast<Kel16u>((a + b) / 2 - reached);
        });
        levels[0][count++] = never_passed;
        for (pad(levels[0], count); count > block_lanes; pad(levels[depth - 1], count)) {
            levels[depth] = levels[depth - 1] + count;
            count /= block_lanes;
            for (int i = 0; i < count; ++i) levels[depth][i] = levels[depth - 1][(i + 1) * block_lanes - 1];
            ++depth;
        }
    }

    /// How many are below the value, for a search of as many steps as there are levels.
    template <int Depth>
    [[gnu::always_inline]] int passed(Kel16u value) const {
        const Block needle = splat<Block>(value);
        std::ptrdiff_t index = 0;
        for (int level = Depth - 1; level >= 0; --level) {
            index *= block_lanes;
            index += first_lane(needle <= load<Block>(levels[level] + index));
        }
        return static_cast<int>(index);
    }

    /// Calls body with the number of levels as a type.
    template <class Body>
    void with_depth(const Body& body) const {
        if (depth == 1)
            body(std::integral_constant<int, 1>{});
        else if (depth == 2)
            body(std::integral_constant<int, 2>{});
        else
            body(std::integral_constant<int, 3>{});
    }

private:
    static_assert(longest_table <= block_lanes * block_lanes * block_lanes);

    int depth = 1;
    Kel16u* levels[3];
    Kel16u room[longest_table + longest_table / 8 + 3 * block_lanes];

    static void pad(Kel16u* list, int& count) {
        for (; count % block_lanes != 0; ++count) list[count] = never_passed;
    }
};

/// Thresholds cost a small part of a search for each entry.
bool is_worth_thresholds(int tableLen, int len) {
    constexpr int entries_per_search = 64;
    return tableLen <= Thresholds::longest_table && tableLen / entries_per_search < len;
}

void find_nearest(const Kel16u* values, Kel16u* found, int* indexes, int len, const Kel16u* table, int tableLen) {
    const auto search = [=](const auto& index_of) KELS_INLINE {
        for (std::ptrdiff_t i = 0; i < len; ++i) {
            const int index = index_of(values[i]);
            indexes[i] = index;
            found[i] = table[index];
        }
    };
    if (!is_worth_thresholds(tableLen, len))
        return search([=](int value) { return nearest_by_bisection(value, table, tableLen); });
    const Thresholds thresholds(table, tableLen);
    thresholds.with_depth([&]<int Depth>(std::integral_constant<int, Depth>) {
        search([&](Kel16u value) KELS_INLINE { return thresholds.passed<Depth>(value); });
    });
}

} // namespace
} // namespace kels

using namespace kels;

KelStatus kelsFindNearestOne_16u(Kel16u value, Kel16u* pOutValue, int* pOutIndex, const Kel16u* pTable, int tblLen) {
    return vector_call({pOutValue, pOutIndex, pTable}, tblLen, [=] {
        const int index = nearest_by_bisection(value, pTable, tblLen);
        *pOutIndex = index;
        *pOutValue = pTable[index];
    });
}

KelStatus kelsFindNearest_16u(const Kel16u* pVals, Kel16u* pOutVals, int* pOutIndexes, int len, const Kel16u* pTable,
                              int tblLen) {
    return vector_call({pVals, pOutVals, pOutIndexes, pTable}, std::min(len, tblLen),
                       [=] { find_nearest(pVals, pOutVals, pOutIndexes, len, pTable, tblLen); });
}
