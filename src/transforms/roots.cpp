// The roots of 4096 on an eighth of the circle.

#include "transforms/roots.h"

#include "transforms/circle_point.h"

namespace kels {
namespace {

constexpr auto make_eighth_of_circle() {
    std::array<TableRoot, table_roots / 8 + 1> roots{};
    for (int j = 0; j <= table_roots / 8; ++j) {
        const CirclePoint point = circle_point(j, table_roots);
        const auto cosine = static_cast<double>(point.cosine), sine = static_cast<double>(point.sine);
        roots[static_cast<std::size_t>(j)] = {cosine, sine, static_cast<double>(point.cosine - cosine),
                                              static_cast<double>(point.sine - sine)};
    }
    TableRoot& last = roots.back(); // on the diagonal
    last.sine = last.cosine;
    last.sine_rest = last.cosine_rest;
    return roots;
}

} // namespace

constinit const std::array<TableRoot, table_roots / 8 + 1> eighth_of_circle = make_eighth_of_circle();

} // namespace kels
