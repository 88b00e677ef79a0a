// Cosine transforms of 1, 2, 4 and 8 points. With s_j = x_j + x_(N-1-j), d_j = x_j - x_(N-1-j) and the coefficients
// c(k) cos(pi (2j + 1) k / 2N), even results are sums over s, odd ones over d: one product of
// whole vectors does both. The inverse transform adds what the even coefficients give to what the odd ones give.
#pragma once

#include "frame/simd.h"
#include "transforms/circle_point.h"

#include <array>
#include <cstddef>

namespace kels {

/// Rows of N coefficients. Forward, row j has those of s_j for the even results, then those of d_j for the odd ones;
/// inverse, row j has those of x[2j] for samples 0 to N/2 - 1, then those of x[2j + 1].
template <class T, int N, bool inverse>
constexpr auto straight_dct_rows() {
    constexpr int half = N / 2;
    // sqrt(1 / N) and sqrt(2 / N)
    constexpr long double root_of_half = 0.70710678118654752440L;
    constexpr long double ac = N == 2 ? 1 : N == 4 ? root_of_half : 0.5L, dc = ac * root_of_half;
    std::array<T, static_cast<std::size_t>(N * half)> rows{};
    for (int row = 0; row < half; ++row)
        for (int lane = 0; lane < N; ++lane) {
            const int k = inverse ? 2 * row + lane / half : 2 * (lane % half) + lane / half;
            const int j = inverse ? lane % half : row;
            const long double c = (k == 0 ? dc : ac) * circle_point((2 * j + 1) * k, 4 * N).cosine;
            rows[static_cast<std::size_t>(row * N + lane)] = static_cast<T>(c);
        }
    return rows;
}

template <class T, int N, bool inverse>
inline constexpr auto straight_dct_coefficients = straight_dct_rows<T, N, inverse>();

template <bool inverse, int N, class T>
void straight_dct(const T* src, T* dst) {
    constexpr int half = N / 2;
    using V = Vec<T, N>;
    constexpr const T* rows = straight_dct_coefficients<T, N, inverse>.data();
    const V x = load<V>(src), mirror = reverse(x);
    // Forward: all sums, then all differences. Inverse: the samples themselves, which go in pairs.
    const V terms =
        inverse ? x : shuffle<[](int lane) { return lane < half ? lane : N + lane - half; }>(x + mirror, x - mirror);
    V parts[2] = {};
    unrolled<half>([&](auto i) KELS_INLINE {
        constexpr int row = i;
        constexpr auto taken = [](int lane) { return inverse ? 2 * row + lane / half : row + lane / half * half; };
        const V term = shuffle<taken>(terms, terms);
        V& part = parts[row % 2];
        part = row < 2 ? term * load<V>(rows + row * N) : fma(term, load<V>(rows + row * N), part);
    });
    const V sum = half > 1 ? parts[0] + parts[1] : parts[0];
    if constexpr (inverse) {
        const V even = shuffle<[](int lane) { return lane < half ? lane : N - 1 - lane; }>(sum, sum);
        const V odd = shuffle<[](int lane) { return half + (lane < half ? lane : N - 1 - lane); }>(sum, sum);
        constexpr auto signs = [](int lane) { return lane < half ? lane : N + lane; };
        store(dst, shuffle<signs>(even + odd, even - odd));
    } else {
        store(dst, shuffle<[](int lane) { return lane / 2 + lane % 2 * half; }>(sum, sum));
    }
}

template <bool inverse, class T>
void run_straight_dct(int n, const T* src, T* dst) {
    switch (n) {
    case 1:
        dst[0] = src[0];
        return;
    case 2:
        return straight_dct<inverse, 2>(src, dst);
    case 4:
        return straight_dct<inverse, 4>(src, dst);
    default:
        return straight_dct<inverse, 8>(src, dst);
    }
}

} // namespace kels
