// NumPy arrays of the types that the library has.
#ifndef KELS_PYTHON_ARRAYS_H
#define KELS_PYTHON_ARRAYS_H

#include <pybind11/numpy.h>

#include <array>

namespace py = pybind11;

namespace kels::python {

// Types are places in this list.
constexpr std::array type_names = {"8u",  "8s",  "16u",  "16s",  "32u",  "32s",  "64s", "32f",
                                   "64f", "8sc", "16sc", "32sc", "64sc", "32fc", "64fc"};
constexpr int types = type_names.size();
constexpr int type_64s = 6, type_32f = 7, type_64f = 8, type_8sc = 9, type_32fc = 13, type_64fc = 14;
constexpr int no_type = 30, no_array = 31;

constexpr int element_size[types] = {1, 1, 2, 2, 4, 4, 8, 4, 8, 2, 4, 8, 16, 8, 16};

inline std::array<PyObject*, types> dtypes;
inline int numpy_type[types]; // NumPy's own numbers

// The type of complex numbers whose parts are of a type.
inline int complex_of(int type) {
    return type == type_32f ? type_32fc : type == type_64f ? type_64fc : type == 3 ? 10 : no_type;
}

inline bool is_record(int type) { return type >= type_8sc && type < type_32fc; }

inline int type_of_dtype(PyObject* dtype) {
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

inline auto& numpy() { return py::detail::npy_api::get(); }

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

inline bool is_array(PyObject* object) {
    return PyObject_TypeCheck(object, numpy().PyArray_Type_) && py::detail::array_proxy(object)->nd != 0;
}

inline py::object new_array(int type, long long size) {
    Py_INCREF(dtypes[type]); // which the call takes
    const Py_intptr_t dimensions[] = {static_cast<Py_intptr_t>(size)};
    PyObject* made =
        numpy().PyArray_NewFromDescr_(numpy().PyArray_Type_, dtypes[type], 1, dimensions, nullptr, nullptr, 0, nullptr);
    if (!made) throw py::error_already_set();
    return py::reinterpret_steal<py::object>(made);
}

} // namespace kels::python

#endif
