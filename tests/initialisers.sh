#!/bin/sh
# When the library is loaded, nothing of its own may run. What does is <iostream>, which TinyXML's
# header brings into each source that includes it: initialisers.sh OBJECT...
set -eu
used=$(readelf --wide --relocs "$@" |
  awk '/^Relocation section/ { startup = /\.(text\.startup|init_array)/ } startup && / R_/ { print $5 }' |
  sort -u)
iostream='_ZNSt8ios_base4Init[CD]1Ev|_ZStL8__ioinit|__dso_handle|__(cxa|aeabi)_atexit'
echo "$used" | grep -qE "$iostream"
others=$(echo "$used" | grep -vE "^($iostream|_GLOBAL_.*|\.text\.startup|\.bss)$") || exit 0
echo "used by static initialisers:"
echo "$others" | c++filt
exit 1
