// What distinguishes the FIR families: types, identification, and the transforms that their plans use.
#pragma once

#include "kels/arithmetic.h"
#include "kels/fft.h"
#include "kels/spectrum.h"

#include <concepts>
#include <type_traits>

namespace kels {

template <class T>
inline constexpr bool is_complex = requires(T z) {
    z.re;
};

/// The type of a sample's or tap's components.
template <class T>
struct ComponentOf {
    using type = T;
};
template <class T>
requires is_complex<T>
struct ComponentOf<T> {
    using type = decltype(T::re);
};
template <class T>
using Component = typename ComponentOf<T>::type;

/// The transforms behind an overlap-save engine whose spectra have elements of type T.
template <class T>
struct Spectral;

template <>
struct Spectral<Kel32f> {
    using Plan = KelsFftPlan_32f;
    static constexpr auto make = kelsFFTInitAlloc_R_32f;
    static constexpr auto release = kelsFFTFree_R_32f;
    static constexpr auto buffer_size = kelsFFTGetBufSize_R_32f;
    static constexpr auto forward = kelsFFTFwd_RToPerm_32f;
    static constexpr auto inverse = kelsFFTInv_PermToR_32f;
    static constexpr auto multiply = kelsMulPerm_32f_I;
};

template <>
struct Spectral<Kel32fc> {
    using Plan = KelsFftPlan_32f;
    static constexpr auto make = kelsFFTInitAlloc_C_32fc;
    static constexpr auto release = kelsFFTFree_C_32fc;
    static constexpr auto buffer_size = kelsFFTGetBufSize_C_32fc;
    static constexpr auto forward = kelsFFTFwd_CToC_32fc;
    static constexpr auto inverse = kelsFFTInv_CToC_32fc;
    static constexpr auto multiply = kelsMul_32fc_I;
};

template <>
struct Spectral<Kel64f> {
    using Plan = KelsFftPlan_64f;
    static constexpr auto make = kelsFFTInitAlloc_R_64f;
    static constexpr auto release = kelsFFTFree_R_64f;
    static constexpr auto buffer_size = kelsFFTGetBufSize_R_64f;
    static constexpr auto forward = kelsFFTFwd_RToPerm_64f;
    static constexpr auto inverse = kelsFFTInv_PermToR_64f;
    static constexpr auto multiply = kelsMulPerm_64f_I;
};

template <>
struct Spectral<Kel64fc> {
    using Plan = KelsFftPlan_64f;
    static constexpr auto make = kelsFFTInitAlloc_C_64fc;
    static constexpr auto release = kelsFFTFree_C_64fc;
    static constexpr auto buffer_size = kelsFFTGetBufSize_C_64fc;
    static constexpr auto forward = kelsFFTFwd_CToC_64fc;
    static constexpr auto inverse = kelsFFTInv_CToC_64fc;
    static constexpr auto multiply = kelsMul_64fc_I;
};

/// One family: `single_id` stands in the first word of its contexts, and contexts of `least_for_plan` taps or more hold
/// an FFT plan. Real families run it in place at any block length.
template <class TapsType, class SampleType, Kel32u single_rate_id, int least>
struct FirFamily {
    using Taps = TapsType;
    using Sample = SampleType;
    using Spectrum = TapsType;
    static constexpr Kel32u single_id = single_rate_id;
    static constexpr int least_for_plan = least;
    static constexpr bool plan_in_place_always = !is_complex<SampleType>;
};

using Fir_32f = FirFamily<Kel32f, Kel32f, 0x46493031, 32>;
using Fir_32fc = FirFamily<Kel32fc, Kel32fc, 0x46493032, 16>;
using Fir_64f = FirFamily<Kel64f, Kel64f, 0x46493133, 32>;
using Fir_64fc = FirFamily<Kel64fc, Kel64fc, 0x46493134, 16>;

} // namespace kels
