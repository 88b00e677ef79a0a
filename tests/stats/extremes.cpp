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
constexpr auto max_and_index = whole([]<class T>(const T* x, T* max, int* index, int len) {
    *max = x[0];
    *index = 0;
    for (int i = 1; i < len; ++i)
        if (x[i] > *max) {
            *max = x[i];
            *index = i;
        }
});
constexpr auto min_and_index = whole([]<class T>(const T* x, T* min, int* index, int len) {
    *min = x[0];
    *index = 0;
    for (int i = 1; i < len; ++i)
        if (!(x[i] >= *min)) {
            *min = x[i];
            *index = i;
        }
});

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
    reductions(max_and_index, kelsMaxIndx_16s, kelsMaxIndx_32f, kelsMaxIndx_64f).nullable({3}),
    reductions(min_and_index, kelsMinIndx_16s, kelsMinIndx_32f, kelsMinIndx_64f).nullable({3}),
    in_place(larger, kelsMaxEvery_16s_I, kelsMaxEvery_32s_I, kelsMaxEvery_32f_I),
    in_place(smaller, kelsMinEvery_16s_I, kelsMinEvery_32s_I, kelsMinEvery_32f_I),
    reductions(integer_order, kelsMaxOrder_16s, kelsMaxOrder_32s).length_first(),
    reductions(real_order, kelsMaxOrder_32f, kelsMaxOrder_64f).length_first(),
};

const bool registered = add_rows("Extremes", table);

template <class T>
using ValueAndPlace = KelStatus (*)(const T*, int, T*, int*);

/// The extreme of `x` is at `place`.
template <class T>
void expect_at(ValueAndPlace<T> function, const T* x, int len, int place) {
    T value;
    int index = -1;
    ASSERT_EQ(function(x, len, &value, &index), kelStatusOk);
    ASSERT_EQ(index, place) << "length " << len;
    ASSERT_EQ(rank(value), rank(x[place]));
}

template <class T>
void expect_first_of_equals(ValueAndPlace<T> max, ValueAndPlace<T> min) {
    Random random("places");
    std::vector<T> x(40000);
    for (int k = 0; k < 300; ++k) {
        const int start = random.below(8), len = 1 + random.below(k % 2 ? 100 : 39000);
        const int first = random.below(len), second = random.below(len);
        std::fill(x.begin(), x.end(), T{5});
        x[start + first] = x[start + second] = T{7};
        expect_at(max, &x[start], len, std::min(first, second));
        x[start + first] = x[start + second] = T{-7};
        expect_at(min, &x[start], len, std::min(first, second));
    }
}

TEST(PlaceOfExtreme, FirstOfEqualsAtAnyLengthAndAlignment) {
    expect_first_of_equals<Kel16s>(kelsMaxIndx_16s, kelsMinIndx_16s);
    expect_first_of_equals<Kel32f>(kelsMaxIndx_32f, kelsMinIndx_32f);
    expect_first_of_equals<Kel64f>(kelsMaxIndx_64f, kelsMinIndx_64f);
}

TEST(PlaceOfExtreme, ZerosAreEqual) {
    const Kel32f x[] = {-0.0F, 0.0F, -0.0F};
    expect_at<Kel32f>(kelsMaxIndx_32f, x, 3, 0);
    expect_at<Kel32f>(kelsMinIndx_32f, x + 1, 2, 0);
}

TEST(PlaceOfExtreme, NaNs) {
    const Kel32f nan = std::nanf("");
    std::vector<Kel32f> x(10000);
    for (std::size_t i = 0; i < x.size(); ++i) x[i] = static_cast<Kel32f>(i);
    const int len = static_cast<int>(x.size());
    x[9999] = nan;
    expect_at<Kel32f>(kelsMaxIndx_32f, x.data(), len, 9998);
    expect_at<Kel32f>(kelsMinIndx_32f, x.data(), len, 9999);
    expect_at<Kel32f>(kelsMinIndx_32f, x.data(), len - 1, 0);
    x[17] = x[6000] = nan;
    expect_at<Kel32f>(kelsMinIndx_32f, x.data(), len - 1, 6001);
    x[0] = nan;
    expect_at<Kel32f>(kelsMaxIndx_32f, x.data(), len, 0);
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
    EXPECT_EQ(kelsMaxIndx_32f(x, 0, &value, nullptr), kelStatusBadSize);
    EXPECT_EQ(kelsMaxIndx_32f(nullptr, 0, &value, nullptr), kelStatusNullPtr);
    Kel16s small[] = {3, 9, -4}, least;
    ASSERT_EQ(kelsMinIndx_16s(small, 3, &least, nullptr), kelStatusOk);
    EXPECT_EQ(least, -4);
}

TEST(MaxOrder, LiteralValues) {
    EXPECT_EQ(reduce_with(kelsMaxOrder_16s, {1}), 1);
    EXPECT_EQ(reduce_with(kelsMaxOrder_16s, {-32768}), 16);
    EXPECT_EQ(reduce_with(kelsMaxOrder_16s, {0, 0}), 0);
    EXPECT_EQ(reduce_with(kelsMaxOrder_32s, {std::numeric_limits<Kel32s>::min()}), 32);
    EXPECT_EQ(reduce_with(kelsMaxOrder_32f, {1}), 1);
    EXPECT_EQ(reduce_with(kelsMaxOrder_32f, {0.75F, -0.75F}), 0);
    const Kel32f far = std::numeric_limits<Kel32f>::infinity();
    const Kel32f nan = std::bit_cast<Kel32f>(0x7FFFFFFF), mixed[] = {nan, 6, far}, denormal = 0x1p-149F;
    int order = 77;
    EXPECT_EQ(kelsMaxOrder_32f(&far, 1, &order), kelStatusNanArg);
    EXPECT_EQ(order, 0);
    EXPECT_EQ(kelsMaxOrder_32f(mixed, 3, &order), kelStatusNanArg);
    EXPECT_EQ(order, 3);
    EXPECT_EQ(kelsMaxOrder_32f(mixed, 2, &order), kelStatusNanArg);
    EXPECT_EQ(kelsMaxOrder_32f(&denormal, 1, &order), kelStatusNanArg);
    EXPECT_EQ(order, -126);
}

} // namespace
