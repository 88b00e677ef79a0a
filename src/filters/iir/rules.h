// The arithmetic of recursions: what a forward and a feedback term add to a register, and what a register keeps.
#pragma once

#include "filters/iir/numbers.h"

#include <cstdint>
#include <limits>

namespace kels {

/// Real taps, in double precision; registers have the taps' type.
///
/// Where that is single, results have the same bits at every level. So a product is fused with its sum only where that
/// cannot be seen: a tap times a stored register, or times a sample, is exact. What is not, is rounded first.
template <class Taps>
struct RealRule {
    using Element = Kel64f;
    static constexpr bool fused = std::is_same_v<Part<Taps>, Kel64f>;

    template <class N>
    [[gnu::always_inline]] static N enter(N gain, N x) {
        return product<true>(gain, x);
    }
    template <class N>
    [[gnu::always_inline]] static N forward(N sum, N b, N x) {
        return plus_product<true>(sum, b, x);
    }
    template <class N>
    [[gnu::always_inline]] static N forward(N sum, N b, N x, N c, N z) {
        return plus_product<true>(plus_product<true>(sum, b, x), c, z);
    }
    template <class N>
    [[gnu::always_inline]] static N back(N sum, N a, N y) {
        return minus_product<fused>(sum, a, y);
    }
    /// The first product is the one that comes last.
    template <class N>
    [[gnu::always_inline]] static N back(N sum, N a, N y, N c, N z) {
        return minus_product<fused>(minus_product<fused>(sum, c, z), a, y);
    }
    template <class N>
    [[gnu::always_inline]] static N result(N y) {
        return y;
    }
    template <class V>
    [[gnu::always_inline]] static V stored(V w) {
        if constexpr (fused)
            return w;
        else
            return rounded_to_single(w);
    }
    template <class V>
    [[gnu::always_inline]] static Complex<V> stored(Complex<V> w) {
        return {stored(w.re), stored(w.im)};
    }
};

// Integer taps, in 64 bits that wrap: unsigned, since that is what their sums and products do.

using Word64 = std::uint64_t;

/// Words with the sign that their highest bit says.
template <class V>
[[gnu::always_inline]] inline auto as_signed(V v) {
    return (Vec<std::int64_t, lanes<V>>)v;
}

/// Magnitudes shifted right by 0 to 63 places: toward zero.
struct ShiftDown {
    int places;
    explicit ShiftDown(std::int64_t left) : places(static_cast<int>(-left)) {}
    static bool serves(std::int64_t left) { return left <= 0 && left > -64; }

    Word64 dropped() const { return (Word64{1} << places) - 1; }
    template <class V>
    [[gnu::always_inline]] V down(V v) const {
        return (V)(as_signed(v) >> splat<Vec<std::int64_t, lanes<V>>>(places));
    }

    template <class V>
    [[gnu::always_inline]] V operator()(V v) const {
        const V negative_up = v + splat<V>(dropped());
        return down(as_signed(v) < 0 ? negative_up : v);
    }
};

/// Magnitudes shifted either way by any count, within their 64 bits.
struct ShiftAnyhow {
    std::int64_t left;
    explicit ShiftAnyhow(std::int64_t places) : left(places) {}
    static bool serves(std::int64_t) { return true; }

    template <class V>
    [[gnu::always_inline]] V operator()(V v) const {
        using S = Vec<std::int64_t, lanes<V>>;
        const V sign = (V)(as_signed(v) >> splat<S>(63));
        if (left <= -64 || left >= 64) return V{};
        V magnitude = (v ^ sign) - sign;
        if (left > 0)
            magnitude = magnitude << splat<V>(static_cast<Word64>(left));
        else
            magnitude = magnitude >> splat<V>(static_cast<Word64>(-left));
        return (magnitude ^ sign) - sign;
    }
};

/// A shift of both parts of a number.
template <class Shift, class V>
[[gnu::always_inline]] inline V shifted(const Shift& shift, V v) {
    return shift(v);
}
template <class Shift, class V>
[[gnu::always_inline]] inline Complex<V> shifted(const Shift& shift, Complex<V> z) {
    return {shift(z.re), shift(z.im)};
}

/// Whether words are numbers of 32 bits.
template <class V>
[[gnu::always_inline]] inline bool fits(V v) {
    using S = Vec<std::int64_t, lanes<V>>;
    return !any_lane((as_signed(v << splat<V>(Word64{32})) >> splat<S>(32)) != as_signed(v));
}

/// Words limited to 32 bits. Most are: one alone is not waited for.
template <class V>
[[gnu::always_inline]] inline V limited(V v) {
    if constexpr (lanes<V> == 1) {
        if (fits(v)) [[likely]]
            return v;
        asm volatile(""); // a branch
    }
    using S = Vec<std::int64_t, lanes<V>>;
    const S most = splat<S>(std::numeric_limits<Kel32s>::max()), least = splat<S>(std::numeric_limits<Kel32s>::min());
    S s = as_signed(v);
    s = s > most ? most : s;
    s = s < least ? least : s;
    return (V)s;
}
template <class V>
[[gnu::always_inline]] inline Complex<V> limited(Complex<V> z) {
    return {limited(z.re), limited(z.im)};
}

/// Forward terms are shifted by what is left of the taps' factor under the scale, feedback terms by the factor itself.
/// Two products share one shift.
template <class Shift>
struct FixedRule {
    using Element = Word64;
    Shift input, feedback;

    template <class N>
    [[gnu::always_inline]] N enter(N gain, N x) const {
        return shifted(input, product<false>(gain, x));
    }
    template <class N>
    [[gnu::always_inline]] N forward(N sum, N b, N x) const {
        return sum + shifted(input, product<false>(b, x));
    }
    template <class N>
    [[gnu::always_inline]] N forward(N sum, N b, N x, N c, N z) const {
        return sum + shifted(input, product<false>(b, x) + product<false>(c, z));
    }
    template <class N>
    [[gnu::always_inline]] N back(N sum, N a, N y) const {
        return sum - shifted(feedback, product<false>(a, y));
    }
    template <class N>
    [[gnu::always_inline]] N back(N sum, N a, N y, N c, N z) const {
        return sum - shifted(feedback, product<false>(a, y) + product<false>(c, z));
    }
    template <class N>
    [[gnu::always_inline]] static N result(N y) {
        return y;
    }
    template <class N>
    [[gnu::always_inline]] static N stored(N w) {
        return limited(w);
    }
};

/// The same for a real sample alone: forward products wrap in 32 bits, and a result that nothing shifts does too.
struct NarrowRule : FixedRule<ShiftAnyhow> {
    static Word64 wrapped(Word64 v) { return static_cast<Word64>(std::int64_t{static_cast<Kel32s>(v)}); }

    Word64 enter(Word64 gain, Word64 x) const { return input(wrapped(gain * x)); }
    Word64 forward(Word64 sum, Word64 b, Word64 x) const { return sum + input(wrapped(b * x)); }
    Word64 result(Word64 y) const { return input.left == 0 ? wrapped(y) : y; }
};

} // namespace kels
