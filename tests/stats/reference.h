// Sums in extended precision that keep their rounding errors, with the slack that a result may have: the measure for
// reductions.
#pragma once

#include "support/literals.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <cmath>
#include <type_traits>
#include <vector>

namespace kels_test {

class ExtendedSum {
public:
    void add(long double term) {
        const long double s = plain + term;
        error += std::fabs(plain) >= std::fabs(term) ? (plain - s) + term : (term - s) + plain;
        plain = s;
        magnitudes += std::fabs(term);
        ++count;
    }
    void add_product(long double a, long double b) {
        const long double p = a * b;
        add(p);
        if (std::isfinite(p)) error += std::fma(a, b, -p);
    }

    long double value() const { return std::isfinite(plain) ? plain + error : plain; }

    /// For a result of type R, of what is not exact: n 2^-53 or n 2^-64 of the sum of the magnitudes.
    template <class R>
    long double slack() const {
        const long double unit = sizeof(R) == 4 ? 0x1p-53L : 0x1p-64L;
        return std::isfinite(magnitudes) ? count * unit * magnitudes : 0;
    }
    template <class R>
    Within result() const {
        return {value(), slack<R>()};
    }
    /// A function of the sum that shrinks differences by `shrink`.
    template <class R>
    Within result(long double of_value, long double shrink) const {
        return {of_value, slack<R>() * shrink};
    }

private:
    long double plain = 0, error = 0, magnitudes = 0;
    int count = 0;
};

template <class P>
struct Parts {
    P re, im;
};

/// Of a real vector's sum, or of the sums of both parts.
template <bool has_parts, class S, class Of>
auto of_parts(const S& re, [[maybe_unused]] const S& im, Of of) {
    using P = decltype(of(re));
    if constexpr (!has_parts)
        return of(re);
    else if constexpr (std::is_same_v<P, Within>)
        return ComplexWithin{of(re), of(im)};
    else
        return Parts<P>{of(re), of(im)};
}

/// Runs a reduction of one vector and gives its result.
template <class R, class T, class... Values>
R reduce_with(KelStatus (*function)(const T*, int, R*, Values...), const Elements<T>& x,
              std::type_identity_t<Values>... values) {
    R result{};
    if (function(x.data(), static_cast<int>(x.size()), &result, values...) != kelStatusOk) ADD_FAILURE();
    return result;
}

/// The same of two vectors.
template <class R, class A, class B, class... Values>
R reduce_with(KelStatus (*function)(const A*, const B*, int, R*, Values...), const Elements<A>& x, const Elements<B>& y,
              std::type_identity_t<Values>... values) {
    R result{};
    if (function(x.data(), y.data(), static_cast<int>(x.size()), &result, values...) != kelStatusOk) ADD_FAILURE();
    return result;
}

} // namespace kels_test
