#!/usr/bin/env python3
"""Makes what the C++ and Python faces take from the C headers.

    generate.py cpp <headers> <directory>       functions.hpp and families.hpp
    generate.py python <headers> <directory>    table.inc and signatures.py
    generate.py count <headers> <nm> <library> <classes...>
                                                where every function is; that the headers declare what the library
                                                exports, and that the classes call what is behind them
"""
import re
import subprocess
import sys
from pathlib import Path

import cpp
import headers
import python
from shapes import member, sort_out


def write(path, text):
    """Leaves a file that is right as it is, for the sake of those that are built from it."""
    path = Path(path)
    path.parent.mkdir(parents=True, exist_ok=True)
    if not path.exists() or path.read_text() != text: path.write_text(text)


def exported(nm, library):
    lines = subprocess.run([nm, "-D", "--defined-only", library], check=True, capture_output=True, text=True).stdout
    return set(re.findall(r"^\S+ T (k\w+)$", lines, re.M))


def count(found, nm, library, *sources):
    faces, behind, listed = sort_out(found.functions)
    different = exported(nm, library) ^ {f.name for f in found.functions}
    if different: raise headers.Refused("not in both headers and library: " + ", ".join(sorted(different)))
    text = "".join(Path(source).read_text() for source in sources)
    called = set(re.findall(r"[Cc]alls::(\w+)", text))
    idle = [f.name for f in behind if member(f).verb not in called]
    if idle: raise headers.Refused("no class calls " + ", ".join(idle))
    print(f"{len(faces)} by name, {len(behind)} behind classes, {len(listed)} in C alone:")
    for reason in dict.fromkeys(listed.values()):
        print(f"  {sum(why == reason for why in listed.values()):3} {reason}")
    print(f"{len(faces) + len(behind) + len(listed)} functions")


def main(task, directory, *rest):
    found = headers.read(directory)
    if task == "count": return count(found, *rest)
    faces, behind, _ = sort_out(found.functions)
    if task == "cpp":
        write(Path(rest[0]) / "functions.hpp", cpp.functions(faces))
        write(Path(rest[0]) / "families.hpp", cpp.families(behind))
    if task == "python":
        write(Path(rest[0]) / "table.inc", python.table(faces, behind))
        write(Path(rest[0]) / "kels" / "signatures.py", python.signatures(found))


if __name__ == "__main__":
    try:
        main(*sys.argv[1:])
    except headers.Refused as refused:
        sys.exit(f"generate.py: {refused}")
