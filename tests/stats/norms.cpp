// Norms of vectors and of differences.

#include "kels/statistics.h"
#include "stats/reference.h"
#include "support/exact.h"
#include "support/random_data.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <type_traits>
#include <vector>

namespace {

using namespace kels_test;

// References: of one vector, and by way of the exact differences of two.

enum Norm { inf, l1, l2 };

template <class R>
Within norm_of(Norm norm, const std::vector<long double>& x) {
    ExtendedSum magnitudes, squares;
    long double largest = 0;
    for (const long double v : x) {
        if (std::fabs(v) > largest) largest = std::fabs(v);
        magnitudes.add(std::fabs(v));
        squares.add_product(v, v);
    }
    if (norm == inf) return {largest, 0};
    if (norm == l1) return magnitudes.result<R>();
    const long double root = std::sqrt(squares.value());
    return squares.result<R>(root, root > 0 ? 0.5L / root : 0);
}

template <class T>
std::vector<long double> elements(const T* x, int len) {
    return {x, x + len};
}
template <class T>
std::vector<long double> elements(const T* x, const T* y, int len) {
    std::vector<long double> d(len);
    for (int i = 0; i < len; ++i) d[i] = static_cast<long double>(x[i]) - y[i];
    return d;
}

/// Integers have no slack: their sums are exact.
template <Norm norm>
struct Reference {
    template <class T, class... More>
    Within operator()(const T* x, More... y_and_length) const {
        const Within exact = norm_of<T>(norm, elements(x, y_and_length...));
        return std::is_integral_v<T> ? Within{exact.value, 0} : exact;
    }
};

/// Bits beyond the point are dropped; the root is multiplied and rounded to double before.
template <Norm norm>
struct Scaled {
    Kel32s operator()(const Kel16s* x, int len, int factor) const { return result(elements(x, len), factor); }
    Kel32s operator()(const Kel16s* x, const Kel16s* y, int len, int factor) const {
        return result(elements(x, y, len), factor);
    }
    static Kel32s result(const std::vector<long double>& x, int factor) {
        const long double exact = std::ldexp(norm_of<Kel32f>(norm, x).value, -std::clamp(factor, -300, 300));
        if (exact >= INT_MAX) return INT_MAX;
        return static_cast<Kel32s>(std::trunc(norm == l2 ? static_cast<double>(exact) : exact));
    }
};

Rows in_range(const Rows& rows) { return rows.values(0, {0, 1, 2, 3, 8, 15, 30, -1, -2, -7, -16, -30}); }

const Rows table = {
    reductions(reduced(Reference<inf>{}), kelsNorm_Inf_16s32f, kelsNormDiff_Inf_16s32f).ulps(0),
    reductions(reduced(Reference<inf>{}), kelsNorm_Inf_32f, kelsNorm_Inf_64f, kelsNormDiff_Inf_32f),
    reductions(reduced(Reference<l1>{}), kelsNorm_L1_16s32f, kelsNormDiff_L1_16s32f).ulps(0),
    reductions(reduced(Reference<l1>{}), kelsNorm_L1_32f, kelsNorm_L1_64f, kelsNormDiff_L1_32f, kelsNormDiff_L1_64f)
        .every_size()
        .ulps(1),
    reductions(reduced(Reference<l2>{}), kelsNorm_L2_16s32f, kelsNorm_L2_32f, kelsNorm_L2_64f, kelsNormDiff_L2_16s32f,
               kelsNormDiff_L2_32f, kelsNormDiff_L2_64f)
        .every_size()
        .ulps(1),
    in_range(reductions(reduced(Scaled<inf>{}), kelsNorm_Inf_16s32s_Sfs, kelsNormDiff_Inf_16s32s_Sfs)),
    in_range(reductions(reduced(Scaled<l1>{}), kelsNorm_L1_16s32s_Sfs, kelsNormDiff_L1_16s32s_Sfs)),
    in_range(reductions(reduced(Scaled<l2>{}), kelsNorm_L2_16s32s_Sfs, kelsNormDiff_L2_16s32s_Sfs)),
    reductions(reduced(Reference<inf>{}), kelsNormDiff_Inf_64f).ulps(1),
};

const bool registered = add_rows("Norms", table);

TEST(Norm, LiteralValues) {
    EXPECT_EQ(reduce_with(kelsNorm_Inf_16s32s_Sfs, {-32768}, 1), 16384);
    EXPECT_EQ(reduce_with(kelsNorm_L1_16s32s_Sfs, {-32768, -32768}, -16), INT_MAX);
    EXPECT_EQ(reduce_with(kelsNorm_L2_16s32s_Sfs, {1, 1}, -10), 1448);
    EXPECT_EQ(reduce_with(kelsNorm_Inf_32f, {1, std::nanf(""), 2}), 2);
    EXPECT_EQ(reduce_with(kelsNorm_L2_64f, {3e300, 4e300}), 5e300);
}

// Differences that a rounded subtraction would lose.
TEST(NormDiff, DifferencesAreExact) {
    const int len = 1000;
    std::vector<Kel64f> x(len, 1), y(len, 0x1p-60);
    EXPECT_EQ(reduce_with(kelsNormDiff_L1_64f, x, y), static_cast<Kel64f>(len - len * 0x1p-60L));
    x.push_back(-1000);
    y.push_back(-1000);
    EXPECT_EQ(reduce_with(kelsNormDiff_L1_64f, x, y), static_cast<Kel64f>(len - len * 0x1p-60L));
}

} // namespace
