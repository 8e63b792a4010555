#!/usr/bin/env bash
# Installs the packages in a Debian that holds nothing else, with what they depend on, and plays the
# desktop phone's demonstration there. A minute or two, as root, from the machine's own mirror.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

install_missing debootstrap
"$top/package"
codename=$(sed -n 's/^VERSION_CODENAME=//p' /etc/os-release)
mirror=$(apt-get indextargets --format "\$(REPO_URI)" "Codename: $codename" | sort -u | head -1)
root=$(mktemp -d)
trap 'umount "$root/proc" || true; rm -rf --one-file-system "$root"' EXIT
chmod 755 "$root"
{
  debootstrap --variant=minbase "$codename" "$root" "$mirror"
  mount -t proc proc "$root/proc"
  cp "$top"/build/packages/*"_$(dpkg --print-architecture).deb" "$root/tmp"
  chroot "$root" sh -c 'DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends /tmp/*.deb'
} >"$top/build/packages/log" 2>&1 || { cat "$top/build/packages/log" >&2; exit 1; }
unmet=$(chroot "$root" sh -c 'ldd /usr/lib/*/libcalllog.so.1' | sed -n '/not found/p')
[ -z "$unmet" ] || { echo "$unmet" >&2; exit 1; }
"$top/tests/demo.sh" "$top/tests/scenario.expected" chroot "$root" deskphone
chroot "$root" deskphone --version
