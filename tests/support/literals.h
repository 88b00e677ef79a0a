// Literal results, to the last bit.
#pragma once

#include "support/exact.h"

#include "kels/status.h"

#include <gtest/gtest.h>

#include <type_traits>
#include <vector>

namespace kels_test {

template <class T>
using Elements = std::type_identity_t<std::vector<T>>;

/// What function(x, d, len, values...) makes of x.
template <KelStatus status = kelStatusOk, class T, class R, class... Values>
void expect_results(KelStatus (*function)(const T*, R*, int, Values...), const Elements<T>& x, const Elements<R>& want,
                    std::type_identity_t<Values>... values) {
    std::vector<R> d(x.size());
    EXPECT_EQ(function(x.data(), d.data(), static_cast<int>(x.size()), values...), status);
    EXPECT_TRUE(same_bits(d, want)) << testing::PrintToString(d) << " instead of " << testing::PrintToString(want);
}

/// The same of two sources.
template <KelStatus status = kelStatusOk, class A, class B, class R, class... Values>
void expect_results(KelStatus (*function)(const A*, const B*, R*, int, Values...), const Elements<A>& a,
                    const Elements<B>& b, const Elements<R>& want, std::type_identity_t<Values>... values) {
    std::vector<R> d(a.size());
    EXPECT_EQ(function(a.data(), b.data(), d.data(), static_cast<int>(a.size()), values...), status);
    EXPECT_TRUE(same_bits(d, want)) << testing::PrintToString(d) << " instead of " << testing::PrintToString(want);
}

} // namespace kels_test
