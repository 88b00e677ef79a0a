// The generation of a processor of the target vendor, from its identification.
#pragma once

#include "kels/services.h"

namespace kels {

constexpr int cpu_type(const KelCpuIdent& cpu) {
    switch (cpu.family) {
    case 7:
        return 16;
    case 15:
        return cpu.sx3Present ? 6 : 0;
    case 5:
        return cpu.sx1Present ? 2 : 1;
    case 6:
        if (cpu.sx3Present) return 6;
        if (cpu.sx2Present) return 5;
        return cpu.sx1Present ? 4 : 3;
    default:
        return 0;
    }
}

} // namespace kels
