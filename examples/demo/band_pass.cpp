// The window method (Oppenheim and Schafer, Discrete-Time Signal Processing, "Design of FIR filters by windowing"):
// the impulse response of the ideal band-pass,
//
//     h[n] = 2 f2 sinc(2 f2 m) - 2 f1 sinc(2 f1 m),   m = n - (L - 1) / 2,   sinc(x) = sin(pi x) / (pi x),
//
// with f1 and f2 the edges divided by the sampling rate, is cut to L taps by a window. The window is Blackman's (same
// chapter, and Harris, "On the use of windows for harmonic analysis with the discrete Fourier transform", 1978):
//
//     w[n] = 0.42 - 0.5 cos(2 pi n / (L - 1)) + 0.08 cos(4 pi n / (L - 1)),
//
// which holds the stop bands at -74 dB. Each edge is the -6 dB point of a slope about 5.5 / L of the sampling rate
// wide.
#include "band_pass.h"

#include "failure.h"

#include <cmath>
#include <complex>
#include <numbers>
#include <sstream>

namespace examples::demo {
namespace {

using std::numbers::pi;

constexpr int least_taps = 3;
constexpr int most_taps = 65535;

double sinc(double x) { return x == 0 ? 1 : std::sin(pi * x) / (pi * x); }

double blackman(int n, int length) {
    const double phase = 2 * pi * n / (length - 1);
    return 0.42 - 0.5 * std::cos(phase) + 0.08 * std::cos(2 * phase);
}

double gain_at(const std::vector<double>& taps, double frequency) {
    std::complex<double> response = 0;
    for (std::size_t n = 0; n < taps.size(); ++n)
        response += taps[n] * std::polar(1.0, -2 * pi * frequency * double(n));
    return std::abs(response);
}

} // namespace

void require_possible(const BandPass& band, int rate) {
    std::ostringstream sentence;
    if (band.taps < least_taps || band.taps > most_taps || band.taps % 2 == 0)
        sentence << "A filter of " << band.taps << " taps is not possible: --taps takes an odd number from "
                 << least_taps << " to " << most_taps << ".";
    else if (!(band.low >= 0 && band.low < band.high && band.high <= rate / 2.0))
        sentence << "A band from " << band.low << " to " << band.high
                 << " Hz is not possible: --low must be at least 0, "
                 << "below --high, and --high at most " << rate / 2.0 << " Hz, half the sampling rate.";
    if (!sentence.str().empty()) throw Failure(sentence.str());
}

std::vector<float> design(const BandPass& band, int rate) {
    const double f1 = band.low / rate, f2 = band.high / rate;
    std::vector<double> taps(band.taps);
    for (int n = 0; n < band.taps; ++n) {
        const double m = n - (band.taps - 1) / 2.0;
        taps[n] = (2 * f2 * sinc(2 * f2 * m) - 2 * f1 * sinc(2 * f1 * m)) * blackman(n, band.taps);
    }
    const double gain = gain_at(taps, (f1 + f2) / 2);
    std::vector<float> rounded(band.taps);
    for (int n = 0; n < band.taps; ++n) rounded[n] = float(taps[n] / gain);
    return rounded;
}

} // namespace examples::demo
