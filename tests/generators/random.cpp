// Noise, held against the rule drawn one by one in extended precision.

#include "kels/random.h"
#include "support/control_state.h"
#include "support/exact.h"
#include "support/guarded_array.h"
#include "support/life_cycle.h"
#include "support/refusals.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

using namespace kels_test;
using Real = long double;

// The model

struct Sequence {
    std::uint32_t c = 1131199209, x, x1, x2, borrow = 1;

    explicit Sequence(std::uint32_t seed) : x(seed), x1(x * 69069 + 1013904243), x2(x1 * 69069 + 1013904243) {}

    std::int32_t draw() {
        c = c * 69069 + 1013904243;
        const std::uint32_t t = x1 - x2 - borrow;
        borrow = t >> 31;
        x2 = x1;
        x1 = x;
        x = t - 18 * borrow;
        return static_cast<std::int32_t>(x + c);
    }
};

template <class T>
T cut(Real y) {
    const double rounded = static_cast<double>(y);
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(y);
    else if (rounded < std::numeric_limits<T>::min())
        return std::numeric_limits<T>::min();
    else
        return rounded > std::numeric_limits<T>::max() ? std::numeric_limits<T>::max() : static_cast<T>(rounded);
}

/// `Narrow` is what the interval is kept in.
template <class T, class Narrow>
std::vector<T> uniform_model(int n, T low, T high, Sequence& sequence) {
    const auto mid = static_cast<Narrow>((static_cast<Real>(low) + high) * 0.5L);
    const auto step = static_cast<Narrow>((static_cast<Real>(high) - low) * 2.3283064365387e-10);
    std::vector<T> samples;
    for (int i = 0; i < n; ++i) samples.push_back(cut<T>(static_cast<Real>(sequence.draw()) * step + mid));
    return samples;
}

struct Pair {
    double a, b, w;
};

Pair draw_pair(Sequence& sequence) {
    for (;;) {
        const Real a = sequence.draw() * static_cast<Real>(4.656612873077e-10);
        const Real b = sequence.draw() * static_cast<Real>(4.656612873077e-10);
        const Real s = a * a + b * b;
        if (s >= 1 || s == 0) continue;
        const auto rounded = static_cast<double>(s);
        return {static_cast<double>(a), static_cast<double>(b),
                static_cast<double>(std::sqrt(std::log(rounded) * -2.0L / rounded))};
    }
}

template <class T>
std::vector<T> normal_model(int n, T mean, T deviation, Sequence& sequence, bool draws_ahead) {
    std::vector<T> samples;
    while (static_cast<int>(samples.size()) < n) {
        const Pair p = draw_pair(sequence);
        for (const double value : {p.b, p.a})
            samples.push_back(cut<T>(static_cast<Real>(p.w) * deviation * value + mean));
    }
    if (draws_ahead && n % 2 == 0) draw_pair(sequence);
    samples.resize(static_cast<std::size_t>(n));
    return samples;
}

// Comparison: integers agree, and reals are within some units in the last place, nearly all singles the same.

template <class T>
void expect_same(const std::vector<T>& got, const std::vector<T>& want) {
    std::size_t other = 0;
    for (std::size_t i = 0; i < got.size(); ++i) {
        const Real unit = std::is_integral_v<T> ? 0 : ulp(static_cast<Kel32f>(want[i]));
        ASSERT_LE(std::fabs(static_cast<Real>(got[i]) - want[i]), unit) << i << ": " << want[i];
        other += got[i] != want[i];
    }
    EXPECT_LE(other, got.size() / 1000);
}

constexpr std::uint32_t seeds[] = {0, 1, 12345, 0x80000000, 0xFFFFFFFF};

// With a seed of the caller's

constexpr auto uniform_direct = whole([]<class T>(const Kel32u* seed, T* dst, Kel32u* after, int len, T low, T high) {
    Sequence sequence(*seed);
    std::ranges::copy(uniform_model<T, Real>(len, low, high, sequence), dst);
    *after = sequence.x;
});
constexpr auto normal_direct =
    whole([]<class T>(const Kel32u* seed, T* dst, Kel32u* after, int len, T mean, T deviation) {
        Sequence sequence(*seed);
        std::ranges::copy(normal_model(len, mean, deviation, sequence, true), dst);
        *after = sequence.x;
    });

Rows between(const Rows& rows, std::initializer_list<double> first, std::initializer_list<double> second) {
    return rows.values(0, first)
        .values(1, second)
        .values(2, {0, 1, 12345, 0x80000000, 0xFFFFFFFF})
        .lengths({20001})
        .any_modes()
        .driven_elsewhere();
}

const Rows table = {
    between(rows(uniform_direct, kelsRandUniform_Direct_16s), {-100, 32767}, {100, -32768}),
    between(rows(uniform_direct, kelsRandUniform_Direct_32f), {-1, 0, 2.5}, {1, 3e38, 2.5}).ulps(1),
    between(rows(uniform_direct, kelsRandUniform_Direct_64f), {0}, {1}).slack(0x1p-60).ulps(1),
    between(rows(uniform_direct, kelsRandUniform_Direct_64f), {-1.7e308}, {1.7e308}).ulps(1),
    between(rows(normal_direct, kelsRandGauss_Direct_16s), {100, -32000}, {1000, -20000}),
    between(rows(normal_direct, kelsRandGauss_Direct_32f), {0, 3, -5}, {1, 0, 2.5}).ulps(1),
    // The logarithm is rounded to double on the way, and its last place is free.
    between(rows(normal_direct, kelsRandGauss_Direct_64f), {0}, {1}).slack(0x1p-60).ulps(2),
    between(rows(normal_direct, kelsRandGauss_Direct_64f), {1e3}, {1e-3}).ulps(2),
};
const bool registered = add_rows("Noise", table);

// Contexts: streams cut anywhere, in any mode

template <class State, class T>
struct Family {
    KelStatus (*create)(State**, T, T, Kel32u);
    KelStatus (*fill)(T*, int, State*);
    KelStatus (*release)(State*);
};
template <class State, class T>
Family(KelStatus (*)(State**, T, T, Kel32u), KelStatus (*)(T*, int, State*), KelStatus (*)(State*)) -> Family<State, T>;

constexpr Family uniform_8u{kelsRandUniformInitAlloc_8u, kelsRandUniform_8u, kelsRandUniformFree_8u};
constexpr Family uniform_16s{kelsRandUniformInitAlloc_16s, kelsRandUniform_16s, kelsRandUniformFree_16s};
constexpr Family uniform_32f{kelsRandUniformInitAlloc_32f, kelsRandUniform_32f, kelsRandUniformFree_32f};
constexpr Family normal_8u{kelsRandGaussInitAlloc_8u, kelsRandGauss_8u, kelsRandGaussFree_8u};
constexpr Family normal_16s{kelsRandGaussInitAlloc_16s, kelsRandGauss_16s, kelsRandGaussFree_16s};
constexpr Family normal_32f{kelsRandGaussInitAlloc_32f, kelsRandGauss_32f, kelsRandGaussFree_32f};

template <class State, class T>
void expect_streams(const Family<State, T>& family, std::type_identity_t<T> first, std::type_identity_t<T> second) {
    constexpr int total = 3000;
    for (const std::uint32_t seed : seeds) {
        Sequence sequence(seed);
        std::vector<T> want;
        if constexpr (std::is_same_v<State, RandUniformState>)
            want = uniform_model<T, double>(total, first, second, sequence);
        else
            want = normal_model(total, first, second, sequence, false);
        std::vector<T> cut_otherwise;
        for (const int piece : {total, 1, 2, 7, 300, 513}) {
            std::vector<T> got(total);
            under(odd_modes[piece % 3], [&] {
                const auto state = made(family.create, family.release, first, second, seed);
                for (int at = 0; at < total; at += piece)
                    family.fill(&got[static_cast<std::size_t>(at)], std::min(piece, total - at), state.get());
            });
            expect_same(got, want);
            if (cut_otherwise.empty()) cut_otherwise = got;
            ASSERT_EQ(got, cut_otherwise) << "in pieces of " << piece;
        }
    }
}

TEST(Random, StreamsFollowTheRule) {
    expect_streams(uniform_8u, 0, 255);
    expect_streams(uniform_8u, 200, 10);
    expect_streams(uniform_16s, -32768, 32767);
    expect_streams(uniform_32f, -1, 3);
    expect_streams(normal_8u, 0, 50);
    expect_streams(normal_8u, 200, 40);
    expect_streams(normal_16s, -5, 12000);
    expect_streams(normal_32f, 0, 1);
}

/// Statuses, memory and edges of one family.
template <class State, class T>
void expect_frame(const Family<State, T>& family) {
    EXPECT_EQ(family.create(nullptr, 1, 2, 3), kelStatusNullPtr);
    expect_clean_failures(family.create, family.release, 1, 2, 3);
    const auto state = made(family.create, family.release, 1, 2, 3);
    Kel32s foreign[64] = {17};
    auto* other = reinterpret_cast<State*>(foreign);
    T sample = 77;
    for (const int bad : bad_lengths)
        for (State* any : {state.get(), other}) {
            expect_nulls_refused(family.fill, &sample, bad, any);
            EXPECT_EQ(family.fill(&sample, bad, any), kelStatusBadSize);
        }
    EXPECT_EQ(family.fill(&sample, 1, other), kelStatusContextMismatch);
    EXPECT_EQ(family.release(other), kelStatusContextMismatch);
    EXPECT_EQ(family.release(nullptr), kelStatusNullPtr);
    EXPECT_EQ(sample, 77);
    for (const auto edge : edges)
        for (int n = 1; n < 300; ++n) {
            GuardedArray<T> array(static_cast<std::size_t>(n), edge);
            ASSERT_TRUE(runs_without_fault([&] { family.fill(array.data(), n, state.get()); })) << n;
        }
}

TEST(Random, ContextsObeyTheFrame) {
    expect_frame(uniform_8u);
    expect_frame(uniform_16s);
    expect_frame(uniform_32f);
    expect_frame(normal_8u);
    expect_frame(normal_16s);
    expect_frame(normal_32f);
    const auto state = made(normal_32f.create, normal_32f.release, 0, 1, 2);
    Kel32f sample = 0;
    EXPECT_EQ(uniform_32f.fill(&sample, 1, reinterpret_cast<RandUniformState*>(state.get())), kelStatusContextMismatch);
    EXPECT_EQ(normal_16s.release(state.get()), kelStatusContextMismatch);
}

// Intervals and deviations that are no numbers must come to an end.
TEST(Random, NumbersOutOfRange) {
    Kel32u seed = 1;
    std::vector<Kel64f> d(100);
    for (const Kel64f odd : {HUGE_VAL, -HUGE_VAL, static_cast<Kel64f>(NAN), 1e-320}) {
        EXPECT_EQ(kelsRandUniform_Direct_64f(d.data(), 100, 0, odd, &seed), kelStatusOk);
        EXPECT_EQ(kelsRandGauss_Direct_64f(d.data(), 100, odd, odd, &seed), kelStatusOk);
    }
}

} // namespace
