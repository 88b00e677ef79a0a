// Adaptive filters of real taps: every step against the rule in extended precision, from the taps that the library had
// before it; streams, contexts and direct forms against each other, bit by bit.

#include "kels/lms.h"
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
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using namespace kels_test;

template <class T, auto make_, auto release_, auto get_taps_, auto get_line_, auto set_line_, auto block_, auto one_>
struct Functions {
    static constexpr auto make = make_;
    static constexpr auto release = release_;
    static constexpr auto get_taps = get_taps_;
    static constexpr auto get_line = get_line_;
    static constexpr auto set_line = set_line_;
    static constexpr auto block = block_;
    static constexpr auto one = one_;
    static constexpr double size = std::is_integral_v<T> ? 10000 : 1; ///< of samples
};

template <class T>
struct Lms;
template <>
struct Lms<Kel32f>
    : Functions<Kel32f, kelsFIRLMSInitAlloc_32f, kelsFIRLMSFree_32f, kelsFIRLMSGetTaps_32f, kelsFIRLMSGetDlyLine_32f,
                kelsFIRLMSSetDlyLine_32f, kelsFIRLMS_32f, kelsFIRLMSOne_Direct_32f> {};
template <>
struct Lms<Kel16s> : Functions<Kel16s, kelsFIRLMSInitAlloc32f_16s, kelsFIRLMSFree32f_16s, kelsFIRLMSGetTaps32f_16s,
                               kelsFIRLMSGetDlyLine32f_16s, kelsFIRLMSSetDlyLine32f_16s, kelsFIRLMS32f_16s,
                               kelsFIRLMSOne_Direct32f_16s> {};

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
    std::vector<Tap> natural() const { return {taps.rbegin(), taps.rend()}; }
    std::vector<T> half() const { return {ring.begin(), ring.begin() + len()}; }
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

TYPED_TEST(LmsTest, EveryStepFollowsTheRule) {
    using T = TypeParam;
    const double size = Lms<T>::size;
    int bits = 0, other_bits = 0;
    for (const int L : tap_counts) {
        Random random("lms " + std::to_string(L));
        std::vector<T> line = noise<T>(random, L, size);
        int index = random.below(L);
        const Context context = make(noise<Kel32f>(random, L, 1), line, index);
        const auto mu = static_cast<Kel32f>(0.3 / (L * size * size));
        for (int step = 0; step < 60; ++step) {
            const std::vector<Kel32f> before = taps_of<T>(context, line.size());
            const T x = noise<T>(random, 1, size)[0], r = noise<T>(random, 1, size)[0];
            T y;
            ASSERT_EQ(Lms<T>::block(&x, &r, &y, 1, mu, context.get()), kelStatusOk);
            line[static_cast<std::size_t>(index)] = x;
            const int newest = index;
            index = (index + 1) % L;
            const auto sample = [&](int k) -> long double { // k before the newest
                return line[static_cast<std::size_t>((newest - k + L) % L)];
            };
            long double output = 0, magnitudes = 0;
            for (int k = L - 1; k >= 0; --k) {
                output += before[static_cast<std::size_t>(k)] * sample(k);
                magnitudes += std::abs(before[static_cast<std::size_t>(k)] * sample(k));
            }
            const long double slack = L * 0x1p-53L * magnitudes;
            ASSERT_PRED3(within_rule<T>, y, output, slack) << L << " taps, step " << step;

            const std::vector<Kel32f> after = taps_of<T>(context, line.size());
            const long double error = (r - output) * 2 * mu;
            for (int k = 0; k < L; ++k) {
                const long double exact = sample(k) * error + before[static_cast<std::size_t>(k)];
                const Kel32f wanted = static_cast<Kel32f>(exact), got = after[static_cast<std::size_t>(k)];
                ASSERT_LE(std::abs(got - wanted), ulp(wanted)) << L << " taps, tap " << k;
                ++bits;
                other_bits += got != wanted;
            }
        }
        EXPECT_EQ(line_of<T>(context, line.size()), std::pair(line, index)) << L;
    }
    EXPECT_LE(other_bits, bits / 1000);
}

// In one block, in pieces, in place of the source or of the reference, and by the direct form: the same bits.
TYPED_TEST(LmsTest, StreamDoesNotDependOnItsCuts) {
    using T = TypeParam;
    const double size = Lms<T>::size;
    for (const int L : tap_counts)
        for (const int total : {1, 500, 3000}) {
            Random random("cuts " + std::to_string(L));
            const std::vector<Kel32f> taps = noise<Kel32f>(random, L, 0.1);
            const std::vector<T> line = noise<T>(random, L, size);
            const int index = random.below(L);
            const auto mu = static_cast<Kel32f>(0.1 / (L * size * size));
            const std::vector<T> x = noise<T>(random, total, size), r = noise<T>(random, total, size);

            const Context whole = make(taps, line, index), cut = make(taps, line, index);
            std::vector<T> y(x.size()), pieces = x;
            ASSERT_EQ(Lms<T>::block(x.data(), r.data(), y.data(), total, mu, whole.get()), kelStatusOk);
            for (int done = 0; done < total;) {
                const int count = std::min(1 + random.below(200), total - done);
                const bool over_reference = random.below(2) == 0;
                std::vector<T> in_place(r.begin() + done, r.begin() + done + count);
                T* dst = over_reference ? in_place.data() : pieces.data() + done;
                ASSERT_EQ(Lms<T>::block(pieces.data() + done, in_place.data(), dst, count, mu, cut.get()), kelStatusOk);
                if (over_reference) std::copy_n(dst, count, pieces.data() + done);
                done += count;
            }
            EXPECT_EQ(pieces, y) << L;
            EXPECT_EQ(taps_of<T>(cut, taps.size()), taps_of<T>(whole, taps.size())) << L;

            Arrays<T> direct(taps, line, index);
            for (int i = 0; i < total; ++i) {
                T value;
                const auto at = static_cast<std::size_t>(i);
                ASSERT_EQ(
                    Lms<T>::one(x[at], r[at], &value, direct.taps.data(), L, mu, direct.ring.data(), &direct.index),
                    kelStatusOk);
                ASSERT_EQ(value, y[at]) << L << " taps at " << i;
            }
            EXPECT_EQ(direct.natural(), taps_of<T>(whole, taps.size())) << L;
            EXPECT_EQ(line_of<T>(whole, line.size()), std::pair(direct.half(), (index + total) % L)) << L;
            EXPECT_EQ(direct.index, (index + total) % L);
        }
}

TYPED_TEST(LmsTest, FindsAnUnknownSystem) {
    using T = TypeParam;
    const double size = Lms<T>::size;
    Random random("identification");
    const std::vector<Kel32f> system = {0.5F, -0.25F, 0.125F, 0.0625F, 0.3F, 0, 0, -0.1F};
    const std::vector<T> x = noise<T>(random, 6000, size);
    std::vector<T> r(x.size()), y(x.size());
    for (std::size_t i = 0; i < x.size(); ++i) {
        double sum = 0;
        for (std::size_t k = 0; k < system.size() && k <= i; ++k) sum += double(system[k]) * x[i - k];
        r[i] = static_cast<T>(sum);
    }
    const Context context = made(Lms<T>::make, Lms<T>::release, nullptr, 8, nullptr, 0);
    Lms<T>::block(x.data(), r.data(), y.data(), 6000, static_cast<Kel32f>(0.02 / (size * size)), context.get());
    EXPECT_EQ(y[0], 0);
    const std::vector<Kel32f> found = taps_of<T>(context, 8);
    for (std::size_t k = 0; k < 8; ++k) EXPECT_NEAR(found[k], system[k], 1e-3) << k;
}

TYPED_TEST(LmsTest, TheStepIsTwiceMu) {
    using T = TypeParam;
    const auto expect = [](Kel32f tap, Kel32f mu, T output, Kel32f adapted) {
        const Context context = make<T>({tap}, {0}, 0);
        const T x = 1, r = 1;
        T y = 9;
        ASSERT_EQ(Lms<T>::block(&x, &r, &y, 1, mu, context.get()), kelStatusOk);
        EXPECT_EQ(y, output);
        EXPECT_EQ(taps_of<T>(context, 1)[0], adapted);
    };
    constexpr Kel32f most = std::numeric_limits<Kel32f>::max();
    expect(0, 0.25F, 0, 0.5F);
    expect(2, 0, 2, 2);
    expect(0, most / 2, 0, most);
}

TEST(Lms16s, OutputsAreSaturatedAndCutWhileTheErrorIsNot) {
    const Kel32f nan = std::numeric_limits<Kel32f>::quiet_NaN();
    struct {
        Kel32f tap;
        Kel16s wanted;
    } const literals[] = {{2.9F, 2},          {-2.9F, -2},         {40000, 32767}, {-40000, -32768},
                          {32767.99F, 32767}, {-32768.5F, -32768}, {nan, 32767},   {0.99F, 0}};
    for (const auto& literal : literals) {
        const Context context = make<Kel16s>({literal.tap}, {0}, 0);
        const Kel16s x = 1, r = 0;
        Kel16s y = 99, direct_y = 99;
        Kel32f tap = literal.tap;
        Kel16s ring[2] = {};
        int index = 0;
        kelsFIRLMS32f_16s(&x, &r, &y, 1, 0.25F, context.get());
        kelsFIRLMSOne_Direct32f_16s(x, r, &direct_y, &tap, 1, 0.25F, ring, &index);
        EXPECT_EQ(y, literal.wanted) << literal.tap;
        EXPECT_EQ(direct_y, literal.wanted) << literal.tap;
        if (!std::isnan(literal.tap)) {
            EXPECT_EQ(taps_of<Kel16s>(context, 1)[0], literal.tap / 2);
            EXPECT_EQ(tap, literal.tap / 2);
        }
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

/// Results of a stream of pseudo-random numbers that is the same everywhere.
std::uint32_t hash_of_results() {
    std::uint32_t state = 1, hash = 0;
    const auto draw = [&] {
        state = state * 1664525 + 1013904223;
        return static_cast<Kel32f>(static_cast<std::int32_t>(state)) * 0x1p-31F;
    };
    for (const int L : {1, 5, 16, 37, 64}) {
        std::vector<Kel32f> taps(static_cast<std::size_t>(L)), x(400), r(400), y(400);
        for (auto* values : {&taps, &x, &r})
            for (Kel32f& v : *values) v = draw();
        const Context context = make(taps, taps, 0);
        kelsFIRLMS_32f(x.data(), r.data(), y.data(), 400, 0.1F / static_cast<Kel32f>(L), context.get());
        for (const auto& values : {y, taps_of<Kel32f>(context, taps.size())})
            for (const Kel32f v : values) {
                std::uint32_t word;
                std::memcpy(&word, &v, sizeof word);
                hash = hash * 31 + word;
            }
    }
    return hash;
}

TEST(Lms32f, EveryLevelGivesTheSameBits) { EXPECT_EQ(hash_of_results(), 2951330571U); }

// The frame

TYPED_TEST(LmsTest, ContextsKnowTheirFamily) {
    using T = TypeParam;
    using Other = Lms<std::conditional_t<sizeof(T) == 4, Kel16s, Kel32f>>;
    const Context own = make<T>({1, 2}, {3, 4}, 1);
    KelLmsContext* const context = own.get();
    KelLmsContext* const foreign = made(Other::make, Other::release, nullptr, 2, nullptr, 0).release();
    Kel32f taps[2] = {7, 7};
    T line[2] = {7, 7}, x = 1, y = 7;
    int index = 7;
    for (KelLmsContext* const any : {context, foreign}) { // whose nulls come first
        expect_nulls_refused(Lms<T>::get_taps, any, taps);
        expect_nulls_refused(Lms<T>::get_line, any, line, &index);
        expect_nulls_refused(Lms<T>::block, &x, &x, &y, 0, 1, any);
        for (const int bad : bad_lengths) EXPECT_EQ(Lms<T>::block(&x, &x, &y, bad, 1, any), kelStatusBadSize);
    }
    EXPECT_EQ(Lms<T>::get_taps(foreign, taps), kelStatusContextMismatch);
    EXPECT_EQ(Lms<T>::get_line(foreign, line, &index), kelStatusContextMismatch);
    EXPECT_EQ(Lms<T>::set_line(nullptr, nullptr, 0), kelStatusNullPtr);
    EXPECT_EQ(Lms<T>::set_line(foreign, nullptr, -1), kelStatusContextMismatch);
    EXPECT_EQ(Lms<T>::block(&x, &x, &y, 1, 1, foreign), kelStatusContextMismatch);
    for (const int bad : {-1, 2, INT_MIN, INT_MAX})
        EXPECT_EQ(Lms<T>::set_line(context, line, bad), kelStatusBadDlyLineIndex);
    EXPECT_TRUE(taps[0] == 7 && taps[1] == 7 && line[0] == 7 && line[1] == 7 && index == 7 && y == 7);
    EXPECT_EQ(line_of<T>(own, 2), std::pair(std::vector<T>({3, 4}), 1));
    EXPECT_EQ(Lms<T>::set_line(context, nullptr, 0), kelStatusOk);
    EXPECT_EQ(line_of<T>(own, 2), std::pair(std::vector<T>(2), 0));
    EXPECT_EQ(Lms<T>::release(foreign), kelStatusOk) << "either family releases";
    EXPECT_EQ(Lms<T>::release(nullptr), kelStatusOk);
}

TYPED_TEST(LmsTest, CreationRefusesAndRunsOutOfMemory) {
    using T = TypeParam;
    const auto expect = [](KelStatus status, int len, int index) {
        expect_not_made(status, Lms<T>::make, nullptr, len, nullptr, index);
    };
    EXPECT_EQ(Lms<T>::make(nullptr, nullptr, 0, nullptr, -1), kelStatusNullPtr);
    for (const int bad : bad_lengths) expect(kelStatusBadSize, bad, -1);
    for (const int bad : {-1, 5, INT_MIN, INT_MAX}) expect(kelStatusBadDlyLineIndex, 5, bad);
    for (const int huge : {INT_MAX, INT_MAX - 16, 1 << 30, 1 << 28}) expect(kelStatusNoMemory, huge, 0);
    expect_clean_failures(Lms<T>::make, Lms<T>::release, nullptr, 40, nullptr, 39);
}

TYPED_TEST(LmsTest, StaysInsideItsArraysAndKeepsTheModes) {
    using T = TypeParam;
    for (const int L : {1, 5, 16, 23}) {
        const auto n = static_cast<std::size_t>(L);
        for (const Edge edge : edges) {
            GuardedArray<T> ring(std::vector<T>(2 * n, 1), edge);
            GuardedArray<Kel32f> taps(std::vector<Kel32f>(n, 0.5F), edge);
            int index = 0;
            ASSERT_TRUE(runs_without_fault([&] {
                T y;
                for (int i = 0; i < 3 * L; ++i) Lms<T>::one(1, 2, &y, taps.data(), L, 0.001F, ring.data(), &index);
            }));
            EXPECT_EQ(index, 0);
        }
        for (const std::size_t count : {1, 7, 100}) {
            GuardedArray<T> source(count, Edge::back), reference(count, Edge::back), target(count, Edge::back);
            const Context context = make<T>(std::vector<Kel32f>(n, 0.1F), std::vector<T>(n), 0);
            const long before = allocations();
            in_odd_modes([&] {
                ASSERT_TRUE(runs_without_fault([&] {
                    Lms<T>::block(source.data(), reference.data(), target.data(), static_cast<int>(count), 0.1F,
                                  context.get());
                }));
            });
            EXPECT_EQ(allocations(), before);
        }
    }
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
    Arrays<Kel16s, Kel32s> arrays({0, 0, 0, 0}, {0, 0, 0, 0}, 0);
    Random random("q15 identification");
    for (int i = 0; i < 4000; ++i) {
        const auto x = static_cast<Kel16s>(random.below(20001) - 10000);
        Kel16s y;
        const auto r = static_cast<Kel16s>((x - arrays.ring[static_cast<std::size_t>((arrays.index + 3) % 4)]) / 2);
        kelsFIRLMSOne_DirectQ15_16s(x, r, &y, arrays.taps.data(), 4, 8192, arrays.ring.data(), &arrays.index);
    }
    const std::vector<Kel32s> found = arrays.natural();
    constexpr int system[] = {16384, -16384, 0, 0};
    for (std::size_t k = 0; k < 4; ++k) EXPECT_NEAR(found[k], system[k], 40) << k;
}

template <class T, class Tap, class Mu>
void expect_checks(KelStatus (*one)(T, T, T*, Tap*, int, Mu, T*, int*)) {
    Tap taps[3] = {1, 2, 3};
    T ring[6] = {}, y = 7;
    int index = 1;
    expect_nulls_refused(one, 1, 1, &y, taps, 0, 1, ring, &index);
    for (const int bad : bad_lengths) EXPECT_EQ(one(1, 1, &y, taps, bad, 1, ring, &index), kelStatusBadSize);
    for (const int bad : {-1, 3, INT_MIN, INT_MAX}) {
        index = bad;
        EXPECT_EQ(one(1, 1, &y, taps, 3, 1, ring, &index), kelStatusBadDlyLineIndex);
        EXPECT_EQ(index, bad);
    }
    EXPECT_EQ(y, 7);
    EXPECT_EQ(taps[0] == 1 && taps[1] == 2 && taps[2] == 3, true);
    for (const T v : ring) EXPECT_EQ(v, 0);
}

TEST(LmsDirect, ChecksInOrderAndStoresNothing) {
    expect_checks(kelsFIRLMSOne_Direct_32f);
    expect_checks(kelsFIRLMSOne_Direct32f_16s);
    expect_checks(kelsFIRLMSOne_DirectQ15_16s);
}

} // namespace
