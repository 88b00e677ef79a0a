"""Filters with a state, which goes on from call to call: a stream may be cut into blocks of any length.

The C function follows from the types of the taps and of the samples; a filter is of the type of its first block, unless
`dtype` says it before. One thread uses a filter at a time.
"""
import numpy

from . import _core
from .types import DTYPES, array, function, letters_of, output, refuse, sized

# Of taps, the samples that they filter.
_PAIRS = {"32f": {"32f", "16s"}, "64f": {"64f", "32f", "32s", "16s"}, "32s": {"16s"}}
_PAIRS.update({taps + "c": {s + "c" for s in samples} for taps, samples in list(_PAIRS.items())})


def _family(taps, samples):
    """How C names spell the types of taps and samples."""
    return "_" + taps if taps == samples else f"{taps}_{samples}"


def _is_integer(letters):
    return letters in ("16s", "32s", "16sc", "32sc")


class _Filter:
    """What FIR and IIR filters have in common; `_make(taps, samples, line)` gives the handle."""

    def __init__(self, taps, dtype):
        self._taps = array(taps)
        if self._taps.dtype.kind in "iu" and self._taps.dtype.names is None and self._taps.dtype != numpy.int32:
            self._taps = self._taps.astype(numpy.float64)
        self._handle = None
        if dtype is not None:
            self._start(letters_of(dtype))

    def _start(self, samples, line=None):
        taps = letters_of(self._taps.dtype)
        # Real taps filter complex samples, and taps in double precision those that singles have no function for.
        if samples.endswith("c") and taps in ("32f", "64f"):
            self._taps = self._taps.astype(DTYPES[taps + "c"])
            taps += "c"
        if samples in _PAIRS.get(taps.replace("32f", "64f"), ()) and samples not in _PAIRS[taps]:
            self._taps = self._taps.astype(DTYPES[taps.replace("32f", "64f")])
            taps = taps.replace("32f", "64f")
        if samples not in _PAIRS.get(taps, ()):
            refuse(f"taps of {self._taps.dtype} and samples of {DTYPES[samples]}")
        self._samples = samples
        self._names = _family(taps, samples)
        self._scaled = _is_integer(samples)
        self._handle = self._make(taps, samples, line)
        tail = "Sfs" if self._scaled else ""
        self._block = function(f"kels{self._operation}{self._names}{tail and '_' + tail}")
        self._in_place = function(f"kels{self._operation}{self._names}_I{tail}")
        return self

    def __call__(self, x, out=None, scale=0):
        """The next block of the stream, filtered. `out` may be `x`."""
        if type(x) is not numpy.ndarray:
            x = numpy.asarray(x)
        if self._handle is None:
            self._start(letters_of(x.dtype))
        keywords = {"scale": scale} if self._scaled else {}
        if scale and not self._scaled:
            raise TypeError("only integers have a scale factor")
        if out is x:
            return self._in_place(self._handle, x, out=out, **keywords)
        if out is None:
            return self._block(self._handle, x, **keywords)
        return self._block(self._handle, x, out=out, **keywords)

    @property
    def delay_line(self):
        """What the filter keeps of the stream; it may be set, and None is silence."""
        line = numpy.zeros(max(self._states, 1), DTYPES[self._line_type()])
        if self._handle is not None:
            function(f"kels{self._operation}GetDlyLine{self._names}")(self._handle, line)
        return line[:self._states]

    @delay_line.setter
    def delay_line(self, line):
        if self._handle is None:
            raise ValueError("the filter has no type yet: give dtype= when it is made, or a first block")
        if line is not None:
            line = sized(array(line, DTYPES[self._line_type()]), self._states)
        function(f"kels{self._operation}SetDlyLine{self._names}")(self._handle, line)

    def reset(self):
        """Silence again."""
        if self._handle is not None:
            self.delay_line = None

    def _line_type(self):
        if self._handle is None:
            raise ValueError("the filter has no type yet: give dtype= when it is made, or a first block")
        return self._samples


class FIR(_Filter):
    """y[n] = sum over k of taps[k] x[n - k].

    Taps are float32, float64 or their complex types, or int32 with `taps_factor`, which stand for themselves times
    2 ** taps_factor. Its delay line is the last samples, the most recent first.
    """
    _operation = "FIR"

    def __init__(self, taps, dtype=None, taps_factor=0):
        self._factor = taps_factor
        super().__init__(taps, dtype)
        self._states = self._taps.size

    def _make(self, taps, samples, line):
        factor = (self._factor,) if taps.startswith("32s") else ()
        return function(f"kelsFIRInitAlloc{self._names}")(self._taps, self._taps.size, *factor, line)

    @property
    def taps(self):
        return self._taps.copy()


class FIRMultirate(_Filter):
    """The FIR filter that changes the rate by up / down: of every `down` samples of a block it makes `up`."""
    _operation = "FIR"

    def __init__(self, taps, up, down, up_phase=0, down_phase=0, dtype=None, taps_factor=0):
        self._factor = taps_factor
        self._rate = up, up_phase, down, down_phase
        super().__init__(taps, dtype)
        self._states = -(-self._taps.size // max(up, 1))

    def _make(self, taps, samples, line):
        factor = (self._factor,) if taps.startswith("32s") else ()
        made = function(f"kelsFIRMRInitAlloc{self._names}")(self._taps, self._taps.size, *factor, *self._rate, line)
        self._run = function(f"kelsFIR{self._names}{'_Sfs' if self._scaled else ''}/explicit")
        return made

    def __call__(self, x, out=None, scale=0):
        x = array(x)
        if self._handle is None:
            self._start(letters_of(x.dtype))
        up, _, down, _ = self._rate
        blocks = x.size // down
        y = output(out, blocks * up, x.dtype)
        self._run(sized(x, blocks * down), y, blocks, self._handle, **({"scale": scale} if self._scaled else {}))
        return y


class _Recursive(_Filter):
    _operation = "IIR"

    def _line_type(self):
        super()._line_type()
        return letters_of(self._taps.dtype)

    def _make(self, taps, samples, line):
        factor = (self._factor,) if taps.startswith("32s") else ()
        return function(self._maker(taps, samples))(self._taps, self._count, *factor, line)


class IIR(_Recursive):
    """(b[0] + b[1] z^-1 + ...) / (a[0] + a[1] z^-1 + ...), as scipy.signal.lfilter has it."""

    def __init__(self, b, a, dtype=None, taps_factor=0):
        b, a = array(b), array(a)
        n = max(b.size, a.size)
        self._count = self._states = n - 1
        self._factor = taps_factor
        super().__init__(numpy.concatenate([numpy.pad(b, (0, n - b.size)), numpy.pad(a, (0, n - a.size))]), dtype)

    def _maker(self, taps, samples):
        return f"kelsIIRInitAlloc{self._names}"


class Biquads(_Recursive):
    """A cascade of second-order sections, rows of b0, b1, b2, a0, a1, a2 as SciPy makes them (`output="sos"`).

    A section that begins with b0 = 0 has no place in the cascade.
    """

    def __init__(self, sections, dtype=None, taps_factor=0):
        sections = array(sections).reshape(-1, 6)
        self._count, self._states = len(sections), 2 * len(sections)
        self._factor = taps_factor
        super().__init__(sections.ravel(), dtype)

    def _maker(self, taps, samples):
        return "kelsIIRInitAlloc" + ("" if taps == samples else taps) + "_BiQuad_" + samples


class LMS:
    """The FIR filter that adapts to a reference: taps += 2 mu (reference - y) x, step by step."""

    def __init__(self, taps, dtype=numpy.float32):
        taps = array(taps, numpy.float32)
        self._count = taps.size
        samples = letters_of(dtype)
        self._dtype = DTYPES[samples]
        self._names = _family("32f", samples)
        self._handle = function(f"kelsFIRLMSInitAlloc{self._names}")(taps, taps.size, None, 0)
        self._block = function(f"kelsFIRLMS{self._names}")

    def __call__(self, x, reference, mu, out=None):
        return self._block(self._handle, array(x, self._dtype), array(reference, self._dtype), mu, out=out)

    @property
    def taps(self):
        taps = numpy.empty(self._count, numpy.float32)
        function(f"kelsFIRLMSGetTaps{self._names}")(self._handle, taps)
        return taps

    @property
    def delay_line(self):
        """(the ring of samples, where the next one goes)"""
        ring = numpy.empty(self._count, self._dtype)
        return ring, function(f"kelsFIRLMSGetDlyLine{self._names}")(self._handle, ring)

    @delay_line.setter
    def delay_line(self, line):
        ring, index = line
        ring = sized(array(ring, self._dtype), self._count)
        function(f"kelsFIRLMSSetDlyLine{self._names}")(self._handle, ring, index)


class LMSMultirate:
    """The adaptive filter of int16 samples driven step by step, at any rates of samples, outputs and updates."""

    def __init__(self, taps, tap_stride, error_delay, mu):
        taps = array(taps, numpy.int32)
        self._count = taps.size
        self._handle = self._function("InitAlloc")(taps, taps.size, None, 0, tap_stride, error_delay, mu)
        self.put = self._bound("PutVal", 1)
        self.update = self._bound("UpdateTaps", 1)
        self.one = self._bound("One", 0)
        self.at = lambda index: self._function("GetDlyVal")(self._handle, index)

    @staticmethod
    def _function(verb):
        return function(f"kelsFIRLMSMR{verb}32s_16s")

    def _bound(self, verb, values):
        called, handle = self._function(verb), self._handle
        return (lambda value: called(value, handle)) if values else (lambda: called(handle))

    @property
    def taps(self):
        taps = numpy.empty(self._count, numpy.int32)
        self._function("GetTaps")(self._handle, taps)
        return taps


class FilterBank:
    """Two bands at half the rate of a signal, and the signal from them.

    Bands are (taps, offset) pairs or taps alone: `apart` the low and the high one that take the signal apart,
    `together` those that put it together. Samples are float32 or 8- and 16-bit integers.
    """

    def __init__(self, apart, together, dtype=numpy.float32):
        samples = letters_of(dtype)
        self._dtype = DTYPES[samples]
        integers = samples != "32f"
        self._forward = self._half("Fwd", f"_{samples}32f" if integers else "_32f", apart)
        self._inverse = self._half("Inv", f"_32f{samples}" if integers else "_32f", together)

    @staticmethod
    def _half(direction, names, bands):
        arguments = []
        for band in bands:
            taps, offset = band if isinstance(band, tuple) else (band, 0)
            taps = array(taps, numpy.float32)
            arguments += [taps, taps.size, offset]
        return function(f"kelsWT{direction}InitAlloc{names}")(*arguments), function(f"kelsWT{direction}{names}")

    def forward(self, x):
        """(low, high) of an even number of samples."""
        x = array(x, self._dtype)
        half = x.size // 2
        sized(x, 2 * half)
        low, high = numpy.empty(half, numpy.float32), numpy.empty(half, numpy.float32)
        state, run = self._forward
        run(x, low, high, half, state)
        return low, high

    def inverse(self, low, high):
        """The signal of both bands."""
        low = array(low, numpy.float32)
        high = sized(array(high, numpy.float32), low.size)
        x = numpy.empty(2 * low.size, self._dtype)
        state, run = self._inverse
        run(low, high, low.size, x, state)
        return x


class Median:
    """The median of a window of `size` samples around each; the samples at both ends stay."""

    def __init__(self, size):
        self.size = size

    def __call__(self, x, out=None):
        return _core.functions["filter_median"](x, self.size, out=out)
