# data: http.tsv
# HTTP requests, one a connection, for each second of the server's CPU.
set title "HTTP requests for each second of the server's CPU"
set xlabel "clients at once"
set ylabel "requests"
set logscale x 2
set xtics (1, 8, 64)
set xrange [0.8:80]
rows(what) = sprintf("< awk -F'\\t' '$1 == \"%s\"' http.tsv", what)
plot rows("file") using 2:3 with linespoints ls 1 title "a file of 10 kB", \
     rows("GetDeviceInfo") using 2:3 with linespoints ls 2 title "GetDeviceInfo"
