// What a call tests its arguments for, in which order: a line a check.
//
//     expect_checks(F::block, {x, y, 4, context}, {null(3), foreign(3, others), null(0), null(1), size(2)});
#pragma once

#include "support/control_state.h"
#include "support/refusals.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <tuple>
#include <vector>

namespace filter_test {

/// An argument, by its position, what may be wrong with it, and the status of that.
struct Check {
    int argument;
    KelStatus status;
    std::vector<std::intptr_t> wrong;
};

inline Check null(int argument) { return {argument, kelStatusNullPtr, {0}}; }
inline Check size(int argument, KelStatus status = kelStatusBadSize) { return {argument, status, {0, -1, INT_MIN}}; }
/// An index that must be below a length.
inline Check index(int argument, int length, KelStatus status) {
    return {argument, status, {-1, length, INT_MIN, INT_MAX}};
}
/// Contexts of other families.
template <class Owners>
Check foreign(int argument, const Owners& others) {
    Check check{argument, kelStatusContextMismatch, {}};
    for (const auto& other : others) check.wrong.push_back(reinterpret_cast<std::intptr_t>(other.get()));
    return check;
}

/// Arrays of refused calls, which must stay as they are.
class Untouched {
public:
    Untouched() { std::memset(memory, 0x5A, sizeof memory); }

    template <class T>
    T* array(std::size_t count) {
        auto* const first = reinterpret_cast<T*>(memory + used);
        used += (count * sizeof(T) + 15) / 16 * 16;
        EXPECT_LE(used, sizeof memory);
        return first;
    }
    template <class T>
    T* array(std::initializer_list<T> values) {
        T* const first = array<T>(values.size());
        std::copy(values.begin(), values.end(), first);
        return first;
    }

    /// Whatever is wrong alone or together with all that is tested behind it has its own status, and nothing is stored.
    /// Arguments that are not given are 0.
    template <class... A, class... Given>
    void expect_refusals(KelStatus (*function)(A...), const std::tuple<Given...>& given,
                         const std::vector<Check>& checks) {
        std::byte before[sizeof memory];
        std::memcpy(before, memory, sizeof memory);
        const auto good = completed<A...>(given);
        for (auto check = checks.begin(); check != checks.end(); ++check)
            for (const std::intptr_t wrong : check->wrong) {
                auto call = good;
                set(call, check->argument, wrong);
                EXPECT_EQ(std::apply(function, call), check->status) << "argument " << check->argument << ' ' << wrong;
                for (auto later = check + 1; later != checks.end(); ++later)
                    if (later->argument != check->argument) set(call, later->argument, later->wrong[0]);
                EXPECT_EQ(std::apply(function, call), check->status) << "first, argument " << check->argument;
            }
        EXPECT_EQ(std::memcmp(before, memory, sizeof memory), 0) << "nothing stored";
    }

    /// And a call with none of it succeeds, and leaves the caller's modes as they are.
    template <class... A, class... Given>
    void expect_checks(KelStatus (*function)(A...), const std::tuple<Given...>& given,
                       const std::vector<Check>& checks) {
        expect_refusals(function, given, checks);
        kels_test::in_odd_modes(
            [&] { EXPECT_EQ(std::apply(function, completed<A...>(given)), kelStatusOk) << "nothing is wrong"; });
    }

private:
    alignas(16) std::byte memory[1 << 10];
    std::size_t used = 0;

    template <class... A, class... Given>
    static std::tuple<A...> completed(const std::tuple<Given...>& given) {
        std::tuple<A...> all{};
        [&]<std::size_t... I>(std::index_sequence<I...>) { ((std::get<I>(all) = std::get<I>(given)), ...); }
        (std::index_sequence_for<Given...>{});
        return all;
    }

    template <class... A>
    static void set(std::tuple<A...>& call, int position, std::intptr_t value) {
        int i = 0;
        const auto put = [&]<class T>(T& argument) {
            if (i++ != position) return;
            if constexpr (std::is_pointer_v<T>)
                argument = reinterpret_cast<T>(value);
            else if constexpr (std::is_integral_v<T>)
                argument = static_cast<T>(value);
        };
        std::apply([&](auto&... arguments) { (put(arguments), ...); }, call);
    }
};

} // namespace filter_test
