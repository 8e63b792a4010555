#!/usr/bin/env bash
# Runs every fuzz target for so many seconds (default 30), one per core at a time, or only those
# named behind: ./test fuzz [SECONDS [TARGET...]]. New inputs are kept in build/fuzz/corpus/TARGET,
# findings in build/fuzz/findings. FUZZ_SEED=N makes up the same inputs each time. A line per target;
# exit status 1 on any finding.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
seconds=${1:-30}
shift || true
targets=(history sources server_list time_stamp click_action key_pad call_records)
[ $# -eq 0 ] || targets=("$@")

install_missing $build_packages $check_packages libclang-rt-14-dev libxml2-dev
build fuzz fuzz_targets
fuzz=$top/tests/fuzz
tree=$top/build/fuzz
mkdir -p "$tree/findings"
work=$(mktemp -d "$([ -w /dev/shm ] && echo /dev/shm || echo /tmp)/fuzz-XXXXXX")
trap 'rm -rf "$work"' EXIT

# Longest input of a target, in bytes: enough to reach its limits, small enough to be fast.
max_len() {
  case $1 in
    history | sources | server_list | call_records) echo 8192 ;;
    *) echo 256 ;;
  esac
}

# Inputs that stand elsewhere in the tree.
more_seeds() {
  case $1 in
    server_list) echo "$top/desktop/demo/server" ;;
    *) ;;
  esac
}

# What the log of TARGET says of its finding: the check or the sanitizer's word, the places in this
# tree, and the input.
explain() {
  grep -aE "runtime error:|ERROR: |: Failure$|^Expected|^    Which is:|^ +#.* $top/" "$tree/$1.log" |
    cut -c1-300 | head -40
  sed -n 's/.*Test unit written to /input: /p' "$tree/$1.log" | head -1
}

summary() {
  awk -v target="$1" '
    /^#/ { runs = substr($1, 2) }
    /^Done/ { runs = $2; seconds = $5 }
    /^#/ { for (i = 1; i < NF; ++i) { if ($i == "cov:") cov = $(i + 1); if ($i == "corp:") corpus = $(i + 1) } }
    END { printf "%-13s %9d runs %5s s   coverage %5d   corpus %s\n", target, runs, seconds ? seconds : "-", cov, corpus ? corpus : "-" }
  ' "$tree/$1.log"
}

run() {
  local corpus=$tree/corpus/$1 status=0
  mkdir -p "$corpus"
  TMPDIR=$work "$tree/bin/fuzz_$1" -max_total_time="$seconds" -seed="${FUZZ_SEED:-0}" -max_len="$(max_len "$1")" \
    -timeout=10 -rss_limit_mb=1024 -dict="$fuzz/$1.dict" -artifact_prefix="$tree/findings/$1-" \
    "$corpus" "$fuzz/seeds/$1" $(more_seeds "$1") >"$tree/$1.log" 2>&1 || status=$?
  local text
  text=$(summary "$1")
  [ "$status" -eq 0 ] || text+=$(printf '\n%s: a finding, see %s\n' "$1" "$tree/$1.log"; explain "$1")
  printf '%s\n' "$text"  # at once: others print, too
  return "$status"
}
export -f run max_len more_seeds summary explain
export tree fuzz top seconds work
printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I{} bash -c 'run {} || exit 1' || exit 1
