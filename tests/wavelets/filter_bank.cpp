// Filter banks against their defining sums in extended precision, through streams cut anywhere.

#include "kels/filter_bank.h"
#include "support/control_state.h"
#include "support/exact.h"
#include "support/guarded_array.h"
#include "support/life_cycle.h"
#include "support/random_data.h"
#include "support/refusals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <span>
#include <type_traits>
#include <vector>

namespace {

using namespace kels_test;

using Singles = std::vector<Kel32f>;

/// The taps and the offset of a band.
struct Filter {
    Singles taps;
    int offset;
};

struct Bank {
    Filter low, high;
};

// Forms. A channel is what one band has, the signal is at full rate.

template <class S, auto make_, auto release_, auto block_, auto get_, auto set_>
struct Functions {
    using State = S;
    static constexpr auto make = make_;
    static constexpr auto release = release_;
    static constexpr auto block = block_;
    static constexpr auto get = get_;
    static constexpr auto set = set_;
};

template <auto... functions>
struct AnalysisOf : Functions<WTFwdState, functions...> {
    /// Singles that a band keeps.
    static int kept(const Filter& f) {
        const int length = static_cast<int>(f.taps.size());
        return f.offset < 0 ? std::max(length - 2, 0) : length - 1 + f.offset;
    }
};

template <auto... functions>
struct SynthesisOf : Functions<WTInvState, functions...> {
    static int kept(const Filter& f) {
        const int length = static_cast<int>(f.taps.size()), offset = f.offset < 0 ? 1 : f.offset;
        return (length - 1 + offset % 2) / 2 + offset / 2;
    }
};

template <class T>
struct Analysis;
template <>
struct Analysis<Kel32f> : AnalysisOf<kelsWTFwdInitAlloc_32f, kelsWTFwdFree_32f, kelsWTFwd_32f, kelsWTFwdGetDlyLine_32f,
                                     kelsWTFwdSetDlyLine_32f> {};
template <>
struct Analysis<Kel8s> : AnalysisOf<kelsWTFwdInitAlloc_8s32f, kelsWTFwdFree_8s32f, kelsWTFwd_8s32f,
                                    kelsWTFwdGetDlyLine_8s32f, kelsWTFwdSetDlyLine_8s32f> {};
template <>
struct Analysis<Kel8u> : AnalysisOf<kelsWTFwdInitAlloc_8u32f, kelsWTFwdFree_8u32f, kelsWTFwd_8u32f,
                                    kelsWTFwdGetDlyLine_8u32f, kelsWTFwdSetDlyLine_8u32f> {};
template <>
struct Analysis<Kel16s> : AnalysisOf<kelsWTFwdInitAlloc_16s32f, kelsWTFwdFree_16s32f, kelsWTFwd_16s32f,
                                     kelsWTFwdGetDlyLine_16s32f, kelsWTFwdSetDlyLine_16s32f> {};
template <>
struct Analysis<Kel16u> : AnalysisOf<kelsWTFwdInitAlloc_16u32f, kelsWTFwdFree_16u32f, kelsWTFwd_16u32f,
                                     kelsWTFwdGetDlyLine_16u32f, kelsWTFwdSetDlyLine_16u32f> {};

template <class T>
struct Synthesis;
template <>
struct Synthesis<Kel32f> : SynthesisOf<kelsWTInvInitAlloc_32f, kelsWTInvFree_32f, kelsWTInv_32f,
                                       kelsWTInvGetDlyLine_32f, kelsWTInvSetDlyLine_32f> {};
template <>
struct Synthesis<Kel8s> : SynthesisOf<kelsWTInvInitAlloc_32f8s, kelsWTInvFree_32f8s, kelsWTInv_32f8s,
                                      kelsWTInvGetDlyLine_32f8s, kelsWTInvSetDlyLine_32f8s> {};
template <>
struct Synthesis<Kel8u> : SynthesisOf<kelsWTInvInitAlloc_32f8u, kelsWTInvFree_32f8u, kelsWTInv_32f8u,
                                      kelsWTInvGetDlyLine_32f8u, kelsWTInvSetDlyLine_32f8u> {};
template <>
struct Synthesis<Kel16s> : SynthesisOf<kelsWTInvInitAlloc_32f16s, kelsWTInvFree_32f16s, kelsWTInv_32f16s,
                                       kelsWTInvGetDlyLine_32f16s, kelsWTInvSetDlyLine_32f16s> {};
template <>
struct Synthesis<Kel16u> : SynthesisOf<kelsWTInvInitAlloc_32f16u, kelsWTInvFree_32f16u, kelsWTInv_32f16u,
                                       kelsWTInvGetDlyLine_32f16u, kelsWTInvSetDlyLine_32f16u> {};

template <class F>
using State = Owned<typename F::State>;

template <class F>
State<F> made(const Bank& bank) {
    return kels_test::made(F::make, F::release, bank.low.taps.data(), static_cast<int>(bank.low.taps.size()),
                           bank.low.offset, bank.high.taps.data(), static_cast<int>(bank.high.taps.size()),
                           bank.high.offset);
}

struct Channels {
    Singles low, high;

    bool operator==(const Channels& other) const { return same_bits(low, other.low) && same_bits(high, other.high); }
};

/// Calls for blocks of a stream: `next()` is the length of each, in samples of a channel.
template <class T, class Next>
Channels analysed(WTFwdState* state, const std::vector<T>& x, Next next) {
    const int count = static_cast<int>(x.size() / 2);
    Channels channels{Singles(x.size() / 2), Singles(x.size() / 2)};
    for (int done = 0; done < count;) {
        const int some = std::min(next(), count - done);
        EXPECT_EQ(Analysis<T>::block(x.data() + 2 * done, channels.low.data() + done, channels.high.data() + done, some,
                                     state),
                  kelStatusOk);
        done += some;
    }
    return channels;
}

template <class T, class Next>
std::vector<T> synthesised(WTInvState* state, const Channels& channels, Next next) {
    const int count = static_cast<int>(channels.low.size());
    std::vector<T> x(2 * channels.low.size());
    for (int done = 0; done < count;) {
        const int some = std::min(next(), count - done);
        EXPECT_EQ(Synthesis<T>::block(channels.low.data() + done, channels.high.data() + done, some,
                                      x.data() + 2 * done, state),
                  kelStatusOk);
        done += some;
    }
    return x;
}

constexpr auto at_once = [] { return INT_MAX; };

// Defining sums

struct Sum {
    long double value = 0, magnitude = 0;
    void add(long double h, long double x) {
        value += h * x;
        magnitude += std::fabs(h * x);
    }
};

template <class T>
Sum forward_sum(const Filter& f, const std::vector<T>& x, int k) {
    Sum sum;
    for (int i = static_cast<int>(f.taps.size()) - 1; i >= 0; --i)
        if (const std::ptrdiff_t n = 2 * std::ptrdiff_t{k} - f.offset - i; n >= 0)
            sum.add(f.taps[static_cast<std::size_t>(i)], static_cast<long double>(x[static_cast<std::size_t>(n)]));
    return sum;
}

Sum inverse_sum(const Filter& f, const Singles& x, int m) {
    Sum sum;
    const int offset = f.offset < 0 ? 1 : f.offset;
    for (int j = static_cast<int>(f.taps.size()) - 1; j >= 0; --j)
        if (const int n = m - offset - j; n >= 0 && n % 2 == 0)
            sum.add(f.taps[static_cast<std::size_t>(j)], x[static_cast<std::size_t>(n / 2)]);
    return sum;
}

/// Holds results against sums, and counts those that are not the sum, rounded once.
struct Comparison {
    long outputs = 0, missed = 0;

    void check(Kel32f got, const Sum& sum) {
        const Kel32f want = static_cast<Kel32f>(sum.value);
        ++outputs;
        if (std::isnan(want) || std::isnan(got)) {
            ASSERT_TRUE(std::isnan(want) && std::isnan(got)) << got << " for " << want << ", output " << outputs;
            return;
        }
        if (std::memcmp(&got, &want, sizeof got) == 0) return;
        ++missed;
        ASSERT_LE(std::fabs(got - static_cast<long double>(want)), ulp(want) + std::ldexp(sum.magnitude, -50))
            << got << " for " << want << ", output " << outputs;
    }
    ~Comparison() { EXPECT_LE(missed, outputs / 1000) << "of " << outputs; }
};

// Data

Singles noise(Random& random, int n) { return uniform<Kel32f>(random, static_cast<std::size_t>(n)); }

template <class T>
std::vector<T> signal(Random& random, int n) {
    if constexpr (std::is_same_v<T, Kel32f>) return noise(random, n);
    std::vector<T> x(static_cast<std::size_t>(n));
    for (T& v : x) v = static_cast<T>(random.bits());
    return x;
}

constexpr int lengths[] = {1, 2, 3, 4, 5, 8, 9, 17, 32, 67, 300, 1100};
constexpr int offsets[] = {-1, 0, 1, 2, 3, 8, 61, 900, 901};

/// Banks of all lengths and all offsets, one band's beside another's of the other band.
template <class Body>
void for_banks(Random& random, Body body) {
    for (std::size_t l = 0; l < std::size(lengths); ++l)
        for (std::size_t o = 0; o < std::size(offsets); ++o) {
            const Filter low{noise(random, lengths[l]), offsets[o]};
            const Filter high{noise(random, lengths[(l * 5 + o) % std::size(lengths)]),
                              offsets[(o * 4 + l) % std::size(offsets)]};
            body(Bank{low, high});
        }
}

TEST(FilterBank, MakesTheDefiningSums) {
    Random random("sums");
    Comparison comparison;
    for_banks(random, [&](const Bank& bank) {
        const int count = random.below(2) ? 700 : 1030;
        Singles x = noise(random, 2 * count);
        if (random.below(2)) { // what is no number stays where it belongs
            x[static_cast<std::size_t>(random.below(2 * count))] = std::numeric_limits<Kel32f>::quiet_NaN();
            x[static_cast<std::size_t>(random.below(2 * count))] = std::numeric_limits<Kel32f>::infinity();
        }
        const Channels channels = analysed<Kel32f>(made<Analysis<Kel32f>>(bank).get(), x, at_once);
        for (int k = 0; k < count; k += 1 + k / 40) {
            comparison.check(channels.low[static_cast<std::size_t>(k)], forward_sum(bank.low, x, k));
            comparison.check(channels.high[static_cast<std::size_t>(k)], forward_sum(bank.high, x, k));
        }

        const Channels in{{x.begin(), x.begin() + count}, {x.begin() + count, x.end()}};
        const Singles merged = synthesised<Kel32f>(made<Synthesis<Kel32f>>(bank).get(), in, at_once);
        for (int m = 0; m < 2 * count; m += 1 + m / 40) {
            const Sum low = inverse_sum(bank.low, in.low, m);
            Sum both = inverse_sum(bank.high, in.high, m);
            both.value += static_cast<Kel32f>(low.value); // rounded on the way
            both.magnitude += low.magnitude * 0x1p27L;    // and then, at times, the other way
            comparison.check(merged[static_cast<std::size_t>(m)], both);
        }
    });
}

template <class T>
class FilterBankForm : public testing::Test {};
using SignalTypes = testing::Types<Kel32f, Kel8s, Kel8u, Kel16s, Kel16u>;
TYPED_TEST_SUITE(FilterBankForm, SignalTypes);

TYPED_TEST(FilterBankForm, StreamsMayBeCutAnywhere) {
    using T = TypeParam;
    Random random("cuts");
    for_banks(random, [&](const Bank& bank) {
        const int count = 1500;
        const auto x = signal<T>(random, 2 * count);
        const auto cut = [&] { return random.below(3) ? 1 + random.below(20) : 1 + random.below(700); };
        const Channels whole = analysed(made<Analysis<T>>(bank).get(), x, at_once);
        ASSERT_TRUE(analysed(made<Analysis<T>>(bank).get(), x, cut) == whole);
        const std::vector<T> merged = synthesised<T>(made<Synthesis<T>>(bank).get(), whole, at_once);
        ASSERT_EQ(synthesised<T>(made<Synthesis<T>>(bank).get(), whole, cut), merged);
    });
}

/// Integers are what singles are, converted.
TYPED_TEST(FilterBankForm, ConvertsAsItIsTold) {
    using T = TypeParam;
    Random random("conversions");
    const Bank bank{{noise(random, 9), 3}, {noise(random, 12), -1}};
    const auto x = signal<T>(random, 4000);
    const Singles singles(x.begin(), x.end());
    const Channels channels = analysed(made<Analysis<T>>(bank).get(), x, at_once);
    ASSERT_TRUE(analysed(made<Analysis<Kel32f>>(bank).get(), singles, at_once) == channels);
    const std::vector<T> merged = synthesised<T>(made<Synthesis<T>>(bank).get(), channels, at_once);
    const Singles wanted = synthesised<Kel32f>(made<Synthesis<Kel32f>>(bank).get(), channels, at_once);
    for (std::size_t i = 0; i < merged.size(); ++i) {
        if constexpr (std::is_same_v<T, Kel32f>) {
            ASSERT_EQ(merged[i], wanted[i]);
        } else {
            const Kel32f least = std::numeric_limits<T>::min(), most = std::numeric_limits<T>::max();
            ASSERT_EQ(merged[i], static_cast<T>(std::clamp(std::nearbyint(wanted[i]), least, most))) << wanted[i];
        }
    }
}

/// What a band keeps are its latest samples, and all that another state needs to go on.
template <class F, class Run>
void expect_resumption(const Bank& bank, const Singles& low, const Singles& high, const Run& run) {
    Channels lines{Singles(static_cast<std::size_t>(F::kept(bank.low)) + 1),
                   Singles(static_cast<std::size_t>(F::kept(bank.high)) + 1)};
    const State<F> first = made<F>(bank), second = made<F>(bank);
    run(first.get(), false);
    lines.low.back() = lines.high.back() = 77;
    ASSERT_EQ(F::get(first.get(), lines.low.data(), lines.high.data()), kelStatusOk);
    ASSERT_TRUE(lines.low.back() == 77 && lines.high.back() == 77) << "no more than is kept";
    const auto expect_latest = [](const Singles& line, const Singles& stream) {
        const std::size_t kept = line.size() - 1;
        for (std::size_t i = 0; i < kept; ++i)
            ASSERT_EQ(line[kept - 1 - i], i < stream.size() ? stream[stream.size() - 1 - i] : 0) << i;
    };
    expect_latest(lines.low, low);
    expect_latest(lines.high, high);
    ASSERT_EQ(F::set(second.get(), lines.low.data(), lines.high.data()), kelStatusOk);
    const auto wanted = run(first.get(), true);
    ASSERT_TRUE(run(second.get(), true) == wanted);
    // Where a stream has been already, too.
    ASSERT_EQ(F::set(second.get(), lines.low.data(), lines.high.data()), kelStatusOk);
    ASSERT_TRUE(run(second.get(), true) == wanted);
}

TYPED_TEST(FilterBankForm, GoesOnFromItsDelayLines) {
    using T = TypeParam;
    Random random("delay lines");
    for_banks(random, [&](const Bank& bank) {
        const int before = 1 + random.below(500), after = 40;
        const auto x = signal<T>(random, 2 * before), next = signal<T>(random, 2 * after);
        const Singles seen(x.begin(), x.end());
        expect_resumption<Analysis<T>>(bank, seen, seen, [&](WTFwdState* state, bool goes_on) {
            return analysed(state, goes_on ? next : x, [] { return 7; });
        });
        const Channels in{noise(random, before), noise(random, before)},
            more{noise(random, after), noise(random, after)};
        expect_resumption<Synthesis<T>>(bank, in.low, in.high, [&](WTInvState* state, bool goes_on) {
            return synthesised<T>(state, goes_on ? more : in, [] { return 7; });
        });
    });
}

// Known wavelets, and what PyWavelets makes of sixteen samples with zeros around them: its filters start one sample
// late

constexpr Kel64f db4_low[] = {-0.010597401785, 0.032883011667, 0.030841381836, -0.187034811719,
                              -0.027983769417, 0.63088076793,  0.714846570553, 0.230377813309};
constexpr Kel64f db4_high[] = {-0.230377813309, 0.714846570553, -0.63088076793,  -0.027983769417,
                               0.187034811719,  0.030841381836, -0.032883011667, -0.010597401785};
constexpr Kel64f bior_low[] = {0.000000000000, 0.037828455507, -0.02384946502,  -0.110624404418, 0.377402855613,
                               0.852698679009, 0.377402855613, -0.110624404418, -0.02384946502,  0.037828455507};
constexpr Kel64f bior_high[] = {-0.0,           -0.064538882629, 0.040689417609,  0.418092273222, -0.788485616406,
                                0.418092273222, 0.040689417609,  -0.064538882629, -0.0,           0.0};

constexpr Kel64f db4_low_band[] = {0.088051633216,  -0.409328408439, 1.407152343732, 2.69095443029,
                                   4.657386992075,  -3.080537100917, 0.452907980627, 6.086542207396,
                                   -0.593940826284, 8.524501277208,  4.217940031439};
constexpr Kel64f db4_high_band[] = {1.91416189835,   1.914176392722, 5.184376284173,   5.831159447576,
                                    -9.710997454205, 1.40533861965,  -13.044824166254, 3.182997621148,
                                    -1.428876085288, 0.703872406075, -0.194025651066};
constexpr Kel64f bior_low_band[] = {0.113485366522,  -0.204408856246, 2.658294087483,  3.570907288104,
                                    0.33792095748,   0.818247030666,  -1.768702882468, 10.069736433969,
                                    -3.894226006399, 12.442282864354, -0.37081342763,  0.268907704507};
constexpr Kel64f bior_high_band[] = {-0.193616647886, 1.036810706759, 1.856155300611,  2.326135088572,
                                     10.372381266094, -6.87471585004, -1.344032824288, -7.831515378554,
                                     -5.394510134282, 2.2630494767,   -0.458781690831, 0.0};

Singles singles(std::span<const Kel64f> values) { return {values.begin(), values.end()}; }

/// The bank that undoes one: each band's filter is the other one's, every second sign turned.
Bank inverse_of(const Bank& bank, int offset) {
    Bank inverse{{bank.high.taps, offset}, {bank.low.taps, offset}};
    for (std::size_t i = 0; i < inverse.low.taps.size(); ++i)
        (i % 2 == 0 ? inverse.low.taps : inverse.high.taps)[i] *= -1;
    return inverse;
}

const Bank db4{{singles(db4_low), -1}, {singles(db4_high), -1}};
const Bank bior{{singles(bior_low), -1}, {singles(bior_high), -1}};

TEST(FilterBank, KnownBands) {
    Singles x = {3, 1, 4, 1, 5, -9, 2, 6, -5, 3, 5, 8, -9, 7, 9, 3};
    x.resize(24);
    const auto expect = [&](const Bank& bank, std::span<const Kel64f> low, std::span<const Kel64f> high) {
        const Channels channels = analysed(made<Analysis<Kel32f>>(bank).get(), x, at_once);
        for (std::size_t k = 0; k < low.size(); ++k) {
            EXPECT_NEAR(channels.low[k], low[k], 2e-6) << k;
            EXPECT_NEAR(channels.high[k], high[k], 2e-6) << k;
        }
    };
    expect(db4, db4_low_band, db4_high_band);
    expect(bior, bior_low_band, bior_high_band);
}

TEST(FilterBank, Reconstructs) {
    Random random("reconstruction");
    const auto cut = [&] { return 1 + random.below(90); };
    for (const Bank& bank : {db4, bior})
        for (const int offset : {0, 2, 6, 301}) {
            const Singles x = noise(random, 6000);
            const Channels channels = analysed(made<Analysis<Kel32f>>(bank).get(), x, cut);
            const Singles back =
                synthesised<Kel32f>(made<Synthesis<Kel32f>>(inverse_of(bank, offset)).get(), channels, cut);
            const std::size_t delay = bank.low.taps.size() - 2 + static_cast<std::size_t>(offset);
            for (std::size_t m = 0; m < delay; ++m) ASSERT_NEAR(back[m], 0, 2e-6);
            for (std::size_t m = delay; m < back.size(); ++m) ASSERT_NEAR(back[m], x[m - delay], 2e-6) << m;
        }
}

TEST(FilterBank, OfOneTap) {
    const auto expect = [](int offset, const Singles& forward, const Singles& inverse) {
        const Bank bank{{{2}, offset}, {{0}, 0}};
        EXPECT_EQ(analysed<Kel32f>(made<Analysis<Kel32f>>(bank).get(), {1, 2, 3, 4, 5, 6}, at_once).low, forward);
        EXPECT_EQ(synthesised<Kel32f>(made<Synthesis<Kel32f>>(bank).get(), {{1, 2, 3}, {9, 9, 9}}, at_once), inverse);
    };
    expect(0, {2, 6, 10}, {2, 0, 4, 0, 6, 0});
    expect(-1, {4, 8, 12}, {0, 2, 0, 4, 0, 6});
    expect(1, {0, 4, 8}, {0, 2, 0, 4, 0, 6});
    expect(2, {0, 2, 6}, {0, 0, 2, 0, 4, 0});
}

/// The low band's sum is a single before the high band's is added.
TEST(FilterBank, RoundsTheLowBandFirst) {
    const Bank bank{{{1, 0, 1}, 0}, {{1}, 0}};
    const Channels in{{1, 0x1p-24F}, {0, 0x1p-24F}};
    const Singles x = synthesised<Kel32f>(made<Synthesis<Kel32f>>(bank).get(), in, at_once);
    EXPECT_EQ(x[2], 1) << "1 + 2^-24 is 1, and again";
}

// Frame

TYPED_TEST(FilterBankForm, StaysInItsArrays) {
    using T = TypeParam;
    Random random("guards");
    for (const Edge edge : edges)
        for (const int length : {1, 2, 7, 33})
            for (const int offset : {-1, 0, 5})
                for (const int count : {1, 2, 3, 8, 9, 31, 513}) {
                    const Bank bank{{noise(random, length), offset}, {noise(random, length + 1), 2}};
                    GuardedArray<Kel32f> taps(bank.low.taps, edge), high_taps(bank.high.taps, edge);
                    GuardedArray<T> x(signal<T>(random, 2 * count), edge),
                        back(static_cast<std::size_t>(2 * count), edge);
                    GuardedArray<Kel32f> low(static_cast<std::size_t>(count), edge),
                        high(static_cast<std::size_t>(count), edge);
                    const State<Synthesis<T>> synthesis = made<Synthesis<T>>(bank);
                    WTFwdState* analysis = nullptr;
                    ASSERT_TRUE(runs_without_fault([&] {
                        Analysis<T>::make(&analysis, taps.data(), length, offset, high_taps.data(), length + 1, 2);
                        Analysis<T>::block(x.data(), low.data(), high.data(), count, analysis);
                        Synthesis<T>::block(low.data(), high.data(), count, back.data(), synthesis.get());
                    })) << length
                        << ' ' << offset << ' ' << count;
                    const State<Analysis<T>> owner(analysis, Analysis<T>::release);
                    const Channels wanted = analysed(made<Analysis<T>>(bank).get(), x.values(), at_once);
                    ASSERT_TRUE((Channels{low.values(), high.values()} == wanted));
                    ASSERT_EQ(back.values(), synthesised<T>(made<Synthesis<T>>(bank).get(), wanted, at_once));
                }
}

template <class F>
void expect_statuses_of_making() {
    using S = typename F::State;
    const Kel32f h[] = {1, 2};
    S* state = nullptr;
    expect_nulls_refused(F::make, &state, h, 0, -2, nullptr, 0, -2);
    expect_nulls_refused(F::make, &state, h, 2, -2, h, 0, -2);
    const auto expect = [&](KelStatus status, int low, int low_offset, int high, int high_offset) {
        expect_not_made(status, F::make, h, low, low_offset, h, high, high_offset);
    };
    expect(kelStatusBadSize, 0, -2, 0, -2);
    expect(kelStatusBadSize, 2, -2, 0, -2);
    expect(kelStatusBadWtOffset, 2, -2, 2, 0);
    expect(kelStatusBadWtOffset, 2, 0, 2, INT_MIN);
    for (const auto& [length, offset] : {std::pair{2, INT_MAX}, {INT_MAX, 0}, {INT_MAX, INT_MAX}}) {
        state = untouched<S>();
        EXPECT_EQ(F::make(&state, h, 2, 0, h, length, offset), kelStatusNoMemory);
        EXPECT_EQ(state, nullptr);
    }
    expect_clean_failures<true>(F::make, F::release, h, 2, 3, h, 1, 2);
}

TYPED_TEST(FilterBankForm, ChecksWhatAStateIsMadeOf) {
    expect_statuses_of_making<Analysis<TypeParam>>();
    expect_statuses_of_making<Synthesis<TypeParam>>();
}

TYPED_TEST(FilterBankForm, RefusesInTheOrderOfItsChecks) {
    using T = TypeParam;
    using Other = std::conditional_t<std::is_same_v<T, Kel16s>, Kel32f, Kel16s>;
    using A = Analysis<T>;
    using S = Synthesis<T>;
    const Bank bank{{{1, 2, 3}, 0}, {{4}, 1}};
    const auto analysis = made<A>(bank);
    const auto synthesis = made<S>(bank);
    const auto foreign_analysis = made<Analysis<Other>>(bank);
    const auto foreign_synthesis = made<Synthesis<Other>>(bank);
    T x[4] = {1, 2, 3, 4};
    Kel32f low[4] = {9, 9, 9, 9}, high[4] = {9, 9, 9, 9};

    expect_nulls_refused(A::block, x, low, high, 0, analysis.get());
    EXPECT_EQ(A::block(nullptr, low, high, 0, foreign_analysis.get()), kelStatusContextMismatch);
    for (const int bad : bad_lengths) EXPECT_EQ(A::block(x, low, high, bad, analysis.get()), kelStatusBadSize);
    expect_nulls_refused(S::block, low, high, 0, nullptr, synthesis.get());
    expect_nulls_refused(S::block, low, high, 2, x, synthesis.get());
    EXPECT_EQ(S::block(nullptr, high, 0, nullptr, foreign_synthesis.get()), kelStatusContextMismatch);
    for (const int bad : bad_lengths) EXPECT_EQ(S::block(low, high, bad, nullptr, synthesis.get()), kelStatusBadSize);

    const auto expect_lines = [&]<class F>(F, const auto& own, const auto& foreign) {
        expect_nulls_refused(F::get, own.get(), low, high);
        expect_nulls_refused(F::set, own.get(), low, high);
        EXPECT_EQ(F::get(foreign.get(), nullptr, high), kelStatusContextMismatch);
        EXPECT_EQ(F::set(foreign.get(), nullptr, high), kelStatusContextMismatch);
        EXPECT_EQ(F::release(nullptr), kelStatusNullPtr);
        EXPECT_EQ(F::release(foreign.get()), kelStatusContextMismatch);
    };
    expect_lines(A{}, analysis, foreign_analysis);
    expect_lines(S{}, synthesis, foreign_synthesis);
    for (int i = 0; i < 4; ++i) EXPECT_TRUE(x[i] == static_cast<T>(i + 1) && low[i] == 9 && high[i] == 9);

    in_odd_modes([&] {
        A::block(x, low, high, 2, analysis.get());
        S::block(low, high, 2, x, synthesis.get());
    });
}

} // namespace
