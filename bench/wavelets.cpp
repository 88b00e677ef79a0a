// Haar transforms beside the addition of vectors, which moves as many samples; one level of filter banks.
#include "vectors.h"

#include <memory>
#include <string>

namespace bench {
namespace {

/// An element is a sample that is moved: each is read once and written once.
template <class T>
Work moved(const std::string& operation, int samples) {
    return {"wavelets", operation, std::to_string(samples), double(samples), double(sizeof(T)) * samples, "GB/s"};
}

/// For every length: the forward transform, the inverse one, and a sum that moves as many samples.
template <class T, class Forward, class Inverse, class Add>
void haar(const std::string& type, Forward forward, Inverse inverse, Add add) {
    for (const int length : vector_lengths) {
        const int half = length / 2, third = length * 2 / 3;
        const Work work = moved<T>("kelsWTHaarFwd_" + type, 2 * length);
        contend(work, ours, [=] {
            return [=, x = noise<T>(length), low = zeros<T>(half), high = zeros<T>(half)] {
                forward(x.get(), length, low.get(), high.get());
            };
        });
        const auto sum = [=] {
            return [=, a = noise<T>(third), b = noise<T>(third), d = zeros<T>(third)] {
                add(a.get(), b.get(), d.get(), third);
            };
        };
        contend(work, "kelsAdd", sum);
        const Work back = moved<T>("kelsWTHaarInv_" + type, 2 * length);
        contend(back, ours, [=] {
            return [=, x = zeros<T>(length), low = noise<T>(half), high = noise<T>(half)] {
                inverse(low.get(), high.get(), x.get(), length);
            };
        });
        contend(back, "kelsAdd", sum);
    }
}

template <class State>
using Owner = std::unique_ptr<State, KelStatus (*)(State*)>;

constexpr int bank_lengths[] = {256, 4096, 65536}; // samples of the signal
constexpr int bank_taps[] = {2, 8, 16, 32, 128};

/// A block of the signal. An element is a sample of it; each meets as many taps of either band as its filters have
/// halves.
Work level(const std::string& function, int length, int taps) {
    return {"wavelets",
            function + " on " + std::to_string(length) + " samples",
            std::to_string(taps) + " taps",
            double(length),
            2.0 * taps * length,
            "GFLOP/s"};
}

template <class T, class Make, class Call>
void forward(const std::string& function, Make make, KelStatus (*release)(WTFwdState*), Call call) {
    for (const int length : bank_lengths)
        for (const int taps : bank_taps)
            contend(level(function, length, taps), ours, [=] {
                WTFwdState* state = nullptr;
                const auto h = noise<Kel32f>(taps);
                make(&state, h.get(), taps, 0, h.get(), taps, 0);
                return [=, owner = Owner<WTFwdState>(state, release), x = noise<T>(length),
                        low = zeros<Kel32f>(length / 2), high = zeros<Kel32f>(length / 2)] {
                    call(x.get(), low.get(), high.get(), length / 2, owner.get());
                };
            });
}

template <class T, class Make, class Call>
void inverse(const std::string& function, Make make, KelStatus (*release)(WTInvState*), Call call) {
    for (const int length : bank_lengths)
        for (const int taps : bank_taps)
            contend(level(function, length, taps), ours, [=] {
                WTInvState* state = nullptr;
                const auto h = noise<Kel32f>(taps);
                make(&state, h.get(), taps, 0, h.get(), taps, 0);
                return [=, owner = Owner<WTInvState>(state, release), x = zeros<T>(length),
                        low = noise<Kel32f>(length / 2), high = noise<Kel32f>(length / 2)] {
                    call(low.get(), high.get(), length / 2, x.get(), owner.get());
                };
            });
}

const Registration wavelets([] {
    haar<Kel8s>("8s", kelsWTHaarFwd_8s, kelsWTHaarInv_8s, [](const Kel8s* a, const Kel8s* b, Kel8s* d, int n) {
        kelsAdd_8u_Sfs(reinterpret_cast<const Kel8u*>(a), reinterpret_cast<const Kel8u*>(b),
                       reinterpret_cast<Kel8u*>(d), n, 0);
    });
    haar<Kel16s>("16s", kelsWTHaarFwd_16s, kelsWTHaarInv_16s, kelsAdd_16s);
    haar<Kel32s>("32s", kelsWTHaarFwd_32s, kelsWTHaarInv_32s,
                 [](const Kel32s* a, const Kel32s* b, Kel32s* d, int n) { kelsAdd_32s_Sfs(a, b, d, n, 0); });
    haar<Kel32f>("32f", kelsWTHaarFwd_32f, kelsWTHaarInv_32f, kelsAdd_32f);
    haar<Kel64f>("64f", kelsWTHaarFwd_64f, kelsWTHaarInv_64f, kelsAdd_64f);
    forward<Kel32f>("kelsWTFwd_32f", kelsWTFwdInitAlloc_32f, kelsWTFwdFree_32f, kelsWTFwd_32f);
    inverse<Kel32f>("kelsWTInv_32f", kelsWTInvInitAlloc_32f, kelsWTInvFree_32f, kelsWTInv_32f);
    forward<Kel16s>("kelsWTFwd_16s32f", kelsWTFwdInitAlloc_16s32f, kelsWTFwdFree_16s32f, kelsWTFwd_16s32f);
    inverse<Kel16s>("kelsWTInv_32f16s", kelsWTInvInitAlloc_32f16s, kelsWTInvFree_32f16s, kelsWTInv_32f16s);
});

} // namespace
} // namespace bench
