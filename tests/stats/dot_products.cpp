// Dot products.

#include "kels/statistics.h"
#include "stats/reference.h"
#include "support/exact.h"
#include "support/random_data.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using namespace kels_test;

// References

/// A sum of products of integers below 2^62, as high 2^32 + low.
class IntegerSum {
public:
    void add_product(Kel64s a, Kel64s b) {
        const Kel64s product = a * b;
        high += product >> 32;
        low += product & 0xFFFFFFFF;
    }
    /// Exact, but where the result saturates in any case.
    long double value() const { return high * 0x1p32L + low; }
    Kel32s wrapped() const { return static_cast<Kel32s>(static_cast<std::uint64_t>(low)); }

private:
    Kel64s high = 0, low = 0;
};

/// The sums of both parts; the second is empty for real vectors.
template <class S, class A, class B>
std::pair<S, S> sums(const A* a, const B* b, int len) {
    std::pair<S, S> sum;
    for (int i = 0; i < len; ++i) {
        if constexpr (ComplexSample<A>) {
            using Wide = std::conditional_t<std::is_integral_v<decltype(A::im)>, Kel64s, long double>;
            sum.first.add_product(a[i].re, b[i].re);
            sum.first.add_product(-static_cast<Wide>(a[i].im), b[i].im);
            sum.second.add_product(a[i].re, b[i].im);
            sum.second.add_product(a[i].im, b[i].re);
        } else if constexpr (ComplexSample<B>) {
            sum.first.add_product(a[i], b[i].re);
            sum.second.add_product(a[i], b[i].im);
        } else {
            sum.first.add_product(a[i], b[i]);
        }
    }
    return sum;
}

/// Stores what `of` makes of the sum of each part.
template <class S, class A, class B, class Of>
auto of_parts(const A* a, const B* b, int len, Of of) {
    const auto [re, im] = sums<S>(a, b, len);
    if constexpr (!ComplexSample<B>) {
        return of(re);
    } else {
        using P = decltype(of(re));
        if constexpr (std::is_same_v<P, Within>) {
            return ComplexWithin{of(re), of(im)};
        } else {
            struct Parts {
                P re, im;
            };
            return Parts{of(re), of(im)};
        }
    }
}

template <class R>
struct DotProduct {
    template <class A, class B>
    auto operator()(const A* a, const B* b, int len) const {
        return of_parts<ExtendedSum>(a, b, len, [](const ExtendedSum& s) { return s.result<R>(); });
    }
};

constexpr auto exact = reduced([](auto* a, auto* b, int len) {
    return of_parts<IntegerSum>(a, b, len, [](const IntegerSum& s) { return static_cast<Kel64s>(s.value()); });
});

constexpr auto rounded = reduced([](auto* a, auto* b, int len) {
    return of_parts<IntegerSum>(a, b, len, [](const IntegerSum& s) { return Within{s.value(), 0}; });
});

/// 16-bit sources, 32-bit result.
constexpr auto to_32 = reduced([](auto* a, auto* b, int len, int factor) {
    return of_parts<IntegerSum>(a, b, len, [=](const IntegerSum& s) {
        const long double t = s.value();
        return scaled<Kel32s>(t, std::clamp(factor, t < 0 ? -31 : -30, 31));
    });
});

constexpr auto to_16 = reduced([](auto* a, auto* b, int len, int factor) {
    return of_parts<IntegerSum>(
        a, b, len, [=](const IntegerSum& s) { return scaled<Kel16s>(s.wrapped(), std::clamp(factor, -14, 31)); });
});

/// 32-bit sources.
constexpr auto from_32 = reduced([](auto* a, auto* b, int len, int factor) {
    return of_parts<IntegerSum>(
        a, b, len, [=](const IntegerSum& s) { return scaled<Kel32s>(s.value(), std::clamp(factor, -31, 31)); });
});

const Rows table = {
    reductions(reduced(DotProduct<Kel32f>{}), kelsDotProd_32f, kelsDotProd_32fc, kelsDotProd_32f32fc).ulps(1),
    reductions(reduced(DotProduct<Kel64f>{}), kelsDotProd_64f, kelsDotProd_64fc, kelsDotProd_64f64fc,
               kelsDotProd_32f64f, kelsDotProd_32fc64fc, kelsDotProd_32f32fc64fc)
        .ulps(1),
    reductions(exact, kelsDotProd_16s64s, kelsDotProd_16sc64sc, kelsDotProd_16s16sc64sc),
    reductions(rounded, kelsDotProd_16s32f, kelsDotProd_16sc32fc, kelsDotProd_16s16sc32fc).ulps(0),
    reductions(to_32, kelsDotProd_16s32s_Sfs, kelsDotProd_16sc32sc_Sfs, kelsDotProd_16s16sc32sc_Sfs),
    reductions(to_16, kelsDotProd_16s_Sfs, kelsDotProd_16sc_Sfs, kelsDotProd_16s16sc_Sfs),
    reductions(from_32, kelsDotProd_32s_Sfs, kelsDotProd_32sc_Sfs, kelsDotProd_32s32sc_Sfs, kelsDotProd_16s32s32s_Sfs),
};

const bool registered = add_rows("DotProducts", table);

using Shorts = std::vector<Kel16s>;
using Ints = std::vector<Kel32s>;

TEST(DotProd, LiteralValues) {
    const Shorts low(2, -32768), one{1}, minus_one{-1};
    EXPECT_EQ(reduce_with(kelsDotProd_16s32s_Sfs, low, low, 0), INT_MAX);
    EXPECT_EQ(reduce_with(kelsDotProd_16s64s, low, low), 2147483648);
    EXPECT_EQ(reduce_with(kelsDotProd_16s32s_Sfs, one, one, -31), 1 << 30);
    EXPECT_EQ(reduce_with(kelsDotProd_16s32s_Sfs, one, one, INT_MIN), 1 << 30);
    EXPECT_EQ(reduce_with(kelsDotProd_16s32s_Sfs, one, minus_one, -40), INT_MIN);
    EXPECT_EQ(reduce_with(kelsDotProd_32s_Sfs, Ints{1}, Ints{5}, 1), 2);
    EXPECT_EQ(reduce_with(kelsDotProd_32s_Sfs, Ints{1}, Ints{7}, 1), 4);
    EXPECT_EQ(reduce_with(kelsDotProd_32s_Sfs, Ints{-1}, Ints{5}, 1), -2);
    EXPECT_EQ(reduce_with(kelsDotProd_16s_Sfs, one, one, -20), 1 << 14);
    EXPECT_EQ(reduce_with(kelsDotProd_16s_Sfs, low, low, 40), reduce_with(kelsDotProd_16s_Sfs, low, low, 31));
    const std::vector<Kel32fc> a{{1, 2}}, b{{3, 4}};
    const Kel32fc product = reduce_with(kelsDotProd_32fc, a, b);
    EXPECT_EQ(product.re, -5);
    EXPECT_EQ(product.im, 10);
}

TEST(DotProd, ShortResultsWrapOnTheWay) {
    const Shorts x(4, -32768); // 2^32
    EXPECT_EQ(reduce_with(kelsDotProd_16s_Sfs, x, x, 0), 0);
    EXPECT_EQ(reduce_with(kelsDotProd_16s32s_Sfs, x, x, 0), INT_MAX);
    const Shorts y(2, -32768); // 2^31 becomes -2^31
    EXPECT_EQ(reduce_with(kelsDotProd_16s_Sfs, y, y, 20), -2048);
}

// Pairs of products of the lowest values do not fit 32 bits, and long sums of them not 48.
TEST(DotProd, IsExactAtAnyLength) {
    for (const int len : {1, 2, 63, 64, 65, 16384, 65535, 65536, 65537, 300001}) {
        const Shorts low(len, -32768), high(len, 32767);
        const std::vector<Kel16sc> z(len, {-32768, -32768}), w(len, {-32768, 32767});
        EXPECT_EQ(reduce_with(kelsDotProd_16s64s, low, low), Kel64s{len} << 30);
        EXPECT_EQ(reduce_with(kelsDotProd_16s64s, low, high), Kel64s{len} * -32768 * 32767);
        const Kel64sc square = reduce_with(kelsDotProd_16sc64sc, z, z), other = reduce_with(kelsDotProd_16sc64sc, z, w);
        EXPECT_EQ(square.re, 0);
        EXPECT_EQ(square.im, Kel64s{len} << 31);
        EXPECT_EQ(other.re, Kel64s{len} * 32768 * 65535);
        EXPECT_EQ(other.im, Kel64s{len} * 32768);
        const Kel64sc mixed = reduce_with(kelsDotProd_16s16sc64sc, low, w);
        EXPECT_EQ(mixed.re, Kel64s{len} << 30);
        EXPECT_EQ(mixed.im, Kel64s{len} * -32768 * 32767);
    }
}

// Running sums far beyond 64 bits that come back.
TEST(DotProd, LongSumsOfIntegers) {
    const int len = 100001;
    Ints x(len, INT_MIN), y(len, INT_MIN);
    for (int i = 0; i < len / 2; ++i) y[2 * i] = INT_MAX;
    // Half the products are 2^62, the others 2^31 - 2^62, and one more is 2^62.
    EXPECT_EQ(reduce_with(kelsDotProd_32s_Sfs, x, y, 31), INT_MAX);
    x.back() = 0;
    EXPECT_EQ(reduce_with(kelsDotProd_32s_Sfs, x, y, 31), len / 2);
    EXPECT_EQ(reduce_with(kelsDotProd_32s_Sfs, x, y, 24), len / 2 * 128);
    EXPECT_EQ(reduce_with(kelsDotProd_32s_Sfs, x, Ints(len, INT_MAX), 31), INT_MIN);
}

/// Products that cancel to 2^-40, among a million terms up to 2^40.
struct Cancelling {
    std::vector<Kel64f> x, y;

    Cancelling() {
        Random random("cancellation");
        for (int i = 0; i < 500000; ++i) {
            const Kel64f a = random.uniform(-1, 1) * std::exp2(random.below(20)), b = random.uniform(-1, 1) * 0x1p20;
            for (const Kel64f sign : {1, -1}) {
                x.push_back(sign * a);
                y.push_back(b);
            }
        }
        for (std::size_t i = x.size() - 1; i > 0; --i) {
            const int j = random.below(static_cast<int>(i + 1));
            std::swap(x[i], x[j]);
            std::swap(y[i], y[j]);
        }
        x.push_back(0x1p-20);
        y.push_back(0x1p-20);
    }
};

TEST(DotProd, CancellationInDoubles) {
    const Cancelling data;
    EXPECT_NEAR(reduce_with(kelsDotProd_64f, data.x, data.y), 0x1p-40, 0x1p-46);
    std::vector<Kel64fc> z, w;
    for (std::size_t i = 0; i < data.x.size(); ++i) {
        z.push_back({data.x[i], -data.x[i]});
        w.push_back({data.y[i], data.y[i]});
    }
    const Kel64fc product = reduce_with(kelsDotProd_64fc, z, w);
    EXPECT_NEAR(product.re, 0x1p-39, 0x1p-45);
    EXPECT_NEAR(product.im, 0, 0x1p-45);
}

TEST(DotProd, CancellationOfSinglesInDoubles) {
    const Cancelling data;
    const std::vector<Kel32f> x(data.x.begin(), data.x.end()), y(data.y.begin(), data.y.end());
    EXPECT_NEAR(reduce_with(kelsDotProd_32f64f, x, y), 0x1p-40, 0x1p-46);
}

TEST(DotProd, ProductsMayLeaveTheRangeOfDoubles) {
    const std::vector<Kel64f> large(20, 1e300), small(20, 1e-170), none(20);
    std::vector<Kel64f> x(20, 1e300);
    for (int i = 0; i < 10; ++i) x[i] = -1e300;
    x.back() = 2;
    EXPECT_EQ(reduce_with(kelsDotProd_64f, large, large), HUGE_VAL);
    EXPECT_DOUBLE_EQ(reduce_with(kelsDotProd_64f, large, small), 2e131);
    EXPECT_EQ(reduce_with(kelsDotProd_64f, small, none), 0);
    const std::vector<Kel64f> tiny(1000, 0x1p-538), again(1000, 0x1.8p-538); // products are below every double
    EXPECT_EQ(reduce_with(kelsDotProd_64f, tiny, again), 375 * 0x1p-1074);
    const Kel64f reference = static_cast<Kel64f>(sums<ExtendedSum>(x.data(), large.data(), 20).first.value());
    EXPECT_EQ(reduce_with(kelsDotProd_64f, x, large), reference);
}

} // namespace
