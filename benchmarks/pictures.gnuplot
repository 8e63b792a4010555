# gnuplot -c pictures.gnuplot DIRECTORY: the pictures of the points that report.py has left there. No
# background, and colours that are read on white and on black.
cd ARG1
set datafile separator "\t"
set border 3 linecolor rgb "#888888"
set tics nomirror textcolor rgb "#888888"
set key outside bottom center horizontal textcolor rgb "#888888"
set format "%.8g"
set linetype 1 lw 2 lc rgb "#3d8bfd"
set linetype 2 lw 2 lc rgb "#d9822b"
set linetype 3 lw 2 lc rgb "#2fa36b"
set linetype 4 lw 2 lc rgb "#b05fd6"

set terminal svg size 720,260 font "sans-serif,12" noenhanced
set output "overview.svg"
set logscale x
unset mxtics
set xlabel "µs" textcolor rgb "#888888"
set yrange [6.5:-0.5]
set grid ytics linecolor rgb "#888888"
set tics scale 0
plot "overview.dat" using 2:0:ytic(1) with points pt 7 ps 0.9 lt 2 title columnheader(2), \
  "" using 3:0 with points pt 6 ps 1.3 lt 3 title columnheader(3), \
  "" using 4:0 with points pt 7 ps 0.9 lt 1 title columnheader(4)

set terminal svg size 720,420 font "sans-serif,12" noenhanced
unset grid
set tics scale 1
unset logscale x
set ylabel "µs" textcolor rgb "#888888"
set yrange [*:*]
set logscale y
do for [name in "records hits"] {
  set output name.".svg"
  set xlabel name textcolor rgb "#888888"
  stats name.".dat" skip 1 nooutput
  plot for [i = 2:STATS_columns] name.".dat" using 1:i with linespoints pt 7 ps 0.4 title columnheader(i)
}
