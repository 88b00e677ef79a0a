// A call on its way from Python to C: what functions take, and the rules of a call.
#ifndef KELS_PYTHON_CALL_H
#define KELS_PYTHON_CALL_H

#include "numbers.h"

#include <kels/cpp/call.hpp>

#include <climits>
#include <stdexcept>
#include <string>

namespace kels::python {

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

template <class A>
inline A read(const slot& s) {
    if constexpr (std::is_pointer_v<A>) {
        return static_cast<A>(s.pointer);
    } else {
        A value;
        std::memcpy(&value, s.bytes, sizeof value);
        return value;
    }
}

template <class... A, std::size_t... I>
inline KelStatus call(KelStatus (*function)(A...), const slot* s, std::index_sequence<I...>) {
    return function(read<A>(s[I])...);
}

template <class... A>
inline KelStatus call(KelStatus (*function)(A...), const slot* s) {
    return call(function, s, std::index_sequence_for<A...>());
}

// Calls a C function with its arguments from slots.
template <auto function>
inline KelStatus invoke(const slot* s) {
    return call(function, s);
}

constexpr int most_parameters = 14;

struct parameter {
    python::kind kind;
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

// The function of a C name, or null.
const row* row_called(const std::string& name);

struct documentation {
    const char* operation;
    const char* text;
};

// What Python raises and warns with; its own classes, which it hands over.
inline PyObject* error_type = nullptr;
inline PyObject* warning_type = nullptr;

[[noreturn]] inline void fail(KelStatus status) {
    py::object error = py::reinterpret_steal<py::object>(PyObject_CallFunction(error_type, "i", int(status)));
    if (error) PyErr_SetObject(error_type, error.ptr());
    throw py::error_already_set();
}

// A plan or a context that Python owns, in a capsule.
struct owned {
    void* pointer;
    const row* freed;
    bool busy;
};

inline const char* const capsule_name = "kels.handle";

inline void release(PyObject* capsule) {
    auto* const o = static_cast<owned*>(PyCapsule_GetPointer(capsule, capsule_name));
    slot s;
    s.pointer = o->pointer;
    o->freed->call(&s);
    delete o;
}

inline owned& owned_by(PyObject* capsule) {
    auto* const o = static_cast<owned*>(PyCapsule_GetPointer(capsule, capsule_name));
    if (!o) throw py::error_already_set();
    if (o->busy) throw std::runtime_error("a filter is in use by another thread");
    return *o;
}

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
        if (!a.known()) a.size = detail::larger(extent, 0);
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
        return all;
    }

    py::object own() {
        auto* const o = new owned{made_, row_called(row_.freed), false};
        PyObject* const capsule = PyCapsule_New(o, capsule_name, release);
        if (!capsule) throw py::error_already_set();
        return py::reinterpret_steal<py::object>(capsule);
    }

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

} // namespace kels::python

#endif
