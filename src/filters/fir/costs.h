// What the engines cost, about, in nanoseconds: measured on one machine at every level, and only meant to be compared.
#pragma once

#include "frame/simd/vector.h"
#include "kels/types.h"

#include <algorithm>

namespace kels {

/// At v4, at v3, at the baseline.
constexpr double by_level(double v4, double v3, double base) {
    return vector_bytes == 64 ? v4 : vector_bytes == 32 ? v3 : base;
}

/// What elementary steps take. Complex samples and taps are counted by their parts.
namespace price {
inline constexpr double call = 30;
inline constexpr double frame = 80;                                   ///< beside its samples
inline constexpr double product = by_level(0.034, 0.08, 0.3);         ///< of a tap and a sample in a strip
inline constexpr double strip = by_level(16, 8, 4);                   ///< outputs that a strip costs beside its own
inline constexpr double single_product = by_level(0.14, 0.17, 0.45);  ///< of a tap and a sample in a sum of its own
inline constexpr double spectral_product = by_level(0.15, 0.25, 0.6); ///< of a piece of taps and a part of a transform
inline constexpr double transform = by_level(1.2, 2.4, 5.0);          ///< both ways, of a part, in double precision
inline constexpr double single_transform = by_level(0.7, 1.2, 2.5);
inline constexpr double store = by_level(0.8, 1.2, 2.0); ///< of a part, with a look at both ends
} // namespace price

/// Transforms beyond the inner caches take longer.
inline double cache_factor(double parts_of_transform) {
    return parts_of_transform > 8192 ? 1.9 : parts_of_transform > 2048 ? 1.4 : 1;
}

/// A filter, as far as it matters.
template <bool complex>
struct CostsOf {
    static constexpr int width = complex ? 2 : 1;
    static constexpr double products = complex ? 3.5 : 1; ///< of a complex product, in real ones
    double taps;

    double one_by_one(double samples) const {
        return samples * (price::call / 2 + price::single_product * products * taps);
    }
    double direct(double samples) const {
        return price::call + price::product * products * taps * (samples + price::strip);
    }
    double least_direct(double samples) const { return std::min(one_by_one(samples), direct(samples)); }

    /// Samples through a transform both ways; that of `pieces` others is known.
    template <class T>
    double block(double samples, double pieces) const {
        const double all = samples * width;
        constexpr double there_and_back = sizeof(T) == 4 ? price::single_transform : price::transform;
        return all * (there_and_back * cache_factor(all) + price::spectral_product * pieces);
    }
    /// A frame of new samples and the one before it.
    double frame(double length, double pieces) const {
        return price::frame + block<Kel64f>(2 * length, pieces) + price::store * length * width;
    }

    /// A stream of short calls, levels of frames behind a head: for each sample.
    double behind_head(const int* level, int levels) const {
        double all = price::product * products * level[0] + price::store * width + price::frame / level[0];
        for (int i = 0; i < levels; ++i) {
            const double end = i + 1 < levels ? level[i + 1] : taps;
            all += block<Kel64f>(2 * level[i], (end - level[i]) / level[i]) / level[i];
        }
        return all;
    }
};

} // namespace kels
