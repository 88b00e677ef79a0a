// Memory and vectors of complex numbers whose parts stand side by side: loads that spread one part over both lanes, and
// stores that transpose.
#pragma once

#include "frame/simd/shuffle.h"
#include "frame/simd/vector.h"

#include <type_traits>

#include <immintrin.h>

namespace kels {

/// Whether the level has loads that spread the real or imaginary parts without a shuffle.
template <class V>
inline constexpr bool spreads_in_loads =
#if defined(__AVX2__)
    sizeof(Element<V>) == 4 && sizeof(V) >= 16;
#else
    false;
#endif

/// The pairs at p with the real (Odd = 0) or imaginary part in both lanes. Written out, since a compiler that needs
/// both loads once and shuffles twice; the loads have ports of their own.
template <int Odd, class V>
[[gnu::always_inline]] inline V load_spread(const Element<V>* p) {
#if defined(__AVX2__)
    if constexpr (spreads_in_loads<V>) {
        V v;
        if constexpr (Odd == 0)
            asm("vmovsldup %1, %0" : "=v"(v) : "m"(*reinterpret_cast<const V*>(p)));
        else
            asm("vmovshdup %1, %0" : "=v"(v) : "m"(*reinterpret_cast<const V*>(p)));
        return v;
    } else
#endif
    {
        const V v = load<V>(p);
        return shuffle<[](int i) { return i / 2 * 2 + Odd; }>(v, v);
    }
}

/// Whether the level has instructions that store either half of a vector.
template <class V>
inline constexpr bool can_store_halves =
#if defined(__AVX2__)
    sizeof(V) >= 32;
#else
    false;
#endif

/// Half 0 or 1 of a vector to memory by no shuffle. Written out, since compilers join such halves to whole vectors.
template <int Half, class V>
[[gnu::always_inline]] inline void store_half(void* p, V v) {
#if defined(__AVX2__)
    using H = Vec<Element<V>, lanes<V> / 2>;
    if constexpr (Half == 0)
        asm("vmovups %1, %0" : "=m"(*static_cast<H*>(p)) : "v"(half<0>(v)));
    else if constexpr (sizeof(V) == 32)
        asm("vextractf128 $1, %1, %0" : "=m"(*static_cast<H*>(p)) : "x"(v));
    else
        asm("vextractf64x4 $1, %1, %0" : "=m"(*static_cast<H*>(p)) : "v"(v));
#else
    store(p, half<Half>(v));
#endif
}

} // namespace kels
