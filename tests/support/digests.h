// Digests of what functions store: one number a function over a whole run, for results that are the same everywhere.
#pragma once

#include "support/rows.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace kels_test {

using Digests = std::map<std::string, std::uint64_t>;

/// Where results are counted, or null.
inline Digests* digests = nullptr;

/// Counts elements that the function stored. Which NaN it is does not count.
void digest(const char* function, Type type, const void* data, std::size_t count);

/// Counts the results of a function, unless its name speaks of doubles: their sums differ between the levels.
template <class T, class... A>
void digest(KelStatus (*function)(A...), const std::vector<T>& results) {
    if (digests)
        digest(exported_name(reinterpret_cast<void (*)()>(function)), type_of<T>(), results.data(), results.size());
}

} // namespace kels_test
