// Transforms that fit the cache. A source for each precision includes this file: the straight code of all orders takes
// its time to compile.
#pragma once

#include "transforms/fft/in_cache.h"

#include "transforms/fft/butterflies.h"
#include "transforms/fft/pair_passes.h"
#include "transforms/fft/passes.h"
#include "transforms/fft/shapes.h"

#include <bit>

namespace kels {

/// A complex transform of order 0 to 2: one butterfly of scalars.
template <class Layout, class T, int N>
void one_butterfly(const FftPlan<T>&, const FftDirection<T>& direction, Points<const T> src, Points<T> dst) {
    using Data = typename Layout::template Of<T>;
    Complex<T> x[N];
    unrolled<N>([&](auto n) KELS_INLINE { x[n] = Data::read(src, n); });
    butterfly<N>(x);
    unrolled<N>([&](auto k) KELS_INLINE { Data::write(dst, k, x[k] * direction.factor); });
}

template <class Layout, class T, class Shape>
void in_passes(const FftPlan<T>&, const FftDirection<T>& direction, Points<const T> src, Points<T> dst) {
    PairPasses<Layout, T, Shape>::run(src, dst, direction.roots, direction.factor);
}

/// From this order on, data and table leave the inner cache, and short radices over whole lines of split vectors are
/// faster than long ones over pairs.
template <class T>
inline constexpr int first_split_order = sizeof(T) == 8       ? 12
                                         : vector_bytes == 16 ? 11
                                                              : 13;

/// Calls f with the radices of a transform in split vectors; the other points lie in the lanes.
template <class T, class F>
auto with_radices(int order, F&& f) {
    switch (order - std::countr_zero(unsigned{max_lanes<T>})) {
    case 9:
        return f(Radices<8, 8, 8>{});
    case 10:
        return f(Radices<4, 4, 8, 8>{});
    default:
        return f(Radices<4, 8, 8, 8>{});
    }
}

template <class Layout, class T, int... R>
void in_split_passes(const FftPlan<T>& plan, const FftDirection<T>& direction, Points<const T> src, Points<T> dst) {
    Passes<Layout, T, max_lanes<T>, R...>::run(src, dst, plan.twiddles, direction.factor);
}

/// The roots of both directions, which share a table where it is the same.
template <class Layout, class Inverse, class T>
void lay_directions(FftPlan<T>& plan, TableSpace& space) {
    with_shape<T>(plan.complex_order, [&]<class Shape>(Shape) {
        using Passes = PairPasses<Layout, T, Shape>;
        constexpr PairTable table = Passes::table;
        const bool shared = std::is_same_v<Layout, Inverse> && plan.inverse.factor == plan.forward.factor;
        T* forward = space.take<T>(table.size());
        T* inverse = shared ? nullptr : space.take<T>(table.size());
        if (forward)
            table.template make<table.lanes / 2, T>({forward, plan.forward.factor, false},
                                                    {inverse, plan.inverse.factor, Inverse::is_inverse});
        plan.forward.roots = forward;
        plan.inverse.roots = shared ? forward : inverse;
    });
}

template <class Layout, class T>
FftKernel<T> in_cache_kernel(int order) {
    if (order >= first_split_order<T>)
        return with_radices<T>(
            order, []<int... R>(Radices<R...>)->FftKernel<T> { return in_split_passes<Layout, T, R...>; });
    switch (order) {
    case 0:
        return one_butterfly<Layout, T, 1>;
    case 1:
        return one_butterfly<Layout, T, 2>;
    case 2:
        return one_butterfly<Layout, T, 4>;
    default:
        return with_shape<T>(order, []<class Shape>(Shape) -> FftKernel<T> { return in_passes<Layout, T, Shape>; });
    }
}

template <class Layout, class Inverse, class T>
void lay_in_cache(FftPlan<T>& plan, TableSpace& space) {
    if (plan.complex_order >= first_split_order<T>) {
        with_radices<T>(
            plan.complex_order, [&]<int... R>(Radices<R...>) {
                T* table = space.take<T>(pass_table_size({R...}, max_lanes<T>));
                if (table) make_pass_table<Vec<T>>(table, {R...});
                plan.twiddles = table;
            });
        return;
    }
    lay_directions<Layout, Inverse>(plan, space);
}

} // namespace kels
