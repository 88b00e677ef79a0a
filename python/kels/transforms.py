"""Transforms: a plan for every type of data that comes along, made when it first does."""
import numpy

from .errors import Error
from .types import DTYPES, array, function, letters_of, output, refuse, sized

_NORMS = {"forward": 1, "backward": 2, "ortho": 4, None: 8}
_COMPLEX = {"32f": "32fc", "64f": "64fc", "16s": "16sc"}
_REAL = {whole: part for part, whole in _COMPLEX.items()}
_BAD_FFT_ORDER = -15


class _Fourier:
    """X[k] = sum over n of x[n] exp(-2 pi i n k / size), and back.

    `norm` is NumPy's: which direction divides by the length ("forward", "backward"), "ortho" for both by its root, and
    None for neither. Samples are float32, float64 or int16, or their complex types; those of integers take `scale`.
    A plan is shared by threads.
    """

    def __init__(self, size, norm="backward", hint=0):
        self.size = size
        self._made_from = self._length(), _NORMS[norm], hint
        self._plans = {}
        self._plan(numpy.dtype(numpy.float32))

    def _plan(self, dtype):
        """(plan, function forward, back, and what it makes of samples of a type: how many bins, of which type)"""
        if dtype not in self._plans:
            letters = letters_of(dtype)
            whole = letters in _REAL
            plan = function(f"kels{self._family}InitAlloc_{'C' if whole else 'R'}_{letters}")(*self._made_from)
            there, back = ("CToC", "CToC") if whole else ("RToCCS", "CCSToR")
            tail = f"{letters}_Sfs" if letters.startswith("16") else letters
            self._plans[dtype] = (
                plan, function(f"kels{self._family}Fwd_{there}_{tail}"),
                function(f"kels{self._family}Inv_{back}_{tail}"),
                self.size if whole else self.size // 2 + 1, dtype if whole else DTYPES[_COMPLEX[letters]])
        return self._plans[dtype]

    def forward(self, x, out=None, scale=0):
        """The spectrum: `size` bins of complex samples, size // 2 + 1 of real ones."""
        if type(x) is not numpy.ndarray:
            x = numpy.asarray(x)
        plan, there, _, count, dtype = self._plans.get(x.dtype) or self._plan(x.dtype)
        bins = output(out, count, dtype)
        there(sized(x, self.size), bins, plan, **_scale(x.dtype, scale))
        return bins

    def inverse(self, bins, out=None, scale=0, real=False):
        """The samples of a spectrum: complex ones of `size` bins, real ones of size // 2 + 1.

        A single bin, the spectrum of one sample, may be either: `real` says.
        """
        if type(bins) is not numpy.ndarray:
            bins = numpy.asarray(bins)
        dtype = bins.dtype
        if real or bins.size == self.size // 2 + 1 != self.size:
            dtype = DTYPES[_REAL.get(letters_of(dtype)) or refuse(dtype)]
        plan, _, back, count, _ = self._plans.get(dtype) or self._plan(dtype)
        samples = output(out, self.size, dtype)
        back(sized(bins, count), samples, plan, **_scale(dtype, scale))
        return samples


def _scale(dtype, scale):
    if dtype.kind == "i" or dtype.kind == "V":
        return {"scale": scale}
    if scale:
        raise TypeError("only integers have a scale factor")
    return {}


class FFT(_Fourier):
    """Fourier transforms of a power of two of points.

    """
    __doc__ += _Fourier.__doc__
    _family = "FFT"

    def _length(self):
        if self.size < 1 or self.size & (self.size - 1):
            raise Error(_BAD_FFT_ORDER)
        return self.size.bit_length() - 1


class DFT(_Fourier):
    """Fourier transforms of any number of points.

    """
    __doc__ += _Fourier.__doc__
    _family = "DFT"

    def _length(self):
        return self.size


class DCT:
    """The orthonormal cosine transforms of any number of points: type II forward, type III back.

    Samples are float32, float64 or int16 (which take `scale`). Plans are shared by threads.
    """

    def __init__(self, size, hint=0):
        self.size = size
        self._hint = hint
        self._plans = {}
        self._plan("Fwd", "32f")

    def _plan(self, direction, letters):
        key = direction, letters
        if key not in self._plans:
            plan = function(f"kelsDCT{direction}InitAlloc_{letters}")(self.size, self._hint)
            tail = "_Sfs" if letters == "16s" else ""
            self._plans[key] = plan, function(f"kelsDCT{direction}_{letters}{tail}")
        return self._plans[key]

    def _run(self, direction, x, out, scale):
        x = sized(array(x), self.size)
        letters = letters_of(x.dtype)
        plan, transform = self._plan(direction, letters)
        y = output(out, self.size, x.dtype)
        transform(x, y, plan, **_scale(x.dtype, scale))
        return y

    def forward(self, x, out=None, scale=0):
        return self._run("Fwd", x, out, scale)

    def inverse(self, y, out=None, scale=0):
        return self._run("Inv", y, out, scale)
