#!/usr/bin/env python3
"""Makes the system fail under a phone that loads and saves its history, and looks at what is left.

faults.py GROUP N PROGRAM...    PROGRAM is history_run, behind an emulator if it needs one; where
it is slow, only every Nth kind of fault is tried

A phone with 400 calls runs under a fault, mostly to store one call more. Runs without a fault then
tell what the history holds. With the guard that must be the history as it was before the save or
after it; without, the tables below say what the module loses on purpose.
"""
import itertools
import os
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
from pathlib import Path

SUFFIXES = ("", ".good", ".good.new", ".held", ".aside-1", ".aside-2")
NAMES = ["call_data.xml" + suffix for suffix in SUFFIXES]
TIME_LIMIT = 60  # seconds; a run takes a fraction of one
ADD, LIST = ("add", "1"), ("list",)
KILL = "signal=KILL:when={}"

# Errors by the beginning of a call's name; EIO for any other.
ERRORS = {
    "open": ["EACCES", "EIO", "EMFILE", "ENOSPC", "EROFS"],
    "read": ["EIO", "EINTR"],
    "write": ["EIO", "ENOSPC", "EINTR"],
    "fsync": ["EIO", "ENOSPC"],
    "rename": ["EACCES", "EIO", "ENOSPC", "EROFS"],
    "unlink": ["EACCES", "EIO", "EROFS"],
}

# What the module alone makes of a fault in a call: "CALL ERROR", with a + when it lasts, and what
# the history holds then.
SAVING = [
    ("open.* .*", "before"),
    ("close .*", "after"),
    ("write.* EINTR", "after"),
    ("write.* .*", "nothing"),
]
LOADING = [
    ("open.* .*\\+", "before"),
    ("close .*", "after"),
    ("read EINTR", "after"),
    (".*", "only the new call"),
]


class Broken(Exception):
    """No test can be made of this; the text says why."""


# Ways to damage a prepared phone: what it finds at its start.

def whole(phone):
    pass


def cut(phone):
    os.truncate(phone.history, phone.history.stat().st_size // 2)


def gone(phone):
    phone.history.unlink()


STATES = (whole, cut, gone)


class Phone:
    """A directory with a phone of 400 calls, and the runs in it."""

    def __init__(self, step, program, directory):
        self.program = program
        self.step = step
        self.root = directory / "phone"
        self.data = self.root / "config/data"
        self.history = self.data / NAMES[0]
        self.prepared = directory / "prepared"
        self.log = directory / "strace"
        self.data.mkdir(parents=True)
        self.run("guard", "fill")
        shutil.copytree(self.data, self.prepared)
        before = self.listing()
        if len(set(before)) != 400:
            raise Broken(f"{len(before)} calls prepared instead of 400")
        self.known = {
            "before": before,
            "after": with_call(before, 1),
            "only the new call": with_call([], 1),
            "nothing": [],
        }

    def reset(self):
        """As prepared: a history of 400 calls, and a good copy of it."""
        remove(self.data.parent)
        shutil.copytree(self.prepared, self.data)

    def run(self, *words, under=(), limit=TIME_LIMIT, prepare=None, may_fail=False):
        environment = dict(os.environ, TZ="UTC0")
        if under:  # LeakSanitizer cannot run under ptrace
            options = environment.get("ASAN_OPTIONS", "")
            environment["ASAN_OPTIONS"] = options + ":detect_leaks=0"
        process = subprocess.Popen([*under, *self.program, str(self.root), *words],
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                                   env=environment, start_new_session=True, preexec_fn=prepare)
        try:
            process.out, process.err = process.communicate(timeout=limit)
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.communicate()
            raise
        if process.returncode != 0 and not may_fail:
            raise Broken(f"history_run {' '.join(words)}: {process.returncode} {process.err}")
        return process

    def listing(self, *words):
        """The calls at the end of a run, newest first; a line each."""
        return self.run(*words, "list").out.splitlines()[1:]

    def outcome(self):
        listing = self.listing()
        names = [name for name, known in self.known.items() if known == listing]
        return names[0] if names else f"{len(listing)} calls, damaged"

    def strace(self, *options):
        """The beginning of a command that traces calls on the history's directory."""
        paths = [str(self.data), "./config/data", "./config/data/"]
        paths += [f"{folder}/{name}" for folder in paths[:2] for name in NAMES]
        return ["strace", "-f", "-qq", "-o", str(self.log), *options,
                *(word for path in paths for word in ("-P", path))]

    def calls(self, *words, state=whole):
        """The names of the system calls that a run makes on the history's directory, in order."""
        self.reset()
        state(self)
        self.run(*words, under=self.strace("-y", "-e", "trace=all"))
        calls = re.findall(r"^(?:\d+ +)?(\w+)\(", self.log.read_text(), re.M)
        if not calls:
            raise Broken("strace saw no system call on the history's directory")
        return calls


def with_call(listing, number, name="New"):
    """The listing with a missed call more, for which the hundredth missed one goes."""
    missed = [line for line in listing if line.startswith("2 ")]
    rest = [line for line in listing if len(missed) < 100 or line != missed[-1]]
    time = f"2026-10-07 09:00:{number:02}"
    return [f"2 {name} <{number}@pbx.example.org> {time} 00:00:02"] + rest


def remove(path):
    if path.is_dir() and not path.is_symlink():
        shutil.rmtree(path)
    else:
        path.unlink(missing_ok=True)


class Tally:
    """Counts the faulted runs of a group, and prints those that went wrong."""

    def __init__(self):
        self.kinds = 0
        self.runs = 0
        self.wrong = 0

    def run(self, good, what):
        self.runs += 1
        if not good:
            self.miss(what)

    def miss(self, what):
        self.wrong += 1
        if self.wrong <= 20:
            print(f"wrong: {what}")


def injected(tally, phone, call, fault, words, first=1, last=None, state=whole, trace=None):
    """Runs the phone with the fault at its first, second, ... such call, until a run meets none.

    `fault` is what strace's option takes, with {} for the number: "error=EIO:when={}"."""
    tally.kinds += 1
    if (tally.kinds - 1) % phone.step != 0:
        return
    for number in itertools.count(first):
        if last is not None and number > last:
            return
        phone.reset()
        state(phone)
        inject = f"inject={call}:{fault.format(number)}"
        what = f"{' '.join(words)}, {state.__name__}: {inject}"
        command = phone.strace("-y", "-e", f"trace={trace or call}", "-e", inject)
        try:
            done = phone.run(*words, under=command, may_fail=True)
        except subprocess.TimeoutExpired:
            tally.run(False, f"{what}: hangs")
            return
        killed = done.returncode == -signal.SIGKILL
        if not killed and "(INJECTED)" not in phone.log.read_text(errors="replace"):
            if number == first:
                tally.miss(f"{what}: no such call")
            return
        if not killed and done.returncode != 0:
            tally.run(False, f"{what}: ended with {done.returncode}: {done.err[-2000:]}")
            continue
        done.number = number
        yield what, done


def errors_of(call):
    """What can go wrong in a call: each of its errors once, and from then on."""
    errors = next((ERRORS[begin] for begin in ERRORS if call.startswith(begin)), ["EIO"])
    for error in errors:
        yield f"error={error}:when={{}}"
        if error != "EINTR":
            yield f"error={error}:when={{}}+"


def split_calls(phone, *words, state=whole):
    """For each system call of a run that stores a call: its name, and how many of them belong to
    the start."""
    start = phone.calls(*words, *LIST, state=state)
    every = phone.calls(*words, *ADD, state=state)
    return [(call, start.count(call), every.count(call)) for call in sorted(set(every))]


# The module alone

def fail_alone(tally, phone, table, call, first, last):
    """Injects each error of a call into a run that stores a call, and compares with the table."""
    for fault in errors_of(call):
        name = f"{call} {fault[6:].replace(':when={}', '')}"
        right = next(outcome for rule, outcome in table if re.fullmatch(rule, name))
        for what, done in injected(tally, phone, call, fault, ADD, first, last):
            outcome = phone.outcome()
            good = outcome == right and "; saved 1" in done.out
            tally.run(good, f"{what}: {outcome} instead of {right}, {done.out.strip()}")
        expect_healed(tally, phone, name)


def expect_healed(tally, phone, what):
    """Whatever was lost, the next save is good."""
    expected = with_call(phone.listing(), 2)
    phone.run("add", "2")
    if phone.listing() != expected:
        tally.miss(f"{what}: the next save is not good")


def save_in_place(tally, phone):
    for call, start, total in split_calls(phone):
        if start < total:
            fail_alone(tally, phone, SAVING, call, start + 1, None)


def load(tally, phone):
    """A fault while the history is loaded loses nothing; the next save does."""
    for call, start, _ in split_calls(phone):
        if start == 0:
            continue
        fail_alone(tally, phone, LOADING, call, 1, start)
        for what, _ in injected(tally, phone, call, "error=EIO:when={}", LIST):
            outcome = phone.outcome()
            tally.run(outcome == "before", f"{what}: {outcome}")


def killed_in_place(tally, phone):
    """From the first byte that goes to the last one that comes, the history is not there."""
    start = phone.calls(*LIST)
    saving = phone.calls(*ADD)[len(start):]
    for call in sorted(set(saving)):
        for what, done in injected(tally, phone, call, KILL, ADD, start.count(call) + 1):
            number = done.number - start.count(call)
            first = call == saving[0] and number == 1
            complete = call == saving[-1] and number == saving.count(call)
            right = "before" if first else "after" if complete else "nothing"
            outcome = phone.outcome()
            tally.run(outcome == right, f"{what}: {outcome} instead of {right}")


# The module under the guard

def expect_kept(tally, phone, what, names=("before", "after")):
    """The history is one of these, with and without a call more, under the guard and alone."""
    listing = phone.listing("guard", "add", "2")
    kept = listing in [with_call(phone.known[name], 2) for name in names]
    tally.run(kept and phone.listing() == listing, f"{what}: {len(listing)} calls")


def fail_with_guard(tally, phone, call, first, last, faults, state=whole):
    for fault in faults:
        for what, done in injected(tally, phone, call, fault, ("guard", *ADD), first, last, state):
            told, found = re.match(r"(.*); (\d+) calls at the start", done.out).groups()
            if found != "400" and not told:
                tally.miss(f"{what}: {found} calls, and the guard says nothing")
            expect_kept(tally, phone, what)


def with_guard_save(tally, phone):
    for call, start, total in split_calls(phone, "guard"):
        if start < total:
            fail_with_guard(tally, phone, call, start + 1, None, errors_of(call))


def with_guard_start(tally, phone):
    for call, start, _ in split_calls(phone, "guard"):
        if start > 0:
            fail_with_guard(tally, phone, call, 1, start, errors_of(call))


def with_guard_put_back(tally, phone):
    """Starts that find the history damaged, and meet a fault on top."""
    for state in (cut, gone):
        for call, start, _ in split_calls(phone, "guard", state=state):
            faults = [fault for fault in errors_of(call) if "EIO" in fault]
            fail_with_guard(tally, phone, call, 1, start, faults, state)


def changing(calls):
    """Those at which a kill can find the files in a new state."""
    return sorted({call for call in calls if not re.match(r"read|p?read|.*stat", call)})


def killed_with_guard(tally, phone):
    for state in STATES:
        for call in changing(phone.calls("guard", *ADD, state=state)):
            for what, _ in injected(tally, phone, call, KILL, ("guard", *ADD), state=state):
                expect_kept(tally, phone, what)


# The power goes: of a file that was not synced, the bytes may be missing or zero, and a renamed
# file may stand under its old name again.

def unsynced(phone):
    """What the disk need not hold yet after the traced run: the files; and what the run did too
    early: its renames of such files, and those that no sync of the directory followed."""
    files, early, renamed = set(), [], []
    for call, arguments, result in re.findall(r"^(?:\d+ +)?(\w+)\((.*)\) += (\d+\S*)",
                                              phone.log.read_text(errors="replace"), re.M):
        opened = re.match(r"\d+<([^>]*)>", result if call.startswith("open") else arguments)
        path = opened and opened.group(1)
        if call.startswith("rename"):
            old, new = (str(phone.root / name) for name in re.findall(r'"([^"]*)"', arguments))
            renamed.append((old, new))
            if old in files:
                early.append((old, new))
                files.remove(old)
                files.add(new)
            else:
                files.discard(new)
        elif call in ("fsync", "fdatasync"):
            files.discard(path)
            if path == str(phone.data):
                renamed.clear()
        elif "write" in call or "O_TRUNC" in arguments or "O_CREAT" in arguments:
            files.add(path)
    return [Path(name) for name in files if Path(name).exists()], early, renamed


def empty(path):
    path.write_bytes(b"")


def zero(path):
    path.write_bytes(bytes(path.stat().st_size))


def power_cut(tally, phone):
    phone.calls(*ADD)
    for path in unsynced(phone)[0]:
        empty(path)
    tally.run(phone.outcome() == "nothing", "a save in place is synced: say so in the tables")

    words = ("guard", *ADD)
    for state in STATES:
        calls = changing(phone.calls(*words, state=state))
        left = unsynced(phone)
        tally.run(not any(left), f"{state.__name__}: left unsynced {left}")
        for call, damage in itertools.product(calls, (empty, zero)):
            for what, _ in injected(tally, phone, call, KILL, words, state=state, trace="all"):
                for path in unsynced(phone)[0]:
                    damage(path)
                expect_kept(tally, phone, f"{what}, {damage.__name__}")
    for fault in errors_of("fsync"):
        for what, _ in injected(tally, phone, "fsync", fault, words, trace="all"):
            early = unsynced(phone)[1]
            tally.run(not early, f"{what}: renamed before its bytes were safe: {early}")


# Files that are cut, or end in zeros

def cut_anywhere(tally, phone):
    size = phone.history.stat().st_size
    for length in range(0, size, 2003 * phone.step):
        for name, damage in itertools.product(NAMES[:2], ("cut", "zeros")):
            phone.reset()
            path = phone.data / name
            kept = path.read_bytes()[:length]
            path.write_bytes(kept if damage == "cut" else kept + bytes(size - length))
            what = f"{name}, {damage} at {length}"
            if name == NAMES[0]:
                outcome = phone.outcome()
                tally.run(outcome == "nothing", f"{what}, alone: {outcome}")
            expect_kept(tally, phone, what, ["before"])


# A disk without room

LONG = "x" * 8192  # the name of a call that makes the history grow


def limited(tally, phone):
    """No file may grow beyond a limit: the write at it is short, and the next one fails."""
    phone.reset()
    phone.run(*ADD)
    size = phone.history.stat().st_size
    for limit in [*range(0, size - 3, 4096 * phone.step), size - 3, size]:
        def prepare():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))
        phone.reset()
        phone.run(*ADD, prepare=prepare)
        right = "after" if limit == size else "nothing"
        outcome = phone.outcome()
        tally.run(outcome == right, f"files of {limit} bytes, alone: {outcome}")
        phone.reset()
        phone.run("guard", *ADD, prepare=prepare)
        expect_kept(tally, phone, f"files of {limit} bytes, guard")


def small(tally, phone):
    """A file system of its own, on which a ballast leaves so much room. It is full through two
    runs, in each of which the history would grow, and has room again then."""
    ballast = phone.root / "ballast"

    def leave(room):
        disk = os.statvfs(phone.root)
        with ballast.open("wb") as file:
            os.posix_fallocate(file.fileno(), 0, max(1, disk.f_bavail * disk.f_frsize - room))

    before = phone.known["before"]
    grown = with_call(before, 1, LONG)
    allowed = [before, grown, with_call(before, 2, LONG), with_call(grown, 2, LONG)]
    size = sum(path.stat().st_size for path in phone.prepared.iterdir())
    for room in range(0, size, len(LONG) * phone.step):
        phone.reset()
        leave(room)
        phone.run(*ADD, "long")
        ballast.unlink()
        right = [] if room < len(LONG) else grown
        tally.run(phone.listing() == right, f"{room} bytes of room, alone")
        for state in STATES:
            phone.reset()
            state(phone)
            leave(room)
            phone.run("guard", "add", "1", "long")
            phone.run("guard", "add", "2", "long")
            ballast.unlink()
            listing = phone.listing("guard")
            kept = listing in allowed and phone.listing() == listing
            tally.run(kept, f"{room} bytes of room, {state.__name__}: {len(listing)} calls")


def disk_full(tally, phone):
    limited(tally, phone)
    phone.reset()
    mount = ["mount", "-t", "tmpfs", "-o", "size=1m", "tmpfs", str(phone.root)]
    mounted = subprocess.run(mount, capture_output=True, text=True, check=False)
    if mounted.returncode != 0:
        print(f"only with RLIMIT_FSIZE, as no tmpfs can be mounted: "
              + mounted.stderr.partition("\n")[0])
        return
    print("with RLIMIT_FSIZE, and on a tmpfs of 1 MB")
    try:
        small(tally, phone)
    finally:
        subprocess.run(["umount", str(phone.root)], check=True)


def enter_mount_namespace():
    """So that the mount is nobody else's, and goes with this process."""
    unshare = ["unshare", "--mount", *([] if os.getuid() == 0 else ["--map-root-user"])]
    inside = "FAULTS_MOUNT_NAMESPACE"
    allowed = subprocess.run([*unshare, "true"], capture_output=True, check=False)
    if inside not in os.environ and allowed.returncode == 0:
        os.environ[inside] = "1"
        os.execvp("unshare", [*unshare, sys.executable, *sys.argv])


# Something else in the history's place

def directory_away(phone):
    phone.data.rename(phone.root / "away")


def file_for_directory(phone):
    directory_away(phone)
    phone.data.write_text("no directory")


def link_to_another_file(phone):
    phone.history.rename(phone.root / "elsewhere.xml")
    phone.history.symlink_to(phone.root / "elsewhere.xml")


def link_to_nothing(phone):
    phone.history.unlink()
    phone.history.symlink_to("nothing.xml")


def link_to_itself(phone):
    phone.history.unlink()
    phone.history.symlink_to(phone.history)


def link_to_device(phone):
    phone.history.unlink()
    phone.history.symlink_to("/dev/full")


def directory(phone):
    phone.history.unlink()
    phone.history.mkdir()


def fifo(phone):
    phone.history.unlink()
    os.mkfifo(phone.history)


# And what becomes of the history in a run that stores a call: alone, under the guard.
PATHS = [
    (directory_away, "before", "before"),
    (file_for_directory, "before", "before"),
    (link_to_another_file, "after", "after"),
    (link_to_nothing, "only the new call", "after"),
    (link_to_itself, "nothing", "after"),
    (link_to_device, "nothing", "after"),
    (directory, "nothing", "after"),
    (fifo, "waits", "after"),
]


def come_back(phone):
    away = phone.root / "away"
    if away.exists():
        remove(phone.data)
        away.rename(phone.data)


def paths(tally, phone):
    for make, alone, guarded in PATHS:
        phone.reset()
        make(phone)
        try:
            phone.run(*ADD, limit=2 if alone == "waits" else TIME_LIMIT)
            come_back(phone)
            outcome = phone.outcome()
        except subprocess.TimeoutExpired:
            outcome = "waits"
        tally.run(outcome == alone, f"{make.__name__}, alone: {outcome} instead of {alone}")
        phone.reset()
        make(phone)
        phone.run("guard", *ADD)
        come_back(phone)
        expect_kept(tally, phone, f"{make.__name__}, guard", [guarded])


GROUPS = {
    function.__name__: function
    for function in (save_in_place, load, killed_in_place, with_guard_save, with_guard_start,
                     with_guard_put_back, killed_with_guard, power_cut, cut_anywhere, disk_full,
                     paths)
}


def require_ptrace():
    try:
        done = subprocess.run(["strace", "-f", "-qq", "-e", "trace=none", "true"],
                              capture_output=True, text=True, check=False)
    except FileNotFoundError as missing:
        raise Broken("strace is not installed") from missing
    if done.returncode != 0:
        reason = done.stderr.partition("\n")[0]
        raise Broken(f"strace can inject no fault on this machine: {reason}")


def main(group, step, *program):
    if group == "disk_full":
        enter_mount_namespace()
    tally = Tally()
    try:
        require_ptrace()
        with tempfile.TemporaryDirectory() as directory_name:
            GROUPS[group](tally, Phone(int(step), program, Path(directory_name).resolve()))
    except Broken as reason:
        sys.exit(f"faults_{group}: {reason}")
    print(f"faults_{group}: {tally.runs} faulted runs, {tally.wrong} went wrong")
    sys.exit(1 if tally.wrong > 0 or tally.runs == 0 else 0)


if __name__ == "__main__":
    if len(sys.argv) < 4 or sys.argv[1] not in GROUPS or not sys.argv[2].isdigit():
        sys.exit(f"usage: faults.py {'|'.join(GROUPS)} N PROGRAM...")
    main(*sys.argv[1:])
