// A C++ program that transforms a complex impulse: every bin of its spectrum is 1.
#include <kels.h>

#include <iostream>
#include <vector>

int main() {
    const int order = 5;
    KelsFftPlan_64f* plan = nullptr;
    KelStatus status = kelsFFTInitAlloc_C_64fc(&plan, order, kelFftNormNone, kelHintDefault);
    if (status == kelStatusOk) {
        std::vector<Kel64fc> impulse(1 << order), spectrum(1 << order);
        impulse[0].re = 1;
        status = kelsFFTFwd_CToC_64fc(impulse.data(), spectrum.data(), plan, nullptr);
        for (const Kel64fc& bin : spectrum)
            if (bin.re != 1 || bin.im != 0) status = kelStatusUnspecified;
        const KelStatus freed = kelsFFTFree_C_64fc(plan);
        if (status == kelStatusOk) status = freed;
    }
    std::cout << "C++: " << (status == kelStatusOk ? "the spectrum of an impulse is 1" : kelGetStatusString(status))
              << '\n';
    return status == kelStatusOk ? 0 : 1;
}
