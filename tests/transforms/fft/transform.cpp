// Power-of-two transforms against extended precision, through every path, and the plans they run from.

#include "kels/fft.h"
#include "support/allocation_faults.h"
#include "support/control_state.h"
#include "support/emulation.h"
#include "support/guarded_memory.h"
#include "support/random_data.h"
#include "transforms/reference.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>
#include <thread>

namespace {

using kels_test::effort;
using kels_test::Extended;
using kels_test::Random;
using kels_test::reference_transform;

constexpr int flags[] = {kelFftNormFwd, kelFftNormInv, kelFftNormSqrt, kelFftNormNone};

/// Complex orders up to this one meet every path: the butterflies, passes in the cache, blocks beyond it, and strips in
/// two and in three sweeps.
const int last_order = effort(19, 12);

// One type's functions, under names that a test can use for both.

template <class PlanType>
struct PlanFunctions {
    KelStatus (*make)(PlanType**, int, int, int);
    KelStatus (*release)(PlanType*);
    KelStatus (*buffer_size)(const PlanType*, int*);
};

template <class T>
struct Fft;

template <>
struct Fft<Kel32f> {
    using Plan = KelsFftPlan_32f;
    using Sample = Kel32fc;
    using Transform = KelStatus (*)(const Kel32f*, Kel32f*, const Plan*, Kel8u*);
    static constexpr double eps = 0x1p-23;
    static constexpr PlanFunctions<Plan> complex = {kelsFFTInitAlloc_C_32fc, kelsFFTFree_C_32fc,
                                                    kelsFFTGetBufSize_C_32fc};
    static constexpr PlanFunctions<Plan> split = {kelsFFTInitAlloc_C_32f, kelsFFTFree_C_32f, kelsFFTGetBufSize_C_32f};
    static constexpr PlanFunctions<Plan> real = {kelsFFTInitAlloc_R_32f, kelsFFTFree_R_32f, kelsFFTGetBufSize_R_32f};
    static constexpr auto forward = kelsFFTFwd_CToC_32fc, inverse = kelsFFTInv_CToC_32fc;
    static constexpr auto split_forward = kelsFFTFwd_CToC_32f, split_inverse = kelsFFTInv_CToC_32f;
    static constexpr Transform to_perm = kelsFFTFwd_RToPerm_32f, to_pack = kelsFFTFwd_RToPack_32f,
                               to_ccs = kelsFFTFwd_RToCCS_32f;
    static constexpr Transform from_perm = kelsFFTInv_PermToR_32f, from_pack = kelsFFTInv_PackToR_32f,
                               from_ccs = kelsFFTInv_CCSToR_32f;
    static constexpr int top_complex_order = 27;
    /// Buffer sizes by complex order, from 11 on; none below.
    static constexpr int first_buffer_order = 11;
    static constexpr int buffers[] = {16,    16,    1040,  2064, 4112, 8208,  8208,  8208, 32784,
                                      32784, 32784, 32784, 8208, 8208, 32784, 32784, 32784};
};

template <>
struct Fft<Kel64f> {
    using Plan = KelsFftPlan_64f;
    using Sample = Kel64fc;
    using Transform = KelStatus (*)(const Kel64f*, Kel64f*, const Plan*, Kel8u*);
    static constexpr double eps = 0x1p-52;
    static constexpr PlanFunctions<Plan> complex = {kelsFFTInitAlloc_C_64fc, kelsFFTFree_C_64fc,
                                                    kelsFFTGetBufSize_C_64fc};
    static constexpr PlanFunctions<Plan> split = {kelsFFTInitAlloc_C_64f, kelsFFTFree_C_64f, kelsFFTGetBufSize_C_64f};
    static constexpr PlanFunctions<Plan> real = {kelsFFTInitAlloc_R_64f, kelsFFTFree_R_64f, kelsFFTGetBufSize_R_64f};
    static constexpr auto forward = kelsFFTFwd_CToC_64fc, inverse = kelsFFTInv_CToC_64fc;
    static constexpr auto split_forward = kelsFFTFwd_CToC_64f, split_inverse = kelsFFTInv_CToC_64f;
    static constexpr Transform to_perm = kelsFFTFwd_RToPerm_64f, to_pack = kelsFFTFwd_RToPack_64f,
                               to_ccs = kelsFFTFwd_RToCCS_64f;
    static constexpr Transform from_perm = kelsFFTInv_PermToR_64f, from_pack = kelsFFTInv_PackToR_64f,
                               from_ccs = kelsFFTInv_CCSToR_64f;
    static constexpr int top_complex_order = 26;
    static constexpr int first_buffer_order = 10;
    static constexpr int buffers[] = {16,    16,    1040,  2064,  4112,  8208,  8208,  16400, 32784,
                                      32784, 32784, 16400, 16400, 32784, 32784, 32784, 32784};
};

template <class T>
auto make(const PlanFunctions<typename Fft<T>::Plan>& functions, int order, int flag) {
    typename Fft<T>::Plan* plan = nullptr;
    EXPECT_EQ(functions.make(&plan, order, flag, kelHintDefault), kelStatusOk) << "order " << order;
    return std::unique_ptr<typename Fft<T>::Plan, KelStatus (*)(typename Fft<T>::Plan*)>(plan, functions.release);
}

template <class T>
std::vector<T> noise(int order, std::size_t count) {
    Random random("transform " + std::to_string(order));
    std::vector<T> x(count);
    for (T& v : x) v = static_cast<T>(random.uniform(-1, 1));
    return x;
}

template <class T>
std::vector<Extended> as_complex(const std::vector<T>& parts) {
    std::vector<Extended> z(parts.size() / 2);
    for (std::size_t i = 0; i < z.size(); ++i) z[i] = {parts[2 * i], parts[2 * i + 1]};
    return z;
}

double relative_rms(const std::vector<Extended>& got, const std::vector<Extended>& wanted) {
    long double error = 0, level = 0;
    for (std::size_t i = 0; i < wanted.size(); ++i) {
        error += std::norm(got[i] - wanted[i]);
        level += std::norm(wanted[i]);
    }
    return static_cast<double>(std::sqrt(error / level));
}

double bound(double eps, int order) { return 0.6 * eps * std::sqrt(std::max(order, 1)); }

/// What a flag multiplies by, in the direction of the sign.
long double scale_of(int flag, int order, int sign) {
    const long double n = std::ldexp(1.0L, order);
    if (flag == kelFftNormSqrt) return 1 / std::sqrt(n);
    return flag == (sign < 0 ? kelFftNormFwd : kelFftNormInv) ? 1 / n : 1;
}

template <class T>
class FftTest : public testing::Test {};
using Types = testing::Types<Kel32f, Kel64f>;

struct TypeNames {
    template <class T>
    static std::string GetName(int) {
        return sizeof(T) == 4 ? "32f" : "64f";
    }
};
TYPED_TEST_SUITE(FftTest, Types, TypeNames);

TYPED_TEST(FftTest, ComplexMatchesReferenceInPlaceToo) {
    using T = TypeParam;
    using F = Fft<T>;
    for (int order = 0; order <= last_order; ++order)
        for (int flag : flags) {
            if (order > 8 && order % 5 && flag != kelFftNormInv)
                continue; // each path with each flag, most orders with one
            const std::size_t n = std::size_t{1} << order;
            const auto plan = make<T>(F::complex, order, flag);
            for (int sign : {-1, 1}) {
                if (order > 15 && (order % 2 == 0) == (sign > 0)) continue; // long ones in one direction
                const std::vector<T> x = noise<T>(order, 2 * n);
                std::vector<T> y(2 * n), in_place = x;
                const auto run = [&](const std::vector<T>& src, std::vector<T>& dst) {
                    return (sign < 0 ? F::forward : F::inverse)(reinterpret_cast<const typename F::Sample*>(src.data()),
                                                                reinterpret_cast<typename F::Sample*>(dst.data()),
                                                                plan.get(), nullptr);
                };
                ASSERT_EQ(run(x, y), kelStatusOk);
                ASSERT_EQ(run(in_place, in_place), kelStatusOk);
                std::vector<Extended> wanted = reference_transform(as_complex(x), sign);
                for (Extended& v : wanted) v *= scale_of(flag, order, sign);
                EXPECT_LE(relative_rms(as_complex(y), wanted), bound(F::eps, order)) << order << " flag " << flag;
                EXPECT_EQ(std::memcmp(y.data(), in_place.data(), 2 * n * sizeof(T)), 0) << "in place, order " << order;
            }
        }
}

// An impulse at sample p is a spiral in every bin: cheap to check where a whole reference would take long.
TYPED_TEST(FftTest, LargeOrdersTurnAnImpulseIntoASpiral) {
    using T = TypeParam;
    using F = Fft<T>;
    Random random("impulse");
    for (int order = 20; order <= effort(22, 20); ++order) {
        const std::size_t n = std::size_t{1} << order;
        const auto plan = make<T>(F::complex, order, kelFftNormNone);
        for (int repeat = 0; repeat < 4; ++repeat) {
            const std::size_t p = random.bits() % n;
            std::vector<typename F::Sample> x(n), y(n);
            x[p] = {1, 0};
            ASSERT_EQ(F::forward(x.data(), repeat % 2 ? x.data() : y.data(), plan.get(), nullptr), kelStatusOk);
            const auto& result = repeat % 2 ? x : y;
            std::vector<Extended> got, wanted;
            for (int i = 0; i < 1000; ++i) {
                const std::size_t k = random.bits() % n;
                got.emplace_back(result[k].re, result[k].im);
                wanted.push_back(kels_test::root_of_unity(-1, p * k % n, n));
            }
            EXPECT_LE(relative_rms(got, wanted), bound(F::eps, order)) << order;
        }
    }
}

// Two arrays give the bits of one, whichever of them is in place, flush against unmapped pages and at odd addresses.
TYPED_TEST(FftTest, TwoArraysGiveTheBitsOfOne) {
    using T = TypeParam;
    using F = Fft<T>;
    for (int order = 0; order <= last_order; ++order)
        for (int sign : {-1, 1}) {
            const std::size_t n = std::size_t{1} << order, bytes = n * sizeof(T);
            const int flag = flags[static_cast<std::size_t>(order) % 4];
            const auto interleaved = make<T>(F::complex, order, flag), split = make<T>(F::split, order, flag);
            const std::vector<T> x = noise<T>(order, 2 * n);
            std::vector<T> wanted(2 * n);
            (sign < 0 ? F::forward : F::inverse)(reinterpret_cast<const typename F::Sample*>(x.data()),
                                                 reinterpret_cast<typename F::Sample*>(wanted.data()),
                                                 interleaved.get(), nullptr);
            kels_test::GuardedMemory re(bytes + 1), im(bytes + 1), out_re(bytes + 1), out_im(bytes + 1);
            for (int form = 0; form < 4; ++form) { // bit 0: real parts in place; bit 1: imaginary parts
                auto* src_re = reinterpret_cast<T*>(re.end() - bytes - form % 2);
                auto* src_im = reinterpret_cast<T*>(im.begin() + form / 2);
                auto* dst_re = form & 1 ? src_re : reinterpret_cast<T*>(out_re.begin() + form / 2);
                auto* dst_im = form & 2 ? src_im : reinterpret_cast<T*>(out_im.end() - bytes - form % 2);
                for (std::size_t i = 0; i < n; ++i) {
                    std::memcpy(static_cast<void*>(src_re + i), &x[2 * i], sizeof(T));
                    std::memcpy(static_cast<void*>(src_im + i), &x[2 * i + 1], sizeof(T));
                }
                ASSERT_TRUE(kels_test::runs_without_fault([&] {
                    (sign < 0 ? F::split_forward : F::split_inverse)(src_re, src_im, dst_re, dst_im, split.get(),
                                                                     nullptr);
                })) << order;
                bool same = true;
                for (std::size_t i = 0; i < n; ++i)
                    same &= std::memcmp(dst_re + i, &wanted[2 * i], sizeof(T)) == 0 &&
                            std::memcmp(dst_im + i, &wanted[2 * i + 1], sizeof(T)) == 0;
                EXPECT_TRUE(same) << "order " << order << " form " << form;
            }
        }
}

TYPED_TEST(FftTest, ImpulseShowsExactlyTheFactor) {
    using T = TypeParam;
    using F = Fft<T>;
    for (int order = 0; order <= 15; ++order)
        for (int flag : flags) {
            const std::size_t n = std::size_t{1} << order;
            const T forward = static_cast<T>(scale_of(flag, order, -1)),
                    inverse = static_cast<T>(scale_of(flag, order, 1));
            std::vector<typename F::Sample> x(n), y(n);
            x[0] = {1, 0};
            const auto complex = make<T>(F::complex, order, flag);
            for (int sign : {-1, 1}) {
                (sign < 0 ? F::forward : F::inverse)(x.data(), y.data(), complex.get(), nullptr);
                for (const auto& bin : y) {
                    ASSERT_EQ(bin.re, sign < 0 ? forward : inverse) << order << " flag " << flag;
                    ASSERT_EQ(bin.im, 0) << order << " flag " << flag;
                }
            }
            const auto real = make<T>(F::real, order, flag);
            std::vector<T> r(n + 2), spectrum(n + 2, 9);
            r[0] = 1;
            F::to_ccs(r.data(), spectrum.data(), real.get(), nullptr);
            for (std::size_t k = 0; k <= n / 2; ++k) {
                ASSERT_EQ(spectrum[2 * k], forward) << order << " flag " << flag;
                ASSERT_EQ(spectrum[2 * k + 1], 0) << order << " flag " << flag;
            }
            ASSERT_FALSE(std::signbit(spectrum[1])) << "the zeros of the real bins are positive";
        }
}

TYPED_TEST(FftTest, RealMatchesReferenceInEveryLayout) {
    using T = TypeParam;
    using F = Fft<T>;
    for (int order = 0; order <= last_order; ++order) {
        const std::size_t n = std::size_t{1} << order;
        const auto plan = make<T>(F::real, order, order % 3 == 0 ? kelFftNormSqrt : kelFftNormInv);
        const std::vector<T> x = noise<T>(order, n);
        std::vector<T> perm(n), pack(n), ccs(n + 2, 9);
        ASSERT_EQ(F::to_perm(x.data(), perm.data(), plan.get(), nullptr), kelStatusOk);
        ASSERT_EQ(F::to_pack(x.data(), pack.data(), plan.get(), nullptr), kelStatusOk);
        ASSERT_EQ(F::to_ccs(x.data(), ccs.data(), plan.get(), nullptr), kelStatusOk);

        std::vector<Extended> wanted = reference_transform({x.begin(), x.end()}, -1);
        wanted.resize(n / 2 + 1);
        for (Extended& v : wanted) v *= scale_of(order % 3 == 0 ? kelFftNormSqrt : kelFftNormInv, order, -1);
        std::vector<T> half(ccs.begin(), ccs.begin() + static_cast<std::ptrdiff_t>(n == 1 ? 2 : n + 2));
        EXPECT_LE(relative_rms(as_complex(half), wanted), bound(F::eps, order)) << order;

        // The other layouts are the same values in other places.
        std::vector<T> as_perm(n), as_pack(n);
        as_perm[0] = as_pack[0] = ccs[0];
        if (n > 1) as_perm[1] = as_pack[n - 1] = ccs[n];
        for (std::size_t k = 1; k < n / 2; ++k)
            for (std::size_t part : {0, 1}) as_perm[2 * k + part] = as_pack[2 * k - 1 + part] = ccs[2 * k + part];
        EXPECT_EQ(std::memcmp(perm.data(), as_perm.data(), n * sizeof(T)), 0) << order;
        EXPECT_EQ(std::memcmp(pack.data(), as_pack.data(), n * sizeof(T)), 0) << order;
        if (n == 1) {
            EXPECT_EQ(ccs[2], 9);
        }

        const std::pair<typename F::Transform, const std::vector<T>*> forms[] = {
            {F::to_perm, &perm}, {F::to_pack, &pack}, {F::to_ccs, &ccs}};
        for (const auto& [transform, result] : forms) {
            std::vector<T> in_place(n + 2, 9);
            std::copy(x.begin(), x.end(), in_place.begin());
            transform(in_place.data(), in_place.data(), plan.get(), nullptr);
            EXPECT_EQ(std::memcmp(in_place.data(), result->data(), result->size() * sizeof(T)), 0) << order;
        }
    }
}

TYPED_TEST(FftTest, RealInverseReturnsFromEveryLayout) {
    using T = TypeParam;
    using F = Fft<T>;
    for (int order = 0; order <= last_order; ++order)
        for (int flag : flags) {
            if (order > 14 && flag != kelFftNormInv) continue;
            const std::size_t n = std::size_t{1} << order;
            const auto plan = make<T>(F::real, order, flag);
            const std::vector<T> x = noise<T>(order, n);
            std::vector<T> perm(n), pack(n), ccs(n + 2), back(n), other(n);
            F::to_perm(x.data(), perm.data(), plan.get(), nullptr);
            F::to_pack(x.data(), pack.data(), plan.get(), nullptr);
            F::to_ccs(x.data(), ccs.data(), plan.get(), nullptr);
            ccs[1] = ccs[n + (n > 1)] = std::numeric_limits<T>::quiet_NaN(); // not read
            const std::vector<T> unread = ccs;

            F::from_perm(perm.data(), back.data(), plan.get(), nullptr);
            const long double scale = flag == kelFftNormNone ? std::ldexp(1.0L, order) : 1.0L;
            std::vector<Extended> got(back.begin(), back.end()), wanted;
            for (T v : x) wanted.emplace_back(scale * v);
            EXPECT_LE(relative_rms(got, wanted), 2 * bound(F::eps, order)) << order << " flag " << flag;

            F::from_pack(pack.data(), other.data(), plan.get(), nullptr);
            EXPECT_EQ(std::memcmp(other.data(), back.data(), n * sizeof(T)), 0) << order;
            F::from_ccs(ccs.data(), other.data(), plan.get(), nullptr);
            EXPECT_EQ(std::memcmp(other.data(), back.data(), n * sizeof(T)), 0) << order;

            F::from_perm(perm.data(), perm.data(), plan.get(), nullptr);
            F::from_pack(pack.data(), pack.data(), plan.get(), nullptr);
            F::from_ccs(ccs.data(), ccs.data(), plan.get(), nullptr);
            EXPECT_EQ(std::memcmp(perm.data(), back.data(), n * sizeof(T)), 0) << order;
            EXPECT_EQ(std::memcmp(pack.data(), back.data(), n * sizeof(T)), 0) << order;
            EXPECT_EQ(std::memcmp(ccs.data(), back.data(), n * sizeof(T)), 0) << order;
            EXPECT_EQ(std::memcmp(ccs.data() + n, unread.data() + n, (n > 1 ? 2 : 1) * sizeof(T)), 0) << order;
        }
}

// Data at odd addresses, flush against unmapped pages on either side, in place and not, with a buffer of the stated
// size at any address: the same bits, and not a byte outside.
TYPED_TEST(FftTest, StaysInsideItsArraysAtAnyAddress) {
    using T = TypeParam;
    using F = Fft<T>;
    for (int order = 0; order <= last_order; ++order) {
        const std::size_t n = std::size_t{1} << order, bytes = 2 * n * sizeof(T), real_bytes = (n + 2) * sizeof(T);
        const auto complex = make<T>(F::complex, order, kelFftNormInv);
        const auto real = make<T>(F::real, order, kelFftNormInv);
        const std::vector<T> x = noise<T>(order, 2 * n + 2);
        std::vector<T> wanted(2 * n), wanted_real(n + 2);
        F::forward(reinterpret_cast<const typename F::Sample*>(x.data()),
                   reinterpret_cast<typename F::Sample*>(wanted.data()), complex.get(), nullptr);
        F::to_ccs(x.data(), wanted_real.data(), real.get(), nullptr);
        int buffer_bytes = 0;
        F::complex.buffer_size(complex.get(), &buffer_bytes);

        kels_test::GuardedMemory source(bytes + 64), target(bytes + 64),
            work(static_cast<std::size_t>(buffer_bytes) + 1);
        for (std::size_t offset : {0, 1, 3, 4, 8, 20, 33}) {
            for (bool at_end : {false, true}) {
                const auto place = [&](kels_test::GuardedMemory& memory, std::size_t size) {
                    return at_end ? memory.end() - size - offset : memory.begin() + offset;
                };
                Kel8u* buffer =
                    buffer_bytes == 0 ? nullptr : reinterpret_cast<Kel8u*>(work.end() - buffer_bytes - (offset > 0));
                auto* src = reinterpret_cast<typename F::Sample*>(place(source, bytes));
                auto* dst = reinterpret_cast<typename F::Sample*>(place(target, bytes));
                std::memcpy(static_cast<void*>(src), x.data(), bytes);
                ASSERT_TRUE(kels_test::runs_without_fault([&] { F::forward(src, dst, complex.get(), buffer); }))
                    << order;
                EXPECT_EQ(std::memcmp(dst, wanted.data(), bytes), 0) << order << " offset " << offset;
                ASSERT_TRUE(kels_test::runs_without_fault([&] { F::forward(src, src, complex.get(), buffer); }))
                    << order;
                EXPECT_EQ(std::memcmp(src, wanted.data(), bytes), 0) << order << " in place, offset " << offset;

                auto* samples = reinterpret_cast<T*>(place(source, n * sizeof(T)));
                auto* spectrum = reinterpret_cast<T*>(place(target, real_bytes));
                std::memcpy(static_cast<void*>(samples), x.data(), n * sizeof(T));
                ASSERT_TRUE(kels_test::runs_without_fault([&] { F::to_ccs(samples, spectrum, real.get(), nullptr); }))
                    << order;
                EXPECT_EQ(std::memcmp(spectrum, wanted_real.data(), (n == 1 ? 2 : n + 2) * sizeof(T)), 0) << order;
                ASSERT_TRUE(kels_test::runs_without_fault([&] {
                    F::to_pack(samples, samples, real.get(), nullptr);
                    F::from_pack(samples, samples, real.get(), nullptr);
                })) << order;
            }
        }
    }
}

TYPED_TEST(FftTest, PlansReportTheirBuffer) {
    using T = TypeParam;
    using F = Fft<T>;
    for (int order = 0; order <= F::top_complex_order; ++order) {
        const int wanted = order < F::first_buffer_order ? 0 : F::buffers[order - F::first_buffer_order];
        int size = -1;
        EXPECT_EQ(F::complex.buffer_size(make<T>(F::complex, order, kelFftNormInv).get(), &size), kelStatusOk);
        EXPECT_EQ(size, wanted) << "complex order " << order;
        EXPECT_EQ(F::split.buffer_size(make<T>(F::split, order, kelFftNormInv).get(), &size), kelStatusOk);
        EXPECT_EQ(size, wanted) << "split order " << order;
        EXPECT_EQ(F::real.buffer_size(make<T>(F::real, order + 1, kelFftNormInv).get(), &size), kelStatusOk);
        EXPECT_EQ(size, wanted) << "real order " << order + 1;
    }
}

TYPED_TEST(FftTest, PlansRefuseWhatTheyCannotBe) {
    using T = TypeParam;
    using F = Fft<T>;
    char elsewhere;
    auto* const untouched = reinterpret_cast<typename F::Plan*>(&elsewhere);
    for (const auto& functions : {F::complex, F::split, F::real}) {
        const bool real = functions.make == F::real.make;
        EXPECT_EQ(functions.make(nullptr, -1, 3, 0), kelStatusNullPtr);
        const long before = kels_test::live_blocks(), allocations = kels_test::allocations();
        typename F::Plan* plan = untouched;
        for (int order : {-1, 31, INT_MIN, INT_MAX})
            EXPECT_EQ(functions.make(&plan, order, 3, 0), kelStatusBadFftOrder);
        EXPECT_EQ(kels_test::allocations(), allocations);
        for (int flag : {0, 3, 5, 16, -1, INT_MIN})
            EXPECT_EQ(functions.make(&plan, 12, flag, 0), kelStatusBadFftFlag) << flag;
        for (int order = F::top_complex_order + (real ? 2 : 1); order <= 30; ++order)
            EXPECT_EQ(functions.make(&plan, order, 1, 0), kelStatusNoMemory) << order;
        EXPECT_EQ(plan, untouched);
        EXPECT_EQ(kels_test::live_blocks(), before);

        for (int hint : {0, 1, 2, 77, -5}) {
            EXPECT_EQ(functions.make(&plan, 5, kelFftNormNone, hint), kelStatusOk) << hint;
            EXPECT_EQ(functions.release(plan), kelStatusOk);
        }
        for (int order : {2, 9, 15, 20})
            kels_test::for_each_allocation_failure([&] {
                typename F::Plan* made = untouched;
                const KelStatus status = functions.make(&made, order, 1, 0);
                if (status == kelStatusOk)
                    functions.release(made);
                else
                    EXPECT_EQ(made, untouched);
                return status;
            });
    }
}

// A plan of the other form or of the other precision, and every null, in the order of the checks.
TYPED_TEST(FftTest, TransformsRefuseForeignPlans) {
    using T = TypeParam;
    using F = Fft<T>;
    using Other = Fft<std::conditional_t<sizeof(T) == 4, Kel64f, Kel32f>>;
    const auto complex = make<T>(F::complex, 4, kelFftNormInv), real = make<T>(F::real, 4, kelFftNormInv);
    using OtherType = std::conditional_t<sizeof(T) == 4, Kel64f, Kel32f>;
    const auto foreign = make<OtherType>(Other::complex, 4, kelFftNormInv);
    auto* other = reinterpret_cast<typename F::Plan*>(foreign.get());

    const auto split = make<T>(F::split, 4, kelFftNormInv);

    std::vector<T> x(34, 1), y(34, 7);
    const auto* src = reinterpret_cast<const typename F::Sample*>(x.data());
    auto* dst = reinterpret_cast<typename F::Sample*>(y.data());
    for (auto transform : {F::forward, F::inverse}) {
        EXPECT_EQ(transform(src, dst, nullptr, nullptr), kelStatusNullPtr);
        EXPECT_EQ(transform(nullptr, dst, real.get(), nullptr), kelStatusContextMismatch);
        EXPECT_EQ(transform(src, dst, other, nullptr), kelStatusContextMismatch);
        EXPECT_EQ(transform(nullptr, dst, complex.get(), nullptr), kelStatusNullPtr);
        EXPECT_EQ(transform(src, nullptr, complex.get(), nullptr), kelStatusNullPtr);
    }
    for (auto transform : {F::split_forward, F::split_inverse}) {
        const T* in = x.data();
        T* out = y.data();
        EXPECT_EQ(transform(in, in, out, out, nullptr, nullptr), kelStatusNullPtr);
        EXPECT_EQ(transform(nullptr, in, out, out, complex.get(), nullptr), kelStatusContextMismatch);
        EXPECT_EQ(transform(nullptr, in, out, out, split.get(), nullptr), kelStatusNullPtr);
        EXPECT_EQ(transform(in, nullptr, out, out, split.get(), nullptr), kelStatusNullPtr);
        EXPECT_EQ(transform(in, in, nullptr, out, split.get(), nullptr), kelStatusNullPtr);
        EXPECT_EQ(transform(in, in, out, nullptr, split.get(), nullptr), kelStatusNullPtr);
    }
    for (auto transform : {F::to_perm, F::to_pack, F::to_ccs, F::from_perm, F::from_pack, F::from_ccs}) {
        EXPECT_EQ(transform(x.data(), y.data(), nullptr, nullptr), kelStatusNullPtr);
        EXPECT_EQ(transform(nullptr, y.data(), complex.get(), nullptr), kelStatusContextMismatch);
        EXPECT_EQ(transform(x.data(), y.data(), other, nullptr), kelStatusContextMismatch);
        EXPECT_EQ(transform(nullptr, y.data(), real.get(), nullptr), kelStatusNullPtr);
        EXPECT_EQ(transform(x.data(), nullptr, real.get(), nullptr), kelStatusNullPtr);
    }
    EXPECT_EQ(y, std::vector<T>(34, 7));

    int size = -7;
    EXPECT_EQ(F::complex.release(real.get()), kelStatusContextMismatch);
    EXPECT_EQ(F::real.release(complex.get()), kelStatusContextMismatch);
    EXPECT_EQ(F::complex.release(split.get()), kelStatusContextMismatch);
    EXPECT_EQ(F::split.release(complex.get()), kelStatusContextMismatch);
    EXPECT_EQ(F::real.release(other), kelStatusContextMismatch);
    EXPECT_EQ(F::complex.release(nullptr), kelStatusNullPtr);
    EXPECT_EQ(F::complex.buffer_size(real.get(), &size), kelStatusContextMismatch);
    EXPECT_EQ(F::complex.buffer_size(complex.get(), nullptr), kelStatusNullPtr);
    EXPECT_EQ(F::real.buffer_size(nullptr, &size), kelStatusNullPtr);
    EXPECT_EQ(size, -7);
    EXPECT_EQ(F::to_perm(x.data(), y.data(), real.get(), nullptr), kelStatusOk) << "a refused plan stays usable";
}

TYPED_TEST(FftTest, AllocatesNothingAndLeavesTheModesAlone) {
    using T = TypeParam;
    using F = Fft<T>;
    const kels_test::KeepControlState keep;
    for (int order : {3, 8, 10, 13, 15, 19}) {
        const auto plan = make<T>(F::real, order, kelFftNormInv);
        std::vector<T> x = noise<T>(order, (std::size_t{1} << order) + 2);
        const long before = kels_test::allocations();
        for (const auto& modes : kels_test::odd_modes) {
            modes.load();
            F::to_ccs(x.data(), x.data(), plan.get(), nullptr);
            F::from_ccs(x.data(), x.data(), plan.get(), nullptr);
            EXPECT_TRUE(kels_test::ControlState::current().same_modes(modes)) << order;
        }
        EXPECT_EQ(kels_test::allocations(), before);
    }
}

TYPED_TEST(FftTest, ThreadsShareAPlan) {
    using T = TypeParam;
    using F = Fft<T>;
    for (int order : {8, 14}) {
        const auto plan = make<T>(F::real, order, kelFftNormInv);
        const std::vector<T> x = noise<T>(order, std::size_t{1} << order);
        std::vector<T> wanted(x.size());
        F::to_perm(x.data(), wanted.data(), plan.get(), nullptr);
        std::vector<std::vector<T>> results(4, std::vector<T>(x.size()));
        std::vector<std::thread> threads;
        for (auto& y : results)
            threads.emplace_back([&] {
                for (int i = 0; i < 20; ++i) F::to_perm(x.data(), y.data(), plan.get(), nullptr);
            });
        for (auto& thread : threads) thread.join();
        for (const auto& y : results) EXPECT_EQ(y, wanted);
    }
}

} // namespace
