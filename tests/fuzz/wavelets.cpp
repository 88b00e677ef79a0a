// Filter banks through two states, in other pieces; the Haar transform whole and in halves.

#include "filters/samples.h"
#include "fuzz/sequence.h"
#include "wavelets/families.h"

#include <array>

namespace {

using namespace kels_test;
using namespace wavelet_test;

struct Band {
    std::vector<Kel32f> taps;
    int offset;
    std::size_t kept;
};

template <template <class> class Form>
constexpr std::array releases = {Form<Kel32f>::release, Form<Kel8s>::release, Form<Kel8u>::release,
                                 Form<Kel16s>::release, Form<Kel16u>::release};

/// Two states of one bank: make, read, write, release, and what both forms share.
template <template <class> class Form, class T>
struct Bank {
    using F = Form<T>;

    Band low, high;

    static Band draw_band(Input& in) {
        const int length = in.length(80), offset = in.below(8) - 1;
        return {in.data<Kel32f>(length, Style::finite), offset, static_cast<std::size_t>(F::kept(length, offset))};
    }
    explicit Bank(Input& in) : low(draw_band(in)), high(draw_band(in)) {}

    auto create(Input& in) const {
        const GuardedArray<Kel32f> l(low.taps, in.edge()), h(high.taps, in.edge());
        return made(in, F::release, [&](auto** state) {
            return F::make(state, l.data(), static_cast<int>(low.taps.size()), low.offset, h.data(),
                           static_cast<int>(high.taps.size()), high.offset);
        });
    }

    /// Both delay lines, one after the other.
    std::vector<Kel32f> lines(Input& in, const auto& state) const {
        GuardedArray<Kel32f> l(low.kept, in.edge()), h(high.kept, in.edge());
        EXPECT_EQ(F::get(state.get(), l.data(), h.data()), kelStatusOk);
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
            EXPECT_EQ(F::set(two.get(), l.data(), h.data()), kelStatusOk);
        } else if (step == 2) {
            const auto other = releases<Form>[static_cast<std::size_t>(in.below(releases<Form>.size()))];
            if (other != F::release) {
                EXPECT_EQ(other(two.get()), kelStatusContextMismatch);
            }
        }
    }
};

template <class T>
void analyse(Input& in) {
    const Bank<Analysis, T> bank(in);
    const auto one = bank.create(in);
    auto two = bank.create(in);
    while (in.more()) {
        const int len = in.length(300);
        const auto x = in.data<T>(2 * len);
        const auto y = at_once_and_cut(one, two, len, in.below(len), [&](const auto& state, int from, int n) {
            const GuardedArray<T> source(piece(x, 2 * from, 2 * n), in.edge());
            const auto count = static_cast<std::size_t>(n);
            GuardedArray<Kel32f> low(count, in.edge()), high(count, in.edge());
            EXPECT_EQ(Analysis<T>::block(source.data(), low.data(), high.data(), n, state.get()), kelStatusOk);
            std::vector<Kel32fc> both(count);
            for (std::size_t i = 0; i < count; ++i) both[i] = {low.data()[i], high.data()[i]};
            return both;
        });
        digest(Analysis<T>::block, y);
        bank.check_and_change(in, one, two);
    }
}

template <class T>
void synthesise(Input& in) {
    const Bank<Synthesis, T> bank(in);
    const auto one = bank.create(in);
    auto two = bank.create(in);
    while (in.more()) {
        const int len = in.length(300);
        constexpr auto style = std::is_integral_v<T> ? Style::finite : Style::any; // a NaN's sign is free
        const auto low = in.data<Kel32f>(len, style), high = in.data<Kel32f>(len, style);
        const auto y = at_once_and_cut(one, two, len, in.below(len), [&](const auto& state, int from, int n) {
            const GuardedArray<Kel32f> l(piece(low, from, n), in.edge()), h(piece(high, from, n), in.edge());
            return results<T>(in, static_cast<std::size_t>(2 * n),
                              [&](T* to) { return Synthesis<T>::block(l.data(), h.data(), n, to, state.get()); });
        });
        digest(Synthesis<T>::block, y);
        bank.check_and_change(in, one, two);
    }
}

/// The first half of a signal of even length has the first halves of the bands, and the other way round.
template <class T, auto forward, auto inverse>
void halve(Input& in) {
    const int pairs = in.length(500), len = 2 * pairs + in.below(2), cut = in.below(pairs);
    const int factor = in.scale_factor();
    const auto x = in.data<T>(len);
    const auto bands = [&](const std::vector<T>& signal) {
        const int n = static_cast<int>(signal.size());
        const GuardedArray<T> source(signal, in.edge());
        GuardedArray<T> high(static_cast<std::size_t>(n / 2), in.edge());
        auto both = results<T>(in, static_cast<std::size_t>((n + 1) / 2), [&](T* low) {
            return filter_test::call(forward, factor, source.data(), n, low, high.data());
        });
        return std::pair(both, high.values());
    };
    const auto signal = [&](const std::vector<T>& low, const std::vector<T>& high) {
        const int n = static_cast<int>(low.size() + high.size());
        const GuardedArray<T> l(low, in.edge()), h(high, in.edge());
        return results<T>(in, low.size() + high.size(),
                          [&](T* to) { return filter_test::call(inverse, factor, l.data(), h.data(), to, n); });
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

template <class T>
constexpr Drive plain = halve<T, Haar<T>::forward, Haar<T>::inverse>;
template <class T>
constexpr Drive scaled = halve<T, Haar<T>::scaled_forward, Haar<T>::scaled_inverse>;

const bool added = add_target("wavelets", {analyse<Kel32f>,    analyse<Kel8s>,     analyse<Kel8u>,    analyse<Kel16s>,
                                           analyse<Kel16u>,    synthesise<Kel32f>, synthesise<Kel8s>, synthesise<Kel8u>,
                                           synthesise<Kel16s>, synthesise<Kel16u>, plain<Kel8s>,      scaled<Kel8s>,
                                           plain<Kel16s>,      scaled<Kel16s>,     plain<Kel32s>,     scaled<Kel32s>,
                                           plain<Kel64s>,      scaled<Kel64s>,     plain<Kel32f>,     plain<Kel64f>});

} // namespace
