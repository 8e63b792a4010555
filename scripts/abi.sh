#!/usr/bin/env bash
# Compares the library's binary interface (what it exports, and the layout of the records) with that
# of the last version, which tests/abi/ keeps for x86-64. Any difference fails: abi.sh
# At a release, or with the change that raises the first or second number of the version, this one is
# kept instead: abi.sh keep
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

install_missing $build_packages abigail-tools
build default calllog
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
version=$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$top/build/default/CMakeCache.txt")
kept=$(echo "$top"/tests/abi/calllog-*.abi)
last=$(basename "$kept" .abi) last=${last#calllog-}

# The exported functions, the records, and what these are made of; nothing that the library holds
# inside. abidiff does not look at what stands in a list, so each list gets an item as its member.
item="<data-member layout-offset-in-bits='192'><var-decl name='item' type-id='\\1'/></data-member>"
cat >"$work/public" <<'END'
[suppress_type]
  source_location_not_regexp = (CallLog[A-Za-z]*|basic_string|stl_list|list|string)\.h$
  drop = yes
END
abidw --headers-dir "$top/include" --drop-private-types --exported-interfaces-only \
  --suppressions "$work/public" --drop-undefined-syms --no-elf-needed --no-show-locs \
  --no-comp-dir-path --no-corpus-path --no-parameter-names --no-write-default-sizes \
  "$top/build/default/lib/libcalllog.so" |
  sed -e "s|$top/||" -e '/<member-function/{:next;/<\/member-function>/!{N;b next};/elf-symbol-id/!d}' \
    -e "/<member-type/{N;N;s|name='value_type' type-id='\([^']*\)'.*|&$item|}" >"$work/new.abi"

number='' change='' unchanged=''
if ! abidiff --no-added-syms "$kept" "$work/new.abi" >"$work/difference"; then
  number=first change="programs built for $last would not run" unchanged=${last%%.*}
elif ! abidiff "$kept" "$work/new.abi" >"$work/difference"; then
  number=second change="something was added to $last" unchanged=${last%.*}
fi

if [ "${1:-}" = keep ] && [[ -z $number || $version. != $unchanged.* ]]; then
  rm "$kept"
  cp "$work/new.abi" "$top/tests/abi/calllog-$version.abi"
elif [ -n "$number" ]; then
  cat "$work/difference"
  echo "$change: raise the $number number of the version (it is $version), then ./test abi keep" >&2
  exit 1
fi
