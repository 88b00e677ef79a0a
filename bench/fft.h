// The transforms that are measured. Every contender takes its work from here, so that the same ones meet.
#pragma once

#include "data.h"
#include "harness.h"

#include <span>

namespace bench {

enum class Transform { complex_forward, complex_in_place, complex_inverse, real_forward, real_in_place, real_inverse };

/// Each order up to 2^12, where a transform still fits the inner caches, then every other one. A peer that measures its
/// plans takes minutes for the largest; an inverse stops earlier, as it differs from its forward transform by a sign.
inline std::span<const int> orders_of(Transform t) {
    static constexpr int orders[] = {4, 5, 6, 7, 8, 9, 10, 11, 12, 14, 16, 18, 20, 22};
    const bool inverse = t == Transform::complex_inverse || t == Transform::real_inverse;
    return std::span(orders).first(inverse ? 11 : 14);
}

constexpr bool is_complex(Transform t) { return t <= Transform::complex_inverse; }

constexpr const char* name_of(Transform t) {
    constexpr const char* names[] = {"complex forward",     "complex forward in place",      "complex inverse",
                                     "real forward to CCS", "real forward in place to Perm", "real inverse from CCS"};
    return names[int(t)];
}

/// Real values that the larger side of the transform holds.
constexpr std::size_t values_of(Transform t, int order) {
    const std::size_t points = std::size_t{1} << order;
    return is_complex(t) ? 2 * points : points + 2;
}

/// The count of operations is the customary one: 5 N log2 N for a complex transform, half of it for a real one.
template <class Real>
Work transform_work(Transform t, int order) {
    const double points = double(std::size_t{1} << order);
    const double operations = (is_complex(t) ? 5.0 : 2.5) * points * order;
    const std::string precision = sizeof(Real) == 4 ? "single " : "double ";
    return {"fft", precision + name_of(t), "2^" + std::to_string(order), points, operations, "GFLOP/s"};
}

} // namespace bench
