"""The generated part of the C++ face."""
import re

from shapes import member, plain_name

HEAD = """// Made from the C headers by faces/generate.py.
#pragma once

#include <kels/cpp/call.hpp>

namespace kels {{

{}
}} // namespace kels
"""
PARAMETER = {"in": "in<{}>", "out": "out<{}>", "inout": "out<{}>", "value": "value<{}>", "address": "{}",
             "reference": "{}&", "scale": "scale"}


HELPERS = {"quotient", "quotient_up", "larger"}


def expression(text, face):
    """An expression over C parameters in terms of the C++ ones: arrays stand for their lengths."""
    arguments = {a.parameter.name: a for a in face.arguments}

    def word(match):
        argument = arguments.get(match[0])
        if argument is None: return f"detail::{match[0]}" if match[0] in HELPERS else plain_name(match[0])
        return f"detail::counted({argument.name}.size())" if argument.is_array else argument.name

    return re.sub(r"[A-Za-z]\w*", word, text)


def declared(argument):
    text = f"{PARAMETER[argument.kind].format(argument.type)} {argument.name}"
    if argument.default is None: return text
    return f"{text} = " + ("scale(0)" if argument.kind == "scale" else argument.default)


def passed(argument):
    if argument.is_array: return f"{argument.name}.data()"
    return {"address": "&{}", "reference": "&{}", "result": "&{}", "scale": "{}.factor",
            "length": "static_cast<int>({})"}.get(argument.kind, "{}").format(argument.name)


def overload(face):
    arguments = [declared(a) for a in face.called]
    lines = []
    for name, text in face.lengths.items():
        lines.append(f"const long long {plain_name(name)} = {expression(text, face)};")
    for name, extent in face.extents.items():
        wanted = expression(extent.removeprefix(">= "), face)
        lines.append(f"detail::{'at_least' if extent[0] == '>' else 'equal'}({plain_name(name)}.size(), {wanted});")
    call = f"detail::checked({face.function.name}({', '.join(map(passed, face.arguments))}))"
    if not face.results:
        return define("inline KelStatus", face.name, arguments, [*lines, f"return {call};"])
    kinds = [r.type for r in face.results]
    if len(kinds) == 1: result, returned = kinds[0], face.results[0].name
    else: result, returned = f"indexed<{kinds[0]}>", "{" + ", ".join(r.name for r in face.results) + "}"
    lines += [f"{r.type} {r.name};" for r in face.results]
    arguments.append("KelStatus* warning = nullptr")
    lines += [f"const KelStatus status = {call};", "if (warning) *warning = status;", f"return {returned};"]
    text = define(f"template <std::same_as<{kinds[0]}> Result>\ninline {result}", face.name, arguments, lines)
    if face.is_plain:
        names = ", ".join([a.name for a in face.called] + ["warning"])
        text += define(f"inline {result}", face.name, arguments, [f"return {face.name}<{kinds[0]}>({names});"])
    return text


def define(head, name, arguments, lines):
    body = "".join(f"    {line}\n" for line in lines)
    return f"{head} {name}({', '.join(arguments)}) {{\n{body}}}\n"


def functions(faces):
    return HEAD.format("\n".join(overload(face) for face in faces))


def families(behind):
    tables = {}
    for function in behind:
        found = member(function)
        tables.setdefault(found.family, {}).setdefault(found.types, []).append((found.verb, function.name))
    text = "// The C functions behind each class, by the types that the class is of.\nnamespace detail {\n\n"
    for family, rows in tables.items():
        text += f"template <class... Types>\nstruct {family}_calls;\n"
        for types, members in rows.items():
            names = ", ".join(f"split<Kel{t[1]}>" if isinstance(t, tuple) else f"Kel{t}" for t in types)
            text += f"template <>\nstruct {family}_calls<{names}> {{\n"
            text += "".join(f"    static constexpr auto {verb} = {name};\n" for verb, name in members) + "};\n"
        text += "\n"
    return HEAD.format(text + "} // namespace detail\n")
