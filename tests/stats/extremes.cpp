// Extremes, their places, extremes of each pair, and the bits of the largest magnitude.

#include "kels/statistics.h"
#include "stats/reference.h"
#include "support/random_data.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

namespace {

using namespace kels_test;

// References

/// A number whose order is that of the bits of a real one.
template <class T>
auto rank(T x) {
    if constexpr (std::is_integral_v<T>) {
        return x;
    } else {
        using Bits = std::conditional_t<sizeof(T) == 4, std::int32_t, std::int64_t>;
        const auto bits = std::bit_cast<Bits>(x);
        return bits < 0 ? static_cast<Bits>(bits ^ std::numeric_limits<Bits>::max()) : bits;
    }
}

constexpr auto max_by_bits = reduced([]<class T>(const T* x, int len) {
    return *std::max_element(x, x + len, [](T a, T b) { return rank(a) < rank(b); });
});
constexpr auto min_by_bits = reduced([]<class T>(const T* x, int len) {
    return *std::min_element(x, x + len, [](T a, T b) { return rank(a) < rank(b); });
});

/// A running extreme, element by element.
template <class Replaces>
constexpr auto running(Replaces) {
    return whole([]<class T>(const T* x, T* extreme, int* index, int len) {
        *index = 0;
        for (int i = 1; i < len; ++i)
            if (Replaces{}(x[i], x[*index])) *index = i;
        *extreme = x[*index];
    });
}
constexpr auto max_and_index = running([](auto x, auto max) { return x > max; });
constexpr auto min_and_index = running([](auto x, auto min) { return !(x >= min); });

constexpr auto larger = each([](auto src, auto dst) { return dst >= src ? dst : src; });
constexpr auto smaller = each([](auto src, auto dst) { return dst > src ? src : dst; });

/// Tries one power of two after the other.
constexpr auto integer_order = whole([]<class T>(const T* x, int* order, int len) {
    *order = 0;
    for (int i = 0; i < len; ++i)
        while (std::abs(static_cast<long long>(x[i])) >= 1LL << *order) ++*order;
});
constexpr auto real_order = whole([]<class T>(const T* x, int* order, int len) {
    T largest = 0;
    bool odd = false;
    for (int i = 0; i < len; ++i)
        if (std::isfinite(x[i]))
            largest = std::max(largest, std::abs(x[i]));
        else
            odd = true;
    *order = 0;
    if (largest > 0) std::frexp(largest, order);
    const bool denormal = largest > 0 && largest < std::numeric_limits<T>::min();
    if (denormal) *order = std::numeric_limits<T>::min_exponent - 1;
    return denormal || odd ? kelStatusNanArg : kelStatusOk;
});

const Rows table = {
    reductions(max_by_bits, kelsMax_16s, kelsMax_32f, kelsMax_64f),
    reductions(min_by_bits, kelsMin_16s, kelsMin_32f, kelsMin_64f),
    // So long that the first of equals may be blocks away.
    reductions(max_and_index, kelsMaxIndx_16s, kelsMaxIndx_32f, kelsMaxIndx_64f).nullable({3}).lengths({10000, 39001}),
    reductions(min_and_index, kelsMinIndx_16s, kelsMinIndx_32f, kelsMinIndx_64f).nullable({3}).lengths({10000, 39001}),
    in_place(larger, kelsMaxEvery_16s_I, kelsMaxEvery_32s_I, kelsMaxEvery_32f_I),
    in_place(smaller, kelsMinEvery_16s_I, kelsMinEvery_32s_I, kelsMinEvery_32f_I),
    reductions(integer_order, kelsMaxOrder_16s, kelsMaxOrder_32s).length_first(),
    reductions(real_order, kelsMaxOrder_32f, kelsMaxOrder_64f).length_first(),
};

const bool registered = add_rows("Extremes", table);

TEST(Order, OfSubnormalsAloneIsWarnedOf) {
    const Kel32f x[] = {0, std::numeric_limits<Kel32f>::denorm_min(), -std::numeric_limits<Kel32f>::min() / 2};
    const Kel64f y[] = {std::numeric_limits<Kel64f>::denorm_min(), 0};
    int order;
    EXPECT_EQ(kelsMaxOrder_32f(x, 3, &order), kelStatusNanArg);
    EXPECT_EQ(order, -126);
    EXPECT_EQ(kelsMaxOrder_64f(y, 2, &order), kelStatusNanArg);
    EXPECT_EQ(order, -1022);
}

TEST(PlaceOfExtreme, WithoutOneTheBitsDecide) {
    const Kel32f nan = std::nanf("");
    const Kel32f x[] = {-0.0F, 0.0F, nan, -nan};
    Kel32f value;
    ASSERT_EQ(kelsMaxIndx_32f(x, 2, &value, nullptr), kelStatusOk);
    EXPECT_FALSE(std::signbit(value));
    ASSERT_EQ(kelsMinIndx_32f(x, 2, &value, nullptr), kelStatusOk);
    EXPECT_TRUE(std::signbit(value));
    ASSERT_EQ(kelsMaxIndx_32f(x, 4, &value, nullptr), kelStatusOk);
    EXPECT_TRUE(std::isnan(value) && !std::signbit(value));
    Kel16s small[] = {3, 9, -4}, least;
    ASSERT_EQ(kelsMinIndx_16s(small, 3, &least, nullptr), kelStatusOk);
    EXPECT_EQ(least, -4);
}

} // namespace
