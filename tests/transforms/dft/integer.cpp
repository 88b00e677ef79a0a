// Transforms of 16-bit data of any length: the single-precision transform between two conversions, to the bit.

#include "kels/conversion.h"
#include "support/allocation_faults.h"
#include "support/guarded_memory.h"
#include "transforms/dft/functions.h"

#include <climits>
#include <cstring>

namespace {

using namespace kels_test;

using Plan = KelsDftPlan_16s;
constexpr DftPlanFunctions<Plan> complex_16s = KELS_PLAN_FUNCTIONS(C_16sc), split_16s = KELS_PLAN_FUNCTIONS(C_16s),
                                 real_16s = KELS_PLAN_FUNCTIONS(R_16s);

using Real = KelStatus (*)(const Kel16s*, Kel16s*, const Plan*, int, Kel8u*);
constexpr Real to[] = {kelsDFTFwd_RToPerm_16s_Sfs, kelsDFTFwd_RToPack_16s_Sfs, kelsDFTFwd_RToCCS_16s_Sfs};
constexpr Real from[] = {kelsDFTInv_PermToR_16s_Sfs, kelsDFTInv_PackToR_16s_Sfs, kelsDFTInv_CCSToR_16s_Sfs};

constexpr int lengths[] = {2, 3, 4, 5, 6, 7, 8, 15, 16, 60, 97, 181, 240, 257, 1000, 1009, 2018};
constexpr int scales[] = {0, 1, 5, -1, -3, 12, 100, -100, 1000, INT_MAX, INT_MIN};

std::vector<Kel16s> integers(int len, std::size_t count) {
    Random random("integers " + std::to_string(len));
    std::vector<Kel16s> x(count);
    for (Kel16s& v : x) v = static_cast<Kel16s>(random.below(65536) - 32768);
    return x;
}

std::vector<Kel16s> rounded(const std::vector<Kel32f>& x, int scale) {
    std::vector<Kel16s> y(x.size());
    kelsConvert_32f16s_Sfs(x.data(), y.data(), static_cast<int>(x.size()), 1, scale);
    return y;
}

TEST(Dft16s, ComplexIsTheSingleTransformRounded) {
    for (const int len : lengths)
        for (const int scale : scales)
            for (int sign : {-1, 1}) {
                const auto n = static_cast<std::size_t>(len);
                const int flag = flags[n % 4];
                const auto plan = make_dft(complex_16s, len, flag), split_plan = make_dft(split_16s, len, flag);
                const auto single = make_dft(Dft<Kel32f>::complex, len, flag);
                const std::vector<Kel16s> x = integers(len, 2 * n);
                std::vector<Kel32f> values(x.begin(), x.end());
                auto* points = reinterpret_cast<Kel32fc*>(values.data());
                (sign < 0 ? kelsDFTFwd_CToC_32fc : kelsDFTInv_CToC_32fc)(points, points, single.get(), nullptr);
                const std::vector<Kel16s> wanted = rounded(values, scale);

                std::vector<Kel16s> y = x;
                auto* samples = reinterpret_cast<Kel16sc*>(y.data());
                ASSERT_EQ((sign < 0 ? kelsDFTFwd_CToC_16sc_Sfs : kelsDFTInv_CToC_16sc_Sfs)(samples, samples, plan.get(),
                                                                                           scale, nullptr),
                          kelStatusOk);
                EXPECT_EQ(y, wanted) << len << " scale " << scale;
                std::vector<Kel16s> re(n), im(n), joined(2 * n);
                for (std::size_t i = 0; i < n; ++i) re[i] = x[2 * i], im[i] = x[2 * i + 1];
                (sign < 0 ? kelsDFTFwd_CToC_16s_Sfs : kelsDFTInv_CToC_16s_Sfs)(
                    re.data(), im.data(), re.data(), im.data(), split_plan.get(), scale, nullptr);
                for (std::size_t i = 0; i < n; ++i) joined[2 * i] = re[i], joined[2 * i + 1] = im[i];
                EXPECT_EQ(joined, wanted) << len << " scale " << scale;
            }
}

TEST(Dft16s, RealIsTheSingleTransformRoundedInEveryLayout) {
    for (const int len : lengths)
        for (const int scale : scales)
            for (int layout = 0; layout < 3; ++layout) {
                const auto n = static_cast<std::size_t>(len), packed = layout == 2 ? (n | 1) + 1 : n;
                const int flag = flags[n % 4];
                const auto plan = make_dft(real_16s, len, flag);
                const auto single = make_dft(Dft<Kel32f>::real, len, flag);
                std::vector<Kel16s> x = integers(len, packed), bins(packed + 1, 77), samples = x;
                std::vector<Kel32f> values(x.begin(), x.end());
                Dft<Kel32f>::to[layout](values.data(), values.data(), single.get(), nullptr);
                ASSERT_EQ(to[layout](x.data(), bins.data(), plan.get(), scale, nullptr), kelStatusOk);
                EXPECT_EQ(bins.back(), 77);
                bins.pop_back();
                EXPECT_EQ(bins, rounded(values, scale)) << len << " scale " << scale << " layout " << layout;

                values.assign(x.begin(), x.end());
                Dft<Kel32f>::from[layout](values.data(), values.data(), single.get(), nullptr);
                ASSERT_EQ(from[layout](samples.data(), samples.data(), plan.get(), scale, nullptr), kelStatusOk);
                samples.resize(n);
                values.resize(n);
                EXPECT_EQ(samples, rounded(values, scale)) << len << " scale " << scale << " layout " << layout;
            }
}

TEST(Dft16s, OneValueIsScaledWithTiesUp) {
    struct Row {
        Kel16s value;
        int scale;
        Kel16s wanted;
    };
    constexpr Row rows[] = {{5, 0, 5},        {5, 1, 3},         {-5, 1, -2},         {1, 1, 1},
                            {-1, 1, 0},       {32767, 15, 1},    {32767, 16, 0},      {-32768, 16, 0},
                            {-32768, 15, -1}, {-32768, 31, 0},   {32767, 32, 0},      {-32768, INT_MAX, 0},
                            {3, -2, 12},      {3, -14, 32767},   {-3, -14, -32768},   {-2, -14, -32768},
                            {1, -15, 32767},  {-1, -15, -32768}, {1, INT_MIN, 32767}, {0, INT_MIN, 0}};
    const auto complex = make_dft(complex_16s, 1, 0), split = make_dft(split_16s, 1, 3),
               real = make_dft(real_16s, 1, 0);
    for (const Row& row : rows) {
        const Kel16sc x = {row.value, 5};
        Kel16sc y{};
        Kel16s im = 5, re = 0, packed[3] = {9, 9, 9};
        EXPECT_EQ(kelsDFTFwd_CToC_16sc_Sfs(&x, &y, complex.get(), row.scale, nullptr), kelStatusOk);
        EXPECT_EQ(y.re, row.wanted) << row.value << " " << row.scale;
        kelsDFTInv_CToC_16s_Sfs(&row.value, &im, &im, &re, split.get(), row.scale, nullptr);
        EXPECT_EQ(im, row.wanted) << row.value << " " << row.scale;
        EXPECT_EQ(re, y.im) << row.value << " " << row.scale;
        for (int layout = 0; layout < 3; ++layout) {
            packed[0] = packed[1] = packed[2] = 9;
            to[layout](&row.value, packed, real.get(), row.scale, nullptr);
            EXPECT_EQ(packed[0], row.wanted);
            EXPECT_EQ(packed[1], layout == 2 ? 0 : 9);
            EXPECT_EQ(packed[2], 9);
            from[layout](&row.value, packed, real.get(), row.scale, nullptr);
            EXPECT_EQ(packed[0], row.wanted);
        }
    }
}

TEST(Dft16s, ChecksPlansAndBuffers) {
    Plan* untouched = reinterpret_cast<Plan*>(&untouched);
    Plan* const before = untouched;
    for (const auto* functions : {&complex_16s, &split_16s, &real_16s}) {
        EXPECT_EQ(functions->make(nullptr, 0, 0, 0), kelStatusNullPtr);
        EXPECT_EQ(functions->make(&untouched, 0, 0, 0), kelStatusBadSize);
        EXPECT_EQ(functions->make(&untouched, 2, 0, 0), kelStatusBadFftFlag);
        EXPECT_EQ(functions->make(&untouched, INT_MAX, kelFftNormNone, 0), kelStatusNoMemory);
        EXPECT_EQ(untouched, before);
        EXPECT_EQ(functions->release(nullptr), kelStatusNullPtr);
        EXPECT_EQ(functions->buffer_size(nullptr, nullptr), kelStatusNullPtr);
    }
    const auto size = [](const DftPlanFunctions<Plan>& functions, int len) {
        int bytes = -1;
        EXPECT_EQ(functions.buffer_size(make_dft(functions, len).get(), &bytes), kelStatusOk);
        return bytes;
    };
    for (const auto* functions : {&complex_16s, &split_16s}) {
        EXPECT_EQ(size(*functions, 1), 0);
        EXPECT_EQ(size(*functions, 4), 48);
        EXPECT_EQ(size(*functions, 5), 56 + 56);
        EXPECT_EQ(size(*functions, 8), 80);
        EXPECT_EQ(size(*functions, 151), 1224 + 4112);
    }
    EXPECT_EQ(size(real_16s, 1), 0);
    EXPECT_EQ(size(real_16s, 4), 40);
    EXPECT_EQ(size(real_16s, 181), 748 + 4112);

    const auto complex = make_dft(complex_16s, 6), split = make_dft(split_16s, 6), real = make_dft(real_16s, 6);
    EXPECT_EQ(complex_16s.release(split.get()), kelStatusContextMismatch);
    EXPECT_EQ(real_16s.release(complex.get()), kelStatusContextMismatch);
    Kel16s x[12] = {}, y[12];
    std::fill(std::begin(y), std::end(y), Kel16s{9});
    auto *points = reinterpret_cast<Kel16sc*>(x), *results = reinterpret_cast<Kel16sc*>(y);
    for (const auto run : {kelsDFTFwd_CToC_16sc_Sfs, kelsDFTInv_CToC_16sc_Sfs}) {
        EXPECT_EQ(run(points, results, nullptr, 0, nullptr), kelStatusNullPtr);
        EXPECT_EQ(run(nullptr, results, split.get(), 0, nullptr), kelStatusContextMismatch);
        EXPECT_EQ(run(nullptr, results, complex.get(), 0, nullptr), kelStatusNullPtr);
        EXPECT_EQ(run(points, nullptr, complex.get(), 0, nullptr), kelStatusNullPtr);
    }
    for (const auto run : {kelsDFTFwd_CToC_16s_Sfs, kelsDFTInv_CToC_16s_Sfs}) {
        EXPECT_EQ(run(x, x, y, y, nullptr, 0, nullptr), kelStatusNullPtr);
        EXPECT_EQ(run(nullptr, x, y, y, complex.get(), 0, nullptr), kelStatusContextMismatch);
        EXPECT_EQ(run(nullptr, x, y, y, split.get(), 0, nullptr), kelStatusNullPtr);
        EXPECT_EQ(run(x, nullptr, y, y, split.get(), 0, nullptr), kelStatusNullPtr);
        EXPECT_EQ(run(x, x, nullptr, y, split.get(), 0, nullptr), kelStatusNullPtr);
        EXPECT_EQ(run(x, x, y, nullptr, split.get(), 0, nullptr), kelStatusNullPtr);
    }
    for (const auto& calls : {to, from})
        for (int layout = 0; layout < 3; ++layout) {
            EXPECT_EQ(calls[layout](x, y, nullptr, 0, nullptr), kelStatusNullPtr);
            EXPECT_EQ(calls[layout](nullptr, y, complex.get(), 0, nullptr), kelStatusContextMismatch);
            EXPECT_EQ(calls[layout](nullptr, y, real.get(), 0, nullptr), kelStatusNullPtr);
            EXPECT_EQ(calls[layout](x, nullptr, real.get(), 0, nullptr), kelStatusNullPtr);
        }
    for (const Kel16s v : y) EXPECT_EQ(v, 9);
}

TEST(Dft16s, StaysInsideItsArraysAndLeaksNothing) {
    for (const int len : {1, 2, 5, 8, 97, 181, 1009}) {
        const auto n = static_cast<std::size_t>(len), bytes = 2 * n * sizeof(Kel16s);
        const auto complex = make_dft(complex_16s, len), real = make_dft(real_16s, len);
        int size = 0;
        complex_16s.buffer_size(complex.get(), &size);
        const std::size_t ccs = ((n | 1) + 1) * sizeof(Kel16s);
        GuardedMemory a(std::max(bytes, ccs)), b(ccs), buffer(static_cast<std::size_t>(size) + 1);
        for (const bool at_end : {false, true}) {
            const auto place = [&](const GuardedMemory& m, std::size_t count) {
                return reinterpret_cast<Kel16s*>(at_end ? m.end() - count : m.begin());
            };
            auto* work = reinterpret_cast<Kel8u*>(place(buffer, static_cast<std::size_t>(size)));
            ASSERT_TRUE(runs_without_fault([&] {
                auto* points = reinterpret_cast<Kel16sc*>(place(a, bytes));
                kelsDFTFwd_CToC_16sc_Sfs(points, points, complex.get(), 3, len > 1 ? work : nullptr);
                for (int layout = 0; layout < 3; ++layout) {
                    to[layout](place(a, n * 2), place(b, layout == 2 ? ccs : n * 2), real.get(), 3, nullptr);
                    from[layout](place(b, layout == 2 ? ccs : n * 2), place(a, n * 2), real.get(), 3, nullptr);
                }
            })) << len;
        }
        for (const auto* functions : {&complex_16s, &split_16s, &real_16s})
            for_each_allocation_failure([&] {
                Plan* plan = nullptr;
                const KelStatus status = functions->make(&plan, len, kelFftNormNone, 0);
                if (plan) functions->release(plan);
                return status;
            });
        if (len == 1) continue; // which takes no memory
        Kel16s x[4100] = {1, 2, 3};
        auto* points = reinterpret_cast<Kel16sc*>(x);
        for_each_allocation_failure(
            [&] { return kelsDFTFwd_CToC_16sc_Sfs(points, points, complex.get(), 0, nullptr); });
        for_each_allocation_failure([&] { return to[2](x, x, real.get(), 0, nullptr); });
    }
}

} // namespace
