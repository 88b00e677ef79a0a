// Transforms of real numbers against their definition, through every path that a length may go.

#include "support/exact.h"
#include "transforms/families.h"
#include "transforms/reference.h"

#include <cmath>
#include <limits>

namespace {

using namespace transform_test;

template <class F>
constexpr bool is_fft = requires {
    F::top_order;
};

/// Every short length; and long ones with small factors, primes, twice and other multiples of primes, powers of two and
/// their neighbours.
template <class F>
std::vector<int> lengths() {
    if (is_fft<F>) return F::places();
    std::vector<int> all;
    for (int n = 1; n <= 400; n += n < 40 ? 1 : effort(1, 7)) all.push_back(n);
    for (int n : {401,  509,   512,   513,   625,   640,   720,   729,   1000,  1001,  1009,  1023,  1024,
                  1025, 1155,  1331,  2018,  2187,  2401,  3000,  3125,  4095,  4096,  4097,  5005,  6561,
                  8190, 10007, 10080, 14641, 16383, 16385, 20014, 28561, 30030, 32769, 44100, 65537, 99990})
        if (n < effort(100000, 2500)) all.push_back(n);
    return all;
}

/// The told error: lengths with other factors than these may go through a convolution of L points. The errors of fewer
/// than eight values do not average.
template <class F>
double bound(int n) {
    const double eps = std::numeric_limits<typename F::Real>::epsilon();
    if (is_fft<F>) return 0.6 * eps * std::sqrt(std::max(std::log2(n), 1.0));
    const double count = std::max(n, 8);
    for (const int p : {2, 3, 5, 7, 11, 13})
        while (n % p == 0) n /= p;
    return n == 1 ? 0.6 * eps * std::sqrt(std::log2(count)) : 4 * eps * std::sqrt(std::ceil(std::log2(2 * count - 1)));
}

/// What a flag multiplies by.
template <class F>
long double scale_of(const Case<F>& c) {
    if (c.flag == kelFftNormSqrt) return 1 / std::sqrt(static_cast<long double>(c.n));
    return c.flag == (c.inverse ? kelFftNormInv : kelFftNormFwd) ? 1.0L / c.n : 1;
}

template <class T>
std::vector<Extended> as_complex(const std::vector<T>& parts) {
    std::vector<Extended> z(parts.size() / 2);
    for (std::size_t i = 0; i < z.size(); ++i) z[i] = {parts[2 * i], parts[2 * i + 1]};
    return z;
}

template <class T>
auto bins_of(const std::vector<T>& parts) {
    return [&parts](std::size_t k) { return Extended(parts[2 * k], parts[2 * k + 1]); };
}

template <class F>
class Definition : public testing::Test {};
using Fouriers = testing::Types<Fft32f, Fft64f, Dft32f, Dft64f>;
TYPED_TEST_SUITE(Definition, Fouriers, FamilyNames);

TYPED_TEST(Definition, OfComplexNumbers) {
    using F = TypeParam;
    using T = typename F::Real;
    std::size_t index = 0;
    for (const int n : lengths<F>()) {
        ++index;
        for (const bool inverse : {false, true}) {
            const Case<F> c = {Layout::interleaved, inverse, n, flags[(index + inverse) % 4]};
            if (n > 1 << 15 && inverse == (index % 2 == 0)) continue; // long ones in one direction
            SCOPED_TRACE(testing::Message() << c);
            const auto plan = c.plan();
            const std::vector<T> x = c.noise(), y = c.transformed(x, plan.get());
            const Known wanted = fourier_transform(as_complex(x), inverse ? 1 : -1);
            EXPECT_LE(wanted.error(scale_of(c), bins_of(y)), bound<F>(n));
            std::vector<T> in_place = x;
            c.run(in_place.data(), in_place.data(), plan.get());
            EXPECT_TRUE(same_bits(in_place, y)) << "in place";
            Case<F> split = c;
            split.layout = Layout::split;
            EXPECT_TRUE(same_bits(split.transformed(apart(x)), apart(y))) << "two arrays";
        }
    }
}

/// A bin of a real transform, the upper half being that of the lower one.
template <class F>
Extended bin(const Case<F>& c, const std::vector<typename F::Real>& y, std::size_t k) {
    const auto n = static_cast<std::size_t>(c.n);
    if (2 * k > n) return std::conj(bin(c, y, n - k));
    if (k == 0) return y[0];
    if (2 * k == n) return y[c.layout == Layout::perm ? 1 : c.layout == Layout::pack ? n - 1 : n];
    const std::size_t at = c.layout == Layout::ccs || (c.layout == Layout::perm && n % 2 == 0) ? 2 * k : 2 * k - 1;
    return {y[at], y[at + 1]};
}

TYPED_TEST(Definition, OfRealNumbersInEveryLayoutAndBack) {
    using F = TypeParam;
    using T = typename F::Real;
    std::size_t count = 0;
    for (const int n : lengths<F>()) {
        const int flag = flags[count++ % 4];
        const std::vector<T> x = Case<F>{Layout::perm, false, n}.noise();
        const Known wanted = fourier_transform({x.begin(), x.end()}, -1);
        for (const Layout layout : {Layout::perm, Layout::pack, Layout::ccs}) {
            const Case<F> c = {layout, false, n, flag}, back = {layout, true, n, flag};
            SCOPED_TRACE(testing::Message() << c);
            const auto plan = c.plan();
            std::vector<T> y = c.transformed(x, plan.get());
            EXPECT_LE(wanted.error(scale_of(c), [&](std::size_t k) { return bin(c, y, k); }), bound<F>(n));
            std::vector<T> in_place = x;
            in_place.resize(y.size());
            c.run(in_place.data(), in_place.data(), plan.get());
            EXPECT_TRUE(same_bits(in_place, y)) << "in place";
            if (layout == Layout::ccs) {
                const std::size_t last = n % 2 == 0 ? y.size() - 1 : 1;
                EXPECT_TRUE(y[1] == 0 && y[last] == 0 && !std::signbit(y[1]) && !std::signbit(y[last]))
                    << "the zeros of the real bins are positive";
                y[1] = y[last] = std::numeric_limits<T>::quiet_NaN(); // not read
            }
            const std::vector<T> returned = back.transformed(y, plan.get());
            Known samples = {{}, {x.begin(), x.end()}};
            for (std::size_t i = 0; i < x.size(); ++i) samples.at.push_back(i);
            EXPECT_LE(samples.error(flag == kelFftNormNone ? n : 1, [&](std::size_t i) { return returned[i]; }),
                      2 * bound<F>(n));
            back.run(y.data(), y.data(), plan.get());
            y.resize(returned.size());
            EXPECT_TRUE(same_bits(y, returned)) << "back in place";
        }
    }
}

// Every flag at every order, to the last bit.
TYPED_TEST(Definition, AnImpulseShowsTheFactor) {
    using F = TypeParam;
    using T = typename F::Real;
    for (int order = 0; order <= 15; ++order)
        for (const int flag : flags)
            for (const Layout layout : {Layout::interleaved, Layout::ccs})
                for (const bool inverse : {false, true}) {
                    const Case<F> c = {layout, inverse, 1 << order, flag};
                    if (layout == Layout::ccs && inverse) continue;
                    std::vector<T> x(c.sources());
                    x[0] = 1;
                    const std::vector<T> y = c.transformed(x);
                    for (std::size_t i = 0; i < y.size(); ++i)
                        ASSERT_EQ(y[i], i % 2 == 0 ? static_cast<T>(scale_of(c)) : T{0}) << c;
                }
}

// An impulse at sample p is a spiral in every bin: cheap to check where a whole reference would take long.
TYPED_TEST(Definition, AnImpulseIsASpiralAtLargeOrders) {
    using F = TypeParam;
    using T = typename F::Real;
    Random random("impulse");
    for (int order = 20; order <= effort(22, 20); ++order) {
        const Case<F> c = {Layout::interleaved, false, 1 << order};
        const auto plan = c.plan();
        const auto n = static_cast<std::size_t>(c.n);
        for (const bool in_place : {false, true}) {
            const std::size_t p = random.bits() % n;
            std::vector<T> x(2 * n), y(in_place ? 0 : 2 * n);
            x[2 * p] = 1;
            std::vector<T>& result = in_place ? x : y;
            ASSERT_EQ(c.run(x.data(), result.data(), plan.get()), kelStatusOk);
            const Known wanted = Known::some_of(n, [&](std::size_t k) { return root_of_unity(-1, p * k % n, n); });
            EXPECT_LE(wanted.error(1, bins_of(result)), bound<F>(c.n)) << order;
        }
    }
}

template <class Dft, class Fft>
void expect_fft_at_powers_of_two() {
    for (int order = 3; order <= 13; ++order) {
        const Case<Dft> c = {Layout::interleaved, false, 1 << order};
        const auto x = c.noise();
        EXPECT_TRUE(same_bits(c.transformed(x), Case<Fft>{c.layout, c.inverse, c.n}.transformed(x))) << c;
    }
}

TEST(Dft, PowersOfTwoAreTheFftToTheBit) {
    expect_fft_at_powers_of_two<Dft32f, Fft32f>();
    expect_fft_at_powers_of_two<Dft64f, Fft64f>();
}

template <class F>
class CosineDefinition : public testing::Test {};
using Cosines = testing::Types<Dct32f, Dct64f>;
TYPED_TEST_SUITE(CosineDefinition, Cosines, FamilyNames);

// The errors of few values do not average: short lengths are drawn several times.
TYPED_TEST(CosineDefinition, OfEveryLength) {
    using F = TypeParam;
    for_each_case<F>(lengths<F>(), [](const Case<F>& c) {
        const auto plan = c.plan();
        Random random("cosine " + std::to_string(c.n));
        const int draws = c.n < 40 ? 20 : 1;
        double squares = 0;
        for (int draw = 0; draw < draws; ++draw) {
            const auto x = uniform<typename F::Real>(random, c.sources()), y = c.transformed(x, plan.get());
            squares += std::pow(cosine_transform(x, c.inverse).error(1, [&](std::size_t k) { return y[k]; }), 2);
            auto in_place = x;
            c.run(in_place.data(), in_place.data(), plan.get());
            EXPECT_TRUE(same_bits(in_place, y)) << "in place";
        }
        EXPECT_LE(std::sqrt(squares / draws), bound<F>(c.n));
    });
}

} // namespace
