// FIR filters with a state, of integer taps: taps that carry a power of two, given as such or found for real ones.

#include "kels/fir.h"

#include "filters/fir/calls.h"
#include "frame/modes.h"

#include <optional>

namespace kels {
namespace {

constexpr std::nullopt_t no_rates = std::nullopt;

/// Real taps become integers, and those the taps of a filter of either rate.
template <class Family>
KelStatus make_from_real(KelFirContext** result, const auto* taps, int tapsLen, const std::optional<Rates>& rates,
                         const typename Family::Sample* newest_first) {
    using Taps = typename Family::Taps;
    const bool leaves_result_to_integers = Family::complex && rates;
    if (!taps || (!result && !leaves_result_to_integers)) return kelStatusNullPtr;
    if (tapsLen < 1) return kelStatusBadFirLength;
    const ModesOfCreation modes;
    const auto integers = make_owned<Taps>(static_cast<std::size_t>(tapsLen));
    if (!integers) return kelStatusNoMemory;
    const Kel32f* values = reals(taps);
    const std::ptrdiff_t count = std::ptrdiff_t{tapsLen} * parts<Taps>;
    const TapsAsIntegers as_integer(values, count);
    std::transform(values, values + count, reals(integers.get()), as_integer);
    return rates ? make_multi_rate<Family>(result, integers.get(), tapsLen, as_integer.factor(), *rates, newest_first)
                 : make_single_rate<Family>(result, integers.get(), tapsLen, as_integer.factor(), newest_first);
}

template <class Family>
KelStatus get_reduced_taps(const KelFirContext* context, typename Family::Taps* out, int* tapsFactor) {
    return with_context<Family>(context, !out || !tapsFactor, [=](const FirContext<Family>& own) {
        *tapsFactor = own.tapsFactor;
        return get_taps<Family>(context, out);
    });
}

template <class Family>
KelStatus get_real_taps(const KelFirContext* context, auto* out) {
    return with_context<Family>(context, !out, [=](const FirContext<Family>& own) {
        const Kel32f power = power_of_two_modulo_128<Kel32f>(own.tapsFactor);
        const Kel32s* values = reals(own.taps.get());
        std::transform(values, values + std::ptrdiff_t{own.tapsLen} * parts<typename Family::Taps>, reals(out),
                       [=](Kel32s tap) { return static_cast<Kel32f>(tap) * power; });
        return kelStatusOk;
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsFIRInitAlloc32s_16s  (KelFirContext** state, const Kel32s*  taps, int len, int factor, const Kel16s*  line) { return make_single_rate<Fir32s_16s>  (state, taps, len, factor, line); }
KelStatus kelsFIRInitAlloc32sc_16sc(KelFirContext** state, const Kel32sc* taps, int len, int factor, const Kel16sc* line) { return make_single_rate<Fir32sc_16sc>(state, taps, len, factor, line); }

KelStatus kelsFIRMRInitAlloc32s_16s  (KelFirContext** state, const Kel32s*  taps, int len, int factor, int up, int upAt, int down, int downAt, const Kel16s*  line) { return make_multi_rate<Fir32s_16s>  (state, taps, len, factor, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMRInitAlloc32sc_16sc(KelFirContext** state, const Kel32sc* taps, int len, int factor, int up, int upAt, int down, int downAt, const Kel16sc* line) { return make_multi_rate<Fir32sc_16sc>(state, taps, len, factor, {up, upAt, down, downAt}, line); }

KelStatus kelsFIRInitAlloc32s_16s32f   (KelFirContext** state, const Kel32f*  taps, int len, const Kel16s*  line) { return make_from_real<Fir32s_16s>  (state, taps, len, no_rates, line); }
KelStatus kelsFIRInitAlloc32sc_16sc32fc(KelFirContext** state, const Kel32fc* taps, int len, const Kel16sc* line) { return make_from_real<Fir32sc_16sc>(state, taps, len, no_rates, line); }

KelStatus kelsFIRMRInitAlloc32s_16s32f   (KelFirContext** state, const Kel32f*  taps, int len, int up, int upAt, int down, int downAt, const Kel16s*  line) { return make_from_real<Fir32s_16s>  (state, taps, len, Rates{up, upAt, down, downAt}, line); }
KelStatus kelsFIRMRInitAlloc32sc_16sc32fc(KelFirContext** state, const Kel32fc* taps, int len, int up, int upAt, int down, int downAt, const Kel16sc* line) { return make_from_real<Fir32sc_16sc>(state, taps, len, Rates{up, upAt, down, downAt}, line); }

KelStatus kelsFIRGetTaps32s_16s  (const KelFirContext* state, Kel32s*  taps, int* factor) { return get_reduced_taps<Fir32s_16s>  (state, taps, factor); }
KelStatus kelsFIRGetTaps32sc_16sc(const KelFirContext* state, Kel32sc* taps, int* factor) { return get_reduced_taps<Fir32sc_16sc>(state, taps, factor); }

KelStatus kelsFIRGetTaps32s_16s32f   (const KelFirContext* state, Kel32f*  taps) { return get_real_taps<Fir32s_16s>  (state, taps); }
KelStatus kelsFIRGetTaps32sc_16sc32fc(const KelFirContext* state, Kel32fc* taps) { return get_real_taps<Fir32sc_16sc>(state, taps); }

KelStatus kelsFIRFree32s_16s  (KelFirContext* state) { return free_context<Fir32s_16s>  (state); }
KelStatus kelsFIRFree32sc_16sc(KelFirContext* state) { return free_context<Fir32sc_16sc>(state); }

KelStatus kelsFIRGetDlyLine32s_16s  (const KelFirContext* state, Kel16s*  line) { return get_delay_line<Fir32s_16s>  (state, line); }
KelStatus kelsFIRGetDlyLine32sc_16sc(const KelFirContext* state, Kel16sc* line) { return get_delay_line<Fir32sc_16sc>(state, line); }

KelStatus kelsFIRSetDlyLine32s_16s  (KelFirContext* state, const Kel16s*  line) { return set_delay_line<Fir32s_16s>  (state, line); }
KelStatus kelsFIRSetDlyLine32sc_16sc(KelFirContext* state, const Kel16sc* line) { return set_delay_line<Fir32sc_16sc>(state, line); }

KelStatus kelsFIR32s_16s_Sfs  (const Kel16s*  src, Kel16s*  dst, int n, KelFirContext* state, int scale) { return filter_block<Fir32s_16s>  (src, dst, n, state, scale); }
KelStatus kelsFIR32sc_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, int n, KelFirContext* state, int scale) { return filter_block<Fir32sc_16sc>(src, dst, n, state, scale); }

KelStatus kelsFIR32s_16s_ISfs  (Kel16s*  x, int n, KelFirContext* state, int scale) { return filter_in_place<Fir32s_16s>  (x, n, state, scale); }
KelStatus kelsFIR32sc_16sc_ISfs(Kel16sc* x, int n, KelFirContext* state, int scale) { return filter_in_place<Fir32sc_16sc>(x, n, state, scale); }

KelStatus kelsFIROne32s_16s_Sfs  (Kel16s  src, Kel16s*  dst, KelFirContext* state, int scale) { return filter_one<Fir32s_16s>  (src, dst, state, scale); }
KelStatus kelsFIROne32sc_16sc_Sfs(Kel16sc src, Kel16sc* dst, KelFirContext* state, int scale) { return filter_one<Fir32sc_16sc>(src, dst, state, scale); }
}
// clang-format on
