// Adaptive filters driven step by step, against a model that keeps the whole stream.

#include "kels/lms.h"
#include "support/allocation_faults.h"
#include "support/random_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>
#include <vector>

namespace {

using kels_test::Random;

struct Real {
    using Tap = Kel32s;
    using Sample = Kel16s;
    static constexpr int parts = 1;
    static constexpr auto make = kelsFIRLMSMRInitAlloc32s_16s;
    static constexpr auto release = kelsFIRLMSMRFree32s_16s;
    static constexpr auto set_taps = kelsFIRLMSMRSetTaps32s_16s;
    static constexpr auto get_taps = kelsFIRLMSMRGetTaps32s_16s;
    static constexpr auto show_taps = kelsFIRLMSMRGetTapsPointer32s_16s;
    static constexpr auto set_mu = kelsFIRLMSMRSetMu32s_16s;
    static constexpr auto set_line = kelsFIRLMSMRSetDlyLine32s_16s;
    static constexpr auto get_line = kelsFIRLMSMRGetDlyLine32s_16s;
    static constexpr auto get_sample = kelsFIRLMSMRGetDlyVal32s_16s;
    static constexpr auto put = kelsFIRLMSMRPutVal32s_16s;
    static constexpr auto output = kelsFIRLMSMROne32s_16s;
    static constexpr auto put_and_output = kelsFIRLMSMROneVal32s_16s;
    static constexpr auto update = kelsFIRLMSMRUpdateTaps32s_16s;
};

struct Complex {
    using Tap = Kel32sc;
    using Sample = Kel16sc;
    static constexpr int parts = 2;
    static constexpr auto make = kelsFIRLMSMRInitAlloc32sc_16sc;
    static constexpr auto release = kelsFIRLMSMRFree32sc_16sc;
    static constexpr auto set_taps = kelsFIRLMSMRSetTaps32sc_16sc;
    static constexpr auto get_taps = kelsFIRLMSMRGetTaps32sc_16sc;
    static constexpr auto show_taps = kelsFIRLMSMRGetTapsPointer32sc_16sc;
    static constexpr auto set_mu = kelsFIRLMSMRSetMu32sc_16sc;
    static constexpr auto set_line = kelsFIRLMSMRSetDlyLine32sc_16sc;
    static constexpr auto get_line = kelsFIRLMSMRGetDlyLine32sc_16sc;
    static constexpr auto get_sample = kelsFIRLMSMRGetDlyVal32sc_16sc;
    static constexpr auto put = kelsFIRLMSMRPutVal32sc_16sc;
    static constexpr auto output = kelsFIRLMSMROne32sc_16sc;
    static constexpr auto put_and_output = kelsFIRLMSMROneVal32sc_16sc;
    static constexpr auto update = kelsFIRLMSMRUpdateTaps32sc_16sc;
};

/// A number of either family, in 64 bits.
struct Wide {
    std::int64_t re = 0, im = 0;
    bool operator==(const Wide&) const = default;
};

Wide wide(Kel16s v) { return {v, 0}; }
Wide wide(Kel32s v) { return {v, 0}; }
Wide wide(Kel16sc v) { return {v.re, v.im}; }
Wide wide(Kel32sc v) { return {v.re, v.im}; }

std::int64_t wrapped(std::int64_t v) { return static_cast<std::int32_t>(static_cast<std::uint32_t>(v)); }
Wide wrapped(Wide v) { return {wrapped(v.re), wrapped(v.im)}; }

template <class T>
std::vector<Wide> wide(const std::vector<T>& values) {
    std::vector<Wide> all;
    for (const T& v : values) all.push_back(wide(v));
    return all;
}

/// Taps in natural order and the stream, the newest sample last.
struct Model {
    std::vector<Wide> taps, stream;
    int stride, delay;
    std::int64_t mu;

    Wide sample(int age) const { return stream[stream.size() - 1 - static_cast<std::size_t>(age)]; }
    Wide output() const {
        Wide sum;
        for (std::size_t k = 0; k < taps.size(); ++k) {
            const Wide t = {taps[k].re >> 16, taps[k].im >> 16}, x = sample(static_cast<int>(k) * stride);
            sum = {sum.re + t.re * x.re - t.im * x.im, sum.im + x.re * t.im + x.im * t.re};
        }
        return wrapped(sum);
    }
    void update(Wide error) {
        const auto step = [&](std::int64_t part) { return wrapped(mu * part + 16384) >> 15; };
        const Wide e = {step(error.re), step(error.im)};
        for (std::size_t k = 0; k < taps.size(); ++k) {
            const Wide u = sample(delay + static_cast<int>(k) * stride);
            taps[k] = wrapped({taps[k].re + u.re * e.re + u.im * e.im, taps[k].im + u.re * e.im - u.im * e.re});
        }
    }
};

template <class T>
std::vector<T> noise(Random& random, int n, bool extremes) {
    std::vector<T> x(static_cast<std::size_t>(n));
    using Part = std::conditional_t<sizeof(T) % 4 == 2 || std::is_same_v<T, Kel16sc>, Kel16s, Kel32s>;
    Part edges[] = {std::numeric_limits<Part>::min(), std::numeric_limits<Part>::max(), -1, 0, 1};
    std::vector<Part> parts(sizeof(T) / sizeof(Part) * x.size());
    for (Part& v : parts) v = extremes ? edges[random.below(5)] : static_cast<Part>(random.bits());
    std::memcpy(static_cast<void*>(x.data()), parts.data(), parts.size() * sizeof(Part));
    return x;
}

template <class F>
using Context = std::unique_ptr<KelLmsMrContext, KelStatus (*)(KelLmsMrContext*)>;

template <class F>
class LmsMr : public testing::Test {};
using Families = testing::Types<Real, Complex>;
TYPED_TEST_SUITE(LmsMr, Families);

struct Sizes {
    int taps, stride, delay;
};
constexpr Sizes sizes[] = {{1, 1, 0}, {2, 3, 1}, {5, 1, 0}, {16, 1, 4}, {33, 1, 0}, {7, 2, 0}, {9, 5, 11}, {40, 3, 2}};

TYPED_TEST(LmsMr, EveryCallIsThatOfTheModel) {
    using F = TypeParam;
    for (const Sizes& size : sizes)
        for (const bool extremes : {false, true}) {
            const int L = size.stride * size.taps + size.delay;
            SCOPED_TRACE(testing::Message()
                         << size.taps << " taps, stride " << size.stride << ", delay " << size.delay);
            Random random("lms at several rates " + std::to_string(L));
            auto taps = noise<typename F::Tap>(random, size.taps, extremes);
            auto line = noise<typename F::Sample>(random, L, extremes);
            int index = random.below(L);
            KelLmsMrContext* context = nullptr;
            ASSERT_EQ(F::make(&context, taps.data(), size.taps, line.data(), index, size.stride, size.delay, 12345),
                      kelStatusOk);
            const Context<F> owner(context, F::release);
            Model model = {wide(taps), {}, size.stride, size.delay, 12345};
            for (int i = 0; i < L; ++i) model.stream.push_back(wide(line[static_cast<std::size_t>((index + i) % L)]));

            for (int step = 0; step < 400; ++step) {
                const typename F::Sample x = noise<typename F::Sample>(random, 1, extremes)[0];
                const typename F::Tap error = noise<typename F::Tap>(random, 1, extremes)[0];
                typename F::Tap y{};
                const auto push = [&] {
                    model.stream.push_back(wide(x));
                    line[static_cast<std::size_t>(index)] = x;
                    index = (index + 1) % L;
                };
                switch (random.below(6)) {
                case 0:
                    ASSERT_EQ(F::put(x, context), kelStatusOk);
                    push();
                    break;
                case 1:
                    ASSERT_EQ(F::put_and_output(x, &y, context), kelStatusOk);
                    push();
                    ASSERT_EQ(wide(y), model.output()) << step;
                    break;
                case 2:
                    ASSERT_EQ(F::update(error, context), kelStatusOk);
                    model.update(wide(error));
                    break;
                case 3:
                    model.mu = wide(error).re;
                    ASSERT_EQ(F::set_mu(context, static_cast<int>(model.mu)), kelStatusOk);
                    break;
                default:
                    for (int twice = 0; twice < 2; ++twice) {
                        ASSERT_EQ(F::output(&y, context), kelStatusOk);
                        ASSERT_EQ(wide(y), model.output()) << step;
                    }
                }
            }
            std::vector<typename F::Tap> got(taps.size());
            ASSERT_EQ(F::get_taps(context, got.data()), kelStatusOk);
            EXPECT_EQ(wide(got), model.taps);
            typename F::Tap* shown = nullptr;
            ASSERT_EQ(F::show_taps(context, &shown), kelStatusOk);
            EXPECT_TRUE(std::equal(got.rbegin(), got.rend(), shown, [](auto a, auto b) { return wide(a) == wide(b); }));
            std::vector<typename F::Sample> stored(line.size());
            int stored_index = -1;
            ASSERT_EQ(F::get_line(context, stored.data(), &stored_index), kelStatusOk);
            EXPECT_EQ(wide(stored), wide(line));
            EXPECT_EQ(stored_index, index);

            // Samples of the filtering window, as far as the ring goes, and not behind it.
            for (int at = -1; at <= L + 1; ++at) {
                typename F::Sample sample{};
                const bool inside = at >= 0 && at <= L && index + size.delay + size.stride - 1 + at < 2 * L;
                ASSERT_EQ(F::get_sample(context, &sample, at), inside ? kelStatusOk : kelStatusBadArg) << at;
                const int age = (size.taps - 1) * size.stride - at;
                if (inside && age >= 0) {
                    EXPECT_EQ(wide(sample), model.sample(age)) << at;
                }
            }

            ASSERT_EQ(F::set_taps(context, taps.data()), kelStatusOk);
            ASSERT_EQ(F::set_line(context, line.data(), L - 1), kelStatusOk);
            F::get_taps(context, got.data());
            F::get_line(context, stored.data(), &stored_index);
            EXPECT_EQ(wide(got), wide(taps));
            EXPECT_EQ(wide(stored), wide(line));
            EXPECT_EQ(stored_index, L - 1);
            ASSERT_EQ(F::set_taps(context, nullptr), kelStatusOk);
            ASSERT_EQ(F::set_line(context, nullptr, 0), kelStatusOk);
            F::get_taps(context, got.data());
            F::get_line(context, stored.data(), &stored_index);
            EXPECT_EQ(wide(got), std::vector<Wide>(taps.size()));
            EXPECT_EQ(wide(stored), std::vector<Wide>(line.size()));
        }
}

TEST(LmsMrReal, Literals) {
    const struct {
        Kel32s tap, wanted;
    } outputs[] = {{0x0001FFFF, 1}, {0xFFFF, 0}, {-1, -1}, {-65536, -1}, {INT_MIN, -32768}};
    for (const auto& [tap, wanted] : outputs) {
        KelLmsMrContext* context = nullptr;
        ASSERT_EQ(kelsFIRLMSMRInitAlloc32s_16s(&context, &tap, 1, nullptr, 0, 1, 0, 0), kelStatusOk);
        Kel32s y = 99, stored = 99;
        EXPECT_EQ(kelsFIRLMSMROneVal32s_16s(1, &y, context), kelStatusOk);
        EXPECT_EQ(y, wanted);
        kelsFIRLMSMRGetTaps32s_16s(context, &stored);
        EXPECT_EQ(stored, tap);
        kelsFIRLMSMRFree32s_16s(context);
    }
    const struct {
        Kel32s mu, err, wanted;
    } updates[] = {{16384, 3, 2}, {16384, -3, -1}, {INT_MAX, 2, 0}, {32768, 5, 5}};
    for (const auto& [mu, err, wanted] : updates) {
        KelLmsMrContext* context = nullptr;
        ASSERT_EQ(kelsFIRLMSMRInitAlloc32s_16s(&context, nullptr, 1, nullptr, 0, 1, 0, mu), kelStatusOk);
        kelsFIRLMSMRPutVal32s_16s(1, context);
        EXPECT_EQ(kelsFIRLMSMRUpdateTaps32s_16s(err, context), kelStatusOk);
        Kel32s tap = 99;
        kelsFIRLMSMRGetTaps32s_16s(context, &tap);
        EXPECT_EQ(tap, wanted) << mu << ", " << err;
        kelsFIRLMSMRFree32s_16s(context);
    }
}

TYPED_TEST(LmsMr, FindsAnUnknownSystem) {
    using F = TypeParam;
    Random random("identification at several rates");
    KelLmsMrContext* context = nullptr;
    ASSERT_EQ(F::make(&context, nullptr, 4, nullptr, 0, 2, 0, 512), kelStatusOk);
    const Context<F> owner(context, F::release);
    constexpr int system[] = {100, -50, 25, 0};
    std::vector<int> x(8);
    for (int i = 0; i < 20000; ++i) {
        const int v = random.below(2001) - 1000;
        x.insert(x.begin(), v);
        x.pop_back();
        typename F::Tap y{}, error{};
        if constexpr (F::parts == 1) {
            F::put_and_output(static_cast<Kel16s>(v), &y, context);
            for (int k = 0; k < 4; ++k) error += system[k] * x[static_cast<std::size_t>(2 * k)];
            error -= y;
        } else {
            F::put_and_output({static_cast<Kel16s>(v), 0}, &y, context);
            for (int k = 0; k < 4; ++k) error.re += system[k] * x[static_cast<std::size_t>(2 * k)];
            error = {error.re - y.re, -y.im};
        }
        F::update(error, context);
    }
    typename F::Tap found[4];
    F::get_taps(context, found);
    for (int k = 0; k < 4; ++k) EXPECT_NEAR(static_cast<double>(wide(found[k]).re) / 65536, system[k], 1.5) << k;
}

TYPED_TEST(LmsMr, RefusesInOrderAndStoresNothing) {
    using F = TypeParam;
    using Other = std::conditional_t<F::parts == 1, Complex, Real>;
    char elsewhere;
    auto* const untouched = reinterpret_cast<KelLmsMrContext*>(&elsewhere);
    KelLmsMrContext* context = untouched;
    const long before = kels_test::live_blocks();
    EXPECT_EQ(F::make(nullptr, nullptr, 0, nullptr, 0, 0, 0, 0), kelStatusNullPtr);
    const struct {
        int taps, index, stride, delay;
    } bad[] = {{0, 0, 1, 0}, {-1, 0, 1, 5},      {1, 0, 0, 5},  {1, 0, INT_MIN, 0}, {2, -1, 3, 1},
               {2, 7, 3, 1}, {2, INT_MAX, 3, 1}, {2, 0, 3, -1}, {1, 0, 1, INT_MIN}};
    for (const auto& b : bad)
        EXPECT_EQ(F::make(&context, nullptr, b.taps, nullptr, b.index, b.stride, b.delay, 0), kelStatusBadSize);
    const Sizes huge[] = {
        {INT_MAX, INT_MAX, INT_MAX}, {1 << 16, 1 << 16, 0}, {1, 1, INT_MAX}, {1, INT_MAX, 0}, {INT_MAX, 1, 0}};
    for (const Sizes& h : huge)
        EXPECT_EQ(F::make(&context, nullptr, h.taps, nullptr, 0, h.stride, h.delay, 0), kelStatusNoMemory);
    EXPECT_EQ(context, untouched);
    kels_test::for_each_allocation_failure([&] {
        KelLmsMrContext* made = untouched;
        const KelStatus status = F::make(&made, nullptr, 2, nullptr, 6, 3, 1, 0);
        if (status == kelStatusOk)
            F::release(made);
        else
            EXPECT_EQ(made, untouched);
        return status;
    });
    EXPECT_EQ(kels_test::live_blocks(), before);

    ASSERT_EQ(F::make(&context, nullptr, 2, nullptr, 6, 3, 1, 0), kelStatusOk);
    KelLmsMrContext* foreign = nullptr;
    ASSERT_EQ(Other::make(&foreign, nullptr, 2, nullptr, 0, 3, 1, 0), kelStatusOk);
    typename F::Tap tap[2] = {}, *shown = nullptr;
    typename F::Sample sample[7] = {};
    int index = 7;
    for (KelLmsMrContext* wrong : {static_cast<KelLmsMrContext*>(nullptr), foreign}) {
        const KelStatus status = wrong ? kelStatusContextMismatch : kelStatusNullPtr;
        EXPECT_EQ(F::set_taps(wrong, tap), status);
        EXPECT_EQ(F::get_taps(wrong, tap), status);
        EXPECT_EQ(F::set_mu(wrong, 1), status);
        EXPECT_EQ(F::set_line(wrong, sample, -1), status);
        EXPECT_EQ(F::get_line(wrong, sample, &index), status);
        EXPECT_EQ(F::get_sample(wrong, sample, -1), status);
        EXPECT_EQ(F::put(sample[0], wrong), status);
        EXPECT_EQ(F::output(tap, wrong), status);
        EXPECT_EQ(F::put_and_output(sample[0], tap, wrong), status);
        EXPECT_EQ(F::update(tap[0], wrong), status);
        EXPECT_EQ(F::get_taps(wrong, nullptr), kelStatusNullPtr);
        EXPECT_EQ(F::get_line(wrong, nullptr, &index), kelStatusNullPtr);
        EXPECT_EQ(F::get_line(wrong, sample, nullptr), kelStatusNullPtr);
        EXPECT_EQ(F::get_sample(wrong, nullptr, 0), kelStatusNullPtr);
        EXPECT_EQ(F::output(nullptr, wrong), kelStatusNullPtr);
        EXPECT_EQ(F::put_and_output(sample[0], nullptr, wrong), kelStatusNullPtr);
    }
    EXPECT_EQ(F::show_taps(nullptr, &shown), kelStatusNullPtr);
    EXPECT_EQ(F::show_taps(context, nullptr), kelStatusNullPtr);
    EXPECT_EQ(F::show_taps(foreign, &shown), kelStatusOk) << "of either family";
    for (const int wrong : {-1, 7, INT_MIN, INT_MAX})
        EXPECT_EQ(F::set_line(context, sample, wrong), kelStatusBadDlyLineIndex);
    for (const int wrong : {-1, 8, INT_MIN, INT_MAX}) EXPECT_EQ(F::get_sample(context, sample, wrong), kelStatusBadArg);
    EXPECT_EQ(index, 7);
    F::get_line(context, sample, &index);
    EXPECT_EQ(index, 6) << "nothing has entered";
    EXPECT_EQ(F::release(context), kelStatusOk);
    EXPECT_EQ(F::release(foreign), kelStatusOk) << "either family releases";
    EXPECT_EQ(F::release(nullptr), kelStatusOk);
}

} // namespace
