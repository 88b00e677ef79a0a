#include "plot.h"

#include "picture.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace examples::demo {
namespace {

constexpr double shown_range = 120; // dB from the top of the picture to its foot

/// Marks at 1, 2 and 5 times the powers of ten.
std::string frequency_marks(double low, double high) {
    std::ostringstream marks;
    for (long long decade = 1; double(decade) <= high; decade *= 10)
        for (const long long frequency : {decade, 2 * decade, 5 * decade})
            if (double(frequency) >= low && double(frequency) <= high) {
                marks << (marks.tellp() > 0 ? ", " : "") << '"';
                marks << (frequency >= 1000 ? frequency / 1000 : frequency) << (frequency >= 1000 ? "k" : "");
                marks << "\" " << frequency;
            }
    return marks.str();
}

/// The ten decibels above the highest value of all spectra.
double top_of(const Spectrum& before, const std::vector<Curve>& after) {
    double highest = *std::ranges::max_element(before.decibels);
    for (const Curve& curve : after) highest = std::max(highest, *std::ranges::max_element(curve.spectrum.decibels));
    return highest < -shown_range ? 0 : 10 * std::ceil(highest / 10);
}

/// The spectrum without the bin at 0 Hz, which has no place on a logarithmic axis.
void add(Picture& picture, const std::string& name, const Spectrum& spectrum) {
    std::vector<double> frequencies;
    for (std::size_t k = 1; k < spectrum.decibels.size(); ++k) frequencies.push_back(double(k) * spectrum.spacing);
    picture.data(name, frequencies, std::vector<double>(spectrum.decibels.begin() + 1, spectrum.decibels.end()));
}

} // namespace

void plot(const std::filesystem::path& png, const std::string& title, const Spectrum& before,
          const std::vector<Curve>& after, const BandPass& band) {
    const double highest = double(before.decibels.size() - 1) * before.spacing;
    const double lowest = std::min(20.0, highest / 100);
    const double top = top_of(before, after);
    Picture picture(1200, 675);
    add(picture, "before", before);
    for (std::size_t i = 0; i < after.size(); ++i) add(picture, "after" + std::to_string(i), after[i].spectrum);
    picture.title(title)
        << "set logscale x\n"
        << "set xrange [" << lowest << ':' << highest << "]\n"
        << "set yrange [" << top - shown_range << ':' << top << "]\n"
        << "set xtics (" << frequency_marks(lowest, highest) << ")\n"
        << "set ytics 20\n"
        << "set xlabel 'Frequency in Hz'\n"
        << "set ylabel 'Level in dB, a sine of full scale being 0'\n"
        << "set margins 9,3,4,3\n"
        << "set object 1 rectangle from " << std::max(band.low, lowest) << ", graph 0 to "
        << std::max(band.high, lowest)
        << ", graph 1 back fillcolor '#f5c96a' fillstyle transparent solid 0.28 noborder\n"
        << "plot NaN with boxes fillstyle transparent solid 0.28 noborder linecolor '#f5c96a' title 'pass band', \\\n"
        << "     $before with lines linetype 4 linewidth 1.5 title 'before'";
    for (std::size_t i = 0; i < after.size(); ++i)
        picture << ", \\\n     $after" << i << " with lines linetype " << i + 1 << " title '" << after[i].name << "'";
    picture << "\n";
    picture.draw(png);
}

} // namespace examples::demo
