#!/usr/bin/env bash
# The desktop phone's scenario under valgrind. Fails on any error, and on any memory that is not freed
# at the end. A few seconds.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

install_missing $build_packages valgrind
build default deskphone
root=$(mktemp -d)
trap 'rm -rf "$root"' EXIT
cd "$top/desktop/demo"
valgrind --leak-check=full --show-leak-kinds=all --errors-for-leak-kinds=all --error-exitcode=1 \
  "$top/build/default/bin/deskphone" --root "$root" --profile profile.toml --log-server server \
  --script scenario.phone >/dev/null
