/* 16-bit samples: a gain of 3/4 with saturation, and the level in decibels of full scale. */
#include <kels.h>
#include <math.h>
#include <stdio.h>

int main(void) {
    Kel16s samples[6] = {32767, -32768, 1000, 3, -3, 0};
    /* times 3, then times 2^-2 by the scale factor; halves go to the even neighbour, what is too large saturates */
    KelStatus status = kelsMulC_16s_ISfs(3, samples, 6, 2);
    Kel32f norm = 0;
    if (status == kelStatusOk) status = kelsNorm_L2_16s32f(samples, 6, &norm);
    if (status == kelStatusOk)
        for (int n = 0; n < 6; ++n) printf("%d ", samples[n]);
    printf("%.1f dB: %s\n", 20 * log10(norm / (32768 * sqrt(6))), kelGetStatusString(status));
    return status != kelStatusOk;
}
