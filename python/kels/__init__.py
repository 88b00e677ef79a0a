"""Signal processing on NumPy arrays: exact, safe at the edges, fast.

Functions find the C function for the types of their arguments, and give a new array or fill `out`. What has a state or
a plan is a class. `kels.raw` has every C function under its own name.
"""
import importlib

from . import _core
from .errors import Error, Warning, text
from .filters import FIR, IIR, LMS, Biquads, FilterBank, FIRMultirate, LMSMultirate, Median
from .noise import NormalNoise, UniformNoise
from .transforms import DCT, DFT, FFT

_core.set_errors(Error, Warning)
globals().update(_core.functions)

# The dtypes of complex numbers of integers.
complex8s, complex16s, complex32s, complex64s = (getattr(_core, f"dtype_{bits}sc") for bits in (8, 16, 32, 64))

# How `convert` rounds.
round_to_zero, round_to_nearest = 0, 1



def __getattr__(name):
    """kels.raw is read when it is first asked for: a table of all functions takes a moment."""
    if name == "raw":
        return importlib.import_module(".raw", __name__)
    raise AttributeError(f"module 'kels' has no attribute '{name}'")


__all__ = [
    "Biquads", "DCT", "DFT", "Error", "FFT", "FIR", "FIRMultirate", "FilterBank", "IIR", "LMS", "LMSMultirate",
    "Median", "NormalNoise", "UniformNoise", "Warning", "complex8s", "complex16s", "complex32s", "complex64s", "text",
]
