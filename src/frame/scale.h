// The scale factor of an integer result: the exact value times 2^-factor, rounded to the nearest integer with ties to
// even, then saturated. Every int is a factor. Which case it is, is found out once a call; the loop gets it as a type.
#pragma once

#include "frame/numeric.h"
#include "frame/simd.h"

#include <algorithm>
#include <limits>
#include <type_traits>

namespace kels {

/// t 2^-shift rounded to nearest, ties to even. |t| is at most 2^Digits and the shift from 1 to Digits.
template <int Digits, class V>
[[gnu::always_inline]] inline V round_half_even(V t, int shift) {
    using E = Element<V>;
    using U = std::make_unsigned_t<E>;
    const auto below_half = static_cast<U>((U{1} << (shift - 1)) - 1);
    if constexpr (Digits < digits<E>) {
        const V odd = (t >> splat<V>(static_cast<E>(shift))) & splat<V>(E{1});
        return static_cast<V>(t + splat<V>(static_cast<E>(below_half)) + odd) >> splat<V>(static_cast<E>(shift));
    } else {
        // t fills its type, and the sum above would overflow: only the part below the point is rounded, into a carry.
        using UV = Vec<U, lanes<V>>;
        const UV count = splat<UV>(static_cast<U>(shift));
        const V whole = t >> splat<V>(static_cast<E>(shift));
        const UV fraction = (UV)t & splat<UV>(static_cast<U>(2 * below_half + 1));
        const UV odd = (UV)whole & splat<UV>(U{1});
        return whole + (V)((fraction + splat<UV>(below_half) + odd) >> count);
    }
}

// The cases. Each is called with lanes of exact values and gives lanes of R.

/// No factor, or none that matters; real results have none.
template <class R>
struct Unscaled {
    template <class V>
    [[gnu::always_inline]] Vec<R, lanes<V>> operator()(V t) const {
        if constexpr (std::is_floating_point_v<R>)
            return convert<R>(t);
        else
            return saturate<R>(t);
    }
};

template <class R, int Digits>
struct ScaledDown {
    int shift;

    template <class V>
    [[gnu::always_inline]] Vec<R, lanes<V>> operator()(V t) const {
        return saturate<R>(round_half_even<Digits>(t, shift));
    }
};

/// Saturating first and shifting then is the same, and in narrower lanes.
template <class R>
struct ScaledUp {
    int shift;

    template <class V>
    [[gnu::always_inline]] Vec<R, lanes<V>> operator()(V t) const {
        using Lanes = Vec<R, lanes<V>>;
        constexpr R max = std::numeric_limits<R>::max(), min = std::numeric_limits<R>::min();
        constexpr int most = 8 * static_cast<int>(sizeof(R)) - 1; // what the shift instructions can do
        const Lanes x = saturate<R>(t);
        const Lanes shifted = x << splat<Lanes>(static_cast<R>(std::min(shift, most)));
        const Lanes not_below = x < splat<Lanes>(static_cast<R>(min >> shift)) ? splat<Lanes>(min) : shifted;
        return x > splat<Lanes>(static_cast<R>(max >> shift)) ? splat<Lanes>(max) : not_below;
    }
};

/// So far down that nothing rounds to other than 0.
template <class R>
struct Vanishing {
    template <class V>
    [[gnu::always_inline]] Vec<R, lanes<V>> operator()(V) const {
        return Vec<R, lanes<V>>{};
    }
};

/// Calls body with the case of the factor, for exact values of at most 2^Digits.
template <class R, int Digits, class Body>
void with_scale(int factor, Body body) {
    if constexpr (std::is_floating_point_v<R>) {
        body(Unscaled<R>{});
    } else {
        if (factor == 0)
            body(Unscaled<R>{});
        else if (factor > Digits)
            body(Vanishing<R>{});
        else if (factor > 0)
            body(ScaledDown<R, Digits>{factor});
        else
            body(ScaledUp<R>{-std::max(factor, -digits<R>)}); // so far up that all but 0 saturates
    }
}

} // namespace kels
