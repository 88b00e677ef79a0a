// FIR filters that change the rate: making them.

#include "kels/fir.h"

#include "filters/fir/context.h"

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsFIRMRInitAlloc_32f     (KelFirContext** state, const Kel32f*  taps, int len, int up, int upAt, int down, int downAt, const Kel32f*  line) { return make_multi_rate<Fir_32f>     (state, taps, len, 0, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMRInitAlloc_32fc    (KelFirContext** state, const Kel32fc* taps, int len, int up, int upAt, int down, int downAt, const Kel32fc* line) { return make_multi_rate<Fir_32fc>    (state, taps, len, 0, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMRInitAlloc32f_16s  (KelFirContext** state, const Kel32f*  taps, int len, int up, int upAt, int down, int downAt, const Kel16s*  line) { return make_multi_rate<Fir32f_16s>  (state, taps, len, 0, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMRInitAlloc32fc_16sc(KelFirContext** state, const Kel32fc* taps, int len, int up, int upAt, int down, int downAt, const Kel16sc* line) { return make_multi_rate<Fir32fc_16sc>(state, taps, len, 0, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMRInitAlloc_64f     (KelFirContext** state, const Kel64f*  taps, int len, int up, int upAt, int down, int downAt, const Kel64f*  line) { return make_multi_rate<Fir_64f>     (state, taps, len, 0, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMRInitAlloc_64fc    (KelFirContext** state, const Kel64fc* taps, int len, int up, int upAt, int down, int downAt, const Kel64fc* line) { return make_multi_rate<Fir_64fc>    (state, taps, len, 0, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMRInitAlloc64f_32f  (KelFirContext** state, const Kel64f*  taps, int len, int up, int upAt, int down, int downAt, const Kel32f*  line) { return make_multi_rate<Fir64f_32f>  (state, taps, len, 0, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMRInitAlloc64fc_32fc(KelFirContext** state, const Kel64fc* taps, int len, int up, int upAt, int down, int downAt, const Kel32fc* line) { return make_multi_rate<Fir64fc_32fc>(state, taps, len, 0, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMRInitAlloc64f_32s  (KelFirContext** state, const Kel64f*  taps, int len, int up, int upAt, int down, int downAt, const Kel32s*  line) { return make_multi_rate<Fir64f_32s>  (state, taps, len, 0, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMRInitAlloc64fc_32sc(KelFirContext** state, const Kel64fc* taps, int len, int up, int upAt, int down, int downAt, const Kel32sc* line) { return make_multi_rate<Fir64fc_32sc>(state, taps, len, 0, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMRInitAlloc64f_16s  (KelFirContext** state, const Kel64f*  taps, int len, int up, int upAt, int down, int downAt, const Kel16s*  line) { return make_multi_rate<Fir64f_16s>  (state, taps, len, 0, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMRInitAlloc64fc_16sc(KelFirContext** state, const Kel64fc* taps, int len, int up, int upAt, int down, int downAt, const Kel16sc* line) { return make_multi_rate<Fir64fc_16sc>(state, taps, len, 0, {up, upAt, down, downAt}, line); }
}
// clang-format on
