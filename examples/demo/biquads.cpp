// The bilinear transform (Oppenheim and Schafer, Discrete-Time Signal Processing, "Design of discrete-time IIR filters
// from continuous-time filters") of a Butterworth prototype. Its poles lie on the left half of the unit circle,
//
//     p[k] = exp(i pi (2 k + n + 1) / (2 n)),   k = 0 to n - 1.
//
// With the edges w1 = tan(pi f1) and w2 = tan(pi f2), f1 and f2 being divided by the sampling rate, s = (z - 1) / (z +
// 1) puts them where they belong, and a pole moves to
//
//     low-pass     s = p w2                            zeros at z = -1
//     high-pass    s = w1 / p                          zeros at z = 1
//     band-pass    s^2 - p (w2 - w1) s + w1 w2 = 0     zeros at z = 1 and -1
//
// A section has a pole and its conjugate, or two real poles.
#include "biquads.h"

#include "failure.h"
#include "filter.h"

#include "kels.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>

namespace examples::demo {
namespace {

using Complex = std::complex<double>;
using std::numbers::pi;

constexpr int most_order = 24;

struct Free {
    void operator()(KelIirContext* state) const { kelsIIRFree64f_32f(state); }
};
using Cascade = std::unique_ptr<KelIirContext, Free>;

Cascade make_cascade(const std::vector<double>& sections) {
    KelIirContext* state = nullptr;
    check(kelsIIRInitAlloc64f_BiQuad_32f(&state, sections.data(), int(sections.size() / 6), nullptr));
    return Cascade(state);
}

enum class Kind { low_pass, high_pass, band_pass };

/// Sections of one kind of filter, whose gain is 1 at one frequency.
class Sections {
public:
    /// `middle` is the frequency, as a number on the unit circle.
    Sections(Kind kind, Complex middle) : kind_(kind), middle_(middle) {}

    void add(Complex s, Complex t) {
        const Complex p = (1.0 + s) / (1.0 - s), q = (1.0 + t) / (1.0 - t);
        append(2, -(p + q).real(), (p * q).real());
    }
    void add_single(double s) { append(1, -(1 + s) / (1 - s), 0); }

    std::vector<double> taps() && { return std::move(taps_); }

private:
    void append(int zeros, double a1, double a2) {
        const double side = kind_ == Kind::low_pass ? 1 : -1;
        const bool both = kind_ == Kind::band_pass;
        const double b1 = both ? 0 : zeros * side, b2 = both ? -1 : zeros - 1;
        const Complex z = 1.0 / middle_;
        const double gain = std::abs((1.0 + b1 * z + b2 * z * z) / (1.0 + a1 * z + a2 * z * z));
        taps_.insert(taps_.end(), {1 / gain, b1 / gain, b2 / gain, 1, a1, a2});
    }

    Kind kind_;
    Complex middle_;
    std::vector<double> taps_;
};

} // namespace

void require_possible_order(int order) {
    if (order < 1 || order > most_order)
        throw Failure("A prototype of order " + std::to_string(order) +
                      " is not possible: --biquads takes one from 1 to " + std::to_string(most_order) + ".");
}

std::vector<double> design_biquads(const BandPass& band, int order, int rate) {
    const bool from_zero = band.low == 0, to_half = band.high == rate / 2.0;
    if (from_zero && to_half) return {1, 0, 0, 1, 0, 0}; // all there is
    const double w1 = std::tan(pi * band.low / rate), w2 = to_half ? 0 : std::tan(pi * band.high / rate);
    const Kind kind = from_zero ? Kind::low_pass : to_half ? Kind::high_pass : Kind::band_pass;
    const Complex middle = from_zero ? 1.0 : to_half ? -1.0 : std::polar(1.0, 2 * std::atan(std::sqrt(w1 * w2)));
    Sections sections(kind, middle);
    for (int k = 0; k < (order + 1) / 2; ++k) {
        const bool real = 2 * k + 1 == order;
        const Complex p = real ? -1.0 : std::polar(1.0, pi * (2 * k + order + 1) / (2 * order));
        if (kind != Kind::band_pass) {
            const Complex s = from_zero ? p * w2 : w1 / p;
            if (real)
                sections.add_single(s.real());
            else
                sections.add(s, std::conj(s));
            continue;
        }
        const Complex half = p * (w2 - w1) / 2.0, root = std::sqrt(half * half - w1 * w2);
        if (real) {
            sections.add(half + root, half - root);
        } else {
            sections.add(half + root, std::conj(half + root));
            sections.add(half - root, std::conj(half - root));
        }
    }
    return std::move(sections).taps();
}

std::vector<float> filter_in_sections(const std::vector<double>& sections, const std::vector<float>& samples) {
    const Cascade cascade = make_cascade(sections);
    std::vector<float> filtered(samples.size());
    for_each_block(samples.size(), [&](std::size_t first, int count) {
        check(kelsIIR64f_32f(&samples[first], &filtered[first], count, cascade.get()));
    });
    return filtered;
}

std::vector<float> filter_in_sections_at_once(const std::vector<double>& sections, const std::vector<float>& samples) {
    const Cascade cascade = make_cascade(sections);
    std::vector<float> filtered = samples;
    check(kelsIIR64f_32f_I(filtered.data(), int(filtered.size()), cascade.get()));
    return filtered;
}

} // namespace examples::demo
