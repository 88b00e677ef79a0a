// SLEEF: one vector function a call, in a loop, of the two widths that the levels have. It declares a function only to
// those compiled for its width, which the rest of this program is not.
#include "elementary.h"

#include <immintrin.h>

extern "C" {
struct Singles16 {
    __m512 x, y;
};
struct Doubles8 {
    __m512d x, y;
};
struct Singles8 {
    __m256 x, y;
};
struct Doubles4 {
    __m256d x, y;
};
[[gnu::target("avx512f")]] __m512 Sleef_expf16_u10avx512f(__m512);
[[gnu::target("avx512f")]] __m512 Sleef_logf16_u10avx512f(__m512);
[[gnu::target("avx512f")]] __m512 Sleef_atanf16_u10avx512f(__m512);
[[gnu::target("avx512f")]] __m512 Sleef_atan2f16_u10avx512f(__m512, __m512);
[[gnu::target("avx512f")]] Singles16 Sleef_sincosf16_u10avx512f(__m512);
[[gnu::target("avx512f")]] __m512d Sleef_expd8_u10avx512f(__m512d);
[[gnu::target("avx512f")]] __m512d Sleef_logd8_u10avx512f(__m512d);
[[gnu::target("avx512f")]] __m512d Sleef_atand8_u10avx512f(__m512d);
[[gnu::target("avx512f")]] __m512d Sleef_atan2d8_u10avx512f(__m512d, __m512d);
[[gnu::target("avx512f")]] Doubles8 Sleef_sincosd8_u10avx512f(__m512d);
[[gnu::target("avx2")]] __m256 Sleef_expf8_u10avx2(__m256);
[[gnu::target("avx2")]] __m256 Sleef_logf8_u10avx2(__m256);
[[gnu::target("avx2")]] __m256 Sleef_atanf8_u10avx2(__m256);
[[gnu::target("avx2")]] __m256 Sleef_atan2f8_u10avx2(__m256, __m256);
[[gnu::target("avx2")]] Singles8 Sleef_sincosf8_u10avx2(__m256);
[[gnu::target("avx2")]] __m256d Sleef_expd4_u10avx2(__m256d);
[[gnu::target("avx2")]] __m256d Sleef_logd4_u10avx2(__m256d);
[[gnu::target("avx2")]] __m256d Sleef_atand4_u10avx2(__m256d);
[[gnu::target("avx2")]] __m256d Sleef_atan2d4_u10avx2(__m256d, __m256d);
[[gnu::target("avx2")]] Doubles4 Sleef_sincosd4_u10avx2(__m256d);
}

namespace bench {
namespace {

// The arrays hold whole vectors; parts of points are taken as they lie, without separating them.

template <auto F>
[[gnu::target("avx512f")]] void map16(const float* x, float* d, int n) {
    for (int i = 0; i < n; i += 16) _mm512_storeu_ps(d + i, F(_mm512_loadu_ps(x + i)));
}
template <auto F>
[[gnu::target("avx512f")]] void map16(const double* x, double* d, int n) {
    for (int i = 0; i < n; i += 8) _mm512_storeu_pd(d + i, F(_mm512_loadu_pd(x + i)));
}
template <auto F>
[[gnu::target("avx2")]] void map8(const float* x, float* d, int n) {
    for (int i = 0; i < n; i += 8) _mm256_storeu_ps(d + i, F(_mm256_loadu_ps(x + i)));
}
template <auto F>
[[gnu::target("avx2")]] void map8(const double* x, double* d, int n) {
    for (int i = 0; i < n; i += 4) _mm256_storeu_pd(d + i, F(_mm256_loadu_pd(x + i)));
}

[[gnu::target("avx512f")]] void phase16(const float* z, float* d, int n) {
    for (int i = 0; i < n; i += 16)
        _mm512_storeu_ps(d + i, Sleef_atan2f16_u10avx512f(_mm512_loadu_ps(z + 2 * i), _mm512_loadu_ps(z + 2 * i + 16)));
}
[[gnu::target("avx512f")]] void phase16(const double* z, double* d, int n) {
    for (int i = 0; i < n; i += 8)
        _mm512_storeu_pd(d + i, Sleef_atan2d8_u10avx512f(_mm512_loadu_pd(z + 2 * i), _mm512_loadu_pd(z + 2 * i + 8)));
}
[[gnu::target("avx2")]] void phase8(const float* z, float* d, int n) {
    for (int i = 0; i < n; i += 8)
        _mm256_storeu_ps(d + i, Sleef_atan2f8_u10avx2(_mm256_loadu_ps(z + 2 * i), _mm256_loadu_ps(z + 2 * i + 8)));
}
[[gnu::target("avx2")]] void phase8(const double* z, double* d, int n) {
    for (int i = 0; i < n; i += 4)
        _mm256_storeu_pd(d + i, Sleef_atan2d4_u10avx2(_mm256_loadu_pd(z + 2 * i), _mm256_loadu_pd(z + 2 * i + 4)));
}

[[gnu::target("avx512f")]] void cartesian16(const float* r, const float* a, float* d, int n) {
    for (int i = 0; i < n; i += 16) {
        const Singles16 f = Sleef_sincosf16_u10avx512f(_mm512_loadu_ps(a + i));
        const __m512 radius = _mm512_loadu_ps(r + i);
        _mm512_storeu_ps(d + 2 * i, _mm512_mul_ps(radius, f.y));
        _mm512_storeu_ps(d + 2 * i + 16, _mm512_mul_ps(radius, f.x));
    }
}
[[gnu::target("avx512f")]] void cartesian16(const double* r, const double* a, double* d, int n) {
    for (int i = 0; i < n; i += 8) {
        const Doubles8 f = Sleef_sincosd8_u10avx512f(_mm512_loadu_pd(a + i));
        const __m512d radius = _mm512_loadu_pd(r + i);
        _mm512_storeu_pd(d + 2 * i, _mm512_mul_pd(radius, f.y));
        _mm512_storeu_pd(d + 2 * i + 8, _mm512_mul_pd(radius, f.x));
    }
}
[[gnu::target("avx2")]] void cartesian8(const float* r, const float* a, float* d, int n) {
    for (int i = 0; i < n; i += 8) {
        const Singles8 f = Sleef_sincosf8_u10avx2(_mm256_loadu_ps(a + i));
        const __m256 radius = _mm256_loadu_ps(r + i);
        _mm256_storeu_ps(d + 2 * i, _mm256_mul_ps(radius, f.y));
        _mm256_storeu_ps(d + 2 * i + 8, _mm256_mul_ps(radius, f.x));
    }
}
[[gnu::target("avx2")]] void cartesian8(const double* r, const double* a, double* d, int n) {
    for (int i = 0; i < n; i += 4) {
        const Doubles4 f = Sleef_sincosd4_u10avx2(_mm256_loadu_pd(a + i));
        const __m256d radius = _mm256_loadu_pd(r + i);
        _mm256_storeu_pd(d + 2 * i, _mm256_mul_pd(radius, f.y));
        _mm256_storeu_pd(d + 2 * i + 4, _mm256_mul_pd(radius, f.x));
    }
}

using Singles = void (*)(const float*, float*, int);
using Doubles = void (*)(const double*, double*, int);

void wide() {
    const char* who = "sleef 512";
    contend_function<float>("kelsExp_32f", who, exponents, Singles(map16<Sleef_expf16_u10avx512f>));
    contend_function<double>("kelsExp_64f", who, exponents, Doubles(map16<Sleef_expd8_u10avx512f>));
    contend_function<float>("kelsLn_32f", who, positive, Singles(map16<Sleef_logf16_u10avx512f>));
    contend_function<double>("kelsLn_64f", who, positive, Doubles(map16<Sleef_logd8_u10avx512f>));
    contend_function<float>("kelsArctan_32f", who, angles, Singles(map16<Sleef_atanf16_u10avx512f>));
    contend_function<double>("kelsArctan_64f", who, angles, Doubles(map16<Sleef_atand8_u10avx512f>));
    contend_vectors("elementary", "kelsPhase_32fc", who,
                    [](const Kel32fc* z, float* d, int n) { phase16(&z->re, d, n); });
    contend_vectors("elementary", "kelsPhase_64fc", who,
                    [](const Kel64fc* z, double* d, int n) { phase16(&z->re, d, n); });
    contend_cartesian<float>("kelsPolarToCart_32fc", who,
                             [](const float* r, const float* a, float* d, int n) { cartesian16(r, a, d, n); });
    contend_cartesian<double>("kelsPolarToCart_64fc", who,
                              [](const double* r, const double* a, double* d, int n) { cartesian16(r, a, d, n); });
}

void narrow() {
    const char* who = "sleef 256";
    contend_function<float>("kelsExp_32f", who, exponents, Singles(map8<Sleef_expf8_u10avx2>));
    contend_function<double>("kelsExp_64f", who, exponents, Doubles(map8<Sleef_expd4_u10avx2>));
    contend_function<float>("kelsLn_32f", who, positive, Singles(map8<Sleef_logf8_u10avx2>));
    contend_function<double>("kelsLn_64f", who, positive, Doubles(map8<Sleef_logd4_u10avx2>));
    contend_function<float>("kelsArctan_32f", who, angles, Singles(map8<Sleef_atanf8_u10avx2>));
    contend_function<double>("kelsArctan_64f", who, angles, Doubles(map8<Sleef_atand4_u10avx2>));
    contend_vectors("elementary", "kelsPhase_32fc", who,
                    [](const Kel32fc* z, float* d, int n) { phase8(&z->re, d, n); });
    contend_vectors("elementary", "kelsPhase_64fc", who,
                    [](const Kel64fc* z, double* d, int n) { phase8(&z->re, d, n); });
    contend_cartesian<float>("kelsPolarToCart_32fc", who,
                             [](const float* r, const float* a, float* d, int n) { cartesian8(r, a, d, n); });
    contend_cartesian<double>("kelsPolarToCart_64fc", who,
                              [](const double* r, const double* a, double* d, int n) { cartesian8(r, a, d, n); });
}

const Registration sleef(
    [] {
        if (level() == "v4" && __builtin_cpu_supports("avx512f")) wide();
        if (__builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")) narrow();
    },
    "SLEEF");

} // namespace
} // namespace bench
