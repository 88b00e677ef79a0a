// Plans of every transform: out of place and in place, with a work buffer and without, and there and back.

#include "fuzz/sequence.h"
#include "kels/dct.h"
#include "kels/dft.h"

namespace {

using namespace kels_test;

constexpr int flags[] = {kelFftNormFwd, kelFftNormInv, kelFftNormSqrt, kelFftNormNone};

/// How plans count points, mostly few, and what there and back multiplies by.
struct FFTSize {
    static int draw(Input& in) { return in.below(in.one_in(32) ? 16 : 11); }
    static int points(int order) { return 1 << order; }
    static double gain(int flag, int n) { return flag == kelFftNormNone ? n : 1; }
};
struct DFTSize : FFTSize {
    static int draw(Input& in) { return in.one_in(32) ? 1 + in.below(20000) : in.length(1500); }
    static int points(int len) { return len; }
};
struct DCTSize : DFTSize {
    static double gain(int, int) { return 1; }
};

template <class Size>
struct Choice {
    int size, flag, hint, scale, points;

    explicit Choice(Input& in)
        : size(Size::draw(in)), flag(flags[in.below(4)]), hint(in.below(4)), scale(in.below(20) - 4),
          points(Size::points(size)) {}
    double gain() const { return Size::gain(flag, points); }
};

template <class T>
constexpr double eps = type_of<T>().kind == Kind::f64 ? 0x1p-52 : 0x1p-23;
template <class T>
constexpr bool is_integer = type_of<T>().kind == Kind::s16;

/// A plan, and transforms from it with a work buffer as large as told or without one.
template <auto make, auto release, auto size_of>
class Planned {
public:
    template <class Size>
    Planned(Input& in, const Choice<Size>& c)
        : scale(c.scale), plan(made(in, release, [&](auto** to) {
              if constexpr (std::is_same_v<Size, DCTSize>)
                  return make(to, c.size, c.hint);
              else
                  return make(to, c.size, c.flag, c.hint);
          })) {}

    auto* get() const { return plan.get(); }

    /// Scale factors are for those that have one.
    template <class Function, class... Arrays>
    KelStatus call(Input& in, Function function, Arrays... arrays) const {
        int size = -1;
        EXPECT_EQ(size_of(get(), &size), kelStatusOk);
        GuardedArray<Kel8u> memory(static_cast<std::size_t>(size), in.edge());
        Kel8u* buffer = in.below(2) == 0 ? memory.data() : nullptr;
        return in.attempt([&] {
            if constexpr (std::is_invocable_v<Function, Arrays..., decltype(get()), Kel8u*>)
                return function(arrays..., get(), buffer);
            else
                return function(arrays..., get(), scale, buffer);
        });
    }

    /// x into `room` values, out of place and in place.
    template <class T, class Function>
    std::vector<T> transformed(Input& in, Function function, const std::vector<T>& x, int room) const {
        const GuardedArray<T> source(x, in.edge());
        GuardedArray<T> y(static_cast<std::size_t>(room), in.edge());
        EXPECT_EQ(call(in, function, source.data(), y.data()), kelStatusOk);
        auto larger = x;
        larger.resize(std::max(x.size(), static_cast<std::size_t>(room)));
        GuardedArray<T> z(larger, in.edge());
        EXPECT_EQ(call(in, function, static_cast<const T*>(z.data()), z.data()), kelStatusOk);
        expect_same(y.values(), piece(z.values(), 0, room), "in place");
        return y.values();
    }

private:
    int scale;
    decltype(made(std::declval<Input&>(), release, make)) plan;
};

/// Perm and Pack have as many values as there are samples, CCS both parts of every bin.
enum Layout { Perm, Pack, CCS };

template <class T, class Size, class There, auto forward, class Back, auto inverse, auto stranger, Layout layout = Perm>
void drive(Input& in) {
    do {
        const Choice<Size> choice(in);
        const There there(in, choice);
        const Back back(in, choice);
        const auto x = in.data<T>(choice.points, Style::tame);
        const int room = layout == CCS ? choice.points / 2 * 2 + 2 : choice.points;
        const auto y = back.transformed(in, inverse, there.transformed(in, forward, x, room), choice.points);
        EXPECT_EQ(stranger(there.get()), kelStatusContextMismatch);
        if (is_integer<T>) continue; // rounded on the way
        const double tolerance = 40 * eps<T> * choice.gain() * std::sqrt(1 + magnitude(x));
        const Parts<T> parts(x, y);
        for (std::size_t i = 0; i < parts.a.size(); ++i)
            ASSERT_NEAR(choice.gain() * parts.a[i], parts.b[i], tolerance) << "there and back, " << choice.points;
    } while (in.more());
}

/// Real and imaginary parts in arrays of their own give what they give together.
template <class T, class Complex, class Size, class Split, auto function, class Joint, auto interleaved>
void drive_split(Input& in) {
    do {
        const Choice<Size> choice(in);
        const Split split(in, choice);
        const Joint joint(in, choice);
        const auto re = in.data<T>(choice.points, Style::tame), im = in.data<T>(choice.points, Style::tame);
        const GuardedArray<T> from_re(re, in.edge()), from_im(im, in.edge());
        GuardedArray<T> to_re(re, in.edge()), to_im(re.size(), in.edge());
        const T* first = in.below(2) == 0 ? to_re.data() : from_re.data();
        EXPECT_EQ(split.call(in, function, first, from_im.data(), to_re.data(), to_im.data()), kelStatusOk);
        std::vector<Complex> x(re.size()), y(re.size());
        for (std::size_t i = 0; i < re.size(); ++i) x[i] = {re[i], im[i]}, y[i] = {to_re.data()[i], to_im.data()[i]};
        const double root = std::sqrt(choice.points), noise = 40 * eps<T> * root * (1 + root);
        expect_near(y, joint.transformed(in, interleaved, x, choice.points),
                    is_integer<T> ? 1 + std::ldexp(32000 * noise, -choice.scale) : noise, "in two arrays");
    } while (in.more());
}

#define KELS_PLAN(kind, plan)                                                                                          \
    Planned<kels##kind##InitAlloc_##plan, kels##kind##Free_##plan, kels##kind##GetBufSize_##plan>
#define KELS_SPLIT(kind, suffix, direction, scaled)                                                                    \
    drive_split<Kel##suffix, Kel##suffix##c, kind##Size, KELS_PLAN(kind, C_##suffix),                                  \
                kels##kind##direction##_CToC_##suffix##scaled, KELS_PLAN(kind, C_##suffix##c),                         \
                kels##kind##direction##_CToC_##suffix##c##scaled>
#define KELS_REAL(kind, suffix, layout, scaled)                                                                        \
    drive<Kel##suffix, kind##Size, KELS_PLAN(kind, R_##suffix), kels##kind##Fwd_RTo##layout##_##suffix##scaled,        \
          KELS_PLAN(kind, R_##suffix), kels##kind##Inv_##layout##ToR_##suffix##scaled, kels##kind##Free_C_##suffix,    \
          layout>
#define KELS_TRANSFORMS(kind, suffix, scaled)                                                                          \
    drive<Kel##suffix##c, kind##Size, KELS_PLAN(kind, C_##suffix##c), kels##kind##Fwd_CToC_##suffix##c##scaled,        \
          KELS_PLAN(kind, C_##suffix##c), kels##kind##Inv_CToC_##suffix##c##scaled, kels##kind##Free_C_##suffix>,      \
        KELS_SPLIT(kind, suffix, Fwd, scaled), KELS_SPLIT(kind, suffix, Inv, scaled),                                  \
        KELS_REAL(kind, suffix, Perm, scaled), KELS_REAL(kind, suffix, Pack, scaled),                                  \
        KELS_REAL(kind, suffix, CCS, scaled)
#define KELS_COSINE(suffix, scaled)                                                                                    \
    drive<Kel##suffix, DCTSize, KELS_PLAN(DCTFwd, suffix), kelsDCTFwd_##suffix##scaled, KELS_PLAN(DCTInv, suffix),     \
          kelsDCTInv_##suffix##scaled, kelsDCTInvFree_##suffix>

const bool added =
    add_target("transforms", {KELS_TRANSFORMS(FFT, 32f, ), KELS_TRANSFORMS(FFT, 64f, ), KELS_TRANSFORMS(FFT, 16s, _Sfs),
                              KELS_TRANSFORMS(DFT, 32f, ), KELS_TRANSFORMS(DFT, 64f, ), KELS_TRANSFORMS(DFT, 16s, _Sfs),
                              KELS_COSINE(32f, ), KELS_COSINE(64f, ), KELS_COSINE(16s, _Sfs)});

#undef KELS_PLAN
#undef KELS_SPLIT
#undef KELS_REAL
#undef KELS_TRANSFORMS
#undef KELS_COSINE

} // namespace
