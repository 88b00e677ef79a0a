// The cosine transform against its definition, its plans, and its 16-bit forms.

#include "kels/conversion.h"
#include "kels/dct.h"
#include "support/allocation_faults.h"
#include "support/emulation.h"
#include "support/guarded_memory.h"
#include "transforms/dft/functions.h"

#include <climits>
#include <cstring>
#include <numbers>
#include <thread>

namespace {

using namespace kels_test;

/// The functions of one direction.
template <class T, class PlanType, class... Scale>
struct Direction {
    using Plan = PlanType;
    KelStatus (*make)(Plan**, int, int);
    KelStatus (*release)(Plan*);
    KelStatus (*buffer_size)(const Plan*, int*);
    KelStatus (*run)(const T*, T*, const Plan*, Scale..., Kel8u*);
};

#define KELS_DCT(direction, type, suffix)                                                                              \
    {                                                                                                                  \
        kelsDCT##direction##InitAlloc_##type, kelsDCT##direction##Free_##type, kelsDCT##direction##GetBufSize_##type,  \
            kelsDCT##direction##_##suffix                                                                              \
    }

template <class T>
struct Dct;
template <>
struct Dct<Kel32f> {
    static constexpr double eps = 0x1p-23;
    static constexpr Direction<Kel32f, KelsDctPlan_32f> forward = KELS_DCT(Fwd, 32f, 32f),
                                                        inverse = KELS_DCT(Inv, 32f, 32f);
};
template <>
struct Dct<Kel64f> {
    static constexpr double eps = 0x1p-52;
    static constexpr Direction<Kel64f, KelsDctPlan_64f> forward = KELS_DCT(Fwd, 64f, 64f),
                                                        inverse = KELS_DCT(Inv, 64f, 64f);
};
constexpr Direction<Kel16s, KelsDctPlan_16s, int> forward_16s = KELS_DCT(Fwd, 16s, 16s_Sfs),
                                                  inverse_16s = KELS_DCT(Inv, 16s, 16s_Sfs);

template <class D>
auto make(const D& direction, int len, int hint = 0) {
    typename D::Plan* plan = nullptr;
    EXPECT_EQ(direction.make(&plan, len, hint), kelStatusOk) << len;
    return std::unique_ptr<typename D::Plan, KelStatus (*)(typename D::Plan*)>(plan, direction.release);
}

template <class D>
int size_of(const D& direction, int len, int hint = 0) {
    int bytes = -1;
    EXPECT_EQ(direction.buffer_size(make(direction, len, hint).get(), &bytes), kelStatusOk);
    return bytes;
}

/// cos(2 pi i / 4N) for all i.
std::vector<long double> cosines(std::size_t n) {
    std::vector<long double> table(4 * n);
    for (std::size_t i = 0; i < 4 * n; ++i) table[i] = root_of_unity(1, i, 4 * n).real();
    return table;
}

/// Some results by definition, all of a short length.
template <class T>
double error_of(const std::vector<T>& x, const std::vector<T>& y, bool inverse) {
    const std::size_t n = x.size();
    const std::vector<long double> table = cosines(n);
    const long double dc = 1 / std::sqrt(static_cast<long double>(n)), ac = std::sqrt(2 / static_cast<long double>(n));
    Random random("results");
    long double error = 0, level = 0;
    for (std::size_t i = 0; i < std::min<std::size_t>(n, 300); ++i) {
        const std::size_t at = n <= 300 ? i : random.bits() % n;
        long double sum = 0;
        for (std::size_t j = 0; j < n; ++j) {
            const std::size_t k = inverse ? j : at, sample = inverse ? at : j;
            sum += (k == 0 ? dc : ac) * x[j] * table[(2 * sample + 1) * k % (4 * n)];
        }
        error += (y[at] - sum) * (y[at] - sum);
        level += sum * sum;
    }
    return static_cast<double>(std::sqrt(error / level));
}

/// A length of one is a copy; the bound of two holds for it.
std::vector<int> lengths() {
    std::vector<int> all;
    for (int n = 1; n <= 400; n += n < 40 ? 1 : effort(1, 7)) all.push_back(n);
    for (int n : {401,  509,  512,  625,  997,  1000, 1001, 1018,  1023,  1024,  1025,
                  2048, 2187, 3000, 4095, 4096, 4097, 8191, 10007, 16384, 20014, 44100})
        if (n < effort(100000, 2500)) all.push_back(n);
    return all;
}

template <class T>
class DctTest : public testing::Test {};
using Types = testing::Types<Kel32f, Kel64f>;

struct TypeNames {
    template <class T>
    static std::string GetName(int) {
        return sizeof(T) == 4 ? "32f" : "64f";
    }
};
TYPED_TEST_SUITE(DctTest, Types, TypeNames);

TYPED_TEST(DctTest, MatchesTheDefinitionInPlaceToo) {
    using T = TypeParam;
    for (const int len : lengths())
        for (const bool inverse : {false, true}) {
            const auto& direction = inverse ? Dct<T>::inverse : Dct<T>::forward;
            const auto plan = make(direction, len);
            const std::vector<T> x = dft_noise<T>(len, static_cast<std::size_t>(len));
            std::vector<T> y(x.size()), in_place = x;
            ASSERT_EQ(direction.run(x.data(), y.data(), plan.get(), nullptr), kelStatusOk);
            EXPECT_LE(error_of(x, y, inverse), dft_bound(Dct<T>::eps, len)) << len << " inverse " << inverse;
            ASSERT_EQ(direction.run(in_place.data(), in_place.data(), plan.get(), nullptr), kelStatusOk);
            EXPECT_EQ(std::memcmp(y.data(), in_place.data(), y.size() * sizeof(T)), 0) << len << " inverse " << inverse;
        }
}

TYPED_TEST(DctTest, ReturnsAndKeepsTheEnergy) {
    using T = TypeParam;
    for (const int len : {1, 2, 3, 4, 7, 8, 16, 60, 97, 101, 389, 1009, 1024, 2018, 4096}) {
        const auto forward = make(Dct<T>::forward, len), inverse = make(Dct<T>::inverse, len);
        const std::vector<T> x = dft_noise<T>(len, static_cast<std::size_t>(len));
        std::vector<T> y(x.size()), z(x.size());
        Dct<T>::forward.run(x.data(), y.data(), forward.get(), nullptr);
        Dct<T>::inverse.run(y.data(), z.data(), inverse.get(), nullptr);
        long double before = 0, after = 0, error = 0;
        for (std::size_t i = 0; i < x.size(); ++i) {
            before += static_cast<long double>(x[i]) * x[i];
            after += static_cast<long double>(y[i]) * y[i];
            error += (static_cast<long double>(z[i]) - x[i]) * (static_cast<long double>(z[i]) - x[i]);
        }
        EXPECT_NEAR(static_cast<double>(after / before), 1, 10 * Dct<T>::eps) << len;
        EXPECT_LE(static_cast<double>(std::sqrt(error / before)), 2 * dft_bound(Dct<T>::eps, len)) << len;
        const std::vector<T> constant(x.size(), T(1));
        Dct<T>::forward.run(constant.data(), y.data(), forward.get(), nullptr);
        EXPECT_NEAR(static_cast<double>(y[0]), std::sqrt(len), 4 * Dct<T>::eps * std::sqrt(len)) << len;
    }
}

TYPED_TEST(DctTest, StaysInsideItsArraysAtAnyAddress) {
    using T = TypeParam;
    for (const int len :
         {1,  2,   3,   4,   5,   6,   7,   8,   9,   15,  16,   17,   31,   32,   33,   34,   35,   60,   64,
          97, 100, 101, 102, 194, 243, 251, 256, 389, 509, 1000, 1001, 1009, 1018, 2048, 2187, 3000, 4096, 4099})
        for (const bool inverse : {false, true}) {
            const auto& direction = inverse ? Dct<T>::inverse : Dct<T>::forward;
            const auto plan = make(direction, len);
            const std::vector<T> x = dft_noise<T>(len, static_cast<std::size_t>(len));
            std::vector<T> wanted(x.size());
            direction.run(x.data(), wanted.data(), plan.get(), nullptr);
            int told = 0;
            direction.buffer_size(plan.get(), &told);
            const std::size_t bytes = x.size() * sizeof(T), room = static_cast<std::size_t>(told);
            GuardedMemory a(bytes + 1), b(bytes + 1), buffer(room + 1);
            for (int form = 0; form < 4; ++form) { // bit 0: at the end; bit 1: misaligned
                const auto place = [&](const GuardedMemory& m, std::size_t size) {
                    const std::size_t off = form & 2 ? 1 : 0;
                    return form & 1 ? m.end() - size - off : m.begin() + off;
                };
                auto* src = reinterpret_cast<T*>(place(a, bytes));
                auto* dst = reinterpret_cast<T*>(place(b, bytes));
                std::memcpy(static_cast<void*>(src), x.data(), bytes);
                ASSERT_TRUE(runs_without_fault([&] {
                    direction.run(src, dst, plan.get(), reinterpret_cast<Kel8u*>(place(buffer, room)));
                })) << len;
                EXPECT_EQ(std::memcmp(dst, wanted.data(), bytes), 0) << len << " form " << form;
            }
        }
}

TYPED_TEST(DctTest, ReportsTheToldBufferSizes) {
    struct Row {
        int len, hint;
        int bytes[2]; // of singles and of doubles
    };
    constexpr Row rows[] = {
        {1, 0, {0, 0}},          {2, 2, {0, 0}},           {3, 0, {28, 40}},          {4, 0, {0, 0}},
        {8, 0, {0, 0}},          {16, 0, {80, 144}},       {100, 0, {416, 816}},      {101, 0, {2064, 4112}},
        {128, 2, {528, 1040}},   {512, 2, {2064, 4112}},   {1000, 0, {16416, 32800}}, {1024, 0, {4112, 8208}},
        {1024, 1, {4112, 8208}}, {1024, 2, {8208, 16416}}, {2048, 2, {16416, 32800}}};
    for (const Row& row : rows) {
        EXPECT_EQ(size_of(Dct<TypeParam>::forward, row.len, row.hint), row.bytes[sizeof(TypeParam) == 8]) << row.len;
        EXPECT_EQ(size_of(Dct<TypeParam>::inverse, row.len, row.hint), row.bytes[sizeof(TypeParam) == 8]) << row.len;
    }
}

/// The checks of one direction, `other` being the other one.
template <class T, class D, class... Scale>
void expect_checks(const D& direction, const D& other, Scale... scale) {
    using Plan = typename D::Plan;
    Plan* untouched = reinterpret_cast<Plan*>(&untouched);
    Plan* const before = untouched;
    EXPECT_EQ(direction.make(nullptr, 0, 0), kelStatusNullPtr);
    for (int len : {0, -1, INT_MIN}) EXPECT_EQ(direction.make(&untouched, len, 0), kelStatusBadSize);
    for (int len : {INT_MAX, (1 << 30) - 1, (1 << 27) + 1})
        EXPECT_EQ(direction.make(&untouched, len, 2), kelStatusNoMemory) << len;
    EXPECT_EQ(untouched, before);
    EXPECT_EQ(direction.release(nullptr), kelStatusNullPtr);
    int size = -7;
    EXPECT_EQ(direction.buffer_size(nullptr, &size), kelStatusNullPtr);
    for (int len : {1, 8, 6}) {
        const auto plan = make(direction, len);
        EXPECT_EQ(direction.buffer_size(plan.get(), nullptr), kelStatusNullPtr);
        EXPECT_EQ(other.buffer_size(plan.get(), &size), kelStatusContextMismatch);
        EXPECT_EQ(other.release(plan.get()), kelStatusContextMismatch);
        EXPECT_EQ(size, -7);
        T x[8] = {1}, y[8] = {9};
        EXPECT_EQ(direction.run(x, y, nullptr, scale..., nullptr), kelStatusNullPtr);
        EXPECT_EQ(other.run(nullptr, y, plan.get(), scale..., nullptr), kelStatusContextMismatch);
        EXPECT_EQ(direction.run(nullptr, y, plan.get(), scale..., nullptr), kelStatusNullPtr);
        EXPECT_EQ(direction.run(x, nullptr, plan.get(), scale..., nullptr), kelStatusNullPtr);
        EXPECT_EQ(y[0], 9);
    }
}

TYPED_TEST(DctTest, ChecksInOrderAndStoresNothing) {
    expect_checks<TypeParam>(Dct<TypeParam>::forward, Dct<TypeParam>::inverse);
    expect_checks<TypeParam>(Dct<TypeParam>::inverse, Dct<TypeParam>::forward);
}

template <class T, class D, class... Scale>
void expect_clean_failures(const D& direction, int len, Scale... scale) {
    for_each_allocation_failure([&] {
        typename D::Plan* plan = nullptr;
        const KelStatus status = direction.make(&plan, len, 0);
        EXPECT_EQ(plan == nullptr, status != kelStatusOk);
        if (plan) direction.release(plan);
        return status;
    });
    if (len <= (sizeof...(scale) ? 1 : 1000)) return; // which find room on the stack
    const auto plan = make(direction, len);
    std::vector<T> x(static_cast<std::size_t>(len), T(3));
    for_each_allocation_failure([&] { return direction.run(x.data(), x.data(), plan.get(), scale..., nullptr); });
}

TYPED_TEST(DctTest, FailsForWantOfMemoryAndLeaksNothing) {
    for (const int len : {8, 15, 64, 509, 1018, 3000, 4096}) {
        expect_clean_failures<TypeParam>(Dct<TypeParam>::forward, len);
        expect_clean_failures<TypeParam>(Dct<TypeParam>::inverse, len);
    }
}

TYPED_TEST(DctTest, ThreadsShareAPlan) {
    using T = TypeParam;
    for (const int len : {509, 1000, 4096}) {
        const auto plan = make(Dct<T>::forward, len);
        const std::vector<T> x = dft_noise<T>(len, static_cast<std::size_t>(len));
        std::vector<T> wanted(x.size()), results[3];
        Dct<T>::forward.run(x.data(), wanted.data(), plan.get(), nullptr);
        std::vector<std::thread> threads;
        for (auto& result : results)
            threads.emplace_back([&] {
                result.resize(x.size());
                for (int i = 0; i < 20; ++i) Dct<T>::forward.run(x.data(), result.data(), plan.get(), nullptr);
            });
        for (std::thread& thread : threads) thread.join();
        for (const auto& result : results) EXPECT_EQ(result, wanted) << len;
    }
}

TEST(Dct16s, IsTheSingleTransformRounded) {
    for (const int len : {2, 3, 4, 8, 15, 16, 97, 101, 509, 1000, 1024})
        for (const int scale : {0, 2, -2, 7, 100, -100, INT_MAX, INT_MIN})
            for (const bool inverse : {false, true}) {
                const auto& direction = inverse ? inverse_16s : forward_16s;
                const auto& single = inverse ? Dct<Kel32f>::inverse : Dct<Kel32f>::forward;
                const auto plan = make(direction, len, 2);
                const auto single_plan = make(single, len);
                Random random("integers");
                std::vector<Kel16s> x(static_cast<std::size_t>(len)), y(x.size()), wanted(x.size());
                for (Kel16s& v : x) v = static_cast<Kel16s>(random.below(65536) - 32768);
                std::vector<Kel32f> values(x.begin(), x.end());
                single.run(values.data(), values.data(), single_plan.get(), nullptr);
                kelsConvert_32f16s_Sfs(values.data(), wanted.data(), len, 1, scale);
                ASSERT_EQ(direction.run(x.data(), y.data(), plan.get(), scale, nullptr), kelStatusOk);
                EXPECT_EQ(y, wanted) << len << " scale " << scale << " inverse " << inverse;
                direction.run(x.data(), x.data(), plan.get(), scale, nullptr);
                EXPECT_EQ(x, wanted) << len << " in place";
            }
}

TEST(Dct16s, OneValueIsScaledWithTiesUp) {
    for (const auto* direction : {&forward_16s, &inverse_16s}) {
        const auto plan = make(*direction, 1);
        const auto scaled = [&](Kel16s x, int scale) {
            Kel16s y = 77;
            EXPECT_EQ(direction->run(&x, &y, plan.get(), scale, nullptr), kelStatusOk);
            return y;
        };
        EXPECT_EQ(scaled(5, 1), 3);
        EXPECT_EQ(scaled(-5, 1), -2);
        EXPECT_EQ(scaled(5, 0), 5);
        EXPECT_EQ(scaled(5, -20), 32767);
        EXPECT_EQ(scaled(-32768, 32), 0);
    }
}

TEST(Dct16s, ChecksPlansAndBuffers) {
    expect_checks<Kel16s>(forward_16s, inverse_16s, 0);
    expect_checks<Kel16s>(inverse_16s, forward_16s, 0);
    for (const auto* direction : {&forward_16s, &inverse_16s}) {
        EXPECT_EQ(size_of(*direction, 1), 0);
        EXPECT_EQ(size_of(*direction, 8), 48);
        EXPECT_EQ(size_of(*direction, 101), 420 + 2064);
        EXPECT_EQ(size_of(*direction, 1024, 2), 4112 + 4112);
        for (const int len : {1, 8, 101, 1009}) expect_clean_failures<Kel16s>(*direction, len, 0);
    }
    for (const int len : {1, 6, 64, 101, 1009}) {
        const auto plan = make(forward_16s, len);
        const auto room = static_cast<std::size_t>(size_of(forward_16s, len)),
                   bytes = 2 * static_cast<std::size_t>(len);
        GuardedMemory data(bytes), buffer(room + 1);
        ASSERT_TRUE(runs_without_fault([&] {
            auto* x = reinterpret_cast<Kel16s*>(data.end() - bytes);
            forward_16s.run(x, x, plan.get(), 1, reinterpret_cast<Kel8u*>(buffer.end() - room));
        })) << len;
    }
}

} // namespace
