// Two-band filter banks over streams.
//
// A band is a polyphase filter of two phases. Forward, even and odd samples meet taps of their own, and both sums make
// an output; inverse, even and odd outputs come from taps of their own and the same samples. A phase is a plain filter,
// and runs in the strips of one. Every sum has one order, so that its bits do not depend on how a stream is cut; no
// product is made that the sum does not have, so that nothing but its own samples reaches it.

#include "kels/filter_bank.h"

#include "filters/doubled_ring.h"
#include "filters/fir/real_sums.h"
#include "filters/fir/rounding.h"
#include "frame/blocks.h"
#include "frame/record.h"
#include "frame/simd.h"
#include "kels/conversion.h"

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <type_traits>

struct WTFwdState {
    Kel32s id = 0;
};
struct WTInvState {
    Kel32s id = 0;
};

namespace kels {
namespace {

// What is summed

constexpr int most_outputs = 512; ///< of a phase at once
constexpr int segment = 512;      ///< taps of a phase at once
constexpr int slack = 64;         ///< vectors may reach behind the last sample

struct Totals {
    alignas(64) Kel64f of[most_outputs + slack];
};

/// Taps of one phase, the last first; output k meets the samples up to k - shift with them.
struct Phase {
    const Kel64f* taps = nullptr;
    int count = 0;
    std::ptrdiff_t shift = 0;

    /// Where the oldest sample of output 0 lies.
    std::ptrdiff_t oldest() const { return -shift - (count - 1); }
};

template <int part>
[[gnu::always_inline]] inline auto part_of_pairs(const Kel32fc* pairs, auto width) {
    const auto both_parts = load<Vec<Kel32f, 2 * width>>(pairs);
    if constexpr (part == 0)
        return even_lanes(both_parts);
    else
        return odd_lanes(both_parts);
}

template <int part>
[[gnu::always_inline]] inline auto part_of_pairs(const Kel32f* samples, auto width) {
    return load<Vec<Kel32f, width>>(samples);
}

/// One part of samples, in double precision.
template <int part, class Sample>
void widen(const Sample* samples, Index n, Kel64f* out) {
    each_block<Word<Kel64f>>(
        n, [=](auto width, Index i) KELS_INLINE { return convert<Kel64f>(part_of_pairs<part>(samples + i, width)); },
        [=](auto, Index i, auto v) KELS_INLINE { store(out + i, v); });
}

/// A filter and what it keeps of its input: pairs of samples, forward, of which even and odd ones are the parts.
template <class Sample>
class Band {
public:
    static constexpr bool decimates = parts<Sample> == 2;

    /// False for want of memory.
    bool prepare(const Kel32f* h, int tapsLen, int offset) {
        if (!decimates && offset < 0) offset = 1;
        const std::int64_t delay = std::int64_t{tapsLen} - 1 + offset, odd_delay = offset & 1;
        kept = decimates ? std::max<std::int64_t>(delay, 0) : (tapsLen - 1 + odd_delay) / 2 + offset / 2;
        const std::int64_t length = (kept + parts<Sample> - 1) / parts<Sample>;
        taps = make_owned<Kel64f>(static_cast<std::size_t>(tapsLen));
        line = make_owned_product<Sample>(std::max<std::int64_t>(length, 1), 2);
        if (!taps || !line) return false;
        lineLen = static_cast<int>(length);
        std::fill_n(line.get(), 2 * std::ptrdiff_t{lineLen}, Sample{});

        Kel64f* out = taps.get();
        for (int of = 0; of < 2; ++of) {
            const int first = (offset + of) & 1, count = (tapsLen - first + 1) / 2;
            phases[of] = {out, count, (std::ptrdiff_t{offset} + first + (decimates ? of : -of)) / 2};
            for (int i = count - 1; i >= 0; --i) *out++ = h[first + 2 * std::ptrdiff_t{i}];
        }
        return true;
    }

    /// Outputs `first` to `first + outputs - 1` of a block, as far as this phase makes them, added to the totals.
    template <int of>
    void add(const Sample* block, std::ptrdiff_t first, int outputs, Kel64f* total) const {
        alignas(64) Kel64f samples[most_outputs + segment + slack];
        const Phase& phase = phases[of];
        for (int tap = 0; tap < phase.count; tap += segment) {
            const int count = std::min(segment, phase.count - tap), needed = outputs + count - 1;
            read<of>(block, first + phase.oldest() + tap, needed, samples);
            std::fill_n(samples + needed, slack, 0.0);
            RealSums<false>::add_strips(samples, phase.taps + tap, count, total, outputs, 0);
        }
    }

    const Phase& phase(int of) const { return phases[of]; }

    /// Samples from `from` on, before a block and in it.
    template <int of>
    void read(const Sample* block, std::ptrdiff_t from, std::ptrdiff_t n, Kel64f* out) const {
        const std::ptrdiff_t old = std::clamp<std::ptrdiff_t>(-from, 0, n);
        if (old > 0) widen<of>(line.get() + index + (lineLen + from), old, out);
        if (old < n) widen<of>(block + (from + old), n - old, out + old);
    }

    /// Keeps the end of a block.
    void advance(const Sample* block, int count) {
        if (lineLen > 0) DoubledRing<Sample>{line.get(), &index}.push(block, count, lineLen);
    }

    void get(Kel32f* out) const { std::copy_n(reals(line.get() + index + lineLen) - kept, kept, out); }

    void set(const Kel32f* in) {
        index = 0;
        std::fill_n(line.get(), 2 * std::ptrdiff_t{lineLen}, Sample{});
        for (int half = 1; half <= 2; ++half)
            std::copy_n(in, kept, reals(line.get() + half * std::ptrdiff_t{lineLen}) - kept);
    }

private:
    Owned<Kel64f> taps;
    Phase phases[2];
    Owned<Sample> line; ///< a doubled ring, or nothing for the shortest filters
    int lineLen = 0, index = 0;
    std::int64_t kept = 0; ///< singles of the line that matter
};

// States

struct Analysis : WTFwdState {
    Band<Kel32fc> low, high;
};
struct Synthesis : WTInvState {
    Band<Kel32f> low, high;
};

template <class State>
struct OwnOf {
    using type = Analysis;
};
template <>
struct OwnOf<WTInvState> {
    using type = Synthesis;
};

template <class State>
using Own = typename OwnOf<std::remove_const_t<State>>::type;

/// What a state with a signal of type T has for its id.
template <class T>
constexpr Kel32s number() {
    if constexpr (std::is_same_v<T, Kel32f>) return 0;
    if constexpr (std::is_same_v<T, Kel8u>) return 1;
    if constexpr (std::is_same_v<T, Kel8s>) return 2;
    if constexpr (std::is_same_v<T, Kel16u>) return 3;
    if constexpr (std::is_same_v<T, Kel16s>) return 4;
}
template <class T>
inline constexpr Kel32s forward_id = 41 + number<T>();
template <class T>
inline constexpr Kel32s inverse_id = 50 + number<T>();

template <class State>
KelStatus make(State** result, Kel32s id, const Kel32f* low, int lowLen, int lowOffset, const Kel32f* high, int highLen,
               int highOffset) {
    if (!result || !low) return kelStatusNullPtr;
    if (lowLen < 1) return kelStatusBadSize;
    if (!high) return kelStatusNullPtr;
    if (highLen < 1) return kelStatusBadSize;
    if (lowOffset < -1 || highOffset < -1) return kelStatusBadWtOffset;

    *result = nullptr;
    auto state = make_record<Own<State>>(id);
    if (!state || !state->low.prepare(low, lowLen, lowOffset) || !state->high.prepare(high, highLen, highOffset))
        return kelStatusNoMemory;
    *result = state.release();
    return kelStatusOk;
}

template <class State>
KelStatus release(State* state, Kel32s id) {
    return free_record<Own<State>>(state, id);
}

template <class State>
KelStatus get_delay_lines(const State* state, Kel32s id, Kel32f* low, Kel32f* high) {
    return with_record<Own<State>>(state, id, false, [=](const Own<State>& own) {
        if (!low || !high) return kelStatusNullPtr;
        own.low.get(low);
        own.high.get(high);
        return kelStatusOk;
    });
}

template <class State>
KelStatus set_delay_lines(State* state, Kel32s id, const Kel32f* low, const Kel32f* high) {
    return with_record<Own<State>>(state, id, false, [=](Own<State>& own) {
        if (!low || !high) return kelStatusNullPtr;
        own.low.set(low);
        own.high.set(high);
        return kelStatusOk;
    });
}

/// Calls body(first, count) for stretches of a block, as long as there is room for.
template <class Body>
void in_stretches(int count, const Body& body) {
    for (int first = 0; first < count;) {
        const int some = std::min(most_outputs, count - first);
        body(first, some);
        first += some;
    }
}

// Short filters

constexpr int most_short_taps = 16; ///< of a phase

/// The samples of a tile, from those of output 0 on that any of the phases needs.
struct Reach {
    std::ptrdiff_t oldest, newest;

    template <class Sample>
    static Reach of(const Band<Sample>& band) {
        const Phase &even = band.phase(0), &odd = band.phase(1);
        return {std::min(even.oldest(), odd.oldest()), -std::min(even.shift, odd.shift)};
    }
    Reach with(const Reach& other) const { return {std::min(oldest, other.oldest), std::max(newest, other.newest)}; }
    std::ptrdiff_t width() const { return newest - oldest; }
};

constexpr std::ptrdiff_t widest_reach = slack - max_lanes<Kel64f>; // what a line has room for

template <class Sample>
bool is_short(const Band<Sample>& band) {
    return band.phase(0).count <= most_short_taps && Reach::of(band).width() <= widest_reach;
}

/// Samples in double precision, from `from` on.
struct Line {
    alignas(64) Kel64f of[most_outputs + slack];
};

/// sum[v] += the products of a phase: `line` has the oldest sample of output 0.
template <int Vectors>
[[gnu::always_inline]] inline void add_products_of(const Phase& phase, const Kel64f* line, Vec<Kel64f>* sum) {
    using V = Vec<Kel64f>;
    for (int i = 0; i < phase.count; ++i) {
        const V tap = splat<V>(phase.taps[i]);
        unrolled<Vectors>([&](auto v) KELS_INLINE { sum[v] = fma(tap, load<V>(line + i + v * lanes<V>), sum[v]); });
    }
}

/// Calls strip(vectors, at, out) for all outputs: where `out` is a place for those from `at` on, `per_output` singles
/// each. The last strip overlaps the one before; of fewer outputs than a vector has lanes, the first are taken.
template <int Vectors, int per_output, class Strip>
[[gnu::always_inline]] inline void in_strips(int outputs, Kel32f* dst, const Strip& strip) {
    constexpr int step = max_lanes<Kel64f>;
    if (outputs < step) {
        Kel32f room[step * per_output];
        strip(Width<1>{}, 0, room);
        std::copy_n(room, outputs * per_output, dst);
        return;
    }
    int at = 0;
    for (; at + Vectors * step <= outputs; at += Vectors * step) strip(Width<Vectors>{}, at, dst + at * per_output);
    for (; at + step <= outputs; at += step) strip(Width<1>{}, at, dst + at * per_output);
    if (at < outputs) strip(Width<1>{}, outputs - step, dst + (outputs - step) * per_output);
}

// Forward

void decimate(const Band<Kel32fc>& band, const Kel32fc* pairs, Kel32f* dst, int count) {
    Totals total;
    in_stretches(count, [&](int first, int outputs) {
        std::fill_n(total.of, outputs + slack, 0.0);
        band.add<0>(pairs, first, outputs, total.of);
        band.add<1>(pairs, first, outputs, total.of);
        store_rounded(total.of, dst + first, outputs, RoundedOnce{});
    });
}

/// Outputs of a band from lines of even and of odd samples that begin with the oldest of `reach`.
void decimate_in_registers(const Band<Kel32fc>& band, const Line (&lines)[2], const Reach& reach, Kel32f* dst,
                           int outputs) {
    constexpr int vectors = 8;
    in_strips<vectors, 1>(outputs, dst, [&](auto width, int at, Kel32f* out) KELS_INLINE {
        using V = Vec<Kel64f>;
        V sum[width] = {};
        unrolled<2>([&](auto of) KELS_INLINE {
            const Phase& phase = band.phase(of);
            add_products_of<width>(phase, lines[of].of + (at + phase.oldest() - reach.oldest), sum);
        });
        unrolled<width>([&](auto v) KELS_INLINE { store(out + v * lanes<V>, convert<Kel32f>(sum[v])); });
    });
}

/// Short bands over the same samples: only what came before the block is each one's own.
template <int Bands>
void decimate_short(const Band<Kel32fc>* const (&bands)[Bands], const Reach& reach, const Kel32fc* pairs,
                    Kel32f* const (&dst)[Bands], int count) {
    Line lines[2];
    in_stretches(count, [&](int first, int outputs) {
        const std::ptrdiff_t from = first + reach.oldest, n = outputs + reach.width(),
                             old = std::clamp<std::ptrdiff_t>(-from, 0, n);
        unrolled<2>([&](auto of) KELS_INLINE {
            if (old < n) widen<of>(pairs + (from + old), n - old, lines[of].of + old);
            std::fill_n(lines[of].of + n, max_lanes<Kel64f>, 0.0);
        });
        for (int i = 0; i < Bands; ++i) {
            const Reach own = Reach::of(*bands[i]);
            const std::ptrdiff_t begin = first + own.oldest,
                                 before = std::clamp<std::ptrdiff_t>(-begin, 0, outputs + own.width());
            unrolled<2>([&](auto of) KELS_INLINE {
                bands[i]->template read<of>(pairs, begin, before, lines[of].of + (begin - from));
            });
            decimate_in_registers(*bands[i], lines, reach, dst[i] + first, outputs);
        }
    });
}

void decimate_alone(const Band<Kel32fc>& band, const Kel32fc* pairs, Kel32f* dst, int count) {
    if (is_short(band))
        decimate_short<1>({&band}, Reach::of(band), pairs, {dst}, count);
    else
        decimate(band, pairs, dst, count);
}

void analyse(Analysis& own, const Kel32f* src, Kel32f* low, Kel32f* high, int count) {
    const auto* pairs = reinterpret_cast<const Kel32fc*>(src);
    const Reach reach = Reach::of(own.low).with(Reach::of(own.high));
    if (is_short(own.low) && is_short(own.high) && reach.width() <= widest_reach) {
        decimate_short<2>({&own.low, &own.high}, reach, pairs, {low, high}, count);
    } else {
        decimate_alone(own.low, pairs, low, count);
        decimate_alone(own.high, pairs, high, count);
    }
    own.low.advance(pairs, count);
    own.high.advance(pairs, count);
}

// Inverse

/// The sums of even and of odd outputs.
void interpolate(const Band<Kel32f>& band, const Kel32f* src, std::ptrdiff_t first, int outputs, Totals (&total)[2]) {
    for (Totals& phase : total) std::fill_n(phase.of, outputs + slack, 0.0);
    band.add<0>(src, first, outputs, total[0].of);
    band.add<1>(src, first, outputs, total[1].of);
}

/// The low band's sums, rounded, plus those of the high band, rounded.
template <class V>
[[gnu::always_inline]] inline auto joined(V low, V high) {
    return convert<Kel32f>(high + rounded_to_single(low));
}

/// Even and odd outputs by turns.
void join(const Totals (&low)[2], const Totals (&high)[2], Kel32f* dst, int outputs) {
    each_block<Word<Kel64f>>(
        outputs,
        [&](auto width, Index i) KELS_INLINE {
            const auto output = [&](int phase) KELS_INLINE {
                using V = Vec<Kel64f, width>;
                return joined(load<V>(low[phase].of + i), load<V>(high[phase].of + i));
            };
            return zip(output(0), output(1));
        },
        [=](auto, Index i, auto v) KELS_INLINE { store(dst + 2 * i, v); });
}

void interpolate_both(const Synthesis& own, const Kel32f* low, const Kel32f* high, int count, Kel32f* dst) {
    Totals low_sums[2], high_sums[2];
    in_stretches(count, [&](int first, int outputs) {
        interpolate(own.low, low, first, outputs, low_sums);
        interpolate(own.high, high, first, outputs, high_sums);
        join(low_sums, high_sums, dst + 2 * std::ptrdiff_t{first}, outputs);
    });
}

/// The samples of a short band that some outputs need, the oldest first.
void read_reach(const Band<Kel32f>& band, const Reach& reach, const Kel32f* src, std::ptrdiff_t first, int outputs,
                Line& line) {
    const std::ptrdiff_t n = outputs + reach.width();
    band.read<0>(src, first + reach.oldest, n, line.of);
    std::fill_n(line.of + n, max_lanes<Kel64f>, 0.0);
}

void interpolate_short(const Synthesis& own, const Kel32f* low, const Kel32f* high, int count, Kel32f* dst) {
    constexpr int vectors = 2;
    const Reach low_reach = Reach::of(own.low), high_reach = Reach::of(own.high);
    Line low_line, high_line;
    in_stretches(count, [&](int first, int outputs) {
        read_reach(own.low, low_reach, low, first, outputs, low_line);
        read_reach(own.high, high_reach, high, first, outputs, high_line);
        in_strips<vectors, 2>(
            outputs, dst + 2 * std::ptrdiff_t{first}, [&](auto width, int at, Kel32f* out) KELS_INLINE {
                using V = Vec<Kel64f>;
                V low_sum[2][width] = {}, high_sum[2][width] = {};
                unrolled<2>([&](auto of) KELS_INLINE {
                    const Phase &l = own.low.phase(of), &h = own.high.phase(of);
                    add_products_of<width>(l, low_line.of + (at + l.oldest() - low_reach.oldest), low_sum[of]);
                    add_products_of<width>(h, high_line.of + (at + h.oldest() - high_reach.oldest), high_sum[of]);
                });
                unrolled<width>([&](auto v) KELS_INLINE {
                    store(out + 2 * v * lanes<V>,
                          zip(joined(low_sum[0][v], high_sum[0][v]), joined(low_sum[1][v], high_sum[1][v])));
                });
            });
    });
}

void synthesise(Synthesis& own, const Kel32f* low, const Kel32f* high, int count, Kel32f* dst) {
    if (is_short(own.low) && is_short(own.high))
        interpolate_short(own, low, high, count, dst);
    else
        interpolate_both(own, low, high, count, dst);
    own.low.advance(low, count);
    own.high.advance(high, count);
}

// Signals of integers pass through a stretch of singles.

void to_singles(const Kel8s* x, Kel32f* y, int n) { kelsConvert_8s32f(x, y, n); }
void to_singles(const Kel8u* x, Kel32f* y, int n) { kelsConvert_8u32f(x, y, n); }
void to_singles(const Kel16s* x, Kel32f* y, int n) { kelsConvert_16s32f(x, y, n); }
void to_singles(const Kel16u* x, Kel32f* y, int n) { kelsConvert_16u32f(x, y, n); }

void from_singles(const Kel32f* x, Kel8s* y, int n) { kelsConvert_32f8s_Sfs(x, y, n, kelRndNear, 0); }
void from_singles(const Kel32f* x, Kel8u* y, int n) { kelsConvert_32f8u_Sfs(x, y, n, kelRndNear, 0); }
void from_singles(const Kel32f* x, Kel16s* y, int n) { kelsConvert_32f16s_Sfs(x, y, n, kelRndNear, 0); }
void from_singles(const Kel32f* x, Kel16u* y, int n) { kelsConvert_32f16u_Sfs(x, y, n, kelRndNear, 0); }

template <class T>
void analyse(Analysis& own, const T* src, Kel32f* low, Kel32f* high, int count) {
    in_stretches(count, [&](int first, int some) {
        Kel32f singles[2 * most_outputs];
        to_singles(src + 2 * std::ptrdiff_t{first}, singles, 2 * some);
        analyse(own, singles, low + first, high + first, some);
    });
}

template <class T>
void synthesise(Synthesis& own, const Kel32f* low, const Kel32f* high, int count, T* dst) {
    in_stretches(count, [&](int first, int some) {
        Kel32f singles[2 * most_outputs];
        synthesise(own, low + first, high + first, some, singles);
        from_singles(singles, dst + 2 * std::ptrdiff_t{first}, 2 * some);
    });
}

// Calls

template <class T>
KelStatus analyse_block(const T* src, Kel32f* low, Kel32f* high, int count, WTFwdState* state) {
    return with_record<Analysis>(state, forward_id<T>, false, [=](Analysis& own) {
        if (!src || !low || !high) return kelStatusNullPtr;
        if (count < 1) return kelStatusBadSize;
        analyse(own, src, low, high, count);
        return kelStatusOk;
    });
}

template <class T>
KelStatus synthesise_block(const Kel32f* low, const Kel32f* high, int count, T* dst, WTInvState* state) {
    return with_record<Synthesis>(state, inverse_id<T>, false, [=](Synthesis& own) {
        if (!low || !high) return kelStatusNullPtr;
        if (count < 1) return kelStatusBadSize;
        if (!dst) return kelStatusNullPtr;
        synthesise(own, low, high, count, dst);
        return kelStatusOk;
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsWTFwdInitAlloc_32f   (WTFwdState** s, const Kel32f* low, int nLow, int dLow, const Kel32f* high, int nHigh, int dHigh) { return make(s, forward_id<Kel32f>, low, nLow, dLow, high, nHigh, dHigh); }
KelStatus kelsWTFwdInitAlloc_8s32f (WTFwdState** s, const Kel32f* low, int nLow, int dLow, const Kel32f* high, int nHigh, int dHigh) { return make(s, forward_id<Kel8s>, low, nLow, dLow, high, nHigh, dHigh); }
KelStatus kelsWTFwdInitAlloc_8u32f (WTFwdState** s, const Kel32f* low, int nLow, int dLow, const Kel32f* high, int nHigh, int dHigh) { return make(s, forward_id<Kel8u>, low, nLow, dLow, high, nHigh, dHigh); }
KelStatus kelsWTFwdInitAlloc_16s32f(WTFwdState** s, const Kel32f* low, int nLow, int dLow, const Kel32f* high, int nHigh, int dHigh) { return make(s, forward_id<Kel16s>, low, nLow, dLow, high, nHigh, dHigh); }
KelStatus kelsWTFwdInitAlloc_16u32f(WTFwdState** s, const Kel32f* low, int nLow, int dLow, const Kel32f* high, int nHigh, int dHigh) { return make(s, forward_id<Kel16u>, low, nLow, dLow, high, nHigh, dHigh); }

KelStatus kelsWTFwdFree_32f   (WTFwdState* s) { return release(s, forward_id<Kel32f>); }
KelStatus kelsWTFwdFree_8s32f (WTFwdState* s) { return release(s, forward_id<Kel8s>); }
KelStatus kelsWTFwdFree_8u32f (WTFwdState* s) { return release(s, forward_id<Kel8u>); }
KelStatus kelsWTFwdFree_16s32f(WTFwdState* s) { return release(s, forward_id<Kel16s>); }
KelStatus kelsWTFwdFree_16u32f(WTFwdState* s) { return release(s, forward_id<Kel16u>); }

KelStatus kelsWTFwd_32f   (const Kel32f* x, Kel32f* low, Kel32f* high, int n, WTFwdState* s) { return analyse_block(x, low, high, n, s); }
KelStatus kelsWTFwd_8s32f (const Kel8s* x, Kel32f* low, Kel32f* high, int n, WTFwdState* s)  { return analyse_block(x, low, high, n, s); }
KelStatus kelsWTFwd_8u32f (const Kel8u* x, Kel32f* low, Kel32f* high, int n, WTFwdState* s)  { return analyse_block(x, low, high, n, s); }
KelStatus kelsWTFwd_16s32f(const Kel16s* x, Kel32f* low, Kel32f* high, int n, WTFwdState* s) { return analyse_block(x, low, high, n, s); }
KelStatus kelsWTFwd_16u32f(const Kel16u* x, Kel32f* low, Kel32f* high, int n, WTFwdState* s) { return analyse_block(x, low, high, n, s); }

KelStatus kelsWTFwdGetDlyLine_32f   (const WTFwdState* s, Kel32f* low, Kel32f* high) { return get_delay_lines(s, forward_id<Kel32f>, low, high); }
KelStatus kelsWTFwdGetDlyLine_8s32f (const WTFwdState* s, Kel32f* low, Kel32f* high) { return get_delay_lines(s, forward_id<Kel8s>, low, high); }
KelStatus kelsWTFwdGetDlyLine_8u32f (const WTFwdState* s, Kel32f* low, Kel32f* high) { return get_delay_lines(s, forward_id<Kel8u>, low, high); }
KelStatus kelsWTFwdGetDlyLine_16s32f(const WTFwdState* s, Kel32f* low, Kel32f* high) { return get_delay_lines(s, forward_id<Kel16s>, low, high); }
KelStatus kelsWTFwdGetDlyLine_16u32f(const WTFwdState* s, Kel32f* low, Kel32f* high) { return get_delay_lines(s, forward_id<Kel16u>, low, high); }

KelStatus kelsWTFwdSetDlyLine_32f   (WTFwdState* s, const Kel32f* low, const Kel32f* high) { return set_delay_lines(s, forward_id<Kel32f>, low, high); }
KelStatus kelsWTFwdSetDlyLine_8s32f (WTFwdState* s, const Kel32f* low, const Kel32f* high) { return set_delay_lines(s, forward_id<Kel8s>, low, high); }
KelStatus kelsWTFwdSetDlyLine_8u32f (WTFwdState* s, const Kel32f* low, const Kel32f* high) { return set_delay_lines(s, forward_id<Kel8u>, low, high); }
KelStatus kelsWTFwdSetDlyLine_16s32f(WTFwdState* s, const Kel32f* low, const Kel32f* high) { return set_delay_lines(s, forward_id<Kel16s>, low, high); }
KelStatus kelsWTFwdSetDlyLine_16u32f(WTFwdState* s, const Kel32f* low, const Kel32f* high) { return set_delay_lines(s, forward_id<Kel16u>, low, high); }

KelStatus kelsWTInvInitAlloc_32f   (WTInvState** s, const Kel32f* low, int nLow, int dLow, const Kel32f* high, int nHigh, int dHigh) { return make(s, inverse_id<Kel32f>, low, nLow, dLow, high, nHigh, dHigh); }
KelStatus kelsWTInvInitAlloc_32f8s (WTInvState** s, const Kel32f* low, int nLow, int dLow, const Kel32f* high, int nHigh, int dHigh) { return make(s, inverse_id<Kel8s>, low, nLow, dLow, high, nHigh, dHigh); }
KelStatus kelsWTInvInitAlloc_32f8u (WTInvState** s, const Kel32f* low, int nLow, int dLow, const Kel32f* high, int nHigh, int dHigh) { return make(s, inverse_id<Kel8u>, low, nLow, dLow, high, nHigh, dHigh); }
KelStatus kelsWTInvInitAlloc_32f16s(WTInvState** s, const Kel32f* low, int nLow, int dLow, const Kel32f* high, int nHigh, int dHigh) { return make(s, inverse_id<Kel16s>, low, nLow, dLow, high, nHigh, dHigh); }
KelStatus kelsWTInvInitAlloc_32f16u(WTInvState** s, const Kel32f* low, int nLow, int dLow, const Kel32f* high, int nHigh, int dHigh) { return make(s, inverse_id<Kel16u>, low, nLow, dLow, high, nHigh, dHigh); }

KelStatus kelsWTInvFree_32f   (WTInvState* s) { return release(s, inverse_id<Kel32f>); }
KelStatus kelsWTInvFree_32f8s (WTInvState* s) { return release(s, inverse_id<Kel8s>); }
KelStatus kelsWTInvFree_32f8u (WTInvState* s) { return release(s, inverse_id<Kel8u>); }
KelStatus kelsWTInvFree_32f16s(WTInvState* s) { return release(s, inverse_id<Kel16s>); }
KelStatus kelsWTInvFree_32f16u(WTInvState* s) { return release(s, inverse_id<Kel16u>); }

KelStatus kelsWTInv_32f   (const Kel32f* low, const Kel32f* high, int n, Kel32f* x, WTInvState* s) { return synthesise_block(low, high, n, x, s); }
KelStatus kelsWTInv_32f8s (const Kel32f* low, const Kel32f* high, int n, Kel8s* x, WTInvState* s)  { return synthesise_block(low, high, n, x, s); }
KelStatus kelsWTInv_32f8u (const Kel32f* low, const Kel32f* high, int n, Kel8u* x, WTInvState* s)  { return synthesise_block(low, high, n, x, s); }
KelStatus kelsWTInv_32f16s(const Kel32f* low, const Kel32f* high, int n, Kel16s* x, WTInvState* s) { return synthesise_block(low, high, n, x, s); }
KelStatus kelsWTInv_32f16u(const Kel32f* low, const Kel32f* high, int n, Kel16u* x, WTInvState* s) { return synthesise_block(low, high, n, x, s); }

KelStatus kelsWTInvGetDlyLine_32f   (const WTInvState* s, Kel32f* low, Kel32f* high) { return get_delay_lines(s, inverse_id<Kel32f>, low, high); }
KelStatus kelsWTInvGetDlyLine_32f8s (const WTInvState* s, Kel32f* low, Kel32f* high) { return get_delay_lines(s, inverse_id<Kel8s>, low, high); }
KelStatus kelsWTInvGetDlyLine_32f8u (const WTInvState* s, Kel32f* low, Kel32f* high) { return get_delay_lines(s, inverse_id<Kel8u>, low, high); }
KelStatus kelsWTInvGetDlyLine_32f16s(const WTInvState* s, Kel32f* low, Kel32f* high) { return get_delay_lines(s, inverse_id<Kel16s>, low, high); }
KelStatus kelsWTInvGetDlyLine_32f16u(const WTInvState* s, Kel32f* low, Kel32f* high) { return get_delay_lines(s, inverse_id<Kel16u>, low, high); }

KelStatus kelsWTInvSetDlyLine_32f   (WTInvState* s, const Kel32f* low, const Kel32f* high) { return set_delay_lines(s, inverse_id<Kel32f>, low, high); }
KelStatus kelsWTInvSetDlyLine_32f8s (WTInvState* s, const Kel32f* low, const Kel32f* high) { return set_delay_lines(s, inverse_id<Kel8s>, low, high); }
KelStatus kelsWTInvSetDlyLine_32f8u (WTInvState* s, const Kel32f* low, const Kel32f* high) { return set_delay_lines(s, inverse_id<Kel8u>, low, high); }
KelStatus kelsWTInvSetDlyLine_32f16s(WTInvState* s, const Kel32f* low, const Kel32f* high) { return set_delay_lines(s, inverse_id<Kel16s>, low, high); }
KelStatus kelsWTInvSetDlyLine_32f16u(WTInvState* s, const Kel32f* low, const Kel32f* high) { return set_delay_lines(s, inverse_id<Kel16u>, low, high); }
}
// clang-format on
