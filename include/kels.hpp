// The library in C++20: every function by its operation's name, the types doing the rest, and classes for what has a
// life. docs/cpp.md tells the rules.
#ifndef KELS_HPP
#define KELS_HPP

#include "kels/cpp/call.hpp"
#include "kels/cpp/families.hpp"  // made from the C headers
#include "kels/cpp/functions.hpp" // made from the C headers

#include "kels/cpp/filters.hpp"
#include "kels/cpp/noise.hpp"
#include "kels/cpp/transforms.hpp"

#endif
