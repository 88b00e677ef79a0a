// Noise, beside the generators of the C++ library.
#include "vectors.h"

#include <algorithm>
#include <random>

namespace bench {
namespace {

template <class Call>
void alone(const char* function, Call call) {
    contend_vectors("random", function, ours, call);
}

/// A distribution of the library, over the engine that is its fastest of some quality.
template <class T, class Distribution>
void library(const char* function, Distribution distribution) {
    contend_vectors("random", function, "library", [=](T* d, int n) {
        static std::mt19937 engine(1);
        auto draw = distribution;
        std::generate_n(d, n, [&] { return T(draw(engine)); });
    });
}

const Registration noise_functions([] {
    alone("kelsRandUniform_Direct_32f", [](Kel32f* d, int n) {
        Kel32u seed = 1;
        kelsRandUniform_Direct_32f(d, n, -1, 1, &seed);
    });
    alone("kelsRandUniform_Direct_64f", [](Kel64f* d, int n) {
        Kel32u seed = 1;
        kelsRandUniform_Direct_64f(d, n, -1, 1, &seed);
    });
    alone("kelsRandUniform_Direct_16s", [](Kel16s* d, int n) {
        Kel32u seed = 1;
        kelsRandUniform_Direct_16s(d, n, -1000, 1000, &seed);
    });
    alone("kelsRandGauss_Direct_32f", [](Kel32f* d, int n) {
        Kel32u seed = 1;
        kelsRandGauss_Direct_32f(d, n, 0, 1, &seed);
    });
    alone("kelsRandGauss_Direct_64f", [](Kel64f* d, int n) {
        Kel32u seed = 1;
        kelsRandGauss_Direct_64f(d, n, 0, 1, &seed);
    });
    alone("kelsRandGauss_Direct_16s", [](Kel16s* d, int n) {
        Kel32u seed = 1;
        kelsRandGauss_Direct_16s(d, n, 0, 1000, &seed);
    });
    library<Kel32f>("kelsRandUniform_Direct_32f", std::uniform_real_distribution<Kel32f>(-1, 1));
    library<Kel64f>("kelsRandUniform_Direct_64f", std::uniform_real_distribution<Kel64f>(-1, 1));
    library<Kel16s>("kelsRandUniform_Direct_16s", std::uniform_int_distribution<int>(-1000, 1000));
    library<Kel32f>("kelsRandGauss_Direct_32f", std::normal_distribution<Kel32f>(0, 1));
    library<Kel64f>("kelsRandGauss_Direct_64f", std::normal_distribution<Kel64f>(0, 1));
});

} // namespace
} // namespace bench
