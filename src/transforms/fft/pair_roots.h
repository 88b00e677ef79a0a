// Tables of roots for vectors of pairs, and products with them.
#pragma once

#include "frame/complex_vector.h"
#include "transforms/roots.h"

namespace kels {

/// How a table holds the roots w that turn a vector of pairs z. Both forms round alike, and alike for z with its parts
/// exchanged: the inverse transform has the bits of the forward one between exchanges.
enum class RootForm {
    once,   ///< pairs w, whose parts the loads spread: half the table, and two instructions more
    spread, ///< in two vectors the parts of w in both lanes, the imaginary one with alternating signs
};

/// z w, w in the spread form.
template <class V>
[[gnu::always_inline]] inline V times_spread(V z, const Element<V>* w) {
    return fma(z, load<V>(w), swapped(z) * load<V>(w + lanes<V>));
}

/// z w, or z conj(w).
template <bool conjugate, class V>
[[gnu::always_inline]] inline V times_once(V z, const Element<V>* w) {
    const V re = load_spread<0, V>(w), of_im = swapped(z) * load_spread<1, V>(w);
    return conjugate ? fma_alternating_back(z, re, of_im) : fma_alternating(z, re, of_im);
}

/// The pairs at z times w.
template <RootForm form, class V>
[[gnu::always_inline]] inline V load_turned(const Element<V>* z, const Element<V>* w) {
    if constexpr (form == RootForm::spread)
        return times_spread(load<V>(z), w);
    else
        return times_once<false>(load<V>(z), w);
}

/// The table of a last pass over vectors of `columns`, `lanes` / 2 of them in a vector: for every vector and every
/// point but the 0th, in the order of access, exp(-2 pi i b column / N) times a factor, or conjugated for the inverse.
struct PairTable {
    RootForm form;
    int lanes, columns, first_radix, second_radix;

    /// One of the tables that are made together. The address is null where there is none.
    template <class T>
    struct Target {
        T* table;
        T factor;
        bool conjugated;
    };

    constexpr int points() const { return first_radix * second_radix; }
    constexpr int values_of_root() const { return form == RootForm::once ? lanes : 2 * lanes; }
    constexpr int values_of_vector() const { return values_of_root() * (points() - 1); }
    constexpr std::size_t size() const { return static_cast<std::size_t>(values_of_vector() * (2 * columns / lanes)); }

    /// Which point the last codelet asks for as its i-th, and when it asks for point b.
    constexpr int point(int i) const { return i % first_radix * second_radix + i / first_radix; }
    constexpr int turn(int b) const { return b % second_radix * first_radix + b / second_radix; }

    template <int Pairs, class T>
    void make(Target<T> forward, Target<T> inverse) const {
        const Circle circle(static_cast<std::size_t>(points()) * static_cast<std::size_t>(columns));
        constexpr int together = std::min(Pairs, root_lanes);
        std::ptrdiff_t at = 0;
        for (int column = 0; column < columns; column += Pairs)
            for (int i = 1; i < points(); ++i, at += values_of_root())
                for (int k = 0; k < Pairs; k += together) {
                    const auto step = static_cast<std::size_t>(point(i)), first = static_cast<std::size_t>(column + k);
                    const auto w = circle.roots<T>(Circle::progression(step * first, step));
                    for (const Target<T>& target : {forward, inverse})
                        if (target.table) write<together>(target, at + 2 * k, w.re, w.im);
                }
    }

private:
    template <int together, class T, class V>
    [[gnu::always_inline]] void write(const Target<T>& target, std::ptrdiff_t at, V all_re, V all_im) const {
        using W = Vec<T, together>;
        const W re = slice<together, 0>(all_re) * splat<W>(target.factor);
        const W im = slice<together, 0>(all_im) * splat<W>(target.conjugated ? -target.factor : target.factor);
        if (form == RootForm::once) {
            store(target.table + at, zip(re, im));
        } else {
            store(target.table + at, zip(re, re));
            store(target.table + at + lanes, zip(-im, im));
        }
    }
};

} // namespace kels
