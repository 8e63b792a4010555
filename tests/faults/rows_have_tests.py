#!/usr/bin/env python3
"""Every row of a table whose last column is "shown by" names tests there, and all of them exist.

rows_have_tests.py DOCUMENT CTEST BUILD_DIRECTORY    a name may hold *, as in `ListTest.*`
"""
import fnmatch
import re
import subprocess
import sys


def rows(document):
    """Line number and last cell of each row of such tables."""
    last_column = None
    with open(document, encoding="utf-8") as lines:
        for number, line in enumerate(lines, 1):
            if not line.startswith("|"):
                last_column = None
                continue
            cell = line.strip().strip("|").split("|")[-1].strip()
            if last_column is None:
                last_column = cell
            elif last_column == "shown by" and cell.strip("-"):
                yield number, cell


def main(document, ctest, build):
    shown = subprocess.run([ctest, "--test-dir", build, "-N"], capture_output=True, text=True,
                           check=True).stdout
    tests = re.findall(r"^ *Test +#\d+: (\S+)", shown, re.M)
    found, wrong = 0, []
    for number, cell in rows(document):
        names = re.findall(r"`([^`]+)`", cell)
        found += 1
        if not names:
            wrong.append(f"{document}:{number}: names no test")
        wrong += [f"{document}:{number}: no test {name}"
                  for name in names if not fnmatch.filter(tests, name)]
    if found == 0:
        wrong.append(f'{document}: no row in a table with a last column "shown by"')
    print("\n".join(wrong) or f"{found} rows, each with its tests")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
