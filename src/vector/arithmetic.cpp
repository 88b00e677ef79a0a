// Element-wise arithmetic.

#include "kels/arithmetic.h"

#include "frame/calling_frame.h"
#include "vector/complex_product.h"

namespace kels {
namespace {

template <class T>
KelStatus multiply(const T* a, const T* b, T* d, int len) {
    return vector_call({a, b}, len, [=] { multiply_complex(a, b, d, len); });
}

} // namespace
} // namespace kels

using namespace kels;

// clang-format off
extern "C" {
KelStatus kelsMul_32fc_I(const Kel32fc* src, Kel32fc* srcDst, int len) { return multiply(src, srcDst, srcDst, len); }
KelStatus kelsMul_64fc_I(const Kel64fc* src, Kel64fc* srcDst, int len) { return multiply(src, srcDst, srcDst, len); }
}
// clang-format on
