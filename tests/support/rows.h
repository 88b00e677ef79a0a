// Rows: one line of a family's table states a function and its reference, and every row is put through the same tests.
//
//     const Row rows[] = {
//         row(kelsConj_32fc, each(conjugate)),
//         in_place(kelsConj_32fc_I, each(conjugate)),
//         row(kelsFlip_8u, whole(reversed)).disjoint(),
//         reduction(kelsSum_32f, reduced(sum)).ulps(1),
//     };
//     const bool registered = add_rows("Movement", rows);
//
// The tests of a row are named Family/function.matches_reference, .obeys_frame, .keeps_modes, .feels_rounding_little,
// .stays_inside and .in_place_is_same.
//
// What an argument is follows from the signature. A pointer to const is a source, any other pointer before the length a
// destination (in an `in_place` row: source and destination in one), one after the length a result of one element. The
// length is the int behind a destination, in a reduction the int behind a source. Everything else is a value: a
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

enum class Role : std::uint8_t { source, destination, in_place, result, length, value };

struct Argument {
    Role role;
    Type type;

    constexpr bool is_pointer() const { return role != Role::length && role != Role::value; }
    constexpr bool is_input() const { return role == Role::source || role == Role::in_place; }
    constexpr bool is_output() const { return is_pointer() && role != Role::source; }
    constexpr bool is_value() const { return role == Role::value; }
};

enum class Form : std::uint8_t { separate, in_place, reduction };

/// What a reference works on: an address per argument of the function. An in-place argument has its original among the
/// inputs and its result among the outputs. A reduction's reference may leave slack for the parts of the result.
struct Frame {
    void* const* in;
    void* const* out;
    int len;
    double* slack;
    void* const* place; // where the function finds its arrays
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
    const Role before_length = form == Form::reduction ? Role::source : Role::destination;
    std::size_t length = 1;
    while (a[length - 1].role != before_length || a[length].role != Role::value) ++length;
    a[length].role = Role::length;
    for (std::size_t i = 0; i < N; ++i)
        if (a[i].role == Role::destination) {
            if (i > length)
                a[i].role = Role::result;
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

    template <class T>
    static T passed(void* slot) {
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

/// Calls f with one index sequence for each array of positions.
template <const auto& First, const auto& Second, const auto& Third, class F>
auto with_positions(F f) {
    return [&]<std::size_t... I, std::size_t... J, std::size_t... K>(
        std::index_sequence<I...>, std::index_sequence<J...>, std::index_sequence<K...>) {
        return f(std::index_sequence<First[I]...>{}, std::index_sequence<Second[J]...>{},
                 std::index_sequence<Third[K]...>{});
    }
    (std::make_index_sequence<First.size()>{}, std::make_index_sequence<Second.size()>{},
     std::make_index_sequence<Third.size()>{});
}

/// Stores a reference's value, rounding it once if it is wider than the element.
template <class T, class R>
void put(T& out, const R& value) {
    if constexpr (std::is_same_v<T, R>) {
        out = value;
    } else if constexpr (ComplexSample<T>) {
        put(out.re, value.re);
        put(out.im, value.im);
    } else {
        static_assert(std::is_floating_point_v<T> || std::is_integral_v<R>, "an integer is rounded by its reference");
        out = static_cast<T>(value);
    }
}

template <class F>
struct Each {
    template <class S>
    static KelStatus run(const Frame& frame) {
        static_assert(S::outputs.size() == 1, "a reference for one element has one result");
        with_positions<S::inputs, S::values, S::outputs>([&]<std::size_t... I, std::size_t... V, std::size_t O>(
            std::index_sequence<I...>, std::index_sequence<V...>, std::index_sequence<O>) {
            auto* out = static_cast<typename S::template Element<O>*>(frame.out[O]);
            for (int i = 0; i < frame.len; ++i)
                put(out[i], F{}(static_cast<const typename S::template Element<I>*>(frame.in[I])[i]...,
                                *static_cast<const typename S::template Type<V>*>(frame.in[V])...));
        });
        return kelStatusOk;
    }
};

template <class F>
struct Whole {
    template <class S>
    static KelStatus run(const Frame& frame) {
        return with_positions<S::inputs, S::values,
                              S::outputs>([&]<std::size_t... I, std::size_t... V, std::size_t... O>(
            std::index_sequence<I...>, std::index_sequence<V...>, std::index_sequence<O...>) {
            const auto compute = [&] {
                return F{}(static_cast<const typename S::template Element<I>*>(frame.in[I])...,
                           static_cast<typename S::template Element<O>*>(frame.out[O])..., frame.len,
                           *static_cast<const typename S::template Type<V>*>(frame.in[V])...);
            };
            if constexpr (std::is_void_v<decltype(compute())>) {
                compute();
                return kelStatusOk;
            } else {
                return compute();
            }
        });
    }
};

template <class T, class R>
void put_within(T& out, const R& value, double* slack) {
    if constexpr (std::is_same_v<R, Within>) {
        out = static_cast<T>(value.value);
        *slack = static_cast<double>(value.slack);
    } else if constexpr (std::is_same_v<R, ComplexWithin>) {
        put_within(out.re, value.re, slack);
        put_within(out.im, value.im, slack + 1);
    } else {
        put(out, value);
    }
}

template <class F>
struct Reduced {
    template <class S>
    static KelStatus run(const Frame& frame) {
        static_assert(S::outputs.size() == 1, "a reference that returns the result has one");
        with_positions<S::inputs, S::values, S::outputs>([&]<std::size_t... I, std::size_t... V, std::size_t O>(
            std::index_sequence<I...>, std::index_sequence<V...>, std::index_sequence<O>) {
            put_within(*static_cast<typename S::template Element<O>*>(frame.out[O]),
                       F{}(static_cast<const typename S::template Element<I>*>(frame.in[I])..., frame.len,
                           *static_cast<const typename S::template Type<V>*>(frame.in[V])...),
                       frame.slack);
        });
        return kelStatusOk;
    }
};

/// The addresses of a call's arrays, in the order of the arguments.
using Places = std::span<void* const>;

template <class F>
struct Placed {
    template <class S>
    static KelStatus run(const Frame& frame) {
        return with_positions<S::inputs, S::values,
                              S::outputs>([&]<std::size_t... I, std::size_t... V, std::size_t... O>(
            std::index_sequence<I...>, std::index_sequence<V...>, std::index_sequence<O...>) {
            std::array<void*, S::arguments.size()> arrays{};
            std::size_t count = 0;
            for (std::size_t i = 0; i < S::arguments.size(); ++i)
                if (S::arguments[i].is_pointer()) arrays[count++] = frame.place[i];
            return F{}(Places(arrays).first(count), static_cast<const typename S::template Element<I>*>(frame.in[I])...,
                       static_cast<typename S::template Element<O>*>(frame.out[O])..., frame.len,
                       *static_cast<const typename S::template Type<V>*>(frame.in[V])...);
        });
    }
};

// What a family writes

/// Reference for one element: reference(elements of the sources..., values...), in the order of the arguments.
template <class F>
constexpr Each<F> each(F) {
    return {};
}

/// Reference for the whole call: reference(sources..., destinations and results..., len, values...). An in-place
/// argument stands among the sources and among the destinations. It returns nothing or the status.
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

template <class Reference>
inline constexpr bool is_placed = false;
template <class F>
inline constexpr bool is_placed<Placed<F>> = true;

struct Row {
    static constexpr int every_bit = -1;

    void (*function)() = nullptr;
    const char* name = nullptr;
    std::span<const Argument> arguments;
    Form form = Form::separate;
    KelStatus (*call)(void (*function)(), void* const* slots) = nullptr;
    KelStatus (*reference)(const Frame&) = nullptr;
    const char* file = nullptr;
    int line = 0;

    int tolerance = every_bit;
    int shortest_length = 1;
    unsigned nullable_arguments = 0;
    bool needs_disjoint = false;
    bool checks_length_first = false;
    bool takes_null_sources = false;
    bool depends_on_rounding = false;
    bool depends_on_place = false;
    double low = 0, high = 0;
    struct {
        int count = 0;
        double items[12];
    } choices[3];

    /// Floating-point results within n units in the last place, and any NaN for a NaN. Without this, every bit counts.
    Row ulps(int n) const { return with(&Row::tolerance, n); }
    /// Lengths below n are bad.
    Row shortest(int n) const { return with(&Row::shortest_length, n); }
    /// The destination may not be a source.
    Row disjoint() const { return with(&Row::needs_disjoint, true); }
    /// A bad length is found before a null pointer.
    Row length_first() const { return with(&Row::checks_length_first, true); }
    /// A null source is no error in itself; the family tests what it means.
    Row nullable_sources() const { return with(&Row::takes_null_sources, true); }
    /// This argument may be null; the family tests what it means.
    Row nullable(int argument) const { return with(&Row::nullable_arguments, nullable_arguments | 1U << argument); }
    /// Results follow the rounding mode that the caller has set in the x87 unit.
    Row follows_rounding() const { return with(&Row::depends_on_rounding, true); }
    /// Random data lie in [from, to]; special values come all the same.
    Row range(double from, double to) const { return with(&Row::low, from).with(&Row::high, to); }
    /// The index-th value argument takes one of these only.
    Row values(int index, std::initializer_list<double> items) const {
        Row row = *this;
        for (double item : items) row.choices[index].items[row.choices[index].count++] = item;
        return row;
    }

private:
    template <class T, class U>
    Row with(T Row::*member, U value) const {
        Row row = *this;
        row.*member = value;
        return row;
    }
};

/// The name that the library exports for a function.
const char* exported_name(void (*function)());

template <Form form, class Reference, class... A>
Row make_row(KelStatus (*function)(A...), const char* file, int line) {
    using S = Signature<form, A...>;
    const auto any = reinterpret_cast<void (*)()>(function);
    Row row;
    row.function = any;
    row.name = exported_name(any);
    row.arguments = S::arguments;
    row.form = form;
    row.call = S::call;
    row.reference = Reference::template run<S>;
    row.depends_on_place = is_placed<Reference>;
    row.file = file;
    row.line = line;
    return row;
}

template <class Reference, class... A>
Row row(KelStatus (*function)(A...), Reference, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    return make_row<Form::separate, Reference>(function, file, line);
}

template <class Reference, class... A>
Row in_place(KelStatus (*function)(A...), Reference, const char* file = __builtin_FILE(), int line = __builtin_LINE()) {
    return make_row<Form::in_place, Reference>(function, file, line);
}

template <class Reference, class... A>
Row reduction(KelStatus (*function)(A...), Reference, const char* file = __builtin_FILE(),
              int line = __builtin_LINE()) {
    return make_row<Form::reduction, Reference>(function, file, line);
}

/// Registers the tests of every row. `rows` must live as long as the program. An in-place row whose name, without the
/// ending, is that of another row is also held against it.
bool add_rows(const char* family, std::span<const Row> rows);

/// Every row that has been registered, in the order of the functions' names.
std::vector<const Row*> all_rows();

class Random;

/// One call with the k-th draw of values, at any place and in place, against the reference. Its results count in the
/// row's digest.
void try_row(const Row& row, int len, int k, Random& random);

} // namespace kels_test
