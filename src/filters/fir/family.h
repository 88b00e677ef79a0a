// What distinguishes the fourteen FIR families: a row of facts each.
#pragma once

#include "frame/numeric.h"

#include <type_traits>

namespace kels {

/// The first word of a context: "FI" and the two digits of a number.
constexpr Kel32u fir_id(unsigned number) { return 0x46493030U + (number / 10 << 8) + number % 10; }

/// A family: contexts of one rate have `number` in their id, multi-rate ones number + 2. Contexts of `least` taps or
/// more hold an FFT plan; 0 is never.
template <class TapsType, class SampleType, unsigned number, int least>
struct FirFamily {
    using Taps = TapsType;
    using Sample = SampleType;
    static constexpr bool complex = parts<SampleType> == 2;
    static constexpr bool integer_taps = std::is_integral_v<Part<TapsType>>;
    static constexpr Kel32u single_rate_id = fir_id(number), multi_rate_id = fir_id(number + 2);
    static constexpr bool has_plans = least > 0;
    static constexpr int least_for_plan = least;

    static constexpr bool single_taps_on_integers =
        std::is_same_v<Part<TapsType>, Kel32f> && std::is_integral_v<Part<SampleType>>;
    /// In place a plan runs at any block length, not only beyond its own.
    static constexpr bool plan_in_place_always = !complex && !single_taps_on_integers;
    /// Samples are shorter than the sums of their products with real taps.
    static constexpr bool rounds_sums = !integer_taps && !std::is_same_v<Part<SampleType>, Kel64f>;
    /// What overlap-save makes of a tie is a conversion's.
    static constexpr bool transforms_tie_to_even =
        single_taps_on_integers || (!integer_taps && std::is_same_v<Part<SampleType>, Kel32s>);
    /// A multi-rate filter of factors 1 and 1 is a single-rate one.
    static constexpr bool degenerates =
        std::is_same_v<TapsType, Kel32f> && (std::is_same_v<SampleType, Kel32f> || std::is_same_v<SampleType, Kel16s>);
};

using Fir_32f = FirFamily<Kel32f, Kel32f, 1, 32>;
using Fir_32fc = FirFamily<Kel32fc, Kel32fc, 2, 16>;
using Fir32f_16s = FirFamily<Kel32f, Kel16s, 5, 128>;
using Fir32fc_16sc = FirFamily<Kel32fc, Kel16sc, 6, 32>;
using Fir32s_16s = FirFamily<Kel32s, Kel16s, 9, 0>;
using Fir32sc_16sc = FirFamily<Kel32sc, Kel16sc, 10, 0>;
using Fir_64f = FirFamily<Kel64f, Kel64f, 13, 32>;
using Fir_64fc = FirFamily<Kel64fc, Kel64fc, 14, 16>;
using Fir64f_32f = FirFamily<Kel64f, Kel32f, 17, 32>;
using Fir64fc_32fc = FirFamily<Kel64fc, Kel32fc, 18, 16>;
using Fir64f_32s = FirFamily<Kel64f, Kel32s, 21, 32>;
using Fir64fc_32sc = FirFamily<Kel64fc, Kel32sc, 22, 16>;
using Fir64f_16s = FirFamily<Kel64f, Kel16s, 25, 32>;
using Fir64fc_16sc = FirFamily<Kel64fc, Kel16sc, 26, 16>;

} // namespace kels
