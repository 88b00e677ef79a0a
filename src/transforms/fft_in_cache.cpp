// Transforms that fit the cache: which radices each order takes.

#include "transforms/fft_in_cache.h"

#include "transforms/fft_pairs.h"
#include "transforms/fft_passes.h"
#include "transforms/fft_radices.h"

#include <bit>

namespace kels {
namespace {

/// Calls f with the radices of a transform in passes: 8 needs the fewest passes that registers hold. The other points
/// lie in the lanes.
template <class T, class F>
auto with_radices(int order, F&& f) {
    switch (order - std::countr_zero(unsigned{max_lanes<T>})) {
    case 2:
        return f(Radices<4>{});
    case 3:
        return f(Radices<8>{});
    case 4:
        return f(Radices<4, 4>{});
    case 5:
        return f(Radices<4, 8>{});
    case 6:
        return f(Radices<8, 8>{});
    case 7:
        return f(Radices<4, 4, 8>{});
    case 8:
        return f(Radices<4, 8, 8>{});
    case 9:
        return f(Radices<8, 8, 8>{});
    case 10:
        return f(Radices<4, 4, 8, 8>{});
    default:
        return f(Radices<4, 8, 8, 8>{});
    }
}

/// A complex transform of order 0 to 2: one butterfly of scalars.
template <class Layout, class T, int N>
void one_butterfly(const FftPlan<T>&, T factor, Points<const T> src, Points<T> dst) {
    using Data = typename Layout::template Of<T>;
    Complex<T> x[N];
    unrolled<N>([&](auto n) KELS_INLINE { x[n] = Data::read(src, n); });
    butterfly<N>(x);
    unrolled<N>([&](auto k) KELS_INLINE { Data::write(dst, k, x[k] * factor); });
}

/// A transform of 2 V points in registers.
template <class Layout, class T, int Lanes>
void pair_transform(const FftPlan<T>&, T factor, Points<const T> src, Points<T> dst) {
    using V = Vec<T, Lanes>;
    using Data = typename Layout::template Of<V>;
    V result[4];
    transform_pairs(Data::read_across(src, 0), Data::read_across(src, Lanes), result);
    unrolled<4>([&](auto i) KELS_INLINE { result[i] = result[i] * splat<V>(factor); });
    Data::write_pairs(dst, 0, result[0], result[1]);
    Data::write_pairs(dst, Lanes, result[2], result[3]);
}

} // namespace

template <class Layout, class T>
FftKernel<T> in_cache_kernel(int order) {
    FftKernel<T> in_registers = nullptr;
    const auto take = [&]<int Lanes>(std::integral_constant<int, Lanes>) {
        in_registers = pair_transform<Layout, T, Lanes>;
    };
    if (with_pair_lanes<T>(order, take)) return in_registers;
    switch (order) {
    case 0:
        return one_butterfly<Layout, T, 1>;
    case 1:
        return one_butterfly<Layout, T, 2>;
    case 2:
        return one_butterfly<Layout, T, 4>;
    default:
        return with_radices<T>(
            order, []<int... R>(Radices<R...>)->FftKernel<T> {
                return [](const FftPlan<T>& plan, T factor, Points<const T> src, Points<T> dst) {
                    Passes<Layout, T, max_lanes<T>, R...>::run(src, dst, plan.twiddles, factor);
                };
            });
    }
}

template <class T>
void lay_in_cache(FftPlan<T>& plan, TableSpace& space) {
    const auto no_tables = [](auto) {};
    if (with_pair_lanes<T>(plan.complex_order, no_tables)) return;
    with_radices<T>(
        plan.complex_order, [&]<int... R>(Radices<R...>) {
            T* table = space.take<T>(pass_table_size({R...}, max_lanes<T>));
            if (table) make_pass_table<Vec<T>>(table, {R...});
            plan.twiddles = table;
        });
}

template FftKernel<Kel32f> in_cache_kernel<Interleaved<false>, Kel32f>(int);
template FftKernel<Kel32f> in_cache_kernel<Interleaved<true>, Kel32f>(int);
template FftKernel<Kel32f> in_cache_kernel<Split, Kel32f>(int);
template FftKernel<Kel64f> in_cache_kernel<Interleaved<false>, Kel64f>(int);
template FftKernel<Kel64f> in_cache_kernel<Interleaved<true>, Kel64f>(int);
template FftKernel<Kel64f> in_cache_kernel<Split, Kel64f>(int);
template void lay_in_cache(FftPlan<Kel32f>&, TableSpace&);
template void lay_in_cache(FftPlan<Kel64f>&, TableSpace&);

} // namespace kels
