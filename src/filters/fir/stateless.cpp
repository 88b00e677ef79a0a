// FIR filters without a state of the library's: taps and delay line are the caller's, and come with every call.

#include "kels/fir_direct.h"

#include "filters/doubled_ring.h"
#include "filters/fir/polyphase.h"
#include "frame/memory.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace kels {
namespace {

template <class Family>
struct Taps {
    const typename Family::Taps* first; ///< h[0]
    int count;
    int factor = 0;

    const auto* end() const { return reals(first) + std::ptrdiff_t{count} * parts<typename Family::Taps>; }
};

// One rate

template <class Family>
auto sum_of_window(const typename Family::Sample* window, const Taps<Family>& taps) {
    using Sums = SumsOf<Family>;
    if constexpr (Family::integer_taps)
        return Sums::dot_of_wide(reals(window), taps.first, taps.count);
    else
        return Sums::dot_of_fresh(reals(window), ReversedTaps<typename Family::Taps>{taps.end()}, taps.count);
}

template <class Family>
KelStatus filter_one(typename Family::Sample sample, typename Family::Sample* dst, const Taps<Family>& taps,
                     const DoubledRing<typename Family::Sample>& ring, int scaleFactor = 0) {
    if (!dst || !taps.first) return kelStatusNullPtr;
    if (taps.count < 1) return kelStatusBadFirLength;
    if (ring.missing()) return kelStatusNullPtr;
    ring.push(sample, taps.count);
    *dst = rounded_sample<typename Family::Sample>(sum_of_window<Family>(ring.window(), taps),
                                                   rounding<Family>(scaleFactor, taps.factor));
    return kelStatusOk;
}

template <class Family>
KelStatus filter_one_in_place(typename Family::Sample* sample, const Taps<Family>& taps,
                              const DoubledRing<typename Family::Sample>& ring, int scaleFactor = 0) {
    if (!sample) return kelStatusNullPtr;
    return filter_one<Family>(*sample, sample, taps, ring, scaleFactor);
}

/// The caller's taps as coefficients of the strips, the last first.
template <class Family>
struct GivenCoefficients {
    using Sums = SumsOf<Family>;
    using Coefficient = typename Sums::Coefficient;
    static constexpr int room = Tile<Sums>::segment * Sums::per_tap + Sums::padding;

    const Taps<Family>& taps;
    int passes_ = Sums::passes(taps.first, taps.count);

    int passes() const { return passes_; }
    const Coefficient* segment(int tap, int count, int pass, Coefficient* out) const {
        const auto* last = taps.first + (taps.count - 1 - tap);
        for (int i = 0; i < count; ++i) Sums::put(last[-i], pass, out + i * Sums::per_tap);
        std::fill_n(out + count * Sums::per_tap, Sums::padding, Coefficient{});
        return out;
    }
};

/// Tile by tile: the ring takes the samples of one before its outputs are stored, so that they may be the same array.
template <class Family>
KelStatus filter_block(const typename Family::Sample* src, typename Family::Sample* dst, int count,
                       const Taps<Family>& taps, const DoubledRing<typename Family::Sample>& ring,
                       int scaleFactor = 0) {
    if (!src || !dst) return kelStatusNullPtr;
    if (count < 1) return kelStatusBadSize;
    if (!taps.first) return kelStatusNullPtr;
    if (taps.count < 1) return kelStatusBadFirLength;
    if (ring.missing()) return kelStatusNullPtr;

    Tile<SumsOf<Family>> tile;
    const GivenCoefficients<Family> coefficients{taps};
    const auto round = rounding<Family>(scaleFactor, taps.factor);
    for (int first = 0, outputs; first < count; first += outputs) {
        outputs = std::min(tile.most_outputs, count - first);
        const Stream<typename Family::Sample> stream{ring.window() + 1, taps.count - 1, src + first, outputs};
        tile.sum(stream, 0, outputs, coefficients, taps.count);
        ring.push(src + first, outputs, taps.count);
        tile.store(dst + first, outputs, round);
    }
    return kelStatusOk;
}

template <class Family>
KelStatus filter_block_in_place(typename Family::Sample* samples, int count, const Taps<Family>& taps,
                                const DoubledRing<typename Family::Sample>& ring, int scaleFactor = 0) {
    return filter_block<Family>(samples, samples, count, taps, ring, scaleFactor);
}

// Rate changes

/// The caller's taps, gathered phase by phase for every output anew.
template <class Family>
struct GivenPhases {
    using Sums = SumsOf<Family>;
    using Coefficient = typename Sums::Coefficient;
    static constexpr int room = PolyphaseTile<Sums>::segment * Sums::per_tap;

    const Taps<Family>& taps;
    int up;
    PhaseLengths lengths;
    int passes_;

    int passes() const { return passes_; }
    const Coefficient* segment(int phase, int skipped, int count, int pass, Coefficient* out) const {
        const auto* last = taps.first + phase + std::ptrdiff_t{skipped + count - 1} * up;
        for (int i = 0; i < count; ++i) Sums::put(last[-std::ptrdiff_t{i} * up], pass, out + i * Sums::per_tap);
        return out;
    }
};

/// Runs the engine over taps that are put in order first, where a table of them is small.
template <class Family>
void make_outputs(const Stream<typename Family::Sample, true>& stream, const Taps<Family>& taps, const Rates& rates,
                  typename Family::Sample* dst, std::ptrdiff_t outputs, int scaleFactor) {
    using Sums = SumsOf<Family>;
    constexpr int most = 2048;
    const auto round = rounding<Family>(scaleFactor, taps.factor);
    const PhaseLengths lengths(taps.count, rates.up);
    const int passes = Sums::passes(taps.first, taps.count);
    if (taps.count <= most / Sums::per_tap && passes == 1) {
        alignas(64) typename Sums::Coefficient table[most];
        put_phases<Sums>(taps.first, taps.count, rates.up, table);
        filter_polyphase<Sums>(stream, StoredPhases<Sums>{table, lengths}, rates, dst, outputs, round);
    } else {
        filter_polyphase<Sums>(stream, GivenPhases<Family>{taps, rates.up, lengths, passes}, rates, dst, outputs,
                               round);
    }
}

/// Moves the newest samples into a line that begins with the newest.
template <class Sample>
void advance_newest_first(Sample* line, int len, const Sample* src, std::ptrdiff_t count) {
    const std::ptrdiff_t taken = std::min<std::ptrdiff_t>(count, len);
    std::memmove(line + taken, line, static_cast<std::size_t>(len - taken) * sizeof(Sample));
    std::reverse_copy(src + (count - taken), src + count, line);
}

template <class Family>
KelStatus check_rate_change(const typename Family::Sample* src, const typename Family::Sample* dst, int count,
                            const Taps<Family>& taps, const Rates& rates, const typename Family::Sample* line) {
    if (!src || !dst) return kelStatusNullPtr;
    if (count < 1) return kelStatusBadSize;
    if (!taps.first) return kelStatusNullPtr;
    if (taps.count < 1) return kelStatusBadFirLength;
    if (const KelStatus status = rates.check(); status != kelStatusOk) return status;
    return line ? kelStatusOk : kelStatusNullPtr;
}

template <class Family>
KelStatus change_rate(const typename Family::Sample* src, typename Family::Sample* dst, int count,
                      const Taps<Family>& taps, const Rates& rates, typename Family::Sample* line,
                      int scaleFactor = 0) {
    const KelStatus status = check_rate_change<Family>(src, dst, count, taps, rates, line);
    if (status != kelStatusOk) return status;
    const std::ptrdiff_t samples = std::ptrdiff_t{count} * rates.down, outputs = std::ptrdiff_t{count} * rates.up;
    const int len = PhaseLengths(taps.count, rates.up).longest();
    make_outputs<Family>({line, len, src, samples}, taps, rates, dst, outputs, scaleFactor);
    advance_newest_first(line, len, src, samples);
    return kelStatusOk;
}

template <class Family>
KelStatus change_rate_in_place(typename Family::Sample* samples, int count, const Taps<Family>& taps,
                               const Rates& rates, typename Family::Sample* line, int scaleFactor = 0) {
    const KelStatus status = check_rate_change<Family>(samples, samples, count, taps, rates, line);
    if (status != kelStatusOk) return status;
    const auto copy = make_owned_product<typename Family::Sample>(count, rates.down);
    if (!copy) return kelStatusNoMemory;
    std::copy_n(samples, std::ptrdiff_t{count} * rates.down, copy.get());
    return change_rate<Family>(copy.get(), samples, count, taps, rates, line, scaleFactor);
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsFIROne_Direct_32f         (Kel32f  src, Kel32f*  dst, const Kel32f*  taps, int len, Kel32f*  line, int* index) { return filter_one<Fir_32f>     (src, dst, {taps, len}, {line, index}); }
KelStatus kelsFIROne_Direct_32fc        (Kel32fc src, Kel32fc* dst, const Kel32fc* taps, int len, Kel32fc* line, int* index) { return filter_one<Fir_32fc>    (src, dst, {taps, len}, {line, index}); }
KelStatus kelsFIROne_Direct_64f         (Kel64f  src, Kel64f*  dst, const Kel64f*  taps, int len, Kel64f*  line, int* index) { return filter_one<Fir_64f>     (src, dst, {taps, len}, {line, index}); }
KelStatus kelsFIROne_Direct_64fc        (Kel64fc src, Kel64fc* dst, const Kel64fc* taps, int len, Kel64fc* line, int* index) { return filter_one<Fir_64fc>    (src, dst, {taps, len}, {line, index}); }
KelStatus kelsFIROne64f_Direct_32f      (Kel32f  src, Kel32f*  dst, const Kel64f*  taps, int len, Kel32f*  line, int* index) { return filter_one<Fir64f_32f>  (src, dst, {taps, len}, {line, index}); }
KelStatus kelsFIROne64fc_Direct_32fc    (Kel32fc src, Kel32fc* dst, const Kel64fc* taps, int len, Kel32fc* line, int* index) { return filter_one<Fir64fc_32fc>(src, dst, {taps, len}, {line, index}); }
KelStatus kelsFIROne32f_Direct_16s_Sfs  (Kel16s  src, Kel16s*  dst, const Kel32f*  taps, int len, Kel16s*  line, int* index, int scale) { return filter_one<Fir32f_16s>  (src, dst, {taps, len}, {line, index}, scale); }
KelStatus kelsFIROne32fc_Direct_16sc_Sfs(Kel16sc src, Kel16sc* dst, const Kel32fc* taps, int len, Kel16sc* line, int* index, int scale) { return filter_one<Fir32fc_16sc>(src, dst, {taps, len}, {line, index}, scale); }
KelStatus kelsFIROne64f_Direct_16s_Sfs  (Kel16s  src, Kel16s*  dst, const Kel64f*  taps, int len, Kel16s*  line, int* index, int scale) { return filter_one<Fir64f_16s>  (src, dst, {taps, len}, {line, index}, scale); }
KelStatus kelsFIROne64fc_Direct_16sc_Sfs(Kel16sc src, Kel16sc* dst, const Kel64fc* taps, int len, Kel16sc* line, int* index, int scale) { return filter_one<Fir64fc_16sc>(src, dst, {taps, len}, {line, index}, scale); }
KelStatus kelsFIROne64f_Direct_32s_Sfs  (Kel32s  src, Kel32s*  dst, const Kel64f*  taps, int len, Kel32s*  line, int* index, int scale) { return filter_one<Fir64f_32s>  (src, dst, {taps, len}, {line, index}, scale); }
KelStatus kelsFIROne64fc_Direct_32sc_Sfs(Kel32sc src, Kel32sc* dst, const Kel64fc* taps, int len, Kel32sc* line, int* index, int scale) { return filter_one<Fir64fc_32sc>(src, dst, {taps, len}, {line, index}, scale); }
KelStatus kelsFIROne32s_Direct_16s_Sfs  (Kel16s  src, Kel16s*  dst, const Kel32s*  taps, int len, int factor, Kel16s*  line, int* index, int scale) { return filter_one<Fir32s_16s>  (src, dst, {taps, len, factor}, {line, index}, scale); }
KelStatus kelsFIROne32sc_Direct_16sc_Sfs(Kel16sc src, Kel16sc* dst, const Kel32sc* taps, int len, int factor, Kel16sc* line, int* index, int scale) { return filter_one<Fir32sc_16sc>(src, dst, {taps, len, factor}, {line, index}, scale); }

KelStatus kelsFIROne_Direct_32f_I        (Kel32f*  x, const Kel32f*  taps, int len, Kel32f*  line, int* index) { return filter_one_in_place<Fir_32f>     (x, {taps, len}, {line, index}); }
KelStatus kelsFIROne_Direct_32fc_I       (Kel32fc* x, const Kel32fc* taps, int len, Kel32fc* line, int* index) { return filter_one_in_place<Fir_32fc>    (x, {taps, len}, {line, index}); }
KelStatus kelsFIROne_Direct_64f_I        (Kel64f*  x, const Kel64f*  taps, int len, Kel64f*  line, int* index) { return filter_one_in_place<Fir_64f>     (x, {taps, len}, {line, index}); }
KelStatus kelsFIROne_Direct_64fc_I       (Kel64fc* x, const Kel64fc* taps, int len, Kel64fc* line, int* index) { return filter_one_in_place<Fir_64fc>    (x, {taps, len}, {line, index}); }
KelStatus kelsFIROne64f_Direct_32f_I     (Kel32f*  x, const Kel64f*  taps, int len, Kel32f*  line, int* index) { return filter_one_in_place<Fir64f_32f>  (x, {taps, len}, {line, index}); }
KelStatus kelsFIROne64fc_Direct_32fc_I   (Kel32fc* x, const Kel64fc* taps, int len, Kel32fc* line, int* index) { return filter_one_in_place<Fir64fc_32fc>(x, {taps, len}, {line, index}); }
KelStatus kelsFIROne32f_Direct_16s_ISfs  (Kel16s*  x, const Kel32f*  taps, int len, Kel16s*  line, int* index, int scale) { return filter_one_in_place<Fir32f_16s>  (x, {taps, len}, {line, index}, scale); }
KelStatus kelsFIROne32fc_Direct_16sc_ISfs(Kel16sc* x, const Kel32fc* taps, int len, Kel16sc* line, int* index, int scale) { return filter_one_in_place<Fir32fc_16sc>(x, {taps, len}, {line, index}, scale); }
KelStatus kelsFIROne64f_Direct_16s_ISfs  (Kel16s*  x, const Kel64f*  taps, int len, Kel16s*  line, int* index, int scale) { return filter_one_in_place<Fir64f_16s>  (x, {taps, len}, {line, index}, scale); }
KelStatus kelsFIROne64fc_Direct_16sc_ISfs(Kel16sc* x, const Kel64fc* taps, int len, Kel16sc* line, int* index, int scale) { return filter_one_in_place<Fir64fc_16sc>(x, {taps, len}, {line, index}, scale); }
KelStatus kelsFIROne64f_Direct_32s_ISfs  (Kel32s*  x, const Kel64f*  taps, int len, Kel32s*  line, int* index, int scale) { return filter_one_in_place<Fir64f_32s>  (x, {taps, len}, {line, index}, scale); }
KelStatus kelsFIROne64fc_Direct_32sc_ISfs(Kel32sc* x, const Kel64fc* taps, int len, Kel32sc* line, int* index, int scale) { return filter_one_in_place<Fir64fc_32sc>(x, {taps, len}, {line, index}, scale); }
KelStatus kelsFIROne32s_Direct_16s_ISfs  (Kel16s*  x, const Kel32s*  taps, int len, int factor, Kel16s*  line, int* index, int scale) { return filter_one_in_place<Fir32s_16s>  (x, {taps, len, factor}, {line, index}, scale); }
KelStatus kelsFIROne32sc_Direct_16sc_ISfs(Kel16sc* x, const Kel32sc* taps, int len, int factor, Kel16sc* line, int* index, int scale) { return filter_one_in_place<Fir32sc_16sc>(x, {taps, len, factor}, {line, index}, scale); }

KelStatus kelsFIR_Direct_32f         (const Kel32f*  src, Kel32f*  dst, int n, const Kel32f*  taps, int len, Kel32f*  line, int* index) { return filter_block<Fir_32f>     (src, dst, n, {taps, len}, {line, index}); }
KelStatus kelsFIR_Direct_32fc        (const Kel32fc* src, Kel32fc* dst, int n, const Kel32fc* taps, int len, Kel32fc* line, int* index) { return filter_block<Fir_32fc>    (src, dst, n, {taps, len}, {line, index}); }
KelStatus kelsFIR_Direct_64f         (const Kel64f*  src, Kel64f*  dst, int n, const Kel64f*  taps, int len, Kel64f*  line, int* index) { return filter_block<Fir_64f>     (src, dst, n, {taps, len}, {line, index}); }
KelStatus kelsFIR_Direct_64fc        (const Kel64fc* src, Kel64fc* dst, int n, const Kel64fc* taps, int len, Kel64fc* line, int* index) { return filter_block<Fir_64fc>    (src, dst, n, {taps, len}, {line, index}); }
KelStatus kelsFIR64f_Direct_32f      (const Kel32f*  src, Kel32f*  dst, int n, const Kel64f*  taps, int len, Kel32f*  line, int* index) { return filter_block<Fir64f_32f>  (src, dst, n, {taps, len}, {line, index}); }
KelStatus kelsFIR64fc_Direct_32fc    (const Kel32fc* src, Kel32fc* dst, int n, const Kel64fc* taps, int len, Kel32fc* line, int* index) { return filter_block<Fir64fc_32fc>(src, dst, n, {taps, len}, {line, index}); }
KelStatus kelsFIR32f_Direct_16s_Sfs  (const Kel16s*  src, Kel16s*  dst, int n, const Kel32f*  taps, int len, Kel16s*  line, int* index, int scale) { return filter_block<Fir32f_16s>  (src, dst, n, {taps, len}, {line, index}, scale); }
KelStatus kelsFIR32fc_Direct_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, int n, const Kel32fc* taps, int len, Kel16sc* line, int* index, int scale) { return filter_block<Fir32fc_16sc>(src, dst, n, {taps, len}, {line, index}, scale); }
KelStatus kelsFIR64f_Direct_16s_Sfs  (const Kel16s*  src, Kel16s*  dst, int n, const Kel64f*  taps, int len, Kel16s*  line, int* index, int scale) { return filter_block<Fir64f_16s>  (src, dst, n, {taps, len}, {line, index}, scale); }
KelStatus kelsFIR64fc_Direct_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, int n, const Kel64fc* taps, int len, Kel16sc* line, int* index, int scale) { return filter_block<Fir64fc_16sc>(src, dst, n, {taps, len}, {line, index}, scale); }
KelStatus kelsFIR64f_Direct_32s_Sfs  (const Kel32s*  src, Kel32s*  dst, int n, const Kel64f*  taps, int len, Kel32s*  line, int* index, int scale) { return filter_block<Fir64f_32s>  (src, dst, n, {taps, len}, {line, index}, scale); }
KelStatus kelsFIR64fc_Direct_32sc_Sfs(const Kel32sc* src, Kel32sc* dst, int n, const Kel64fc* taps, int len, Kel32sc* line, int* index, int scale) { return filter_block<Fir64fc_32sc>(src, dst, n, {taps, len}, {line, index}, scale); }
KelStatus kelsFIR32s_Direct_16s_Sfs  (const Kel16s*  src, Kel16s*  dst, int n, const Kel32s*  taps, int len, int factor, Kel16s*  line, int* index, int scale) { return filter_block<Fir32s_16s>  (src, dst, n, {taps, len, factor}, {line, index}, scale); }
KelStatus kelsFIR32sc_Direct_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, int n, const Kel32sc* taps, int len, int factor, Kel16sc* line, int* index, int scale) { return filter_block<Fir32sc_16sc>(src, dst, n, {taps, len, factor}, {line, index}, scale); }

KelStatus kelsFIR_Direct_32f_I        (Kel32f*  x, int n, const Kel32f*  taps, int len, Kel32f*  line, int* index) { return filter_block_in_place<Fir_32f>     (x, n, {taps, len}, {line, index}); }
KelStatus kelsFIR_Direct_32fc_I       (Kel32fc* x, int n, const Kel32fc* taps, int len, Kel32fc* line, int* index) { return filter_block_in_place<Fir_32fc>    (x, n, {taps, len}, {line, index}); }
KelStatus kelsFIR_Direct_64f_I        (Kel64f*  x, int n, const Kel64f*  taps, int len, Kel64f*  line, int* index) { return filter_block_in_place<Fir_64f>     (x, n, {taps, len}, {line, index}); }
KelStatus kelsFIR_Direct_64fc_I       (Kel64fc* x, int n, const Kel64fc* taps, int len, Kel64fc* line, int* index) { return filter_block_in_place<Fir_64fc>    (x, n, {taps, len}, {line, index}); }
KelStatus kelsFIR64f_Direct_32f_I     (Kel32f*  x, int n, const Kel64f*  taps, int len, Kel32f*  line, int* index) { return filter_block_in_place<Fir64f_32f>  (x, n, {taps, len}, {line, index}); }
KelStatus kelsFIR64fc_Direct_32fc_I   (Kel32fc* x, int n, const Kel64fc* taps, int len, Kel32fc* line, int* index) { return filter_block_in_place<Fir64fc_32fc>(x, n, {taps, len}, {line, index}); }
KelStatus kelsFIR32f_Direct_16s_ISfs  (Kel16s*  x, int n, const Kel32f*  taps, int len, Kel16s*  line, int* index, int scale) { return filter_block_in_place<Fir32f_16s>  (x, n, {taps, len}, {line, index}, scale); }
KelStatus kelsFIR32fc_Direct_16sc_ISfs(Kel16sc* x, int n, const Kel32fc* taps, int len, Kel16sc* line, int* index, int scale) { return filter_block_in_place<Fir32fc_16sc>(x, n, {taps, len}, {line, index}, scale); }
KelStatus kelsFIR64f_Direct_16s_ISfs  (Kel16s*  x, int n, const Kel64f*  taps, int len, Kel16s*  line, int* index, int scale) { return filter_block_in_place<Fir64f_16s>  (x, n, {taps, len}, {line, index}, scale); }
KelStatus kelsFIR64fc_Direct_16sc_ISfs(Kel16sc* x, int n, const Kel64fc* taps, int len, Kel16sc* line, int* index, int scale) { return filter_block_in_place<Fir64fc_16sc>(x, n, {taps, len}, {line, index}, scale); }
KelStatus kelsFIR64f_Direct_32s_ISfs  (Kel32s*  x, int n, const Kel64f*  taps, int len, Kel32s*  line, int* index, int scale) { return filter_block_in_place<Fir64f_32s>  (x, n, {taps, len}, {line, index}, scale); }
KelStatus kelsFIR64fc_Direct_32sc_ISfs(Kel32sc* x, int n, const Kel64fc* taps, int len, Kel32sc* line, int* index, int scale) { return filter_block_in_place<Fir64fc_32sc>(x, n, {taps, len}, {line, index}, scale); }
KelStatus kelsFIR32s_Direct_16s_ISfs  (Kel16s*  x, int n, const Kel32s*  taps, int len, int factor, Kel16s*  line, int* index, int scale) { return filter_block_in_place<Fir32s_16s>  (x, n, {taps, len, factor}, {line, index}, scale); }
KelStatus kelsFIR32sc_Direct_16sc_ISfs(Kel16sc* x, int n, const Kel32sc* taps, int len, int factor, Kel16sc* line, int* index, int scale) { return filter_block_in_place<Fir32sc_16sc>(x, n, {taps, len, factor}, {line, index}, scale); }

KelStatus kelsFIRMR_Direct_32f         (const Kel32f*  src, Kel32f*  dst, int n, const Kel32f*  taps, int len, int up, int upAt, int down, int downAt, Kel32f*  line) { return change_rate<Fir_32f>     (src, dst, n, {taps, len}, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMR_Direct_32fc        (const Kel32fc* src, Kel32fc* dst, int n, const Kel32fc* taps, int len, int up, int upAt, int down, int downAt, Kel32fc* line) { return change_rate<Fir_32fc>    (src, dst, n, {taps, len}, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMR_Direct_64f         (const Kel64f*  src, Kel64f*  dst, int n, const Kel64f*  taps, int len, int up, int upAt, int down, int downAt, Kel64f*  line) { return change_rate<Fir_64f>     (src, dst, n, {taps, len}, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMR_Direct_64fc        (const Kel64fc* src, Kel64fc* dst, int n, const Kel64fc* taps, int len, int up, int upAt, int down, int downAt, Kel64fc* line) { return change_rate<Fir_64fc>    (src, dst, n, {taps, len}, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMR64f_Direct_32f      (const Kel32f*  src, Kel32f*  dst, int n, const Kel64f*  taps, int len, int up, int upAt, int down, int downAt, Kel32f*  line) { return change_rate<Fir64f_32f>  (src, dst, n, {taps, len}, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMR64fc_Direct_32fc    (const Kel32fc* src, Kel32fc* dst, int n, const Kel64fc* taps, int len, int up, int upAt, int down, int downAt, Kel32fc* line) { return change_rate<Fir64fc_32fc>(src, dst, n, {taps, len}, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMR32f_Direct_16s_Sfs  (const Kel16s*  src, Kel16s*  dst, int n, const Kel32f*  taps, int len, int up, int upAt, int down, int downAt, Kel16s*  line, int scale) { return change_rate<Fir32f_16s>  (src, dst, n, {taps, len}, {up, upAt, down, downAt}, line, scale); }
KelStatus kelsFIRMR32fc_Direct_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, int n, const Kel32fc* taps, int len, int up, int upAt, int down, int downAt, Kel16sc* line, int scale) { return change_rate<Fir32fc_16sc>(src, dst, n, {taps, len}, {up, upAt, down, downAt}, line, scale); }
KelStatus kelsFIRMR64f_Direct_16s_Sfs  (const Kel16s*  src, Kel16s*  dst, int n, const Kel64f*  taps, int len, int up, int upAt, int down, int downAt, Kel16s*  line, int scale) { return change_rate<Fir64f_16s>  (src, dst, n, {taps, len}, {up, upAt, down, downAt}, line, scale); }
KelStatus kelsFIRMR64fc_Direct_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, int n, const Kel64fc* taps, int len, int up, int upAt, int down, int downAt, Kel16sc* line, int scale) { return change_rate<Fir64fc_16sc>(src, dst, n, {taps, len}, {up, upAt, down, downAt}, line, scale); }
KelStatus kelsFIRMR64f_Direct_32s_Sfs  (const Kel32s*  src, Kel32s*  dst, int n, const Kel64f*  taps, int len, int up, int upAt, int down, int downAt, Kel32s*  line, int scale) { return change_rate<Fir64f_32s>  (src, dst, n, {taps, len}, {up, upAt, down, downAt}, line, scale); }
KelStatus kelsFIRMR64fc_Direct_32sc_Sfs(const Kel32sc* src, Kel32sc* dst, int n, const Kel64fc* taps, int len, int up, int upAt, int down, int downAt, Kel32sc* line, int scale) { return change_rate<Fir64fc_32sc>(src, dst, n, {taps, len}, {up, upAt, down, downAt}, line, scale); }
KelStatus kelsFIRMR32s_Direct_16s_Sfs  (const Kel16s*  src, Kel16s*  dst, int n, const Kel32s*  taps, int len, int factor, int up, int upAt, int down, int downAt, Kel16s*  line, int scale) { return change_rate<Fir32s_16s>  (src, dst, n, {taps, len, factor}, {up, upAt, down, downAt}, line, scale); }
KelStatus kelsFIRMR32sc_Direct_16sc_Sfs(const Kel16sc* src, Kel16sc* dst, int n, const Kel32sc* taps, int len, int factor, int up, int upAt, int down, int downAt, Kel16sc* line, int scale) { return change_rate<Fir32sc_16sc>(src, dst, n, {taps, len, factor}, {up, upAt, down, downAt}, line, scale); }

KelStatus kelsFIRMR_Direct_32f_I        (Kel32f*  x, int n, const Kel32f*  taps, int len, int up, int upAt, int down, int downAt, Kel32f*  line) { return change_rate_in_place<Fir_32f>     (x, n, {taps, len}, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMR_Direct_32fc_I       (Kel32fc* x, int n, const Kel32fc* taps, int len, int up, int upAt, int down, int downAt, Kel32fc* line) { return change_rate_in_place<Fir_32fc>    (x, n, {taps, len}, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMR_Direct_64f_I        (Kel64f*  x, int n, const Kel64f*  taps, int len, int up, int upAt, int down, int downAt, Kel64f*  line) { return change_rate_in_place<Fir_64f>     (x, n, {taps, len}, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMR_Direct_64fc_I       (Kel64fc* x, int n, const Kel64fc* taps, int len, int up, int upAt, int down, int downAt, Kel64fc* line) { return change_rate_in_place<Fir_64fc>    (x, n, {taps, len}, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMR64f_Direct_32f_I     (Kel32f*  x, int n, const Kel64f*  taps, int len, int up, int upAt, int down, int downAt, Kel32f*  line) { return change_rate_in_place<Fir64f_32f>  (x, n, {taps, len}, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMR64fc_Direct_32fc_I   (Kel32fc* x, int n, const Kel64fc* taps, int len, int up, int upAt, int down, int downAt, Kel32fc* line) { return change_rate_in_place<Fir64fc_32fc>(x, n, {taps, len}, {up, upAt, down, downAt}, line); }
KelStatus kelsFIRMR32f_Direct_16s_ISfs  (Kel16s*  x, int n, const Kel32f*  taps, int len, int up, int upAt, int down, int downAt, Kel16s*  line, int scale) { return change_rate_in_place<Fir32f_16s>  (x, n, {taps, len}, {up, upAt, down, downAt}, line, scale); }
KelStatus kelsFIRMR32fc_Direct_16sc_ISfs(Kel16sc* x, int n, const Kel32fc* taps, int len, int up, int upAt, int down, int downAt, Kel16sc* line, int scale) { return change_rate_in_place<Fir32fc_16sc>(x, n, {taps, len}, {up, upAt, down, downAt}, line, scale); }
KelStatus kelsFIRMR64f_Direct_16s_ISfs  (Kel16s*  x, int n, const Kel64f*  taps, int len, int up, int upAt, int down, int downAt, Kel16s*  line, int scale) { return change_rate_in_place<Fir64f_16s>  (x, n, {taps, len}, {up, upAt, down, downAt}, line, scale); }
KelStatus kelsFIRMR64fc_Direct_16sc_ISfs(Kel16sc* x, int n, const Kel64fc* taps, int len, int up, int upAt, int down, int downAt, Kel16sc* line, int scale) { return change_rate_in_place<Fir64fc_16sc>(x, n, {taps, len}, {up, upAt, down, downAt}, line, scale); }
KelStatus kelsFIRMR64f_Direct_32s_ISfs  (Kel32s*  x, int n, const Kel64f*  taps, int len, int up, int upAt, int down, int downAt, Kel32s*  line, int scale) { return change_rate_in_place<Fir64f_32s>  (x, n, {taps, len}, {up, upAt, down, downAt}, line, scale); }
KelStatus kelsFIRMR64fc_Direct_32sc_ISfs(Kel32sc* x, int n, const Kel64fc* taps, int len, int up, int upAt, int down, int downAt, Kel32sc* line, int scale) { return change_rate_in_place<Fir64fc_32sc>(x, n, {taps, len}, {up, upAt, down, downAt}, line, scale); }
KelStatus kelsFIRMR32s_Direct_16s_ISfs  (Kel16s*  x, int n, const Kel32s*  taps, int len, int factor, int up, int upAt, int down, int downAt, Kel16s*  line, int scale) { return change_rate_in_place<Fir32s_16s>  (x, n, {taps, len, factor}, {up, upAt, down, downAt}, line, scale); }
KelStatus kelsFIRMR32sc_Direct_16sc_ISfs(Kel16sc* x, int n, const Kel32sc* taps, int len, int factor, int up, int upAt, int down, int downAt, Kel16sc* line, int scale) { return change_rate_in_place<Fir32sc_16sc>(x, n, {taps, len, factor}, {up, upAt, down, downAt}, line, scale); }
}
// clang-format on
