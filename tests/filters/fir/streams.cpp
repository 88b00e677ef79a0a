// FIR filters of every family, with a context and without one, of one rate and of two, as streams against their
// defining sums and against each other.

#include "filters/fir/forms.h"
#include "filters/fir/reference.h"
#include "support/emulation.h"

namespace {

using namespace fir_test;
using kels_test::Careful;
using kels_test::piece;

template <class Form>
class Fir : public testing::Test {};

template <class... F>
auto both_forms(testing::Types<F...>) -> testing::Types<WithContext<F>..., Stateless<F>...>;
using Forms = decltype(both_forms(Families{}));

struct FormNames {
    template <class Form>
    static std::string GetName(int) {
        return Form::name();
    }
};
TYPED_TEST_SUITE(Fir, Forms, FormNames);

/// Taps of noise behind samples of noise; integers without a context may take all 32 bits.
template <class Form>
auto design_of(Random& random, int count, const Rates& r = {}, bool multi_rate = false) {
    Design<typename Form::F> d;
    using Taps = typename Form::F::Taps;
    d.taps = noise<Taps>(random, count);
    if constexpr (!Form::has_context && Form::F::integer_taps)
        if (count % 2 == 1)
            for (int i = 0; i < count * parts<Taps>; ++i) values(d.taps)[i] = static_cast<Kel32s>(random.bits());
    d.r = r;
    d.multi_rate = multi_rate;
    d.line = noise<typename Form::F::Sample>(random, d.history());
    d.tapsFactor = random.below(9) - 4;
    d.start = random.below(count);
    return d;
}

template <class Form>
auto run(Careful& careful, Form& form, Way way, const std::vector<typename Form::Sample>& x) {
    careful.allocates = form.allocates(way);
    form.place(careful);
    const int n = static_cast<int>(x.size()) / form.r.down;
    const auto y = filtered(careful, form, way, x, n, static_cast<std::size_t>(n * form.r.up));
    careful.allocates = false;
    return y;
}

Way any_of(Random& random, const std::vector<Way>& ways) {
    return ways[static_cast<std::size_t>(random.below(static_cast<int>(ways.size())))];
}

/// What a filter keeps of a stream: its latest samples, the newest first.
template <class T>
std::vector<T> newest(std::vector<T> x, const std::vector<T>& before) {
    std::reverse(x.begin(), x.end());
    kels_test::append(x, before);
    x.resize(before.size());
    return x;
}

/// A stream cut anywhere, its pieces taken in any way and at any scale; the delay line is read after each of them.
template <class Form>
void follow(Random& random, const Design<typename Form::F>& design, const std::vector<typename Form::Sample>& x,
            Comparison<typename Form::F> comparison = {}) {
    using F = typename Form::F;
    Careful careful;
    Form form(careful, design);
    comparison.tapsFactor = form.tapsFactor;
    const auto sums = defining_sums(form.taps, design.line, x, form.r);
    const int up = form.r.up, down = form.r.down, all = static_cast<int>(x.size()) / down;
    const int longest[] = {3, 40, form.count() + 8, form.plan() > 0 ? form.plan() + 300 : 1100};
    for (int done = 0, n; done < all; done += n) {
        n = std::min(1 + random.below(longest[random.below(4)]), all - done);
        const Way way = any_of(random, Form::ways(form.multi_rate));
        form.scale = F::integer_samples ? random.below(24) - 4 : 0;
        const auto y = run(careful, form, way, piece(x, done * down, n * down));
        const bool by_transform = form.transforms(way, n);
        comparison.scaleFactor = form.scale;
        for (int i = 0; i < n * up; ++i)
            comparison.check(y[static_cast<std::size_t>(i)], sums[static_cast<std::size_t>(done * up + i)],
                             by_transform);
        ASSERT_TRUE(same(form.newest_first(careful), newest(piece(x, 0, (done + n) * down), design.line)));
        if constexpr (!Form::has_context) {
            ASSERT_EQ(form.index, form.multi_rate ? design.start : (design.start + done + n) % form.count());
        }
        ASSERT_FALSE(testing::Test::HasFailure())
            << form.count() << " taps, up " << up << ' ' << form.r.upPhase << ", down " << down << ' '
            << form.r.downPhase << ", " << n << " at " << done << ", way " << way << ", scale " << form.scale;
    }
    if (sizeof(Part<typename F::Sample>) == 4 && !F::integer_samples) {
        EXPECT_LE(comparison.direct.missed_bits, comparison.direct.results / 1000 + 2) << form.count() << " taps";
    }
}

TYPED_TEST(Fir, OfOneRate) {
    using T = typename TypeParam::Sample;
    for (int L : {1, 2, 3, 7, 8, 9, 15, 16, 17, 24, 31, 32, 33, 64, 100, 127, 128, 200, 255, 256, 400}) {
        Random random("stream " + TypeParam::name() + std::to_string(L));
        const auto design = design_of<TypeParam>(random, L);
        follow<TypeParam>(random, design, noise<T>(random, kels_test::effort(9000, 2500)));
        if (this->HasFailure()) return;
    }
}

TYPED_TEST(Fir, OfAnyFactorsAndPhases) {
    using T = typename TypeParam::Sample;
    Random random("rates " + TypeParam::name());
    const int tap_counts[] = {1, 2, 3, 10, 24, 31, 64, 96, 130, 400};
    for (int up = 1; up <= 7; ++up)
        for (int down = 1; down <= 7; ++down) {
            const Rates r{up, random.below(up), down, random.below(down)};
            const auto design = design_of<TypeParam>(random, tap_counts[random.below(10)], r, true);
            follow<TypeParam>(random, design, noise<T>(random, 200 * down));
            if (this->HasFailure()) return;
        }
    // Factors and taps that dwarf the tiles.
    for (const auto& [L, r, iterations] : {std::tuple{50, Rates{1, 0, 3000, 2999}, 4},
                                           {50, Rates{3000, 7, 1, 0}, 4},
                                           {5000, Rates{1, 0, 2, 1}, 300},
                                           {5000, Rates{2, 1, 3, 2}, 300},
                                           {960, Rates{160, 9, 147, 146}, 9},
                                           {3, Rates{2, 1, 4001, 0}, 5}}) {
        follow<TypeParam>(random, design_of<TypeParam>(random, L, r, true), noise<T>(random, iterations * r.down));
        if (this->HasFailure()) return;
    }
}

/// Every sample's first part changed.
template <class T, class Change>
std::vector<T> with_first_parts(std::vector<T> x, Change change) {
    for (std::size_t i = 0; i < x.size() * parts<T>; i += parts<T>) values(x)[i] = change(values(x)[i]);
    return x;
}

// Partial sums, not one running sum, keep long sums of one sign within their bound.
TYPED_TEST(Fir, LongSumsOfOneSign) {
    Random random("long sums");
    const auto positive = [](auto v) { return static_cast<decltype(v)>(std::abs(v)); };
    for (int L : {500, 2049, 5000}) {
        auto design = design_of<TypeParam>(random, L);
        design.taps = with_first_parts(design.taps, positive);
        follow<TypeParam>(random, design, with_first_parts(noise<typename TypeParam::Sample>(random, 1500), positive));
    }
}

// Equal terms make equal partial sums, whose rounding errors point the same way.
TYPED_TEST(Fir, SumsOfEqualTerms) {
    using T = typename TypeParam::Sample;
    if constexpr (std::is_same_v<Part<T>, Kel64f>) {
        Random random("equal terms");
        const auto all = [](double value, int count) {
            return with_first_parts(std::vector<T>(static_cast<std::size_t>(count)), [=](auto) { return value; });
        };
        for (int L : {2, 3, 5, 7, 11, 23, 31, 33, 47, 61, 100, 127, 333, 1000, 2047, 4000, 50000})
            for (int i = 0; i < (L < 5000 ? 40 : 4); ++i) {
                auto design = design_of<TypeParam>(random, L);
                design.taps = all(i == 0 ? 28.7 : i == 1 ? 10.3 : random.uniform(1, 2), L);
                design.line = all(1, L);
                follow<TypeParam>(random, design, all(1, 40), {.bits_of_doubles = i < 2 ? -51 : -50});
            }
    }
}

// One sum, however it comes about: of single samples in a context, or in any pieces and ways of either form.
TYPED_TEST(Fir, DirectSumsHaveTheSameBits) {
    using F = typename TypeParam::F;
    using T = typename F::Sample;
    Careful careful;
    for (int L :
         {1, 2, 3, 4, 5, 7, 8, 9, 12, 13, 15, 31, 32, 33, 40, 63, 64, 65, 100, 127, 129, 200, 256, 300, 1025, 2100})
        for (const Rates& r : {Rates{}, Rates{3, 2, 2, 1}}) {
            Random random("bits " + TypeParam::name() + std::to_string(L));
            const bool multi_rate = r.up > 1;
            auto design = design_of<WithContext<F>>(random, L, r, multi_rate);
            design.scale = F::integer_samples ? 9 : 0;
            const auto x = noise<T>(random, std::max(600, 3 * L) * r.down);
            WithContext<F> context(careful, design);
            TypeParam form(careful, design);
            const auto wanted = run(careful, context, multi_rate ? as_block : one_by_one, x);
            std::vector<T> y;
            for (int done = 0, all = static_cast<int>(x.size()) / r.down, n; done < all; done += n) {
                const int longest = random.below(3) ? 150 : 1200, plan = form.plan();
                n = std::min(1 + random.below(plan > 0 ? std::min(plan, longest) : longest), all - done);
                Way way = any_of(random, TypeParam::ways(multi_rate));
                if (form.transforms(way, n)) way = as_block;
                kels_test::append(y, run(careful, form, way, piece(x, done * r.down, n * r.down)));
            }
            EXPECT_TRUE(same(y, wanted)) << "taps " << L << ", up " << r.up;
        }
}

/// Streams that transforms find hard: most of it silence, levels far apart, numbers that are none, a line that repeats.
template <class T>
std::vector<T> hard_stream(Random& random, int kind, int count) {
    using P = Part<T>;
    auto x = noise<T>(random, count);
    for (int i = 0; i < count; ++i)
        for (int part = 0; part < parts<T>; ++part) {
            P& v = values(x)[i * parts<T> + part];
            if (kind == 0 && i % 1000 > 30) v = 0;
            if (kind == 1 && i % 700 != 9) v = static_cast<P>(v / 4096);
            if (kind == 2 && i > 2000) v = 0;
            if (kind == 3) v = static_cast<P>(i % 2 ? -100 : 100);
            if constexpr (std::is_floating_point_v<P>) {
                if (kind == 4 && i % 2000 == 500) v = std::numeric_limits<P>::infinity();
                if (kind == 5) v *= i / 1000 % 2 ? P(1e30) : P(1e-30);
            }
        }
    return x;
}

// Direct results of single-precision and of integer samples are the direct engine's wherever they come from, to the
// bit: in calls of one length, which let the context choose whatever is cheapest for it.
TYPED_TEST(Fir, ShortcutsHaveTheBitsOfDirectSums) {
    using F = typename TypeParam::F;
    using T = typename F::Sample;
    if constexpr (TypeParam::has_context && sizeof(Part<T>) < 8) {
        Random random("shortcuts " + TypeParam::name());
        Careful careful;
        for (int L : {64, 90, 129, 300, 513, 1100})
            for (int count : {1, 3, 5, 64, 100, 256, 500, 1024})
                for (int kind = 0; kind < (F::integer_samples ? 4 : 7); ++kind) {
                    auto design = design_of<TypeParam>(random, L);
                    if (design.plan() > 0 && count > design.plan()) continue;
                    if (kind == 6) // squares of such taps are nothing
                        for (int i = 0; i < L * parts<typename F::Taps>; ++i)
                            values(design.taps)[i] *= std::numeric_limits<Part<typename F::Taps>>::min();
                    design.scale = F::integer_samples ? 3 : 0;
                    const auto x = hard_stream<T>(random, kind, kels_test::effort(3072, 2048));
                    TypeParam single(careful, design), blocks(careful, design);
                    std::vector<T> y(x.size());
                    for (int at = 0, all = static_cast<int>(x.size()); at < all; at += count)
                        ASSERT_EQ(blocks.run(x.data() + at, y.data() + at, std::min(count, all - at)), kelStatusOk);
                    SCOPED_TRACE(std::to_string(L) + " taps, blocks of " + std::to_string(count));
                    kels_test::expect_same(y, run(careful, single, one_by_one, x), "shortcut");
                    if (this->HasFailure()) return;
                }
    }
}

// Great terms that cancel leave the small ones whole, in the single sample as in the block.
TEST(FirSums, CancellingTermsLeaveTheOthers) {
    constexpr Kel32f most = std::numeric_limits<Kel32f>::max();
    Careful careful;
    for (const Way way : {as_block, one_by_one}) {
        WithContext<Family32f_16s> form(careful, {{-1, 128, -most, most}, {32766, 255, 255, -1}, {}, false, 0, -2});
        EXPECT_EQ(run(careful, form, way, {-2}), std::vector<Kel16s>{32767});
    }
}

// The rounding is the rule's, whichever engine forms the sums: up to the plan's length ties go away from zero; in place
// they go to even where the rules have a transform at any length and a conversion behind it. Beyond the plan's length
// the noise of the transforms decides.
TYPED_TEST(Fir, TiesAreRoundedByTheRule) {
    using F = typename TypeParam::F;
    using T = typename F::Sample;
    if constexpr (TypeParam::has_context && F::integer_samples && !F::integer_taps) {
        Careful careful;
        for (int L : {F::least_for_plan, F::least_for_plan + 1, 128, 255, 256, 700}) {
            Design<F> design;
            design.taps.resize(static_cast<std::size_t>(L));
            design.line.resize(design.taps.size());
            values(design.taps)[0] = 0.5;
            const int plan = design.plan();
            for (int count : {1, 5, 64, plan - 1, plan})
                for (Way way : {as_block, in_place}) {
                    TypeParam form(careful, design);
                    std::vector<T> x(static_cast<std::size_t>(count));
                    for (int i = 0; i < count * parts<T>; ++i) values(x)[i] = static_cast<Part<T>>(4 * (i % 9) + 1);
                    const auto y = run(careful, form, way, x);
                    for (int i = 0; i < count * parts<T>; ++i)
                        ASSERT_EQ(values(y)[i], 2 * (i % 9) + (form.transforms(way, count) ? 0 : 1))
                            << L << " taps, " << count << ", way " << way << ", output " << i;
                }
        }
    }
}

// Only the samples that a tap meets may make an output a NaN: those that leave the history have no influence.
TYPED_TEST(Fir, NansReachTheirOutputsOnly) {
    using T = typename TypeParam::Sample;
    if constexpr (!TypeParam::F::integer_samples) {
        Random random("nan");
        Careful careful;
        constexpr Part<T> nan = std::numeric_limits<Part<T>>::quiet_NaN();
        for (int L : {1, 2, 5, 9, 13, 16, 31, 33, 70, 600})
            for (const Rates& r : {Rates{}, {3, 2, 2, 1}, {1, 0, 4, 3}, {5, 0, 1, 0}}) {
                const bool multi_rate = r.up * r.down > 1;
                for (Way way : TypeParam::ways(multi_rate)) {
                    auto design = design_of<TypeParam>(random, L, r, multi_rate);
                    if (!multi_rate) values(design.line)[(L - 1) * parts<T>] = nan;
                    TypeParam form(careful, design);
                    auto x = noise<T>(random, 50 * r.down);
                    const int at = random.below(50 * r.down);
                    values(x)[at * parts<T>] = nan;
                    const auto y = run(careful, form, way, x);
                    for (int m = 0; m < 50 * r.up; ++m) {
                        const int tap = m * r.down + r.downPhase - r.upPhase - at * r.up;
                        EXPECT_EQ(std::isnan(values(y)[m * parts<T>]), tap >= 0 && tap < L)
                            << L << " taps, way " << way << ", output " << m;
                    }
                }
            }
    }
}

TYPED_TEST(Fir, LeavesTheModesAlone) {
    using T = typename TypeParam::Sample;
    Random random("modes");
    Careful careful;
    for (const bool multi_rate : {false, true}) {
        const Rates r{1, 0, multi_rate ? 3 : 1, 0};
        TypeParam form(careful, design_of<TypeParam>(random, 130, r, multi_rate));
        const auto x = noise<T>(random, 399);
        kels_test::in_odd_modes([&] {
            for (Way way : TypeParam::ways(multi_rate)) {
                run(careful, form, way, x);
                run(careful, form, way, piece(x, 0, 39));
            }
        });
    }
}

// Literal values

TEST(FirSums, OfTwoRates) {
    Careful careful;
    WithContext<Family_32f> form(careful, {{1, 0}, {0}, {2, 1, 1, 0}, true});
    EXPECT_EQ(run(careful, form, as_block, {3, 4, 5}), (std::vector<Kel32f>{0, 3, 0, 4, 0, 5}));
}

template <class F>
typename F::Sample rounded(double sum, int scale) {
    const Context context = make<F>({static_cast<typename F::Taps>(sum)});
    typename F::Sample result = 0;
    EXPECT_EQ(F::one(1, &result, context.get(), scale), kelStatusOk);
    return result;
}

template <class F>
class FirRounding : public testing::Test {};
using IntegerSamples = testing::Types<Family32f_16s, Family64f_16s, Family64f_32s>;
TYPED_TEST_SUITE(FirRounding, IntegerSamples, FamilyNames);

TYPED_TEST(FirRounding, TiesGoAwayFromZeroAndExtremesSaturate) {
    using F = TypeParam;
    using T = typename F::Sample;
    constexpr T most = std::numeric_limits<T>::max(), least = std::numeric_limits<T>::min();
    EXPECT_EQ(rounded<F>(2.5, 0), 3);
    EXPECT_EQ(rounded<F>(-2.5, 0), -3);
    EXPECT_EQ(rounded<F>(0.25, 0), 0);
    EXPECT_EQ(rounded<F>(1, 1), 1);
    EXPECT_EQ(rounded<F>(-1, 1), -1);
    EXPECT_EQ(rounded<F>(3, -2), 12);
    EXPECT_EQ(rounded<F>(4e9, 0), most);
    EXPECT_EQ(rounded<F>(-4e9, 0), least);
    EXPECT_EQ(rounded<F>(NAN, 0), most);
    EXPECT_EQ(rounded<F>(-INFINITY, 0), least);
    EXPECT_EQ(rounded<F>(5, 128), 5) << "the factor counts modulo 128";
    EXPECT_EQ(rounded<F>(5, -128), 5);
    EXPECT_EQ(rounded<F>(5, INT_MIN), 5);
    EXPECT_EQ(rounded<F>(0x1p127, 127), F::single_taps ? 0 : 1);
    EXPECT_EQ(rounded<F>(0x1p-127, -127), 1);
    EXPECT_EQ(rounded<F>(1, -127), most);
}

// The scale of a transform's results is a conversion's where one ends it, which takes a factor as it is.
TYPED_TEST(FirRounding, TransformedResultsAreScaledAsTheConversionsDo) {
    using F = TypeParam;
    std::vector<typename F::Taps> taps(128);
    taps[0] = typename F::Taps(0.5);
    const Context context = make<F>(taps);
    std::vector<typename F::Sample> x(5000), y(5000);
    x[1000] = 6;
    ASSERT_EQ(F::block(x.data(), y.data(), 5000, context.get(), 0), kelStatusOk);
    EXPECT_EQ(y[1000], 3);
    ASSERT_EQ(F::block(x.data(), y.data(), 5000, context.get(), 128), kelStatusOk);
    EXPECT_EQ(y[1000], (std::is_same_v<F, Family64f_16s>) ? 3 : 0);
}

} // namespace
