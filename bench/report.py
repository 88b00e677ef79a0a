#!/usr/bin/env python3
"""report.py DOCUMENT ROWS...: writes what kels-bench measured into a document.

ROWS are files of `kels-bench --rows`, one a level. In the document, the lines between

    <!-- measured: FAMILY -->
    <!-- end -->

become one table of that family with the levels side by side; what no file has stays as it is. All other text is the
writer's own.
"""

import collections
import pathlib
import platform
import re
import sys

OURS = "kels"
LEVELS = ["v4", "v3", "base"]


def read(files):
    """family -> (operation, size) -> level -> who -> (nanoseconds a call, elements a call)"""
    families = {}
    for file in files:
        for line in pathlib.Path(file).read_text().splitlines():
            level, family, operation, size, who, time, elements = line.split("\t")
            levels = families.setdefault(family, {}).setdefault((operation, size), collections.defaultdict(dict))
            levels[level][who] = (float(time), float(elements))
    return families


def time_text(nanoseconds):
    for scale, unit in ((1e9, "s"), (1e6, "ms"), (1e3, "us"), (1, "ns")):
        if nanoseconds >= 0.9995 * scale or scale == 1:
            value = nanoseconds / scale
            return f"{value:.{2 if value < 9.995 else 1 if value < 99.95 else 0}f} {unit}"


def cells(contenders):
    """What a row says of one level: the call, a sample of it, and the peers' times as multiples of ours."""
    if OURS not in contenders:
        return ["", "", ""]
    time, elements = contenders[OURS]
    ratios = sorted((peer[0] / time, who) for who, peer in contenders.items() if who != OURS)
    return [time_text(time), f"{time / elements:.3g}", ", ".join(f"{who} {ratio:.2f}" for ratio, who in ratios)]


def table(rows):
    levels = [level for level in LEVELS if any(level in by_level for by_level in rows.values())]
    heads = ["Work", "Size"] + [f"{head} {level}".strip() for level in levels for head in ("", "ns each", "peers")]
    lines = [heads, ["---"] * len(heads)]
    previous = None
    for (operation, size), by_level in rows.items():
        lines.append(["" if operation == previous else operation, size])
        previous = operation
        for level in levels:
            lines[-1] += cells(by_level.get(level, {}))
    return "\n".join("| " + " | ".join(line) + " |" for line in lines)


def processor():
    names = re.findall(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    return names[0] if names else platform.machine()


def main(document, *files):
    families = read(files)
    path = pathlib.Path(document)

    def measured(match):
        family = match[1]
        if family not in families:
            return match[0]
        return f"<!-- measured: {family} -->\n{processor()}\n\n{table(families[family])}\n<!-- end -->"

    text, tables = re.subn(r"<!-- measured: (\S+) -->\n.*?<!-- end -->", measured, path.read_text(), flags=re.S)
    if tables == 0:
        sys.exit(f"report.py: {document} has no place for a table: a line '<!-- measured: FAMILY -->' and one '<!-- end -->'")
    path.write_text(text)


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
