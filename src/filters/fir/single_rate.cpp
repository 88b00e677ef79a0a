// FIR filters with a state, of floating-point taps.

#include "kels/fir.h"

#include "filters/fir/calls.h"

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsFIRInitAlloc_32f     (KelFirContext** state, const Kel32f*  taps, int len, const Kel32f*  line) { return make_single_rate<Fir_32f>     (state, taps, len, 0, line); }
KelStatus kelsFIRInitAlloc_32fc    (KelFirContext** state, const Kel32fc* taps, int len, const Kel32fc* line) { return make_single_rate<Fir_32fc>    (state, taps, len, 0, line); }
KelStatus kelsFIRInitAlloc32f_16s  (KelFirContext** state, const Kel32f*  taps, int len, const Kel16s*  line) { return make_single_rate<Fir32f_16s>  (state, taps, len, 0, line); }
KelStatus kelsFIRInitAlloc32fc_16sc(KelFirContext** state, const Kel32fc* taps, int len, const Kel16sc* line) { return make_single_rate<Fir32fc_16sc>(state, taps, len, 0, line); }
KelStatus kelsFIRInitAlloc_64f     (KelFirContext** state, const Kel64f*  taps, int len, const Kel64f*  line) { return make_single_rate<Fir_64f>     (state, taps, len, 0, line); }
KelStatus kelsFIRInitAlloc_64fc    (KelFirContext** state, const Kel64fc* taps, int len, const Kel64fc* line) { return make_single_rate<Fir_64fc>    (state, taps, len, 0, line); }
KelStatus kelsFIRInitAlloc64f_32f  (KelFirContext** state, const Kel64f*  taps, int len, const Kel32f*  line) { return make_single_rate<Fir64f_32f>  (state, taps, len, 0, line); }
KelStatus kelsFIRInitAlloc64fc_32fc(KelFirContext** state, const Kel64fc* taps, int len, const Kel32fc* line) { return make_single_rate<Fir64fc_32fc>(state, taps, len, 0, line); }
KelStatus kelsFIRInitAlloc64f_32s  (KelFirContext** state, const Kel64f*  taps, int len, const Kel32s*  line) { return make_single_rate<Fir64f_32s>  (state, taps, len, 0, line); }
KelStatus kelsFIRInitAlloc64fc_32sc(KelFirContext** state, const Kel64fc* taps, int len, const Kel32sc* line) { return make_single_rate<Fir64fc_32sc>(state, taps, len, 0, line); }
KelStatus kelsFIRInitAlloc64f_16s  (KelFirContext** state, const Kel64f*  taps, int len, const Kel16s*  line) { return make_single_rate<Fir64f_16s>  (state, taps, len, 0, line); }
KelStatus kelsFIRInitAlloc64fc_16sc(KelFirContext** state, const Kel64fc* taps, int len, const Kel16sc* line) { return make_single_rate<Fir64fc_16sc>(state, taps, len, 0, line); }

KelStatus kelsFIRFree_32f     (KelFirContext* state) { return free_context<Fir_32f>     (state); }
KelStatus kelsFIRFree_32fc    (KelFirContext* state) { return free_context<Fir_32fc>    (state); }
KelStatus kelsFIRFree32f_16s  (KelFirContext* state) { return free_context<Fir32f_16s>  (state); }
KelStatus kelsFIRFree32fc_16sc(KelFirContext* state) { return free_context<Fir32fc_16sc>(state); }
KelStatus kelsFIRFree_64f     (KelFirContext* state) { return free_context<Fir_64f>     (state); }
KelStatus kelsFIRFree_64fc    (KelFirContext* state) { return free_context<Fir_64fc>    (state); }
KelStatus kelsFIRFree64f_32f  (KelFirContext* state) { return free_context<Fir64f_32f>  (state); }
KelStatus kelsFIRFree64fc_32fc(KelFirContext* state) { return free_context<Fir64fc_32fc>(state); }
KelStatus kelsFIRFree64f_32s  (KelFirContext* state) { return free_context<Fir64f_32s>  (state); }
KelStatus kelsFIRFree64fc_32sc(KelFirContext* state) { return free_context<Fir64fc_32sc>(state); }
KelStatus kelsFIRFree64f_16s  (KelFirContext* state) { return free_context<Fir64f_16s>  (state); }
KelStatus kelsFIRFree64fc_16sc(KelFirContext* state) { return free_context<Fir64fc_16sc>(state); }

KelStatus kelsFIRGetTaps_32f     (const KelFirContext* state, Kel32f*  taps) { return get_taps<Fir_32f>     (state, taps); }
KelStatus kelsFIRGetTaps_32fc    (const KelFirContext* state, Kel32fc* taps) { return get_taps<Fir_32fc>    (state, taps); }
KelStatus kelsFIRGetTaps32f_16s  (const KelFirContext* state, Kel32f*  taps) { return get_taps<Fir32f_16s>  (state, taps); }
KelStatus kelsFIRGetTaps32fc_16sc(const KelFirContext* state, Kel32fc* taps) { return get_taps<Fir32fc_16sc>(state, taps); }
KelStatus kelsFIRGetTaps_64f     (const KelFirContext* state, Kel64f*  taps) { return get_taps<Fir_64f>     (state, taps); }
KelStatus kelsFIRGetTaps_64fc    (const KelFirContext* state, Kel64fc* taps) { return get_taps<Fir_64fc>    (state, taps); }
KelStatus kelsFIRGetTaps64f_32f  (const KelFirContext* state, Kel64f*  taps) { return get_taps<Fir64f_32f>  (state, taps); }
KelStatus kelsFIRGetTaps64fc_32fc(const KelFirContext* state, Kel64fc* taps) { return get_taps<Fir64fc_32fc>(state, taps); }
KelStatus kelsFIRGetTaps64f_32s  (const KelFirContext* state, Kel64f*  taps) { return get_taps<Fir64f_32s>  (state, taps); }
KelStatus kelsFIRGetTaps64fc_32sc(const KelFirContext* state, Kel64fc* taps) { return get_taps<Fir64fc_32sc>(state, taps); }
KelStatus kelsFIRGetTaps64f_16s  (const KelFirContext* state, Kel64f*  taps) { return get_taps<Fir64f_16s>  (state, taps); }
KelStatus kelsFIRGetTaps64fc_16sc(const KelFirContext* state, Kel64fc* taps) { return get_taps<Fir64fc_16sc>(state, taps); }

KelStatus kelsFIRGetDlyLine_32f     (const KelFirContext* state, Kel32f*  line) { return get_delay_line<Fir_32f>     (state, line); }
KelStatus kelsFIRGetDlyLine_32fc    (const KelFirContext* state, Kel32fc* line) { return get_delay_line<Fir_32fc>    (state, line); }
KelStatus kelsFIRGetDlyLine32f_16s  (const KelFirContext* state, Kel16s*  line) { return get_delay_line<Fir32f_16s>  (state, line); }
KelStatus kelsFIRGetDlyLine32fc_16sc(const KelFirContext* state, Kel16sc* line) { return get_delay_line<Fir32fc_16sc>(state, line); }
KelStatus kelsFIRGetDlyLine_64f     (const KelFirContext* state, Kel64f*  line) { return get_delay_line<Fir_64f>     (state, line); }
KelStatus kelsFIRGetDlyLine_64fc    (const KelFirContext* state, Kel64fc* line) { return get_delay_line<Fir_64fc>    (state, line); }
KelStatus kelsFIRGetDlyLine64f_32f  (const KelFirContext* state, Kel32f*  line) { return get_delay_line<Fir64f_32f>  (state, line); }
KelStatus kelsFIRGetDlyLine64fc_32fc(const KelFirContext* state, Kel32fc* line) { return get_delay_line<Fir64fc_32fc>(state, line); }
KelStatus kelsFIRGetDlyLine64f_32s  (const KelFirContext* state, Kel32s*  line) { return get_delay_line<Fir64f_32s>  (state, line); }
KelStatus kelsFIRGetDlyLine64fc_32sc(const KelFirContext* state, Kel32sc* line) { return get_delay_line<Fir64fc_32sc>(state, line); }
KelStatus kelsFIRGetDlyLine64f_16s  (const KelFirContext* state, Kel16s*  line) { return get_delay_line<Fir64f_16s>  (state, line); }
KelStatus kelsFIRGetDlyLine64fc_16sc(const KelFirContext* state, Kel16sc* line) { return get_delay_line<Fir64fc_16sc>(state, line); }

KelStatus kelsFIRSetDlyLine_32f     (KelFirContext* state, const Kel32f*  line) { return set_delay_line<Fir_32f>     (state, line); }
KelStatus kelsFIRSetDlyLine_32fc    (KelFirContext* state, const Kel32fc* line) { return set_delay_line<Fir_32fc>    (state, line); }
KelStatus kelsFIRSetDlyLine32f_16s  (KelFirContext* state, const Kel16s*  line) { return set_delay_line<Fir32f_16s>  (state, line); }
KelStatus kelsFIRSetDlyLine32fc_16sc(KelFirContext* state, const Kel16sc* line) { return set_delay_line<Fir32fc_16sc>(state, line); }
KelStatus kelsFIRSetDlyLine_64f     (KelFirContext* state, const Kel64f*  line) { return set_delay_line<Fir_64f>     (state, line); }
KelStatus kelsFIRSetDlyLine_64fc    (KelFirContext* state, const Kel64fc* line) { return set_delay_line<Fir_64fc>    (state, line); }
KelStatus kelsFIRSetDlyLine64f_32f  (KelFirContext* state, const Kel32f*  line) { return set_delay_line<Fir64f_32f>  (state, line); }
KelStatus kelsFIRSetDlyLine64fc_32fc(KelFirContext* state, const Kel32fc* line) { return set_delay_line<Fir64fc_32fc>(state, line); }
KelStatus kelsFIRSetDlyLine64f_32s  (KelFirContext* state, const Kel32s*  line) { return set_delay_line<Fir64f_32s>  (state, line); }
KelStatus kelsFIRSetDlyLine64fc_32sc(KelFirContext* state, const Kel32sc* line) { return set_delay_line<Fir64fc_32sc>(state, line); }
KelStatus kelsFIRSetDlyLine64f_16s  (KelFirContext* state, const Kel16s*  line) { return set_delay_line<Fir64f_16s>  (state, line); }
KelStatus kelsFIRSetDlyLine64fc_16sc(KelFirContext* state, const Kel16sc* line) { return set_delay_line<Fir64fc_16sc>(state, line); }

KelStatus kelsFIR_32f         (const Kel32f*  src, Kel32f*  dst, int n, KelFirContext* state)  { return filter_block<Fir_32f>     (src, dst, n, state); }
KelStatus kelsFIR_32fc        (const Kel32fc* src, Kel32fc* dst, int n, KelFirContext* state)  { return filter_block<Fir_32fc>    (src, dst, n, state); }
KelStatus kelsFIR32f_16s_Sfs  (const Kel16s*  src, Kel16s*  dst, int n, KelFirContext* state, int                                 scale)                  { return filter_block<Fir32f_16s>  (src, dst, n, state, scale); }
KelStatus kelsFIR32fc_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, int n, KelFirContext* state, int                                 scale)                  { return filter_block<Fir32fc_16sc>(src, dst, n, state, scale); }
KelStatus kelsFIR_64f         (const Kel64f*  src, Kel64f*  dst, int n, KelFirContext* state)  { return filter_block<Fir_64f>     (src, dst, n, state); }
KelStatus kelsFIR_64fc        (const Kel64fc* src, Kel64fc* dst, int n, KelFirContext* state)  { return filter_block<Fir_64fc>    (src, dst, n, state); }
KelStatus kelsFIR64f_32f      (const Kel32f*  src, Kel32f*  dst, int n, KelFirContext* state)  { return filter_block<Fir64f_32f>  (src, dst, n, state); }
KelStatus kelsFIR64fc_32fc    (const Kel32fc* src, Kel32fc* dst, int n, KelFirContext* state)  { return filter_block<Fir64fc_32fc>(src, dst, n, state); }
KelStatus kelsFIR64f_32s_Sfs  (const Kel32s*  src, Kel32s*  dst, int n, KelFirContext* state, int                                 scale)                  { return filter_block<Fir64f_32s>  (src, dst, n, state, scale); }
KelStatus kelsFIR64fc_32sc_Sfs(const Kel32sc* src, Kel32sc* dst, int n, KelFirContext* state, int                                 scale)                  { return filter_block<Fir64fc_32sc>(src, dst, n, state, scale); }
KelStatus kelsFIR64f_16s_Sfs  (const Kel16s*  src, Kel16s*  dst, int n, KelFirContext* state, int                                 scale)                  { return filter_block<Fir64f_16s>  (src, dst, n, state, scale); }
KelStatus kelsFIR64fc_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, int n, KelFirContext* state, int                                 scale)                  { return filter_block<Fir64fc_16sc>(src, dst, n, state, scale); }

KelStatus kelsFIR_32f_I        (Kel32f*  x, int n, KelFirContext* state)  { return filter_in_place<Fir_32f>     (x, n, state); }
KelStatus kelsFIR_32fc_I       (Kel32fc* x, int n, KelFirContext* state)  { return filter_in_place<Fir_32fc>    (x, n, state); }
KelStatus kelsFIR32f_16s_ISfs  (Kel16s*  x, int n, KelFirContext* state, int                                    scale)           { return filter_in_place<Fir32f_16s>  (x, n, state, scale); }
KelStatus kelsFIR32fc_16sc_ISfs(Kel16sc* x, int n, KelFirContext* state, int                                    scale)           { return filter_in_place<Fir32fc_16sc>(x, n, state, scale); }
KelStatus kelsFIR_64f_I        (Kel64f*  x, int n, KelFirContext* state)  { return filter_in_place<Fir_64f>     (x, n, state); }
KelStatus kelsFIR_64fc_I       (Kel64fc* x, int n, KelFirContext* state)  { return filter_in_place<Fir_64fc>    (x, n, state); }
KelStatus kelsFIR64f_32f_I     (Kel32f*  x, int n, KelFirContext* state)  { return filter_in_place<Fir64f_32f>  (x, n, state); }
KelStatus kelsFIR64fc_32fc_I   (Kel32fc* x, int n, KelFirContext* state)  { return filter_in_place<Fir64fc_32fc>(x, n, state); }
KelStatus kelsFIR64f_32s_ISfs  (Kel32s*  x, int n, KelFirContext* state, int                                    scale)           { return filter_in_place<Fir64f_32s>  (x, n, state, scale); }
KelStatus kelsFIR64fc_32sc_ISfs(Kel32sc* x, int n, KelFirContext* state, int                                    scale)           { return filter_in_place<Fir64fc_32sc>(x, n, state, scale); }
KelStatus kelsFIR64f_16s_ISfs  (Kel16s*  x, int n, KelFirContext* state, int                                    scale)           { return filter_in_place<Fir64f_16s>  (x, n, state, scale); }
KelStatus kelsFIR64fc_16sc_ISfs(Kel16sc* x, int n, KelFirContext* state, int                                    scale)           { return filter_in_place<Fir64fc_16sc>(x, n, state, scale); }

KelStatus kelsFIROne_32f         (Kel32f  src, Kel32f*  dst, KelFirContext* state)  { return filter_one<Fir_32f>     (src, dst, state); }
KelStatus kelsFIROne_32fc        (Kel32fc src, Kel32fc* dst, KelFirContext* state)  { return filter_one<Fir_32fc>    (src, dst, state); }
KelStatus kelsFIROne32f_16s_Sfs  (Kel16s  src, Kel16s*  dst, KelFirContext* state, int                               scale)               { return filter_one<Fir32f_16s>  (src, dst, state, scale); }
KelStatus kelsFIROne32fc_16sc_Sfs(Kel16sc src, Kel16sc* dst, KelFirContext* state, int                               scale)               { return filter_one<Fir32fc_16sc>(src, dst, state, scale); }
KelStatus kelsFIROne_64f         (Kel64f  src, Kel64f*  dst, KelFirContext* state)  { return filter_one<Fir_64f>     (src, dst, state); }
KelStatus kelsFIROne_64fc        (Kel64fc src, Kel64fc* dst, KelFirContext* state)  { return filter_one<Fir_64fc>    (src, dst, state); }
KelStatus kelsFIROne64f_32f      (Kel32f  src, Kel32f*  dst, KelFirContext* state)  { return filter_one<Fir64f_32f>  (src, dst, state); }
KelStatus kelsFIROne64fc_32fc    (Kel32fc src, Kel32fc* dst, KelFirContext* state)  { return filter_one<Fir64fc_32fc>(src, dst, state); }
KelStatus kelsFIROne64f_32s_Sfs  (Kel32s  src, Kel32s*  dst, KelFirContext* state, int                               scale)               { return filter_one<Fir64f_32s>  (src, dst, state, scale); }
KelStatus kelsFIROne64fc_32sc_Sfs(Kel32sc src, Kel32sc* dst, KelFirContext* state, int                               scale)               { return filter_one<Fir64fc_32sc>(src, dst, state, scale); }
KelStatus kelsFIROne64f_16s_Sfs  (Kel16s  src, Kel16s*  dst, KelFirContext* state, int                               scale)               { return filter_one<Fir64f_16s>  (src, dst, state, scale); }
KelStatus kelsFIROne64fc_16sc_Sfs(Kel16sc src, Kel16sc* dst, KelFirContext* state, int                               scale)               { return filter_one<Fir64fc_16sc>(src, dst, state, scale); }
}
// clang-format on
