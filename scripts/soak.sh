#!/usr/bin/env bash
# A desk phone's life of a million calls, or of as many as are named, compared with a plain model of
# it all the way: soak.sh [CALLS | keep]. A few minutes. The memory that it took becomes a picture,
# build/default/soak.svg; "keep" puts that of the million into docs/.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/setup.sh"

install_missing $build_packages gnuplot-nox
build default calllog_soak
tree="$top/build/default"
picture="$tree/soak.svg"
calls=${1:-1000000}
[ "$calls" != keep ] || { calls=1000000 picture="$top/docs/soak.svg"; }

# What the allocator holds back for a thread would count as memory in use.
GLIBC_TUNABLES=glibc.malloc.tcache_count=0 "$tree/bin/calllog_soak" "$calls" "$tree/soak.csv"

# No background, and colours that are read on white and on black.
gnuplot >"$picture" <<END
set terminal svg size 720,300 font "sans-serif,12" noenhanced
set datafile separator ","
set border 3 linecolor rgb "#888888"
set tics nomirror textcolor rgb "#888888"
set key outside top center horizontal textcolor rgb "#888888"
set xlabel "thousand calls" textcolor rgb "#888888"
set ylabel "MB" textcolor rgb "#888888"
set yrange [0:*]
plot "$tree/soak.csv" using (\$1 / 1e3):(\$4 / 1e6) with lines lw 2 lc rgb "#3d8bfd" title "resident", \\
     "" using (\$1 / 1e3):(\$2 / 1e6) with lines lw 2 lc rgb "#d9822b" title "heap in use", \\
     "" using (\$1 / 1e3):(\$3 / 1e6) with lines lw 2 lc rgb "#2fa36b" title "heap in use, emptied"
END
echo "picture: $picture"
