// What stands between C++ and a C function: arrays and values as they are passed, lengths, statuses.
#ifndef KELS_CPP_CALL_HPP
#define KELS_CPP_CALL_HPP

#include <kels.h>

#include <climits>
#include <concepts>
#include <exception>
#include <span>
#include <type_traits>
#include <utility>

namespace kels {

// A call that failed; it has stored nothing.
class error : public std::exception {
public:
    explicit error(KelStatus status) noexcept : status_(status) {}
    KelStatus status() const noexcept { return status_; }
    const char* what() const noexcept override { return kelGetStatusString(status_); }

private:
    KelStatus status_;
};

// Integer results are multiplied by 2^-factor.
struct scale {
    int factor;
    explicit constexpr scale(int f) : factor(f) {}
};

// Real and imaginary parts in two arrays, as a type of samples: fft<split<float>>.
template <class Real>
struct split;

namespace detail {

// std::complex<Real>, which has the layout of the library's records. Known by what it offers, for its header takes as long
// to compile as all of this.
template <class T, class Real>
concept complex_of = std::same_as<typename T::value_type, Real> && sizeof(T) == 2 * sizeof(Real) && requires(const T& z) {
    { z.real() } -> std::same_as<Real>;
    { z.imag() } -> std::same_as<Real>;
};

// The C type of a sample.
template <class T>
struct c_type_of {
    using type = T;
};
template <complex_of<float> T>
struct c_type_of<T> {
    using type = Kel32fc;
};
template <complex_of<double> T>
struct c_type_of<T> {
    using type = Kel64fc;
};
template <class Real>
struct c_type_of<split<Real>> {
    using type = split<typename c_type_of<Real>::type>;
};
template <class T>
using c_type = typename c_type_of<std::remove_cv_t<T>>::type;

template <class T>
concept record = requires(T t) { t.re, t.im; };

template <class Range>
using element_of = std::remove_reference_t<decltype(*std::data(std::declval<Range&>()))>;

// A span of records, which are made of std::complex too.
template <class Record>
class record_span : public std::span<Record> {
    template <class Range>
    using complexes = std::span<std::conditional_t<std::is_const_v<Record>, const element_of<Range>, element_of<Range>>>;

public:
    constexpr record_span() = default;
    constexpr record_span(Record* first, std::size_t count) : std::span<Record>(first, count) {}

    template <class Range>
        requires std::constructible_from<std::span<Record>, Range&&>
    constexpr record_span(Range&& range) : std::span<Record>(std::forward<Range>(range)) {}

    template <class Range>
        requires complex_of<std::remove_const_t<element_of<Range>>, decltype(Record::re)> &&
                 (std::is_const_v<Record> || !std::is_const_v<element_of<Range>>) &&
                 std::constructible_from<complexes<Range>, Range&&>
    constexpr record_span(Range&& range)
        : std::span<Record>(reinterpret_cast<Record*>(std::data(range)), std::size(range)) {}
};

template <class T>
using array = std::conditional_t<record<T>, record_span<T>, std::span<T>>;

template <class Record>
struct record_value {
    Record value;
    constexpr record_value(Record v) : value(v) {}
    constexpr record_value(decltype(Record::re) re, decltype(Record::im) im = 0) : value{re, im} {}
    template <complex_of<decltype(Record::re)> Complex>
    constexpr record_value(const Complex& z) : value{z.real(), z.imag()} {}
    constexpr operator Record() const { return value; }
};

template <class T>
struct value_of {
    using type = T;
};
template <record T>
struct value_of<T> {
    using type = record_value<T>;
};

[[noreturn, gnu::cold, gnu::noinline]] inline void fail(KelStatus status) { throw error(status); }

inline KelStatus checked(KelStatus status) {
    if (status < 0) [[unlikely]]
        fail(status);
    return status;
}

// Lengths are formed in 64 bits, so that none of their sums and products wraps.
inline long long counted(std::size_t size) {
    if (size > INT_MAX) [[unlikely]]
        fail(kelStatusBadSize);
    return static_cast<long long>(size);
}

inline void equal(std::size_t size, long long extent) {
    if (static_cast<long long>(size) != extent) [[unlikely]]
        fail(kelStatusBadSize);
}

inline void at_least(std::size_t size, long long extent) {
    if (static_cast<long long>(size) < extent) [[unlikely]]
        fail(kelStatusBadSize);
}

template <class T>
long long length(const std::span<T>& array) {
    return counted(array.size());
}

template <class T>
void has(const std::span<T>& array, long long extent) {
    equal(array.size(), extent);
}

// Quotients of lengths; a divisor below 1 is an error that the function itself tells.
constexpr long long quotient(long long n, long long d) { return d < 1 ? 0 : n / d; }
constexpr long long quotient_up(long long n, long long d) { return d < 1 || n < 1 ? 0 : (n + d - 1) / d; }
constexpr long long larger(long long a, long long b) { return a > b ? a : b; }

} // namespace detail

// What a call reads, what it writes, and a value that it takes.
template <class T>
using in = detail::array<const detail::c_type<T>>;
template <class T>
using out = detail::array<detail::c_type<T>>;
template <class T>
using value = typename detail::value_of<detail::c_type<T>>::type;

// An element and where it is.
template <class T>
struct indexed {
    T value;
    int index;
};

} // namespace kels

#endif
