# The look that all plots share; draw.sh reads it first and sets `format` and `out`.
if (format eq "png") { set terminal pngcairo size 760,420 font "Helvetica,12" background rgb "white" } \
else { set terminal svg size 760,420 dynamic font "Helvetica,Arial,sans-serif,14" background rgb "white" }
set output out
set datafile separator "\t"
set border 3 lc rgb "#64748b"
set grid ytics lc rgb "#e2e8f0" lt 1
set tics nomirror textcolor rgb "#334155"
set key outside bottom center horizontal textcolor rgb "#0f172a"
set title textcolor rgb "#0f172a"
set style line 1 lc rgb "#1d4ed8" lw 2.5 pt 7 ps 0.7
set style line 2 lc rgb "#b45309" lw 2.5 pt 5 ps 0.7
set style line 3 lc rgb "#1d4ed8" lw 1.5 dt 2
set style line 4 lc rgb "#b45309" lw 1.5 dt 2
set yrange [0:*]
