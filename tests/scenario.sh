#!/bin/sh
# Plays a script on the desktop phone and compares what it prints with what is kept:
# scenario.sh DESKPHONE DEMO_DIRECTORY SCRIPT EXPECTED
set -eu
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
cd "$2"
"$1" --root "$root/phone" --profile profile.toml --script "$3" >"$root/out" 2>"$root/errors"
diff -u "$4" "$root/out"
xmllint --noout "$root/phone/config/data/call_data.xml"
