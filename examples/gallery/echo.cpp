// An echo is cancelled: the filter learns by least mean squares how the loudspeaker is heard in the microphone, and
// halfway the room changes. A larger step learns faster, and stays further above the noise that nobody can cancel.
#include "gallery.h"

#include <algorithm>
#include <cmath>

using namespace examples;

namespace {

constexpr int rate = 8000, taps = 256, piece = rate / 20;
constexpr double noise_level = -40, steps[] = {0.3, 0.1, 0.03}; // steps in units of 1 / (taps times the power)

/// What a room answers to an impulse: 32 ms of noise that dies away, of energy 1.
Samples room(Kel32u seed) {
    Samples response = noise(taps, 1, seed);
    for (std::size_t i = 0; i < taps; ++i) response[i] *= float(std::exp(-0.02 * double(i)));
    check(kelsMulC_32f_I(float(1 / (rms(response) * std::sqrt(taps))), response.data(), taps));
    return response;
}

Samples microphone(const Samples& loudspeaker) {
    const std::size_t half = loudspeaker.size() / 2;
    Samples heard(loudspeaker.size());
    for (const bool second : {false, true}) {
        const Samples response = room(second ? 11 : 10);
        const auto filter = make<kelsFIRInitAlloc_32f, kelsFIRFree_32f>(response.data(), taps, nullptr);
        check(kelsFIR_32f(&loudspeaker[second * half], &heard[second * half], int(half), filter.get()));
    }
    const Samples hiss = noise(heard.size(), std::pow(10, noise_level / 20), 12);
    check(kelsAdd_32f_I(hiss.data(), heard.data(), int(heard.size())));
    return heard;
}

/// What is left of the echo, its level in dB piece by piece.
std::vector<double> left(const Samples& loudspeaker, const Samples& heard, double step) {
    const int length = int(heard.size());
    const auto filter = make<kelsFIRLMSInitAlloc_32f, kelsFIRLMSFree_32f>(nullptr, taps, nullptr, 0);
    Samples error(heard.size());
    check(kelsFIRLMS_32f(loudspeaker.data(), heard.data(), error.data(), length, float(step / taps), filter.get()));
    check(kelsSub_32f_I(heard.data(), error.data(), length));
    return levels(error, piece);
}

} // namespace

std::string examples::show(const Run& run) {
    const Samples loudspeaker = noise(std::size_t(run.small ? 4 : 8) * rate, 1, 13), heard = microphone(loudspeaker);
    Picture picture(900, 480);
    std::string plots = text("%g with lines linetype 4 dashtype 2 title 'noise'", noise_level), reached;
    for (int i = 0; i < 3; ++i) {
        const std::vector<double> errors = left(loudspeaker, heard, steps[i]);
        const double theory = noise_level - 10 * std::log10(1 - steps[i]); // above the noise by the taps' own
        const std::size_t settled = std::size_t(run.small ? 4 : 10);
        double level = 0;
        for (std::size_t k = errors.size() / 2 - settled; k < errors.size() / 2; ++k)
            level += errors[k] / double(settled);
        claim(std::abs(level - theory) < 0.5 || (run.small && i == 2),
              text("With step %g the error settles at %.2f dB; theory has %.2f.", steps[i], level, theory));
        reached += text("%s%.1f", i == 0 ? "" : i == 1 ? ", " : " and ", level);
        picture.data(text("step%d", i), axis(errors.size(), double(piece) / rate), errors);
        plots += text(", $step%d with lines linetype %d title 'step %g'", i, i + 1, steps[i]);
    }
    picture.title("An echo of 32 ms cancelled; the room changes halfway")
        << "set xlabel 'Time in s'\nset ylabel 'Error in dB, the echo being 0'\nset yrange [-45:10]\n"
        << "set key horizontal\nplot " << plots << '\n';
    picture.draw(run.png);
    return text("steps of 0.3, 0.1 and 0.03 bring the echo down to %s dB, above noise at %.0f dB.", reached.c_str(),
                noise_level);
}
