// Convolutions and correlations by their definitions, in extended precision.
#pragma once

#include "filters/checks.h"
#include "filters/samples.h"
#include "kels/convolution.h"
#include "support/allocation_faults.h"
#include "support/guarded_array.h"

#include <complex>
#include <cstdint>

namespace filter_test {

template <class T>
std::vector<long double> convolved(const std::vector<T>& a, const std::vector<T>& b) {
    std::vector<long double> y(a.size() + b.size() - 1);
    for (std::size_t j = 0; j < a.size(); ++j)
        for (std::size_t i = 0; i < b.size(); ++i) y[i + j] += static_cast<long double>(a[j]) * b[i];
    return y;
}

using Number = std::complex<long double>;

template <class T>
Number number(const T& x) {
    if constexpr (parts<T> == 2)
        return {x.re, x.im};
    else
        return x;
}

template <class T>
long double norm(const std::vector<T>& x) {
    long double sum = 0;
    for (const T& v : x) sum += std::norm(number(v));
    return std::sqrt(sum);
}

} // namespace filter_test
