// Bitwise logic and shifts by a constant, element by element.

#include "kels/logic.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/numeric.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <type_traits>

namespace kels {
namespace {

// Logic

/// d[i] = the operation on a[i] and b[i], an array or a constant.
template <class Operation, class T, class B>
void combine(const T* a, B b, T* d, Index n) {
    map_blocks(
        d, n, [](auto x, auto y) KELS_INLINE { return static_cast<decltype(x)>(Operation{}(x, y)); }, a, b);
}

template <class Operation, class T>
KelStatus combine_vectors(const T* a, const T* b, T* d, int len) {
    return vector_call({a, b, d}, len, [=] { combine<Operation>(a, b, d, len); });
}

template <class Operation, class T>
KelStatus combine_with_constant(const T* src, T val, T* dst, int len) {
    return vector_call({src, dst}, len, [=] { combine<Operation>(src, constant(val), dst, len); });
}

using And = std::bit_and<>;
using Or = std::bit_or<>;
using Xor = std::bit_xor<>;

template <class T>
KelStatus complement(const T* src, T* dst, int len) {
    return combine_with_constant<Xor>(src, std::numeric_limits<T>::max(), dst, len);
}

// Shifts

enum class Toward { left, right };

/// Lanes shifted by fewer bits than they have.
template <Toward Way, class V>
[[gnu::always_inline]] inline V shifted(V x, int count) {
    const V counts = splat<V>(static_cast<Element<V>>(count));
    return static_cast<V>(Way == Toward::left ? x << counts : x >> counts);
}

/// The same. Bytes are shifted in lanes of twice the width, and what came from the neighbour is cleared.
template <Toward Way, class V>
[[gnu::always_inline]] inline V shift_lanes(V x, int count) {
    if constexpr (sizeof(Element<V>) > 1 || lanes<V> == 1) {
        return shifted<Way>(x, count);
    } else {
        const auto pairs = shifted<Way>(bits_as<Vec<Kel16u, lanes<V> / 2>>(x), count);
        const int kept = Way == Toward::left ? 0xFF << count : 0xFF >> count;
        return bits_as<V>(pairs) & splat<V>(static_cast<Kel8u>(kept));
    }
}

template <Toward Way, class T>
void shift_all(const T* src, int val, T* dst, int len) {
    map_blocks(
        dst, len, [=](auto x) KELS_INLINE { return shift_lanes<Way>(x, val); }, src);
}

/// A negative shift is found out behind the frame's checks.
template <class T, class Shift>
KelStatus shift_call(const T* src, int val, T* dst, int len, Shift shift) {
    return vector_call({src, dst}, len, [=] {
        if (val < 0) return kelStatusNegShift;
        shift();
        return kelStatusOk;
    });
}

template <class T>
inline constexpr int width = 8 * static_cast<int>(sizeof(T));

template <class T>
void clear(T* dst, int len) {
    std::memset(dst, 0, sizeof(T) * static_cast<std::size_t>(len));
}

template <class T>
KelStatus shift_left(const T* src, int val, T* dst, int len) {
    return shift_call(src, val, dst, len, [=] {
        if (val >= width<T>)
            clear(dst, len);
        else
            shift_all<Toward::left>(words(src), val, words(dst), len);
    });
}

/// Of a signed element a shift by all bits but one leaves nothing but its sign.
template <class T>
KelStatus shift_right(const T* src, int val, T* dst, int len) {
    return shift_call(src, val, dst, len, [=] {
        if (std::is_unsigned_v<T> && val >= width<T>)
            clear(dst, len);
        else
            shift_all<Toward::right>(src, std::min(val, width<T> - 1), dst, len);
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsAnd_8u    (const Kel8u* a, const Kel8u* b, Kel8u* d, int n)    { return combine_vectors<And>(a, b, d, n); }
KelStatus kelsAnd_8u_I  (const Kel8u* a, Kel8u* d, int n)                    { return combine_vectors<And>(a, d, d, n); }
KelStatus kelsAnd_16u   (const Kel16u* a, const Kel16u* b, Kel16u* d, int n) { return combine_vectors<And>(a, b, d, n); }
KelStatus kelsAnd_16u_I (const Kel16u* a, Kel16u* d, int n)                  { return combine_vectors<And>(a, d, d, n); }
KelStatus kelsAndC_8u   (const Kel8u* a, Kel8u val, Kel8u* d, int n)         { return combine_with_constant<And>(a, val, d, n); }
KelStatus kelsAndC_8u_I (Kel8u val, Kel8u* d, int n)                         { return combine_with_constant<And>(d, val, d, n); }
KelStatus kelsAndC_16u  (const Kel16u* a, Kel16u val, Kel16u* d, int n)      { return combine_with_constant<And>(a, val, d, n); }
KelStatus kelsAndC_16u_I(Kel16u val, Kel16u* d, int n)                       { return combine_with_constant<And>(d, val, d, n); }

KelStatus kelsOr_8u    (const Kel8u* a, const Kel8u* b, Kel8u* d, int n)    { return combine_vectors<Or>(a, b, d, n); }
KelStatus kelsOr_8u_I  (const Kel8u* a, Kel8u* d, int n)                    { return combine_vectors<Or>(a, d, d, n); }
KelStatus kelsOr_16u   (const Kel16u* a, const Kel16u* b, Kel16u* d, int n) { return combine_vectors<Or>(a, b, d, n); }
KelStatus kelsOr_16u_I (const Kel16u* a, Kel16u* d, int n)                  { return combine_vectors<Or>(a, d, d, n); }
KelStatus kelsOrC_8u   (const Kel8u* a, Kel8u val, Kel8u* d, int n)         { return combine_with_constant<Or>(a, val, d, n); }
KelStatus kelsOrC_8u_I (Kel8u val, Kel8u* d, int n)                         { return combine_with_constant<Or>(d, val, d, n); }
KelStatus kelsOrC_16u  (const Kel16u* a, Kel16u val, Kel16u* d, int n)      { return combine_with_constant<Or>(a, val, d, n); }
KelStatus kelsOrC_16u_I(Kel16u val, Kel16u* d, int n)                       { return combine_with_constant<Or>(d, val, d, n); }

KelStatus kelsXor_8u    (const Kel8u* a, const Kel8u* b, Kel8u* d, int n)    { return combine_vectors<Xor>(a, b, d, n); }
KelStatus kelsXor_8u_I  (const Kel8u* a, Kel8u* d, int n)                    { return combine_vectors<Xor>(a, d, d, n); }
KelStatus kelsXor_16u   (const Kel16u* a, const Kel16u* b, Kel16u* d, int n) { return combine_vectors<Xor>(a, b, d, n); }
KelStatus kelsXor_16u_I (const Kel16u* a, Kel16u* d, int n)                  { return combine_vectors<Xor>(a, d, d, n); }
KelStatus kelsXorC_8u   (const Kel8u* a, Kel8u val, Kel8u* d, int n)         { return combine_with_constant<Xor>(a, val, d, n); }
KelStatus kelsXorC_8u_I (Kel8u val, Kel8u* d, int n)                         { return combine_with_constant<Xor>(d, val, d, n); }
KelStatus kelsXorC_16u  (const Kel16u* a, Kel16u val, Kel16u* d, int n)      { return combine_with_constant<Xor>(a, val, d, n); }
KelStatus kelsXorC_16u_I(Kel16u val, Kel16u* d, int n)                       { return combine_with_constant<Xor>(d, val, d, n); }

KelStatus kelsNot_8u   (const Kel8u* a, Kel8u* d, int n)   { return complement(a, d, n); }
KelStatus kelsNot_8u_I (Kel8u* d, int n)                   { return complement(d, d, n); }
KelStatus kelsNot_16u  (const Kel16u* a, Kel16u* d, int n) { return complement(a, d, n); }
KelStatus kelsNot_16u_I(Kel16u* d, int n)                  { return complement(d, d, n); }

KelStatus kelsLShiftC_8u   (const Kel8u* a, int val, Kel8u* d, int n)   { return shift_left(a, val, d, n); }
KelStatus kelsLShiftC_8u_I (int val, Kel8u* d, int n)                   { return shift_left(d, val, d, n); }
KelStatus kelsLShiftC_16u  (const Kel16u* a, int val, Kel16u* d, int n) { return shift_left(a, val, d, n); }
KelStatus kelsLShiftC_16u_I(int val, Kel16u* d, int n)                  { return shift_left(d, val, d, n); }
KelStatus kelsLShiftC_16s  (const Kel16s* a, int val, Kel16s* d, int n) { return shift_left(a, val, d, n); }
KelStatus kelsLShiftC_16s_I(int val, Kel16s* d, int n)                  { return shift_left(d, val, d, n); }
KelStatus kelsLShiftC_32s  (const Kel32s* a, int val, Kel32s* d, int n) { return shift_left(a, val, d, n); }
KelStatus kelsLShiftC_32s_I(int val, Kel32s* d, int n)                  { return shift_left(d, val, d, n); }

KelStatus kelsRShiftC_8u   (const Kel8u* a, int val, Kel8u* d, int n)   { return shift_right(a, val, d, n); }
KelStatus kelsRShiftC_8u_I (int val, Kel8u* d, int n)                   { return shift_right(d, val, d, n); }
KelStatus kelsRShiftC_16u  (const Kel16u* a, int val, Kel16u* d, int n) { return shift_right(a, val, d, n); }
KelStatus kelsRShiftC_16u_I(int val, Kel16u* d, int n)                  { return shift_right(d, val, d, n); }
KelStatus kelsRShiftC_16s  (const Kel16s* a, int val, Kel16s* d, int n) { return shift_right(a, val, d, n); }
KelStatus kelsRShiftC_16s_I(int val, Kel16s* d, int n)                  { return shift_right(d, val, d, n); }
KelStatus kelsRShiftC_32s  (const Kel32s* a, int val, Kel32s* d, int n) { return shift_right(a, val, d, n); }
KelStatus kelsRShiftC_32s_I(int val, Kel32s* d, int n)                  { return shift_right(d, val, d, n); }
}
// clang-format on
