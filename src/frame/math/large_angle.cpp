// The reduction of M. Payne and R. Hanek: x = m 2^e, with m an integer of 53 bits. Of the bits of 2 / pi, those whose
// product with x is a multiple of four quarter turns are left out, and 192 of those that follow are enough: no double
// comes nearer than 2^-62 to a multiple of pi / 2 (J.-M. Muller, Elementary Functions, chapter 9).

#include "frame/math/large_angle.h"

#include "frame/error_free.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace kels {
namespace {

/// 2 / pi: 64 zeros, and the first 1216 bits behind the point.
constexpr int zeros_in_front = 64;
constexpr std::uint32_t two_over_pi[] = {
    0,          0,          0xa2f9836e, 0x4e441529, 0xfc2757d1, 0xf534ddc0, 0xdb629599, 0x3c439041,
    0xfe5163ab, 0xdebbc561, 0xb7246e3a, 0x424dd2e0, 0x06492eea, 0x09d1921c, 0xfe1deb1c, 0xb129a73e,
    0xe88235f5, 0x2ebb4484, 0xe99c7026, 0xb45f7e41, 0x3991d639, 0x835339f4, 0x9c845f8b, 0xbdf9283b,
    0x1ff897ff, 0xde05980f, 0xef2f118b, 0x5a0a6d1f, 0x6d367ecf, 0x27cb09b7, 0x4f463f66, 0x9e5fea2d,
    0x7527bac7, 0xebe5f17b, 0x3d0739f7, 0x8a5292ea, 0x6bfb5fb1, 0x1f8d5d08, 0x56033046, 0xfc7b6bab};

constexpr int window_words = 6;

/// 32 bits of 2 / pi from a bit behind the point on, counted from 0, or from one before it.
std::uint32_t bits_from(int first) {
    const int word = (first + zeros_in_front) / 32, shift = (first + zeros_in_front) % 32;
    const std::uint64_t two = std::uint64_t{two_over_pi[word]} << 32 | two_over_pi[word + 1];
    return static_cast<std::uint32_t>(two << shift >> 32);
}

/// A fraction of 128 bits with a sign.
struct Fraction {
    std::uint64_t high, low;
    bool negative;
};

/// Quarter turns modulo four: 2 bits, and a fraction of 126.
struct Turns {
    std::uint64_t high, low;
};

/// m times the window of 2 / pi from a bit on.
Turns product_modulo_turn(std::uint64_t m, int first) {
    // Limbs of the product from the lowest on; what is carried out of the upper ones is whole turns.
    std::uint32_t limb[window_words + 1] = {};
    const std::uint32_t factor[] = {static_cast<std::uint32_t>(m), static_cast<std::uint32_t>(m >> 32)};
    for (int f = 0; f < 2; ++f) {
        std::uint64_t carry = 0;
        for (int i = 0; i + f < window_words; ++i) {
            const std::uint64_t word = bits_from(first + 32 * (window_words - 1 - i));
            carry += word * factor[f] + limb[i + f];
            limb[i + f] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
    }
    const auto joined = [&](int upper) { return std::uint64_t{limb[upper]} << 32 | limb[upper - 1]; };
    return {joined(window_words - 1), joined(window_words - 3)};
}

/// The double of the upper 53 bits of a 128-bit fraction, times 2^-128, and the double of those that follow.
LargeAngle angle_of(Fraction f) {
    const int zeros = f.high != 0 ? std::countl_zero(f.high) : 64 + std::countl_zero(f.low | 1);
    std::uint64_t high = f.high, low = f.low;
    if (zeros >= 64) {
        high = low;
        low = 0;
    }
    const int shift = zeros % 64;
    if (shift > 0) {
        high = high << shift | low >> (64 - shift);
        low <<= shift;
    }
    constexpr int rest = 11; // bits of a word that a double does not hold
    const double upper = std::ldexp(static_cast<double>(high >> rest), rest - 64 - zeros);
    const std::uint64_t following = high << (64 - rest) | low >> rest;
    const double lower = std::ldexp(static_cast<double>(following >> rest), rest - 64 - 53 - zeros);
    // times pi / 2
    constexpr double half_pi = 0x1.921fb54442d18p+0, half_pi_low = 0x1.1a62633145c07p-54;
    const double product = upper * half_pi;
    const double error = product_error(upper, half_pi, product) + (upper * half_pi_low + lower * half_pi);
    const double sum = product + error, sign = f.negative ? -1 : 1;
    return {sign * sum, sign * ((product - sum) + error), 0};
}

} // namespace

LargeAngle folded_large_angle(double x) {
    if (!std::isfinite(x)) return {std::numeric_limits<double>::quiet_NaN(), 0, 0};
    const auto bits = std::bit_cast<std::uint64_t>(x);
    const int exponent = static_cast<int>(bits >> 52 & 0x7FF) - (1023 + 52);
    const std::uint64_t m = (bits & ((std::uint64_t{1} << 52) - 1)) | std::uint64_t{1} << 52;
    // Bit b behind the point, times m 2^exponent, is m 2^(exponent - 1 - b): a multiple of four does not count.
    const int first = exponent - 2;
    const Turns turns = product_modulo_turn(m, first);
    const int quarters = static_cast<int>(turns.high >> 62);
    // The rest, from -1/2 to 1/2 of a quarter turn.
    Fraction f{turns.high << 2 | turns.low >> 62, turns.low << 2, false};
    int whole = quarters;
    if (f.high >> 63) {
        f = {~f.high, ~f.low, true};
        ++whole;
    }
    LargeAngle angle = angle_of(f);
    angle.quarters = whole;
    return angle;
}

} // namespace kels
