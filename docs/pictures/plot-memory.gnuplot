# data: memory.tsv
# Memory of the server for each connection.
set title "Memory for each of 2000 idle and 500 playing clients"
set ylabel "kB"
set style data histograms
set style histogram clustered gap 1.2
set style fill solid 0.85 noborder
set xtics scale 0
set auto x
plot "memory.tsv" using "kb_per_idle_connection":xtic(1) lc rgb "#93c5fd" title "idle connection", \
     "" using "kb_per_playing_client" lc rgb "#1d4ed8" title "playing client"
