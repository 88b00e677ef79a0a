// The passes of an in-cache transform of N = A B points, over vectors of c complex numbers.
//
// With n = B a + b and k = j + A q:
//
//   first pass  for every c neighbouring b: transforms over a, no twiddles; a tile of c columns and c results j is
//               transposed on its way to the middle array, where j runs along the rows and b counts them;
//   last pass   for every c neighbouring j: x[b] is turned by exp(-2 pi i b j / N), and transforms over b leave natural
//               order, just where they have read.
//
// The transposition is the whole reversal of digits. The middle array is scratch or the destination itself. B = c takes
// one step of the first pass, and when registers hold it there is no middle array at all.
#pragma once

#include "transforms/fft/codelets.h"
#include "transforms/fft/layouts.h"
#include "transforms/fft/pair_roots.h"
#include "transforms/fft/transposed_store.h"

#include <cstdint>

namespace kels {

/// What a kernel is made of: numbers in its vectors, twice; the layers of its first codelet and of its last one; how it
/// turns and transposes. A table in halves pays where the whole one would leave the inner cache.
template <int Lanes, class First, class Last, RootForm form = RootForm::spread,
          class Tiles = Exchanges<Exchange::shuffles, Exchange::shuffles>>
struct Shape {};

template <class Layout, class T, class Shape>
class PairPasses;

/// A whole transform.
template <class Layout, class T, int Lanes, int A1, int A2, int B1, int B2, RootForm form, class Tiles>
class PairPasses<Layout, T, Shape<Lanes, Radices<A1, A2>, Radices<B1, B2>, form, Tiles>> {
    using Data = typename Layout::template PairsOf<Vec<T, Lanes>>;
    static constexpr bool inverse = Layout::is_inverse;
    static constexpr int c = Lanes / 2;
    static constexpr int A = A1 * A2, B = B1 * B2, N = A * B;

    /// From this size on, the destination serves as the middle array where it is not the source.
    static constexpr bool through_destination = Layout::width == 2 && N >= 1024;

public:
    using V = Vec<T, Lanes>;
    static constexpr int vectors = N / c;
    static constexpr bool in_registers = B == c && A <= 16;
    static constexpr PairTable table = {in_registers ? RootForm::spread : form, Lanes, A, B1, B2};

    static void run(Points<const T> src, Points<T> dst, const T* roots, T factor) {
        if constexpr (in_registers) {
            V z[vectors];
            transform(src, roots, factor, z);
            unrolled<vectors>([&](auto i) KELS_INLINE { Data::write(dst, i * c, z[i]); });
        } else {
            if constexpr (through_destination)
                if (src.re != dst.re) {
                    first_pass(src, dst.re);
                    last_pass(dst.re, dst, roots, factor);
                    return;
                }
            // Rows of the scratch and of the destination fall into different sets of the cache: a line apart, modulo
            // the length of a row.
            constexpr std::size_t row = 2 * A * sizeof(T), slack = N >= 1024 ? row / sizeof(T) : 0;
            alignas(64) T scratch[2 * N + slack];
            T* middle = scratch;
            if constexpr (slack > 0) {
                const auto distance =
                    reinterpret_cast<std::uintptr_t>(dst.re) / 64 * 64 + 64 - reinterpret_cast<std::uintptr_t>(scratch);
                middle += distance % row / sizeof(T);
            }
            first_pass(src, middle);
            last_pass(middle, dst, roots, factor);
        }
    }

    /// The results of a transform in registers.
    [[gnu::always_inline]] static void transform(Points<const T> src, const T* roots, T factor, V* z) {
        V y[A];
        transform_points<Group<c>, inverse, V>(
            Radices<A1, A2>{}, [&](auto a) KELS_INLINE { return Data::read(src, a * B); },
            [&](auto j, V* tile) KELS_INLINE {
                transpose_pairs(tile);
                unrolled<c>([&](auto i) KELS_INLINE { y[j + i] = tile[i]; });
            });
        unrolled<A / c>([&](auto group) KELS_INLINE {
            V* x = y + group * c;
            x[0] = x[0] * splat<V>(factor);
            unrolled<B - 1>([&](auto i) KELS_INLINE {
                x[i + 1] =
                    times_spread(x[i + 1], roots + table.values_of_vector() * group + table.values_of_root() * i);
            });
            if constexpr (B > 1) butterfly<B, inverse>(x);
            unrolled<B>([&](auto q) KELS_INLINE { z[group + A / c * q] = x[q]; });
        });
    }

private:
    static void first_pass(Points<const T> src, T* middle) {
        KELS_ROLLED
        for (std::ptrdiff_t b = 0; b < B; b += c) {
            const Points<const T> columns = Data::opaque(src, b);
            T* rows = opaque_address(middle + 2 * A * b);
            transform_points<Group<c>, inverse, V>(
                Radices<A1, A2>{}, [&](auto a) KELS_INLINE { return Data::read(columns, a * B); },
                [&](auto j, const V* z) KELS_INLINE { store_transposed(Tiles{}, z, rows + 2 * j, 2 * A); });
        }
    }

    static void last_pass(const T* middle, Points<T> dst, const T* roots, T factor) {
        const V whole = splat<V>(factor);
        KELS_ROLLED
        for (std::ptrdiff_t j = 0; j < A; j += c, roots += table.values_of_vector()) {
            const T* columns = opaque_address(middle + 2 * j);
            const Points<T> results = Data::opaque(dst, j);
            const T* turns = opaque_address(roots);
            transform_points<Group<1>, inverse, V>(
                Radices<B1, B2>{},
                [&](auto b) KELS_INLINE {
                    const T* z = columns + 2 * A * b;
                    if constexpr (b == 0)
                        return load<V>(z) * whole;
                    else
                        return load_turned<form, V>(z, turns + table.values_of_root() * (table.turn(b) - 1));
                },
                [&](auto q, const V* z) KELS_INLINE { Data::write(results, A * q, *z); });
        }
    }
};

} // namespace kels
