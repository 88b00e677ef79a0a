// Direct sums by way of spectra in double precision, with the direct engine's bits.
//
// A sum by way of a transform lies as close to the direct one as a bound of the block's level says. Where both ends of
// that interval round to one sample, it is the direct engine's. Where they do not (one output in some ten thousand), or
// where the bound is no number since a sample is none, the output is formed again directly.
//
// There are two ways. Whole frames of a call take one product with every piece of the taps; where a call is shorter
// than a frame, silence fills it up. In a stream of short calls, the newest samples meet the first taps directly, and
// what the other taps make of the frames before is there when a frame begins (W. G. Gardner: Efficient convolution
// without input-output delay, 1995), so that it does not matter how calls cut the frames.
#pragma once

#include "filters/fir/context.h"

namespace kels {

/// How a call stores its sums: as direct ones are, or with the ties of a transform's.
template <class Family>
struct Storing {
    using Sample = typename Family::Sample;
    bool as_transformed;
    int scaleFactor, tapsFactor;

    template <class Total>
    void operator()(const Total* sums, Part<Sample>* dst, int count) const {
        if constexpr (std::is_same_v<Total, Kel64f>)
            if (as_transformed) {
                store_transformed(sums, dst, count, scaleFactor);
                return;
            }
        store_rounded(sums, dst, count, rounding<Family>(scaleFactor, tapsFactor));
    }

    /// Stores sums that may be off by `bound`, and tells whether no sample depends on it.
    bool certain(const Kel64f* sums, Kel64f bound, Part<Sample>* dst, int count) const {
        using R = Part<Sample>;
        using Bits = std::conditional_t<sizeof(R) == 2, Kel16s, Kel32s>;
        if (as_transformed) return false; // only looked at one by one
        const auto rounded = rounding<Family>(scaleFactor, tapsFactor);
        bool same = true;
        in_widest<R>(count, [&](auto width) KELS_INLINE {
            using V = Vec<Kel64f, width>;
            using B = Vec<Bits, width>;
            B differences{};
            const auto some = [&](Index i) KELS_INLINE {
                const V sum = load<V>(sums + i);
                const auto low = rounded.template to<R>(sum - splat<V>(bound)),
                           high = rounded.template to<R>(sum + splat<V>(bound));
                differences = differences | (bits_as<B>(low) ^ bits_as<B>(high));
                kels::store(dst + i, high);
            };
            for (Index i = 0; i < count - width; i += width) some(i);
            some(count - width);
            same = fold_lanes(differences, [](auto a, auto b) KELS_INLINE { return decltype(a)(a | b); }) == 0;
        });
        return same;
    }
};

/// Outputs first to first + count - 1 of the block that the line has just taken in, of `length` samples.
template <class Family>
[[gnu::noinline]] void store_direct_sums(const SingleRate<Family>& own, int length, int first, int count,
                                         typename Family::Sample* dst, const Storing<Family>& store) {
    Tile<SumsOf<Family>, 128 / SumsOf<Family>::width> tile;
    for (int outputs; count > 0; count -= outputs, first += outputs, dst += outputs) {
        outputs = std::min(tile.most_outputs, count);
        tile.sum(own.recent(length), first, outputs, own.stored_coefficients(), own.tapsLen);
        store(tile.sums(), reals(dst), outputs * SumsOf<Family>::width);
    }
}

/// One of them.
template <class Family>
void store_direct_sum(const SingleRate<Family>& own, const typename Family::Sample* newest,
                      typename Family::Sample* dst, const Storing<Family>& store) {
    using Sums = SumsOf<Family>;
    const typename Sums::Coefficient* taps = own.coefficients.get();
    store(Sums::dot_of_fresh(reals(newest - (own.tapsLen - 1)), taps, own.tapsLen).data(), reals(dst), Sums::width);
}

/// Stores the sums of the block that the line has just taken in, each of which may be off by `bound`.
template <class Family>
void store_checked(const SingleRate<Family>& own, const Kel64f* sums, Kel64f bound, int count,
                   typename Family::Sample* dst, const Storing<Family>& store) {
    using R = Part<typename Family::Sample>;
    using Bits = std::conditional_t<sizeof(R) == 2, Kel16s, Kel32s>;
    constexpr int width = parts<typename Family::Sample>, most = 128 / width, too_many = most / 8;
    constexpr Kel64f infinity = std::numeric_limits<Kel64f>::infinity();
    constexpr Kel64f least_bound = 0x1p-1000; // what may be lost below the normal numbers
    if (bound > 0) bound += least_bound;
    for (int first = 0, outputs; first < count; first += outputs, sums += outputs * width) {
        outputs = std::min(most, count - first);
        if (bound < infinity && store.certain(sums, bound, reals(dst + first), outputs * width)) continue;
        R low[most * width], high[most * width];
        Kel64f ends[most * width];
        each(outputs * width, [&](auto i) { ends[i] = sums[i] - bound; });
        store(ends, low, outputs * width);
        each(outputs * width, [&](auto i) { ends[i] = sums[i] + bound; });
        store(ends, high, outputs * width);
        int doubtful = 0;
        for (int i = 0; i < outputs * width; ++i)
            doubtful += std::bit_cast<Bits>(low[i]) != std::bit_cast<Bits>(high[i]);
        if (doubtful > too_many || !(bound < infinity)) {
            store_direct_sums(own, count, first, outputs, dst + first, store);
            continue;
        }
        std::copy_n(high, outputs * width, reals(dst + first));
        for (int i = 0; doubtful > 0 && i < outputs; ++i)
            if (std::memcmp(low + i * width, high + i * width, width * sizeof(R)) != 0)
                store_direct_sum(own, own.recent(count).src + first + i, dst + first + i, store);
    }
}

/// Filters a block in frames of its own.
template <class Family, class Frames>
void filter_frames(SingleRate<Family>& own, Frames& frames, const typename Family::Sample* src,
                   typename Family::Sample* dst, int count, const Storing<Family>& store) {
    if (frames.moment != own.moment)
        for (int i = frames.pieces - 1; i > 0; --i) frames.take(own.stream(src, 0), -i * frames.frame);
    for (int some; count > 0; count -= some, src += some, dst += some) {
        some = std::min(count, frames.frame);
        own.advance(src, some);
        frames.take(own.recent(some), 0);
        Kel64f* sums;
        const Kel64f bound = frames.sum(sums);
        store_checked(own, sums, bound, some, dst, store);
        frames.moment = some == frames.frame ? own.moment : no_moment;
    }
}

/// Whether a few outputs are summed each on its own.
template <class Family>
bool summed_one_by_one(int taps, int outputs) {
    constexpr int most = 16, always = 3;
    if constexpr (Family::integer_taps)
        return outputs <= always;
    else
        return outputs <= most && CostsOf<Family::complex>{double(taps)}.few(outputs);
}

/// Filters a block of a stream of short ones.
template <class Family>
void filter_behind_head(SingleRate<Family>& own, const typename Family::Sample* src, typename Family::Sample* dst,
                        int count, const Storing<Family>& store) {
    using Sums = SumsOf<Family>;
    constexpr int width = Sums::width;
    auto& behind = own.spectral.behind;
    const int head = behind.head();
    const auto* taps = own.coefficients.get() + (own.tapsLen - head) * width;
    if (behind.moment != own.moment) behind.start(own.stream(src, 0));
    constexpr int longest = std::remove_reference_t<decltype(behind)>::longest_head;
    Tile<Sums, longest, longest> tile;
    for (int some; count > 0; count -= some, src += some, dst += some) {
        some = std::min(count, head - behind.position % head);
        own.advance(src, some);
        const auto block = own.recent(some);
        const auto* oldest = block.src - (head - 1);
        Kel64f* const sums = tile.sums();
        if (summed_one_by_one<Family>(head, some)) {
            for (int i = 0; i < some; ++i)
                std::copy_n(Sums::dot_of_fresh(reals(oldest + i), taps, head).data(), width, sums + i * width);
        } else {
            tile.sum(Stream<typename Family::Sample>{oldest, head - 1, block.src, some}, 0, some,
                     StoredCoefficients<Sums>{taps}, head);
        }
        Kel64f bound = error_of_sums * behind.norm_of_head * norm(reals(oldest), (head - 1 + some) * width);
        bound += behind.add(sums, some);
        store_checked(own, sums, bound, some, dst, store);
        behind.advance(own.stream(src, 0), some);
    }
    behind.moment = own.moment;
}

} // namespace kels
