# data: events.tsv
# From a camera's event to the host's observer.
set title "From a camera's event to the host's observer"
set ylabel "milliseconds"
set style data histograms
set style histogram clustered gap 1.2
set style fill solid 0.85 noborder
set xtics scale 0
set auto x
plot "events.tsv" using "p50_ms":xtic(1) lc rgb "#93c5fd" title "half of the events", \
     "" using "p99_ms" lc rgb "#1d4ed8" title "99 of 100 events"
