// Rows: one line of a family's table states a function and its reference, and every row is put through the same tests.
//
//     const Rows table = {
//         rows(each(conjugate), kelsConj_32fc, kelsConj_64fc).in_place(kelsConj_32fc_I, kelsConj_64fc_I),
//         rows(whole(reversed), kelsFlip_8u, kelsFlip_16u).disjoint(),
//         reductions(reduced(sum), kelsSum_32f).ulps(1),
//     };
//     const bool registered = add_rows("Movement", table);
//
// The tests of a row are named Family/function.matches_reference, .takes_extremes, .takes_every_factor, .obeys_frame,
// .keeps_modes, .feels_rounding_little, .stays_inside and .in_place_is_same.
//
// What an argument is follows from the signature. A pointer to const is a source, any other pointer before the length a
// destination (in an `in_place` row: source and destination in one). The length is the int behind a destination, in
// `reductions` and `updates` the int behind a source. A pointer after the length is one element: in a reduction a
// result, elsewhere carried from call to call (a phase, a seed), so read and replaced. Everything else is a value: a
// constant, a level, a scale factor.
#pragma once

#include "kels/status.h"

#include <array>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace kels_test {

enum class Kind : std::uint8_t { u8, s8, u16, s16, u32, s32, s64, f32, f64 };

struct Type {
    Kind kind;
    std::uint8_t parts; // 2 in a complex type
    std::uint8_t size;

    constexpr int part_size() const { return size / parts; }
    bool operator==(const Type&) const = default;
};

template <class T>
concept ComplexSample = requires(T z) {
    z.re = z.im;
};

template <class T>
constexpr Type type_of() {
    if constexpr (ComplexSample<T>) {
        return {type_of<decltype(T::re)>().kind, 2, sizeof(T)};
    } else if constexpr (std::is_floating_point_v<T>) {
        return {sizeof(T) == 4 ? Kind::f32 : Kind::f64, 1, sizeof(T)};
    } else {
        constexpr Kind unsigned_kinds[] = {Kind::u8, Kind::u16, Kind::u32};
        constexpr Kind signed_kinds[] = {Kind::s8, Kind::s16, Kind::s32, Kind::s64};
        constexpr int log2_size = sizeof(T) == 1 ? 0 : sizeof(T) == 2 ? 1 : sizeof(T) == 4 ? 2 : 3;
        return {std::is_unsigned_v<T> ? unsigned_kinds[log2_size] : signed_kinds[log2_size], 1, sizeof(T)};
    }
}

enum class Role : std::uint8_t { source, destination, in_place, result, carried, length, value };

struct Argument {
    Role role;
    Type type;

    constexpr bool is_pointer() const { return role != Role::length && role != Role::value; }
    constexpr bool is_array() const { return is_pointer() && role != Role::result && role != Role::carried; }
    constexpr bool is_input() const { return is_pointer() && role != Role::destination && role != Role::result; }
    constexpr bool is_output() const { return is_pointer() && role != Role::source; }
    constexpr bool is_value() const { return role == Role::value; }
};

enum class Form : std::uint8_t { separate, in_place, reduction, update };

/// The addresses of a call's arrays, in the order of the arguments.
using Places = std::span<void* const>;

/// What a reference works on: an address per argument of the function. What is replaced, in place or carried, has its
/// original among the inputs and its result among the outputs. A reduction's reference may leave slack for the parts of
/// the result.
struct Frame {
    void* const* in;
    void* const* out;
    int len;
    double* slack;
    Places places;
};

/// A value, and what a result may be off by besides the row's tolerance.
struct Within {
    long double value, slack = 0;
};
struct ComplexWithin {
    Within re, im;
};

// From a signature to roles, positions and calls

template <class A>
constexpr Argument describe() {
    if constexpr (std::is_pointer_v<A>) {
        using T = std::remove_pointer_t<A>;
        return {std::is_const_v<T> ? Role::source : Role::destination, type_of<std::remove_const_t<T>>()};
    } else {
        return {Role::value, type_of<A>()};
    }
}

template <std::size_t N>
constexpr std::array<Argument, N> assign_roles(Form form, std::array<Argument, N> a) {
    const bool ends_in_one = form == Form::reduction || form == Form::update;
    const Role before_length = ends_in_one ? Role::source : Role::destination;
    std::size_t length = 1;
    while (a[length - 1].role != before_length || a[length].role != Role::value) ++length;
    a[length].role = Role::length;
    for (std::size_t i = 0; i < N; ++i)
        if (a[i].role == Role::destination) {
            if (i > length)
                a[i].role = form == Form::reduction ? Role::result : Role::carried;
            else if (form == Form::in_place)
                a[i].role = Role::in_place;
        }
    return a;
}

template <Form form, class... A>
struct Signature {
    static constexpr std::array arguments = assign_roles<sizeof...(A)>(form, {describe<A>()...});

    template <std::size_t I>
    using Type = std::tuple_element_t<I, std::tuple<A...>>;
    template <std::size_t I>
    using Element = std::remove_const_t<std::remove_pointer_t<Type<I>>>;

    template <class Pick>
    static constexpr auto positions(Pick pick) {
        constexpr std::size_t count = [] {
            std::size_t n = 0;
            for (const Argument& a : arguments) n += Pick{}(a);
            return n;
        }();
        std::array<std::size_t, count> found{};
        std::size_t n = 0;
        for (std::size_t i = 0; i < arguments.size(); ++i)
            if (pick(arguments[i])) found[n++] = i;
        return found;
    }

    static constexpr auto inputs = positions([](const Argument& a) { return a.is_input(); });
    static constexpr auto outputs = positions([](const Argument& a) { return a.is_output(); });
    static constexpr auto values = positions([](const Argument& a) { return a.is_value(); });

    /// A value is returned in its place: on x87's stack a signalling NaN would become a quiet one.
    template <class T>
    static decltype(auto) passed(void* slot) {
        if constexpr (std::is_pointer_v<T>)
            return static_cast<T>(slot);
        else
            return *static_cast<const T*>(slot);
    }

    static KelStatus call(void (*function)(), void* const* slots) {
        return [&]<std::size_t... I>(std::index_sequence<I...>) {
            return reinterpret_cast<KelStatus (*)(A...)>(function)(passed<A>(slots[I])...);
        }
        (std::make_index_sequence<sizeof...(A)>{});
    }
};

/// Pointers to what a reference works on at some positions.
template <class S, const auto& positions>
auto elements_at(void* const* slots) {
    return [&]<std::size_t... K>(std::index_sequence<K...>) {
        return std::tuple{static_cast<typename S::template Element<positions[K]>*>(slots[positions[K]])...};
    }
    (std::make_index_sequence<positions.size()>{});
}
template <class S>
auto inputs_and_outputs(const Frame& frame) {
    return std::tuple_cat(elements_at<S, S::inputs>(frame.in), elements_at<S, S::outputs>(frame.out));
}

/// f(arguments..., len, values...)
template <class S, class Arguments, class F>
auto call_reference(const Frame& frame, const Arguments& arguments, F f) {
    const auto call = [&](auto... a) {
        return std::apply([&](auto... v) { return f(a..., frame.len, *v...); }, elements_at<S, S::values>(frame.in));
    };
    return std::apply(call, arguments);
}

/// Stores a reference's value, rounding it once if it is wider than the element.
template <class T, class R>
void put(T& out, const R& value, double* slack) {
    if constexpr (std::is_same_v<T, R>) {
        out = value;
    } else if constexpr (std::is_same_v<R, Within>) {
        out = static_cast<T>(value.value);
        *slack = static_cast<double>(value.slack);
    } else if constexpr (ComplexSample<T>) {
        put(out.re, value.re, slack);
        put(out.im, value.im, slack + 1);
    } else {
        static_assert(std::is_floating_point_v<T> || std::is_integral_v<R>, "an integer is rounded by its reference");
        out = static_cast<T>(value);
    }
}

template <class F>
struct Each {
    template <class S>
    static KelStatus run(const Frame& frame) {
        const auto [out] = elements_at<S, S::outputs>(frame.out); // a reference for one element has one result
        const auto set_one = [&, to = out](int i, auto... x) {
            const auto of = [&](auto... v) { put(to[i], F{}(x[i]..., *v...), frame.slack); };
            std::apply(of, elements_at<S, S::values>(frame.in));
        };
        for (int i = 0; i < frame.len; ++i)
            std::apply(set_one, std::tuple_cat(std::tuple(i), elements_at<S, S::inputs>(frame.in)));
        return kelStatusOk;
    }
};

template <class F>
struct Whole {
    template <class S>
    static KelStatus run(const Frame& frame) {
        const auto compute = [&] { return call_reference<S>(frame, inputs_and_outputs<S>(frame), F{}); };
        if constexpr (std::is_void_v<decltype(compute())>) {
            compute();
            return kelStatusOk;
        } else {
            return compute();
        }
    }
};

template <class F>
struct Reduced {
    template <class S>
    static KelStatus run(const Frame& frame) {
        const auto [out] = elements_at<S, S::outputs>(frame.out); // a reference that returns the result has one
        put(*out, call_reference<S>(frame, elements_at<S, S::inputs>(frame.in), F{}), frame.slack);
        return kelStatusOk;
    }
};

template <class F>
struct Placed {
    static constexpr bool is_placed = true;

    template <class S>
    static KelStatus run(const Frame& frame) {
        return call_reference<S>(frame, std::tuple_cat(std::tuple(frame.places), inputs_and_outputs<S>(frame)), F{});
    }
};

// What a family writes

/// Reference for one element: reference(elements of the sources..., values...), in the order of the arguments.
template <class F>
constexpr Each<F> each(F) {
    return {};
}

/// Reference for the whole call: reference(sources..., destinations and results..., len, values...). What is replaced
/// stands among the sources and among the results. It returns nothing or the status.
template <class F>
constexpr Whole<F> whole(F) {
    return {};
}

/// Reference for the result of a reduction: reference(sources..., len, values...), which returns it, as a Within or
/// ComplexWithin where it leaves slack.
template <class F>
constexpr Reduced<F> reduced(F) {
    return {};
}

/// Reference for a function whose results depend on where its arrays stand: reference(places, sources..., destinations
/// and results..., len, values...), which returns the status.
template <class F>
constexpr Placed<F> placed(F) {
    return {};
}

/// A value argument that a function answers with a status, storing nothing.
struct Refusal {
    int value;
    double bad;
    KelStatus status;
};

struct Row {
    static constexpr int every_bit = -1;

    void (*function)() = nullptr;
    const char* name = nullptr;
    std::span<const Argument> arguments;
    Form form = Form::separate;
    KelStatus (*call)(void (*function)(), void* const* slots) = nullptr;
    KelStatus (*reference)(const Frame&) = nullptr;

    int tolerance = every_bit;
    int shortest_length = 1;
    unsigned nullable_arguments = 0;
    bool needs_disjoint = false;
    bool checks_length_first = false;
    bool depends_on_rounding = false;
    bool depends_on_place = false;
    bool checks_values_first = false;
    bool ignores_modes = false;
    bool has_every_size = false;
    bool is_driven_elsewhere = false;
    bool is_finite = false;
    double spare = 0;
    double low = 0, high = 0;
    struct {
        int count = 0;
        double items[12];
    } choices[4];
    std::vector<Refusal> refusals;
    std::vector<int> lengths;
    std::vector<std::int64_t> telling_integers;
};

/// Rows that have something in common.
class Rows : public std::vector<Row> {
public:
    explicit Rows(std::vector<Row> rows) : std::vector<Row>(std::move(rows)) {}
    Rows(std::initializer_list<Rows> parts) {
        for (const Rows& part : parts) insert(end(), part.begin(), part.end());
    }

    /// Floating-point results within n units in the last place, and any NaN for a NaN. Without this, and in integers,
    /// every bit counts.
    Rows ulps(int n) const { return with(&Row::tolerance, n); }
    /// The same, another number of units where doubles are stored.
    Rows ulps(int n, int of_doubles) const {
        Rows rows = ulps(n);
        for (Row& row : rows)
            for (const Argument& a : row.arguments)
                if (a.is_output() && a.type.kind == Kind::f64) row.tolerance = of_doubles;
        return rows;
    }
    /// Floating-point results off by no more than this are as good as any.
    Rows slack(double spare) const { return with(&Row::spare, spare); }
    /// Lengths below n are bad.
    Rows shortest(int n) const { return with(&Row::shortest_length, n); }
    /// The destination may not be a source.
    Rows disjoint() const { return with(&Row::needs_disjoint, true); }
    /// A bad length is found before a null pointer.
    Rows length_first() const { return with(&Row::checks_length_first, true); }
    /// These arguments may be null; the family tests what it means.
    Rows nullable(std::initializer_list<int> arguments) const {
        unsigned set = 0;
        for (const int argument : arguments) set |= 1U << argument;
        return with(&Row::nullable_arguments, set);
    }
    /// Results follow the rounding mode that the caller has set in the x87 unit.
    Rows follows_rounding() const { return with(&Row::depends_on_rounding, true); }
    /// Results do not feel the caller's modes at all.
    Rows any_modes() const { return with(&Row::ignores_modes, true); }
    /// Real data and values of every exponent belong to it, those whose squares leave the range among them.
    Rows every_size() const { return with(&Row::has_every_size, true); }
    /// These lengths show what others do not; the longer, the fewer draws.
    Rows lengths(const std::vector<int>& n) const { return with(&Row::lengths, n); }
    /// These integers, too, are tried at every scale factor.
    Rows telling(const std::vector<std::int64_t>& x) const { return with(&Row::telling_integers, x); }
    /// The fuzzer has a drive of its own for them.
    Rows driven_elsewhere() const { return with(&Row::is_driven_elsewhere, true); }
    /// Infinities and NaNs do not belong to it, nor other special values; the family tests what they give.
    Rows finite() const { return with(&Row::is_finite, true); }
    /// Random data lie in [from, to]; special values come all the same.
    Rows range(double from, double to) const { return with(&Row::low, from).with(&Row::high, to); }
    /// The index-th value argument may not be one of these. Refusals are stated in the order of the checks.
    Rows refuses(int index, std::initializer_list<double> bad, KelStatus status) const {
        Rows rows = *this;
        for (Row& row : rows)
            for (const double value : bad) row.refusals.push_back({index, value, status});
        return rows;
    }
    /// Bad values are found before a null array and a bad length.
    Rows values_first() const { return with(&Row::checks_values_first, true); }
    /// The index-th value, carried ones counted, takes one of these only.
    Rows values(int index, std::initializer_list<double> items) const {
        Rows rows = *this;
        for (Row& row : rows)
            for (double item : items) row.choices[index].items[row.choices[index].count++] = item;
        return rows;
    }

private:
    template <class T, class U>
    Rows with(T Row::*member, const U& value) const {
        Rows rows = *this;
        for (Row& row : rows) row.*member = value;
        return rows;
    }
};

/// The name that the library exports for a function.
const char* exported_name(void (*function)());

template <Form form, class Reference, class... A>
Row make_row(KelStatus (*function)(A...)) {
    using S = Signature<form, A...>;
    Row row;
    row.function = reinterpret_cast<void (*)()>(function);
    row.name = exported_name(row.function);
    row.arguments = S::arguments;
    row.form = form;
    row.call = S::call;
    row.reference = Reference::template run<S>;
    row.depends_on_place = requires { Reference::is_placed; };
    return row;
}

/// Rows with one reference. Options come behind the last of them.
template <class Reference>
struct RowsOf : Rows {
    template <Form form, class... Functions>
    static RowsOf of(Functions... functions) {
        return {Rows({make_row<form, Reference>(functions)...})};
    }
    /// And the same, in place.
    template <class... Functions>
    RowsOf in_place(Functions... functions) const {
        return {Rows{*this, of<Form::in_place>(functions...)}};
    }
};

template <class Reference, class... Functions>
RowsOf<Reference> rows(Reference, Functions... functions) {
    return RowsOf<Reference>::template of<Form::separate>(functions...);
}

template <class Reference, class... Functions>
RowsOf<Reference> in_place(Reference, Functions... functions) {
    return RowsOf<Reference>::template of<Form::in_place>(functions...);
}

template <class Reference, class... Functions>
RowsOf<Reference> reductions(Reference, Functions... functions) {
    return RowsOf<Reference>::template of<Form::reduction>(functions...);
}

template <class Reference, class... Functions>
RowsOf<Reference> updates(Reference, Functions... functions) {
    return RowsOf<Reference>::template of<Form::update>(functions...);
}

/// Registers the tests of every row. An in-place row whose name, without the ending, is that of another row is also
/// held against it.
bool add_rows(const char* family, const Rows& rows);

/// Every row that has been registered, in the order of the functions' names.
std::vector<const Row*> all_rows();

class Random;

/// One call with the k-th draw of values, at any place and in place, against the reference. Its results count in the
/// row's digest.
void try_row(const Row& row, int len, int k, Random& random);

} // namespace kels_test
