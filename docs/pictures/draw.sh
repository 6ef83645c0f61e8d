#!/bin/sh
# Draws every picture of this folder into a directory: *.dot with Graphviz, plot-*.gnuplot with gnuplot.
#
#   docs/pictures/draw.sh DIRECTORY [FORMAT]      FORMAT: svg, or png to look at one
set -eu
here=$(cd "$(dirname "$0")" && pwd)
out=$(mkdir -p "$1" && cd "$1" && pwd)
format=${2:-svg}

for source in "$here"/*.dot; do
  sed -e "/^digraph .*{/r $here/style.gv" "$source" | dot "-T$format" -o "$out/$(basename "$source" .dot).$format"
done

# The figures stand in ../performance; a plot whose figures are not there yet is left out.
for source in "$here"/plot-*.gnuplot; do
  data=$(sed -n 's/^# data: *//p' "$source")
  [ -s "$here/../performance/$data" ] || continue
  (cd "$here/../performance" &&
    gnuplot -e "format='$format'; out='$out/$(basename "$source" .gnuplot).$format'" "$here/style.gnuplot" "$source")
done
