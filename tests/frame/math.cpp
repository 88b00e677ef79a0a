// The elementary functions inside the library, here as the baseline compiles them, against extended precision. The
// largest errors found are printed; those of the other levels show in the public functions.

#include "frame/math/arctangent.h"
#include "frame/math/circular.h"
#include "frame/math/exponential.h"
#include "frame/math/logarithm.h"
#include "kels/exponential.h"
#include "kels/polar.h"
#include "support/emulation.h"
#include "support/random_data.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

namespace {

using kels::Grade;
using kels_test::effort;
using kels_test::Random;
using Lanes = kels::Vec<double>;

constexpr int lanes = kels::lanes<Lanes>;
const int arguments_of_a_kind = effort(250000, 30000);

/// Two arguments for the arctangent of a point, else the second is not used.
struct Arguments {
    std::vector<double> x, y;
    void add(double a, double b = 1) {
        x.push_back(a);
        y.push_back(b);
    }
    void add_neighbours(double a) {
        for (int steps = -2; steps <= 2; ++steps) {
            const auto moved = std::bit_cast<double>(std::bit_cast<std::int64_t>(a) + steps);
            add(moved);
            add(-moved);
        }
    }
};

double any_of_exponents(Random& random, int from, int to) {
    const double size = std::ldexp(random.uniform(1, 2), from + random.below(to - from));
    return random.below(2) ? size : -size;
}

/// Some of each kind that is drawn.
template <class... Draw>
Arguments drawn(const char* purpose, Draw... draw) {
    Random random(purpose);
    Arguments a;
    for (int i = 0; i < arguments_of_a_kind; ++i) (a.add(draw(random)), ...);
    return a;
}
auto between(double low, double high) {
    return [=](Random& random) { return random.uniform(low, high); };
}
auto of_exponents(int from, int to) {
    return [=](Random& random) { return any_of_exponents(random, from, to); };
}
constexpr auto beside_one = [](Random& random) { return 1 + any_of_exponents(random, -52, 0) / 2; };

Arguments for_exponential() {
    Arguments a = drawn("exponential", between(-708, 709.08), between(-1, 1), of_exponents(-60, 9));
    for (int n = 0; n < 1000; ++n) a.add_neighbours((n + 0.5) * 0.69314718055994530942); // where n changes
    return a;
}

Arguments for_logarithm() {
    const auto any = [](Random& random) { return std::fabs(any_of_exponents(random, -1074, 1023)); };
    Arguments a = drawn("logarithm", between(0.5, 2), any, beside_one);
    for (int e = -1074; e < 1024; ++e) a.add(std::ldexp(1.0, e));
    for (int e = -1022; e < 1023; ++e)
        for (int steps = -2; steps <= 2; ++steps)
            a.add(std::bit_cast<double>(std::bit_cast<std::int64_t>(std::ldexp(std::sqrt(0.5), e)) + steps));
    return a;
}

Arguments for_circular() {
    Arguments a = drawn("circular", between(-10, 10), of_exponents(-40, 60), of_exponents(20, 1024));
    for (int n = 1; n < 3000; ++n) a.add_neighbours(n * 0.78539816339744830962);
    for (int e = -1000; e < 1024; ++e) a.add_neighbours(std::ldexp(1.0, e));
    a.add_neighbours(0x1.6ac5b262ca1ffp849); // nearest of all to a multiple of pi / 2
    return a;
}

Arguments for_arctangent() {
    Arguments a = drawn("arctangent", between(-4, 4), of_exponents(-100, 100), beside_one);
    for (double edge : {std::sqrt(2.0) - 1, std::sqrt(2.0) + 1, 1.0, 0x1p200, 0x1p-1022, 0x1p1023})
        a.add_neighbours(edge);
    return a;
}

Arguments for_points() {
    Random random("points");
    Arguments a;
    for (int i = 0; i < arguments_of_a_kind; ++i) {
        a.add(random.uniform(-1, 1), random.uniform(-1, 1));
        const double y = any_of_exponents(random, -150, 150);
        a.add(y, any_of_exponents(random, -150, 150));
        a.add(y, y * random.uniform(-4, 4));
    }
    for (double y : {0.0, -0.0, 1.0, -1.0, 0x1p-200, -HUGE_VAL, HUGE_VAL})
        for (double x : {0.0, -0.0, 1.0, -1.0, 0x1p150, -HUGE_VAL, HUGE_VAL}) a.add(y, x);
    return a;
}

/// The arguments rounded to single: a double close to a multiple of pi / 2 is none for the grade of singles.
Arguments as_singles(const Arguments& a) {
    Arguments rounded;
    for (double x : a.x)
        if (std::fabs(x) < 0x1p127) rounded.add(static_cast<float>(x));
    return rounded;
}

struct Errors {
    double worst = 0, at = 0;
    std::size_t not_nearest = 0, counted = 0;
};

/// The error of every result in units in the last place of the exact one's double, and how many singles are other ones.
template <class F, class Exact>
Errors errors_of(const Arguments& a, F f, Exact exact) {
    Errors found;
    for (std::size_t i = 0; i + lanes <= a.x.size(); i += lanes) {
        double results[lanes];
        kels::store(results, f(kels::load<Lanes>(&a.x[i]), kels::load<Lanes>(&a.y[i])));
        for (int lane = 0; lane < lanes; ++lane) {
            const double x = a.x[i + lane], y = a.y[i + lane];
            const double alone = f(x, y);
            EXPECT_EQ(std::memcmp(&alone, &results[lane], sizeof alone), 0) << x << ", " << y;
            const long double want = exact(x, y);
            int e = 0;
            std::frexp(static_cast<double>(want), &e);
            const long double ulp = std::ldexp(1.0L, std::max(e - 53, -1074));
            const auto error = static_cast<double>(std::fabs(results[lane] - want) / ulp);
            found.not_nearest += static_cast<float>(results[lane]) != static_cast<float>(want);
            ++found.counted;
            EXPECT_EQ(std::signbit(results[lane]), std::signbit(want)) << x << ", " << y;
            if (error <= found.worst) continue;
            found.worst = error;
            found.at = x;
        }
    }
    return found;
}

/// Both grades of a function.
template <class F, class Exact>
void expect_accurate(const char* name, const Arguments& a, const Arguments& of_singles, F f, Exact exact) {
    const auto for_double = [f](auto x, auto y) { return f.template operator()<Grade::for_double>(x, y); };
    const auto for_single = [f](auto x, auto y) { return f.template operator()<Grade::for_single>(x, y); };
    const Errors doubles = errors_of(a, for_double, exact), singles = errors_of(of_singles, for_single, exact);
    EXPECT_LT(doubles.worst, 1) << name << " at " << doubles.at;
    EXPECT_LT(singles.worst, std::ldexp(1.0, 53 - 34)) << name << " at " << singles.at;
    EXPECT_LE(singles.not_nearest, singles.counted / 1000) << name;
    std::printf("%-6s double: %.3f ulp at %-24.17g single: 2^%.1f, %zu of %zu not the nearest\n", name, doubles.worst,
                doubles.at, std::log2(singles.worst) - 53, singles.not_nearest, singles.counted);
}

TEST(ElementaryFunctions, StayWithinTheirErrors) {
    const Arguments exponents = for_exponential(), positive = for_logarithm(), angles = for_circular(),
                    any = for_arctangent(), points = for_points();
    expect_accurate(
        "exp", exponents, exponents, []<Grade grade>(auto x, auto) { return kels::exponential<grade>(x); },
        [](long double x, long double) { return std::exp(x); });
    expect_accurate(
        "log", positive, positive, []<Grade grade>(auto x, auto) { return kels::logarithm<grade>(x); },
        [](long double x, long double) { return std::log(x); });
    expect_accurate(
        "sin", angles, as_singles(angles), []<Grade grade>(auto x, auto) { return kels::sine<grade>(x); },
        [](long double x, long double) { return std::sin(x); });
    expect_accurate(
        "cos", angles, as_singles(angles), []<Grade grade>(auto x, auto) { return kels::cosine<grade>(x); },
        [](long double x, long double) { return std::cos(x); });
    expect_accurate(
        "atan", any, any, []<Grade grade>(auto x, auto) { return kels::arctangent<grade>(x); },
        [](long double x, long double) { return std::atan(x); });
    expect_accurate(
        "atan2", points, points, []<Grade grade>(auto y, auto x) { return kels::arctangent_in_range<grade>(y, x); },
        [](long double y, long double x) { return std::atan2(y, x); });
}

/// Singles of bit patterns from first to last, in even steps and where a mantissa's upper bits change, against the
/// grade of singles on doubles.
template <class F>
void expect_same_bits(KelStatus (*function)(const Kel32f*, Kel32f*, int), F wide, std::uint32_t first,
                      std::uint32_t last) {
    std::vector<Kel32f> x;
    const auto add = [&](std::uint64_t bits) { x.push_back(std::bit_cast<Kel32f>(static_cast<std::uint32_t>(bits))); };
    for (std::uint64_t bits = first; bits <= last; bits += static_cast<unsigned>(effort(509, 10007))) add(bits);
    constexpr std::uint64_t upper_bits = 1 << 16;
    for (std::uint64_t bits = first / upper_bits * upper_bits + upper_bits; bits < last; bits += upper_bits)
        for (int steps = -1; steps <= 1; ++steps) add(bits + static_cast<std::uint64_t>(steps));
    std::vector<Kel32f> results(x.size());
    ASSERT_EQ(function(x.data(), results.data(), static_cast<int>(x.size())), kelStatusOk);
    for (std::size_t i = 0; i < x.size(); ++i) {
        const auto want = static_cast<Kel32f>(wide(static_cast<double>(x[i])));
        ASSERT_EQ(std::bit_cast<std::uint32_t>(results[i]), std::bit_cast<std::uint32_t>(want)) << x[i];
    }
}

// Levels that fuse have quicker ways to most singles.
TEST(ElementaryFunctions, GiveTheSameSinglesAtEveryLevel) {
    constexpr std::uint32_t negative = 0x80000000, largest = 0x7F7FFFFF, least_normal = 0x00800000, of_87 = 0x42AE0000;
    const auto power = [](double x) { return kels::exponential<Grade::for_single>(x); };
    const auto logarithm = [](double x) { return kels::logarithm<Grade::for_single>(x); };
    const auto angle = [](double x) { return kels::arctangent<Grade::for_single>(x) + 0.0; };
    expect_same_bits(kelsExp_32f, power, 0, of_87);
    expect_same_bits(kelsExp_32f, power, negative, negative + of_87);
    expect_same_bits(kelsLn_32f, logarithm, least_normal, largest);
    expect_same_bits(kelsArctan_32f, angle, 0, largest);
    expect_same_bits(kelsArctan_32f, angle, negative, negative + largest);
}

} // namespace
