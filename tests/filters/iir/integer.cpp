// IIR filters of integer taps: every result to the bit, the permanent rescaling of taps, taps from real ones.

#include "filters/iir/reference.h"
#include "support/emulation.h"

namespace {

using namespace iir_test;

template <class F>
class IirInteger : public testing::Test {};
using IntegerTaps = testing::Types<Family32s_16s, Family32sc_16sc>;
TYPED_TEST_SUITE(IirInteger, IntegerTaps, FamilyNames);

using Wide = Z<std::uint64_t>;

/// u over a, toward zero, in 64 bits.
template <class T>
Wide quotient(const Wide& u, const Wide& a) {
    const auto over = [](std::uint64_t n, std::uint64_t d) {
        return static_cast<std::uint64_t>(static_cast<std::int64_t>(n) / static_cast<std::int64_t>(d));
    };
    if (parts<T> == 1) return {over(u.re, a.re), 0};
    const std::uint64_t square = a.re * a.re + a.im * a.im;
    return {over(u.re * a.re + u.im * a.im, square), over(u.im * a.re - u.re * a.im, square)};
}

/// A filter of the rule beside the one that is tried.
template <class F>
struct Rule : Reference<FixedArithmetic> {
    int factor;

    Rule(bool is_cascade, const std::vector<typename F::Taps>& taps, int tapsFactor)
        : Reference(is_cascade, divided<Wide>(
                                    is_cascade, taps, quotient<typename F::Taps>,
                                    [&](const Wide& tap) {
                                        return FixedArithmetic{-std::int64_t{tapsFactor}, 0}.input(tap);
                                    },
                                    FixedArithmetic::stored)),
          factor(tapsFactor) {}

    std::vector<Wide> filter(Way way, const std::vector<Wide>& x, int scaleFactor) {
        if (!cascade && factor > scaleFactor) {
            const FixedArithmetic up{std::int64_t{factor} - scaleFactor, 0};
            for (Wide& tap : taps()) tap = up.stored(up.input(tap));
            factor = scaleFactor;
        }
        const bool narrow = way == one_by_one && !cascade && !F::complex;
        return filtered({std::int64_t{factor} - scaleFactor, factor, narrow}, way, x);
    }
};

template <class T>
T saturated_both(const Wide& z) {
    const auto part = [](std::uint64_t v) { return saturated<Part<T>>(static_cast<std::int64_t>(v)); };
    return narrow<T>(Z<std::int64_t>{part(z.re), part(z.im)});
}

/// Streams of any data through any taps, at scales around the taps' factor, against the rule.
template <class F>
void follow_the_rule(bool cascade, int size, int factor, int tap_range, int sample_range) {
    using T = typename F::Sample;
    using Taps = typename F::Taps;
    Random random(std::string("fixed ") + name_of<F>() + std::to_string(cascade) + std::to_string(100 * size + factor));
    std::vector<Taps> taps(static_cast<std::size_t>(cascade ? 6 * size : 2 * size + 2));
    std::vector<Taps> state(static_cast<std::size_t>(cascade ? 2 * size : size));
    for (auto* array : {&taps, &state})
        for (std::size_t i = 0; i < array->size() * parts<T>; ++i)
            values(*array)[i] = random.below(2 * tap_range) - tap_range;
    for (std::size_t i = 0; i < taps.size(); ++i)
        if (cascade ? i % 3 == 0 : i == taps.size() / 2)
            values(taps)[i * parts<T>] = factor > 0 ? 1 : std::max(1, 3 << std::min(-factor, 29) >> 2);
    Rule<F> rule(cascade, taps, factor);
    rule.registers() = wide<std::uint64_t>(state);
    const Context context = make<F>(cascade, taps, factor, state);
    for (int call = 0; call < 60; ++call) {
        std::vector<T> x(static_cast<std::size_t>(1 + random.below(call % 10 == 9 ? 1500 : 20)));
        for (std::size_t i = 0; i < x.size() * parts<T>; ++i)
            values(x)[i] = static_cast<Kel16s>(random.below(sample_range) - sample_range / 2);
        const Way way = static_cast<Way>(random.below(3));
        const int scale = factor + random.below(4) + (call > 30 ? -2 : 1);
        const auto wanted = rule.filter(way, wide<std::uint64_t>(x), scale);
        const auto y = filtered<F>(way, x, context, scale);
        for (std::size_t i = 0; i < y.size(); ++i)
            ASSERT_TRUE(same(std::vector<T>{y[i]}, {saturated_both<T>(wanted[i])}))
                << "cascade " << cascade << " size " << size << " factor " << factor << " call " << call << " way "
                << way << " sample " << i << " of " << y.size();
        const auto got = state_of<F>(context, state.size());
        for (std::size_t i = 0; i < got.size(); ++i)
            ASSERT_TRUE(same(std::vector<Taps>{got[i]}, {narrow<Taps>(rule.registers()[i])})) << "register " << i;
    }
}

TYPED_TEST(IirInteger, StreamsFollowTheRuleToTheBit) {
    for (int size : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 16, 17, 25})
        for (bool cascade : {false, true}) {
            if (cascade && size == 0) continue;
            if (size > kels_test::effort(25, 5)) continue;
            for (auto [factor, range] : {std::pair{-15, 12000},
                                         {-30, INT_MAX / 2},
                                         {0, 3},
                                         {2, 3},
                                         {-31, INT_MAX / 2},
                                         {-40, INT_MAX / 2},
                                         {-63, 9},
                                         {-64, 9},
                                         {-70, 9},
                                         {64, 9}}) {
                follow_the_rule<TypeParam>(cascade, size, factor, range, 65536);
                if (testing::Test::HasFatalFailure()) return;
                follow_the_rule<TypeParam>(cascade, size, factor, range, 200);
                if (testing::Test::HasFatalFailure()) return;
            }
        }
}

using F = Family32s_16s;

std::vector<Kel16s> impulse(int height, int scale, const std::vector<Kel32s>& taps, int factor, Way way = as_block) {
    return filtered<F>(way, {static_cast<Kel16s>(height), 0, 0, 0}, make<F>(false, taps, factor), scale);
}

TEST(IirInteger, ImpulseResponseOfOnePole) {
    EXPECT_EQ(impulse(1000, 0, {32768, 0, 32768, -16384}, -15), (std::vector<Kel16s>{1000, 500, 250, 125}));
    EXPECT_EQ(impulse(-3, 0, {1, 0, 2, 0}, -1), (std::vector<Kel16s>{-1, 0, 0, 0})) << "toward zero";
    EXPECT_EQ(impulse(1000, -15, {32768, 0, 32768, -16384}, -15), (std::vector<Kel16s>{32767, 32767, 32767, 32767}));
}

TEST(IirInteger, ALowerScaleRescalesTheTapsForGood) {
    const Context context = make<F>(false, {32768, 32768}, -15);
    EXPECT_EQ(filtered<F>(as_block, {1}, context, 0), std::vector<Kel16s>{1});
    EXPECT_EQ(filtered<F>(as_block, {1}, context, -10), std::vector<Kel16s>{1 << 10});
    EXPECT_EQ(filtered<F>(as_block, {1}, context, -40), std::vector<Kel16s>{32767})
        << "32768 2^25 is limited to 2^31 - 1";
    EXPECT_EQ(filtered<F>(as_block, {1}, context, -22), std::vector<Kel16s>{8191}) << "8192 before";
    EXPECT_EQ(filtered<F>(as_block, {1}, context, -20), std::vector<Kel16s>{2047}) << "2048 before";
    EXPECT_EQ(filtered<F>(as_block, {1}, context, INT_MIN), std::vector<Kel16s>{0}) << "all is shifted out";
    EXPECT_EQ(filtered<F>(as_block, {1}, context, INT_MAX), std::vector<Kel16s>{0});
}

TEST(IirInteger, SingleSamplesWrapIn32Bits) {
    const std::vector<Kel32s> taps{1 << 30, 1};
    EXPECT_EQ(filtered<F>(as_block, {4, 5}, make<F>(false, taps), 20), (std::vector<Kel16s>{4096, 5120}));
    EXPECT_EQ(filtered<F>(one_by_one, {4, 5}, make<F>(false, taps), 20), (std::vector<Kel16s>{0, 1024}));
    // At a shift of 0 the sum with the register wraps too.
    const std::vector<Kel32s> one_pole{1 << 30, 0, 1, 0};
    EXPECT_EQ(filtered<F>(one_by_one, {1}, make<F>(false, one_pole, 0, {INT_MAX}), 0), std::vector<Kel16s>{-32768});
    EXPECT_EQ(filtered<F>(as_block, {1}, make<F>(false, one_pole, 0, {INT_MAX}), 0), std::vector<Kel16s>{32767});
    EXPECT_EQ(filtered<F>(one_by_one, {1}, make<F>(false, one_pole, -1, {INT_MAX}), 0), std::vector<Kel16s>{32767});
    // Cascades never wrap.
    const std::vector<Kel32s> section{1 << 30, 0, 0, 1, 0, 0};
    for (Way way : {as_block, one_by_one})
        EXPECT_EQ(filtered<F>(way, {4, 5}, make<F>(true, section), 20), (std::vector<Kel16s>{4096, 5120}));
}

TEST(IirInteger, TapsOfUnitDenominatorsAreKept) {
    // 2^31 as a tap is 2^31 - 1: kept, where a division would halve away the last bits.
    EXPECT_EQ(impulse(1, -20, {INT_MAX, 0, INT_MAX, 0}, -31), impulse(1, -20, {INT_MAX, 0, INT_MAX, 0}, -31, in_place));
    EXPECT_EQ(impulse(16, 0, {INT_MAX, 0, INT_MAX, 0}, -31)[0], 15);
    EXPECT_EQ(impulse(16, 0, {INT_MIN, 0, INT_MAX, 0}, -31)[0], -16);
    EXPECT_EQ(impulse(16, 0, {INT_MIN, 0, -1, 0}, 0)[0], 32767) << "-2^31 over -1 is limited";
    EXPECT_EQ(impulse(16, 0, {INT_MIN, 0, -1, 0}, -32)[0], -8) << "in 64 bits -2^63 over -1 is itself";
}

// Taps from real ones: the largest takes 31 bits.

struct FromReal {
    std::vector<float> taps;
    int scale;
    Kel16s sample, result;
};

TEST(IirInteger, RealTapsTakeAllBits) {
    const FromReal rows[] = {
        {{0, 1}, 0, 30000, 0},        {{1, 1}, 0, 1234, 1234},      {{-1, 1}, 0, 1234, -1234},
        {{0.5, 2}, 0, 1000, 250},     {{0x1p20F, 1}, 20, -77, -77}, {{0x1p-20F, 1}, -20, -77, -77},
        {{0x1p31F, 1}, 31, 99, 99},   {{0x1p33F, 1}, 33, 99, 98}, // 2^31 is limited to 2^31 - 1
        {{-0x1p33F, 1}, 33, 99, -99}, {{0x1p-140F, 1}, -140, 5, 5}, {{INFINITY, 1}, 0, 1, -32768},
        {{NAN, 1}, 0, 1, -32768},
    };
    for (const FromReal& row : rows) {
        const Context context =
            kels_test::made(kelsIIRInitAlloc32s_16s32f, kelsIIRFree32s_16s, row.taps.data(), 0, nullptr);
        EXPECT_EQ(filtered<F>(as_block, {row.sample}, context, row.scale)[0], row.result)
            << row.taps[0] << ' ' << row.scale;
    }
}

/// What a filter of integer taps from real ones makes of noise, and what one of doubles does.
template <class Integer, class Real, class Tap, class State>
void resembles(KelStatus (*make_from_real)(KelIirContext**, const Tap*, int, const State*), bool cascade,
               const std::vector<Tap>& taps) {
    Random random("resembles");
    const auto x = noise<typename Integer::Sample>(random, 500);
    std::vector<typename Real::Taps> doubles;
    for (const Tap& tap : taps) doubles.push_back(narrow<typename Real::Taps>(wide<double>(tap)));
    const Context integers = kels_test::made(make_from_real, Integer::release, taps.data(), 2, nullptr);
    const auto a = filtered<Integer>(as_block, x, integers, 3);
    const auto b = filtered<Real>(as_block, x, make<Real>(cascade, doubles), 3);
    for (std::size_t i = 0; i < x.size() * parts<typename Integer::Sample>; ++i)
        EXPECT_NEAR(values(a)[i], values(b)[i], 30) << i;
}

TEST(IirInteger, RealTapsOfEveryFormAreMeant) {
    const std::vector<float> any{0.7F, -0.4F, 0.2F, 1.5F, 0.5F, -0.3F},
        two{0.7F, -0.4F, 0.2F, 1.5F, 0.5F, -0.3F, 1.2F, 0.1F, 0.5F, 0.9F, -0.3F, 0.2F};
    const std::vector<Kel32fc> any_c{{0.7F, 0.1F}, {-0.4F, 0.3F}, {0.2F, 0},
                                     {1.5F, 0.2F}, {0.5F, -0.2F}, {-0.3F, 0.1F}};
    auto two_c = any_c;
    two_c.insert(two_c.end(), any_c.begin(), any_c.end());
    resembles<Family32s_16s, Family64f_16s>(kelsIIRInitAlloc32s_16s32f, false, any);
    resembles<Family32s_16s, Family64f_16s>(kelsIIRInitAlloc32s_BiQuad_16s32f, true, two);
    resembles<Family32sc_16sc, Family64fc_16sc>(kelsIIRInitAlloc32sc_16sc32fc, false, any_c);
    resembles<Family32sc_16sc, Family64fc_16sc>(kelsIIRInitAlloc32sc_BiQuad_16sc32fc, true, two_c);
}

} // namespace
