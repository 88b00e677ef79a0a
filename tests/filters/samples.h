// What the tests of all filters say about samples and functions.
#pragma once

#include "support/exact.h"
#include "support/random_data.h"
#include "support/rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <type_traits>
#include <vector>

namespace filter_test {

using kels_test::Random;

template <class T>
struct PartOf {
    using type = T;
};
template <class T>
requires requires(T z) { z.re; }
struct PartOf<T> {
    using type = decltype(T::re);
};
template <class T>
using Part = typename PartOf<T>::type;
template <class T>
constexpr int parts = sizeof(T) / sizeof(Part<T>);

template <class T>
Part<T>* values(std::vector<T>& x) {
    return reinterpret_cast<Part<T>*>(x.data());
}
template <class T>
const Part<T>* values(const std::vector<T>& x) {
    return reinterpret_cast<const Part<T>*>(x.data());
}

/// What the functions of a family have in common in their names.
template <class F>
std::string name_of() {
    const std::string release = kels_test::exported_name(reinterpret_cast<void (*)()>(F::release));
    const std::string name = release.substr(release.find("Free") + 4);
    return name[0] == '_' ? name.substr(1) : name;
}

struct FamilyNames {
    template <class F>
    static std::string GetName(int) {
        return name_of<F>();
    }
};

// The functions under one signature: those without a scale factor or a taps factor ignore it.

template <class F, class... A>
KelStatus call(F function, int factor, A... arguments) {
    if constexpr (std::is_invocable_v<F, A..., int>)
        return function(arguments..., factor);
    else
        return function(arguments...);
}

/// Real values from -1 to 1, 16-bit ones of all sizes, integer taps that are kept as they are.
template <class T>
std::vector<T> noise(Random& random, int count) {
    std::vector<T> x(static_cast<std::size_t>(count));
    for (int i = 0; i < count * parts<T>; ++i) {
        Part<T>& value = values(x)[i];
        if constexpr (std::is_floating_point_v<Part<T>>)
            value = static_cast<Part<T>>(random.uniform(-1, 1));
        else
            value = static_cast<Part<T>>(random.below(65531) - 32765);
    }
    return x;
}

/// To nearest, ties away from zero, saturated.
template <class R>
R away_from_zero(long double v) {
    constexpr long double least = std::numeric_limits<R>::min(), most = std::numeric_limits<R>::max();
    return static_cast<R>(std::clamp(std::round(v), least, most));
}

/// Holds results to the bound of their type: singles are one ulp away at most, and seldom that; integers are the
/// rounded value unless it lies beside a tie; doubles have the noise alone. `noise` is what the exact value may be off
/// by before it is rounded.
struct Accuracy {
    long results = 0, missed_bits = 0;
    long double beside_ties = 0; ///< how many results are expected to lie so close to a tie that noise moves them

    template <class R>
    void check(R got, long double exact, long double noise) {
        ++results;
        if constexpr (std::is_integral_v<R>) {
            const R rounded = away_from_zero<R>(exact);
            if (got == rounded) return;
            const long double from_tie = std::fabs(std::fabs(exact - std::floor(exact)) - 0.5L);
            ASSERT_LE(from_tie, std::max(std::ldexp(std::fabs(exact), -40), noise))
                << "result " << results << ": " << got << " for " << exact;
            ASSERT_LE(std::fabs(static_cast<long double>(got) - rounded), 1) << "result " << results;
        } else {
            const R rounded = static_cast<R>(exact);
            if (noise > 0) beside_ties += std::min(1.0L, noise / kels_test::ulp(rounded));
            if (got == rounded || (std::isnan(got) && std::isnan(rounded))) return;
            ++missed_bits;
            const long double error = sizeof(R) == 4 ? static_cast<long double>(got) - rounded : got - exact;
            ASSERT_LE(std::fabs(error), noise + (sizeof(R) == 4 ? kels_test::ulp(rounded) : 0))
                << "result " << results << ": " << got << " for " << exact;
        }
    }
};

template <class T>
bool same(const std::vector<T>& a, const std::vector<T>& b) {
    return kels_test::same_bits(a, b);
}

} // namespace filter_test
