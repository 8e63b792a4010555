# Sourced by ./run, ./test and .ci/run: installs what is missing, configures and builds.

top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

build_packages="g++ cmake ninja-build pkg-config tzdata ca-certificates libtinyxml-dev librapidxml-dev
  libtomlplusplus-dev libutf8proc-dev libedit-dev libbsd-dev libcli11-dev libcsv-dev libcurl4-openssl-dev
  libcpp-httplib-dev libssl-dev libgtest-dev"
test_packages="libxml2-utils binutils python3 python3-pyte strace"
check_packages="clang-14 clang-tidy-14 clang-format-14"

# quietly TITLE COMMAND...: shows the last line that the command printed at a terminal, the title
# alone without one, and everything when it fails.
quietly() {
  local title=$1 log
  log=$(mktemp)
  shift
  [ -t 2 ] || echo "$title" >&2
  "$@" 2>&1 | tee "$log" | show_last_line "$title" || {
    cat "$log" >&2
    rm "$log"
    return 1
  }
  rm "$log"
}

show_last_line() {
  local line width
  [ -t 2 ] || { cat >/dev/null; return; }
  width=$(($(tput cols 2>/dev/null || echo 80) - 1))
  while IFS= read -r line; do printf '\r\033[K%.*s' "$width" "$1: $line" >&2; done
  printf '\r\033[K' >&2
}

# Installs those of the named Debian packages that are missing, and says which.
install_missing() {
  local missing=() as_root=() name
  for name in "$@"; do
    dpkg-query -W -f '${Status}' "$name" 2>/dev/null | grep -q 'ok installed' || missing+=("$name")
  done
  [ ${#missing[@]} -eq 0 ] && return
  if [ "$(id -u)" -ne 0 ]; then
    as_root=(sudo)
    command -v sudo >/dev/null || { echo "first, as root: apt-get install ${missing[*]}" >&2; return 1; }
  fi
  echo "installing ${missing[*]}" >&2
  quietly "asking for Debian's packages" "${as_root[@]}" apt-get update -q
  quietly "installing, a minute or two" "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -q --no-install-recommends "${missing[@]}"
}

# print_costs LIBRARY_PRESET TEST_PRESET: the library's size in one build, its stack and heap in another.
print_costs() {
  size "$top/build/$1/lib/libcalllog.so"
  ctest --test-dir "$top/build/$2" -R '^(Heap|Stack)Test' -V | sed -n 's/^[0-9]*:   //p'
}

# build PRESET [TARGET...]: configures once, builds what has changed; quiet unless it fails.
build() {
  local preset=$1 tree="$top/build/$1" title="building"
  shift
  if [ ! -f "$tree/build.ninja" ]; then
    title="building for the first time, ${build_takes:-a minute or two}"
    (cd "$top" && quietly "configuring" cmake --preset "$preset")
  fi
  quietly "$title" cmake --build "$tree" ${1:+--target "$@"}
}
