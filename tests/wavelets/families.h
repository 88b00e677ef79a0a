// The families of wavelet transforms as the tests see them.
#pragma once

#include "kels/filter_bank.h"
#include "kels/haar.h"

#include <algorithm>
#include <cstdlib>

namespace wavelet_test {

// Filter banks. A channel is what one band has, the signal is at full rate.

template <class T>
struct Analysis;
template <class T>
struct Synthesis;

/// Singles that a band keeps.
inline int kept_of_signal(int length, int offset) { return offset < 0 ? std::max(length - 2, 0) : length - 1 + offset; }
inline int kept_of_band(int length, int offset) {
    offset = std::abs(offset);
    return (length - 1 + offset % 2) / 2 + offset / 2;
}

#define KELS_BANK(Form, type, kind, suffix, kept_)                                                                     \
    template <>                                                                                                        \
    struct Form<type> {                                                                                                \
        using State = WT##kind##State;                                                                                 \
        static constexpr auto make = kelsWT##kind##InitAlloc_##suffix;                                                 \
        static constexpr auto release = kelsWT##kind##Free_##suffix;                                                   \
        static constexpr auto block = kelsWT##kind##_##suffix;                                                         \
        static constexpr auto get = kelsWT##kind##GetDlyLine_##suffix;                                                 \
        static constexpr auto set = kelsWT##kind##SetDlyLine_##suffix;                                                 \
        static constexpr auto kept = kept_;                                                                            \
    };
#define KELS_BANKS(type, forward, inverse)                                                                             \
    KELS_BANK(Analysis, type, Fwd, forward, kept_of_signal)                                                            \
    KELS_BANK(Synthesis, type, Inv, inverse, kept_of_band)
KELS_BANKS(Kel32f, 32f, 32f)
KELS_BANKS(Kel8s, 8s32f, 32f8s)
KELS_BANKS(Kel8u, 8u32f, 32f8u)
KELS_BANKS(Kel16s, 16s32f, 32f16s)
KELS_BANKS(Kel16u, 16u32f, 32f16u)
#undef KELS_BANKS
#undef KELS_BANK

// The Haar transform

template <auto forward_, auto inverse_, auto scaled_forward_ = nullptr, auto scaled_inverse_ = nullptr>
struct HaarOf {
    static constexpr auto forward = forward_;
    static constexpr auto inverse = inverse_;
    static constexpr auto scaled_forward = scaled_forward_;
    static constexpr auto scaled_inverse = scaled_inverse_;
};

template <class T>
struct Haar;
template <>
struct Haar<Kel8s> : HaarOf<kelsWTHaarFwd_8s, kelsWTHaarInv_8s, kelsWTHaarFwd_8s_Sfs, kelsWTHaarInv_8s_Sfs> {};
template <>
struct Haar<Kel16s> : HaarOf<kelsWTHaarFwd_16s, kelsWTHaarInv_16s, kelsWTHaarFwd_16s_Sfs, kelsWTHaarInv_16s_Sfs> {};
template <>
struct Haar<Kel32s> : HaarOf<kelsWTHaarFwd_32s, kelsWTHaarInv_32s, kelsWTHaarFwd_32s_Sfs, kelsWTHaarInv_32s_Sfs> {};
template <>
struct Haar<Kel64s> : HaarOf<kelsWTHaarFwd_64s, kelsWTHaarInv_64s, kelsWTHaarFwd_64s_Sfs, kelsWTHaarInv_64s_Sfs> {};
template <>
struct Haar<Kel32f> : HaarOf<kelsWTHaarFwd_32f, kelsWTHaarInv_32f> {};
template <>
struct Haar<Kel64f> : HaarOf<kelsWTHaarFwd_64f, kelsWTHaarInv_64f> {};

} // namespace wavelet_test
