#include "filter.h"

#include "failure.h"

#include <algorithm>
#include <memory>

namespace examples::demo {
namespace {

struct Free {
    void operator()(KelFirContext* state) const { kelsFIRFree_32f(state); }
};
using Filter = std::unique_ptr<KelFirContext, Free>;

Filter make_filter(const Filtering& f) {
    KelFirContext* state = nullptr;
    const int taps = int(f.taps.size());
    if (f.changes_rate())
        check(kelsFIRMRInitAlloc_32f(&state, f.taps.data(), taps, f.up, 0, f.down, 0, nullptr));
    else
        check(kelsFIRInitAlloc_32f(&state, f.taps.data(), taps, nullptr));
    return Filter(state);
}

/// Rate changes go by whole periods of `down` samples: silence fills up the last.
std::vector<float> whole_periods(const Filtering& f, std::vector<float> samples) {
    samples.resize((samples.size() + f.down - 1) / f.down * f.down);
    return samples;
}

/// What is left of the outputs when those of the silence at the end are taken away.
std::vector<float> for_samples(const Filtering& f, std::vector<float> filtered, std::size_t samples) {
    filtered.resize((samples * f.up + f.down - 1) / f.down);
    return filtered;
}

} // namespace

std::vector<float> filter_stream(const Filtering& f, const std::vector<float>& samples) {
    const Filter filter = make_filter(f);
    const std::vector<float> source = whole_periods(f, samples);
    const std::size_t periods = source.size() / f.down;
    std::vector<float> filtered(periods * f.up);
    for_each_block(periods, [&](std::size_t first, int count) {
        check(kelsFIR_32f(&source[first * f.down], &filtered[first * f.up], count, filter.get()));
    });
    return for_samples(f, std::move(filtered), samples.size());
}

std::vector<float> filter_at_once(const Filtering& f, const std::vector<float>& samples) {
    const Filter filter = make_filter(f);
    const std::vector<float> source = whole_periods(f, samples);
    const std::size_t periods = source.size() / f.down;
    std::vector<float> filtered(periods * f.up);
    check(kelsFIR_32f(source.data(), filtered.data(), int(periods), filter.get()));
    return for_samples(f, std::move(filtered), samples.size());
}

std::vector<float> filter_one_by_one(const Filtering& f, const std::vector<float>& samples) {
    const Filter filter = make_filter(f);
    std::vector<float> filtered(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i) check(kelsFIROne_32f(samples[i], &filtered[i], filter.get()));
    return filtered;
}

std::vector<float> filter_without_context(const Filtering& f, const std::vector<float>& samples) {
    const std::vector<float> source = whole_periods(f, samples);
    const std::size_t periods = source.size() / f.down;
    const int taps = int(f.taps.size());
    std::vector<float> filtered(periods * f.up), line((taps + f.up - 1) / f.up);
    check(kelsFIRMR_Direct_32f(source.data(), filtered.data(), int(periods), f.taps.data(), taps, f.up, 0, f.down, 0,
                               line.data()));
    return for_samples(f, std::move(filtered), samples.size());
}

} // namespace examples::demo
