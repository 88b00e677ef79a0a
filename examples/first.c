#include <kels.h>
#include <stdio.h>

int main(void) {
    const Kel32f taps[4] = {0.25f, 0.25f, 0.25f, 0.25f}; /* the mean of four samples */
    Kel32f samples[8] = {0, 0, 1, 1, 1, 1, 1, 1};
    KelFirContext* filter = NULL;
    KelStatus status = kelsFIRInitAlloc_32f(&filter, taps, 4, NULL);
    if (status == kelStatusOk) status = kelsFIR_32f_I(samples, 8, filter);
    if (status == kelStatusOk)
        for (int i = 0; i < 8; ++i) printf("%g ", samples[i]);
    puts(kelGetStatusString(status));
    if (filter) kelsFIRFree_32f(filter);
    return status != kelStatusOk;
}
