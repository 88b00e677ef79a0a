#include "spectrum.h"

#include "failure.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>

namespace examples::demo {
namespace {

constexpr int usual_order = 12;  // 4,096 samples: 12 Hz from bin to bin at 48 kHz
constexpr double silence = -200; // dB, in the place of minus infinity

/// The library's real transform with its plan and its work buffer.
class RealTransform {
public:
    explicit RealTransform(int order) {
        KelsFftPlan_32f* plan = nullptr;
        check(kelsFFTInitAlloc_R_32f(&plan, order, kelFftNormNone, kelHintDefault));
        plan_.reset(plan);
        int bytes = 0;
        check(kelsFFTGetBufSize_R_32f(plan, &bytes));
        buffer_.resize(bytes);
    }

    /// From `segment` samples to 2 `bins` values: real part, imaginary part, bin by bin.
    void forward(const std::vector<float>& samples, std::vector<float>& spectrum) {
        check(kelsFFTFwd_RToCCS_32f(samples.data(), spectrum.data(), plan_.get(), buffer_.data()));
    }

private:
    struct Free {
        void operator()(KelsFftPlan_32f* plan) const { kelsFFTFree_R_32f(plan); }
    };
    std::unique_ptr<KelsFftPlan_32f, Free> plan_;
    std::vector<Kel8u> buffer_;
};

std::vector<float> hann_window(std::size_t segment) {
    std::vector<float> window(segment);
    for (std::size_t n = 0; n < segment; ++n)
        window[n] = float(0.5 - 0.5 * std::cos(2 * std::numbers::pi * double(n) / double(segment)));
    return window;
}

/// Adds the power of every whole segment of a channel, or of its only one, filled up with zeros.
std::size_t accumulate(RealTransform& transform, const std::vector<float>& window, const std::vector<float>& samples,
                       std::vector<double>& power) {
    const std::size_t segment = window.size(), bins = power.size();
    std::vector<float> windowed(segment), spectrum(2 * bins);
    std::size_t segments = 0;
    for (std::size_t start = 0; start == 0 || start + segment <= samples.size(); start += segment / 2, ++segments) {
        std::ranges::fill(windowed, 0.0f);
        for (std::size_t n = 0; n < std::min(segment, samples.size() - start); ++n)
            windowed[n] = window[n] * samples[start + n];
        transform.forward(windowed, spectrum);
        for (std::size_t k = 0; k < bins; ++k)
            power[k] += std::norm(std::complex<double>(spectrum[2 * k], spectrum[2 * k + 1]));
    }
    return segments;
}

} // namespace

Spectrum spectrum_of(const Recording& recording, int usual_rate) {
    // Bins as wide as at the usual rate, as nearly as may be: the level of what is no sine depends on it.
    const int order = std::max(4, usual_order + int(std::lround(std::log2(double(recording.rate) / usual_rate))));
    const std::size_t segment = std::size_t{1} << order;
    RealTransform transform(order);
    const std::vector<float> window = hann_window(segment);
    std::vector<double> power(segment / 2 + 1, 0.0);
    std::size_t segments = 0;
    for (const std::vector<float>& samples : recording.channels)
        segments += accumulate(transform, window, samples, power);

    // A sine of amplitude 1 in the middle of a bin has the magnitude sum(window) / 2 = segment / 4 there.
    const double full_scale = std::pow(double(segment) / 4, 2) * double(segments);
    Spectrum spectrum{double(recording.rate) / double(segment), power};
    for (double& value : spectrum.decibels) value = std::max(silence, 10 * std::log10(value / full_scale));
    return spectrum;
}

} // namespace examples::demo
