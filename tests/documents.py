#!/usr/bin/env python3
"""Holds the documents to what they show: documents.py SOURCES CXX [EMULATOR...] DESKPHONE

Every command in them is one that .ci/run or scripts/release.sh runs, or one of deskphone's, which is
run here; their code compiles, README.md's program prints what it says, and so does the phone in its talk."""
import os
import re
import shlex
import subprocess
import sys
import tempfile
import textwrap
from pathlib import Path

SOURCES, CXX, PHONE = Path(sys.argv[1]), sys.argv[2], sys.argv[3:]
DEMO = SOURCES / "desktop/demo"
COMMAND = r"(?:\./|\.ci/|cmake |ctest |deskphone )\S.*"
# What a reader puts in place of a word in capitals.
STANDS_FOR = {"FILE": str(DEMO / "first-day.phone"), "Master.csv": str(DEMO / "calls.csv"), "DIR": "phone"}
# What a user does by waiting.
WAITING = {"idle": "wait 5s", "server 0": "await"}

failures = []


def fail(place, why):
    failures.append(f"{place}: {why}")


def commands_of(document):
    """(line, command) of each command that stands in a line of its own or between backquotes."""
    text = document.read_text()
    for found in re.finditer(r"^    (" + COMMAND + r")$|`(" + COMMAND.replace(".*", "[^`]*") + ")`", text, re.M):
        shown = found.group(1) or re.sub(r"\s+", " ", found.group(2))
        for command in re.split(r"\s{2,}|\s#", shown)[0].split(" && "):
            yield text.count("\n", 0, found.start()) + 1, command


def in_general(command):
    """What finds the command where numbers, what is optional, and words in capitals are others."""
    words = re.sub(r"\s+(\d+.*|\[.*)$", "", command).split()
    return r"\s".join(r"\S+" if re.fullmatch("[A-Z]+", word) else re.escape(word) for word in words) + r"(\s|$)"


def run_phone(command, place):
    """Runs a command of ./run or deskphone in a directory of its own."""
    words = [STANDS_FOR.get(word, word) for word in command.split()[1:]]
    words = [str(SOURCES / word) if word.startswith("desktop/") else word for word in words]
    with tempfile.TemporaryDirectory() as directory:
        phone = subprocess.Popen(PHONE + words, cwd=directory, env={**os.environ, "HOME": directory, "XDG_STATE_HOME": ""},
                                 stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                 stderr=subprocess.STDOUT, text=True)
        if "server" in words[:1]:
            phone.stdout.readline()
            phone.terminate()
        output = phone.communicate(timeout=60)[0]
        if phone.returncode != 0:
            fail(place, f"{command}: {output}")


def check_commands():
    run_by = "".join((SOURCES / name).read_text() for name in (".ci/run", "scripts/release.sh"))
    documents = [SOURCES / "README.md", SOURCES / "CONTRIBUTING.md", *sorted((SOURCES / "docs").glob("*.md"))]
    found = [(f"{document.name}:{line}", command) for document in documents for line, command in commands_of(document)]
    for place, command in found:
        if command == ".ci/run" or re.search(in_general(command), run_by, re.M):
            continue
        if command.startswith(("./run", "deskphone")):
            run_phone(command, place)
        else:
            fail(place, f"{command}: nothing runs it")
    if len(found) < 20:
        fail("documents", f"only {len(found)} commands found")


def check_program(readme):
    """Builds the program as README.md says, but as the phone was built, and compares what it prints."""
    program = re.search(r"^```cpp\n(.*?)^```", readme, re.M | re.S)[1]
    build, run, expected = re.search(r"^    \$ (g\+\+ .*\n.*)\n    \$ (\./.*)\n((?:    .*\n)+)", readme, re.M).groups()
    tree = Path(PHONE[-1]).parent.parent
    as_the_phone = re.findall(r"-D_\w+=64|-fsanitize=\S+|--sysroot=\S+", (tree / "compile_commands.json").read_text())
    build = " ".join([CXX, *sorted(set(as_the_phone)), build[len("g++ "):]])
    with tempfile.TemporaryDirectory() as directory:
        (Path(directory) / "missed.cpp").write_text(program)
        (Path(directory) / "build").mkdir()
        (Path(directory) / "build/default").symlink_to(tree)
        for room in ("include", "platform", "desktop"):
            (Path(directory) / room).symlink_to(SOURCES / room)
        ran = subprocess.run(f"{build} && {shlex.join(PHONE[:-1])} {run}", shell=True, cwd=directory,
                             stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
    if ran.returncode != 0 or ran.stdout != textwrap.dedent(expected):
        fail("README.md", f"{run} prints\n{ran.stdout}")


def compile_code(place, program):
    folders = [f"-I{SOURCES / folder}" for folder in ("include", "guard", ".")]
    compiled = subprocess.run([CXX, "-std=c++17", "-fsyntax-only", *folders, "-xc++", "-"],
                              input=program, text=True, capture_output=True)
    if compiled.returncode != 0:
        fail(place, compiled.stderr)


def talk(lines):
    """(command, what was answered) of a talk with the phone."""
    said = []
    for line in lines:
        if line.startswith("phone> "):
            said.append((line[len("phone> "):], []))
        elif said:
            said[-1][1].append(line)
    return said


def check_talk(readme):
    block = re.search(r"^    phone> .*\n(?:    .*\n)*", readme, re.M)[0]
    shown = talk(line[4:] for line in block.splitlines())
    script = "".join(f"{command}\n{WAITING.get(command, '')}\n" for command, _ in shown)
    with tempfile.TemporaryDirectory() as directory:
        printed = subprocess.run(
            PHONE + ["--root", directory, "--profile", str(DEMO / "profile.toml"), "--log-server", str(DEMO / "server"),
                     "--script", "-"],
            input=(DEMO / "first-day.phone").read_text() + script, text=True, capture_output=True)
    if printed.returncode != 0:
        return fail("README.md", printed.stderr)
    waits = "|".join(f"phone> {wait}" for wait in WAITING.values())
    answers = talk(line for line in printed.stdout.splitlines() if line and not re.fullmatch(waits, line))
    for (command, expected), (_, answer) in zip(shown, answers[-len(shown):]):
        matches = [line.startswith(part[:-3]) if part.endswith("...") else line == part
                   for part, line in zip(expected, (re.sub(r":\d{5}/", ":38613/", line) for line in answer))]
        if expected and (len(expected) != len(answer) or not all(matches)):
            fail("README.md", f"{command} answers\n" + "\n".join(answer))


text = (SOURCES / "README.md").read_text()
check_commands()
check_program(text)
for program in re.findall(r"^```cpp\n(.*?)^```$", (SOURCES / "docs/PORTING.md").read_text(), re.M | re.S):
    compile_code("PORTING.md", program)
check_talk(text)
for failure in failures:
    print(failure)
sys.exit(1 if failures else 0)
