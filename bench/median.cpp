// Median filters, beside the C++ library's selection in every window.
#include "data.h"
#include "harness.h"

#include <algorithm>
#include <vector>

namespace bench {
namespace {

constexpr int samples = 4096;

template <class T, class Make>
void contend_median(const char* function, const char* who, Make make) {
    for (const int mask : {3, 5, 7, 9, 15, 31, 33, 101, 1001})
        contend(
            {"median", function, "mask " + std::to_string(mask), double(samples), 2.0 * sizeof(T) * samples, "GB/s"},
            who, [=] { return make(mask); });
}

template <class T>
void median(const char* function, KelStatus (*call)(const T*, T*, int, int)) {
    contend_median<T>(function, ours.c_str(), [=](int mask) {
        return [=, x = noise<T>(samples), y = zeros<T>(samples)] { call(x.get(), y.get(), samples, mask); };
    });
}

template <class T>
void selection(const char* function) {
    contend_median<T>(function, "nth_element", [](int mask) {
        return
            [mask, x = noise<T>(samples), y = zeros<T>(samples), window = std::vector<T>(std::size_t(mask))]() mutable {
                const int half = mask / 2;
                for (int i = 0; i < samples; ++i) {
                    for (int k = 0; k < mask; ++k) window[std::size_t(k)] = x[std::clamp(i + k - half, 0, samples - 1)];
                    std::nth_element(window.begin(), window.begin() + half, window.end());
                    y[i] = window[std::size_t(half)];
                }
            };
    });
}

const Registration all([] {
    median("kelsFilterMedian_8u", kelsFilterMedian_8u);
    median("kelsFilterMedian_16s", kelsFilterMedian_16s);
    median("kelsFilterMedian_32f", kelsFilterMedian_32f);
    selection<Kel32f>("kelsFilterMedian_32f");
    median("kelsFilterMedian_64f", kelsFilterMedian_64f);
});

} // namespace
} // namespace bench
