// From a sum to a sample: what FIR filters store.
#pragma once

#include "filters/fir/family.h"
#include "filters/rounding.h"
#include "frame/numeric.h"
#include "frame/simd.h"
#include "kels/conversion.h"

#include <algorithm>
#include <bit>

namespace kels {

/// 2^exponent, the exponent taken modulo 128, its sign kept. As a single, 2^-127 is not to be had and gives 0.
template <class T>
T power_of_two_modulo_128(std::int64_t exponent) {
    constexpr int fraction = std::numeric_limits<T>::digits - 1, bias = std::numeric_limits<T>::max_exponent - 1;
    return std::bit_cast<T>(static_cast<Word<T>>(exponent % 128 + bias) << fraction);
}

/// Integer samples of integer taps: the sum shifted within its 32 bits, then saturated. Down, ties go to even.
struct Shifted {
    int left; ///< -31 to 31

    Shifted(int tapsFactor, int scaleFactor)
        : left(static_cast<int>(std::clamp<std::int64_t>(std::int64_t{tapsFactor} - scaleFactor, -31, 31))) {}

    template <class R, class V>
    [[gnu::always_inline]] Vec<R, lanes<V>> to(V sum) const {
        using Signed = Vec<Kel32s, lanes<V>>;
        if (left >= 0) return saturate<R>((Signed)(sum << splat<V>(static_cast<Kel32u>(left))));
        const Kel32u below_half = (1U << (-left - 1)) - 1;
        const Signed down = splat<Signed>(-left);
        const V odd = (V)((Signed)sum >> down) & splat<V>(1U);
        return saturate<R>((Signed)(sum + splat<V>(below_half) + odd) >> down);
    }
};

/// How a family's direct sums become samples, for a scale factor that real samples do not have. Integer taps bring a
/// factor of their own.
template <class Family>
auto rounding(int scaleFactor, int tapsFactor) {
    if constexpr (Family::integer_taps)
        return Shifted(tapsFactor, scaleFactor);
    else if constexpr (std::is_integral_v<Part<typename Family::Sample>>)
        return AwayFromZero{power_of_two_modulo_128<Part<typename Family::Taps>>(-std::int64_t{scaleFactor})};
    else
        return RoundedOnce{};
}

// What comes from a transform is rounded as the conversions do, ties to even, where there is such a conversion.

template <class T, class R>
KelStatus store_transformed(const T* spectral, R* dst, int count, int scaleFactor) {
    if constexpr (std::is_same_v<T, Kel32f> && std::is_same_v<R, Kel16s>)
        return kelsConvert_32f16s_Sfs(spectral, dst, count, kelRndNear, scaleFactor);
    else if constexpr (std::is_same_v<R, Kel32s>)
        return kelsConvert_64f32s_Sfs(spectral, dst, count, kelRndNear, scaleFactor);
    else if constexpr (std::is_integral_v<R>)
        store_rounded(spectral, dst, count, AwayFromZero{power_of_two_modulo_128<T>(-std::int64_t{scaleFactor})});
    else
        store_rounded(spectral, dst, count, RoundedOnce{});
    return kelStatusOk;
}

} // namespace kels
