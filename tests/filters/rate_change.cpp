// Rate changes against their definition, streams cut anywhere, arrays at the edge of a page; pre-emphasis as rows.

#include "kels/rate_change.h"
#include "filters/samples.h"
#include "support/guarded_array.h"
#include "support/random_data.h"
#include "support/refusals.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <vector>

namespace {

using filter_test::same;
using namespace kels_test;

template <class T, KelStatus (*down_)(const T*, int, T*, int*, int, int*),
          KelStatus (*up_)(const T*, int, T*, int*, int, const int*)>
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

template <class T>
std::vector<T> kept(const std::vector<T>& x, int factor, int phase) {
    std::vector<T> y;
    for (std::size_t i = static_cast<std::size_t>(phase); i < x.size(); i += static_cast<std::size_t>(factor))
        y.push_back(x[i]);
    return y;
}

TYPED_TEST(RateChanges, KeepAndSpread) {
    using T = typename TypeParam::Sample;
    Random random("rate changes");
    for (const Edge edge : edges)
        for (const int factor : {1, 2, 3, 4, 5, 7, 16, 100, 700})
            for (const int len : {1, 2, 3, 5, 16, 31, 33, 64, 100, 257, 1000}) {
                if (len * factor > 20000) continue;
                const int phase = factor - 1 - random.below(std::min(factor, 2 * len));
                GuardedArray<T> x(any_samples<T>(random, len), edge);
                const std::vector<T> want = kept(x.values(), factor, phase);
                GuardedArray<T> fewer(std::max<std::size_t>(want.size(), 1), edge);
                int count = -1, after = phase;
                ASSERT_EQ(TypeParam::down(x.data(), len, fewer.data(), &count, factor, &after), kelStatusOk);
                ASSERT_EQ(count, static_cast<int>(want.size()));
                ASSERT_EQ(after, phase + count * factor - len);
                ASSERT_TRUE(want.empty() || std::memcmp(fewer.data(), want.data(), want.size() * sizeof(T)) == 0)
                    << factor << " " << len;

                std::vector<T> spread(static_cast<std::size_t>(len) * static_cast<std::size_t>(factor));
                for (std::size_t k = 0; k < static_cast<std::size_t>(len); ++k)
                    spread[k * static_cast<std::size_t>(factor) + static_cast<std::size_t>(phase)] = x.data()[k];
                GuardedArray<T> more(any_samples<T>(random, len * factor), edge);
                after = phase;
                ASSERT_EQ(TypeParam::up(x.data(), len, more.data(), &count, factor, &after), kelStatusOk);
                ASSERT_EQ(count, len * factor);
                ASSERT_EQ(after, phase);
                ASSERT_TRUE(same(more.values(), spread)) << factor << " " << len << " " << phase;
            }
}

TYPED_TEST(RateChanges, StreamsCutAnywhere) {
    using T = typename TypeParam::Sample;
    Random random("streams of samples");
    for (int factor = 1; factor < 12; ++factor) {
        const std::vector<T> x = any_samples<T>(random, 1000);
        std::vector<T> y;
        int phase = random.below(factor);
        const std::vector<T> want = kept(x, factor, phase);
        for (int at = 0, n, count; at < 1000; at += n) {
            n = std::min(1 + random.below(25), 1000 - at);
            std::vector<T> piece(static_cast<std::size_t>(n));
            ASSERT_EQ(TypeParam::down(x.data() + at, n, piece.data(), &count, factor, &phase), kelStatusOk);
            y.insert(y.end(), piece.begin(), piece.begin() + count);
        }
        EXPECT_TRUE(same(y, want)) << factor;
    }
}

TYPED_TEST(RateChanges, ChecksInOrder) {
    using T = typename TypeParam::Sample;
    T x[2] = {}, y[2] = {};
    int count = 7, phase = 3;
    const auto expect = [&](KelStatus status, const T* src, int len, T* dst, int* dstLen, int factor, int* p) {
        const std::vector<T> before(y, y + 2);
        EXPECT_EQ(TypeParam::down(src, len, dst, dstLen, factor, p), status);
        EXPECT_EQ(TypeParam::up(src, len, dst, dstLen, factor, p), status);
        EXPECT_EQ(count, 7);
        EXPECT_EQ(std::memcmp(y, before.data(), sizeof y), 0);
    };
    expect_nulls_refused(TypeParam::down, x, 0, y, &count, 0, &phase);
    expect_nulls_refused(TypeParam::up, x, 0, y, &count, 0, &phase);
    for (const int len : bad_lengths) expect(kelStatusBadSize, x, len, y, &count, 0, &phase);
    for (const int factor : {0, -1, INT_MIN}) expect(kelStatusFactorRange, x, 2, y, &count, factor, &phase);
    for (const int bad : {3, 4, INT_MAX, -1, INT_MIN}) {
        phase = bad;
        expect(kelStatusPhaseRange, x, 2, y, &count, 3, &phase);
        EXPECT_EQ(phase, bad);
    }
    phase = 1;
    expect(kelStatusPhaseRange, x, 2, y, &count, 1, &phase);
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

TEST(RateChange, LiteralValues) {
    const Kel32f x[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9};
    Kel32f y[4];
    int count, phase = 1;
    ASSERT_EQ(kelsSampleDown_32f(x, 10, y, &count, 3, &phase), kelStatusOk);
    EXPECT_EQ(std::vector<Kel32f>(y, y + count), (std::vector<Kel32f>{1, 4, 7}));
    EXPECT_EQ(phase, 0);
    phase = 2;
    ASSERT_EQ(kelsSampleDown_32f(x, 10, y, &count, 3, &phase), kelStatusOk);
    EXPECT_EQ(std::vector<Kel32f>(y, y + count), (std::vector<Kel32f>{2, 5, 8}));
    EXPECT_EQ(phase, 1);
    const Kel16s s[] = {7, 8};
    Kel16s d[6] = {1, 1, 1, 1, 1, 1};
    phase = 4;
    ASSERT_EQ(kelsSampleDown_16s(s, 2, d, &count, 5, &phase), kelStatusOk);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(phase, 2);
    phase = 0;
    ASSERT_EQ(kelsSampleUp_16s(s, 2, d, &count, 3, &phase), kelStatusOk);
    EXPECT_EQ(std::vector<Kel16s>(d, d + 6), (std::vector<Kel16s>{7, 0, 0, 8, 0, 0}));
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
    Kel32f x[] = {1, 1, 1};
    ASSERT_EQ(kelsPreemphasize_32f(x, 3, 0.5F), kelStatusOk);
    EXPECT_EQ(std::vector<Kel32f>(x, x + 3), (std::vector<Kel32f>{1, 0.5F, 0.5F}));
    const auto second = [](Kel16s first, Kel16s next, Kel32f val) {
        Kel16s s[] = {first, next};
        EXPECT_EQ(kelsPreemphasize_16s(s, 2, val), kelStatusOk);
        EXPECT_EQ(s[0], first);
        return s[1];
    };
    EXPECT_EQ(second(100, 3, 0.75F), -72);
    EXPECT_EQ(second(101, 3, 0.75F), -72);
    EXPECT_EQ(second(-32768, 32767, 1), 32767);
    EXPECT_EQ(second(0, 5, HUGE_VALF), 32767);
    EXPECT_EQ(second(1, 5, HUGE_VALF), -32768);
}

} // namespace
