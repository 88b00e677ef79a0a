// Medians of long windows by ranks.
//
// The samples that a tile of windows sees are sorted once, so that each has a rank of its own. From then on a window is
// a set of ranks: one bit each, with bits above them that tell which words have any. From window to window one rank
// goes, one comes, and the median moves to a neighbour in the set, or not at all: the same few steps whatever the mask
// and the data.
#pragma once

#include "frame/memory.h"
#include "frame/numeric.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

namespace kels {

/// Samples as unsigned numbers of the same order; zeros and NaNs have a place in it by their bits.
template <class T>
struct Ordered {
    using Key = std::conditional_t<sizeof(T) == 8, std::uint64_t, std::uint32_t>;
    static constexpr auto sign = static_cast<Word<T>>(Word<T>{1} << (8 * sizeof(T) - 1));

    static Key key(T x) {
        const auto bits = std::bit_cast<Word<T>>(x);
        if constexpr (std::is_unsigned_v<T>) return bits;
        if constexpr (std::is_floating_point_v<T>)
            if (bits & sign) return static_cast<Word<T>>(~bits);
        return static_cast<Word<T>>(bits ^ sign);
    }
    static T sample(Key key) {
        const auto bits = static_cast<Word<T>>(key);
        if constexpr (std::is_unsigned_v<T>) return bits;
        if constexpr (std::is_floating_point_v<T>)
            if (!(bits & sign)) return std::bit_cast<T>(static_cast<Word<T>>(~bits));
        return std::bit_cast<T>(static_cast<Word<T>>(bits ^ sign));
    }
};

/// A set of numbers below a bound.
class RankSet {
public:
    bool make(std::size_t bound) {
        std::size_t words = 0;
        for (std::size_t bits = bound; bits > 1 || levels == 0; ++levels) {
            bits = (bits + 63) / 64;
            from[static_cast<std::size_t>(levels)] = words;
            words += bits;
        }
        room = make_owned<std::uint64_t>(words);
        count = words;
        return room != nullptr;
    }
    void clear() { std::fill_n(room.get(), count, std::uint64_t{0}); }

    void insert(std::size_t rank) {
        for (int k = 0; k < levels; ++k, rank /= 64) {
            std::uint64_t& w = word(k, rank / 64);
            const bool had_some = w != 0;
            w |= bit(rank);
            if (had_some) return;
        }
    }
    void remove(std::size_t rank) {
        for (int k = 0; k < levels; ++k, rank /= 64)
            if ((word(k, rank / 64) &= ~bit(rank)) != 0) return;
    }

    /// The next above; there is one.
    std::size_t next(std::size_t rank) const {
        int k = 0;
        std::uint64_t above;
        for (; (above = word(k, rank / 64) & (~std::uint64_t{1} << rank % 64)) == 0; ++k) rank /= 64;
        for (;; --k) {
            rank = rank / 64 * 64 + static_cast<std::size_t>(std::countr_zero(above));
            if (k == 0) return rank;
            above = word(k - 1, rank);
            rank *= 64;
        }
    }
    /// The next below; there is one.
    std::size_t previous(std::size_t rank) const {
        int k = 0;
        std::uint64_t below;
        for (; (below = word(k, rank / 64) & (bit(rank) - 1)) == 0; ++k) rank /= 64;
        for (;; --k) {
            rank = rank / 64 * 64 + 63 - static_cast<std::size_t>(std::countl_zero(below));
            if (k == 0) return rank;
            below = word(k - 1, rank);
            rank *= 64;
        }
    }
    /// The one with `below` others below it; there is one.
    std::size_t select(std::size_t below) const {
        std::size_t w = 0;
        for (std::size_t ones; (ones = static_cast<std::size_t>(std::popcount(word(0, w)))) <= below; ++w)
            below -= ones;
        std::uint64_t bits = word(0, w);
        for (; below > 0; --below) bits &= bits - 1;
        return 64 * w + static_cast<std::size_t>(std::countr_zero(bits));
    }

private:
    Owned<std::uint64_t> room;
    std::size_t count = 0;
    int levels = 0;
    std::array<std::size_t, 6> from{};

    static std::uint64_t bit(std::size_t rank) { return std::uint64_t{1} << rank % 64; }
    std::uint64_t& word(int level, std::size_t i) const { return room[from[static_cast<std::size_t>(level)] + i]; }
};

/// The work area of a call, and what is done in it tile by tile.
template <class T>
class RankedTile {
public:
    using Key = typename Ordered<T>::Key;

    /// For windows of 2 half + 1 samples; false for want of memory.
    bool make(std::int64_t samples, std::int64_t half_mask) {
        if (samples > most_samples) return false;
        const auto n = static_cast<std::size_t>(samples);
        half = static_cast<std::size_t>(half_mask);
        line = make_owned<Key>(n);
        entries = make_owned<Entry>(n);
        sorted = make_owned<Entry>(n);
        ranks = make_owned<std::uint32_t>(n);
        return line && entries && sorted && ranks && window.make(n);
    }

    /// The samples of the first tile from `first` on, or of the next ones behind those that both have windows on.
    Key* samples() { return line.get(); }
    void keep_last(std::size_t outputs) { std::copy_n(line.get() + outputs, 2 * half, line.get()); }

    /// Stores the medians of the windows that begin with sample 0, 1 ...
    void medians(T* out, std::size_t outputs) {
        const Entry* in_order = rank(outputs + 2 * half);
        window.clear();
        for (std::size_t i = 0; i <= 2 * half; ++i) window.insert(ranks[i]);
        std::size_t median = window.select(half);
        out[0] = Ordered<T>::sample(in_order[median].key);
        for (std::size_t i = 1; i < outputs; ++i) {
            const std::size_t gone = ranks[i - 1], come = ranks[i + 2 * half];
            window.insert(come);
            window.remove(gone);
            const int more_below = int(come < median) - int(gone < median);
            if (more_below > 0)
                median = window.previous(median);
            else if (more_below < 0 || gone == median)
                median = window.next(median);
            out[i] = Ordered<T>::sample(in_order[median].key);
        }
    }

private:
    struct Entry {
        Key key;
        std::uint32_t index;
    };
    static constexpr std::int64_t most_samples = INT32_MAX;

    std::size_t half = 0;
    Owned<Key> line;
    Owned<Entry> entries, sorted;
    Owned<std::uint32_t> ranks;
    RankSet window;

    /// Sorts the first samples of the line, byte by byte from the lowest, and gives them in order.
    const Entry* rank(std::size_t n) {
        constexpr int bytes = sizeof(T);
        std::uint32_t places[bytes][256] = {};
        for (std::size_t i = 0; i < n; ++i) {
            const Key key = line[i];
            entries[i] = {key, static_cast<std::uint32_t>(i)};
            for (int b = 0; b < bytes; ++b) ++places[b][key >> 8 * b & 255];
        }
        Entry *from = entries.get(), *to = sorted.get();
        for (int b = 0; b < bytes; ++b) {
            if (places[b][from[0].key >> 8 * b & 255] == n) continue; // the same byte everywhere
            std::uint32_t place = 0;
            for (std::uint32_t& p : places[b]) place += std::exchange(p, place);
            for (std::size_t i = 0; i < n; ++i) to[places[b][from[i].key >> 8 * b & 255]++] = from[i];
            std::swap(from, to);
        }
        for (std::size_t r = 0; r < n; ++r) ranks[from[r].index] = static_cast<std::uint32_t>(r);
        return from;
    }
};

} // namespace kels
