#!/usr/bin/env bash
# What a release must pass beside .ci/run: the checks that take too long for every change. About an
# hour.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

./test clang
./test package
./test soak
./test fuzz 600
./bench keep
./test abi keep
