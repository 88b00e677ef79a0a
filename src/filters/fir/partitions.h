// Taps in pieces of one length, and their spectra in double precision: pieces of the stream's spectrum as long as they
// are kept, so that a frame of samples takes one transform, one product a piece of taps, and one transform back (T. G.
// Stockham: High-speed convolution and correlation, 1966; the pieces: B. D. Kulp, Digital equalization using Fourier
// transform techniques, 1988).
//
// A transform takes the frame and the one before it, and of its results the second half is right.
#pragma once

#include "filters/fir/direct.h"
#include "frame/memory.h"
#include "frame/simd.h"
#include "transforms/fft/functions.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>

namespace kels {

/// How far sums in double precision, formed in whatever way, may lie apart, against the norm of the samples times that
/// of the taps or the greatest value of their spectrum. The norm of a transform's error is about a third of 2^-52
/// sqrt(log2 N) of the norm of its points; the bound is as if all of it met one output.
inline constexpr Kel64f error_of_sums = 0x1p-47;

/// Not a moment of any stream.
inline constexpr std::uint64_t no_moment = ~std::uint64_t{0};

/// The root of the sum of squares.
template <class X>
Kel64f norm(const X* x, std::ptrdiff_t count) {
    using V = Vec<Kel64f>;
    V squares{};
    std::ptrdiff_t i = 0;
    for (; i + lanes<V> <= count; i += lanes<V>) {
        const V some = convert<Kel64f>(load<Vec<X, lanes<V>>>(x + i));
        squares = fma(some, some, squares);
    }
    Kel64f sum = sum_of_lanes(squares);
    for (; i < count; ++i) sum += static_cast<Kel64f>(x[i]) * static_cast<Kel64f>(x[i]);
    return std::sqrt(sum);
}

/// T is Kel64f or Kel64fc.
template <class T>
class Partitions {
public:
    static constexpr int width = parts<T>;
    int frame = 0; ///< samples; 0 where there are no partitions
    int pieces = 0;
    std::uint64_t moment = no_moment; ///< of the stream whose whole frames have all been taken

    /// Of taps `first` to `end` - 1; the samples before are silent.
    template <class Taps>
    bool make(const Taps* taps, int first, int end, int frame_length) {
        using S = Spectral<T>;
        frame = frame_length;
        pieces = (end - first + frame - 1) / frame;
        typename S::Plan* made = nullptr;
        if (S::make(&made, std::bit_width(static_cast<unsigned>(frame)), kelFftNormInv, kelHintDefault) != kelStatusOk)
            return false;
        plan.reset(made);
        const std::int64_t spectra = 2 * std::int64_t{pieces} + 1;
        room = make_owned_product<Kel64f>(stride(), spectra + 1);
        if (!room) return false;
        first_spectrum = room.get() + (64 - reinterpret_cast<std::uintptr_t>(room.get()) % 64) / sizeof(Kel64f);
        std::fill_n(first_spectrum, stride() * spectra, 0.0);
        for (int piece = 0; piece < pieces; ++piece) {
            Kel64f* h = of_taps(piece);
            const int from = first + piece * frame, count = std::min(frame, end - from);
            std::copy_n(reals(taps + from), count * width, h);
            transform(h);
            Kel64f most = 0, all = 0; // NaNs do not count as the greatest, but show in the sum
            for (std::ptrdiff_t i = 0; i < points(); i += 2) {
                const Kel64f square = h[i] * h[i] + h[i + 1] * h[i + 1];
                most = std::max(most, square);
                all += square;
            }
            constexpr Kel64f infinity = std::numeric_limits<Kel64f>::infinity();
            size(h) = all < infinity ? std::sqrt(most) : infinity;
        }
        return true;
    }

    /// The frame from `position` on and the one before it become the newest; what the stream does not have is silent.
    template <class Stream>
    void take(const Stream& stream, std::ptrdiff_t position) {
        newest = (newest + pieces - 1) % pieces;
        Kel64f* x = of_samples(newest);
        std::fill_n(x, points(), 0.0);
        stream.copy(position - frame, 2 * frame, x);
        size(x) = norm(x, points());
        if (size(x) != 0) transform(x);
    }

    /// What the pieces make of the frames, the first of the newest, the second of the one before: `frame` outputs. How
    /// far from the sums they may lie is the result.
    Kel64f sum(Kel64f*& outputs) {
        Kel64f* const y = of_samples(pieces);
        outputs = y + frame * width;
        Kel64f level = 0;
        for (int piece = 0; piece < pieces; ++piece) level += size(of_taps(piece)) * size(meets(piece));
        if (level == 0) {
            std::fill_n(outputs, frame * width, 0.0);
            return 0;
        }
        multiply(y);
        Spectral<T>::inverse(reinterpret_cast<T*>(y), reinterpret_cast<T*>(y), plan.get(), nullptr);
        return level * error_of_sums;
    }

private:
    OwnedPlan<T> plan;
    Owned<Kel64f> room; ///< spectra of the taps, of the samples, and one of results, each with its size behind it
    Kel64f* first_spectrum = nullptr; ///< at the beginning of a line of the cache
    int newest = 0;

    std::ptrdiff_t points() const { return 2 * std::ptrdiff_t{frame} * width; }
    std::ptrdiff_t stride() const { return points() + 8; }
    Kel64f* of_taps(int piece) { return first_spectrum + piece * stride(); }
    Kel64f* of_samples(int place) { return of_taps(pieces + place); }
    Kel64f* meets(int piece) { return of_samples((newest + piece) % pieces); }
    Kel64f& size(Kel64f* spectrum) { return spectrum[points()]; }

    void transform(Kel64f* x) {
        Spectral<T>::forward(reinterpret_cast<T*>(x), reinterpret_cast<T*>(x), plan.get(), nullptr);
    }

    /// y = the sum of the products. Spectra of real samples begin with two real points.
    void multiply(Kel64f* y) {
        using V = Vec<Kel64f>;
        constexpr int side_by_side = 2;
        Kel64f first[2] = {};
        for (int piece = 0; width == 1 && piece < pieces; ++piece)
            for (int i = 0; i < 2; ++i) first[i] += of_taps(piece)[i] * meets(piece)[i];
        for (std::ptrdiff_t i = 0; i < points(); i += side_by_side * lanes<V>) {
            V direct[side_by_side] = {}, turned[side_by_side] = {};
            for (int piece = 0; piece < pieces; ++piece) {
                const Kel64f *h = of_taps(piece) + i, *x = meets(piece) + i;
                unrolled<side_by_side>([&](auto v) KELS_INLINE {
                    const V a = load<V>(h + v * lanes<V>), b = load<V>(x + v * lanes<V>);
                    direct[v] = fma(shuffle<[](int lane) { return lane & ~1; }>(a, a), b, direct[v]);
                    turned[v] = fma(shuffle<[](int lane) { return lane | 1; }>(a, a), b, turned[v]);
                });
            }
            unrolled<side_by_side>([&](auto v)
                                       KELS_INLINE { store(y + i + v * lanes<V>, complex_sum(direct[v], turned[v])); });
        }
        if constexpr (width == 1) std::copy_n(first, 2, y);
    }
};

} // namespace kels
