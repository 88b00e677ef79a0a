// Streams of noise: calls of any lengths continue one sequence.
#ifndef KELS_CPP_NOISE_HPP
#define KELS_CPP_NOISE_HPP

#include <kels/cpp/families.hpp>
#include <kels/cpp/owner.hpp>

namespace kels {

namespace detail {

template <class Calls, class Sample>
class noise {
public:
    noise(Sample first, Sample second, Kel32u seed)
        : stream_(owner<Calls>::make(Calls::init_alloc, first, second, seed)) {}

    KelStatus operator()(out<Sample> x) {
        return checked(Calls::run(x.data(), static_cast<int>(length(x)), stream_.get()));
    }

private:
    owner<Calls> stream_;
};

} // namespace detail

// From `low` on, and below `high`; samples are float, Kel16s or Kel8u.
template <class Sample>
class uniform_noise : public detail::noise<detail::uniform_noise_calls<Sample>, Sample> {
public:
    uniform_noise(Sample low, Sample high, Kel32u seed)
        : detail::noise<detail::uniform_noise_calls<Sample>, Sample>(low, high, seed) {}
};

template <class Sample>
class normal_noise : public detail::noise<detail::normal_noise_calls<Sample>, Sample> {
public:
    normal_noise(Sample mean, Sample deviation, Kel32u seed)
        : detail::noise<detail::normal_noise_calls<Sample>, Sample>(mean, deviation, seed) {}
};

} // namespace kels

#endif
