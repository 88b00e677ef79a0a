// Streams through contexts, for the tests and for the fuzzer: one way of calling, with arrays at the edge of a page.
#pragma once

#include "filters/careful.h"
#include "filters/checks.h"
#include "filters/samples.h"

namespace filter_test {

// FIR and IIR filters come for the same taps and samples. A row has what tells the names of a family apart: the taps,
// where they are not of the samples' type, the samples, and the endings.
#define KELS_FILTERS(row)                                                                                              \
    row(, 32f, , _I) row(, 32fc, , _I) row(, 64f, , _I) row(, 64fc, , _I) row(64f, 32f, , _I) row(64fc, 32fc, , _I)    \
        row(32f, 16s, _Sfs, _ISfs) row(32fc, 16sc, _Sfs, _ISfs) row(32s, 16s, _Sfs, _ISfs)                             \
            row(32sc, 16sc, _Sfs, _ISfs) row(64f, 32s, _Sfs, _ISfs) row(64fc, 32sc, _Sfs, _ISfs)                       \
                row(64f, 16s, _Sfs, _ISfs) row(64fc, 16sc, _Sfs, _ISfs)

/// Functions that both kinds have.
#define KELS_FILTER_FUNCTIONS(kind, taps, samples, ending, ending_in_place)                                            \
    static constexpr auto init = kels##kind##InitAlloc##taps##_##samples;                                              \
    static constexpr auto release = kels##kind##Free##taps##_##samples;                                                \
    static constexpr auto get_line = kels##kind##GetDlyLine##taps##_##samples;                                         \
    static constexpr auto set_line = kels##kind##SetDlyLine##taps##_##samples;                                         \
    static constexpr auto block = kels##kind##taps##_##samples##ending;                                                \
    static constexpr auto in_place = kels##kind##taps##_##samples##ending_in_place;                                    \
    static constexpr auto one = kels##kind##One##taps##_##samples##ending;

template <class Function>
struct ArgumentsOf;
template <class... A>
struct ArgumentsOf<KelStatus (*)(A...)> {
    template <std::size_t i>
    using Pointed = std::remove_const_t<std::remove_pointer_t<std::tuple_element_t<i, std::tuple<A...>>>>;
};
/// What the i-th argument of a function points at.
template <auto function, std::size_t i>
using Pointed = typename ArgumentsOf<std::remove_const_t<decltype(function)>>::template Pointed<i>;

/// Functions, and the types of their taps, samples and delay line.
template <class Functions>
struct Family : Functions {
    using Taps = Pointed<Functions::init, 1>;
    using Sample = Pointed<Functions::block, 0>;
    using State = Pointed<Functions::get_line, 1>;
    static constexpr bool integer_taps = std::is_integral_v<Part<Taps>>;
    static constexpr bool integer_samples = std::is_integral_v<Part<Sample>>;
    static constexpr bool single_taps = std::is_same_v<Part<Taps>, Kel32f>;
    static constexpr bool complex = parts<Sample> == 2;
};

/// The ways of samples through a filter. The last two are for some only.
enum Way { as_block, in_place, one_by_one, one_in_place, over_itself };

/// A context as what samples go through.
template <class F, class Context>
struct Through {
    Context* context;
    int scale;

    kels_test::Edge edge_of_source(auto& in) const { return in.edge(); }
    KelStatus run(const typename F::Sample* x, typename F::Sample* y, int n) {
        return call(F::block, scale, x, y, n, context);
    }
    KelStatus run(typename F::Sample* x, int n) { return call(F::in_place, scale, x, n, context); }
    KelStatus one(Way, typename F::Sample* x) { return call(F::one, scale, *x, x, context); }
};

/// What a filter makes of x in one of the ways: n iterations, which give so many samples.
template <class T, class In, class Filter>
std::vector<T> filtered(In& in, Filter& filter, Way way, const std::vector<T>& x, int n, std::size_t given) {
    if (way == as_block) {
        const kels_test::GuardedArray<T> source(x, filter.edge_of_source(in));
        return kels_test::results<T>(in, given, [&](T* y) { return filter.run(source.data(), y, n); });
    }
    if (way == in_place || way == over_itself) {
        const auto run = [&](T* y) { return way == in_place ? filter.run(y, n) : filter.run(y, y, n); };
        auto y = kels_test::results_in_place(in, x, run, given);
        y.resize(given);
        return y;
    }
    kels_test::GuardedArray<T> y(x, kels_test::Edge::back);
    const auto one_after_the_other = [&] {
        KelStatus status = kelStatusOk;
        for (std::size_t i = 0; i < x.size() && status == kelStatusOk; ++i) status = filter.one(way, y.data() + i);
        return status;
    };
    EXPECT_EQ(in.plainly(one_after_the_other), kelStatusOk);
    return y.values();
}

/// A family that has no context of this kind refuses it.
template <class Stranger>
void expect_stranger(auto* context) {
    typename Stranger::Sample x[2] = {};
    typename Stranger::State line[2] = {};
    EXPECT_EQ(call(Stranger::block, 0, x, x, 2, context), kelStatusContextMismatch);
    EXPECT_EQ(Stranger::get_line(context, line), kelStatusContextMismatch);
    EXPECT_EQ(Stranger::release(context), kelStatusContextMismatch);
}

/// Contexts of every family but F: make(family) gives two.
template <class F, class Context, class Make, class... All>
std::vector<Context> contexts_of_others(testing::Types<All...>, Make make) {
    std::vector<Context> others;
    const auto add = [&](Context context) {
        if (context.get_deleter() != F::release) others.push_back(std::move(context));
    };
    for (const int kind : {0, 1}) (add(make.template operator()<All>(kind != 0)), ...);
    EXPECT_EQ(others.size(), 2 * (sizeof...(All) - 1));
    return others;
}

/// A context gives back the line it was made with, and takes others.
template <class F, class Context>
void expect_line_kept(Context* context, const std::vector<typename F::State>& line) {
    using Line = std::vector<typename F::State>;
    kels_test::Careful careful;
    const auto expect = [&](const Line& wanted) {
        const auto get = [&](auto* to) { return F::get_line(context, to); };
        EXPECT_TRUE(same(kels_test::results<typename F::State>(careful, line.size(), get), wanted));
    };
    expect(line);
    EXPECT_EQ(F::set_line(context, nullptr), kelStatusOk);
    expect(Line(line.size()));
    EXPECT_EQ(F::set_line(context, line.data()), kelStatusOk);
    expect(line);
}

/// The checks of what goes through a context, and of what reads and writes its state.
template <class F, class Owner>
void expect_checks_of_context(const Owner& own, const std::vector<Owner>& others) {
    Untouched memory;
    auto* const x = memory.array<typename F::Sample>(4);
    auto* const y = memory.array<typename F::Sample>(4);
    auto* const line = memory.array<typename F::State>(8);
    memory.expect_refusals(F::release, std::tuple(own.get()), {null(0), foreign(0, others)});
    memory.expect_checks(F::get_line, std::tuple(own.get(), line), {null(0), null(1), foreign(0, others)});
    memory.expect_checks(F::set_line, std::tuple(own.get(), line), {null(0), foreign(0, others)});
    memory.expect_checks(F::block, std::tuple(x, y, 1, own.get()),
                         {null(3), foreign(3, others), null(0), null(1), size(2)});
    memory.expect_checks(F::in_place, std::tuple(x, 1, own.get()), {null(2), foreign(2, others), null(0), size(1)});
}
template <class F, class Owner>
void expect_checks_of_one(const Owner& own, const std::vector<Owner>& others) {
    Untouched memory;
    memory.expect_checks(F::one, std::tuple(typename F::Sample{}, memory.array<typename F::Sample>(1), own.get()),
                         {null(2), foreign(2, others), null(1)});
}

} // namespace filter_test
