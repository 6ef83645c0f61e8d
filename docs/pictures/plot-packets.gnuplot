# data: packets.tsv
# Server CPU for each packet of a stream, by the number of clients.
set title "Server CPU for each packet of a 4 Mbit/s stream"
set xlabel "clients"
set ylabel "microseconds a packet"
set logscale x 2
set xtics (1, 16, 64, 128)
set xrange [0.8:160]
bare(way) = real(system(sprintf("awk -F'\\t' -v way=%s '$1 == way {print $2}' bare.tsv", way)))
rows(transport) = sprintf("< awk -F'\\t' '$1 == \"%s\"' packets.tsv", transport)
plot rows("tcp") using 2:3 with linespoints ls 1 title "TCP", \
     rows("udp") using 2:3 with linespoints ls 2 title "UDP", \
     bare("tcp-send") with lines ls 3 title "bare loop, one send a packet", \
     bare("udp-sendto") with lines ls 4 title "bare loop, one sendto a packet"
