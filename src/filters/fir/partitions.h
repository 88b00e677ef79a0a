// Taps in pieces of one length, and their spectra in double precision: pieces of the stream's spectrum as long as they
// are kept, so that a frame of samples takes one transform, one product a piece of taps, and one transform back (T. G.
// Stockham: High-speed convolution and correlation, 1966; the pieces: B. D. Kulp, Digital equalization using Fourier
// transform techniques, 1988).
//
// A transform takes the frame and the one before it, and of its results the second half is right.
#pragma once

#include "filters/fir/direct.h"
#include "frame/complex_vector.h"
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

/// What taps that are not silent are taken for, as their squares may be nothing: its products with a sample count, too.
inline constexpr Kel64f least_size = 0x1p-400;

/// Not a moment of any stream.
inline constexpr std::uint64_t no_moment = ~std::uint64_t{0};

/// The root of the sum of squares.
template <class X>
Kel64f norm(const X* x, std::ptrdiff_t count) {
    using V = Vec<Kel64f>;
    constexpr int chains = 4; // the latency of one would be waited for
    V squares[chains] = {};
    std::ptrdiff_t i = 0;
    for (; i + chains * lanes<V> <= count; i += chains * lanes<V>)
        unrolled<chains>([&](auto c) KELS_INLINE {
            const V some = convert<Kel64f>(load<Vec<X, lanes<V>>>(x + i + c * lanes<V>));
            squares[c] = fma(some, some, squares[c]);
        });
    Kel64f sum = sum_of_lanes((squares[0] + squares[1]) + (squares[2] + squares[3]));
    for (; i < count; ++i) sum += static_cast<Kel64f>(x[i]) * static_cast<Kel64f>(x[i]);
    return std::sqrt(sum);
}

/// The plans of partitions, one for all of a length.
template <class T>
class PlansByOrder {
public:
    using Plan = typename Spectral<T>::Plan;
    static constexpr int most = 16;

    /// Null for want of memory.
    const Plan* of(int order) {
        Plan* made = nullptr;
        if (!plans[order] && Spectral<T>::make(&made, order, kelFftNormInv, kelHintDefault) == kelStatusOk)
            plans[order].reset(made);
        return plans[order].get();
    }

private:
    OwnedPlan<T> plans[most + 1];
};

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
    bool make(const Taps* taps, int first, int end, int frame_length, PlansByOrder<T>& plans) {
        frame = frame_length;
        pieces = (end - first + frame - 1) / frame;
        plan = plans.of(std::bit_width(static_cast<unsigned>(frame)));
        if (!plan) return false;
        const std::int64_t spectra = 2 * std::int64_t{pieces} + 1;
        room = make_owned_product<Kel64f>(stride(), spectra + 1);
        if (!room) return false;
        first_spectrum = room.get() + (64 - reinterpret_cast<std::uintptr_t>(room.get()) % 64) / sizeof(Kel64f);
        std::fill_n(first_spectrum, stride() * spectra, 0.0);
        for (int piece = 0; piece < pieces; ++piece) {
            Kel64f* h = of_taps(piece);
            const int from = first + piece * frame, count = std::min(frame, end - from);
            std::copy_n(reals(taps + from), count * width, h);
            const bool silent = std::all_of(h, h + count * width, [](Kel64f tap) { return tap == 0; });
            transform(h);
            size(h) = silent ? 0 : std::max(greatest(h), least_size);
        }
        return true;
    }

    /// The frame from `position` on and the one before it become the newest; what the stream does not have is silent.
    template <class Stream>
    void take(const Stream& stream, std::ptrdiff_t position) {
        newest = (newest + pieces - 1) % pieces;
        Kel64f* x = of_samples(newest);
        stream.copy_or_silence(position - frame, 2 * std::ptrdiff_t{frame}, x);
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
        Spectral<T>::inverse(reinterpret_cast<T*>(y), reinterpret_cast<T*>(y), plan, nullptr);
        return level * error_of_sums;
    }

private:
    using V = Vec<Kel64f>;

    const typename Spectral<T>::Plan* plan = nullptr;
    Owned<Kel64f> room; ///< spectra of the taps, of the samples, and one of results, each with its size behind it
    Kel64f* first_spectrum = nullptr; ///< at the beginning of a line of the cache
    int newest = 0;

    std::ptrdiff_t points() const { return 2 * std::ptrdiff_t{frame} * width; }
    std::ptrdiff_t stride() const { return points() + 8; }
    Kel64f* of_taps(int piece) { return first_spectrum + piece * stride(); }
    Kel64f* of_samples(int place) { return of_taps(pieces + place); }
    Kel64f* meets(int piece) { return of_samples((newest + piece) % pieces); }
    Kel64f& size(Kel64f* spectrum) { return spectrum[points()]; }

    /// To a spectrum whose real and imaginary parts stand vector by vector, so that products take no shuffles.
    void transform(Kel64f* x) {
        Spectral<T>::forward(reinterpret_cast<T*>(x), reinterpret_cast<T*>(x), plan, nullptr);
        for (std::ptrdiff_t i = 0; i < points(); i += 2 * lanes<V>) store_parts(x + i, load_interleaved<V>(x + i));
    }

    static Complex<V> load_parts(const Kel64f* p) { return {load<V>(p), load<V>(p + lanes<V>)}; }
    static void store_parts(Kel64f* p, Complex<V> z) {
        store(p, z.re);
        store(p + lanes<V>, z.im);
    }

    /// The greatest absolute value of a spectrum, infinity where there are NaNs: these do not count as the greatest,
    /// but show in the sum.
    Kel64f greatest(const Kel64f* h) const {
        V most{}, all{};
        for (std::ptrdiff_t i = 0; i < points(); i += 2 * lanes<V>) {
            const Complex<V> z = load_parts(h + i);
            const V square = fma(z.re, z.re, z.im * z.im);
            most = square > most ? square : most;
            all = all + square;
        }
        constexpr Kel64f infinity = std::numeric_limits<Kel64f>::infinity();
        const auto larger = [](auto a, auto b) KELS_INLINE { return a > b ? a : b; };
        return sum_of_lanes(all) < infinity ? std::sqrt(fold_lanes(most, larger)) : infinity;
    }

    /// y = the sum of the products, in the order of the transforms. Spectra of real samples begin with two real points.
    void multiply(Kel64f* y) {
        Kel64f first[2] = {};
        for (int piece = 0; width == 1 && piece < pieces; ++piece)
            for (int i = 0; i < 2; ++i) first[i] += of_taps(piece)[i * lanes<V>] * meets(piece)[i * lanes<V>];
        int piece = 0;
        for (; pieces - piece > 4; piece += 4) add_products<4>(piece, y);
        switch (pieces - piece) {
        case 1:
            add_products<1>(piece, y);
            break;
        case 2:
            add_products<2>(piece, y);
            break;
        case 3:
            add_products<3>(piece, y);
            break;
        default:
            add_products<4>(piece, y);
        }
        if constexpr (width == 1) std::copy_n(first, 2, y);
    }

    /// Of some pieces at a time, so that the sums are seldom loaded and stored.
    template <int Count>
    void add_products(int piece, Kel64f* y) {
        const Kel64f *h[Count], *x[Count];
        for (int i = 0; i < Count; ++i) {
            h[i] = of_taps(piece + i);
            x[i] = meets(piece + i);
        }
        const bool begins = piece == 0, ends = piece + Count == pieces;
        for (std::ptrdiff_t at = 0; at < points(); at += 2 * lanes<V>) {
            Complex<V> sum = begins ? Complex<V>{} : load_parts(y + at);
            unrolled<Count>([&](auto i) KELS_INLINE {
                const Complex<V> a = load_parts(h[i] + at), b = load_parts(x[i] + at);
                sum.re = fma(a.re, b.re, fma(-a.im, b.im, sum.re));
                sum.im = fma(a.re, b.im, fma(a.im, b.re, sum.im));
            });
            if (ends)
                store_interleaved(y + at, sum);
            else
                store_parts(y + at, sum);
        }
    }
};

} // namespace kels
