// Transforms of any length against the definition, through every way that a length may go, and the plans they run from.

#include "support/allocation_faults.h"
#include "support/emulation.h"
#include "support/guarded_memory.h"
#include "transforms/dft/functions.h"

#include <climits>
#include <cstring>
#include <limits>
#include <thread>

namespace {

using namespace kels_test;

/// Every short length; and long ones with small factors, primes, twice and other multiples of primes, powers of two and
/// their neighbours.
std::vector<int> lengths() {
    std::vector<int> all;
    for (int n = 1; n <= 400; n += n < 40 ? 1 : effort(1, 7)) all.push_back(n);
    for (int n : {401,  509,   512,   513,   625,   640,   720,   729,   1000,  1001,  1009,  1023,  1024,
                  1025, 1155,  1331,  2018,  2187,  2401,  3000,  3125,  4095,  4096,  4097,  5005,  6561,
                  8190, 10007, 10080, 14641, 16383, 16385, 20014, 28561, 30030, 32769, 44100, 65537, 99990})
        if (n < effort(100000, 2500)) all.push_back(n);
    return all;
}

template <class T>
class DftTest : public testing::Test {};
using Types = testing::Types<Kel32f, Kel64f>;

struct TypeNames {
    template <class T>
    static std::string GetName(int) {
        return sizeof(T) == 4 ? "32f" : "64f";
    }
};
TYPED_TEST_SUITE(DftTest, Types, TypeNames);

template <class T>
std::vector<Extended> as_complex(const std::vector<T>& parts) {
    std::vector<Extended> z(parts.size() / 2);
    for (std::size_t i = 0; i < z.size(); ++i) z[i] = {parts[2 * i], parts[2 * i + 1]};
    return z;
}

template <class T>
bool same(const T* a, const T* b, std::size_t count) {
    return std::memcmp(a, b, count * sizeof(T)) == 0;
}

/// One complex transform, interleaved.
template <class T>
KelStatus run(int sign, const T* src, T* dst, const typename Dft<T>::Plan* plan, Kel8u* buffer = nullptr) {
    using Sample = typename Dft<T>::Sample;
    return (sign < 0 ? Dft<T>::forward : Dft<T>::inverse)(reinterpret_cast<const Sample*>(src),
                                                          reinterpret_cast<Sample*>(dst), plan, buffer);
}

TYPED_TEST(DftTest, ComplexMatchesTheDefinitionInPlaceAndInTwoArraysToo) {
    using T = TypeParam;
    using D = Dft<T>;
    for (const int len : lengths())
        for (int sign : {-1, 1}) {
            const auto n = static_cast<std::size_t>(len);
            const int flag = flags[(n + (sign > 0)) % 4];
            const auto plan = make_dft(D::complex, len, flag), split_plan = make_dft(D::split, len, flag);
            const std::vector<T> x = dft_noise<T>(len, 2 * n);
            std::vector<T> y(2 * n), in_place = x;
            ASSERT_EQ(run<T>(sign, x.data(), y.data(), plan.get()), kelStatusOk);
            const Bins wanted = reference_bins(as_complex(x), sign);
            EXPECT_LE(relative_rms(wanted, dft_scale(flag, len, sign),
                                   [&](std::size_t k) {
                                       return Extended{y[2 * k], y[2 * k + 1]};
                                   }),
                      dft_bound(D::eps, len))
                << len << " sign " << sign;
            ASSERT_EQ(run<T>(sign, in_place.data(), in_place.data(), plan.get()), kelStatusOk);
            EXPECT_TRUE(same(y.data(), in_place.data(), 2 * n)) << "in place, length " << len;

            std::vector<T> re(n), im(n), out_re(n);
            for (std::size_t i = 0; i < n; ++i) re[i] = x[2 * i], im[i] = x[2 * i + 1];
            (sign < 0 ? D::split_forward : D::split_inverse)(re.data(), im.data(), out_re.data(), im.data(),
                                                             split_plan.get(), nullptr); // half in place
            bool all = true;
            for (std::size_t i = 0; i < n; ++i) all &= same(&out_re[i], &y[2 * i], 1) && same(&im[i], &y[2 * i + 1], 1);
            EXPECT_TRUE(all) << "two arrays, length " << len;
        }
}

/// Real and imaginary part of a bin up to n / 2 in a layout: 0 Perm, 1 Pack, 2 CCS.
template <class T>
std::pair<T, T> packed_bin(const std::vector<T>& y, int layout, std::size_t n, std::size_t k) {
    if (k == 0) return {y[0], 0};
    if (2 * k == n) return {y[layout == 0 ? 1 : layout == 1 ? n - 1 : n], 0};
    const std::size_t at = layout == 2 || (layout == 0 && n % 2 == 0) ? 2 * k : 2 * k - 1;
    return {y[at], y[at + 1]};
}

/// Values that a layout takes.
std::size_t packed_size(int layout, std::size_t n) { return layout == 2 ? (n | 1) + 1 : n; }

TYPED_TEST(DftTest, RealMatchesTheDefinitionInEveryLayoutAndReturns) {
    using T = TypeParam;
    using D = Dft<T>;
    for (const int len : lengths()) {
        const auto n = static_cast<std::size_t>(len);
        const int flag = flags[n % 4];
        const auto plan = make_dft(D::real, len, flag);
        const std::vector<T> x = dft_noise<T>(len, n);
        Bins wanted = reference_bins({x.begin(), x.end()}, -1);
        for (int layout = 0; layout < 3; ++layout) {
            std::vector<T> y(packed_size(layout, n) + 1, 9), in_place(y.size(), 9), back(n);
            ASSERT_EQ(D::to[layout](x.data(), y.data(), plan.get(), nullptr), kelStatusOk);
            EXPECT_LE(relative_rms(wanted, dft_scale(flag, len, -1),
                                   [&](std::size_t k) {
                                       const auto [re, im] = packed_bin(y, layout, n, std::min(k, n - k));
                                       return Extended{re, 2 * k > n ? -im : im};
                                   }),
                      dft_bound(D::eps, len))
                << len << " layout " << layout;
            EXPECT_EQ(y.back(), 9) << len << " layout " << layout;
            std::copy(x.begin(), x.end(), in_place.begin());
            D::to[layout](in_place.data(), in_place.data(), plan.get(), nullptr);
            EXPECT_TRUE(same(y.data(), in_place.data(), packed_size(layout, n))) << len << " layout " << layout;
            if (layout == 2) {
                EXPECT_TRUE(y[1] == 0 && !std::signbit(y[1]) &&
                            (len % 2 || (y[n + 1] == 0 && !std::signbit(y[n + 1]))));
                y[1] = std::numeric_limits<T>::quiet_NaN(); // not read
                if (len % 2 == 0) y[n + 1] = y[1];
            }
            ASSERT_EQ(D::from[layout](y.data(), back.data(), plan.get(), nullptr), kelStatusOk);
            const long double scale = flag == kelFftNormNone ? len : 1;
            long double error = 0, level = 0;
            for (std::size_t i = 0; i < n; ++i) {
                error += (back[i] - scale * x[i]) * (back[i] - scale * x[i]);
                level += scale * x[i] * scale * x[i];
            }
            EXPECT_LE(static_cast<double>(std::sqrt(error / level)), 2 * dft_bound(D::eps, len))
                << len << " layout " << layout;
            D::from[layout](y.data(), y.data(), plan.get(), nullptr);
            EXPECT_TRUE(same(y.data(), back.data(), n)) << "back in place, " << len << " layout " << layout;
        }
    }
}

TYPED_TEST(DftTest, PowersOfTwoAreTheFftToTheBit) {
    using T = TypeParam;
    using D = Dft<T>;
    constexpr bool single = sizeof(T) == 4;
    for (int order = 3; order <= 13; ++order) {
        const std::size_t n = std::size_t{1} << order;
        const auto plan = make_dft(D::complex, 1 << order);
        const std::vector<T> x = dft_noise<T>(order, 2 * n);
        std::vector<T> y(2 * n), z(2 * n);
        run<T>(-1, x.data(), y.data(), plan.get());
        if constexpr (single) {
            KelsFftPlan_32f* fft = nullptr;
            ASSERT_EQ(kelsFFTInitAlloc_C_32fc(&fft, order, kelFftNormNone, 0), kelStatusOk);
            kelsFFTFwd_CToC_32fc(reinterpret_cast<const Kel32fc*>(x.data()), reinterpret_cast<Kel32fc*>(z.data()), fft,
                                 nullptr);
            kelsFFTFree_C_32fc(fft);
        } else {
            KelsFftPlan_64f* fft = nullptr;
            ASSERT_EQ(kelsFFTInitAlloc_C_64fc(&fft, order, kelFftNormNone, 0), kelStatusOk);
            kelsFFTFwd_CToC_64fc(reinterpret_cast<const Kel64fc*>(x.data()), reinterpret_cast<Kel64fc*>(z.data()), fft,
                                 nullptr);
            kelsFFTFree_C_64fc(fft);
        }
        EXPECT_TRUE(same(y.data(), z.data(), 2 * n)) << order;
    }
}

// Arrays that end at an unmapped page and arrays that begin behind one, at odd addresses too, with the told buffer.
TYPED_TEST(DftTest, StaysInsideItsArraysAtAnyAddress) {
    using T = TypeParam;
    using D = Dft<T>;
    for (const int len :
         {1,   2,   3,   4,   5,   6,   7,   9,   12,  15,  17,  18,  21,  30,  35,   45,   60,   77,   91,   97,  100,
          127, 135, 150, 151, 180, 181, 194, 210, 243, 251, 257, 330, 389, 514, 1009, 1155, 1500, 2187, 3000, 4199}) {
        const auto n = static_cast<std::size_t>(len), bytes = 2 * n * sizeof(T);
        const auto plan = make_dft(D::complex, len), split_plan = make_dft(D::split, len),
                   real_plan = make_dft(D::real, len);
        int sizes[3];
        D::complex.buffer_size(plan.get(), &sizes[0]);
        D::split.buffer_size(split_plan.get(), &sizes[1]);
        D::real.buffer_size(real_plan.get(), &sizes[2]);
        const auto room = static_cast<std::size_t>(std::max({sizes[0], sizes[1], sizes[2]})) + 1;
        const std::vector<T> x = dft_noise<T>(len, 2 * n);
        std::vector<T> wanted(2 * n);
        run<T>(-1, x.data(), wanted.data(), plan.get());
        GuardedMemory a(bytes + 64), b(bytes + 64), buffer(room);
        for (int form = 0; form < 4; ++form) { // bit 0: at the end; bit 1: misaligned
            const auto place = [&](const GuardedMemory& m, std::size_t size) {
                const std::size_t off = form & 2 ? 1 : 0;
                return form & 1 ? m.end() - size - off : m.begin() + off;
            };
            auto* src = reinterpret_cast<T*>(place(a, bytes));
            auto* dst = reinterpret_cast<T*>(place(b, bytes));
            const auto work = [&](int i) {
                return reinterpret_cast<Kel8u*>(place(buffer, static_cast<std::size_t>(sizes[i])));
            };
            std::memcpy(static_cast<void*>(src), x.data(), bytes);
            ASSERT_TRUE(runs_without_fault([&] { run<T>(-1, src, dst, plan.get(), work(0)); })) << len;
            EXPECT_TRUE(same(dst, wanted.data(), 2 * n)) << len << " form " << form;
            ASSERT_TRUE(runs_without_fault([&] { run<T>(1, src, dst, plan.get(), work(0)); })) << len;
            // Two arrays of half the room each, so that every one of the four meets an end.
            ASSERT_TRUE(runs_without_fault([&] {
                auto* re = reinterpret_cast<T*>(place(a, bytes / 2));
                auto* im = reinterpret_cast<T*>(place(b, bytes / 2));
                D::split_forward(re, im, im, re, split_plan.get(), work(1));
                D::split_inverse(re, im, im, re, split_plan.get(), work(1));
            })) << len;
            for (int layout = 0; layout < 3; ++layout) {
                const std::size_t packed = packed_size(layout, n) * sizeof(T);
                auto* samples = reinterpret_cast<T*>(place(a, bytes / 2));
                auto* bins = reinterpret_cast<T*>(place(b, packed));
                ASSERT_TRUE(runs_without_fault([&] {
                    D::to[layout](samples, bins, real_plan.get(), work(2));
                    D::from[layout](bins, samples, real_plan.get(), work(2));
                })) << len
                    << " layout " << layout;
            }
        }
    }
}

TYPED_TEST(DftTest, ReportsTheToldBufferSizes) {
    using D = Dft<TypeParam>;
    struct Row {
        int len;
        int complex[2], real[2]; // bytes of singles and of doubles
    };
    constexpr Row rows[] = {{1, {0, 0}, {0, 0}},
                            {4, {0, 0}, {0, 0}},
                            {5, {56, 96}, {36, 56}},
                            {7, {72, 128}, {44, 72}},
                            {8, {0, 0}, {0, 0}},
                            {150, {1216, 2416}, {616, 1216}},
                            {151, {4112, 8208}, {620, 1224}},
                            {180, {4112, 8208}, {736, 1456}},
                            {181, {4112, 8208}, {4112, 8208}},
                            {256, {0, 0}, {0, 0}},
                            {513, {16416, 32800}, {16416, 32800}},
                            {3000, {66592, 133152}, {66592, 133152}}};
    for (const Row& row : rows) {
        int complex = -1, split = -1, real = -1;
        D::complex.buffer_size(make_dft(D::complex, row.len).get(), &complex);
        D::split.buffer_size(make_dft(D::split, row.len).get(), &split);
        D::real.buffer_size(make_dft(D::real, row.len).get(), &real);
        EXPECT_EQ(complex, row.complex[sizeof(TypeParam) == 8]) << row.len;
        EXPECT_EQ(split, complex) << row.len;
        EXPECT_EQ(real, row.real[sizeof(TypeParam) == 8]) << row.len;
    }
}

TYPED_TEST(DftTest, ChecksInOrderAndStoresNothing) {
    using T = TypeParam;
    using D = Dft<T>;
    using Plan = typename D::Plan;
    for (const auto* functions : {&D::complex, &D::split, &D::real}) {
        Plan* untouched = reinterpret_cast<Plan*>(&untouched);
        Plan* const before = untouched;
        EXPECT_EQ(functions->make(nullptr, 0, 0, 0), kelStatusNullPtr);
        for (int len : {0, -1, INT_MIN}) EXPECT_EQ(functions->make(&untouched, len, 0, 0), kelStatusBadSize);
        for (int len : {1, 5, 8, 1000, INT_MAX})
            for (int flag : {0, 3, 5, 16, -1})
                EXPECT_EQ(functions->make(&untouched, len, flag, 0), kelStatusBadFftFlag) << len;
        for (int len : {INT_MAX, 1 << 30, (1 << 30) - 1, (1 << 27) + 1})
            EXPECT_EQ(functions->make(&untouched, len, kelFftNormNone, 0), kelStatusNoMemory) << len;
        EXPECT_EQ(untouched, before);
        EXPECT_EQ(functions->release(nullptr), kelStatusNullPtr);
        int size = -7;
        EXPECT_EQ(functions->buffer_size(nullptr, &size), kelStatusNullPtr);
        const auto plan = make_dft(*functions, 6);
        EXPECT_EQ(functions->buffer_size(plan.get(), nullptr), kelStatusNullPtr);
        for (const auto* other : {&D::complex, &D::split, &D::real}) {
            if (other == functions) continue;
            EXPECT_EQ(other->release(plan.get()), kelStatusContextMismatch);
            EXPECT_EQ(other->buffer_size(plan.get(), &size), kelStatusContextMismatch);
        }
        EXPECT_EQ(size, -7);
        // Every transform on every kind of plan: a null pointer of data comes behind the kind.
        T x[14] = {1, 2, 3}, y[14];
        std::fill(std::begin(y), std::end(y), T(9));
        const bool complex = functions == &D::complex, split = functions == &D::split;
        for (int sign : {-1, 1}) {
            EXPECT_EQ(run<T>(sign, x, y, nullptr), kelStatusNullPtr);
            EXPECT_EQ(run<T>(sign, nullptr, y, plan.get()), complex ? kelStatusNullPtr : kelStatusContextMismatch);
            EXPECT_EQ(run<T>(sign, x, nullptr, plan.get()), complex ? kelStatusNullPtr : kelStatusContextMismatch);
            const auto call = sign < 0 ? D::split_forward : D::split_inverse;
            const KelStatus wanted = split ? kelStatusNullPtr : kelStatusContextMismatch;
            EXPECT_EQ(call(x, x, y, y, nullptr, nullptr), kelStatusNullPtr);
            EXPECT_EQ(call(nullptr, x, y, y, plan.get(), nullptr), wanted);
            EXPECT_EQ(call(x, nullptr, y, y, plan.get(), nullptr), wanted);
            EXPECT_EQ(call(x, x, nullptr, y, plan.get(), nullptr), wanted);
            EXPECT_EQ(call(x, x, y, nullptr, plan.get(), nullptr), wanted);
        }
        for (const auto& calls : {D::to, D::from})
            for (int layout = 0; layout < 3; ++layout) {
                const KelStatus wanted = complex || split ? kelStatusContextMismatch : kelStatusNullPtr;
                EXPECT_EQ(calls[layout](x, y, nullptr, nullptr), kelStatusNullPtr);
                EXPECT_EQ(calls[layout](nullptr, y, plan.get(), nullptr), wanted);
                EXPECT_EQ(calls[layout](x, nullptr, plan.get(), nullptr), wanted);
            }
        for (T v : y) EXPECT_EQ(v, 9);
    }
}

TYPED_TEST(DftTest, FailsForWantOfMemoryAndLeaksNothing) {
    using T = TypeParam;
    using D = Dft<T>;
    for (const int len : {3, 6, 15, 64, 97, 100, 509, 1018, 1500, 4099}) {
        for (const auto* functions : {&D::complex, &D::split, &D::real})
            for_each_allocation_failure([&] {
                typename D::Plan* plan = nullptr;
                const KelStatus status = functions->make(&plan, len, kelFftNormNone, 0);
                EXPECT_EQ(plan == nullptr, status != kelStatusOk);
                if (plan) functions->release(plan);
                return status;
            });
        if (len < 1018) continue; // which find room on the stack
        const auto n = static_cast<std::size_t>(len);
        const std::vector<T> x = dft_noise<T>(len, 2 * n);
        std::vector<T> y(2 * n + 2);
        const auto complex = make_dft(D::complex, len), real = make_dft(D::real, len);
        for_each_allocation_failure([&] { return run<T>(-1, x.data(), y.data(), complex.get()); });
        for_each_allocation_failure([&] { return D::to[2](x.data(), y.data(), real.get(), nullptr); });
        for_each_allocation_failure([&] { return D::from[2](x.data(), y.data(), real.get(), nullptr); });
    }
}

TYPED_TEST(DftTest, ShiftsTurnAndEnergyStays) {
    using T = TypeParam;
    using D = Dft<T>;
    for (const int len : {15, 97, 240, 389, 1000, 1009}) {
        const auto n = static_cast<std::size_t>(len);
        const auto plan = make_dft(D::complex, len, kelFftNormSqrt);
        const std::vector<T> x = dft_noise<T>(len, 2 * n);
        std::vector<T> shifted(2 * n), y(2 * n), z(2 * n);
        for (std::size_t i = 0; i < 2 * n; ++i) shifted[(i + 6) % (2 * n)] = x[i];
        run<T>(-1, x.data(), y.data(), plan.get());
        run<T>(-1, shifted.data(), z.data(), plan.get());
        long double error = 0, before = 0, after = 0;
        for (std::size_t k = 0; k < n; ++k) {
            const Extended a(y[2 * k], y[2 * k + 1]), b(z[2 * k], z[2 * k + 1]);
            error += std::norm(a * root_of_unity(-1, 3 * k, n) - b);
            before += std::norm(Extended(x[2 * k], x[2 * k + 1]));
            after += std::norm(a);
        }
        EXPECT_LE(static_cast<double>(std::sqrt(error / after)), 2 * dft_bound(D::eps, len)) << len;
        EXPECT_NEAR(static_cast<double>(after / before), 1, 10 * D::eps) << len;
    }
}

TYPED_TEST(DftTest, ThreadsShareAPlan) {
    using T = TypeParam;
    using D = Dft<T>;
    for (const int len : {97, 1500, 1009}) {
        const auto n = static_cast<std::size_t>(len);
        const auto plan = make_dft(D::complex, len);
        const std::vector<T> x = dft_noise<T>(len, 2 * n);
        std::vector<T> wanted(2 * n), results[4];
        run<T>(-1, x.data(), wanted.data(), plan.get());
        std::vector<std::thread> threads;
        for (auto& result : results)
            threads.emplace_back([&] {
                result.resize(2 * n);
                for (int i = 0; i < 20; ++i) run<T>(-1, x.data(), result.data(), plan.get());
            });
        for (std::thread& thread : threads) thread.join();
        for (const auto& result : results) EXPECT_TRUE(same(result.data(), wanted.data(), 2 * n)) << len;
    }
}

} // namespace
