/* From 48 to 32 kHz: up by 2, down by 3, with a low-pass of 5 taps between. */
#include <kels.h>
#include <stdio.h>

int main(void) {
    enum { up = 2, down = 3, iterations = 4 };
    const Kel32f taps[5] = {0.25f, 0.5f, 0.75f, 0.5f, 0.25f};
    Kel32f in[iterations * down], out[iterations * up]; /* numIters counts pieces of 3 samples in and 2 out */
    for (int n = 0; n < iterations * down; ++n) in[n] = 1;

    KelFirContext* filter = NULL;
    KelStatus status = kelsFIRMRInitAlloc_32f(&filter, taps, 5, up, 0, down, 0, NULL);
    if (status == kelStatusOk) status = kelsFIR_32f(in, out, iterations, filter);
    if (status == kelStatusOk)
        for (int m = 0; m < iterations * up; ++m) printf("%g ", out[m]);
    puts(kelGetStatusString(status));
    if (filter) kelsFIRFree_32f(filter);
    return status != kelStatusOk;
}
