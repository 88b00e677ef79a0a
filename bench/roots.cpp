// Squares, square roots and cube roots. Integer roots stand beside a loop over the C library's square root.
#include "vectors.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace bench {
namespace {

template <class Call>
void alone(const std::string& function, Call call) {
    contend_vectors("roots", function.c_str(), ours, call);
}

template <class T>
void scalar_roots(const T* x, T* d, int n, double power) {
    constexpr double most = double(std::numeric_limits<T>::max());
    for (int i = 0; i < n; ++i)
        d[i] = x[i] < 0 ? T(0) : T(std::llrint(std::min(std::sqrt(double(x[i])) * power, most)));
}

/// A table for each kind of factor.
template <class T>
void scaled(const std::string& function, KelStatus (*call)(const T*, T*, int, int), bool is_root) {
    for (const int factor : {0, 2, -3}) {
        const std::string table = function + " " + std::to_string(factor);
        alone(table, [=](const T* x, T* d, int n) { call(x, d, n, factor); });
        if constexpr (parts<T> == 1)
            if (is_root)
                contend_vectors("roots", table.c_str(), "loop",
                                [=](const T* x, T* d, int n) { scalar_roots(x, d, n, std::ldexp(1.0, -factor)); });
    }
}

const Registration roots([] {
    alone("kelsSqrt_32f", kelsSqrt_32f);
    alone("kelsSqrt_64f", kelsSqrt_64f);
    alone("kelsSqrt_32fc", kelsSqrt_32fc);
    alone("kelsSqrt_64fc", kelsSqrt_64fc);
    scaled("kelsSqrt_8u_Sfs", kelsSqrt_8u_Sfs, true);
    scaled("kelsSqrt_16u_Sfs", kelsSqrt_16u_Sfs, true);
    scaled("kelsSqrt_16s_Sfs", kelsSqrt_16s_Sfs, true);
    scaled("kelsSqrt_16sc_Sfs", kelsSqrt_16sc_Sfs, true);
    scaled("kelsSqrt_64s_Sfs", kelsSqrt_64s_Sfs, true);
    scaled("kelsSqr_16u_Sfs", kelsSqr_16u_Sfs, false);
    scaled("kelsSqr_16s_Sfs", kelsSqr_16s_Sfs, false);
    alone("kelsSqr_32f", kelsSqr_32f);
    alone("kelsSqr_32fc", kelsSqr_32fc);
    alone("kelsSqr_64fc", kelsSqr_64fc);
    alone("kelsCubrt_32f", kelsCubrt_32f);
    alone("kelsCubrt_32s16s_Sfs", [](const Kel32s* x, Kel16s* d, int n) { kelsCubrt_32s16s_Sfs(x, d, n, 0); });
});

} // namespace
} // namespace bench
