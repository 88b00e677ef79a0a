// What distinguishes the fourteen IIR families: a row of facts each.
#pragma once

#include "frame/numeric.h"

#include <type_traits>

namespace kels {

/// The first word of a context: "II" and the two digits of a number.
constexpr Kel32u iir_id(unsigned number) { return 0x49493030U + (number / 10 << 8) + number % 10; }

/// A family: transposed filters have `number` in their id, cascades the next one.
template <class TapsType, class SampleType, unsigned number>
struct IirFamily {
    using Taps = TapsType;
    using Sample = SampleType;
    static constexpr Kel32u transposed_id = iir_id(number), cascade_id = iir_id(number + 1);
    static constexpr bool integer_taps = std::is_integral_v<Part<TapsType>>;
    static constexpr bool integer_samples = std::is_integral_v<Part<SampleType>>;
};

using Iir_32f = IirFamily<Kel32f, Kel32f, 1>;
using Iir_32fc = IirFamily<Kel32fc, Kel32fc, 3>;
using Iir32f_16s = IirFamily<Kel32f, Kel16s, 5>;
using Iir32fc_16sc = IirFamily<Kel32fc, Kel16sc, 7>;
using Iir32s_16s = IirFamily<Kel32s, Kel16s, 9>;
using Iir32sc_16sc = IirFamily<Kel32sc, Kel16sc, 11>;
using Iir_64f = IirFamily<Kel64f, Kel64f, 13>;
using Iir_64fc = IirFamily<Kel64fc, Kel64fc, 15>;
using Iir64f_32f = IirFamily<Kel64f, Kel32f, 17>;
using Iir64fc_32fc = IirFamily<Kel64fc, Kel32fc, 19>;
using Iir64f_32s = IirFamily<Kel64f, Kel32s, 21>;
using Iir64fc_32sc = IirFamily<Kel64fc, Kel32sc, 23>;
using Iir64f_16s = IirFamily<Kel64f, Kel16s, 25>;
using Iir64fc_16sc = IirFamily<Kel64fc, Kel16sc, 27>;

} // namespace kels
