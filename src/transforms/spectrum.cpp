// Arithmetic on packed real spectra: the real bins by themselves, the others as one complex vector.

#include "kels/spectrum.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/loop.h"
#include "transforms/packed_spectrum.h"
#include "vector/complex_product.h"

#include <algorithm>
#include <climits>
#include <cstring>

namespace kels {
namespace {

// Expansion to all N bins

/// The complex number whose parts have type T.
template <class T>
struct ComplexSample;
template <>
struct ComplexSample<Kel16s> {
    using type = Kel16sc;
};
template <>
struct ComplexSample<Kel32f> {
    using type = Kel32fc;
};
template <>
struct ComplexSample<Kel64f> {
    using type = Kel64fc;
};

template <class T>
using Bin = typename ComplexSample<T>::type;

/// In place `src` is the beginning of `dst`. The mirrored bins lie behind all of the packed ones, so they come first;
/// then the others move up to their places, and the real bins, kept aside, are set.
template <Layout layout, class T>
KelStatus expand(const T* src, Bin<T>* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const std::ptrdiff_t points = len, bins = complex_bins(points);
        const std::ptrdiff_t middle = nyquist(layout, points);
        const bool even = points % 2 == 0, parts_stored = layout == Layout::ccs;
        const Bin<T> first = {src[0], parts_stored ? src[1] : T{}};
        const Bin<T> last = {even ? src[middle] : T{}, even && parts_stored ? src[middle + 1] : T{}};

        const T* pairs = src + first_complex(layout, points);
        T* upper = reals(dst + points - bins);
        each_block<Word<T>, 2>(
            2 * bins,
            [=](auto width, Index i)
                KELS_INLINE { return mirrored(load<Vec<T, width>>(pairs + 2 * bins - width - i)); },
            [=](auto, Index i, auto v) KELS_INLINE { store(upper + i, v); });
        std::memmove(dst + 1, pairs, static_cast<std::size_t>(bins) * sizeof *dst);
        dst[0] = first;
        if (even) dst[points / 2] = last;
    });
}

template <Layout layout, class Sample>
KelStatus expand_in_place(Sample* srcDst, int len) {
    return expand<layout>(reals(static_cast<const Sample*>(srcDst)), srcDst, len);
}

// Products

/// Calls `real_bin(i)` for the place of every real bin and `complex_bins(i, count)` for the complex ones from i on.
template <Layout layout, class Real, class Pairs>
void each_bin(std::ptrdiff_t points, Real real_bin, Pairs pairs) {
    const std::ptrdiff_t first = first_complex(layout, points);
    real_bin(std::ptrdiff_t{0});
    if (points % 2 == 0) real_bin(nyquist(layout, points));
    pairs(first, static_cast<int>(complex_bins(points)));
}

template <Layout layout, bool conjugate = false, class T>
KelStatus multiply(const T* a, const T* b, T* d, int len) {
    return vector_call({a, b, d}, len, [=] {
        each_bin<layout>(
            len, [=](std::ptrdiff_t i) { d[i] = a[i] * b[i]; },
            [=](std::ptrdiff_t i, int count) {
                const auto *x = reinterpret_cast<const Bin<T>*>(a + i), *y = reinterpret_cast<const Bin<T>*>(b + i);
                auto* z = reinterpret_cast<Bin<T>*>(d + i);
                if constexpr (conjugate)
                    multiply_by_conjugate(x, y, z, count);
                else
                    multiply_complex(x, y, z, count);
            });
    });
}

/// The scale factor of 16-bit products truncates: it shifts right, toward minus infinity, or left, then saturates. Sums
/// of products reach 2^31, one more than 32 bits hold.
struct TruncatingScale {
    int right, left;

    explicit TruncatingScale(int factor)
        : right(std::clamp(factor, 0, 32)), left(-std::clamp(factor, -16, 0)) {} // all beyond gives the same

    Kel16s operator()(Kel64s exact) const {
        const Kel64s scaled = (exact >> right) * (Kel64s{1} << left);
        return static_cast<Kel16s>(std::clamp<Kel64s>(scaled, SHRT_MIN, SHRT_MAX));
    }
};

template <Layout layout>
KelStatus multiply(const Kel16s* a, const Kel16s* b, Kel16s* d, int len, int factor) {
    return vector_call({a, b, d}, len, [=] {
        const TruncatingScale scale(factor);
        each_bin<layout>(
            len, [=](std::ptrdiff_t i) { d[i] = scale(a[i] * b[i]); },
            [=](std::ptrdiff_t first, int count) {
                const Kel16s *x = a + first, *y = b + first;
                Kel16s* z = d + first;
                each(count, [=](std::ptrdiff_t i) {
                    const Kel64s xr = x[2 * i], xi = x[2 * i + 1], yr = y[2 * i], yi = y[2 * i + 1];
                    z[2 * i] = scale(xr * yr - xi * yi);
                    z[2 * i + 1] = scale(xr * yi + xi * yr);
                });
            });
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsConjPack_16sc  (const Kel16s* src, Kel16sc* dst, int len) { return expand<Layout::pack>(src, dst, len); }
KelStatus kelsConjPack_32fc  (const Kel32f* src, Kel32fc* dst, int len) { return expand<Layout::pack>(src, dst, len); }
KelStatus kelsConjPack_64fc  (const Kel64f* src, Kel64fc* dst, int len) { return expand<Layout::pack>(src, dst, len); }
KelStatus kelsConjPerm_16sc  (const Kel16s* src, Kel16sc* dst, int len) { return expand<Layout::perm>(src, dst, len); }
KelStatus kelsConjPerm_32fc  (const Kel32f* src, Kel32fc* dst, int len) { return expand<Layout::perm>(src, dst, len); }
KelStatus kelsConjPerm_64fc  (const Kel64f* src, Kel64fc* dst, int len) { return expand<Layout::perm>(src, dst, len); }
KelStatus kelsConjCcs_16sc   (const Kel16s* src, Kel16sc* dst, int len) { return expand<Layout::ccs>(src, dst, len); }
KelStatus kelsConjCcs_32fc   (const Kel32f* src, Kel32fc* dst, int len) { return expand<Layout::ccs>(src, dst, len); }
KelStatus kelsConjCcs_64fc   (const Kel64f* src, Kel64fc* dst, int len) { return expand<Layout::ccs>(src, dst, len); }
KelStatus kelsConjPack_16sc_I(Kel16sc* srcDst, int len) { return expand_in_place<Layout::pack>(srcDst, len); }
KelStatus kelsConjPack_32fc_I(Kel32fc* srcDst, int len) { return expand_in_place<Layout::pack>(srcDst, len); }
KelStatus kelsConjPack_64fc_I(Kel64fc* srcDst, int len) { return expand_in_place<Layout::pack>(srcDst, len); }
KelStatus kelsConjPerm_16sc_I(Kel16sc* srcDst, int len) { return expand_in_place<Layout::perm>(srcDst, len); }
KelStatus kelsConjPerm_32fc_I(Kel32fc* srcDst, int len) { return expand_in_place<Layout::perm>(srcDst, len); }
KelStatus kelsConjPerm_64fc_I(Kel64fc* srcDst, int len) { return expand_in_place<Layout::perm>(srcDst, len); }
KelStatus kelsConjCcs_16sc_I (Kel16sc* srcDst, int len) { return expand_in_place<Layout::ccs>(srcDst, len); }
KelStatus kelsConjCcs_32fc_I (Kel32fc* srcDst, int len) { return expand_in_place<Layout::ccs>(srcDst, len); }
KelStatus kelsConjCcs_64fc_I (Kel64fc* srcDst, int len) { return expand_in_place<Layout::ccs>(srcDst, len); }

KelStatus kelsMulPack_32f     (const Kel32f* a, const Kel32f* b, Kel32f* d, int len)                  { return multiply<Layout::pack>(a, b, d, len); }
KelStatus kelsMulPack_64f     (const Kel64f* a, const Kel64f* b, Kel64f* d, int len)                  { return multiply<Layout::pack>(a, b, d, len); }
KelStatus kelsMulPack_16s_Sfs (const Kel16s* a, const Kel16s* b, Kel16s* d, int len, int scaleFactor) { return multiply<Layout::pack>(a, b, d, len, scaleFactor); }
KelStatus kelsMulPack_32f_I   (const Kel32f* src, Kel32f* srcDst, int len)                            { return multiply<Layout::pack>(src, srcDst, srcDst, len); }
KelStatus kelsMulPack_64f_I   (const Kel64f* src, Kel64f* srcDst, int len)                            { return multiply<Layout::pack>(src, srcDst, srcDst, len); }
KelStatus kelsMulPack_16s_ISfs(const Kel16s* src, Kel16s* srcDst, int len, int scaleFactor)           { return multiply<Layout::pack>(src, srcDst, srcDst, len, scaleFactor); }

KelStatus kelsMulPerm_32f     (const Kel32f* a, const Kel32f* b, Kel32f* d, int len)                  { return multiply<Layout::perm>(a, b, d, len); }
KelStatus kelsMulPerm_64f     (const Kel64f* a, const Kel64f* b, Kel64f* d, int len)                  { return multiply<Layout::perm>(a, b, d, len); }
KelStatus kelsMulPerm_16s_Sfs (const Kel16s* a, const Kel16s* b, Kel16s* d, int len, int scaleFactor) { return multiply<Layout::perm>(a, b, d, len, scaleFactor); }
KelStatus kelsMulPerm_32f_I   (const Kel32f* src, Kel32f* srcDst, int len)                            { return multiply<Layout::perm>(src, srcDst, srcDst, len); }
KelStatus kelsMulPerm_64f_I   (const Kel64f* src, Kel64f* srcDst, int len)                            { return multiply<Layout::perm>(src, srcDst, srcDst, len); }
KelStatus kelsMulPerm_16s_ISfs(const Kel16s* src, Kel16s* srcDst, int len, int scaleFactor)           { return multiply<Layout::perm>(src, srcDst, srcDst, len, scaleFactor); }

KelStatus kelsMulPackConj_32f_I(const Kel32f* src, Kel32f* srcDst, int len) { return multiply<Layout::pack, true>(src, srcDst, srcDst, len); }
KelStatus kelsMulPackConj_64f_I(const Kel64f* src, Kel64f* srcDst, int len) { return multiply<Layout::pack, true>(src, srcDst, srcDst, len); }
}
// clang-format on
