// The recursive filters that are measured. Every contender takes its work from here, so that the same ones meet.
#pragma once

#include "data.h"
#include "harness.h"

#include <string>
#include <vector>

namespace bench {

inline constexpr int iir_samples = 4096;
inline constexpr int iir_sections[] = {1, 2, 4, 8, 16};
inline constexpr int iir_orders[] = {1, 2, 4, 8, 16, 32};

/// A number as a tap.
template <class Tap>
Tap tap_of(double value) {
    Tap tap{};
    reinterpret_cast<typename Part<Tap>::type&>(tap) = static_cast<typename Part<Tap>::type>(value);
    return tap;
}

/// b0, b1, b2, a0, a1, a2 of a section times `unit`, each with other poles.
template <class Tap>
std::vector<Tap> section_taps(int sections, double unit = 1) {
    std::vector<Tap> taps;
    for (int s = 0; s < sections; ++s)
        for (double tap : {1.0, -0.5, 0.25, 1.0, -1.5 + 0.05 * s, 0.7 + 0.01 * s})
            taps.push_back(tap_of<Tap>(unit * tap));
    return taps;
}

/// b[0] to b[order], a[0] to a[order] times `unit`; the feedback is less than 1 in all.
template <class Tap>
std::vector<Tap> polynomial_taps(int order, double unit = 1) {
    std::vector<Tap> taps;
    for (int i = 0; i <= order; ++i) taps.push_back(tap_of<Tap>(unit / (2 + i)));
    for (int i = 0; i <= order; ++i) taps.push_back(tap_of<Tap>(i == 0 ? unit : unit * (i % 2 ? -0.9 : 0.8) / order));
    return taps;
}

template <class Sample>
Work iir_work(const std::string& operation, const std::string& size, double products) {
    const double operations = parts<Sample> == 1 ? 2 : 8;
    return {"iir", operation, size, double(iir_samples), operations * products * iir_samples, "GFLOP/s"};
}

/// Registers a contender for cascades: `make(sections)` gives its callable.
template <class Sample, class Make>
void contend_sections(const std::string& function, const std::string& who, Make make) {
    for (const int sections : iir_sections) {
        const std::string size = std::to_string(sections) + (sections == 1 ? " section" : " sections");
        contend(iir_work<Sample>(function + " in sections", size, 4 * sections + 1), who,
                [=] { return make(sections); });
    }
}

/// The same for filters of any order: `make(order)`.
template <class Sample, class Make>
void contend_orders(const std::string& function, const std::string& who, Make make) {
    for (const int order : iir_orders)
        contend(iir_work<Sample>(function + " of any order", "order " + std::to_string(order), 2 * order + 1), who,
                [=] { return make(order); });
}

} // namespace bench
