// One level of the Haar transform: a pair of neighbouring samples becomes a mean and half a difference, and back.
//
// With a scale factor the exact sum or difference v is shifted by t bits and rounded, ties to even: t is one more than
// the factor on the way forward, where it halves, and the factor on the way back. No type is wider than the samples:
// floor(v / 2) always fits, and the bit that it drops is kept beside it. The 32- and 64-bit forms have rows of their
// own where few bits of v are left: they look at samples without their three lowest bits, and round some values off a
// tie as if they were on it. Their halves saturate a little early, too, where Guarded says so.

#include "kels/haar.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/scale.h"
#include "frame/simd.h"

#include <algorithm>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

template <class V>
using Unsigned = Vec<std::make_unsigned_t<Element<V>>, lanes<V>>;

template <class V>
inline constexpr Element<V> highest = std::numeric_limits<Element<V>>::max();

template <class V>
[[gnu::always_inline]] inline V splat_of(auto x) {
    return splat<V>(static_cast<Element<V>>(x));
}

// Rules. Each makes of two samples their sum x0 + x1 or difference x1 - x0, shifted, rounded and saturated.

/// t = 0
struct Saturated {
    template <class V>
    [[gnu::always_inline]] V sum(V x0, V x1) const {
        if constexpr (sizeof(Element<V>) <= 2) {
            return add_limited(x0, x1);
        } else {
            const V wrapped = bits_as<V>(bits_as<Unsigned<V>>(x0) + bits_as<Unsigned<V>>(x1));
            return unless_overflowed((x0 ^ wrapped) & (x1 ^ wrapped), wrapped, x1);
        }
    }
    template <class V>
    [[gnu::always_inline]] V difference(V x0, V x1) const {
        if constexpr (sizeof(Element<V>) <= 2) {
            return subtract_limited(x1, x0);
        } else {
            const V wrapped = bits_as<V>(bits_as<Unsigned<V>>(x1) - bits_as<Unsigned<V>>(x0));
            return unless_overflowed((x1 ^ x0) & (x1 ^ wrapped), wrapped, x1);
        }
    }

private:
    /// The limit has the sign of x1.
    template <class V>
    [[gnu::always_inline]] static V unless_overflowed(V sign, V wrapped, V x1) {
        return sign < splat_of<V>(0) ? (x1 >> splat_of<V>(digits<Element<V>>)) ^ splat<V>(highest<V>) : wrapped;
    }
};

/// t below 0
template <class T>
struct ShiftedUp {
    ScaledUp<T> up;

    template <class V>
    [[gnu::always_inline]] V sum(V x0, V x1) const {
        return up(Saturated{}.sum(x0, x1));
    }
    template <class V>
    [[gnu::always_inline]] V difference(V x0, V x1) const {
        return up(Saturated{}.difference(x0, x1));
    }
};

// floor(v / 2), and the bit that is dropped

template <class V>
[[gnu::always_inline]] inline V odd(V x0, V x1) {
    return static_cast<V>((x0 ^ x1) & splat_of<V>(1));
}
template <class V>
[[gnu::always_inline]] inline V half_sum(V x0, V x1) {
    return static_cast<V>((x0 & x1) + ((x0 ^ x1) >> splat_of<V>(1)));
}
template <class V>
[[gnu::always_inline]] inline V half_difference(V x0, V x1) {
    return static_cast<V>(half_sum(x0, x1) - x0);
}

/// t = 1. Halves of differences may be one too large. If it is Guarded, they are taken for that already when those of
/// the samples without their lowest bits are the largest there are.
template <bool Guarded>
struct Halved {
    template <class V>
    [[gnu::always_inline]] V sum(V x0, V x1) const {
        const V half = half_sum(x0, x1);
        const V rounded = static_cast<V>(half + (half & odd(x0, x1)));
        if constexpr (Guarded)
            return meets_guard(x0, x1) ? splat_of<V>(0) : rounded;
        else
            return rounded;
    }
    template <class V>
    [[gnu::always_inline]] V difference(V x0, V x1) const {
        const V half = half_difference(x0, x1), most = splat<V>(highest<V>);
        const V carry = half & odd(x0, x1);
        if constexpr (sizeof(Element<V>) <= 2) {
            return add_limited(half, carry);
        } else {
            const V rounded = half + (half == most ? splat_of<V>(0) : carry);
            if constexpr (Guarded)
                return meets_guard(x0, x1) ? most : rounded;
            else
                return rounded;
        }
    }

private:
    template <class V>
    [[gnu::always_inline]] static auto meets_guard(V x0, V x1) {
        const V one = splat_of<V>(1);
        return (x1 >> one) - (x0 >> one) == splat<V>(highest<V>);
    }
};

/// t from 2 on: the half is rounded again, by the fraction that it loses; any bit below decides a tie.
struct ShiftedDown {
    int t;

    template <class V>
    [[gnu::always_inline]] V sum(V x0, V x1) const {
        return rounded(half_sum(x0, x1), odd(x0, x1));
    }
    template <class V>
    [[gnu::always_inline]] V difference(V x0, V x1) const {
        return rounded(half_difference(x0, x1), odd(x0, x1));
    }

private:
    template <class V>
    [[gnu::always_inline]] V rounded(V half, V dropped) const {
        using U = Unsigned<V>;
        using E = Element<U>;
        const int shift = t - 1;
        const auto below_middle = static_cast<E>((E{1} << (shift - 1)) - 1),
                   mask = static_cast<E>(2 * below_middle + 1);
        const V whole = static_cast<V>(half >> splat_of<V>(shift));
        const U up = bits_as<U>(static_cast<V>((whole & splat_of<V>(1)) | dropped));
        const U fraction = static_cast<U>(bits_as<U>(half) & splat<U>(mask));
        const U carry = static_cast<U>(static_cast<U>(fraction + splat<U>(below_middle) + up) >> splat_of<U>(shift));
        return static_cast<V>(whole + bits_as<V>(carry));
    }
};

/// The same for long types and large t, from the samples without their three lowest bits and a carry that stands for
/// these.
struct TopBits {
    int t;

    template <class V>
    [[gnu::always_inline]] V sum(V x0, V x1) const {
        return rounded((x1 >> splat_of<V>(3)) + (x0 >> splat_of<V>(3)), low(x1) + low(x0) + splat_of<V>(7));
    }
    template <class V>
    [[gnu::always_inline]] V difference(V x0, V x1) const {
        return rounded((x1 >> splat_of<V>(3)) - (x0 >> splat_of<V>(3)), low(x1) + splat_of<V>(7) - low(x0));
    }

private:
    template <class V>
    [[gnu::always_inline]] static V low(V x) {
        return x & splat_of<V>(7);
    }
    template <class V>
    [[gnu::always_inline]] V rounded(V top, V rest) const {
        const V shift = splat_of<V>(t - 3), carry = (rest & splat_of<V>(8)) >> splat_of<V>(3);
        const auto below_middle = (Element<V>{1} << (t - 4)) - 1;
        return (top + splat_of<V>(below_middle) + ((top >> shift) & splat_of<V>(1)) + carry) >> shift;
    }
};

/// t = the width of a long type: 1 from 2^(t - 1) on, -1 below -2^(t - 1).
struct Overflows {
    template <class V>
    [[gnu::always_inline]] V sum(V x0, V x1) const {
        return sign(half_sum(x0, x1));
    }
    template <class V>
    [[gnu::always_inline]] V difference(V x0, V x1) const {
        return sign(half_difference(x0, x1));
    }

private:
    template <class V>
    [[gnu::always_inline]] static V sign(V half) {
        const V above = splat_of<V>(Element<V>{1} << (digits<Element<V>> - 1));
        const V negative = half < -above ? splat_of<V>(-1) : splat_of<V>(0);
        return half >= above ? splat_of<V>(1) : negative;
    }
};

/// t beyond the width
struct Vanished {
    template <class V>
    [[gnu::always_inline]] V sum(V, V) const {
        return V{};
    }
    template <class V>
    [[gnu::always_inline]] V difference(V, V) const {
        return V{};
    }
};

/// Calls body with the rule for a shift.
template <class T, bool Guarded, class Body>
void with_rule(int t, const Body& body) {
    constexpr int width = digits<T> + 1;
    constexpr bool is_long = sizeof(T) >= 4;
    if (t > width)
        body(Vanished{});
    else if (t < 0)
        body(ShiftedUp<T>{{std::min(-t, digits<T>)}});
    else if (t == 0)
        body(Saturated{});
    else if (t == 1)
        body(Halved<Guarded>{});
    else if (is_long && t == width)
        body(Overflows{});
    else if (is_long && t >= width - 3)
        body(TopBits{t});
    else
        body(ShiftedDown{t});
}

// Real numbers

/// d = (x1 - x0) / 2 and d + x0, each as if rounded once. An infinite x0 makes a NaN of the latter, and two negative
/// zeros a positive one.
struct RealHalves {
    template <class V>
    [[gnu::always_inline]] V sum(V x0, V x1) const {
        const V zero_or_nan = x0 - x0, half = splat_of<V>(0.5);
        return unless_infinite((x0 + x1) + zero_or_nan, (x0 * half + x1 * half) + zero_or_nan);
    }
    template <class V>
    [[gnu::always_inline]] V difference(V x0, V x1) const {
        const V half = splat_of<V>(0.5);
        return unless_infinite(x1 - x0, x1 * half - x0 * half);
    }

private:
    template <class V>
    [[gnu::always_inline]] static V unless_infinite(V whole, V halves) {
        return magnitude(whole) <= splat<V>(highest<V>) ? whole * splat_of<V>(0.5) : halves;
    }
};

/// The same, if nothing overflows on the way.
struct FiniteHalves {
    template <class V>
    [[gnu::always_inline]] V sum(V x0, V x1) const {
        const V sum = x0 + x1, half = splat_of<V>(0.5);
        if constexpr (fuses<V>)
            return fma(sum, half, V{});
        else
            return (sum + V{}) * half; // what rounds to a negative zero stays one
    }
    template <class V>
    [[gnu::always_inline]] V difference(V x0, V x1) const {
        return (x1 - x0) * splat_of<V>(0.5);
    }
};

struct RealSums {
    template <class V>
    [[gnu::always_inline]] V sum(V x0, V x1) const {
        return x1 + x0;
    }
    template <class V>
    [[gnu::always_inline]] V difference(V x0, V x1) const {
        return x1 - x0;
    }
};

// Over all pairs

template <class V>
struct Bands {
    V sum, difference;
};

template <class Rule, class V>
[[gnu::always_inline]] inline Bands<V> apply(const Rule& rule, V x0, V x1) {
    return {rule.sum(x0, x1), rule.difference(x0, x1)};
}

template <class T, class Rule>
void split(const T* src, T* low, T* high, Index pairs, const Rule& rule) {
    each_block<Word<T>>(
        pairs,
        [=](auto width, Index i) KELS_INLINE {
            const auto x = load_even_and_odd<Vec<T, width>>(src + 2 * i);
            return apply(rule, x.even, x.odd);
        },
        [=](auto, Index i, auto bands) KELS_INLINE {
            store(low + i, bands.sum);
            store(high + i, bands.difference);
        });
}

/// Lanes of both by turns, stored. Registers of two halves that shuffles do not cross are stored so that they need not.
template <class V>
[[gnu::always_inline]] inline void store_zipped(Element<V>* p, V a, V b) {
    if constexpr (sizeof(V) == 32 && vector_bytes == 32) {
        constexpr int n = lanes<V> / 2;
        const V first = shuffle<[](int i) { return i / n * n + i % n / 2 + i % 2 * lanes<V>; }>(a, b);
        const V second = shuffle<[](int i) { return i / n * n + n / 2 + i % n / 2 + i % 2 * lanes<V>; }>(a, b);
        store(p, half<0>(first));
        store(p + n, half<0>(second));
        store(p + 2 * n, half<1>(first));
        store(p + 3 * n, half<1>(second));
    } else {
        store(p, zip(a, b));
    }
}

template <class T, class Rule>
void merge(const T* low, const T* high, T* dst, Index pairs, const Rule& rule) {
    each_block<Word<T>>(
        pairs,
        [=](auto width, Index i) KELS_INLINE {
            using V = Vec<T, width>;
            return apply(rule, load<V>(high + i), load<V>(low + i));
        },
        [=](auto, Index i, auto bands) KELS_INLINE { store_zipped(dst + 2 * i, bands.difference, bands.sum); });
}

/// Splits as if no sum overflowed, and says whether that is so. The products of both bands are added up: whatever is
/// not finite stays in their sum, and so may samples that are so large that their squares are not.
template <class T>
bool split_finite(const T* src, T* low, T* high, Index pairs) {
    bool finite = true;
    in_widest<Word<T>, 1, 4>(pairs, [&](auto width) KELS_INLINE {
        using V = Vec<T, width>;
        V products[2] = {splat<V>(1), splat<V>(1)}; // not 0: sums below the least normal number take long
        const auto split_block = [&](Index i, V& sum) KELS_INLINE {
            auto x = load_even_and_odd<V>(src + 2 * i);
            if constexpr (sizeof(V) >= 16) x.even = opaque(x.even); // no horizontal sums, which are slow
            const auto bands = apply(FiniteHalves{}, x.even, x.odd);
            store(low + i, bands.sum);
            store(high + i, bands.difference);
            sum = fma(bands.sum, bands.difference, sum);
        };
        Index i = 0;
        for (; i < pairs - 2 * width; i += 2 * width) {
            split_block(i, products[0]);
            split_block(i + width, products[1]);
        }
        if (i < pairs - width) split_block(i, products[0]);
        split_block(pairs - width, products[1]);
        const T sum = sum_of_lanes(products[0] + products[1]);
        finite = sum - sum == 0;
    });
    return finite;
}

/// Sums that overflow are rare: then a stretch is split anew.
template <class T>
void split_reals(const T* src, T* low, T* high, Index pairs) {
    constexpr Index stretch = 8192 / sizeof(T);
    for (Index i = 0; i < pairs; i += stretch) {
        const Index n = std::min(stretch, pairs - i);
        if (!split_finite(src + 2 * i, low + i, high + i, n)) split(src + 2 * i, low + i, high + i, n, RealHalves{});
    }
}

// Calls. A last sample without a partner has the low band to itself.

/// As one of two alike.
template <class T, class Rule>
T alone(const Rule& rule, T x) {
    return rule.sum(x, x);
}
template <class T>
T alone(const TopBits& rule, T x) {
    return TopBits{rule.t - 1}.sum(T{0}, x);
}

constexpr int within_reason(int scaleFactor) { return std::clamp(scaleFactor, -100, 100); }

template <class T>
KelStatus forward(const T* src, int len, T* low, T* high, int scaleFactor = 0) {
    return vector_call({src, low, high}, len, [=] {
        const Index pairs = len / 2;
        const bool unpaired = len % 2 == 1;
        if constexpr (std::is_floating_point_v<T>) {
            split_reals(src, low, high, pairs);
            if (unpaired) low[pairs] = src[2 * pairs];
        } else {
            with_rule<T, sizeof(T) == 4>(within_reason(scaleFactor) + 1, [=](const auto& rule) {
                split(src, low, high, pairs, rule);
                if (unpaired) low[pairs] = alone(rule, src[2 * pairs]);
            });
        }
    });
}

template <class T>
KelStatus inverse(const T* low, const T* high, T* dst, int len, int scaleFactor = 0) {
    return vector_call({low, high, dst}, len, [=] {
        const Index pairs = len / 2;
        const bool unpaired = len % 2 == 1;
        if constexpr (std::is_floating_point_v<T>) {
            merge(low, high, dst, pairs, RealSums{});
            if (unpaired) dst[2 * pairs] = low[pairs];
        } else {
            with_rule<T, sizeof(T) >= 4>(within_reason(scaleFactor), [=](const auto& rule) {
                merge(low, high, dst, pairs, rule);
                if (unpaired) dst[2 * pairs] = rule.sum(T{0}, low[pairs]);
            });
        }
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsWTHaarFwd_8s     (const Kel8s* x, int n, Kel8s* low, Kel8s* high)           { return forward(x, n, low, high); }
KelStatus kelsWTHaarFwd_8s_Sfs (const Kel8s* x, int n, Kel8s* low, Kel8s* high, int s)    { return forward(x, n, low, high, s); }
KelStatus kelsWTHaarFwd_16s    (const Kel16s* x, int n, Kel16s* low, Kel16s* high)        { return forward(x, n, low, high); }
KelStatus kelsWTHaarFwd_16s_Sfs(const Kel16s* x, int n, Kel16s* low, Kel16s* high, int s) { return forward(x, n, low, high, s); }
KelStatus kelsWTHaarFwd_32s    (const Kel32s* x, int n, Kel32s* low, Kel32s* high)        { return forward(x, n, low, high); }
KelStatus kelsWTHaarFwd_32s_Sfs(const Kel32s* x, int n, Kel32s* low, Kel32s* high, int s) { return forward(x, n, low, high, s); }
KelStatus kelsWTHaarFwd_64s    (const Kel64s* x, int n, Kel64s* low, Kel64s* high)        { return forward(x, n, low, high); }
KelStatus kelsWTHaarFwd_64s_Sfs(const Kel64s* x, int n, Kel64s* low, Kel64s* high, int s) { return forward(x, n, low, high, s); }
KelStatus kelsWTHaarFwd_32f    (const Kel32f* x, int n, Kel32f* low, Kel32f* high)        { return forward(x, n, low, high); }
KelStatus kelsWTHaarFwd_64f    (const Kel64f* x, int n, Kel64f* low, Kel64f* high)        { return forward(x, n, low, high); }

KelStatus kelsWTHaarInv_8s     (const Kel8s* low, const Kel8s* high, Kel8s* x, int n)           { return inverse(low, high, x, n); }
KelStatus kelsWTHaarInv_8s_Sfs (const Kel8s* low, const Kel8s* high, Kel8s* x, int n, int s)    { return inverse(low, high, x, n, s); }
KelStatus kelsWTHaarInv_16s    (const Kel16s* low, const Kel16s* high, Kel16s* x, int n)        { return inverse(low, high, x, n); }
KelStatus kelsWTHaarInv_16s_Sfs(const Kel16s* low, const Kel16s* high, Kel16s* x, int n, int s) { return inverse(low, high, x, n, s); }
KelStatus kelsWTHaarInv_32s    (const Kel32s* low, const Kel32s* high, Kel32s* x, int n)        { return inverse(low, high, x, n); }
KelStatus kelsWTHaarInv_32s_Sfs(const Kel32s* low, const Kel32s* high, Kel32s* x, int n, int s) { return inverse(low, high, x, n, s); }
KelStatus kelsWTHaarInv_64s    (const Kel64s* low, const Kel64s* high, Kel64s* x, int n)        { return inverse(low, high, x, n); }
KelStatus kelsWTHaarInv_64s_Sfs(const Kel64s* low, const Kel64s* high, Kel64s* x, int n, int s) { return inverse(low, high, x, n, s); }
KelStatus kelsWTHaarInv_32f    (const Kel32f* low, const Kel32f* high, Kel32f* x, int n)        { return inverse(low, high, x, n); }
KelStatus kelsWTHaarInv_64f    (const Kel64f* low, const Kel64f* high, Kel64f* x, int n)        { return inverse(low, high, x, n); }
}
// clang-format on
