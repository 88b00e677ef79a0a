"""Names of C functions by the types of their data."""
import numpy

from . import _core
from .errors import Error

LETTERS = {getattr(_core, "dtype_" + letters): letters for letters in
           "8u 8s 16u 16s 32u 32s 64s 32f 64f 8sc 16sc 32sc 64sc 32fc 64fc".split()}
DTYPES = {letters: dtype for dtype, letters in LETTERS.items()}

BAD_SIZE = -6


def letters_of(dtype):
    """The letters that C names have for a dtype."""
    return LETTERS.get(numpy.dtype(dtype)) or refuse(dtype)


def refuse(what):
    raise TypeError(f"kels has no function for {what}")


def function(name):
    try:
        return _core.function(name)
    except KeyError:
        raise TypeError(f"kels has no {name}") from None


def array(values, dtype=None):
    """A contiguous array of one dimension."""
    return numpy.ascontiguousarray(values, dtype=dtype)


def sized(values, size):
    """An array, if it has that size."""
    if values.shape != (size,):
        raise Error(BAD_SIZE)
    return values


def output(out, size, dtype):
    """Where a result goes: a new array, or `out` if that can hold it."""
    if out is None:
        return numpy.empty(size, dtype)
    if out.dtype != dtype:
        raise TypeError(f"out is of {out.dtype}, the result of {dtype}")
    return sized(out, size)
