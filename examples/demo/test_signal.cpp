#include "test_signal.h"

#include "failure.h"

#include <sndfile.h>

#include <iterator>

namespace examples::demo {
namespace {

constexpr int rate = 48000, length = 5 * rate;
constexpr float magnitude = 0.5F;

/// 1 kHz, in the middle of most bands.
void tone(float* samples) {
    float phase = 0;
    check(kelsTone_Direct_32f(samples, length, magnitude, 1000.0F / rate, &phase));
}

/// From 0 Hz up to half the rate.
void sweep(float* samples) { check(kelsVectorJaehne_32f(samples, length, magnitude)); }

/// All frequencies alike, the same noise each time.
void noise(float* samples) {
    Kel32u seed = 1;
    check(kelsRandUniform_Direct_32f(samples, length, -magnitude, magnitude, &seed));
}

struct Signal {
    std::string_view name;
    void (*generate)(float* samples);
};
constexpr Signal signals[] = {{"tone", tone}, {"sweep", sweep}, {"noise", noise}};

} // namespace

std::string signal_names() {
    std::string names;
    for (const Signal& signal : signals) {
        if (&signal != signals) names += &signal == std::end(signals) - 1 ? " and " : ", ";
        names += signal.name;
    }
    return names;
}

std::optional<Recording> make_signal(std::string_view name) {
    for (const Signal& signal : signals)
        if (signal.name == name) {
            Recording recording{.rate = rate, .format = SF_FORMAT_WAV | SF_FORMAT_FLOAT, .channels = {}};
            recording.channels.emplace_back(length);
            signal.generate(recording.channels.front().data());
            return recording;
        }
    return std::nullopt;
}

} // namespace examples::demo
