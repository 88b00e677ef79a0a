// Lists of radices, as types that a kernel is instantiated for.
#pragma once

#include <utility>

namespace kels {

template <int... R>
using Radices = std::integer_sequence<int, R...>;

/// A codelet of one or two layers.
template <int First, int Second = 1>
using Codelet = Radices<First, Second>;

} // namespace kels
