// FFTW with measured plans: its transforms, and filters by overlap-save over them.
#include "convolution.h"
#include "dft.h"
#include "fft.h"
#include "fir.h"

#include <fftw3.h>

#include <algorithm>
#include <bit>
#include <complex>

namespace bench {
namespace {

struct Single {
    using Real = float;
    using Complex = fftwf_complex;
    using Plan = fftwf_plan;
    static constexpr auto complex = fftwf_plan_dft_1d;
    static constexpr auto real_forward = fftwf_plan_dft_r2c_1d;
    static constexpr auto real_inverse = fftwf_plan_dft_c2r_1d;
    static constexpr auto execute = fftwf_execute;
    static constexpr auto destroy = fftwf_destroy_plan;
    static constexpr auto cosine = fftwf_plan_r2r_1d;
    static constexpr auto forget = fftwf_forget_wisdom;
};

struct Double {
    using Real = double;
    using Complex = fftw_complex;
    using Plan = fftw_plan;
    static constexpr auto complex = fftw_plan_dft_1d;
    static constexpr auto real_forward = fftw_plan_dft_r2c_1d;
    static constexpr auto real_inverse = fftw_plan_dft_c2r_1d;
    static constexpr auto execute = fftw_execute;
    static constexpr auto destroy = fftw_destroy_plan;
};

template <class Api>
using PlanOwner = std::unique_ptr<std::remove_pointer_t<typename Api::Plan>, decltype(Api::destroy)>;

/// The source outlives a transform, as it does in ours.
template <class Api>
PlanOwner<Api> make_plan(Transform kind, int n, typename Api::Real* source, typename Api::Real* result) {
    constexpr unsigned flags = FFTW_MEASURE | FFTW_PRESERVE_INPUT;
    const auto complex = [](typename Api::Real* p) { return reinterpret_cast<typename Api::Complex*>(p); };
    switch (kind) {
    case Transform::complex_forward:
    case Transform::complex_in_place:
        return {Api::complex(n, complex(source), complex(result), FFTW_FORWARD, flags), Api::destroy};
    case Transform::complex_inverse:
        return {Api::complex(n, complex(source), complex(result), FFTW_BACKWARD, flags), Api::destroy};
    case Transform::real_forward:
    case Transform::real_in_place:
        return {Api::real_forward(n, source, complex(result), flags), Api::destroy};
    case Transform::real_inverse:
        return {Api::real_inverse(n, complex(source), result, flags), Api::destroy};
    }
    return {nullptr, Api::destroy};
}

template <class Api>
void transform(Transform kind) {
    using Real = typename Api::Real;
    for (const int order : orders_of(kind))
        contend(transform_work<Real>(kind, order), "fftw", [=] {
            const bool in_place = kind == Transform::complex_in_place || kind == Transform::real_in_place;
            const std::size_t values = values_of(kind, order);
            Array<Real> source = zeros<Real>(values), result = in_place ? nullptr : zeros<Real>(values);
            auto plan = make_plan<Api>(kind, 1 << order, source.get(), in_place ? source.get() : result.get());
            // Measuring has written into the arrays.
            if (in_place)
                std::fill_n(source.get(), values, Real{});
            else
                std::copy_n(noise<Real>(values).get(), values, source.get());
            return [plan = std::move(plan), source = std::move(source), result = std::move(result)] {
                Api::execute(plan.get());
            };
        });
}

/// Other lengths than powers of two.
template <class Api>
void any_length(bool real) {
    using Real = typename Api::Real;
    const Transform kind = real ? Transform::real_forward : Transform::complex_forward;
    for (const int length : dft_lengths)
        contend(dft_work<Real>(real, length), "fftw", [=] {
            const std::size_t values = 2 * std::size_t(length) + 2;
            Array<Real> source = zeros<Real>(values), result = zeros<Real>(values);
            auto plan = make_plan<Api>(kind, length, source.get(), result.get());
            std::copy_n(noise<Real>(values).get(), values, source.get());
            return [plan = std::move(plan), source = std::move(source), result = std::move(result)] {
                Api::execute(plan.get());
            };
        });
}

/// Unscaled, where ours is orthonormal.
void cosine_transforms() {
    for (const int length : dct_lengths)
        contend(dct_work(length), "fftw", [=] {
            const std::size_t values = std::size_t(length);
            Array<float> source = zeros<float>(values), result = zeros<float>(values);
            PlanOwner<Single> plan(Single::cosine(length, source.get(), result.get(), FFTW_REDFT10, FFTW_MEASURE),
                                   Single::destroy);
            std::copy_n(noise<float>(values).get(), values, source.get());
            return [plan = std::move(plan), source = std::move(source), result = std::move(result)] {
                Single::execute(plan.get());
            };
        });
}

/// Each time as if for the first time.
void plans() {
    for (const int length : plan_lengths)
        contend(plan_work(length), "fftw", [=] {
            const std::size_t values = 2 * std::size_t(length);
            return [length, source = zeros<float>(values), result = zeros<float>(values)] {
                Single::forget();
                make_plan<Single>(Transform::complex_forward, length, source.get(), result.get());
            };
        });
}

template <class Api>
void transforms() {
    for (const Transform kind : {Transform::complex_forward, Transform::complex_in_place, Transform::complex_inverse,
                                 Transform::real_forward, Transform::real_in_place, Transform::real_inverse})
        transform<Api>(kind);
}

/// A stream through transforms of a length that suits the taps.
template <class Sample>
class OverlapSave {
    static constexpr bool real = std::is_same_v<Sample, float>;
    using Bin = std::complex<float>;

public:
    OverlapSave(int taps, int block)
        : taps_(taps), block_(block), points_(std::max(1024, int(std::bit_ceil(8u * unsigned(taps))))),
          bins_(real ? points_ / 2 + 1 : points_), stream_(zeros<Sample>(taps - 1 + block)),
          stretch_(zeros<Sample>(points_)), spectrum_(zeros<Bin>(bins_)), response_(zeros<Bin>(bins_)),
          forward_(plan(FFTW_FORWARD)), inverse_(plan(FFTW_BACKWARD)) {
        std::fill_n(stretch_.get(), points_, Sample{});
        std::copy_n(noise<Sample>(taps).get(), taps, stretch_.get());
        fftwf_execute(forward_.get());
        std::transform(&spectrum_[0], &spectrum_[bins_], &response_[0], [&](Bin bin) { return bin / float(points_); });
    }

    void run(const Sample* source, Sample* result) const {
        const int history = taps_ - 1;
        std::copy_n(source, block_, &stream_[history]);
        for (int done = 0; done < block_; done += points_ - history) {
            const int fresh = std::min(points_ - history, block_ - done);
            std::copy_n(&stream_[done], history + fresh, stretch_.get());
            fftwf_execute(forward_.get());
            multiply();
            fftwf_execute(inverse_.get());
            std::copy_n(&stretch_[history], fresh, result + done);
        }
        std::copy_n(&stream_[block_], history, stream_.get());
    }

private:
    using Plan = std::unique_ptr<std::remove_pointer_t<fftwf_plan>, decltype(&fftwf_destroy_plan)>;

    /// Written out: the product of std::complex looks for infinities.
    void multiply() const {
        for (int k = 0; k < bins_; ++k) {
            const Bin a = spectrum_[k], b = response_[k];
            spectrum_[k] = {a.real() * b.real() - a.imag() * b.imag(), a.real() * b.imag() + a.imag() * b.real()};
        }
    }

    Plan plan(int direction) const {
        auto* bins = reinterpret_cast<fftwf_complex*>(spectrum_.get());
        if constexpr (real) {
            if (direction == FFTW_FORWARD)
                return {fftwf_plan_dft_r2c_1d(points_, stretch_.get(), bins, FFTW_MEASURE), fftwf_destroy_plan};
            return {fftwf_plan_dft_c2r_1d(points_, bins, stretch_.get(), FFTW_MEASURE), fftwf_destroy_plan};
        } else {
            auto* stretch = reinterpret_cast<fftwf_complex*>(stretch_.get());
            auto* source = direction == FFTW_FORWARD ? stretch : bins;
            auto* result = direction == FFTW_FORWARD ? bins : stretch;
            return {fftwf_plan_dft_1d(points_, source, result, direction, FFTW_MEASURE), fftwf_destroy_plan};
        }
    }

    int taps_, block_, points_, bins_;
    Array<Sample> stream_, stretch_;
    Array<Bin> spectrum_, response_;
    Plan forward_, inverse_;
};

template <class Sample>
void filter(const char* function) {
    contend_fir<Sample>(function, "fftw overlap-save", [](int taps, int block) {
        return [filter = OverlapSave<Sample>(taps, block), source = noise<Sample>(block),
                result = zeros<Sample>(block)] { filter.run(source.get(), result.get()); };
    });
}

/// Both vectors as a whole, in one transform each, or one vector with itself.
class WholeVectors {
public:
    WholeVectors(int first, int second, int points_wanted)
        : points(int(std::bit_ceil(unsigned(points_wanted)))), a(first, points), b(second, points),
          inverse(fftwf_plan_dft_c2r_1d(points, a.bins(), a.samples.get(), FFTW_MEASURE), fftwf_destroy_plan) {}

    void run(const float* x, const float* y, float* result, int results) const {
        a.transform(x, points);
        if (y) b.transform(y, points);
        const auto& other = y ? b : a;
        for (int k = 0; k <= points / 2; ++k) {
            const std::complex<float> p = a.spectrum[k], q = other.spectrum[k];
            a.spectrum[k] = {p.real() * q.real() - p.imag() * q.imag(), p.real() * q.imag() + p.imag() * q.real()};
        }
        fftwf_execute(inverse.get());
        std::copy_n(a.samples.get(), results, result);
    }

private:
    using Plan = std::unique_ptr<std::remove_pointer_t<fftwf_plan>, decltype(&fftwf_destroy_plan)>;

    struct Vector {
        int length;
        Array<float> samples;
        Array<std::complex<float>> spectrum;
        Plan forward;

        Vector(int count, int length_of_all)
            : length(count), samples(zeros<float>(length_of_all)),
              spectrum(zeros<std::complex<float>>(length_of_all / 2 + 1)),
              forward(fftwf_plan_dft_r2c_1d(length_of_all, samples.get(), bins(), FFTW_MEASURE), fftwf_destroy_plan) {}
        fftwf_complex* bins() const { return reinterpret_cast<fftwf_complex*>(spectrum.get()); }
        void transform(const float* x, int length_of_all) const {
            std::fill(std::copy_n(x, length, samples.get()), samples.get() + length_of_all, 0.0F);
            fftwf_execute(forward.get());
        }
    };

    int points;
    Vector a, b;
    Plan inverse;
};

/// With plans made before.
void convolutions_and_correlations() {
    contend_convolution("kelsConv_32f", "fftw, planned", [](const Convolution& size) {
        return [size, whole = WholeVectors(size.long_len, size.short_len, size.results()),
                x = noise<float>(size.long_len), y = noise<float>(size.short_len),
                r = zeros<float>(size.results())] { whole.run(x.get(), y.get(), r.get(), size.results()); };
    });
    contend_autocorrelation("kelsAutoCorr_32f", "fftw, planned", [](const Autocorrelation& size) {
        return [size, whole = WholeVectors(size.len, size.len, size.len + size.lags), x = noise<float>(size.len),
                r = zeros<float>(size.lags)] { whole.run(x.get(), nullptr, r.get(), size.lags); };
    });
}

const Registration fftw(
    [] {
        transforms<Single>();
        transforms<Double>();
        for (const bool real : {false, true}) {
            any_length<Single>(real);
            any_length<Double>(real);
        }
        cosine_transforms();
        plans();
        filter<float>("kelsFIR_32f");
        filter<std::complex<float>>("kelsFIR_32fc");
        convolutions_and_correlations();
    },
    fftw_version);

} // namespace
} // namespace bench
