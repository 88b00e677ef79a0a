// Norms of a vector, or of the difference of two: the largest magnitude, the sum of magnitudes, the root of the sum of
// squares.
//
//   16-bit integers: exact in 64 bits;
//   singles:         in double arithmetic;
//   doubles:         with the rounding errors of differences, squares and sums kept; in extended precision where they
//                    leave the range of doubles.
//
// Accumulators take the blocks of one source or of two.

#include "kels/statistics.h"

#include "frame/calling_frame.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "frame/reduction.h"
#include "frame/scale.h"
#include "frame/two_doubles.h"
#include "stats/integer_sums.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

// 16-bit integers

/// |a - b| as unsigned lanes: up to 65535.
template <class V>
[[gnu::always_inline]] inline auto distance(V a, V b) {
    const V larger = a > b ? a : b, smaller = a > b ? b : a;
    return bits_as<Vec<Kel16u, lanes<V>>>(larger) - bits_as<Vec<Kel16u, lanes<V>>>(smaller);
}

template <int Elements>
struct IntegerLargest {
    Vec<Kel16s, Elements> highest{}, lowest{};
    Vec<Kel16u, Elements> farthest{};

    [[gnu::always_inline]] void add(auto, auto x) {
        highest = x > highest ? x : highest;
        lowest = x < lowest ? x : lowest;
    }
    [[gnu::always_inline]] void add(auto, auto a, auto b) {
        const auto d = distance(a, b);
        farthest = d > farthest ? d : farthest;
    }
    [[gnu::always_inline]] Kel64s result() const {
        const auto larger = [](auto x, auto y) KELS_INLINE { return x > y ? x : y; };
        const auto smaller = [](auto x, auto y) KELS_INLINE { return x < y ? x : y; };
        return std::max({Kel64s{fold_lanes(highest, larger)}, -Kel64s{fold_lanes(lowest, smaller)},
                         Kel64s{fold_lanes(farthest, larger)}});
    }
};

template <int Elements>
struct IntegerMagnitudes {
    SmallTerms<Elements / 2> sum;

    /// Times 1 or -1: in 32 bits -32768 has a magnitude.
    template <class V>
    [[gnu::always_inline]] void add(auto keep, V x) {
        const V fresh = keep(x), sign = (fresh >> splat<V>(15)) | splat<V>(1);
        sum.add(add_products(fresh, sign));
    }
    template <class V>
    [[gnu::always_inline]] void add(auto keep, V a, V b) {
        using Pairs = Vec<Kel32u, Elements / 2>;
        const Pairs d = bits_as<Pairs>(keep(distance(a, b)));
        const Pairs pair_sums = (d & splat<Pairs>(0xFFFF)) + (d >> splat<Pairs>(16));
        sum.add(bits_as<Vec<int, Elements / 2>>(pair_sums));
    }
    [[gnu::always_inline]] void settle() { sum.settle(); }
    [[gnu::always_inline]] Kel64s result() { return sum.result(); }
};

template <int Elements>
struct IntegerSquares {
    LargeTerms<Elements / 2> squares;

    [[gnu::always_inline]] void add(auto keep, auto x) {
        const auto fresh = keep(x);
        squares.add(bits_as<Vec<Kel32u, Elements / 2>>(add_products(fresh, fresh)));
    }
    template <class V>
    [[gnu::always_inline]] void add(auto keep, V a, V b) {
        const auto d = convert<Kel32u>(keep(distance(a, b)));
        const auto squared = d * d;
        squares.add(half<0>(squared));
        squares.add(half<1>(squared));
    }
    [[gnu::always_inline]] std::uint64_t result() const { return squares.result(); }
};

// Singles and doubles

/// A NaN is passed over. Differences are rounded: the largest stays the largest.
template <class T, int Elements>
struct Largest {
    Vec<T, Elements> largest{};

    [[gnu::always_inline]] void add(auto, auto x) {
        const auto size = magnitude(x);
        largest = size > largest ? size : largest;
    }
    [[gnu::always_inline]] void add(auto keep, auto a, auto b) { add(keep, a - b); }
    [[gnu::always_inline]] T result() const {
        return fold_lanes(largest, [](auto x, auto y) KELS_INLINE { return x > y ? x : y; });
    }
};

template <class T, int Elements>
struct Magnitudes {
    DoubleSums<Vec<Kel64f, Elements>> sums;

    [[gnu::always_inline]] void add(auto keep, auto x) { sums.add(magnitude(convert<Kel64f>(keep(x)))); }
    [[gnu::always_inline]] void add(auto keep, auto a, auto b) {
        sums.add(magnitude(convert<Kel64f>(keep(a)) - convert<Kel64f>(keep(b))));
    }
    [[gnu::always_inline]] Kel64f result() const { return sums.total(); }
};

/// Squares of singles are exact, those of differences are rounded by themselves, so that a level that fuses gives no
/// other bits.
template <class T, int Elements>
struct Squares {
    ProductSums<Vec<Kel64f, Elements>> exact;
    DoubleSums<Vec<Kel64f, Elements>> rounded;

    [[gnu::always_inline]] void add(auto keep, auto x) {
        const auto wide = convert<Kel64f>(keep(x));
        exact.add_product(wide, wide);
    }
    [[gnu::always_inline]] void add(auto keep, auto a, auto b) {
        const auto d = convert<Kel64f>(keep(a)) - convert<Kel64f>(keep(b));
        rounded.add(d * d);
    }
    [[gnu::always_inline]] Kel64f result() const { return exact.total() + rounded.total(); }
};

template <int Elements>
struct Magnitudes<Kel64f, Elements> {
    using V = Vec<Kel64f, Elements>;
    LaneSums<V> sums;

    [[gnu::always_inline]] void add(auto keep, V x) { sums.add(magnitude(keep(x))); }
    [[gnu::always_inline]] void add(auto keep, V a, V b) {
        const V x = keep(a), y = keep(b), d = x - y, error = sum_error(x, -y, d);
        sums.add(magnitude(d), d < 0 ? -error : error);
    }
    [[gnu::always_inline]] TwoDoubles result() const { return sums.totals()[0]; }
};

template <int Elements>
struct Squares<Kel64f, Elements> {
    using V = Vec<Kel64f, Elements>;
    LaneSums<V> sums;

    [[gnu::always_inline]] void add(auto keep, V x) {
        const V fresh = keep(x);
        sums.add_product(fresh, fresh);
    }
    [[gnu::always_inline]] void add(auto keep, V a, V b) {
        const V x = keep(a), y = keep(b), d = x - y, square = d * d;
        sums.add(square, product_error(d, d, square) + (d + d) * sum_error(x, -y, d));
    }
    [[gnu::always_inline]] TwoDoubles result() const { return sums.totals()[0]; }
};

template <class T>
inline constexpr int elements_in_block = sizeof(T) == 2   ? 64
                                         : sizeof(T) == 4 ? 32
                                                          : 16;

// Sources: one vector or two. `reduced` gives the total of an accumulator, `element` a value in extended precision.

template <class T>
struct Vector {
    using Element = T;
    const T* source;

    explicit Vector(const T* a) : source(a) {}

    template <class Make>
    auto reduced(Index n, const Make& make) const {
        return reduce<elements_in_block<T>>(n, make, source);
    }
    long double element(Index i) const { return source[i]; }
};

template <class T>
struct DifferenceOf {
    using Element = T;
    const T *first, *second;

    DifferenceOf(const T* a, const T* b) : first(a), second(b) {}

    template <class Make>
    auto reduced(Index n, const Make& make) const {
        return reduce<elements_in_block<T>>(n, make, first, second);
    }
    long double element(Index i) const { return static_cast<long double>(first[i]) - second[i]; }
};

template <class Source, class Term, class Norm>
[[gnu::noinline]] Kel64f extended_norm(Source source, Index n, Term term, Norm norm_of) {
    const ExtendedPrecision modes;
    long double sum = 0;
    for (Index i = 0; i < n; ++i) sum += term(source.element(i));
    return settled(static_cast<Kel64f>(norm_of(sum)));
}

/// Doubles recover rounding errors.
template <class T>
using ModesOf = ModesIf<std::is_same_v<T, Kel64f>, RoundedToNearest>;

// Norms before they are scaled or stored: integers in 64 bits, else what is rounded once by the store.

template <class T, class Source>
auto norm_inf(Source source, Index n) {
    return source.reduced(n, [](auto width) KELS_INLINE {
        if constexpr (std::is_integral_v<T>)
            return IntegerLargest<width>{};
        else
            return Largest<T, width>{};
    });
}

template <class T, class Source>
auto norm_l1(Source source, Index n) {
    [[maybe_unused]] const ModesOf<T> modes;
    const auto sum = source.reduced(n, [](auto width) KELS_INLINE {
        if constexpr (std::is_integral_v<T>)
            return IntegerMagnitudes<width>{};
        else
            return Magnitudes<T, width>{};
    });
    if constexpr (std::is_same_v<T, Kel64f>) {
        if (sum.in_range()) return sum.rounded();
        return extended_norm(
            source, n, [](long double x) { return std::fabs(x); }, [](long double total) { return total; });
    } else {
        return sum;
    }
}

Kel64f root(std::uint64_t sum) {
    constexpr std::uint64_t low_bits = 0xFFFFFFFF;
    return root(TwoDoubles{static_cast<Kel64f>(sum & ~low_bits), 0} +
                TwoDoubles{static_cast<Kel64f>(sum & low_bits), 0});
}

template <class T, class Source>
Kel64f norm_l2(Source source, Index n) {
    [[maybe_unused]] const ModesOf<T> modes;
    const auto sum = source.reduced(n, [](auto width) KELS_INLINE {
        if constexpr (std::is_integral_v<T>)
            return IntegerSquares<width>{};
        else
            return Squares<T, width>{};
    });
    if constexpr (std::is_integral_v<T>) {
        return root(sum);
    } else if constexpr (std::is_same_v<T, Kel32f>) {
        return std::sqrt(sum);
    } else {
        constexpr Kel64f tiny = 0x1p-900; // below it squares may have lost their errors
        if (sum.in_range() && sum.rounded() >= tiny) return root(sum);
        if (sum.rounded() == 0 && norm_inf<T>(source, n) == 0) return 0;
        return extended_norm(
            source, n, [](long double x) { return x * x; }, [](long double total) { return std::sqrt(total); });
    }
}

// Scaled norms

/// Shifted, without rounding.
Kel32s scaled_norm(Kel64s norm, int scaleFactor) {
    constexpr int all_vanishes = 63;
    if (scaleFactor > 0) return saturate<Kel32s>(norm >> std::min(scaleFactor, all_vanishes));
    return ScaledUp<Kel32s>{-std::max(scaleFactor, -digits<Kel32s>)}(norm);
}

/// Multiplied and rounded toward zero.
Kel32s scaled_norm(Kel64f norm, int scaleFactor) {
    constexpr int far = 200;
    const Kel64f scaled = std::ldexp(norm, -std::clamp(scaleFactor, -far, far));
    constexpr Kel64f most = std::numeric_limits<Kel32s>::max();
    return scaled > most ? std::numeric_limits<Kel32s>::max() : static_cast<Kel32s>(scaled);
}

// Operations: the call checks its pointers in the order of its arguments.

template <class T>
Pointers pointers(Vector<T> a, const void* result) {
    return {a.source, result};
}
template <class T>
Pointers pointers(DifferenceOf<T> a, const void* result) {
    return {a.first, a.second, result};
}

template <class Source, class R>
KelStatus inf(Source source, int len, R* result) {
    using T = typename Source::Element;
    return vector_call(pointers(source, result), len, [=] { *result = rounded_to<R>(norm_inf<T>(source, len)); });
}

template <class Source, class R>
KelStatus l1(Source source, int len, R* result) {
    using T = typename Source::Element;
    return vector_call(pointers(source, result), len, [=] { *result = rounded_to<R>(norm_l1<T>(source, len)); });
}

template <class Source, class R>
KelStatus l2(Source source, int len, R* result) {
    using T = typename Source::Element;
    return vector_call(pointers(source, result), len, [=] { *result = static_cast<R>(norm_l2<T>(source, len)); });
}

template <class Source>
KelStatus inf(Source source, int len, Kel32s* result, int scaleFactor) {
    return vector_call(pointers(source, result), len,
                       [=] { *result = scaled_norm(norm_inf<Kel16s>(source, len), scaleFactor); });
}

template <class Source>
KelStatus l1(Source source, int len, Kel32s* result, int scaleFactor) {
    return vector_call(pointers(source, result), len,
                       [=] { *result = scaled_norm(norm_l1<Kel16s>(source, len), scaleFactor); });
}

template <class Source>
KelStatus l2(Source source, int len, Kel32s* result, int scaleFactor) {
    return vector_call(pointers(source, result), len, [=] {
        const DefaultModes modes(true);
        *result = scaled_norm(norm_l2<Kel16s>(source, len), scaleFactor);
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsNorm_Inf_16s32f    (const Kel16s* a, int n, Kel32f* r)        { return inf(Vector{a}, n, r); }
KelStatus kelsNorm_Inf_16s32s_Sfs(const Kel16s* a, int n, Kel32s* r, int s) { return inf(Vector{a}, n, r, s); }
KelStatus kelsNorm_Inf_32f       (const Kel32f* a, int n, Kel32f* r)        { return inf(Vector{a}, n, r); }
KelStatus kelsNorm_Inf_64f       (const Kel64f* a, int n, Kel64f* r)        { return inf(Vector{a}, n, r); }
KelStatus kelsNorm_L1_16s32f     (const Kel16s* a, int n, Kel32f* r)        { return l1(Vector{a}, n, r); }
KelStatus kelsNorm_L1_16s32s_Sfs (const Kel16s* a, int n, Kel32s* r, int s) { return l1(Vector{a}, n, r, s); }
KelStatus kelsNorm_L1_32f        (const Kel32f* a, int n, Kel32f* r)        { return l1(Vector{a}, n, r); }
KelStatus kelsNorm_L1_64f        (const Kel64f* a, int n, Kel64f* r)        { return l1(Vector{a}, n, r); }
KelStatus kelsNorm_L2_16s32f     (const Kel16s* a, int n, Kel32f* r)        { return l2(Vector{a}, n, r); }
KelStatus kelsNorm_L2_16s32s_Sfs (const Kel16s* a, int n, Kel32s* r, int s) { return l2(Vector{a}, n, r, s); }
KelStatus kelsNorm_L2_32f        (const Kel32f* a, int n, Kel32f* r)        { return l2(Vector{a}, n, r); }
KelStatus kelsNorm_L2_64f        (const Kel64f* a, int n, Kel64f* r)        { return l2(Vector{a}, n, r); }

KelStatus kelsNormDiff_Inf_16s32f    (const Kel16s* a, const Kel16s* b, int n, Kel32f* r)        { return inf(DifferenceOf{a, b}, n, r); }
KelStatus kelsNormDiff_Inf_16s32s_Sfs(const Kel16s* a, const Kel16s* b, int n, Kel32s* r, int s) { return inf(DifferenceOf{a, b}, n, r, s); }
KelStatus kelsNormDiff_Inf_32f       (const Kel32f* a, const Kel32f* b, int n, Kel32f* r)        { return inf(DifferenceOf{a, b}, n, r); }
KelStatus kelsNormDiff_Inf_64f       (const Kel64f* a, const Kel64f* b, int n, Kel64f* r)        { return inf(DifferenceOf{a, b}, n, r); }
KelStatus kelsNormDiff_L1_16s32f     (const Kel16s* a, const Kel16s* b, int n, Kel32f* r)        { return l1(DifferenceOf{a, b}, n, r); }
KelStatus kelsNormDiff_L1_16s32s_Sfs (const Kel16s* a, const Kel16s* b, int n, Kel32s* r, int s) { return l1(DifferenceOf{a, b}, n, r, s); }
KelStatus kelsNormDiff_L1_32f        (const Kel32f* a, const Kel32f* b, int n, Kel32f* r)        { return l1(DifferenceOf{a, b}, n, r); }
KelStatus kelsNormDiff_L1_64f        (const Kel64f* a, const Kel64f* b, int n, Kel64f* r)        { return l1(DifferenceOf{a, b}, n, r); }
KelStatus kelsNormDiff_L2_16s32f     (const Kel16s* a, const Kel16s* b, int n, Kel32f* r)        { return l2(DifferenceOf{a, b}, n, r); }
KelStatus kelsNormDiff_L2_16s32s_Sfs (const Kel16s* a, const Kel16s* b, int n, Kel32s* r, int s) { return l2(DifferenceOf{a, b}, n, r, s); }
KelStatus kelsNormDiff_L2_32f        (const Kel32f* a, const Kel32f* b, int n, Kel32f* r)        { return l2(DifferenceOf{a, b}, n, r); }
KelStatus kelsNormDiff_L2_64f        (const Kel64f* a, const Kel64f* b, int n, Kel64f* r)        { return l2(DifferenceOf{a, b}, n, r); }
}
// clang-format on
