// Where the values of half a conjugate-symmetric spectrum stand. The layouts are those of kels/fft.h, and their forms
// for an odd length, which has no bin N/2: there Perm and Pack are one.
#pragma once

#include <cstddef>

namespace kels {

enum class Layout { perm, pack, ccs };

/// Complex bins: 1 to this one. Bin 0 is real, and bin N/2 of an even length.
constexpr std::ptrdiff_t complex_bins(std::ptrdiff_t points) { return (points - 1) / 2; }

/// Where the parts of bin 1 stand; those of the other complex bins follow.
constexpr std::ptrdiff_t first_complex(Layout layout, std::ptrdiff_t points) {
    return layout == Layout::ccs || (layout == Layout::perm && points % 2 == 0) ? 2 : 1;
}

/// Where the real part of bin N/2 stands, of an even length.
constexpr std::ptrdiff_t nyquist(Layout layout, std::ptrdiff_t points) {
    return layout == Layout::perm ? 1 : layout == Layout::pack ? points - 1 : points;
}

} // namespace kels
