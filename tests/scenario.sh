#!/bin/sh
# Plays a script on the desktop phone and compares what it prints with what is kept:
# scenario.sh DEMO_DIRECTORY SCRIPT EXPECTED [EMULATOR...] DESKPHONE
set -eu
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
cd "$1"
script=$2 expected=$3
shift 3
"$@" --root "$root/phone" --profile profile.toml --log-server server --script "$script" \
  >"$root/out" 2>"$root/errors"
sed 's/127\.0\.0\.1:[0-9]*/127.0.0.1:PORT/; s/port [0-9]*/port PORT/' "$root/out" | diff -u "$expected" -
xmllint --noout "$root"/phone/config/data/*.xml
[ -z "$(ls -A "$root/phone/tmp")" ]

status=0
echo bogus | "$@" --root "$root/other" >"$root/out" 2>"$root/errors" || status=$?
[ "$status" -eq 2 ]
grep -q '^standard input:1: ' "$root/errors"
