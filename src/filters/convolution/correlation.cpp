// Autocorrelations with their norms, and cross-correlations.

#include "kels/convolution.h"

#include "filters/convolution/correlate.h"
#include "frame/calling_frame.h"
#include "frame/modes.h"
#include "kels/conversion.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace kels {
namespace {

// Autocorrelations

/// Lags from which on they may be transformed.
template <class Sample>
constexpr int least_transformed = parts<Sample> == 2 ? 96 : 600;

/// The first `lags` lags.
template <class Sample, class Result>
KelStatus correlate_with_itself(const Sample* src, int len, Result* dst, int lags) {
    const SilentEnded<Sample> x{src, len};
    const KelStatus status = correlate(Lags{x, x, 0, lags, true}, lags >= least_transformed<Sample>, dst);
    if constexpr (parts<Result> == 2)
        if (std::isfinite(dst[0].im)) dst[0].im = 0; // an energy
    return status;
}

/// What becomes of rounded lags.
struct AsTheyAre {
    template <class T>
    void operator()(T*, int /*lags*/, int /*len*/) const {}
};

struct Biased {
    template <class T>
    void operator()(T* dst, int lags, int len) const {
        const auto factor = static_cast<Part<T>>(1.0 / len);
        Part<T>* values = reals(dst);
        for (int part = 0; part < parts<T>; ++part, values += lags)
            each(lags, [=](std::ptrdiff_t i) { values[i] *= factor; });
    }
};

struct Unbiased {
    template <class T>
    void operator()(T* dst, int lags, int len) const {
        each(lags, [=](std::ptrdiff_t k) {
            const auto terms = static_cast<Part<T>>(len - static_cast<int>(k));
            for (int part = 0; part < parts<T>; ++part) reals(dst + k)[part] /= terms;
        });
    }
};

template <class T, class Norm>
KelStatus autocorrelate(const T* pSrc, int srcLen, T* pDst, int dstLen, Norm norm) {
    return vector_call({pSrc, pDst}, std::min(srcLen, dstLen), [=] {
        const int lags = std::min(srcLen, dstLen);
        std::fill(pDst + lags, pDst + dstLen, T{});
        const KelStatus status = correlate_with_itself(pSrc, srcLen, pDst, lags);
        if (status == kelStatusOk) norm(pDst, lags, srcLen);
        return status;
    });
}

template <class Norm>
KelStatus autocorrelate(const Kel16s* pSrc, int srcLen, Kel16s* pDst, int dstLen, Norm norm, int scaleFactor) {
    return vector_call({pSrc, pDst}, std::min(srcLen, dstLen), [=] {
        const DefaultModes modes(true);
        const int lags = std::min(srcLen, dstLen);
        std::fill(pDst + lags, pDst + dstLen, Kel16s{});
        const auto sums = make_owned<Kel32f>(static_cast<std::size_t>(lags));
        if (!sums) return kelStatusNoMemory;
        const KelStatus status = correlate_with_itself(pSrc, srcLen, sums.get(), lags);
        if (status != kelStatusOk) return status;
        norm(sums.get(), lags, srcLen);
        return kelsConvert_32f16s_Sfs(sums.get(), pDst, lags, kelRndNear, scaleFactor);
    });
}

// Cross-correlations

/// What the lags and lengths may cost directly: lags times the shorter length, by the longer one.
template <class Sample>
constexpr int most_direct = std::is_same_v<Part<Sample>, Kel64f> ? 511
                            : parts<Sample> == 2                 ? 255
                                                                 : 383;

/// Lags, those that have an overlap among them.
struct Overlap {
    std::int64_t before, count, low;

    Overlap(int len1, int len2, int lags, int first)
        : before(std::clamp<std::int64_t>(std::int64_t{1} - len1 - first, 0, lags)),
          count(std::clamp<std::int64_t>(len2 - (first + before), 0, lags - before)), low(first + before) {}
};

/// The shorter vector slides. If that is the second, it slides the other way, and everything is conjugated.
template <class Sample, class Result>
KelStatus correlate_overlap(const Sample* src1, int len1, const Sample* src2, int len2, Result* dst,
                            const Overlap& overlap) {
    const auto low = static_cast<std::ptrdiff_t>(overlap.low), count = static_cast<std::ptrdiff_t>(overlap.count);
    const double cost = double(count) * std::min(len1, len2) / std::max(len1, len2);
    const bool may_transform = cost >= most_direct<Sample> + 1;
    const SilentEnded<Sample> first{src1, len1}, second{src2, len2};
    if (len1 <= len2) return correlate(Lags{first, second, low, count}, may_transform, dst);
    const KelStatus status = correlate(Lags{second, first, 1 - low - count, count}, may_transform, dst);
    std::reverse(dst, dst + count);
    if constexpr (parts<Result> == 2)
        for (std::ptrdiff_t k = 0; k < count; ++k) dst[k].im = -dst[k].im;
    return status;
}

template <class T>
void silence_outside(T* dst, int len, const Overlap& overlap) {
    std::fill(dst, dst + overlap.before, T{});
    std::fill(dst + overlap.before + overlap.count, dst + len, T{});
}

template <class T>
KelStatus cross_correlate(const T* pSrc1, int len1, const T* pSrc2, int len2, T* pDst, int dstLen, int lowLag) {
    return vector_call({pSrc1, pSrc2, pDst}, std::min({len1, len2, dstLen}), [=] {
        const Overlap overlap(len1, len2, dstLen, lowLag);
        silence_outside(pDst, dstLen, overlap);
        if (overlap.count == 0) return kelStatusOk;
        return correlate_overlap(pSrc1, len1, pSrc2, len2, pDst + overlap.before, overlap);
    });
}

KelStatus cross_correlate(const Kel16s* pSrc1, int len1, const Kel16s* pSrc2, int len2, Kel16s* pDst, int dstLen,
                          int lowLag, int scaleFactor) {
    return vector_call({pSrc1, pSrc2, pDst}, std::min({len1, len2, dstLen}), [=] {
        const DefaultModes modes(true);
        const Overlap overlap(len1, len2, dstLen, lowLag);
        silence_outside(pDst, dstLen, overlap);
        if (overlap.count == 0) return kelStatusOk;
        const auto sums = make_owned_product<Kel32f>(overlap.count, 1);
        if (!sums) return kelStatusNoMemory;
        const KelStatus status = correlate_overlap(pSrc1, len1, pSrc2, len2, sums.get(), overlap);
        if (status != kelStatusOk) return status;
        return kelsConvert_32f16s_Sfs(sums.get(), pDst + overlap.before, static_cast<int>(overlap.count), kelRndNear,
                                      scaleFactor);
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsAutoCorr_32f    (const Kel32f*  src, int n, Kel32f*  dst, int lags) { return autocorrelate(src, n, dst, lags, AsTheyAre{}); }
KelStatus kelsAutoCorr_64f    (const Kel64f*  src, int n, Kel64f*  dst, int lags) { return autocorrelate(src, n, dst, lags, AsTheyAre{}); }
KelStatus kelsAutoCorr_32fc   (const Kel32fc* src, int n, Kel32fc* dst, int lags) { return autocorrelate(src, n, dst, lags, AsTheyAre{}); }
KelStatus kelsAutoCorr_64fc   (const Kel64fc* src, int n, Kel64fc* dst, int lags) { return autocorrelate(src, n, dst, lags, AsTheyAre{}); }
KelStatus kelsAutoCorr_16s_Sfs(const Kel16s*  src, int n, Kel16s*  dst, int lags, int scale) { return autocorrelate(src, n, dst, lags, AsTheyAre{}, scale); }

KelStatus kelsAutoCorr_NormA_32f    (const Kel32f*  src, int n, Kel32f*  dst, int lags) { return autocorrelate(src, n, dst, lags, Biased{}); }
KelStatus kelsAutoCorr_NormA_64f    (const Kel64f*  src, int n, Kel64f*  dst, int lags) { return autocorrelate(src, n, dst, lags, Biased{}); }
KelStatus kelsAutoCorr_NormA_32fc   (const Kel32fc* src, int n, Kel32fc* dst, int lags) { return autocorrelate(src, n, dst, lags, Biased{}); }
KelStatus kelsAutoCorr_NormA_64fc   (const Kel64fc* src, int n, Kel64fc* dst, int lags) { return autocorrelate(src, n, dst, lags, Biased{}); }
KelStatus kelsAutoCorr_NormA_16s_Sfs(const Kel16s*  src, int n, Kel16s*  dst, int lags, int scale) { return autocorrelate(src, n, dst, lags, Biased{}, scale); }

KelStatus kelsAutoCorr_NormB_32f    (const Kel32f*  src, int n, Kel32f*  dst, int lags) { return autocorrelate(src, n, dst, lags, Unbiased{}); }
KelStatus kelsAutoCorr_NormB_64f    (const Kel64f*  src, int n, Kel64f*  dst, int lags) { return autocorrelate(src, n, dst, lags, Unbiased{}); }
KelStatus kelsAutoCorr_NormB_32fc   (const Kel32fc* src, int n, Kel32fc* dst, int lags) { return autocorrelate(src, n, dst, lags, Unbiased{}); }
KelStatus kelsAutoCorr_NormB_64fc   (const Kel64fc* src, int n, Kel64fc* dst, int lags) { return autocorrelate(src, n, dst, lags, Unbiased{}); }
KelStatus kelsAutoCorr_NormB_16s_Sfs(const Kel16s*  src, int n, Kel16s*  dst, int lags, int scale) { return autocorrelate(src, n, dst, lags, Unbiased{}, scale); }

KelStatus kelsCrossCorr_32f    (const Kel32f*  a, int a_len, const Kel32f*  b, int b_len, Kel32f*  dst, int lags, int low) { return cross_correlate(a, a_len, b, b_len, dst, lags, low); }
KelStatus kelsCrossCorr_64f    (const Kel64f*  a, int a_len, const Kel64f*  b, int b_len, Kel64f*  dst, int lags, int low) { return cross_correlate(a, a_len, b, b_len, dst, lags, low); }
KelStatus kelsCrossCorr_32fc   (const Kel32fc* a, int a_len, const Kel32fc* b, int b_len, Kel32fc* dst, int lags, int low) { return cross_correlate(a, a_len, b, b_len, dst, lags, low); }
KelStatus kelsCrossCorr_64fc   (const Kel64fc* a, int a_len, const Kel64fc* b, int b_len, Kel64fc* dst, int lags, int low) { return cross_correlate(a, a_len, b, b_len, dst, lags, low); }
KelStatus kelsCrossCorr_16s_Sfs(const Kel16s*  a, int a_len, const Kel16s*  b, int b_len, Kel16s*  dst, int lags, int low, int scale) { return cross_correlate(a, a_len, b, b_len, dst, lags, low, scale); }
}
// clang-format on
