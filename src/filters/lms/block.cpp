// Adaptive filters with a context: blocks of samples.
//
// Taps and samples are kept as doubles that hold singles or 16-bit integers. The delay line is a stretch of the stream,
// so that windows are loaded from where samples were stored long before; when it is full, the last window moves to its
// front. A sample's update and the next sample's sum are one pass over the taps.
//
// What bounds a short filter is the way from an error to the next: product, sum, the tap's rounding to single and back,
// product, the sum over the lanes. What bounds a long one is the rounding, two conversions a vector of taps.

#include "kels/lms.h"

#include "filters/lms/sums.h"
#include "frame/calling_frame.h"
#include "frame/modes.h"
#include "frame/record.h"

#include <algorithm>

/// The taps, the last first, fill whole vectors from behind; before them stand zeros.
struct KelLmsContext {
    Kel32u id = 0;
    int tapsLen = 0;
    int index = 0; ///< what the caller's ring would have
    int start = 0; ///< of the window in the line
    int room = 0;  ///< of the line
    kels::Owned<Kel64f> taps_and_padding, line_and_padding;

    int padding() const { return -tapsLen & (kels::lms_lanes - 1); }
    Kel64f* taps() const { return taps_and_padding.get() + padding(); }
    Kel64f* line() const { return line_and_padding.get() + kels::lms_lanes; }
    Kel64f* window() const { return line() + start; }
};

namespace kels {
namespace {

using Context = KelLmsContext;

template <class Sample>
constexpr Kel32u id_of_family = std::is_same_v<Sample, Kel32f> ? 0x4C4D5331 : 0x004C4D53;

/// Samples that a line takes before its window has to move.
constexpr int stretch(int tapsLen) { return std::max(tapsLen, 1024); }

// One step

/// The sum of the window, or, given the error, the taps adapted to the window and the sum of the next one. That one is
/// put together from samples at hand: loads that cross a line of the cache are what there is most of.
template <bool adapts>
Kel64f sum_of_window(const Context& context, const Kel64f* window, Kel64f error) {
    Kel64f* taps = context.taps_and_padding.get();
    const Index padding = context.padding(), end = padding + context.tapsLen;
    window -= padding;
    LmsLanes sum{}, ahead = load<LmsLanes>(window);
    const auto block = [&](Index i, auto keep) KELS_INLINE {
        LmsLanes tap = load<LmsLanes>(taps + i), met = ahead;
        if constexpr (adapts) {
            ahead = load<LmsLanes>(window + i + lms_lanes);
            tap = keep(rounded_to_single(adapted(tap, keep(met), error))); // an infinite error makes NaNs of zeros
            store(taps + i, tap);
            met = shuffle<[](int lane) { return lane + 1; }>(met, ahead);
        } else {
            met = load<LmsLanes>(window + i);
        }
        sum = fma(tap, keep(met), sum);
    };
    block(0, LastLanes<lms_lanes>{lms_lanes - padding});
    for (Index i = lms_lanes; i < end; i += lms_lanes) block(i, AllLanes{});
    return sum_of_lanes(sum);
}

/// Samples that stand in the line, from the one that follows the window on.
template <class Sample>
void filter_line(Context& context, const Sample* ref, Sample* dst, int count, Kel32f mu) {
    const Kel64f* window = context.window() + 1;
    Kel64f output = sum_of_window<false>(context, window, 0);
    for (int i = 0; i < count; ++i, ++window) {
        const Kel64f error = lms_error(ref[i], output, mu);
        dst[i] = lms_sample<Sample>(output);
        output = sum_of_window<true>(context, window, error);
    }
}

template <class Sample>
KelStatus filter_block(const Sample* src, const Sample* ref, Sample* dst, int len, Kel32f mu, Context* context) {
    if (!src || !ref || !dst || !context) return kelStatusNullPtr;
    if (len < 1) return kelStatusBadSize;
    return with_record<Context>(context, id_of_family<Sample>, false, [=](Context& own) {
        for (int done = 0, count; done < len; done += count) {
            if (own.start + own.tapsLen == own.room) {
                std::copy_n(own.window(), own.tapsLen, own.line());
                own.start = 0;
            }
            count = std::min(len - done, own.room - own.start - own.tapsLen);
            std::copy_n(src + done, count, own.window() + own.tapsLen);
            filter_line(own, ref + done, dst + done, count, mu);
            own.start += count;
            own.index = static_cast<int>((Kel64s{own.index} + count) % own.tapsLen);
        }
        return kelStatusOk;
    });
}

// Taps and delay line

/// Calls f(place in the window, place in the ring).
template <class F>
void each_place(const Context& context, F f) {
    for (int i = 0, at = context.index; i < context.tapsLen; ++i) {
        f(context.window()[i], at);
        if (++at == context.tapsLen) at = 0;
    }
}

bool is_index(const Context& context, int index) { return index >= 0 && index < context.tapsLen; }

template <class Sample>
void put_line(Context& context, const Sample* ring, int index) {
    context.start = 0;
    context.index = index;
    each_place(context, [=](Kel64f& sample, int at) { sample = ring ? ring[at] : Sample{0}; });
}

template <class Sample>
KelStatus set_line(Context* context, const Sample* ring, int index) {
    return with_record<Context>(context, id_of_family<Sample>, false, [=](Context& own) {
        if (!is_index(own, index)) return kelStatusBadDlyLineIndex;
        put_line(own, ring, index);
        return kelStatusOk;
    });
}

template <class Sample>
KelStatus get_line(const Context* context, Sample* ring, int* index) {
    return with_record<Context>(context, id_of_family<Sample>, !ring || !index, [=](const Context& own) {
        each_place(own, [=](Kel64f sample, int at) { ring[at] = static_cast<Sample>(sample); });
        *index = own.index;
        return kelStatusOk;
    });
}

template <class Sample>
KelStatus get_taps(const Context* context, Kel32f* taps) {
    return with_record<Context>(context, id_of_family<Sample>, !taps, [=](const Context& own) {
        std::reverse_copy(own.taps(), own.taps() + own.tapsLen, taps);
        return kelStatusOk;
    });
}

// Life

template <class Sample>
KelStatus make(Context** result, const Kel32f* taps, int tapsLen, const Sample* ring, int index) {
    if (!result) return kelStatusNullPtr;
    if (tapsLen < 1) return kelStatusBadSize;
    if (index < 0 || index >= tapsLen) return kelStatusBadDlyLineIndex;
    auto context = make_record<Context>(id_of_family<Sample>);
    if (!context) return kelStatusNoMemory;
    context->tapsLen = tapsLen;
    const Kel64s all_taps = Kel64s{tapsLen} + context->padding(), room = Kel64s{tapsLen} + stretch(tapsLen);
    const Kel64s all_samples = lms_lanes + room + lms_lanes; // what is read behind the last window comes to nothing
    context->taps_and_padding = make_owned_product<Kel64f>(all_taps, 1);
    context->line_and_padding = make_owned_product<Kel64f>(all_samples, 1);
    if (!context->taps_and_padding || !context->line_and_padding) return kelStatusNoMemory;
    std::fill_n(context->taps_and_padding.get(), all_taps, 0);
    std::fill_n(context->line_and_padding.get(), all_samples, 0);
    context->room = static_cast<int>(room);
    if (taps) std::reverse_copy(taps, taps + tapsLen, context->taps());
    put_line(*context, ring, index);
    *result = context.release();
    return kelStatusOk;
}

KelStatus release(Context* context) {
    if (context) DeleteRecord{}(context);
    return kelStatusOk;
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsFIRLMSInitAlloc_32f   (KelLmsContext** state, const Kel32f* taps, int len, const Kel32f* line, int index) { return make(state, taps, len, line, index); }
KelStatus kelsFIRLMSInitAlloc32f_16s(KelLmsContext** state, const Kel32f* taps, int len, const Kel16s* line, int index) { return make(state, taps, len, line, index); }

KelStatus kelsFIRLMSFree_32f   (KelLmsContext* state) { return release(state); }
KelStatus kelsFIRLMSFree32f_16s(KelLmsContext* state) { return release(state); }

KelStatus kelsFIRLMSGetTaps_32f   (const KelLmsContext* state, Kel32f* taps) { return get_taps<Kel32f>(state, taps); }
KelStatus kelsFIRLMSGetTaps32f_16s(const KelLmsContext* state, Kel32f* taps) { return get_taps<Kel16s>(state, taps); }

KelStatus kelsFIRLMSGetDlyLine_32f   (const KelLmsContext* state, Kel32f* line, int* index) { return get_line(state, line, index); }
KelStatus kelsFIRLMSGetDlyLine32f_16s(const KelLmsContext* state, Kel16s* line, int* index) { return get_line(state, line, index); }

KelStatus kelsFIRLMSSetDlyLine_32f   (KelLmsContext* state, const Kel32f* line, int index) { return set_line(state, line, index); }
KelStatus kelsFIRLMSSetDlyLine32f_16s(KelLmsContext* state, const Kel16s* line, int index) { return set_line(state, line, index); }

KelStatus kelsFIRLMS_32f   (const Kel32f* src, const Kel32f* ref, Kel32f* dst, int len, Kel32f mu, KelLmsContext* state) { return filter_block(src, ref, dst, len, mu, state); }
KelStatus kelsFIRLMS32f_16s(const Kel16s* src, const Kel16s* ref, Kel16s* dst, int len, Kel32f mu, KelLmsContext* state) { return filter_block(src, ref, dst, len, mu, state); }
}
// clang-format on
