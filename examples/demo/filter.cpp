#include "filter.h"

#include "failure.h"

#include <algorithm>
#include <memory>

namespace demo {
namespace {

// Shorter and longer than any usual plan, so that both engines of the filter take part; none a multiple of another.
constexpr int block_lengths[] = {1, 480, 17, 4096, 1023, 3, 9973, 64, 2050, 333};

struct Free {
    void operator()(KelFirContext* state) const { kelsFIRFree_32f(state); }
};
using Filter = std::unique_ptr<KelFirContext, Free>;

Filter make_filter(const std::vector<float>& taps) {
    KelFirContext* state = nullptr;
    check(kelsFIRInitAlloc_32f(&state, taps.data(), int(taps.size()), nullptr), "kelsFIRInitAlloc_32f");
    return Filter(state);
}

} // namespace

std::vector<float> filter_stream(const std::vector<float>& taps, const std::vector<float>& samples) {
    const Filter filter = make_filter(taps);
    std::vector<float> filtered(samples.size());
    std::size_t done = 0;
    for (std::size_t block = 0; done < samples.size(); ++block) {
        const int length =
            int(std::min<std::size_t>(block_lengths[block % std::size(block_lengths)], samples.size() - done));
        check(kelsFIR_32f(&samples[done], &filtered[done], length, filter.get()), "kelsFIR_32f");
        done += length;
    }
    return filtered;
}

std::vector<float> filter_at_once(const std::vector<float>& taps, const std::vector<float>& samples) {
    const Filter filter = make_filter(taps);
    std::vector<float> filtered(samples.size());
    check(kelsFIR_32f(samples.data(), filtered.data(), int(samples.size()), filter.get()), "kelsFIR_32f");
    return filtered;
}

std::vector<float> filter_one_by_one(const std::vector<float>& taps, const std::vector<float>& samples) {
    const Filter filter = make_filter(taps);
    std::vector<float> filtered(samples.size());
    for (std::size_t i = 0; i < samples.size(); ++i)
        check(kelsFIROne_32f(samples[i], &filtered[i], filter.get()), "kelsFIROne_32f");
    return filtered;
}

} // namespace demo
