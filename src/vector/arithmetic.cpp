// Addition, subtraction, multiplication and absolute value, element by element.
//
// An operation works on exact values: integers wide enough for every result of the source types, or the real type of
// the result. An integer result then takes its scale factor. A constant is an operand like a vector, and a complex
// vector is a real one of twice the length, but for its product.

#include "kels/arithmetic.h"

#include "frame/blocks.h"
#include "frame/calling_frame.h"
#include "frame/numeric.h"
#include "frame/scale.h"
#include "vector/complex_product.h"

#include <cstring>
#include <type_traits>

namespace kels {
namespace {

// Operations on a first and a second element. The exact result is at most 2^result_digits in magnitude.

struct Sum {
    static constexpr int lanes_together = 1;
    template <class A, class>
    static constexpr int result_digits = digits<A> + 1;
    template <class V>
    [[gnu::always_inline]] V operator()(V a, V b) const {
        return static_cast<V>(a + b);
    }
};

/// The first is subtracted from the second.
struct Difference {
    static constexpr int lanes_together = 1;
    template <class A, class>
    static constexpr int result_digits = digits<A> + std::is_signed_v<A>;
    template <class V>
    [[gnu::always_inline]] V operator()(V a, V b) const {
        return static_cast<V>(b - a);
    }
};

struct Product {
    static constexpr int lanes_together = 1;
    template <class A, class B>
    static constexpr int result_digits = digits<A> + digits<B>;
    template <class V>
    [[gnu::always_inline]] V operator()(V a, V b) const {
        return static_cast<V>(a * b);
    }
};

struct ComplexProduct {
    static constexpr int lanes_together = 2;
    template <class A, class B>
    static constexpr int result_digits = digits<A> + digits<B> + 1;
    template <class V>
    [[gnu::always_inline]] V operator()(V a, V b) const {
        return multiply_pairs(a, b);
    }
};

/// What holds a result of an operation before it becomes an R.
template <class Operation, class A, class B, class R>
using Exact = std::conditional_t<std::is_floating_point_v<R>, R, Signed<Operation::template result_digits<A, B>>>;

/// d[i] = the operation on a[i] and b[i], each an array of reals or a constant.
template <class Operation, class A, class B, class R>
void combine(A a, B b, R* d, Index n, int scaleFactor) {
    using First = OperandElement<A>;
    using Second = OperandElement<B>;
    using T = Exact<Operation, First, Second, R>;
    with_scale<R, Operation::template result_digits<First, Second>>(scaleFactor, [=](auto scale) {
        map_blocks<Operation::lanes_together>(
            d, n, [=](auto x, auto y) KELS_INLINE { return scale(Operation{}(convert<T>(x), convert<T>(y))); }, a, b);
    });
}

/// The product of real or complex vectors, given the parts of the second one.
template <class A, class B, class R>
void multiply_parts(const A* a, B b, R* d, int len, int scaleFactor) {
    if constexpr (parts<A> == 1)
        combine<Product>(a, b, d, len, scaleFactor);
    else if constexpr (std::is_floating_point_v<Part<A>>)
        multiply_complex_by(a, b, d, len);
    else
        combine<ComplexProduct>(reals(a), b, reals(d), Index{len} * 2, scaleFactor);
}

// Two vectors

/// Sums and differences: a complex vector is taken for a real one of twice the length before its pointers are tested.
template <class Operation, class T, class R>
KelStatus combine_vectors(const T* a, const T* b, R* d, int len, int scaleFactor) {
    if (parts<T> == 2 && len < 1) [[unlikely]]
        return kelStatusBadSize;
    return vector_call({a, b, d}, len,
                       [=] { combine<Operation>(reals(a), reals(b), reals(d), Index{len} * parts<T>, scaleFactor); });
}

template <class T, class R>
KelStatus add(const T* a, const T* b, R* d, int len, int scaleFactor = 0) {
    return combine_vectors<Sum>(a, b, d, len, scaleFactor);
}

template <class T, class R>
KelStatus subtract(const T* a, const T* b, R* d, int len, int scaleFactor = 0) {
    return combine_vectors<Difference>(a, b, d, len, scaleFactor);
}

template <class A, class B, class R>
KelStatus multiply(const A* a, const B* b, R* d, int len, int scaleFactor = 0) {
    return vector_call({a, b, d}, len, [=] { multiply_parts(a, reals(b), d, len, scaleFactor); });
}

// A vector and a constant. Some constants leave nothing to compute: what they make of the vector is more than faster,
// since a real element comes through as it is.

enum class Effect { computed, copy, zeros, ones }; // ones: every bit

/// Neither below nor above the number: a NaN counts as any.
template <class T>
constexpr bool counts_as(T val, int number) {
    return !(val < number || val > number);
}

template <class T>
Effect effect_of_adding(T val, int scaleFactor) {
    if constexpr (parts<T> == 1) {
        if (counts_as(val, 0) && scaleFactor == 0) return Effect::copy;
        if (std::is_unsigned_v<T> && val != 0 && scaleFactor <= -digits<T>) return Effect::ones;
    }
    return Effect::computed;
}

template <class T>
Effect effect_of_subtracting(T val, int scaleFactor) {
    if constexpr (parts<T> == 1)
        if (val == 0 && scaleFactor == 0) return Effect::copy;
    return Effect::computed;
}

template <class T>
Effect effect_of_subtracting_from(T val) {
    if constexpr (std::is_unsigned_v<T>)
        if (val == 0) return Effect::zeros;
    return Effect::computed;
}

template <class T>
Effect effect_of_multiplying_by(T val, int scaleFactor) {
    if constexpr (parts<T> == 1) {
        if (counts_as(val, 1) && scaleFactor == 0) return Effect::copy;
        if (val == 0) return Effect::zeros;
    }
    return Effect::computed;
}

template <class T, class Compute>
KelStatus constant_call(const T* src, T* dst, int len, Effect effect, Compute compute) {
    return vector_call({src, dst}, len, [=] {
        const std::size_t bytes = sizeof(T) * static_cast<std::size_t>(len);
        if (effect == Effect::computed)
            compute();
        else if (effect != Effect::copy)
            std::memset(static_cast<void*>(dst), effect == Effect::ones ? 0xFF : 0, bytes);
        else if (src != dst)
            std::memcpy(dst, src, bytes);
    });
}

template <class T>
KelStatus add_constant(const T* src, T val, T* dst, int len, int scaleFactor = 0) {
    return constant_call(src, dst, len, effect_of_adding(val, scaleFactor), [=] {
        combine<Sum>(reals(src), constant(val), reals(dst), Index{len} * parts<T>, scaleFactor);
    });
}

template <class T>
KelStatus subtract_constant(const T* src, T val, T* dst, int len, int scaleFactor = 0) {
    return constant_call(src, dst, len, effect_of_subtracting(val, scaleFactor), [=] {
        combine<Difference>(constant(val), reals(src), reals(dst), Index{len} * parts<T>, scaleFactor);
    });
}

template <class T>
KelStatus subtract_from_constant(const T* src, T val, T* dst, int len, int scaleFactor = 0) {
    return constant_call(src, dst, len, effect_of_subtracting_from(val), [=] {
        combine<Difference>(reals(src), constant(val), reals(dst), Index{len} * parts<T>, scaleFactor);
    });
}

template <class T>
KelStatus multiply_by_constant(const T* src, T val, T* dst, int len, int scaleFactor = 0) {
    return constant_call(src, dst, len, effect_of_multiplying_by(val, scaleFactor),
                         [=] { multiply_parts(src, constant(val), dst, len, scaleFactor); });
}

// One vector

KelStatus absolute(const Kel16s* src, Kel16s* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        map_blocks(
            dst, len,
            [](auto x) KELS_INLINE {
                using V = decltype(x);
                const V lowest = splat<V>(-32767); // -32768 has no magnitude in 16 bits
                const V y = x < lowest ? lowest : x;
                return y < 0 ? static_cast<V>(-y) : y;
            },
            src);
    });
}

/// Clears the sign bit and touches nothing else: a NaN stays as it is.
template <class T>
KelStatus absolute(const T* src, T* dst, int len) {
    return vector_call({src, dst}, len, [=] {
        const auto clear_sign = [](auto bits) KELS_INLINE {
            using V = decltype(bits);
            return bits & splat<V>(static_cast<Element<V>>(-1) >> 1);
        };
        map_blocks(words(dst), len, clear_sign, words(src));
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsAdd_8u_Sfs   (const Kel8u* a, const Kel8u* b, Kel8u* d, int n, int s)       { return add(a, b, d, n, s); }
KelStatus kelsAdd_8u_ISfs  (const Kel8u* a, Kel8u* d, int n, int s)                       { return add(a, d, d, n, s); }
KelStatus kelsAdd_8u16u    (const Kel8u* a, const Kel8u* b, Kel16u* d, int n)             { return add(a, b, d, n); }
KelStatus kelsAdd_16u      (const Kel16u* a, const Kel16u* b, Kel16u* d, int n)           { return add(a, b, d, n); }
KelStatus kelsAdd_16s      (const Kel16s* a, const Kel16s* b, Kel16s* d, int n)           { return add(a, b, d, n); }
KelStatus kelsAdd_16s_I    (const Kel16s* a, Kel16s* d, int n)                            { return add(a, d, d, n); }
KelStatus kelsAdd_16s_Sfs  (const Kel16s* a, const Kel16s* b, Kel16s* d, int n, int s)    { return add(a, b, d, n, s); }
KelStatus kelsAdd_16s_ISfs (const Kel16s* a, Kel16s* d, int n, int s)                     { return add(a, d, d, n, s); }
KelStatus kelsAdd_16s32f   (const Kel16s* a, const Kel16s* b, Kel32f* d, int n)           { return add(a, b, d, n); }
KelStatus kelsAdd_16sc_Sfs (const Kel16sc* a, const Kel16sc* b, Kel16sc* d, int n, int s) { return add(a, b, d, n, s); }
KelStatus kelsAdd_16sc_ISfs(const Kel16sc* a, Kel16sc* d, int n, int s)                   { return add(a, d, d, n, s); }
KelStatus kelsAdd_32u      (const Kel32u* a, const Kel32u* b, Kel32u* d, int n)           { return add(a, b, d, n); }
KelStatus kelsAdd_32s_Sfs  (const Kel32s* a, const Kel32s* b, Kel32s* d, int n, int s)    { return add(a, b, d, n, s); }
KelStatus kelsAdd_32s_ISfs (const Kel32s* a, Kel32s* d, int n, int s)                     { return add(a, d, d, n, s); }
KelStatus kelsAdd_32sc_Sfs (const Kel32sc* a, const Kel32sc* b, Kel32sc* d, int n, int s) { return add(a, b, d, n, s); }
KelStatus kelsAdd_32sc_ISfs(const Kel32sc* a, Kel32sc* d, int n, int s)                   { return add(a, d, d, n, s); }
KelStatus kelsAdd_32f      (const Kel32f* a, const Kel32f* b, Kel32f* d, int n)           { return add(a, b, d, n); }
KelStatus kelsAdd_32f_I    (const Kel32f* a, Kel32f* d, int n)                            { return add(a, d, d, n); }
KelStatus kelsAdd_32fc     (const Kel32fc* a, const Kel32fc* b, Kel32fc* d, int n)        { return add(a, b, d, n); }
KelStatus kelsAdd_32fc_I   (const Kel32fc* a, Kel32fc* d, int n)                          { return add(a, d, d, n); }
KelStatus kelsAdd_64f      (const Kel64f* a, const Kel64f* b, Kel64f* d, int n)           { return add(a, b, d, n); }
KelStatus kelsAdd_64f_I    (const Kel64f* a, Kel64f* d, int n)                            { return add(a, d, d, n); }
KelStatus kelsAdd_64fc     (const Kel64fc* a, const Kel64fc* b, Kel64fc* d, int n)        { return add(a, b, d, n); }
KelStatus kelsAdd_64fc_I   (const Kel64fc* a, Kel64fc* d, int n)                          { return add(a, d, d, n); }

KelStatus kelsSub_8u_Sfs   (const Kel8u* a, const Kel8u* b, Kel8u* d, int n, int s)       { return subtract(a, b, d, n, s); }
KelStatus kelsSub_8u_ISfs  (const Kel8u* a, Kel8u* d, int n, int s)                       { return subtract(a, d, d, n, s); }
KelStatus kelsSub_16s      (const Kel16s* a, const Kel16s* b, Kel16s* d, int n)           { return subtract(a, b, d, n); }
KelStatus kelsSub_16s_I    (const Kel16s* a, Kel16s* d, int n)                            { return subtract(a, d, d, n); }
KelStatus kelsSub_16s_Sfs  (const Kel16s* a, const Kel16s* b, Kel16s* d, int n, int s)    { return subtract(a, b, d, n, s); }
KelStatus kelsSub_16s_ISfs (const Kel16s* a, Kel16s* d, int n, int s)                     { return subtract(a, d, d, n, s); }
KelStatus kelsSub_16s32f   (const Kel16s* a, const Kel16s* b, Kel32f* d, int n)           { return subtract(a, b, d, n); }
KelStatus kelsSub_16sc_Sfs (const Kel16sc* a, const Kel16sc* b, Kel16sc* d, int n, int s) { return subtract(a, b, d, n, s); }
KelStatus kelsSub_16sc_ISfs(const Kel16sc* a, Kel16sc* d, int n, int s)                   { return subtract(a, d, d, n, s); }
KelStatus kelsSub_32s_Sfs  (const Kel32s* a, const Kel32s* b, Kel32s* d, int n, int s)    { return subtract(a, b, d, n, s); }
KelStatus kelsSub_32s_ISfs (const Kel32s* a, Kel32s* d, int n, int s)                     { return subtract(a, d, d, n, s); }
KelStatus kelsSub_32sc_Sfs (const Kel32sc* a, const Kel32sc* b, Kel32sc* d, int n, int s) { return subtract(a, b, d, n, s); }
KelStatus kelsSub_32sc_ISfs(const Kel32sc* a, Kel32sc* d, int n, int s)                   { return subtract(a, d, d, n, s); }
KelStatus kelsSub_32f      (const Kel32f* a, const Kel32f* b, Kel32f* d, int n)           { return subtract(a, b, d, n); }
KelStatus kelsSub_32f_I    (const Kel32f* a, Kel32f* d, int n)                            { return subtract(a, d, d, n); }
KelStatus kelsSub_32fc     (const Kel32fc* a, const Kel32fc* b, Kel32fc* d, int n)        { return subtract(a, b, d, n); }
KelStatus kelsSub_32fc_I   (const Kel32fc* a, Kel32fc* d, int n)                          { return subtract(a, d, d, n); }
KelStatus kelsSub_64f      (const Kel64f* a, const Kel64f* b, Kel64f* d, int n)           { return subtract(a, b, d, n); }
KelStatus kelsSub_64f_I    (const Kel64f* a, Kel64f* d, int n)                            { return subtract(a, d, d, n); }
KelStatus kelsSub_64fc     (const Kel64fc* a, const Kel64fc* b, Kel64fc* d, int n)        { return subtract(a, b, d, n); }
KelStatus kelsSub_64fc_I   (const Kel64fc* a, Kel64fc* d, int n)                          { return subtract(a, d, d, n); }

KelStatus kelsMul_8u_Sfs    (const Kel8u* a, const Kel8u* b, Kel8u* d, int n, int s)       { return multiply(a, b, d, n, s); }
KelStatus kelsMul_8u_ISfs   (const Kel8u* a, Kel8u* d, int n, int s)                       { return multiply(a, d, d, n, s); }
KelStatus kelsMul_8u16u     (const Kel8u* a, const Kel8u* b, Kel16u* d, int n)             { return multiply(a, b, d, n); }
KelStatus kelsMul_16s       (const Kel16s* a, const Kel16s* b, Kel16s* d, int n)           { return multiply(a, b, d, n); }
KelStatus kelsMul_16s_I     (const Kel16s* a, Kel16s* d, int n)                            { return multiply(a, d, d, n); }
KelStatus kelsMul_16s_Sfs   (const Kel16s* a, const Kel16s* b, Kel16s* d, int n, int s)    { return multiply(a, b, d, n, s); }
KelStatus kelsMul_16s_ISfs  (const Kel16s* a, Kel16s* d, int n, int s)                     { return multiply(a, d, d, n, s); }
KelStatus kelsMul_16s32f    (const Kel16s* a, const Kel16s* b, Kel32f* d, int n)           { return multiply(a, b, d, n); }
KelStatus kelsMul_16s32s_Sfs(const Kel16s* a, const Kel16s* b, Kel32s* d, int n, int s)    { return multiply(a, b, d, n, s); }
KelStatus kelsMul_16u16s_Sfs(const Kel16u* a, const Kel16s* b, Kel16s* d, int n, int s)    { return multiply(a, b, d, n, s); }
KelStatus kelsMul_16sc_Sfs  (const Kel16sc* a, const Kel16sc* b, Kel16sc* d, int n, int s) { return multiply(a, b, d, n, s); }
KelStatus kelsMul_16sc_ISfs (const Kel16sc* a, Kel16sc* d, int n, int s)                   { return multiply(a, d, d, n, s); }
KelStatus kelsMul_32s_Sfs   (const Kel32s* a, const Kel32s* b, Kel32s* d, int n, int s)    { return multiply(a, b, d, n, s); }
KelStatus kelsMul_32s_ISfs  (const Kel32s* a, Kel32s* d, int n, int s)                     { return multiply(a, d, d, n, s); }
KelStatus kelsMul_32sc_Sfs  (const Kel32sc* a, const Kel32sc* b, Kel32sc* d, int n, int s) { return multiply(a, b, d, n, s); }
KelStatus kelsMul_32sc_ISfs (const Kel32sc* a, Kel32sc* d, int n, int s)                   { return multiply(a, d, d, n, s); }
KelStatus kelsMul_32f       (const Kel32f* a, const Kel32f* b, Kel32f* d, int n)           { return multiply(a, b, d, n); }
KelStatus kelsMul_32f_I     (const Kel32f* a, Kel32f* d, int n)                            { return multiply(a, d, d, n); }
KelStatus kelsMul_32fc      (const Kel32fc* a, const Kel32fc* b, Kel32fc* d, int n)        { return multiply(a, b, d, n); }
KelStatus kelsMul_32fc_I    (const Kel32fc* a, Kel32fc* d, int n)                          { return multiply(a, d, d, n); }
KelStatus kelsMul_64f       (const Kel64f* a, const Kel64f* b, Kel64f* d, int n)           { return multiply(a, b, d, n); }
KelStatus kelsMul_64f_I     (const Kel64f* a, Kel64f* d, int n)                            { return multiply(a, d, d, n); }
KelStatus kelsMul_64fc      (const Kel64fc* a, const Kel64fc* b, Kel64fc* d, int n)        { return multiply(a, b, d, n); }
KelStatus kelsMul_64fc_I    (const Kel64fc* a, Kel64fc* d, int n)                          { return multiply(a, d, d, n); }

KelStatus kelsAddC_8u_Sfs   (const Kel8u* a, Kel8u val, Kel8u* d, int n, int s)       { return add_constant(a, val, d, n, s); }
KelStatus kelsAddC_8u_ISfs  (Kel8u val, Kel8u* d, int n, int s)                       { return add_constant(d, val, d, n, s); }
KelStatus kelsAddC_16s_I    (Kel16s val, Kel16s* d, int n)                            { return add_constant(d, val, d, n); }
KelStatus kelsAddC_16s_Sfs  (const Kel16s* a, Kel16s val, Kel16s* d, int n, int s)    { return add_constant(a, val, d, n, s); }
KelStatus kelsAddC_16s_ISfs (Kel16s val, Kel16s* d, int n, int s)                     { return add_constant(d, val, d, n, s); }
KelStatus kelsAddC_16sc_Sfs (const Kel16sc* a, Kel16sc val, Kel16sc* d, int n, int s) { return add_constant(a, val, d, n, s); }
KelStatus kelsAddC_16sc_ISfs(Kel16sc val, Kel16sc* d, int n, int s)                   { return add_constant(d, val, d, n, s); }
KelStatus kelsAddC_32s_Sfs  (const Kel32s* a, Kel32s val, Kel32s* d, int n, int s)    { return add_constant(a, val, d, n, s); }
KelStatus kelsAddC_32s_ISfs (Kel32s val, Kel32s* d, int n, int s)                     { return add_constant(d, val, d, n, s); }
KelStatus kelsAddC_32sc_Sfs (const Kel32sc* a, Kel32sc val, Kel32sc* d, int n, int s) { return add_constant(a, val, d, n, s); }
KelStatus kelsAddC_32sc_ISfs(Kel32sc val, Kel32sc* d, int n, int s)                   { return add_constant(d, val, d, n, s); }
KelStatus kelsAddC_32f      (const Kel32f* a, Kel32f val, Kel32f* d, int n)           { return add_constant(a, val, d, n); }
KelStatus kelsAddC_32f_I    (Kel32f val, Kel32f* d, int n)                            { return add_constant(d, val, d, n); }
KelStatus kelsAddC_32fc     (const Kel32fc* a, Kel32fc val, Kel32fc* d, int n)        { return add_constant(a, val, d, n); }
KelStatus kelsAddC_32fc_I   (Kel32fc val, Kel32fc* d, int n)                          { return add_constant(d, val, d, n); }
KelStatus kelsAddC_64f      (const Kel64f* a, Kel64f val, Kel64f* d, int n)           { return add_constant(a, val, d, n); }
KelStatus kelsAddC_64f_I    (Kel64f val, Kel64f* d, int n)                            { return add_constant(d, val, d, n); }
KelStatus kelsAddC_64fc     (const Kel64fc* a, Kel64fc val, Kel64fc* d, int n)        { return add_constant(a, val, d, n); }
KelStatus kelsAddC_64fc_I   (Kel64fc val, Kel64fc* d, int n)                          { return add_constant(d, val, d, n); }

KelStatus kelsSubC_8u_Sfs   (const Kel8u* a, Kel8u val, Kel8u* d, int n, int s)       { return subtract_constant(a, val, d, n, s); }
KelStatus kelsSubC_8u_ISfs  (Kel8u val, Kel8u* d, int n, int s)                       { return subtract_constant(d, val, d, n, s); }
KelStatus kelsSubC_16s_I    (Kel16s val, Kel16s* d, int n)                            { return subtract_constant(d, val, d, n); }
KelStatus kelsSubC_16s_Sfs  (const Kel16s* a, Kel16s val, Kel16s* d, int n, int s)    { return subtract_constant(a, val, d, n, s); }
KelStatus kelsSubC_16s_ISfs (Kel16s val, Kel16s* d, int n, int s)                     { return subtract_constant(d, val, d, n, s); }
KelStatus kelsSubC_16sc_Sfs (const Kel16sc* a, Kel16sc val, Kel16sc* d, int n, int s) { return subtract_constant(a, val, d, n, s); }
KelStatus kelsSubC_16sc_ISfs(Kel16sc val, Kel16sc* d, int n, int s)                   { return subtract_constant(d, val, d, n, s); }
KelStatus kelsSubC_32s_Sfs  (const Kel32s* a, Kel32s val, Kel32s* d, int n, int s)    { return subtract_constant(a, val, d, n, s); }
KelStatus kelsSubC_32s_ISfs (Kel32s val, Kel32s* d, int n, int s)                     { return subtract_constant(d, val, d, n, s); }
KelStatus kelsSubC_32sc_Sfs (const Kel32sc* a, Kel32sc val, Kel32sc* d, int n, int s) { return subtract_constant(a, val, d, n, s); }
KelStatus kelsSubC_32sc_ISfs(Kel32sc val, Kel32sc* d, int n, int s)                   { return subtract_constant(d, val, d, n, s); }
KelStatus kelsSubC_32f      (const Kel32f* a, Kel32f val, Kel32f* d, int n)           { return subtract_constant(a, val, d, n); }
KelStatus kelsSubC_32f_I    (Kel32f val, Kel32f* d, int n)                            { return subtract_constant(d, val, d, n); }
KelStatus kelsSubC_32fc     (const Kel32fc* a, Kel32fc val, Kel32fc* d, int n)        { return subtract_constant(a, val, d, n); }
KelStatus kelsSubC_32fc_I   (Kel32fc val, Kel32fc* d, int n)                          { return subtract_constant(d, val, d, n); }
KelStatus kelsSubC_64f      (const Kel64f* a, Kel64f val, Kel64f* d, int n)           { return subtract_constant(a, val, d, n); }
KelStatus kelsSubC_64f_I    (Kel64f val, Kel64f* d, int n)                            { return subtract_constant(d, val, d, n); }
KelStatus kelsSubC_64fc     (const Kel64fc* a, Kel64fc val, Kel64fc* d, int n)        { return subtract_constant(a, val, d, n); }
KelStatus kelsSubC_64fc_I   (Kel64fc val, Kel64fc* d, int n)                          { return subtract_constant(d, val, d, n); }

KelStatus kelsMulC_8u_Sfs   (const Kel8u* a, Kel8u val, Kel8u* d, int n, int s)       { return multiply_by_constant(a, val, d, n, s); }
KelStatus kelsMulC_8u_ISfs  (Kel8u val, Kel8u* d, int n, int s)                       { return multiply_by_constant(d, val, d, n, s); }
KelStatus kelsMulC_16s_I    (Kel16s val, Kel16s* d, int n)                            { return multiply_by_constant(d, val, d, n); }
KelStatus kelsMulC_16s_Sfs  (const Kel16s* a, Kel16s val, Kel16s* d, int n, int s)    { return multiply_by_constant(a, val, d, n, s); }
KelStatus kelsMulC_16s_ISfs (Kel16s val, Kel16s* d, int n, int s)                     { return multiply_by_constant(d, val, d, n, s); }
KelStatus kelsMulC_16sc_Sfs (const Kel16sc* a, Kel16sc val, Kel16sc* d, int n, int s) { return multiply_by_constant(a, val, d, n, s); }
KelStatus kelsMulC_16sc_ISfs(Kel16sc val, Kel16sc* d, int n, int s)                   { return multiply_by_constant(d, val, d, n, s); }
KelStatus kelsMulC_32s_Sfs  (const Kel32s* a, Kel32s val, Kel32s* d, int n, int s)    { return multiply_by_constant(a, val, d, n, s); }
KelStatus kelsMulC_32s_ISfs (Kel32s val, Kel32s* d, int n, int s)                     { return multiply_by_constant(d, val, d, n, s); }
KelStatus kelsMulC_32sc_Sfs (const Kel32sc* a, Kel32sc val, Kel32sc* d, int n, int s) { return multiply_by_constant(a, val, d, n, s); }
KelStatus kelsMulC_32sc_ISfs(Kel32sc val, Kel32sc* d, int n, int s)                   { return multiply_by_constant(d, val, d, n, s); }
KelStatus kelsMulC_32f      (const Kel32f* a, Kel32f val, Kel32f* d, int n)           { return multiply_by_constant(a, val, d, n); }
KelStatus kelsMulC_32f_I    (Kel32f val, Kel32f* d, int n)                            { return multiply_by_constant(d, val, d, n); }
KelStatus kelsMulC_32fc     (const Kel32fc* a, Kel32fc val, Kel32fc* d, int n)        { return multiply_by_constant(a, val, d, n); }
KelStatus kelsMulC_32fc_I   (Kel32fc val, Kel32fc* d, int n)                          { return multiply_by_constant(d, val, d, n); }
KelStatus kelsMulC_64f      (const Kel64f* a, Kel64f val, Kel64f* d, int n)           { return multiply_by_constant(a, val, d, n); }
KelStatus kelsMulC_64f_I    (Kel64f val, Kel64f* d, int n)                            { return multiply_by_constant(d, val, d, n); }
KelStatus kelsMulC_64fc     (const Kel64fc* a, Kel64fc val, Kel64fc* d, int n)        { return multiply_by_constant(a, val, d, n); }
KelStatus kelsMulC_64fc_I   (Kel64fc val, Kel64fc* d, int n)                          { return multiply_by_constant(d, val, d, n); }

KelStatus kelsSubCRev_8u_Sfs   (const Kel8u* a, Kel8u val, Kel8u* d, int n, int s)       { return subtract_from_constant(a, val, d, n, s); }
KelStatus kelsSubCRev_8u_ISfs  (Kel8u val, Kel8u* d, int n, int s)                       { return subtract_from_constant(d, val, d, n, s); }
KelStatus kelsSubCRev_16s_Sfs  (const Kel16s* a, Kel16s val, Kel16s* d, int n, int s)    { return subtract_from_constant(a, val, d, n, s); }
KelStatus kelsSubCRev_16s_ISfs (Kel16s val, Kel16s* d, int n, int s)                     { return subtract_from_constant(d, val, d, n, s); }
KelStatus kelsSubCRev_16sc_Sfs (const Kel16sc* a, Kel16sc val, Kel16sc* d, int n, int s) { return subtract_from_constant(a, val, d, n, s); }
KelStatus kelsSubCRev_16sc_ISfs(Kel16sc val, Kel16sc* d, int n, int s)                   { return subtract_from_constant(d, val, d, n, s); }
KelStatus kelsSubCRev_32s_Sfs  (const Kel32s* a, Kel32s val, Kel32s* d, int n, int s)    { return subtract_from_constant(a, val, d, n, s); }
KelStatus kelsSubCRev_32s_ISfs (Kel32s val, Kel32s* d, int n, int s)                     { return subtract_from_constant(d, val, d, n, s); }
KelStatus kelsSubCRev_32sc_Sfs (const Kel32sc* a, Kel32sc val, Kel32sc* d, int n, int s) { return subtract_from_constant(a, val, d, n, s); }
KelStatus kelsSubCRev_32sc_ISfs(Kel32sc val, Kel32sc* d, int n, int s)                   { return subtract_from_constant(d, val, d, n, s); }
KelStatus kelsSubCRev_32f      (const Kel32f* a, Kel32f val, Kel32f* d, int n)           { return subtract_from_constant(a, val, d, n); }
KelStatus kelsSubCRev_32f_I    (Kel32f val, Kel32f* d, int n)                            { return subtract_from_constant(d, val, d, n); }
KelStatus kelsSubCRev_32fc     (const Kel32fc* a, Kel32fc val, Kel32fc* d, int n)        { return subtract_from_constant(a, val, d, n); }
KelStatus kelsSubCRev_32fc_I   (Kel32fc val, Kel32fc* d, int n)                          { return subtract_from_constant(d, val, d, n); }
KelStatus kelsSubCRev_64f      (const Kel64f* a, Kel64f val, Kel64f* d, int n)           { return subtract_from_constant(a, val, d, n); }
KelStatus kelsSubCRev_64f_I    (Kel64f val, Kel64f* d, int n)                            { return subtract_from_constant(d, val, d, n); }
KelStatus kelsSubCRev_64fc     (const Kel64fc* a, Kel64fc val, Kel64fc* d, int n)        { return subtract_from_constant(a, val, d, n); }
KelStatus kelsSubCRev_64fc_I   (Kel64fc val, Kel64fc* d, int n)                          { return subtract_from_constant(d, val, d, n); }

KelStatus kelsAbs_16s  (const Kel16s* a, Kel16s* d, int n) { return absolute(a, d, n); }
KelStatus kelsAbs_16s_I(Kel16s* d, int n)                  { return absolute(d, d, n); }
KelStatus kelsAbs_32f  (const Kel32f* a, Kel32f* d, int n) { return absolute(a, d, n); }
KelStatus kelsAbs_32f_I(Kel32f* d, int n)                  { return absolute(d, d, n); }
KelStatus kelsAbs_64f  (const Kel64f* a, Kel64f* d, int n) { return absolute(a, d, n); }
KelStatus kelsAbs_64f_I(Kel64f* d, int n)                  { return absolute(d, d, n); }
}
// clang-format on
