"""The generated part of the Python face: signatures for kels.raw, and the table that the dispatcher reads."""
import re
from collections import defaultdict

from shapes import Face, Shape, member, plain_name, SHAPES

TYPES = "8u 8s 16u 16s 32u 32s 64s 32f 64f 8sc 16sc 32sc 64sc 32fc 64fc".split()
CODE = {f"Kel{letters}": code for code, letters in enumerate(TYPES)} | {"int": TYPES.index("32s")}


def signatures(found):
    """A module of data: name -> (result, parameters), each a C type."""
    def c_type(p): return ("const " if p.const else "") + p.type + "*" * p.stars

    lines = ['"""Made from the C headers by faces/generate.py."""', "", "FUNCTIONS = {"]
    for f in found.functions:
        lines.append(f"    {f.name!r}: ({f.returns!r}, {tuple(c_type(p) for p in f.parameters)!r}),")
    lines += ["}", "", "CONSTANTS = {"] + [f"    {name!r}: {kind!r}," for kind, name in found.constants]
    lines += ["}", "", "ENUMERATORS = {"] + [f"    {name!r}: {value}," for name, value, _ in found.enumerators]
    return "\n".join(lines + ["}", ""])


def shape(face):
    """The body of a function that tells lengths, and what sizes arrays must have."""
    places = {p.name: i for i, p in enumerate(face.function.parameters)}
    arrays = {a.parameter.name for a in face.arguments if a.is_array}
    guesses = SHAPES.get(face.function.operation, Shape()).guesses

    def expression(text):
        def word(match):
            name = match[0]
            if name in arrays:
                guess = f", {expression(guesses[name])}" if name in guesses else ""
                return f"f.size({places[name]}{guess})"
            return f"f.integer({places[name]})" if name in places and name not in face.lengths else name
        return re.sub(r"[A-Za-z]\w*", word, text)

    text = ""
    for name, length in face.lengths.items():
        text += f"    const long long {name} = f.length({places[name]}, {expression(length)});\n"
    for name, extent in face.extents.items():
        wanted = expression(extent.removeprefix(">= "))
        text += f"    f.{'has_at_least' if extent[0] == '>' else 'has'}({places[name]}, {wanted});\n"
    unused = [n for n in face.lengths if not any(re.search(rf"\b{n}\b", e) for e in face.extents.values())]
    return text + "".join(f"    (void){name};\n" for name in unused)


def of_block(function):
    """Whether the lengths of a function with a context are those of its arrays."""
    found = member(function)
    return found.family in ("fir", "iir", "lms", "uniform_noise", "normal_noise") and \
        found.verb in ("run", "run_in_place")


def explicit(function):
    """(parameter, kind, place among the arguments or -1) of a function that the classes call with all it takes."""
    rows, place = [], 0
    for p in function.parameters:
        if p.is_opaque: kind = "made" if p.stars == 2 else "plan" if p.const else "handle"
        elif p.name == "pBuffer": kind = "null"
        elif p.name == "scaleFactor": kind = "scale"
        elif p.name in ("pSize", "pTapsFactor", "pDstVal", "pVal") or p.name == "pDlyLineIndex": kind = "result"
        elif p.stars: kind = "in" if p.const else "inout"
        else: kind = "value"
        taken = kind not in ("made", "null", "result", "scale")
        rows.append((p, kind, place if taken else -1))
        place += taken
    return rows


def called(face):
    """(parameter, kind, place) of a function that the dispatcher calls: outputs stand behind the other arguments."""
    order = [a for a in face.called if a.kind not in ("out", "scale")]
    order.sort(key=lambda a: a.kind != "handle")
    places = {a.parameter.name: i for i, a in enumerate(order)}
    kind = {"pDstLen": "count"}
    if face.function.in_place or not face.of("out"): kind["pSrcDst"] = "changed"
    return [(p := a.parameter, kind.get(p.name, a.kind), places.get(p.name, -1)) for a in face.arguments]


def row(name, function, rows, shaped, in_place, scaled, plain, freed="", kind="", may=("scaleFactor",)):
    flags = ", ".join(str(bool(flag)).lower() for flag in (in_place, scaled, plain))
    cells = [f"{{kind::{role}, {CODE.get(p.type, 0)}, {place}, {str(p.name in may).lower()}}}"
             for p, role, place in rows]
    return (f'    {{"{name}", "{function.name}{kind}", "{freed}", &invoke<{function.name}>, '
            f"{shaped}, {flags}, {len(cells)}, {{{', '.join(cells)}}}}},\n")


def signature(face):
    words = [plain_name(p.name) for p, kind, place in sorted(called(face), key=lambda c: c[2]) if place >= 0]
    outs = [a for a in face.arguments if a.kind == "out" or a.parameter.name == "pSrcDst" and a.kind == "inout"]
    words += ["out=None"] * bool(outs) + ["scale=0"] * face.scaled
    return f"{face.name}({', '.join(words)})"


def documentation(faces):
    """name -> how it is called, what it computes, and the C functions behind it."""
    texts = {}
    groups = defaultdict(list)
    for face in faces: groups[face.name].append(face)
    for name, group in groups.items():
        calls = dict.fromkeys(signature(face) for face in group if not face.function.in_place)
        calls = calls or dict.fromkeys(signature(face) for face in group)
        calls = [call for call in calls if call.replace(")", ", scale=0)") not in calls]
        prose = dict.fromkeys([f.function.group for f in group] + [f.function.statuses for f in group])
        prose.pop("", None)
        functions = " ".join(face.function.name for face in group)
        texts[name] = "\n".join(calls) + "\n\n" + "\n\n".join(prose) + "\n\nIn C: " + functions
    return texts


def table(faces, behind):
    shapes, rows = {}, ""
    frees = {(m.family, m.types): f.name for f in behind if (m := member(f)).verb == "free"}

    def shaped(face): return f"&shape_{shapes.setdefault(shape(face), len(shapes))}"

    for face in faces:
        rows += row(face.name, face.function, called(face), shaped(face), face.function.in_place, face.scaled,
                    face.is_plain, may={a.parameter.name for a in face.called if a.default})
    for function in behind:
        if function.parameter("ppTaps"): continue # a view of memory that a context may free
        if of_block(function):
            face = Face(function)
            rows += row("", function, called(face), shaped(face), function.in_place, face.scaled, True)
            if not function.in_place: # where the rate changes, the class knows the lengths
                rows += row("", function, explicit(function), "nullptr", False, False, True, kind="/explicit")
        else:
            found = member(function)
            freed = frees.get((found.family, found.types), "") if "init_alloc" in found.verb else ""
            rows += row("", function, explicit(function), "nullptr", False, False, True, freed)
    text = "// Made from the C headers by faces/generate.py.\n\n"
    for body, number in shapes.items(): text += f"void shape_{number}(frame& f) {{\n{body}}}\n\n"
    text += f"const row rows[] = {{\n{rows}}};\n\nconst documentation texts[] = {{\n"
    for name, prose in documentation(faces).items(): text += f'    {{"{name}", R"text({prose})text"}},\n'
    return text + "};\n"
