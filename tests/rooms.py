#!/usr/bin/env python3
"""Each room of the house includes what the table in docs/DESIGN.md allows it: rooms.py SOURCES

A room is a folder with sources; the deepest that the table names counts."""
import re
import subprocess
import sys
from pathlib import Path

SOURCES = Path(sys.argv[1])
INCLUDE = re.compile(r'^#include "([^"]+)"', re.M)


def table():
    """What each room may include: rooms and single headers."""
    text = (SOURCES / "docs/DESIGN.md").read_text(encoding="utf-8").split("<!-- rooms -->")[1]
    rows = [line.strip().strip("|").split("|") for line in text.split("\n\n")[0].strip().splitlines()[2:]]
    return {re.findall("`([^`]+)`", row[0])[0]: re.findall("`([^`]+)`", row[2]) for row in rows}


def room_of(path, rooms):
    return max((room for room in rooms if path.startswith(room + "/")), key=len, default=None)


def main():
    rooms = table()
    everything = {room for room, allowed in rooms.items() if room == "desktop"}
    listed = subprocess.run(["git", "ls-files", "*.h", "*.cpp"], cwd=SOURCES, capture_output=True, text=True)
    files = [file for file in listed.stdout.split() if (SOURCES / file).is_file()] or \
        [str(f.relative_to(SOURCES)) for f in SOURCES.rglob("*.[hc]*")]
    wrong, seen = [], 0
    for file in files:
        room = room_of(file, rooms)
        if room is None:
            continue
        for name in INCLUDE.findall((SOURCES / file).read_text(encoding="utf-8")):
            seen += 1
            header = name if "/" in name else "include/" + name
            target = room_of(header, rooms)
            if not (SOURCES / header).is_file():
                wrong.append(f'{file}: there is no "{header}"; includes are written from the top of the tree')
            elif target != room and room not in everything and not {target, header} & set(rooms[room]):
                wrong.append(f'{file}: {room} does not include "{header}"')
    if seen < 200:
        wrong.append(f"only {seen} includes were found")
    print("\n".join(wrong) or f"{seen} includes, each allowed")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
