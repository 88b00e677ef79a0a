// Rate changes without filtering, beside plain loops, and pre-emphasis.
#include "vectors.h"

#include <algorithm>

namespace bench {
namespace {

template <class T>
void change(const std::string& name, KelStatus (*down)(const T*, int, T*, int*, int, int*),
            KelStatus (*up)(const T*, int, T*, int*, int, const int*)) {
    for (const int factor : {2, 3, 8}) {
        const std::string by = " by " + std::to_string(factor);
        for (const int len : vector_lengths) {
            const Work fewer{"rate",
                             "kelsSampleDown_" + name + by,
                             std::to_string(len),
                             double(len),
                             double(sizeof(T)) * (len + len / factor),
                             "GB/s"};
            contend(fewer, ours, [=] {
                return [=, x = noise<T>(len), y = zeros<T>(len)] {
                    int count, phase = 0;
                    down(x.get(), len, y.get(), &count, factor, &phase);
                };
            });
            contend(fewer, "loop", [=] {
                return [=, x = noise<T>(len), y = zeros<T>(len)] {
                    for (int i = 0, k = 0; i < len; i += factor) y[k++] = x[i];
                };
            });
            const int samples = std::max(len / factor, 1);
            const Work more{"rate",      "kelsSampleUp_" + name + by,         std::to_string(len),
                            double(len), double(sizeof(T)) * (len + samples), "GB/s"};
            contend(more, ours, [=] {
                return [=, x = noise<T>(samples), y = zeros<T>(len)] {
                    int count, phase = 0;
                    up(x.get(), samples, y.get(), &count, factor, &phase);
                };
            });
            contend(more, "loop", [=] {
                return [=, x = noise<T>(samples), y = zeros<T>(len)] {
                    for (int k = 0; k < samples * factor; ++k) y[k] = T{};
                    for (int k = 0; k < samples; ++k) y[k * factor] = x[k];
                };
            });
        }
    }
}

const Registration all([] {
    change<Kel16s>("16s", kelsSampleDown_16s, kelsSampleUp_16s);
    change<Kel32f>("32f", kelsSampleDown_32f, kelsSampleUp_32f);
    change<Kel64fc>("64fc", kelsSampleDown_64fc, kelsSampleUp_64fc);
    contend_vectors("rate", "kelsPreemphasize_32f", ours, [](Kel32f* x, int n) { kelsPreemphasize_32f(x, n, 0.5F); });
    contend_vectors("rate", "kelsPreemphasize_16s", ours, [](Kel16s* x, int n) { kelsPreemphasize_16s(x, n, 0.5F); });
});

} // namespace
} // namespace bench
