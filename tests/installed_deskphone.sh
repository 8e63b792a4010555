#!/bin/sh
# Installs the desktop phone alone, moves it elsewhere, and plays its demonstration there:
# installed_deskphone.sh BUILD_DIRECTORY EXPECTED [EMULATOR...]
set -eu
build=$1 expected=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --component deskphone --prefix "$work/first" >"$work/log"
mv "$work/first" "$work/moved"
"$(dirname "$0")/demo.sh" "$expected" "$@" "$work/moved/bin/deskphone"
