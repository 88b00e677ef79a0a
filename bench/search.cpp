// Nearest entries of a table, beside the C++ library's binary search; a stage of the trellis, beside a loop of its
// rule; running estimates.
#include "data.h"
#include "harness.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace bench {
namespace {

Array<Kel16u> sorted_table(int length) {
    Array<Kel16u> table = noise<Kel16u>(std::size_t(length));
    std::sort(table.get(), table.get() + length);
    return table;
}

void by_lower_bound(const Kel16u* values, Kel16u* found, int* indexes, int n, const Kel16u* table, int length) {
    for (int i = 0; i < n; ++i) {
        auto at = std::lower_bound(table, table + length, values[i]) - table;
        if (at == length || (at > 0 && values[i] - table[at - 1] <= table[at] - values[i])) --at;
        at = std::max<std::ptrdiff_t>(at, 0);
        indexes[i] = int(at);
        found[i] = table[at];
    }
}

template <class Call>
void nearest(const std::string& who, Call call) {
    for (const int values : {64, 4096})
        for (const int length : {16, 256, 1024, 4096, 20000}) {
            const std::string table = "kelsFindNearest_16u of " + std::to_string(values) + " values";
            contend({"search", table, std::to_string(length), double(values), 8.0 * values, "GB/s"}, who, [=] {
                return [=, x = noise<Kel16u>(std::size_t(values)), found = zeros<Kel16u>(std::size_t(values)),
                        indexes = zeros<int>(std::size_t(values)), entries = sorted_table(length)] {
                    call(x.get(), found.get(), indexes.get(), values, entries.get(), length);
                };
            });
        }
}

/// The stages of a block, each with metrics of its own, so that no predictor learns them.
struct Trellis {
    static constexpr int stages = 256;
    int states, branches;
    std::vector<Kel8u> next;
    std::vector<Kel16u> symbols, error, fresh;
    std::vector<Kel32u> path;

    explicit Trellis(int n) : states(n), branches(n == 16 ? 4 : n == 32 ? 8 : 16) {
        std::mt19937 random(1);
        for (int s = 0; s < n; ++s)
            for (int k = 0; k < branches; ++k) next.push_back(Kel8u((s * 5 + k * 7 + k / 4) % n));
        for (int i = 0; i < stages * 4 * branches; ++i) symbols.push_back(Kel16u(random() % 4096));
        for (int s = 0; s < n; ++s) error.push_back(Kel16u(random() % 4096));
        fresh.resize(std::size_t(n));
        path.resize(std::size_t(n) * stages);
    }

    template <class Step>
    void run(Step step) {
        for (int stage = 0; stage < stages; ++stage) {
            std::fill(fresh.begin(), fresh.end(), Kel16u(32767));
            step(error.data(), next.data(), fresh.data(), symbols.data() + std::ptrdiff_t{stage} * 4 * branches,
                 path.data(), states, stage * states);
            const Kel16u least = *std::min_element(fresh.begin(), fresh.end());
            for (std::size_t s = 0; s < fresh.size(); ++s) error[s] = Kel16u(fresh[s] - least);
        }
    }
};

void by_the_rule(const Kel16u* error, const Kel8u* next, Kel16u* fresh, const Kel16u* symbols, Kel32u* path, int states,
                 int index) {
    const int branches = states == 16 ? 4 : states == 32 ? 8 : 16;
    for (int s = 0; s < states; ++s)
        for (int k = 0; k < branches; ++k) {
            const int n = *next++;
            const Kel16u* symbol = symbols + 2 * (2 * k + (s & 1));
            const int total = error[s] + Kel16s(symbol[1]);
            if (total < fresh[n]) {
                fresh[n] = Kel16u(total);
                path[index + n] = symbol[0] | Kel32u(s) << 16;
            }
        }
}

template <class Step>
void trellis(const std::string& who, Step step) {
    for (const int states : {16, 32, 64})
        contend({"search", "kelsCalcStatesDV_16sc, 256 stages", std::to_string(states) + " states",
                 double(Trellis::stages), 4.0 * states * Trellis::stages, "GB/s"},
                who, [=] { return [=, data = Trellis(states)]() mutable { data.run(step); }; });
}

template <class Call>
void estimate(const std::string& function, Call call) {
    constexpr int samples = 4096;
    for (const int alpha : {-1, 2})
        contend({"search", function, "alpha " + std::to_string(alpha), double(samples), 2.0 * samples, "GB/s"}, ours,
                [=] {
                    return [=, x = zeros<Kel16s>(samples)] { // silence is in balance with an estimate of 0
                        Kel32s y = 0;
                        call(x.get(), samples, &y, 3, Kel16s(alpha));
                        benchmark::DoNotOptimize(y);
                    };
                });
}

const Registration search([] {
    nearest(ours, kelsFindNearest_16u);
    nearest("lower_bound", by_lower_bound);
    trellis(ours, kelsCalcStatesDV_16sc);
    trellis("loop", by_the_rule);
    estimate("kelsUpdateLinear_16s32s_I", kelsUpdateLinear_16s32s_I);
    estimate("kelsUpdatePower_16s32s_I", kelsUpdatePower_16s32s_I);
});

} // namespace
} // namespace bench
