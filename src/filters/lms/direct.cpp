// Adaptive filters of one sample a call, with taps and a ring of the caller's.

#include "kels/lms.h"

#include "filters/doubled_ring.h"
#include "filters/lms/sums.h"
#include "frame/scale.h"

#include <algorithm>
#include <cstdint>

namespace kels {
namespace {

/// Checks and takes the sample in; the index is tested last.
template <class Sample, class Tap>
KelStatus enter(Sample sample, const Sample* dst, const Tap* taps, int tapsLen, const DoubledRing<Sample>& ring) {
    if (!taps || ring.missing() || !dst) return kelStatusNullPtr;
    if (tapsLen < 1) return kelStatusBadSize;
    if (*ring.index < 0 || *ring.index >= tapsLen) return kelStatusBadDlyLineIndex;
    ring.push(sample, tapsLen);
    return kelStatusOk;
}

// Real taps

/// The lanes of a filter with a context: what does not fill them comes first, from behind.
template <class Sample>
Kel64f sum_of_window(const Kel32f* taps, const Sample* window, int tapsLen) {
    LmsLanes sum{};
    const auto add = [&](const Kel32f* tap, const Sample* sample) KELS_INLINE {
        sum = fma(convert<Kel64f>(load<Vec<Kel32f, lms_lanes>>(tap)),
                  convert<Kel64f>(load<Vec<Sample, lms_lanes>>(sample)), sum);
    };
    const Index ahead = tapsLen % lms_lanes;
    if (ahead > 0) {
        Kel32f first_taps[lms_lanes] = {};
        Sample first[lms_lanes] = {};
        std::copy_n(taps, ahead, first_taps + lms_lanes - ahead);
        std::copy_n(window, ahead, first + lms_lanes - ahead);
        add(first_taps, first);
    }
    for (Index i = ahead; i < tapsLen; i += lms_lanes) add(taps + i, window + i);
    return sum_of_lanes(sum);
}

template <class Sample>
KelStatus filter_one(Sample sample, Sample reference, Sample* dst, Kel32f* taps, int tapsLen, Kel32f mu,
                     const DoubledRing<Sample>& ring) {
    if (const KelStatus status = enter(sample, dst, taps, tapsLen, ring)) return status;
    const Sample* window = ring.window();
    const Kel64f output = sum_of_window(taps, window, tapsLen), error = lms_error(reference, output, mu);
    *dst = lms_sample<Sample>(output);
    map_blocks(
        taps, tapsLen,
        [=](auto tap, auto x)
            KELS_INLINE { return convert<Kel32f>(adapted(convert<Kel64f>(tap), convert<Kel64f>(x), error)); },
        static_cast<const Kel32f*>(taps), window);
    return kelStatusOk;
}

// Integer taps with 15 fractional bits

/// Quotients by one divisor, cut toward zero.
class Divisor {
public:
    explicit Divisor(std::uint64_t divisor) : divisor_(divisor), reciprocal_(~std::uint64_t{0} / divisor) {}

    std::int64_t operator()(std::int64_t dividend) const {
        const auto bits = static_cast<std::uint64_t>(dividend);
        return static_cast<std::int64_t>(dividend < 0 ? 0 - of_magnitude(0 - bits) : of_magnitude(bits));
    }

private:
    std::uint64_t divisor_;
    [[maybe_unused]] std::uint64_t reciprocal_; ///< where there are products of 128 bits

    std::uint64_t of_magnitude(std::uint64_t size) const {
#if defined(__SIZEOF_INT128__)
        // The reciprocal is at most one unit too small, and so is its product, rounded down once more: what is left
        // says how much the quotient lacks.
        __extension__ using Wide = unsigned __int128;
        std::uint64_t quotient = static_cast<std::uint64_t>((Wide{size} * reciprocal_) >> 64);
        std::uint64_t rest = size - quotient * divisor_;
        for (; rest >= divisor_; rest -= divisor_) ++quotient;
        return quotient;
#else
        return size / divisor_;
#endif
    }
};

/// The product of the lower 32 bits.
Kel32s wrapped_product(Kel32s a, Kel32s b) {
    return static_cast<Kel32s>(static_cast<Kel32u>(a) * static_cast<Kel32u>(b));
}

/// The product of the lower 64 bits.
std::int64_t wrapped_product(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}

KelStatus filter_one_q15(Kel16s sample, Kel16s reference, Kel16s* dst, Kel32s* taps, int tapsLen, int mu,
                         const DoubledRing<Kel16s>& ring) {
    if (const KelStatus status = enter(sample, dst, taps, tapsLen, ring)) return status;
    const Kel16s* window = ring.window();
    std::int64_t sum = 0, energy = 0;
    for (int i = 0; i < tapsLen; ++i) {
        sum += wrapped_product(taps[i], Kel32s{window[i]});
        energy += Kel32s{window[i]} * Kel32s{window[i]};
    }
    const std::int64_t output = round_half_even<62>(sum, 15);
    *dst = saturate<Kel16s>(output);
    if (energy == 0) return kelStatusOk;

    const std::int64_t step = wrapped_product(std::int64_t{mu}, reference - output);
    const Divisor over_energy(static_cast<std::uint64_t>(energy));
    for (int i = 0; i < tapsLen; ++i)
        taps[i] = saturate<Kel32s>(taps[i] + over_energy(wrapped_product(step, std::int64_t{window[i]})));
    return kelStatusOk;
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsFIRLMSOne_Direct_32f   (Kel32f src, Kel32f ref, Kel32f* dst, Kel32f* taps, int len, Kel32f mu, Kel32f* line, int* index) { return filter_one<Kel32f>(src, ref, dst, taps, len, mu, {line, index}); }
KelStatus kelsFIRLMSOne_Direct32f_16s(Kel16s src, Kel16s ref, Kel16s* dst, Kel32f* taps, int len, Kel32f mu, Kel16s* line, int* index) { return filter_one<Kel16s>(src, ref, dst, taps, len, mu, {line, index}); }
KelStatus kelsFIRLMSOne_DirectQ15_16s(Kel16s src, Kel16s ref, Kel16s* dst, Kel32s* taps, int len, int    mu, Kel16s* line, int* index) { return filter_one_q15(src, ref, dst, taps, len, mu, {line, index}); }
}
// clang-format on
