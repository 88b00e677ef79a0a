// What calls refuse, argument by argument.
#pragma once

#include "kels/status.h"

#include <gtest/gtest.h>

#include <climits>
#include <tuple>
#include <type_traits>
#include <utility>

namespace kels_test {

inline constexpr int bad_lengths[] = {0, -1, INT_MIN};

/// Each pointer of a call null in turn: all are found, whatever else is wrong with the call. Those that are null from
/// the first may be.
template <class... A>
void expect_nulls_refused(KelStatus (*function)(A...), std::type_identity_t<A>... arguments) {
    const auto expect_refused = [&](auto position) {
        std::tuple<A...> call(arguments...);
        auto& argument = std::get<position>(call);
        if constexpr (std::is_pointer_v<std::remove_reference_t<decltype(argument)>>) {
            if (!argument) return;
            argument = nullptr;
            EXPECT_EQ(std::apply(function, call), kelStatusNullPtr) << "argument " << position;
        }
    };
    [&]<std::size_t... I>(std::index_sequence<I...>) {
        (expect_refused(std::integral_constant<std::size_t, I>{}), ...);
    }
    (std::index_sequence_for<A...>{});
}

} // namespace kels_test
