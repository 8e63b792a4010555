#!/bin/sh
# Installs the library with its headers, moves both elsewhere, and builds UI processes against them
# there: installed.sh BUILD_DIRECTORY CONSUMER_DIRECTORY CXX CXXFLAGS [EMULATOR...]
set -eu
build=$1 consumer=$2 compiler=$3 flags=$4
shift 4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for component in library headers; do
  cmake --install "$build" --component $component --prefix "$work/first" >>"$work/log"
done
mv "$work/first" "$work/moved"

PKG_CONFIG_PATH=$(dirname "$(find "$work/moved" -name calllog.pc)")
export PKG_CONFIG_PATH
{
  cmake -S "$consumer" -B "$work/build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_PREFIX_PATH="$work/moved" &&
    cmake --build "$work/build"
} >>"$work/log" 2>&1 || { cat "$work/log"; exit 1; }
"$@" "$work/build/smallest/user"
"$@" "$work/build/user_of_pkgconfig"
