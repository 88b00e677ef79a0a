// Integer taps: how they are kept, found for real ones, and read back; what their sums become.

#include "filters/fir/reference.h"

namespace {

using namespace fir_test;

/// A family of integer taps, and what takes and gives them as real ones.
struct OfReal : Family32s_16s {
    using Real = Kel32f;
    static constexpr auto init_real = kelsFIRInitAlloc32s_16s32f;
    static constexpr auto init_rates_real = kelsFIRMRInitAlloc32s_16s32f;
    static constexpr auto get_real = kelsFIRGetTaps32s_16s32f;
};
struct OfComplex : Family32sc_16sc {
    using Real = Kel32fc;
    static constexpr auto init_real = kelsFIRInitAlloc32sc_16sc32fc;
    static constexpr auto init_rates_real = kelsFIRMRInitAlloc32sc_16sc32fc;
    static constexpr auto get_real = kelsFIRGetTaps32sc_16sc32fc;
};

/// A filter of integer taps, or of real ones, of either rate, and what is read from it.
template <class F>
struct Made {
    using Integers = std::vector<typename F::Taps>;
    using Reals = std::vector<typename F::Real>;

    Context context;
    Integers taps;
    Reals as_real;
    int factor = 0;

    Made(const Integers& given, int tapsFactor, bool multi_rate)
        : Made(multi_rate ? kels_test::made(F::init_multi_rate, F::release, given.data(), length(given), tapsFactor, 2,
                                            0, 1, 0, nullptr)
                          : kels_test::made(F::init, F::release, given.data(), length(given), tapsFactor, nullptr),
               given.size()) {}
    Made(const Reals& given, bool multi_rate)
        : Made(multi_rate
                   ? kels_test::made(F::init_rates_real, F::release, given.data(), length(given), 2, 0, 1, 0, nullptr)
                   : kels_test::made(F::init_real, F::release, given.data(), length(given), nullptr),
               given.size()) {}

private:
    static int length(const auto& given) { return static_cast<int>(given.size()); }
    Made(Context made, std::size_t n) : context(std::move(made)), taps(n), as_real(n) {
        EXPECT_EQ(F::get_taps(context.get(), taps.data(), &factor), kelStatusOk);
        EXPECT_EQ(F::get_real(context.get(), as_real.data()), kelStatusOk);
    }
};

using Ints = std::vector<Kel32s>;
using Reals = std::vector<Kel32f>;

TEST(FirIntegerTaps, AreReducedUntilTheyFit) {
    for (bool multi_rate : {false, true}) {
        const auto expect = [&](const Ints& given, int factor, const Ints& kept, int kept_factor) {
            const Made<OfReal> made(given, factor, multi_rate);
            EXPECT_EQ(made.taps, kept);
            EXPECT_EQ(made.factor, kept_factor);
        };
        expect({1, 2, 3}, 0, {1, 2, 3}, 0);
        expect({32766, -32766}, 5, {32766, -32766}, 5);
        expect({32767, 5}, 0, {16383, 2}, 1);
        expect({32768, -1}, -4, {16384, -1}, -3);
        expect({65536, 4, -65536}, 0, {16384, 1, -16384}, 2);
        expect({-65533, 65532}, 0, {-32767, 32766}, 1);
        expect({INT_MIN, INT_MAX}, 0, {-16384, 16383}, 17);
        expect({0, 0}, 7, {0, 0}, 7);
        const Made<OfReal> wrapped(Ints{32767}, INT_MAX, multi_rate);
        EXPECT_EQ(wrapped.factor, INT_MIN);
    }
}

TEST(FirIntegerTaps, AreFoundForRealOnes) {
    for (bool multi_rate : {false, true}) {
        const auto expect = [&](const Reals& given, const Ints& kept, int factor, const Reals& back) {
            const Made<OfReal> made(given, multi_rate);
            EXPECT_EQ(made.taps, kept);
            EXPECT_EQ(made.factor, factor);
            EXPECT_EQ(made.as_real, back);
        };
        expect({0.5F, 0.25F}, {16384, 8192}, -15, {0.5F, 0.25F});
        expect({32767}, {16383}, 1, {32766});
        expect({1.5F, -3.25F, 100000}, {0, -1, 25000}, 2, {0, -4, 100000});
        expect({0, 0}, {0, 0}, 0, {0, 0});
        expect({16383.5F, -1.25F, 1.5F}, {16384, -1, 2}, 0, {16384, -1, 2});
        expect({0x1p-140F}, {16384}, -154, {0x1p-12F}); // the factor counts modulo 128 when it is read back
    }
    const Made<OfReal> odd(Reals{NAN, INFINITY, -INFINITY, 1}, false); // must come to an end
    EXPECT_EQ(odd.taps.size(), 4U);
}

TEST(FirIntegerTaps, ComplexOnesAreTheirParts) {
    for (bool multi_rate : {false, true}) {
        const std::vector<Kel32fc> real = {{0.5F, -0.25F}, {0.125F, 0}};
        const Made<OfComplex> found(real, multi_rate);
        EXPECT_TRUE(same(found.taps, {{16384, -8192}, {4096, 0}}));
        EXPECT_EQ(found.factor, -15);
        EXPECT_TRUE(same(found.as_real, real));
        const Made<OfComplex> reduced(std::vector<Kel32sc>{{1, -65533}}, 3, multi_rate);
        EXPECT_TRUE(same(reduced.taps, {{0, -32767}}));
        EXPECT_EQ(reduced.factor, 4);
    }
}

/// The one output of one tap.
Kel16s output(int tap, int sample, int tapsFactor, int scaleFactor) {
    const Made<OfReal> made(Ints{tap}, tapsFactor, false);
    Kel16s one = 0, block = 0;
    const Kel16s x = static_cast<Kel16s>(sample);
    EXPECT_EQ(kelsFIROne32s_16s_Sfs(x, &one, made.context.get(), scaleFactor), kelStatusOk);
    EXPECT_EQ(kelsFIR32s_16s_Sfs(&x, &block, 1, made.context.get(), scaleFactor), kelStatusOk);
    EXPECT_EQ(one, block);
    return one;
}

TEST(FirIntegerTaps, SumsAreShiftedAndSaturated) {
    EXPECT_EQ(output(5, 1, 0, 0), 5);
    EXPECT_EQ(output(7, 1, 3, 3), 7);
    EXPECT_EQ(output(5, 1, 0, 1), 2);
    EXPECT_EQ(output(7, 1, 0, 1), 4);
    EXPECT_EQ(output(-5, 1, -1, 0), -2);
    EXPECT_EQ(output(-7, 1, -1, 0), -4);
    EXPECT_EQ(output(3, 1, 4, 0), 48);
    EXPECT_EQ(output(300, 300, 0, 0), 32767);
    EXPECT_EQ(output(300, -300, 0, 0), -32768);
    EXPECT_EQ(output(1, 1, 0, 40), 0);
    EXPECT_EQ(output(1, 1, 40, 0), -32768) << "2^31 is negative in 32 bits";
    EXPECT_EQ(output(2, 1, 40, 0), 0) << "and 2^32 is lost";
    EXPECT_EQ(output(3, 1, INT_MAX, INT_MIN), -32768);
    EXPECT_EQ(output(3, 1, INT_MIN, INT_MAX), 0);
    EXPECT_EQ(output(32766, -32768, 0, 31), 0) << "-0.4999";
}

/// Taps that come from real ones are converted before they are kept.
template <class F>
void expect_creation_checked(std::vector<Check> of_rates) {
    Untouched memory;
    auto* const made = memory.array<KelFirContext*>(1);
    const auto* const taps = memory.array<typename F::Real>(3);
    memory.expect_refusals(F::init_real, std::tuple(made, taps, 3), {null(0), null(1), size(2, kelStatusBadFirLength)});
    of_rates.insert(of_rates.end(), {size(3, kelStatusBadMrFactor), size(5, kelStatusBadMrFactor),
                                     index(4, 3, kelStatusBadMrPhase), index(6, 2, kelStatusBadMrPhase)});
    memory.expect_refusals(F::init_rates_real, std::tuple(made, taps, 3, 3, 0, 2, 0), of_rates);
    kels_test::expect_clean_failures(F::init_real, F::release, taps, 3, nullptr);
    kels_test::expect_clean_failures(F::init_rates_real, F::release, taps, 3, 3, 1, 2, 1, nullptr);
}

TEST(FirIntegerTaps, CreationRefusesAndRunsOutOfMemory) {
    const Check length = size(2, kelStatusBadFirLength);
    expect_creation_checked<OfReal>({null(0), null(1), length});
    // Whether there is a place for the result is seen late here.
    expect_creation_checked<OfComplex>({null(1), length, null(0)});
}

template <class F, class Other>
void expect_readers_checked() {
    const Context own = make<F>(std::vector<typename F::Taps>(1));
    std::vector<Context> others;
    others.push_back(make<Other>(std::vector<typename Other::Taps>(1)));
    Untouched memory;
    memory.expect_checks(F::get_taps, std::tuple(own.get(), memory.array<typename F::Taps>(1), memory.array({7})),
                         {null(0), null(1), null(2), foreign(0, others)});
    memory.expect_checks(F::get_real, std::tuple(own.get(), memory.array<typename F::Real>(1)),
                         {null(0), null(1), foreign(0, others)});
}

TEST(FirIntegerTaps, AreReadByTheirFamilyOnly) {
    expect_readers_checked<OfReal, OfComplex>();
    expect_readers_checked<OfComplex, OfReal>();
}

} // namespace
