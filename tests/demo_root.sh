#!/bin/sh
# The demonstration leaves the user's own phone alone, and nothing behind:
# demo_root.sh [EMULATOR...] DESKPHONE
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
state=$work/state
own=$state/deskphone
export XDG_STATE_HOME="$state" TMPDIR="$work/tmp"
mkdir "$TMPDIR"

phone() { "$@" >"$work/out" 2>"$work/errors"; }
fail() { echo "$1"; cat "$work/errors"; exit 1; }
kept() { cmp "$work/before" "$own/config/data/call_data.xml"; }
refused() { # what is refused, in one line, and the command
  what=$1 status=0
  shift
  phone "$@" </dev/null || status=$?
  [ "$status" -eq 1 ] || fail "$what: exit status $status"
  [ "$(grep -c '^deskphone: cannot use ' "$work/errors") $(wc -l <"$work/errors")" = "1 1" ] || fail "$what"
  kept
}

echo 'call missed 612' | phone "$@"
cp "$own/config/data/call_data.xml" "$work/before"
phone "$@" --demo </dev/null || fail "the demonstration does not run"
grep -q '^phone> remove all all$' "$work/out"
kept
[ "$(ls "$state" "$TMPDIR")" = "$(printf '%s:\ndeskphone\n\n%s:' "$state" "$TMPDIR")" ]

# A scenario that waits for its next line ends with a signal, and the directory with it. It stands
# beside the program: this is a copy of both.
for program; do :; done
mkdir "$work/bin"
cp "$program" "$work/bin"
cp -rL "$(dirname "$program")/../share" "$work"
scenario=$work/share/calllog/scenario.phone
rm "$scenario"
mkfifo "$scenario"
${*%"$program"} "$work/bin/$(basename "$program")" --demo </dev/null >"$work/out" 2>"$work/errors" &
exec 3>"$scenario"
[ -n "$(ls "$TMPDIR")" ]
kill -TERM $!
status=0
wait $! || status=$?
exec 3>&-
[ "$status" -eq 1 ] || fail "a signal: exit status $status"
[ -z "$(ls "$TMPDIR")" ]

ln -s "$own" "$work/link"
ln -s "$own" "$own-demo"
mkdir "$work/inside"
ln -s "$own/config" "$work/inside/config"
cd "$state"
for root in "$own" "$own/" "$state/./other/../deskphone" deskphone "$work/link" "$work/inside"; do
  refused "$root" "$@" --demo --root "$root"
  refused "$root" "$@" --demo --root "$root" --script -
done
refused "its own root, a link" "$@" --demo --script -

# A root with a history is no place for the scenario, but for a script of the user's.
echo 'call missed 612' | phone "$@" --root "$work/other"
refused "a root with a history" "$@" --demo --root "$work/other"
echo 'list' | phone "$@" --demo --root "$work/other" --script -
grep -q 'all: 1 call' "$work/out"

# A pipe or a file on standard input is run in a phone of the demonstration's that goes with it; one
# that holds nothing plays the scenario, as a closed one does.
rm "$own-demo"
runs_list() {
  [ "$(grep -c '^phone> list$' "$work/out")" -eq 1 ] && grep -q '^  all: [1-9]' "$work/out" || fail "commands"
}
plays() { grep -q '^phone> remove all all$' "$work/out" || fail "the scenario does not play"; }
echo list >"$work/commands"
phone "$@" --demo <"$work/commands" && runs_list
cat "$work/commands" | phone "$@" --demo && runs_list
true | phone "$@" --demo && plays
phone "$@" --demo <&- && plays
[ -z "$(ls "$TMPDIR")" ] && [ ! -e "$own-demo" ]
