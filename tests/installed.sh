#!/bin/sh
# Installs the library and builds a UI process against it, once through CMake's find_package and once
# through pkg-config: installed.sh BUILD_DIRECTORY SOURCE_DIRECTORY CXX CXXFLAGS [EMULATOR...]
set -eu
build=$1 source=$2 compiler=$3 flags=$4
shift 4
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$build" --prefix "$work/usr" >"$work/log"
cmake -S "$source" -B "$work/build" -G Ninja -DCMAKE_CXX_COMPILER="$compiler" \
  -DCMAKE_CXX_FLAGS="$flags" -DCMAKE_PREFIX_PATH="$work/usr" >>"$work/log"
cmake --build "$work/build" >>"$work/log" || { cat "$work/log"; exit 1; }
"$@" "$work/build/user"

PKG_CONFIG_PATH=$(dirname "$(find "$work/usr" -name calllog.pc)")
export PKG_CONFIG_PATH
"$compiler" $flags -std=c++17 "$source/main.cpp" -o "$work/user" \
  $(pkg-config --cflags --libs calllog) -Wl,-rpath,"$(pkg-config --variable=libdir calllog)"
"$@" "$work/user"
