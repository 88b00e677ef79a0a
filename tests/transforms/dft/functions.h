// The functions of one element type's transforms of any length, under names that a test can use for both types; and
// references by definition.
#pragma once

#include "kels/dft.h"
#include "support/random_data.h"
#include "transforms/reference.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace kels_test {

inline constexpr int flags[] = {kelFftNormFwd, kelFftNormInv, kelFftNormSqrt, kelFftNormNone};

template <class Plan>
struct DftPlanFunctions {
    KelStatus (*make)(Plan**, int, int, int);
    KelStatus (*release)(Plan*);
    KelStatus (*buffer_size)(const Plan*, int*);
};

#define KELS_PLAN_FUNCTIONS(kind)                                                                                      \
    { kelsDFTInitAlloc_##kind, kelsDFTFree_##kind, kelsDFTGetBufSize_##kind }

template <class T>
struct Dft;

template <>
struct Dft<Kel32f> {
    using Plan = KelsDftPlan_32f;
    using Sample = Kel32fc;
    using Real = KelStatus (*)(const Kel32f*, Kel32f*, const Plan*, Kel8u*);
    static constexpr double eps = 0x1p-23;
    static constexpr DftPlanFunctions<Plan> complex = KELS_PLAN_FUNCTIONS(C_32fc), split = KELS_PLAN_FUNCTIONS(C_32f),
                                            real = KELS_PLAN_FUNCTIONS(R_32f);
    static constexpr auto forward = kelsDFTFwd_CToC_32fc, inverse = kelsDFTInv_CToC_32fc;
    static constexpr auto split_forward = kelsDFTFwd_CToC_32f, split_inverse = kelsDFTInv_CToC_32f;
    static constexpr Real to[] = {kelsDFTFwd_RToPerm_32f, kelsDFTFwd_RToPack_32f, kelsDFTFwd_RToCCS_32f};
    static constexpr Real from[] = {kelsDFTInv_PermToR_32f, kelsDFTInv_PackToR_32f, kelsDFTInv_CCSToR_32f};
};

template <>
struct Dft<Kel64f> {
    using Plan = KelsDftPlan_64f;
    using Sample = Kel64fc;
    using Real = KelStatus (*)(const Kel64f*, Kel64f*, const Plan*, Kel8u*);
    static constexpr double eps = 0x1p-52;
    static constexpr DftPlanFunctions<Plan> complex = KELS_PLAN_FUNCTIONS(C_64fc), split = KELS_PLAN_FUNCTIONS(C_64f),
                                            real = KELS_PLAN_FUNCTIONS(R_64f);
    static constexpr auto forward = kelsDFTFwd_CToC_64fc, inverse = kelsDFTInv_CToC_64fc;
    static constexpr auto split_forward = kelsDFTFwd_CToC_64f, split_inverse = kelsDFTInv_CToC_64f;
    static constexpr Real to[] = {kelsDFTFwd_RToPerm_64f, kelsDFTFwd_RToPack_64f, kelsDFTFwd_RToCCS_64f};
    static constexpr Real from[] = {kelsDFTInv_PermToR_64f, kelsDFTInv_PackToR_64f, kelsDFTInv_CCSToR_64f};
};

template <class Plan>
auto make_dft(const DftPlanFunctions<Plan>& functions, int len, int flag = kelFftNormNone) {
    Plan* plan = nullptr;
    EXPECT_EQ(functions.make(&plan, len, flag, kelHintDefault), kelStatusOk) << "length " << len;
    return std::unique_ptr<Plan, KelStatus (*)(Plan*)>(plan, functions.release);
}

template <class T>
std::vector<T> dft_noise(int len, std::size_t count) {
    Random random("length " + std::to_string(len));
    std::vector<T> x(count);
    for (T& v : x) v = static_cast<T>(random.uniform(-1, 1));
    return x;
}

/// What a flag multiplies by, in the direction of the sign.
inline long double dft_scale(int flag, int len, int sign) {
    const long double n = len;
    if (flag == kelFftNormSqrt) return 1 / std::sqrt(n);
    return flag == (sign < 0 ? kelFftNormFwd : kelFftNormInv) ? 1 / n : 1;
}

/// Bins of the transform of x by definition: all of a short one, some of a long one.
struct Bins {
    std::vector<std::size_t> numbers;
    std::vector<Extended> values;
};

inline Bins reference_bins(const std::vector<Extended>& x, int sign, std::size_t most = 400) {
    const std::size_t n = x.size();
    std::vector<Extended> roots(n);
    for (std::size_t k = 0; k < n; ++k) roots[k] = root_of_unity(sign, k, n);
    Random random("bins");
    Bins bins;
    for (std::size_t i = 0; i < std::min(n, most); ++i) {
        const std::size_t k = n <= most ? i : random.bits() % n;
        Extended sum = 0;
        for (std::size_t j = 0, at = 0; j < n; ++j, at = (at + k) % n) sum += x[j] * roots[at];
        bins.numbers.push_back(k);
        bins.values.push_back(sum);
    }
    return bins;
}

/// Relative RMS error of the bins, the wanted ones times scale.
template <class F>
double relative_rms(const Bins& wanted, long double scale, F&& got) {
    long double error = 0, level = 0;
    for (std::size_t i = 0; i < wanted.numbers.size(); ++i) {
        const Extended v = wanted.values[i] * scale;
        error += std::norm(static_cast<Extended>(got(wanted.numbers[i])) - v);
        level += std::norm(v);
    }
    return static_cast<double>(std::sqrt(error / level));
}

inline bool has_small_factors(int len) {
    for (const int p : {2, 3, 5, 7, 11, 13})
        while (len % p == 0) len /= p;
    return len == 1;
}

/// The told error: lengths with other factors may go through a convolution of L points. The errors of fewer than eight
/// values do not average.
inline double dft_bound(double eps, int len) {
    const double n = std::max(len, 8);
    if (has_small_factors(len)) return 0.6 * eps * std::sqrt(std::log2(n));
    return 4 * eps * std::sqrt(std::ceil(std::log2(2 * n - 1)));
}

} // namespace kels_test
