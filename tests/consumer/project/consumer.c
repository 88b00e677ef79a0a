/* A C11 program that filters one impulse: what comes out are the taps. */
#include <kels.h>
#include <stdio.h>
#include <string.h>

static int fail(const char* call, KelStatus status) {
    fprintf(stderr, "%s: %s\n", call, kelGetStatusString(status));
    return 1;
}

int main(void) {
    const Kel32f taps[3] = {0.5f, -1.0f, 2.0f};
    const Kel32f impulse[3] = {1.0f, 0.0f, 0.0f};
    KelFirContext* filter = NULL;

    Kel32f* filtered = kelsMalloc_32f(3);
    if (!filtered) return fail("kelsMalloc_32f", kelStatusNoMemory);
    KelStatus status = kelsFIRInitAlloc_32f(&filter, taps, 3, NULL);
    if (status != kelStatusOk) return fail("kelsFIRInitAlloc_32f", status);
    status = kelsFIR_32f(impulse, filtered, 3, filter);
    if (status != kelStatusOk) return fail("kelsFIR_32f", status);
    if (memcmp(filtered, taps, sizeof taps) != 0) return fail("the filtered impulse", kelStatusUnspecified);
    status = kelsFIRFree_32f(filter);
    if (status != kelStatusOk) return fail("kelsFIRFree_32f", status);
    kelsFree(filtered);
    puts("C: the impulse response is the taps");
    return 0;
}
