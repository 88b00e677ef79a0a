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
    bool inverse;
    int lanes, columns, first_radix, second_radix;

    constexpr int points() const { return first_radix * second_radix; }
    constexpr int values_of_root() const { return form == RootForm::once ? lanes : 2 * lanes; }
    constexpr int values_of_vector() const { return values_of_root() * (points() - 1); }
    constexpr std::size_t size() const { return static_cast<std::size_t>(values_of_vector() * (2 * columns / lanes)); }

    /// Which point the last codelet asks for as its i-th, and when it asks for point b.
    constexpr int point(int i) const { return i % first_radix * second_radix + i / first_radix; }
    constexpr int turn(int b) const { return b % second_radix * first_radix + b / second_radix; }

    template <class T>
    void make(T* table, T factor) const {
        const Circle circle(static_cast<std::size_t>(points()) * static_cast<std::size_t>(columns));
        for (int column = 0; column < columns; column += lanes / 2)
            for (int i = 1; i < points(); ++i, table += values_of_root())
                for (int lane = 0; lane < lanes; lane += 2) {
                    T w[2];
                    write_root(w, static_cast<std::size_t>(point(i)) * static_cast<std::size_t>(column + lane / 2),
                               circle);
                    write(table, lane, w[0] * factor, (inverse ? -w[1] : w[1]) * factor);
                }
    }

private:
    template <class T>
    void write(T* vector, int lane, T re, T im) const {
        vector[lane] = re;
        vector[lane + 1] = form == RootForm::spread ? re : im;
        if (form == RootForm::once) return;
        vector[lanes + lane] = -im;
        vector[lanes + lane + 1] = im;
    }
};

} // namespace kels
