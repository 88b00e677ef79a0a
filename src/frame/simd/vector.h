// Vectors of lanes: compiler vector extensions of a width that the level chooses, their loads, stores and parts.
#pragma once

#include <cstddef>
#include <cstring>
#include <type_traits>
#include <utility>

/// For the bodies of lambdas inside kernels: a call left standing would send a register file through memory.
#define KELS_INLINE __attribute__((always_inline))

/// Before a loop that shall stay one: unrolled, it would keep more values than there are registers.
#if defined(__clang__)
#define KELS_ROLLED _Pragma("clang loop unroll(disable)")
#else
#define KELS_ROLLED _Pragma("GCC unroll 1")
#endif

/// Before a loop over places far from each other, which the instructions that gather and scatter visit more slowly.
#if defined(__clang__)
#define KELS_ONE_BY_ONE _Pragma("clang loop vectorize(disable)")
#else
#define KELS_ONE_BY_ONE
#endif

namespace kels {

/// Bytes of the widest vector of this level.
#if defined(__AVX512F__)
inline constexpr int vector_bytes = 64;
#elif defined(__AVX2__)
inline constexpr int vector_bytes = 32;
#else
inline constexpr int vector_bytes = 16;
#endif

/// Vector registers of this level.
#if defined(__AVX512F__)
inline constexpr int vector_registers = 32;
#elif defined(__x86_64__)
inline constexpr int vector_registers = 16;
#else
inline constexpr int vector_registers = 8;
#endif

template <class T>
inline constexpr int max_lanes = vector_bytes / static_cast<int>(sizeof(T));

template <class T, int Lanes>
struct VectorOf {
    typedef T type __attribute__((vector_size(Lanes * sizeof(T))));
};
template <class T>
struct VectorOf<T, 1> {
    using type = T;
};

/// `Lanes` elements side by side; one lane is the plain scalar, so that a kernel's template serves both.
template <class T, int Lanes = max_lanes<T>>
using Vec = typename VectorOf<T, Lanes>::type;

template <class V>
struct ElementOf {
    using type = std::remove_cvref_t<decltype(std::declval<V&>()[0])>;
};
template <class V>
requires std::is_arithmetic_v<V>
struct ElementOf<V> {
    using type = V;
};

template <class V>
using Element = typename ElementOf<V>::type;

template <class V>
inline constexpr int lanes = static_cast<int>(sizeof(V) / sizeof(Element<V>));

template <class V>
[[gnu::always_inline]] inline V load(const void* p) {
    V v;
    std::memcpy(&v, p, sizeof v);
    return v;
}

template <class V>
[[gnu::always_inline]] inline void store(void* p, V v) {
    std::memcpy(p, &v, sizeof v);
}

/// The bits of a, as other lanes of the same size in all.
template <class To, class V>
[[gnu::always_inline]] inline To bits_as(V a) {
    static_assert(sizeof(To) == sizeof(V));
    return load<To>(&a);
}

/// Half 0 or 1 of the lanes.
template <int Half, class V>
[[gnu::always_inline]] inline auto half(V a) {
    using H = Vec<Element<V>, lanes<V> / 2>;
    return load<H>(reinterpret_cast<const char*>(&a) + Half * sizeof(H));
}

/// All lanes of a, then those of b.
template <class V>
[[gnu::always_inline]] inline auto both(V a, V b) {
    Vec<Element<V>, 2 * lanes<V>> v;
    std::memcpy(&v, &a, sizeof a);
    std::memcpy(reinterpret_cast<char*>(&v) + sizeof a, &b, sizeof b);
    return v;
}

/// Lanes Index * S to Index * S + S - 1.
template <int S, int Index, class V>
[[gnu::always_inline]] inline Vec<Element<V>, S> slice(V a) {
    return load<Vec<Element<V>, S>>(reinterpret_cast<const char*>(&a) + Index * S * sizeof(Element<V>));
}

/// Calls f(0), f(1), ... f(N - 1) with the index as a constant, so that arrays of vectors stay in registers.
template <int N, class F>
[[gnu::always_inline]] inline void unrolled(F&& f) {
    [&]<int... I>(std::integer_sequence<int, I...>) KELS_INLINE { (f(std::integral_constant<int, I>{}), ...); }
    (std::make_integer_sequence<int, N>{});
}

/// The value, of which the compiler knows nothing more.
template <class V>
[[gnu::always_inline]] inline V opaque(V v) {
    asm("" : "+v"(v));
    return v;
}

/// An address of which the compiler knows nothing more: what is read and written relative to it takes constant
/// distances, instead of a register for every row.
template <class T>
[[gnu::always_inline]] inline T* opaque_address(T* p) {
    asm("" : "+r"(p));
    return p;
}

/// Ends a step whose results are more than the registers hold: they lie in memory, and what follows is not mixed with
/// what came before.
template <class A>
[[gnu::always_inline]] inline void settle(A& stage) {
    asm("" : "+m"(stage));
}

/// An integer in a register of its own: its load is not joined with others to a wide one, which would wait for narrow
/// stores just before.
template <class T>
[[gnu::always_inline]] inline int loaded_alone(const T& x) {
    int value = x;
    asm("" : "+r"(value));
    return value;
}

} // namespace kels
