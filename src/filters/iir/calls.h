// What every family's functions do: the checks, and the way of samples through an engine of doubles or integers.
#pragma once

#include "filters/iir/context.h"
#include "filters/rounding.h"

#include <algorithm>

namespace kels {

/// Integer samples of real taps: the scale factor is as many halvings or doublings of 1 in extended precision, where
/// 2^-16445 is the least number and 2^16383 the largest power of two; a zero times infinity is a NaN. Two factors of
/// double precision reach as far as a double goes.
struct FarScale {
    Kel64f first;
    AwayFromZero rest;

    explicit FarScale(int scaleFactor) : first(1), rest{0} {
        constexpr int halvings_to_zero = 16446, doublings_to_infinity = 16384, far = 2044;
        if (scaleFactor <= -doublings_to_infinity) {
            rest.power = std::numeric_limits<Kel64f>::infinity();
        } else if (scaleFactor < halvings_to_zero) {
            const int exponent = -std::clamp(scaleFactor, -far, far);
            first = power_of_two<Kel64f>(exponent / 2);
            rest.power = power_of_two<Kel64f>(exponent - exponent / 2);
        }
    }

    template <class R, class V>
    [[gnu::always_inline]] Vec<R, lanes<V>> to(V sum) const {
        return rest.to<R>(sum * splat<V>(first));
    }
};

/// Integer samples of integer taps.
struct Limited {
    template <class R, class V>
    [[gnu::always_inline]] Vec<R, lanes<V>> to(V word) const {
        return saturate<R>(as_signed(word));
    }
};

/// How a family's results become samples.
template <class Family>
auto result_rounding([[maybe_unused]] int scaleFactor) {
    if constexpr (Family::integer_taps)
        return Limited{};
    else if constexpr (Family::integer_samples)
        return FarScale(scaleFactor);
    else
        return RoundedOnce{};
}

/// Filters a block, in place too. Samples become the engine's elements a tile at a time; a tile is whole pairs.
template <class Family, class Form>
void filter(Form& form, const typename Family::Sample* src, typename Family::Sample* dst, int count, int scaleFactor) {
    using Sample = typename Family::Sample;
    using Element = typename Form::Element;
    if constexpr (std::is_same_v<Part<Sample>, Element>) {
        form.run(reals(src), reals(dst), count, scaleFactor);
    } else {
        constexpr int size = 1024;
        alignas(vector_bytes) Element tile[size * parts<Sample>];
        const auto rounding = result_rounding<Family>(scaleFactor);
        for (int done = 0; done < count; done += size) {
            const int some = std::min(count - done, size), reals_of_tile = some * parts<Sample>;
            map_blocks(
                tile, reals_of_tile, [](auto x) KELS_INLINE { return convert<Element>(x); }, reals(src + done));
            form.run(tile, tile, some, scaleFactor);
            store_rounded(tile, reals(dst + done), reals_of_tile, rounding);
        }
    }
}

template <class Family>
KelStatus filter_block(const typename Family::Sample* src, typename Family::Sample* dst, int count,
                       KelIirContext* context, int scaleFactor = 0) {
    return with_either_form<Family>(context, false, [=](auto& own) {
        if (!src || !dst) return kelStatusNullPtr;
        if (count < 1) return kelStatusBadSize;
        filter<Family>(own.form, src, dst, count, scaleFactor);
        return kelStatusOk;
    });
}

template <class Family>
KelStatus filter_in_place(typename Family::Sample* samples, int count, KelIirContext* context, int scaleFactor = 0) {
    return filter_block<Family>(samples, samples, count, context, scaleFactor);
}

template <class Family>
KelStatus filter_one(typename Family::Sample sample, typename Family::Sample* out, KelIirContext* context,
                     int scaleFactor = 0) {
    return with_either_form<Family>(context, false, [=]<class Own>(Own& own) {
        using Element = typename decltype(own.form)::Element;
        constexpr int reals_of_sample = parts<typename Family::Sample>;
        if (!out) return kelStatusNullPtr;
        Element x[reals_of_sample];
        std::transform(reals(&sample), reals(&sample) + reals_of_sample, x,
                       convert<Element, Part<typename Family::Sample>>);
        own.form.run_one(x, x, scaleFactor);
        *out = rounded_sample<typename Family::Sample>(x, result_rounding<Family>(scaleFactor));
        return kelStatusOk;
    });
}

template <class Family>
KelStatus get_delay_line(const KelIirContext* context, typename Family::Taps* out) {
    return with_either_form<Family>(context, !out, [=](const auto& own) {
        own.form.get_state(out);
        return kelStatusOk;
    });
}

template <class Family>
KelStatus set_delay_line(KelIirContext* context, const typename Family::Taps* state) {
    return with_either_form<Family>(context, false, [=](auto& own) {
        own.form.set_state(state);
        return kelStatusOk;
    });
}

template <class Family>
KelStatus free_filter(KelIirContext* context) {
    return with_either_form<Family>(context, false, []<class Own>(Own& own) {
        DeleteRecord{}(&own);
        return kelStatusOk;
    });
}

} // namespace kels
