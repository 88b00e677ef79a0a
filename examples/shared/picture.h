// Pictures by gnuplot.
#pragma once

#include <cstddef>
#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace examples {

/// A gnuplot script that begins with the look which all pictures of the examples share.
class Picture {
public:
    Picture(int width, int height);

    /// A data block `$name`, a line for every index of the columns, which are equally long.
    template <class First, class... Columns>
    Picture& data(const std::string& name, const First& first, const Columns&... columns) {
        script_ << '$' << name << " << END\n";
        for (std::size_t i = 0; i < first.size(); ++i) {
            script_ << first[i];
            ((script_ << ' ' << columns[i]), ...);
            script_ << '\n';
        }
        script_ << "END\n";
        return *this;
    }

    /// A data block `$name` of a matrix, whose rows have `width` values.
    Picture& matrix(const std::string& name, const std::vector<float>& values, std::size_t width);

    /// A title, in which no character has a meaning.
    Picture& title(const std::string& text);

    /// Gnuplot's commands.
    template <class T>
    Picture& operator<<(const T& text) {
        script_ << text;
        return *this;
    }

    /// Draws a PNG, or fails with a sentence.
    void draw(const std::filesystem::path& png) const;

private:
    int width_, height_;
    std::ostringstream script_;
};

} // namespace examples
