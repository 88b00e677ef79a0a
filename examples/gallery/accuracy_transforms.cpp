#include "accuracy.h"

#include "failure.h"
#include "owned.h"

#ifdef HAVE_FFTW
#include <fftw3.h>
#endif
#ifdef HAVE_KISSFFT
#include <kiss_fft.h>
#endif

namespace examples {
namespace {

void ours(Complex<float>& points, int order) {
    const auto plan = make<kelsFFTInitAlloc_C_32fc, kelsFFTFree_C_32fc>(order, kelFftNormNone, kelHintDefault);
    const auto data = reinterpret_cast<Kel32fc*>(points.data());
    check(kelsFFTFwd_CToC_32fc(data, data, plan.get(), nullptr));
}

void ours_of_doubles(Complex<double>& points, int order) {
    const auto plan = make<kelsFFTInitAlloc_C_64fc, kelsFFTFree_C_64fc>(order, kelFftNormNone, kelHintDefault);
    const auto data = reinterpret_cast<Kel64fc*>(points.data());
    check(kelsFFTFwd_CToC_64fc(data, data, plan.get(), nullptr));
}

#ifdef HAVE_FFTW
void fftw(Complex<float>& points, int order) {
    const auto data = reinterpret_cast<fftwf_complex*>(points.data());
    const fftwf_plan plan = fftwf_plan_dft_1d(1 << order, data, data, FFTW_FORWARD, FFTW_ESTIMATE);
    fftwf_execute(plan);
    fftwf_destroy_plan(plan);
}

void fftw_of_doubles(Complex<double>& points, int order) {
    const auto data = reinterpret_cast<fftw_complex*>(points.data());
    const fftw_plan plan = fftw_plan_dft_1d(1 << order, data, data, FFTW_FORWARD, FFTW_ESTIMATE);
    fftw_execute(plan);
    fftw_destroy_plan(plan);
}
#endif

#ifdef HAVE_KISSFFT
void kissfft(Complex<float>& points, int order) {
    Complex<float> result(points.size());
    kiss_fft_cfg plan = kiss_fft_alloc(1 << order, 0, nullptr, nullptr);
    kiss_fft(plan, reinterpret_cast<const kiss_fft_cpx*>(points.data()),
             reinterpret_cast<kiss_fft_cpx*>(result.data()));
    kiss_fft_free(plan);
    points = result;
}
#endif

} // namespace

std::vector<Transform> transforms() {
    return {
        {"this library", ours, ours_of_doubles},
#ifdef HAVE_FFTW
        {"FFTW", fftw, fftw_of_doubles},
#endif
#ifdef HAVE_KISSFFT
        {"KissFFT", kissfft, nullptr},
#endif
    };
}

} // namespace examples
