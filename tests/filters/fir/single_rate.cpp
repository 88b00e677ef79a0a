// FIR filters of one rate: every family as a stream against its defining sum, and its contexts.

#include "filters/fir/reference.h"
#include "support/allocation_faults.h"
#include "support/control_state.h"
#include "support/emulation.h"
#include "support/guarded_memory.h"

#include <climits>

namespace {

using namespace fir_test;

template <class F>
class FirTest : public testing::Test {};
TYPED_TEST_SUITE(FirTest, Families, FamilyNames);

// A stream cut anywhere, its pieces taken as blocks, in place and sample by sample, at any scale: 1,000 cuts or more.
TYPED_TEST(FirTest, StreamDoesNotDependOnItsCuts) {
    using F = TypeParam;
    using T = typename F::Sample;
    const int tap_counts[] = {1, 2, 3, 7, 8, 9, 15, 16, 17, 31, 32, 33, 64, 100, 127, 128, 200, 255, 256, 400};
    int cuts = 0;
    for (int L : tap_counts) {
        Random random(std::string("stream ") + F::name + std::to_string(L));
        const auto taps = noise<typename F::Taps>(random, L);
        const auto before = noise<T>(random, L), x = noise<T>(random, kels_test::effort(9000, 2500));
        const std::vector<Sum> sums = defining_sums(taps, before, x);
        const Context context = make<F>(taps, before);
        Comparison<F> direct, transformed;
        for (int done = 0, total = static_cast<int>(x.size()); done < total; ++cuts) {
            const int plan = plan_length<F>(L);
            const int longest[] = {3, 40, L + 8, plan > 0 ? plan + 300 : 1100};
            const int count = std::min(1 + random.below(longest[random.below(4)]), total - done);
            const int scale = F::integer_samples ? random.below(24) - 4 : 0;
            direct.scaleFactor = transformed.scaleFactor = scale;
            const auto at = static_cast<std::size_t>(done);
            std::vector<T> y(x.begin() + done, x.begin() + done + count);
            bool by_transform = plan > 0 && count > plan;
            switch (random.below(3)) {
            case 0:
                ASSERT_EQ(call(F::block, scale, x.data() + at, y.data(), count, context.get()), kelStatusOk);
                break;
            case 1:
                ASSERT_EQ(call(F::in_place, scale, y.data(), count, context.get()), kelStatusOk);
                by_transform |= plan > 0 && F::plan_in_place_always && F::ties_to_even;
                break;
            default:
                for (T& v : y) ASSERT_EQ(call(F::one, scale, v, &v, context.get()), kelStatusOk);
                by_transform = false;
            }
            for (std::size_t i = 0; i < y.size(); ++i)
                (by_transform ? transformed : direct).check(y[i], sums[at + i], by_transform);
            done += count;
            ASSERT_FALSE(this->HasFatalFailure()) << "taps " << L << " at " << done << " scale " << scale;

            std::vector<T> line(taps.size()), wanted;
            ASSERT_EQ(F::get_line(context.get(), line.data()), kelStatusOk);
            for (int i = 1; i <= L; ++i)
                wanted.push_back(done - i >= 0 ? x[static_cast<std::size_t>(done - i)]
                                               : before[static_cast<std::size_t>(i - done - 1)]);
            ASSERT_TRUE(same(line, wanted)) << "taps " << L << " at " << done;
        }
        if (sizeof(Part<T>) == 4 && !F::integer_samples) {
            EXPECT_LE(direct.missed_bits, direct.outputs / 1000 + 2) << "taps " << L;
        }
    }
    EXPECT_GE(cuts, kels_test::effort(1000, 250));
}

// Long sums of one sign keep their bound: partial sums, not one running sum.
TYPED_TEST(FirTest, LongDirectSumsStayWithinTheirBound) {
    using F = TypeParam;
    using T = typename F::Sample;
    Random random("long sums");
    for (int L : {500, 2049, 5000}) {
        auto taps = noise<typename F::Taps>(random, L);
        auto x = noise<T>(random, 1500);
        for (int i = 0; i < L * parts<T>; i += parts<T>) values(taps)[i] = std::abs(values(taps)[i]);
        for (int i = 0; i < 1500 * parts<T>; i += parts<T>) values(x)[i] = std::abs(values(x)[i]);
        const auto before = noise<T>(random, L);
        const std::vector<Sum> sums = defining_sums(taps, before, x);
        const Context context = make<F>(taps, before);
        std::vector<T> y(x.size());
        Comparison<F> direct;
        direct.scaleFactor = 12;
        for (std::size_t done = 0; done < 1000; done += 500) // no longer than the plan
            ASSERT_EQ(call(F::block, 12, x.data() + done, y.data() + done, 500, context.get()), kelStatusOk);
        for (std::size_t i = 1000; i < x.size(); ++i) call(F::one, 12, x[i], &y[i], context.get());
        for (std::size_t i = 0; i < y.size(); i += 7) direct.check(y[i], sums[i]);
        ASSERT_FALSE(this->HasFatalFailure()) << "taps " << L;
    }
}

// One sum, however it comes about: block after block, sample by sample, in place.
TYPED_TEST(FirTest, DirectStreamsHaveTheSameBitsHoweverTheyAreCut) {
    using F = TypeParam;
    using T = typename F::Sample;
    for (int L :
         {1, 2, 3, 4, 5, 7, 8, 9, 12, 15, 31, 32, 33, 40, 63, 64, 65, 100, 127, 129, 200, 256, 300, 1025, 2100}) {
        Random random(std::string("bits ") + F::name + std::to_string(L));
        const auto taps = noise<typename F::Taps>(random, L);
        const auto x = noise<T>(random, std::max(600, 3 * L));
        const Context one_by_one = make<F>(taps), cut = make<F>(taps);
        const int plan = plan_length<F>(L), scale = F::integer_samples ? 9 : 0;
        constexpr bool in_place_is_direct = !F::plan_in_place_always || !F::ties_to_even;
        std::vector<T> wanted(x.size()), y(x.size());
        for (std::size_t i = 0; i < x.size(); ++i)
            ASSERT_EQ(call(F::one, scale, x[i], &wanted[i], one_by_one.get()), kelStatusOk);
        for (int done = 0, total = static_cast<int>(x.size()), count; done < total; done += count) {
            const int longest = random.below(3) ? 150 : 1200;
            count = std::min(1 + random.below(plan > 0 ? std::min(plan, longest) : longest), total - done);
            const auto at = static_cast<std::size_t>(done);
            T* out = y.data() + at;
            if ((plan == 0 || in_place_is_direct) && random.below(2)) {
                std::copy_n(x.data() + at, count, out);
                ASSERT_EQ(call(F::block, scale, static_cast<const T*>(out), out, count, cut.get()), kelStatusOk);
            } else {
                ASSERT_EQ(call(F::block, scale, x.data() + at, out, count, cut.get()), kelStatusOk);
            }
        }
        EXPECT_TRUE(same(y, wanted)) << "taps " << L;
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
TYPED_TEST(FirTest, ShortcutsHaveTheBitsOfDirectSums) {
    using F = TypeParam;
    using T = typename F::Sample;
    if constexpr (sizeof(Part<T>) < 8) {
        Random random(std::string("shortcuts ") + F::name);
        for (int L : {64, 90, 129, 300, 513, 1100})
            for (int count : {1, 3, 5, 64, 100, 256, 500, 1024})
                for (int kind = 0; kind < (F::integer_samples ? 4 : 6); ++kind) {
                    if (const int plan = plan_length<F>(L); plan > 0 && count > plan) continue;
                    auto taps = noise<typename F::Taps>(random, L);
                    if (kind % 2) std::reverse(taps.begin(), taps.end());
                    const auto x = hard_stream<T>(random, kind, kels_test::effort(3072, 2048)),
                               before = noise<T>(random, L);
                    const Context one_by_one = make<F>(taps, before), whole = make<F>(taps, before);
                    std::vector<T> wanted(x.size()), y(x.size());
                    const int scale = F::integer_samples ? 3 : 0;
                    for (std::size_t i = 0; i < x.size(); ++i) call(F::one, scale, x[i], &wanted[i], one_by_one.get());
                    for (std::size_t at = 0; at < x.size(); at += static_cast<std::size_t>(count)) {
                        const int some = std::min(count, static_cast<int>(x.size() - at));
                        ASSERT_EQ(call(F::block, scale, x.data() + at, y.data() + at, some, whole.get()), kelStatusOk);
                    }
                    for (std::size_t i = 0; i < x.size(); ++i)
                        if (std::memcmp(&wanted[i], &y[i], sizeof(T)) != 0)
                            for (int part = 0; part < parts<T>; ++part) {
                                const auto a = values(wanted)[i * parts<T> + static_cast<std::size_t>(part)],
                                           b = values(y)[i * parts<T> + static_cast<std::size_t>(part)];
                                ASSERT_TRUE(a != a && b != b) << L << " taps, blocks of " << count << ", kind " << kind
                                                              << ", output " << i << ": " << b << " for " << a;
                            }
                }
    }
}

// Equal terms make equal partial sums, whose rounding errors point the same way.
TYPED_TEST(FirTest, SumsOfEqualTermsStayWithinTheirBound) {
    using F = TypeParam;
    using T = typename F::Sample;
    if constexpr (std::is_same_v<T, Kel64f> || std::is_same_v<T, Kel64fc>) {
        Random random("equal terms");
        for (int L : {2, 3, 5, 7, 11, 23, 31, 33, 47, 61, 100, 127, 333, 1000, 2047, 4000})
            for (int i = 0; i < 40; ++i) {
                const double tap = i == 0 ? 28.7 : i == 1 ? 10.3 : random.uniform(1, 2);
                std::vector<T> taps(static_cast<std::size_t>(L)), ones(taps.size() + 40), y(40);
                for (T& h : taps) reinterpret_cast<Kel64f&>(h) = tap;
                for (T& v : ones) reinterpret_cast<Kel64f&>(v) = 1;
                const Context context = make<F>(taps, std::vector<T>(ones.begin(), ones.begin() + L));
                ASSERT_EQ(call(F::block, 0, ones.data(), y.data(), 20, context.get()), kelStatusOk);
                ASSERT_EQ(call(F::one, 0, ones[0], &y[20], context.get()), kelStatusOk);
                const long double exact = static_cast<long double>(tap) * L;
                for (int at : {0, 19, 20})
                    ASSERT_LE(std::fabs(reinterpret_cast<const Kel64f&>(y[static_cast<std::size_t>(at)]) - exact),
                              std::ldexp(exact, -51))
                        << L << " taps of " << tap;
            }
    }
}

// Great terms that cancel leave the small ones whole, in the single sample as in the block.
TEST(Fir, CancellingTermsLeaveTheOthers) {
    constexpr Kel32f most = std::numeric_limits<Kel32f>::max();
    const std::vector<Kel32f> taps = {-1, 128, -most, most};
    const std::vector<Kel16s> line = {32766, 255, 255, -1};
    const Kel16s x = -2;
    const Context one = make<Family_32f_16s>(taps, line), block = make<Family_32f_16s>(taps, line);
    Kel16s y[2] = {};
    kelsFIROne32f_16s_Sfs(x, &y[0], one.get(), -2);
    kelsFIR32f_16s_Sfs(&x, &y[1], 1, block.get(), -2);
    EXPECT_EQ(y[0], 32767);
    EXPECT_EQ(y[1], 32767);
}

// Direct results of single taps and of integers have the same bits at every level and on 32-bit x86.
template <class F>
std::uint32_t hash_of_direct_results() {
    using T = typename F::Sample;
    std::uint32_t state = 1, hash = 0;
    const auto draw = [&]<class V>(std::vector<V> x) {
        for (std::size_t i = 0; i < x.size() * parts<V>; ++i) {
            state = state * 1664525 + 1013904223;
            const auto bits = static_cast<std::int32_t>(state);
            if constexpr (std::is_floating_point_v<Part<V>>)
                values(x)[i] = static_cast<Part<V>>(bits) * Part<V>(0x1p-31);
            else
                values(x)[i] = static_cast<Part<V>>(bits >> 16);
        }
        return x;
    };
    for (int L : {1, 7, 15, 40, 203}) {
        auto taps = draw(std::vector<typename F::Taps>(1200));
        const auto x = draw(std::vector<T>(1200));
        taps.resize(static_cast<std::size_t>(L));
        const Context context = make<F>(taps);
        std::vector<T> y(x.size());
        const int part = plan_length<F>(L) == 0 ? 600 : 64; // no longer than the plan
        for (int i = 0; i < 600; i += part)
            call(F::block, 2, x.data() + i, y.data() + i, std::min(part, 600 - i), context.get());
        for (std::size_t i = 600; i < x.size(); ++i) call(F::one, 2, x[i], &y[i], context.get());
        for (std::size_t i = 0; i < y.size() * parts<T>; ++i) {
            std::uint32_t bits = 0;
            std::memcpy(&bits, values(y) + i, sizeof(Part<T>));
            hash = (hash ^ bits) * 0x01000193;
        }
    }
    return hash;
}

TEST(Fir, DirectResultsHaveTheSameBitsEverywhere) {
    EXPECT_EQ(hash_of_direct_results<Family_32f>(), 1981695006U);
    EXPECT_EQ(hash_of_direct_results<Family_32fc>(), 967539643U);
    EXPECT_EQ(hash_of_direct_results<Family_32f_16s>(), 2040523908U);
    EXPECT_EQ(hash_of_direct_results<Family_32fc_16sc>(), 1217555707U);
    EXPECT_EQ(hash_of_direct_results<Family_32s_16s>(), 2564868722U);
    EXPECT_EQ(hash_of_direct_results<Family_32sc_16sc>(), 280923397U);
}

// The rounding is the rule's, whichever engine forms the sums: up to the plan's length ties go away from zero; in place
// they go to even where the rules have a transform at any length and a conversion behind it. Beyond the plan's length
// the noise of the transforms decides.
TYPED_TEST(FirTest, TiesAreRoundedByTheRule) {
    using F = TypeParam;
    using T = typename F::Sample;
    if constexpr (F::integer_samples && !F::integer_taps)
        for (int L : {F::least_for_plan, F::least_for_plan + 1, 128, 255, 256, 700}) {
            const int plan = plan_length<F>(L);
            std::vector<typename F::Taps> taps(static_cast<std::size_t>(L));
            values(taps)[0] = 0.5;
            for (int count : {1, 5, 64, plan - 1, plan})
                for (bool in_place : {false, true}) {
                    const bool to_even = in_place && F::plan_in_place_always && F::ties_to_even;
                    const Context context = make<F>(taps);
                    std::vector<T> x(static_cast<std::size_t>(count));
                    for (int i = 0; i < count * parts<T>; ++i) values(x)[i] = static_cast<Part<T>>(4 * (i % 9) + 1);
                    auto y = x;
                    ASSERT_EQ(in_place ? call(F::in_place, 0, y.data(), count, context.get())
                                       : call(F::block, 0, x.data(), y.data(), count, context.get()),
                              kelStatusOk);
                    for (int i = 0; i < count * parts<T>; ++i)
                        ASSERT_EQ(values(y)[i], 2 * (i % 9) + (to_even ? 0 : 1))
                            << L << " taps, " << count << (in_place ? " in place, output " : ", output ") << i;
                }
        }
}

// The sample that leaves the history has no influence, not even as a NaN times nothing; the others have.
TYPED_TEST(FirTest, NansReachTheirOutputsOnly) {
    using F = TypeParam;
    using T = typename F::Sample;
    if constexpr (!F::integer_samples) {
        Random random("nan");
        const auto is_nan = [](const T& z) { return std::isnan(*reinterpret_cast<const Part<T>*>(&z)); };
        T nan{};
        *reinterpret_cast<Part<T>*>(&nan) = std::numeric_limits<Part<T>>::quiet_NaN();
        for (int L : {1, 2, 5, 9, 13, 16, 31, 33, 70, 600}) {
            const auto taps = noise<typename F::Taps>(random, L);
            std::vector<T> before = noise<T>(random, L), y(50);
            before.back() = nan;
            for (int form = 0; form < 3; ++form) {
                const Context context = make<F>(taps, before);
                std::vector<T> x = noise<T>(random, 50);
                if (form == 0) F::block(x.data(), y.data(), 50, context.get());
                if (form == 1)
                    for (std::size_t i = 0; i < 50; ++i) F::one(x[i], &y[i], context.get());
                if (form == 2) {
                    y = x;
                    F::in_place(y.data(), 50, context.get());
                }
                for (const T& z : y) EXPECT_FALSE(is_nan(z)) << "taps " << L << " form " << form;
                x[20] = nan;
                if (form == 2) {
                    y = x;
                    F::in_place(y.data(), 50, context.get());
                }
                if (form == 0) F::block(x.data(), y.data(), 50, context.get());
                if (form == 1)
                    for (std::size_t i = 0; i < 50; ++i) F::one(x[i], &y[i], context.get());
                for (int i = 0; i < 50; ++i)
                    EXPECT_EQ(is_nan(y[static_cast<std::size_t>(i)]), i >= 20 && i < 20 + L) << L;
            }
        }
    }
}

TYPED_TEST(FirTest, StaysInsideItsArrays) {
    using F = TypeParam;
    using T = typename F::Sample;
    Random random("guards");
    kels_test::GuardedMemory source(3000 * sizeof(T)), target(3000 * sizeof(T));
    for (int L : {1, 2, 9, 31, 32, 47, 130})
        for (int count : {1, 2, 3, 5, 8, 15, 16, 17, 31, 33, 64, 65, 129, 255, 257, 600, 1025, 2500})
            for (bool at_end : {false, true}) {
                const std::size_t bytes = static_cast<std::size_t>(count) * sizeof(T);
                const auto taps = noise<typename F::Taps>(random, L);
                const auto x = noise<T>(random, count);
                const Context context = make<F>(taps), other = make<F>(taps);
                auto* src = reinterpret_cast<T*>(at_end ? source.end() - bytes : source.begin());
                auto* dst = reinterpret_cast<T*>(at_end ? target.end() - bytes : target.begin());
                std::memcpy(static_cast<void*>(src), x.data(), bytes);
                std::vector<T> y(x.size());
                ASSERT_TRUE(kels_test::runs_without_fault([&] { call(F::block, 3, src, dst, count, context.get()); }))
                    << L << ' ' << count;
                call(F::block, 3, x.data(), y.data(), count, other.get());
                EXPECT_EQ(std::memcmp(y.data(), dst, bytes), 0) << "at any address the same bits";
                ASSERT_TRUE(kels_test::runs_without_fault([&] { call(F::in_place, 3, src, count, context.get()); }))
                    << L << ' ' << count;
                ASSERT_TRUE(kels_test::runs_without_fault([&] { call(F::one, 3, x[0], dst, context.get()); })) << L;
            }
}

TYPED_TEST(FirTest, ContextGivesBackWhatItWasGiven) {
    using F = TypeParam;
    using T = typename F::Sample;
    Random random("read back");
    for (int L : {1, 2, 8, 31, 40}) {
        const auto taps = noise<typename F::Taps>(random, L);
        const auto line = noise<T>(random, L);
        const std::vector<T> silence(line.size());
        std::vector<T> got(line.size());
        auto got_taps = taps;
        const Context context = make<F>(taps, line);
        std::fill(got_taps.begin(), got_taps.end(), typename F::Taps{});
        EXPECT_EQ(get_taps<F>(context.get(), got_taps.data()), kelStatusOk);
        EXPECT_TRUE(same(got_taps, taps));
        F::get_line(context.get(), got.data());
        EXPECT_TRUE(same(got, line));
        T y;
        call(F::one, 0, line[0], &y, context.get());
        F::get_line(context.get(), got.data());
        std::vector<T> moved(line.begin(), line.end() - 1);
        moved.insert(moved.begin(), line[0]);
        EXPECT_TRUE(same(got, moved));
        F::set_line(context.get(), line.data());
        F::get_line(context.get(), got.data());
        EXPECT_TRUE(same(got, line));
        F::set_line(context.get(), nullptr);
        F::get_line(context.get(), got.data());
        EXPECT_TRUE(same(got, silence));
    }
}

/// A context of every family but one.
template <class Other, class... Rest>
std::vector<Context> contexts_of_others(const char* name, testing::Types<Other, Rest...>*) {
    std::vector<Context> others;
    if constexpr (sizeof...(Rest) > 0)
        others = contexts_of_others(name, static_cast<testing::Types<Rest...>*>(nullptr));
    if (std::string(name) != Other::name) {
        others.push_back(make<Other>(std::vector<typename Other::Taps>(5)));
        others.push_back(make_multi_rate<Other>(std::vector<typename Other::Taps>(5), {2, 0, 3, 0}));
    }
    return others;
}

TYPED_TEST(FirTest, RefusesContextsOfOthers) {
    using F = TypeParam;
    typename F::Taps taps[8];
    typename F::Sample x[8] = {}, y[8], kept[8];
    std::memset(static_cast<void*>(y), 0x5A, sizeof y);
    std::memcpy(static_cast<void*>(kept), y, sizeof y);
    const auto others = contexts_of_others(F::name, static_cast<Families*>(nullptr));
    EXPECT_EQ(others.size(), 26U);
    for (const Context& other : others) {
        KelFirContext* foreign = other.get();
        EXPECT_EQ(F::release(foreign), kelStatusContextMismatch);
        EXPECT_EQ(get_taps<F>(foreign, nullptr), kelStatusNullPtr);
        EXPECT_EQ(get_taps<F>(foreign, taps), kelStatusContextMismatch);
        EXPECT_EQ(F::get_line(foreign, nullptr), kelStatusNullPtr);
        EXPECT_EQ(F::get_line(foreign, y), kelStatusContextMismatch);
        EXPECT_EQ(F::set_line(foreign, nullptr), kelStatusContextMismatch);
        EXPECT_EQ(F::set_line(foreign, x), kelStatusContextMismatch);
        for (int count : {0, 1}) {
            EXPECT_EQ(call(F::block, 0, nullptr, y, count, foreign), kelStatusContextMismatch);
            EXPECT_EQ(call(F::in_place, 0, nullptr, count, foreign), kelStatusContextMismatch);
        }
        EXPECT_EQ(call(F::one, 0, x[0], nullptr, foreign), kelStatusContextMismatch);
    }
    EXPECT_EQ(std::memcmp(y, kept, sizeof y), 0) << "nothing stored";
}

TYPED_TEST(FirTest, RefusesInTheOrderOfItsChecks) {
    using F = TypeParam;
    using T = typename F::Sample;
    const std::vector<typename F::Taps> taps(5);
    char elsewhere;
    auto* const untouched = reinterpret_cast<KelFirContext*>(&elsewhere);
    KelFirContext* made = untouched;
    EXPECT_EQ(init<F>(nullptr, taps.data(), 0, nullptr), kelStatusNullPtr);
    EXPECT_EQ(init<F>(&made, nullptr, 0, nullptr), kelStatusNullPtr);
    for (int bad : {0, -1, INT_MIN}) EXPECT_EQ(init<F>(&made, taps.data(), bad, nullptr), kelStatusBadFirLength);
    EXPECT_EQ(made, untouched);

    const Context own = make<F>(taps);
    std::vector<T> a(8), b(8);
    std::memset(static_cast<void*>(a.data()), 0x5A, 8 * sizeof(T));
    b = a;
    auto got = taps;
    EXPECT_EQ(F::release(nullptr), kelStatusNullPtr);
    EXPECT_EQ(get_taps<F>(nullptr, got.data()), kelStatusNullPtr);
    EXPECT_EQ(get_taps<F>(own.get(), nullptr), kelStatusNullPtr);
    EXPECT_EQ(F::get_line(nullptr, a.data()), kelStatusNullPtr);
    EXPECT_EQ(F::get_line(own.get(), nullptr), kelStatusNullPtr);
    EXPECT_EQ(F::set_line(nullptr, a.data()), kelStatusNullPtr);
    for (int count : {0, 1}) {
        EXPECT_EQ(call(F::block, 0, nullptr, nullptr, count, nullptr), kelStatusNullPtr);
        EXPECT_EQ(call(F::block, 0, nullptr, a.data(), count, own.get()), kelStatusNullPtr);
        EXPECT_EQ(call(F::block, 0, b.data(), nullptr, count, own.get()), kelStatusNullPtr);
        EXPECT_EQ(call(F::in_place, 0, a.data(), count, nullptr), kelStatusNullPtr);
        EXPECT_EQ(call(F::in_place, 0, nullptr, count, own.get()), kelStatusNullPtr);
    }
    for (int bad : {0, -1, INT_MIN}) {
        EXPECT_EQ(call(F::block, 0, b.data(), a.data(), bad, own.get()), kelStatusBadSize);
        EXPECT_EQ(call(F::in_place, 0, a.data(), bad, own.get()), kelStatusBadSize);
    }
    EXPECT_EQ(call(F::one, 0, T{}, a.data(), nullptr), kelStatusNullPtr);
    EXPECT_EQ(call(F::one, 0, T{}, nullptr, own.get()), kelStatusNullPtr);
    EXPECT_TRUE(same(a, b)) << "nothing stored";
}

TYPED_TEST(FirTest, FailedAllocationsLeakNothing) {
    using F = TypeParam;
    Random random("faults");
    const auto taps = noise<typename F::Taps>(random, 140);
    char elsewhere;
    auto* const untouched = reinterpret_cast<KelFirContext*>(&elsewhere);
    for (int L : {1, 140})
        kels_test::for_each_allocation_failure([&] {
            KelFirContext* made = untouched;
            const KelStatus status = init<F>(&made, taps.data(), L, nullptr);
            if (status == kelStatusOk)
                F::release(made);
            else
                EXPECT_EQ(made, untouched);
            return status;
        });
}

TYPED_TEST(FirTest, LeavesTheModesAlone) {
    using F = TypeParam;
    using T = typename F::Sample;
    const kels_test::KeepControlState keep;
    Random random("modes");
    const auto taps = noise<typename F::Taps>(random, 130);
    std::vector<T> x = noise<T>(random, 400), y(400);
    const Context context = make<F>(taps);
    for (const auto& modes : kels_test::odd_modes) {
        modes.load();
        call(F::block, 1, x.data(), y.data(), 400, context.get());
        call(F::block, 1, x.data(), y.data(), 40, context.get());
        call(F::in_place, 1, y.data(), 40, context.get());
        call(F::one, 1, x[0], y.data(), context.get());
        EXPECT_TRUE(kels_test::ControlState::current().same_modes(modes));
    }
}

// Literal values of the rounding.

template <class F>
typename F::Sample rounded(double sum, int scale) {
    const typename F::Taps tap = static_cast<typename F::Taps>(sum);
    const Context context = make<F>({tap});
    typename F::Sample result = 0;
    EXPECT_EQ(F::one(1, &result, context.get(), scale), kelStatusOk);
    return result;
}

template <class F>
class FirRounding : public testing::Test {};
using IntegerSamples = testing::Types<Family_32f_16s, Family_64f_16s, Family_64f_32s>;
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
    EXPECT_EQ(rounded<F>(0x1p127, 127), sizeof(Part<typename F::Taps>) == 4 ? 0 : 1);
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
    EXPECT_EQ(y[1000], (std::is_same_v<F, Family_64f_16s>) ? 3 : 0);
}

} // namespace
