// Logic and shifts, held against single bits.

#include "kels/logic.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <initializer_list>

namespace {

using namespace kels_test;

// The arguments may come in either order.
constexpr auto conjunction = each([]<class T>(T a, T b) { return static_cast<T>(a & b); });
constexpr auto disjunction = each([]<class T>(T a, T b) { return static_cast<T>(a + b - (a & b)); });
constexpr auto difference = each([]<class T>(T a, T b) { return static_cast<T>(a + b - 2 * (a & b)); });
constexpr auto complement = each([]<class T>(T a) { return static_cast<T>(-1 - a); });

/// The product with 2^shift, whose upper bits are lost.
constexpr auto shifted_left = each([]<class T>(T x, int shift) {
    return shift >= 64 ? T{0} : static_cast<T>(static_cast<unsigned long long>(x) << shift);
});

/// The quotient by 2^shift, rounded down.
constexpr auto shifted_right = each([]<class T>(T x, int shift) {
    return static_cast<T>(std::floor(std::ldexp(static_cast<long double>(x), -std::min(shift, 100))));
});

constexpr std::initializer_list<double> shifts = {0, 1, 3, 7, 8, 9, 15, 16, 17, 31, 32, INT_MAX};

Rows shifted(const Rows& rows) { return rows.refuses(0, {-1, INT_MIN}, kelStatusNegShift); }

const Rows table = {
    rows(conjunction, kelsAnd_8u, kelsAnd_16u, kelsAndC_8u, kelsAndC_16u)
        .in_place(kelsAnd_8u_I, kelsAnd_16u_I, kelsAndC_8u_I, kelsAndC_16u_I),
    rows(disjunction, kelsOr_8u, kelsOr_16u, kelsOrC_8u, kelsOrC_16u)
        .in_place(kelsOr_8u_I, kelsOr_16u_I, kelsOrC_8u_I, kelsOrC_16u_I),
    rows(difference, kelsXor_8u, kelsXor_16u, kelsXorC_8u, kelsXorC_16u)
        .in_place(kelsXor_8u_I, kelsXor_16u_I, kelsXorC_8u_I, kelsXorC_16u_I),
    rows(complement, kelsNot_8u, kelsNot_16u).in_place(kelsNot_8u_I, kelsNot_16u_I),
    shifted(rows(shifted_left, kelsLShiftC_8u, kelsLShiftC_16u, kelsLShiftC_16s, kelsLShiftC_32s)
                .in_place(kelsLShiftC_8u_I, kelsLShiftC_16u_I, kelsLShiftC_16s_I, kelsLShiftC_32s_I))
        .values(0, shifts),
    shifted(rows(shifted_right, kelsRShiftC_8u, kelsRShiftC_16u, kelsRShiftC_16s, kelsRShiftC_32s)
                .in_place(kelsRShiftC_8u_I, kelsRShiftC_16u_I, kelsRShiftC_16s_I, kelsRShiftC_32s_I))
        .values(0, shifts),
};

const Rows other_shifts = {
    rows(shifted_left, kelsLShiftC_8u).values(0, {2, 4, 5, 6}).driven_elsewhere(),
    rows(shifted_right, kelsRShiftC_8u).values(0, {2, 4, 5, 6}).driven_elsewhere(),
};
const bool registered = add_rows("Logic", table) && add_rows("OtherShifts", other_shifts);

} // namespace
