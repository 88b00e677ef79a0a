// Every class of the C++ face with every type that it is made for, all members of it.

#include <kels.hpp>

#include <complex>

namespace kels {

#define FOR_SIGNALS(CLASS)                                                                                             \
    template class CLASS<float>;                                                                                       \
    template class CLASS<double>;                                                                                      \
    template class CLASS<Kel16s>;                                                                                      \
    template class CLASS<std::complex<float>>;                                                                         \
    template class CLASS<Kel64fc>;                                                                                     \
    template class CLASS<Kel16sc>;                                                                                     \
    template class CLASS<split<float>>;                                                                                \
    template class CLASS<split<double>>;                                                                               \
    template class CLASS<split<Kel16s>>;

FOR_SIGNALS(fft)
FOR_SIGNALS(dft)
#undef FOR_SIGNALS

template class dct<float>;
template class dct<double>;
template class dct<Kel16s>;

#define FOR_TAPS_AND_SAMPLES(CLASS)                                                                                    \
    template class CLASS<float>;                                                                                       \
    template class CLASS<std::complex<float>>;                                                                         \
    template class CLASS<double>;                                                                                      \
    template class CLASS<std::complex<double>>;                                                                        \
    template class CLASS<float, Kel16s>;                                                                               \
    template class CLASS<Kel32fc, Kel16sc>;                                                                            \
    template class CLASS<double, float>;                                                                               \
    template class CLASS<std::complex<double>, std::complex<float>>;                                                   \
    template class CLASS<double, Kel32s>;                                                                              \
    template class CLASS<Kel64fc, Kel32sc>;                                                                            \
    template class CLASS<double, Kel16s>;                                                                              \
    template class CLASS<Kel64fc, Kel16sc>;                                                                            \
    template class CLASS<Kel32s, Kel16s>;                                                                              \
    template class CLASS<Kel32sc, Kel16sc>;

FOR_TAPS_AND_SAMPLES(fir)
FOR_TAPS_AND_SAMPLES(fir_multirate)
FOR_TAPS_AND_SAMPLES(iir)
FOR_TAPS_AND_SAMPLES(biquads)
#undef FOR_TAPS_AND_SAMPLES

template class lms<float>;
template class lms<Kel16s>;
template class lms_multirate<Kel32s, Kel16s>;
template class lms_multirate<Kel32sc, Kel16sc>;

template class filter_bank<float>;
template class filter_bank<Kel8s>;
template class filter_bank<Kel8u>;
template class filter_bank<Kel16s>;
template class filter_bank<Kel16u>;

template class uniform_noise<float>;
template class uniform_noise<Kel16s>;
template class uniform_noise<Kel8u>;
template class normal_noise<float>;
template class normal_noise<Kel16s>;
template class normal_noise<Kel8u>;

static_assert(!std::is_copy_constructible_v<fft<float>> && std::is_nothrow_move_constructible_v<fft<float>>);
static_assert(!std::is_copy_constructible_v<fir<float>> && std::is_nothrow_move_assignable_v<fir<float>>);

} // namespace kels
