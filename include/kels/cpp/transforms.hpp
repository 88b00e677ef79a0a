// Transforms, each with a plan of its own. A finished transform is only read: threads may share it.
#ifndef KELS_CPP_TRANSFORMS_HPP
#define KELS_CPP_TRANSFORMS_HPP

#include <kels/cpp/families.hpp>
#include <kels/cpp/owner.hpp>

namespace kels {

// Which direction divides: by the length, or both by its root.
enum class norm {
    forward = kelFftNormFwd,
    inverse = kelFftNormInv,
    both = kelFftNormSqrt,
    none = kelFftNormNone,
};

using scratch = std::span<Kel8u>; // empty, or as long as scratch_size() says

namespace detail {

// The complex record of two real samples.
template <class Real>
struct record_of;
template <>
struct record_of<Kel16s> {
    using type = Kel16sc;
};
template <>
struct record_of<Kel32f> {
    using type = Kel32fc;
};
template <>
struct record_of<Kel64f> {
    using type = Kel64fc;
};

template <class Calls>
int scratch_size(const owner<Calls>& plan) {
    int size = 0;
    checked(Calls::get_buf_size(plan.get(), &size));
    return size;
}

// Runs a transform: its data, then the plan, the scale factor of integer samples, and the scratch.
template <class Calls, class Function, class... Data>
KelStatus transform(Function* function, const owner<Calls>& plan, scale by, scratch work, Data*... data) {
    const typename owner<Calls>::handle* const handle = plan.get();
    if (!work.empty() && work.size() < static_cast<std::size_t>(scratch_size(plan))) fail(kelStatusBadSize);
    if constexpr (std::is_invocable_v<Function, Data*..., decltype(handle), int, Kel8u*>)
        return checked(function(data..., handle, by.factor, work.data()));
    else
        return call_scaled(function, by, data..., handle, work.data());
}

template <class Calls>
class plan {
public:
    int size() const { return size_; }
    int scratch_size() const { return detail::scratch_size(plan_); }

protected:
    plan(int size, owner<Calls> made) : size_(size), plan_(std::move(made)) {}

    template <class Function, class... Data>
    KelStatus run(Function* function, scale by, scratch work, Data*... data) const {
        return transform(function, plan_, by, work, data...);
    }

private:
    int size_;
    owner<Calls> plan_;
};

// Complex samples.
template <class Calls, class Sample>
class fourier : public plan<Calls> {
public:
    using plan<Calls>::plan;

    KelStatus forward(in<Sample> x, out<Sample> bins, scale by = scale(0), scratch work = {}) const {
        return has(x, this->size()), has(bins, this->size()),
               this->run(Calls::forward, by, work, x.data(), bins.data());
    }
    KelStatus inverse(in<Sample> bins, out<Sample> x, scale by = scale(0), scratch work = {}) const {
        return has(x, this->size()), has(bins, this->size()),
               this->run(Calls::inverse, by, work, bins.data(), x.data());
    }
};

// Complex samples in two arrays.
template <class Calls, class Real>
class fourier<Calls, split<Real>> : public plan<Calls> {
public:
    using plan<Calls>::plan;

    KelStatus forward(in<Real> re, in<Real> im, out<Real> bins_re, out<Real> bins_im, scale by = scale(0),
                      scratch work = {}) const {
        return run(Calls::forward, re, im, bins_re, bins_im, by, work);
    }
    KelStatus inverse(in<Real> bins_re, in<Real> bins_im, out<Real> re, out<Real> im, scale by = scale(0),
                      scratch work = {}) const {
        return run(Calls::inverse, bins_re, bins_im, re, im, by, work);
    }

private:
    template <class Function>
    KelStatus run(Function* function, in<Real> re, in<Real> im, out<Real> dst_re, out<Real> dst_im, scale by,
                  scratch work) const {
        has(re, this->size()), has(im, this->size()), has(dst_re, this->size()), has(dst_im, this->size());
        return plan<Calls>::run(function, by, work, re.data(), im.data(), dst_re.data(), dst_im.data());
    }
};

// Real samples. Their spectrum is size() / 2 + 1 complex bins, or as many real values as samples, packed.
template <class Calls, class Real>
    requires(std::is_arithmetic_v<Real>)
class fourier<Calls, Real> : public plan<Calls> {
    using bin = typename record_of<Real>::type;

public:
    using plan<Calls>::plan;
    int bins() const { return this->size() / 2 + 1; }

    KelStatus forward(in<Real> x, out<bin> spectrum, scale by = scale(0), scratch work = {}) const {
        has(x, this->size()), has(spectrum, bins());
        return this->run(Calls::forward_ccs, by, work, x.data(), reinterpret_cast<Real*>(spectrum.data()));
    }
    KelStatus inverse(in<bin> spectrum, out<Real> x, scale by = scale(0), scratch work = {}) const {
        has(x, this->size()), has(spectrum, bins());
        return this->run(Calls::inverse_ccs, by, work, reinterpret_cast<const Real*>(spectrum.data()), x.data());
    }

    // R(0), R(1), I(1), ..., and R(N/2) last
    KelStatus forward_pack(in<Real> x, out<Real> packed, scale by = scale(0), scratch work = {}) const {
        return pack(Calls::forward_pack, x, packed, by, work);
    }
    KelStatus inverse_pack(in<Real> packed, out<Real> x, scale by = scale(0), scratch work = {}) const {
        return pack(Calls::inverse_pack, packed, x, by, work);
    }
    // R(0), R(N/2), R(1), I(1), ...
    KelStatus forward_perm(in<Real> x, out<Real> packed, scale by = scale(0), scratch work = {}) const {
        return pack(Calls::forward_perm, x, packed, by, work);
    }
    KelStatus inverse_perm(in<Real> packed, out<Real> x, scale by = scale(0), scratch work = {}) const {
        return pack(Calls::inverse_perm, packed, x, by, work);
    }

private:
    template <class Function>
    KelStatus pack(Function* function, in<Real> x, out<Real> y, scale by, scratch work) const {
        return has(x, this->size()), has(y, this->size()), this->run(function, by, work, x.data(), y.data());
    }
};

template <class Sample>
using fft_of = fourier<fft_calls<c_type<Sample>>, c_type<Sample>>;
template <class Sample>
using dft_of = fourier<dft_calls<c_type<Sample>>, c_type<Sample>>;

inline int order_of(int size) {
    int order = 0;
    while (order < 30 && (1 << order) < size) ++order;
    if (size != 1 << order) fail(kelStatusBadFftOrder);
    return order;
}

} // namespace detail

// Of `size` points, a power of two; samples are float, double or Kel16s, their complex types, or split<> of them.
template <class Sample>
class fft : public detail::fft_of<Sample> {
    using calls = detail::fft_calls<detail::c_type<Sample>>;

public:
    explicit fft(int size, norm divides = norm::inverse, int hint = kelHintDefault)
        : detail::fft_of<Sample>(size, detail::owner<calls>::make(calls::init_alloc, detail::order_of(size),
                                                                  static_cast<int>(divides), hint)) {}
};

// Of any number of points.
template <class Sample>
class dft : public detail::dft_of<Sample> {
    using calls = detail::dft_calls<detail::c_type<Sample>>;

public:
    explicit dft(int size, norm divides = norm::inverse)
        : detail::dft_of<Sample>(
              size, detail::owner<calls>::make(calls::init_alloc, size, static_cast<int>(divides), kelHintDefault)) {}
};

// The orthonormal cosine transforms, types II (forward) and III (inverse), of any number of points.
template <class Sample>
class dct {
    using forward_calls = detail::dct_forward_calls<Sample>;
    using inverse_calls = detail::dct_inverse_calls<Sample>;

public:
    explicit dct(int size, int hint = kelHintDefault)
        : size_(size), forward_(detail::owner<forward_calls>::make(forward_calls::init_alloc, size, hint)),
          inverse_(detail::owner<inverse_calls>::make(inverse_calls::init_alloc, size, hint)) {}

    int size() const { return size_; }
    int scratch_size() const {
        return static_cast<int>(detail::larger(detail::scratch_size(forward_), detail::scratch_size(inverse_)));
    }

    KelStatus forward(in<Sample> x, out<Sample> y, scale by = scale(0), scratch work = {}) const {
        detail::has(x, size_), detail::has(y, size_);
        return detail::transform(forward_calls::run, forward_, by, work, x.data(), y.data());
    }
    KelStatus inverse(in<Sample> y, out<Sample> x, scale by = scale(0), scratch work = {}) const {
        detail::has(x, size_), detail::has(y, size_);
        return detail::transform(inverse_calls::run, inverse_, by, work, y.data(), x.data());
    }

private:
    int size_;
    detail::owner<forward_calls> forward_;
    detail::owner<inverse_calls> inverse_;
};

} // namespace kels

#endif
