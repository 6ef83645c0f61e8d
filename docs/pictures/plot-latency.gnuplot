# data: latency.tsv
# From NET_SERVER_LiveStreamIn to the client, 16 clients.
set title "From the host's call to the client, 16 clients"
set ylabel "milliseconds"
set style data histograms
set style histogram clustered gap 1.2
set style fill solid 0.85 noborder
set xtics scale 0
set auto x
plot "latency.tsv" using "latency_p50_ms":xtic(1) lc rgb "#93c5fd" title "half of the frames", \
     "" using "latency_p99_ms" lc rgb "#1d4ed8" title "99 of 100 frames"
