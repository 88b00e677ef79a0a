// Vector operations: registers any function whose arguments are arrays, values, a length and parameters after it.
#pragma once

#include "data.h"
#include "harness.h"

#include <functional>
#include <tuple>
#include <utility>

namespace bench {

inline constexpr int vector_lengths[] = {64, 1024, 16384, 4 << 20};

/// An argument of a call that is measured: an array of noise, owned, or a value.
template <class T>
struct Argument {
    T value;
    Argument(int, T given) : value(given) {}
    T get() const { return value; }
};
template <class T>
struct Argument<T*> {
    using Element = std::remove_const_t<T>;
    Array<Element> array;
    template <class Given>
    Argument(int length, Given) : array(noise<Element>(length)) {}
    T* get() const { return array.get(); }
};

/// The signature of a function or lambda, taken apart.
template <class Signature>
struct Signature_of;
template <class R, class... A>
struct Signature_of<std::function<R(A...)>> {
    using Arguments = std::tuple<Argument<A>...>;
    static constexpr std::size_t count = sizeof...(A);

    static constexpr std::size_t length_index() {
        constexpr bool pointer[] = {std::is_pointer_v<A>...};
        std::size_t index = count;
        while (index > 0 && !pointer[index - 1]) --index;
        return index;
    }

    /// Every array counts once, whether it is read, written or both.
    static constexpr double bytes_per_element() { return (0.0 + ... + bytes_of(static_cast<A*>(nullptr))); }

    static Arguments make(int length) { return make(length, std::index_sequence_for<A...>()); }

private:
    template <class T>
    static constexpr double bytes_of(T**) {
        return sizeof(T);
    }
    template <class T>
    static constexpr double bytes_of(T*) {
        return 0;
    }

    /// The length behind the last array; 0, which stands for no scale factor, for what follows it; 1 before.
    template <class T>
    static T value_at(std::size_t index, int length) {
        if constexpr (std::is_arithmetic_v<T>)
            return index == length_index() ? T(length) : index > length_index() ? T(0) : T(1);
        else
            return T{};
    }
    template <std::size_t... I>
    static Arguments make(int length, std::index_sequence<I...>) {
        return Arguments{Argument<A>(length, value_at<A>(I, length))...};
    }
};

/// Registers `call` for every length. The contenders of one function take the same arrays, and share a table under
/// the name of this library's function.
template <class Call>
void contend_vectors(const char* family, const char* function, const std::string& who, Call call) {
    using Signature = Signature_of<decltype(std::function(call))>;
    for (const int length : vector_lengths) {
        const double bytes = Signature::bytes_per_element() * length;
        contend({family, function, std::to_string(length), double(length), bytes, "GB/s"}, who, [=] {
            return [call, arguments = Signature::make(length)] {
                std::apply([&](const auto&... argument) { call(argument.get()...); }, arguments);
            };
        });
    }
}

} // namespace bench
