// Data movement. Everything is moved as unsigned words: a register of the x87 unit would quiet a signalling NaN, and a
// conjugate is one changed bit. Every operation runs in blocks of one vector, and no length has a scalar remainder.

#include "kels/movement.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/numeric.h"
#include "frame/simd.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

namespace kels {
namespace {

/// Covers words 0 to n - 1 with pattern(width), which holds samples of `Group` words. All stores but the first and the
/// last are aligned where the samples are.
template <class W, int Group, class Pattern>
[[gnu::always_inline]] inline void fill(W* dst, Index n, const Pattern& pattern) {
    in_widest<W, Group>(n, [&](auto width) {
        const auto v = pattern(width);
        store(dst, v);
        if constexpr (width == max_lanes<W>) {
            const Index beyond = reinterpret_cast<std::uintptr_t>(dst) % vector_bytes / sizeof(W);
            for (Index i = (width - beyond) / Group * Group; i < n - width; i += width) store(dst + i, v);
        }
        store(dst + n - width, v);
    });
}

// Shuffles

/// Words at even positions of a and b side by side.
template <class V>
[[gnu::always_inline]] inline V even(V a, V b) {
    if constexpr (lanes<V> == 1)
        return a;
    else
        return shuffle<[](int i) { return 2 * i; }>(a, b);
}

/// Words at odd positions of a and b side by side.
template <class V>
[[gnu::always_inline]] inline V odd(V a, V b) {
    if constexpr (lanes<V> == 1)
        return b;
    else
        return shuffle<[](int i) { return 2 * i + 1; }>(a, b);
}

/// Samples of `Group` words in reverse order.
template <int Group, class V>
[[gnu::always_inline]] inline V reverse_samples(V v) {
    if constexpr (lanes<V> == Group)
        return v;
    else
        return shuffle<[](int i) { return lanes<V> - Group - i / Group * Group + i % Group; }>(v, v);
}

// Operations

template <class T>
KelStatus copy(const T* pSrc, T* pDst, int len) {
    // Not memcpy, which may not meet itself.
    return vector_call({pSrc, pDst}, len, [=] { std::memmove(pDst, pSrc, sizeof(T) * static_cast<std::size_t>(len)); });
}

template <class T>
KelStatus zero(T* pDst, int len) {
    return vector_call({pDst}, len, [=] { std::memset(pDst, 0, sizeof(T) * static_cast<std::size_t>(len)); });
}

KelStatus set(Kel8u val, Kel8u* pDst, int len) {
    return vector_call({pDst}, len, [=] { std::memset(pDst, val, static_cast<std::size_t>(len)); });
}

template <class T>
KelStatus set(T val, T* pDst, int len) {
    using W = typename WordOf<sizeof(T)>::type;
    constexpr int group = sizeof(T) / sizeof(W);
    const auto bits = std::bit_cast<std::array<W, group>>(val);
    return vector_call({pDst}, len, [=] {
        fill<W, group>(reinterpret_cast<W*>(pDst), Index{len} * group, [&](auto width) {
            using V = Vec<W, width>;
            if constexpr (group == 1)
                return splat<V>(bits[0]);
            else
                return alternate<V>(bits[0], bits[1]);
        });
    });
}

/// Stores change(samples of the source in reverse order).
template <class T, class Change>
void reverse_to(const T* pSrc, T* pDst, int len, const Change& change) {
    using W = Word<T>;
    const Index n = Index{len} * parts<T>;
    const W* src_end = words(pSrc) + n;
    W* dst = words(pDst);
    each_block<W, parts<T>>(
        n,
        [=](auto width, Index i) {
            return change(reverse_samples<parts<T>>(load<Vec<W, width>>(src_end - i - width)));
        },
        [=](auto, Index i, auto v) { store(dst + i, v); });
}

template <class T>
KelStatus flip(const T* pSrc, T* pDst, int len) {
    return vector_call({pSrc, pDst}, len, [=] { reverse_to(pSrc, pDst, len, [](auto v) { return v; }); });
}

/// Exchanges blocks from both ends of n words until they meet. The last two may overlap: both are read before either is
/// written.
template <class W>
void reverse_in_place(W* p, Index n) {
    const auto exchange = [](W* first, W* end, auto width) {
        using V = Vec<W, width>;
        const V front = load<V>(first);
        const V back = load<V>(end - width);
        store(first, reverse(back));
        store(end - width, reverse(front));
    };
    constexpr Width<max_lanes<W>> widest;
    W* end = p + n;
    for (; end - p >= widest; p += widest, end -= widest) exchange(p, end, widest);
    in_widest<W>(end - p, [&](auto width) { exchange(p, end, width); });
}

template <class T>
KelStatus flip(T* pSrcDst, int len) {
    return vector_call({pSrcDst}, len, [=] { reverse_in_place(words(pSrcDst), len); });
}

template <class V>
struct Pair {
    V first, second;
};

/// Calls write(i, real parts, imaginary parts) for blocks of the source.
template <class T, class Write>
void each_separated(const T* pSrc, int len, const Write& write) {
    using W = Word<T>;
    const W* src = words(pSrc);
    each_block<W>(
        len,
        [=](auto width, Index i) {
            using V = Vec<W, width>;
            const V low = load<V>(src + 2 * i), high = load<V>(src + 2 * i + width);
            return Pair<V>{even(low, high), odd(low, high)};
        },
        [=](auto, Index i, auto v) { write(i, v.first, v.second); });
}

template <class T, class P>
KelStatus real(const T* pSrc, P* pDst, int len) {
    return vector_call({pSrc, pDst}, len,
                       [=] { each_separated(pSrc, len, [=](Index i, auto re, auto) { store(pDst + i, re); }); });
}

template <class T, class P>
KelStatus imag(const T* pSrc, P* pDst, int len) {
    return vector_call({pSrc, pDst}, len,
                       [=] { each_separated(pSrc, len, [=](Index i, auto, auto im) { store(pDst + i, im); }); });
}

template <class T, class P>
KelStatus complex_to_real(const T* pSrc, P* pDstRe, P* pDstIm, int len) {
    return vector_call({pSrc, pDstRe, pDstIm}, len, [=] {
        each_separated(pSrc, len, [=](Index i, auto re, auto im) {
            store(pDstRe + i, re);
            store(pDstIm + i, im);
        });
    });
}

template <class W>
struct FromArray {
    const W* p;
    template <class V>
    [[gnu::always_inline]] V get(Index i) const {
        return load<V>(p + i);
    }
};

struct FromNothing {
    template <class V>
    [[gnu::always_inline]] V get(Index) const {
        return V{};
    }
};

template <class W, class Re, class Im>
void join(Re re, Im im, W* dst, int len) {
    each_block<W>(
        len,
        [=](auto width, Index i) {
            using V = Vec<W, width>;
            return Pair<V>{re.template get<V>(i), im.template get<V>(i)};
        },
        [=](auto width, Index i, auto v) {
            store(dst + 2 * i, interleave<0>(v.first, v.second));
            store(dst + 2 * i + width, interleave<1>(v.first, v.second));
        });
}

// One source may be missing, which only a good length tells from an error.
template <class T, class C>
KelStatus real_to_complex(const T* pSrcRe, const T* pSrcIm, C* pDst, int len) {
    return vector_call({pDst}, len, [=] {
        if (!pSrcRe && !pSrcIm) return kelStatusNullPtr;
        const FromArray<Word<T>> re{words(pSrcRe)}, im{words(pSrcIm)};
        if (!pSrcRe)
            join(FromNothing{}, im, words(pDst), len);
        else if (!pSrcIm)
            join(re, FromNothing{}, words(pDst), len);
        else
            join(re, im, words(pDst), len);
        return kelStatusOk;
    });
}

/// Conjugates of complex samples: the words at odd places, negated.
template <class T>
struct Conjugate {
    template <class V>
    [[gnu::always_inline]] V operator()(V v) const {
        constexpr auto sign = static_cast<Word<T>>(Word<T>{1} << (8 * sizeof(Word<T>) - 1));
        if constexpr (std::is_floating_point_v<decltype(T::im)>) return v ^ alternate<V>(0, sign);
        // Inversion and a saturating increment; the increment is a subtraction of all ones.
        const V imaginary = alternate<V>(0, static_cast<Word<T>>(~Word<T>{0}));
        const V incrementable = (V)(v != splat<V>(sign));
        return (v ^ imaginary) - (incrementable & imaginary);
    }
};

template <class T>
KelStatus conj(const T* pSrc, T* pDst, int len) {
    using W = Word<T>;
    const W* src = words(pSrc);
    W* dst = words(pDst);
    return vector_call({pSrc, pDst}, len, [=] {
        each_block<W, 2>(
            Index{len} * 2, [=](auto width, Index i) { return Conjugate<T>{}(load<Vec<W, width>>(src + i)); },
            [=](auto, Index i, auto v) { store(dst + i, v); });
    });
}

template <class T>
KelStatus conj_flip(const T* pSrc, T* pDst, int len) {
    return vector_call({pSrc, pDst}, len, [=] { reverse_to(pSrc, pDst, len, Conjugate<T>{}); });
}

} // namespace
} // namespace kels

extern "C" {
// clang-format off
KelStatus kelsCopy_8u  (const Kel8u* pSrc, Kel8u* pDst, int len)     { return kels::copy(pSrc, pDst, len); }
KelStatus kelsCopy_16s (const Kel16s* pSrc, Kel16s* pDst, int len)   { return kels::copy(pSrc, pDst, len); }
KelStatus kelsCopy_16sc(const Kel16sc* pSrc, Kel16sc* pDst, int len) { return kels::copy(pSrc, pDst, len); }
KelStatus kelsCopy_32f (const Kel32f* pSrc, Kel32f* pDst, int len)   { return kels::copy(pSrc, pDst, len); }
KelStatus kelsCopy_32fc(const Kel32fc* pSrc, Kel32fc* pDst, int len) { return kels::copy(pSrc, pDst, len); }
KelStatus kelsCopy_64f (const Kel64f* pSrc, Kel64f* pDst, int len)   { return kels::copy(pSrc, pDst, len); }
KelStatus kelsCopy_64fc(const Kel64fc* pSrc, Kel64fc* pDst, int len) { return kels::copy(pSrc, pDst, len); }

KelStatus kelsZero_8u  (Kel8u* pDst, int len)   { return kels::zero(pDst, len); }
KelStatus kelsZero_16s (Kel16s* pDst, int len)  { return kels::zero(pDst, len); }
KelStatus kelsZero_16sc(Kel16sc* pDst, int len) { return kels::zero(pDst, len); }
KelStatus kelsZero_32f (Kel32f* pDst, int len)  { return kels::zero(pDst, len); }
KelStatus kelsZero_32fc(Kel32fc* pDst, int len) { return kels::zero(pDst, len); }
KelStatus kelsZero_64f (Kel64f* pDst, int len)  { return kels::zero(pDst, len); }
KelStatus kelsZero_64fc(Kel64fc* pDst, int len) { return kels::zero(pDst, len); }

KelStatus kelsSet_8u  (Kel8u val, Kel8u* pDst, int len)     { return kels::set(val, pDst, len); }
KelStatus kelsSet_16s (Kel16s val, Kel16s* pDst, int len)   { return kels::set(val, pDst, len); }
KelStatus kelsSet_16sc(Kel16sc val, Kel16sc* pDst, int len) { return kels::set(val, pDst, len); }
KelStatus kelsSet_32s (Kel32s val, Kel32s* pDst, int len)   { return kels::set(val, pDst, len); }
KelStatus kelsSet_32sc(Kel32sc val, Kel32sc* pDst, int len) { return kels::set(val, pDst, len); }
KelStatus kelsSet_32f (Kel32f val, Kel32f* pDst, int len)   { return kels::set(val, pDst, len); }
KelStatus kelsSet_32fc(Kel32fc val, Kel32fc* pDst, int len) { return kels::set(val, pDst, len); }
KelStatus kelsSet_64s (Kel64s val, Kel64s* pDst, int len)   { return kels::set(val, pDst, len); }
KelStatus kelsSet_64sc(Kel64sc val, Kel64sc* pDst, int len) { return kels::set(val, pDst, len); }
KelStatus kelsSet_64f (Kel64f val, Kel64f* pDst, int len)   { return kels::set(val, pDst, len); }
KelStatus kelsSet_64fc(Kel64fc val, Kel64fc* pDst, int len) { return kels::set(val, pDst, len); }

KelStatus kelsFlip_8u   (const Kel8u* pSrc, Kel8u* pDst, int len)   { return kels::flip(pSrc, pDst, len); }
KelStatus kelsFlip_16u  (const Kel16u* pSrc, Kel16u* pDst, int len) { return kels::flip(pSrc, pDst, len); }
KelStatus kelsFlip_32f  (const Kel32f* pSrc, Kel32f* pDst, int len) { return kels::flip(pSrc, pDst, len); }
KelStatus kelsFlip_64f  (const Kel64f* pSrc, Kel64f* pDst, int len) { return kels::flip(pSrc, pDst, len); }
KelStatus kelsFlip_8u_I (Kel8u* pSrcDst, int len)                   { return kels::flip(pSrcDst, len); }
KelStatus kelsFlip_16u_I(Kel16u* pSrcDst, int len)                  { return kels::flip(pSrcDst, len); }
KelStatus kelsFlip_32f_I(Kel32f* pSrcDst, int len)                  { return kels::flip(pSrcDst, len); }
KelStatus kelsFlip_64f_I(Kel64f* pSrcDst, int len)                  { return kels::flip(pSrcDst, len); }

KelStatus kelsReal_16sc(const Kel16sc* pSrc, Kel16s* pDst, int len) { return kels::real(pSrc, pDst, len); }
KelStatus kelsReal_32fc(const Kel32fc* pSrc, Kel32f* pDst, int len) { return kels::real(pSrc, pDst, len); }
KelStatus kelsReal_64fc(const Kel64fc* pSrc, Kel64f* pDst, int len) { return kels::real(pSrc, pDst, len); }

KelStatus kelsImag_16sc(const Kel16sc* pSrc, Kel16s* pDst, int len) { return kels::imag(pSrc, pDst, len); }
KelStatus kelsImag_32fc(const Kel32fc* pSrc, Kel32f* pDst, int len) { return kels::imag(pSrc, pDst, len); }
KelStatus kelsImag_64fc(const Kel64fc* pSrc, Kel64f* pDst, int len) { return kels::imag(pSrc, pDst, len); }

KelStatus kelsCplxToReal_16sc(const Kel16sc* pSrc, Kel16s* pDstRe, Kel16s* pDstIm, int len) { return kels::complex_to_real(pSrc, pDstRe, pDstIm, len); }
KelStatus kelsCplxToReal_32fc(const Kel32fc* pSrc, Kel32f* pDstRe, Kel32f* pDstIm, int len) { return kels::complex_to_real(pSrc, pDstRe, pDstIm, len); }
KelStatus kelsCplxToReal_64fc(const Kel64fc* pSrc, Kel64f* pDstRe, Kel64f* pDstIm, int len) { return kels::complex_to_real(pSrc, pDstRe, pDstIm, len); }

KelStatus kelsRealToCplx_16s(const Kel16s* pSrcRe, const Kel16s* pSrcIm, Kel16sc* pDst, int len) { return kels::real_to_complex(pSrcRe, pSrcIm, pDst, len); }
KelStatus kelsRealToCplx_32f(const Kel32f* pSrcRe, const Kel32f* pSrcIm, Kel32fc* pDst, int len) { return kels::real_to_complex(pSrcRe, pSrcIm, pDst, len); }
KelStatus kelsRealToCplx_64f(const Kel64f* pSrcRe, const Kel64f* pSrcIm, Kel64fc* pDst, int len) { return kels::real_to_complex(pSrcRe, pSrcIm, pDst, len); }

KelStatus kelsConj_16sc  (const Kel16sc* pSrc, Kel16sc* pDst, int len) { return kels::conj(pSrc, pDst, len); }
KelStatus kelsConj_32fc  (const Kel32fc* pSrc, Kel32fc* pDst, int len) { return kels::conj(pSrc, pDst, len); }
KelStatus kelsConj_64fc  (const Kel64fc* pSrc, Kel64fc* pDst, int len) { return kels::conj(pSrc, pDst, len); }
KelStatus kelsConj_16sc_I(Kel16sc* pSrcDst, int len)                   { return kels::conj(pSrcDst, pSrcDst, len); }
KelStatus kelsConj_32fc_I(Kel32fc* pSrcDst, int len)                   { return kels::conj(pSrcDst, pSrcDst, len); }
KelStatus kelsConj_64fc_I(Kel64fc* pSrcDst, int len)                   { return kels::conj(pSrcDst, pSrcDst, len); }

KelStatus kelsConjFlip_16sc(const Kel16sc* pSrc, Kel16sc* pDst, int len) { return kels::conj_flip(pSrc, pDst, len); }
KelStatus kelsConjFlip_32fc(const Kel32fc* pSrc, Kel32fc* pDst, int len) { return kels::conj_flip(pSrc, pDst, len); }
KelStatus kelsConjFlip_64fc(const Kel64fc* pSrc, Kel64fc* pDst, int len) { return kels::conj_flip(pSrc, pDst, len); }
// clang-format on
}
