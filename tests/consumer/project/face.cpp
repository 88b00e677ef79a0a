// A C++20 program that calls functions by their operations' names.
#include <kels.hpp>

#include <complex>
#include <iostream>
#include <vector>

int main() {
    const kels::fft<double> transform(32);
    std::vector<double> impulse(32);
    std::vector<std::complex<double>> spectrum(17);
    impulse[0] = 1;
    transform.forward(impulse, spectrum);
    kels::sub(spectrum, std::complex<double>(1));
    for (const auto& bin : spectrum)
        if (bin != 0.) return 1;
    try {
        kels::add(impulse, spectrum.size() == 17 ? std::vector<double>(3) : impulse);
    } catch (const kels::error& e) {
        std::cout << "C++20: the spectrum of an impulse is 1, and an array that does not fit is refused: " << e.what()
                  << '\n';
        return 0;
    }
    return 1;
}
