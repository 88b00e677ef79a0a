// Plans of transforms of any length: what a transform reads, and what is the same for plans of every kind.
#pragma once

#include "kels/dft.h"
#include "transforms/dft/any_length.h"
#include "transforms/fft/plan.h"

#include <cstdint>

namespace kels {

/// First field of every plan: what it transforms. The numbers follow those of the FFT.
enum DftPlanId : Kel32s {
    dft_C_16sc = 10,
    dft_C_16s = 11,
    dft_R_16s = 12,
    dft_C_32fc = 13,
    dft_C_32f = 14,
    dft_R_32f = 15,
    dft_C_64fc = 16,
    dft_C_64f = 17,
    dft_R_64f = 18
};

constexpr bool is_real(DftPlanId id) { return id == dft_R_16s || id == dft_R_32f || id == dft_R_64f; }

/// How a real transform goes: through the FFT, as plain sums, through the complex transform of half the length, or of
/// its own length.
enum class RealWay { straight, direct, halves, whole };

template <class T>
struct DftPlan {
    using FftPlanOf = typename Spectral<T>::Plan;

    Kel32s planId = 0;
    Kel32s len = 0;
    Kel32s normFwd = 0, normInv = 0; ///< whether a direction multiplies by normFactor
    T normFactor = 0;
    Kel32s workBytes = 0;
    Kel32s usesFft = 0; ///< 1: a power of two from 8 on, through pFftPlan
    RealWay real_way = RealWay::straight;
    AnyLength<T> points;              ///< of `len` points, or of half as many
    const T* recombination = nullptr; ///< RealWay::halves: see real.cpp
    Owned<Kel8u> tables;              ///< all of the above
    std::unique_ptr<FftPlanOf, KelStatus (*)(FftPlanOf*)> pFftPlan{nullptr, nullptr};

    T factor(bool inverse) const { return (inverse ? normInv : normFwd) ? normFactor : T(1); }
};

/// Work memory of one call: on the stack where it is short, else in the caller's buffer or, without one, allocated.
template <class T>
class Work {
public:
    static constexpr std::size_t on_stack = 2048;

    Work(std::size_t values, Kel8u* buffer, Kel32s bytes) {
        if (values <= on_stack) {
            values_ = short_;
            return;
        }
        if (!buffer) {
            owned_ = make_owned<Kel8u>(static_cast<std::size_t>(bytes));
            buffer = owned_.get();
            if (!buffer) return;
        }
        // On a cache line where the size allows; it allows for a multiple of 16.
        const std::size_t align = values * sizeof(T) + 63 <= static_cast<std::size_t>(bytes) ? 64 : 16;
        values_ = reinterpret_cast<T*>(buffer + (align - reinterpret_cast<std::uintptr_t>(buffer) % align) % align);
    }
    /// Null for want of memory.
    T* get() const { return values_; }

private:
    T* values_ = nullptr;
    Owned<Kel8u> owned_;
    alignas(64) T short_[on_stack];
};

} // namespace kels

struct KelsDftPlan_32f : kels::DftPlan<Kel32f> {};
struct KelsDftPlan_64f : kels::DftPlan<Kel64f> {};

struct KelsDftPlan_16s {
    Kel32s planId = 0;
    Kel32s len = 0;
    Kel32s hint = 0;
    Kel32s workBytes = 0;
    /// What it runs through; none for length 1.
    std::unique_ptr<KelsDftPlan_32f, KelStatus (*)(KelsDftPlan_32f*)> pFloatPlan{nullptr, nullptr};
};
