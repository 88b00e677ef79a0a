#!/usr/bin/env python3
"""report.py DOCUMENT ROWS...: writes what kels-bench measured into a document.

ROWS are files of `kels-bench --rows`, one a level. In the document, the lines between

    <!-- measured: FAMILY -->
    <!-- end -->

become one table of that family with the levels side by side. In the place of FAMILY may stand

    standing        how the rows of each family stand against their best peers
    machine         the processor
    rows            and on further lines FAMILY: OPERATION: SIZE, each of them a row of a short table

What no file has stays as it is. All other text is the writer's own.
"""

import collections
import math
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


def levels_of(rows):
    return [level for level in LEVELS if any(level in by_level for by_level in rows.values())]


def lined_up(lines):
    """A table, its second line the rule below the head."""
    return "\n".join("| " + " | ".join(line) + " |" for line in [lines[0], ["---"] * len(lines[0])] + lines[1:])


def table(rows):
    levels = levels_of(rows)
    heads = ["Work", "Size"] + [f"{head} {level}".strip() for level in levels for head in ("", "ns each", "peers")]
    lines = [heads]
    previous = None
    for (operation, size), by_level in rows.items():
        lines.append(["" if operation == previous else operation, size])
        previous = operation
        for level in levels:
            lines[-1] += cells(by_level.get(level, {}))
    return lined_up(lines)


def best_peer(contenders):
    """(name, its time as a multiple of ours) or None. What begins with our name is a measure, not a peer."""
    peers = {
        who: time / contenders[OURS][0]
        for who, (time, _) in contenders.items()
        if not who.startswith(OURS) and OURS in contenders
    }
    return min(peers.items(), key=lambda peer: peer[1], default=None)


def standing(families):
    levels = [level for level in LEVELS if any(level in levels_of(rows) for rows in families.values())]
    lines = [["Family"] + [head for level in levels for head in (f"ahead {level}", "mean", "worst")]]
    everything = {(family,) + row: by_level for family, rows in families.items() for row, by_level in rows.items()}
    for name, rows in [*families.items(), ("all", everything)]:
        line = [name]
        for level in levels:
            peers = {row: best_peer(by_level[level]) for row, by_level in rows.items() if level in by_level}
            ratios = {row: peer[1] for row, peer in peers.items() if peer}
            if not ratios:
                line += ["", "", ""]
                continue
            mean = math.exp(sum(map(math.log, ratios.values())) / len(ratios))
            worst = min(ratios, key=ratios.get)
            ahead = sum(ratio >= 1 for ratio in ratios.values())
            line += [f"{ahead} of {len(ratios)}", f"{mean:.2f}", f"{ratios[worst]:.2f}: " + " ".join(worst[-2:])]
        if any(line[1:]):
            lines.append(line)
    return lined_up(lines)


def chosen(families, names):
    levels = [level for level in LEVELS if any(level in levels_of(rows) for rows in families.values())]
    lines = [["Work"] + [head for level in levels for head in (f"kels {level}", "best peer", "ratio")]]
    for name in names:
        family, operation, size = name.split(": ")
        line = [f"{operation}, {size}"]
        for level in levels:
            if (operation, size) not in families[family]:
                sys.exit(f"report.py: there is no row '{name}'")
            contenders = families[family][operation, size].get(level, {})
            peer = best_peer(contenders)
            line += [time_text(contenders[OURS][0]) if contenders else ""]
            line += [f"{peer[0]} {time_text(contenders[peer[0]][0])}", f"{peer[1]:.2f}"] if peer else ["", ""]
        lines.append(line)
    return lined_up(lines)


def processor():
    names = re.findall(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    return names[0] if names else platform.machine()


def main(document, *files):
    families = read(files)
    path = pathlib.Path(document)

    def measured(match):
        what, *names = match[1].split("\n")
        if what == "machine":
            result = processor()
        elif what == "standing":
            result = standing(families)
        elif what == "rows" and all(name.split(": ")[0] in families for name in names):
            result = chosen(families, names)
        elif what in families:
            result = table(families[what])
        else:
            return match[0]
        # Markdown wants a blank line between a comment and a table.
        return f"<!-- measured: {match[1]} -->\n\n{result}\n\n<!-- end -->"

    text, tables = re.subn(r"<!-- measured: (.*?) -->\n.*?<!-- end -->", measured, path.read_text(), flags=re.S)
    if tables == 0:
        sys.exit(f"report.py: {document} has no place for a table: a line '<!-- measured: FAMILY -->' and one '<!-- end -->'")
    path.write_text(text)


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(*sys.argv[1:])
