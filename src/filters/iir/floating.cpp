// IIR filters of floating-point taps.

#include "kels/iir.h"

#include "filters/iir/calls.h"
#include "filters/iir/normalization.h"

namespace kels {
namespace {

KelStatus unless_zero(bool divided) { return divided ? kelStatusOk : kelStatusDivByZero; }

template <class Family, class Taps = typename Family::Taps>
KelStatus make_transposed(KelIirContext** result, const Taps* taps, int order, const Taps* state) {
    return make_filter<TransposedForm<Taps>>(result, taps, Family::transposed_id, order, state, [=](auto& form) {
        return unless_zero(
            normalize_polynomials(taps, order, [&](std::ptrdiff_t i, const Taps& tap) { form.put_tap(i, tap); }));
    });
}

template <class Family, class Taps = typename Family::Taps>
KelStatus make_cascade(KelIirContext** result, const Taps* taps, int sections, const Taps* state) {
    return make_filter<Cascade<Taps>>(result, taps, Family::cascade_id, sections, state, [=](auto& form) {
        return unless_zero(
            normalize_sections(taps, sections, [&](std::ptrdiff_t i, const Taps& tap) { form.put_tap(i, tap); }));
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsIIRInitAlloc_32f     (KelIirContext** state, const Kel32f*  taps, int order, const Kel32f*  line) { return make_transposed<Iir_32f>     (state, taps, order, line); }
KelStatus kelsIIRInitAlloc_32fc    (KelIirContext** state, const Kel32fc* taps, int order, const Kel32fc* line) { return make_transposed<Iir_32fc>    (state, taps, order, line); }
KelStatus kelsIIRInitAlloc32f_16s  (KelIirContext** state, const Kel32f*  taps, int order, const Kel32f*  line) { return make_transposed<Iir32f_16s>  (state, taps, order, line); }
KelStatus kelsIIRInitAlloc32fc_16sc(KelIirContext** state, const Kel32fc* taps, int order, const Kel32fc* line) { return make_transposed<Iir32fc_16sc>(state, taps, order, line); }
KelStatus kelsIIRInitAlloc_64f     (KelIirContext** state, const Kel64f*  taps, int order, const Kel64f*  line) { return make_transposed<Iir_64f>     (state, taps, order, line); }
KelStatus kelsIIRInitAlloc_64fc    (KelIirContext** state, const Kel64fc* taps, int order, const Kel64fc* line) { return make_transposed<Iir_64fc>    (state, taps, order, line); }
KelStatus kelsIIRInitAlloc64f_32f  (KelIirContext** state, const Kel64f*  taps, int order, const Kel64f*  line) { return make_transposed<Iir64f_32f>  (state, taps, order, line); }
KelStatus kelsIIRInitAlloc64fc_32fc(KelIirContext** state, const Kel64fc* taps, int order, const Kel64fc* line) { return make_transposed<Iir64fc_32fc>(state, taps, order, line); }
KelStatus kelsIIRInitAlloc64f_32s  (KelIirContext** state, const Kel64f*  taps, int order, const Kel64f*  line) { return make_transposed<Iir64f_32s>  (state, taps, order, line); }
KelStatus kelsIIRInitAlloc64fc_32sc(KelIirContext** state, const Kel64fc* taps, int order, const Kel64fc* line) { return make_transposed<Iir64fc_32sc>(state, taps, order, line); }
KelStatus kelsIIRInitAlloc64f_16s  (KelIirContext** state, const Kel64f*  taps, int order, const Kel64f*  line) { return make_transposed<Iir64f_16s>  (state, taps, order, line); }
KelStatus kelsIIRInitAlloc64fc_16sc(KelIirContext** state, const Kel64fc* taps, int order, const Kel64fc* line) { return make_transposed<Iir64fc_16sc>(state, taps, order, line); }

KelStatus kelsIIRInitAlloc_BiQuad_32f     (KelIirContext** state, const Kel32f*  taps, int sections, const Kel32f*  line) { return make_cascade<Iir_32f>     (state, taps, sections, line); }
KelStatus kelsIIRInitAlloc_BiQuad_32fc    (KelIirContext** state, const Kel32fc* taps, int sections, const Kel32fc* line) { return make_cascade<Iir_32fc>    (state, taps, sections, line); }
KelStatus kelsIIRInitAlloc32f_BiQuad_16s  (KelIirContext** state, const Kel32f*  taps, int sections, const Kel32f*  line) { return make_cascade<Iir32f_16s>  (state, taps, sections, line); }
KelStatus kelsIIRInitAlloc32fc_BiQuad_16sc(KelIirContext** state, const Kel32fc* taps, int sections, const Kel32fc* line) { return make_cascade<Iir32fc_16sc>(state, taps, sections, line); }
KelStatus kelsIIRInitAlloc_BiQuad_64f     (KelIirContext** state, const Kel64f*  taps, int sections, const Kel64f*  line) { return make_cascade<Iir_64f>     (state, taps, sections, line); }
KelStatus kelsIIRInitAlloc_BiQuad_64fc    (KelIirContext** state, const Kel64fc* taps, int sections, const Kel64fc* line) { return make_cascade<Iir_64fc>    (state, taps, sections, line); }
KelStatus kelsIIRInitAlloc64f_BiQuad_32f  (KelIirContext** state, const Kel64f*  taps, int sections, const Kel64f*  line) { return make_cascade<Iir64f_32f>  (state, taps, sections, line); }
KelStatus kelsIIRInitAlloc64fc_BiQuad_32fc(KelIirContext** state, const Kel64fc* taps, int sections, const Kel64fc* line) { return make_cascade<Iir64fc_32fc>(state, taps, sections, line); }
KelStatus kelsIIRInitAlloc64f_BiQuad_32s  (KelIirContext** state, const Kel64f*  taps, int sections, const Kel64f*  line) { return make_cascade<Iir64f_32s>  (state, taps, sections, line); }
KelStatus kelsIIRInitAlloc64fc_BiQuad_32sc(KelIirContext** state, const Kel64fc* taps, int sections, const Kel64fc* line) { return make_cascade<Iir64fc_32sc>(state, taps, sections, line); }
KelStatus kelsIIRInitAlloc64f_BiQuad_16s  (KelIirContext** state, const Kel64f*  taps, int sections, const Kel64f*  line) { return make_cascade<Iir64f_16s>  (state, taps, sections, line); }
KelStatus kelsIIRInitAlloc64fc_BiQuad_16sc(KelIirContext** state, const Kel64fc* taps, int sections, const Kel64fc* line) { return make_cascade<Iir64fc_16sc>(state, taps, sections, line); }

KelStatus kelsIIRFree_32f     (KelIirContext* state) { return free_filter<Iir_32f>     (state); }
KelStatus kelsIIRFree_32fc    (KelIirContext* state) { return free_filter<Iir_32fc>    (state); }
KelStatus kelsIIRFree32f_16s  (KelIirContext* state) { return free_filter<Iir32f_16s>  (state); }
KelStatus kelsIIRFree32fc_16sc(KelIirContext* state) { return free_filter<Iir32fc_16sc>(state); }
KelStatus kelsIIRFree_64f     (KelIirContext* state) { return free_filter<Iir_64f>     (state); }
KelStatus kelsIIRFree_64fc    (KelIirContext* state) { return free_filter<Iir_64fc>    (state); }
KelStatus kelsIIRFree64f_32f  (KelIirContext* state) { return free_filter<Iir64f_32f>  (state); }
KelStatus kelsIIRFree64fc_32fc(KelIirContext* state) { return free_filter<Iir64fc_32fc>(state); }
KelStatus kelsIIRFree64f_32s  (KelIirContext* state) { return free_filter<Iir64f_32s>  (state); }
KelStatus kelsIIRFree64fc_32sc(KelIirContext* state) { return free_filter<Iir64fc_32sc>(state); }
KelStatus kelsIIRFree64f_16s  (KelIirContext* state) { return free_filter<Iir64f_16s>  (state); }
KelStatus kelsIIRFree64fc_16sc(KelIirContext* state) { return free_filter<Iir64fc_16sc>(state); }

KelStatus kelsIIRGetDlyLine_32f     (const KelIirContext* state, Kel32f*  line) { return get_delay_line<Iir_32f>     (state, line); }
KelStatus kelsIIRGetDlyLine_32fc    (const KelIirContext* state, Kel32fc* line) { return get_delay_line<Iir_32fc>    (state, line); }
KelStatus kelsIIRGetDlyLine32f_16s  (const KelIirContext* state, Kel32f*  line) { return get_delay_line<Iir32f_16s>  (state, line); }
KelStatus kelsIIRGetDlyLine32fc_16sc(const KelIirContext* state, Kel32fc* line) { return get_delay_line<Iir32fc_16sc>(state, line); }
KelStatus kelsIIRGetDlyLine_64f     (const KelIirContext* state, Kel64f*  line) { return get_delay_line<Iir_64f>     (state, line); }
KelStatus kelsIIRGetDlyLine_64fc    (const KelIirContext* state, Kel64fc* line) { return get_delay_line<Iir_64fc>    (state, line); }
KelStatus kelsIIRGetDlyLine64f_32f  (const KelIirContext* state, Kel64f*  line) { return get_delay_line<Iir64f_32f>  (state, line); }
KelStatus kelsIIRGetDlyLine64fc_32fc(const KelIirContext* state, Kel64fc* line) { return get_delay_line<Iir64fc_32fc>(state, line); }
KelStatus kelsIIRGetDlyLine64f_32s  (const KelIirContext* state, Kel64f*  line) { return get_delay_line<Iir64f_32s>  (state, line); }
KelStatus kelsIIRGetDlyLine64fc_32sc(const KelIirContext* state, Kel64fc* line) { return get_delay_line<Iir64fc_32sc>(state, line); }
KelStatus kelsIIRGetDlyLine64f_16s  (const KelIirContext* state, Kel64f*  line) { return get_delay_line<Iir64f_16s>  (state, line); }
KelStatus kelsIIRGetDlyLine64fc_16sc(const KelIirContext* state, Kel64fc* line) { return get_delay_line<Iir64fc_16sc>(state, line); }

KelStatus kelsIIRSetDlyLine_32f     (KelIirContext* state, const Kel32f*  line) { return set_delay_line<Iir_32f>     (state, line); }
KelStatus kelsIIRSetDlyLine_32fc    (KelIirContext* state, const Kel32fc* line) { return set_delay_line<Iir_32fc>    (state, line); }
KelStatus kelsIIRSetDlyLine32f_16s  (KelIirContext* state, const Kel32f*  line) { return set_delay_line<Iir32f_16s>  (state, line); }
KelStatus kelsIIRSetDlyLine32fc_16sc(KelIirContext* state, const Kel32fc* line) { return set_delay_line<Iir32fc_16sc>(state, line); }
KelStatus kelsIIRSetDlyLine_64f     (KelIirContext* state, const Kel64f*  line) { return set_delay_line<Iir_64f>     (state, line); }
KelStatus kelsIIRSetDlyLine_64fc    (KelIirContext* state, const Kel64fc* line) { return set_delay_line<Iir_64fc>    (state, line); }
KelStatus kelsIIRSetDlyLine64f_32f  (KelIirContext* state, const Kel64f*  line) { return set_delay_line<Iir64f_32f>  (state, line); }
KelStatus kelsIIRSetDlyLine64fc_32fc(KelIirContext* state, const Kel64fc* line) { return set_delay_line<Iir64fc_32fc>(state, line); }
KelStatus kelsIIRSetDlyLine64f_32s  (KelIirContext* state, const Kel64f*  line) { return set_delay_line<Iir64f_32s>  (state, line); }
KelStatus kelsIIRSetDlyLine64fc_32sc(KelIirContext* state, const Kel64fc* line) { return set_delay_line<Iir64fc_32sc>(state, line); }
KelStatus kelsIIRSetDlyLine64f_16s  (KelIirContext* state, const Kel64f*  line) { return set_delay_line<Iir64f_16s>  (state, line); }
KelStatus kelsIIRSetDlyLine64fc_16sc(KelIirContext* state, const Kel64fc* line) { return set_delay_line<Iir64fc_16sc>(state, line); }

KelStatus kelsIIR_32f         (const Kel32f*  src, Kel32f*  dst, int n, KelIirContext* state)            { return filter_block<Iir_32f>     (src, dst, n, state); }
KelStatus kelsIIR_32fc        (const Kel32fc* src, Kel32fc* dst, int n, KelIirContext* state)            { return filter_block<Iir_32fc>    (src, dst, n, state); }
KelStatus kelsIIR32f_16s_Sfs  (const Kel16s*  src, Kel16s*  dst, int n, KelIirContext* state, int scale) { return filter_block<Iir32f_16s>  (src, dst, n, state, scale); }
KelStatus kelsIIR32fc_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, int n, KelIirContext* state, int scale) { return filter_block<Iir32fc_16sc>(src, dst, n, state, scale); }
KelStatus kelsIIR_64f         (const Kel64f*  src, Kel64f*  dst, int n, KelIirContext* state)            { return filter_block<Iir_64f>     (src, dst, n, state); }
KelStatus kelsIIR_64fc        (const Kel64fc* src, Kel64fc* dst, int n, KelIirContext* state)            { return filter_block<Iir_64fc>    (src, dst, n, state); }
KelStatus kelsIIR64f_32f      (const Kel32f*  src, Kel32f*  dst, int n, KelIirContext* state)            { return filter_block<Iir64f_32f>  (src, dst, n, state); }
KelStatus kelsIIR64fc_32fc    (const Kel32fc* src, Kel32fc* dst, int n, KelIirContext* state)            { return filter_block<Iir64fc_32fc>(src, dst, n, state); }
KelStatus kelsIIR64f_32s_Sfs  (const Kel32s*  src, Kel32s*  dst, int n, KelIirContext* state, int scale) { return filter_block<Iir64f_32s>  (src, dst, n, state, scale); }
KelStatus kelsIIR64fc_32sc_Sfs(const Kel32sc* src, Kel32sc* dst, int n, KelIirContext* state, int scale) { return filter_block<Iir64fc_32sc>(src, dst, n, state, scale); }
KelStatus kelsIIR64f_16s_Sfs  (const Kel16s*  src, Kel16s*  dst, int n, KelIirContext* state, int scale) { return filter_block<Iir64f_16s>  (src, dst, n, state, scale); }
KelStatus kelsIIR64fc_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, int n, KelIirContext* state, int scale) { return filter_block<Iir64fc_16sc>(src, dst, n, state, scale); }

KelStatus kelsIIR_32f_I        (Kel32f*  x, int n, KelIirContext* state)            { return filter_in_place<Iir_32f>     (x, n, state); }
KelStatus kelsIIR_32fc_I       (Kel32fc* x, int n, KelIirContext* state)            { return filter_in_place<Iir_32fc>    (x, n, state); }
KelStatus kelsIIR32f_16s_ISfs  (Kel16s*  x, int n, KelIirContext* state, int scale) { return filter_in_place<Iir32f_16s>  (x, n, state, scale); }
KelStatus kelsIIR32fc_16sc_ISfs(Kel16sc* x, int n, KelIirContext* state, int scale) { return filter_in_place<Iir32fc_16sc>(x, n, state, scale); }
KelStatus kelsIIR_64f_I        (Kel64f*  x, int n, KelIirContext* state)            { return filter_in_place<Iir_64f>     (x, n, state); }
KelStatus kelsIIR_64fc_I       (Kel64fc* x, int n, KelIirContext* state)            { return filter_in_place<Iir_64fc>    (x, n, state); }
KelStatus kelsIIR64f_32f_I     (Kel32f*  x, int n, KelIirContext* state)            { return filter_in_place<Iir64f_32f>  (x, n, state); }
KelStatus kelsIIR64fc_32fc_I   (Kel32fc* x, int n, KelIirContext* state)            { return filter_in_place<Iir64fc_32fc>(x, n, state); }
KelStatus kelsIIR64f_32s_ISfs  (Kel32s*  x, int n, KelIirContext* state, int scale) { return filter_in_place<Iir64f_32s>  (x, n, state, scale); }
KelStatus kelsIIR64fc_32sc_ISfs(Kel32sc* x, int n, KelIirContext* state, int scale) { return filter_in_place<Iir64fc_32sc>(x, n, state, scale); }
KelStatus kelsIIR64f_16s_ISfs  (Kel16s*  x, int n, KelIirContext* state, int scale) { return filter_in_place<Iir64f_16s>  (x, n, state, scale); }
KelStatus kelsIIR64fc_16sc_ISfs(Kel16sc* x, int n, KelIirContext* state, int scale) { return filter_in_place<Iir64fc_16sc>(x, n, state, scale); }

KelStatus kelsIIROne_32f         (Kel32f  src, Kel32f*  dst, KelIirContext* state)            { return filter_one<Iir_32f>     (src, dst, state); }
KelStatus kelsIIROne_32fc        (Kel32fc src, Kel32fc* dst, KelIirContext* state)            { return filter_one<Iir_32fc>    (src, dst, state); }
KelStatus kelsIIROne32f_16s_Sfs  (Kel16s  src, Kel16s*  dst, KelIirContext* state, int scale) { return filter_one<Iir32f_16s>  (src, dst, state, scale); }
KelStatus kelsIIROne32fc_16sc_Sfs(Kel16sc src, Kel16sc* dst, KelIirContext* state, int scale) { return filter_one<Iir32fc_16sc>(src, dst, state, scale); }
KelStatus kelsIIROne_64f         (Kel64f  src, Kel64f*  dst, KelIirContext* state)            { return filter_one<Iir_64f>     (src, dst, state); }
KelStatus kelsIIROne_64fc        (Kel64fc src, Kel64fc* dst, KelIirContext* state)            { return filter_one<Iir_64fc>    (src, dst, state); }
KelStatus kelsIIROne64f_32f      (Kel32f  src, Kel32f*  dst, KelIirContext* state)            { return filter_one<Iir64f_32f>  (src, dst, state); }
KelStatus kelsIIROne64fc_32fc    (Kel32fc src, Kel32fc* dst, KelIirContext* state)            { return filter_one<Iir64fc_32fc>(src, dst, state); }
KelStatus kelsIIROne64f_32s_Sfs  (Kel32s  src, Kel32s*  dst, KelIirContext* state, int scale) { return filter_one<Iir64f_32s>  (src, dst, state, scale); }
KelStatus kelsIIROne64fc_32sc_Sfs(Kel32sc src, Kel32sc* dst, KelIirContext* state, int scale) { return filter_one<Iir64fc_32sc>(src, dst, state, scale); }
KelStatus kelsIIROne64f_16s_Sfs  (Kel16s  src, Kel16s*  dst, KelIirContext* state, int scale) { return filter_one<Iir64f_16s>  (src, dst, state, scale); }
KelStatus kelsIIROne64fc_16sc_Sfs(Kel16sc src, Kel16sc* dst, KelIirContext* state, int scale) { return filter_one<Iir64fc_16sc>(src, dst, state, scale); }
}
// clang-format on
