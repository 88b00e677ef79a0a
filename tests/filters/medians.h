// Medians by their definition.
#pragma once

#include "kels/median.h"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace filter_test {

/// By the definition, the window kept in order.
template <class T>
std::vector<T> medians(const std::vector<T>& x, std::int64_t mask) {
    std::vector<T> y = x;
    const std::int64_t n = static_cast<std::int64_t>(x.size()), half = (mask - 1) / 2;
    const auto clamped = [&](std::int64_t i) {
        return x[static_cast<std::size_t>(std::clamp<std::int64_t>(i, 0, n - 1))];
    };
    std::vector<T> window;
    for (std::int64_t i = 0; i <= 2 * half; ++i) window.push_back(clamped(i - half));
    std::sort(window.begin(), window.end());
    for (std::int64_t i = 1; i < n - 1; ++i) {
        window.erase(std::lower_bound(window.begin(), window.end(), clamped(i - 1 - half)));
        window.insert(std::upper_bound(window.begin(), window.end(), clamped(i + half)), clamped(i + half));
        y[static_cast<std::size_t>(i)] = window[static_cast<std::size_t>(half)];
    }
    return y;
}

} // namespace filter_test
