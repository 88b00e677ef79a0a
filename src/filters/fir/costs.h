// What the engines cost, about, in nanoseconds: only meant to be compared. The prices are fitted, at each level, to the
// times of every engine over a grid of taps and block lengths on one machine.
#pragma once

#include "filters/fir/real_sums.h"
#include "frame/simd/vector.h"
#include "kels/types.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace kels {

/// At v4, at v3, at the baseline.
constexpr double by_level(double v4, double v3, double base) {
    return vector_bytes == 64 ? v4 : vector_bytes == 32 ? v3 : base;
}

/// What elementary steps take. Complex samples and taps are counted by their parts.
namespace price {
inline constexpr double call = 50;
inline constexpr double behind_call = 100;                            ///< of a stream of short ones
inline constexpr double frame = 90;                                   ///< beside its samples
inline constexpr double taking = 0.4;                                 ///< of a frame, without the way back
inline constexpr double strip = by_level(0.42, 0.35, 0.3);            ///< of outputs, a tap
inline constexpr double strip_vector = by_level(0.25, 0.22, 0.28);    ///< of such a strip
inline constexpr double output = by_level(0.5, 0.7, 1.0);             ///< of a direct sum, beside its products
inline constexpr double single = 5;                                   ///< sum of its own, beside its products
inline constexpr double single_product = by_level(0.17, 0.17, 0.23);  ///< of a tap and a sample in a sum of its own
inline constexpr double spectral_product = by_level(0.12, 0.18, 0.3); ///< of a piece of taps and a part of a transform
inline constexpr double transform = by_level(1.15, 1.65, 2.8);        ///< both ways, of a part, in double precision
inline constexpr double single_transform = by_level(0.8, 1.15, 3.4);
inline constexpr double store = by_level(0.3, 0.6, 2.0); ///< of a part, with a look at both ends
} // namespace price

/// Transforms take longer for every further pass, and beyond the inner cache.
template <class T>
double growth(int parts_of_transform) {
    const auto sizes = static_cast<unsigned>(parts_of_transform) * sizeof(T) / 4096;
    return sizes > 1 ? 1 + 0.2 * static_cast<double>(std::bit_width(sizes) - 1) : 1;
}

/// A filter, as far as it matters.
template <bool complex>
struct CostsOf {
    static constexpr int width = complex ? 2 : 1;
    double taps;

    double one_by_one(double samples) const {
        return price::call + samples * (price::single + price::single_product * width * width * taps);
    }
    double direct(int samples) const {
        constexpr int lanes = max_lanes<Kel64f>, most = RealSums<complex>::widest;
        const int vectors = (samples * width + lanes - 1) / lanes, strips = (vectors + most - 1) / most;
        return price::call + price::output * width * samples +
               width * taps * (price::strip * strips + price::strip_vector * vectors);
    }
    /// Whether a few outputs are better summed each on its own.
    bool few(int samples) const { return one_by_one(samples) < direct(samples); }
    double least_direct(int samples) const { return std::min(one_by_one(samples), direct(samples)); }

    /// Samples through a transform both ways; that of `pieces` others is known.
    template <class T>
    double block(int samples, double pieces) const {
        const int all = samples * width;
        constexpr double there_and_back = sizeof(T) == 4 ? price::single_transform : price::transform;
        return all * (there_and_back * growth<T>(all) + price::spectral_product * pieces);
    }
    /// A frame of new samples and the one before it.
    double frame(int length, double pieces) const {
        return price::frame + block<Kel64f>(2 * length, pieces) + price::store * length * width;
    }

    /// The first taps of such a filter.
    static double head(int first_taps, int samples) { return CostsOf{double(first_taps)}.least_direct(samples); }

    /// A stream of short calls, levels of frames behind a head: for each sample, without the head.
    double behind_head(const int* level, int levels) const {
        double all = price::store * width;
        for (int i = 0; i < levels; ++i) {
            const double pieces = std::ceil((i + 1 < levels ? level[i + 1] : taps) / level[i]) - 1;
            all += (price::frame + block<Kel64f>(2 * level[i], pieces)) / level[i];
        }
        return all;
    }
};

} // namespace kels
