// Convolutions of whole vectors, and short cyclic ones.

#include "kels/convolution.h"

#include "filters/convolution/correlate.h"
#include "frame/calling_frame.h"
#include "frame/modes.h"
#include "kels/conversion.h"

#include <algorithm>
#include <cstdint>

namespace kels {
namespace {

/// Results from which on the sums are no longer rounded step by step.
constexpr std::int64_t least_transformed = 150;

template <class Sample>
struct Operands {
    const Sample *longer, *shorter;
    int long_len, short_len;

    Operands(const Sample* a, int a_len, const Sample* b, int b_len)
        : longer(a_len < b_len ? b : a), shorter(a_len < b_len ? a : b), long_len(std::max(a_len, b_len)),
          short_len(std::min(a_len, b_len)) {}
    std::int64_t results() const { return std::int64_t{long_len} + short_len - 1; }
};

/// Every product is exact, and every sum is rounded to single precision.
template <class Sample>
void convolve_step_by_step(const Operands<Sample>& x, Kel32f* dst) {
    std::fill_n(dst, x.results(), 0.0F);
    for (int j = 0; j < x.short_len; ++j) {
        const Kel64f factor = static_cast<Kel64f>(x.shorter[j]);
        const Sample* samples = x.longer;
        Kel32f* sums = dst + j;
        each(x.long_len, [=](std::ptrdiff_t i) {
            sums[i] = static_cast<Kel32f>(static_cast<Kel64f>(sums[i]) + factor * static_cast<Kel64f>(samples[i]));
        });
    }
}

template <class Sample>
KelStatus convolve(const Operands<Sample>& x, Kel32f* dst) {
    if (x.results() < least_transformed) {
        convolve_step_by_step(x, dst);
        return kelStatusOk;
    }
    return correlate(Lags{SilentEnded<Sample, true>{x.shorter, x.short_len}, SilentEnded<Sample>{x.longer, x.long_len},
                          std::ptrdiff_t{1} - x.short_len, static_cast<std::ptrdiff_t>(x.results())},
                     true, dst);
}

KelStatus convolve(const Kel32f* pSrc1, int len1, const Kel32f* pSrc2, int len2, Kel32f* pDst) {
    return vector_call({pSrc1, pSrc2, pDst}, std::min(len1, len2),
                       [=] { return convolve(Operands(pSrc1, len1, pSrc2, len2), pDst); });
}

KelStatus convolve(const Kel16s* pSrc1, int len1, const Kel16s* pSrc2, int len2, Kel16s* pDst, int scaleFactor) {
    return vector_call({pSrc1, pSrc2, pDst}, std::min(len1, len2), [=] {
        const DefaultModes modes(true);
        const Operands x(pSrc1, len1, pSrc2, len2);
        const auto sums = make_owned_product<Kel32f>(x.results(), 1);
        if (!sums) return x.results() < least_transformed ? kelStatusNullPtr : kelStatusNoMemory;
        const KelStatus status = convolve(x, sums.get());
        if (status != kelStatusOk) return status;
        return kelsConvert_32f16s_Sfs(sums.get(), pDst, static_cast<int>(x.results()), kelRndNear, scaleFactor);
    });
}

// Cyclic convolutions

/// y[k] = sum of x[j] h[(k - j) mod S], of real x and h of so many parts: h stands twice in a row, and every j takes it
/// from one sample further back.
template <class T>
KelStatus convolve_cyclic(const Kel32f* x, const T* h, T* y) {
    constexpr int width = parts<T>, size = 8 / width;
    using V = Vec<Kel64f, 8>;
    const V once = convert<Kel64f>(load<Vec<Kel32f, 8>>(h));
    Kel64f twice[16];
    store(twice, once);
    store(twice + 8, once);
    V sum{};
    for (int j = 0; j < size; ++j) sum = fma(splat<V>(static_cast<Kel64f>(x[j])), load<V>(twice + 8 - j * width), sum);
    store(y, convert<Kel32f>(sum));
    return kelStatusOk;
}

/// Within 32 bits.
Kel32s shifted_sum(Kel32u sum, int scaleFactor) {
    if (scaleFactor > 0) return static_cast<Kel32s>(sum) >> std::min(scaleFactor, 31);
    const std::int64_t left = -std::int64_t{scaleFactor};
    return left < 32 ? static_cast<Kel32s>(sum << left) : 0;
}

KelStatus convolve_cyclic(const Kel16s* x, const Kel16s* h, Kel16s* y, int scaleFactor) {
    Kel16s results[8];
    for (int k = 0; k < 8; ++k) {
        Kel32u sum = 0;
        for (int j = 0; j < 8; ++j) sum += static_cast<Kel32u>(x[j] * h[(k - j) & 7]);
        results[k] = saturate<Kel16s>(shifted_sum(sum, scaleFactor));
    }
    std::copy_n(results, 8, y);
    return kelStatusOk;
}

} // namespace
} // namespace kels

// clang-format off
extern "C" {
KelStatus kelsConv_32f    (const Kel32f* a, int a_len, const Kel32f* b, int b_len, Kel32f* dst)            { return kels::convolve(a, a_len, b, b_len, dst); }
KelStatus kelsConv_16s_Sfs(const Kel16s* a, int a_len, const Kel16s* b, int b_len, Kel16s* dst, int scale) { return kels::convolve(a, a_len, b, b_len, dst, scale); }

KelStatus kelsConvCyclic8x8_32f    (const Kel32f* x, const Kel32f*  h, Kel32f*  y)            { return kels::convolve_cyclic(x, h, y); }
KelStatus kelsConvCyclic4x4_32f32fc(const Kel32f* x, const Kel32fc* h, Kel32fc* y)            { return kels::convolve_cyclic(x, h, y); }
KelStatus kelsConvCyclic8x8_16s_Sfs(const Kel16s* x, const Kel16s*  h, Kel16s*  y, int scale) { return kels::convolve_cyclic(x, h, y, scale); }
}
// clang-format on
