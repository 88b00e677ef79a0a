// Noise of uniform and of normal distribution.
//
// Samples are evaluated as sums of two doubles, by whole vectors of draws: as near to the extended precision of the
// rule as their rounding can show. Pairs of draws for the polar method are sifted in integers, and never drawn ahead:
// as many pairs are still wanted, so many draws of two are safe.

#include "kels/random.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/error_free.h"
#include "frame/expanded.h"
#include "frame/math/logarithm.h"
#include "frame/modes.h"
#include "frame/numeric.h"
#include "frame/record.h"
#include "generators/random_draws.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>
#include <type_traits>

struct RandUniformState {
    Kel32s id;
};
struct RandGaussState {
    Kel32s id;
};

namespace kels {
namespace {

using std::int32_t;
using std::uint32_t;

/// high + low, rounded once; what is not finite is as high has it.
template <class V>
[[gnu::always_inline]] inline V sum_of(V high, V low) {
    const V sum = high + low;
    return sum - sum == 0 ? sum : high;
}

/// Doubles to samples: rounded, or cut toward zero and, if they may exceed the type, limited to it.
template <bool Limited, class T, class V>
[[gnu::always_inline]] inline auto sample(V y) {
    if constexpr (std::is_floating_point_v<T>) {
        return convert<T>(y);
    } else {
        const auto whole = to_integer<true>(y);
        if constexpr (Limited)
            return saturate<T>(whole);
        else
            return convert<T>(whole);
    }
}

// Uniform distribution

struct Interval {
    Expanded<Kel64f> mid, step;
};

Expanded<Kel64f> expanded(long double x) {
    const auto high = static_cast<Kel64f>(x);
    const auto low = static_cast<Kel64f>(x - high);
    return {high, low - low == 0 ? low : 0};
}

/// In extended precision; integers do not leave theirs.
template <class T>
Interval interval(T low, T high) {
    const ExtendedPrecision modes;
    using Wide = std::conditional_t<std::is_integral_v<T>, int, long double>;
    const Wide from = settled(low), to = settled(high);
    const long double of_a_draw = 2.3283064365387e-10;
    return {settled(expanded((from + to) * 0.5L)), settled(expanded((to - from) * of_a_draw))};
}

/// D step + mid.
template <class V>
[[gnu::always_inline]] inline V uniform(V draw, const Interval& of) {
    const V step = splat<V>(of.step.high), mid = splat<V>(of.mid.high);
    const V product = draw * step, sum = product + mid;
    const V error = product_error(draw, step, product) + draw * of.step.low;
    return sum_of(sum, sum_error(product, mid, sum) + (error + of.mid.low));
}

template <class T>
void fill_uniform(T* dst, Index n, const Interval& of, DrawGenerator& generator) {
    Draws draws{};
    int32_t* const values = draws.value;
    const auto samples = [&of](auto d) KELS_INLINE {
        using Stored = std::conditional_t<std::is_integral_v<T>, int32_t, T>;
        return sample<false, Stored>(uniform(convert<Kel64f>(d), of));
    };
    for (Index i = 0; i < n; i += block_of_draws) {
        const int count = static_cast<int>(std::min<Index>(n - i, block_of_draws));
        generator.draw(draws, count);
        const auto* sources = static_cast<const int32_t*>(values);
        if constexpr (std::is_integral_v<T>) {
            map_blocks(values, count, samples, sources);
            map_blocks(
                dst + i, count, [](auto x) KELS_INLINE { return convert<T>(x); }, sources);
        } else {
            map_blocks(dst + i, count, samples, sources);
        }
    }
}

// Normal distribution, by the polar method

/// One pair: the coordinates of a point in the unit circle, and the factor that spreads them.
template <class V>
struct Polar {
    V a, b, factor;
};

constexpr Kel64f unit = 4.656612873077e-10; // of a draw

template <class V>
[[gnu::always_inline]] inline Expanded<V> extended_square(Expanded<V> x) {
    const V square = x.high * x.high;
    return extended(Expanded<V>{square, product_error(x.high, x.high, square) + 2 * x.high * x.low});
}

template <class V>
[[gnu::always_inline]] inline Expanded<V> coordinate(V draw) {
    const V product = draw * unit;
    return extended(Expanded<V>{product, product_error(draw, splat<V>(unit), product)});
}

/// To the last place of doubles.
template <Grade G, class V>
[[gnu::always_inline]] inline Polar<V> exact_polar(V first, V second) {
    const Expanded<V> a = coordinate(first), b = coordinate(second);
    const Expanded<V> aa = extended_square(a), bb = extended_square(b);
    const V sum = aa.high + bb.high;
    const Expanded<V> s = extended(Expanded<V>{sum, sum_error(aa.high, bb.high, sum) + (aa.low + bb.low)});
    const V rounded = s.high + s.low, power = logarithm<G>(rounded) * -2.0;
    const V quotient = power / rounded, back = quotient * rounded;
    const V rest = ((power - back) - product_error(quotient, rounded, back)) / rounded;
    const Expanded<V> factor = root(Expanded<V>{quotient, rest});
    return {a.high + a.low, b.high + b.low, factor.high + factor.low};
}

/// For samples of type T. Roundings of doubles show in no other samples, unless the logarithm is near to 0.
template <class T, class V>
[[gnu::always_inline]] inline Polar<V> polar(V first, V second) {
    if constexpr (std::is_same_v<T, Kel64f>) {
        return exact_polar<Grade::for_double>(first, second);
    } else {
        constexpr Grade grade = Grade::same_everywhere;
        const V a = first * unit, b = second * unit, s = a * a + b * b;
        const V factor = square_root(logarithm<grade>(s) * -2.0 / s);
        const auto beside_one = s > splat<V>(1 - 0x1p-20);
        if (any_lane(beside_one)) [[unlikely]]
            return {a, b, beside_one ? exact_polar<grade>(first, second).factor : factor};
        return {a, b, factor};
    }
}

/// Draws that the rule keeps: 0 < a^2 + b^2 < 1. Only beside 1 do its roundings matter.
bool is_kept(int32_t first, int32_t second) {
    constexpr long double one = 1 / (static_cast<long double>(unit) * unit);
    constexpr auto beside = static_cast<std::uint64_t>(one);
    const std::int64_t p = first, q = second;
    const std::uint64_t m = static_cast<std::uint64_t>(p * p) + static_cast<std::uint64_t>(q * q);
    if (m + 64 - beside < 128) [[unlikely]] {
        const ExtendedPrecision modes;
        const long double a = settled(first) * static_cast<long double>(unit);
        const long double b = settled(second) * static_cast<long double>(unit);
        return settled(a * a + b * b < 1);
    }
    return m - 1 < beside - 1;
}

constexpr int block_of_pairs = block_of_draws / 2;

/// Kept pairs, and what becomes of them for samples of type T.
template <class T>
class Pairs {
public:
    explicit Pairs(DrawGenerator& source) : generator(source) {}

    /// The next n pairs, as many as a block has at most.
    void draw(int n) {
        for (int kept = 0; kept < n;) {
            const int count = n - kept;
            generator.draw(draws, 2 * count);
            for (int i = 0; i < count; ++i) {
                first[kept] = draws.value[2 * i];
                second[kept] = draws.value[2 * i + 1];
                kept += is_kept(first[kept], second[kept]);
            }
        }
    }

    Polar<Kel64f> operator[](int i) const {
        return polar<T>(static_cast<Kel64f>(first[i]), static_cast<Kel64f>(second[i]));
    }

    /// Calls take(i, b's samples, a's samples) for vectors of pairs that cover the first n, and with pairs beyond them.
    template <class F>
    [[gnu::always_inline]] void each_vector(int n, const F& take) const {
        using V = Vec<Kel64f>;
        using Ints = Vec<int32_t, lanes<V>>;
        for (int i = 0; i < n; i += lanes<V>)
            take(i, polar<T>(convert<Kel64f>(load<Ints>(first + i)), convert<Kel64f>(load<Ints>(second + i))));
    }

private:
    DrawGenerator& generator;
    Draws draws{};
    alignas(64) int32_t first[block_of_pairs] = {}, second[block_of_pairs] = {};
};

struct Normal {
    Kel64f mean, deviation;
};

/// deviation w value + mean, to the last place of doubles.
template <class V>
[[gnu::always_inline]] inline V exact_normal(V factor, V value, const Normal& of) {
    const V deviation = splat<V>(of.deviation), mean = splat<V>(of.mean);
    const V scaled = factor * deviation, product = scaled * value, sum = product + mean;
    const V error = product_error(scaled, value, product) + product_error(factor, deviation, scaled) * value;
    return sum_of(sum, sum_error(product, mean, sum) + error);
}

/// For samples of type T: nearly all of them do without the errors, unless they lie beside an integer to be cut at, or
/// the mean cancels much.
template <class T, class V>
[[gnu::always_inline]] inline V normal(V factor, V value, const Normal& of) {
    if constexpr (std::is_same_v<T, Kel64f>) {
        return exact_normal(factor, value, of);
    } else {
        const V y = factor * of.deviation * value + of.mean;
        const V distance = std::is_integral_v<T> ? y - nearest_whole(y).real : y;
        const double least = std::is_integral_v<T> ? 0x1p-30 : std::fabs(of.mean) * 0x1p-20;
        const auto shows = magnitude(distance) < splat<V>(least);
        if (any_lane(shows)) [[unlikely]]
            return shows ? exact_normal(factor, value, of) : y;
        return y;
    }
}

/// Samples of the first n pairs.
template <class T>
void fill_pairs(T* dst, int n, const Normal& of, const Pairs<T>& pairs) {
    T samples[2 * block_of_pairs];
    pairs.each_vector(n, [&](int i, const auto& p) KELS_INLINE {
        store(samples + 2 * i,
              zip(sample<true, T>(normal<T>(p.factor, p.b, of)), sample<true, T>(normal<T>(p.factor, p.a, of))));
    });
    std::copy_n(samples, 2 * n, dst);
}

/// Whole pairs of samples.
template <class T>
T* fill_normal(T* dst, int pairs, const Normal& of, Pairs<T>& source) {
    for (; pairs > 0; pairs -= block_of_pairs) {
        const int count = std::min(pairs, block_of_pairs);
        source.draw(count);
        fill_pairs(dst, count, of, source);
        dst += 2 * count;
    }
    return dst;
}

template <class T>
T one_sample(Kel64f factor, Kel64f value, const Normal& of) {
    return sample<true, T>(normal<T>(factor, value, of));
}

// Seeds. A pair is drawn behind the last one that gives two samples, whether it is wanted or not.

template <class T>
KelStatus direct_uniform(T* dst, int len, T low, T high, Kel32u* seed) {
    return vector_call({dst, seed}, len, [=] {
        const DefaultModes modes(true);
        DrawGenerator generator(*seed);
        fill_uniform(dst, len, interval(low, high), generator);
        *seed = generator.newest();
    });
}

template <class T>
KelStatus direct_normal(T* dst, int len, T mean, T deviation, Kel32u* seed) {
    return vector_call({dst, seed}, len, [=] {
        const DefaultModes modes(true);
        const Normal of = {static_cast<Kel64f>(settled(mean)), static_cast<Kel64f>(settled(deviation))};
        DrawGenerator generator(*seed);
        Pairs<T> pairs(generator);
        T* last = fill_normal(dst, len / 2, of, pairs);
        pairs.draw(1);
        if (len % 2 != 0) *last = one_sample<T>(pairs[0].factor, pairs[0].b, of);
        *seed = generator.newest();
    });
}

// Contexts

template <class T>
constexpr int by_type(int of_8u, int of_16s, int of_32f) {
    return std::is_same_v<T, Kel8u> ? of_8u : std::is_same_v<T, Kel16s> ? of_16s : of_32f;
}

template <class T>
struct UniformState : RandUniformState {
    static constexpr Kel32s own_id = by_type<T>(35, 36, 37);
    Kel32u seed;
    T low, high;
    Kel64f mid, step;
    DrawGenerator generator{0};
};

template <class T>
struct NormalState : RandGaussState {
    static constexpr Kel32s own_id = by_type<T>(38, 39, 40);
    Kel32u seed;
    T mean, deviation;
    DrawGenerator generator{0};
    bool needs_pair = true;
    Kel64f factor = 0, saved = 0; // of the pair whose second sample waits
};

/// Pointers, then the length, then what the context is.
template <class State, class T, class Base, class Kernel>
KelStatus noise_call(T* dst, int len, Base* base, Kernel kernel) {
    return vector_call({dst, base}, len, [=] {
        return with_record<State>(base, State::own_id, false, [=](State& state) {
            const DefaultModes modes(true);
            kernel(state);
            return kelStatusOk;
        });
    });
}

/// Makes a context, `set` up behind its id.
template <class State, class Base, class Set>
KelStatus create(Base** result, Kel32u seed, Set set) {
    if (!result) return kelStatusNullPtr;
    auto state = make_record<State>(State::own_id);
    if (!state) return kelStatusNoMemory;
    state->seed = seed;
    state->generator = DrawGenerator(seed);
    set(*state);
    *result = state.release();
    return kelStatusOk;
}

template <class T>
KelStatus create_uniform(RandUniformState** result, T low, T high, Kel32u seed) {
    return create<UniformState<T>>(result, seed, [=](UniformState<T>& state) {
        const Interval of = interval(low, high);
        state.low = low;
        state.high = high;
        state.mid = of.mid.high;
        state.step = of.step.high;
    });
}

template <class T>
KelStatus create_normal(RandGaussState** result, T mean, T deviation, Kel32u seed) {
    return create<NormalState<T>>(result, seed, [=](NormalState<T>& state) {
        state.mean = mean;
        state.deviation = deviation;
    });
}

template <class T>
KelStatus uniform_noise(T* dst, int len, RandUniformState* base) {
    return noise_call<UniformState<T>>(dst, len, base, [=](UniformState<T>& state) {
        fill_uniform(dst, len, {{state.mid, 0}, {state.step, 0}}, state.generator);
    });
}

template <class T>
KelStatus normal_noise(T* dst, int len, RandGaussState* base) {
    return noise_call<NormalState<T>>(dst, len, base, [=](NormalState<T>& state) {
        const Normal of = {static_cast<Kel64f>(state.mean), static_cast<Kel64f>(state.deviation)};
        T* next = dst;
        int wanted = len;
        if (!state.needs_pair) {
            *next++ = one_sample<T>(state.factor, state.saved, of);
            --wanted;
        }
        Pairs<T> pairs(state.generator);
        next = fill_normal(next, wanted / 2, of, pairs);
        state.needs_pair = wanted % 2 == 0;
        if (state.needs_pair) return;
        pairs.draw(1);
        *next = one_sample<T>(pairs[0].factor, pairs[0].b, of);
        state.factor = pairs[0].factor;
        state.saved = pairs[0].a;
    });
}

template <class T>
KelStatus free_uniform(RandUniformState* base) {
    return free_record<UniformState<T>>(base, UniformState<T>::own_id);
}
template <class T>
KelStatus free_normal(RandGaussState* base) {
    return free_record<NormalState<T>>(base, NormalState<T>::own_id);
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsRandUniform_Direct_16s(Kel16s* d, int n, Kel16s low, Kel16s high, Kel32u* seed) { return direct_uniform(d, n, low, high, seed); }
KelStatus kelsRandUniform_Direct_32f(Kel32f* d, int n, Kel32f low, Kel32f high, Kel32u* seed) { return direct_uniform(d, n, low, high, seed); }
KelStatus kelsRandUniform_Direct_64f(Kel64f* d, int n, Kel64f low, Kel64f high, Kel32u* seed) { return direct_uniform(d, n, low, high, seed); }

KelStatus kelsRandUniformInitAlloc_8u (RandUniformState** p, Kel8u low, Kel8u high, Kel32u seed)   { return create_uniform(p, low, high, seed); }
KelStatus kelsRandUniform_8u          (Kel8u* d, int n, RandUniformState* p)                       { return uniform_noise(d, n, p); }
KelStatus kelsRandUniformFree_8u      (RandUniformState* p)                                        { return free_uniform<Kel8u>(p); }
KelStatus kelsRandUniformInitAlloc_16s(RandUniformState** p, Kel16s low, Kel16s high, Kel32u seed) { return create_uniform(p, low, high, seed); }
KelStatus kelsRandUniform_16s         (Kel16s* d, int n, RandUniformState* p)                      { return uniform_noise(d, n, p); }
KelStatus kelsRandUniformFree_16s     (RandUniformState* p)                                        { return free_uniform<Kel16s>(p); }
KelStatus kelsRandUniformInitAlloc_32f(RandUniformState** p, Kel32f low, Kel32f high, Kel32u seed) { return create_uniform(p, low, high, seed); }
KelStatus kelsRandUniform_32f         (Kel32f* d, int n, RandUniformState* p)                      { return uniform_noise(d, n, p); }
KelStatus kelsRandUniformFree_32f     (RandUniformState* p)                                        { return free_uniform<Kel32f>(p); }

KelStatus kelsRandGauss_Direct_16s(Kel16s* d, int n, Kel16s mean, Kel16s dev, Kel32u* seed) { return direct_normal(d, n, mean, dev, seed); }
KelStatus kelsRandGauss_Direct_32f(Kel32f* d, int n, Kel32f mean, Kel32f dev, Kel32u* seed) { return direct_normal(d, n, mean, dev, seed); }
KelStatus kelsRandGauss_Direct_64f(Kel64f* d, int n, Kel64f mean, Kel64f dev, Kel32u* seed) { return direct_normal(d, n, mean, dev, seed); }

KelStatus kelsRandGaussInitAlloc_8u (RandGaussState** p, Kel8u mean, Kel8u dev, Kel32u seed)   { return create_normal(p, mean, dev, seed); }
KelStatus kelsRandGauss_8u          (Kel8u* d, int n, RandGaussState* p)                       { return normal_noise(d, n, p); }
KelStatus kelsRandGaussFree_8u      (RandGaussState* p)                                        { return free_normal<Kel8u>(p); }
KelStatus kelsRandGaussInitAlloc_16s(RandGaussState** p, Kel16s mean, Kel16s dev, Kel32u seed) { return create_normal(p, mean, dev, seed); }
KelStatus kelsRandGauss_16s         (Kel16s* d, int n, RandGaussState* p)                      { return normal_noise(d, n, p); }
KelStatus kelsRandGaussFree_16s     (RandGaussState* p)                                        { return free_normal<Kel16s>(p); }
KelStatus kelsRandGaussInitAlloc_32f(RandGaussState** p, Kel32f mean, Kel32f dev, Kel32u seed) { return create_normal(p, mean, dev, seed); }
KelStatus kelsRandGauss_32f         (Kel32f* d, int n, RandGaussState* p)                      { return normal_noise(d, n, p); }
KelStatus kelsRandGaussFree_32f     (RandGaussState* p)                                        { return free_normal<Kel32f>(p); }
}
// clang-format on
