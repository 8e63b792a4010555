#!/usr/bin/env bash
# Builds everything for a phone's processor and runs the whole suite there, under QEMU, for each of
# the targets named: armhf, aarch64; both without a name. It prints what the library costs there.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/cross.sh"

tests_of() { ctest --test-dir "$top/build/$1" -N | sed -n 's/^ *Test *#[0-9]*: //p'; }

[ $# -gt 0 ] || set -- armhf aarch64
install_missing $build_packages $test_packages
build default
for target in "$@"; do
  prepare_target "$target"
  build "$target"
  diff <(tests_of default) <(tests_of "$target") || { echo "the suites differ" >&2 && exit 1; }
  ctest --test-dir "$top/build/$target" --output-on-failure --parallel "$(nproc)"
  print_costs "$target" "$target"
  text=$(size "$top/build/$target/lib/libcalllog.so" | awk 'NR == 2 { print $1 }')
  [ "$target" != armhf ] || [ "$text" -le $((68 * 1024)) ] || { echo "the library is beyond 68 KB" >&2 && exit 1; }
done
