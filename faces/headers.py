"""Reads the C headers: what they declare, and what the names and parameters mean.

The headers hold one prototype a line, in documented groups, and names and parameters keep one grammar (include/kels.h).
That grammar is all that is known here; what does not follow it stops the build with a message.
"""
import re
from dataclasses import dataclass, field
from functools import cached_property
from pathlib import Path

TYPE = r"(?:8|16|32|64)(?:uc|sc|fc|u|s|f)"


class Refused(Exception):
    """A prototype that the rules do not cover."""


@dataclass(frozen=True)
class Parameter:
    name: str
    type: str  # without const and pointers
    stars: int
    const: bool

    @property
    def is_opaque(self):
        """A plan or a context: what has a life of its own."""
        return bool(re.fullmatch(r"Kels?\w+(Context|Plan_\w+)|\w+State", self.type))


@dataclass(frozen=True)
class Function:
    header: str
    group: str  # the text of its documentation
    statuses: str  # what the head of the file says of all its functions' statuses
    returns: str
    name: str
    parameters: tuple

    @cached_property
    def parts(self):
        """(operation, type of the taps or None, types of the samples, variant: '', I, Sfs or ISfs)"""
        body, variant = re.fullmatch(r"k(?:el)?s?_?(.+?)(?:_(I|Sfs|ISfs))?", self.name).groups()
        operation, types = re.fullmatch(rf"(.*?)_?((?:{TYPE})*)", body).groups()
        taps = re.search(TYPE, operation)
        if taps:
            operation = operation.replace(taps[0], "", 1)
        return operation, taps and taps[0], re.findall(TYPE, types), variant or ""

    @property
    def operation(self):
        return self.parts[0]

    @property
    def in_place(self):
        return self.parts[3].startswith("I")

    @property
    def has_life(self):
        return any(p.is_opaque for p in self.parameters)

    def parameter(self, name):
        return next((p for p in self.parameters if p.name == name), None)


@dataclass
class Headers:
    functions: list = field(default_factory=list)
    constants: list = field(default_factory=list)  # (C type, name) of exported data
    enumerators: list = field(default_factory=list)  # (name, value, text)


def parameter(text, where):
    match = re.fullmatch(r"(const )?([\w ]+?) ?(\**) ?(\w+)", re.sub(r"\s+", " ", text.strip()))
    if not match:
        raise Refused(f"{where}: cannot read the parameter '{text.strip()}'")
    return Parameter(match[4], match[2], len(match[3]), bool(match[1]))


def plain(comment):
    """A comment without its frame."""
    lines = [re.sub(r"^\s*(\* {0,2})?", "", line) for line in comment.strip("/* \n").splitlines()]
    text = "\n".join(line.rstrip() for line in lines if "@{" not in line)
    return re.sub(r"@name ", "", text).strip()


def read(directory):
    """All that the headers of a directory declare, in their order."""
    found = Headers()
    for path in sorted(Path(directory).glob("*.h")):
        group = statuses = ""
        text = path.read_text()
        for match in re.finditer(r"/\*\*(?!<).*?\*/|^\s*KELS_API[^;]*;|^\s*(kel\w+)\s*=\s*([^,/]+?),?\s*/\*\*<(.*?)\*/",
                                 text, re.S | re.M):
            token = match[0].strip()
            if token.startswith("/** @file"):
                about = re.search(r"^\*\*Statuses\*\*.*?(?=\n\n|\Z)", plain(token), re.S | re.M)
                statuses = about[0] if about else ""
            elif token.startswith("/**"):
                group = "" if "@}" in token else plain(token)
            elif match[1]:
                found.enumerators.append((match[1], int(match[2], 0), " ".join(match[3].split())))
            elif "(" not in token:
                kind, name = re.fullmatch(r"KELS_API const (\w+) (\w+);", token).groups()
                found.constants.append((kind, name))
            else:
                read = re.fullmatch(r"KELS_API\s+(.*?)\s*\b(\w+)\s*\((.*)\);", token, re.S)
                if not read:
                    raise Refused(f"{path.name}: cannot read '{token}'")
                inner = [] if read[3].strip() == "void" else read[3].split(",")
                parameters = tuple(parameter(text, read[2]) for text in inner)
                returns = " ".join(read[1].split())
                found.functions.append(Function(path.name, group, statuses, returns, read[2], parameters))
    return found
