// Filter banks through two states, in other pieces; the Haar transform whole and in halves.

#include "fuzz/sequence.h"
#include "kels/filter_bank.h"
#include "kels/haar.h"

#include <iterator>

namespace {

using namespace kels_test;

struct Band {
    std::vector<Kel32f> taps;
    int offset;
    std::size_t kept;
};

KelStatus (*const analysis_releases[])(WTFwdState*) = {kelsWTFwdFree_32f, kelsWTFwdFree_8s32f, kelsWTFwdFree_8u32f,
                                                       kelsWTFwdFree_16s32f, kelsWTFwdFree_16u32f};
KelStatus (*const synthesis_releases[])(WTInvState*) = {kelsWTInvFree_32f, kelsWTInvFree_32f8s, kelsWTInvFree_32f8u,
                                                        kelsWTInvFree_32f16s, kelsWTInvFree_32f16u};

/// Two states of one bank: make, read, write, release, and what both forms share.
template <class State, auto make, auto release, auto get, auto set>
struct Bank {
    static constexpr bool forward = std::is_same_v<State, WTFwdState>;

    Band low, high;

    static Band draw_band(Input& in) {
        const int length = in.length(80), offset = in.below(8) - 1;
        const int kept = forward ? std::max(length - 1 - (offset < 0), 0) + std::max(offset, 0)
                                 : (length - 1 + std::abs(offset) % 2) / 2 + std::abs(offset) / 2;
        return {in.data<Kel32f>(length, Style::finite), offset, static_cast<std::size_t>(kept)};
    }
    explicit Bank(Input& in) : low(draw_band(in)), high(draw_band(in)) {}

    auto create(Input& in) const {
        const GuardedArray<Kel32f> l(low.taps, in.edge()), h(high.taps, in.edge());
        return made(in, release, [&](State** state) {
            return make(state, l.data(), static_cast<int>(low.taps.size()), low.offset, h.data(),
                        static_cast<int>(high.taps.size()), high.offset);
        });
    }

    /// Both delay lines, one after the other.
    std::vector<Kel32f> lines(Input& in, const auto& state) const {
        GuardedArray<Kel32f> l(low.kept, in.edge()), h(high.kept, in.edge());
        EXPECT_EQ(get(state.get(), l.data(), h.data()), kelStatusOk);
        auto both = l.values();
        append(both, h.values());
        return both;
    }

    void check_and_change(Input& in, const auto& one, auto& two) const {
        const auto kept = lines(in, one);
        expect_same(kept, lines(in, two), "delay lines");
        const int step = in.below(4);
        if (step == 1) { // a new state goes on
            two = create(in);
            const GuardedArray<Kel32f> l(piece(kept, 0, static_cast<int>(low.kept)), in.edge());
            const GuardedArray<Kel32f> h({kept.begin() + static_cast<int>(low.kept), kept.end()}, in.edge());
            EXPECT_EQ(set(two.get(), l.data(), h.data()), kelStatusOk);
        } else if (step == 2) {
            const auto cross = [&](const auto& releases) {
                const auto other = releases[in.below(std::size(releases))];
                if (other != release) {
                    EXPECT_EQ(other(two.get()), kelStatusContextMismatch);
                }
            };
            if constexpr (forward)
                cross(analysis_releases);
            else
                cross(synthesis_releases);
        }
    }
};

template <class T, auto make, auto release, auto block, auto get, auto set>
void analyse(Input& in) {
    const Bank<WTFwdState, make, release, get, set> bank(in);
    const auto one = bank.create(in);
    auto two = bank.create(in);
    while (in.more()) {
        const int len = in.length(300);
        const auto x = in.data<T>(2 * len);
        const auto y = at_once_and_cut(one, two, len, in.below(len), [&](const auto& state, int from, int n) {
            const GuardedArray<T> source(piece(x, 2 * from, 2 * n), in.edge());
            const auto count = static_cast<std::size_t>(n);
            GuardedArray<Kel32f> low(count, in.edge()), high(count, in.edge());
            EXPECT_EQ(block(source.data(), low.data(), high.data(), n, state.get()), kelStatusOk);
            std::vector<Kel32fc> both(count);
            for (std::size_t i = 0; i < count; ++i) both[i] = {low.data()[i], high.data()[i]};
            return both;
        });
        digest(block, y);
        bank.check_and_change(in, one, two);
    }
}

template <class T, auto make, auto release, auto block, auto get, auto set>
void synthesise(Input& in) {
    const Bank<WTInvState, make, release, get, set> bank(in);
    const auto one = bank.create(in);
    auto two = bank.create(in);
    while (in.more()) {
        const int len = in.length(300);
        constexpr auto style = std::is_integral_v<T> ? Style::finite : Style::any; // a NaN's sign is free
        const auto low = in.data<Kel32f>(len, style), high = in.data<Kel32f>(len, style);
        const auto y = at_once_and_cut(one, two, len, in.below(len), [&](const auto& state, int from, int n) {
            const GuardedArray<Kel32f> l(piece(low, from, n), in.edge()), h(piece(high, from, n), in.edge());
            return results<T>(in, static_cast<std::size_t>(2 * n),
                              [&](T* to) { return block(l.data(), h.data(), n, to, state.get()); });
        });
        digest(block, y);
        bank.check_and_change(in, one, two);
    }
}

/// The first half of a signal of even length has the first halves of the bands, and the other way round.
template <class T, auto forward, auto inverse>
void halve(Input& in) {
    const int pairs = in.length(500), len = 2 * pairs + in.below(2), cut = in.below(pairs);
    const int factor = in.scale_factor();
    const auto call = [&](auto function, auto... arguments) {
        if constexpr (std::is_invocable_v<decltype(function), decltype(arguments)..., int>)
            return function(arguments..., factor);
        else
            return function(arguments...);
    };
    const auto x = in.data<T>(len);
    const auto bands = [&](const std::vector<T>& signal) {
        const int n = static_cast<int>(signal.size());
        const GuardedArray<T> source(signal, in.edge());
        GuardedArray<T> high(static_cast<std::size_t>(n / 2), in.edge());
        auto both = results<T>(in, static_cast<std::size_t>((n + 1) / 2),
                               [&](T* low) { return call(forward, source.data(), n, low, high.data()); });
        return std::pair(both, high.values());
    };
    const auto signal = [&](const std::vector<T>& low, const std::vector<T>& high) {
        const int n = static_cast<int>(low.size() + high.size());
        const GuardedArray<T> l(low, in.edge()), h(high, in.edge());
        return results<T>(in, low.size() + high.size(),
                          [&](T* to) { return call(inverse, l.data(), h.data(), to, n); });
    };
    const auto [low, high] = bands(x);
    digest(forward, low);
    digest(forward, high);
    const auto back = signal(low, high);
    digest(inverse, back);
    if (cut == 0) return;
    const auto [low_head, high_head] = bands(piece(x, 0, 2 * cut));
    expect_same(piece(low, 0, cut), low_head, "low band");
    expect_same(piece(high, 0, cut), high_head, "high band");
    expect_same(piece(back, 0, 2 * cut), signal(low_head, high_head), "signal");
}

#define KELS_BANK(drive, type, direction, suffix)                                                                      \
    drive<type, kelsWT##direction##InitAlloc_##suffix, kelsWT##direction##Free_##suffix, kelsWT##direction##_##suffix, \
          kelsWT##direction##GetDlyLine_##suffix, kelsWT##direction##SetDlyLine_##suffix>
#define KELS_HAAR(type, suffix) halve<type, kelsWTHaarFwd_##suffix, kelsWTHaarInv_##suffix>

const bool added = add_target("wavelets", {KELS_BANK(analyse, Kel32f, Fwd, 32f),
                                           KELS_BANK(analyse, Kel8s, Fwd, 8s32f),
                                           KELS_BANK(analyse, Kel8u, Fwd, 8u32f),
                                           KELS_BANK(analyse, Kel16s, Fwd, 16s32f),
                                           KELS_BANK(analyse, Kel16u, Fwd, 16u32f),
                                           KELS_BANK(synthesise, Kel32f, Inv, 32f),
                                           KELS_BANK(synthesise, Kel8s, Inv, 32f8s),
                                           KELS_BANK(synthesise, Kel8u, Inv, 32f8u),
                                           KELS_BANK(synthesise, Kel16s, Inv, 32f16s),
                                           KELS_BANK(synthesise, Kel16u, Inv, 32f16u),
                                           KELS_HAAR(Kel8s, 8s),
                                           KELS_HAAR(Kel8s, 8s_Sfs),
                                           KELS_HAAR(Kel16s, 16s),
                                           KELS_HAAR(Kel16s, 16s_Sfs),
                                           KELS_HAAR(Kel32s, 32s),
                                           KELS_HAAR(Kel32s, 32s_Sfs),
                                           KELS_HAAR(Kel64s, 64s),
                                           KELS_HAAR(Kel64s, 64s_Sfs),
                                           KELS_HAAR(Kel32f, 32f),
                                           KELS_HAAR(Kel64f, 64f)});

#undef KELS_BANK
#undef KELS_HAAR

} // namespace
