#include "support/random_data.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace kels_test {
namespace {

constexpr std::uint64_t special_32f[] = {
    0x00000000, 0x80000000, 0x3F800000, 0xBF800000, 0x00000001, 0x80000001, 0x007FFFFF,
    0x807FFFFF, 0x00800000, 0x80800000, 0x7F7FFFFF, 0xFF7FFFFF, 0x7F800000, 0xFF800000,
    0x7FC00000, 0xFFC00000, 0x7FC12345, 0xFFFFFFFF, 0x7F800001, 0xFF812345, 0x7FBFFFFF,
};

constexpr std::uint64_t special_64f[] = {
    0x0000000000000000, 0x8000000000000000, 0x3FF0000000000000, 0xBFF0000000000000, 0x0000000000000001,
    0x8000000000000001, 0x000FFFFFFFFFFFFF, 0x800FFFFFFFFFFFFF, 0x0010000000000000, 0x8010000000000000,
    0x7FEFFFFFFFFFFFFF, 0xFFEFFFFFFFFFFFFF, 0x7FF0000000000000, 0xFFF0000000000000, 0x7FF8000000000000,
    0xFFF8000000000000, 0x7FF8123456789ABC, 0xFFFFFFFFFFFFFFFF, 0x7FF0000000000001, 0xFFF0123456789ABC,
    0x7FF7FFFFFFFFFFFF,
};

template <class T>
std::uint64_t pattern(T value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof value);
    return bits;
}

template <std::size_t N>
std::uint64_t one_of(Random& random, const std::uint64_t (&items)[N]) {
    return items[random.below(N)];
}

bool is_special(Random& random, int specials) { return specials > 0 && random.below(specials) == 0; }

template <class T>
std::uint64_t integer(Random& random, double low, double high, int specials) {
    using Limits = std::numeric_limits<T>;
    const std::int64_t special[] = {0, 1, -1, Limits::min(), Limits::max(), Limits::min() + 1LL, Limits::max() - 1LL};
    if (is_special(random, specials)) return pattern(static_cast<T>(special[random.below(7)]));
    if (low != high) return pattern(static_cast<T>(random.uniform(low, high)));
    return pattern(random.below(4) == 0 ? static_cast<T>(random.below(201) - 100) : static_cast<T>(random.bits()));
}

template <class T>
std::uint64_t real(Random& random, double low, double high, int specials) {
    if (is_special(random, specials)) return sizeof(T) == 4 ? one_of(random, special_32f) : one_of(random, special_64f);
    if (low != high) return pattern(static_cast<T>(random.uniform(low, high)));
    const double significand = random.uniform(1, 2); // before the exponent, whatever order a compiler gives arguments
    const double magnitude = std::ldexp(significand, random.below(40) - 20);
    return pattern(static_cast<T>(random.below(2) ? magnitude : -magnitude));
}

/// Draws one of every kind, in the order of Kind.
using Draw = std::uint64_t(Random&, double low, double high, int specials);
constexpr Draw* draw[] = {integer<std::uint8_t>,
                          integer<std::int8_t>,
                          integer<std::uint16_t>,
                          integer<std::int16_t>,
                          integer<std::uint32_t>,
                          integer<std::int32_t>,
                          integer<std::int64_t>,
                          real<float>,
                          real<double>};

std::uint64_t number(Kind kind, double value) {
    if (kind == Kind::f32) return pattern(static_cast<float>(value));
    return kind == Kind::f64 ? pattern(value) : pattern(static_cast<std::int64_t>(value));
}

} // namespace

std::uint64_t seed() {
    static const std::uint64_t value = [] {
        const char* text = std::getenv("KELS_TEST_SEED");
        return text ? std::strtoull(text, nullptr, 0) : 20260101;
    }();
    return value;
}

Random::Random(std::string_view purpose) {
    std::uint64_t hash = seed();
    for (char c : purpose) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    engine.seed(hash);
}

void fill_random(Random& random, Type type, void* data, std::size_t count, double low, double high, int specials) {
    auto* p = static_cast<std::byte*>(data);
    for (std::size_t i = 0; i < count * type.parts; ++i, p += type.part_size()) {
        const std::uint64_t bits = draw[static_cast<int>(type.kind)](random, low, high, specials);
        std::memcpy(p, &bits, type.part_size());
    }
}

void put_number(Type type, void* data, double value) {
    const std::uint64_t bits = number(type.kind, value);
    for (int part = 0; part < type.parts; ++part)
        std::memcpy(static_cast<std::byte*>(data) + part * type.part_size(), &bits, type.part_size());
}

} // namespace kels_test
