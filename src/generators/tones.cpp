// Sinusoids and triangle waves, continued from call to call by their phase.
//
// The phase that is given back follows its rule in extended precision. Samples are evaluated from their index, not from
// each other: cosines as in harmonic.h, triangles from the fraction of a period in two doubles, so that no error grows.
// 16-bit tones in fixed point are rotated in blocks that do not depend on each other, side by side.

#include "kels/tones.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/math/harmonic.h"
#include "frame/modes.h"
#include "frame/numeric.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

constexpr double pi = 3.141592653589793, two_pi = 6.283185307179586;

// Phase

/// Of a number from 0 to 2^63. The C library's function takes longer than some samples.
long double floor_of(long double x) {
    const long double shifter = 0x1p63L, nearest = (x + shifter) - shifter;
    return nearest > x ? nearest - 1 : nearest;
}

/// The phase of the sample behind the last one.
template <class P>
P next_phase(P phase, P frequency, int len) {
    const long double q = frequency * static_cast<long double>(two_pi) * len + phase;
    const long double reduced = q + floor_of(0.15915494309189535 * q) * -static_cast<long double>(two_pi);
    return static_cast<P>(reduced < 0 || reduced >= two_pi ? 0 : reduced);
}

template <class P>
bool is_phase(P phase) {
    return phase >= 0 && phase < two_pi;
}

// Samples of doubles

/// A value on its way to 16 bits is rounded to double before it is cut: what is so little less than an integer is one.
constexpr double hardly_anything = 0x1p-48;

template <class T, class V>
[[gnu::always_inline]] inline auto cut(V y, [[maybe_unused]] double peak) {
    if constexpr (std::is_integral_v<T>) {
        const V more = splat<V>(peak * hardly_anything);
        return convert<T>(to_integer<true>(y < 0 ? y - more : y + more));
    } else {
        return convert<T>(y);
    }
}

/// Stores the first `count` samples of a vector, or all.
template <class T, class V>
[[gnu::always_inline]] inline void store_first(T* dst, V samples, Index count) {
    if (count >= lanes<V> / parts<T>) {
        store(dst, samples);
    } else {
        T all[lanes<V> / parts<T>];
        store(all, samples);
        std::copy_n(all, count, dst);
    }
}

// Tones

template <class T>
inline constexpr Grade grade_of = std::is_same_v<Part<T>, Kel64f> ? Grade::for_double : Grade::same_everywhere;

template <class T>
void fill_tone(T* dst, int len, double magn, long double step, long double phase) {
    using Waves = Stretches<grade_of<T>>;
    using R = Part<T>;
    constexpr int together = max_lanes<double>;
    Waves waves(step, phase, 0, len);
    for (Index n = 0; n < len; n += together) {
        const auto j = static_cast<int>(n % Waves::length);
        if (j == 0) waves.go_to(n / Waves::length);
        const auto re = cut<R>(waves.cosine_at(j) * magn, magn);
        if constexpr (parts<T> == 2)
            store_first(dst + n, zip(re, cut<R>(waves.sine_at(j) * magn, magn)), len - n);
        else
            store_first(dst + n, re, len - n);
    }
}

// Tones in fixed point

constexpr int block = 1024;

Kel16s cut_to_short(long double x) { return static_cast<Kel16s>(static_cast<double>(x)); }

/// A point on the circle.
struct Phasor {
    long double re, im;

    static Phasor at(long double angle) { return {std::cos(angle), std::sin(angle)}; }
    Phasor operator*(Phasor by) const { return {-im * by.im + by.re * re, by.re * im + by.im * re}; }
};

/// What all blocks share.
struct Rotation {
    long double step;
    Phasor turn;
    int c2, s2, shift; ///< of two steps, in Q14; of the stored values
    double magn;

    Rotation(double magnitude, long double angle)
        : step(angle), turn(Phasor::at(angle)), c2(cut_to_short(16384 * (turn.re * turn.re - turn.im * turn.im))),
          s2(cut_to_short(16384 * (turn.re * turn.im + turn.im * turn.re))), shift(0), magn(magnitude) {
        while (magn * (1 << shift) < 16384) ++shift;
    }
    Phasor turn_of_block() const {
        Phasor all = turn;
        for (int steps = 1; steps < block; steps *= 2) all = all * all;
        return all;
    }
};

template <class T>
T sample_of(Phasor point) {
    if constexpr (parts<T> == 2)
        return {cut_to_short(point.re), cut_to_short(point.im)};
    else
        return cut_to_short(point.re);
}

/// Two chains for each of some blocks, whose points p + i q stand as pairs of lanes.
template <int Blocks>
struct Chains {
    static constexpr int points = 2 * Blocks, samples = Blocks * block;
    alignas(64) Kel16s pq[2 * points] = {};

    /// The first two samples of a block, and the chains that begin there.
    template <class T>
    void begin(int at, T* dst, int len, const Rotation& by, Phasor start) {
        const Phasor a{by.magn * start.re, by.magn * start.im}, b = a * by.turn;
        const int scale = 1 << by.shift;
        dst[0] = sample_of<T>(a);
        if (len > 1) dst[1] = sample_of<T>(b);
        const Kel16s first[] = {cut_to_short(scale * a.re), cut_to_short(scale * a.im), cut_to_short(scale * b.re),
                                cut_to_short(scale * b.im)};
        std::copy_n(first, 4, pq + 4 * at);
    }
};

template <class V>
[[gnu::always_inline]] inline V rounded_q14(V x) {
    return (x + 8192) >> splat<V>(14);
}

/// One step of all chains, and the two samples of every block before it, as one word each.
template <class T, int Blocks>
struct Turn {
    using Pairs = Vec<Kel16s, 4 * Blocks>;
    using V = Vec<int, 2 * Blocks>;
    using Words = Vec<std::conditional_t<parts<T> == 2, std::int64_t, std::int32_t>, Blocks>;
    Pairs to_re, to_im;
    int shift;

    explicit Turn(const Rotation& by)
        : to_re(alternate<Pairs>(static_cast<Kel16s>(by.c2), static_cast<Kel16s>(-by.s2))),
          to_im(alternate<Pairs>(static_cast<Kel16s>(by.s2), static_cast<Kel16s>(by.c2))), shift(by.shift) {}

    [[gnu::always_inline]] Words operator()(Pairs& pq) const {
        pq = saturated_pairs(rounded_q14(add_products(pq, to_re)), rounded_q14(add_products(pq, to_im)));
        const V both_parts = bits_as<V>(pq), re = stored((both_parts << splat<V>(16)) >> splat<V>(16));
        if constexpr (parts<T> == 2)
            return bits_as<Words>(saturated_pairs(re, stored(both_parts >> splat<V>(16))));
        else
            return bits_as<Words>(convert<Kel16s>(re));
    }

private:
    [[gnu::always_inline]] V stored(V x) const { return (x + (1 << shift) / 2) >> splat<V>(shift); }
};

/// Samples 2 to len - 1 of `count` blocks, of which the last ends at len of them all. Four steps make eight samples of
/// every block, which a transpose brings together.
template <class T, int Blocks>
void rotate(T* dst, int len, int count, const Chains<Blocks>& chains, const Rotation& by) {
    constexpr int together = 8;
    const Turn<T, Blocks> turn(by);
    auto pq = load<typename Turn<T, Blocks>::Pairs>(chains.pq);
    const auto next = [&](auto take) KELS_INLINE {
        const auto a = turn(pq), b = turn(pq), c = turn(pq), d = turn(pq);
        const auto words = zip(zip(a, c), zip(b, d));
        unrolled<Blocks>([&](auto i)
                             KELS_INLINE { take(i, bits_as<Vec<Part<T>, together * parts<T>>>(slice<4, i>(words))); });
    };
    int j = 2;
    if (len == Chains<Blocks>::samples) // so many stores are not each asked for their lengths
        for (; j <= block - together; j += together)
            next([&](auto i, auto samples) KELS_INLINE { store(dst + i * block + j, samples); });
    for (const int longest = std::min(len, block); j < longest; j += together)
        next([&](auto i, auto samples) KELS_INLINE {
            if (i < count) store_first(dst + i * block + j, samples, std::min(len - i * block, block) - j);
        });
}

/// As long as rotations lose no more than the roundings of the angles, blocks begin a turn after another.
constexpr Index last_turned = 1 << 17;

template <int Blocks, class T>
void fill_by_blocks(T* dst, int len, const Rotation& by, long double phase) {
    constexpr int most = Chains<Blocks>::samples;
    const Phasor turn = by.turn_of_block();
    for (Index start = 0; start < len; start += most) {
        const int here = static_cast<int>(std::min<Index>(len - start, most)), count = (here + block - 1) / block;
        Chains<Blocks> chains;
        Phasor point{};
        for (int i = 0; i < count; ++i) {
            const Index n = start + i * block;
            point = i > 0 && n < last_turned ? point * turn : Phasor::at(by.step * static_cast<long double>(n) + phase);
            chains.begin(i, dst + n, here - i * block, by, point);
        }
        rotate(dst + start, here, count, chains, by);
    }
}

template <class T>
void fill_by_blocks(T* dst, int len, double magn, long double step, long double phase) {
    const Rotation by(magn, step);
    if (len <= Chains<4>::samples)
        fill_by_blocks<4>(dst, len, by, phase);
    else
        fill_by_blocks<16>(dst, len, by, phase);
}

template <class T, class M, class P>
KelStatus tone(T* dst, int len, M magn, P frequency, P* phase, int hint = 0) {
    constexpr P limit = parts<T> == 2 ? P(1) : P(0.5);
    if (!phase) return kelStatusNullPtr;
    if (magn <= 0) return kelStatusToneMagn;
    if (!(frequency >= 0 && frequency < limit)) return kelStatusToneFreq;
    if (!is_phase(*phase)) return kelStatusTonePhase;
    return vector_call({dst}, len, [=] {
        const ModesOfCreation modes;
        const P start = *phase, f = settled(frequency);
        const double peak = settled(magn);
        const long double step = f * static_cast<long double>(two_pi);
        *phase = next_phase(start, f, len);
        if constexpr (std::is_integral_v<M>)
            if (hint == 1) return fill_by_blocks(dst, len, peak, step, start);
        fill_tone(dst, len, peak, step, start);
    });
}

// Triangles

TwoDoubles half(TwoDoubles a) { return {a.high * 0.5, a.low * 0.5}; }

/// u periods of a wave that falls while u < turn, and rises until u = 1. A slope is as steep as the other side is long,
/// and enlarges what is lost of u, of which two doubles keep enough.
struct Triangle {
    TwoDoubles turn, falling_middle, rising_middle;
    double falling, rising, magn, frequency;
    bool never_falls;

    Triangle(double magnitude, double f, double asymmetry) : magn(magnitude), frequency(f) {
        const long double h1 = pi + static_cast<long double>(asymmetry), h2 = pi - static_cast<long double>(asymmetry);
        never_falls = h1 == 0;
        turn = two_doubles(pi, asymmetry) / two_pi;
        falling_middle = half(turn);
        rising_middle = half(turn + TwoDoubles{1});
        falling = static_cast<double>(-2 * two_pi / h1);
        rising = static_cast<double>(2 * two_pi / h2);
    }

    /// Samples n of the wave with this phase.
    template <class V>
    [[gnu::always_inline]] V at(V n, TwoDoubles phase) const {
        const V f = splat<V>(frequency), product = n * f, error = product_error(n, f, product);
        const V part = product - nearest_whole(product).real, start = splat<V>(phase.high), sum = part + start;
        const V wrap = sum < 0 ? splat<V>(1) : sum >= 1 ? splat<V>(-1) : V{};
        const V u = sum + wrap;
        const V tail = sum_error(part, start, sum) + sum_error(sum, wrap, u) + (error + phase.low);
        const V behind_turn = (u - turn.high) + (tail - turn.low);
        const auto falls = behind_turn < 0;
        const V middle = falls ? splat<V>(falling_middle.high) : splat<V>(rising_middle.high);
        const V rest = falls ? splat<V>(falling_middle.low) : splat<V>(rising_middle.low);
        const V slope = falls ? splat<V>(falling) : splat<V>(rising);
        const V y = ((u - middle) + (tail - rest)) * slope;
        const V above = y < -1 ? splat<V>(-1) : y, limited = above > 1 ? splat<V>(1) : above;
        if (!never_falls) return limited * magn;
        const auto hits_top = (behind_turn == 0) & (n > 0); // it is the step beyond that jumps to the bottom
        return (hits_top ? splat<V>(1) : limited) * magn;
    }
};

/// x periods without the whole ones, in units of 2^-64: sums of them wrap by themselves.
std::uint64_t fraction_of_period(TwoDoubles x) {
    return static_cast<std::uint64_t>((static_cast<long double>(x.high) + x.low) * 0x1p64L);
}

/// Phases of samples side by side, each less than a period.
template <class V>
struct Phases {
    using Fractions = Vec<std::uint64_t, lanes<V>>;
    Fractions now, step;

    Phases(std::uint64_t first, std::uint64_t frequency) : step(splat<Fractions>(frequency * lanes<V>)) {
        std::uint64_t lane[lanes<V>];
        for (int i = 0; i < lanes<V>; ++i) lane[i] = first + static_cast<std::uint64_t>(i) * frequency;
        now = load<Fractions>(lane);
    }

    /// From 1 to 2, and on to the next samples.
    [[gnu::always_inline]] V next() {
        const Fractions fraction = (now >> splat<Fractions>(12)) | splat<Fractions>(0x3FF0000000000000);
        now += step;
        return bits_as<V>(fraction);
    }
};

/// The same for slopes that do not enlarge the last place of u: the wave is the upper one of its two lines, which meet
/// at the turn.
struct FlatTriangle {
    double turn, falling, rising, magn;
    std::uint64_t frequency;

    explicit FlatTriangle(const Triangle& wave)
        : turn(1 + wave.turn.high), falling(wave.falling * wave.magn), rising(wave.rising * wave.magn), magn(wave.magn),
          frequency(fraction_of_period({wave.frequency})) {}

    static bool serves(const Triangle& wave) { return wave.falling >= -256 && wave.rising <= 256; }

    template <class V>
    [[gnu::always_inline]] V at(Phases<V>& phases) const {
        const V behind_turn = phases.next() - turn, down = behind_turn * falling, up = behind_turn * rising;
        return (down > up ? down : up) - magn;
    }
};

/// The phase of the imaginary part.
TwoDoubles companion_phase(double phase, double asymmetry) {
    const TwoDoubles moved = TwoDoubles{phase} + half(two_doubles(pi, asymmetry) + TwoDoubles{two_pi});
    const TwoDoubles beyond = moved - TwoDoubles{two_pi};
    return beyond.high < 0 ? moved : beyond;
}

/// Samples from re(n) and im(n), for lanes of n asked for in order.
template <class T, class Re, class Im>
[[gnu::always_inline]] inline void fill_waves(T* dst, int len, double magn, const Re& re, const Im& im) {
    using V = Vec<double>;
    using R = Part<T>;
    for (Index n = 0; n < len; n += lanes<V>) {
        const V at = counted<V>(static_cast<double>(n));
        const auto samples = cut<R>(re(at), magn);
        if constexpr (parts<T> == 2)
            store_first(dst + n, zip(samples, cut<R>(im(at), magn)), len - n);
        else
            store_first(dst + n, samples, len - n);
    }
}

template <class T>
void fill_triangle(T* dst, int len, const Triangle& wave, TwoDoubles re, TwoDoubles im) {
    fill_waves(
        dst, len, wave.magn, [&](auto n) KELS_INLINE { return wave.at(n, re); },
        [&](auto n) KELS_INLINE { return wave.at(n, im); });
}

template <class T>
void fill_triangle(T* dst, int len, const FlatTriangle& wave, TwoDoubles re_phase, TwoDoubles im_phase) {
    Phases<Vec<double>> re(fraction_of_period(re_phase), wave.frequency);
    Phases<Vec<double>> im(fraction_of_period(im_phase), wave.frequency);
    fill_waves(
        dst, len, wave.magn, [&](auto) KELS_INLINE { return wave.at(re); },
        [&](auto) KELS_INLINE { return wave.at(im); });
}

template <class T, class M, class P>
KelStatus triangle(T* dst, int len, M magn, P frequency, P asymmetry, P* phase) {
    if (!phase) return kelStatusNullPtr;
    if (!(magn > 0)) return kelStatusTriangleMagn;
    if (!(frequency >= 0 && frequency < P(0.5))) return kelStatusTriangleFreq;
    if (!(asymmetry >= -pi && asymmetry < pi)) return kelStatusTriangleAsym;
    if (!is_phase(*phase)) return kelStatusTrianglePhase;
    return vector_call({dst}, len, [=] {
        const ModesOfCreation modes;
        const P start = *phase, f = settled(frequency);
        const double asym = settled(asymmetry);
        *phase = next_phase(start, f, len);
        const Triangle wave(settled(magn), f, asym);
        const TwoDoubles re = TwoDoubles{start} / two_pi, im = companion_phase(start, asym) / two_pi;
        if (std::is_same_v<P, Kel32f> && FlatTriangle::serves(wave))
            fill_triangle(dst, len, FlatTriangle(wave), re, im);
        else
            fill_triangle(dst, len, wave, re, im);
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsTone_Direct_16s (Kel16s*  d, int n, Kel16s m, Kel32f f, Kel32f* p, int hint) { return tone(d, n, m, f, p, hint); }
KelStatus kelsTone_Direct_16sc(Kel16sc* d, int n, Kel16s m, Kel32f f, Kel32f* p, int hint) { return tone(d, n, m, f, p, hint); }
KelStatus kelsTone_Direct_32f (Kel32f*  d, int n, Kel32f m, Kel32f f, Kel32f* p)           { return tone(d, n, m, f, p); }
KelStatus kelsTone_Direct_32fc(Kel32fc* d, int n, Kel32f m, Kel32f f, Kel32f* p)           { return tone(d, n, m, f, p); }
KelStatus kelsTone_Direct_64f (Kel64f*  d, int n, Kel64f m, Kel64f f, Kel64f* p)           { return tone(d, n, m, f, p); }
KelStatus kelsTone_Direct_64fc(Kel64fc* d, int n, Kel64f m, Kel64f f, Kel64f* p)           { return tone(d, n, m, f, p); }

KelStatus kelsTriangle_Direct_16s (Kel16s*  d, int n, Kel16s m, Kel32f f, Kel32f asym, Kel32f* p) { return triangle(d, n, m, f, asym, p); }
KelStatus kelsTriangle_Direct_16sc(Kel16sc* d, int n, Kel16s m, Kel32f f, Kel32f asym, Kel32f* p) { return triangle(d, n, m, f, asym, p); }
KelStatus kelsTriangle_Direct_32f (Kel32f*  d, int n, Kel32f m, Kel32f f, Kel32f asym, Kel32f* p) { return triangle(d, n, m, f, asym, p); }
KelStatus kelsTriangle_Direct_32fc(Kel32fc* d, int n, Kel32f m, Kel32f f, Kel32f asym, Kel32f* p) { return triangle(d, n, m, f, asym, p); }
KelStatus kelsTriangle_Direct_64f (Kel64f*  d, int n, Kel64f m, Kel64f f, Kel64f asym, Kel64f* p) { return triangle(d, n, m, f, asym, p); }
KelStatus kelsTriangle_Direct_64fc(Kel64fc* d, int n, Kel64f m, Kel64f f, Kel64f asym, Kel64f* p) { return triangle(d, n, m, f, asym, p); }
}
// clang-format on
