#!/usr/bin/env bash
# Builds everything for a phone's processor and runs the whole suite there, under QEMU, for each of
# the targets named: armhf, aarch64; both without a name. It prints what the library costs there.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

# make_sysroot TARGET ARCHITECTURE: Debian's libraries for it, in a directory of their own. The
# machine's packages and its list of architectures stay as they are.
make_sysroot() {
  local sysroot="$top/build/sysroot-$1" packages apt link
  packages=$(printf '%s\n' $build_packages | grep '^lib')
  [ "$(cat "$sysroot/packages" 2>/dev/null)" != "$packages" ] || return 0
  echo "laying out $sysroot" >&2
  rm -rf "$sysroot"
  apt=$(mktemp -d)
  mkdir -p "$sysroot" "$apt/lists/partial" "$apt/archives/partial"
  touch "$apt/status"
  cat >"$apt/apt.conf" <<EOF
APT { Architecture "$2"; Architectures "$2"; Sandbox::User "root"; };
Dir { State "$apt"; State::status "$apt/status"; Cache "$apt"; };
EOF
  # A source that has nothing for this architecture is no harm; what is missing then is named below.
  APT_CONFIG="$apt/apt.conf" apt-get update -qq >&2 || true
  APT_CONFIG="$apt/apt.conf" apt-get install -y -qq --no-install-recommends --download-only \
    $packages >&2
  printf '%s\0' "$apt"/archives/*.deb | xargs -0 -I{} dpkg-deb -x {} "$sysroot"
  find "$sysroot" -type l -lname '/*' -printf '%l\0%p\0' |
    while IFS= read -rd '' to && IFS= read -rd '' link; do ln -snf "$sysroot$to" "$link"; done
  rm -rf "$apt"
  echo "$packages" >"$sysroot/packages"
}

tests_of() { ctest --test-dir "$top/build/$1" -N | sed -n 's/^ *Test *#[0-9]*: //p'; }

[ $# -gt 0 ] || set -- armhf aarch64
install_missing $build_packages $test_packages qemu-user
build default
for target in "$@"; do
  case $target in
    armhf) architecture=armhf triplet=arm-linux-gnueabihf ;;
    aarch64) architecture=arm64 triplet=aarch64-linux-gnu ;;
    *) echo "arm.sh: no target \"$target\"; there are armhf and aarch64" >&2 && exit 2 ;;
  esac
  install_missing "g++-$triplet"
  make_sysroot "$target" "$architecture"
  build "$target"
  diff <(tests_of default) <(tests_of "$target") || { echo "the suites differ" >&2 && exit 1; }
  ctest --test-dir "$top/build/$target" --output-on-failure --parallel "$(nproc)"
  print_costs "$target" "$target"
done
