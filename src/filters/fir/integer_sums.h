// Sums of products of 16-bit samples and integer taps, in 32 bits that wrap. The order of additions does not matter.
//
// Everything rests on one instruction that adds the products of neighbouring 16-bit pairs. Taps of more than 16 bits
// come as two of 16, the upper one's sum shifted into its place: a second pass over the samples.
#pragma once

#include "frame/numeric.h"
#include "frame/simd.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace kels {

/// A tap's coefficients are itself, or for a complex one (re, -im) for the real and (im, re) for the imaginary part.
template <bool complex>
struct IntegerSums {
    using Line = Kel16s;
    using Coefficient = Kel16s;
    using Total = Kel32u;
    static constexpr int width = complex ? 2 : 1;
    static constexpr int per_tap = complex ? 4 : 1;
    static constexpr int padding = complex ? 0 : 1; // taps are taken in pairs
    static constexpr int segment = 1024 / width;    ///< taps that are summed on their own
    using Sum = std::array<Total, width>;

    /// The lower 16 bits, signed, of a coefficient; in the second pass what is above.
    static Coefficient of_pass(Kel32u coefficient, int pass) {
        const auto low = static_cast<Kel16s>(coefficient);
        return pass == 0 ? low : static_cast<Kel16s>((coefficient - static_cast<Kel32u>(low)) >> 16);
    }

    template <class Taps>
    static void put(const Taps& tap, int pass, Coefficient* out) {
        if constexpr (complex) {
            const auto re = static_cast<Kel32u>(tap.re), im = static_cast<Kel32u>(tap.im);
            const Kel32u all[] = {re, 0 - im, im, re};
            for (int i = 0; i < per_tap; ++i) out[i] = of_pass(all[i], pass);
        } else {
            out[0] = of_pass(static_cast<Kel32u>(tap), pass);
        }
    }

    /// Passes over the samples that the taps need.
    template <class Taps>
    static int passes(const Taps* taps, int count) {
        for (int i = 0; i < count; ++i) {
            Coefficient above[per_tap];
            put(taps[i], 1, above);
            if (std::any_of(above, above + per_tap, [](Coefficient c) { return c != 0; })) return 2;
        }
        return 1;
    }

    static void add_strips(const Line* line, const Coefficient* taps, int count, Total* total, int outputs, int pass);

    /// The products of `count` samples and the coefficients of as many taps.
    static Sum dot(const Line* x, const Coefficient* taps, int count);

    static Sum dot_of_fresh(const Line* x, const Coefficient* taps, int count);

    static Sum folded(const Vec<Kel32u, 4>& sum);

    /// Adds dot products to every `total_step`-th total: `taps` with the samples from x on, those `step` later, and so
    /// on. Reads up to eight parts behind the last.
    static void add_dots(const Line* x, std::ptrdiff_t step, const Coefficient* taps, int count, int dots, Total* total,
                         std::ptrdiff_t total_step, int pass);

    /// The products of samples and taps of 32 bits, the last tap first.
    template <class Taps>
    static Sum dot_of_wide(const Line* x, const Taps* taps, int count);
};

using Words = Vec<Kel16s>;

/// A pair of neighbouring coefficients in every pair of lanes.
[[gnu::always_inline]] inline Words splat_pair(const Kel16s* pair) {
    return bits_as<Words>(splat<Vec<Kel32s>>(load<Kel32s>(pair)));
}

/// Even outputs meet pairs of taps at even places, odd ones the same pairs one sample further.
template <int Vectors>
[[gnu::always_inline]] inline void real_strip(const Kel16s* line, const Kel16s* taps, int count, Vec<Kel32u>* total,
                                              int shift) {
    using V = Vec<Kel32u>;
    V even[Vectors] = {}, odd[Vectors] = {};
    for (int i = 0; i < count; i += 2) {
        const Words pair = splat_pair(taps + i);
        unrolled<Vectors>([&](auto v) KELS_INLINE {
            const Kel16s* x = line + i + v * lanes<Words>;
            even[v] += (V)add_products(load<Words>(x), pair);
            odd[v] += (V)add_products(load<Words>(x + 1), pair);
        });
    }
    unrolled<Vectors>([&](auto v) KELS_INLINE {
        total[2 * v] += interleave<0>(even[v], odd[v]) << splat<V>(static_cast<Kel32u>(shift));
        total[2 * v + 1] += interleave<1>(even[v], odd[v]) << splat<V>(static_cast<Kel32u>(shift));
    });
}

template <int Vectors>
[[gnu::always_inline]] inline void complex_strip(const Kel16s* line, const Kel16s* taps, int count, Vec<Kel32u>* total,
                                                 int shift) {
    using V = Vec<Kel32u>;
    V re[Vectors] = {}, im[Vectors] = {};
    for (int i = 0; i < count; ++i) {
        const Words for_re = splat_pair(taps + 4 * i), for_im = splat_pair(taps + 4 * i + 2);
        unrolled<Vectors>([&](auto v) KELS_INLINE {
            const Words x = load<Words>(line + 2 * i + v * lanes<Words>);
            re[v] += (V)add_products(x, for_re);
            im[v] += (V)add_products(x, for_im);
        });
    }
    unrolled<Vectors>([&](auto v) KELS_INLINE {
        total[2 * v] += interleave<0>(re[v], im[v]) << splat<V>(static_cast<Kel32u>(shift));
        total[2 * v + 1] += interleave<1>(re[v], im[v]) << splat<V>(static_cast<Kel32u>(shift));
    });
}

/// total[j] += sum over i of taps[i] line[j + i], for `outputs` parts of outputs, rounded up to vectors of samples.
template <bool complex>
void IntegerSums<complex>::add_strips(const Line* line, const Coefficient* taps, int count, Total* total, int outputs,
                                      int pass) {
    using V = Vec<Kel32u>;
    const auto strip = [&]<int Vectors>(std::integral_constant<int, Vectors>, int at) {
        V sum[2 * Vectors];
        unrolled<2 * Vectors>([&](auto v) KELS_INLINE { sum[v] = load<V>(total + at + v * lanes<V>); });
        if constexpr (complex)
            complex_strip<Vectors>(line + at, taps, count, sum, 16 * pass);
        else
            real_strip<Vectors>(line + at, taps, count, sum, 16 * pass);
        unrolled<2 * Vectors>([&](auto v) KELS_INLINE { store(total + at + v * lanes<V>, sum[v]); });
    };
    int at = 0;
    for (; at + 4 * lanes<Words> <= outputs; at += 4 * lanes<Words>) strip(std::integral_constant<int, 4>{}, at);
    for (; at < outputs; at += lanes<Words>) strip(std::integral_constant<int, 1>{}, at);
}

// One output

/// Samples as the coefficients meet them: complex ones twice.
template <bool complex, class W>
[[gnu::always_inline]] inline W load_samples(const Kel16s* x) {
    if constexpr (complex) {
        using Pairs = Vec<Kel32s, lanes<W> / 2>;
        using Half = Vec<Kel16s, lanes<W> / 2>;
        const W low = both(load<Half>(x), Half{});
        const Pairs pairs = bits_as<Pairs>(low);
        return bits_as<W>(interleave<0>(pairs, pairs));
    } else {
        return load<W>(x);
    }
}

/// Taps from..count - 1 one by one.
template <bool complex>
[[gnu::always_inline]] inline auto integer_dot_from(const Kel16s* x, const Kel16s* taps, int from, int count) {
    constexpr int width = complex ? 2 : 1;
    std::array<Kel32u, width> sum{};
    for (int i = from; i < count; ++i)
        if constexpr (complex) {
            const Kel16s* h = taps + 4 * i;
            const int re = loaded_alone(x[2 * i]), im = loaded_alone(x[2 * i + 1]);
            sum[0] += static_cast<Kel32u>(h[0] * re) + static_cast<Kel32u>(h[1] * im);
            sum[1] += static_cast<Kel32u>(h[2] * re) + static_cast<Kel32u>(h[3] * im);
        } else {
            sum[0] += static_cast<Kel32u>(taps[i] * loaded_alone(x[i]));
        }
    return sum;
}

/// Eight coefficients at once.
using ShortWords = Vec<Kel16s, 8>;

/// Taps from 0 on that fill vectors, `count` of them at most; how many those were goes to `taken`.
template <bool complex>
[[gnu::always_inline]] inline Vec<Kel32u, 4> dot_of_vectors(const Kel16s* x, const Kel16s* taps, int count,
                                                            int& taken) {
    constexpr int width = complex ? 2 : 1, per_tap = complex ? 4 : 1;
    constexpr int in_words = lanes<Words> / per_tap, in_short = lanes<ShortWords> / per_tap;
    Vec<Kel32u, 4> sum{};
    int i = 0;
    if (count >= in_words) {
        Vec<Kel32u> wide{};
        for (; i + in_words <= count; i += in_words)
            wide +=
                (Vec<Kel32u>)add_products(load_samples<complex, Words>(x + width * i), load<Words>(taps + per_tap * i));
        sum = fold<4>(wide);
    }
    for (; i + in_short <= count; i += in_short)
        sum += (Vec<Kel32u, 4>)add_products(load_samples<complex, ShortWords>(x + width * i),
                                            load<ShortWords>(taps + per_tap * i));
    taken = i;
    return sum;
}

template <bool complex>
auto IntegerSums<complex>::folded(const Vec<Kel32u, 4>& sum) -> Sum {
    const auto pair = fold<2>(sum);
    if constexpr (complex)
        return {pair[0], pair[1]};
    else
        return {pair[0] + pair[1]};
}

template <bool complex>
auto IntegerSums<complex>::dot(const Line* x, const Coefficient* taps, int count) -> Sum {
    int taken;
    Sum total = folded(dot_of_vectors<complex>(x, taps, count, taken));
    const Sum rest = integer_dot_from<complex>(x, taps, taken, count);
    for (int part = 0; part < width; ++part) total[part] += rest[part];
    return total;
}

/// The last taps are filled up with zeros, once for all dots.
template <bool complex>
void IntegerSums<complex>::add_dots(const Line* x, std::ptrdiff_t step, const Coefficient* taps, int count, int dots,
                                    Total* total, std::ptrdiff_t total_step, int pass) {
    constexpr int in_short = lanes<ShortWords> / per_tap;
    const int whole = count / in_short * in_short;
    Coefficient last[8] = {};
    std::copy(taps + whole * per_tap, taps + count * per_tap, last);
    const auto rest = load<ShortWords>(last);
    for (int i = 0; i < dots; ++i) {
        const Line* from = x + i * step * width;
        int taken;
        Vec<Kel32u, 4> sum = dot_of_vectors<complex>(from, taps, whole, taken);
        if (whole < count)
            sum += (Vec<Kel32u, 4>)add_products(load_samples<complex, ShortWords>(from + whole * width), rest);
        const Sum dot = folded(sum);
        for (int part = 0; part < width; ++part) total[i * total_step * width + part] += dot[part] << (16 * pass);
    }
}

template <bool complex>
template <class Taps>
auto IntegerSums<complex>::dot_of_wide(const Line* x, const Taps* taps, int count) -> Sum {
    Sum sum{};
    for (int i = 0; i < count; ++i) {
        const Taps& h = taps[count - 1 - i];
        if constexpr (complex) {
            const Kel32u hr(h.re), hi(h.im), xr(x[2 * i]), xi(x[2 * i + 1]);
            sum[0] += hr * xr - hi * xi;
            sum[1] += hr * xi + hi * xr;
        } else {
            sum[0] += static_cast<Kel32u>(h) * static_cast<Kel32u>(x[i]);
        }
    }
    return sum;
}

/// Wide loads of what narrow stores have not yet brought to the cache wait for it: those samples come one by one.
template <bool complex>
auto IntegerSums<complex>::dot_of_fresh(const Line* x, const Coefficient* taps, int count) -> Sum {
    constexpr int fresh = 8;
    const int old = std::max(count - fresh, 0);
    Sum total = dot(x, taps, old);
    const Sum newest = integer_dot_from<complex>(x, taps, old, count);
    for (int part = 0; part < width; ++part) total[part] += newest[part];
    return total;
}

} // namespace kels
