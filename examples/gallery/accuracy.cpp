// Rounding of fast Fourier transforms: their error against one in extended precision, ours and that of the peers that
// are installed.
#include "accuracy.h"
#include "gallery.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

using namespace examples;

namespace {

/// The transforms of both halves, the odd one turned: as the textbook has it.
Complex<long double> reference(const Complex<long double>& x) {
    const std::size_t half = x.size() / 2;
    if (half == 0) return x;
    Complex<long double> even(half), odd(half), result(x.size());
    for (std::size_t i = 0; i < half; ++i) even[i] = x[2 * i], odd[i] = x[2 * i + 1];
    even = reference(even), odd = reference(odd);
    const long double angle = -std::numbers::pi_v<long double> / static_cast<long double>(half);
    for (std::size_t k = 0; k < half; ++k) {
        const std::complex<long double> turned = odd[k] * std::polar(1.0L, angle * static_cast<long double>(k));
        result[k] = even[k] + turned, result[k + half] = even[k] - turned;
    }
    return result;
}

/// The root of the mean square of a transform's errors, relative to the results, in units of the type's last place.
template <class T>
double error(void (*transform)(Complex<T>&, int), int order, const Complex<float>& values, const auto& exact) {
    if (!transform) return NAN;
    Complex<T> points(values.begin(), values.end());
    transform(points, order);
    long double errors = 0, squares = 0;
    for (std::size_t k = 0; k < exact.size(); ++k) {
        errors += std::norm(std::complex<long double>(points[k]) - exact[k]);
        squares += std::norm(exact[k]);
    }
    return double(std::sqrt(errors / squares)) / std::numeric_limits<T>::epsilon();
}

} // namespace

std::string examples::show(const Run& run) {
    const std::vector<Transform> all = transforms();
    std::vector<std::vector<double>> single(all.size()), twice(all.size());
    std::vector<double> orders;
    double worst = 0;
    for (int order = 2; order <= (run.small ? 12 : 20); ++order) {
        orders.push_back(order);
        Complex<float> values(std::size_t{1} << order);
        std::ranges::copy(noise(2 * values.size(), 1, 1), &reinterpret_cast<float&>(values[0]));
        const Complex<long double> exact = reference({values.begin(), values.end()});
        for (std::size_t i = 0; i < all.size(); ++i) {
            single[i].push_back(error(all[i].single, order, values, exact));
            twice[i].push_back(error(all[i].of_doubles, order, values, exact));
        }
        worst = std::max(worst, std::max(single[0].back(), twice[0].back()) / (0.6 * std::sqrt(order)));
    }
    claim(worst < 1, text("The error reaches %.2f of its bound.", worst));

    Picture picture(1000, 450);
    picture << "set multiplot layout 1,2 margins 0.09,0.98,0.15,0.88 spacing 0.07\nset key top left\nset yrange [0:4]\n"
            << "set xrange [2:20]\nset xlabel 'log2 of the number of points'\nset ylabel 'Relative RMS error in eps'\n";
    for (const bool doubles : {false, true}) {
        if (doubles) picture << "unset ylabel\n";
        std::string plots = "0.6*sqrt(x) with lines linetype 4 dashtype 2 title 'bound of the tests'";
        for (std::size_t i = all.size(); i-- > 0;) {
            if (doubles && !all[i].of_doubles) continue;
            picture.data(text("errors%zu", i), orders, (doubles ? twice : single)[i]);
            plots += text(", $errors%zu with linespoints linetype %zu title '%s'", i, i + 1, all[i].name);
        }
        picture.title(doubles ? "Double precision" : "Single precision") << "plot " << plots << '\n';
    }
    picture.draw(run.png);
    return text("up to 2^%.0f points the error stays below %.2f of 0.6 eps sqrt(log2 N).", orders.back(), worst);
}
