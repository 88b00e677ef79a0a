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

template <class T, class Value, auto function>
void drive_tone(Input& in) {
    expect_prefix<T, Value>(in, [](T* to, int len, auto magn, Value freq, Value, Value* phase, int hint) {
        const auto status = [&] {
            if constexpr (std::is_invocable_v<decltype(function), T*, int, decltype(magn), Value, Value*, int>)
                return function(to, len, magn, freq, phase, hint);
            else
                return function(to, len, magn, freq, phase);
        }();
        if (status == kelStatusOk) digest(function, std::vector<T>(to, to + len));
        return status;
    });
}

template <class T, class Value, auto function>
void drive_triangle(Input& in) {
    expect_prefix<T, Value>(in, [](T* to, int len, auto magn, Value freq, Value asym, Value* phase, int) {
        const KelStatus status = function(to, len, magn, freq, asym, phase);
        if (status == kelStatusOk) digest(function, std::vector<T>(to, to + len));
        return status;
    });
}

const bool added = add_target(
    "generators",
    {drive_noise<Kel8u, kelsRandUniformInitAlloc_8u, kelsRandUniform_8u, kelsRandUniformFree_8u, nullptr>,
     drive_noise<Kel16s, kelsRandUniformInitAlloc_16s, kelsRandUniform_16s, kelsRandUniformFree_16s,
                 kelsRandUniform_Direct_16s>,
     drive_noise<Kel32f, kelsRandUniformInitAlloc_32f, kelsRandUniform_32f, kelsRandUniformFree_32f,
                 kelsRandUniform_Direct_32f>,
     drive_noise<Kel8u, kelsRandGaussInitAlloc_8u, kelsRandGauss_8u, kelsRandGaussFree_8u, nullptr>,
     drive_noise<Kel16s, kelsRandGaussInitAlloc_16s, kelsRandGauss_16s, kelsRandGaussFree_16s,
                 kelsRandGauss_Direct_16s>,
     drive_noise<Kel32f, kelsRandGaussInitAlloc_32f, kelsRandGauss_32f, kelsRandGaussFree_32f,
                 kelsRandGauss_Direct_32f>,
     drive_tone<Kel16s, Kel32f, kelsTone_Direct_16s>, drive_tone<Kel16sc, Kel32f, kelsTone_Direct_16sc>,
     drive_tone<Kel32f, Kel32f, kelsTone_Direct_32f>, drive_tone<Kel32fc, Kel32f, kelsTone_Direct_32fc>,
     drive_tone<Kel64f, Kel64f, kelsTone_Direct_64f>, drive_tone<Kel64fc, Kel64f, kelsTone_Direct_64fc>,
     drive_triangle<Kel16s, Kel32f, kelsTriangle_Direct_16s>, drive_triangle<Kel16sc, Kel32f, kelsTriangle_Direct_16sc>,
     drive_triangle<Kel32f, Kel32f, kelsTriangle_Direct_32f>, drive_triangle<Kel32fc, Kel32f, kelsTriangle_Direct_32fc>,
     drive_triangle<Kel64f, Kel64f, kelsTriangle_Direct_64f>,
     drive_triangle<Kel64fc, Kel64f, kelsTriangle_Direct_64fc>});

} // namespace
