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

/// call(d, len) stores what is wanted.
template <class R, class Call>
void expect_stored(KelStatus status, const std::vector<R>& want, const Call& call) {
    std::vector<R> d(want.size());
    EXPECT_EQ(call(d.data(), static_cast<int>(d.size())), status);
    EXPECT_TRUE(same_bits(d, want)) << testing::PrintToString(d) << " instead of " << testing::PrintToString(want);
}

/// What function(x, d, len, values...) makes of x.
template <KelStatus status = kelStatusOk, class T, class R, class... Values>
void expect_results(KelStatus (*function)(const T*, R*, int, Values...), const Elements<T>& x, const Elements<R>& want,
                    std::type_identity_t<Values>... values) {
    expect_stored(status, want, [&](R* d, int n) { return function(x.data(), d, n, values...); });
}

/// The same of two sources.
template <KelStatus status = kelStatusOk, class A, class B, class R, class... Values>
void expect_results(KelStatus (*function)(const A*, const B*, R*, int, Values...), const Elements<A>& a,
                    const Elements<B>& b, const Elements<R>& want, std::type_identity_t<Values>... values) {
    expect_stored(status, want, [&](R* d, int n) { return function(a.data(), b.data(), d, n, values...); });
}

/// The same of a source and a constant.
template <KelStatus status = kelStatusOk, class T, class C, class R, class... Values>
requires(!std::is_pointer_v<C>) void expect_results(KelStatus (*function)(const T*, C, R*, int, Values...),
                                                    const Elements<T>& x, std::type_identity_t<C> val,
                                                    const Elements<R>& want, std::type_identity_t<Values>... values) {
    expect_stored(status, want, [&](R* d, int n) { return function(x.data(), val, d, n, values...); });
}

} // namespace kels_test
