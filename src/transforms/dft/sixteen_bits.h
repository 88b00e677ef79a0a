// Transforms of 16-bit data through single precision: the points in the caller's work buffer or in memory of the call,
// and behind them the work buffer of the transform inside.
#pragma once

#include "frame/memory.h"
#include "frame/numeric.h"
#include "kels/conversion.h"

#include <algorithm>
#include <cstdint>

namespace kels {

/// One value at a scale factor: ties go up.
inline Kel16s scaled_value(Kel16s value, int scale) {
    if (scale >= 32) return 0;
    const std::int64_t wide = value;
    const std::int64_t scaled =
        scale > 0 ? (wide + (std::int64_t{1} << (scale - 1))) >> scale
                  : wide * (std::int64_t{1} << std::min(-static_cast<std::int64_t>(scale), std::int64_t{16}));
    return static_cast<Kel16s>(std::clamp<std::int64_t>(scaled, -32768, 32767));
}

/// Where the singles stand and what follows them.
struct SingleWork {
    Kel32f* values = nullptr; ///< null for want of memory
    Kel8u* behind = nullptr;
    Owned<Kel8u> owned;

    SingleWork(std::int64_t count, Kel8u* buffer, Kel32s bytes) {
        if (!buffer) {
            owned = make_owned<Kel8u>(static_cast<std::size_t>(bytes));
            buffer = owned.get();
            if (!buffer) return;
        }
        values = reinterpret_cast<Kel32f*>(buffer + (16 - reinterpret_cast<std::uintptr_t>(buffer) % 16) % 16);
        behind = reinterpret_cast<Kel8u*>(values + count);
    }
};

/// To the nearest integers.
inline void convert_back(const Kel32f* values, Kel16s* dst, int count, int scale) {
    kelsConvert_32f16s_Sfs(values, dst, count, 1, scale);
}

} // namespace kels
