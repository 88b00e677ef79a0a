"""Every C function under its own name, by ctypes.

A pointer takes a NumPy array of its type (contiguous, and writable unless the function only reads it), a ctypes
pointer or array, `ctypes.byref(...)`, or None. Lengths are the caller's matter, as in C, and nothing is checked but types.

    x = numpy.ones(4, numpy.float32)
    kels.raw.kelsMulC_32f_I(2.5, x, x.size)
"""
import ctypes
import functools

import numpy

from . import _core  # loads the library  # noqa: F401
from .signatures import CONSTANTS, ENUMERATORS, FUNCTIONS

_library = ctypes.CDLL("libkels.so.2")

_REAL = {
    "8u": ctypes.c_uint8, "8s": ctypes.c_int8, "16u": ctypes.c_uint16, "16s": ctypes.c_int16, "32u": ctypes.c_uint32,
    "32s": ctypes.c_int32, "64s": ctypes.c_int64, "32f": ctypes.c_float, "64f": ctypes.c_double,
}
_TYPES = {"Kel" + letters: kind for letters, kind in _REAL.items()}
_DTYPES = {"Kel" + letters: numpy.dtype(kind) for letters, kind in _REAL.items()}
for _letters in ("8s", "16s", "32s", "64s", "32f", "64f"):
    _name = f"Kel{_letters}c"
    _TYPES[_name] = type(_name, (ctypes.Structure,), {"_fields_": [("re", _REAL[_letters]), ("im", _REAL[_letters])]})
    _DTYPES[_name] = numpy.dtype([("re", _REAL[_letters]), ("im", _REAL[_letters])])
_DTYPES["Kel32fc"] = numpy.dtype(numpy.complex64)
_DTYPES["Kel64fc"] = numpy.dtype(numpy.complex128)
_DTYPES["int"] = _DTYPES["Kel32s"]
_TYPES.update({
    "int": ctypes.c_int, "double": ctypes.c_double, "KelStatus": ctypes.c_int, "void": None, "char": ctypes.c_char,
    "unsigned long long": ctypes.c_ulonglong,
})


class KelCpuIdent(ctypes.Structure):
    _fields_ = [(name, ctypes.c_uint32) for name in
                ("family", "stepping", "model", "processorType", "features", "cacheDescriptorsA", "cacheDescriptorsD",
                 "sx1Present", "reserved", "sx2Present", "sx3Present")]


class kelLibraryVersion(ctypes.Structure):
    _fields_ = [(name, ctypes.c_int32) for name in ("major", "minor", "majorBuild", "build")] + \
        [("targetCpu", ctypes.c_char * 4)] + [(name, ctypes.c_char_p) for name in ("name", "version", "buildDate")]


_TYPES["KelCpuIdent"] = KelCpuIdent
_TYPES["kelLibraryVersion"] = kelLibraryVersion


@functools.lru_cache(maxsize=None)
def _pointer(name, constant):
    """The type of a parameter that points to elements."""
    to = _TYPES[name]
    dtype = _DTYPES.get(name)

    class Pointer(ctypes.POINTER(to)):
        _type_ = to

        @classmethod
        def from_param(cls, value):
            if not isinstance(value, numpy.ndarray):
                return ctypes.POINTER(to).from_param(value)
            if value.dtype != dtype:
                raise TypeError(f"an array of {value.dtype} for a pointer to {dtype}")
            if not value.flags.c_contiguous or not (constant or value.flags.writeable):
                raise TypeError("an array that is not contiguous, or not writable")
            return ctypes.c_void_p(value.ctypes.data)

    return Pointer


def _type(text, result=False):
    constant = text.startswith("const ")
    name = text.removeprefix("const ").rstrip("*")
    stars = text.count("*")
    if stars == 0:
        return _TYPES[name]
    if name == "char":
        return ctypes.c_char_p
    if name not in _TYPES or name == "void":  # plans and contexts
        return ctypes.c_void_p if stars == 1 else ctypes.POINTER(ctypes.c_void_p)
    if stars == 2:
        return ctypes.POINTER(ctypes.POINTER(_TYPES[name]))
    return ctypes.POINTER(_TYPES[name]) if result else _pointer(name, constant)


def __getattr__(name):
    if name in FUNCTIONS:
        result, parameters = FUNCTIONS[name]
        value = getattr(_library, name)
        value.restype = _type(result, result=True)
        value.argtypes = [_type(text) for text in parameters]
    elif name in CONSTANTS:
        value = _TYPES[CONSTANTS[name]].in_dll(_library, name).value
    elif name in ENUMERATORS:
        value = ENUMERATORS[name]
    elif name in _TYPES:
        value = _TYPES[name]
    else:
        raise AttributeError(f"the library has no {name}")
    globals()[name] = value
    return value


def __dir__():
    return sorted([*FUNCTIONS, *CONSTANTS, *ENUMERATORS])
