"""Streams of noise: calls of any lengths continue one sequence."""
import numpy

from .types import function, letters_of


class _Noise:
    def __init__(self, first, second, seed, dtype):
        letters = letters_of(dtype)
        self._dtype = numpy.dtype(dtype)
        self._stream = function(f"kels{self._family}InitAlloc_{letters}")(first, second, seed)
        self._run = function(f"kels{self._family}_{letters}")

    def __call__(self, length=None, out=None):
        """The next samples: `length` of them, or as many as `out` takes."""
        if out is None:
            out = numpy.empty(length, self._dtype)
        return self._run(self._stream, out=out)


class UniformNoise(_Noise):
    """From `low` on, and below `high`; samples are float32, int16 or uint8."""
    _family = "RandUniform"

    def __init__(self, low, high, seed, dtype=numpy.float32):
        super().__init__(low, high, seed, dtype)


class NormalNoise(_Noise):
    """Of a mean and a standard deviation; samples are float32, int16 or uint8."""
    _family = "RandGauss"

    def __init__(self, mean, deviation, seed, dtype=numpy.float32):
        super().__init__(mean, deviation, seed, dtype)
