/* The spectrum of a block: where a tone lies, and how strong it is. */
#include <kels.h>
#include <math.h>
#include <stdio.h>

enum { order = 10, points = 1 << order };

int main(void) {
    static Kel32f signal[points], spectrum[points + 2], power[points / 2 + 1];
    for (int n = 0; n < points; ++n) signal[n] = 0.5f * cosf(6.2831853f * 100 * (float)n / points);

    KelsFftPlan_32f* plan = NULL; /* made once, run any number of times, by any number of threads */
    KelStatus status = kelsFFTInitAlloc_R_32f(&plan, order, kelFftNormFwd, kelHintDefault);
    if (status == kelStatusOk) status = kelsFFTFwd_RToCCS_32f(signal, spectrum, plan, NULL);
    /* bins 0 to points/2 as complex samples */
    if (status == kelStatusOk) status = kelsPowerSpectr_32fc((const Kel32fc*)spectrum, power, points / 2 + 1);
    Kel32f largest = 0;
    int bin = 0;
    if (status == kelStatusOk) status = kelsMaxIndx_32f(power, points / 2 + 1, &largest, &bin);
    printf("bin %d, amplitude %.2f: %s\n", bin, 2 * sqrt(largest), kelGetStatusString(status));
    if (plan) kelsFFTFree_R_32f(plan);
    return status != kelStatusOk;
}
