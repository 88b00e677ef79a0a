// liquid-dsp: its filter objects, a block at a time.
#include "fir.h"

#include <complex>

#include <liquid/liquid.h>

namespace bench {
namespace {

using Complex = std::complex<float>;

void real_filter(const char* function) {
    contend_fir<float>(function, "liquid", [](int taps, int block) {
        std::unique_ptr<std::remove_pointer_t<firfilt_rrrf>, decltype(&firfilt_rrrf_destroy)> filter(
            firfilt_rrrf_create(noise<float>(taps).get(), unsigned(taps)), firfilt_rrrf_destroy);
        return [block, filter = std::move(filter), source = noise<float>(block), result = zeros<float>(block)] {
            firfilt_rrrf_execute_block(filter.get(), source.get(), unsigned(block), result.get());
        };
    });
}

void complex_filter(const char* function) {
    contend_fir<Complex>(function, "liquid", [](int taps, int block) {
        std::unique_ptr<std::remove_pointer_t<firfilt_cccf>, decltype(&firfilt_cccf_destroy)> filter(
            firfilt_cccf_create(noise<Complex>(taps).get(), unsigned(taps)), firfilt_cccf_destroy);
        return [block, filter = std::move(filter), source = noise<Complex>(block), result = zeros<Complex>(block)] {
            firfilt_cccf_execute_block(filter.get(), source.get(), unsigned(block), result.get());
        };
    });
}

void one_sample(const char* function) {
    contend_fir_one<float>(function, "liquid", [](int taps, int samples) {
        std::unique_ptr<std::remove_pointer_t<firfilt_rrrf>, decltype(&firfilt_rrrf_destroy)> filter(
            firfilt_rrrf_create(noise<float>(taps).get(), unsigned(taps)), firfilt_rrrf_destroy);
        return [samples, filter = std::move(filter), source = noise<float>(samples), result = zeros<float>(samples)] {
            for (int i = 0; i < samples; ++i) {
                firfilt_rrrf_push(filter.get(), source[i]);
                firfilt_rrrf_execute(filter.get(), &result[i]);
            }
        };
    });
}

/// Its rational resampler has one tap more than its outputs meet.
void rate_change(const char* function) {
    contend_rate_change<float>(function, "liquid", [](const RateChange& change) {
        const unsigned semi_length = unsigned(change.taps / change.up / 2);
        std::unique_ptr<std::remove_pointer_t<rresamp_rrrf>, void (*)(rresamp_rrrf)> resampler(
            rresamp_rrrf_create(unsigned(change.up), unsigned(change.down), semi_length,
                                noise<float>(change.taps + 1).get()),
            [](rresamp_rrrf q) { rresamp_rrrf_destroy(q); });
        const int periods = change.periods();
        return [periods, resampler = std::move(resampler), source = noise<float>(periods * change.down),
                result = zeros<float>(periods * change.up)] {
            rresamp_rrrf_execute_block(resampler.get(), source.get(), unsigned(periods), result.get());
        };
    });
}

const Registration liquid(
    [] {
        real_filter("kelsFIR_32f");
        complex_filter("kelsFIR_32fc");
        one_sample("kelsFIROne_32f");
        rate_change("kelsFIR_32f");
    },
    "liquid-dsp " LIQUID_VERSION);

} // namespace
} // namespace bench
