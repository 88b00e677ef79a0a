// The public transforms of powers of two by the type of their samples, for what convolves by spectra.
#pragma once

#include "frame/numeric.h"
#include "kels/arithmetic.h"
#include "kels/fft.h"
#include "kels/spectrum.h"

#include <memory>
#include <type_traits>

namespace kels {

/// Those whose spectra have elements of type T: a real spectrum has as many values as its sequence.
template <class T>
struct Spectral;

template <>
struct Spectral<Kel32f> {
    using Plan = KelsFftPlan_32f;
    static constexpr auto make = kelsFFTInitAlloc_R_32f;
    static constexpr auto release = kelsFFTFree_R_32f;
    static constexpr auto forward = kelsFFTFwd_RToPerm_32f;
    static constexpr auto inverse = kelsFFTInv_PermToR_32f;
    static constexpr auto multiply = kelsMulPerm_32f_I;
};

template <>
struct Spectral<Kel32fc> {
    using Plan = KelsFftPlan_32f;
    static constexpr auto make = kelsFFTInitAlloc_C_32fc;
    static constexpr auto release = kelsFFTFree_C_32fc;
    static constexpr auto forward = kelsFFTFwd_CToC_32fc;
    static constexpr auto inverse = kelsFFTInv_CToC_32fc;
    static constexpr auto multiply = kelsMul_32fc_I;
};

template <>
struct Spectral<Kel64f> {
    using Plan = KelsFftPlan_64f;
    static constexpr auto make = kelsFFTInitAlloc_R_64f;
    static constexpr auto release = kelsFFTFree_R_64f;
    static constexpr auto forward = kelsFFTFwd_RToPerm_64f;
    static constexpr auto inverse = kelsFFTInv_PermToR_64f;
    static constexpr auto multiply = kelsMulPerm_64f_I;
};

template <>
struct Spectral<Kel64fc> {
    using Plan = KelsFftPlan_64f;
    static constexpr auto make = kelsFFTInitAlloc_C_64fc;
    static constexpr auto release = kelsFFTFree_C_64fc;
    static constexpr auto forward = kelsFFTFwd_CToC_64fc;
    static constexpr auto inverse = kelsFFTInv_CToC_64fc;
    static constexpr auto multiply = kelsMul_64fc_I;
};

template <class T>
struct ReleasePlan {
    void operator()(typename Spectral<T>::Plan* plan) const { Spectral<T>::release(plan); }
};
template <class T>
using OwnedPlan = std::unique_ptr<typename Spectral<T>::Plan, ReleasePlan<T>>;

/// The complex samples of a precision.
template <class T>
using ComplexOf = std::conditional_t<std::is_same_v<T, Kel32f>, Kel32fc, Kel64fc>;

} // namespace kels
