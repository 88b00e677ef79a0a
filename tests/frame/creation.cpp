// What is made for later calls does not depend on the modes that the caller has set while it is made.

#include "kels/fft.h"
#include "kels/fir.h"
#include "support/control_state.h"
#include "support/random_data.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <vector>

namespace {

using kels_test::ControlState;

template <class T>
std::vector<T> noise(std::size_t count) {
    kels_test::Random random("creation");
    std::vector<T> x(count);
    for (T& v : x) {
        if constexpr (kels_test::type_of<T>().parts == 2)
            v = {static_cast<decltype(T::re)>(random.uniform(-100, 100)), 1};
        else
            v = static_cast<T>(random.uniform(-100, 100));
    }
    return x;
}

/// `results` makes something under the modes that it is given, and gives what comes of it under the usual ones.
template <class Results>
void expect_same(const char* what, const Results& results) {
    const auto wanted = results(kels_test::default_modes);
    for (const ControlState& modes : kels_test::odd_modes) {
        const auto got = results(modes);
        EXPECT_EQ(std::memcmp(got.data(), wanted.data(), wanted.size() * sizeof wanted[0]), 0)
            << what << " made under " << std::hex << modes.x87;
    }
}

template <class Plan, class T, class R, class... Buffer>
void expect_same_transform(const char* what, KelStatus (*make)(Plan**, int, int, int),
                           KelStatus (*transform)(const T*, R*, const Plan*, Buffer...), KelStatus (*release)(Plan*),
                           int order) {
    expect_same(what, [=](const ControlState& modes) {
        Plan* plan = nullptr;
        const auto made = under(modes, [&] { return make(&plan, order, kelFftNormSqrt, kelHintDefault); });
        EXPECT_EQ(made, kelStatusOk);
        const auto x = noise<T>((std::size_t{1} << order) + 2);
        std::vector<R> y(x.size());
        EXPECT_EQ(transform(x.data(), y.data(), plan, nullptr), kelStatusOk);
        EXPECT_EQ(release(plan), kelStatusOk);
        return y;
    });
}

TEST(Creation, OfFftPlans) {
    for (int order : {3, 6, 9, 14}) {
        expect_same_transform("C_32fc", kelsFFTInitAlloc_C_32fc, kelsFFTFwd_CToC_32fc, kelsFFTFree_C_32fc, order);
        expect_same_transform("C_64fc", kelsFFTInitAlloc_C_64fc, kelsFFTFwd_CToC_64fc, kelsFFTFree_C_64fc, order);
        expect_same_transform("R_32f", kelsFFTInitAlloc_R_32f, kelsFFTFwd_RToPerm_32f, kelsFFTFree_R_32f, order);
        expect_same_transform("R_64f", kelsFFTInitAlloc_R_64f, kelsFFTFwd_RToPerm_64f, kelsFFTFree_R_64f, order);
    }
    expect_same_transform("C_64fc", kelsFFTInitAlloc_C_64fc, kelsFFTFwd_CToC_64fc, kelsFFTFree_C_64fc, 18);
}

template <class Taps, class T, class Make, class Filter>
void expect_same_filter(const char* what, int tapsLen, Make make, Filter filter, KelStatus (*release)(KelFirContext*)) {
    expect_same(what, [=](const ControlState& modes) {
        KelFirContext* context = nullptr;
        const auto taps = noise<Taps>(static_cast<std::size_t>(tapsLen));
        EXPECT_EQ(under(modes, [&] { return make(&context, taps.data(), tapsLen, nullptr); }), kelStatusOk);
        const auto x = noise<T>(2000);
        std::vector<T> y(x.size());
        EXPECT_EQ(filter(x.data(), y.data(), context), kelStatusOk);
        EXPECT_EQ(release(context), kelStatusOk);
        return y;
    });
}

TEST(Creation, OfFirContexts) {
    const auto direct = [](const Kel32f* x, Kel32f* y, KelFirContext* c) { return kelsFIR_32f(x, y, 20, c); };
    const auto block = [](const Kel32f* x, Kel32f* y, KelFirContext* c) { return kelsFIR_32f(x, y, 2000, c); };
    const auto doubles = [](const Kel64f* x, Kel64f* y, KelFirContext* c) { return kelsFIR_64f(x, y, 2000, c); };
    const auto integers = [](const Kel16s* x, Kel16s* y, KelFirContext* c) {
        return kelsFIR32s_16s_Sfs(x, y, 2000, c, 0);
    };
    const auto multi_rate = [](KelFirContext** c, const Kel32f* taps, int len, const Kel32f* line) {
        return kelsFIRMRInitAlloc_32f(c, taps, len, 2, 1, 2, 0, line);
    };
    expect_same_filter<Kel32f, Kel32f>("32f", 9, kelsFIRInitAlloc_32f, direct, kelsFIRFree_32f);
    expect_same_filter<Kel32f, Kel32f>("32f", 120, kelsFIRInitAlloc_32f, block, kelsFIRFree_32f);
    expect_same_filter<Kel64f, Kel64f>("64f", 120, kelsFIRInitAlloc_64f, doubles, kelsFIRFree_64f);
    expect_same_filter<Kel32f, Kel16s>("32s", 20, kelsFIRInitAlloc32s_16s32f, integers, kelsFIRFree32s_16s);
    expect_same_filter<Kel32f, Kel32f>("multi-rate", 30, multi_rate, direct, kelsFIRFree_32f);
}

} // namespace
