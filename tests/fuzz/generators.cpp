// Noise and tones: streams whole and in pieces, from contexts and from the caller's own seed or phase.

#include "fuzz/sequence.h"
#include "kels/random.h"
#include "kels/tones.h"

namespace {

using namespace kels_test;

/// `direct` goes on from call to call in its own way; its first call is the head of the context's stream, as far as
/// pairs of draws are whole.
template <class T, auto make, auto run_noise, auto release, auto direct>
void drive_noise(Input& in) {
    const auto parameters = in.data<T>(2);
    const auto seed = static_cast<Kel32u>(in.random().bits());
    const auto create = [&] {
        return made(in, release, [&](auto** state) { return make(state, parameters[0], parameters[1], seed); });
    };
    const auto one = create(), two = create();
    const long before = allocations();
    for (bool first = true; first || in.more(); first = false) {
        const int len = in.length(2000);
        const auto whole = at_once_and_cut(one, two, len, in.below(len), [&](const auto& state, int, int n) {
            return results<T>(in, static_cast<std::size_t>(n), [&](T* to) { return run_noise(to, n, state.get()); });
        });
        digest(run_noise, whole);
        if constexpr (!std::is_null_pointer_v<decltype(direct)>) {
            Kel32u own = seed;
            const auto head = results<T>(in, whole.size(),
                                         [&](T* to) { return direct(to, len, parameters[0], parameters[1], &own); });
            digest(direct, head);
            if (first) expect_same(whole, head, "noise from a seed");
        }
    }
    EXPECT_EQ(allocations(), before) << "only making a state allocates";
}

/// Of calls that the parameters do not allow nothing may come. `fixed` is the argument between the frequency and the
/// phase, or behind it.
template <class T, class Value, class Call>
void expect_prefix(Input& in, const Call& call) {
    const int len = in.length(3000), shorter = 1 + in.below(len);
    Value phase = static_cast<Value>(in.below(700) / 100.0), same_phase = phase;
    const auto magn = in.data<std::conditional_t<type_of<T>().kind == Kind::s16, Kel16s, Value>>(1, Style::tame)[0];
    const auto freq = static_cast<Value>(in.below(1100) / 1000.0);
    const auto asym = static_cast<Value>(in.below(800) / 100.0 - 4);
    const int hint = in.below(3);
    GuardedArray<T> whole(static_cast<std::size_t>(len), in.edge()), head(static_cast<std::size_t>(shorter), in.edge());
    const Value before = phase;
    const KelStatus status = call(whole.data(), len, magn, freq, asym, &phase, hint);
    EXPECT_EQ(status, call(head.data(), shorter, magn, freq, asym, &same_phase, hint));
    if (status == kelStatusOk)
        expect_same(piece(whole.values(), 0, shorter), head.values(), "head of a tone");
    else
        EXPECT_EQ(before, phase);
}

/// Triangles have an asymmetry, tones of 16 bits a hint.
template <class T, class Value, auto function>
void drive_tone(Input& in) {
    expect_prefix<T, Value>(in, [](T* to, int len, auto magn, Value freq, Value asym, Value* phase, int hint) {
        KelStatus status;
        if constexpr (std::is_invocable_v<decltype(function), T*, int, decltype(magn), Value, Value, Value*>)
            status = function(to, len, magn, freq, asym, phase);
        else if constexpr (std::is_invocable_v<decltype(function), T*, int, decltype(magn), Value, Value*, int>)
            status = function(to, len, magn, freq, phase, hint);
        else
            status = function(to, len, magn, freq, phase);
        if (status == kelStatusOk) digest(function, std::vector<T>(to, to + len));
        return status;
    });
}

#define KELS_NOISE(kind, suffix, direct)                                                                               \
    drive_noise<Kel##suffix, kelsRand##kind##InitAlloc_##suffix, kelsRand##kind##_##suffix,                            \
                kelsRand##kind##Free_##suffix, direct>
#define KELS_TONES(kind, suffix, value)                                                                                \
    drive_tone<Kel##suffix, value, kels##kind##_Direct_##suffix>,                                                      \
        drive_tone<Kel##suffix##c, value, kels##kind##_Direct_##suffix##c>
const bool added = add_target(
    "generators",
    {KELS_NOISE(Uniform, 8u, nullptr), KELS_NOISE(Uniform, 16s, kelsRandUniform_Direct_16s),
     KELS_NOISE(Uniform, 32f, kelsRandUniform_Direct_32f), KELS_NOISE(Gauss, 8u, nullptr),
     KELS_NOISE(Gauss, 16s, kelsRandGauss_Direct_16s), KELS_NOISE(Gauss, 32f, kelsRandGauss_Direct_32f),
     KELS_TONES(Tone, 16s, Kel32f), KELS_TONES(Tone, 32f, Kel32f), KELS_TONES(Tone, 64f, Kel64f),
     KELS_TONES(Triangle, 16s, Kel32f), KELS_TONES(Triangle, 32f, Kel32f), KELS_TONES(Triangle, 64f, Kel64f)});
#undef KELS_NOISE
#undef KELS_TONES

} // namespace
