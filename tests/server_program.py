#!/usr/bin/env python3
"""The program's log server: whom it lets in, and where its password comes from.

server_program.py [EMULATOR...] DESKPHONE"""
import base64
import fcntl
import os
import pty
import re
import resource
import select
import signal
import socket
import subprocess
import sys
import tempfile
import termios
import time
import urllib.error
import urllib.request
from pathlib import Path

REFUSED = {
    ("--password", "secret"): "a password without --user would let everybody in",
    ("--user", "", "--password", "secret"): "a password without --user would let everybody in",
    ("--password-file", "password"): "a password without --user would let everybody in",
    ("--user", "anna"): "no password for anna: name a --password-file",
    ("--user", "anna", "--password", ""): "no password for anna: name a --password-file",
    ("--user", "anna", "--password", "secret", "--password-file", "password"):
        "two passwords: leave out one of the options",
    ("--user", "anna", "--password-file", "none"): "cannot read none: No such file or directory",
    ("--user", "anna", "--password-file", "empty"): "empty: no password in its first line",
    ("--user", "anna", "--password-file", "/dev/zero"): "/dev/zero: no password in its first line",
    ("--user", "anna", "--password-file", "cut"): "cut: no password in its first line",
    ("--user", "anna", "--password-file", "documents"): "cannot read documents: Is a directory",
    ("--user", "an:na", "--password", "secret"): 'a user cannot hold ":": it ends there',
}
WELCOME = r"call logs on (http://127\.0\.0\.1:(\d+)/)"


def status_of(url, password):
    request = urllib.request.Request(url + "Missed")
    if password is not None:
        request.add_header("Authorization", "Basic " + base64.b64encode(f"anna:{password}".encode()).decode())
    try:
        return urllib.request.urlopen(request, timeout=30).status
    except urllib.error.HTTPError as error:
        return error.code


def expect(what, found, expected):
    if found != expected:
        sys.exit(f"{what}: {found!r} instead of {expected!r}")


def check_refusals(program):
    for options, reason in REFUSED.items():
        ended = subprocess.run([*program, *options], stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60)
        expect(options, (ended.returncode, ended.stdout, ended.stderr), (1, "", f"deskphone: {reason}\n"))
    for port in "99999", "-1", "abc":
        ended = subprocess.run([*program, "--port", port], capture_output=True, text=True, timeout=60)
        expect(port, ended.stderr, f"deskphone: --port: Value {port} not in range 0 to 65535\n")


def check_serving(program, user, options, statuses):
    server = subprocess.Popen([*program, *options], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
    url, port = re.match(WELCOME, server.stdout.readline()).groups()
    expect(options, server.stdout.readline(), f"source 0 name=Missed server=127.0.0.1/Missed port={port}" + (f" user={user} password=\n" if user else "\n"))
    for password, status in statuses.items():
        expect((options, password), status_of(url, password), status)
    server.terminate()
    expect(options, server.wait(timeout=60), 0)


def read_until(terminal, pattern):
    shown = ""
    while not re.search(pattern, shown):
        shown += os.read(terminal, 1000).decode()
    return shown


def check_question(program):
    child, terminal = pty.fork()
    if child == 0:
        os.execvp(program[0], [*program, "--user", "anna"])
    shown = read_until(terminal, "password of anna: ")
    os.write(terminal, b"secret\n")
    shown += read_until(terminal, WELCOME + r"\s")
    expect("what a terminal shows", "secret" in shown, False)
    expect("after the question", status_of(re.search(WELCOME, shown)[1], "secret"), 200)
    os.kill(child, signal.SIGTERM)
    os.waitpid(child, 0)


def own_terminal():
    fcntl.ioctl(0, termios.TIOCSCTTY, 0)
    signal.signal(signal.SIGINT, signal.SIG_DFL)  # whoever runs the test may ignore it


def check_interrupted_question(program):
    """Ctrl-C ends the question, and the terminal shows again what is typed."""
    master, slave = pty.openpty()
    before = termios.tcgetattr(slave)
    asked = subprocess.Popen([*program, "--user", "anna"], stdin=slave, stdout=slave, stderr=slave,
                             start_new_session=True, preexec_fn=own_terminal)
    read_until(master, "password of anna: ")
    end = time.monotonic() + 60
    while asked.poll() is None and time.monotonic() < end:  # one before it reads is for nobody
        os.write(master, b"sec\x03")
        select.select([master], [], [], 0.1)
    expect("after Ctrl-C", asked.wait(timeout=1), -signal.SIGINT)
    expect("the terminal's modes", termios.tcgetattr(slave), before)
    os.close(master)
    os.close(slave)


def check_long_requests(program):
    """Neither a long path nor a large body costs the server more than it is worth."""
    server = subprocess.Popen(program, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True,
                              preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_STACK, (1 << 20, 1 << 20)))
    url = re.match(WELCOME, server.stdout.readline())[1]
    address = ("127.0.0.1", int(url.rsplit(":", 1)[1].strip("/")))
    for head, status in (f"GET /{'a' * 8100} HTTP/1.1\r\n\r\n", 404), (f"POST /Missed HTTP/1.1\r\nContent-Length: {1 << 30}\r\n\r\n", 405):
        with socket.create_connection(address, timeout=60) as client:
            client.sendall(head.encode())
            expect(head[:20], client.recv(100).split()[1], str(status).encode())
    expect("after them", status_of(url, None), 200)
    server.terminate()
    expect("its end", server.wait(timeout=60), 0)


with tempfile.TemporaryDirectory() as directory:
    os.chdir(directory)
    Path("documents").mkdir()
    Path("documents/Missed").write_text("<Missed/>")
    Path("password").write_text("secret\r\nnot this\n")
    Path("empty").write_text("\nsecret\n")
    Path("cut").write_bytes(b"sec\0ret\n")
    program = [*sys.argv[1:], "server", "documents"]
    check_refusals(program)
    check_serving(program, "", [], {None: 200})
    check_serving(program, "anna", ["--user", "anna", "--password-file", "password"],
                  {None: 401, "": 401, "Secret": 401, "secret": 200})
    check_serving(program, '"an na"', ["--user", "an na", "--password", "p"], {None: 401})
    check_serving(program, "anna", ["--user", "anna", "--password", "p:w"], {"p:w": 200, "": 401})
    check_question(program)
    check_interrupted_question(program)
    check_long_requests(program)
