// VOLK: vector kernels, and filters as one dot product an output. Its names are variables that hold the kernel chosen
// at the first call, so they are called by name and never passed on.
#include "elementary.h"
#include "fir.h"
#include "vectors.h"

#include <volk/constants.h>
#include <volk/volk.h>

#include <algorithm>
#include <complex>
#include <string>

namespace bench {
namespace {

using Complex = std::complex<float>;

void arithmetic() {
    const auto vectors = [](const char* function, auto call) { contend_vectors("arithmetic", function, "volk", call); };
    vectors("kelsAdd_32f",
            [](const float* a, const float* b, float* d, int n) { volk_32f_x2_add_32f(d, a, b, unsigned(n)); });
    vectors("kelsAdd_64f",
            [](const double* a, const double* b, double* d, int n) { volk_64f_x2_add_64f(d, a, b, unsigned(n)); });
    vectors("kelsSub_32f",
            [](const float* a, const float* b, float* d, int n) { volk_32f_x2_subtract_32f(d, b, a, unsigned(n)); });
    vectors("kelsMul_32f",
            [](const float* a, const float* b, float* d, int n) { volk_32f_x2_multiply_32f(d, a, b, unsigned(n)); });
    vectors("kelsMul_64f",
            [](const double* a, const double* b, double* d, int n) { volk_64f_x2_multiply_64f(d, a, b, unsigned(n)); });
    vectors("kelsMul_32fc", [](const Complex* a, const Complex* b, Complex* d, int n) {
        volk_32fc_x2_multiply_32fc(d, a, b, unsigned(n));
    });
    vectors("kelsMul_16sc_Sfs 0",
            [](const std::complex<short>* a, const std::complex<short>* b, std::complex<short>* d, int n) {
                volk_16ic_x2_multiply_16ic(reinterpret_cast<lv_16sc_t*>(d), reinterpret_cast<const lv_16sc_t*>(a),
                                           reinterpret_cast<const lv_16sc_t*>(b), unsigned(n));
            });
    vectors("kelsAddC_32f", [](const float* a, float* d, int n) { volk_32f_s32f_add_32f(d, a, 2.5F, unsigned(n)); });
    vectors("kelsMulC_32f",
            [](const float* a, float* d, int n) { volk_32f_s32f_multiply_32f(d, a, 2.5F, unsigned(n)); });
    vectors("kelsMulC_32fc", [](const Complex* a, Complex* d, int n) {
        volk_32fc_s32fc_multiply_32fc(d, a, Complex(0.6F, -0.8F), unsigned(n));
    });
}

void conversion() {
    const auto vectors = [](const char* function, auto call) { contend_vectors("conversion", function, "volk", call); };
    vectors("kelsConvert_8s16s", [](const signed char* x, short* d, int n) {
        volk_8i_convert_16i(d, reinterpret_cast<const std::int8_t*>(x), unsigned(n));
    });
    vectors("kelsConvert_8s32f", [](const signed char* x, float* d, int n) {
        volk_8i_s32f_convert_32f(d, reinterpret_cast<const std::int8_t*>(x), 1, unsigned(n));
    });
    vectors("kelsConvert_16s32f",
            [](const short* x, float* d, int n) { volk_16i_s32f_convert_32f(d, x, 1, unsigned(n)); });
    vectors("kelsConvert_16s32f_Sfs",
            [](const short* x, float* d, int n) { volk_16i_s32f_convert_32f(d, x, 32768, unsigned(n)); });
    vectors("kelsConvert_32s32f",
            [](const int* x, float* d, int n) { volk_32i_s32f_convert_32f(d, x, 1, unsigned(n)); });
    vectors("kelsConvert_32f64f", [](const float* x, double* d, int n) { volk_32f_convert_64f(d, x, unsigned(n)); });
    vectors("kelsConvert_64f32f", [](const double* x, float* d, int n) { volk_64f_convert_32f(d, x, unsigned(n)); });
    vectors("kelsConvert_32f8s_Sfs", [](const float* x, signed char* d, int n) {
        volk_32f_s32f_convert_8i(reinterpret_cast<std::int8_t*>(d), x, 128, unsigned(n));
    });
    vectors("kelsConvert_32f16s_Sfs",
            [](const float* x, short* d, int n) { volk_32f_s32f_convert_16i(d, x, 128, unsigned(n)); });
    vectors("kelsConvert_32f32s_Sfs",
            [](const float* x, int* d, int n) { volk_32f_s32f_convert_32i(d, x, 128, unsigned(n)); });
}

void division() {
    const auto vectors = [](const char* function, auto call) { contend_vectors("division", function, "volk", call); };
    vectors("kelsDiv_32f",
            [](const float* a, const float* b, float* d, int n) { volk_32f_x2_divide_32f(d, b, a, unsigned(n)); });
    vectors("kelsDiv_32fc", [](const Complex* a, const Complex* b, Complex* d, int n) {
        volk_32fc_x2_divide_32fc(d, b, a, unsigned(n));
    });
}

void roots() {
    contend_vectors("roots", "kelsSqrt_32f", "volk",
                    [](const float* x, float* d, int n) { volk_32f_sqrt_32f(d, x, unsigned(n)); });
}

void elementary() {
    const auto vectors = [](const char* function, auto call) { contend_vectors("elementary", function, "volk", call); };
    vectors("kelsMagnitude_32fc",
            [](const Complex* z, float* d, int n) { volk_32fc_magnitude_32f(d, z, unsigned(n)); });
    vectors("kelsPowerSpectr_32fc",
            [](const Complex* z, float* d, int n) { volk_32fc_magnitude_squared_32f(d, z, unsigned(n)); });
    vectors("kelsPhase_32fc",
            [](const Complex* z, float* d, int n) { volk_32fc_s32f_atan2_32f(d, z, 1, unsigned(n)); });
    contend_function<float>("kelsArctan_32f", "volk", angles,
                            [](const float* x, float* d, int n) { volk_32f_atan_32f(d, x, unsigned(n)); });
    contend_function<float>("kelsExp_32f", "volk", exponents,
                            [](const float* x, float* d, int n) { volk_32f_exp_32f(d, x, unsigned(n)); });
}

void movement() {
    const auto vectors = [](const char* function, auto call) { contend_vectors("movement", function, "volk", call); };
    vectors("kelsReal_16sc", [](const std::complex<short>* z, short* re, int n) {
        volk_16ic_deinterleave_real_16i(re, reinterpret_cast<const lv_16sc_t*>(z), unsigned(n));
    });
    vectors("kelsReal_32fc", [](const Complex* z, float* re, int n) { volk_32fc_deinterleave_real_32f(re, z, n); });
    vectors("kelsImag_32fc", [](const Complex* z, float* im, int n) { volk_32fc_deinterleave_imag_32f(im, z, n); });
    vectors("kelsCplxToReal_32fc", [](const Complex* z, float* re, float* im, int n) {
        volk_32fc_deinterleave_32f_x2(re, im, z, unsigned(n));
    });
    vectors("kelsRealToCplx_32f", [](const float* re, const float* im, Complex* z, int n) {
        volk_32f_x2_interleave_32fc(z, re, im, unsigned(n));
    });
    vectors("kelsConj_32fc",
            [](const Complex* z, Complex* conjugate, int n) { volk_32fc_conjugate_32fc(conjugate, z, unsigned(n)); });
}

void statistics() {
    const auto vectors = [](const char* function, auto call) { contend_vectors("statistics", function, "volk", call); };
    vectors("kelsSum_32f", [](const float* a, int n) {
        float sum;
        volk_32f_accumulator_s32f(&sum, a, unsigned(n));
    });
    vectors("kelsStdDev_32f", [](const float* a, int n) {
        float deviation, mean;
        volk_32f_stddev_and_mean_32f_x2(&deviation, &mean, a, unsigned(n));
    });
    vectors("kelsMaxIndx_32f", [](const float* a, int n) {
        std::uint32_t place;
        volk_32f_index_max_32u(&place, a, unsigned(n));
    });
    vectors("kelsMinIndx_32f", [](const float* a, int n) {
        std::uint32_t place;
        volk_32f_index_min_32u(&place, a, unsigned(n));
    });
    vectors("kelsDotProd_32f", [](const float* a, const float* b, int n) {
        float sum;
        volk_32f_x2_dot_prod_32f(&sum, a, b, unsigned(n));
    });
    vectors("kelsDotProd_32fc", [](const Complex* a, const Complex* b, int n) {
        Complex sum;
        volk_32fc_x2_dot_prod_32fc(&sum, a, b, unsigned(n));
    });
    vectors("kelsDotProd_32f32fc", [](const float* a, const Complex* b, int n) {
        Complex sum;
        volk_32fc_32f_dot_prod_32fc(&sum, b, a, unsigned(n));
    });
    vectors("kelsDotProd_16sc32sc_Sfs", [](const std::complex<short>* a, const std::complex<short>* b, int n) {
        lv_16sc_t sum;
        volk_16ic_x2_dot_prod_16ic(&sum, reinterpret_cast<const lv_16sc_t*>(a), reinterpret_cast<const lv_16sc_t*>(b),
                                   unsigned(n));
    });
}

/// A block behind the history of the last one, and a dot product of it with the reversed taps for every output.
template <class Sample, class DotProduct>
void filter(const char* function, DotProduct dot_product) {
    contend_fir<Sample>(function, "volk", [=](int taps, int block) {
        return [=, reversed = noise<Sample>(taps), stream = zeros<Sample>(taps - 1 + block),
                source = noise<Sample>(block), result = zeros<Sample>(block)] {
            std::copy_n(source.get(), block, &stream[taps - 1]);
            for (int n = 0; n < block; ++n) dot_product(&result[n], &stream[n], reversed.get(), unsigned(taps));
            std::copy_n(&stream[block], taps - 1, stream.get());
        };
    });
}

const std::string version = std::string("VOLK ") + volk_version();

const Registration volk(
    [] {
        arithmetic();
        conversion();
        division();
        roots();
        elementary();
        movement();
        statistics();
        filter<float>("kelsFIR_32f", [](float* sum, const float* a, const float* b, unsigned n) {
            volk_32f_x2_dot_prod_32f(sum, a, b, n);
        });
        filter<Complex>("kelsFIR_32fc", [](Complex* sum, const Complex* a, const Complex* b, unsigned n) {
            volk_32fc_x2_dot_prod_32fc(sum, a, b, n);
        });
    },
    version.c_str());

} // namespace
} // namespace bench
