// The families of adaptive filters as the tests see them.
#pragma once

#include "kels/lms.h"
#include "support/rows.h"

namespace lms_test {

template <class T>
struct Lms;
#define KELS_LMS(sample, suffix)                                                                                       \
    template <>                                                                                                        \
    struct Lms<Kel##sample> {                                                                                          \
        static constexpr auto make = kelsFIRLMSInitAlloc##suffix;                                                      \
        static constexpr auto release = kelsFIRLMSFree##suffix;                                                        \
        static constexpr auto get_taps = kelsFIRLMSGetTaps##suffix;                                                    \
        static constexpr auto get_line = kelsFIRLMSGetDlyLine##suffix;                                                 \
        static constexpr auto set_line = kelsFIRLMSSetDlyLine##suffix;                                                 \
        static constexpr auto block = kelsFIRLMS##suffix;                                                              \
        static constexpr auto one = kelsFIRLMSOne_Direct##suffix;                                                      \
    }
KELS_LMS(32f, _32f);
KELS_LMS(16s, 32f_16s);
#undef KELS_LMS

#define KELS_RATES(family, tap, sample)                                                                                \
    struct family {                                                                                                    \
        using Tap = Kel##tap;                                                                                          \
        using Sample = Kel##sample;                                                                                    \
        static constexpr auto make = kelsFIRLMSMRInitAlloc##tap##_##sample;                                            \
        static constexpr auto release = kelsFIRLMSMRFree##tap##_##sample;                                              \
        static constexpr auto set_taps = kelsFIRLMSMRSetTaps##tap##_##sample;                                          \
        static constexpr auto get_taps = kelsFIRLMSMRGetTaps##tap##_##sample;                                          \
        static constexpr auto show_taps = kelsFIRLMSMRGetTapsPointer##tap##_##sample;                                  \
        static constexpr auto set_mu = kelsFIRLMSMRSetMu##tap##_##sample;                                              \
        static constexpr auto set_line = kelsFIRLMSMRSetDlyLine##tap##_##sample;                                       \
        static constexpr auto get_line = kelsFIRLMSMRGetDlyLine##tap##_##sample;                                       \
        static constexpr auto get_sample = kelsFIRLMSMRGetDlyVal##tap##_##sample;                                      \
        static constexpr auto put = kelsFIRLMSMRPutVal##tap##_##sample;                                                \
        static constexpr auto output = kelsFIRLMSMROne##tap##_##sample;                                                \
        static constexpr auto put_and_output = kelsFIRLMSMROneVal##tap##_##sample;                                     \
        static constexpr auto update = kelsFIRLMSMRUpdateTaps##tap##_##sample;                                         \
    }
KELS_RATES(Real, 32s, 16s);
KELS_RATES(Complex, 32sc, 16sc);
#undef KELS_RATES

} // namespace lms_test
