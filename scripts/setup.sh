# Sourced by ./run, ./test and .ci/run: installs what is missing, configures and builds.

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

build_packages="g++ cmake ninja-build pkg-config tzdata ca-certificates libtinyxml-dev librapidxml-dev
  libtomlplusplus-dev libutf8proc-dev libedit-dev libbsd-dev libcli11-dev libcsv-dev libcurl4-openssl-dev
  libcpp-httplib-dev libssl-dev libgtest-dev"
test_packages="libxml2-utils binutils python3 strace"
check_packages="clang-14 clang-tidy-14 clang-format-14"

# Installs those of the named Debian packages that are missing, and says which.
install_missing() {
  local missing=() name
  for name in "$@"; do
    dpkg-query -W -f '${Status}' "$name" 2>/dev/null | grep -q 'ok installed' || missing+=("$name")
  done
  [ ${#missing[@]} -eq 0 ] && return
  echo "installing: ${missing[*]}" >&2
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  "${as_root[@]}" apt-get update -qq >&2
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >&2
}

# print_costs LIBRARY_PRESET TEST_PRESET: the library's size in one build, its stack and heap in another.
print_costs() {
  size "$top/build/$1/lib/libcalllog.so"
  ctest --test-dir "$top/build/$2" -R '^(Heap|Stack)Test' -V | sed -n 's/^[0-9]*:   //p'
}

# build PRESET [TARGET...]: configures once, builds what has changed; quiet unless it fails.
build() {
  local preset=$1 tree="$top/build/$1" log
  shift
  mkdir -p "$tree"
  log="$tree/build.log"
  {
    [ -f "$tree/build.ninja" ] || (cd "$top" && cmake --preset "$preset")
    cmake --build "$tree" ${1:+--target "$@"}
  } >"$log" 2>&1 || {
    cat "$log" >&2
    return 1
  }
}
