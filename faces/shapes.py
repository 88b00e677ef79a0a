"""From a C prototype to a call as C++ and Python have it.

A function is in one of three places: behind a class, if a plan or a context goes through it; listed below with a
reason; or called by its operation's name, by the rules of `Face`. What fits no rule is refused.
"""
import re
from collections import defaultdict
from dataclasses import dataclass, field

from headers import Refused

# Header and name, and why the faces leave them to C.
LISTED = [
    (r"services\.h \w+", "memory, processor and control words: nothing of arrays, and C++ and Python have their own"),
    (r"status\.h \w+", "the text of a status is what an error says"),
    (r"search\.h kels\w+DV\w*_16sc", "trellis decoding: the shapes of its arrays follow the code"),
    (r"fir_direct\.h kelsFIROne\w+_I(Sfs)?", "one sample in place: the function that returns it does the same"),
]

# Operations whose names in snake case would not do: words of both languages, names that a class has, abbreviations.
RENAMED = {
    "And": "bit_and", "Or": "bit_or", "Xor": "bit_xor", "Not": "bit_not",
    "LShift": "shift_left", "RShift": "shift_right",
    "FIR_Direct": "fir_direct", "FIROne_Direct": "fir_direct_one", "FIRMR_Direct": "fir_multirate_direct",
    "FIRLMSOne_Direct": "lms_direct_one", "FIRLMSOne_DirectQ15": "lms_direct_one_q15",
}

# In C the second operand comes first (what is subtracted, the divisor); in the faces they stand as one writes them.
REVERSED = {"Sub", "Div"}


@dataclass(frozen=True)
class Shape:
    """Where the lengths of an operation are not those of the rule: expressions over sizes, lengths and parameters."""
    lengths: dict = field(default_factory=dict)
    extents: dict = field(default_factory=dict)  # `>= ` begins one that is a least size
    kinds: dict = field(default_factory=dict)
    guesses: dict = field(default_factory=dict)  # sizes of outputs that nothing tells, where Python makes them


RING = Shape(extents={"pDlyLine": "2 * tapsLen"})
HAAR = {"pDstLow": "(len + 1) / 2", "pDstHigh": "len / 2", "pSrcLow": "(len + 1) / 2", "pSrcHigh": "len / 2"}
SHAPES = {
    "Conv": Shape(extents={"pDst": "len1 + len2 - 1"}),
    "ConvCyclic8x8": Shape(extents={"x": "8", "h": "8", "y": "8"}),
    "ConvCyclic4x4": Shape(extents={"x": "4", "h": "4", "y": "4"}),
    "WTHaarFwd": Shape({"len": "pSrc"}, HAAR),
    "WTHaarInv": Shape({"len": "pDst"}, HAAR, guesses={"pDst": "pSrcLow + pSrcHigh"}),
    "ConjCcs": Shape({"len": "pDst"}, {"pSrc": "2 * (len / 2) + 2"}, guesses={"pDst": "pSrc - 2"}),
    "AutoCorr": Shape(guesses={"pDst": "pSrc"}),
    "AutoCorr_NormA": Shape(guesses={"pDst": "pSrc"}),
    "AutoCorr_NormB": Shape(guesses={"pDst": "pSrc"}),
    "CrossCorr": Shape(guesses={"pDst": "pSrc1 + pSrc2 - 1"}),
    "ConjCcs_I": Shape(),
    "SampleDown": Shape(extents={"pDst": ">= quotient_up(srcLen - pPhase, factor)"}),
    "SampleUp": Shape(extents={"pDst": ">= srcLen * factor"}),
    "GoertzTwo": Shape(extents={"pVal": "2", "pFreq": "2"}, kinds={"pVal": "out"}),
    "UpdateLinear": Shape(kinds={"pSrcDst": "reference"}),
    "UpdatePower": Shape(kinds={"pSrcDst": "reference"}),
    "FIR_Direct": RING, "FIROne_Direct": RING, "FIRLMSOne_Direct": RING, "FIRLMSOne_DirectQ15": RING,
    "FIRMR_Direct": Shape({"numIters": "quotient(pSrc, downFactor)"},
                          {"pSrc": "numIters * downFactor", "pDst": "numIters * upFactor",
                           "pDlyLine": "quotient_up(tapsLen, upFactor)"}),
    "FIRMR_Direct_I": Shape({"numIters": "quotient(pSrcDst, larger(upFactor, downFactor))"},
                            {"pSrcDst": "numIters * larger(upFactor, downFactor)",
                             "pDlyLine": "quotient_up(tapsLen, upFactor)"}),
}

# A length parameter counts the elements of its own array; `len` and `numIters` of all others.
OWN_LENGTH = {"len1": "pSrc1", "len2": "pSrc2", "srcLen": "pSrc", "dstLen": "pDst", "tapsLen": "pTaps",
              "tblLen": "pTable"}
COMMON_LENGTH = {"len", "numIters"}

# What is stored through a pointer to one element.
RESULTS = {"pSum", "pMean", "pStdDev", "pMax", "pMin", "pIndx", "pOrder", "pNorm", "pDp", "pVal", "pOutValue",
           "pOutIndex", "pDstVal", "pDstLen"}
# What a call reads and sets anew, for the next one.
REFERENCES = {"pPhase", "pSeed", "pDlyLineIndex"}
READ = re.compile(r"pSrc\w*|pRef|x|h|pTaps|pVals|pTable|pFreq")
WRITTEN = re.compile(r"pDst\w*|y|pOutVals|pOutIndexes")
CHANGED = re.compile(r"pSrcDst|pTaps|pDlyLine")
VALUES = set("""val value level cmpMode rndMode vSub vDiv lowLag factor maskSize offset slope magn rFreq asym freq alpha
    alphaQ15 low high mean stdDev srcShiftRight src refVal mu muQ15 tapsFactor upFactor upPhase downFactor downPhase
    hint
    """.split())


def snake(name):
    words = re.findall(r"[A-Z]+(?=[A-Z][a-z])|[A-Z][a-z]+(?:\d+(?:x\d+)?)?|[A-Z]+\d*|[a-z]+\d*|\d+", name)
    return "_".join(words).lower()


def plain_name(parameter):
    return snake(re.sub(r"^p(?=[A-Z])", "", parameter))


def kind_of(parameter, shape, function):
    """in, out, inout, result, reference, address, length, scale or value"""
    p = parameter
    if p.name in shape.kinds: return shape.kinds[p.name]
    if p.is_opaque: return "handle"
    if p.stars == 0:
        if p.name == "scaleFactor": return "scale"
        if p.name in OWN_LENGTH or p.name in COMMON_LENGTH: return "length"
        if p.name in VALUES: return "value"
    elif p.stars == 1 and p.const:
        if p.name == "pPhase": return "address"
        if READ.fullmatch(p.name): return "in"
    elif p.stars == 1:
        if p.name in RESULTS: return "result"
        if p.name in REFERENCES: return "reference"
        if WRITTEN.fullmatch(p.name): return "out"
        if CHANGED.fullmatch(p.name): return "inout"
    raise Refused(f"{function.name}: no rule for the parameter '{p.name}'")


@dataclass
class Argument:
    parameter: object
    kind: str
    default: str = None

    @property
    def name(self): return plain_name(self.parameter.name)

    @property
    def type(self): return self.parameter.type

    @property
    def is_array(self): return self.kind in ("in", "out", "inout")


class Face:
    """A function as the faces call it.

    Arguments are those of C in its order, without lengths and results, the scale factor last; in place, the array that
    changes stands first, unless a constant is what it is taken from (`CRev`).
    """

    def __init__(self, function):
        self.function = function
        operation = function.operation
        shape = SHAPES.get(operation + "_I" if function.in_place else operation) or SHAPES.get(operation, Shape())
        self.arguments = [Argument(p, kind_of(p, shape, function)) for p in function.parameters]
        constant = re.fullmatch(r"(\w+?)C(Rev)?", operation) if function.parameter("val") else None
        if constant: operation = constant[1]
        reverse = constant is not None and constant[2] is not None
        self.name = RENAMED.get(operation) or snake(operation.removesuffix("_Direct"))

        self.results = self.of("result")
        self.called = [a for a in self.arguments if a.kind not in ("length", "result")]
        arrays = [a for a in self.called if a.is_array]
        if operation in REVERSED and not constant and not function.in_place:
            self.called[0], self.called[1] = self.called[1], self.called[0]
        if function.in_place and not reverse:
            self.called.sort(key=lambda a: a.parameter.name != "pSrcDst")
        if reverse:
            self.called.sort(key=lambda a: a.kind != "value")
        self.called.sort(key=lambda a: (a.kind == "scale") + (a.parameter.name == "hint") / 2)
        for argument in self.called:
            if argument.parameter.name == "hint": argument.default = "0"
        self.set_lengths(shape, arrays, function)

    def of(self, kind):
        return [a for a in self.arguments if a.kind == kind]

    def set_lengths(self, shape, arrays, function):
        """self.lengths: name -> expression over sizes; self.extents: array -> expression over lengths and values."""
        self.lengths, self.extents = {}, {}
        names = [a.parameter.name for a in self.of("length")]
        owned = {OWN_LENGTH[n]: n for n in names if n in OWN_LENGTH}
        common = next((n for n in names if n in COMMON_LENGTH), None)
        for array in arrays:
            name = array.parameter.name
            extent = shape.extents.get(name) or owned.get(name) or common
            if not extent: raise Refused(f"{function.name}: nothing tells the length of '{name}'")
            self.extents[name] = extent
        for name in names:
            measured = next((n for n, extent in self.extents.items() if extent == name), None)
            expression = shape.lengths.get(name) or measured
            if not expression: raise Refused(f"{function.name}: no array has the length '{name}'")
            self.lengths[name] = expression
        # An array that a length was read off has it.
        self.extents = {n: e for n, e in self.extents.items() if self.lengths.get(e) != n}

    @property
    def key(self):
        """What overload resolution sees; results and constness it does not."""
        return self.name, tuple((a.type, a.is_array) for a in self.called if a.kind != "scale")

    @property
    def scaled(self): return bool(self.of("scale"))


def sort_out(functions):
    """(faces, functions behind classes, {function: reason})"""
    behind, listed, faces = [], {}, []
    for function in functions:
        reason = next((why for what, why in LISTED if re.fullmatch(what, f"{function.header} {function.name}")), None)
        if reason: listed[function] = reason
        elif function.has_life: behind.append(function)
        else: faces.append(Face(function))
    complete(faces)
    return faces, behind, listed


def complete(faces):
    """Sets what follows from the other functions of a name: default scale factors, and the plain one of several results."""
    groups = defaultdict(list)
    for face in faces: groups[face.key].append(face)
    for group in groups.values():
        unscaled = any(not face.scaled for face in group)
        for scaled in (False, True):
            same = [face for face in group if face.scaled == scaled]
            if len(same) > 1 and not all(face.results for face in same):
                raise Refused("one call for two functions: " + ", ".join(face.function.name for face in same))
            sources = [a.type for face in same for a in face.called if a.is_array]
            plain = next((face for face in same if face.results and face.results[0].type in sources), (same or [None])[0])
            for face in same:
                face.is_plain = face is plain
                if scaled and not unscaled: face.of("scale")[0].default = "0"


# Families whose functions go through a plan or a context: (operations, what their table is called).
FAMILIES = [
    (r"FIRLMSMR(.*)", "lms_multirate"), (r"FIRLMS(.*)", "lms"), (r"FIR(.*)", "fir"), (r"IIR(.*)", "iir"),
    (r"FFT(.*)", "fft"), (r"DFT(.*)", "dft"), (r"DCTFwd(.*)", "dct_forward"), (r"DCTInv(.*)", "dct_inverse"),
    (r"WTFwd(.*)", "wavelet_forward"), (r"WTInv(.*)", "wavelet_inverse"),
    (r"RandUniform(.*)", "uniform_noise"), (r"RandGauss(.*)", "normal_noise"),
]


def is_complex(letters): return letters.endswith("c")


@dataclass(frozen=True)
class Member:
    """A function behind a class: its family, the types that the class is of, and what it does there."""
    family: str
    types: tuple
    verb: str


def member(function):
    operation, taps, types, variant = function.parts
    match, family = next(((m, name) for rule, name in FAMILIES if (m := re.fullmatch(rule, operation))), (None, None))
    if not match: raise Refused(f"{function.name}: no family for it")
    verb = match[1]
    if family in ("fft", "dft"):
        split = not is_complex(types[0]) and re.search(r"_C(ToC)?$", verb)
        key = (("split", types[0]) if split else types[0],)
        verb = re.sub(r"_[CR]$|_CToC|_RTo|ToR|_", "", verb.replace("_RTo", "").replace("Fwd", "Forward"))
        verb = verb.replace("Inv", "Inverse")
        verb = re.sub(r"(Forward|Inverse)(\w+)", r"\1_\2", verb)
    elif family in ("fir", "iir", "lms", "lms_multirate"):
        key = (taps or types[0], types[0])
        if len(types) == 2: verb += "_Real"  # integer taps given or shown as real ones
    elif family == "wavelet_forward": key = (types[0],)
    elif family == "wavelet_inverse": key = (types[-1],)
    else: key = (types[0],)
    return Member(family, key, (snake(verb) or "run") + ("_in_place" if function.in_place else ""))
