// Gnuplot draws: the script and the data go to it through a pipe, so that nothing but the picture touches the disk.
#include "plot.h"

#include "failure.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <sstream>

namespace demo {
namespace {

constexpr double shown_range = 120; // dB from the top of the picture to its foot

/// A gnuplot string in which no character but the quote has a meaning.
std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text) result += c == '\'' ? std::string("''") : std::string(1, c);
    return result + "'";
}

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
void write_data(std::ostream& script, const std::string& name, const Spectrum& spectrum) {
    script << "$" << name << " << END\n";
    for (std::size_t k = 1; k < spectrum.decibels.size(); ++k)
        script << double(k) * spectrum.spacing << ' ' << spectrum.decibels[k] << '\n';
    script << "END\n";
}

std::string script_for(const std::filesystem::path& png, const std::string& title, const Spectrum& before,
                       const std::vector<Curve>& after, const BandPass& band) {
    const double highest = double(before.decibels.size() - 1) * before.spacing;
    const double lowest = std::min(20.0, highest / 100);
    const double top = top_of(before, after);
    std::ostringstream script;
    write_data(script, "before", before);
    for (std::size_t i = 0; i < after.size(); ++i) write_data(script, "after" + std::to_string(i), after[i].spectrum);
    script
        << "set terminal pngcairo size 1200,675 font 'DejaVu Sans,13' background '#ffffff'\n"
        << "set output " << quoted(png.string()) << '\n'
        << "set title " << quoted(title) << " noenhanced font ',15' textcolor '#202020' offset 0,0.3\n"
        << "set logscale x\n"
        << "set xrange [" << lowest << ':' << highest << "]\n"
        << "set yrange [" << top - shown_range << ':' << top << "]\n"
        << "set xtics (" << frequency_marks(lowest, highest) << ") nomirror\n"
        << "set ytics 20 nomirror\n"
        << "set xlabel 'Frequency in Hz'\n"
        << "set ylabel 'Level in dB, a sine of full scale being 0'\n"
        << "set border 3 linecolor '#808080'\n"
        << "set tics textcolor '#404040'\n"
        << "set grid xtics ytics back linetype 1 linecolor '#dedede' linewidth 1\n"
        << "set key top right opaque box linecolor '#d0d0d0' width 1 height 0.5\n"
        << "set margins 9,3,4,3\n"
        << "set object 1 rectangle from " << std::max(band.low, lowest) << ", graph 0 to "
        << std::max(band.high, lowest)
        << ", graph 1 back fillcolor '#f5c96a' fillstyle transparent solid 0.28 noborder\n"
        << "plot NaN with boxes fillstyle transparent solid 0.28 noborder linecolor '#f5c96a' title 'pass band', \\\n"
        << "     $before with lines linewidth 1.5 linecolor '#9aa0a6' title 'before'";
    for (std::size_t i = 0; i < after.size(); ++i)
        script << ", \\\n     $after" << i << " with lines linewidth 2 linecolor '" << (i == 0 ? "#1a5fb4" : "#c64600")
               << "' title '" << after[i].name << "'";
    script << '\n';
    return script.str();
}

} // namespace

void plot(const std::filesystem::path& png, const std::string& title, const Spectrum& before,
          const std::vector<Curve>& after, const BandPass& band) {
    std::signal(SIGPIPE, SIG_IGN); // a gnuplot that ends early is told by its exit status
    FILE* gnuplot = popen("gnuplot >/dev/null 2>&1", "w");
    if (!gnuplot) throw Failure("Gnuplot, which draws the spectra, cannot be started.");
    std::fputs(script_for(png, title, before, after, band).c_str(), gnuplot);
    if (pclose(gnuplot) != 0 || !std::filesystem::exists(png))
        throw Failure("Gnuplot could not draw the spectra; is the package gnuplot-nox installed?");
}

} // namespace demo
