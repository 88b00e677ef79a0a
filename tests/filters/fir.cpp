// FIR filters: every family as a stream against its defining sum, and its contexts.

#include "kels/fir.h"
#include "support/allocation_faults.h"
#include "support/control_state.h"
#include "support/guarded_memory.h"
#include "support/random_data.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <complex>
#include <cstring>
#include <memory>

namespace {

using kels_test::Random;
using Extended = std::complex<long double>;

// One family's functions and facts.

template <class T>
struct Family;

template <class Taps, class Sample>
struct Functions {
    KelStatus (*make)(KelFirContext**, const Taps*, int, const Sample*);
    KelStatus (*release)(KelFirContext*);
    KelStatus (*get_taps)(const KelFirContext*, Taps*);
    KelStatus (*get_line)(const KelFirContext*, Sample*);
    KelStatus (*set_line)(KelFirContext*, const Sample*);
    KelStatus (*block)(const Sample*, Sample*, int, KelFirContext*);
    KelStatus (*in_place)(Sample*, int, KelFirContext*);
    KelStatus (*one)(Sample, Sample*, KelFirContext*);
    int least_for_plan;
    bool plan_in_place_always;
};

template <>
struct Family<Kel32f> {
    static constexpr const char* name = "32f";
    static constexpr Functions<Kel32f, Kel32f> fir = {kelsFIRInitAlloc_32f,
                                                      kelsFIRFree_32f,
                                                      kelsFIRGetTaps_32f,
                                                      kelsFIRGetDlyLine_32f,
                                                      kelsFIRSetDlyLine_32f,
                                                      kelsFIR_32f,
                                                      kelsFIR_32f_I,
                                                      kelsFIROne_32f,
                                                      32,
                                                      true};
};
template <>
struct Family<Kel32fc> {
    static constexpr const char* name = "32fc";
    static constexpr Functions<Kel32fc, Kel32fc> fir = {kelsFIRInitAlloc_32fc,
                                                        kelsFIRFree_32fc,
                                                        kelsFIRGetTaps_32fc,
                                                        kelsFIRGetDlyLine_32fc,
                                                        kelsFIRSetDlyLine_32fc,
                                                        kelsFIR_32fc,
                                                        kelsFIR_32fc_I,
                                                        kelsFIROne_32fc,
                                                        16,
                                                        false};
};
template <>
struct Family<Kel64f> {
    static constexpr const char* name = "64f";
    static constexpr Functions<Kel64f, Kel64f> fir = {kelsFIRInitAlloc_64f,
                                                      kelsFIRFree_64f,
                                                      kelsFIRGetTaps_64f,
                                                      kelsFIRGetDlyLine_64f,
                                                      kelsFIRSetDlyLine_64f,
                                                      kelsFIR_64f,
                                                      kelsFIR_64f_I,
                                                      kelsFIROne_64f,
                                                      32,
                                                      true};
};
template <>
struct Family<Kel64fc> {
    static constexpr const char* name = "64fc";
    static constexpr Functions<Kel64fc, Kel64fc> fir = {kelsFIRInitAlloc_64fc,
                                                        kelsFIRFree_64fc,
                                                        kelsFIRGetTaps_64fc,
                                                        kelsFIRGetDlyLine_64fc,
                                                        kelsFIRSetDlyLine_64fc,
                                                        kelsFIR_64fc,
                                                        kelsFIR_64fc_I,
                                                        kelsFIROne_64fc,
                                                        16,
                                                        false};
};

template <class T>
struct PartOf {
    using type = T;
};
template <class T>
requires requires(T z) { z.re; }
struct PartOf<T> {
    using type = decltype(T::re);
};
template <class T>
using Part = typename PartOf<T>::type;
template <class T>
constexpr int parts = sizeof(T) / sizeof(Part<T>);

template <class T>
Extended extended(const T& x) {
    if constexpr (parts<T> == 2)
        return {x.re, x.im};
    else
        return {x, 0};
}

template <class T>
std::vector<T> noise(Random& random, int count) {
    std::vector<T> x(static_cast<std::size_t>(count));
    auto* p = reinterpret_cast<Part<T>*>(x.data());
    for (int i = 0; i < count * parts<T>; ++i) p[i] = static_cast<Part<T>>(random.uniform(-1, 1));
    return x;
}

/// Length of the plan that decides between the engines; 0 without one.
template <class T>
int plan_length(int taps) {
    if (taps < Family<T>::fir.least_for_plan) return 0;
    int order = 0;
    while ((1 << order) <= taps) ++order;
    return 1 << (order < 8 ? order + 1 : order);
}

/// The defining sum over a stream that follows `past` (oldest first, one sample fewer than taps), and sum |h x|.
template <class T>
struct Reference {
    std::vector<Extended> y;
    std::vector<long double> magnitude;

    Reference(const std::vector<T>& taps, std::vector<T> past, const std::vector<T>& x) {
        past.insert(past.end(), x.begin(), x.end());
        const std::size_t L = taps.size();
        for (std::size_t n = 0; n < x.size(); ++n) {
            Extended sum = 0;
            long double size = 0;
            for (std::size_t k = 0; k < L; ++k) {
                const Extended term = extended(taps[k]) * extended(past[n + L - 1 - k]);
                sum += term;
                size += std::abs(extended(taps[k])) * std::abs(extended(past[n + L - 1 - k]));
            }
            y.push_back(sum);
            magnitude.push_back(size);
        }
    }
};

/// Counts outputs that miss the bits of the rounded sum; each must lie within the bound of its engine.
template <class T>
struct Comparison {
    long outputs = 0, missed_bits = 0;

    void check(const T& got, const Extended& wanted, long double magnitude, bool transformed) {
        const auto part = [&](Part<T> value, long double exact) {
            const Part<T> rounded = static_cast<Part<T>>(exact);
            const long double error = std::abs(value - exact);
            ++outputs;
            missed_bits += value != rounded;
            if (transformed) { // noise of the transforms: against the level of the block, here of the sum
                ASSERT_LE(error, 16 * std::numeric_limits<Part<T>>::epsilon() * (magnitude + 1)) << outputs;
            } else if (sizeof(Part<T>) == 4) {
                const long double ulp = std::nextafter(std::fabs(rounded), INFINITY) - std::fabs(rounded);
                ASSERT_LE(std::abs(static_cast<long double>(value) - rounded), ulp) << outputs;
            } else {
                ASSERT_LE(error, std::ldexp(magnitude, -51)) << outputs;
            }
        };
        if constexpr (parts<T> == 2) {
            part(got.re, wanted.real());
            part(got.im, wanted.imag());
        } else {
            part(got, wanted.real());
        }
    }
};

template <class T>
using Context = std::unique_ptr<KelFirContext, KelStatus (*)(KelFirContext*)>;

template <class T>
Context<T> make(const std::vector<T>& taps, const std::vector<T>& newest_first = {}) {
    KelFirContext* context = nullptr;
    EXPECT_EQ(Family<T>::fir.make(&context, taps.data(), static_cast<int>(taps.size()),
                                  newest_first.empty() ? nullptr : newest_first.data()),
              kelStatusOk);
    return {context, Family<T>::fir.release};
}

template <class T>
bool same(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

template <class T>
class FirTest : public testing::Test {};
using Types = testing::Types<Kel32f, Kel32fc, Kel64f, Kel64fc>;

struct TypeNames {
    template <class T>
    static std::string GetName(int) {
        return Family<T>::name;
    }
};
TYPED_TEST_SUITE(FirTest, Types, TypeNames);

// A stream cut anywhere, its pieces taken as blocks, in place and sample by sample: 1,000 cuts in all.
TYPED_TEST(FirTest, StreamDoesNotDependOnItsCuts) {
    using T = TypeParam;
    constexpr auto& fir = Family<T>::fir;
    const int tap_counts[] = {1, 2, 3, 7, 15, 16, 17, 31, 32, 33, 64, 100, 127, 128, 200, 255, 256, 300};
    int cuts = 0;
    for (int L : tap_counts) {
        Random random("stream " + std::to_string(L));
        const std::vector<T> taps = noise<T>(random, L), before = noise<T>(random, L), x = noise<T>(random, 8000);
        const Reference<T> reference(taps, {std::vector<T>(before.rbegin() + 1, before.rend())}, x);
        const Context<T> context = make(taps, before);
        Comparison<T> direct, transformed;
        for (int done = 0, total = static_cast<int>(x.size()); done < total; ++cuts) {
            const int plan = plan_length<T>(L);
            const int longest[] = {3, 40, 2 * L + 8, plan > 0 ? plan + 300 : 1100};
            const int count = std::min(1 + random.below(longest[random.below(4)]), total - done);
            const auto at = static_cast<std::size_t>(done);
            std::vector<T> y(x.begin() + done, x.begin() + done + count);
            bool by_transform = plan > 0 && count > plan;
            switch (random.below(3)) {
            case 0:
                ASSERT_EQ(fir.block(x.data() + at, y.data(), count, context.get()), kelStatusOk);
                break;
            case 1:
                ASSERT_EQ(fir.in_place(y.data(), count, context.get()), kelStatusOk);
                by_transform |= plan > 0 && fir.plan_in_place_always;
                break;
            default:
                for (T& v : y) ASSERT_EQ(fir.one(v, &v, context.get()), kelStatusOk);
                by_transform = false;
            }
            for (std::size_t i = 0; i < y.size(); ++i)
                (by_transform ? transformed : direct)
                    .check(y[i], reference.y[at + i], reference.magnitude[at + i], by_transform);
            done += count;
            ASSERT_FALSE(this->HasFatalFailure()) << "taps " << L << " at " << done;

            std::vector<T> line(taps.size()), wanted;
            ASSERT_EQ(fir.get_line(context.get(), line.data()), kelStatusOk);
            for (int i = 1; i <= L; ++i)
                wanted.push_back(done - i >= 0 ? x[static_cast<std::size_t>(done - i)]
                                               : before[static_cast<std::size_t>(i - done - 1)]);
            ASSERT_TRUE(same(line, wanted)) << "taps " << L << " at " << done;
        }
        if (sizeof(Part<T>) == 4) {
            EXPECT_LE(direct.missed_bits, direct.outputs / 1000 + 2) << "taps " << L;
        }
    }
    EXPECT_GE(cuts, 1000);
}

// Long sums of one sign keep their bound: partial sums, not one running sum.
TYPED_TEST(FirTest, LongDirectSumsStayWithinTheirBound) {
    using T = TypeParam;
    Random random("long sums");
    for (int L : {500, 2049, 5000}) {
        std::vector<T> taps = noise<T>(random, L), x = noise<T>(random, 1500);
        for (auto* v : {&taps, &x})
            for (T& z : *v) *reinterpret_cast<Part<T>*>(&z) = std::fabs(*reinterpret_cast<Part<T>*>(&z)) + Part<T>(0.1);
        const std::vector<T> past = noise<T>(random, L);
        const Reference<T> reference(taps, {std::vector<T>(past.rbegin() + 1, past.rend())}, x);
        const Context<T> context = make(taps, past);
        std::vector<T> y(x.size());
        Comparison<T> direct;
        for (std::size_t done = 0; done < x.size(); done += 500) // no longer than the plan
            ASSERT_EQ(Family<T>::fir.block(x.data() + done, y.data() + done, 500, context.get()), kelStatusOk);
        for (std::size_t i = 0; i < y.size(); i += 7) direct.check(y[i], reference.y[i], reference.magnitude[i], false);
    }
}

// Direct results of singles have the same bits at every level and on 32-bit x86: a hash of them, taken once.
TYPED_TEST(FirTest, DirectSinglesHaveTheSameBitsEverywhere) {
    using T = TypeParam;
    if constexpr (sizeof(Part<T>) == 4) {
        std::uint32_t state = 1, hash = 0;
        const auto draw = [&] {
            std::vector<T> x(1200);
            for (auto* p = reinterpret_cast<Part<T>*>(x.data()); p != reinterpret_cast<Part<T>*>(x.data() + x.size());
                 ++p) {
                state = state * 1664525 + 1013904223;
                *p = static_cast<Part<T>>(static_cast<std::int32_t>(state)) * Part<T>(0x1p-31);
            }
            return x;
        };
        for (int L : {1, 7, 15, 40, 203}) {
            const std::vector<T> taps = draw(), x = draw();
            const Context<T> context = make(std::vector<T>(taps.begin(), taps.begin() + L));
            std::vector<T> y(x.size());
            const int half = L < Family<T>::fir.least_for_plan ? 600 : 64; // no longer than the plan
            for (int i = 0; i < 600; i += half)
                Family<T>::fir.block(x.data() + i, y.data() + i, std::min(half, 600 - i), context.get());
            for (std::size_t i = 600; i < x.size(); ++i) Family<T>::fir.one(x[i], &y[i], context.get());
            for (const auto* p = reinterpret_cast<const Part<T>*>(y.data());
                 p != reinterpret_cast<const Part<T>*>(y.data() + y.size()); ++p) {
                std::uint32_t bits;
                std::memcpy(&bits, p, sizeof bits);
                hash = (hash ^ bits) * 0x01000193;
            }
        }
        EXPECT_EQ(hash, parts<T> == 1 ? 1981695006u : 967539643u);
    }
}

TYPED_TEST(FirTest, EnginesSwitchExactlyBeyondThePlansLength) {
    using T = TypeParam;
    constexpr auto& fir = Family<T>::fir;
    Random random("switch");
    const int least = fir.least_for_plan;
    for (int L : {least - 1, least, least + 1, 63, 64, 127, 128, 255, 256}) {
        const int plan = plan_length<T>(L);
        const std::vector<T> taps = noise<T>(random, L), x = noise<T>(random, std::max(plan, 200) + 1);
        // The overlap-save engine takes scratch memory, the direct one none; in place both copy their input.
        const auto allocations = [&](int count, bool in_place) {
            const Context<T> context = make(taps);
            std::vector<T> y = x;
            const long before = kels_test::allocations();
            EXPECT_EQ(in_place ? fir.in_place(y.data(), count, context.get())
                               : fir.block(x.data(), y.data(), count, context.get()),
                      kelStatusOk);
            return kels_test::allocations() - before;
        };
        if (plan == 0) {
            EXPECT_EQ(allocations(201, false), 0) << L;
            EXPECT_EQ(allocations(201, true), 1) << L;
        } else {
            EXPECT_EQ(allocations(plan, false), 0) << L;
            EXPECT_GT(allocations(plan + 1, false), 0) << L;
            EXPECT_GT(allocations(plan + 1, true), 1) << L;
            EXPECT_EQ(allocations(plan, true) > 1, fir.plan_in_place_always) << L;
            EXPECT_EQ(allocations(1, true) > 1, fir.plan_in_place_always) << L;
        }
    }
}

// The sample that leaves the history has no influence, not even as a NaN times nothing; the others have.
TYPED_TEST(FirTest, NansReachTheirOutputsOnly) {
    using T = TypeParam;
    constexpr auto& fir = Family<T>::fir;
    Random random("nan");
    const auto is_nan = [](const T& z) { return std::isnan(*reinterpret_cast<const Part<T>*>(&z)); };
    T nan{};
    *reinterpret_cast<Part<T>*>(&nan) = std::numeric_limits<Part<T>>::quiet_NaN();
    for (int L : {1, 2, 5, 16, 31, 33, 70}) {
        const std::vector<T> taps = noise<T>(random, L);
        std::vector<T> before = noise<T>(random, L), y(50);
        before.back() = nan;
        for (int form = 0; form < 3; ++form) {
            const Context<T> context = make(taps, before);
            std::vector<T> x = noise<T>(random, 50);
            if (form == 0) fir.block(x.data(), y.data(), 50, context.get());
            if (form == 1)
                for (std::size_t i = 0; i < 50; ++i) fir.one(x[i], &y[i], context.get());
            if (form == 2) {
                y = x;
                fir.in_place(y.data(), 50, context.get());
            }
            for (const T& z : y) EXPECT_FALSE(is_nan(z)) << "taps " << L << " form " << form;
            if (form == 2) continue; // a transform spreads a NaN over its block
            x[20] = nan;
            if (form == 0) fir.block(x.data(), y.data(), 50, context.get());
            if (form == 1)
                for (std::size_t i = 0; i < 50; ++i) fir.one(x[i], &y[i], context.get());
            for (int i = 0; i < 50; ++i) EXPECT_EQ(is_nan(y[static_cast<std::size_t>(i)]), i >= 20 && i < 20 + L) << L;
        }
    }
}

TYPED_TEST(FirTest, StaysInsideItsArrays) {
    using T = TypeParam;
    constexpr auto& fir = Family<T>::fir;
    Random random("guards");
    kels_test::GuardedMemory source(3000 * sizeof(T)), target(3000 * sizeof(T));
    for (int L : {1, 2, 9, 31, 32, 47, 130})
        for (int count : {1, 2, 3, 5, 8, 15, 16, 17, 31, 33, 64, 65, 129, 255, 257, 600, 1025, 2500})
            for (bool at_end : {false, true}) {
                const std::size_t bytes = static_cast<std::size_t>(count) * sizeof(T);
                const std::vector<T> taps = noise<T>(random, L), x = noise<T>(random, count);
                const Context<T> context = make(taps), other = make(taps);
                auto* src = reinterpret_cast<T*>(at_end ? source.end() - bytes : source.begin());
                auto* dst = reinterpret_cast<T*>(at_end ? target.end() - bytes : target.begin());
                std::memcpy(static_cast<void*>(src), x.data(), bytes);
                std::vector<T> y(x.size());
                ASSERT_TRUE(kels_test::runs_without_fault([&] { fir.block(src, dst, count, context.get()); }))
                    << L << ' ' << count;
                fir.block(x.data(), y.data(), count, other.get());
                EXPECT_EQ(std::memcmp(y.data(), dst, bytes), 0) << "at any address the same bits";
                ASSERT_TRUE(kels_test::runs_without_fault([&] { fir.in_place(src, count, context.get()); }))
                    << L << ' ' << count;
                ASSERT_TRUE(kels_test::runs_without_fault([&] { fir.one(taps[0], dst, context.get()); })) << L;
            }
}

TYPED_TEST(FirTest, ContextGivesBackWhatItWasGiven) {
    using T = TypeParam;
    constexpr auto& fir = Family<T>::fir;
    Random random("read back");
    for (int L : {1, 2, 8, 31, 40}) {
        const std::vector<T> taps = noise<T>(random, L), line = noise<T>(random, L), silence(taps.size());
        std::vector<T> got(taps.size());
        const Context<T> context = make(taps, line);
        fir.get_taps(context.get(), got.data());
        EXPECT_TRUE(same(got, taps));
        fir.get_line(context.get(), got.data());
        EXPECT_TRUE(same(got, line));
        T y;
        fir.one(taps[0], &y, context.get());
        fir.get_line(context.get(), got.data());
        std::vector<T> moved(line.begin(), line.end() - 1);
        moved.insert(moved.begin(), taps[0]);
        EXPECT_TRUE(same(got, moved));
        fir.set_line(context.get(), line.data());
        fir.get_line(context.get(), got.data());
        EXPECT_TRUE(same(got, line));
        fir.set_line(context.get(), nullptr);
        fir.get_line(context.get(), got.data());
        EXPECT_TRUE(same(got, silence));
    }
}

TYPED_TEST(FirTest, RefusesInTheOrderOfItsChecks) {
    using T = TypeParam;
    constexpr auto& fir = Family<T>::fir;
    const std::vector<T> taps(5);
    char elsewhere;
    auto* const untouched = reinterpret_cast<KelFirContext*>(&elsewhere);
    KelFirContext* made = untouched;
    EXPECT_EQ(fir.make(nullptr, taps.data(), 0, nullptr), kelStatusNullPtr);
    EXPECT_EQ(fir.make(&made, nullptr, 0, nullptr), kelStatusNullPtr);
    for (int bad : {0, -1, INT_MIN}) EXPECT_EQ(fir.make(&made, taps.data(), bad, nullptr), kelStatusBadFirLength);
    EXPECT_EQ(made, untouched);

    const Context<T> own = make(taps);
    const Context<Kel32f> single = make(std::vector<Kel32f>(5));
    const Context<Kel64fc> complex = make(std::vector<Kel64fc>(5));
    KelFirContext* foreign = std::is_same_v<T, Kel32f> ? complex.get() : single.get();
    std::vector<T> a(8), b(8);
    std::memset(static_cast<void*>(a.data()), 0x5A, 8 * sizeof(T));
    b = a;
    EXPECT_EQ(fir.release(nullptr), kelStatusNullPtr);
    EXPECT_EQ(fir.release(foreign), kelStatusContextMismatch);
    EXPECT_EQ(fir.get_taps(nullptr, a.data()), kelStatusNullPtr);
    EXPECT_EQ(fir.get_taps(foreign, nullptr), kelStatusNullPtr);
    EXPECT_EQ(fir.get_taps(foreign, a.data()), kelStatusContextMismatch);
    EXPECT_EQ(fir.get_line(nullptr, a.data()), kelStatusNullPtr);
    EXPECT_EQ(fir.get_line(foreign, nullptr), kelStatusNullPtr);
    EXPECT_EQ(fir.get_line(foreign, a.data()), kelStatusContextMismatch);
    EXPECT_EQ(fir.set_line(nullptr, a.data()), kelStatusNullPtr);
    EXPECT_EQ(fir.set_line(foreign, nullptr), kelStatusContextMismatch);
    for (int count : {0, 1}) {
        EXPECT_EQ(fir.block(nullptr, nullptr, count, nullptr), kelStatusNullPtr);
        EXPECT_EQ(fir.block(nullptr, a.data(), count, foreign), kelStatusContextMismatch);
        EXPECT_EQ(fir.block(nullptr, a.data(), count, own.get()), kelStatusNullPtr);
        EXPECT_EQ(fir.block(b.data(), nullptr, count, own.get()), kelStatusNullPtr);
        EXPECT_EQ(fir.in_place(a.data(), count, nullptr), kelStatusNullPtr);
        EXPECT_EQ(fir.in_place(nullptr, count, foreign), kelStatusContextMismatch);
        EXPECT_EQ(fir.in_place(nullptr, count, own.get()), kelStatusNullPtr);
    }
    for (int bad : {0, -1, INT_MIN}) {
        EXPECT_EQ(fir.block(b.data(), a.data(), bad, own.get()), kelStatusBadSize);
        EXPECT_EQ(fir.in_place(a.data(), bad, own.get()), kelStatusBadSize);
    }
    EXPECT_EQ(fir.one(T{}, a.data(), nullptr), kelStatusNullPtr);
    EXPECT_EQ(fir.one(T{}, nullptr, foreign), kelStatusContextMismatch);
    EXPECT_EQ(fir.one(T{}, nullptr, own.get()), kelStatusNullPtr);
    EXPECT_TRUE(same(a, b)) << "nothing stored";
}

TYPED_TEST(FirTest, FailedAllocationsLeakNothingAndChangeNothing) {
    using T = TypeParam;
    constexpr auto& fir = Family<T>::fir;
    Random random("faults");
    const std::vector<T> taps = noise<T>(random, 40), x = noise<T>(random, 300), line = noise<T>(random, 40);
    char elsewhere;
    auto* const untouched = reinterpret_cast<KelFirContext*>(&elsewhere);
    for (int L : {1, 40})
        kels_test::for_each_allocation_failure([&] {
            KelFirContext* made = untouched;
            const KelStatus status = fir.make(&made, taps.data(), L, nullptr);
            if (status == kelStatusOk)
                fir.release(made);
            else
                EXPECT_EQ(made, untouched);
            return status;
        });
    for (bool in_place : {false, true}) {
        const Context<T> context = make(taps, line);
        kels_test::for_each_allocation_failure([&] {
            std::vector<T> y = x, got(taps.size());
            const KelStatus status = in_place ? fir.in_place(y.data(), 300, context.get())
                                              : fir.block(x.data(), y.data(), 300, context.get());
            if (status != kelStatusOk) {
                fir.get_line(context.get(), got.data());
                EXPECT_TRUE(same(got, line));
                EXPECT_TRUE(same(y, x));
            }
            return status;
        });
    }
}

TYPED_TEST(FirTest, LeavesTheModesAlone) {
    using T = TypeParam;
    constexpr auto& fir = Family<T>::fir;
    const kels_test::KeepControlState keep;
    Random random("modes");
    const std::vector<T> taps = noise<T>(random, 40);
    std::vector<T> x = noise<T>(random, 400), y(400);
    const Context<T> context = make(taps);
    for (const auto& modes : kels_test::odd_modes) {
        modes.load();
        fir.block(x.data(), y.data(), 400, context.get());
        fir.block(x.data(), y.data(), 40, context.get());
        fir.in_place(y.data(), 40, context.get());
        fir.one(x[0], y.data(), context.get());
        EXPECT_TRUE(kels_test::ControlState::current().same_modes(modes));
    }
}

} // namespace
