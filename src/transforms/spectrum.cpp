// Arithmetic on packed real spectra: the real bins by themselves, the others as one complex vector.

#include "kels/spectrum.h"

#include "frame/calling_frame.h"
#include "vector/complex_product.h"

namespace kels {
namespace {

template <class T>
struct ComplexOf;
template <>
struct ComplexOf<Kel32f> {
    using type = Kel32fc;
};
template <>
struct ComplexOf<Kel64f> {
    using type = Kel64fc;
};

/// Perm layout: one real bin, two where the length is even, then complex bins.
template <class T>
KelStatus multiply_perm(const T* a, const T* b, T* d, int len) {
    return vector_call({a, b, d}, len, [=] {
        using Bin = typename ComplexOf<T>::type;
        const int reals = len % 2 == 0 ? 2 : 1;
        for (int i = 0; i < reals; ++i) d[i] = a[i] * b[i];
        multiply_complex(reinterpret_cast<const Bin*>(a + reals), reinterpret_cast<const Bin*>(b + reals),
                         reinterpret_cast<Bin*>(d + reals), (len - reals) / 2);
    });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsMulPerm_32f  (const Kel32f* a, const Kel32f* b, Kel32f* d, int len) { return multiply_perm(a, b, d, len); }
KelStatus kelsMulPerm_64f  (const Kel64f* a, const Kel64f* b, Kel64f* d, int len) { return multiply_perm(a, b, d, len); }
KelStatus kelsMulPerm_32f_I(const Kel32f* src, Kel32f* srcDst, int len) { return multiply_perm(src, srcDst, srcDst, len); }
KelStatus kelsMulPerm_64f_I(const Kel64f* src, Kel64f* srcDst, int len) { return multiply_perm(src, srcDst, srcDst, len); }
}
// clang-format on
