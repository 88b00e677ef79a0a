// Calls the library's functions on NumPy arrays: finds the function for the types of the arguments, makes what it
// writes, lets other Python threads run meanwhile, and turns statuses into exceptions and warnings.
//
// What the functions take, a table says, which is made from the C headers; here are the rules of a call.

#include <kels.h>
#include <kels/cpp/call.hpp>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <array>
#include <cmath>
#include <cstring>
#include <deque>
#include <limits>
#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace py = pybind11;

namespace {

using kels::detail::larger;
using kels::detail::quotient;
using kels::detail::quotient_up;

// ---- Types -------------------------------------------------------------------------------------------------------

// Types are places in this list.
constexpr std::array type_names = {"8u",  "8s",  "16u",  "16s",  "32u",  "32s",  "64s", "32f",
                                   "64f", "8sc", "16sc", "32sc", "64sc", "32fc", "64fc"};
constexpr int types = type_names.size();
constexpr int type_64s = 6, type_32f = 7, type_64f = 8, type_8sc = 9, type_32fc = 13, type_64fc = 14;
constexpr int no_type = 30, no_array = 31;

constexpr int element_size[types] = {1, 1, 2, 2, 4, 4, 8, 4, 8, 2, 4, 8, 16, 8, 16};

std::array<PyObject*, types> dtypes;
int numpy_type[types]; // NumPy's own numbers

// The type of complex numbers whose parts are of a type.
int complex_of(int type) {
    return type == type_32f ? type_32fc : type == type_64f ? type_64fc : type == 3 ? 10 : no_type;
}

bool is_record(int type) { return type >= type_8sc && type < type_32fc; }

int type_of_dtype(PyObject* dtype) {
    const auto* d = py::detail::array_descriptor_proxy(dtype);
    if (d->byteorder == '>') return no_type;
    for (int type = 0; type < types; ++type)
        if (dtype == dtypes[type] || (d->type_num == numpy_type[type] && !is_record(type))) return type;
    for (int type = type_8sc; type < type_32fc; ++type)
        if (d->type_num == numpy_type[type] && PyObject_RichCompareBool(dtype, dtypes[type], Py_EQ) == 1) return type;
    // Two C types of one size have numbers of their own.
    if (d->kind == 'i' || d->kind == 'u')
        for (int type = 0; type <= type_64s; ++type)
            if (PyObject_RichCompareBool(dtype, dtypes[type], Py_EQ) == 1) return type;
    return no_type;
}

auto& numpy() { return py::detail::npy_api::get(); }

// An array of one dimension.
struct array {
    PyObject* object = nullptr; // borrowed
    unsigned char* data = nullptr;
    long long size = -1;
    int type = no_array;
    int flags = 0;

    array() = default;
    explicit array(PyObject* o) : object(o) {
        const auto* a = py::detail::array_proxy(o);
        data = reinterpret_cast<unsigned char*>(a->data);
        size = a->dimensions[0];
        type = type_of_dtype(a->descr);
        flags = a->flags;
    }

    bool known() const { return size >= 0; }
    long long bytes() const { return type < types ? size * element_size[type] : 0; }
    bool is_dense() const {
        constexpr int wanted = py::detail::npy_api::NPY_ARRAY_C_CONTIGUOUS_ | py::detail::npy_api::NPY_ARRAY_ALIGNED_;
        return (flags & wanted) == wanted;
    }
    bool is_writable() const { return is_dense() && (flags & py::detail::npy_api::NPY_ARRAY_WRITEABLE_) != 0; }
    bool overlaps(const array& other) const {
        return known() && other.known() && data < other.data + other.bytes() && other.data < data + bytes();
    }
};

bool is_array(PyObject* object) {
    return PyObject_TypeCheck(object, numpy().PyArray_Type_) && py::detail::array_proxy(object)->nd != 0;
}

py::object new_array(int type, long long size) {
    Py_INCREF(dtypes[type]); // which the call takes
    const Py_intptr_t dimensions[] = {static_cast<Py_intptr_t>(size)};
    PyObject* made =
        numpy().PyArray_NewFromDescr_(numpy().PyArray_Type_, dtypes[type], 1, dimensions, nullptr, nullptr, 0, nullptr);
    if (!made) throw py::error_already_set();
    return py::reinterpret_steal<py::object>(made);
}

// ---- The table ---------------------------------------------------------------------------------------------------

enum class kind : unsigned char {
    in,        // an array that is read
    out,       // an array that is written
    inout,     // an array of the caller's that is changed
    changed,   // an array that is replaced: a copy of the argument's, unless `out` is it
    value,     // a number
    address,   // a number, passed by its address
    reference, // a number that the call sets anew: taken, and given back
    result,    // a number that the call stores
    count,     // how many elements it has stored: what is given back has as many
    length,    // follows from the arrays
    scale,     // the scale factor
    handle,    // a context, which one thread uses at a time
    plan,      // a plan or context that is only read
    made,      // one that the call makes
    null       // scratch that the library finds itself
};

// One argument of a C function.
union slot {
    void* pointer;
    int integer;
    unsigned char bytes[16];
};

template <class A>
A read(const slot& s) {
    if constexpr (std::is_pointer_v<A>) {
        return static_cast<A>(s.pointer);
    } else {
        A value;
        std::memcpy(&value, s.bytes, sizeof value);
        return value;
    }
}

template <class... A, std::size_t... I>
KelStatus call(KelStatus (*function)(A...), const slot* s, std::index_sequence<I...>) {
    return function(read<A>(s[I])...);
}

template <class... A>
KelStatus call(KelStatus (*function)(A...), const slot* s) {
    return call(function, s, std::index_sequence_for<A...>());
}

// Calls a C function with its arguments from slots.
template <auto function>
KelStatus invoke(const slot* s) {
    return call(function, s);
}

constexpr int most_parameters = 14;

struct parameter {
    ::kind kind;
    signed char type;
    signed char place; // among the arguments of the Python call, or -1
    bool may_be_left_out;

    bool is_array() const { return kind == kind::in || kind == kind::inout || kind == kind::changed; }
    bool is_written() const { return kind == kind::out || kind == kind::changed; }
};

class frame;

struct row {
    const char* operation; // empty for what a class calls
    const char* name;
    const char* freed; // the function that releases what this one makes
    KelStatus (*call)(const slot*);
    void (*shape)(frame&); // null where the caller gives every length
    bool in_place, scaled, plain;
    int size;
    parameter parameters[most_parameters];
};

struct documentation {
    const char* operation;
    const char* text;
};

// ---- Errors ------------------------------------------------------------------------------------------------------

PyObject* error_type = nullptr;
PyObject* warning_type = nullptr;

[[noreturn]] void fail(KelStatus status) {
    py::object error = py::reinterpret_steal<py::object>(PyObject_CallFunction(error_type, "i", int(status)));
    if (error) PyErr_SetObject(error_type, error.ptr());
    throw py::error_already_set();
}

// ---- Numbers -----------------------------------------------------------------------------------------------------

template <class T>
void store(slot& s, T value) {
    std::memcpy(s.bytes, &value, sizeof value);
}

long long integer_of(PyObject* object) {
    py::object index = py::reinterpret_steal<py::object>(PyNumber_Index(object));
    if (!index) throw py::error_already_set();
    const long long value = PyLong_AsLongLong(index.ptr());
    if (value == -1 && PyErr_Occurred()) throw py::error_already_set();
    return value;
}

template <class T>
T narrow(long long value, int type) {
    if (value < static_cast<long long>(std::numeric_limits<T>::min()) ||
        value > static_cast<long long>(std::numeric_limits<T>::max())) {
        PyErr_Format(PyExc_OverflowError, "%lld is no value of type %s", value, type_names[type]);
        throw py::error_already_set();
    }
    return static_cast<T>(value);
}

void store_integer(slot& s, int type, long long value, int offset = 0) {
    slot part;
    switch (type) {
    case 0:
        store(part, narrow<Kel8u>(value, type));
        break;
    case 1:
        store(part, narrow<Kel8s>(value, type));
        break;
    case 2:
        store(part, narrow<Kel16u>(value, type));
        break;
    case 3:
        store(part, narrow<Kel16s>(value, type));
        break;
    case 4:
        store(part, narrow<Kel32u>(value, type));
        break;
    case 5:
        store(part, narrow<Kel32s>(value, type));
        break;
    default:
        store(part, static_cast<Kel64s>(value));
        break;
    }
    std::memcpy(s.bytes + offset, part.bytes, element_size[type]);
}

// Of integer complex numbers the record, a pair, or a complex number of integer parts.
void store_record(slot& s, int type, PyObject* object) {
    constexpr int part_types[] = {1, 3, 5, 6};
    const int part = part_types[type - type_8sc];
    if (PyComplex_Check(object)) {
        const Py_complex z = PyComplex_AsCComplex(object);
        const auto whole = [](double part) { return part == std::floor(part) && std::abs(part) < 0x1p62; };
        if (!whole(z.real) || !whole(z.imag)) throw py::type_error("integer parts are wanted");
        store_integer(s, part, static_cast<long long>(z.real));
        store_integer(s, part, static_cast<long long>(z.imag), element_size[part]);
        return;
    }
    const bool pair = PyTuple_Check(object) || PyObject_HasAttrString(object, "dtype");
    if (!pair || PyObject_HasAttrString(object, "__index__")) {
        store_integer(s, part, integer_of(object));
        store_integer(s, part, 0, element_size[part]);
        return;
    }
    for (int i = 0; i < 2; ++i) {
        py::object item = py::reinterpret_steal<py::object>(PyObject_GetItem(object, py::int_(i).ptr()));
        if (!item) throw py::error_already_set();
        store_integer(s, part, integer_of(item.ptr()), i * element_size[part]);
    }
}

void store_number(slot& s, int type, PyObject* object) {
    if (type <= type_64s) {
        store_integer(s, type, integer_of(object));
    } else if (type <= type_64f) {
        const double value = PyFloat_AsDouble(object);
        if (value == -1 && PyErr_Occurred()) throw py::error_already_set();
        type == type_32f ? store(s, static_cast<float>(value)) : store(s, value);
    } else if (is_record(type)) {
        store_record(s, type, object);
    } else {
        const Py_complex z = PyComplex_AsCComplex(object);
        if (z.real == -1 && PyErr_Occurred()) throw py::error_already_set();
        if (type == type_32fc)
            store(s, Kel32fc{static_cast<float>(z.real), static_cast<float>(z.imag)});
        else
            store(s, Kel64fc{z.real, z.imag});
    }
}

template <class T>
T loaded(const slot& s) {
    T value;
    std::memcpy(&value, s.bytes, sizeof value);
    return value;
}

py::object number(const slot& s, int type) {
    switch (type) {
    case 0:
        return py::int_(loaded<Kel8u>(s));
    case 1:
        return py::int_(loaded<Kel8s>(s));
    case 2:
        return py::int_(loaded<Kel16u>(s));
    case 3:
        return py::int_(loaded<Kel16s>(s));
    case 4:
        return py::int_(loaded<Kel32u>(s));
    case 5:
        return py::int_(loaded<Kel32s>(s));
    case 6:
        return py::int_(loaded<Kel64s>(s));
    case type_32f:
        return py::float_(loaded<float>(s));
    case type_64f:
        return py::float_(loaded<double>(s));
    case type_32fc: {
        const auto z = loaded<Kel32fc>(s);
        return py::reinterpret_steal<py::object>(PyComplex_FromDoubles(z.re, z.im));
    }
    case type_64fc: {
        const auto z = loaded<Kel64fc>(s);
        return py::reinterpret_steal<py::object>(PyComplex_FromDoubles(z.re, z.im));
    }
    default: { // a record of NumPy's
        py::object one = new_array(type, 1);
        std::memcpy(array(one.ptr()).data, s.bytes, element_size[type]);
        return one[py::int_(0)];
    }
    }
}

// ---- Plans and contexts ------------------------------------------------------------------------------------------

struct owned {
    void* pointer;
    const row* freed;
    bool busy;
};

const char* const capsule_name = "kels.handle";

void release(PyObject* capsule) {
    auto* const o = static_cast<owned*>(PyCapsule_GetPointer(capsule, capsule_name));
    slot s;
    s.pointer = o->pointer;
    o->freed->call(&s);
    delete o;
}

owned& owned_by(PyObject* capsule) {
    auto* const o = static_cast<owned*>(PyCapsule_GetPointer(capsule, capsule_name));
    if (!o) throw py::error_already_set();
    if (o->busy) throw std::runtime_error("a filter is in use by another thread");
    return *o;
}

// ---- Calls -------------------------------------------------------------------------------------------------------

struct options {
    PyObject* out = nullptr;
    PyObject* dtype = nullptr;
    bool scaled = false;
    int scale = 0;
    long long length = -1;
};

// The arguments of one call on their way to the C function.
class frame {
public:
    frame(const row& r, PyObject* const* arguments, int given, const options& o) : row_(r), options_(o) {
        for (int i = 0; i < r.size; ++i) take(i, r.parameters[i], arguments, given);
        if (o.out) take_out();
    }

    // What shapes are written in: of arrays by their places among the parameters.
    long long size(int i, long long guess = -1) {
        array& a = arrays_[i];
        if (!a.known()) a.size = options_.length >= 0 ? options_.length : guess;
        if (a.size < 0) throw py::type_error("how long the result is, out= or length= must say");
        return a.size;
    }
    long long length(int i, long long n) {
        if (n > INT_MAX) fail(kelStatusBadSize);
        store(slots_[i], static_cast<int>(n));
        return n;
    }
    void has(int i, long long extent) {
        array& a = arrays_[i];
        if (!a.known() && extent >= 0) a.size = extent;
        if (a.size != extent) fail(kelStatusBadSize);
    }
    void has_at_least(int i, long long extent) {
        array& a = arrays_[i];
        if (!a.known()) a.size = larger(extent, 0);
        if (a.size < extent) fail(kelStatusBadSize);
    }
    long long integer(int i) const {
        const bool pointed = row_.parameters[i].kind != kind::value;
        return loaded<int>(pointed ? cells_[i] : slots_[i]);
    }

    py::object run() {
        if (row_.shape) row_.shape(*this);
        for (int i = 0; i < row_.size; ++i) place(i);
        const KelStatus status = call();
        if (status < 0) fail(status);
        if (status > 0 && PyErr_WarnEx(warning_type, kelGetStatusString(status), 1) < 0) throw py::error_already_set();
        return results();
    }

private:
    void take(int i, const parameter& p, PyObject* const* arguments, int given) {
        PyObject* const argument = p.place >= 0 && p.place < given ? arguments[p.place] : nullptr;
        switch (p.kind) {
        case kind::in:
        case kind::inout:
        case kind::changed:
            take_array(i, p, argument);
            break;
        case kind::value:
            if (argument)
                store_number(slots_[i], p.type, argument);
            else
                store(slots_[i], 0LL);
            break;
        case kind::address:
        case kind::reference:
            store_number(cells_[i], p.type, argument);
            [[fallthrough]];
        case kind::result:
        case kind::count:
            slots_[i].pointer = cells_[i].bytes;
            break;
        case kind::scale:
            store(slots_[i], options_.scale);
            break;
        case kind::handle:
        case kind::plan:
            slots_[i].pointer = owned_by(argument).pointer;
            break;
        case kind::made:
            slots_[i].pointer = &made_;
            break;
        default:
            slots_[i].pointer = nullptr;
            break;
        }
        if (p.kind == kind::handle) used_ = &owned_by(argument);
    }

    void take_array(int i, const parameter& p, PyObject* argument) {
        const bool of_class = !row_.shape;
        if (of_class && argument == Py_None) {
            arrays_[i].size = 0; // a delay line that is silent
            return;
        }
        arrays_[i] = checked(argument, p.type, of_class);
        if (p.kind == kind::inout && !arrays_[i].is_writable())
            throw py::value_error("an array that is changed must be writable and contiguous");
    }

    // What goes to C is an array of the type that C takes, whoever calls. Classes pass spectra as the reals that they
    // are made of.
    static array checked(PyObject* object, int type, bool parts_will_do) {
        if (!object || !is_array(object) || py::detail::array_proxy(object)->nd != 1)
            throw py::type_error("an array of one dimension is wanted");
        const array found(object);
        if (found.type != type && !(parts_will_do && found.type == complex_of(type)))
            throw py::type_error(std::string("an array of another type is wanted: ") + type_names[type]);
        return found;
    }

    void take_out() {
        const bool many = PyTuple_Check(options_.out);
        const Py_ssize_t count = many ? PyTuple_GET_SIZE(options_.out) : 1;
        Py_ssize_t n = 0;
        for (int i = 0; i < row_.size; ++i) {
            const parameter& p = row_.parameters[i];
            if (!p.is_written()) continue;
            if (n == count) break;
            const array given = checked(many ? PyTuple_GET_ITEM(options_.out, n) : options_.out, p.type, false);
            ++n;
            if (!given.is_writable()) throw py::value_error("out must be writable and contiguous");
            if (p.kind == kind::changed) {
                if (given.size != arrays_[i].size) fail(kelStatusBadSize);
                target_ = given;
            } else {
                arrays_[i] = given;
            }
        }
    }

    // Every array to its pointer.
    void place(int i) {
        array& a = arrays_[i];
        switch (row_.parameters[i].kind) {
        case kind::in:
            if (a.object && (!a.is_dense() || is_overwritten(a))) keep(i, copy_of(a));
            break;
        case kind::out:
            if (!a.object) keep(i, new_array(row_.parameters[i].type, a.size));
            break;
        case kind::changed:
            place_changed(i);
            break;
        case kind::inout:
            break;
        default:
            return;
        }
        slots_[i].pointer = a.object ? a.data : nullptr;
    }

    void place_changed(int i) {
        array& a = arrays_[i];
        if (!target_.known()) {
            keep(i, copy_of(a));
        } else if (target_.data != a.data || !a.is_dense()) {
            py::object copy = copy_of(a); // which may overlap
            std::memcpy(target_.data, array(copy.ptr()).data, static_cast<std::size_t>(a.bytes()));
            a = target_;
        } else {
            a = target_;
        }
    }

    bool is_overwritten(const array& source) const {
        if (target_.overlaps(source)) return true;
        for (int i = 0; i < row_.size; ++i)
            if (row_.parameters[i].kind == kind::out && arrays_[i].object && arrays_[i].overlaps(source)) return true;
        return false;
    }

    static py::object copy_of(const array& a) {
        PyObject* const copy = numpy().PyArray_NewCopy_(a.object, 0);
        if (!copy) throw py::error_already_set();
        return py::reinterpret_steal<py::object>(copy);
    }

    void keep(int i, py::object made) {
        arrays_[i] = array(made.ptr());
        kept_[i] = std::move(made);
    }

    KelStatus call() {
        if (used_) used_->busy = true;
        PyThreadState* const state = PyEval_SaveThread();
        const KelStatus status = row_.call(slots_);
        PyEval_RestoreThread(state);
        if (used_) used_->busy = false;
        return status;
    }

    py::object results() {
        std::array<py::object, 6> found;
        std::size_t n = 0;
        for (int i = 0; i < row_.size && n < found.size(); ++i) {
            const parameter& p = row_.parameters[i];
            if (p.is_written())
                found[n++] = py::reinterpret_borrow<py::object>(arrays_[i].object);
            else if (p.kind == kind::result || p.kind == kind::reference)
                found[n++] = number(cells_[i], p.type);
            else if (p.kind == kind::count)
                found[0] = found[0][py::slice(0, loaded<int>(cells_[i]), 1)];
            else if (p.kind == kind::made)
                found[n++] = own();
        }
        if (n == 0) return py::none();
        if (n == 1) return std::move(found[0]);
        py::tuple all(n);
        for (std::size_t i = 0; i < n; ++i) all[i] = std::move(found[i]);
        return std::move(all);
    }

    py::object own();

    const row& row_;
    const options& options_;
    array arrays_[most_parameters];
    slot slots_[most_parameters];
    slot cells_[most_parameters];
    py::object kept_[most_parameters];
    array target_; // `out` of a call that replaces its argument
    owned* used_ = nullptr;
    void* made_ = nullptr;
};

#include "table.inc"

const row* row_called(const std::string& name) {
    static const auto by_name = [] {
        std::unordered_map<std::string, const row*> all;
        for (const row& r : rows) all.emplace(r.name, &r);
        return all;
    }();
    const auto found = by_name.find(name);
    return found == by_name.end() ? nullptr : found->second;
}

py::object frame::own() {
    auto* const o = new owned{made_, row_called(row_.freed), false};
    PyObject* const capsule = PyCapsule_New(o, capsule_name, release);
    if (!capsule) throw py::error_already_set();
    return py::reinterpret_steal<py::object>(capsule);
}

// ---- Finding the function ----------------------------------------------------------------------------------------

// An operation and the functions that do it for one type or another.
class operation {
public:
    std::string name;
    std::vector<const row*> rows;

    py::object call(PyObject* const* arguments, int given, const options& o) {
        if (rows.size() == 1 && rows[0]->operation[0] == 0) return frame(*rows[0], arguments, given, o).run();
        question q(arguments, given, o);
        const row*& known = answers_[q.key()];
        if (!known) known = best(q);
        if (!known) throw py::type_error(refusal(q));
        return frame(*known, q.arguments, given, o).run();
    }

private:
    static constexpr int most_arguments = 10;

    // What a choice depends on.
    struct question {
        PyObject* arguments[most_arguments];
        int given;
        int types[most_arguments];
        int out_types[2] = {no_array, no_array};
        int outs = 0;
        int dtype = no_array;
        bool scaled, over_itself = false;
        std::vector<py::object> converted;

        question(PyObject* const* a, int n, const options& o) : given(n), scaled(o.scaled) {
            if (n > most_arguments) throw py::type_error("too many arguments");
            for (int i = 0; i < n; ++i) {
                arguments[i] = a[i];
                if (PyList_Check(a[i])) {
                    converted.push_back(py::array::ensure(py::reinterpret_borrow<py::object>(a[i])));
                    arguments[i] = converted.back().ptr();
                }
                types[i] = type_of(arguments[i]);
            }
            if (o.dtype) {
                const py::dtype wanted = py::dtype::from_args(py::reinterpret_borrow<py::object>(o.dtype));
                dtype = type_of_dtype(wanted.ptr());
            }
            if (!o.out) return;
            outs = PyTuple_Check(o.out) ? static_cast<int>(PyTuple_GET_SIZE(o.out)) : 1;
            if (outs > 2) throw py::type_error("out has too many arrays");
            for (int i = 0; i < outs; ++i) {
                PyObject* const out = PyTuple_Check(o.out) ? PyTuple_GET_ITEM(o.out, i) : o.out;
                out_types[i] = type_of(out);
                if (out_types[i] == no_array) throw py::type_error("out is no array");
            }
            if (outs == 1 && n > 0 && types[0] == out_types[0] && types[0] != no_array) {
                PyObject* const out = PyTuple_Check(o.out) ? PyTuple_GET_ITEM(o.out, 0) : o.out;
                const array first(arguments[0]), last(out);
                over_itself = first.data == last.data && first.size == last.size;
            }
        }

        static int type_of(PyObject* object) {
            if (!is_array(object)) return no_array;
            const auto* a = py::detail::array_proxy(object);
            if (a->nd != 1) throw py::type_error("arrays have one dimension here");
            return type_of_dtype(a->descr);
        }

        unsigned long long key() const {
            unsigned long long k = scaled + 2ULL * over_itself;
            for (int type : {dtype, out_types[0], out_types[1], outs, given}) k = k * 32 + static_cast<unsigned>(type);
            for (int i = 0; i < given && i < 7; ++i) k = k * 32 + static_cast<unsigned>(types[i]);
            return k;
        }
    };

    // Whether a function can be what is asked for.
    static bool fits(const row& r, const question& q) {
        int wanted = 0, left_out = 0, outs = 0, first_type = no_array;
        for (int i = 0; i < r.size; ++i) {
            const parameter& p = r.parameters[i];
            if (p.place >= 0) {
                ++wanted;
                left_out += p.may_be_left_out && p.place >= q.given;
                if (p.place >= q.given) continue;
                const int type = q.types[p.place];
                if (p.is_array() ? type != p.type : type != no_array) return false;
            }
            if (p.is_written()) {
                if (q.outs > 0 && (outs > 1 || q.out_types[outs] != p.type)) return false;
                ++outs;
            }
            if (p.kind == kind::scale && !q.scaled && !p.may_be_left_out) return false;
            if (first_type == no_array && (p.is_written() || p.kind == kind::result)) first_type = p.type;
        }
        return wanted - left_out == q.given && (q.outs == 0 || q.outs == outs) && (!q.scaled || r.scaled) &&
               (q.dtype == no_array || q.dtype == first_type);
    }

    // Fewer is better: what is asked for, then the type of the samples, then no scale factor unasked.
    static int distance(const row& r, const question& q) {
        bool own_type = false;
        for (int i = 0; i < r.size; ++i) {
            const parameter& p = r.parameters[i];
            if (!p.is_written() && p.kind != kind::result) continue;
            for (int k = 0; k < q.given; ++k) own_type |= q.types[k] == p.type;
            break;
        }
        return 8 * (r.in_place != q.over_itself) + 4 * !own_type + 2 * (r.scaled && !q.scaled) + !r.plain;
    }

    const row* best(const question& q) const {
        const row* found = nullptr;
        for (const row* r : rows)
            if (fits(*r, q) && (!found || distance(*r, q) < distance(*found, q))) found = r;
        return found;
    }

    std::string refusal(const question& q) const {
        std::string text = "kels." + name + " has no function for (";
        for (int i = 0; i < q.given; ++i) {
            if (i > 0) text += ", ";
            if (q.types[i] == no_array)
                text += "a number";
            else
                text += std::string("an array of ") + std::string(py::str(py::reinterpret_borrow<py::object>(
                                                          py::detail::array_proxy(q.arguments[i])->descr)));
        }
        text += "), the keywords given; there are";
        for (const row* r : rows) text += std::string(" ") + r->name;
        return text;
    }

    std::unordered_map<unsigned long long, const row*> answers_;
};

// ---- The module --------------------------------------------------------------------------------------------------

bool is(PyObject* name, const char* text) { return PyUnicode_CompareWithASCIIString(name, text) == 0; }

options options_of(PyObject* const* values, PyObject* names) {
    options o;
    if (!names) return o;
    for (Py_ssize_t i = 0; i < PyTuple_GET_SIZE(names); ++i) {
        PyObject* const name = PyTuple_GET_ITEM(names, i);
        PyObject* const value = values[i];
        if (value == Py_None) continue;
        if (is(name, "out")) {
            o.out = value;
        } else if (is(name, "dtype")) {
            o.dtype = value;
        } else if (is(name, "scale")) {
            o.scaled = true;
            o.scale = narrow<int>(integer_of(value), 5);
        } else if (is(name, "length")) {
            o.length = integer_of(value);
        } else {
            PyErr_Format(PyExc_TypeError, "no keyword is called %U: out, scale, dtype, length", name);
            throw py::error_already_set();
        }
    }
    return o;
}

PyObject* call_operation(PyObject* self, PyObject* const* arguments, Py_ssize_t given, PyObject* names) {
    try {
        auto* const called = static_cast<operation*>(PyCapsule_GetPointer(self, nullptr));
        const options o = options_of(arguments + given, names);
        return called->call(arguments, static_cast<int>(given), o).release().ptr();
    } catch (py::error_already_set& e) {
        e.restore();
    } catch (const py::type_error& e) {
        PyErr_SetString(PyExc_TypeError, e.what());
    } catch (const py::value_error& e) {
        PyErr_SetString(PyExc_ValueError, e.what());
    } catch (const std::exception& e) {
        PyErr_SetString(PyExc_RuntimeError, e.what());
    }
    return nullptr;
}

// A Python function of an operation, both for as long as the module lives.
py::object callable(operation& called, const char* text) {
    static std::deque<PyMethodDef> definitions;
    definitions.push_back({called.name.c_str(),
                           reinterpret_cast<PyCFunction>(reinterpret_cast<void (*)()>(call_operation)),
                           METH_FASTCALL | METH_KEYWORDS, text});
    py::object self = py::reinterpret_steal<py::object>(PyCapsule_New(&called, nullptr, nullptr));
    return py::reinterpret_steal<py::object>(PyCFunction_New(&definitions.back(), self.ptr()));
}

// The function of one C name, with all the arguments that it takes, for the classes.
py::object function(const std::string& name) {
    static std::map<std::string, operation> made;
    const row* const found = row_called(name);
    if (!found || found->operation[0] != 0) throw py::key_error(name);
    operation& called = made[name];
    called.name = name;
    called.rows = {found};
    return callable(called, found->name);
}

} // namespace

PYBIND11_MODULE(_core, module) {
    // The types of NumPy, complex records under their members' names.
    const py::module_ np = py::module_::import("numpy");
    const char* const names[] = {"u1", "i1", "u2", "i2", "u4", "i4", "i8", "f4", "f8"};
    for (int type = 0; type < types; ++type) {
        py::object made;
        if (type < type_8sc) {
            made = np.attr("dtype")(names[type]);
        } else if (is_record(type)) {
            constexpr int parts[] = {1, 3, 5, 6};
            const char* const part = names[parts[type - type_8sc]];
            py::list fields;
            fields.append(py::make_tuple("re", part));
            fields.append(py::make_tuple("im", part));
            made = np.attr("dtype")(fields);
        } else {
            made = np.attr("dtype")(type == type_32fc ? "c8" : "c16");
        }
        numpy_type[type] = py::detail::array_descriptor_proxy(made.ptr())->type_num;
        module.attr((std::string("dtype_") + type_names[type]).c_str()) = made;
        dtypes[type] = made.release().ptr();
    }

    static std::map<std::string, operation> operations;
    for (const row& r : rows) {
        if (r.operation[0] == 0) continue;
        operations[r.operation].name = r.operation;
        operations[r.operation].rows.push_back(&r);
    }
    py::dict functions;
    for (const documentation& d : texts) functions[d.operation] = callable(operations.at(d.operation), d.text);
    module.attr("functions") = functions;

    module.def("function", &function);
    module.def("status_text", [](int status) { return kelGetStatusString(static_cast<KelStatus>(status)); });
    module.def("set_errors", [](py::object error, py::object warning) {
        error_type = error.release().ptr();
        warning_type = warning.release().ptr();
    });
}
