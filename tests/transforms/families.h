// Every transform as the tests see it: a family (FFT, DFT or DCT of one type), a layout of its data, a direction, a
// length. It goes from an array of real numbers to another one.
#pragma once

#include "kels/dct.h"
#include "kels/dft.h"
#include "kels/fft.h"
#include "support/emulation.h"
#include "support/life_cycle.h"
#include "support/random_data.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <climits>
#include <ostream>
#include <string>
#include <type_traits>
#include <vector>

namespace transform_test {

using namespace kels_test;

enum class Layout { interleaved, split, perm, pack, ccs, cosine };

inline constexpr int flags[] = {kelFftNormFwd, kelFftNormInv, kelFftNormSqrt, kelFftNormNone};

template <class Plan>
struct PlanFunctions {
    KelStatus (*make)(Plan**, int size, int flag, int hint);
    KelStatus (*release)(Plan*);
    KelStatus (*buffer_size)(const Plan*, int*);
};

/// Of two functions the first one is the forward transform.
template <class T, class ComplexType, class PlanType, class... Scale>
struct FourierFunctions {
    using Real = T;
    using Complex = ComplexType;
    using Plan = PlanType;
    const char* name;
    PlanFunctions<Plan> complex, split, real;
    KelStatus (*interleaved[2])(const Complex*, Complex*, const Plan*, Scale..., Kel8u*);
    KelStatus (*two_arrays[2])(const T*, const T*, T*, T*, const Plan*, Scale..., Kel8u*);
    KelStatus (*packed[2][3])(const T*, T*, const Plan*, Scale..., Kel8u*); ///< Perm, Pack, CCS
};

template <class T, class PlanType, class... Scale>
struct CosineFunctions {
    using Real = T;
    using Plan = PlanType;
    const char* name;
    PlanFunctions<Plan> plans[2];
    KelStatus (*run[2])(const T*, T*, const Plan*, Scale..., Kel8u*);
};

/// The functions of a transform of one type T, whose complex one is Tc; `scaled` ends the names of those that take a
/// scale factor, an int more.
#define KELS_FOURIER(NAME, PLAN, T, scaled, ...)                                                                       \
    inline constexpr FourierFunctions<Kel##T, Kel##T##c, PLAN##_##T __VA_OPT__(, ) __VA_ARGS__> NAME##_##T = {         \
        #NAME "_" #T,                                                                                                  \
        {kels##NAME##InitAlloc_C_##T##c, kels##NAME##Free_C_##T##c, kels##NAME##GetBufSize_C_##T##c},                  \
        {kels##NAME##InitAlloc_C_##T, kels##NAME##Free_C_##T, kels##NAME##GetBufSize_C_##T},                           \
        {kels##NAME##InitAlloc_R_##T, kels##NAME##Free_R_##T, kels##NAME##GetBufSize_R_##T},                           \
        {kels##NAME##Fwd_CToC_##T##c##scaled, kels##NAME##Inv_CToC_##T##c##scaled},                                    \
        {kels##NAME##Fwd_CToC_##T##scaled, kels##NAME##Inv_CToC_##T##scaled},                                          \
        {{kels##NAME##Fwd_RToPerm_##T##scaled, kels##NAME##Fwd_RToPack_##T##scaled,                                    \
          kels##NAME##Fwd_RToCCS_##T##scaled},                                                                         \
         {kels##NAME##Inv_PermToR_##T##scaled, kels##NAME##Inv_PackToR_##T##scaled,                                    \
          kels##NAME##Inv_CCSToR_##T##scaled}}}

KELS_FOURIER(FFT, KelsFftPlan, 32f, );
KELS_FOURIER(FFT, KelsFftPlan, 64f, );
KELS_FOURIER(FFT, KelsFftPlan, 16s, _Sfs, int);
KELS_FOURIER(DFT, KelsDftPlan, 32f, );
KELS_FOURIER(DFT, KelsDftPlan, 64f, );
KELS_FOURIER(DFT, KelsDftPlan, 16s, _Sfs, int);
#undef KELS_FOURIER

/// Cosine transforms have no flag.
template <class Plan, KelStatus (*make)(Plan**, int, int)>
KelStatus without_flag(Plan** plan, int len, int, int hint) {
    return make(plan, len, hint);
}

#define KELS_COSINE(T, scaled, ...)                                                                                    \
    inline constexpr CosineFunctions<Kel##T, KelsDctPlan_##T __VA_OPT__(, ) __VA_ARGS__> DCT_##T = {                   \
        "DCT_" #T,                                                                                                     \
        {{without_flag<KelsDctPlan_##T, kelsDCTFwdInitAlloc_##T>, kelsDCTFwdFree_##T, kelsDCTFwdGetBufSize_##T},       \
         {without_flag<KelsDctPlan_##T, kelsDCTInvInitAlloc_##T>, kelsDCTInvFree_##T, kelsDCTInvGetBufSize_##T}},      \
        {kelsDCTFwd_##T##scaled, kelsDCTInv_##T##scaled}}

KELS_COSINE(32f, );
KELS_COSINE(64f, );
KELS_COSINE(16s, _Sfs, int);
#undef KELS_COSINE

// Families: how lengths are told, what plans are refused, which lengths are telling

struct Refused {
    int size, flag;
    KelStatus status;
};

/// The scale factor goes to 16-bit functions only.
template <class T, class F, class Plan, class... A>
KelStatus with_scale(F function, const Plan* plan, int scale, Kel8u* buffer, A... arguments) {
    if constexpr (std::is_integral_v<T>)
        return function(arguments..., plan, scale, buffer);
    else
        return function(arguments..., plan, buffer);
}

template <const auto& functions>
struct Fourier {
    using Table = std::remove_cvref_t<decltype(functions)>;
    using Real = typename Table::Real;
    using Plan = typename Table::Plan;
    static constexpr const char* name = functions.name;
    static constexpr Layout layouts[] = {Layout::interleaved, Layout::split, Layout::perm, Layout::pack, Layout::ccs};

    static const PlanFunctions<Plan>& plans(Layout layout, bool) {
        return layout == Layout::interleaved ? functions.complex
               : layout == Layout::split     ? functions.split
                                             : functions.real;
    }
    static KelStatus run(Layout layout, bool inverse, const Real* src, const Real* src_im, Real* dst, Real* dst_im,
                         const Plan* plan, int scale, Kel8u* buffer) {
        using Complex = typename Table::Complex;
        if (layout == Layout::interleaved)
            return with_scale<Real>(functions.interleaved[inverse], plan, scale, buffer,
                                    reinterpret_cast<const Complex*>(src), reinterpret_cast<Complex*>(dst));
        if (layout == Layout::split)
            return with_scale<Real>(functions.two_arrays[inverse], plan, scale, buffer, src, src_im, dst, dst_im);
        return with_scale<Real>(functions.packed[inverse][static_cast<int>(layout) - static_cast<int>(Layout::perm)],
                                plan, scale, buffer, src, dst);
    }
};

/// Complex orders up to this one meet every path: the butterflies, passes in the cache, blocks beyond it, and strips in
/// two and in three sweeps.
inline const int last_order = effort(19, 12);

/// `top` is the highest order of complex plans.
template <const auto& functions, int top>
struct Fft : Fourier<functions> {
    static constexpr int top_order = top;
    static int size(int n) { return std::countr_zero(static_cast<unsigned>(n)); }
    static std::vector<Refused> refused(Layout layout) {
        std::vector<Refused> all;
        for (const int order : {-1, 31, INT_MIN, INT_MAX}) all.push_back({order, 3, kelStatusBadFftOrder});
        for (const int order : {0, 6, 12})
            for (const int flag : {0, 3, 5, 16, -1, INT_MIN}) all.push_back({order, flag, kelStatusBadFftFlag});
        for (int order = top + 1 + (layout >= Layout::perm); order <= 30; ++order)
            all.push_back({order, kelFftNormFwd, kelStatusNoMemory});
        return all;
    }
    static std::vector<int> places() {
        std::vector<int> all;
        for (int order = 0; order <= (sizeof(typename Fourier<functions>::Real) == 2 ? 10 : last_order); ++order)
            all.push_back(1 << order);
        return all;
    }
    static std::vector<int> some_lengths() { return {4, 256, 512, 1 << 15, 1 << 20}; }
    static std::vector<int> lengths_that_allocate() { return {}; }
};

template <const auto& functions>
struct Dft : Fourier<functions> {
    static int size(int n) { return n; }
    static std::vector<Refused> refused(Layout) {
        std::vector<Refused> all;
        for (const int len : {0, -1, INT_MIN}) all.push_back({len, 0, kelStatusBadSize});
        for (const int len : {2, 5, 8, 1000, INT_MAX})
            for (const int flag : {0, 3, 5, 16, -1}) all.push_back({len, flag, kelStatusBadFftFlag});
        for (const int len : {INT_MAX, 1 << 30, (1 << 30) - 1, (1 << 27) + 1})
            all.push_back({len, kelFftNormNone, kelStatusNoMemory});
        return all;
    }
    static std::vector<int> places() {
        return {1,   2,   3,   4,   5,   6,   7,   9,    12,   15,   17,   18,   21,  30,
                35,  45,  60,  77,  91,  97,  100, 127,  135,  150,  151,  180,  181, 194,
                210, 243, 251, 257, 330, 389, 514, 1009, 1155, 1500, 2187, 3000, 4199};
    }
    static std::vector<int> some_lengths() { return {3, 6, 15, 64, 97, 100, 509, 1018, 1500, 4099}; }
    static std::vector<int> lengths_that_allocate() { return {1018, 1500, 4099}; }
};

template <const auto& functions>
struct Dct {
    using Table = std::remove_cvref_t<decltype(functions)>;
    using Real = typename Table::Real;
    using Plan = typename Table::Plan;
    static constexpr const char* name = functions.name;
    static constexpr Layout layouts[] = {Layout::cosine};

    static int size(int n) { return n; }
    static const PlanFunctions<Plan>& plans(Layout, bool inverse) { return functions.plans[inverse]; }
    static KelStatus run(Layout, bool inverse, const Real* src, const Real*, Real* dst, Real*, const Plan* plan,
                         int scale, Kel8u* buffer) {
        return with_scale<Real>(functions.run[inverse], plan, scale, buffer, src, dst);
    }
    static std::vector<Refused> refused(Layout) {
        std::vector<Refused> all;
        for (const int len : {0, -1, INT_MIN}) all.push_back({len, 0, kelStatusBadSize});
        for (const int len : {INT_MAX, (1 << 30) - 1, (1 << 27) + 1}) all.push_back({len, 0, kelStatusNoMemory});
        return all;
    }
    static std::vector<int> places() {
        return {1,  2,   3,   4,   5,   6,   7,   8,   9,   15,  16,   17,   31,   32,   33,   34,   35,   60,   64,
                97, 100, 101, 102, 194, 243, 251, 256, 389, 509, 1000, 1001, 1009, 1018, 2048, 2187, 3000, 4096, 4099};
    }
    static std::vector<int> some_lengths() { return {8, 15, 64, 509, 1018, 3000, 4096}; }
    static std::vector<int> lengths_that_allocate() { return {1018, 3000, 4096}; }
};

using Fft32f = Fft<FFT_32f, 27>;
using Fft64f = Fft<FFT_64f, 26>;
struct Fft16s : Fft<FFT_16s, 27> {
    static std::vector<int> some_lengths() { return {1, 2, 8, 256, 4096}; }
    static std::vector<int> lengths_that_allocate() { return {512, 2048}; }
};
using Dft32f = Dft<DFT_32f>;
using Dft64f = Dft<DFT_64f>;
struct Dft16s : Dft<DFT_16s> {
    static std::vector<int> places() { return {1, 2, 5, 8, 97, 181, 1009}; }
    static std::vector<int> some_lengths() { return places(); }
    static std::vector<int> lengths_that_allocate() { return {2, 5, 8, 97, 181, 1009}; }
};
using Dct32f = Dct<DCT_32f>;
using Dct64f = Dct<DCT_64f>;
struct Dct16s : Dct<DCT_16s> {
    static std::vector<int> places() { return {1, 6, 64, 101, 1009}; }
    static std::vector<int> lengths_that_allocate() { return {8, 101, 1009}; }
};

struct FamilyNames {
    template <class F>
    static std::string GetName(int) {
        return F::name;
    }
};

/// One transform.
template <class F>
struct Case {
    using T = typename F::Real;
    using Plan = typename F::Plan;
    using Values = std::vector<T>;

    Layout layout;
    bool inverse;
    int n;
    int flag = kelFftNormNone, hint = kelHintDefault;

    bool is_complex() const { return layout == Layout::interleaved || layout == Layout::split; }
    std::size_t arrays() const { return layout == Layout::split ? 2 : 1; }
    std::size_t values(bool spectrum) const {
        const int count = layout == Layout::ccs && spectrum ? (n | 1) + 1 : is_complex() ? 2 * n : n;
        return static_cast<std::size_t>(count);
    }
    std::size_t sources() const { return values(inverse); }
    std::size_t results() const { return values(!inverse); }

    const PlanFunctions<Plan>& plans() const { return F::plans(layout, inverse); }
    Owned<Plan> plan() const { return made(plans().make, plans().release, F::size(n), flag, hint); }
    int buffer_size() const {
        int bytes = -1;
        EXPECT_EQ(plans().buffer_size(plan().get(), &bytes), kelStatusOk);
        return bytes;
    }

    /// Two arrays stand one behind the other.
    KelStatus run(const T* src, T* dst, const Plan* plan, int scale = 0, Kel8u* buffer = nullptr) const {
        return F::run(layout, inverse, src, src + n, dst, dst + n, plan, scale, buffer);
    }
    Values transformed(const Values& x, const Plan* plan, int scale = 0) const {
        Values y(results());
        EXPECT_EQ(run(x.data(), y.data(), plan, scale), kelStatusOk);
        return y;
    }
    Values transformed(const Values& x, int scale = 0) const { return transformed(x, plan().get(), scale); }

    Values noise() const {
        Random random("transform " + std::to_string(n));
        if constexpr (std::is_floating_point_v<T>) return uniform<T>(random, sources());
        Values x(sources());
        for (T& v : x) v = static_cast<T>(random.bits());
        return x;
    }

    friend std::ostream& operator<<(std::ostream& out, const Case& c) {
        constexpr const char* names[] = {"interleaved", "split", "Perm", "Pack", "CCS", "cosine"};
        return out << F::name << ' ' << names[static_cast<int>(c.layout)] << (c.inverse ? " inverse" : " forward")
                   << " length " << c.n << " flag " << c.flag << " hint " << c.hint;
    }
};

/// body(case) for every layout and direction of some lengths.
template <class F, class Body>
void for_each_case(const std::vector<int>& lengths, const Body& body, int flag = kelFftNormNone,
                   int hint = kelHintDefault) {
    for (const Layout layout : F::layouts)
        for (const bool inverse : {false, true})
            for (const int n : lengths) {
                const Case<F> c = {layout, inverse, n, flag, hint};
                SCOPED_TRACE(testing::Message() << c);
                body(c);
            }
}

/// Interleaved numbers as two arrays one behind the other.
template <class T>
std::vector<T> apart(const std::vector<T>& pairs) {
    std::vector<T> parts(pairs.size());
    for (std::size_t i = 0; i < pairs.size(); ++i) parts[i % 2 * (pairs.size() / 2) + i / 2] = pairs[i];
    return parts;
}

} // namespace transform_test
