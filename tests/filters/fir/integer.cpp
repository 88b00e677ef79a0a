// Integer taps: how they are kept, found for real ones, and read back; what their sums become.

#include "filters/fir/reference.h"

namespace {

using namespace fir_test;

/// A filter of integer taps, or of real ones, of either rate, and what is read from it.
struct Made {
    KelFirContext* context = nullptr;
    std::vector<Kel32s> taps;
    std::vector<Kel32f> as_real;
    int factor = 0;

    Made(const std::vector<Kel32s>& given, int tapsFactor, bool multi_rate) {
        const int n = static_cast<int>(given.size());
        EXPECT_EQ(multi_rate ? kelsFIRMRInitAlloc32s_16s(&context, given.data(), n, tapsFactor, 2, 0, 1, 0, nullptr)
                             : kelsFIRInitAlloc32s_16s(&context, given.data(), n, tapsFactor, nullptr),
                  kelStatusOk);
        read(given.size());
    }
    Made(const std::vector<Kel32f>& given, bool multi_rate) {
        const int n = static_cast<int>(given.size());
        EXPECT_EQ(multi_rate ? kelsFIRMRInitAlloc32s_16s32f(&context, given.data(), n, 2, 0, 1, 0, nullptr)
                             : kelsFIRInitAlloc32s_16s32f(&context, given.data(), n, nullptr),
                  kelStatusOk);
        read(given.size());
    }
    Made(const Made&) = delete;
    Made& operator=(const Made&) = delete;
    ~Made() { kelsFIRFree32s_16s(context); }

    void read(std::size_t n) {
        taps.resize(n);
        as_real.resize(n);
        EXPECT_EQ(kelsFIRGetTaps32s_16s(context, taps.data(), &factor), kelStatusOk);
        EXPECT_EQ(kelsFIRGetTaps32s_16s32f(context, as_real.data()), kelStatusOk);
    }
};

using Ints = std::vector<Kel32s>;
using Reals = std::vector<Kel32f>;

TEST(FirIntegerTaps, AreReducedUntilTheyFit) {
    for (bool multi_rate : {false, true}) {
        const auto expect = [&](const Ints& given, int factor, const Ints& kept, int kept_factor) {
            const Made made(given, factor, multi_rate);
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
        const Made wrapped({32767}, INT_MAX, multi_rate);
        EXPECT_EQ(wrapped.factor, INT_MIN);
    }
}

TEST(FirIntegerTaps, AreFoundForRealOnes) {
    for (bool multi_rate : {false, true}) {
        const auto expect = [&](const Reals& given, const Ints& kept, int factor, const Reals& back) {
            const Made made(given, multi_rate);
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
    const Made odd(Reals{NAN, INFINITY, -INFINITY, 1}, false); // must come to an end
    EXPECT_EQ(odd.taps.size(), 4U);
}

TEST(FirIntegerTaps, ComplexOnesAreTheirParts) {
    for (bool multi_rate : {false, true}) {
        KelFirContext* context = nullptr;
        const Kel32fc real[] = {{0.5F, -0.25F}, {0.125F, 0}};
        ASSERT_EQ(multi_rate ? kelsFIRMRInitAlloc32sc_16sc32fc(&context, real, 2, 3, 0, 2, 0, nullptr)
                             : kelsFIRInitAlloc32sc_16sc32fc(&context, real, 2, nullptr),
                  kelStatusOk);
        Kel32sc kept[2];
        Kel32fc back[2];
        int factor = 0;
        ASSERT_EQ(kelsFIRGetTaps32sc_16sc(context, kept, &factor), kelStatusOk);
        ASSERT_EQ(kelsFIRGetTaps32sc_16sc32fc(context, back), kelStatusOk);
        EXPECT_EQ(factor, -15);
        EXPECT_EQ(kept[0].re, 16384);
        EXPECT_EQ(kept[0].im, -8192);
        EXPECT_EQ(kept[1].re, 4096);
        for (int i = 0; i < 2; ++i) {
            EXPECT_EQ(back[i].re, real[i].re);
            EXPECT_EQ(back[i].im, real[i].im);
        }
        kelsFIRFree32sc_16sc(context);

        const Kel32sc large[] = {{1, -65533}};
        ASSERT_EQ(multi_rate ? kelsFIRMRInitAlloc32sc_16sc(&context, large, 1, 3, 2, 0, 1, 0, nullptr)
                             : kelsFIRInitAlloc32sc_16sc(&context, large, 1, 3, nullptr),
                  kelStatusOk);
        ASSERT_EQ(kelsFIRGetTaps32sc_16sc(context, kept, &factor), kelStatusOk);
        EXPECT_EQ(factor, 4);
        EXPECT_EQ(kept[0].re, 0);
        EXPECT_EQ(kept[0].im, -32767);
        kelsFIRFree32sc_16sc(context);
    }
}

/// The one output of one tap.
Kel16s output(int tap, int sample, int tapsFactor, int scaleFactor) {
    const Made made(Ints{tap}, tapsFactor, false);
    Kel16s one = 0, block = 0;
    const Kel16s x = static_cast<Kel16s>(sample);
    EXPECT_EQ(kelsFIROne32s_16s_Sfs(x, &one, made.context, scaleFactor), kelStatusOk);
    EXPECT_EQ(kelsFIR32s_16s_Sfs(&x, &block, 1, made.context, scaleFactor), kelStatusOk);
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

TEST(FirIntegerTaps, SumsWrap) {
    const std::vector<Kel32s> taps(4, 32766);
    std::vector<Kel16s> x(40, 32767), y(40);
    const Made made(taps, 0, false);
    ASSERT_EQ(kelsFIR32s_16s_Sfs(x.data(), y.data(), 40, made.context, 16), kelStatusOk);
    EXPECT_EQ(y[1], shifted<Kel16s>(2U * 32766 * 32767, -16));
    for (std::size_t i = 3; i < 40; ++i) EXPECT_EQ(y[i], shifted<Kel16s>(4U * 32766 * 32767, -16));
    EXPECT_LT(y[3], 0);
}

// Taps that come from real ones are converted before they are kept.
TEST(FirIntegerTaps, CreationRefusesAndRunsOutOfMemory) {
    Untouched memory;
    auto* const made = memory.array<KelFirContext*>(1);
    const Kel32f* const real = memory.array<Kel32f>({1, 2, 3});
    const Kel32fc* const complex = memory.array<Kel32fc>({{1, 2}, {3, 4}});
    const Check length = size(2, kelStatusBadFirLength);
    const std::vector<Check> rates = {size(3, kelStatusBadMrFactor), size(5, kelStatusBadMrFactor),
                                      index(4, 3, kelStatusBadMrPhase), index(6, 2, kelStatusBadMrPhase)};
    const auto behind = [&](std::vector<Check> first) {
        first.insert(first.end(), rates.begin(), rates.end());
        return first;
    };
    memory.expect_refusals(kelsFIRInitAlloc32s_16s32f, std::tuple(made, real, 3), {null(0), null(1), length});
    memory.expect_refusals(kelsFIRInitAlloc32sc_16sc32fc, std::tuple(made, complex, 2), {null(0), null(1), length});
    memory.expect_refusals(kelsFIRMRInitAlloc32s_16s32f, std::tuple(made, real, 3, 3, 0, 2, 0),
                           behind({null(0), null(1), length}));
    // Whether there is a place for the result is seen late here.
    memory.expect_refusals(kelsFIRMRInitAlloc32sc_16sc32fc, std::tuple(made, complex, 2, 3, 0, 2, 0),
                           behind({null(1), length, null(0)}));
    kels_test::expect_clean_failures(kelsFIRInitAlloc32s_16s32f, kelsFIRFree32s_16s, real, 3, nullptr);
    kels_test::expect_clean_failures(kelsFIRMRInitAlloc32sc_16sc32fc, kelsFIRFree32sc_16sc, complex, 2, 3, 1, 2, 1,
                                     nullptr);
}

TEST(FirIntegerTaps, AreReadByTheirFamilyOnly) {
    const Made own(Ints{1}, 0, false);
    std::vector<Context> others;
    others.push_back(make<Family32sc_16sc>({{1, 2}}));
    Untouched memory;
    int* const factor = memory.array({7});
    memory.expect_checks(kelsFIRGetTaps32s_16s, std::tuple(own.context, memory.array<Kel32s>(1), factor),
                         {null(0), null(1), null(2), foreign(0, others)});
    memory.expect_checks(kelsFIRGetTaps32s_16s32f, std::tuple(own.context, memory.array<Kel32f>(1)),
                         {null(0), null(1), foreign(0, others)});
    std::vector<Context> reals;
    reals.push_back(make<Family32s_16s>({1}));
    memory.expect_checks(kelsFIRGetTaps32sc_16sc32fc, std::tuple(others[0].get(), memory.array<Kel32fc>(1)),
                         {null(0), null(1), foreign(0, reals)});
}

} // namespace
