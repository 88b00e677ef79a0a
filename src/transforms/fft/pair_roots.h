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

    /// Both tables are read off the whole circle, which takes 32 KiB of stack at most.
    template <int Pairs, class T>
    void make(Target<T> forward, Target<T> inverse) const {
        const int n = points() * columns;
        alignas(64) T circle[32768 / sizeof(T)];
        Circle(static_cast<std::size_t>(n)).write_all(circle);
        std::ptrdiff_t at = 0;
        for (int column = 0; column < columns; column += Pairs)
            for (int i = 1; i < points(); ++i, at += values_of_root()) {
                const auto w = gathered<Pairs>(circle, point(i) * column, point(i));
                for (const Target<T>& target : {forward, inverse})
                    if (target.table) write(target, at, w);
            }
    }

private:
    /// The roots with exponents first, first + step ...
    template <int Pairs, class T>
    [[gnu::always_inline]] static Vec<T, 2 * Pairs> gathered(const T* circle, int first, int step) {
        Vec<T, 2 * Pairs> w;
        unrolled<Pairs>([&](auto k) KELS_INLINE {
            const T* root = circle + 2 * (first + k * step);
            w[2 * k] = root[0];
            w[2 * k + 1] = root[1];
        });
        return w;
    }

    template <class T, class V>
    [[gnu::always_inline]] void write(const Target<T>& target, std::ptrdiff_t at, V w) const {
        w = w * alternate<V>(target.factor, target.conjugated ? -target.factor : target.factor);
        if (form == RootForm::once) {
            store(target.table + at, w);
        } else {
            store(target.table + at, shuffle<[](int i) { return i & ~1; }>(w, w));
            const V im = shuffle<[](int i) { return i | 1; }>(w, w);
            store(target.table + at + lanes, negated_every_other<0>(im));
        }
    }
};

} // namespace kels
