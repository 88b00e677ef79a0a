// From 44.1 to 48 kHz and back: a multi-rate filter takes 160 samples for every 147, another one 147 for every 160. A
// sweep up to 20 kHz returns as it was, but for what lies far below it.
#include "gallery.h"

#include <algorithm>
#include <cmath>
#include <numbers>

using namespace examples;
using std::numbers::pi;

namespace {

constexpr int cd = 147, dat = 160; // samples at 44.1 and at 48 kHz in the same time
constexpr int rate = 44100, delay = 77, taps = delay * dat + 1, middle = taps / 2;

/// A low-pass at 22.05 kHz for the common rate of 7.056 MHz: a sinc under Kaiser's window.
std::vector<double> low_pass(double gain) {
    std::vector<double> h(taps);
    for (int i = 0; i < taps; ++i) {
        const double x = pi * (i - middle) / dat;
        h[std::size_t(i)] = gain / dat * (x == 0 ? 1 : std::sin(x) / x);
    }
    check(kelsWinKaiser_64f_I(h.data(), taps, 2 * 11.2F / (taps - 1)));
    return h;
}

Samples changed(const Samples& samples, int up, int down) {
    const std::vector<double> h = low_pass(up);
    const auto filter = make<kelsFIRMRInitAlloc64f_32f, kelsFIRFree64f_32f>(h.data(), taps, up, 0, down, 0, nullptr);
    const int periods = int(samples.size()) / down;
    Samples result(std::size_t(periods * up));
    check(kelsFIR64f_32f(samples.data(), result.data(), periods, filter.get()));
    return result;
}

} // namespace

std::string examples::show(const Run& run) {
    const std::size_t length = std::size_t(cd) * (run.small ? 300 : 1200), swept = length * 20000 / (rate / 2);
    Samples sweep(length);
    check(kelsVectorJaehne_32f(sweep.data(), int(length), 0.5F));
    std::fill(sweep.begin() + std::ptrdiff_t(swept), sweep.end(), 0.0F);
    const Samples at_48 = changed(sweep, dat, cd), back = changed(at_48, cd, dat);

    // What does not belong, in pieces of 10 ms, up to where the sweep breaks off, which no filter of this length hides.
    constexpr std::size_t piece = rate / 100;
    Samples error(&back[delay], &back[swept - delay]);
    check(kelsSub_32f_I(sweep.data(), error.data(), int(error.size())));
    std::vector<double> errors = levels(error, piece);
    for (double& level : errors) level -= decibels(0.5 * std::sqrt(0.5)); // that of the sweep
    const double worst = *std::ranges::max_element(errors);
    claim(worst < -100, text("What does not belong lies only %.1f dB below the sweep.", -worst));

    Picture picture(900, 640);
    const std::string spectra =
        image(picture, "spectra", spectrogram(at_48, 48000, 10, int(at_48.size()) / 400), 24000);
    const double end = double(swept) / rate;
    picture.data("errors", axis(errors.size(), double(piece) / rate), errors)
        << heat << "unset key\nset lmargin at screen 0.1\nset rmargin at screen 0.84\nset multiplot\n"
        << "set xrange [0:" << end << "]\nset format x ''\nset tmargin at screen 0.91\nset bmargin at screen 0.4\n"
        << "set ylabel 'Frequency in kHz'\nset yrange [0:24]\nset cbrange [-120:0]\nset cblabel 'Level in dB'\n";
    picture.title("A sweep up to 20 kHz, taken from 44.1 to 48 kHz") << "unset grid\nplot " << spectra << '\n';
    picture.title("Back at 44.1 kHz: what does not belong, the sweep being 0 dB")
        << "set grid\nset format x\nset tmargin at screen 0.29\nset bmargin at screen 0.1\n"
        << "set yrange [-140:-80]\nset ytics 20\nset xlabel 'Time in s'\nset ylabel 'Level in dB'\n"
        << "plot $errors with lines linetype 1\n";
    picture.draw(run.png);
    return text("a sweep up to 20 kHz comes back from 48 kHz with nothing added above %.1f dB.", worst);
}
