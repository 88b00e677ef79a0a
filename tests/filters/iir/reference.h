// The rules of IIR filters, written out: of real taps in a wide type R, of integer taps in 64 bits.
#pragma once

#include "filters/iir/families.h"

#include <cstdint>

namespace iir_test {

/// A number with both parts; that of a real one is 0.
template <class R>
struct Z {
    R re{}, im{};
    friend Z operator+(Z a, Z b) { return {a.re + b.re, a.im + b.im}; }
    friend Z operator-(Z a, Z b) { return {a.re - b.re, a.im - b.im}; }
    friend Z operator*(Z a, Z b) { return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re}; }
};

template <class R, class T>
Z<R> wide(const T& x) {
    if constexpr (parts<T> == 2)
        return {static_cast<R>(x.re), static_cast<R>(x.im)};
    else
        return {static_cast<R>(x), R{}};
}

template <class R, class T>
std::vector<Z<R>> wide(const std::vector<T>& x) {
    std::vector<Z<R>> all;
    for (const T& v : x) all.push_back(wide<R>(v));
    return all;
}

template <class T, class R>
T narrow(const Z<R>& z) {
    if constexpr (parts<T> == 2)
        return {static_cast<Part<T>>(z.re), static_cast<Part<T>>(z.im)};
    else
        return static_cast<T>(z.re);
}

template <class T>
long double size_of(const T& z) {
    return std::hypot(static_cast<long double>(z.re), static_cast<long double>(z.im));
}

/// What the division of a section or of both polynomials leaves: b then a from a[1] on; or the gain and c1 to c4 of
/// each section. `over` divides two numbers, `raised` is a dividend and `stored` a result, as the taps' arithmetic has
/// them.
template <class N, class T, class Over, class Raised, class Stored>
std::vector<N> divided(bool cascade, const std::vector<T>& taps, Over over, Raised raised, Stored stored) {
    const auto tap = [&](std::size_t i) { return wide<decltype(N::re)>(taps[i]); };
    const auto quotient = [&](std::size_t i, std::size_t by) { return stored(over(raised(tap(i)), tap(by))); };
    std::vector<N> quotients;
    if (!cascade) {
        const std::size_t leading = taps.size() / 2;
        for (std::size_t i = 0; i < taps.size(); ++i)
            if (i != leading) quotients.push_back(quotient(i, leading));
        return quotients;
    }
    N gain = raised(N{1, 0});
    quotients.push_back({});
    for (std::size_t s = 0; s < taps.size(); s += 6) {
        gain = over(gain * tap(s), tap(s + 3));
        quotients.insert(quotients.end(),
                         {quotient(s + 4, s + 3), quotient(s + 5, s + 3), quotient(s + 1, s), quotient(s + 2, s)});
    }
    quotients[0] = stored(gain);
    return quotients;
}

/// Arithmetic of real taps: registers are rounded to their type where they are stored, or never.
template <class R, class Kept>
struct RealArithmetic {
    using Number = Z<R>;
    static Number product(Number z) { return z; }
    static Number result(Number y) { return y; }
    Number input(Number z) const { return z; }
    Number feedback(Number z) const { return z; }
    Number stored(Number z) const {
        return {static_cast<R>(static_cast<Kept>(z.re)), static_cast<R>(static_cast<Kept>(z.im))};
    }
};

/// v's magnitude shifted left, or right if s is negative, with v's sign; in 64 bits.
inline std::int64_t shm(std::int64_t v, std::int64_t s) {
    if (s == 0 || v == 0) return v;
    std::uint64_t magnitude = v < 0 ? 0 - static_cast<std::uint64_t>(v) : static_cast<std::uint64_t>(v);
    for (std::int64_t i = 0; i < std::min<std::int64_t>(std::abs(s), 64); ++i)
        magnitude = s > 0 ? magnitude << 1 : magnitude >> 1;
    return static_cast<std::int64_t>(v < 0 ? 0 - magnitude : magnitude);
}

template <class T>
std::int64_t saturated(std::int64_t v) {
    return std::clamp<std::int64_t>(v, std::numeric_limits<T>::min(), std::numeric_limits<T>::max());
}

/// Arithmetic of integer taps.
struct FixedArithmetic {
    using Number = Z<std::uint64_t>;
    std::int64_t k, tf;
    bool narrow = false; ///< a real sample alone: products and unshifted results wrap in 32 bits
    static std::uint64_t shift(std::uint64_t v, std::int64_t s) {
        return static_cast<std::uint64_t>(shm(static_cast<std::int64_t>(v), s));
    }
    static std::uint64_t limit(std::uint64_t v) {
        return static_cast<std::uint64_t>(saturated<Kel32s>(static_cast<std::int64_t>(v)));
    }
    static std::uint64_t wrapped(std::uint64_t v) { return static_cast<std::uint64_t>(static_cast<std::int32_t>(v)); }
    Number product(Number z) const { return narrow ? Number{wrapped(z.re), 0} : z; }
    Number result(Number y) const { return narrow && k == 0 ? Number{wrapped(y.re), 0} : y; }
    Number input(Number z) const { return {shift(z.re, k), shift(z.im, k)}; }
    Number feedback(Number z) const { return {shift(z.re, tf), shift(z.im, tf)}; }
    static Number stored(Number z) { return {limit(z.re), limit(z.im)}; }
};

/// A filter of any order: stored taps b[0] to b[n], a[1] to a[n].
template <class A>
struct AnyOrder {
    using N = typename A::Number;
    std::vector<N> taps, d;

    std::size_t n() const { return d.size(); }
    N b(std::size_t i) const { return taps[i]; }
    N a(std::size_t i) const { return taps[n() + i]; }
    N at(std::size_t i) const { return i < n() ? d[i] : N{}; }

    N one(const A& of, N x) {
        const N y = of.result(at(0) + of.input(of.product(b(0) * x)));
        for (std::size_t i = 0; i < n(); ++i)
            d[i] = of.stored(at(i + 1) + of.input(of.product(b(i + 1) * x)) - of.feedback(a(i + 1) * y));
        return y;
    }
    std::vector<N> block(const A& of, const std::vector<N>& x) {
        std::vector<N> y;
        std::size_t i = 0;
        for (; n() > 1 && i + 1 < x.size(); i += 2) {
            const N x0 = x[i], x1 = x[i + 1];
            const N y0 = d[0] + of.input(b(0) * x0);
            const N y1 = d[1] + of.input(b(1) * x0 + b(0) * x1) - of.feedback(a(1) * y0);
            for (std::size_t j = 0; j + 2 < n(); ++j)
                d[j] = of.stored(d[j + 2] + of.input(b(j + 1) * x1 + b(j + 2) * x0) -
                                 of.feedback(a(j + 1) * y1 + a(j + 2) * y0));
            d[n() - 2] =
                of.stored(of.input(b(n() - 1) * x1 + b(n()) * x0) - of.feedback(a(n() - 1) * y1 + a(n()) * y0));
            d[n() - 1] = of.stored(of.input(b(n()) * x1) - of.feedback(a(n()) * y1));
            y.insert(y.end(), {y0, y1});
        }
        for (; i < x.size(); ++i) y.push_back(one(of, x[i]));
        return y;
    }
};

/// A cascade: the gain and c1 to c4 of each section; w1, w2 of each section. Real taps take pairs in a block.
template <class A>
struct Sections {
    using N = typename A::Number;
    std::vector<N> taps, w;

    N one(const A& of, N x) { return turn(of, {x})[0]; }
    std::vector<N> block(const A& of, const std::vector<N>& x) {
        constexpr std::size_t together = std::is_same_v<A, FixedArithmetic> ? 1 : 2;
        std::vector<N> y;
        for (std::size_t i = 0; i < x.size(); i += together)
            for (const N& t : turn(of, {x.begin() + static_cast<long>(i),
                                        x.begin() + static_cast<long>(std::min(i + together, x.size()))}))
                y.push_back(t);
        return y;
    }
    /// Samples through one section after the other; registers are stored in the end.
    std::vector<N> turn(const A& of, std::vector<N> t) {
        for (N& x : t) x = of.input(taps[0] * x);
        for (std::size_t s = 0; s < w.size() / 2; ++s) {
            const N *c = &taps[4 * s], c1 = c[1], c2 = c[2], c3 = c[3], c4 = c[4];
            N w1 = w[2 * s], w2 = w[2 * s + 1];
            for (N& x : t) {
                const N now = x - of.feedback(c1 * w1 + c2 * w2);
                x = now + of.feedback(c3 * w1 + c4 * w2);
                w2 = w1;
                w1 = now;
            }
            w[2 * s] = of.stored(w1);
            w[2 * s + 1] = of.stored(w2);
        }
        return t;
    }
};

/// A filter of any order or a cascade, of divided taps.
template <class A>
struct Reference {
    using N = typename A::Number;

    Reference(bool is_cascade, const std::vector<N>& stored) : cascade(is_cascade) {
        taps() = stored;
        registers().resize(stored.size() / 2);
    }
    std::vector<N>& taps() { return cascade ? sections.taps : any_order.taps; }
    std::vector<N>& registers() { return cascade ? sections.w : any_order.d; }

    std::vector<N> filtered(const A& of, Way way, const std::vector<N>& x) {
        if (way != one_by_one) return cascade ? sections.block(of, x) : any_order.block(of, x);
        std::vector<N> y;
        for (const N& v : x) y.push_back(cascade ? sections.one(of, v) : any_order.one(of, v));
        return y;
    }

protected:
    bool cascade;

private:
    AnyOrder<A> any_order;
    Sections<A> sections;
};

} // namespace iir_test
