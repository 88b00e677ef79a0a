// FIR filters without a state: every family and form against the defining sums, and against the filters with one.

#include "kels/fir_direct.h"

#include "filters/fir/reference.h"
#include "support/allocation_faults.h"
#include "support/guarded_memory.h"

#include <climits>

namespace {

using namespace fir_test;

struct Direct_32f : Family_32f {
    static constexpr auto direct_one = kelsFIROne_Direct_32f;
    static constexpr auto direct_one_in_place = kelsFIROne_Direct_32f_I;
    static constexpr auto direct_block = kelsFIR_Direct_32f;
    static constexpr auto direct_block_in_place = kelsFIR_Direct_32f_I;
    static constexpr auto direct_rates = kelsFIRMR_Direct_32f;
    static constexpr auto direct_rates_in_place = kelsFIRMR_Direct_32f_I;
};

struct Direct_32fc : Family_32fc {
    static constexpr auto direct_one = kelsFIROne_Direct_32fc;
    static constexpr auto direct_one_in_place = kelsFIROne_Direct_32fc_I;
    static constexpr auto direct_block = kelsFIR_Direct_32fc;
    static constexpr auto direct_block_in_place = kelsFIR_Direct_32fc_I;
    static constexpr auto direct_rates = kelsFIRMR_Direct_32fc;
    static constexpr auto direct_rates_in_place = kelsFIRMR_Direct_32fc_I;
};

struct Direct_32f_16s : Family_32f_16s {
    static constexpr auto direct_one = kelsFIROne32f_Direct_16s_Sfs;
    static constexpr auto direct_one_in_place = kelsFIROne32f_Direct_16s_ISfs;
    static constexpr auto direct_block = kelsFIR32f_Direct_16s_Sfs;
    static constexpr auto direct_block_in_place = kelsFIR32f_Direct_16s_ISfs;
    static constexpr auto direct_rates = kelsFIRMR32f_Direct_16s_Sfs;
    static constexpr auto direct_rates_in_place = kelsFIRMR32f_Direct_16s_ISfs;
};

struct Direct_32fc_16sc : Family_32fc_16sc {
    static constexpr auto direct_one = kelsFIROne32fc_Direct_16sc_Sfs;
    static constexpr auto direct_one_in_place = kelsFIROne32fc_Direct_16sc_ISfs;
    static constexpr auto direct_block = kelsFIR32fc_Direct_16sc_Sfs;
    static constexpr auto direct_block_in_place = kelsFIR32fc_Direct_16sc_ISfs;
    static constexpr auto direct_rates = kelsFIRMR32fc_Direct_16sc_Sfs;
    static constexpr auto direct_rates_in_place = kelsFIRMR32fc_Direct_16sc_ISfs;
};

struct Direct_32s_16s : Family_32s_16s {
    static constexpr auto direct_one = kelsFIROne32s_Direct_16s_Sfs;
    static constexpr auto direct_one_in_place = kelsFIROne32s_Direct_16s_ISfs;
    static constexpr auto direct_block = kelsFIR32s_Direct_16s_Sfs;
    static constexpr auto direct_block_in_place = kelsFIR32s_Direct_16s_ISfs;
    static constexpr auto direct_rates = kelsFIRMR32s_Direct_16s_Sfs;
    static constexpr auto direct_rates_in_place = kelsFIRMR32s_Direct_16s_ISfs;
};

struct Direct_32sc_16sc : Family_32sc_16sc {
    static constexpr auto direct_one = kelsFIROne32sc_Direct_16sc_Sfs;
    static constexpr auto direct_one_in_place = kelsFIROne32sc_Direct_16sc_ISfs;
    static constexpr auto direct_block = kelsFIR32sc_Direct_16sc_Sfs;
    static constexpr auto direct_block_in_place = kelsFIR32sc_Direct_16sc_ISfs;
    static constexpr auto direct_rates = kelsFIRMR32sc_Direct_16sc_Sfs;
    static constexpr auto direct_rates_in_place = kelsFIRMR32sc_Direct_16sc_ISfs;
};

struct Direct_64f : Family_64f {
    static constexpr auto direct_one = kelsFIROne_Direct_64f;
    static constexpr auto direct_one_in_place = kelsFIROne_Direct_64f_I;
    static constexpr auto direct_block = kelsFIR_Direct_64f;
    static constexpr auto direct_block_in_place = kelsFIR_Direct_64f_I;
    static constexpr auto direct_rates = kelsFIRMR_Direct_64f;
    static constexpr auto direct_rates_in_place = kelsFIRMR_Direct_64f_I;
};

struct Direct_64fc : Family_64fc {
    static constexpr auto direct_one = kelsFIROne_Direct_64fc;
    static constexpr auto direct_one_in_place = kelsFIROne_Direct_64fc_I;
    static constexpr auto direct_block = kelsFIR_Direct_64fc;
    static constexpr auto direct_block_in_place = kelsFIR_Direct_64fc_I;
    static constexpr auto direct_rates = kelsFIRMR_Direct_64fc;
    static constexpr auto direct_rates_in_place = kelsFIRMR_Direct_64fc_I;
};

struct Direct_64f_32f : Family_64f_32f {
    static constexpr auto direct_one = kelsFIROne64f_Direct_32f;
    static constexpr auto direct_one_in_place = kelsFIROne64f_Direct_32f_I;
    static constexpr auto direct_block = kelsFIR64f_Direct_32f;
    static constexpr auto direct_block_in_place = kelsFIR64f_Direct_32f_I;
    static constexpr auto direct_rates = kelsFIRMR64f_Direct_32f;
    static constexpr auto direct_rates_in_place = kelsFIRMR64f_Direct_32f_I;
};

struct Direct_64fc_32fc : Family_64fc_32fc {
    static constexpr auto direct_one = kelsFIROne64fc_Direct_32fc;
    static constexpr auto direct_one_in_place = kelsFIROne64fc_Direct_32fc_I;
    static constexpr auto direct_block = kelsFIR64fc_Direct_32fc;
    static constexpr auto direct_block_in_place = kelsFIR64fc_Direct_32fc_I;
    static constexpr auto direct_rates = kelsFIRMR64fc_Direct_32fc;
    static constexpr auto direct_rates_in_place = kelsFIRMR64fc_Direct_32fc_I;
};

struct Direct_64f_32s : Family_64f_32s {
    static constexpr auto direct_one = kelsFIROne64f_Direct_32s_Sfs;
    static constexpr auto direct_one_in_place = kelsFIROne64f_Direct_32s_ISfs;
    static constexpr auto direct_block = kelsFIR64f_Direct_32s_Sfs;
    static constexpr auto direct_block_in_place = kelsFIR64f_Direct_32s_ISfs;
    static constexpr auto direct_rates = kelsFIRMR64f_Direct_32s_Sfs;
    static constexpr auto direct_rates_in_place = kelsFIRMR64f_Direct_32s_ISfs;
};

struct Direct_64fc_32sc : Family_64fc_32sc {
    static constexpr auto direct_one = kelsFIROne64fc_Direct_32sc_Sfs;
    static constexpr auto direct_one_in_place = kelsFIROne64fc_Direct_32sc_ISfs;
    static constexpr auto direct_block = kelsFIR64fc_Direct_32sc_Sfs;
    static constexpr auto direct_block_in_place = kelsFIR64fc_Direct_32sc_ISfs;
    static constexpr auto direct_rates = kelsFIRMR64fc_Direct_32sc_Sfs;
    static constexpr auto direct_rates_in_place = kelsFIRMR64fc_Direct_32sc_ISfs;
};

struct Direct_64f_16s : Family_64f_16s {
    static constexpr auto direct_one = kelsFIROne64f_Direct_16s_Sfs;
    static constexpr auto direct_one_in_place = kelsFIROne64f_Direct_16s_ISfs;
    static constexpr auto direct_block = kelsFIR64f_Direct_16s_Sfs;
    static constexpr auto direct_block_in_place = kelsFIR64f_Direct_16s_ISfs;
    static constexpr auto direct_rates = kelsFIRMR64f_Direct_16s_Sfs;
    static constexpr auto direct_rates_in_place = kelsFIRMR64f_Direct_16s_ISfs;
};

struct Direct_64fc_16sc : Family_64fc_16sc {
    static constexpr auto direct_one = kelsFIROne64fc_Direct_16sc_Sfs;
    static constexpr auto direct_one_in_place = kelsFIROne64fc_Direct_16sc_ISfs;
    static constexpr auto direct_block = kelsFIR64fc_Direct_16sc_Sfs;
    static constexpr auto direct_block_in_place = kelsFIR64fc_Direct_16sc_ISfs;
    static constexpr auto direct_rates = kelsFIRMR64fc_Direct_16sc_Sfs;
    static constexpr auto direct_rates_in_place = kelsFIRMR64fc_Direct_16sc_ISfs;
};

using DirectFamilies = testing::Types<Direct_32f, Direct_32fc, Direct_32f_16s, Direct_32fc_16sc, Direct_32s_16s,
                                      Direct_32sc_16sc, Direct_64f, Direct_64fc, Direct_64f_32f, Direct_64fc_32fc,
                                      Direct_64f_32s, Direct_64fc_32sc, Direct_64f_16s, Direct_64fc_16sc>;

template <class F>
class FirDirectTest : public testing::Test {};
TYPED_TEST_SUITE(FirDirectTest, DirectFamilies, FamilyNames);

/// A filter whose state the test owns.
template <class F>
struct Filter {
    using Taps = typename F::Taps;
    using Sample = typename F::Sample;

    std::vector<Taps> taps;
    std::vector<Sample> line;
    int index = 0;
    Rates rates;
    int tapsFactor = 0, scaleFactor = 0;

    int len() const { return static_cast<int>(taps.size()); }

    /// A doubled ring with the given samples, newest first.
    void start(const std::vector<Sample>& newest_first, int at) {
        index = at;
        line.resize(2 * taps.size());
        for (std::size_t i = 0; i < taps.size(); ++i) {
            const std::size_t place = (static_cast<std::size_t>(at) + taps.size() - 1 - i) % taps.size();
            line[place] = line[place + taps.size()] = newest_first[i];
        }
    }

    /// Whatever is said of taps and their factor, in the place where the signature has it.
    template <class Function, class... Before>
    auto with_taps(Function function, Before... before) {
        return [=, this](auto... behind) {
            if constexpr (F::integer_taps)
                return call(function, scaleFactor, before..., taps.data(), len(), tapsFactor, behind...);
            else
                return call(function, scaleFactor, before..., taps.data(), len(), behind...);
        };
    }

    KelStatus one(const Sample& x, Sample* y) { return with_taps(F::direct_one, x, y)(line.data(), &index); }
    KelStatus one(Sample* x) { return with_taps(F::direct_one_in_place, x)(line.data(), &index); }
    KelStatus block(const Sample* x, Sample* y, int n) {
        return with_taps(F::direct_block, x, y, n)(line.data(), &index);
    }
    KelStatus block(Sample* x, int n) { return with_taps(F::direct_block_in_place, x, n)(line.data(), &index); }
    KelStatus change_rate(const Sample* x, Sample* y, int n) {
        return with_taps(F::direct_rates, x, y, n)(rates.up, rates.upPhase, rates.down, rates.downPhase, line.data());
    }
    KelStatus change_rate(Sample* x, int n) {
        return with_taps(F::direct_rates_in_place, x, n)(rates.up, rates.upPhase, rates.down, rates.downPhase,
                                                         line.data());
    }
};

/// Taps of all 32 bits, where they are integers and wide.
template <class F>
std::vector<typename F::Taps> draw_taps(Random& random, int count, bool wide) {
    auto taps = noise<typename F::Taps>(random, count);
    if constexpr (F::integer_taps)
        if (wide)
            for (int i = 0; i < count * parts<typename F::Taps>; ++i)
                values(taps)[i] = static_cast<Kel32s>(random.bits());
    return taps;
}

TYPED_TEST(FirDirectTest, StreamDoesNotDependOnItsCuts) {
    using F = TypeParam;
    using T = typename F::Sample;
    for (int L : {1, 2, 3, 7, 8, 9, 15, 16, 17, 24, 31, 33, 64, 130, 300}) {
        Random random(std::string("stateless ") + F::name + std::to_string(L));
        Filter<F> filter;
        filter.taps = draw_taps<F>(random, L, L % 2);
        const auto before = noise<T>(random, L), x = noise<T>(random, 5000);
        const std::vector<Sum> sums = defining_sums(filter.taps, before, x);
        filter.start(before, L - 1);
        Comparison<F> comparison;
        for (int done = 0, total = static_cast<int>(x.size()); done < total;) {
            const int longest[] = {3, 40, 2 * L + 8, 1500};
            const int count = std::min(1 + random.below(longest[random.below(4)]), total - done);
            comparison.scaleFactor = filter.scaleFactor = F::integer_samples ? random.below(24) - 4 : 0;
            comparison.tapsFactor = filter.tapsFactor = random.below(9) - 4;
            const auto at = static_cast<std::size_t>(done);
            std::vector<T> y(x.begin() + done, x.begin() + done + count);
            const int form = random.below(5);
            if (form == 0) {
                ASSERT_EQ(filter.block(x.data() + at, y.data(), count), kelStatusOk);
            } else if (form == 1) {
                ASSERT_EQ(filter.block(y.data(), count), kelStatusOk);
            } else if (form == 2) {
                ASSERT_EQ(filter.block(y.data(), y.data(), count), kelStatusOk) << "the source as the destination";
            } else {
                for (T& v : y) ASSERT_EQ(form == 3 ? filter.one(v, &v) : filter.one(&v), kelStatusOk);
            }
            for (std::size_t i = 0; i < y.size(); ++i) comparison.check(y[i], sums[at + i]);
            done += count;
            ASSERT_EQ(filter.index, (L - 1 + done) % L);
            Filter<F> wanted;
            wanted.taps = filter.taps;
            std::vector<T> newest;
            for (int i = 1; i <= L; ++i)
                newest.push_back(done - i >= 0 ? x[static_cast<std::size_t>(done - i)]
                                               : before[static_cast<std::size_t>(i - done - 1)]);
            wanted.start(newest, filter.index);
            ASSERT_TRUE(same(filter.line, wanted.line)) << "taps " << L << " at " << done;
            ASSERT_FALSE(this->HasFatalFailure()) << "taps " << L << " at " << done << " form " << form;
        }
    }
}

TYPED_TEST(FirDirectTest, LongFilters) {
    using F = TypeParam;
    using T = typename F::Sample;
    Random random("long");
    for (int L : {2049, 5000}) {
        Filter<F> filter;
        filter.taps = draw_taps<F>(random, L, true);
        const auto before = noise<T>(random, L), x = noise<T>(random, 1300);
        const std::vector<Sum> sums = defining_sums(filter.taps, before, x);
        filter.start(before, 17);
        auto y = x;
        Comparison<F> comparison;
        comparison.scaleFactor = filter.scaleFactor = 12;
        ASSERT_EQ(filter.block(y.data(), 1200), kelStatusOk);
        for (std::size_t i = 1200; i < x.size(); ++i) ASSERT_EQ(filter.one(&y[i]), kelStatusOk);
        for (std::size_t i = 0; i < x.size(); i += 3) comparison.check(y[i], sums[i]);
        ASSERT_FALSE(this->HasFatalFailure()) << "taps " << L;
    }
}

template <class F>
void check_rates(Random& random, int L, const Rates& r, int iterations, Comparison<F>& comparison) {
    using T = typename F::Sample;
    Filter<F> filter;
    filter.taps = draw_taps<F>(random, L, random.below(2));
    filter.rates = r;
    filter.scaleFactor = comparison.scaleFactor;
    filter.tapsFactor = comparison.tapsFactor;
    const int P = (L + r.up - 1) / r.up;
    const auto before = noise<T>(random, P), x = noise<T>(random, iterations * r.down);
    const std::vector<Sum> sums = defining_sums(filter.taps, before, x, r);
    filter.line = before;
    std::vector<T> y(sums.size());
    for (int done = 0; done < iterations;) {
        const int count = std::min(1 + random.below(40), iterations - done);
        const auto samples = static_cast<std::size_t>(count * r.down), outputs = static_cast<std::size_t>(count * r.up);
        const T* src = x.data() + done * r.down;
        T* dst = y.data() + done * r.up;
        if (random.below(2)) {
            ASSERT_EQ(filter.change_rate(src, dst, count), kelStatusOk);
        } else {
            std::vector<T> both(std::max(samples, outputs));
            std::copy_n(src, samples, both.begin());
            ASSERT_EQ(filter.change_rate(both.data(), count), kelStatusOk);
            std::copy_n(both.begin(), outputs, dst);
        }
        done += count;
        for (int i = 0; i < P; ++i) {
            const int n = done * r.down - 1 - i;
            const T& wanted = n >= 0 ? x[static_cast<std::size_t>(n)] : before[static_cast<std::size_t>(-1 - n)];
            ASSERT_EQ(std::memcmp(&filter.line[static_cast<std::size_t>(i)], &wanted, sizeof wanted), 0);
        }
    }
    for (std::size_t i = 0; i < y.size(); ++i) comparison.check(y[i], sums[i]);
}

TYPED_TEST(FirDirectTest, AnyFactorsPhasesAndCuts) {
    using F = TypeParam;
    Random random(std::string("stateless rates ") + F::name);
    Comparison<F> comparison;
    const int tap_counts[] = {1, 2, 3, 10, 24, 31, 64, 96, 130, 400};
    for (int up = 1; up <= 7; ++up)
        for (int down = 1; down <= 7; ++down) {
            const Rates r{up, random.below(up), down, random.below(down)};
            comparison.scaleFactor = F::integer_samples ? random.below(20) : 0;
            comparison.tapsFactor = random.below(9) - 4;
            const int L = tap_counts[random.below(10)];
            check_rates<F>(random, L, r, 100, comparison);
            ASSERT_FALSE(this->HasFatalFailure()) << L << " taps, up " << up << ' ' << r.upPhase << ", down " << down
                                                  << ' ' << r.downPhase << ", scale " << comparison.scaleFactor;
        }
    for (const auto& [L, r] : {std::pair{5000, Rates{2, 1, 3, 2}}, {50, Rates{3000, 7, 1, 0}}}) {
        check_rates<F>(random, L, r, 10, comparison);
        ASSERT_FALSE(this->HasFatalFailure()) << L << " taps, up " << r.up;
    }
}

// The same results, to the bit, as the filters that keep their state.
TYPED_TEST(FirDirectTest, AgreesWithTheFiltersWithAState) {
    using F = TypeParam;
    using T = typename F::Sample;
    Random random("agree");
    for (int L : {1, 8, 13, 15, 33, 300}) {
        Filter<F> filter;
        filter.taps = noise<typename F::Taps>(random, L);
        const auto line = noise<T>(random, L), x = noise<T>(random, 3000);
        const Context context = make<F>(filter.taps, line), changing = make_multi_rate<F>(filter.taps, {3, 2, 2, 1});
        filter.scaleFactor = 9;
        filter.start(line, 0);
        std::vector<T> y(3000), wanted(3000);
        filter.block(x.data(), y.data(), 3000);
        const int direct = plan_length<F>(L) > 0 ? 50 : 3000;
        for (int i = 0; i < 3000; i += direct)
            call(F::block, 9, x.data() + i, wanted.data() + i, direct, context.get());
        EXPECT_TRUE(same(y, wanted)) << L;
        for (std::size_t i = 0; i < 100; ++i) {
            filter.one(x[i], &y[i]);
            call(F::one, 9, x[i], &wanted[i], context.get());
        }
        EXPECT_TRUE(same(y, wanted)) << L;
        filter.rates = {3, 2, 2, 1};
        filter.line.assign(filter.taps.size(), T{});
        filter.change_rate(x.data(), y.data(), 900);
        call(F::block, 9, x.data(), wanted.data(), 900, changing.get());
        EXPECT_TRUE(same(y, wanted)) << L;
    }
}

TYPED_TEST(FirDirectTest, StaysInsideItsArrays) {
    using F = TypeParam;
    using T = typename F::Sample;
    using H = typename F::Taps;
    Random random("guards");
    kels_test::GuardedMemory source(700 * sizeof(T)), target(700 * sizeof(T)), taps(200 * sizeof(H)),
        line(400 * sizeof(T));
    for (int L : {1, 2, 7, 9, 16, 31, 40, 130})
        for (int count : {1, 2, 3, 8, 17, 33, 100})
            for (bool at_end : {false, true}) {
                const auto place = [&]<class V>(const kels_test::GuardedMemory& memory, V*, int n) {
                    auto* begin = at_end ? memory.end() - static_cast<std::size_t>(n) * sizeof(V) : memory.begin();
                    return reinterpret_cast<V*>(begin);
                };
                Filter<F> filter;
                const auto h = noise<H>(random, L);
                auto* src = place(source, static_cast<T*>(nullptr), 5 * count);
                auto* dst = place(target, static_cast<T*>(nullptr), 7 * count);
                auto* own_taps = place(taps, static_cast<H*>(nullptr), L);
                auto* ring = place(line, static_cast<T*>(nullptr), 2 * L);
                std::fill_n(src, 5 * count, T{});
                std::fill_n(ring, 2 * L, T{});
                std::copy(h.begin(), h.end(), own_taps);
                int index = L / 2;
                ASSERT_TRUE(kels_test::runs_without_fault([&] {
                    if constexpr (F::integer_taps) {
                        call(F::direct_block, 3, src, dst, count, own_taps, L, 0, ring, &index);
                        call(F::direct_one, 3, src[0], dst, own_taps, L, 0, ring, &index);
                    } else {
                        call(F::direct_block, 3, src, dst, count, own_taps, L, ring, &index);
                        call(F::direct_one, 3, src[0], dst, own_taps, L, ring, &index);
                    }
                })) << L
                    << ' ' << count;
                auto* newest = place(line, static_cast<T*>(nullptr), (L + 6) / 7);
                ASSERT_TRUE(kels_test::runs_without_fault([&] {
                    if constexpr (F::integer_taps)
                        call(F::direct_rates, 3, src, dst, count, own_taps, L, 0, 7, 3, 5, 4, newest);
                    else
                        call(F::direct_rates, 3, src, dst, count, own_taps, L, 7, 3, 5, 4, newest);
                })) << L
                    << ' ' << count;
            }
}

/// Statuses with one argument after the other put right, in the order in which they are tested.
TYPED_TEST(FirDirectTest, RefusesInTheOrderOfItsChecks) {
    using F = TypeParam;
    using T = typename F::Sample;
    const std::vector<typename F::Taps> taps(4);
    const typename F::Taps *h = taps.data(), *no_taps = nullptr;
    std::vector<T> x(12), y(12), line(8);
    T *none = nullptr, *ring = line.data();
    int index = 0, *no_index = nullptr;
    const auto one = [&](T* dst, const typename F::Taps* t, int n, T* l, int* i) {
        const auto in_place = [&](T* d) {
            if constexpr (F::integer_taps)
                return call(F::direct_one_in_place, 0, d, t, n, 0, l, i);
            else
                return call(F::direct_one_in_place, 0, d, t, n, l, i);
        }(dst);
        KelStatus status;
        if constexpr (F::integer_taps)
            status = call(F::direct_one, 0, x[0], dst, t, n, 0, l, i);
        else
            status = call(F::direct_one, 0, x[0], dst, t, n, l, i);
        EXPECT_EQ(in_place, status);
        return status;
    };
    EXPECT_EQ(one(nullptr, h, 0, ring, &index), kelStatusNullPtr);
    EXPECT_EQ(one(y.data(), no_taps, 0, ring, &index), kelStatusNullPtr);
    for (int bad : {0, -1, INT_MIN}) EXPECT_EQ(one(y.data(), h, bad, none, no_index), kelStatusBadFirLength);
    EXPECT_EQ(one(y.data(), h, 4, none, &index), kelStatusNullPtr);
    EXPECT_EQ(one(y.data(), h, 4, ring, no_index), kelStatusNullPtr);

    const auto block = [&](const T* src, T* dst, int count, const typename F::Taps* t, int n, T* l, int* i) {
        if (src && dst) {
            const auto in_place = [&] {
                if constexpr (F::integer_taps)
                    return call(F::direct_block_in_place, 0, dst, count, t, n, 0, l, i);
                else
                    return call(F::direct_block_in_place, 0, dst, count, t, n, l, i);
            }();
            EXPECT_LT(in_place, 0);
        }
        if constexpr (F::integer_taps)
            return call(F::direct_block, 0, src, dst, count, t, n, 0, l, i);
        else
            return call(F::direct_block, 0, src, dst, count, t, n, l, i);
    };
    EXPECT_EQ(block(nullptr, y.data(), 0, h, 4, ring, &index), kelStatusNullPtr);
    EXPECT_EQ(block(x.data(), nullptr, 0, h, 4, ring, &index), kelStatusNullPtr);
    for (int bad : {0, -1, INT_MIN}) {
        EXPECT_EQ(block(x.data(), y.data(), bad, no_taps, 0, none, no_index), kelStatusBadSize);
        EXPECT_EQ(block(x.data(), y.data(), 1, h, bad, none, no_index), kelStatusBadFirLength);
    }
    EXPECT_EQ(block(x.data(), y.data(), 1, no_taps, 0, ring, &index), kelStatusNullPtr);
    EXPECT_EQ(block(x.data(), y.data(), 1, h, 4, none, &index), kelStatusNullPtr);
    EXPECT_EQ(block(x.data(), y.data(), 1, h, 4, ring, no_index), kelStatusNullPtr);

    const auto rates = [&](const T* src, T* dst, int count, const typename F::Taps* t, int n, const Rates& r, T* l) {
        if (src && dst) {
            const auto in_place = [&] {
                if constexpr (F::integer_taps)
                    return call(F::direct_rates_in_place, 0, dst, count, t, n, 0, r.up, r.upPhase, r.down, r.downPhase,
                                l);
                else
                    return call(F::direct_rates_in_place, 0, dst, count, t, n, r.up, r.upPhase, r.down, r.downPhase, l);
            }();
            EXPECT_LT(in_place, 0);
        }
        if constexpr (F::integer_taps)
            return call(F::direct_rates, 0, src, dst, count, t, n, 0, r.up, r.upPhase, r.down, r.downPhase, l);
        else
            return call(F::direct_rates, 0, src, dst, count, t, n, r.up, r.upPhase, r.down, r.downPhase, l);
    };
    const Rates good{2, 0, 3, 0};
    EXPECT_EQ(rates(nullptr, y.data(), 0, h, 4, good, ring), kelStatusNullPtr);
    EXPECT_EQ(rates(x.data(), nullptr, 0, h, 4, good, ring), kelStatusNullPtr);
    EXPECT_EQ(rates(x.data(), y.data(), 0, no_taps, 0, {0, 0, 0, 0}, none), kelStatusBadSize);
    EXPECT_EQ(rates(x.data(), y.data(), 1, no_taps, 0, {0, 0, 0, 0}, none), kelStatusNullPtr);
    EXPECT_EQ(rates(x.data(), y.data(), 1, h, 0, {0, 0, 0, 0}, none), kelStatusBadFirLength);
    EXPECT_EQ(rates(x.data(), y.data(), 1, h, 4, {0, 5, 1, 0}, none), kelStatusBadMrFactor);
    EXPECT_EQ(rates(x.data(), y.data(), 1, h, 4, {1, 5, -1, 0}, none), kelStatusBadMrFactor);
    EXPECT_EQ(rates(x.data(), y.data(), 1, h, 4, {2, 2, 1, 0}, none), kelStatusBadMrPhase);
    EXPECT_EQ(rates(x.data(), y.data(), 1, h, 4, {2, 0, 3, -1}, none), kelStatusBadMrPhase);
    EXPECT_EQ(rates(x.data(), y.data(), 1, h, 4, good, none), kelStatusNullPtr);
    const std::vector<T> silence(12);
    EXPECT_TRUE(same(y, silence)) << "nothing stored";
}

TYPED_TEST(FirDirectTest, OnlyRateChangesInPlaceAllocate) {
    using F = TypeParam;
    using T = typename F::Sample;
    Random random("faults");
    Filter<F> filter;
    filter.taps = draw_taps<F>(random, 40, true);
    const auto line = noise<T>(random, 40), x = noise<T>(random, 60);
    std::vector<T> y(60);
    const long before = kels_test::allocations();
    filter.start(line, 3);
    filter.block(x.data(), y.data(), 60);
    filter.block(y.data(), 60);
    filter.one(x[0], y.data());
    filter.rates = {2, 0, 3, 0};
    filter.change_rate(x.data(), y.data(), 20);
    EXPECT_EQ(kels_test::allocations(), before);
    filter.line = line;
    kels_test::for_each_allocation_failure([&] {
        y = x;
        const KelStatus status = filter.change_rate(y.data(), 20);
        if (status != kelStatusOk) {
            EXPECT_TRUE(same(filter.line, line));
            EXPECT_TRUE(same(y, x));
        }
        return status;
    });
}

// Only the samples that a tap meets may make an output a NaN.
TYPED_TEST(FirDirectTest, NansReachTheirOutputsOnly) {
    using F = TypeParam;
    using T = typename F::Sample;
    if constexpr (!F::integer_samples) {
        Random random("nan");
        for (int L : {1, 5, 9, 16, 31, 33}) {
            Filter<F> filter;
            filter.taps = noise<typename F::Taps>(random, L);
            filter.start(std::vector<T>(filter.taps.size()), 0);
            auto x = noise<T>(random, 100);
            values(x)[20 * parts<T>] = NAN;
            for (int i = 0; i < 100; ++i) {
                T y;
                filter.one(x[static_cast<std::size_t>(i)], &y);
                EXPECT_EQ(std::isnan(*reinterpret_cast<Part<T>*>(&y)), i >= 20 && i < 20 + L) << L << ' ' << i;
            }
        }
    }
}

} // namespace
