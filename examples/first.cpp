#include <cstdio>
#include <kels.hpp>
#include <vector>

int main() {
    kels::fir<float> filter(std::vector(4, 0.25f)); // the mean of four samples
    std::vector<float> samples{0, 0, 1, 1, 1, 1, 1, 1};
    filter(samples);
    for (float sample : samples) std::printf("%g ", sample);
    std::puts(kels::max(samples) == 1 ? "ends at 1" : "?");
}
