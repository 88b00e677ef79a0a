// Thresholds of real elements.
//
// There are two orders: that of numbers, and that of the bits of floating-point numbers, which is one of integers.
// Signed integers have it against a level without a sign bit; against one with it unsigned ones do, the other way
// round.

#include "kels/thresholds.h"

#include "frame/blocks.h"
#include "frame/numeric.h"
#include "vector/thresholds.h"

#include <bit>
#include <type_traits>

namespace kels {
namespace {

template <Side S, class T>
void replace_lanes(const T* src, T* dst, Index n, T level, T value) {
    const auto replaced = [=](auto x) KELS_INLINE {
        using V = decltype(x);
        return beyond<S>(x, splat<V>(level)) ? splat<V>(value) : x;
    };
    map_blocks(dst, n, replaced, src);
}

/// Elements on the side of the level become the value, by the order of numbers.
template <class T>
KelStatus replace(const T* src, T* dst, int len, Side side, T level, T value) {
    return vector_call({src, dst}, len,
                       [=] { with_side(side, [=](auto s) { replace_lanes<s>(src, dst, len, level, value); }); });
}

/// The same by the order of bits.
template <class T>
KelStatus replace_by_bits(const T* src, T* dst, int len, Side side, T level, T value) {
    using Unsigned = Word<T>;
    using Signed = std::make_signed_t<Unsigned>;
    const auto in_order_of = [=](auto word, Side its_side) {
        using W = decltype(word);
        return replace(reinterpret_cast<const W*>(src), reinterpret_cast<W*>(dst), len, its_side,
                       std::bit_cast<W>(level), std::bit_cast<W>(value));
    };
    if (std::bit_cast<Signed>(level) >= 0) return in_order_of(Signed{}, side);
    return in_order_of(Unsigned{}, side == Side::below ? Side::above : Side::below);
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsThreshold_16s  (const Kel16s* a, Kel16s* d, int n, Kel16s level, int cmpMode) { return replace(a, d, n, side(cmpMode), level, level); }
KelStatus kelsThreshold_16s_I(Kel16s* d, int n, Kel16s level, int cmpMode)                  { return replace(d, d, n, side(cmpMode), level, level); }
KelStatus kelsThreshold_32f  (const Kel32f* a, Kel32f* d, int n, Kel32f level, int cmpMode) { return replace_by_bits(a, d, n, side(cmpMode), level, level); }
KelStatus kelsThreshold_32f_I(Kel32f* d, int n, Kel32f level, int cmpMode)                  { return replace_by_bits(d, d, n, side(cmpMode), level, level); }
KelStatus kelsThreshold_64f  (const Kel64f* a, Kel64f* d, int n, Kel64f level, int cmpMode) { return replace(a, d, n, side(cmpMode), level, level); }
KelStatus kelsThreshold_64f_I(Kel64f* d, int n, Kel64f level, int cmpMode)                  { return replace_by_bits(d, d, n, side(cmpMode), level, level); }

KelStatus kelsThreshold_LT_16s  (const Kel16s* a, Kel16s* d, int n, Kel16s level) { return replace(a, d, n, Side::below, level, level); }
KelStatus kelsThreshold_LT_16s_I(Kel16s* d, int n, Kel16s level)                  { return replace(d, d, n, Side::below, level, level); }
KelStatus kelsThreshold_LT_32f  (const Kel32f* a, Kel32f* d, int n, Kel32f level) { return replace_by_bits(a, d, n, Side::below, level, level); }
KelStatus kelsThreshold_LT_32f_I(Kel32f* d, int n, Kel32f level)                  { return replace_by_bits(d, d, n, Side::below, level, level); }
KelStatus kelsThreshold_LT_64f  (const Kel64f* a, Kel64f* d, int n, Kel64f level) { return replace(a, d, n, Side::below, level, level); }
KelStatus kelsThreshold_LT_64f_I(Kel64f* d, int n, Kel64f level)                  { return replace_by_bits(d, d, n, Side::below, level, level); }

KelStatus kelsThreshold_GT_16s  (const Kel16s* a, Kel16s* d, int n, Kel16s level) { return replace(a, d, n, Side::above, level, level); }
KelStatus kelsThreshold_GT_16s_I(Kel16s* d, int n, Kel16s level)                  { return replace(d, d, n, Side::above, level, level); }
KelStatus kelsThreshold_GT_32f  (const Kel32f* a, Kel32f* d, int n, Kel32f level) { return replace_by_bits(a, d, n, Side::above, level, level); }
KelStatus kelsThreshold_GT_32f_I(Kel32f* d, int n, Kel32f level)                  { return replace_by_bits(d, d, n, Side::above, level, level); }
KelStatus kelsThreshold_GT_64f  (const Kel64f* a, Kel64f* d, int n, Kel64f level) { return replace(a, d, n, Side::above, level, level); }
KelStatus kelsThreshold_GT_64f_I(Kel64f* d, int n, Kel64f level)                  { return replace_by_bits(d, d, n, Side::above, level, level); }

KelStatus kelsThreshold_LTVal_16s  (const Kel16s* a, Kel16s* d, int n, Kel16s level, Kel16s value) { return replace(a, d, n, Side::below, level, value); }
KelStatus kelsThreshold_LTVal_16s_I(Kel16s* d, int n, Kel16s level, Kel16s value)                  { return replace(d, d, n, Side::below, level, value); }
KelStatus kelsThreshold_LTVal_32f  (const Kel32f* a, Kel32f* d, int n, Kel32f level, Kel32f value) { return replace_by_bits(a, d, n, Side::below, level, value); }
KelStatus kelsThreshold_LTVal_32f_I(Kel32f* d, int n, Kel32f level, Kel32f value)                  { return replace_by_bits(d, d, n, Side::below, level, value); }
KelStatus kelsThreshold_LTVal_64f  (const Kel64f* a, Kel64f* d, int n, Kel64f level, Kel64f value) { return replace(a, d, n, Side::below, level, value); }
KelStatus kelsThreshold_LTVal_64f_I(Kel64f* d, int n, Kel64f level, Kel64f value)                  { return replace_by_bits(d, d, n, Side::below, level, value); }

KelStatus kelsThreshold_GTVal_16s  (const Kel16s* a, Kel16s* d, int n, Kel16s level, Kel16s value) { return replace(a, d, n, Side::above, level, value); }
KelStatus kelsThreshold_GTVal_16s_I(Kel16s* d, int n, Kel16s level, Kel16s value)                  { return replace(d, d, n, Side::above, level, value); }
KelStatus kelsThreshold_GTVal_32f  (const Kel32f* a, Kel32f* d, int n, Kel32f level, Kel32f value) { return replace_by_bits(a, d, n, Side::above, level, value); }
KelStatus kelsThreshold_GTVal_32f_I(Kel32f* d, int n, Kel32f level, Kel32f value)                  { return replace_by_bits(d, d, n, Side::above, level, value); }
KelStatus kelsThreshold_GTVal_64f  (const Kel64f* a, Kel64f* d, int n, Kel64f level, Kel64f value) { return replace(a, d, n, Side::above, level, value); }
KelStatus kelsThreshold_GTVal_64f_I(Kel64f* d, int n, Kel64f level, Kel64f value)                  { return replace_by_bits(d, d, n, Side::above, level, value); }
}
// clang-format on
