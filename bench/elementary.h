// Elementary functions: their contenders take numbers from the range in which the function is used.
#pragma once

#include "data.h"
#include "harness.h"
#include "vectors.h"

#include <cstddef>
#include <random>
#include <string>

namespace bench {

struct Range {
    double low, high;
};

inline constexpr Range exponents{-10, 10}, positive{1e-3, 100}, angles{-10, 10}, unit{-1, 1};

template <class T>
Array<T> uniform(std::size_t n, Range range) {
    Array<T> array = zeros<T>(n);
    std::mt19937 random(1);
    for (std::size_t i = 0; i < n; ++i)
        array[i] = T(range.low + (range.high - range.low) * (double(random()) / 4294967296.0));
    return array;
}

/// call(x, d, n)
template <class T, class R = T, class Call>
void contend_function(const std::string& function, const std::string& who, Range range, Call call) {
    for (const int n : vector_lengths)
        contend({"elementary", function, std::to_string(n), double(n), double(sizeof(T) + sizeof(R)) * n, "GB/s"}, who,
                [=] {
                    return [call, n, x = uniform<T>(std::size_t(n), range), d = zeros<R>(std::size_t(n))] {
                        call(x.get(), d.get(), n);
                    };
                });
}

/// call(radius, angle, d, n), with room for both parts in d
template <class T, class Call>
void contend_cartesian(const std::string& function, const std::string& who, Call call) {
    for (const int n : vector_lengths)
        contend({"elementary", function, std::to_string(n), double(n), 4.0 * sizeof(T) * n, "GB/s"}, who, [=] {
            return [call, n, r = uniform<T>(std::size_t(n), unit), a = uniform<T>(std::size_t(n), angles),
                    d = zeros<T>(std::size_t(2 * n))] { call(r.get(), a.get(), d.get(), n); };
        });
}

} // namespace bench
