// Dot products: sums of products of real vectors, of complex ones, or of a real one and a complex one.
//
//   16-bit integers: exact in 64 bits, or wrapping in 32 where the result has 16;
//   32-bit integers: exact in two words;
//   singles:         in double arithmetic, where each product is exact; with the rounding errors of the sum kept where
//                    the result is double;
//   doubles:         with the rounding errors of products and sum kept; in extended precision where they leave the
//                    range of doubles.
//
// A complex product is not taken apart element by element: lanes hold the sums of all four products of parts, and
// their totals make the two parts of the result.

#include "kels/statistics.h"

#include "frame/calling_frame.h"
#include "frame/complex_vector.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "frame/reduction.h"
#include "frame/scale.h"
#include "frame/two_doubles.h"
#include "stats/integer_sums.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

// Sums of products in lanes. The totals of lanes of one kind, which come by turns, are numbers of the type that each
// kind of sums has.

/// Of products that are exact.
template <class V>
struct SumsOfExactProducts : LaneSums<V> {
    [[gnu::always_inline]] void add_product(V a, V b) { this->add(a * b); }
};

/// high 2^32 + low, low below 2^32.
struct TwoWords {
    Kel64s high, low;

    TwoWords(Kel64s high_terms, Kel64s low_terms) : high(high_terms + (low_terms >> 32)), low(low_terms & 0xFFFFFFFF) {}
    TwoWords operator+(TwoWords b) const { return {high + b.high, low + b.low}; }
    TwoWords operator-(TwoWords b) const { return {high - b.high, low - b.low}; }
};

template <class V>
struct TwoWordSums {
    V high{}, low{};
    [[gnu::always_inline]] void add_product(V a, V b) {
        const V product = a * b;
        high += product >> splat<V>(32);
        low += product & splat<V>(0xFFFFFFFF);
    }
    template <int Kinds>
    [[gnu::always_inline]] auto totals() const {
        const auto highs = sums_of_lanes<Kinds>(high), lows = sums_of_lanes<Kinds>(low);
        if constexpr (Kinds == 1)
            return std::array{TwoWords(highs[0], lows[0])};
        else
            return std::array{TwoWords(highs[0], lows[0]), TwoWords(highs[1], lows[1])};
    }
};

// Accumulators: sums of products of the elements of A and B, in lanes of T

template <class T, class A, class B, template <class> class Sums, int Elements>
struct Products {
    Sums<Vec<T, Elements>> sums;

    [[gnu::always_inline]] void add(auto keep, auto a, auto b) {
        sums.add_product(convert<T>(keep(a)), convert<T>(keep(b)));
    }
    [[gnu::always_inline]] auto result() const { return sums.template totals<1>(); }
};

/// Every lane twice.
template <class V>
[[gnu::always_inline]] inline auto twice_each(V a) {
    return both(interleave<0>(a, a), interleave<1>(a, a));
}

template <class T, class A, class B, template <class> class Sums, int Elements>
requires(parts<A> == 1 && parts<B> == 2) struct Products<T, A, B, Sums, Elements> {
    Sums<Vec<T, 2 * Elements>> sums;

    [[gnu::always_inline]] void add(auto keep, auto a, auto b) {
        sums.add_product(twice_each(convert<T>(keep(a))), convert<T>(keep(b)));
    }
    [[gnu::always_inline]] auto result() const { return sums.template totals<2>(); }
};

template <class T, class A, class B, template <class> class Sums, int Elements>
requires(parts<A> == 2) struct Products<T, A, B, Sums, Elements> {
    Sums<Vec<T, 2 * Elements>> straight; // re re, im im
    Sums<Vec<T, 2 * Elements>> crossed;  // re im, im re

    [[gnu::always_inline]] void add(auto keep, auto a, auto b) {
        const auto x = convert<T>(keep(a)), y = convert<T>(keep(b));
        straight.add_product(x, y);
        crossed.add_product(x, swapped(y));
    }
    [[gnu::always_inline]] auto result() const {
        const auto s = straight.template totals<2>(), c = crossed.template totals<2>();
        return std::array{s[0] - s[1], c[0] + c[1]};
    }
};

template <class T, template <class> class Sums, int Elements, class A, class B>
auto sums_of_products(const A* a, const B* b, Index n) {
    return reduce<Elements>(
        n, [](auto width) KELS_INLINE { return Products<T, A, B, Sums, width>{}; }, a, b);
}

/// Products of 16-bit integers, whose terms of 32 bits are added by `Terms`.
template <class A, class B, template <int> class Terms, int Elements>
struct IntegerProducts {
    Terms<Elements / 2> sum;

    [[gnu::always_inline]] void add(auto keep, auto a, auto b) { sum.add(add_products(keep(a), keep(b))); }
    [[gnu::always_inline]] auto result() const { return std::array{sum.result()}; }
};

template <class A, class B, template <int> class Terms, int Elements>
requires(parts<A> == 1 && parts<B> == 2) struct IntegerProducts<A, B, Terms, Elements> {
    Terms<Elements> re, im;

    [[gnu::always_inline]] void add(auto keep, auto a, auto b) {
        using Pairs = Vec<Kel16s, 2 * Elements>;
        const auto x = convert<Kel32u>(bits_as<Vec<Kel16u, Elements>>(keep(a)));
        const Pairs y = keep(b);
        re.add(add_products(bits_as<Pairs>(x), y));
        im.add(add_products(bits_as<Pairs>(x << splat<decltype(x + x)>(16)), y));
    }
    [[gnu::always_inline]] auto result() const { return std::array{re.result(), im.result()}; }
};

template <class A, class B, template <int> class Terms, int Elements>
requires(parts<A> == 2) struct IntegerProducts<A, B, Terms, Elements> {
    Terms<Elements> re, im;

    template <class V>
    [[gnu::always_inline]] void add(auto keep, V a, V b) {
        const V x = keep(a), y = keep(b), real_part = x & alternate<V>(-1, 0);
        re.add(add_products(real_part, y) - add_products(static_cast<V>(x ^ real_part), y));
        im.add(add_products(x, swapped(y)));
    }
    [[gnu::always_inline]] auto result() const { return std::array{re.result(), im.result()}; }
};

/// Keeps 32 bits of the sum.
template <int Lanes>
struct WrappingTerms {
    Vec<Kel32u, Lanes> sum{};
    [[gnu::always_inline]] void add(Vec<int, Lanes> terms) { sum += bits_as<Vec<Kel32u, Lanes>>(terms); }
    [[gnu::always_inline]] Kel64s result() const { return static_cast<Kel32s>(sum_of_lanes(sum)); }
};

template <template <int> class Terms, class A, class B>
auto integer_sums(const A* a, const B* b, Index n) {
    constexpr int elements = parts<B> == 1 ? 64 : 16;
    return reduce<elements>(
        n, [](auto width) KELS_INLINE { return IntegerProducts<A, B, Terms, width>{}; }, a, b);
}

// Doubles beyond the range in which rounding errors can be kept

/// The least magnitude that is not zero, or infinity.
template <int Lanes>
struct LeastMagnitude {
    using Bits = Vec<std::uint64_t, Lanes>;
    Bits least = ~Bits{};

    [[gnu::always_inline]] void add(auto, auto x) {
        const Bits one = splat<Bits>(1), below = (bits_as<Bits>(x) << one) - one; // zero is above all
        least = below < least ? below : least;
    }
    [[gnu::always_inline]] Kel64f result() const {
        const auto bits = fold_lanes(least, [](auto x, auto y) KELS_INLINE { return x < y ? x : y; }) + 1;
        return bits == 0 ? std::numeric_limits<Kel64f>::infinity() : std::bit_cast<Kel64f>(bits >> 1);
    }
};

template <class T>
[[gnu::noinline]] Kel64f least_magnitude(const T* p, Index n) {
    return reduce<16, LeastMagnitude>(n * parts<T>, reals(p));
}

template <class A, class B>
[[gnu::noinline]] void extended_sums(const A* x, const B* y, Index n, Kel64f* result) {
    const ExtendedPrecision modes;
    const auto *a = reals(x), *b = reals(y);
    std::array<long double, parts<B>> sum{};
    for (Index i = 0; i < n; ++i) {
        const long double re = a[i * parts<A>];
        for (int part = 0; part < parts<B>; ++part) sum[part] += re * b[i * parts<B> + part];
        if constexpr (parts<A> == 2) {
            const long double im = a[2 * i + 1];
            sum[0] -= im * b[2 * i + 1];
            sum[1] += im * b[2 * i];
        }
    }
    for (int part = 0; part < parts<B>; ++part) result[part] = static_cast<Kel64f>(sum[part]);
}

/// Whether the sums are what the products make: none was too large, and none so small that its error was lost.
template <class A, class B>
bool are_complete(const std::array<TwoDoubles, parts<B>>& sums, const A* a, const B* b, Index n) {
    constexpr Kel64f tiny = 0x1p-900;
    bool small = false;
    for (const TwoDoubles& sum : sums) {
        if (!sum.in_range()) return false;
        small |= std::fabs(sum.rounded()) < tiny;
    }
    if (!std::is_same_v<Part<A>, Kel64f> || !small) return true;
    if constexpr (std::is_same_v<Part<A>, Kel64f>) return !(least_magnitude(a, n) * least_magnitude(b, n) < tiny);
}

// Results

template <class A, class B>
void dot_product_of(const A* a, const B* b, Index n, Kel32f* result) {
    constexpr int elements = parts<A> == 2 ? 8 : 32 / parts<B>;
    const auto sums = sums_of_products<Kel64f, ProductSums, elements>(a, b, n);
    for (int part = 0; part < parts<B>; ++part) result[part] = static_cast<Kel32f>(sums[part]);
}

template <class A, class B>
void dot_product_of(const A* a, const B* b, Index n, Kel64f* result) {
    const RoundedToNearest modes;
    constexpr int elements = 16 / parts<B>;
    std::array<TwoDoubles, parts<B>> sums;
    if constexpr (std::is_same_v<Part<A>, Kel32f>)
        sums = sums_of_products<Kel64f, SumsOfExactProducts, elements>(a, b, n);
    else
        sums = sums_of_products<Kel64f, LaneSums, elements>(a, b, n);
    if (are_complete(sums, a, b, n)) {
        for (int part = 0; part < parts<B>; ++part) result[part] = sums[part].rounded();
    } else {
        extended_sums(a, b, n, result);
    }
}

template <class A, class B, class R>
KelStatus dot_product(const A* a, const B* b, int len, R* result) {
    return vector_call({a, b, result}, len, [=] {
        if constexpr (std::is_same_v<Part<A>, Kel16s>) {
            const auto sums = integer_sums<SignedTerms>(a, b, len);
            for (int part = 0; part < parts<R>; ++part) reals(result)[part] = rounded_to<Part<R>>(sums[part]);
        } else {
            dot_product_of(a, b, len, reals(result));
        }
    });
}

// Scaled results

template <class R, int Digits>
R scaled(Kel64s sum, int scaleFactor) {
    R result;
    with_scale<R, Digits>(scaleFactor, [&](auto scale) { result = scale(sum); });
    return result;
}

template <class R, class A, class B>
auto scaled_sums(const A* a, const B* b, Index n, int scaleFactor) {
    std::array<R, parts<B>> result;
    if constexpr (sizeof(Part<B>) == 4) {
        const auto sums = sums_of_products<Kel64s, TwoWordSums, 16 / parts<B>>(a, b, n);
        std::transform(sums.begin(), sums.end(), result.begin(), [=](TwoWords sum) {
            // Beyond 64 bits it is beyond the result with any factor.
            using Limits = std::numeric_limits<R>;
            if (sum.high > Limits::max()) return Limits::max();
            if (sum.high < Limits::min()) return Limits::min();
            return scaled<R, 63>(sum.high * (Kel64s{1} << 32) + sum.low, std::clamp(scaleFactor, -31, 31));
        });
    } else if constexpr (sizeof(R) == 4) {
        const auto sums = integer_sums<SignedTerms>(a, b, n);
        std::transform(sums.begin(), sums.end(), result.begin(), [=](Kel64s sum) {
            return scaled<R, 62>(sum, std::clamp(scaleFactor, sum < 0 ? -31 : -30, 31));
        });
    } else {
        const auto sums = integer_sums<WrappingTerms>(a, b, n);
        std::transform(sums.begin(), sums.end(), result.begin(),
                       [=](Kel64s sum) { return scaled<R, 31>(sum, std::clamp(scaleFactor, -14, 31)); });
    }
    return result;
}

template <class A, class B, class R>
KelStatus dot_product(const A* a, const B* b, int len, R* result, int scaleFactor) {
    return vector_call({a, b, result}, len, [=] {
        const auto sums = scaled_sums<Part<R>>(a, b, len, scaleFactor);
        std::copy(sums.begin(), sums.end(), reals(result));
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsDotProd_32f        (const Kel32f*  a, const Kel32f*  b, int n, Kel32f*  r) { return dot_product(a, b, n, r); }
KelStatus kelsDotProd_64f        (const Kel64f*  a, const Kel64f*  b, int n, Kel64f*  r) { return dot_product(a, b, n, r); }
KelStatus kelsDotProd_32fc       (const Kel32fc* a, const Kel32fc* b, int n, Kel32fc* r) { return dot_product(a, b, n, r); }
KelStatus kelsDotProd_64fc       (const Kel64fc* a, const Kel64fc* b, int n, Kel64fc* r) { return dot_product(a, b, n, r); }
KelStatus kelsDotProd_32f32fc    (const Kel32f*  a, const Kel32fc* b, int n, Kel32fc* r) { return dot_product(a, b, n, r); }
KelStatus kelsDotProd_64f64fc    (const Kel64f*  a, const Kel64fc* b, int n, Kel64fc* r) { return dot_product(a, b, n, r); }
KelStatus kelsDotProd_32f64f     (const Kel32f*  a, const Kel32f*  b, int n, Kel64f*  r) { return dot_product(a, b, n, r); }
KelStatus kelsDotProd_32fc64fc   (const Kel32fc* a, const Kel32fc* b, int n, Kel64fc* r) { return dot_product(a, b, n, r); }
KelStatus kelsDotProd_32f32fc64fc(const Kel32f*  a, const Kel32fc* b, int n, Kel64fc* r) { return dot_product(a, b, n, r); }
KelStatus kelsDotProd_16s64s     (const Kel16s*  a, const Kel16s*  b, int n, Kel64s*  r) { return dot_product(a, b, n, r); }
KelStatus kelsDotProd_16sc64sc   (const Kel16sc* a, const Kel16sc* b, int n, Kel64sc* r) { return dot_product(a, b, n, r); }
KelStatus kelsDotProd_16s16sc64sc(const Kel16s*  a, const Kel16sc* b, int n, Kel64sc* r) { return dot_product(a, b, n, r); }
KelStatus kelsDotProd_16s32f     (const Kel16s*  a, const Kel16s*  b, int n, Kel32f*  r) { return dot_product(a, b, n, r); }
KelStatus kelsDotProd_16sc32fc   (const Kel16sc* a, const Kel16sc* b, int n, Kel32fc* r) { return dot_product(a, b, n, r); }
KelStatus kelsDotProd_16s16sc32fc(const Kel16s*  a, const Kel16sc* b, int n, Kel32fc* r) { return dot_product(a, b, n, r); }

KelStatus kelsDotProd_16s32s_Sfs     (const Kel16s*  a, const Kel16s*  b, int n, Kel32s*  r, int s) { return dot_product(a, b, n, r, s); }
KelStatus kelsDotProd_16sc32sc_Sfs   (const Kel16sc* a, const Kel16sc* b, int n, Kel32sc* r, int s) { return dot_product(a, b, n, r, s); }
KelStatus kelsDotProd_16s16sc32sc_Sfs(const Kel16s*  a, const Kel16sc* b, int n, Kel32sc* r, int s) { return dot_product(a, b, n, r, s); }
KelStatus kelsDotProd_16s_Sfs        (const Kel16s*  a, const Kel16s*  b, int n, Kel16s*  r, int s) { return dot_product(a, b, n, r, s); }
KelStatus kelsDotProd_16sc_Sfs       (const Kel16sc* a, const Kel16sc* b, int n, Kel16sc* r, int s) { return dot_product(a, b, n, r, s); }
KelStatus kelsDotProd_16s16sc_Sfs    (const Kel16s*  a, const Kel16sc* b, int n, Kel16sc* r, int s) { return dot_product(a, b, n, r, s); }
KelStatus kelsDotProd_32s_Sfs        (const Kel32s*  a, const Kel32s*  b, int n, Kel32s*  r, int s) { return dot_product(a, b, n, r, s); }
KelStatus kelsDotProd_32sc_Sfs       (const Kel32sc* a, const Kel32sc* b, int n, Kel32sc* r, int s) { return dot_product(a, b, n, r, s); }
KelStatus kelsDotProd_32s32sc_Sfs    (const Kel32s*  a, const Kel32sc* b, int n, Kel32sc* r, int s) { return dot_product(a, b, n, r, s); }
KelStatus kelsDotProd_16s32s32s_Sfs  (const Kel16s*  a, const Kel32s*  b, int n, Kel32s*  r, int s) { return dot_product(a, b, n, r, s); }
}
// clang-format on
