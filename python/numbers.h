// Numbers of Python as the arguments of a C function, and back.
#ifndef KELS_PYTHON_NUMBERS_H
#define KELS_PYTHON_NUMBERS_H

#include "arrays.h"

#include <kels/types.h>

#include <cmath>
#include <cstring>
#include <limits>

namespace kels::python {

// One argument of a C function.
union slot {
    void* pointer;
    int integer;
    unsigned char bytes[16];
};

template <class T>
inline void store(slot& s, T value) {
    std::memcpy(s.bytes, &value, sizeof value);
}

inline long long integer_of(PyObject* object) {
    py::object index = py::reinterpret_steal<py::object>(PyNumber_Index(object));
    if (!index) throw py::error_already_set();
    const long long value = PyLong_AsLongLong(index.ptr());
    if (value == -1 && PyErr_Occurred()) throw py::error_already_set();
    return value;
}

template <class T>
inline T narrow(long long value, int type) {
    if (value < static_cast<long long>(std::numeric_limits<T>::min()) ||
        value > static_cast<long long>(std::numeric_limits<T>::max())) {
        PyErr_Format(PyExc_OverflowError, "%lld is no value of type %s", value, type_names[type]);
        throw py::error_already_set();
    }
    return static_cast<T>(value);
}

inline void store_integer(slot& s, int type, long long value, int offset = 0) {
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
inline void store_record(slot& s, int type, PyObject* object) {
    constexpr int part_types[] = {1, 3, 5, 6};
    const int part = part_types[type - type_8sc];
    if (PyComplex_Check(object)) {
        const Py_complex z = PyComplex_AsCComplex(object);
        const auto whole = [](double x) { return x == std::floor(x) && std::abs(x) < 0x1p62; };
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

inline void store_number(slot& s, int type, PyObject* object) {
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
inline T loaded(const slot& s) {
    T value;
    std::memcpy(&value, s.bytes, sizeof value);
    return value;
}

inline py::object number(const slot& s, int type) {
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

} // namespace kels::python

#endif
