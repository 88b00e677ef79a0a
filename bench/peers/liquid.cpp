// liquid-dsp: its filter objects, a block at a time.
#include "fir.h"
#include "iir.h"
#include "lms.h"

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

/// Its step is normalised by the energy of the window.
void adaptive_filter(const char* function) {
    contend_lms(function, "liquid", [](int taps) {
        std::unique_ptr<std::remove_pointer_t<eqlms_rrrf>, int (*)(eqlms_rrrf)> filter(
            eqlms_rrrf_create(nullptr, unsigned(taps)), eqlms_rrrf_destroy);
        return [filter = std::move(filter), source = noise<float>(lms_block), reference = noise<float>(lms_block),
                result = zeros<float>(lms_block)] {
            for (int i = 0; i < lms_block; ++i) {
                eqlms_rrrf_push(filter.get(), source[i]);
                eqlms_rrrf_execute(filter.get(), &result[i]);
                eqlms_rrrf_step(filter.get(), reference[i], result[i]);
            }
        };
    });
}

using RealIir = std::unique_ptr<std::remove_pointer_t<iirfilt_rrrf>, void (*)(iirfilt_rrrf)>;
using ComplexIir = std::unique_ptr<std::remove_pointer_t<iirfilt_cccf>, void (*)(iirfilt_cccf)>;

RealIir owned(iirfilt_rrrf q) {
    return {q, [](iirfilt_rrrf filter) { iirfilt_rrrf_destroy(filter); }};
}
ComplexIir owned(iirfilt_cccf q) {
    return {q, [](iirfilt_cccf filter) { iirfilt_cccf_destroy(filter); }};
}

/// Numerators and denominators of sections, apart.
template <class Tap>
struct SectionsApart {
    std::vector<Tap> b, a;
    explicit SectionsApart(int sections) {
        const auto taps = section_taps<Tap>(sections);
        for (std::size_t i = 0; i < taps.size(); ++i) (i % 6 < 3 ? b : a).push_back(taps[i]);
    }
};

template <class Sample, class Filter, class Execute>
auto recursion(Filter filter, Execute execute) {
    return [execute, filter = std::move(filter), source = noise<Sample>(iir_samples),
            result = zeros<Sample>(iir_samples)] {
        execute(filter.get(), source.get(), unsigned(iir_samples), result.get());
    };
}

template <class Sample>
void recursions(const char* function, auto create, auto create_sections, auto execute) {
    contend_orders<Sample>(function, "liquid", [=](int order) {
        auto taps = polynomial_taps<Sample>(order);
        const unsigned n = unsigned(order + 1);
        return recursion<Sample>(owned(create(taps.data(), n, taps.data() + n, n)), execute);
    });
    contend_sections<Sample>(function, "liquid", [=](int sections) {
        SectionsApart<Sample> taps(sections);
        return recursion<Sample>(owned(create_sections(taps.b.data(), taps.a.data(), unsigned(sections))), execute);
    });
}

const Registration liquid(
    [] {
        real_filter("kelsFIR_32f");
        complex_filter("kelsFIR_32fc");
        one_sample("kelsFIROne_32f");
        rate_change("kelsFIR_32f");
        recursions<float>("kelsIIR_32f", iirfilt_rrrf_create, iirfilt_rrrf_create_sos, iirfilt_rrrf_execute_block);
        recursions<Complex>("kelsIIR_32fc", iirfilt_cccf_create, iirfilt_cccf_create_sos, iirfilt_cccf_execute_block);
        adaptive_filter("kelsFIRLMS_32f");
    },
    "liquid-dsp " LIQUID_VERSION);

} // namespace
} // namespace bench
