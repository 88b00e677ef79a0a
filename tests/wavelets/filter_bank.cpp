// Filter banks against their defining sums in extended precision, through streams cut anywhere.

#include "filters/careful.h"
#include "filters/checks.h"
#include "filters/samples.h"
#include "wavelets/families.h"

namespace {

using namespace kels_test;
using namespace filter_test;
using namespace wavelet_test;

using Singles = std::vector<Kel32f>;

/// The taps and the offset of a band.
struct Filter {
    Singles taps;
    int offset;

    int length() const { return static_cast<int>(taps.size()); }
};

struct Bank {
    Filter low, high;
};

template <class F>
using State = Owned<typename F::State>;

template <class F>
State<F> made(const Bank& bank) {
    const GuardedArray<Kel32f> low(bank.low.taps, Edge::back), high(bank.high.taps, Edge::back);
    return kels_test::made(F::make, F::release, low.data(), bank.low.length(), bank.low.offset, high.data(),
                           bank.high.length(), bank.high.offset);
}

struct Channels {
    Singles low, high;

    bool operator==(const Channels& other) const { return same_bits(low, other.low) && same_bits(high, other.high); }
};

/// Calls for blocks of a stream: `next()` is the length of each, in samples of a channel.
template <class Next, class Call>
void in_blocks(std::size_t count, Next next, Call call) {
    static Careful careful;
    const int all = static_cast<int>(count);
    for (int done = 0, n; done < all; done += n) {
        n = std::min(next(), all - done);
        call(careful, done, n);
    }
}

template <class T, class Next>
Channels analysed(WTFwdState* state, const std::vector<T>& x, Next next) {
    Channels channels;
    in_blocks(x.size() / 2, next, [&](Careful& careful, int done, int n) {
        const GuardedArray<T> source(piece(x, 2 * done, 2 * n), careful.edge());
        GuardedArray<Kel32f> high(static_cast<std::size_t>(n), careful.edge());
        append(channels.low, results<Kel32f>(careful, static_cast<std::size_t>(n), [&](Kel32f* low) {
                   return Analysis<T>::block(source.data(), low, high.data(), n, state);
               }));
        append(channels.high, high.values());
    });
    return channels;
}

template <class T, class Next>
std::vector<T> synthesised(WTInvState* state, const Channels& channels, Next next) {
    std::vector<T> x;
    in_blocks(channels.low.size(), next, [&](Careful& careful, int done, int n) {
        const GuardedArray<Kel32f> low(piece(channels.low, done, n), careful.edge()),
            high(piece(channels.high, done, n), careful.edge());
        append(x, results<T>(careful, static_cast<std::size_t>(2 * n),
                             [&](T* to) { return Synthesis<T>::block(low.data(), high.data(), n, to, state); }));
    });
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

void check(Accuracy& accuracy, Kel32f got, const Sum& sum) {
    accuracy.check(got, sum.value, std::ldexp(sum.magnitude, -50));
}

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
    Accuracy accuracy;
    for_banks(random, [&](const Bank& bank) {
        const int count = random.below(2) ? 700 : 1030;
        Singles x = noise(random, 2 * count);
        if (random.below(2)) { // what is no number stays where it belongs
            x[static_cast<std::size_t>(random.below(2 * count))] = std::numeric_limits<Kel32f>::quiet_NaN();
            x[static_cast<std::size_t>(random.below(2 * count))] = std::numeric_limits<Kel32f>::infinity();
        }
        const Channels channels = analysed<Kel32f>(made<Analysis<Kel32f>>(bank).get(), x, at_once);
        for (int k = 0; k < count; k += 1 + k / 40) {
            check(accuracy, channels.low[static_cast<std::size_t>(k)], forward_sum(bank.low, x, k));
            check(accuracy, channels.high[static_cast<std::size_t>(k)], forward_sum(bank.high, x, k));
        }

        const Channels in{{x.begin(), x.begin() + count}, {x.begin() + count, x.end()}};
        const Singles merged = synthesised<Kel32f>(made<Synthesis<Kel32f>>(bank).get(), in, at_once);
        for (int m = 0; m < 2 * count; m += 1 + m / 40) {
            const Sum low = inverse_sum(bank.low, in.low, m);
            Sum both = inverse_sum(bank.high, in.high, m);
            both.value += static_cast<Kel32f>(low.value); // rounded on the way
            both.magnitude += low.magnitude * 0x1p27L;    // and then, at times, the other way
            check(accuracy, merged[static_cast<std::size_t>(m)], both);
        }
    });
    EXPECT_LE(accuracy.missed_bits, accuracy.results / 1000);
}

template <class T>
class FilterBankForm : public testing::Test {};
using SignalTypes = testing::Types<Kel32f, Kel8s, Kel8u, Kel16s, Kel16u>;
TYPED_TEST_SUITE(FilterBankForm, SignalTypes);

/// The same sums, converted, however streams are cut.
TYPED_TEST(FilterBankForm, StreamsOfAnyTypeMayBeCutAnywhere) {
    using T = TypeParam;
    Random random("cuts");
    const auto cut = [&] { return random.below(3) ? 1 + random.below(20) : 1 + random.below(700); };
    for_banks(random, [&](const Bank& bank) {
        const auto x = signal<T>(random, random.below(20) == 0 ? 10000 : 3000);
        const Singles singles(x.begin(), x.end());
        const Channels channels = analysed(made<Analysis<Kel32f>>(bank).get(), singles, at_once);
        ASSERT_TRUE(analysed(made<Analysis<T>>(bank).get(), x, cut) == channels);
        ASSERT_TRUE(analysed(made<Analysis<T>>(bank).get(), x, at_once) == channels);
        const Singles merged = synthesised<Kel32f>(made<Synthesis<Kel32f>>(bank).get(), channels, at_once);
        std::vector<T> wanted;
        for (const Kel32f v : merged) {
            constexpr auto least = std::numeric_limits<T>::lowest(), most = std::numeric_limits<T>::max();
            wanted.push_back(std::is_integral_v<T> ? static_cast<T>(std::clamp<Kel32f>(std::nearbyint(v), least, most))
                                                   : static_cast<T>(v));
        }
        ASSERT_EQ(synthesised<T>(made<Synthesis<T>>(bank).get(), channels, cut), wanted);
        ASSERT_EQ(synthesised<T>(made<Synthesis<T>>(bank).get(), channels, at_once), wanted);
    });
}

/// What a band keeps are its latest samples, and all that another state needs to go on.
template <class F, class Run>
void expect_resumption(const Bank& bank, const Singles& low, const Singles& high, const Run& run) {
    const auto kept = [](const Filter& f) { return static_cast<std::size_t>(F::kept(f.length(), f.offset)); };
    GuardedArray<Kel32f> low_line(kept(bank.low), Edge::back), high_line(kept(bank.high), Edge::back);
    const State<F> first = made<F>(bank), second = made<F>(bank);
    run(first.get(), false);
    ASSERT_EQ(F::get(first.get(), low_line.data(), high_line.data()), kelStatusOk);
    const auto expect_latest = [](const Singles& line, Singles stream) {
        stream.insert(stream.begin(), line.size(), 0);
        ASSERT_EQ(line, Singles(stream.end() - static_cast<std::ptrdiff_t>(line.size()), stream.end()));
    };
    expect_latest(low_line.values(), low);
    expect_latest(high_line.values(), high);
    const auto wanted = run(first.get(), true);
    for (int twice = 0; twice < 2; ++twice) { // where a stream has been already, too
        ASSERT_EQ(F::set(second.get(), low_line.data(), high_line.data()), kelStatusOk);
        ASSERT_TRUE(run(second.get(), true) == wanted);
    }
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

// Known wavelets

const Singles db4_low = {-0.010597401785F, 0.032883011667F, 0.030841381836F, -0.187034811719F,
                         -0.027983769417F, 0.63088076793F,  0.714846570553F, 0.230377813309F};
const Singles db4_high = {-0.230377813309F, 0.714846570553F, -0.63088076793F,  -0.027983769417F,
                          0.187034811719F,  0.030841381836F, -0.032883011667F, -0.010597401785F};
const Singles bior_low = {0.000000000000F, 0.037828455507F, -0.02384946502F,  -0.110624404418F, 0.377402855613F,
                          0.852698679009F, 0.377402855613F, -0.110624404418F, -0.02384946502F,  0.037828455507F};
const Singles bior_high = {-0.0F,           -0.064538882629F, 0.040689417609F,  0.418092273222F, -0.788485616406F,
                           0.418092273222F, 0.040689417609F,  -0.064538882629F, -0.0F,           0.0F};

/// The bank that undoes one: each band's filter is the other one's, every second sign turned.
Bank inverse_of(const Bank& bank, int offset) {
    Bank inverse{{bank.high.taps, offset}, {bank.low.taps, offset}};
    for (std::size_t i = 0; i < inverse.low.taps.size(); ++i)
        (i % 2 == 0 ? inverse.low.taps : inverse.high.taps)[i] *= -1;
    return inverse;
}

TEST(FilterBank, Reconstructs) {
    Random random("reconstruction");
    const auto cut = [&] { return 1 + random.below(90); };
    const Bank db4{{db4_low, -1}, {db4_high, -1}}, bior{{bior_low, -1}, {bior_high, -1}};
    for (const Bank& bank : {db4, bior})
        for (const int offset : {0, 2, 6, 301}) {
            const Singles x = uniform<Kel32f>(random, 6000);
            const Channels channels = analysed(made<Analysis<Kel32f>>(bank).get(), x, cut);
            const Singles back =
                synthesised<Kel32f>(made<Synthesis<Kel32f>>(inverse_of(bank, offset)).get(), channels, cut);
            const std::size_t delay = bank.low.taps.size() - 2 + static_cast<std::size_t>(offset);
            for (std::size_t m = 0; m < delay; ++m) ASSERT_NEAR(back[m], 0, 2e-6);
            for (std::size_t m = delay; m < back.size(); ++m) ASSERT_NEAR(back[m], x[m - delay], 2e-6) << m;
        }
}

// Literal values

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

template <class F>
void expect_statuses_of_making() {
    using S = typename F::State;
    Untouched memory;
    S** const state = memory.array<S*>(1);
    const Kel32f* const h = memory.array<Kel32f>({1, 2});
    memory.expect_refusals(F::make, std::tuple(state, h, 2, 0, h, 2, 0),
                           {null(0),
                            null(1),
                            size(2),
                            null(4),
                            size(5),
                            {3, kelStatusBadWtOffset, {-2, INT_MIN}},
                            {6, kelStatusBadWtOffset, {-2, INT_MIN}}});
    for (const auto& [length, offset] : {std::pair{2, INT_MAX}, {INT_MAX, 0}, {INT_MAX, INT_MAX}}) {
        EXPECT_EQ(F::make(state, h, 2, 0, h, length, offset), kelStatusNoMemory);
        EXPECT_EQ(*state, nullptr);
    }
    expect_clean_failures<true>(F::make, F::release, h, 2, 3, h, 1, 2);
}

TYPED_TEST(FilterBankForm, ChecksWhatAStateIsMadeOf) {
    expect_statuses_of_making<Analysis<TypeParam>>();
    expect_statuses_of_making<Synthesis<TypeParam>>();
}

/// States of a bank, and those of another form.
template <class F, class Other>
struct States {
    State<F> own;
    std::vector<State<Other>> others;

    explicit States(const Bank& bank) : own(made<F>(bank)) { others.push_back(made<Other>(bank)); }

    void expect_checks_of_lines(Untouched& memory) const {
        auto *const low = memory.array<Kel32f>(3), *const high = memory.array<Kel32f>(3);
        const std::tuple good(own.get(), low, high);
        memory.expect_checks(F::get, good, {null(0), foreign(0, others), null(1), null(2)});
        memory.expect_checks(F::set, good, {null(0), foreign(0, others), null(1), null(2)});
        memory.expect_refusals(F::release, std::tuple(own.get()), {null(0), foreign(0, others)});
    }
};

TYPED_TEST(FilterBankForm, RefusesInTheOrderOfItsChecks) {
    using T = TypeParam;
    using Other = std::conditional_t<std::is_same_v<T, Kel16s>, Kel32f, Kel16s>;
    const Bank bank{{{1, 2, 3}, 0}, {{4}, 1}};
    const States<Analysis<T>, Analysis<Other>> analysis(bank);
    const States<Synthesis<T>, Synthesis<Other>> synthesis(bank);
    Untouched memory;
    T* const x = memory.array<T>(4);
    auto *const low = memory.array<Kel32f>(4), *const high = memory.array<Kel32f>(4);
    memory.expect_checks(Analysis<T>::block, std::tuple(x, low, high, 2, analysis.own.get()),
                         {null(4), foreign(4, analysis.others), null(0), null(1), null(2), size(3)});
    memory.expect_checks(Synthesis<T>::block, std::tuple(low, high, 2, x, synthesis.own.get()),
                         {null(4), foreign(4, synthesis.others), null(0), null(1), size(2), null(3)});
    analysis.expect_checks_of_lines(memory);
    synthesis.expect_checks_of_lines(memory);
}

} // namespace
