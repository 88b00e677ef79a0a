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

/// What `of` makes of the sum of each part.
template <class S, class A, class B, class Of>
auto of_sums(const A* a, const B* b, int len, Of of) {
    const auto [re, im] = sums<S>(a, b, len);
    return of_parts<ComplexSample<B>>(re, im, of);
}

template <class R>
struct DotProduct {
    template <class A, class B>
    auto operator()(const A* a, const B* b, int len) const {
        return of_sums<ExtendedSum>(a, b, len, [](const ExtendedSum& s) { return s.result<R>(); });
    }
};

/// What Of makes of the sum of each part, and of a scale factor.
template <class Of>
constexpr auto integer_sums(Of) {
    return reduced([](auto* a, auto* b, int len, auto... factor) {
        return of_sums<IntegerSum>(a, b, len, [=](const IntegerSum& s) { return Of{}(s, factor...); });
    });
}

constexpr auto exact = integer_sums([](auto& s) { return static_cast<Kel64s>(s.value()); });
constexpr auto rounded = integer_sums([](auto& s) { return Within{s.value(), 0}; });
/// 16-bit sources, 32-bit result.
constexpr auto to_32 = integer_sums([](auto& s, int factor) {
    const long double t = s.value();
    return scaled<Kel32s>(t, std::clamp(factor, t < 0 ? -31 : -30, 31));
});
constexpr auto to_16 =
    integer_sums([](auto& s, int factor) { return scaled<Kel16s>(s.wrapped(), std::clamp(factor, -14, 31)); });
/// 32-bit sources.
constexpr auto from_32 =
    integer_sums([](auto& s, int factor) { return scaled<Kel32s>(s.value(), std::clamp(factor, -31, 31)); });

const Rows table = {
    reductions(reduced(DotProduct<Kel32f>{}), kelsDotProd_32f, kelsDotProd_32fc, kelsDotProd_32f32fc).ulps(1),
    reductions(reduced(DotProduct<Kel64f>{}), kelsDotProd_64f, kelsDotProd_64fc, kelsDotProd_64f64fc,
               kelsDotProd_32f64f, kelsDotProd_32fc64fc, kelsDotProd_32f32fc64fc)
        .every_size()
        .ulps(1),
    reductions(exact, kelsDotProd_16s64s, kelsDotProd_16sc64sc, kelsDotProd_16s16sc64sc),
    reductions(rounded, kelsDotProd_16s32f, kelsDotProd_16sc32fc, kelsDotProd_16s16sc32fc).ulps(0),
    reductions(to_32, kelsDotProd_16s32s_Sfs, kelsDotProd_16sc32sc_Sfs, kelsDotProd_16s16sc32sc_Sfs),
    reductions(to_16, kelsDotProd_16s_Sfs, kelsDotProd_16sc_Sfs, kelsDotProd_16s16sc_Sfs),
    reductions(from_32, kelsDotProd_32s_Sfs, kelsDotProd_32sc_Sfs, kelsDotProd_32s32sc_Sfs, kelsDotProd_16s32s32s_Sfs),
};

const bool registered = add_rows("DotProducts", table);

using Ints = std::vector<Kel32s>;

TEST(DotProd, LiteralValues) {
    EXPECT_EQ(reduce_with(kelsDotProd_16s32s_Sfs, {1}, {1}, INT_MIN), 1 << 30);
    EXPECT_EQ(reduce_with(kelsDotProd_16s32s_Sfs, {1}, {-1}, -40), INT_MIN);
    EXPECT_EQ(reduce_with(kelsDotProd_16s_Sfs, {1}, {1}, -20), 1 << 14);
    EXPECT_EQ(reduce_with(kelsDotProd_32s_Sfs, {-1}, {5}, 1), -2);
    const Kel32fc product = reduce_with(kelsDotProd_32fc, {{1, 2}}, {{3, 4}});
    EXPECT_EQ(product.re, -5);
    EXPECT_EQ(product.im, 10);
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
    const std::vector<Kel32f> x(data.x.begin(), data.x.end()), y(data.y.begin(), data.y.end());
    EXPECT_NEAR(reduce_with(kelsDotProd_32f64f, x, y), 0x1p-40, 0x1p-46);
    std::vector<Kel64fc> z, w;
    for (std::size_t i = 0; i < data.x.size(); ++i) {
        z.push_back({data.x[i], -data.x[i]});
        w.push_back({data.y[i], data.y[i]});
    }
    const Kel64fc product = reduce_with(kelsDotProd_64fc, z, w);
    EXPECT_NEAR(product.re, 0x1p-39, 0x1p-45);
    EXPECT_NEAR(product.im, 0, 0x1p-45);
}

TEST(DotProd, ProductsMayLeaveTheRangeOfDoubles) {
    std::vector<Kel64f> x(20, 1e300);
    const std::vector<Kel64f> large = x, tiny(1000, 0x1p-538), more(1000, 0x1.8p-538);
    std::fill_n(x.begin(), 10, -1e300);
    x.back() = 2;
    EXPECT_EQ(reduce_with(kelsDotProd_64f, tiny, more), 375 * 0x1p-1074); // of products below every double
    EXPECT_EQ(reduce_with(kelsDotProd_64f, x, large),
              static_cast<Kel64f>(sums<ExtendedSum>(x.data(), large.data(), 20).first.value()));
}

} // namespace
