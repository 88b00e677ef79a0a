// The passes of column transforms, and which ones a length takes.

#include "transforms/dft/columns.h"

#include "transforms/dft/butterflies.h"

#include <limits>
#include <utility>

namespace kels {
namespace {

/// A turn, and what a pass costs beside its butterflies, for every point.
constexpr double turn_cost = 3.5, pass_cost = 0.5;

template <int P, int R, bool last, class T>
void pass(const ColumnPass<T>& p, Rows<const T> in, Rows<T> out, std::ptrdiff_t columns) {
    const T* roots = p.roots;
    const std::ptrdiff_t apart = p.s * p.m * in.row, out_apart = p.s * out.row;
    for (std::ptrdiff_t i = 0; i < p.m; ++i) {
        for (std::ptrdiff_t q = 0; q < p.s; ++q) {
            const T* from = in.data + (q + p.s * i) * in.row;
            T* to = out.data + (q + p.s * R * i) * out.row;
            for (std::ptrdiff_t c = 0; c < 2 * columns; c += 2 * P) {
                WorkVec<T, P> x[R];
                unrolled<R>([&](auto u) KELS_INLINE { x[u] = load_points<P>(from + u * apart + c); });
                point_transform<R>(x);
                unrolled<R>([&](auto k) KELS_INLINE {
                    if constexpr (last || k == 0)
                        store_points<P>(to + k * out_apart + c, x[k]);
                    else
                        store_points<P>(to + k * out_apart + c, times_scalar(x[k], roots + 2 * (k - 1)));
                });
            }
        }
        if (!last) roots += 2 * (R - 1); // the last pass has none
    }
}

template <class T>
void choose_kernels(ColumnPass<T>& p, int radix) {
    with_radix(radix, [&]<int R>(std::integral_constant<int, R>) {
        unrolled<point_counts>([&](auto log) {
            constexpr int P = 1 << log;
            if constexpr (P <= max_points<T>) p.kernels[log] = p.m == 1 ? pass<P, R, true, T> : pass<P, R, false, T>;
        });
    });
}

/// What a pass of n points costs a point.
double pass_cost_of(std::ptrdiff_t n, const PassRadix& pass) {
    return static_cast<double>(pass.instructions) / pass.radix + pass_cost + (n > pass.radix ? turn_cost : 0);
}

/// The cost of the best passes of n points, none of a higher radix than the `first` one, if it is below the limit.
double least_cost(std::ptrdiff_t n, int first, double limit) {
    if (n == 1) return 0;
    double least = std::numeric_limits<double>::infinity();
    for (int i = first; i < radix_count; ++i) {
        if (n % radices[i].radix != 0) continue;
        const double cost = pass_cost_of(n, radices[i]);
        if (cost >= limit) continue;
        const double whole = cost + least_cost(n / radices[i].radix, i, limit - cost);
        if (whole < limit) limit = least = whole;
    }
    return least;
}

/// The highest radix of the best passes.
int best_radix(std::ptrdiff_t n, int first) {
    double least = std::numeric_limits<double>::infinity();
    int best = first;
    for (int i = first; i < radix_count; ++i) {
        if (n % radices[i].radix != 0) continue;
        const double cost = pass_cost_of(n, radices[i]);
        const double whole = cost + least_cost(n / radices[i].radix, i, least - cost);
        if (whole >= least) continue;
        least = whole;
        best = i;
    }
    return best;
}

} // namespace

double column_cost(std::ptrdiff_t n, double limit) { return least_cost(n, 0, limit); }

template <class T>
void lay_columns(ColumnTransform<T>& transform, std::ptrdiff_t n, TableSpace& space) {
    transform.length = n;
    transform.count = 0;
    int chosen[ColumnTransform<T>::most_passes];
    for (std::ptrdiff_t left = n, i = 0; left > 1; left /= radices[i].radix)
        chosen[transform.count++] = static_cast<int>(i = best_radix(left, static_cast<int>(i)));
    std::ptrdiff_t s = 1, left = n;
    for (int i = 0; i < transform.count; ++i) {
        const int radix = radices[chosen[transform.count - 1 - i]].radix; // the lowest ones first
        const Circle circle(static_cast<std::size_t>(left));
        left /= radix;
        T* roots = left > 1 ? space.take<T>(static_cast<std::size_t>(2 * left * (radix - 1))) : nullptr;
        ColumnPass<T>& pass = transform.passes[i];
        pass = {left, s, roots, {}};
        choose_kernels(pass, radix);
        for (std::ptrdiff_t p = 0; roots && p < left; ++p, roots += 2 * (radix - 1))
            circle.write(roots, static_cast<std::size_t>(radix - 1), static_cast<std::size_t>(p),
                         static_cast<std::size_t>(p));
        s *= radix;
    }
}

template void lay_columns(ColumnTransform<Kel32f>&, std::ptrdiff_t, TableSpace&);
template void lay_columns(ColumnTransform<Kel64f>&, std::ptrdiff_t, TableSpace&);

} // namespace kels
