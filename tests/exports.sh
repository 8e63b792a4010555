#!/bin/sh
# Compares what a library exports with the list that is kept: exports.sh LIBRARY LIST
set -eu
LC_ALL=C
export LC_ALL
nm --dynamic --defined-only --format=just-symbols --demangle "$1" | sort -u | diff -u "$2" -
