// The families of adaptive filters as the tests see them.
#pragma once

#include "kels/lms.h"
#include "support/rows.h"

namespace lms_test {

template <class T, auto make_, auto release_, auto get_taps_, auto get_line_, auto set_line_, auto block_, auto one_>
struct OfBlocks {
    static constexpr auto make = make_;
    static constexpr auto release = release_;
    static constexpr auto get_taps = get_taps_;
    static constexpr auto get_line = get_line_;
    static constexpr auto set_line = set_line_;
    static constexpr auto block = block_;
    static constexpr auto one = one_;
    static constexpr double size = std::is_integral_v<T> ? 10000 : 1; ///< of samples
};

template <class T>
struct Lms;
template <>
struct Lms<Kel32f>
    : OfBlocks<Kel32f, kelsFIRLMSInitAlloc_32f, kelsFIRLMSFree_32f, kelsFIRLMSGetTaps_32f, kelsFIRLMSGetDlyLine_32f,
               kelsFIRLMSSetDlyLine_32f, kelsFIRLMS_32f, kelsFIRLMSOne_Direct_32f> {};
template <>
struct Lms<Kel16s> : OfBlocks<Kel16s, kelsFIRLMSInitAlloc32f_16s, kelsFIRLMSFree32f_16s, kelsFIRLMSGetTaps32f_16s,
                              kelsFIRLMSGetDlyLine32f_16s, kelsFIRLMSSetDlyLine32f_16s, kelsFIRLMS32f_16s,
                              kelsFIRLMSOne_Direct32f_16s> {};

template <class T, class S, auto make_, auto release_, auto set_taps_, auto get_taps_, auto show_taps_, auto set_mu_,
          auto set_line_, auto get_line_, auto get_sample_, auto put_, auto output_, auto put_and_output_, auto update_>
struct OfRates {
    using Tap = T;
    using Sample = S;
    static constexpr int parts = kels_test::type_of<S>().parts;
    static constexpr auto make = make_;
    static constexpr auto release = release_;
    static constexpr auto set_taps = set_taps_;
    static constexpr auto get_taps = get_taps_;
    static constexpr auto show_taps = show_taps_;
    static constexpr auto set_mu = set_mu_;
    static constexpr auto set_line = set_line_;
    static constexpr auto get_line = get_line_;
    static constexpr auto get_sample = get_sample_;
    static constexpr auto put = put_;
    static constexpr auto output = output_;
    static constexpr auto put_and_output = put_and_output_;
    static constexpr auto update = update_;
};

using Real = OfRates<Kel32s, Kel16s, kelsFIRLMSMRInitAlloc32s_16s, kelsFIRLMSMRFree32s_16s, kelsFIRLMSMRSetTaps32s_16s,
                     kelsFIRLMSMRGetTaps32s_16s, kelsFIRLMSMRGetTapsPointer32s_16s, kelsFIRLMSMRSetMu32s_16s,
                     kelsFIRLMSMRSetDlyLine32s_16s, kelsFIRLMSMRGetDlyLine32s_16s, kelsFIRLMSMRGetDlyVal32s_16s,
                     kelsFIRLMSMRPutVal32s_16s, kelsFIRLMSMROne32s_16s, kelsFIRLMSMROneVal32s_16s,
                     kelsFIRLMSMRUpdateTaps32s_16s>;
using Complex = OfRates<Kel32sc, Kel16sc, kelsFIRLMSMRInitAlloc32sc_16sc, kelsFIRLMSMRFree32sc_16sc,
                        kelsFIRLMSMRSetTaps32sc_16sc, kelsFIRLMSMRGetTaps32sc_16sc, kelsFIRLMSMRGetTapsPointer32sc_16sc,
                        kelsFIRLMSMRSetMu32sc_16sc, kelsFIRLMSMRSetDlyLine32sc_16sc, kelsFIRLMSMRGetDlyLine32sc_16sc,
                        kelsFIRLMSMRGetDlyVal32sc_16sc, kelsFIRLMSMRPutVal32sc_16sc, kelsFIRLMSMROne32sc_16sc,
                        kelsFIRLMSMROneVal32sc_16sc, kelsFIRLMSMRUpdateTaps32sc_16sc>;

} // namespace lms_test
