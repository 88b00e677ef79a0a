// Element-wise functions and reductions: the rows of their tests with lengths, values and places of the input's choice.

#include "fuzz/sequence.h"

namespace {

using namespace kels_test;

void drive_rows(Input& in) {
    static const std::vector<const Row*> rows = all_rows();
    const Row& row = *rows[static_cast<std::size_t>(in.below(static_cast<int>(rows.size())))];
    for (int calls = 0; calls == 0 || (in.more() && calls < 4); ++calls) {
        const int len = in.length(6000), k = in.below(64);
        Random random = in.random();
        try_row(row, len, k, random);
    }
}

const bool added = add_target("rows", {drive_rows});

} // namespace
