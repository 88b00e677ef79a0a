// What filters are made of does not depend on the modes that the caller has set while they are made.

#include "kels/fir.h"
#include "support/control_state.h"
#include "support/exact.h"
#include "support/life_cycle.h"
#include "support/random_data.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using namespace kels_test;

template <class Taps, class T, class... Line>
void expect_same_filter(int tapsLen, KelStatus (*make)(KelFirContext**, const Taps*, int, Line...),
                        KelStatus (*filter)(const T*, T*, KelFirContext*), KelStatus (*release)(KelFirContext*)) {
    Random random("creation");
    const auto taps = uniform<Taps>(random, static_cast<std::size_t>(tapsLen), 100);
    const auto x = uniform<T>(random, 2000, 100);
    const auto filtered = [&](const ControlState& modes) {
        const auto context = under(modes, [&] { return made(make, release, taps.data(), tapsLen, Line{}...); });
        std::vector<T> y(x.size());
        EXPECT_EQ(filter(x.data(), y.data(), context.get()), kelStatusOk);
        return y;
    };
    const auto wanted = filtered(default_modes);
    for (const ControlState& modes : odd_modes)
        EXPECT_TRUE(same_bits(filtered(modes), wanted)) << tapsLen << " taps under " << std::hex << modes.x87;
}

TEST(Creation, OfFirContexts) {
    const auto direct = [](const Kel32f* x, Kel32f* y, KelFirContext* c) { return kelsFIR_32f(x, y, 20, c); };
    const auto block = [](const Kel32f* x, Kel32f* y, KelFirContext* c) { return kelsFIR_32f(x, y, 2000, c); };
    const auto doubles = [](const Kel64f* x, Kel64f* y, KelFirContext* c) { return kelsFIR_64f(x, y, 2000, c); };
    const auto integers = [](const Kel16s* x, Kel16s* y, KelFirContext* c) {
        return kelsFIR32s_16s_Sfs(x, y, 2000, c, 0);
    };
    const auto multi_rate = [](KelFirContext** c, const Kel32f* taps, int len) {
        return kelsFIRMRInitAlloc_32f(c, taps, len, 2, 1, 2, 0, nullptr);
    };
    expect_same_filter(9, kelsFIRInitAlloc_32f, +direct, kelsFIRFree_32f);
    expect_same_filter(120, kelsFIRInitAlloc_32f, +block, kelsFIRFree_32f);
    expect_same_filter(120, kelsFIRInitAlloc_64f, +doubles, kelsFIRFree_64f);
    expect_same_filter(20, kelsFIRInitAlloc32s_16s32f, +integers, kelsFIRFree32s_16s);
    expect_same_filter(30, +multi_rate, +direct, kelsFIRFree_32f);
}

} // namespace
