// Convolutions, correlations, spectra at a frequency and medians against their definitions; rate changes, searches and
// running estimates whole and in pieces.

#include "filters/convolution/definitions.h"
#include "filters/medians.h"
#include "fuzz/sequence.h"
#include "kels/goertzel.h"
#include "kels/rate_change.h"
#include "kels/search.h"

#include <climits>

namespace {

using namespace kels_test;
using namespace filter_test;

template <class T>
constexpr bool is_integer = type_of<T>().kind == Kind::s16;

/// What lies between sums that went other ways: of transforms, or of another order. 16-bit sums have become singles.
template <class T>
double noise_of(const std::vector<T>& a, const std::vector<T>& b, int scale) {
    const double level = std::min(magnitude(a) * (1 + magnitude(b)), magnitude(b) * (1 + magnitude(a)));
    if (is_integer<T>) return 1 + std::ldexp(level, -scale - 18);
    return level * (type_of<T>().kind == Kind::f64 ? 0x1p-46 : 0x1p-17);
}

template <class T, auto function>
void convolve(Input& in) {
    const int n = in.length(700), m = in.length(700), scale = in.scale_factor();
    const auto a = in.data<T>(n, Style::tame), b = in.data<T>(m, Style::tame);
    const auto convolved = [&](const std::vector<T>& x, const std::vector<T>& y) {
        const GuardedArray<T> p(x, in.edge()), q(y, in.edge());
        GuardedArray<T> to(x.size() + y.size() - 1, in.edge());
        const auto run = [&] {
            return call(function, scale, p.data(), static_cast<int>(x.size()), q.data(), static_cast<int>(y.size()),
                        to.data());
        };
        if (in.one_in(8)) { // the short ones of integers have a status of their own for this
            const FailingAllocation failing(1 + in.below(3));
            const KelStatus status = run();
            EXPECT_TRUE(!failing.happened() || status == kelStatusNoMemory || status == kelStatusNullPtr) << status;
        }
        EXPECT_EQ(run(), kelStatusOk);
        return to.values();
    };
    const auto sums = convolved(a, b);
    if (n + m < 150) digest(function, sums); // longer ones go through transforms
    const auto exact = filter_test::convolved(a, b);
    const double noise = noise_of(a, b, scale);
    for (std::size_t i = 0; i < sums.size(); ++i) {
        const auto wanted = is_integer<T> ? std::clamp(std::ldexp(exact[i], -scale), -32768.0L, 32767.0L) : exact[i];
        ASSERT_NEAR(sums[i], wanted, noise) << "lengths " << n << " and " << m << ", " << i;
    }
}

template <class T, auto plain, auto biased, auto unbiased, auto cross>
void correlate(Input& in) {
    const int n = in.length(700), m = in.length(700), lags = in.length(900), scale = in.scale_factor();
    const int low = in.below(1400) - 700;
    const auto a = in.data<T>(n, Style::tame), b = in.data<T>(m, Style::tame);
    const GuardedArray<T> x(a, in.edge()), y(b, in.edge());
    const auto count = static_cast<std::size_t>(lags);
    const auto of_itself = results<T>(in, count, [&](T* to) { return call(plain, scale, x.data(), n, to, lags); });
    const auto with_itself =
        results<T>(in, count, [&](T* to) { return call(cross, scale, x.data(), n, x.data(), n, to, lags, 0); });
    expect_near(of_itself, with_itself, 2 * noise_of(a, a, scale), "with itself");
    const bool direct = lags < 90;
    for (const auto function : {plain, biased, unbiased}) {
        const auto sums = results<T>(in, count, [&](T* to) { return call(function, scale, x.data(), n, to, lags); });
        if (direct) digest(function, sums);
    }
    // The lags of a part are among those of the whole.
    const auto all =
        results<T>(in, count, [&](T* to) { return call(cross, scale, x.data(), n, y.data(), m, to, lags, low); });
    if (direct) digest(cross, all);
    const int skip = in.below(lags);
    const auto some = results<T>(in, count - static_cast<std::size_t>(skip), [&](T* to) {
        return call(cross, scale, x.data(), n, y.data(), m, to, lags - skip, low + skip);
    });
    expect_near(piece(all, skip, lags - skip), some, 2 * noise_of(a, b, scale), "lags");
}

/// Two frequencies at once are two frequencies.
template <class T, class Frequency, auto one, auto two>
void evaluate_spectrum(Input& in) {
    const int n = in.length(2000), scale = in.scale_factor();
    const auto x = in.data<T>(n, Style::tame);
    const std::vector<Frequency> frequencies = {static_cast<Frequency>(in.below(999) / 999.0),
                                                static_cast<Frequency>(in.below(998) / 998.0)};
    const GuardedArray<T> source(x, in.edge());
    const GuardedArray<Frequency> at(frequencies, in.edge());
    const auto both = results<T>(in, 2, [&](T* to) { return call(two, scale, source.data(), n, to, at.data()); });
    std::vector<T> each;
    for (const Frequency f : frequencies)
        append(each, results<T>(in, 1, [&](T* to) { return call(one, scale, source.data(), n, to, f); }));
    expect_near(both, each, noise_of(x, {{1, 0}}, scale), "frequencies");
    digest(two, both);
    digest(one, each);
}

template <class T, auto function, auto in_place>
void find_medians(Input& in) {
    const int n = in.length(800), mask = in.length(200), half = (mask - 1) / 2;
    auto x = in.data<T>(n, Style::finite);
    if (in.below(2) == 0) // few values, often equal
        for (T& v : x) v = static_cast<T>(std::fmod(static_cast<double>(v) * 8, 4));
    for (T& v : x)
        if (v == 0) v = 0; // of one sign
    const KelStatus wanted_status = mask % 2 == 0 && mask > 0 ? kelStatusEvenMedianMask : kelStatusOk;
    const GuardedArray<T> source(x, in.edge());
    const auto checked = [&](KelStatus status) {
        EXPECT_TRUE(status == wanted_status || status == kelStatusNoMemory) << status;
        return status == wanted_status ? kelStatusOk : status;
    };
    const auto y = results<T>(in, x.size(), [&](T* to) { return checked(function(source.data(), to, n, mask)); });
    expect_same(y, results_in_place(in, x, [&](T* to) { return checked(in_place(to, n, mask)); }), "in place");
    digest(function, y);
    expect_same(y, medians(x, 2 * half + 1), "medians");
}

template <class T, auto down, auto up>
void change_rate(Input& in) {
    const int n = in.length(800), cut = in.below(n), factor = 1 + in.below(9), phase = in.below(factor);
    const auto x = in.data<T>(n);
    int at = phase, at_of_parts = phase;
    const auto whole = at_once_and_cut(&at, &at_of_parts, n, cut, [&](int* skipped, int from, int count) {
        const GuardedArray<T> source(piece(x, from, count), in.edge());
        const int most = std::max(0, (count - *skipped + factor - 1) / factor);
        GuardedArray<T> to(static_cast<std::size_t>(most), in.edge());
        int stored = -1;
        EXPECT_EQ(down(source.data(), count, to.data(), &stored, factor, skipped), kelStatusOk);
        EXPECT_EQ(stored, most);
        return to.values();
    });
    EXPECT_EQ(at, at_of_parts);
    digest(down, whole);
    const GuardedArray<T> source(x, in.edge());
    int stored = -1;
    const auto more = results<T>(in, static_cast<std::size_t>(n * factor),
                                 [&](T* to) { return up(source.data(), n, to, &stored, factor, &phase); });
    EXPECT_EQ(stored, n * factor);
    digest(up, more);
    GuardedArray<T> back(x.size(), in.edge());
    at = phase;
    EXPECT_EQ(down(more.data(), n * factor, back.data(), &stored, factor, &at), kelStatusOk);
    expect_same(back.values(), x, "more and fewer");
}

void find_nearest(Input& in) {
    const int n = in.length(300), entries = in.length(300);
    const auto x = in.data<Kel16u>(n);
    auto table = in.data<Kel16u>(entries);
    std::sort(table.begin(), table.end());
    const GuardedArray<Kel16u> values(x, in.edge()), sorted(table, in.edge());
    GuardedArray<int> indices(x.size(), in.edge());
    const auto nearest = results<Kel16u>(in, x.size(), [&](Kel16u* to) {
        return kelsFindNearest_16u(values.data(), to, indices.data(), n, sorted.data(), entries);
    });
    digest(kelsFindNearest_16u, nearest);
    for (std::size_t i = 0; i < x.size(); ++i) {
        Kel16u value;
        int index;
        EXPECT_EQ(kelsFindNearestOne_16u(x[i], &value, &index, sorted.data(), entries), kelStatusOk);
        EXPECT_EQ(value, nearest[i]);
        EXPECT_EQ(index, indices.data()[i]);
        EXPECT_EQ(value, table[static_cast<std::size_t>(index)]);
    }
}

template <auto function>
void estimate(Input& in) {
    const int n = in.length(600), cut = in.below(n), shift = in.below(40) - 4;
    const auto x = in.data<Kel16s>(n);
    const auto alpha = in.data<Kel16s>(1)[0];
    const auto start = in.data<Kel32s>(1)[0];
    Kel32s whole = start, parts = start;
    const GuardedArray<Kel16s> source(x, in.edge());
    EXPECT_EQ(function(source.data(), n, &whole, shift, alpha), kelStatusOk);
    if (cut > 0) {
        EXPECT_EQ(function(source.data(), cut, &parts, shift, alpha), kelStatusOk);
    }
    const bool saturated = parts == INT_MAX || parts == INT_MIN; // a whole passes through there and may come back
    EXPECT_EQ(function(source.data() + cut, n - cut, &parts, shift, alpha), kelStatusOk);
    if (!saturated) {
        EXPECT_EQ(whole, parts);
    }
    digest(function, std::vector<Kel32s>{whole});
}

#define KELS_CORRELATE(suffix, scaled)                                                                                 \
    correlate<Kel##suffix, kelsAutoCorr_##suffix##scaled, kelsAutoCorr_NormA_##suffix##scaled,                         \
              kelsAutoCorr_NormB_##suffix##scaled, kelsCrossCorr_##suffix##scaled>
#define KELS_MEDIAN(suffix) find_medians<Kel##suffix, kelsFilterMedian_##suffix, kelsFilterMedian_##suffix##_I>
#define KELS_RATE(suffix)   change_rate<Kel##suffix, kelsSampleDown_##suffix, kelsSampleUp_##suffix>

const bool added =
    add_target("vectors", {convolve<Kel32f, kelsConv_32f>,
                           convolve<Kel16s, kelsConv_16s_Sfs>,
                           KELS_CORRELATE(32f, ),
                           KELS_CORRELATE(64f, ),
                           KELS_CORRELATE(32fc, ),
                           KELS_CORRELATE(64fc, ),
                           KELS_CORRELATE(16s, _Sfs),
                           evaluate_spectrum<Kel32fc, Kel32f, kelsGoertz_32fc, kelsGoertzTwo_32fc>,
                           evaluate_spectrum<Kel64fc, Kel64f, kelsGoertz_64fc, kelsGoertzTwo_64fc>,
                           evaluate_spectrum<Kel16sc, Kel32f, kelsGoertz_16sc_Sfs, kelsGoertzTwo_16sc_Sfs>,
                           KELS_MEDIAN(8u),
                           KELS_MEDIAN(16s),
                           KELS_MEDIAN(32f),
                           KELS_MEDIAN(64f),
                           KELS_RATE(16s),
                           KELS_RATE(16sc),
                           KELS_RATE(32f),
                           KELS_RATE(32fc),
                           KELS_RATE(64f),
                           KELS_RATE(64fc),
                           find_nearest,
                           estimate<kelsUpdateLinear_16s32s_I>,
                           estimate<kelsUpdatePower_16s32s_I>});

} // namespace
