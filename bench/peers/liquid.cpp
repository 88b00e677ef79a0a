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

const Registration liquid(
    [] {
        real_filter("kelsFIR_32f");
        complex_filter("kelsFIR_32fc");
    },
    "liquid-dsp " LIQUID_VERSION);

} // namespace
} // namespace bench
