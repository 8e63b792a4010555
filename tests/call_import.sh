#!/bin/sh
# Call detail records brought in from the command line: call_import.sh RECORDS [EMULATOR...] DESKPHONE
set -eu
records=$1
shift
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export XDG_STATE_HOME="$work/state"

import() { # the exit status, what is printed, and the command
  status=$1 text=$2 actual=0
  shift 2
  "$@" --root "${root:-$work/root}" >"$work/out" 2>&1 || actual=$?
  [ "$actual" -eq "$status" ] && grep -q -e "$text" "$work/out" && return
  echo "status $actual, not $status with $text: $*"
  cat "$work/out"
  exit 1
}

import 0 '^  30 records: 4 outgoing, 4 missed, 4 received; 15 of others, 1 bad$' \
  "$@" cdr "$records" --extension 100
import 0 '^  12 calls brought in before$' "$@" cdr - --extension 100 <"$records"
rm "$work/root/config/data/imported_calls"
import 0 '^  12 calls brought in before$' "$@" cdr "$records" --extension 100
tail -1 "$records" | import 0 "^  1 record: " "$@" cdr - --extension 100
import 2 '^deskphone: no call of 999 is in .*; it has .*, ' "$@" cdr "$records" --extension 999
import 2 ':1: .* no row is a call record$' "$@" cdr "$0" --extension 100
import 2 '^deskphone: cannot read nothing: ' "$@" cdr nothing --extension 100

# Into the user's own phone, and saying so.
"$@" cdr "$records" --extension 100 2>&1 >/dev/null |
  grep -qx "bringing calls into the phone in $work/state/deskphone"

# A pipe that brings nothing more holds nobody up, and half an import is none.
mkfifo "$work/pipe"
"$@" cdr "$work/pipe" --extension 100 --root "$work/ended" >"$work/out" 2>&1 &
exec 3>"$work/pipe"
cat "$records" >&3
kill -TERM $!
status=0
wait $! || status=$?
exec 3>&-
[ "$status" -eq 1 ]
root=$work/ended
import 0 "4 missed" "$@" cdr "$records" --extension 100
