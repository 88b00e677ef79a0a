// Largest and smallest elements, their places, the larger and the smaller of two vectors, and the bits of the largest
// magnitude.
//
// An element may be taken more than once, so that no block needs its lanes cleared.

#include "kels/statistics.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/numeric.h"
#include "frame/reduction.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

// The first of two if it is strictly beyond the second, lane by lane; a NaN is beyond nothing.

struct Larger {
    template <class V>
    [[gnu::always_inline]] V operator()(V a, V b) const {
        return a > b ? a : b;
    }
};

struct Smaller {
    template <class V>
    [[gnu::always_inline]] V operator()(V a, V b) const {
        return a < b ? a : b;
    }
};

template <class T>
inline constexpr int elements_in_block = 4 * 64 / static_cast<int>(sizeof(T)); // four of the widest registers

/// The extreme of the elements and of one more, `start`.
template <class Order, class T, int Elements>
struct Extreme {
    Vec<T, Elements> extreme;

    explicit Extreme(T start) : extreme(splat<Vec<T, Elements>>(start)) {}
    [[gnu::always_inline]] void add(auto, auto x) { extreme = Order{}(x, extreme); }
    [[gnu::always_inline]] T result() const { return fold_lanes(extreme, Order{}); }
};

template <class Order, class T>
T extreme_of(const T* src, Index n, T start) {
    return reduce<elements_in_block<T>>(
        n, [=](auto width) KELS_INLINE { return Extreme<Order, T, width>(start); }, src);
}

// Extremes by value, or of real numbers by bits. As a signed integer a number without sign bit is above every one with
// it; among the latter, the larger integer is the smaller number.

template <class T>
using SignedBits = std::make_signed_t<Word<T>>;

/// The largest as signed integers; if that has a sign bit all have, and it is the smallest as unsigned ones.
template <class T, int Elements>
struct LargestByBits {
    Vec<SignedBits<T>, Elements> highest, lowest;

    explicit LargestByBits(SignedBits<T> start)
        : highest(splat<Vec<SignedBits<T>, Elements>>(start)), lowest(highest) {}
    [[gnu::always_inline]] void add(auto, auto x) {
        highest = Larger{}(x, highest);
        lowest = Smaller{}(x, lowest);
    }
    [[gnu::always_inline]] SignedBits<T> result() const {
        const auto largest = fold_lanes(highest, Larger{});
        return largest >= 0 ? largest : fold_lanes(lowest, Smaller{});
    }
};

/// The largest as unsigned integers, if that has a sign bit; else all are positive, and it is the smallest.
template <class T, int Elements>
struct SmallestByBits {
    Vec<Word<T>, Elements> highest, lowest;

    explicit SmallestByBits(SignedBits<T> start)
        : highest(splat<Vec<Word<T>, Elements>>(static_cast<Word<T>>(start))), lowest(highest) {}
    [[gnu::always_inline]] void add(auto, auto x) {
        const auto bits = bits_as<Vec<Word<T>, Elements>>(x);
        highest = Larger{}(bits, highest);
        lowest = Smaller{}(bits, lowest);
    }
    [[gnu::always_inline]] SignedBits<T> result() const {
        const auto largest = static_cast<SignedBits<T>>(fold_lanes(highest, Larger{}));
        return largest < 0 ? largest : static_cast<SignedBits<T>>(fold_lanes(lowest, Smaller{}));
    }
};

template <class Order, class T>
T extreme_by_bits(const T* src, Index n) {
    const auto* bits = reinterpret_cast<const SignedBits<T>*>(src);
    return std::bit_cast<T>(reduce<elements_in_block<T>>(
        n,
        [=](auto width) KELS_INLINE {
            if constexpr (std::is_same_v<Order, Larger>)
                return LargestByBits<T, width>(bits[0]);
            else
                return SmallestByBits<T, width>(bits[0]);
        },
        bits));
}

template <class Order, class T>
KelStatus extreme(const T* src, int len, T* result) {
    return vector_call({src, result}, len, [=] {
        if constexpr (std::is_integral_v<T>)
            *result = extreme_of<Order>(src, len, src[0]);
        else
            *result = extreme_by_bits<Order>(src, len);
    });
}

// The place of an extreme: the first stretch in which it is found, and then the first element there that equals it. So
// the vector is read once, and little of it again.

/// One that equals the value is among the n.
template <class T>
Index first_equal(const T* p, Index n, T value) {
    Index i = 0;
    const auto skip_blocks = [&](auto width) KELS_INLINE {
        using V = Vec<T, width>;
        while (n - i >= width && !any_lane(load<V>(p + i) == splat<V>(value))) i += width;
    };
    skip_blocks(Width<elements_in_block<T>>{});
    skip_blocks(Width<elements_in_block<T> / 8>{});
    while (p[i] != value) ++i;
    return i;
}

template <class T, int Elements>
struct AnyNan {
    decltype(Vec<T, Elements>{} == Vec<T, Elements>{}) unordered{};

    [[gnu::always_inline]] void add(auto, auto x) { unordered |= x != x; }
    [[gnu::always_inline]] bool result() const { return any_lane(unordered); }
};

template <class T>
bool has_nan(const T* src, Index n) {
    if constexpr (std::is_integral_v<T>)
        return false;
    else
        return reduce<elements_in_block<T>>(
            n, [](auto width) KELS_INLINE { return AnyNan<T, width>{}; }, src);
}

/// Stretches for `place_of`: a second look at one is a look at the first cache.
template <class T>
inline constexpr Index stretch = 8192 / sizeof(T);

template <class T>
Index place_of(Larger, const T* src, Index n) {
    T largest = src[0];
    Index found_in = 0;
    if (largest != largest) return 0;
    for (Index i = 0; i < n; i += stretch<T>) {
        const T here = extreme_of<Larger>(src + i, std::min(stretch<T>, n - i), largest);
        if (here > largest) found_in = i;
        largest = here;
    }
    return found_in + first_equal(src + found_in, n - found_in, largest);
}

template <class T>
Index place_of(Smaller order, const T* src, Index n) {
    T smallest = src[0];
    Index found_in = 0;
    for (Index i = 0; i < n; i += stretch<T>) {
        const Index length = std::min(stretch<T>, n - i);
        if (has_nan(src + i, length)) [[unlikely]] {
            Index behind = n; // the last NaN of all
            while (src[behind - 1] == src[behind - 1]) --behind;
            return behind == n ? n - 1 : behind + place_of(order, src + behind, n - behind);
        }
        const T here = extreme_of<Smaller>(src + i, length, smallest);
        if (here < smallest) found_in = i;
        smallest = here;
    }
    return found_in + first_equal(src + found_in, n - found_in, smallest);
}

template <class Order, class T>
KelStatus extreme_and_place(const T* src, int len, T* result, int* place) {
    if (!place) return extreme<Order>(src, len, result);
    return vector_call({src, result}, len, [=] {
        const Index found = place_of(Order{}, src, len);
        *result = src[found];
        *place = static_cast<int>(found);
    });
}

// Two vectors

/// The second stays if it is not smaller; with a NaN on either side it does not.
template <class T>
KelStatus larger_of_each(const T* src, T* srcDst, int len) {
    return vector_call({src, srcDst}, len, [=] {
        map_blocks(
            srcDst, len, [](auto a, auto b) KELS_INLINE { return b >= a ? b : a; }, src, static_cast<const T*>(srcDst));
    });
}

/// The second stays if it is not larger, and with a NaN on either side.
template <class T>
KelStatus smaller_of_each(const T* src, T* srcDst, int len) {
    return vector_call({src, srcDst}, len, [=] {
        map_blocks(
            srcDst, len, [](auto a, auto b) KELS_INLINE { return b > a ? a : b; }, src, static_cast<const T*>(srcDst));
    });
}

// Bits of the largest magnitude

/// Every bit of a magnitude.
template <class T, int Elements>
struct MagnitudeBits {
    using Bits = Vec<Word<T>, Elements>;
    Bits bits{};

    [[gnu::always_inline]] void add(auto, auto x) {
        const Bits negative = (Bits)(x < 0), value = bits_as<Bits>(x);
        bits |= static_cast<Bits>((value ^ negative) - negative);
    }
    [[gnu::always_inline]] Word<T> result() const {
        return fold_lanes(bits, [](auto x, auto y) KELS_INLINE { return static_cast<decltype(x)>(x | y); });
    }
};

template <class T>
KelStatus order_of(const T* src, Index n, int* order) {
    const auto bits = reduce<elements_in_block<T>>(
        n, [](auto width) KELS_INLINE { return MagnitudeBits<T, width>{}; }, src);
    *order = static_cast<int>(std::bit_width(bits));
    return kelStatusOk;
}

/// The largest magnitude up to a bound, as bits.
template <class T, int Elements>
struct LargestMagnitude {
    using Bits = Vec<SignedBits<T>, Elements>;
    SignedBits<T> bound;
    Bits largest{};

    explicit LargestMagnitude(SignedBits<T> b) : bound(b) {}
    [[gnu::always_inline]] void add(auto, auto x) {
        const Bits bits = bits_as<Bits>(magnitude(x));
        largest = Larger{}(bits > splat<Bits>(bound) ? Bits{} : bits, largest);
    }
    [[gnu::always_inline]] SignedBits<T> result() const { return fold_lanes(largest, Larger{}); }
};

template <class T>
SignedBits<T> largest_magnitude(const T* src, Index n, SignedBits<T> bound) {
    return reduce<elements_in_block<T>>(
        n, [=](auto width) KELS_INLINE { return LargestMagnitude<T, width>(bound); }, src);
}

template <class T>
requires std::is_floating_point_v<T> KelStatus order_of(const T* src, Index n, int* order) {
    using Limits = std::numeric_limits<T>;
    constexpr auto infinity = std::bit_cast<SignedBits<T>>(Limits::infinity());
    constexpr auto least_normal = std::bit_cast<SignedBits<T>>(Limits::min());
    auto largest = largest_magnitude(src, n, std::numeric_limits<SignedBits<T>>::max());
    const bool all_finite = largest < infinity;
    if (!all_finite) largest = largest_magnitude(src, n, infinity - 1);
    if (largest > 0 && largest < least_normal) {
        *order = Limits::min_exponent - 1;
        return kelStatusNanArg;
    }
    *order = largest == 0 ? 0 : static_cast<int>(largest >> (Limits::digits - 1)) - Limits::max_exponent + 2;
    return all_finite ? kelStatusOk : kelStatusNanArg;
}

/// The length comes before the pointers.
template <class T>
KelStatus max_order(const T* src, int len, int* order) {
    if (len < 1) return kelStatusBadSize;
    return vector_call({src, order}, len, [=] { return order_of(src, len, order); });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsMax_16s(const Kel16s* a, int n, Kel16s* r) { return extreme<Larger>(a, n, r); }
KelStatus kelsMax_32f(const Kel32f* a, int n, Kel32f* r) { return extreme<Larger>(a, n, r); }
KelStatus kelsMax_64f(const Kel64f* a, int n, Kel64f* r) { return extreme<Larger>(a, n, r); }
KelStatus kelsMin_16s(const Kel16s* a, int n, Kel16s* r) { return extreme<Smaller>(a, n, r); }
KelStatus kelsMin_32f(const Kel32f* a, int n, Kel32f* r) { return extreme<Smaller>(a, n, r); }
KelStatus kelsMin_64f(const Kel64f* a, int n, Kel64f* r) { return extreme<Smaller>(a, n, r); }

KelStatus kelsMaxIndx_16s(const Kel16s* a, int n, Kel16s* r, int* i) { return extreme_and_place<Larger>(a, n, r, i); }
KelStatus kelsMaxIndx_32f(const Kel32f* a, int n, Kel32f* r, int* i) { return extreme_and_place<Larger>(a, n, r, i); }
KelStatus kelsMaxIndx_64f(const Kel64f* a, int n, Kel64f* r, int* i) { return extreme_and_place<Larger>(a, n, r, i); }
KelStatus kelsMinIndx_16s(const Kel16s* a, int n, Kel16s* r, int* i) { return extreme_and_place<Smaller>(a, n, r, i); }
KelStatus kelsMinIndx_32f(const Kel32f* a, int n, Kel32f* r, int* i) { return extreme_and_place<Smaller>(a, n, r, i); }
KelStatus kelsMinIndx_64f(const Kel64f* a, int n, Kel64f* r, int* i) { return extreme_and_place<Smaller>(a, n, r, i); }

KelStatus kelsMaxEvery_16s_I(const Kel16s* a, Kel16s* d, int n) { return larger_of_each(a, d, n); }
KelStatus kelsMaxEvery_32s_I(const Kel32s* a, Kel32s* d, int n) { return larger_of_each(a, d, n); }
KelStatus kelsMaxEvery_32f_I(const Kel32f* a, Kel32f* d, int n) { return larger_of_each(a, d, n); }
KelStatus kelsMinEvery_16s_I(const Kel16s* a, Kel16s* d, int n) { return smaller_of_each(a, d, n); }
KelStatus kelsMinEvery_32s_I(const Kel32s* a, Kel32s* d, int n) { return smaller_of_each(a, d, n); }
KelStatus kelsMinEvery_32f_I(const Kel32f* a, Kel32f* d, int n) { return smaller_of_each(a, d, n); }

KelStatus kelsMaxOrder_16s(const Kel16s* a, int n, int* r) { return max_order(a, n, r); }
KelStatus kelsMaxOrder_32s(const Kel32s* a, int n, int* r) { return max_order(a, n, r); }
KelStatus kelsMaxOrder_32f(const Kel32f* a, int n, int* r) { return max_order(a, n, r); }
KelStatus kelsMaxOrder_64f(const Kel64f* a, int n, int* r) { return max_order(a, n, r); }
}
// clang-format on
