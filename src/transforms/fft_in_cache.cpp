// Transforms that fit the cache: which radices each order takes.

#include "transforms/fft_in_cache.h"

#include "transforms/fft_pairs.h"
#include "transforms/fft_passes.h"
#include "transforms/fft_radices.h"

#include <algorithm>
#include <bit>

namespace kels {
namespace {

/// Lanes of an in-cache transform: as many as the level has and a quarter of the points fill.
template <class T>
constexpr int pass_lanes(int order) {
    return std::min(max_lanes<T>, (1 << order) / 4);
}

/// Calls f with the number of lanes and the radices of an in-cache order: 8 needs the fewest passes that registers
/// hold, and the first one is at least what a transform along the lanes takes at a time.
template <class T, class F>
auto with_radices(int order, F&& f) {
    const auto with = [&]<int Lanes>(std::integral_constant<int, Lanes> width) {
        if constexpr (Lanes < max_lanes<T>) return f(width, Radices<4>{});
        switch (order - std::countr_zero(unsigned{Lanes})) {
        case 2:
            return f(width, Radices<4>{});
        case 3:
            return f(width, Radices<8>{});
        case 4:
            return f(width, Radices<4, 4>{});
        case 5:
            return f(width, Radices<4, 8>{});
        case 6:
            return f(width, Radices<8, 8>{});
        case 7:
            return f(width, Radices<4, 4, 8>{});
        case 8:
            return f(width, Radices<4, 8, 8>{});
        case 9:
            return f(width, Radices<8, 8, 8>{});
        case 10:
            return f(width, Radices<4, 4, 8, 8>{});
        default:
            return f(width, Radices<4, 8, 8, 8>{});
        }
    };
    switch (order) {
    case 4:
        return with(std::integral_constant<int, pass_lanes<T>(4)>{});
    case 5:
        return with(std::integral_constant<int, pass_lanes<T>(5)>{});
    default:
        return with(std::integral_constant<int, pass_lanes<T>(6)>{});
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
            order, []<int Lanes, int... R>(std::integral_constant<int, Lanes>, Radices<R...>)->FftKernel<T> {
                return [](const FftPlan<T>& plan, T factor, Points<const T> src, Points<T> dst) {
                    Passes<Layout, T, Lanes, R...>::run(src, dst, plan.twiddles, factor);
                };
            });
    }
}

template <class T>
void lay_in_cache(FftPlan<T>& plan, TableSpace& space) {
    with_radices<T>(
        plan.complex_order, [&]<int Lanes, int... R>(std::integral_constant<int, Lanes>, Radices<R...>) {
            T* table = space.take<T>(pass_table_size({R...}, Lanes));
            if (table) make_pass_table<Vec<T, Lanes>>(table, {R...});
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
