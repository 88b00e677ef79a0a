// Companding, held against its rules with whole numbers, and against tables of the codes in the other law.

#include "kels/companding.h"
#include "support/control_state.h"
#include "support/literals.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <numeric>
#include <vector>

namespace {

using namespace kels_test;

int decoded_a_law(int code) {
    const int v = code ^ 0x55, q = v & 15, e = v >> 4 & 7;
    const int t = e == 0 ? q * 16 + 8 : (q * 16 + 264) * (1 << (e - 1));
    return v & 0x80 ? t : -t;
}

int decoded_mu_law(int code) {
    const int v = ~code, q = v & 15, e = v >> 4 & 7, t = (q * 8 + 132) * (1 << e);
    return v & 0x80 ? 132 - t : t - 132;
}

int segment_code(int x) {
    int s = 0;
    while ((0x100 << s) - 1 < x) ++s;
    return s * 16 | (x >> (s == 0 ? 4 : s + 3) & 15);
}

Kel8u encoded_a_law(int x) { return static_cast<Kel8u>(segment_code(x < 0 ? -x - 8 : x) ^ (x < 0 ? 0x55 : 0xD5)); }

Kel8u encoded_mu_law(int x) {
    const int mask = x < 0 ? 0x7F : 0xFF, size = (x < 0 ? -x : x) + 132;
    if (size > 32767) return static_cast<Kel8u>(0x7F ^ mask);
    return static_cast<Kel8u>((size < 256 ? size >> 3 & 15 : segment_code(size)) ^ mask);
}

/// 16-bit samples of singles.
int sample(Kel32f x) {
    const long double scaled = static_cast<long double>(x) * 32768;
    if (std::isnan(x) || scaled > 32767) return 32767;
    return scaled < -32768 ? -32768 : static_cast<int>(std::nearbyint(scaled));
}

// The codes of one law in the other, without signs and inversions, as runs of numbers in steps of one.

std::vector<int> runs(std::initializer_list<std::pair<int, int>> list) {
    std::vector<int> all;
    for (const auto& [from, to] : list)
        for (int y = from; y <= to; ++y) all.push_back(y);
    return all;
}

const std::vector<int> mu_law_of_a_law =
    runs({{1, 1},   {3, 3},   {5, 5},   {7, 7},   {9, 9},   {11, 11}, {13, 13}, {15, 15},
          {16, 32}, {32, 32}, {33, 33}, {33, 33}, {34, 34}, {34, 34}, {35, 35}, {35, 35},
          {36, 48}, {48, 48}, {49, 49}, {49, 49}, {50, 64}, {64, 79}, {79, 127}});

const std::vector<int> a_law_of_mu_law =
    runs({{0, 0},   {0, 0},   {1, 1},   {1, 1},   {2, 2},   {2, 2},   {3, 3},   {3, 3},  {4, 4},
          {4, 4},   {5, 5},   {5, 5},   {6, 6},   {6, 6},   {7, 7},   {7, 7},   {8, 24}, {26, 26},
          {28, 28}, {30, 30}, {32, 43}, {45, 45}, {47, 61}, {63, 78}, {80, 127}});

/// `From` and `To` are the bits that either law inverts besides the sign of positive codes.
template <const std::vector<int>& codes, int From, int To>
constexpr auto translated = each([](Kel8u code) {
    const int sign = code & 0x80;
    return static_cast<Kel8u>(codes[code ^ (sign | From)] ^ (sign | To));
});

template <int (*Decoded)(int)>
constexpr auto to_integers = each([](Kel8u code) { return static_cast<Kel16s>(Decoded(code)); });
template <int (*Decoded)(int)>
constexpr auto to_reals = each([](Kel8u code) { return static_cast<Kel32f>(Decoded(code) / 32768.0); });
template <Kel8u (*Encoded)(int)>
constexpr auto of_integers = each([](Kel16s x) { return Encoded(x); });
template <Kel8u (*Encoded)(int)>
constexpr auto of_reals = each([](Kel32f x) { return Encoded(sample(x)); });

const Rows table = {
    rows(translated<mu_law_of_a_law, 0x55, 0x7F>, kelsALawToMuLaw_8u),
    rows(translated<a_law_of_mu_law, 0x7F, 0x55>, kelsMuLawToALaw_8u),
    rows(to_integers<decoded_a_law>, kelsALawToLin_8u16s),
    rows(to_integers<decoded_mu_law>, kelsMuLawToLin_8u16s),
    rows(to_reals<decoded_a_law>, kelsALawToLin_8u32f),
    rows(to_reals<decoded_mu_law>, kelsMuLawToLin_8u32f),
    rows(of_integers<encoded_a_law>, kelsLinToALaw_16s8u),
    rows(of_integers<encoded_mu_law>, kelsLinToMuLaw_16s8u),
    rows(of_reals<encoded_a_law>, kelsLinToALaw_32f8u).range(-1.1, 1.1),
    rows(of_reals<encoded_mu_law>, kelsLinToMuLaw_32f8u).range(-1.1, 1.1),
};

const bool registered = add_rows("Companding", table);

// Halves of a sample where the code changes, in every mode.
TEST(Companding, SinglesRoundToNearestEven) {
    std::vector<Kel32f> x;
    std::vector<Kel8u> want;
    for (int i = -32768; i < 32767; ++i) {
        x.push_back((static_cast<Kel32f>(i) + 0.5F) / 32768);
        want.push_back(encoded_a_law(i % 2 == 0 ? i : i + 1));
    }
    expect_results(kelsLinToALaw_32f8u, x, want);
    in_odd_modes([&] { expect_results(kelsLinToALaw_32f8u, x, want); });
}

} // namespace
