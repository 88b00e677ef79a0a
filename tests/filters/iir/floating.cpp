// IIR filters of real taps: streams against the rule, accuracy close to the unit circle, literal values.

#include "filters/iir/reference.h"

namespace {

using namespace iir_test;
using L = long double;

template <class F>
class IirTest : public testing::Test {};
using RealTaps =
    testing::Types<Family_32f, Family_32fc, Family32f_16s, Family32fc_16sc, Family_64f, Family_64fc, Family64f_32f,
                   Family64fc_32fc, Family64f_32s, Family64fc_32sc, Family64f_16s, Family64fc_16sc>;
TYPED_TEST_SUITE(IirTest, RealTaps, FamilyNames);

/// z^2 + c1 z + c2 of poles inside a radius, in a taps type.
template <class T>
std::vector<T> denominator(Random& random, double radius) {
    using Zd = Z<L>;
    const L angle = random.uniform(0.1, 3.0), r = radius * random.uniform(0.3, 1);
    Zd p{r * std::cos(angle), r * std::sin(angle)}, q{p.re, -p.im};
    if (parts<T> == 2) q = {random.uniform(-0.5, 0.5), random.uniform(-0.5, 0.5)};
    const Zd sum = p + q;
    return {narrow<T>(Zd{1, 0}), narrow<T>(Zd{} - sum), narrow<T>(p * q)};
}

/// Stable taps: all sections times a0, or b and the product of the denominators times a[0].
template <class T>
std::vector<T> stable_taps(Random& random, bool cascade, int size, double radius = 0.8) {
    std::vector<T> taps;
    const Z<L> scale{1.75, parts<T> == 2 ? -0.5 : 0};
    if (cascade) {
        for (int s = 0; s < size; ++s) {
            const auto b = noise<T>(random, 3);
            taps.push_back(narrow<T>(Z<L>{1.25, 0} + wide<L>(b[0]) * Z<L>{0.25, 0}));
            taps.insert(taps.end(), b.begin() + 1, b.end());
            for (const T& a : denominator<T>(random, radius)) taps.push_back(narrow<T>(wide<L>(a) * scale));
        }
        return taps;
    }
    taps = noise<T>(random, size + 1);
    std::vector<Z<L>> a{scale};
    const auto times = [&a](std::vector<Z<L>> factor) {
        std::vector<Z<L>> longer(a.size() + factor.size() - 1);
        for (std::size_t i = 0; i < a.size(); ++i)
            for (std::size_t j = 0; j < factor.size(); ++j) longer[i + j] = longer[i + j] + a[i] * factor[j];
        a = longer;
    };
    for (int i = 0; i + 1 < size; i += 2) {
        const auto c = denominator<T>(random, radius);
        times({wide<L>(c[0]), wide<L>(c[1]), wide<L>(c[2])});
    }
    if (size % 2 != 0) times({{1, 0}, {-0.5, 0}});
    for (const auto& z : a) taps.push_back(narrow<T>(z));
    return taps;
}

/// The arithmetic of a family's rule: registers of single taps are rounded, others never.
template <class F>
using Arithmetic = RealArithmetic<L, std::conditional_t<F::single_taps, float, L>>;

template <class F>
struct Rule : Reference<Arithmetic<F>> {
    using Taps = typename F::Taps;
    L amplification = 0; ///< of roundings on the way: what the taps and the response of the rule to 1 make of them

    Rule(bool is_cascade, const std::vector<Taps>& taps)
        : Reference<Arithmetic<F>>(is_cascade, divided<Z<L>>(
                                                   is_cascade, taps, quotient, [](const Z<L>& tap) { return tap; },
                                                   [](const Z<L>& q) { return wide<L>(narrow<Taps>(q)); })) {
        for (const auto& tap : this->taps()) amplification += size_of(tap);
        const std::size_t size = this->registers().size();
        std::vector<Z<L>> impulse(400);
        impulse[0] = {1, 0};
        for (const auto& y : filter(impulse)) amplification += size_of(y) * (static_cast<L>(size) + 1);
        this->registers().assign(size, {});
    }

    std::vector<Z<L>> filter(const std::vector<Z<L>>& x, Way way = as_block) { return this->filtered({}, way, x); }

private:
    static Z<L> quotient(const Z<L>& u, const Z<L>& by) {
        const L square = by.re * by.re + by.im * by.im;
        return parts<Taps> == 2 ? u * Z<L>{by.re / square, -by.im / square} : u * Z<L>{1 / by.re, 0};
    }
};

template <class To, class From>
std::vector<Z<To>> converted(const std::vector<Z<From>>& numbers) {
    std::vector<Z<To>> all;
    for (const auto& z : numbers) all.push_back({static_cast<To>(z.re), static_cast<To>(z.im)});
    return all;
}

L largest_difference(const std::vector<Z<L>>& a, const std::vector<Z<L>>& b) {
    L most = 0;
    for (std::size_t i = 0; i < a.size(); ++i) most = std::max(most, size_of(a[i] - b[i]));
    return most;
}

/// The rule in plain doubles: what it loses, any filter may lose that does not round less.
struct InDoubles : Reference<RealArithmetic<double, double>> {
    InDoubles(bool is_cascade, const std::vector<Z<L>>& taps) : Reference(is_cascade, converted<double>(taps)) {}

    L error(const std::vector<Z<L>>& state, const std::vector<Z<L>>& x, Way way, const std::vector<Z<L>>& exact,
            const std::vector<Z<L>>& exact_state) {
        registers() = converted<double>(state);
        const auto y = filtered({}, way, converted<double>(x));
        return std::max(largest_difference(converted<L>(y), exact),
                        largest_difference(converted<L>(registers()), exact_state));
    }
};

template <class T>
void check_both(Accuracy& accuracy, const T& got, const Z<L>& exact, L noise, int scaleFactor = 0) {
    const auto* part = reinterpret_cast<const Part<T>*>(&got);
    const L parts_of_exact[] = {exact.re, exact.im};
    for (int i = 0; i < parts<T>; ++i)
        accuracy.check(part[i], std::ldexp(parts_of_exact[i], -scaleFactor), std::ldexp(noise, -scaleFactor));
}

/// A stream cut anywhere, its pieces filtered each way at any scale; before each the rule takes over the state.
template <class F>
void follow_the_rule(bool cascade, int size) {
    using T = typename F::Sample;
    using Taps = typename F::Taps;
    Random random(name_of<F>() + (cascade ? " sections " : " order ") + std::to_string(size));
    const auto taps = stable_taps<Taps>(random, cascade, size);
    Rule<F> rule(cascade, taps);
    InDoubles in_doubles(cascade, rule.taps());
    const std::size_t registers = rule.registers().size();
    auto state = noise<Taps>(random, static_cast<int>(registers));
    const Context context = make<F>(cascade, taps, 0, state);
    const auto stream = noise<T>(random, 3000);
    Accuracy results, kept;
    for (int done = 0, n; done < 3000; done += n) {
        const int longest[] = {4, 60, 300, 1500};
        n = std::min(1 + random.below(longest[random.below(4)]), 3000 - done);
        const auto count = static_cast<std::size_t>(n);
        const auto x = kels_test::piece(stream, done, n);
        const Way way = static_cast<Way>(random.below(3));
        const int scale = F::integer_samples ? random.below(8) - 3 : 0;
        const auto before = state_of<F>(context, registers);
        ASSERT_TRUE(same(before, state)) << "the state is what it was";
        const auto y = filtered<F>(way, x, context, scale);
        state = state_of<F>(context, registers);

        const auto exact_x = wide<L>(x), exact_state = wide<L>(before);
        rule.registers() = exact_state;
        const auto exact = rule.filter(exact_x, way);
        L level = 1;
        for (const auto& numbers : {exact_state, exact_x, exact, rule.registers()})
            for (const auto& number : numbers) level = std::max(level, size_of(number));
        // A complex term that is not fused is rounded twice.
        constexpr int doubles = parts<typename F::Sample> == 2 ? -50 : -51;
        L noise_of_rule = std::ldexp(level * rule.amplification, F::single_taps ? -60 : doubles);
        if (!F::single_taps) noise_of_rule += 4 * in_doubles.error(exact_state, exact_x, way, exact, rule.registers());
        for (std::size_t i = 0; i < count; ++i) check_both(results, y[i], exact[i], noise_of_rule, scale);
        for (std::size_t i = 0; i < registers; ++i) check_both(kept, state[i], rule.registers()[i], noise_of_rule);
        ASSERT_FALSE(testing::Test::HasFatalFailure())
            << (cascade ? "sections " : "order ") << size << " at " << done << " way " << way << " of " << count;
    }
    if (std::is_same_v<Part<T>, Kel32f>) {
        EXPECT_LE(results.missed_bits, results.results / 1000 + 1 + std::ceil(results.beside_ties));
    }
    if (F::single_taps) {
        EXPECT_LE(kept.missed_bits, kept.results / 1000 + 1);
    }
}

TYPED_TEST(IirTest, StreamsFollowTheRuleHoweverTheyAreCut) {
    for (int order : {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 15, 16, 17, 23, 33})
        follow_the_rule<TypeParam>(false, order);
    for (int sections = 1; sections <= 9; ++sections) follow_the_rule<TypeParam>(true, sections);
    follow_the_rule<TypeParam>(true, 17);
}

// Cut between pairs, streams of single taps are the same to the bit, as the fuzzer's drive shows; a block of one sample
// is a single sample.
TYPED_TEST(IirTest, BlocksOfOneSampleAreSingleSamples) {
    using F = TypeParam;
    Random random("single samples");
    for (bool cascade : {false, true})
        for (int size : {1, 2, 3, 5, 8, 9, 20}) {
            const auto taps = stable_taps<typename F::Taps>(random, cascade, size);
            const Context blocks = make<F>(cascade, taps), single = make<F>(cascade, taps);
            for (const auto& x : noise<typename F::Sample>(random, 40))
                EXPECT_TRUE(same(filtered<F>(as_block, {x}, blocks, 1), filtered<F>(one_by_one, {x}, single, 1)));
        }
}

// Many samples with poles close to the unit circle, against 64 bits: within 2^-51 of the terms, carried on by the
// response of the recursion.
void stay_close(double radius, double angle, bool cascade, int samples) {
    using R = long double;
    Random random("drift");
    const double c1 = -2 * radius * std::cos(angle), c2 = radius * radius;
    const std::vector<double> taps{1, 0.5, -0.25, 1, c1, c2};
    const Context context = make<Family_64f>(cascade, taps);
    R w1 = 0, w2 = 0, h1 = 0, h2 = 0, response = 0, level = 0;
    const auto size = [](R v) { return v < 0 ? -v : v; };
    for (int i = 0; i < 400000; ++i) {
        const R h = (i == 0 ? 1 : 0) - R{c1} * h1 - R{c2} * h2;
        h2 = h1, h1 = h, response += size(h);
    }
    R worst = 0;
    for (int done = 0, count = 0; done < samples; done += count) {
        count = 1 + random.below(9000);
        const auto x = noise<double>(random, count);
        const auto y = filtered<Family_64f>(done % 3 == 0 ? as_block : in_place, x, context);
        for (std::size_t i = 0; i < x.size(); ++i) {
            const R w = R{x[i]} - R{c1} * w1 - R{c2} * w2, exact = w + R{0.5} * w1 - R{0.25} * w2;
            worst = std::max(worst, size(exact - R{y[i]}));
            level = std::max(level, size(w) * (1 + size(R{c1}) + size(R{c2})));
            w2 = w1, w1 = w;
        }
    }
    const auto bound = static_cast<double>(level * response) * 0x1p-51;
    EXPECT_LE(static_cast<double>(worst), bound) << radius << " at " << angle << " cascade " << cascade;
    EXPECT_GT(bound, 0);
}

TEST(Iir, AMillionSamplesDoNotDriftCloseToTheUnitCircle) {
    for (bool cascade : {true, false}) {
        stay_close(0.9999, 1e-4, cascade, 1000000);
        for (double angle : {0.01, 1.0, 2.0, 3.1415, 3.14159265}) stay_close(0.9999, angle, cascade, 100000);
    }
    stay_close(0.5, 1, true, 100000);
    stay_close(0, 1, true, 100000);
}

/// Results of doubles lie within 2^-51 of the magnitudes of all terms, carried on by the response of the recursion.
template <class F>
void stay_within_the_terms(const std::vector<typename F::Taps>& taps, const std::vector<typename F::Sample>& x) {
    const std::size_t order = taps.size() / 2 - 1, count = x.size();
    const auto y = filtered<F>(as_block, x, make<F>(false, taps));
    const auto size = [](const Z<L>& z) { return std::fabs(z.re) + std::fabs(z.im); };
    std::vector<Z<L>> exact(count), response(count);
    std::vector<L> terms(count);
    response[0] = {1, 0};
    for (std::size_t i = 0; i < count; ++i) {
        for (std::size_t j = 0; j <= std::min(i, order); ++j) {
            const auto b = wide<L>(taps[j]), a = wide<L>(taps[order + 1 + j]), sample = wide<L>(x[i - j]);
            exact[i] = exact[i] + b * sample;
            terms[i] += size(b) * size(sample);
            if (j == 0) continue;
            exact[i] = exact[i] - a * exact[i - j];
            terms[i] += size(a) * size(exact[i - j]);
            response[i] = response[i] - a * response[i - j];
        }
        L carried = 0;
        for (std::size_t j = 0; j <= i; ++j) carried += size(response[j]) * terms[i - j];
        ASSERT_LE(size(wide<L>(y[i]) - exact[i]), carried * 0x1p-51L) << "order " << order << " at " << i;
    }
}

/// 1 and the rest of a polynomial with roots from the angle 0 on: the closer together, the larger the sums that cancel
/// out. Real ones are in pairs.
template <class T>
std::vector<T> with_roots(Random& random, std::size_t order, double radius, double spread) {
    std::vector<Z<L>> a{{1, 0}};
    while (a.size() <= order) {
        const L r = radius * random.uniform(0.7, 1), angle = random.uniform(0, spread);
        const Z<L> root{r * std::cos(angle), r * std::sin(angle)};
        const bool pair = parts<T> == 1 && a.size() < order;
        const Z<L> c1 = pair ? Z<L>{-2 * root.re, 0} : parts<T> == 1 ? Z<L>{-r, 0} : Z<L>{} - root, c2{r * r, 0};
        a.resize(a.size() + (pair ? 2 : 1));
        for (std::size_t i = a.size(); i-- > 1;) {
            a[i] = a[i] + c1 * a[i - 1];
            if (pair && i > 1) a[i] = a[i] + c2 * a[i - 2];
        }
    }
    std::vector<T> narrowed;
    for (const auto& z : a) narrowed.push_back(narrow<T>(z));
    return narrowed;
}

template <class F>
void stay_within_the_terms_wherever_the_poles_are() {
    using T = typename F::Taps;
    Random random("poles");
    for (std::size_t order : {1, 2, 3, 4, 5, 7, 8, 9, 12, 15, 16, 17, 24, 31, 32, 33})
        for (double radius : {0.3, 0.8, 0.95})
            for (double spread : {0.05, 0.5, 3.1}) {
                auto taps = noise<T>(random, static_cast<int>(order + 1));
                const auto a = with_roots<T>(random, order, radius, spread);
                taps.insert(taps.end(), a.begin(), a.end());
                stay_within_the_terms<F>(taps, noise<T>(random, 200));
                if (testing::Test::HasFatalFailure()) FAIL() << name_of<F>() << ' ' << radius << " up to " << spread;
            }
}

TEST(Iir, RoundingsStayWithinTheTermsWhereverThePolesAre) {
    stay_within_the_terms_wherever_the_poles_are<Family_64f>();
    stay_within_the_terms_wherever_the_poles_are<Family_64fc>();
}

// Gains, samples and registers near both ends of the range go the way of the rule.
TEST(Iir, DoublesOfEverySizeFollowTheRule) {
    struct Row {
        bool cascade;
        std::vector<double> taps;
        double size;
    };
    const double most = std::numeric_limits<double>::max();
    const Row rows[] = {
        {true, {0x1p1020, 0x1p1019, 0, 1, -1.5, 0.75}, 0x1p-100},
        {true, {3 * 0x1p-1074, 0x1p-1073, 0, 1, -1.5, 0.75}, 0x1p500},
        {true, {1, 0x1p900, 0, 1, -0.5, 0.25, 1, 0.5, 0, 1, 0.5, 0.25}, 0x1p120},
        {true, {1, 0.5, 0.25, 1, -0x1p-300, 0x1p-600}, 0x1p900},
        {false, {0x1p1020, 0x1p1019, 1, 1, -0.5, 0.25}, 0x1p-100},
        {false, {3 * 0x1p-1074, 0, 0x1p-1074, 1, -0.5, 0.25}, 0x1p500},
        {false, {0, 0, 1, 1, -0.5, 0.25}, most / 4},
        {false, {1, 1, 1, -0.5}, 0x1p501},
    };
    Random random("sizes");
    for (const Row& row : rows) {
        auto x = noise<double>(random, 200);
        for (double& v : x) v *= row.size;
        const auto y = filtered<Family_64f>(as_block, x, make<Family_64f>(row.cascade, row.taps));
        Rule<Family_64f> rule(row.cascade, row.taps);
        const auto exact = rule.filter(wide<L>(x));
        L level = 0x1p-1000L;
        for (const auto& v : exact) level = std::max(level, size_of(v));
        for (std::size_t i = 0; i < x.size(); ++i)
            ASSERT_LE(std::fabs(L{y[i]} - exact[i].re), level * 0x1p-44L)
                << "row " << &row - rows << " of size " << row.size << " at " << i;
    }
}

TEST(Iir, RegistersThatAreNotFiniteGoTheWayOfTheRule) {
    const std::vector<double> x(40, 1);
    for (double odd : {HUGE_VAL, std::nan("")}) {
        const auto y =
            filtered<Family_64f>(as_block, x, make<Family_64f>(false, {1, 0, 0, 1, -0.5, 0.25}, 0, {0, odd}));
        EXPECT_EQ(y[0], 1);
        for (std::size_t i = 1; i < x.size(); ++i) EXPECT_FALSE(std::isfinite(y[i])) << i;
        EXPECT_EQ(std::isnan(y[1]), std::isnan(odd));
    }
}

// Infinities and NaNs reach no earlier sample, and an unstable filter ends where the rule ends.
TYPED_TEST(IirTest, WhatIsNotFiniteReachesNoEarlierSample) {
    using F = TypeParam;
    using T = typename F::Sample;
    if constexpr (!F::integer_samples) {
        Random random("nan");
        for (bool cascade : {false, true})
            for (int size : {1, 2, 3, 5, 9}) {
                const auto taps = stable_taps<typename F::Taps>(random, cascade, size);
                const auto x = noise<T>(random, 100);
                for (Part<T> odd :
                     {std::numeric_limits<Part<T>>::infinity(), std::numeric_limits<Part<T>>::quiet_NaN()})
                    for (std::size_t at : {0U, 1U, 20U, 31U, 64U}) {
                        auto disturbed = x;
                        values(disturbed)[at * parts<T>] = odd;
                        const auto y = filtered<F>(as_block, x, make<F>(cascade, taps));
                        const auto z = filtered<F>(as_block, disturbed, make<F>(cascade, taps));
                        for (std::size_t i = 0; i < x.size() * parts<T>; ++i)
                            EXPECT_EQ(std::isfinite(values(z)[i]), i / parts<T> < at)
                                << cascade << size << ' ' << i << ' ' << at;
                        for (std::size_t i = 0; i < at * parts<T>; ++i) EXPECT_NEAR(values(z)[i], values(y)[i], 1e-6);
                    }
            }
    }
}

// Literal values

TEST(Iir, ImpulseResponseOfOnePole) {
    const Context context = make<Family_32f>(false, {1, 0, 1, -0.5});
    EXPECT_EQ(filtered<Family_32f>(as_block, {1, 0, 0, 0}, context), (std::vector<float>{1, 0.5, 0.25, 0.125}));
    EXPECT_EQ(state_of<Family_32f>(context, 1), std::vector<float>{0.0625});
}

/// One sample of 1 through a gain.
template <class F>
typename F::Sample scaled(double gain, int scaleFactor) {
    using Tap = typename F::Taps;
    const Context context = make<F>(false, {static_cast<Tap>(gain), Tap{1}});
    const auto y = filtered<F>(one_by_one, {1}, context, scaleFactor),
               z = filtered<F>(as_block, {1}, context, scaleFactor);
    EXPECT_TRUE(same(y, z));
    return y[0];
}

template <class F>
class IirRounding : public testing::Test {};
using IntegerSamples = testing::Types<Family32f_16s, Family64f_16s, Family64f_32s>;
TYPED_TEST_SUITE(IirRounding, IntegerSamples, FamilyNames);

TYPED_TEST(IirRounding, TiesGoAwayFromZeroAndScalesReachFar) {
    using F = TypeParam;
    using T = typename F::Sample;
    constexpr T most = std::numeric_limits<T>::max(), least = std::numeric_limits<T>::min();
    EXPECT_EQ(scaled<F>(3, 1), 2);
    EXPECT_EQ(scaled<F>(-3, 1), -2);
    EXPECT_EQ(scaled<F>(3, -1), 6);
    EXPECT_EQ(scaled<F>(0.25, 0), 0);
    EXPECT_EQ(scaled<F>(most, 0), most);
    EXPECT_EQ(scaled<F>(4e9, 0), most);
    EXPECT_EQ(scaled<F>(-4e9, 0), least);
    EXPECT_EQ(scaled<F>(NAN, 0), most);
    EXPECT_EQ(scaled<F>(NAN, INT_MIN), most);
    EXPECT_EQ(scaled<F>(5, 128), 0) << "no modulus";
    EXPECT_EQ(scaled<F>(-5, -128), least);
    EXPECT_EQ(scaled<F>(0x1p100, 100), 1);
    EXPECT_EQ(scaled<F>(0x1p-100, -100), 1);
    EXPECT_EQ(scaled<F>(1e30, 16445), 0);
    EXPECT_EQ(scaled<F>(-INFINITY, 16445), least) << "2^-16445 is the least number of extended precision";
    EXPECT_EQ(scaled<F>(-INFINITY, 16446), most) << "infinity times 0";
    EXPECT_EQ(scaled<F>(0, -16383), 0);
    EXPECT_EQ(scaled<F>(0, -16384), most) << "0 times infinity";
    EXPECT_EQ(scaled<F>(-1, -16384), least);
    EXPECT_EQ(scaled<F>(1, INT_MAX), 0);
    EXPECT_EQ(scaled<F>(-1, INT_MIN), least);
}

TEST(Iir, ScalesOfDoublesReachBothEnds) {
    EXPECT_EQ(scaled<Family64f_32s>(0x1p1023, 1023), 1);
    EXPECT_EQ(scaled<Family64f_32s>(-0x1p1023, 1024), -1);
    EXPECT_EQ(scaled<Family64f_32s>(0x1p1023, 1025), 0);
    EXPECT_EQ(scaled<Family64f_32s>(0x1p-1022, -1024), 4);
    EXPECT_EQ(scaled<Family64f_32s>(-0x1p-1022, -4000), INT_MIN);
}

} // namespace
