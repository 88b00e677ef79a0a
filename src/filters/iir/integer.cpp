// IIR filters of integer taps: taps that carry a power of two, given as such or found for real ones.

#include "kels/iir.h"

#include "filters/iir/calls.h"
#include "filters/iir/integer_taps.h"
#include "filters/iir/normalization.h"

namespace kels {
namespace {

/// The two ways to a filter's taps: of any order, and of sections.
template <class Family>
struct AnyOrder {
    using Form = TransposedForm<typename Family::Taps>;
    static constexpr Kel32u id = Family::transposed_id;
    static std::int64_t stored(int order) { return 2 * std::int64_t{order} + 1; }
    static constexpr auto divide = [](const auto&... arguments) { return divide_polynomials(arguments...); };
    static constexpr auto normalize = [](const auto&... arguments) { return normalize_polynomials(arguments...); };
};
template <class Family>
struct InSections {
    using Form = Cascade<typename Family::Taps>;
    static constexpr Kel32u id = Family::cascade_id;
    static std::int64_t stored(int sections) { return 4 * std::int64_t{sections} + 1; }
    static constexpr auto divide = [](const auto&... arguments) { return divide_sections(arguments...); };
    static constexpr auto normalize = [](const auto&... arguments) { return normalize_sections(arguments...); };
};

template <class Way, class Taps = typename Way::Form::Tap>
KelStatus make(KelIirContext** result, const Taps* taps, int size, int tapsFactor, const Taps* state) {
    return make_filter<typename Way::Form>(result, taps, Way::id, size, state, [=](auto& form) {
        form.set_taps_factor(tapsFactor);
        const auto put = [&](std::ptrdiff_t i, const Taps& tap) { form.put_tap(i, tap); };
        return Way::divide(taps, size, tapsFactor, put) ? kelStatusOk : kelStatusDivByZero;
    });
}

/// Real taps are normalized as singles, then become integers.
template <class Way, class RealTaps, class Taps = typename Way::Form::Tap>
KelStatus make_from_real(KelIirContext** result, const RealTaps* taps, int size, const Taps* state) {
    return make_filter<typename Way::Form>(result, taps, Way::id, size, state, [=](auto& form) {
        const std::int64_t stored = Way::stored(size);
        const auto normalized = make_owned_product<RealTaps>(stored, 1);
        if (!normalized) return kelStatusNoMemory;
        const auto keep = [&](std::ptrdiff_t i, const RealTaps& tap) { normalized.get()[i] = tap; };
        if (!Way::normalize(taps, size, keep)) return kelStatusDivByZero;
        const std::ptrdiff_t count = static_cast<std::ptrdiff_t>(stored) * parts<Taps>;
        const ValuesAsIntegers as_integer(reals(normalized.get()), count);
        form.set_taps_factor(as_integer.factor());
        for (std::ptrdiff_t i = 0; i < stored; ++i) {
            Taps tap;
            for (int part = 0; part < parts<Taps>; ++part)
                reals(&tap)[part] = as_integer(reals(normalized.get() + i)[part]);
            form.put_tap(i, tap);
        }
        return kelStatusOk;
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsIIRInitAlloc32s_16s  (KelIirContext** state, const Kel32s*  taps, int order, int factor, const Kel32s*  line) { return make<AnyOrder<Iir32s_16s>>  (state, taps, order, factor, line); }
KelStatus kelsIIRInitAlloc32sc_16sc(KelIirContext** state, const Kel32sc* taps, int order, int factor, const Kel32sc* line) { return make<AnyOrder<Iir32sc_16sc>>(state, taps, order, factor, line); }

KelStatus kelsIIRInitAlloc32s_BiQuad_16s  (KelIirContext** state, const Kel32s*  taps, int sections, int factor, const Kel32s*  line) { return make<InSections<Iir32s_16s>>  (state, taps, sections, factor, line); }
KelStatus kelsIIRInitAlloc32sc_BiQuad_16sc(KelIirContext** state, const Kel32sc* taps, int sections, int factor, const Kel32sc* line) { return make<InSections<Iir32sc_16sc>>(state, taps, sections, factor, line); }

KelStatus kelsIIRInitAlloc32s_16s32f   (KelIirContext** state, const Kel32f*  taps, int order, const Kel32s*  line) { return make_from_real<AnyOrder<Iir32s_16s>>  (state, taps, order, line); }
KelStatus kelsIIRInitAlloc32sc_16sc32fc(KelIirContext** state, const Kel32fc* taps, int order, const Kel32sc* line) { return make_from_real<AnyOrder<Iir32sc_16sc>>(state, taps, order, line); }

KelStatus kelsIIRInitAlloc32s_BiQuad_16s32f   (KelIirContext** state, const Kel32f*  taps, int sections, const Kel32s*  line) { return make_from_real<InSections<Iir32s_16s>>  (state, taps, sections, line); }
KelStatus kelsIIRInitAlloc32sc_BiQuad_16sc32fc(KelIirContext** state, const Kel32fc* taps, int sections, const Kel32sc* line) { return make_from_real<InSections<Iir32sc_16sc>>(state, taps, sections, line); }

KelStatus kelsIIRFree32s_16s  (KelIirContext* state) { return free_filter<Iir32s_16s>  (state); }
KelStatus kelsIIRFree32sc_16sc(KelIirContext* state) { return free_filter<Iir32sc_16sc>(state); }

KelStatus kelsIIRGetDlyLine32s_16s  (const KelIirContext* state, Kel32s*  line) { return get_delay_line<Iir32s_16s>  (state, line); }
KelStatus kelsIIRGetDlyLine32sc_16sc(const KelIirContext* state, Kel32sc* line) { return get_delay_line<Iir32sc_16sc>(state, line); }

KelStatus kelsIIRSetDlyLine32s_16s  (KelIirContext* state, const Kel32s*  line) { return set_delay_line<Iir32s_16s>  (state, line); }
KelStatus kelsIIRSetDlyLine32sc_16sc(KelIirContext* state, const Kel32sc* line) { return set_delay_line<Iir32sc_16sc>(state, line); }

KelStatus kelsIIR32s_16s_Sfs  (const Kel16s*  src, Kel16s*  dst, int n, KelIirContext* state, int scale) { return filter_block<Iir32s_16s>  (src, dst, n, state, scale); }
KelStatus kelsIIR32sc_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, int n, KelIirContext* state, int scale) { return filter_block<Iir32sc_16sc>(src, dst, n, state, scale); }

KelStatus kelsIIR32s_16s_ISfs  (Kel16s*  x, int n, KelIirContext* state, int scale) { return filter_in_place<Iir32s_16s>  (x, n, state, scale); }
KelStatus kelsIIR32sc_16sc_ISfs(Kel16sc* x, int n, KelIirContext* state, int scale) { return filter_in_place<Iir32sc_16sc>(x, n, state, scale); }

KelStatus kelsIIROne32s_16s_Sfs  (Kel16s  src, Kel16s*  dst, KelIirContext* state, int scale) { return filter_one<Iir32s_16s>  (src, dst, state, scale); }
KelStatus kelsIIROne32sc_16sc_Sfs(Kel16sc src, Kel16sc* dst, KelIirContext* state, int scale) { return filter_one<Iir32sc_16sc>(src, dst, state, scale); }
}
// clang-format on
