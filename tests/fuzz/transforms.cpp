// Plans of every transform: out of place and in place, with a work buffer and without, and there and back.

#include "fuzz/sequence.h"
#include "kels/dct.h"
#include "kels/dft.h"

namespace {

using namespace kels_test;

constexpr int flags[] = {kelFftNormFwd, kelFftNormInv, kelFftNormSqrt, kelFftNormNone};

/// How plans count points, mostly few.
struct FFTSize {
    static int draw(Input& in) { return in.below(in.one_in(32) ? 16 : 11); }
    static int points(int order) { return 1 << order; }
};
struct DFTSize {
    static int draw(Input& in) { return in.one_in(32) ? 1 + in.below(20000) : in.length(1500); }
    static int points(int len) { return len; }
};

/// Calls with the scale factor where a transform has one.
template <class Function, class... A>
KelStatus call(Function function, int scale, Kel8u* buffer, A... arguments) {
    if constexpr (std::is_invocable_v<Function, A..., Kel8u*>)
        return function(arguments..., buffer);
    else
        return function(arguments..., scale, buffer);
}

/// A work buffer as large as told, or null.
template <class Plan>
class WorkBuffer {
public:
    WorkBuffer(Input& in, const Plan* plan, KelStatus (*size_of)(const Plan*, int*))
        : bytes(size(plan, size_of)), given(in.below(2) == 0), memory(bytes, in.edge()) {}
    Kel8u* data() { return given ? memory.data() : nullptr; }

private:
    std::size_t bytes;
    bool given;
    GuardedArray<Kel8u> memory;

    static std::size_t size(const Plan* plan, KelStatus (*size_of)(const Plan*, int*)) {
        int told = -1;
        EXPECT_EQ(size_of(plan, &told), kelStatusOk);
        EXPECT_GE(told, 0);
        return static_cast<std::size_t>(told);
    }
};

/// One transform of `count` values into `room` by two ways.
template <class T, class Plan, class Function>
std::vector<T> transformed(Input& in, Function function, const Plan* plan, KelStatus (*size_of)(const Plan*, int*),
                           const std::vector<T>& x, std::size_t room, int scale) {
    WorkBuffer<Plan> buffer(in, plan, size_of), other(in, plan, size_of);
    const GuardedArray<T> source(x, in.edge());
    const auto y =
        results<T>(in, room, [&](T* to) { return call(function, scale, buffer.data(), source.data(), to, plan); });
    auto same = results_in_place(
        in, x, [&](T* to) { return call(function, scale, other.data(), static_cast<const T*>(to), to, plan); }, room);
    same.resize(room);
    expect_same(y, same, "in place");
    return y;
}

template <class T>
constexpr double eps = type_of<T>().kind == Kind::f64 ? 0x1p-52 : 0x1p-23;
template <class T>
constexpr bool is_integer = type_of<T>().kind == Kind::s16;

/// There and back again: `gain` times the signal. Integers have been rounded on the way.
template <class T>
void expect_back(const std::vector<T>& x, const std::vector<T>& back, double gain) {
    if (is_integer<T>) return;
    const double tolerance = 40 * eps<T> * gain * std::sqrt(1 + magnitude(x));
    const Parts<T> parts(x, back);
    for (std::size_t i = 0; i < parts.a.size(); ++i)
        ASSERT_NEAR(gain * parts.a[i], parts.b[i], tolerance)
            << "there and back, part " << i << " of " << parts.a.size();
}

double gain_of(int flag, int n) { return flag == kelFftNormNone ? n : 1; }

template <class T, class Size, auto make, auto release, auto size_of, auto stranger, auto forward, auto inverse>
void drive_complex(Input& in) {
    do {
        const int size = Size::draw(in), flag = flags[in.below(4)], n = Size::points(size), scale = in.below(20) - 4;
        const int hint = in.below(4);
        const auto plan = made(in, release, [=](auto** to) { return make(to, size, flag, hint); });
        const auto x = in.data<T>(n, Style::tame);
        const auto y = transformed(in, forward, static_cast<const typename decltype(plan)::element_type*>(plan.get()),
                                   size_of, x, x.size(), scale);
        expect_back(x,
                    transformed(in, inverse, static_cast<const typename decltype(plan)::element_type*>(plan.get()),
                                size_of, y, y.size(), scale),
                    gain_of(flag, n));
        EXPECT_EQ(stranger(plan.get()), kelStatusContextMismatch);
    } while (in.more());
}

/// Perm and Pack have as many values as there are samples, CCS both parts of every bin.
enum Layout { Perm, Pack, CCS };

template <class T, class Size, auto make, auto release, auto size_of, auto stranger, auto forward, auto inverse,
          Layout layout>
void drive_real(Input& in) {
    do {
        const int size = Size::draw(in), flag = flags[in.below(4)], n = Size::points(size), scale = in.below(20) - 4;
        const int hint = in.below(4);
        const auto plan = made(in, release, [=](auto** to) { return make(to, size, flag, hint); });
        const auto* use = static_cast<const typename decltype(plan)::element_type*>(plan.get());
        const auto x = in.data<T>(n, Style::tame);
        const auto room = static_cast<std::size_t>(layout == CCS ? n / 2 * 2 + 2 : n);
        const auto y = transformed(in, forward, use, size_of, x, room, scale);
        WorkBuffer buffer(in, use, size_of);
        const GuardedArray<T> spectrum(y, in.edge());
        const auto back = results<T>(
            in, x.size(), [&](T* to) { return call(inverse, scale, buffer.data(), spectrum.data(), to, use); });
        auto same = results_in_place(
            in, y, [&](T* to) { return call(inverse, scale, buffer.data(), static_cast<const T*>(to), to, use); });
        same.resize(x.size());
        expect_same(back, same, "inverse in place");
        expect_back(x, back, gain_of(flag, n));
        EXPECT_EQ(stranger(plan.get()), kelStatusContextMismatch);
    } while (in.more());
}

/// Real and imaginary parts in arrays of their own give what they give together.
template <class T, class Complex, class Size, auto make, auto release, auto size_of, auto make_interleaved,
          auto release_interleaved, auto function, auto interleaved>
void drive_split(Input& in) {
    do {
        const int size = Size::draw(in), flag = flags[in.below(4)], n = Size::points(size), scale = in.below(20) - 4;
        const int hint = in.below(4);
        const auto plan = made(in, release, [=](auto** to) { return make(to, size, flag, hint); });
        const auto* use = static_cast<const typename decltype(plan)::element_type*>(plan.get());
        const auto joint =
            made(in, release_interleaved, [=](auto** to) { return make_interleaved(to, size, flag, hint); });
        const auto* use_joint = static_cast<const typename decltype(plan)::element_type*>(joint.get());
        const auto re = in.data<T>(n, Style::tame), im = in.data<T>(n, Style::tame);
        const auto count = static_cast<std::size_t>(n);
        WorkBuffer buffer(in, use, size_of);
        const bool in_place = in.below(2) == 0;
        const GuardedArray<T> source_re(re, in.edge()), source_im(im, in.edge());
        GuardedArray<T> to_re(re, in.edge()), to_im(count, in.edge());
        EXPECT_EQ(call_again_without_memory(in,
                                            [&] {
                                                return call(function, scale, buffer.data(),
                                                            in_place ? static_cast<const T*>(to_re.data())
                                                                     : source_re.data(),
                                                            source_im.data(), to_re.data(), to_im.data(), use);
                                            }),
                  kelStatusOk);
        std::vector<Complex> x(count), y(count);
        for (std::size_t i = 0; i < count; ++i) x[i] = {re[i], im[i]};
        EXPECT_EQ(call(interleaved, scale, static_cast<Kel8u*>(nullptr), static_cast<const Complex*>(x.data()),
                       y.data(), use_joint),
                  kelStatusOk);
        std::vector<T> want_re, want_im;
        for (const Complex& z : y) want_re.push_back(z.re), want_im.push_back(z.im);
        const double noise = 40 * eps<T> * std::sqrt(n) * (1 + std::sqrt(n));
        const double tolerance = is_integer<T> ? 1 + std::ldexp(32000 * noise, -scale) : noise;
        expect_near(to_re.values(), want_re, tolerance, "real parts");
        expect_near(to_im.values(), want_im, tolerance, "imaginary parts");
        EXPECT_EQ(release_interleaved(plan.get()), kelStatusContextMismatch);
    } while (in.more());
}

template <class T, auto make, auto release, auto size_of, auto function, auto make_back, auto release_back,
          auto size_of_back, auto back>
void drive_cosine(Input& in) {
    do {
        const int len = DFTSize::draw(in), scale = in.below(20) - 4;
        const int hint = in.below(4);
        const auto plan = made(in, release, [=](auto** to) { return make(to, len, hint); });
        const auto plan_back = made(in, release_back, [=](auto** to) { return make_back(to, len, hint); });
        using Plan = const typename decltype(plan)::element_type;
        const auto x = in.data<T>(len, Style::tame);
        const auto y = transformed(in, function, static_cast<Plan*>(plan.get()), size_of, x, x.size(), scale);
        expect_back(x, transformed(in, back, static_cast<Plan*>(plan_back.get()), size_of_back, y, y.size(), scale), 1);
        EXPECT_EQ(release_back(plan.get()), kelStatusContextMismatch);
    } while (in.more());
}

#define KELS_PLAN(kind, plan) kels##kind##InitAlloc_##plan, kels##kind##Free_##plan, kels##kind##GetBufSize_##plan
#define KELS_SPLIT(kind, suffix, direction, scaled)                                                                    \
    drive_split<Kel##suffix, Kel##suffix##c, kind##Size, KELS_PLAN(kind, C_##suffix),                                  \
                kels##kind##InitAlloc_C_##suffix##c, kels##kind##Free_C_##suffix##c,                                   \
                kels##kind##direction##_CToC_##suffix##scaled, kels##kind##direction##_CToC_##suffix##c##scaled>
#define KELS_REAL(kind, suffix, layout, scaled)                                                                        \
    drive_real<Kel##suffix, kind##Size, KELS_PLAN(kind, R_##suffix), kels##kind##Free_C_##suffix,                      \
               kels##kind##Fwd_RTo##layout##_##suffix##scaled, kels##kind##Inv_##layout##ToR_##suffix##scaled, layout>
#define KELS_TRANSFORMS(kind, suffix, scaled)                                                                          \
    drive_complex<Kel##suffix##c, kind##Size, KELS_PLAN(kind, C_##suffix##c), kels##kind##Free_C_##suffix,             \
                  kels##kind##Fwd_CToC_##suffix##c##scaled, kels##kind##Inv_CToC_##suffix##c##scaled>,                 \
        KELS_SPLIT(kind, suffix, Fwd, scaled), KELS_SPLIT(kind, suffix, Inv, scaled),                                  \
        KELS_REAL(kind, suffix, Perm, scaled), KELS_REAL(kind, suffix, Pack, scaled),                                  \
        KELS_REAL(kind, suffix, CCS, scaled)
#define KELS_COSINE(suffix, scaled)                                                                                    \
    drive_cosine<Kel##suffix, kelsDCTFwdInitAlloc_##suffix, kelsDCTFwdFree_##suffix, kelsDCTFwdGetBufSize_##suffix,    \
                 kelsDCTFwd_##suffix##scaled, kelsDCTInvInitAlloc_##suffix, kelsDCTInvFree_##suffix,                   \
                 kelsDCTInvGetBufSize_##suffix, kelsDCTInv_##suffix##scaled>

const bool added =
    add_target("transforms", {KELS_TRANSFORMS(FFT, 32f, ), KELS_TRANSFORMS(FFT, 64f, ), KELS_TRANSFORMS(FFT, 16s, _Sfs),
                              KELS_TRANSFORMS(DFT, 32f, ), KELS_TRANSFORMS(DFT, 64f, ), KELS_TRANSFORMS(DFT, 16s, _Sfs),
                              KELS_COSINE(32f, ), KELS_COSINE(64f, ), KELS_COSINE(16s, _Sfs)});

} // namespace
