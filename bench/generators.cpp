// Windows, tones, triangles, lines and chirps.
#include "vectors.h"

namespace bench {
namespace {

template <class Call>
void alone(const char* function, Call call) {
    contend_vectors("generators", function, ours, call);
}

template <class T, class P>
void tone(const char* function, KelStatus (*call)(T*, int, P, P, P*)) {
    alone(function, [=](T* d, int n) {
        P phase = 0;
        call(d, n, 1, P(0.0123), &phase);
    });
}

const Registration generators([] {
    alone("kelsWinBartlett_32f", kelsWinBartlett_32f);
    alone("kelsWinHann_32f", kelsWinHann_32f);
    alone("kelsWinHamming_32f", kelsWinHamming_32f);
    alone("kelsWinBlackmanStd_32f", kelsWinBlackmanStd_32f);
    alone("kelsWinKaiser_32f", [](const Kel32f* x, Kel32f* d, int n) { kelsWinKaiser_32f(x, d, n, 20.0F / float(n)); });
    alone("kelsWinKaiser_64f", [](const Kel64f* x, Kel64f* d, int n) { kelsWinKaiser_64f(x, d, n, 20.0F / float(n)); });
    alone("kelsWinHann_32fc", kelsWinHann_32fc);
    alone("kelsWinHann_16s", kelsWinHann_16s);
    alone("kelsWinBlackmanStd_16s", kelsWinBlackmanStd_16s);
    tone("kelsTone_Direct_32f", kelsTone_Direct_32f);
    tone("kelsTone_Direct_64f", kelsTone_Direct_64f);
    for (const int hint : {0, 1})
        alone(hint == 1 ? "kelsTone_Direct_16s hint 1" : "kelsTone_Direct_16s", [=](Kel16s* d, int n) {
            Kel32f phase = 0;
            kelsTone_Direct_16s(d, n, 10000, 0.0123F, &phase, hint);
        });
    alone("kelsTriangle_Direct_32f", [](Kel32f* d, int n) {
        Kel32f phase = 0;
        kelsTriangle_Direct_32f(d, n, 1, 0.0123F, 0.5F, &phase);
    });
    alone("kelsTriangle_Direct_16s", [](Kel16s* d, int n) {
        Kel32f phase = 0;
        kelsTriangle_Direct_16s(d, n, 10000, 0.0123F, 0.5F, &phase);
    });
    alone("kelsVectorRamp_32f", [](Kel32f* d, int n) { kelsVectorRamp_32f(d, n, 0.5F, 0.01F); });
    alone("kelsVectorRamp_64f", [](Kel64f* d, int n) { kelsVectorRamp_64f(d, n, 0.5F, 0.01F); });
    alone("kelsVectorRamp_16s", [](Kel16s* d, int n) { kelsVectorRamp_16s(d, n, 0.5F, 0.01F); });
    alone("kelsVectorJaehne_32f", [](Kel32f* d, int n) { kelsVectorJaehne_32f(d, n, 1); });
    alone("kelsVectorJaehne_16s", [](Kel16s* d, int n) { kelsVectorJaehne_16s(d, n, 10000); });
    alone("kelsVectorJaehne_16u", [](Kel16u* d, int n) { kelsVectorJaehne_16u(d, n, 10000); });
});

} // namespace
} // namespace bench
