// Logic and shifts, beside a sum of the same type: it moves the same bytes, or more.
#include "vectors.h"

namespace bench {
namespace {

template <class Call, class Sum>
void beside_sum(const char* function, Call call, Sum sum) {
    contend_vectors("logic", function, ours, call);
    contend_vectors("logic", function, "kelsAdd", sum);
}

const auto sum_8u = [](const Kel8u* a, const Kel8u* b, Kel8u* d, int n) { kelsAdd_8u_Sfs(a, b, d, n, 0); };
const auto sum_8u_with_constant = [](const Kel8u* a, Kel8u* d, int n) { kelsAddC_8u_Sfs(a, 77, d, n, 0); };
const auto sum_16s_with_constant = [](const Kel16s* a, Kel16s* d, int n) { kelsAddC_16s_Sfs(a, 77, d, n, 0); };
const auto sum_32s_with_constant = [](const Kel32s* a, Kel32s* d, int n) { kelsAddC_32s_Sfs(a, 77, d, n, 0); };

/// By three bits.
template <class T, class Sum>
void shifts(const char* function, KelStatus (*call)(const T*, int, T*, int), Sum sum) {
    beside_sum(
        function, [=](const T* x, T* d, int n) { call(x, 3, d, n); }, sum);
}

const Registration logic([] {
    beside_sum("kelsAnd_8u", kelsAnd_8u, sum_8u);
    beside_sum("kelsXor_16u", kelsXor_16u, kelsAdd_16u);
    beside_sum(
        "kelsOrC_8u", [](const Kel8u* x, Kel8u* d, int n) { kelsOrC_8u(x, 0x81, d, n); }, sum_8u_with_constant);
    beside_sum("kelsNot_8u", kelsNot_8u, sum_8u_with_constant);
    shifts("kelsLShiftC_8u", kelsLShiftC_8u, sum_8u_with_constant);
    shifts("kelsRShiftC_8u", kelsRShiftC_8u, sum_8u_with_constant);
    shifts("kelsLShiftC_16s", kelsLShiftC_16s, sum_16s_with_constant);
    shifts("kelsRShiftC_16s", kelsRShiftC_16s, sum_16s_with_constant);
    shifts("kelsRShiftC_32s", kelsRShiftC_32s, sum_32s_with_constant);
});

} // namespace
} // namespace bench
