#!/usr/bin/env bash
# Runs every fuzz target for so many seconds (default 30), one per core at a time, or only those
# named behind: ./test fuzz [SECONDS [TARGET...]]. New inputs are kept in build/fuzz/corpus/TARGET,
# findings in build/fuzz/findings. A line per target; exit status 1 on any finding.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"
seconds=${1:-30}
shift || true
targets=(history sources server_list time_stamp click_action key_pad call_records script)
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
    script) echo 2048 ;;
    *) echo 256 ;;
  esac
}

# Inputs that stand elsewhere in the tree.
more_seeds() {
  case $1 in
    server_list) echo "$top/host/demo/server" ;;
    *) ;;
  esac
}

# run TARGET: the summary line on standard output; for a finding also its stack and its input.
run() {
  local target=$1 corpus=$tree/corpus/$1 log=$tree/$1.log status=0
  mkdir -p "$corpus"
  TMPDIR=$work ASAN_OPTIONS=detect_stack_use_after_return=1 \
    "$tree/bin/fuzz_$target" -max_total_time="$seconds" -max_len="$(max_len "$target")" \
    -timeout=10 -rss_limit_mb=1024 -dict="$fuzz/$target.dict" -print_final_stats=1 \
    -artifact_prefix="$tree/findings/$target-" \
    "$corpus" "$fuzz/seeds/$target" $(more_seeds "$target") >"$log" 2>&1 || status=$?
  awk -v target="$target" '
    /^Done/ || /^#/ { for (i = 1; i < NF; ++i) { if ($i == "cov:") cov = $(i + 1); if ($i == "corp:") corp = $(i + 1) } }
    /^#/ { runs = substr($1, 2) }
    /^Done/ { runs = $2; seconds = $5 }
    END { printf "%-13s %9d runs  %5s s  coverage %5d  corpus %s\n", target, runs, seconds ? seconds : "-", cov, corp }' "$log"
  [ "$status" -eq 0 ] && return
  printf '%s: a finding\n' "$target"
  grep -aE -A40 '^==[0-9]+==? ?ERROR|runtime error:|Failure$|ALARM' "$log" | head -60
  grep -a 'Test unit written to' "$log"
  return 1
}
export -f run max_len more_seeds
export tree fuzz top seconds work
printf '%s\n' "${targets[@]}" | xargs -P "$(nproc)" -I{} bash -c 'run {}' || { echo "findings in $tree/findings"; exit 1; }
