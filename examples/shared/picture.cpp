// Script and data go to gnuplot through a pipe, so that nothing but the picture touches the disk.
#include "picture.h"

#include "failure.h"

#include <csignal>
#include <cstdio>

namespace examples {
namespace {

/// A gnuplot string in which no character but the quote has a meaning.
std::string quoted(const std::string& text) {
    std::string result = "'";
    for (const char c : text) result += c == '\'' ? std::string("''") : std::string(1, c);
    return result + "'";
}

} // namespace

Picture::Picture(int width, int height) : width_(width), height_(height) {
    const char* const colours[] = {"#1a5fb4", "#c64600", "#2a7f4f",
                                   "#9aa0a6"}; // linetypes 1 to 4; the last one recedes
    for (int i = 0; i < 4; ++i)
        script_ << "set linetype " << i + 1 << " linewidth 2 pointtype 7 linecolor '" << colours[i] << "'\n";
    script_ << "set border 3 linecolor '#808080'\n"
            << "set tics nomirror textcolor '#404040'\n"
            << "set grid xtics ytics back linetype 1 linecolor '#dedede' linewidth 1\n"
            << "set key top right opaque box linecolor '#d0d0d0' width 1 height 0.5\n";
}

Picture& Picture::matrix(const std::string& name, const std::vector<float>& values, std::size_t width) {
    script_ << '$' << name << " << END\n";
    for (std::size_t i = 0; i < values.size(); ++i) script_ << values[i] << ((i + 1) % width == 0 ? '\n' : ' ');
    script_ << "END\n";
    return *this;
}

Picture& Picture::title(const std::string& text) {
    script_ << "set title " << quoted(text) << " noenhanced font ',15' textcolor '#202020' offset 0,0.3\n";
    return *this;
}

void Picture::draw(const std::filesystem::path& png) const {
    std::signal(SIGPIPE, SIG_IGN); // a gnuplot that ends early is told by its exit status
    FILE* gnuplot = popen("gnuplot >/dev/null 2>&1", "w");
    if (!gnuplot) throw Failure("Gnuplot, which draws the picture, cannot be started.");
    std::ostringstream output;
    output << "set terminal pngcairo size " << width_ << ',' << height_
           << " font 'DejaVu Sans,13' background '#ffffff'\nset output " << quoted(png.string()) << '\n';
    std::fputs((output.str() + script_.str()).c_str(), gnuplot);
    if (pclose(gnuplot) != 0 || !std::filesystem::exists(png))
        throw Failure("Gnuplot could not draw " + png.string() + "; is the package gnuplot-nox installed?");
}

} // namespace examples
