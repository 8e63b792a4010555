# Sourced by what builds for a phone's processor: its compiler, and Debian's libraries for it.
# shellcheck shell=bash
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

# unpack_into SYSROOT PACKAGE_FILE
unpack_into() {
  local name control file
  control=$(mktemp -d)
  dpkg-deb -x "$2" "$1"
  dpkg-deb -e "$2" "$control"
  name=$1/dpkg/info/$(dpkg-deb -f "$2" Package):$(dpkg-deb -f "$2" Architecture)
  dpkg-deb --fsys-tarfile "$2" | tar -t | sed "s|^\.|$1|; s|/$||" >"$name.list"
  for file in symbols shlibs; do
    [ ! -f "$control/$file" ] || cp "$control/$file" "$name.$file"
  done
  { sed '1a Status: install ok installed' "$control/control"; echo; } >>"$1/dpkg/status"
  rm -r "$control"
}

# make_sysroot TARGET ARCHITECTURE: Debian's libraries for it, in a directory of their own. The
# machine's packages and its list of architectures stay as they are. What dpkg knows of an installed
# package is laid out, too, in $sysroot/dpkg: which library is whose tells dependencies.
make_sysroot() {
  local sysroot="$top/build/sysroot-$1" packages apt deb to link
  packages=$(printf '%s\n' $build_packages | grep '^lib')
  [ "$(cat "$sysroot/contents" 2>/dev/null)" != "$packages" ] || return 0
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
  mkdir -p "$sysroot/dpkg/info"
  echo 1 >"$sysroot/dpkg/info/format" # its names hold the architecture
  for deb in "$apt"/archives/*.deb; do unpack_into "$sysroot" "$deb"; done
  find "$sysroot" -type l -lname '/*' -printf '%l\0%p\0' |
    while IFS= read -rd '' to && IFS= read -rd '' link; do ln -snf "$sysroot$to" "$link"; done
  rm -rf "$apt"
  echo "$packages" >"$sysroot/contents"
}

# prepare_target TARGET: all that build TARGET needs.
prepare_target() {
  local architecture triplet
  case $1 in
    armhf) architecture=armhf triplet=arm-linux-gnueabihf ;;
    aarch64) architecture=arm64 triplet=aarch64-linux-gnu ;;
    *) echo "no target \"$1\"; there are armhf and aarch64" >&2 && return 2 ;;
  esac
  install_missing $build_packages $test_packages qemu-user "g++-$triplet"
  make_sysroot "$1" "$architecture"
}
