// Thresholds, beside a sum of the same type, or a copy where most elements stay as they are.
#include "vectors.h"

#include <type_traits>

namespace bench {
namespace {

/// With `values` behind the length.
template <class T, class... Values>
void alone(const char* function, KelStatus (*call)(const T*, T*, int, Values...),
           std::type_identity_t<Values>... values) {
    contend_vectors("thresholds", function, ours, [=](const T* x, T* d, int n) { call(x, d, n, values...); });
}

template <class T>
void beside_sum(const char* function, KelStatus (*sum)(const T*, const T*, T*, int)) {
    contend_vectors("thresholds", function, "kelsAdd", [=](const T* x, T* d, int n) { sum(x, x, d, n); });
}

template <class T>
void beside_copy(const char* function, KelStatus (*copy)(const T*, T*, int)) {
    contend_vectors("thresholds", function, "kelsCopy", [=](const T* x, T* d, int n) { copy(x, d, n); });
}

const Registration thresholds([] {
    alone("kelsThreshold_LT_16s", kelsThreshold_LT_16s, -100);
    beside_sum("kelsThreshold_LT_16s", kelsAdd_16s);
    alone("kelsThreshold_GTVal_16s", kelsThreshold_GTVal_16s, 100, 0);
    beside_sum("kelsThreshold_GTVal_16s", kelsAdd_16s);
    alone("kelsThreshold_LT_32f", kelsThreshold_LT_32f, 0.25F);
    beside_sum("kelsThreshold_LT_32f", kelsAdd_32f);
    alone("kelsThreshold_GT_32f -", kelsThreshold_GT_32f, -0.25F);
    beside_sum("kelsThreshold_GT_32f -", kelsAdd_32f);
    alone("kelsThreshold_GTVal_32f", kelsThreshold_GTVal_32f, 0.25F, 0.0F);
    beside_sum("kelsThreshold_GTVal_32f", kelsAdd_32f);
    alone("kelsThreshold_LT_64f", kelsThreshold_LT_64f, 0.25);
    beside_sum("kelsThreshold_LT_64f", kelsAdd_64f);
    contend_vectors("thresholds", "kelsThreshold_LT_64f_I", ours,
                    [](Kel64f* d, int n) { kelsThreshold_LT_64f_I(d, n, 0.25); });
    contend_vectors("thresholds", "kelsThreshold_LT_64f_I", "kelsAdd",
                    [](Kel64f* d, int n) { kelsAdd_64f_I(d, d, n); });
    // Noise has no magnitude below 1 but zeros.
    alone("kelsThreshold_LT_16sc 1", kelsThreshold_LT_16sc, 1);
    beside_copy("kelsThreshold_LT_16sc 1", kelsCopy_16sc);
    alone("kelsThreshold_GT_16sc 20000", kelsThreshold_GT_16sc, 20000);
    alone("kelsThreshold_LTVal_16sc", kelsThreshold_LTVal_16sc, 20000, Kel16sc{1, 2});
    beside_copy("kelsThreshold_LTVal_16sc", kelsCopy_16sc);
    alone("kelsThreshold_GT_32fc 2", kelsThreshold_GT_32fc, 2);
    beside_copy("kelsThreshold_GT_32fc 2", kelsCopy_32fc);
    alone("kelsThreshold_GT_32fc 0.5", kelsThreshold_GT_32fc, 0.5F);
    alone("kelsThreshold_GT_64fc 0.5", kelsThreshold_GT_64fc, 0.5);
    alone("kelsThreshold_GTVal_32fc", kelsThreshold_GTVal_32fc, 0.5F, Kel32fc{1, 2});
    alone("kelsThreshold_GTVal_64fc", kelsThreshold_GTVal_64fc, 0.5, Kel64fc{1, 2});
    alone("kelsThreshold_LTInv_32f", kelsThreshold_LTInv_32f, 0.25F);
    contend_vectors("thresholds", "kelsThreshold_LTInv_32f", "kelsDiv",
                    [](const Kel32f* x, Kel32f* d, int n) { kelsDiv_32f(x, x, d, n); });
    alone("kelsThreshold_LTInv_64f", kelsThreshold_LTInv_64f, 0.25);
    alone("kelsThreshold_LTInv_32fc", kelsThreshold_LTInv_32fc, 0.25F);
    alone("kelsThreshold_LTInv_64fc", kelsThreshold_LTInv_64fc, 0.25);
});

} // namespace
} // namespace bench
