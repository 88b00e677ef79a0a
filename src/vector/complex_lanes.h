// Complex elements in vectors of split parts, with another look at single ones.
#pragma once

#include "frame/blocks.h"
#include "frame/complex_vector.h"
#include "frame/numeric.h"
#include "frame/simd.h"

#include <algorithm>

namespace kels {

/// Complex elements one by one, in vectors as far as they go: f maps split parts to split parts.
template <class T, class F>
void map_complex(const T* src, T* dst, Index n, const F& f) {
    using P = Part<T>;
    using V = Vec<P, std::max(max_lanes<Kel64f>, part<Vec<P>>)>;
    Index i = 0;
    for (; i + lanes<V> <= n; i += lanes<V>)
        store_interleaved<V>(reals(dst + i), f(load_interleaved<V>(reals(src + i))));
    for (; i < n; ++i) store_interleaved<P>(reals(dst + i), f(load_interleaved<P>(reals(src + i))));
}

template <class V>
[[gnu::always_inline]] inline auto to_doubles(Complex<V> z) {
    return Complex<Vec<Kel64f, lanes<V>>>{convert<Kel64f>(z.re), convert<Kel64f>(z.im)};
}
template <class R, class V>
[[gnu::always_inline]] inline auto to_parts(Complex<V> z) {
    return Complex<Vec<R, lanes<V>>>{convert<R>(z.re), convert<R>(z.im)};
}

} // namespace kels
