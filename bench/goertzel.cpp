// The spectrum at one frequency or two, beside the recursion of second order written out in single precision.
#include "vectors.h"

#include <cmath>

namespace bench {
namespace {

template <class Call>
void evaluate(const char* function, const std::string& who, Call call) {
    contend_vectors("goertzel", function, who, call);
}

void recursion(const Kel32fc* x, int n) {
    const float w = 6.2831853F * 0.1F, c = std::cos(w), s = std::sin(w), k = 2 * c;
    Kel32fc s1 = {0, 0}, s2 = {0, 0};
    for (int i = 0; i < n; ++i) {
        const Kel32fc y = {x[i].re + k * s1.re - s2.re, x[i].im + k * s1.im - s2.im};
        s2 = s1;
        s1 = y;
    }
    volatile float re = s1.re * c - s1.im * s - s2.re, im = s1.im * c + s1.re * s - s2.im;
    (void)re, (void)im;
}

const Registration goertzel([] {
    evaluate("kelsGoertz_32fc", ours, [](const Kel32fc* x, int n) {
        Kel32fc value;
        kelsGoertz_32fc(x, n, &value, 0.1F);
    });
    evaluate("kelsGoertz_32fc", "plain loop", recursion);
    evaluate("kelsGoertz_64fc", ours, [](const Kel64fc* x, int n) {
        Kel64fc value;
        kelsGoertz_64fc(x, n, &value, 0.1);
    });
    evaluate("kelsGoertz_16sc_Sfs", ours, [](const Kel16sc* x, int n) {
        Kel16sc value;
        kelsGoertz_16sc_Sfs(x, n, &value, 0.1F, 5);
    });
    evaluate("kelsGoertzTwo_32fc", ours, [](const Kel32fc* x, int n) {
        const Kel32f freq[] = {0.1F, 0.2F};
        Kel32fc values[2];
        kelsGoertzTwo_32fc(x, n, values, freq);
    });
});

} // namespace
} // namespace bench
