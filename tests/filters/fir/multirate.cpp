// FIR filters that change the rate: any factors and phases against the defining sum, cut anywhere.

#include "filters/fir/reference.h"
#include "support/allocation_faults.h"
#include "support/guarded_memory.h"

#include <climits>

namespace {

using namespace fir_test;

template <class F>
class FirMultiRateTest : public testing::Test {};
TYPED_TEST_SUITE(FirMultiRateTest, Families, FamilyNames);

int history(int taps, int up) { return (taps + up - 1) / up; }

/// A stream in calls of random lengths, out of place or in place; its delay line read back after every call.
template <class F>
void check_stream(Random& random, int L, const Rates& r, int iterations, Comparison<F>& comparison) {
    using T = typename F::Sample;
    const int P = history(L, r.up);
    const auto taps = noise<typename F::Taps>(random, L);
    const auto before = noise<T>(random, P), x = noise<T>(random, iterations * r.down);
    const std::vector<Sum> sums = defining_sums(taps, before, x, r);
    const Context context = make_multi_rate<F>(taps, r, before);
    std::vector<T> y(sums.size()), line(before.size());
    for (int done = 0; done < iterations;) {
        const int count = std::min(1 + random.below(random.below(2) ? 4 : 60), iterations - done);
        const auto samples = static_cast<std::size_t>(count * r.down), outputs = static_cast<std::size_t>(count * r.up);
        const T* src = x.data() + done * r.down;
        T* dst = y.data() + done * r.up;
        if (random.below(2)) {
            ASSERT_EQ(call(F::block, comparison.scaleFactor, src, dst, count, context.get()), kelStatusOk);
        } else {
            std::vector<T> both(std::max(samples, outputs));
            std::copy_n(src, samples, both.begin());
            ASSERT_EQ(call(F::in_place, comparison.scaleFactor, both.data(), count, context.get()), kelStatusOk);
            std::copy_n(both.begin(), outputs, dst);
        }
        done += count;
        std::vector<T> wanted(before.size());
        for (int i = 0; i < P; ++i) {
            const int n = done * r.down - 1 - i;
            wanted[static_cast<std::size_t>(i)] =
                n >= 0 ? x[static_cast<std::size_t>(n)] : before[static_cast<std::size_t>(-1 - n)];
        }
        ASSERT_EQ(F::get_line(context.get(), line.data()), kelStatusOk);
        ASSERT_TRUE(same(line, wanted));
    }
    for (std::size_t i = 0; i < y.size(); ++i) comparison.check(y[i], sums[i]);
}

TYPED_TEST(FirMultiRateTest, AnyFactorsPhasesAndCuts) {
    using F = TypeParam;
    Random random(std::string("rates ") + F::name);
    Comparison<F> comparison;
    const int tap_counts[] = {1, 2, 3, 10, 24, 31, 64, 96, 130, 400};
    for (int up = 1; up <= 7; ++up)
        for (int down = 1; down <= 7; ++down) {
            const Rates r{up, random.below(up), down, random.below(down)};
            comparison.scaleFactor = F::integer_samples ? random.below(20) : 0;
            const int L = tap_counts[random.below(10)];
            if (up == 1 && down == 1) continue; // has its own test
            check_stream<F>(random, L, r, 200, comparison);
            ASSERT_FALSE(this->HasFatalFailure()) << L << " taps, up " << up << ' ' << r.upPhase << ", down " << down
                                                  << ' ' << r.downPhase << ", scale " << comparison.scaleFactor;
        }
    if (sizeof(Part<typename F::Sample>) == 4 && !F::integer_samples) {
        EXPECT_LE(comparison.missed_bits, comparison.outputs / 1000 + 2);
    }
}

TYPED_TEST(FirMultiRateTest, FactorsAndTapsThatDwarfTheTiles) {
    using F = TypeParam;
    Random random("large factors");
    Comparison<F> comparison;
    comparison.scaleFactor = 14;
    for (const auto& [L, r, iterations] : {std::tuple{50, Rates{1, 0, 3000, 2999}, 4},
                                           {50, Rates{3000, 7, 1, 0}, 4},
                                           {5000, Rates{1, 0, 2, 1}, 300},
                                           {5000, Rates{2, 1, 1, 0}, 300},
                                           {960, Rates{160, 9, 147, 146}, 9},
                                           {3, Rates{2, 1, 4001, 0}, 5}}) {
        check_stream<F>(random, L, r, iterations, comparison);
        ASSERT_FALSE(this->HasFatalFailure()) << L << " taps, up " << r.up << ", down " << r.down;
    }
}

TYPED_TEST(FirMultiRateTest, LiteralValues) {
    using F = TypeParam;
    using T = typename F::Sample;
    std::vector<typename F::Taps> taps(2);
    values(taps)[0] = 1;
    const Context context = make_multi_rate<F>(taps, {2, 1, 1, 0});
    const auto x = noise<T>(*std::make_unique<Random>("literal"), 50);
    std::vector<T> y(100);
    ASSERT_EQ(call(F::block, 0, x.data(), y.data(), 50, context.get()), kelStatusOk);
    const T silence{};
    for (std::size_t n = 0; n < 50; ++n) {
        EXPECT_EQ(std::memcmp(&y[2 * n], &silence, sizeof silence), 0);
        EXPECT_EQ(std::memcmp(&y[2 * n + 1], &x[n], sizeof silence), 0);
    }
}

TYPED_TEST(FirMultiRateTest, FactorsOfOne) {
    using F = TypeParam;
    using T = typename F::Sample;
    Random random("ones");
    const auto taps = noise<typename F::Taps>(random, 12);
    const auto line = noise<T>(random, 12), x = noise<T>(random, 100);
    const Context context = make_multi_rate<F>(taps, {1, 0, 1, 0}, line);
    T y;
    EXPECT_EQ(call(F::one, 0, x[0], &y, context.get()), F::degenerates ? kelStatusOk : kelStatusContextMismatch);
    Comparison<F> comparison;
    if (!F::degenerates) check_stream<F>(random, 12, {1, 0, 1, 0}, 500, comparison);
}

TYPED_TEST(FirMultiRateTest, GivesBackTapsAndLine) {
    using F = TypeParam;
    Random random("read back");
    const auto taps = noise<typename F::Taps>(random, 10);
    const auto line = noise<typename F::Sample>(random, 4);
    const Context context = make_multi_rate<F>(taps, {3, 1, 2, 0}, line);
    std::vector<typename F::Taps> got_taps(taps.size());
    auto got = line;
    EXPECT_EQ(get_taps<F>(context.get(), got_taps.data()), kelStatusOk);
    EXPECT_TRUE(same(got_taps, taps));
    EXPECT_EQ(F::set_line(context.get(), nullptr), kelStatusOk);
    EXPECT_EQ(F::get_line(context.get(), got.data()), kelStatusOk);
    EXPECT_TRUE(same(got, std::vector<typename F::Sample>(4)));
    EXPECT_EQ(F::set_line(context.get(), line.data()), kelStatusOk);
    EXPECT_EQ(F::get_line(context.get(), got.data()), kelStatusOk);
    EXPECT_TRUE(same(got, line));
}

// Only the samples that a tap meets may make an output a NaN.
TYPED_TEST(FirMultiRateTest, NansReachTheirOutputsOnly) {
    using F = TypeParam;
    using T = typename F::Sample;
    if constexpr (!F::integer_samples) {
        Random random("nan");
        for (int L : {1, 2, 5, 16, 33, 70})
            for (const Rates& r : {Rates{3, 2, 2, 1}, Rates{1, 0, 4, 3}, Rates{5, 0, 1, 0}}) {
                const auto taps = noise<typename F::Taps>(random, L);
                auto x = noise<T>(random, 40 * r.down);
                const auto at = static_cast<std::ptrdiff_t>(random.below(40 * r.down));
                *reinterpret_cast<Part<T>*>(&x[static_cast<std::size_t>(at)]) = NAN;
                const Context context = make_multi_rate<F>(taps, r);
                std::vector<T> y(static_cast<std::size_t>(40 * r.up));
                F::block(x.data(), y.data(), 40, context.get());
                for (std::ptrdiff_t m = 0; m < 40 * r.up; ++m) {
                    const std::ptrdiff_t tap = m * r.down + r.downPhase - r.upPhase - at * r.up;
                    EXPECT_EQ(std::isnan(values(y)[m * parts<T>]), tap >= 0 && tap < L) << L << ' ' << m;
                }
            }
    }
}

TYPED_TEST(FirMultiRateTest, StaysInsideItsArrays) {
    using F = TypeParam;
    using T = typename F::Sample;
    Random random("guards");
    kels_test::GuardedMemory source(2000 * sizeof(T)), target(2000 * sizeof(T));
    for (int L : {1, 9, 40, 130})
        for (const Rates& r : {Rates{7, 6, 1, 0}, Rates{1, 0, 7, 6}, Rates{3, 0, 2, 1}, Rates{5, 4, 6, 5}})
            for (int count : {1, 2, 3, 5, 8, 31, 130})
                for (bool at_end : {false, true}) {
                    const auto samples = static_cast<std::size_t>(count * r.down),
                               outputs = static_cast<std::size_t>(count * r.up);
                    const auto taps = noise<typename F::Taps>(random, L);
                    const auto x = noise<T>(random, count * r.down);
                    const Context context = make_multi_rate<F>(taps, r);
                    auto* src = reinterpret_cast<T*>(at_end ? source.end() - samples * sizeof(T) : source.begin());
                    auto* dst = reinterpret_cast<T*>(at_end ? target.end() - outputs * sizeof(T) : target.begin());
                    std::copy(x.begin(), x.end(), src);
                    ASSERT_TRUE(kels_test::runs_without_fault([&] {
                        call(F::block, 3, src, dst, count, context.get());
                    })) << L
                        << ' ' << count;
                }
}

TYPED_TEST(FirMultiRateTest, RefusesInTheOrderOfItsChecks) {
    using F = TypeParam;
    using T = typename F::Sample;
    const std::vector<typename F::Taps> taps(4);
    KelFirContext* context = nullptr;
    const auto init = [&](KelFirContext** result, const typename F::Taps* h, int n, const Rates& r) {
        return init_multi_rate<F>(result, h, n, r, nullptr);
    };
    EXPECT_EQ(init(nullptr, taps.data(), 0, {0, 0, 0, 0}), kelStatusNullPtr);
    EXPECT_EQ(init(&context, nullptr, 0, {0, 0, 0, 0}), kelStatusNullPtr);
    EXPECT_EQ(init(&context, taps.data(), 0, {0, 0, 0, 0}), kelStatusBadFirLength);
    for (int bad : {0, -1, INT_MIN}) {
        EXPECT_EQ(init(&context, taps.data(), 4, {bad, 5, 1, 0}), kelStatusBadMrFactor);
        EXPECT_EQ(init(&context, taps.data(), 4, {1, 5, bad, 0}), kelStatusBadMrFactor);
    }
    for (int bad : {3, 4, -1, INT_MIN, INT_MAX}) {
        EXPECT_EQ(init(&context, taps.data(), 4, {3, bad, 3, 0}), kelStatusBadMrPhase);
        EXPECT_EQ(init(&context, taps.data(), 4, {3, 0, 3, bad}), kelStatusBadMrPhase);
    }
    EXPECT_EQ(context, nullptr);

    const Context own = make_multi_rate<F>(taps, {2, 0, 3, 0});
    std::vector<T> x(12), y(12);
    for (int count : {0, -1, INT_MIN, 1}) {
        EXPECT_EQ(call(F::block, 0, nullptr, y.data(), count, own.get()), kelStatusNullPtr);
        EXPECT_EQ(call(F::block, 0, x.data(), nullptr, count, own.get()), kelStatusNullPtr);
        EXPECT_EQ(call(F::in_place, 0, nullptr, count, own.get()), kelStatusNullPtr);
        if (count > 0) break;
        EXPECT_EQ(call(F::block, 0, x.data(), y.data(), count, own.get()), kelStatusBadSize);
        EXPECT_EQ(call(F::in_place, 0, y.data(), count, own.get()), kelStatusBadSize);
    }
    EXPECT_EQ(call(F::one, 0, x[0], y.data(), own.get()), kelStatusContextMismatch);
}

TYPED_TEST(FirMultiRateTest, FailedAllocationsLeakNothing) {
    using F = TypeParam;
    Random random("faults");
    const auto taps = noise<typename F::Taps>(random, 20);
    kels_test::for_each_allocation_failure([&] {
        KelFirContext* made = nullptr;
        const KelStatus status = init_multi_rate<F>(&made, taps.data(), 20, {3, 1, 2, 0}, nullptr);
        if (status == kelStatusOk) F::release(made);
        return status;
    });
}

} // namespace
