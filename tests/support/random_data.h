// Test data: random values with the telling ones among them.
#pragma once

#include "support/rows.h"

#include <cstdint>
#include <random>
#include <string_view>
#include <vector>

namespace kels_test {

/// The seed of this run: fixed, or the environment's KELS_TEST_SEED. It is printed when the tests start.
std::uint64_t seed();

/// A generator of the run's seed and of what it is for, so that a test draws the same data alone as among others.
class Random {
public:
    explicit Random(std::string_view purpose);

    /// Draws the same in every run.
    explicit Random(std::uint64_t start) : engine(start) {}

    std::uint64_t bits() { return engine(); }
    int below(int n) { return static_cast<int>(engine() % static_cast<unsigned>(n)); }
    double uniform(double low, double high) {
        return low + (high - low) * static_cast<double>(engine() >> 11) * 0x1p-53;
    }

private:
    std::mt19937_64 engine;
};

inline constexpr int usual_special_share = 8;

/// Fills `count` elements. One part in `specials`, or none if that is 0, is a special value: zeros, ones, the extremes
/// and their neighbours; in floating point denormals, infinities, and NaNs of both kinds, signs and several payloads.
/// The others are random in [low, high] if that is a range; else integers over their whole range, small ones more
/// often, and floating-point values of either sign between 2^-20 and 2^20.
void fill_random(Random& random, Type type, void* data, std::size_t count, double low = 0, double high = 0,
                 int specials = usual_special_share);

/// Numbers from -size to size, both parts of complex ones.
template <class T>
std::vector<T> uniform(Random& random, std::size_t count, double size = 1) {
    std::vector<T> x(count);
    fill_random(random, type_of<T>(), x.data(), count, -size, size, 0);
    return x;
}

/// Writes the value as an element of the type, both parts of a complex one.
void put_number(Type type, void* data, double value);

} // namespace kels_test
