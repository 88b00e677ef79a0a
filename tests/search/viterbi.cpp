// The kit for trellis codes, held against its rules: distances from positions, pairs listed one by one, branches taken
// one after the other.

#include "kels/search.h"
#include "support/guarded_array.h"
#include "support/random_data.h"
#include "support/refusals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

using namespace kels_test;

// Points around a received one

struct Place {
    int column, row;
};

/// Where the candidates lie, by their codes, and the place whose label they stand for.
constexpr Place positions[] = {{0, 0}, {1, 0},  {1, 1}, {0, 1},  {0, 2},  {1, 2},
                               {2, 1}, {1, -1}, {2, 0}, {-1, 0}, {0, -1}, {-1, 1}};
constexpr Place labelled[] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}, {0, 2}, {1, 2}, {1, -1}, {0, -1}};

Place reference_point(Kel16sc z) {
    const auto below = [](int x) { return ((x - 128) & ~255) + 128; };
    return {below(z.re), below(z.im)};
}

void expected_variants(Kel16sc z, Kel32u* words, const Kel8u* tile, int state) {
    const Place origin = reference_point(z);
    const auto distance = [&](int code) {
        const int dx = origin.column + 256 * positions[code].column - z.re;
        const int dy = origin.row + 256 * positions[code].row - z.im;
        return dx * dx / 16 + dy * dy / 16;
    };
    const int column = (origin.column - 128) / 256 + 1000,
              row = (origin.row - 128) / 256 + 1000; // 1000: a multiple of 4
    for (int code = 0; code < (state == 16 ? 4 : 8); ++code) {
        int best = code;
        if (code >= 4 && distance(code + 4) <= distance(code)) best = code + 4;
        const int c = (column + labelled[code].column + 258) % 4, r = (row + labelled[code].row + 258) % 4;
        words[tile[c + 4 * r] & (state == 16 ? 3 : 7)] =
            static_cast<Kel32u>(distance(best)) + (static_cast<Kel32u>(best) << 16);
    }
}

TEST(VariantPoints, OfEveryCoordinate) {
    Random random("points");
    for (const int state : {16, 32, 64, 0, -1, 17})
        for (int round = 0; round < 3; ++round) {
            Kel8u tile[16];
            for (Kel8u& label : tile) label = static_cast<Kel8u>(random.bits());
            for (int re = -32768; re < 32768; re += round == 0 ? 1 : 5) {
                const Kel16sc z = {static_cast<Kel16s>(re), static_cast<Kel16s>(random.bits())};
                Kel32u got[8], want[8];
                std::fill_n(got, 8, 0xDEADBEEF);
                std::fill_n(want, 8, 0xDEADBEEF);
                Kel16sc point = z; // the reference point may replace the sample
                ASSERT_EQ(kelsGetVarPointDV_16sc(&point, &point, got, tile, state), kelStatusOk);
                expected_variants(z, want, tile, state);
                const Place origin = reference_point(z);
                ASSERT_EQ(point.re, static_cast<Kel16s>(origin.column)) << re;
                ASSERT_EQ(point.im, static_cast<Kel16s>(origin.row)) << z.im;
                ASSERT_EQ(std::memcmp(got, want, sizeof got), 0) << z.re << ' ' << z.im << " state " << state;
            }
        }
}

/// Labels of a four-dimensional code: those of places two columns and two rows apart agree.
constexpr Kel8u usual_tile[16] = {0, 1, 4, 5, 3, 2, 7, 6, 4, 5, 0, 1, 7, 6, 3, 2};

// Symbols

struct Pair {
    int first, second;
};

std::vector<Pair> pairs_of(int i, int state, int inversion) {
    if (state == 16) {
        const int j = i ^ inversion, a = j / 4, b = (j + a) % 4;
        return {{a, b}, {(a + 2) % 4, (b + 2) % 4}};
    }
    std::vector<Pair> pairs;
    const auto add = [&](int j) {
        const int a = j / 4, b = (j + a) % 4;
        pairs.push_back({a, b});
        pairs.push_back({(a + 4) % 8, b + 4});
    };
    if (state == 32) {
        const int j = (i ^ inversion) + (i >= 8 ? 16 : 0);
        add(j ^ 8);
        add(j);
    } else {
        add(i ^ inversion);
    }
    return pairs;
}

TEST(Symbols, AreTheBestPairs) {
    Random random("symbols");
    for (const int state : {16, 32, 64, 5, -64}) {
        const int states = state == 16 || state == 32 ? state : 64, count = states / 2;
        for (const unsigned farthest : {2U, 20U, 20000U, 65535U}) // small ones tie
            for (int inversion = 0; inversion < count; ++inversion) {
                std::vector<Kel32u> words(states == 16 ? 12 : 16);
                for (Kel32u& w : words)
                    w = static_cast<Kel32u>(random.bits() % (farthest + 1)) | static_cast<Kel32u>(random.bits()) << 16;
                std::vector<Kel16u> want;
                for (int i = 0; i < count; ++i) {
                    Kel32u least = UINT32_MAX, codes = 0;
                    for (const Pair& pair : pairs_of(i, states, inversion)) {
                        const Kel32u one = words[static_cast<std::size_t>(pair.first)],
                                     two = words[static_cast<std::size_t>(8 + pair.second)];
                        const Kel32u sum = (one & 0xFFFF) + (two & 0xFFFF);
                        if (sum >= least) continue;
                        least = sum;
                        codes = (one >> 16) % 256 + 256 * ((two >> 16) % 256);
                    }
                    want.push_back(static_cast<Kel16u>(codes));
                    want.push_back(static_cast<Kel16u>(least));
                }
                GuardedArray<Kel32u> in(words, Edge::back);
                for (const Edge edge : edges) {
                    GuardedArray<Kel16u> got(want.size(), edge);
                    ASSERT_TRUE(runs_without_fault(
                        [&] { kelsBuildSymblTableDV4D_16sc(in.data(), got.data(), state, inversion); }));
                    ASSERT_EQ(got.values(), want) << "state " << state << " inversion " << inversion;
                }
            }
        // Any inversion stays inside.
        GuardedArray<Kel32u> in(std::vector<Kel32u>(16, 7), Edge::back);
        GuardedArray<Kel16u> got(static_cast<std::size_t>(2 * count), Edge::back);
        for (const int inversion : {count, -1, INT_MIN, INT_MAX})
            ASSERT_TRUE(
                runs_without_fault([&] { kelsBuildSymblTableDV4D_16sc(in.data(), got.data(), state, inversion); }));
    }
}

// The trellis

struct Trellis {
    int states, branches;
    std::vector<Kel16u> path_error, new_error, symbols;
    std::vector<Kel8u> next;
    std::vector<Kel32u> path;

    Trellis(int n, int successors) : states(n), branches(n == 16 ? 4 : n == 32 ? 8 : 16) {
        path_error.resize(static_cast<std::size_t>(n));
        new_error.resize(static_cast<std::size_t>(successors));
        path.resize(static_cast<std::size_t>(successors));
        symbols.resize(static_cast<std::size_t>(4 * branches));
        next.resize(static_cast<std::size_t>(n * branches));
    }

    void step_by_the_rule() {
        std::size_t at = 0;
        for (int s = 0; s < states; ++s)
            for (int k = 0; k < branches; ++k) {
                const std::size_t n = next[at++], entry = static_cast<std::size_t>(2 * (2 * k + s % 2));
                const std::int64_t total =
                    path_error[static_cast<std::size_t>(s)] + std::int64_t{static_cast<Kel16s>(symbols[entry + 1])};
                if (total < new_error[n]) {
                    new_error[n] = static_cast<Kel16u>(total);
                    path[n] = symbols[entry] + (static_cast<Kel32u>(s) << 16);
                }
            }
    }
};

struct Errors {
    int path, metric; // below these
    int limit;        // what new errors start from; 0: anything
    int successors;   // states that there are, or more for a table that goes beyond them
    bool negative;
};

TEST(TrellisStage, SelectsAsBranchByBranch) {
    Random random("trellis");
    const auto below = [&](int n) { return static_cast<Kel16u>(random.below(n)); };
    for (const int states : {16, 32, 64})
        for (const Errors& e :
             {Errors{65536, 32768, 65535, 0, false}, Errors{3, 3, 65535, 0, false}, Errors{3, 3, 4, 0, false},
              Errors{65536, 32768, 0, 0, false}, Errors{100, 100, 65535, 256, false}, Errors{65536, 65536, 0, 0, true},
              Errors{10, 65536, 65535, 0, true}, Errors{65536, 65536, 0, 256, true}})
            for (int round = 0; round < 20; ++round) {
                Trellis t(states, std::max(states, e.successors));
                for (Kel16u& x : t.path_error) x = below(e.path);
                for (Kel16u& x : t.new_error) x = e.limit ? static_cast<Kel16u>(e.limit) : below(65536);
                for (Kel16u& x : t.symbols) x = below(65536);
                for (std::size_t i = 1; i < t.symbols.size(); i += 2) t.symbols[i] = below(e.metric);
                for (Kel8u& n : t.next) n = static_cast<Kel8u>(random.below(static_cast<int>(t.path.size())));
                for (Kel32u& p : t.path) p = static_cast<Kel32u>(random.bits());
                const Edge edge = round % 2 ? Edge::front : Edge::back;
                GuardedArray<Kel16u> errors(t.path_error, edge), fresh(t.new_error, edge), symbols(t.symbols, edge);
                GuardedArray<Kel8u> next(t.next, edge);
                GuardedArray<Kel32u> path(t.path, edge);
                const int index = round % 3 == 0 ? 0 : random.below(2001) - 1000;
                ASSERT_TRUE(runs_without_fault([&] {
                    kelsCalcStatesDV_16sc(errors.data(), next.data(), fresh.data(), symbols.data(), path.data() - index,
                                          states == 64 && round % 2 ? 7 : states, index);
                }));
                t.step_by_the_rule();
                ASSERT_EQ(fresh.values(), t.new_error) << states;
                ASSERT_EQ(path.values(), t.path) << states;
            }
}

TEST(TrellisStage, HasNoStatesBelowOne) {
    Kel16u error[16] = {}, fresh[16] = {7}, symbols[16] = {};
    const Kel8u next[64] = {};
    Kel32u path[16] = {7};
    for (const int state : {0, -1, INT_MIN}) {
        EXPECT_EQ(kelsCalcStatesDV_16sc(error, next, fresh, symbols, path, state, 0), kelStatusOk);
        EXPECT_TRUE(fresh[0] == 7 && path[0] == 7);
    }
}

TEST(ViterbiKit, RefusesNullPointers) {
    Kel16sc z = {1, 2};
    Kel32u words[16] = {}, path[64] = {};
    Kel16u values[128] = {};
    const Kel8u next[1024] = {};
    expect_nulls_refused(kelsGetVarPointDV_16sc, &z, &z, words, usual_tile, 16);
    EXPECT_TRUE(z.re == 1 && z.im == 2);
    expect_nulls_refused(kelsBuildSymblTableDV4D_16sc, words, values, 16, 0);
    for (const int state : {0, 64})
        expect_nulls_refused(kelsCalcStatesDV_16sc, values, next, values, values, path, state, 0);
}

} // namespace
