// The transforms whose rounding is compared.
#pragma once

#include <complex>
#include <vector>

namespace examples {

template <class T>
using Complex = std::vector<std::complex<T>>;

/// Forward transforms of 2^order points, in place.
struct Transform {
    const char* name;
    void (*single)(Complex<float>& points, int order);
    void (*of_doubles)(Complex<double>& points, int order); ///< null where there is none
};

/// This library's, and those of the peers that are installed.
std::vector<Transform> transforms();

} // namespace examples
