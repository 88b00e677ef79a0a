// Rate changes without filtering: samples are moved as words, whatever they mean. Small factors have loops of their
// own, which compilers turn into shuffles of vectors; larger ones touch a line of the cache for a few samples only.
// Pre-emphasis: differences in double precision, where a single times a sample is exact.

#include "kels/rate_change.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "frame/simd.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

struct TwoWords {
    std::uint64_t first, second;
};

/// A whole sample.
template <class T>
using Unit = std::conditional_t<sizeof(T) == 16, TwoWords, typename WordOf<sizeof(T)>::type>;

template <class U>
void move(const U* from, U* to) {
    std::memcpy(to, from, sizeof(U));
}

KelStatus check(Pointers arguments, int srcLen, int factor, const int* phase) {
    if (arguments.any_null || !phase) return kelStatusNullPtr;
    if (srcLen < 1) return kelStatusBadSize;
    if (factor < 1) return kelStatusFactorRange;
    return *phase < 0 || *phase >= factor ? kelStatusPhaseRange : kelStatusOk;
}

// Fewer samples

template <class U, class Factor>
void keep_every(const U* src, U* dst, int count, Factor factor) {
    for (std::ptrdiff_t k = 0; k < count; ++k) move(src + k * factor, dst + k);
}

/// The factor becomes a constant if it is small.
template <class U>
void keep(const U* src, U* dst, int count, int factor) {
    switch (factor) {
    case 2:
        return keep_every(src, dst, count, std::integral_constant<int, 2>{});
    case 3:
        return keep_every(src, dst, count, std::integral_constant<int, 3>{});
    case 4:
        return keep_every(src, dst, count, std::integral_constant<int, 4>{});
    default:
        return keep_every(src, dst, count, factor);
    }
}

template <class T>
KelStatus sample_down(const T* pSrc, int srcLen, T* pDst, int* pDstLen, int factor, int* pPhase) {
    const KelStatus status = check({pSrc, pDst, pDstLen}, srcLen, factor, pPhase);
    if (status != kelStatusOk) return status;
    if (factor == 1) {
        std::memmove(pDst, pSrc, sizeof(T) * static_cast<std::size_t>(srcLen));
        *pDstLen = srcLen;
        return kelStatusOk;
    }
    const int phase = *pPhase, kept = phase < srcLen ? (srcLen - 1 - phase) / factor + 1 : 0;
    using U = Unit<T>;
    if (kept > 0) keep(reinterpret_cast<const U*>(pSrc) + phase, reinterpret_cast<U*>(pDst), kept, factor);
    *pDstLen = kept;
    *pPhase = static_cast<int>(phase + std::int64_t{kept} * factor - srcLen);
    return kelStatusOk;
}

// More samples

/// Silence first, in pieces that stay in the cache until the samples come.
template <class U>
void spread(const U* src, U* dst, std::ptrdiff_t count, int factor, int phase) {
    const std::ptrdiff_t most = std::max<std::ptrdiff_t>(16384 / static_cast<int>(sizeof(U)) / factor, 1);
    for (std::ptrdiff_t first = 0, n; first < count; first += n) {
        n = std::min(most, count - first);
        U* piece = dst + first * factor;
        std::memset(piece, 0, sizeof(U) * static_cast<std::size_t>(n * factor));
        KELS_ONE_BY_ONE
        for (std::ptrdiff_t k = 0; k < n; ++k) move(src + first + k, piece + k * factor + phase);
    }
}

/// Samples and zeros by turns: every sample but the last goes with the zeros behind it.
template <class U, int factor>
void spread_closely(const U* src, U* dst, std::ptrdiff_t count, int phase) {
    const std::ptrdiff_t last = count - 1;
    for (int i = 0; i < phase; ++i) dst[i] = U{};
    dst += phase;
    for (std::ptrdiff_t k = 0; k < last; ++k) {
        move(src + k, dst + k * factor);
        for (int i = 1; i < factor; ++i) dst[k * factor + i] = U{};
    }
    move(src + last, dst + last * factor);
    for (int i = 1; i < factor - phase; ++i) dst[last * factor + i] = U{};
}

template <class T>
KelStatus sample_up(const T* pSrc, int srcLen, T* pDst, int* pDstLen, int factor, const int* pPhase) {
    const KelStatus status = check({pSrc, pDst, pDstLen}, srcLen, factor, pPhase);
    if (status != kelStatusOk) return status;
    using U = Unit<T>;
    const U* src = reinterpret_cast<const U*>(pSrc);
    U* dst = reinterpret_cast<U*>(pDst);
    if (factor == 1)
        std::memmove(dst, src, sizeof(T) * static_cast<std::size_t>(srcLen));
    else if (factor == 2)
        spread_closely<U, 2>(src, dst, srcLen, *pPhase);
    else if (factor == 3 && sizeof(U) >= 8)
        spread_closely<U, 3>(src, dst, srcLen, *pPhase);
    else if (factor == 4)
        spread_closely<U, 4>(src, dst, srcLen, *pPhase);
    else
        spread(src, dst, srcLen, factor, *pPhase);
    *pDstLen = static_cast<int>(static_cast<unsigned>(srcLen) * static_cast<unsigned>(factor));
    return kelStatusOk;
}

// Pre-emphasis

/// Calls write(i, samples, samples before them) for blocks that cover 1 to n. What a block overwrites of the samples
/// before the next one has been read by then.
template <class T, class Form>
void difference(T* x, Index n, const Form& form) {
    in_widest<typename WordOf<sizeof(T)>::type, 1, 4>(n, [&](auto width) KELS_INLINE {
        using V = Vec<T, width>;
        const Index last = n + 1 - width;
        const V last_before = load<V>(x + last - 1), last_samples = load<V>(x + last);
        V before = load<V>(x);
        for (Index i = 1; i < last; i += width) {
            const V samples = load<V>(x + i), next_before = load<V>(x + std::min<Index>(i + width, last) - 1);
            store(x + i, form(samples, before));
            before = next_before;
        }
        store(x + last, form(last_samples, last_before));
    });
}

KelStatus preemphasize(Kel32f* pSrcDst, int len, Kel32f val) {
    return vector_call({pSrcDst}, len, [=] {
        difference(pSrcDst, len - 1, [=](auto x, auto before) KELS_INLINE {
            const auto past = convert<Kel64f>(before);
            return convert<Kel32f>(convert<Kel64f>(x) - splat<decltype(past * past)>(val) * past);
        });
    });
}

KelStatus preemphasize(Kel16s* pSrcDst, int len, Kel32f val) {
    return vector_call({pSrcDst}, len, [=] {
        const RoundedToNearest modes;
        difference(pSrcDst, len - 1, [=](auto x, auto before) KELS_INLINE {
            using Limits = std::numeric_limits<Kel16s>;
            const auto past = convert<Kel64f>(convert<Kel32s>(before));
            using V = std::remove_const_t<decltype(past)>;
            const V y = convert<Kel64f>(convert<Kel32s>(x)) - splat<V>(val) * past;
            const V most = splat<V>(Limits::max()), least = splat<V>(Limits::min());
            const V above = y <= most ? y : most;
            return convert<Kel16s>(to_integer<true>(above < least ? least : above));
        });
    });
}

} // namespace
} // namespace kels

// clang-format off
extern "C" {
KelStatus kelsSampleDown_16s (const Kel16s*  src, int n, Kel16s*  dst, int* dst_n, int factor, int* phase) { return kels::sample_down(src, n, dst, dst_n, factor, phase); }
KelStatus kelsSampleDown_16sc(const Kel16sc* src, int n, Kel16sc* dst, int* dst_n, int factor, int* phase) { return kels::sample_down(src, n, dst, dst_n, factor, phase); }
KelStatus kelsSampleDown_32f (const Kel32f*  src, int n, Kel32f*  dst, int* dst_n, int factor, int* phase) { return kels::sample_down(src, n, dst, dst_n, factor, phase); }
KelStatus kelsSampleDown_32fc(const Kel32fc* src, int n, Kel32fc* dst, int* dst_n, int factor, int* phase) { return kels::sample_down(src, n, dst, dst_n, factor, phase); }
KelStatus kelsSampleDown_64f (const Kel64f*  src, int n, Kel64f*  dst, int* dst_n, int factor, int* phase) { return kels::sample_down(src, n, dst, dst_n, factor, phase); }
KelStatus kelsSampleDown_64fc(const Kel64fc* src, int n, Kel64fc* dst, int* dst_n, int factor, int* phase) { return kels::sample_down(src, n, dst, dst_n, factor, phase); }

KelStatus kelsSampleUp_16s (const Kel16s*  src, int n, Kel16s*  dst, int* dst_n, int factor, const int* phase) { return kels::sample_up(src, n, dst, dst_n, factor, phase); }
KelStatus kelsSampleUp_16sc(const Kel16sc* src, int n, Kel16sc* dst, int* dst_n, int factor, const int* phase) { return kels::sample_up(src, n, dst, dst_n, factor, phase); }
KelStatus kelsSampleUp_32f (const Kel32f*  src, int n, Kel32f*  dst, int* dst_n, int factor, const int* phase) { return kels::sample_up(src, n, dst, dst_n, factor, phase); }
KelStatus kelsSampleUp_32fc(const Kel32fc* src, int n, Kel32fc* dst, int* dst_n, int factor, const int* phase) { return kels::sample_up(src, n, dst, dst_n, factor, phase); }
KelStatus kelsSampleUp_64f (const Kel64f*  src, int n, Kel64f*  dst, int* dst_n, int factor, const int* phase) { return kels::sample_up(src, n, dst, dst_n, factor, phase); }
KelStatus kelsSampleUp_64fc(const Kel64fc* src, int n, Kel64fc* dst, int* dst_n, int factor, const int* phase) { return kels::sample_up(src, n, dst, dst_n, factor, phase); }

KelStatus kelsPreemphasize_32f(Kel32f* x, int n, Kel32f val) { return kels::preemphasize(x, n, val); }
KelStatus kelsPreemphasize_16s(Kel16s* x, int n, Kel32f val) { return kels::preemphasize(x, n, val); }
}
// clang-format on
