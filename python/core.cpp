// Calls the library's functions on NumPy arrays: finds the function for the types of the arguments, makes what it
// writes, lets other Python threads run meanwhile, and turns statuses into exceptions and warnings.
//
// What the functions take, a table says, which is made from the C headers.

#include "call.h"

#include <deque>
#include <map>
#include <unordered_map>
#include <vector>

namespace kels::python {
namespace {

using detail::larger;
using detail::quotient;
using detail::quotient_up;

#include "table.inc"

} // namespace

const row* row_called(const std::string& name) {
    static const auto by_name = [] {
        std::unordered_map<std::string, const row*> all;
        for (const row& r : rows) all.emplace(r.name, &r);
        return all;
    }();
    const auto found = by_name.find(name);
    return found == by_name.end() ? nullptr : found->second;
}

namespace {

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
    struct named {
        operation called;
        PyObject* object;
    };
    static std::map<std::string, named> made;
    const auto known = made.find(name);
    if (known != made.end()) return py::reinterpret_borrow<py::object>(known->second.object);
    const row* const found = row_called(name);
    if (!found || found->operation[0] != 0) throw py::key_error(name);
    named& fresh = made[name];
    fresh.called.name = name;
    fresh.called.rows = {found};
    fresh.object = callable(fresh.called, found->name).release().ptr();
    return py::reinterpret_borrow<py::object>(fresh.object);
}

} // namespace
} // namespace kels::python

PYBIND11_MODULE(_core, module) {
    using namespace kels::python;
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
