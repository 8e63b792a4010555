#!/usr/bin/python3
"""What a user sees at a terminal: terminal.py [EMULATOR...] DESKPHONE

The screen is that of a terminal emulator, which the phone prints to and reads keys from."""
import fcntl
import os
import pty
import select
import struct
import sys
import tempfile
import termios
import time

import pyte

PHONE = sys.argv[1:]
LIMIT = 60  # seconds until something must be on the screen
ROWS, COLUMNS = 14, 60


class Terminal:
    def __init__(self, *options):
        self.screen = pyte.Screen(COLUMNS, ROWS)
        self.stream = pyte.ByteStream(self.screen)
        self.pid, self.fd = pty.fork()
        if self.pid == 0:
            os.environ.update(TERM="xterm", LANG="C")
            os.execvp(PHONE[0], [*PHONE, *options])
        self.resize(ROWS)

    def resize(self, rows):
        fcntl.ioctl(self.fd, termios.TIOCSWINSZ, struct.pack("HHHH", rows, COLUMNS, 0, 0))

    def lines(self):
        return [line.rstrip() for line in self.screen.display]

    def type(self, keys):
        os.write(self.fd, keys.encode())

    def expect(self, wanted):
        """Until `wanted`, rows below each other, is what the screen ends with."""
        end = time.monotonic() + LIMIT
        while "\n".join(self.lines()).rstrip().split("\n")[-len(wanted):] != wanted:
            if not select.select([self.fd], [], [], max(0, end - time.monotonic()))[0]:
                raise AssertionError("\n".join([*wanted, "does not come; there is", *self.lines()]))
            self.stream.feed(os.read(self.fd, 4096))

    def quit(self):
        self.type("\x15quit\n")
        assert os.waitstatus_to_exitcode(os.waitpid(self.pid, 0)[1]) == 0


def news_above_a_long_line(terminal):
    """A line of three rows, with its cursor in the second, and what is printed when the history is saved."""
    terminal.type("call missed 612\n")
    terminal.expect(["  * idle screen: 1 Missed, LED on, backlight on", "phone>"])
    text = "# " + "äöü 漢字 " * 14
    shown = ("phone> " + text.rstrip())
    terminal.type(text + "\x1b[D" * 40)
    terminal.expect(["  * history saved: 268 bytes", *wrapped(shown)])
    terminal.type("X")
    terminal.expect(wrapped(shown[:-39] + "X" + shown[-39:]))


def wrapped(text):
    """As a terminal of that width shows it."""
    rows, width = [""], 0
    for letter in text:
        wide = 2 if letter in "漢字" else 1
        if width + wide > COLUMNS:
            rows.append("")
            width = 0
        rows[-1] += letter
        width += wide
    return [row.rstrip() for row in rows]


def words_that_tab_completes(terminal):
    terminal.type("hang\t")
    terminal.expect(["phone> hangup"])
    terminal.type("\x15list \t")
    terminal.expect(["all        forwarded  missed     outgoing   received", "phone> list"])
    terminal.type("m\t")
    terminal.expect(["phone> list missed"])


def a_screen_at_a_time(terminal):
    terminal.type("help\n")
    terminal.expect(["-- more; q ends --"])
    assert terminal.lines()[0].startswith("  calls"), terminal.lines()
    terminal.type(" ")
    terminal.expect(['  Words with blanks go into quotes: name="Anna Berg".', "phone>"])
    terminal.type("help\n")
    terminal.expect(["-- more; q ends --"])
    terminal.type("\x03idle\n")  # Ctrl-C ends what is shown, not the phone
    terminal.expect(["    LED on   backlight on", "phone>"])


def a_terminal_too_small_for_the_line(terminal):
    terminal.type("x" * 200)
    terminal.expect(wrapped("phone> " + "x" * 200))
    terminal.resize(1)
    terminal.type("y\x15last\n")
    terminal.expect(["  last in 612, last out none", "phone>"])
    terminal.resize(ROWS)


with tempfile.TemporaryDirectory() as place:
    phone = Terminal("--root", place + "/root")
    phone.expect(['"help" lists the commands; "quit" leaves.', "phone>"])
    for test in news_above_a_long_line, words_that_tab_completes, a_screen_at_a_time, \
            a_terminal_too_small_for_the_line:
        print(test.__name__, flush=True)
        test(phone)
        phone.type("\x15")
    phone.quit()
