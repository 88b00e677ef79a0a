// KissFFT, in single precision. Its in-place calls are out-of-place ones with a copy.
#include "fft.h"

#include <kiss_fft.h>
#include <kiss_fftr.h>

namespace bench {
namespace {

struct FreeState {
    void operator()(void* state) const { kiss_fft_free(state); }
};

void complex_transform(Transform kind) {
    for (const int order : orders_of(kind))
        contend(transform_work<float>(kind, order), "kissfft", [=] {
            const std::size_t points = std::size_t{1} << order;
            using State = std::unique_ptr<std::remove_pointer_t<kiss_fft_cfg>, FreeState>;
            State state(kiss_fft_alloc(int(points), kind == Transform::complex_inverse, nullptr, nullptr));
            return [state = std::move(state), source = noise<Kel32fc>(points), result = zeros<Kel32fc>(points)] {
                kiss_fft(state.get(), reinterpret_cast<const kiss_fft_cpx*>(source.get()),
                         reinterpret_cast<kiss_fft_cpx*>(result.get()));
            };
        });
}

void real_transform(Transform kind) {
    for (const int order : orders_of(kind))
        contend(transform_work<float>(kind, order), "kissfft", [=] {
            const std::size_t values = values_of(kind, order);
            const bool inverse = kind == Transform::real_inverse;
            using State = std::unique_ptr<std::remove_pointer_t<kiss_fftr_cfg>, FreeState>;
            State state(kiss_fftr_alloc(1 << order, inverse, nullptr, nullptr));
            return [inverse, state = std::move(state), source = noise<float>(values), result = zeros<float>(values)] {
                if (inverse)
                    kiss_fftri(state.get(), reinterpret_cast<const kiss_fft_cpx*>(source.get()), result.get());
                else
                    kiss_fftr(state.get(), source.get(), reinterpret_cast<kiss_fft_cpx*>(result.get()));
            };
        });
}

const Registration kissfft(
    [] {
        complex_transform(Transform::complex_forward);
        complex_transform(Transform::complex_inverse);
        real_transform(Transform::real_forward);
        real_transform(Transform::real_inverse);
    },
    "KissFFT");

} // namespace
} // namespace bench
