// Adaptive filters driven step by step, against a model that keeps the whole stream.

#include "filters/checks.h"
#include "filters/lms/families.h"
#include "support/life_cycle.h"
#include "support/random_data.h"

namespace {

using namespace kels_test;
using namespace filter_test;
using namespace lms_test;

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
    fill_random(random, type_of<T>(), x.data(), x.size(), 0, 0, extremes ? 1 : 0);
    return x;
}

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
            const auto owner =
                made(F::make, F::release, taps.data(), size.taps, line.data(), index, size.stride, size.delay, 12345);
            KelLmsMrContext* const context = owner.get();
            Model model = {wide(taps), {}, size.stride, size.delay, 12345};
            for (int i = 0; i < L; ++i) model.stream.push_back(wide(line[static_cast<std::size_t>((index + i) % L)]));

            const long before = allocations();
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
            EXPECT_EQ(allocations(), before);
            const auto expect_kept = [&](const std::vector<Wide>& kept_taps, const std::vector<Wide>& kept_line,
                                         int at) {
                std::vector<typename F::Tap> got(taps.size());
                ASSERT_EQ(F::get_taps(context, got.data()), kelStatusOk);
                EXPECT_EQ(wide(got), kept_taps);
                typename F::Tap* shown = nullptr;
                ASSERT_EQ(F::show_taps(context, &shown), kelStatusOk);
                EXPECT_EQ(wide(std::vector<typename F::Tap>(shown, shown + size.taps)),
                          std::vector<Wide>(kept_taps.rbegin(), kept_taps.rend()));
                std::vector<typename F::Sample> stored(line.size());
                int stored_index = -1;
                ASSERT_EQ(F::get_line(context, stored.data(), &stored_index), kelStatusOk);
                EXPECT_EQ(wide(stored), kept_line);
                EXPECT_EQ(stored_index, at);
            };
            expect_kept(model.taps, wide(line), index);

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
            expect_kept(wide(taps), wide(line), L - 1);
            ASSERT_EQ(F::set_taps(context, nullptr), kelStatusOk);
            ASSERT_EQ(F::set_line(context, nullptr, 0), kelStatusOk);
            expect_kept(std::vector<Wide>(taps.size()), std::vector<Wide>(line.size()), 0);
        }
}

// A filter of one tap with a sample of 1 in it.
TEST(LmsMrReal, Literals) {
    const auto expect = [](Kel32s tap, Kel32s output, Kel32s mu, Kel32s error, Kel32s updated) {
        const auto owner = made(Real::make, Real::release, &tap, 1, nullptr, 0, 1, 0, mu);
        Kel32s y = 99, stored = 99;
        EXPECT_EQ(Real::put_and_output(1, &y, owner.get()), kelStatusOk);
        EXPECT_EQ(y, output) << tap;
        EXPECT_EQ(Real::update(error, owner.get()), kelStatusOk);
        EXPECT_EQ(Real::get_taps(owner.get(), &stored), kelStatusOk);
        EXPECT_EQ(stored, updated) << mu << ", " << error;
    };
    expect(0x0001FFFF, 1, 0, 0, 0x0001FFFF);
    expect(0xFFFF, 0, 16384, 3, 0x10001);
    expect(-1, -1, 16384, -3, -2);
    expect(INT_MIN, -32768, INT_MAX, 2, INT_MIN);
    expect(0, 0, 32768, 5, 5);
}

TYPED_TEST(LmsMr, CreationRefusesAndRunsOutOfMemory) {
    using F = TypeParam;
    Untouched memory;
    memory.expect_refusals(
        F::make, std::tuple(memory.array<KelLmsMrContext*>(1), nullptr, 2, nullptr, 6, 3, 1),
        {null(0), size(2), size(5), {6, kelStatusBadSize, {-1, INT_MIN}}, index(4, 7, kelStatusBadSize)});
    for (const Sizes& huge :
         {Sizes{INT_MAX, INT_MAX, INT_MAX}, {1 << 16, 1 << 16, 0}, {1, 1, INT_MAX}, {1, INT_MAX, 0}, {INT_MAX, 1, 0}})
        expect_not_made(kelStatusNoMemory, F::make, nullptr, huge.taps, nullptr, 0, huge.stride, huge.delay, 0);
    expect_clean_failures(F::make, F::release, nullptr, 2, nullptr, 6, 3, 1, 0);
}

TYPED_TEST(LmsMr, ContextsAreChecked) {
    using F = TypeParam;
    using Other = std::conditional_t<std::is_same_v<F, Real>, Complex, Real>;
    const auto owner = made(F::make, F::release, nullptr, 2, nullptr, 6, 3, 1, 0);
    std::vector<Owned<KelLmsMrContext>> others;
    others.push_back(made(Other::make, Other::release, nullptr, 2, nullptr, 0, 3, 1, 0));
    KelLmsMrContext* const context = owner.get();
    Untouched memory;
    auto* const taps = memory.array<typename F::Tap>(2);
    auto* const line = memory.array<typename F::Sample>(7);
    int* const place = memory.array({7});
    auto** const shown = memory.array<typename F::Tap*>(1);
    const Check first = foreign(0, others);
    memory.expect_checks(F::set_taps, std::tuple(context, taps), {null(0), first});
    memory.expect_checks(F::get_taps, std::tuple(context, taps), {null(0), null(1), first});
    memory.expect_checks(F::show_taps, std::tuple(context, shown), {null(0), null(1)});
    memory.expect_checks(F::set_mu, std::tuple(context, 1), {null(0), first});
    memory.expect_checks(F::get_line, std::tuple(context, line, place), {null(0), null(1), null(2), first});
    memory.expect_checks(F::get_sample, std::tuple(context, line, 0),
                         {null(0), null(1), first, index(2, 8, kelStatusBadArg)});
    memory.expect_checks(F::set_line, std::tuple(context, line, 0),
                         {null(0), first, index(2, 7, kelStatusBadDlyLineIndex)});
    memory.expect_checks(F::put, std::tuple(*line, context), {null(1), foreign(1, others)});
    memory.expect_checks(F::output, std::tuple(taps, context), {null(0), null(1), foreign(1, others)});
    memory.expect_checks(F::put_and_output, std::tuple(*line, taps, context), {null(1), null(2), foreign(2, others)});
    memory.expect_checks(F::update, std::tuple(*taps, context), {null(1), foreign(1, others)});
    EXPECT_EQ(F::show_taps(others[0].get(), shown), kelStatusOk) << "of either family";
    EXPECT_EQ(F::release(others[0].release()), kelStatusOk) << "either family releases";
    EXPECT_EQ(F::release(nullptr), kelStatusOk);
}

} // namespace
