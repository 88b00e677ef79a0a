// Blocks of recursions: their constants, in extended precision, and their sums.

#include "filters/iir/look_ahead.h"

#include "filters/iir/normalization.h"

#include <algorithm>
#include <cmath>

namespace kels {
namespace {

using look_ahead::Block;

// Sums of both parts' magnitudes, squares of magnitudes, conjugates.

Extended size_of(Extended x) { return std::fabs(x); }
Extended size_of(Complex<Extended> z) { return std::fabs(z.re) + std::fabs(z.im); }
Extended square_of(Extended x) { return x * x; }
Extended square_of(Complex<Extended> z) { return z.re * z.re + z.im * z.im; }
Extended conjugate(Extended x) { return x; }
Complex<Extended> conjugate(Complex<Extended> z) { return {z.re, -z.im}; }

Extended widened(Kel64f x) { return x; }
Complex<Extended> widened(Complex<Kel64f> z) { return {z.re, z.im}; }

/// 1, or i.
template <class N>
N unit(int part) {
    if constexpr (std::is_same_v<N, Extended>)
        return 1;
    else
        return part == 0 ? N{1, 0} : N{0, 1};
}

/// Whether all roots of z^order + a[1] z^(order-1) + ... lie inside the unit circle: its reflection coefficients do (I.
/// Schur, A. Cohn).
template <class N>
bool stable(const N* a, int order) {
    N p[TransposedAhead::most + 1], q[TransposedAhead::most + 1];
    std::copy_n(a, order + 1, p);
    for (int m = order; m >= 1; --m) {
        const N k = p[m];
        const Extended square = square_of(k);
        if (!(square < 1)) return false;
        for (int i = 1; i < m; ++i) q[i] = (p[i] - k * conjugate(p[m - i])) * (1 / (1 - square));
        std::copy_n(q + 1, m - 1, p + 1);
    }
    return true;
}

/// Whether a constant loses nothing as a double, and leaves room for sums.
bool tame(Extended constant) {
    const Extended size = std::fabs(constant);
    return size == 0 || (size > 0x1p-900L && size < 0x1p60L);
}

template <class N>
Extended sum_of_sizes(const N* x, int count) {
    Extended sum = 0;
    for (int i = 0; i < count; ++i) sum += size_of(x[i]);
    return sum;
}

} // namespace

bool look_ahead::calm(const Kel64f* x, std::ptrdiff_t count) {
    constexpr Kel64f limit = 0x1p500;
    using V = Vec<Kel64f>;
    const V most = splat<V>(limit);
    std::ptrdiff_t i = 0;
    V largest{};
    for (; i + lanes<V> <= count; i += lanes<V>) {
        const V size = magnitude(load<V>(x + i));
        largest = size < most ? largest : most;
    }
    bool all = !any_lane(largest == most);
    for (; i < count; ++i) all &= std::fabs(x[i]) < limit;
    return all;
}

bool SectionAhead::prepare(Kel64f gain, Kel64f c1, Kel64f c2, Kel64f c3, Kel64f c4) {
    const Extended a[] = {1, c1, c2};
    if (!stable(a, 2) || !tame(c3) || !tame(c4)) return false;
    bool safe = true;
    const auto constant = [&safe](Extended value) {
        safe &= tame(value);
        return static_cast<Kel64f>(value);
    };
    Extended response[block + 1];
    response[0] = 1;
    response[1] = -Extended{c1};
    for (int i = 2; i <= block; ++i) response[i] = -c1 * response[i - 1] - c2 * response[i - 2];
    for (int i = 0; i < block; ++i) {
        for (int j = 0; j < block; ++j) of_sample_[j][i] = i < j ? 0 : constant(gain * response[i - j]);
        of_w1_[i] = constant(response[i + 1]);
        of_w2_[i] = constant(-c2 * response[i]);
    }
    c3_ = c3;
    c4_ = c4;
    return safe;
}

void SectionAhead::run(const Kel64f* in, Kel64f* out, std::ptrdiff_t blocks, Kel64f* w1, Kel64f* w2) const {
    Block of_sample[block];
    for (int j = 0; j < block; ++j) of_sample[j] = load<Block>(of_sample_[j]);
    const Block of_w1 = load<Block>(of_w1_), of_w2 = load<Block>(of_w2_);
    const Block c3 = splat<Block>(c3_), c4 = splat<Block>(c4_);
    Block before{0, 0, 0, 0, 0, 0, *w2, *w1};
    for (std::ptrdiff_t i = 0; i < blocks; ++i, in += block, out += block) {
        Block even = of_sample[0] * splat<Block>(in[0]), odd = of_sample[1] * splat<Block>(in[1]);
        unrolled<block / 2 - 1>([&](auto j) KELS_INLINE {
            constexpr int at = 2 * decltype(j)::value + 2;
            even = fma(of_sample[at], splat<Block>(in[at]), even);
            odd = fma(of_sample[at + 1], splat<Block>(in[at + 1]), odd);
        });
        Block w = fma(of_w2, spread<6>(before), even + odd);
        w = fma(of_w1, spread<7>(before), w);
        const Block one_before = shuffle<[](int l) { return l + 7; }>(before, w);
        const Block two_before = shuffle<[](int l) { return l + 6; }>(before, w);
        store(out, fma(c4, two_before, fma(c3, one_before, w)));
        before = w;
    }
    *w1 = before[7];
    *w2 = before[6];
}

bool TransposedAhead::allocate(int doubles) {
    doubles_ = doubles;
    rows_ = block + (doubles + block - 1) / block * block;
    columns_ = make_owned_product<Kel64f>(rows_, 2 * block);
    return columns_ != nullptr;
}

/// A column is what the recursion makes of a 1, or an i, in its place.
template <bool complex>
bool TransposedAhead::prepare(const Plane<Kel64f, complex>& b_plane, const Plane<Kel64f, complex>& a_plane) {
    using N = Number<Extended, complex>;
    constexpr int parts_of_number = complex ? 2 : 1;
    const int order = doubles_ / parts_of_number;
    N b[most + 1], a[most + 1];
    for (int i = 0; i <= order; ++i) {
        b[i] = widened(b_plane.get(i));
        a[i] = widened(a_plane.get(i));
    }
    if (!stable(a, order)) return false;
    std::fill_n(columns_.get(), rows_ * 2 * block, 0.0);
    bool all_tame = true;
    const auto put = [&all_tame](Kel64f* at, N value) {
        const auto* values = reinterpret_cast<const Extended*>(&value);
        for (int part = 0; part < parts_of_number; ++part) {
            all_tame &= tame(values[part]);
            at[part] = static_cast<Kel64f>(values[part]);
        }
    };
    for (int i = 0; i < block + std::min(doubles_, block); ++i) {
        const N one = unit<N>(i % parts_of_number);
        N d[most + 1] = {};
        if (i >= block) d[(i - block) / parts_of_number] = one;
        for (int n = 0; n < block / parts_of_number; ++n) {
            const N x = n == i / parts_of_number ? one : N{}, y = b[0] * x + d[0];
            for (int j = 0; j < order; ++j) d[j] = b[j + 1] * x - a[j + 1] * y + d[j + 1];
            put(column(i) + n * parts_of_number, y);
        }
        for (int j = 0; j < order; ++j) put(column(i) + block + j * parts_of_number, d[j]);
    }
    return all_tame && as_exact_as_the_recursion(b, a);
}

template bool TransposedAhead::prepare(const Plane<Kel64f, false>&, const Plane<Kel64f, false>&);
template bool TransposedAhead::prepare(const Plane<Kel64f, true>&, const Plane<Kel64f, true>&);

/// Every magnitude in a sum may leave a rounding in a register, from where it goes the way of all others. Register j
/// holds at most the sum of |a[j + k] y[-k]| and the samples' terms. So what a block puts on its registers is compared
/// with the terms of the recursion's steps, of results and of samples, sum with sum.
template <class N>
bool TransposedAhead::as_exact_as_the_recursion(const N* b, const N* a) const {
    constexpr int parts_of_number = sizeof(N) / sizeof(Extended);
    constexpr Extended allowance = 3; // of 4: measured errors reach a half of the bound here, and all of it at 6
    const int order = doubles_ / parts_of_number;
    const auto of_column = [this](int i) {
        Extended sum = 0;
        for (int j = 0; j < doubles_; ++j) sum += std::fabs(column(i)[block + j]);
        return sum;
    };
    Extended of_results = 0, of_samples = 0;
    for (int i = 0; i < block; ++i) of_samples += of_column(i);
    for (int i = 0; i < std::min(doubles_, block); ++i) {
        const int j = i / parts_of_number;
        of_results += of_column(block + i) * sum_of_sizes(a + j + 1, order - j);
    }
    return of_results <= allowance * block * sum_of_sizes(a + 1, order) &&
           of_samples <= allowance * block * sum_of_sizes(b, order + 1);
}

/// The registers of `Chunks` blocks, the first `Columns` of which reach the results of the block.
template <int Chunks, int Columns>
void TransposedAhead::run_chunks(const Kel64f* in, Kel64f* out, std::ptrdiff_t blocks, Kel64f* state) const {
    Block d[Chunks + 1];
    unrolled<Chunks + 1>([&](auto r) KELS_INLINE { d[r] = load<Block>(state + block * r); });
    for (std::ptrdiff_t n = 0; n < blocks; ++n, in += block, out += block) {
        // Row 0 has the results, row r + 1 registers r. The samples' sums wait for nothing.
        Block sum[Chunks + 1], other[Chunks + 1];
        const auto add = [&](Block* sums, int i, Block factor) KELS_INLINE {
            const Kel64f* of = column(i);
            unrolled<Chunks + 1>([&](auto r)
                                     KELS_INLINE { sums[r] = fma(load<Block>(of + block * r), factor, sums[r]); });
        };
        unrolled<Chunks + 1>([&](auto r) KELS_INLINE {
            sum[r] = r == 0 ? Block{} : d[r];
            other[r] = Block{};
        });
        unrolled<block>([&](auto j) KELS_INLINE { add(sum, j, splat<Block>(in[j])); });
        unrolled<Columns>(
            [&](auto j) KELS_INLINE { add(j % 2 == 0 ? sum : other, block + j, spread<decltype(j)::value>(d[0])); });
        store(out, sum[0] + other[0]);
        unrolled<Chunks>([&](auto r) KELS_INLINE { d[r] = sum[r + 1] + other[r + 1]; });
    }
    unrolled<Chunks>([&](auto r) KELS_INLINE { store(state + block * r, d[r]); });
}

void TransposedAhead::run(const Kel64f* in, Kel64f* out, std::ptrdiff_t blocks, Kel64f* state) const {
    if (doubles_ <= 2)
        run_chunks<1, 2>(in, out, blocks, state);
    else if (doubles_ <= 4)
        run_chunks<1, 4>(in, out, blocks, state);
    else if (doubles_ <= 8)
        run_chunks<1, 8>(in, out, blocks, state);
    else if (doubles_ <= 16)
        run_chunks<2, 8>(in, out, blocks, state);
    else if (doubles_ <= 24)
        run_chunks<3, 8>(in, out, blocks, state);
    else
        run_chunks<4, 8>(in, out, blocks, state);
}

} // namespace kels
