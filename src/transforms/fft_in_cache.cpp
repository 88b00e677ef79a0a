// Transforms that fit the cache: which radices each order takes.

#include "transforms/fft_in_cache.h"

#include "transforms/fft_passes.h"
#include "transforms/fft_radices.h"

#include <numeric>

namespace kels {
namespace {

/// Calls f with the radices of an in-cache order. Measured choices: the first radix is at least the widest vector, and
/// radix 16 pays where registers hold it.
template <class T, class F>
auto with_radices(int order, F&& f) {
    if constexpr (sizeof(T) == 4) {
        switch (order) {
        case 4:
            return f(Radices<4, 4>{});
        case 5:
            return f(Radices<8, 4>{});
        case 6:
            return f(Radices<8, 8>{});
        case 7:
            return f(Radices<16, 8>{});
        case 8:
            return f(Radices<16, 16>{});
        case 9:
            return f(Radices<16, 4, 8>{});
        case 10:
            return f(Radices<16, 8, 8>{});
        case 11:
            return f(Radices<16, 8, 16>{});
        case 12:
            return f(Radices<16, 4, 8, 8>{});
        default:
            return f(Radices<16, 8, 8, 8>{});
        }
    } else {
        switch (order) {
        case 4:
            return f(Radices<4, 4>{});
        case 5:
            return f(Radices<8, 4>{});
        case 6:
            return f(Radices<8, 8>{});
        case 7:
            return f(Radices<8, 4, 4>{});
        case 8:
            return f(Radices<8, 4, 8>{});
        case 9:
            return f(Radices<8, 8, 8>{});
        case 10:
            return f(Radices<8, 4, 4, 8>{});
        case 11:
            return f(Radices<8, 4, 8, 8>{});
        default:
            return f(Radices<8, 8, 8, 8>{});
        }
    }
}

/// Lanes of the passes: as many as the level, the columns and the first radix allow.
template <class T, int R1, int... Rest>
constexpr int pass_lanes(Radices<R1, Rest...>) {
    return std::min(max_lanes<T>, std::gcd(R1, (Rest * ...)));
}

/// A complex transform of order 0 to 3: one butterfly of scalars.
template <class Layout, class T, int N>
void one_butterfly(const FftPlan<T>&, T factor, Points<const T> src, Points<T> dst) {
    using Data = typename Layout::template Of<T>;
    Complex<T> x[N];
    unrolled<N>([&](auto n) KELS_INLINE { x[n] = Data::read(src, n); });
    butterfly<N>(x);
    unrolled<N>([&](auto k) KELS_INLINE { Data::write(dst, k, x[k] * factor); });
}

} // namespace

template <class Layout, class T>
FftKernel<T> in_cache_kernel(int order) {
    switch (order) {
    case 0:
        return one_butterfly<Layout, T, 1>;
    case 1:
        return one_butterfly<Layout, T, 2>;
    case 2:
        return one_butterfly<Layout, T, 4>;
    case 3:
        return one_butterfly<Layout, T, 8>;
    default:
        return with_radices<T>(
            order, []<int... R>(Radices<R...>)->FftKernel<T> {
                return [](const FftPlan<T>& plan, T factor, Points<const T> src, Points<T> dst) {
                    Passes<Layout, T, pass_lanes<T>(Radices<R...>{}), R...>::run(src, dst, plan.twiddles, factor);
                };
            });
    }
}

template <class Layout, class T>
void lay_in_cache(FftPlan<T>& plan, TableSpace& space) {
    with_radices<T>(
        plan.complex_order, [&]<int... R>(Radices<R...> radices) {
            constexpr int V = pass_lanes<T>(decltype(radices){});
            T* table = space.take<T>(pass_table_size({R...}));
            if (table) make_pass_table<typename Layout::template Of<Vec<T, V>>, V>(table, {R...});
            plan.twiddles = table;
        });
}

template FftKernel<Kel32f> in_cache_kernel<Interleaved<false>, Kel32f>(int);
template FftKernel<Kel32f> in_cache_kernel<Interleaved<true>, Kel32f>(int);
template FftKernel<Kel32f> in_cache_kernel<Split, Kel32f>(int);
template FftKernel<Kel64f> in_cache_kernel<Interleaved<false>, Kel64f>(int);
template FftKernel<Kel64f> in_cache_kernel<Interleaved<true>, Kel64f>(int);
template FftKernel<Kel64f> in_cache_kernel<Split, Kel64f>(int);
template void lay_in_cache<Interleaved<false>>(FftPlan<Kel32f>&, TableSpace&);
template void lay_in_cache<Split>(FftPlan<Kel32f>&, TableSpace&);
template void lay_in_cache<Interleaved<false>>(FftPlan<Kel64f>&, TableSpace&);
template void lay_in_cache<Split>(FftPlan<Kel64f>&, TableSpace&);

} // namespace kels
