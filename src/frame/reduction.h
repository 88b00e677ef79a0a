// Reductions of whole vectors to one value, in a fixed number of lanes side by side: element i belongs to lane i modulo
// that number. So the order of a sum, and its value, are the same at every level and at any alignment.
//
// An accumulator holds the lanes. It is a template of their number with
//
//     void add(keep, blocks...)   takes one block of every source, each element in its lanes; `keep` makes zeros of the
//                                 lanes whose elements have been taken before
//     result()                    folds the lanes
//
// and, if its lanes have room for `steps_to_settle` steps only, `void settle()`, which empties them.
#pragma once

#include "frame/blocks.h"
#include "frame/numeric.h"
#include "frame/simd.h"

#include <algorithm>
#include <array>
#include <limits>
#include <type_traits>

namespace kels {

/// Sums of the lanes of one kind, which come by turns: one sum, or those of real and of imaginary parts.
template <int Kinds, class V>
[[gnu::always_inline]] inline auto sums_of_lanes(V a) {
    if constexpr (lanes < V >> Kinds) {
        return sums_of_lanes<Kinds>(half<0>(a) + half<1>(a));
    } else {
        std::array<Element<V>, Kinds> sums;
        store(sums.data(), a);
        return sums;
    }
}

/// Sums of doubles. Two halves of the terms are added to each other first, so that half as many lanes hold the sums,
/// and the way from one step to the next is half as long.
template <class Terms>
struct DoubleSums {
    Vec<double, lanes<Terms> / 2> sums{};

    [[gnu::always_inline]] void add(Terms terms) {
        sums = add_by_fma(sums, add_by_fma(half<0>(terms), half<1>(terms)));
    }
    [[gnu::always_inline]] double total() const { return sum_of_lanes(sums); }
};

/// Sums of products of doubles, which are exact if whether a level fuses is not to show.
template <class Factors>
struct ProductSums {
    Factors sums{};

    [[gnu::always_inline]] void add_product(Factors a, Factors b) { sums = fma(a, b, sums); }
    template <int Kinds = 1>
    [[gnu::always_inline]] auto totals() const {
        return sums_of_lanes<Kinds>(sums);
    }
    [[gnu::always_inline]] double total() const { return sum_of_lanes(sums); }
};

/// Every element of the block is new.
struct AllLanes {
    template <class V>
    [[gnu::always_inline]] V operator()(V x) const {
        return x;
    }
};

/// As many zeros as ones: a vector of words that begins in the middle of the zeros ends with words of ones.
template <class W>
alignas(64) inline constexpr auto zeros_then_ones = [] {
    std::array<W, 128> table{};
    for (std::size_t i = table.size() / 2; i < table.size(); ++i) table[i] = static_cast<W>(-1);
    return table;
}();

/// Only the last `fresh` elements of a block of `Elements` are new.
template <int Elements>
struct LastLanes {
    Index fresh;

    template <class V>
    [[gnu::always_inline]] V operator()(V x) const {
        using Bits = typename WordOf<sizeof(Element<V>)>::type;
        using B = Vec<Bits, lanes<V>>;
        const Bits* middle = zeros_then_ones<Bits>.data() + 64;
        return bits_as<V>(bits_as<B>(x) & load<B>(middle - (Elements - fresh) * (lanes<V> / Elements)));
    }
};

/// Elements i, i + 1, ... of a source, complex ones as two lanes each.
template <int Elements, class T>
[[gnu::always_inline]] inline auto elements_at(const T* p, Index i) {
    return load<Vec<Part<T>, Elements * parts<T>>>(p + i);
}

inline constexpr int steps_to_settle = 256;

/// The vector has at least one block. Its last block ends with it.
template <int Elements, class Accumulator, class... T>
[[gnu::always_inline]] inline auto reduce_blocks(Index n, Accumulator accumulator, const T*... sources) {
    const auto add_blocks = [&](Index from, Index end) KELS_INLINE {
        for (; from + Elements <= end; from += Elements)
            accumulator.add(AllLanes{}, elements_at<Elements>(sources, from)...);
        return from;
    };
    Index i = 0;
    if constexpr (requires { accumulator.settle(); }) {
        constexpr Index most = Index{steps_to_settle - 1} * Elements;
        while (n - i > most) {
            i = add_blocks(i, i + most);
            accumulator.settle();
        }
    }
    i = add_blocks(i, n);
    if (i < n) accumulator.add(LastLanes<Elements>{n - i}, elements_at<Elements>(sources, n - Elements)...);
    return accumulator.result();
}

/// Elements in the narrowest block.
inline constexpr int least_block = 4;

/// Fewer elements than the narrowest block, as the end of one; before them the first, over and over.
template <class T>
struct Padded {
    T element[least_block];

    Padded(const T* source, Index n) {
        const Index absent = least_block - n;
        for (Index i = 0; i < least_block; ++i) element[i] = source[std::max<Index>(i - absent, 0)];
    }
};

/// Reduces the sources, of n elements each, in blocks of `Elements`, or of fewer where the vectors are shorter.
/// `make` is called with the number of elements of a block and gives an accumulator for it.
template <int Elements, class Make, class... T>
[[gnu::always_inline]] inline auto reduce(Index n, const Make& make, const T*... sources) {
    if (n >= Elements)
        return reduce_blocks<Elements>(n, make(Width<Elements>{}), sources...);
    else if constexpr (Elements > least_block)
        return reduce<std::max(Elements / 4, least_block)>(n, make, sources...);
    else {
        auto accumulator = make(Width<Elements>{});
        accumulator.add(LastLanes<Elements>{n}, elements_at<Elements>(Padded<T>(sources, n).element, 0)...);
        return accumulator.result();
    }
}

template <int Elements, template <int> class Accumulator, class... T>
[[gnu::always_inline]] inline auto reduce(Index n, const T*... sources) {
    return reduce<Elements>(
        n, [](auto width) KELS_INLINE { return Accumulator<width>{}; }, sources...);
}

} // namespace kels
