// The two forms of a FIR filter, with a context and with the caller's own arrays, as what a stream goes through.
#pragma once

#include "filters/fir/families.h"

#include <optional>

namespace fir_test {

/// What a filter is made of, and what precedes its stream, the newest first.
template <class F_>
struct Design {
    using F = F_;
    using Taps = typename F::Taps;
    using Sample = typename F::Sample;

    std::vector<Taps> taps;
    std::vector<Sample> line;
    Rates r = {};
    bool multi_rate = false;
    int tapsFactor = 0, scale = 0;
    int start = 0; ///< where a ring has its oldest sample

    int count() const { return static_cast<int>(taps.size()); }
    int history() const { return (count() + r.up - 1) / r.up; }
    /// Length of the plan in its context, or 0.
    int plan() const {
        const bool degenerate = F::degenerates && r.up == 1 && r.down == 1;
        return !multi_rate || degenerate ? plan_length<F>(count()) : 0;
    }
};

template <class F>
struct WithContext : Design<F> {
    using typename Design<F>::Sample;
    static constexpr bool has_context = true;
    static std::string name() { return name_of<F>(); }

    Context context;

    template <class In>
    WithContext(In& in, const Design<F>& d) : Design<F>(d), context(create(in)) {}

    /// Whether results may come from transforms.
    bool transforms(Way way, int n) const {
        const bool always = F::plan_in_place_always && F::ties_to_even && (way == in_place || way == over_itself);
        return this->plan() > 0 && way != one_by_one && (n > this->plan() || always);
    }
    static std::vector<Way> ways(bool multi_rate) {
        return multi_rate ? std::vector{as_block, in_place} : std::vector{as_block, in_place, one_by_one, over_itself};
    }
    bool allocates(Way) const { return false; }
    void place(auto&) {}
    kels_test::Edge edge_of_source(auto& in) const { return in.edge(); }

    KelStatus run(const Sample* x, Sample* y, int n) { return through().run(x, y, n); }
    KelStatus run(Sample* x, int n) { return through().run(x, n); }
    KelStatus one(Way way, Sample* x) { return through().one(way, x); }

    std::vector<Sample> newest_first(auto& in) const {
        return kels_test::results<Sample>(in, this->line.size(),
                                          [&](Sample* y) { return F::get_line(context.get(), y); });
    }

private:
    Through<F, KelFirContext> through() const { return {context.get(), this->scale}; }

    Context create(auto& in) const {
        const kels_test::GuardedArray<typename F::Taps> h(this->taps, in.edge());
        const kels_test::GuardedArray<Sample> x(this->line, in.edge());
        return made(in, F::release, [&](KelFirContext** result) {
            const auto [up, upPhase, down, downPhase] = this->r;
            return this->multi_rate ? init_multi_rate<F>(result, h.data(), this->count(), this->tapsFactor, up, upPhase,
                                                         down, downPhase, x.data())
                                    : init<F>(result, h.data(), this->count(), this->tapsFactor, x.data());
        });
    }
};

template <class F>
struct Stateless : Design<F> {
    using typename Design<F>::Sample;
    using typename Design<F>::Taps;
    static constexpr bool has_context = false;
    static std::string name() { return name_of<F>() + "_direct"; }

    int index;

    /// The line is a doubled ring, or that of a rate change.
    Stateless(auto&, const Design<F>& d) : Design<F>(d), index(d.start) {
        auto ring = this->line;
        if (!this->multi_rate) {
            std::reverse(ring.begin(), ring.end());
            std::rotate(ring.begin(), ring.end() - index, ring.end());
            kels_test::append(ring, std::vector<Sample>(ring));
        }
        kept.emplace(ring, kels_test::Edge::back);
    }

    /// Chooses places for the caller's arrays, and for the next source.
    void place(auto& in) {
        own_taps.emplace(this->taps, in.edge());
        edge_of_x = in.edge();
        kept.emplace(kept->values(), in.edge());
    }

    int plan() const { return 0; }
    bool transforms(Way, int) const { return false; }
    static std::vector<Way> ways(bool multi_rate) {
        return multi_rate ? std::vector{as_block, in_place}
                          : std::vector{as_block, in_place, one_by_one, one_in_place, over_itself};
    }
    bool allocates(Way way) const { return this->multi_rate && way == in_place; }
    kels_test::Edge edge_of_source(auto&) const { return edge_of_x; }

    KelStatus run(const Sample* x, Sample* y, int n) {
        return this->multi_rate ? with_rates(F::rates, x, y, n) : with_ring(F::direct_block, x, y, n);
    }
    KelStatus run(Sample* x, int n) {
        return this->multi_rate ? with_rates(F::rates_in_place, x, n) : with_ring(F::direct_in_place, x, n);
    }
    KelStatus one(Way way, Sample* x) {
        return way == one_by_one ? with_ring(F::direct_one, *x, x) : with_ring(F::direct_one_in_place, x);
    }

    /// Both halves of a ring are the same.
    std::vector<Sample> newest_first(auto&) const {
        auto samples = kept->values();
        if (this->multi_rate) return samples;
        const auto half = samples.begin() + this->count();
        EXPECT_TRUE(same(std::vector<Sample>(samples.begin(), half), std::vector<Sample>(half, samples.end())));
        samples.resize(this->taps.size());
        std::rotate(samples.begin(), samples.begin() + index, samples.end());
        std::reverse(samples.begin(), samples.end());
        return samples;
    }

private:
    std::optional<kels_test::GuardedArray<Taps>> own_taps;
    std::optional<kels_test::GuardedArray<Sample>> kept;
    kels_test::Edge edge_of_x{};

    template <class... Before>
    KelStatus with_ring(auto function, Before... before) {
        return with_taps(function, before...)(kept->data(), &index);
    }
    template <class... Before>
    KelStatus with_rates(auto function, Before... before) {
        const auto [up, upPhase, down, downPhase] = this->r;
        return with_taps(function, before...)(up, upPhase, down, downPhase, kept->data());
    }
    /// Taps and their factor between what stands before and behind them.
    template <class... Before>
    auto with_taps(auto function, Before... before) const {
        return [=, this](auto... behind) {
            if constexpr (F::integer_taps)
                return call(function, this->scale, before..., own_taps->data(), this->count(), this->tapsFactor,
                            behind...);
            else
                return call(function, this->scale, before..., own_taps->data(), this->count(), behind...);
        };
    }
};

} // namespace fir_test
