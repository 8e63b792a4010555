#!/bin/sh
# Installs the library and builds a UI process against it, once through CMake's find_package and once
# through pkg-config: installed.sh BUILD_DIRECTORY SOURCE_DIRECTORY CXX CXXFLAGS
set -eu
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cmake --install "$1" --prefix "$work/usr" >"$work/log"
cmake -S "$2" -B "$work/build" -G Ninja -DCMAKE_CXX_COMPILER="$3" -DCMAKE_CXX_FLAGS="$4" \
  -DCMAKE_PREFIX_PATH="$work/usr" >>"$work/log"
cmake --build "$work/build" >>"$work/log" || { cat "$work/log"; exit 1; }
"$work/build/user"

PKG_CONFIG_PATH=$(dirname "$(find "$work/usr" -name calllog.pc)")
export PKG_CONFIG_PATH
"$3" $4 -std=c++17 "$2/main.cpp" -o "$work/user" $(pkg-config --cflags --libs calllog) \
  -Wl,-rpath,"$(pkg-config --variable=libdir calllog)"
"$work/user"
