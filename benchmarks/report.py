#!/usr/bin/env python3
"""Tables, verdict and pictures' data of a comparison.

report.py DIRECTORY [PAGE]: reads counts.csv, the callgrind dumps instructions.* and, where it is
there, times.csv in the directory. Prints the aims and the ratios; with a page also writes them
between its markers "<!-- bench NAME -->" and "<!-- end -->", and the curves' points into the
directory. Exit status 1 when an aim is missed.
"""
import collections
import glob
import os
import re
import statistics
import sys

MODULE = "module"
MEMORY = ("SQLite, memory", "SQLite, prefix indexes", "SQLite, ordered index")
WAL, FULL = "SQLite, WAL", "SQLite, FULL"
FLOORS = ("bare walk", "TinyXML, file", "bare write")  # the last is the kernel's, not instructions
OTHERS = ("straightforward", "TinyXML, text", "module, full search")

# What is aimed at, its limit, the works (the worst counts), what the module is compared with (the
# least counts), and what is compared.
AIMS = [
    ("add, against the bare walk", 1.5, "add", ["bare walk"], ["instructions", "time"]),
    ("add, against SQLite in memory", 0.15, "add", MEMORY, ["instructions", "time"]),
    ("each keystroke, against SQLite", 0.05, ".*, key .", MEMORY, ["instructions", "time"]),
    ("narrowing a tenth, against the full search", 0.3, "a tenth.*", ["module, full search"],
     ["instructions", "time"]),
    ("page of 10, against SQLite", 0.4, "page .*", MEMORY, ["instructions", "time"]),
    ("save, against the straightforward way", 0.2, "save 400", ["straightforward"],
     ["instructions"]),
    ("save, bytes written, against the bare write", 1, "save 400", ["bare write"], ["written"]),
    ("save, against the bare write", 4, "save 400", ["bare write"], ["time"]),
    ("load, against TinyXML", 1.15, "load 400", ["TinyXML, file"], ["instructions", "time"]),
    ("server document, against TinyXML", 1.2, "server, load .*", ["TinyXML, file"],
     ["instructions", "time"]),
]

CURVES = {
    "records": ["add;module", "add;SQLite, memory", "page;module", "page;SQLite, memory",
                "save;module", "load;module"],
    "hits": ["first key;module", "next key;module", "first key;SQLite, prefix indexes",
             "first key;SQLite, ordered index"],
    "entries": ["load;module", "load;TinyXML, file", "load;SQLite, memory", "last page;module",
                "last page;SQLite, memory"],
}


def read_all(directory):
    """figures[measure][work][contestant]"""
    figures = collections.defaultdict(lambda: collections.defaultdict(dict))
    with open(os.path.join(directory, "counts.csv")) as lines:
        for line in lines:
            work, contestant, *counts = line.rstrip("\n").split(";")
            for measure, count in zip(("allocations", "bytes", "written"), counts):
                figures[measure][work][contestant] = int(count)
    dumps = glob.glob(os.path.join(directory, "instructions.*"))
    for name in sorted(dumps, key=lambda dump: int(dump.rsplit(".", 1)[1])):
        with open(name) as dump:
            text = dump.read()
        trigger = re.search(r"^desc: Trigger: Client Request: (.*);(.*);(\d+)$", text, re.M)
        if trigger:
            count = int(re.search(r"^summary: (\d+)$", text, re.M)[1])
            figures["instructions"][trigger[1]][trigger[2]] = count / int(trigger[3])
    times = collections.defaultdict(list)
    if os.path.exists(os.path.join(directory, "times.csv")):
        with open(os.path.join(directory, "times.csv")) as lines:
            for line in lines:
                work, contestant, nanoseconds = line.split(";")
                times[work, contestant].append(float(nanoseconds))
    for (work, contestant), rounds in times.items():
        figures["time"][work][contestant] = statistics.median(rounds)
    return figures


def best(row, contestants):
    """The least figure of those of the contestants that do this work; None when none does."""
    return min((row[name] for name in contestants if name in row), default=None)


def ratio(row, contestants):
    other = best(row, contestants)
    return row[MODULE] / other if other else None


def short(number):
    """Three significant digits."""
    if number is None:
        return ""
    if number >= 100:
        return f"{number:,.0f}"
    return f"{number:.2g}" if number < 0.1 else f"{number:.3g}"


def table(header, rows):
    lines = ["| " + " | ".join(row) + " |" for row in [header] + rows]
    return "\n".join([lines[0], "|" + "---|" * len(header)] + lines[1:])


def judge(figures):
    """The table of the aims, and whether all are met."""
    rows, good = [], True
    for text, limit, pattern, contestants, measures in AIMS:
        cells = {}
        for measure in measures:
            if figures[measure]:
                cells[measure] = max((ratio(row, contestants), work)
                                     for work, row in figures[measure].items()
                                     if re.fullmatch(pattern, work))
        missed = [worst for worst in cells.values() if worst[0] > limit]
        good = good and not missed
        seen = {measure: short(worst[0]) + ("" if worst[1] == pattern else f" ({worst[1]})")
                for measure, worst in cells.items()}
        count = seen.get("instructions", seen.get("written", ""))
        verdict = ("missed" if missed else "met") if cells else "not measured"
        rows.append([text, short(limit), count, seen.get("time", ""), verdict])
    return table(["aim", "at most", "by count", "by time", "verdict"], rows), good


def ratios(rows, unit, scale, floors):
    """A row for each work: the module's own figure, and what part it is of the others'."""
    lines = []
    for work, row in rows.items():
        if MODULE not in row or work.split(" ")[0] in CURVES:
            continue
        floor = next((name for name in floors if name in row), "")
        lines.append([work, short(row[MODULE] / scale), short(ratio(row, MEMORY)),
                      short(ratio(row, [WAL])), short(ratio(row, [FULL])),
                      short(ratio(row, floors)), floor])
    return table(["work", "module, " + unit, "SQLite, memory", "SQLite, WAL", "SQLite, FULL",
                  "floor", "which"], lines)


def others(figures):
    lines = []
    for work, row in figures["instructions"].items():
        for name in OTHERS:
            if name in row:
                lines.append([work, name, short(ratio(row, [name])),
                              short(ratio(figures["time"].get(work, row), [name]))
                              if work in figures["time"] else ""])
    return table(["work", "against", "instructions", "time"], lines)


def allocations(figures):
    lines = []
    for work, row in figures["allocations"].items():
        sizes, written = figures["bytes"][work], figures["written"][work]
        cells = [work]
        for names in ([MODULE], MEMORY, FLOORS):
            count = best(row, names)
            cells += [short(count), short(best(sizes, names))]
        cells += [short(best(written, [name])) for name in (MODULE, WAL, FULL)]
        lines.append(cells)
    return table(["work", "module", "bytes", "SQLite", "bytes", "floor", "bytes",
                  "written: module", "WAL", "FULL"], lines)


def write_curves(directory, rows):
    for name, series in CURVES.items():
        points = sorted({int(work.split(" ")[1]) for work in rows if work.startswith(name + " ")})
        with open(os.path.join(directory, name + ".dat"), "w") as out:
            out.write("\t".join([name] + [label.replace(";", ": ") for label in series]) + "\n")
            for point in points:
                cells = [str(point)]
                for label in series:
                    work, contestant = label.split(";")
                    value = rows.get(f"{name} {point} {work}", {}).get(contestant)
                    cells.append("NaN" if value is None else f"{value / 1000:.4f}")
                out.write("\t".join(cells) + "\n")


def processor():
    with open("/proc/cpuinfo") as lines:
        return next((line.split(":")[1].strip() for line in lines
                     if line.startswith("model name")), "an unknown processor")


def write_page(page, parts):
    with open(page) as text:
        content = text.read()
    for name, part in parts.items():
        marks = f"<!-- bench {name} -->", "<!-- end -->"
        content, found = re.subn(f"{marks[0]}.*?{marks[1]}",
                                 lambda _: f"{marks[0]}\n{part}\n{marks[1]}", content, flags=re.S)
        if found != 1:
            sys.exit(f"{page}: no place for {name}")
    with open(page, "w") as out:
        out.write(content)


def main(directory, page=None):
    figures = read_all(directory)
    aims, good = judge(figures)
    parts = {"aims": aims, "allocations": allocations(figures),
             "instructions": ratios(figures["instructions"], "instructions", 1, FLOORS[:2]),
             "times": ratios(figures["time"], "µs", 1000, FLOORS), "others": others(figures)}
    if page:
        write_curves(directory, figures["time"])
        write_page(page, dict(parts, machine=f"Times are of one run on: {processor()}."))
        for name in ("allocations", "instructions", "times", "others"):
            print(f"\n{name}\n\n{parts[name]}")
    print(f"\naims\n\n{aims}")
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
