// Lists of radices, as types that a kernel is instantiated for.
#pragma once

#include <utility>

namespace kels {

template <int... R>
using Radices = std::integer_sequence<int, R...>;

} // namespace kels
