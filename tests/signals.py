#!/usr/bin/env python3
"""What ends, stops and continues the phone: signals.py [EMULATOR...] DESKPHONE

The phone runs under a shell with job control on a pseudo-terminal, as a user has it, or reads a
script. Whatever ends it, its calls are saved, nothing is left locked or lying about, and the
terminal is as it was."""
import fcntl
import os
import pty
import select
import shlex
import signal
import subprocess
import sys
import tempfile
import termios
import time
from pathlib import Path

PHONE = sys.argv[1:]
LIMIT = 60  # seconds until something must have been printed, or have ended
PROMPT = "phone> "
HELD = "/com.broadsoft.xsi-actions/v2.0/user/anna@example.org/directories/CallLogs/Missed"


def within_limit(wait):
    """Waits with `wait`; the whole test fails when that takes too long."""
    signal.alarm(LIMIT)
    result = wait()
    signal.alarm(0)
    return result


class Pty:
    """The side of a terminal on which its user is."""

    def __init__(self, fd):
        self.fd = fd
        self.text = ""

    def type(self, text):
        os.write(self.fd, text.encode())

    def expect(self, wanted):
        """Reads until `wanted` has come, and forgets what came up to it, which is returned."""
        end = time.monotonic() + LIMIT
        while wanted not in self.text:
            if not select.select([self.fd], [], [], max(0, end - time.monotonic()))[0]:
                raise AssertionError(f"{wanted!r} does not come; there is {self.text!r}")
            self.text += os.read(self.fd, 4096).decode(errors="replace")
        before, self.text = self.text.split(wanted, 1)
        return before

    def say(self, line, *answers):
        """Types a line, and waits for what it brings and the next prompt."""
        self.type(line + "\n")
        for answer in (*answers, PROMPT):
            self.expect(answer)

    def call(self, number):
        self.say(f"call missed {number}", "idle screen")

    def modes(self):
        return termios.tcgetattr(self.fd)


class Desk:
    """A root, with what must hold of it once its phone has ended."""

    def __init__(self, directory):
        self.root = Path(directory) / "root"
        self.documents = Path(directory) / "documents"
        self.documents.mkdir()
        (self.documents / "Missed.xml").write_text("<CallLogs></CallLogs>" + " " * 1000)

    def command(self, *options):
        return [*PHONE, "--root", str(self.root), *options]

    def check(self, *calls):
        """The phone ends, if it has not yet, with these calls saved and nothing left behind."""
        with open(self.root / "lock") as lock:
            within_limit(lambda: fcntl.flock(lock, fcntl.LOCK_EX))
        history = (self.root / "config/data/call_data.xml").read_text()
        assert history.count("<item ") == len(calls), history
        for call in calls:
            assert f'remote_sip_name="{call}"' in history, history
        assert not list((self.root / "tmp").iterdir())


class Shell(Pty):
    """A shell that leaves the terminal's modes to its programs."""

    def __init__(self):
        self.pid, fd = pty.fork()
        if self.pid == 0:
            os.execve("/bin/sh", ["sh", "-i"], {**os.environ, "PS1": "sh> ", "ENV": "", "TERM": "dumb"})
        super().__init__(fd)
        self.expect("sh> ")
        self.before = self.modes()

    def start(self, command):
        self.type(shlex.join(command) + "\n")
        self.expect("leaves.")
        self.expect(PROMPT)
        assert self.modes() != self.before
        self.phone = os.tcgetpgrp(self.fd)

    def stop(self):
        self.type("\x1a")
        self.expect("sh> ")

    def kill(self, number):
        os.killpg(self.phone, number)

    def ends(self):
        self.expect("sh> ")
        assert self.modes() == self.before
        self.type("echo status=$?\n")
        self.expect("status=$?")
        self.expect("status=0\r\n")

    def close(self):
        os.close(self.fd)
        within_limit(lambda: os.waitpid(self.pid, 0))


def alone(command, **streams):
    """A phone on a terminal of its own, whose other side is the terminal returned."""
    master, slave = pty.openpty()
    phone = subprocess.Popen(command, **{"stdin": slave, "stdout": slave, "stderr": slave, **streams}, start_new_session=True)
    terminal = Pty(master)
    terminal.slave = slave
    return phone, terminal


def at_the_prompt(desk, shell):
    calls = []
    for end in (lambda: shell.type("\x03"), lambda: shell.kill(signal.SIGTERM), lambda: shell.kill(signal.SIGHUP),
                lambda: shell.type("quit\n"), lambda: shell.type("\x04")):
        shell.start(desk.command())
        calls.append(f"61{len(calls)}")
        shell.call(calls[-1])
        for secret in "source 0 user=anna password=s3cret", "sorce 0 'Password'=s3cret":
            shell.say(secret, secret + "\r\n")
        end()
        shell.ends()
        desk.check(*calls)
        commands = (desk.root / "commands").read_text()
        assert f"call missed {calls[-1]}\n" in commands and "s3cret" not in commands, commands


def during_a_wait(desk, shell):
    """Ctrl-C ends the wait, and Ctrl-Z stops the phone in it; the other two end the phone."""
    shell.start(desk.command("--log-server", str(desk.documents)))
    for command in f"misbehave {HELD} stall", "call missed 612", "server 0":
        shell.say(command)
    for command in "wait 1h", "await":
        shell.type(command + "\n")
        shell.expect(command + "\r\n")
        shell.type("\x03")
        shell.expect("the wait was interrupted")
        shell.expect(PROMPT)
    shell.type("await\n")
    shell.expect("await\r\n")
    shell.stop()
    assert shell.modes() == shell.before
    shell.type("fg\n")
    shell.expect("fg\r\n")
    shell.kill(signal.SIGTERM)
    shell.ends()
    desk.check("612")


def stopped_and_continued(desk, shell):
    shell.start(desk.command())
    shell.type("call mis")
    shell.expect("call mis")
    shell.stop()
    assert shell.modes() == shell.before
    shell.type("fg\n")
    shell.expect(PROMPT + "call mis")
    # A stop that cannot be caught, after which somebody else's modes are in force.
    editing = shell.modes()
    shell.kill(signal.SIGSTOP)
    shell.expect("sh> ")
    termios.tcsetattr(shell.fd, termios.TCSANOW, shell.before)
    shell.type("fg\n")
    shell.expect(PROMPT + "call mis")
    assert shell.modes() == editing
    shell.say("sed 612", "idle screen: 1 Missed")
    shell.type("\x03")
    shell.ends()
    desk.check("612")


def hung_up(desk, shell):
    """The terminal goes; its shell is told, and tells the phone."""
    shell.start(desk.command())
    shell.call("612")
    shell.close()
    desk.check("612")


def without_a_word(desk):
    """The terminal goes, and nobody sends a signal."""
    phone, terminal = alone(desk.command())
    os.close(terminal.slave)
    terminal.expect(PROMPT)
    terminal.call("612")
    os.close(terminal.fd)
    assert phone.wait(LIMIT) == 0
    desk.check("612")


def in_a_script(desk):
    """A script that waits for its next line, of which half is there, or for a transfer."""
    talk = f"misbehave {HELD} stall\ncall missed 61\n server 0\n"
    calls = []
    for number in signal.SIGINT, signal.SIGTERM, signal.SIGHUP:
        for rest in "call missed 999", "await\n":
            calls.append(f"61{len(calls)}")
            phone, terminal = alone(desk.command("--log-server", str(desk.documents)), stdin=subprocess.PIPE)
            os.close(terminal.slave)
            phone.stdin.write((talk.replace(" 61", f" {calls[-1]}") + rest).encode())
            phone.stdin.flush()
            terminal.expect("downloading")
            phone.send_signal(number)
            assert phone.wait(LIMIT) == 1
            phone.stdin.close()
            os.close(terminal.fd)
            desk.check(*calls)


def in_the_background(desk, shell):
    """A phone that is stopped ends when it goes on, and leaves the terminal to whoever has it."""
    shell.type(shlex.join(desk.command()) + " &\n")
    shell.expect("sh> ")
    shell.type("fg\n")
    shell.expect(PROMPT)
    shell.phone = os.tcgetpgrp(shell.fd)
    shell.say("idle", "LED off")
    shell.type("quit\n")
    shell.ends()
    shell.start(desk.command())
    shell.stop()
    shell.type("bg\n")
    shell.expect("sh> ")
    shell.type("fg\n")
    shell.expect("fg\r\n")
    shell.say("idl\x08le", "LED off")  # which the phone edits, not the terminal
    assert shell.modes() != shell.before
    shell.type("quit\n")
    shell.ends()
    for number in signal.SIGTERM, signal.SIGHUP:
        shell.start(desk.command())
        shell.call(f"61{number}")
        shell.stop()
        if number == signal.SIGTERM:
            shell.type("bg\n")
            shell.expect("sh> ")
            shell.kill(number)
        else:
            shell.kill(number)
            shell.kill(signal.SIGCONT)
        with open(desk.root / "lock") as lock:
            within_limit(lambda: fcntl.flock(lock, fcntl.LOCK_EX))
        shell.type("\n")
        shell.expect("sh> ")
    desk.check("6115", "611")


def with_its_output_stopped(desk):
    """Ctrl-S holds what the phone prints; it ends all the same."""
    for number in signal.SIGTERM, signal.SIGHUP, signal.SIGQUIT:
        phone, terminal = alone(desk.command(), stderr=subprocess.DEVNULL)
        terminal.expect(PROMPT)
        terminal.call(f"61{number}")
        termios.tcflow(terminal.slave, termios.TCOOFF)
        terminal.type("idle\n")
        phone.send_signal(number)
        assert phone.wait(LIMIT) == 0
        termios.tcflow(terminal.slave, termios.TCOON)
        os.close(terminal.fd)
        os.close(terminal.slave)
    desk.check("6115", "611", "613")


def to_nobody(desk):
    """Whoever reads what the phone prints goes away."""
    phone = subprocess.Popen(desk.command(), stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    phone.stdin.write(b"call missed 612\n" + b"help\n" * 100)
    phone.stdin.flush()
    phone.stdout.close()
    phone.stdin.write(b"call missed 613\n")
    phone.stdin.close()
    assert phone.wait(LIMIT) == 0
    desk.check("612", "613")


for test in at_the_prompt, during_a_wait, stopped_and_continued, hung_up, without_a_word, in_a_script, to_nobody, in_the_background, \
        with_its_output_stopped:
    print(test.__name__, flush=True)
    with tempfile.TemporaryDirectory() as place:
        if "shell" not in test.__code__.co_varnames[:test.__code__.co_argcount]:
            test(Desk(place))
            continue
        user = Shell()
        test(Desk(place), user)
        if test is not hung_up:
            user.close()
