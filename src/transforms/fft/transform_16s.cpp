// Transforms of 16-bit data, by the engine that the plan has chosen.
//
// In fixed point a sample is a word of 32 bits, the sample times 2^(16 - order): a transform grows its values by at
// most 2^order in each part of a real one. Sums wrap and products are rounded down; results are rounded once more, to
// nearest with ties upward, when they are shifted to 16 bits, by the scale factor and the plan's normalisation.
//
// In floating point samples are converted, transformed by the single-precision plan in the work buffer, and converted
// back with the scale factor, ties to even. A single point takes no part in either and is only scaled.

#include "frame/blocks.h"
#include "kels/conversion.h"
#include "transforms/fft/fixed_point.h"
#include "transforms/fft/fixed_recombination.h"
#include "transforms/fft/plan_16s.h"
#include "transforms/packed_spectrum.h"

namespace kels {
namespace {

using Plan = KelsFftPlan_16s;

/// Bits that samples gain as words.
constexpr int headroom(int order) { return 16 - order; }

// Fixed point: words of a transform and their work space, on the stack.

class FixedWork {
public:
    FixedPoints points() { return {words_[0], words_[1]}; }
    FixedPoints work() { return {words_[2], words_[3]}; }

private:
    static constexpr int room = (1 << top_fixed_order) + 16; // one point stands behind the others
    alignas(64) Kel32u words_[4][room];
};

/// Where the points of a transform go: as they come, or point i to place n - i, which makes the inverse transform of
/// the forward one. Point 0 has two places then, and the words one more.
template <bool inverse>
struct Placed {
    FixedPoints words;
    Index count;

    template <class V>
    [[gnu::always_inline]] void put(Kel32u* part, Index i, V v) const {
        if constexpr (inverse)
            store(part + count - i - (lanes<V> - 1), reverse(v));
        else
            store(part + i, v);
    }
    void finish() const {
        if (!inverse) return;
        words.re[0] = words.re[count];
        words.im[0] = words.im[count];
    }
};

/// Complex points in two arrays.
template <class T>
struct SplitSamples {
    T *re, *im;

    template <bool inverse>
    void widen_to(Placed<inverse> points, int shift) const {
        for (const bool imaginary : {false, true}) {
            Kel32u* part = imaginary ? points.words.im : points.words.re;
            each_block<Kel32u>(
                points.count,
                [&, from = imaginary ? im : re](auto width, Index i) KELS_INLINE {
                    return (Words<width>)convert<Kel32s>(block<width>(from, i)) << splat<Words<width>>(shift);
                },
                [&](auto, Index i, auto v) KELS_INLINE { points.put(part, i, v); });
        }
        points.finish();
    }
    template <class Convert>
    void narrow_from(FixedPoints words, int count, const Convert& convert) const {
        map_blocks(re, count, convert, static_cast<const Kel32u*>(words.re));
        map_blocks(im, count, convert, static_cast<const Kel32u*>(words.im));
    }
};

/// Complex points with their parts side by side: a pair fills a word, the real part below.
template <class T>
struct InterleavedSamples {
    T* parts;

    template <bool inverse>
    void widen_to(Placed<inverse> points, int shift) const {
        if (points.count == 0) return;
        each_block<Kel32u>(
            points.count,
            [&](auto width, Index i) KELS_INLINE {
                using V = Words<width>;
                const V pairs = load<V>(parts + 2 * i), upper = splat<V>(0xFFFF0000U);
                return Complex<V>{shifted_down(pairs << splat<V>(16U), 16 - shift),
                                  shifted_down(pairs & upper, 16 - shift)};
            },
            [&](auto, Index i, auto z) KELS_INLINE {
                points.put(points.words.re, i, z.re);
                points.put(points.words.im, i, z.im);
            });
        points.finish();
    }
    template <class Convert>
    void narrow_from(FixedPoints words, int count, const Convert& convert) const {
        if (count == 0) return;
        each_block<Kel32u>(
            count,
            [&, re = words.re, im = words.im](auto width, Index i) KELS_INLINE {
                using V = Words<width>;
                return zip(convert(load<V>(re + i)), convert(load<V>(im + i)));
            },
            [to = parts](auto, Index i, auto pairs) KELS_INLINE { store(to + 2 * i, pairs); });
    }
};

/// Bits from a word of the transform to a sample.
std::int64_t output_shift(const Plan& plan, bool inverse, int scaleFactor) {
    return std::int64_t{scaleFactor} + (inverse ? plan.shiftInv : plan.shiftFwd) + headroom(plan.order);
}

template <bool inverse, class Source, class Result>
void complex_in_fixed_point(const Plan& plan, Source src, Result dst, int scaleFactor) {
    const int points = 1 << plan.order;
    FixedWork memory;
    src.widen_to(Placed<inverse>{memory.points(), points}, headroom(plan.order));
    const FixedPoints bins = fixed_transform(plan.fixed_tables, plan.order, memory.points(), memory.work());
    with_samples(output_shift(plan, inverse, scaleFactor), plan.oddSqrt,
                 [&](const auto& convert) { dst.narrow_from(bins, points, convert); });
}

/// One word as a sample.
template <class Convert>
Kel16s sample(const Convert& convert, Kel32u word) {
    return convert(word);
}

template <Layout layout>
void real_forward_in_fixed_point(const Plan& plan, const Kel16s* src, Kel16s* dst, int scaleFactor) {
    const int points = 1 << plan.order, pairs = points / 2;
    FixedWork memory;
    InterleavedSamples<const Kel16s>{src}.widen_to(Placed<false>{memory.points(), pairs}, headroom(plan.order));
    const FixedPoints bins = fixed_transform(plan.fixed_tables, plan.order - 1, memory.points(), memory.work());
    if (pairs > 1) recombine_fixed<false>(plan.recombination, plan.order, bins);
    with_samples(output_shift(plan, false, scaleFactor), plan.oddSqrt, [&](const auto& convert) {
        InterleavedSamples<Kel16s>{dst + first_complex(layout, points)}.narrow_from({bins.re + 1, bins.im + 1},
                                                                                    pairs - 1, convert);
        dst[0] = sample(convert, bins.re[0] + bins.im[0]);
        dst[nyquist(layout, points)] = sample(convert, bins.re[0] - bins.im[0]);
    });
    if (layout == Layout::ccs) dst[1] = dst[points + 1] = 0;
}

template <Layout layout>
void real_inverse_in_fixed_point(const Plan& plan, const Kel16s* src, Kel16s* dst, int scaleFactor) {
    const int points = 1 << plan.order, pairs = points / 2;
    FixedWork memory;
    const FixedPoints words = memory.points();
    InterleavedSamples<const Kel16s>{src + first_complex(layout, points)}.widen_to(
        Placed<false>{{words.re + 1, words.im + 1}, pairs - 1}, headroom(plan.order));
    const int first = src[0], middle = src[nyquist(layout, points)];
    words.re[0] = static_cast<Kel32u>(first + middle) << headroom(plan.order);
    words.im[0] = static_cast<Kel32u>(first - middle) << headroom(plan.order);
    if (pairs > 1) recombine_fixed<true>(plan.recombination, plan.order, words);
    const FixedPoints samples = fixed_transform(plan.fixed_tables, plan.order - 1, words, memory.work());
    with_samples(output_shift(plan, true, scaleFactor), plan.oddSqrt,
                 [&](const auto& convert) { InterleavedSamples<Kel16s>{dst}.narrow_from(samples, pairs, convert); });
}

// Floating point: the data stand at the start of the work buffer, that of the nested plan behind them.

class FloatWork {
public:
    FloatWork(const Plan& plan, Kel8u* buffer)
        : owned_(buffer ? nullptr : make_owned<Kel8u>(static_cast<std::size_t>(plan.workBytes))),
          start_(buffer ? buffer : owned_.get()) {
        start_ += -reinterpret_cast<std::uintptr_t>(start_) & 15;
    }
    explicit operator bool() const { return start_; }
    Kel32f* data() const { return reinterpret_cast<Kel32f*>(start_); }
    /// What lies behind so many values.
    Kel8u* behind(std::size_t values) const { return start_ + values * sizeof(Kel32f); }

private:
    Owned<Kel8u> owned_;
    Kel8u* start_;
};

/// Runs call(data, buffer of the nested plan) between the conversions of `read` values and of `written` ones.
template <class Call>
KelStatus in_floating_point(const Plan& plan, Kel8u* buffer, const Kel16s* src, int read, Kel16s* dst, int written,
                            int scaleFactor, const Call& call) {
    const FloatWork work(plan, buffer);
    if (!work) return kelStatusNoMemory;
    kelsConvert_16s32f(src, work.data(), read);
    const std::size_t room = static_cast<std::size_t>(std::max(read, written));
    if (const KelStatus status = call(work.data(), work.behind(room))) return status;
    return kelsConvert_32f16s_Sfs(work.data(), dst, written, kelRndNear, scaleFactor);
}

// A single point

Kel16s scaled_sample(Kel16s x, int scaleFactor) {
    Kel16s result = 0;
    with_samples(scaleFactor, false,
                 [&](const auto& convert) { result = sample(convert, static_cast<Kel32u>(Kel32s{x})); });
    return result;
}

// Operations

template <bool inverse>
KelStatus interleaved(const Kel16sc* pSrc, Kel16sc* pDst, const Plan* plan, int scaleFactor, Kel8u* buffer) {
    if (const KelStatus status = check_record(plan, plan_C_16sc)) return status;
    if (!pSrc || !pDst) return kelStatusNullPtr;
    const Kel16s* src = reals(pSrc);
    Kel16s* dst = reals(pDst);
    const int values = 2 << plan->order;
    if (plan->order == 0) {
        *pDst = {scaled_sample(pSrc->re, scaleFactor), scaled_sample(pSrc->im, scaleFactor)};
    } else if (plan->fixedPath) {
        complex_in_fixed_point<inverse>(*plan, InterleavedSamples<const Kel16s>{src}, InterleavedSamples<Kel16s>{dst},
                                        scaleFactor);
    } else {
        return in_floating_point(
            *plan, buffer, src, values, dst, values, scaleFactor, [&](Kel32f* data, Kel8u* nested) {
                auto* z = reinterpret_cast<Kel32fc*>(data);
                return (inverse ? kelsFFTInv_CToC_32fc : kelsFFTFwd_CToC_32fc)(z, z, plan->pFloatPlan.get(), nested);
            });
    }
    return kelStatusOk;
}

template <bool inverse>
KelStatus split(const Kel16s* srcRe, const Kel16s* srcIm, Kel16s* dstRe, Kel16s* dstIm, const Plan* plan,
                int scaleFactor, Kel8u* buffer) {
    if (const KelStatus status = check_record(plan, plan_C_16s)) return status;
    if (!srcRe || !srcIm || !dstRe || !dstIm) return kelStatusNullPtr;
    const int points = 1 << plan->order;
    if (plan->order == 0) {
        const Kel16s re = scaled_sample(*srcRe, scaleFactor), im = scaled_sample(*srcIm, scaleFactor);
        *dstRe = re;
        *dstIm = im;
    } else if (plan->fixedPath) {
        complex_in_fixed_point<inverse>(*plan, SplitSamples<const Kel16s>{srcRe, srcIm},
                                        SplitSamples<Kel16s>{dstRe, dstIm}, scaleFactor);
    } else {
        const FloatWork work(*plan, buffer);
        if (!work) return kelStatusNoMemory;
        Kel32f *re = work.data(), *im = re + points;
        kelsConvert_16s32f(srcRe, re, points);
        kelsConvert_16s32f(srcIm, im, points);
        const KelStatus status = (inverse ? kelsFFTInv_CToC_32f : kelsFFTFwd_CToC_32f)(
            re, im, re, im, plan->pFloatPlan.get(), work.behind(2 * static_cast<std::size_t>(points)));
        if (status) return status;
        kelsConvert_32f16s_Sfs(re, dstRe, points, kelRndNear, scaleFactor);
        kelsConvert_32f16s_Sfs(im, dstIm, points, kelRndNear, scaleFactor);
    }
    return kelStatusOk;
}

/// The single-precision transform of a layout.
template <Layout layout, bool inverse>
constexpr auto float_transform = inverse ? (layout == Layout::perm   ? kelsFFTInv_PermToR_32f
                                            : layout == Layout::pack ? kelsFFTInv_PackToR_32f
                                                                     : kelsFFTInv_CCSToR_32f)
                                         : (layout == Layout::perm   ? kelsFFTFwd_RToPerm_32f
                                            : layout == Layout::pack ? kelsFFTFwd_RToPack_32f
                                                                     : kelsFFTFwd_RToCCS_32f);

template <Layout layout, bool inverse>
KelStatus real(const Kel16s* src, Kel16s* dst, const Plan* plan, int scaleFactor, Kel8u* buffer) {
    if (const KelStatus status = check_record(plan, plan_R_16s)) return status;
    if (!src || !dst) return kelStatusNullPtr;
    constexpr bool ccs = layout == Layout::ccs;
    const int points = 1 << plan->order;
    if (plan->order == 0) {
        dst[0] = scaled_sample(src[0], scaleFactor);
        if (ccs && !inverse) dst[1] = 0;
    } else if (!plan->fixedPath) {
        // The inverse does not read the last value of CCS.
        const int read = ccs && inverse ? points + 1 : points, written = ccs && !inverse ? points + 2 : points;
        return in_floating_point(*plan, buffer, src, read, dst, written, scaleFactor, [&](Kel32f* data, Kel8u* nested) {
            return float_transform<layout, inverse>(data, data, plan->pFloatPlan.get(), nested);
        });
    } else if (inverse) {
        real_inverse_in_fixed_point<layout>(*plan, src, dst, scaleFactor);
    } else {
        real_forward_in_fixed_point<layout>(*plan, src, dst, scaleFactor);
    }
    return kelStatusOk;
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsFFTFwd_CToC_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, const KelsFftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return interleaved<false>(src, dst, plan, scaleFactor, buffer); }
KelStatus kelsFFTInv_CToC_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, const KelsFftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return interleaved<true>(src, dst, plan, scaleFactor, buffer); }

KelStatus kelsFFTFwd_CToC_16s_Sfs(const Kel16s* srcRe, const Kel16s* srcIm, Kel16s* dstRe, Kel16s* dstIm, const KelsFftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return split<false>(srcRe, srcIm, dstRe, dstIm, plan, scaleFactor, buffer); }
KelStatus kelsFFTInv_CToC_16s_Sfs(const Kel16s* srcRe, const Kel16s* srcIm, Kel16s* dstRe, Kel16s* dstIm, const KelsFftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return split<true>(srcRe, srcIm, dstRe, dstIm, plan, scaleFactor, buffer); }

KelStatus kelsFFTFwd_RToPerm_16s_Sfs(const Kel16s* src, Kel16s* dst, const KelsFftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return real<Layout::perm, false>(src, dst, plan, scaleFactor, buffer); }
KelStatus kelsFFTFwd_RToPack_16s_Sfs(const Kel16s* src, Kel16s* dst, const KelsFftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return real<Layout::pack, false>(src, dst, plan, scaleFactor, buffer); }
KelStatus kelsFFTFwd_RToCCS_16s_Sfs (const Kel16s* src, Kel16s* dst, const KelsFftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return real<Layout::ccs, false>(src, dst, plan, scaleFactor, buffer); }
KelStatus kelsFFTInv_PermToR_16s_Sfs(const Kel16s* src, Kel16s* dst, const KelsFftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return real<Layout::perm, true>(src, dst, plan, scaleFactor, buffer); }
KelStatus kelsFFTInv_PackToR_16s_Sfs(const Kel16s* src, Kel16s* dst, const KelsFftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return real<Layout::pack, true>(src, dst, plan, scaleFactor, buffer); }
KelStatus kelsFFTInv_CCSToR_16s_Sfs (const Kel16s* src, Kel16s* dst, const KelsFftPlan_16s* plan, int scaleFactor, Kel8u* buffer) { return real<Layout::ccs, true>(src, dst, plan, scaleFactor, buffer); }
}
// clang-format on
