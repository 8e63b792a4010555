#!/usr/bin/env python3
"""Verdict, tables and pictures' points of a comparison.

report.py DIRECTORY [PAGE]: reads counts.csv, the callgrind dumps instructions.* and, where there are
any, times.*.json in the directory; writes tables.md and the points there, and prints the aims. With a
page, writes the aims between its markers "<!-- bench -->" and "<!-- end -->". Exit status 1 when an aim
is missed.
"""
import collections
import json
import re
import statistics
import sys
from pathlib import Path

MODULE, MEMORY, FILE = "module", "SQLite, memory", "SQLite, file"
FLOORS = ("bare walk", "walk and sort", "bare parse", "bare print", "bare write")
CONTESTANTS = (MODULE, MEMORY, FILE, *FLOORS, "straightforward", "full search")
MEASURES = ("instructions", "time", "allocations", "bytes", "written")  # times in µs

# What is aimed at, the works (the worst counts), what the module is compared with, and the limits by
# measure. Where instructions say less than time, for a walk waits for memory, their limit is a little
# above what they are now.
AIMS = [
    ("add, against the bare walk", "add", "bare walk", {"instructions": 2.5, "time": 1.5}),
    ("add, against SQLite", "add", MEMORY, {"instructions": 0.15, "time": 0.15}),
    ("first key, against walk and sort", ".*, key 1", "walk and sort", {"instructions": 1.3, "time": 1.3}),
    ("each further key, against SQLite", ".*, key [2-9]", MEMORY, {"instructions": 0.05, "time": 0.05}),
    ("narrowing to a tenth, against the full search", "a tenth.*", "full search", {"instructions": 0.3, "time": 0.3}),
    ("page of 10, against SQLite", "page .*", MEMORY, {"instructions": 0.4, "time": 0.4}),
    ("save, against the bare print", "save 400", "bare print", {"instructions": 1.3, "time": 1.3}),
    ("save, against the straightforward way", "save 400", "straightforward", {"instructions": 0.2}),
    ("save, bytes written, against the bare write", "save 400", "bare write", {"written": 1}),
    ("load, against the bare parse", "load 400", "bare parse", {"instructions": 1.15, "time": 1.15}),
    ("server document, against the bare parse", "server, load .*", "bare parse", {"instructions": 1.2, "time": 1.2}),
]

# The picture at a glance: works under a reader's names; and the curves.
OVERVIEW = {"add": "add a call", "page at row 0 of 100": "page of 10", "save 400": "save 400 calls",
            "number, broad, key 1": "first key, 400 hits", "number, broad, key 2": "next key, 400 hits",
            "load 400": "load 400 calls", "server, load 1000": "server's list of 1,000"}
CURVES = {"records": ["add: module", "page: module", "save: module", "load: module"],
          "hits": ["first key: module", "next key: module", "first key: SQLite, memory"]}


def read_counts(directory, figures):
    for line in (directory / "counts.csv").read_text().splitlines():
        work, contestant, *counts = line.split(";")
        for measure, count in zip(("allocations", "bytes", "written"), counts):
            figures[measure][work][contestant] = int(count)


def read_instructions(directory, figures):
    for path in sorted(directory.glob("instructions.*"), key=lambda path: int(path.suffix[1:])):
        dump = path.read_text()
        trigger = re.search(r"^desc: Trigger: Client Request: (.*);(.*);(\d+)$", dump, re.M)
        if trigger:
            work, contestant, operations = trigger.groups()
            count = int(re.search(r"^summary: (\d+)$", dump, re.M)[1])
            figures["instructions"][work][contestant] = count / int(operations)


def read_times(directory, figures):
    rounds = collections.defaultdict(list)
    for path in directory.glob("times.*.json"):
        for run in json.loads(path.read_text())["benchmarks"]:
            rounds[run["name"]].append(run.get("median", run["cpu_time"]) / 1000)
    for name, times in rounds.items():
        work, contestant = name.split(";")
        figures["time"][work][contestant] = statistics.median(times)


def read_all(directory):
    """figures[measure][work][contestant], of one operation."""
    figures = {measure: collections.defaultdict(dict) for measure in MEASURES}
    for read in (read_counts, read_instructions, read_times):
        read(directory, figures)
    return figures


def short(number):
    """Two or three significant digits."""
    if number >= 100:
        return f"{number:,.0f}"
    return f"{number:.2g}" if number < 0.1 else f"{number:.3g}"


def table(header, rows):
    lines = ["| " + " | ".join(row) + " |" for row in [header, *rows]]
    return "\n".join([lines[0], "|" + "---|" * len(header), *lines[1:]])


def worst(works, pattern, other):
    """The highest ratio to the other contestant, and its work."""
    return max((row[MODULE] / row[other], work) for work, row in works.items()
               if re.fullmatch(pattern, work) and other in row)


def judge(figures):
    """The table of the aims, and whether all are met."""
    rows = []
    for text, pattern, other, limits in AIMS:
        shown, verdict = {"count": "", "time": ""}, "met"
        for measure, limit in limits.items():
            if figures[measure]:
                ratio, work = worst(figures[measure], pattern, other)
                where = "" if work == pattern else f" ({work})"
                shown["time" if measure == "time" else "count"] = f"{short(ratio)} of {short(limit)}{where}"
                verdict = verdict if ratio <= limit else "missed"
        rows.append([text, shown["count"], shown["time"], verdict])
    return table(["aim", "by count", "by time", "verdict"], rows), all(row[-1] == "met" for row in rows)


def tables(figures):
    """A table for each measure, with a row for each work."""
    for measure, works in figures.items():
        rows = [[work] + [short(row[name]) if name in row else "" for name in CONTESTANTS]
                for work, row in works.items() if work.split(" ")[0] not in CURVES]
        yield f"\n## {measure}\n\n{table(['work', *CONTESTANTS], rows)}\n"


def write_points(path, rows):
    path.write_text("".join("\t".join(cell if isinstance(cell, str) else f"{cell:.4f}" for cell in row) + "\n"
                            for row in rows))


def first(row, names):
    return next((row[name] for name in names if name in row), float("nan"))


def write_pictures(directory, times):
    overview = [[label, first(times[work], (MEMORY, FILE)), first(times[work], FLOORS), times[work][MODULE]]
                for work, label in OVERVIEW.items()]
    write_points(directory / "overview.dat", [["", "SQLite", "floor", "module"], *overview])
    for name, series in CURVES.items():
        points = sorted({int(work.split(" ")[1]) for work in times if work.startswith(name + " ")})
        curves = [[times[f"{name} {point} {work}"][contestant] for point in points]
                  for work, contestant in (label.split(": ") for label in series)]
        write_points(directory / f"{name}.dat", [[name, *series], *zip(points, *curves)])


def keep(page, aims):
    processor = re.search(r"^model name\s*: (.*)$", Path("/proc/cpuinfo").read_text(), re.M)
    text = f"{aims}\n\nTimes are of one run on: {processor[1] if processor else 'an unknown processor'}."
    place = re.compile("(?<=<!-- bench -->\n).*?(?=\n<!-- end -->)", re.S)
    content, found = place.subn(lambda _: text, page.read_text())
    if found != 1:
        sys.exit(f"{page}: no place for the aims")
    page.write_text(content)


def main(directory, page=None):
    figures = read_all(directory)
    aims, met = judge(figures)
    (directory / "tables.md").write_text("".join([aims, "\n", *tables(figures)]))
    if figures["time"]:
        write_pictures(directory, figures["time"])
    if page:
        keep(page, aims)
    print(f"\n{aims}\n")
    return 0 if met else 1


if __name__ == "__main__":
    sys.exit(main(*map(Path, sys.argv[1:])))
