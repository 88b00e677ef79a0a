// Rate changes against their definition, streams cut anywhere, arrays at the edge of a page; pre-emphasis as rows.

#include "kels/rate_change.h"
#include "filters/careful.h"
#include "filters/checks.h"
#include "filters/samples.h"

namespace {

using namespace kels_test;
using namespace filter_test;

template <class T, auto down_, auto up_>
struct Functions {
    using Sample = T;
    static constexpr auto down = down_;
    static constexpr auto up = up_;
};

template <class F>
struct RateChanges : testing::Test {};
using Families = testing::Types<
    Functions<Kel16s, kelsSampleDown_16s, kelsSampleUp_16s>, Functions<Kel16sc, kelsSampleDown_16sc, kelsSampleUp_16sc>,
    Functions<Kel32f, kelsSampleDown_32f, kelsSampleUp_32f>, Functions<Kel32fc, kelsSampleDown_32fc, kelsSampleUp_32fc>,
    Functions<Kel64f, kelsSampleDown_64f, kelsSampleUp_64f>,
    Functions<Kel64fc, kelsSampleDown_64fc, kelsSampleUp_64fc>>;
TYPED_TEST_SUITE(RateChanges, Families);

/// Samples with NaNs of all kinds among them: they move bit for bit.
template <class T>
std::vector<T> any_samples(Random& random, int count) {
    std::vector<T> x(static_cast<std::size_t>(count));
    fill_random(random, type_of<T>(), x.data(), x.size());
    return x;
}

TYPED_TEST(RateChanges, KeepAndSpread) {
    using T = typename TypeParam::Sample;
    Random random("rate changes");
    Careful careful;
    for (const int factor : {1, 2, 3, 4, 5, 7, 16, 100, 700})
        for (const int len : {1, 2, 3, 5, 16, 31, 33, 64, 100, 257, 1000, 1000, 257, 100, 64}) {
            if (len * factor > 20000) continue;
            const int phase = factor - 1 - random.below(std::min(factor, 2 * len));
            const auto x = any_samples<T>(random, len);
            std::vector<T> kept, spread(static_cast<std::size_t>(len * factor));
            for (int i = 0; i < len; ++i) {
                const T& sample = x[static_cast<std::size_t>(i)];
                if (i >= phase && (i - phase) % factor == 0) kept.push_back(sample);
                spread[static_cast<std::size_t>(i * factor + phase)] = sample;
            }
            const GuardedArray<T> source(x, careful.edge());
            int count = -1, after = phase;
            const auto fewer = results<T>(careful, kept.size(), [&](T* to) {
                return TypeParam::down(source.data(), len, to, &count, factor, &after);
            });
            ASSERT_TRUE(same(fewer, kept)) << factor << ' ' << len << ' ' << phase;
            ASSERT_EQ(count, static_cast<int>(kept.size()));
            ASSERT_EQ(after, phase + count * factor - len);
            after = phase;
            const auto more = results<T>(careful, spread.size(), [&](T* to) {
                return TypeParam::up(source.data(), len, to, &count, factor, &after);
            });
            ASSERT_TRUE(same(more, spread)) << factor << ' ' << len << ' ' << phase;
            ASSERT_EQ(count, len * factor);
            ASSERT_EQ(after, phase);
        }
}

TYPED_TEST(RateChanges, AreChecked) {
    using T = typename TypeParam::Sample;
    Untouched memory;
    T *const x = memory.array<T>(2), *const y = memory.array<T>(6);
    int *const count = memory.array({7}), *const phase = memory.array({2});
    const auto expect = [&](auto function) {
        const std::tuple good(x, 2, y, count, 3, phase);
        memory.expect_checks(function, good,
                             {null(0), null(2), null(3), null(5), size(1), size(4, kelStatusFactorRange)});
        for (const int bad : {3, 4, INT_MAX, -1, INT_MIN}) {
            *phase = bad;
            memory.expect_refusals(function, good, {{4, kelStatusPhaseRange, {3}}});
        }
        *phase = 1;
        memory.expect_refusals(function, good, {{4, kelStatusPhaseRange, {1}}});
    };
    expect(TypeParam::down);
    *phase = 2;
    expect(TypeParam::up);
}

// The index leaves an int, the phase does not.
TYPED_TEST(RateChanges, LargestFactors) {
    using T = typename TypeParam::Sample;
    Random random("largest factors");
    const std::vector<T> x = any_samples<T>(random, 5);
    for (const int factor : {INT_MAX, INT_MAX - 1, INT_MAX - 4})
        for (const int phase : {0, 1, 4, 5, factor - 1}) {
            T y[1] = {};
            int count = -1, after = phase;
            ASSERT_EQ(TypeParam::down(x.data(), 5, y, &count, factor, &after), kelStatusOk);
            EXPECT_EQ(count, phase < 5);
            EXPECT_EQ(after, static_cast<int>(phase + (phase < 5 ? std::int64_t{factor} : 0) - 5));
            if (phase < 5) {
                EXPECT_EQ(std::memcmp(y, &x[static_cast<std::size_t>(phase)], sizeof y), 0);
            }
        }
}

// Pre-emphasis

const auto emphasized = [](const Kel32f* x, Kel32f* y, int len, Kel32f val) {
    y[0] = x[0];
    for (int n = 1; n < len; ++n) y[n] = static_cast<Kel32f>(x[n] - static_cast<long double>(val) * x[n - 1]);
};

Kel16s cut(long double v) {
    if (!(v <= 32767)) return 32767;
    return static_cast<Kel16s>(v < -32768 ? -32768 : v);
}

const auto emphasized_integers = [](const Kel16s* x, Kel16s* y, int len, Kel32f val) {
    y[0] = x[0];
    for (int n = 1; n < len; ++n) y[n] = cut(x[n] - static_cast<long double>(val) * x[n - 1]);
};

const Rows table = {
    in_place(whole(emphasized), kelsPreemphasize_32f).ulps(1),
    in_place(whole(emphasized_integers), kelsPreemphasize_16s),
};
const bool registered = add_rows("Preemphasis", table);

TEST(Preemphasis, LiteralValues) {
    Kel16s x[] = {100, 3, 103};
    ASSERT_EQ(kelsPreemphasize_16s(x, 3, 0.75F), kelStatusOk);
    EXPECT_EQ(std::vector<Kel16s>(x, x + 3), (std::vector<Kel16s>{100, -72, 100})) << "cut toward zero";
}

} // namespace
