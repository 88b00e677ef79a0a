// The nearest entry of a table, held against the bisection that defines it.

#include "kels/search.h"
#include "support/guarded_array.h"
#include "support/random_data.h"
#include "support/refusals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <vector>

namespace {

using namespace kels_test;

int reference(int value, const std::vector<Kel16u>& table) {
    const int last = static_cast<int>(table.size()) - 1;
    const auto entry = [&](int i) { return int{table[static_cast<std::size_t>(i)]}; };
    if (last == 0 || value <= entry(0)) return 0;
    if (value >= entry(last)) return last;
    int base = 0, span = last;
    while (span > 1) {
        const int half = span >> 1;
        if (value < entry(base + half)) {
            span = half;
        } else {
            base += half;
            span -= half;
        }
    }
    return value - entry(base) > entry(base + 1) - value ? base + 1 : base;
}

/// A sorted table of `n` entries below `range`, from `low` on: in a small range with long runs of equal ones.
std::vector<Kel16u> table_of(Random& random, int n, int low, int range) {
    std::vector<Kel16u> table(static_cast<std::size_t>(n));
    for (Kel16u& entry : table) entry = static_cast<Kel16u>(low + random.below(range));
    std::sort(table.begin(), table.end());
    return table;
}

/// Of all values, in place too, and of some by themselves; arrays lie at an edge of a page.
void expect_all(const std::vector<Kel16u>& values, const std::vector<Kel16u>& table, Edge edge = Edge::back) {
    const GuardedArray<Kel16u> entries(table, edge);
    GuardedArray<Kel16u> x(values, edge), found(values.size(), edge);
    GuardedArray<int> indexes(values.size(), edge);
    const int n = static_cast<int>(values.size()), tableLen = static_cast<int>(table.size());
    for (Kel16u* const to : {found.data(), x.data()})
        ASSERT_EQ(kelsFindNearest_16u(x.data(), to, indexes.data(), n, entries.data(), tableLen), kelStatusOk);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const int wanted = reference(values[i], table);
        ASSERT_EQ(indexes.data()[i], wanted) << values[i] << " in " << table.size();
        ASSERT_EQ(found.data()[i], table[static_cast<std::size_t>(wanted)]);
        ASSERT_EQ(x.data()[i], found.data()[i]) << "in place";
    }
    for (std::size_t i = 0; i < values.size(); i += 1 + values.size() / 100) {
        Kel16u one = 0;
        int index = -1;
        ASSERT_EQ(kelsFindNearestOne_16u(values[i], &one, &index, entries.data(), tableLen), kelStatusOk);
        ASSERT_EQ(index, indexes.data()[i]) << values[i] << " in " << table.size();
        ASSERT_EQ(one, found.data()[i]);
    }
}

// Lengths of tables on either side of a block and of the number of levels; ranges from all equal to all distinct.
TEST(NearestEntry, IsThatOfTheBisection) {
    Random random("tables");
    std::vector<Kel16u> every(65536);
    for (std::size_t v = 0; v < every.size(); ++v) every[v] = static_cast<Kel16u>(v);
    for (const int n : {1,   2,   3,   4,   5,   8,    15,   16,   17,   18,   31,   32,   33,   34,   64,
                        100, 255, 256, 257, 258, 1023, 1024, 1025, 1026, 4094, 4095, 4096, 4097, 5000, 70000})
        for (const int range : {1, 2, 3, 9, 100, 1000, 65536}) {
            for (const int low : {0, 32760, 65536 - range}) {
                const auto table = table_of(random, n, std::min(low, 65536 - range), range);
                expect_all(every, table);
            }
        }
}

// Few values in a long table, and a stream that the table's own entries and middles make up.
TEST(NearestEntry, OfAnyNumberOfValues) {
    Random random("values");
    for (const int n : {1, 2, 20, 130, 700, 4096})
        for (const int len : {1, 2, 3, 7, 8, 63, 64, 65}) {
            const auto table = table_of(random, n, 0, 65536);
            std::vector<Kel16u> values(static_cast<std::size_t>(len));
            for (Kel16u& v : values) {
                const auto i = static_cast<std::size_t>(random.below(n));
                const int middle = (table[i] + table[std::min(i + 1, table.size() - 1)]) / 2;
                v = static_cast<Kel16u>(std::clamp(middle + random.below(3) - 1, 0, 65535));
            }
            for (const Edge edge : edges) expect_all(values, table, edge);
        }
}

TEST(NearestEntry, ObeysItsFrame) {
    Kel16u value = 3, found = 9;
    int index = 9;
    const Kel16u table[] = {1, 2};
    expect_nulls_refused(kelsFindNearestOne_16u, 3, &found, &index, table, 0);
    expect_nulls_refused(kelsFindNearest_16u, &value, &found, &index, 0, table, 0);
    EXPECT_EQ(kelsFindNearestOne_16u(3, &found, &index, table, 0), kelStatusBadSize);
    EXPECT_EQ(kelsFindNearest_16u(&value, &found, &index, 0, table, 2), kelStatusBadSize);
    EXPECT_EQ(kelsFindNearest_16u(&value, &found, &index, 1, table, 0), kelStatusBadSize);
    EXPECT_EQ(kelsFindNearest_16u(&value, &found, &index, INT_MIN, table, INT_MAX), kelStatusBadSize);
    EXPECT_TRUE(found == 9 && index == 9);
}

// What is found in an unsorted table is open, where it is read is not.
TEST(NearestEntry, StaysInUnsortedTables) {
    Random random("guards");
    for (const Edge edge : edges)
        for (const int n : {1, 2, 16, 17, 33, 256, 257, 1000, 5000}) {
            std::vector<Kel16u> table(static_cast<std::size_t>(n)), values(65);
            fill_random(random, type_of<Kel16u>(), table.data(), table.size());
            fill_random(random, type_of<Kel16u>(), values.data(), values.size());
            const GuardedArray<Kel16u> entries(table, edge);
            std::vector<int> indexes(values.size());
            ASSERT_TRUE(runs_without_fault(
                [&] { kelsFindNearest_16u(values.data(), values.data(), indexes.data(), 65, entries.data(), n); }));
            for (const int index : indexes) ASSERT_TRUE(index >= 0 && index < n);
        }
}

} // namespace
