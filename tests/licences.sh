#!/bin/sh
# Every library that one of our files is linked to directly has its licence named: licences.sh COPYRIGHT FILE...
set -eu
copyright=$1
shift
for file; do
  readelf -d "$file" | sed -n 's/.*NEEDED.*\[\(.*\)\.so.*/\1/p' |
    grep -Ev '^(libc|libm|libstdc\+\+|libgcc_s|libasan|libubsan|ld-linux.*|libcalllog.*|libdeskplatform)$' |
    sed 's/\(-[0-9.]*\)$//' | while read -r library; do
    grep -Eq "^ +$library +[A-Z]|^ +$library +(zlib|curl)" "$copyright" ||
      { echo "$file is linked to $library, whose licence $copyright does not name" >&2; exit 1; }
  done
done
