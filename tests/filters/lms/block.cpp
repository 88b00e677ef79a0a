// Adaptive filters of real taps: every step against the rule in extended precision, from the taps that the library had
// before it; streams, contexts and direct forms against each other, bit by bit.

#include "filters/careful.h"
#include "filters/checks.h"
#include "filters/lms/families.h"
#include "support/exact.h"

#include <utility>

namespace {

using namespace kels_test;
using namespace filter_test;
using namespace lms_test;

template <class T>
std::vector<T> noise(Random& random, int n, double size) {
    return uniform<T>(random, static_cast<std::size_t>(n), size);
}

using Context = Owned<KelLmsContext>;

template <class T>
Context make(const std::vector<Kel32f>& taps, const std::vector<T>& line, int index) {
    return made(Lms<T>::make, Lms<T>::release, taps.data(), static_cast<int>(taps.size()), line.data(), index);
}

template <class T>
std::vector<Kel32f> taps_of(const Context& context, std::size_t count) {
    std::vector<Kel32f> taps(count);
    EXPECT_EQ(Lms<T>::get_taps(context.get(), taps.data()), kelStatusOk);
    return taps;
}

/// The delay line and the index.
template <class T>
std::pair<std::vector<T>, int> line_of(const Context& context, std::size_t count) {
    std::pair<std::vector<T>, int> line(count, -1);
    EXPECT_EQ(Lms<T>::get_line(context.get(), line.first.data(), &line.second), kelStatusOk);
    return line;
}

/// What the result may be stored over.
enum Over { neither, source, reference };

template <class T>
std::vector<T> adapted(const Context& context, const std::vector<T>& x, const std::vector<T>& r, Kel32f mu,
                       Over over = neither) {
    static Careful careful;
    GuardedArray<T> src(x, careful.edge()), ref(r, careful.edge()), dst(x.size(), careful.edge());
    auto& y = over == source ? src : over == reference ? ref : dst;
    EXPECT_EQ(careful.attempt([&] {
        return Lms<T>::block(src.data(), ref.data(), y.data(), static_cast<int>(x.size()), mu, context.get());
    }),
              kelStatusOk);
    return y.values();
}

/// The caller's arrays of a direct form, from taps in natural order and half a ring.
template <class T, class Tap = Kel32f>
struct Arrays {
    std::vector<Tap> taps;
    std::vector<T> ring;
    int index;

    Arrays(const std::vector<Tap>& natural, const std::vector<T>& half, int at)
        : taps(natural.rbegin(), natural.rend()), ring(half), index(at) {
        ring.insert(ring.end(), half.begin(), half.end());
    }
    int len() const { return static_cast<int>(taps.size()); }
};

template <class T>
class LmsTest : public testing::Test {};
using Samples = testing::Types<Kel32f, Kel16s>;
TYPED_TEST_SUITE(LmsTest, Samples);

constexpr int tap_counts[] = {1, 2, 3, 7, 15, 16, 17, 31, 32, 33, 64, 100, 255, 256, 300};

template <class T>
bool within_rule(T got, long double output, long double slack) {
    if constexpr (std::is_integral_v<T>) {
        const auto cut = [](long double y) {
            return static_cast<T>(std::trunc(std::clamp<long double>(y, SHRT_MIN, SHRT_MAX)));
        };
        return got == cut(output) || got == cut(output - slack) || got == cut(output + slack);
    } else {
        return std::abs(got - output) <= ulp(static_cast<T>(output)) + slack;
    }
}

// Sample by sample against the rule; then in one block, in pieces, over the source or the reference, and by the form
// without a context: the same bits.
TYPED_TEST(LmsTest, StreamsFollowTheRuleHoweverTheyAreCut) {
    using T = TypeParam;
    constexpr double size = std::is_integral_v<T> ? 10000 : 1; // of samples
    constexpr int steps = 1200;
    int bits = 0, other_bits = 0;
    for (const int L : tap_counts) {
        Random random("lms " + std::to_string(L));
        const auto taps = noise<Kel32f>(random, L, 1);
        const auto start = noise<T>(random, L, size), x = noise<T>(random, steps, size),
                   r = noise<T>(random, steps, size);
        const int first = random.below(L);
        const auto mu = static_cast<Kel32f>(0.3 / (L * size * size));
        const Context context = make(taps, start, first);
        auto line = start;
        std::vector<T> y;
        for (int step = 0; step < steps; ++step) {
            const auto at = static_cast<std::size_t>(step);
            const std::vector<Kel32f> before = taps_of<T>(context, line.size());
            y.push_back(adapted<T>(context, {x[at]}, {r[at]}, mu)[0]);
            const int newest = (first + step) % L;
            line[static_cast<std::size_t>(newest)] = x[at];
            const auto sample = [&](int k) -> long double { // k before the newest
                return line[static_cast<std::size_t>((newest - k + L) % L)];
            };
            long double output = 0, magnitudes = 0;
            for (int k = L - 1; k >= 0; --k) {
                output += before[static_cast<std::size_t>(k)] * sample(k);
                magnitudes += std::abs(before[static_cast<std::size_t>(k)] * sample(k));
            }
            const long double slack = L * 0x1p-53L * magnitudes;
            ASSERT_PRED3(within_rule<T>, y.back(), output, slack) << L << " taps, step " << step;

            const std::vector<Kel32f> after = taps_of<T>(context, line.size());
            const long double error = (r[at] - output) * 2 * mu;
            for (int k = 0; k < L; ++k) {
                const long double exact = sample(k) * error + before[static_cast<std::size_t>(k)];
                const Kel32f wanted = static_cast<Kel32f>(exact), got = after[static_cast<std::size_t>(k)];
                ASSERT_LE(std::abs(got - wanted), ulp(wanted)) << L << " taps, tap " << k;
                ++bits;
                other_bits += got != wanted;
            }
        }
        const auto last_taps = taps_of<T>(context, line.size());
        const int last = (first + steps) % L;
        EXPECT_EQ(line_of<T>(context, line.size()), std::pair(line, last)) << L;

        for (const int longest : {200, 2 * steps}) {
            const Context cut = make(taps, start, first);
            std::vector<T> pieces;
            for (int done = 0, n; done < steps; done += n) {
                n = std::min(1 + random.below(longest), steps - done);
                const Over over = static_cast<Over>(random.below(3));
                append(pieces, adapted(cut, piece(x, done, n), piece(r, done, n), mu, over));
            }
            EXPECT_EQ(pieces, y) << L;
            EXPECT_EQ(taps_of<T>(cut, taps.size()), last_taps) << L;
            EXPECT_EQ(line_of<T>(cut, line.size()), std::pair(line, last)) << L;
        }
        for (const Edge edge : edges) {
            const Arrays<T> arrays(taps, start, first);
            GuardedArray<Kel32f> own_taps(arrays.taps, edge);
            GuardedArray<T> ring(arrays.ring, edge);
            int index = first;
            std::vector<T> values = x;
            ASSERT_TRUE(runs_without_fault([&] {
                for (std::size_t i = 0; i < x.size(); ++i)
                    Lms<T>::one(x[i], r[i], &values[i], own_taps.data(), L, mu, ring.data(), &index);
            }));
            EXPECT_EQ(values, y) << L;
            EXPECT_EQ(own_taps.values(), std::vector<Kel32f>(last_taps.rbegin(), last_taps.rend())) << L;
            append(line, std::vector<T>(line));
            EXPECT_EQ(ring.values(), line) << L;
            EXPECT_EQ(index, last);
            line.resize(taps.size());
        }
    }
    EXPECT_LE(other_bits, bits / 1000);
}

TYPED_TEST(LmsTest, LeavesTheModesAlone) {
    const Context context = make(std::vector<Kel32f>(23, 0.1F), std::vector<TypeParam>(23), 0);
    in_odd_modes([&] { adapted(context, std::vector<TypeParam>(100, 1), std::vector<TypeParam>(100, 2), 0.1F); });
}

TYPED_TEST(LmsTest, FindsAnUnknownSystem) {
    using T = TypeParam;
    constexpr double size = std::is_integral_v<T> ? 10000 : 1;
    Random random("identification");
    const auto x = noise<T>(random, 3000, size);
    auto halves = x; // of the differences of neighbours
    for (std::size_t i = x.size(); --i > 0;) halves[i] = static_cast<T>((x[i] - x[i - 1]) / 2);
    const Context context = make<T>(std::vector<Kel32f>(4), std::vector<T>(4), 0);
    const auto y = adapted(context, x, halves, static_cast<Kel32f>(0.1 / (size * size)));
    for (std::size_t i = x.size() - 100; i < x.size(); ++i) EXPECT_NEAR(y[i], halves[i], size / 2000) << i;
}

TEST(Lms16s, OutputsAreSaturatedAndCutWhileTheErrorIsNot) {
    const Kel32f nan = std::numeric_limits<Kel32f>::quiet_NaN();
    const std::pair<Kel32f, Kel16s> outputs[] = {{2.9F, 2},        {-2.9F, -2},        {40000, 32767},
                                                 {-40000, -32768}, {32767.99F, 32767}, {-32768.5F, -32768},
                                                 {nan, 32767},     {0.99F, 0}};
    for (const auto& [tap, wanted] : outputs) {
        const Context context = make<Kel16s>({tap}, {0}, 0);
        EXPECT_EQ(adapted<Kel16s>(context, {1}, {0}, 0.25F)[0], wanted) << tap;
        if (tap == tap) {
            EXPECT_EQ(taps_of<Kel16s>(context, 1)[0], tap / 2);
        }
        Arrays<Kel16s> arrays({tap}, {0}, 0);
        Kel16s y = 99;
        EXPECT_EQ(
            kelsFIRLMSOne_Direct32f_16s(1, 0, &y, arrays.taps.data(), 1, 0.25F, arrays.ring.data(), &arrays.index),
            kelStatusOk);
        EXPECT_EQ(y, wanted) << tap;
    }
}

// What stands beside the taps, to fill vectors, stays out of the sum.
TEST(Lms32f, AnInfiniteErrorMakesInfiniteTaps) {
    for (std::size_t count = 1; count <= 40; ++count) {
        const std::vector<Kel32f> zeros(count), ones(count, 1.0F), x = {1, 1}, reference = {HUGE_VALF, 0};
        const Context context = make(zeros, ones, 0);
        std::vector<Kel32f> y(2);
        EXPECT_EQ(kelsFIRLMS_32f(x.data(), reference.data(), y.data(), 2, 0.5F, context.get()), kelStatusOk);
        EXPECT_EQ(y, (std::vector<Kel32f>{0, HUGE_VALF})) << count;
    }
}

// What precedes the window is not met, whatever it holds: the oldest sample of a line has no influence.
TEST(Lms32f, AForgottenSampleStaysForgotten) {
    for (const int L : {1, 3, 16, 20}) {
        std::vector<Kel32f> line(static_cast<std::size_t>(L), 1), x = {1, 2, 3}, y(3), wanted(3);
        const std::vector<Kel32f> taps(line.size(), 0.5F);
        const Context clean = make(taps, line, 0);
        line[0] = std::numeric_limits<Kel32f>::quiet_NaN();
        const Context context = make(taps, line, 0);
        kelsFIRLMS_32f(x.data(), x.data(), y.data(), 3, 0.01F, context.get());
        kelsFIRLMS_32f(x.data(), x.data(), wanted.data(), 3, 0.01F, clean.get());
        EXPECT_EQ(y, wanted) << L;
        EXPECT_EQ(taps_of<Kel32f>(context, taps.size()), taps_of<Kel32f>(clean, taps.size())) << L;
    }
}

// The frame

TYPED_TEST(LmsTest, ContextsAreChecked) {
    using T = TypeParam;
    using Other = Lms<std::conditional_t<sizeof(T) == 4, Kel16s, Kel32f>>;
    const Context own = make<T>({1, 2}, {3, 4}, 1);
    std::vector<Context> others;
    others.push_back(made(Other::make, Other::release, nullptr, 2, nullptr, 0));
    Untouched memory;
    auto* const taps = memory.array<Kel32f>(2);
    auto* const x = memory.array<T>({1, 2});
    int* const at = memory.array({7});
    memory.expect_checks(Lms<T>::get_taps, std::tuple(own.get(), taps), {null(0), null(1), foreign(0, others)});
    memory.expect_checks(Lms<T>::get_line, std::tuple(own.get(), x, at),
                         {null(0), null(1), null(2), foreign(0, others)});
    memory.expect_checks(Lms<T>::block, std::tuple(x, x, x, 1, 0.F, own.get()),
                         {null(0), null(1), null(2), null(5), size(3), foreign(5, others)});
    memory.expect_checks(Lms<T>::set_line, std::tuple(own.get(), x, 1),
                         {null(0), foreign(0, others), index(2, 2, kelStatusBadDlyLineIndex)});
    EXPECT_EQ(line_of<T>(own, 2), std::pair(std::vector<T>(x, x + 2), 1));
    EXPECT_EQ(Lms<T>::set_line(own.get(), nullptr, 0), kelStatusOk);
    EXPECT_EQ(line_of<T>(own, 2), std::pair(std::vector<T>(2), 0));
    EXPECT_EQ(Lms<T>::release(others[0].release()), kelStatusOk) << "either family releases";
    EXPECT_EQ(Lms<T>::release(nullptr), kelStatusOk);
}

TYPED_TEST(LmsTest, CreationRefusesAndRunsOutOfMemory) {
    using T = TypeParam;
    Untouched memory;
    memory.expect_refusals(Lms<T>::make, std::tuple(memory.array<KelLmsContext*>(1), nullptr, 5),
                           {null(0), size(2), index(4, 5, kelStatusBadDlyLineIndex)});
    for (const int huge : {INT_MAX, INT_MAX - 16, 1 << 30, 1 << 28})
        expect_not_made(kelStatusNoMemory, Lms<T>::make, nullptr, huge, nullptr, 0);
    expect_clean_failures(Lms<T>::make, Lms<T>::release, nullptr, 40, nullptr, 39);
}

// Integer taps

/// One step as the rule tells it, every product in its width.
void model_q15(Kel16s x, Kel16s r, Kel16s& y, Arrays<Kel16s, Kel32s>& a, int mu) {
    const int L = a.len();
    a.ring[static_cast<std::size_t>(a.index)] = a.ring[static_cast<std::size_t>(a.index + L)] = x;
    a.index = (a.index + 1) % L;
    const Kel16s* w = &a.ring[static_cast<std::size_t>(a.index)];
    std::int64_t sum = 0, energy = 0;
    for (int i = 0; i < L; ++i) {
        sum += static_cast<std::int32_t>(static_cast<std::uint32_t>(a.taps[static_cast<std::size_t>(i)]) *
                                         static_cast<std::uint32_t>(w[i]));
        energy += std::int64_t{w[i]} * w[i];
    }
    const std::int64_t t = (sum + 16383 + ((sum >> 15) & 1)) >> 15;
    y = static_cast<Kel16s>(std::clamp<std::int64_t>(t, SHRT_MIN, SHRT_MAX));
    if (energy == 0) return;
    const auto wrapped = [](std::int64_t p, std::int64_t q) {
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(p) * static_cast<std::uint64_t>(q));
    };
    const std::int64_t g = wrapped(mu, r - t);
    for (int i = 0; i < L; ++i) {
        Kel32s& tap = a.taps[static_cast<std::size_t>(i)];
        tap = static_cast<Kel32s>(std::clamp<std::int64_t>(tap + wrapped(g, w[i]) / energy, INT_MIN, INT_MAX));
    }
}

TEST(LmsQ15, EveryStepIsThatOfTheRule) {
    constexpr Kel16s extremes[] = {SHRT_MIN, SHRT_MAX, -1, 0, 1};
    for (const int L : {1, 2, 3, 8, 17, 40})
        for (const int kind : {0, 1, 2}) { // ordinary values, extremes, mostly silence
            Random random("q15 " + std::to_string(L) + std::to_string(kind));
            const auto sample = [&] {
                if (kind == 1) return extremes[random.below(5)];
                if (kind == 2) return static_cast<Kel16s>(random.below(4) ? 0 : random.below(3) - 1);
                return static_cast<Kel16s>(random.bits());
            };
            std::vector<Kel32s> taps(static_cast<std::size_t>(L));
            std::vector<Kel16s> line(taps.size());
            for (Kel32s& tap : taps) tap = static_cast<Kel32s>(random.bits()) >> (kind == 1 ? 0 : 14);
            for (Kel16s& v : line) v = sample();
            Arrays<Kel16s, Kel32s> got(taps, line, random.below(L)), wanted = got;
            for (int step = 0; step < 300; ++step) {
                constexpr int steps[] = {INT_MIN, INT_MAX, -1, 0, 1, 32768, 3277};
                const int mu = steps[random.below(7)];
                const Kel16s x = sample(), r = sample();
                Kel16s y = 0, wanted_y = 0;
                ASSERT_EQ(kelsFIRLMSOne_DirectQ15_16s(x, r, &y, got.taps.data(), L, mu, got.ring.data(), &got.index),
                          kelStatusOk);
                model_q15(x, r, wanted_y, wanted, mu);
                ASSERT_EQ(y, wanted_y) << L << " taps, step " << step;
                ASSERT_EQ(got.taps, wanted.taps) << L << " taps, step " << step << " mu " << mu;
            }
            EXPECT_EQ(got.ring, wanted.ring);
            EXPECT_EQ(got.index, wanted.index);
        }
}

TEST(LmsQ15, Literals) {
    struct {
        Kel32s tap;
        Kel16s x, wanted;
    } const literals[] = {{49152, 1, 2},       {81920, 1, 2},   {-49152, 1, -2}, {16384, 1, 0},
                          {1 << 30, 1, 32767}, {INT_MAX, 2, 0}, {12345, 0, 0}};
    for (const auto& literal : literals) {
        Kel32s tap = literal.tap;
        Kel16s ring[2] = {}, y = 99;
        int index = 0;
        EXPECT_EQ(kelsFIRLMSOne_DirectQ15_16s(literal.x, 0, &y, &tap, 1, 0, ring, &index), kelStatusOk);
        EXPECT_EQ(y, literal.wanted) << literal.tap;
        EXPECT_EQ(tap, literal.tap);
    }
}

TEST(LmsQ15, FindsAnUnknownSystem) {
    Kel32s taps[4] = {};
    Kel16s ring[8] = {}, before = 0;
    int index = 0;
    Random random("q15 identification");
    for (int i = 0; i < 4000; ++i) {
        const auto x = static_cast<Kel16s>(random.below(20001) - 10000), half = static_cast<Kel16s>((x - before) / 2);
        Kel16s y;
        kelsFIRLMSOne_DirectQ15_16s(x, half, &y, taps, 4, 8192, ring, &index);
        if (i >= 3900) {
            EXPECT_NEAR(y, half, 20);
        }
        before = x;
    }
}

template <class T, class Tap, class Mu>
void expect_checks(KelStatus (*one)(T, T, T*, Tap*, int, Mu, T*, int*)) {
    Untouched memory;
    int* const place = memory.array({1});
    const std::tuple good(T{1}, T{1}, memory.array<T>(1), memory.array<Tap>({1, 2, 3}), 3, Mu{1},
                          memory.array<T>({1, 2, 3, 1, 2, 3}), place);
    memory.expect_checks(one, good, {null(2), null(3), null(6), null(7), size(4)});
    for (const int bad : {-1, 3, INT_MIN, INT_MAX}) {
        *place = bad;
        memory.expect_refusals(one, good, {{4, kelStatusBadDlyLineIndex, {3}}});
    }
}

TEST(LmsDirect, ChecksInOrderAndStoresNothing) {
    expect_checks(kelsFIRLMSOne_Direct_32f);
    expect_checks(kelsFIRLMSOne_Direct32f_16s);
    expect_checks(kelsFIRLMSOne_DirectQ15_16s);
}

} // namespace
