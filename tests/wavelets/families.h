// The families of wavelet transforms as the tests see them.
#pragma once

#include "kels/filter_bank.h"
#include "kels/haar.h"

#include <algorithm>
#include <cstdlib>

namespace wavelet_test {

// Filter banks. A channel is what one band has, the signal is at full rate.

template <class S, auto make_, auto release_, auto block_, auto get_, auto set_>
struct BankOf {
    using State = S;
    static constexpr auto make = make_;
    static constexpr auto release = release_;
    static constexpr auto block = block_;
    static constexpr auto get = get_;
    static constexpr auto set = set_;
};

template <auto... functions>
struct AnalysisOf : BankOf<WTFwdState, functions...> {
    /// Singles that a band keeps.
    static int kept(int length, int offset) { return offset < 0 ? std::max(length - 2, 0) : length - 1 + offset; }
};

template <auto... functions>
struct SynthesisOf : BankOf<WTInvState, functions...> {
    static int kept(int length, int offset) {
        offset = std::abs(offset);
        return (length - 1 + offset % 2) / 2 + offset / 2;
    }
};

template <class T>
struct Analysis;
template <>
struct Analysis<Kel32f> : AnalysisOf<kelsWTFwdInitAlloc_32f, kelsWTFwdFree_32f, kelsWTFwd_32f, kelsWTFwdGetDlyLine_32f,
                                     kelsWTFwdSetDlyLine_32f> {};
template <>
struct Analysis<Kel8s> : AnalysisOf<kelsWTFwdInitAlloc_8s32f, kelsWTFwdFree_8s32f, kelsWTFwd_8s32f,
                                    kelsWTFwdGetDlyLine_8s32f, kelsWTFwdSetDlyLine_8s32f> {};
template <>
struct Analysis<Kel8u> : AnalysisOf<kelsWTFwdInitAlloc_8u32f, kelsWTFwdFree_8u32f, kelsWTFwd_8u32f,
                                    kelsWTFwdGetDlyLine_8u32f, kelsWTFwdSetDlyLine_8u32f> {};
template <>
struct Analysis<Kel16s> : AnalysisOf<kelsWTFwdInitAlloc_16s32f, kelsWTFwdFree_16s32f, kelsWTFwd_16s32f,
                                     kelsWTFwdGetDlyLine_16s32f, kelsWTFwdSetDlyLine_16s32f> {};
template <>
struct Analysis<Kel16u> : AnalysisOf<kelsWTFwdInitAlloc_16u32f, kelsWTFwdFree_16u32f, kelsWTFwd_16u32f,
                                     kelsWTFwdGetDlyLine_16u32f, kelsWTFwdSetDlyLine_16u32f> {};

template <class T>
struct Synthesis;
template <>
struct Synthesis<Kel32f> : SynthesisOf<kelsWTInvInitAlloc_32f, kelsWTInvFree_32f, kelsWTInv_32f,
                                       kelsWTInvGetDlyLine_32f, kelsWTInvSetDlyLine_32f> {};
template <>
struct Synthesis<Kel8s> : SynthesisOf<kelsWTInvInitAlloc_32f8s, kelsWTInvFree_32f8s, kelsWTInv_32f8s,
                                      kelsWTInvGetDlyLine_32f8s, kelsWTInvSetDlyLine_32f8s> {};
template <>
struct Synthesis<Kel8u> : SynthesisOf<kelsWTInvInitAlloc_32f8u, kelsWTInvFree_32f8u, kelsWTInv_32f8u,
                                      kelsWTInvGetDlyLine_32f8u, kelsWTInvSetDlyLine_32f8u> {};
template <>
struct Synthesis<Kel16s> : SynthesisOf<kelsWTInvInitAlloc_32f16s, kelsWTInvFree_32f16s, kelsWTInv_32f16s,
                                       kelsWTInvGetDlyLine_32f16s, kelsWTInvSetDlyLine_32f16s> {};
template <>
struct Synthesis<Kel16u> : SynthesisOf<kelsWTInvInitAlloc_32f16u, kelsWTInvFree_32f16u, kelsWTInv_32f16u,
                                       kelsWTInvGetDlyLine_32f16u, kelsWTInvSetDlyLine_32f16u> {};

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
