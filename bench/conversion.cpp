// Conversions between sample types, and normalisation.
#include "vectors.h"

#include <string>

namespace bench {
namespace {

template <class Call>
void alone(const std::string& function, Call call) {
    contend_vectors("conversion", function.c_str(), ours, call);
}

/// To nearest, with a scale factor that has to be applied.
template <class T, class R>
void rounded(const std::string& function, KelStatus (*call)(const T*, R*, int, int, int)) {
    alone(function, [=](const T* x, R* d, int n) { call(x, d, n, kelRndNear, -7); });
}

const Registration conversion([] {
    alone("kelsConvert_8s16s", kelsConvert_8s16s);
    alone("kelsConvert_8s32f", kelsConvert_8s32f);
    alone("kelsConvert_8u32f", kelsConvert_8u32f);
    alone("kelsConvert_16s32f", kelsConvert_16s32f);
    alone("kelsConvert_16s32f_Sfs", [](const Kel16s* x, Kel32f* d, int n) { kelsConvert_16s32f_Sfs(x, d, n, 15); });
    alone("kelsConvert_32s32f", kelsConvert_32s32f);
    alone("kelsConvert_32s16s", kelsConvert_32s16s);
    alone("kelsConvert_32f64f", kelsConvert_32f64f);
    alone("kelsConvert_64f32f", kelsConvert_64f32f);
    rounded("kelsConvert_32f8s_Sfs", kelsConvert_32f8s_Sfs);
    rounded("kelsConvert_32f8u_Sfs", kelsConvert_32f8u_Sfs);
    rounded("kelsConvert_32f16s_Sfs", kelsConvert_32f16s_Sfs);
    rounded("kelsConvert_32f32s_Sfs", kelsConvert_32f32s_Sfs);
    rounded("kelsConvert_64f32s_Sfs", kelsConvert_64f32s_Sfs);
    alone("kelsNormalize_32f", [](const Kel32f* x, Kel32f* d, int n) { kelsNormalize_32f(x, d, n, 0.1F, 3); });
    alone("kelsNormalize_64f", [](const Kel64f* x, Kel64f* d, int n) { kelsNormalize_64f(x, d, n, 0.1, 3); });
    alone("kelsNormalize_16s_Sfs", [](const Kel16s* x, Kel16s* d, int n) { kelsNormalize_16s_Sfs(x, d, n, 9, 3, 1); });
});

} // namespace
} // namespace bench
