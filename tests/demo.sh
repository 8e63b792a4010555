#!/bin/sh
# Plays the demonstration that an installed desktop phone brings along, and compares what it prints
# with what is kept: demo.sh EXPECTED [EMULATOR...] DESKPHONE
set -eu
expected=$1
shift
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
"$@" --demo --root "$root/phone" </dev/null >"$root/out" 2>"$root/errors" || { cat "$root/errors"; exit 1; }
sed 's/127\.0\.0\.1:[0-9]*/127.0.0.1:PORT/; s/port [0-9]*/port PORT/' "$root/out" | diff -u "$expected" -
