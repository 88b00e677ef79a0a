// Adaptive filters, beside a plain loop in single precision.
#include "lms.h"

#include <algorithm>
#include <vector>

namespace bench {
namespace {

template <class Sample>
struct Context {
    KelLmsContext* state = nullptr;
    KelStatus (*release)(KelLmsContext*);
    Context(int taps, KelStatus (*make)(KelLmsContext**, const Kel32f*, int, const Sample*, int),
            KelStatus (*free)(KelLmsContext*))
        : release(free) {
        make(&state, nullptr, taps, nullptr, 0);
    }
    Context(Context&& other) : state(std::exchange(other.state, nullptr)), release(other.release) {}
    ~Context() { release(state); }
};

template <class Sample>
void blocks(const char* function, KelStatus (*make)(KelLmsContext**, const Kel32f*, int, const Sample*, int),
            KelStatus (*free)(KelLmsContext*),
            KelStatus (*call)(const Sample*, const Sample*, Sample*, int, Kel32f, KelLmsContext*)) {
    contend_lms(function, ours, [=](int taps) {
        return [call, context = Context<Sample>(taps, make, free), x = noise<Sample>(lms_block),
                r = noise<Sample>(lms_block), y = zeros<Sample>(lms_block),
                mu = 1e-3F / (sizeof(Sample) == 4 ? 1 : 1e9F)] {
            call(x.get(), r.get(), y.get(), lms_block, mu, context.state);
        };
    });
}

/// A window in a line that is moved to its front once a block.
void plain_loop(int taps, float* h, float* line, const float* x, const float* r, float* y) {
    std::copy_n(line + lms_block, taps, line);
    std::copy_n(x, lms_block, line + taps);
    for (int n = 0; n < lms_block; ++n) {
        const float* w = line + n + 1;
        float sum = 0;
        for (int i = 0; i < taps; ++i) sum += h[i] * w[i];
        y[n] = sum;
        const float e = 2e-3F * (r[n] - sum);
        for (int i = 0; i < taps; ++i) h[i] += e * w[i];
    }
}

const Registration lms([] {
    blocks<Kel32f>("kelsFIRLMS_32f", kelsFIRLMSInitAlloc_32f, kelsFIRLMSFree_32f, kelsFIRLMS_32f);
    contend_lms("kelsFIRLMS_32f", "plain loop", [](int taps) {
        return [taps, h = zeros<float>(taps), line = zeros<float>(taps + lms_block), x = noise<float>(lms_block),
                r = noise<float>(lms_block),
                y = zeros<float>(lms_block)] { plain_loop(taps, h.get(), line.get(), x.get(), r.get(), y.get()); };
    });
    blocks<Kel16s>("kelsFIRLMS32f_16s", kelsFIRLMSInitAlloc32f_16s, kelsFIRLMSFree32f_16s, kelsFIRLMS32f_16s);
    contend_lms("kelsFIRLMSOne_DirectQ15_16s, one sample a call", ours, [](int taps) {
        return [taps, h = zeros<Kel32s>(taps), line = zeros<Kel16s>(2 * taps), x = noise<Kel16s>(lms_block),
                r = noise<Kel16s>(lms_block), y = zeros<Kel16s>(lms_block), index = 0]() mutable {
            for (int i = 0; i < lms_block; ++i)
                kelsFIRLMSOne_DirectQ15_16s(x[i], r[i], &y[i], h.get(), taps, 3277, line.get(), &index);
        };
    });
});

} // namespace
} // namespace bench
