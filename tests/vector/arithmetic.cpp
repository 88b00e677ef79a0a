// Sums, differences, products and absolute values. Integers are held against exact evaluation to the last bit.

#include "kels/arithmetic.h"
#include "kels/spectrum.h"
#include "support/control_state.h"
#include "support/exact.h"
#include "support/literals.h"
#include "support/random_data.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

using namespace kels_test;

// References. An operation is defined on extended-precision numbers, which hold every result here exactly; on integers
// they are scaled to the result's type R, on complex numbers they apply to both parts.

template <class R, class Exact>
auto stored(Exact t, int scale) {
    if constexpr (type_of<R>().kind >= Kind::f32)
        return t;
    else if constexpr (ComplexSample<R>)
        return R{scaled<decltype(R::re)>(t.re, scale), scaled<decltype(R::re)>(t.im, scale)};
    else
        return scaled<R>(t, scale);
}

template <class R, class Operation>
struct OnElements {
    template <class A, class B>
    auto operator()(A a, B b, int scale = 0) const {
        using Result = std::conditional_t<std::is_void_v<R>, A, R>;
        if constexpr (ComplexSample<A>)
            return stored<Result>(ExactComplex{Operation{}(a.re, b.re), Operation{}(a.im, b.im)}, scale);
        else
            return stored<Result>(Operation{}(a, b), scale);
    }
};

template <class R = void, class Operation>
constexpr auto parts_by(Operation) {
    return each(OnElements<R, Operation>{});
}

constexpr auto plus = [](long double a, long double b) { return a + b; };
constexpr auto minus = [](long double a, long double b) { return a - b; };
constexpr auto from = [](long double a, long double b) { return b - a; };
constexpr auto times = [](long double a, long double b) { return a * b; };

constexpr auto complex_times =
    each([]<class T>(T a, T b, auto... scale) { return stored<T>(complex_product(a, b), (0 + ... + scale)); });

// Real floating-point constants that are not computed with.

constexpr auto plus_constant = each([](long double a, auto val) { return val < 0 || val > 0 ? a + val : a; });
constexpr auto minus_constant = each([](long double a, auto val) { return val == 0 ? a : a - val; });
constexpr auto times_constant = each([](long double a, auto val) {
    return !(val < 1 || val > 1) ? a : val == 0 ? 0.0L : a * val;
});

constexpr auto magnitude = each([]<class T>(T a) {
    if constexpr (std::is_integral_v<T>)
        return scaled<T>(std::fabs(static_cast<long double>(a)));
    else
        return std::fabs(a);
});

const double nan = std::numeric_limits<double>::quiet_NaN();

Rows with_telling_constants(const Rows& row) {
    return row.values(0, {0.0, 1.0, nan, -0.0, -1.0, 0.1, -3.5, 1e-30, HUGE_VAL, 1e30, 2.0, -nan}).ulps(0, 1);
}

const Rows table = {
    rows(parts_by(plus), kelsAdd_8u_Sfs, kelsAdd_16u, kelsAdd_16s, kelsAdd_16s_Sfs, kelsAdd_32u, kelsAdd_32s_Sfs,
         kelsAddC_8u_Sfs, kelsAddC_16s_Sfs, kelsAddC_16sc_Sfs, kelsAddC_32s_Sfs, kelsAddC_32sc_Sfs, kelsAdd_32f,
         kelsAddC_32fc, kelsAdd_64f, kelsAddC_64fc)
        .in_place(kelsAdd_8u_ISfs, kelsAdd_16s_I, kelsAdd_16s_ISfs, kelsAdd_32s_ISfs, kelsAddC_8u_ISfs,
                  kelsAddC_16s_ISfs, kelsAddC_16s_I, kelsAddC_16sc_ISfs, kelsAddC_32s_ISfs, kelsAddC_32sc_ISfs,
                  kelsAdd_32f_I, kelsAddC_32fc_I, kelsAdd_64f_I, kelsAddC_64fc_I)
        .ulps(0, 1),
    rows(parts_by<Kel16u>(plus), kelsAdd_8u16u),
    rows(parts_by<Kel32f>(plus), kelsAdd_16s32f),
    rows(parts_by(plus), kelsAdd_16sc_Sfs, kelsAdd_32sc_Sfs, kelsAdd_32fc, kelsAdd_64fc)
        .in_place(kelsAdd_16sc_ISfs, kelsAdd_32sc_ISfs, kelsAdd_32fc_I, kelsAdd_64fc_I)
        .length_first()
        .ulps(0, 1),
    rows(parts_by(from), kelsSub_8u_Sfs, kelsSub_16s, kelsSub_16s_Sfs, kelsSub_32s_Sfs, kelsSubCRev_8u_Sfs,
         kelsSubCRev_16s_Sfs, kelsSubCRev_16sc_Sfs, kelsSubCRev_32s_Sfs, kelsSubCRev_32sc_Sfs, kelsSub_32f,
         kelsSubCRev_32f, kelsSubCRev_32fc, kelsSub_64f, kelsSubCRev_64f, kelsSubCRev_64fc)
        .in_place(kelsSub_8u_ISfs, kelsSub_16s_I, kelsSub_16s_ISfs, kelsSub_32s_ISfs, kelsSubCRev_8u_ISfs,
                  kelsSubCRev_16s_ISfs, kelsSubCRev_16sc_ISfs, kelsSubCRev_32s_ISfs, kelsSubCRev_32sc_ISfs,
                  kelsSub_32f_I, kelsSubCRev_32f_I, kelsSubCRev_32fc_I, kelsSub_64f_I, kelsSubCRev_64f_I,
                  kelsSubCRev_64fc_I)
        .ulps(0, 1),
    rows(parts_by<Kel32f>(from), kelsSub_16s32f),
    rows(parts_by(from), kelsSub_16sc_Sfs, kelsSub_32sc_Sfs, kelsSub_32fc, kelsSub_64fc)
        .in_place(kelsSub_16sc_ISfs, kelsSub_32sc_ISfs, kelsSub_32fc_I, kelsSub_64fc_I)
        .length_first()
        .ulps(0, 1),
    rows(parts_by(times), kelsMul_8u_Sfs, kelsMul_16s, kelsMul_16s_Sfs, kelsMul_32s_Sfs, kelsMulC_8u_Sfs,
         kelsMulC_16s_Sfs, kelsMulC_32s_Sfs, kelsMul_32f, kelsMul_64f)
        .in_place(kelsMul_8u_ISfs, kelsMul_16s_I, kelsMul_16s_ISfs, kelsMul_32s_ISfs, kelsMulC_8u_ISfs,
                  kelsMulC_16s_ISfs, kelsMulC_16s_I, kelsMulC_32s_ISfs, kelsMul_32f_I, kelsMul_64f_I)
        .ulps(0, 1),
    rows(parts_by<Kel16u>(times), kelsMul_8u16u),
    rows(parts_by<Kel32f>(times), kelsMul_16s32f),
    rows(parts_by<Kel32s>(times), kelsMul_16s32s_Sfs),
    rows(parts_by<Kel16s>(times), kelsMul_16u16s_Sfs),
    rows(complex_times, kelsMul_16sc_Sfs, kelsMul_32sc_Sfs, kelsMulC_16sc_Sfs, kelsMulC_32sc_Sfs, kelsMul_32fc,
         kelsMulC_32fc)
        .in_place(kelsMul_16sc_ISfs, kelsMul_32sc_ISfs, kelsMulC_16sc_ISfs, kelsMulC_32sc_ISfs, kelsMul_32fc_I,
                  kelsMulC_32fc_I)
        .ulps(1),
    rows(complex_times, kelsMul_64fc, kelsMulC_64fc).in_place(kelsMul_64fc_I, kelsMulC_64fc_I).every_size().ulps(2),
    with_telling_constants(
        Rows{rows(plus_constant, kelsAddC_32f, kelsAddC_64f).in_place(kelsAddC_32f_I, kelsAddC_64f_I),
             rows(minus_constant, kelsSubC_32f, kelsSubC_64f).in_place(kelsSubC_32f_I, kelsSubC_64f_I),
             rows(times_constant, kelsMulC_32f, kelsMulC_64f).in_place(kelsMulC_32f_I, kelsMulC_64f_I)}),
    rows(parts_by(minus), kelsSubC_8u_Sfs, kelsSubC_16s_Sfs, kelsSubC_16sc_Sfs, kelsSubC_32s_Sfs, kelsSubC_32sc_Sfs,
         kelsSubC_32fc, kelsSubC_64fc)
        .in_place(kelsSubC_8u_ISfs, kelsSubC_16s_ISfs, kelsSubC_16s_I, kelsSubC_16sc_ISfs, kelsSubC_32s_ISfs,
                  kelsSubC_32sc_ISfs, kelsSubC_32fc_I, kelsSubC_64fc_I)
        .ulps(0, 1),
    rows(magnitude, kelsAbs_16s, kelsAbs_32f, kelsAbs_64f)
        .in_place(kelsAbs_16s_I, kelsAbs_32f_I, kelsAbs_64f_I)
        .ulps(0),
};

// Where nothing is computed, signalling NaNs, payloads and negative zeros come through.

constexpr auto untouched = whole([]<class T>(const T* a, T* d, int len, T) { std::memcpy(d, a, len * sizeof(T)); });
constexpr auto zeroed = whole([](const Kel32f*, Kel32f* d, int len, Kel32f) { std::fill_n(d, len, 0.0F); });
constexpr auto sign_cleared = whole([](const Kel32f* a, Kel32f* d, int len) {
    std::memcpy(d, a, len * sizeof *d);
    for (int i = 0; i < len; ++i) reinterpret_cast<unsigned char*>(d + i)[3] &= 0x7F;
});

const Rows not_computed = {
    rows(untouched, kelsAddC_32f, kelsAddC_64f)
        .in_place(kelsAddC_32f_I, kelsAddC_64f_I)
        .values(0, {0.0, -0.0, nan, -nan}),
    rows(untouched, kelsSubC_32f, kelsSubC_64f).in_place(kelsSubC_32f_I, kelsSubC_64f_I).values(0, {0.0, -0.0}),
    rows(untouched, kelsMulC_32f, kelsMulC_64f).in_place(kelsMulC_32f_I, kelsMulC_64f_I).values(0, {1.0, nan, -nan}),
    rows(zeroed, kelsMulC_32f).in_place(kelsMulC_32f_I).values(0, {0.0, -0.0}),
    rows(sign_cleared, kelsAbs_32f).in_place(kelsAbs_32f_I),
};
const bool registered = add_rows("Arithmetic", table) && add_rows("NotComputed", not_computed.driven_elsewhere());

TEST(Mul, ExtremesInEveryPart) {
    expect_results(kelsMul_16sc_Sfs, {{-32768, -32768}}, {{-32768, -32768}}, {{0, 32767}}, 0);
    expect_results(kelsMul_32sc_Sfs, {{INT_MIN, INT_MIN}}, {{INT_MIN, INT_MIN}}, {{0, 1}}, 63);
}

// Parts that cancel to their last bits, at every size of the factors: what a plain product gets wrong.
template <class Sample>
void expect_cancelling_products(KelStatus (*function)(const Sample*, Sample*, int), double ulps) {
    using T = decltype(Sample::re);
    constexpr int digits = std::numeric_limits<T>::digits;
    Random random("cancelling products");
    for (int exponent : {-400, -60, -10, 0, 10, 60, 300, 500}) {
        if (sizeof(T) == 4) exponent /= 8;
        std::vector<Sample> a(1000), b(1000), d;
        for (std::size_t i = 0; i < a.size(); ++i) {
            // re = x y - z w with z w just beside x y
            const T x = static_cast<T>(std::ldexp(random.uniform(1, 2), exponent)),
                    y = static_cast<T>(random.uniform(1, 2));
            const T z = static_cast<T>(x * static_cast<T>(1 + random.below(9) * std::ldexp(1.0, 2 - digits)));
            a[i] = {x, z};
            b[i] = {y, static_cast<T>(static_cast<long double>(x) * y / z)};
        }
        d = b;
        ASSERT_EQ(function(a.data(), d.data(), static_cast<int>(a.size())), kelStatusOk);
        for (std::size_t i = 0; i < a.size(); ++i) {
            const T wanted = static_cast<T>(complex_product(a[i], b[i]).re);
            ASSERT_LE(std::fabs(d[i].re - wanted), ulps * ulp(wanted)) << exponent << " at " << i;
        }
    }
}

TEST(ComplexProduct, CancellationKeepsItsLastBits) {
    expect_cancelling_products(kelsMul_32fc_I, 1);
    expect_cancelling_products(kelsMul_64fc_I, 2);
}

// Zeros by operand, by cancellation and by underflow: each with the sign of the exact result.
TEST(ComplexProduct, ZerosHaveTheirSign) {
    const double values[] = {0.0, -0.0, 0.027, -0.027, 1e308, 5e-324, -5e-324, 1e-300, -2.5};
    for (double a : values)
        for (double b : values)
            for (double c : values)
                for (double d : values) {
                    const Kel64fc x = {a, b};
                    Kel64fc y = {c, d};
                    const auto wanted = complex_product(x, y);
                    kelsMul_64fc_I(&x, &y, 1);
                    EXPECT_EQ(std::signbit(y.re), std::signbit(wanted.re)) << a << ' ' << b << ' ' << c << ' ' << d;
                    EXPECT_EQ(std::signbit(y.im), std::signbit(wanted.im)) << a << ' ' << b << ' ' << c << ' ' << d;
                }
}

// Products beyond the range whose difference is inside it.
TEST(ComplexProduct, IntermediateOverflowDoesNoHarm) {
    const std::vector<Kel64fc> a(40, {0x1p600, 0x1p600});
    std::vector<Kel64fc> b(40, {1, 2}), want(40, {-0x1p600, 3 * 0x1p600});
    b[17] = {0x1.8p440, 0x1.8p440};
    b[31] = {0x1p423, 0x1p423};
    want[17] = want[31] = {0, HUGE_VAL};
    expect_results(kelsMul_64fc, a, b, want);
}

/// A product of complex vectors, as one of reals: the number of reals ahead of the pairs, and the call.
struct ProductOfPairs {
    int ahead;
    bool conjugates;
    KelStatus (*call)(const Kel64f* a, const Kel64f* b, Kel64f* d, int pairs);
};

const Kel64fc* pairs(const Kel64f* p) { return reinterpret_cast<const Kel64fc*>(p); }
Kel64fc* pairs(Kel64f* p) { return reinterpret_cast<Kel64fc*>(p); }

template <auto Function>
KelStatus in_place_of_second(const Kel64f* a, const Kel64f* b, Kel64f* d, int n) {
    std::memcpy(d, b, static_cast<std::size_t>(2 * n + 2) * sizeof *d);
    return Function(a, d, 2 * n + 2);
}

const ProductOfPairs products_of_pairs[] = {
    {0, false, [](auto* a, auto* b, auto* d, int n) { return kelsMul_64fc(pairs(a), pairs(b), pairs(d), n); }},
    {1, false, [](auto* a, auto* b, auto* d, int n) { return kelsMulPack_64f(a, b, d, 2 * n + 2); }},
    {2, false, [](auto* a, auto* b, auto* d, int n) { return kelsMulPerm_64f(a, b, d, 2 * n + 2); }},
    {1, false, in_place_of_second<kelsMulPack_64f_I>},
    {2, false, in_place_of_second<kelsMulPerm_64f_I>},
    {1, true, in_place_of_second<kelsMulPackConj_64f_I>},
    {0, false, [](auto* a, auto* b, auto* d, int n) { return kelsMulC_64fc(pairs(a), *pairs(b), pairs(d), n); }},
};

// Parts that cancel, beside neighbours for which the quick way does not do, at any place and in any mode.
TEST(ComplexProduct, NeighboursDoNotMatter) {
    constexpr Kel64f inf = std::numeric_limits<Kel64f>::infinity();
    const Kel64fc neighbours[] = {{0, 0},   {1e-310, 0},    {0, 1e-200}, {inf, 1},
                                  {1, nan}, {1e300, 1e300}, {-0.0, 5},   {3, 4}};
    constexpr int n = 45;
    std::vector<Kel64f> a(2 * n + 2, 1.0), b(2 * n + 2, 1.0), d(2 * n + 2);
    for (const ProductOfPairs& product : products_of_pairs)
        for (const double scale : {1.0, 0x1p-460, 0x1p500})
            for (const Kel64fc& neighbour : neighbours)
                for (int i = 0; i < n; ++i) {
                    const Kel64f sign = product.conjugates ? -1 : 1;
                    Kel64fc *x = pairs(a.data() + product.ahead), *y = pairs(b.data() + product.ahead);
                    std::fill_n(x, n, Kel64fc{(1 + 0x1p-40) * scale, scale});
                    std::fill_n(y, n, Kel64fc{(1 - 0x1p-40) * scale, sign * scale});
                    x[i] = neighbour;
                    ASSERT_EQ(product.call(a.data(), b.data(), d.data(), n), kelStatusOk);
                    const Kel64fc* z = pairs(d.data() + product.ahead);
                    for (int j = 0; j < n; ++j)
                        if (j != i) {
                            ASSERT_EQ(z[j].re, -0x1p-80 * scale * scale)
                                << "product " << &product - products_of_pairs << ", " << i << ' ' << j;
                        }
                }
}

// Where an overflow gives the largest number in place of an infinity.
TEST(ComplexProduct, OverflowOnTheWayInEveryMode) {
    for (const std::uint32_t mxcsr : {0x1F80, 0x3F80, 0x5F80, 0x7F80}) {
        const Kel64fc a = {1e200, 1e200};
        Kel64fc b = {1e200, 5e199}, c = {1e108, 1.5e108};
        under({0x037F, mxcsr}, [&] { return kelsMul_64fc_I(&a, &b, 1); });
        under({0x037F, mxcsr}, [&] { return kelsMul_64fc_I(&a, &c, 1); });
        EXPECT_GE(b.re, std::numeric_limits<Kel64f>::max());
        EXPECT_DOUBLE_EQ(c.re, -5e307);
    }
}

} // namespace
