#!/bin/bash
# Runs every benchmark of an optimised build and prints one table. The figures of each run stay in build/bench/*.tsv.
#
#   Bench/run.sh [build directory]      BENCH_SECONDS=8: how long each load runs
set -euo pipefail

ROOT=$(cd "$(dirname "$0")/.." && pwd)
BIN=${1:-$ROOT/build/release}/Bench
OUT=$ROOT/build/bench
SECONDS_EACH=${BENCH_SECONDS:-8}
FPS=25
HOST_PID=

if [ ! -x "$BIN/netserver-bench-host" ]; then
    echo "run.sh: no benchmarks in $BIN; 'make bench' builds and runs them" >&2
    exit 1
fi
if ! command -v ffmpeg >/dev/null; then
    echo "run.sh: ffmpeg is missing; 'make deps' installs it" >&2
    exit 1
fi

mkdir -p "$OUT"
rm -f "$OUT"/*.tsv

stop_host() {
    if [ -n "$HOST_PID" ]; then
        kill "$HOST_PID" 2>/dev/null || true
        wait "$HOST_PID" 2>/dev/null || true
        HOST_PID=
    fi
}
trap stop_host EXIT

# make_file FILE SIZE BITRATE NOISE: ten seconds of a moving test picture, one slice a frame, the same every time.
make_file() {
    [ -s "$1" ] && return
    ffmpeg -hide_banner -loglevel error -y -f lavfi \
        -i "testsrc2=size=$2:rate=$FPS,noise=alls=$4:allf=t:all_seed=7" -t 10 -pix_fmt yuv420p \
        -c:v libx264 -preset veryfast -threads 1 -b:v "$3" -maxrate "$3" -bufsize "$3" -g 50 -bf 0 -sc_threshold 0 \
        -x264-params "slices=1:sliced-threads=0" -f h264 "$1.part"
    mv "$1.part" "$1"
}

# free_port FIRST: a TCP port of 127.0.0.1 that nothing answers on.
free_port() {
    local port=$1
    while (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; do
        port=$((port + 1))
    done
    echo "$port"
}

# start_host FILE [OPTION...]: sets HOST_PID, HTTP_PORT and RTSP_PORT.
start_host() {
    stop_host
    HTTP_PORT=$(free_port 18080)
    RTSP_PORT=$(free_port 18554)
    local file=$1
    shift
    "$BIN/netserver-bench-host" --file "$file" --fps $FPS --http-port "$HTTP_PORT" --rtsp-port "$RTSP_PORT" \
        --no-rtsp-auth "$@" >"$OUT/host.out" 2>"$OUT/host.log" &
    HOST_PID=$!
    for _ in $(seq 100); do
        grep -q '^ready ' "$OUT/host.out" && return
        kill -0 "$HOST_PID" 2>/dev/null || break
        sleep 0.1
    done
    echo "the bench host did not start:" >&2
    tail -5 "$OUT/host.log" >&2
    exit 1
}

# load NAME MODE [OPTION...]
load() {
    local name=$1 mode=$2
    shift 2
    echo "  $name" >&2
    "$BIN/netserver-bench-rtspload" --mode "$mode" --port "$RTSP_PORT" --fps $FPS --seconds "$SECONDS_EACH" \
        --server-pid "$HOST_PID" "$@" >"$OUT/$name.tsv"
}

# bare NAME WAY CLIENTS PACKETS
bare() {
    echo "  $1" >&2
    "$BIN/netserver-bench-bareloop" --way "$2" --clients "$3" --packets "$4" --fps $FPS --seconds "$SECONDS_EACH" \
        >"$OUT/$1.tsv"
}

# http NAME PATH CLIENTS
http() {
    echo "  $1" >&2
    "$BIN/netserver-bench-httpload" --port "$HTTP_PORT" --path "$2" --clients "$3" --basic YWRtaW46YWRtaW4= \
        --seconds 3 --server-pid "$HOST_PID" >"$OUT/$1.tsv"
}

# bare_http NAME BYTES CLIENTS: the HTTP load against a loop that accepts, reads, sends and closes.
bare_http() {
    stop_host
    "$BIN/netserver-bench-bareloop" --way http --bytes "$2" >"$OUT/host.out" &
    HOST_PID=$!
    until grep -q '^ready ' "$OUT/host.out"; do
        kill -0 "$HOST_PID"
        sleep 0.1
    done
    HTTP_PORT=$(sed -n 's/^ready port=//p' "$OUT/host.out")
    http "$1" / "$3"
    stop_host
}

# figure NAME FIGURE: one value of a run.
figure() {
    awk -F'\t' -v name="$2" '$1 == name {print $2; found = 1} END {exit !found}' "$OUT/$1.tsv"
}

# answer_bytes NAME: how long the answers of an HTTP run were.
answer_bytes() {
    figure "$1" answer_bytes | cut -d. -f1
}

# ratio A B
ratio() {
    awk -v a="$1" -v b="$2" 'BEGIN {printf "%.2f", (b > 0) ? a / b : 0}'
}

# row TEXT VALUE [NOTE]
row() {
    printf '%-58s %12s  %s\n' "$1" "$2" "${3:-}"
}

# What the run is made with, for those who read its figures.
printf 'seconds\t%s\nload_average\t%s\n' "$SECONDS_EACH" "$(cut -d' ' -f1 /proc/loadavg)" >"$OUT/run.tsv"

VIDEO=$OUT/video-4m.h264
SMALL=$OUT/video-64k.h264
make_file "$VIDEO" 1280x720 4M 40
make_file "$SMALL" 320x180 64k 0

echo "running (about seven minutes):" >&2
start_host "$VIDEO"
for transport in tcp udp; do
    for clients in 1 16 64 128; do
        load "$transport-$clients" load --transport $transport --clients $clients
    done
    packets=$(figure $transport-128 packets_per_frame | awk '{printf "%d", $1 + 0.5}')
    if [ $transport = tcp ]; then
        bare bare-tcp-send tcp-send 128 "$packets"
        bare bare-tcp-sendmsg tcp-sendmsg 128 "$packets"
    else
        bare bare-udp-sendto udp-sendto 128 "$packets"
        bare bare-udp-gso udp-gso 128 "$packets"
    fi
done
load stalled stalled --clients 16
for clients in 1 8 64; do
    http http-file-$clients /f10k.html $clients
    http http-deviceinfo-$clients /GetDeviceInfo $clients
done
for what in file deviceinfo; do
    bare_http bare-http-$what "$(answer_bytes http-$what-8)" 8
done
start_host "$VIDEO" --stamp
load latency-tcp latency --transport tcp --clients 16
load latency-udp latency --transport udp --clients 16
for transport in tcp udp; do
    start_host "$SMALL"
    load memory-$transport memory --transport $transport --idle 2000 --clients 500
done
start_host "$SMALL"
echo "  http-mix" >&2
"$BIN/netserver-bench-httpload" --port "$HTTP_PORT" --mix --clients 64 --basic YWRtaW46YWRtaW4= \
    --seconds "${BENCH_MIX_SECONDS:-60}" --server-pid "$HOST_PID" >"$OUT/http-mix.tsv"
stop_host
echo "  alarm push" >&2
"$BIN/netserver-bench-alarmpush" >"$OUT/alarmpush.tsv"
echo "  camera" >&2
"$ROOT/Bench/camera.sh" "${BIN%/Bench}" >"$OUT/camera.tsv"
echo "  micro" >&2
"$BIN/netserver-bench-micro" --benchmark_format=csv 2>/dev/null | tr ',' '\t' >"$OUT/micro.tsv"
"$BIN/netserver-bench-micro-api" --benchmark_format=csv 2>/dev/null | tr ',' '\t' >"$OUT/micro-api.tsv"
echo "  onvif" >&2
"$BIN/netserver-bench-onvif" --mode logins --count 200 >"$OUT/onvif-logins.tsv"
"$BIN/netserver-bench-onvif" --mode clients --clients 64 --seconds 30 >"$OUT/onvif-clients.tsv"
echo "  events" >&2
"$BIN/netserver-bench-eventload" --mode push --cameras 100 --seconds 10 >"$OUT/events-push.tsv"
"$BIN/netserver-bench-eventload" --mode pull --cameras 64 --seconds 10 >"$OUT/events-pull.tsv"

{
    row "Server CPU for each packet of a 4 Mbit/s stream, us" "" ""
    for transport in tcp udp; do
        for clients in 1 16 64 128; do
            run=$transport-$clients
            row "  $transport, $clients clients" "$(figure $run cpu_us_per_packet)" \
                "lost $(figure $run lost_packets | cut -d. -f1) of $(figure $run packets | cut -d. -f1), frames missing $(figure $run missing_frames | cut -d. -f1)"
        done
    done
    for way in tcp-send tcp-sendmsg udp-sendto udp-gso; do
        row "  bare loop, 128 clients, $way" "$(figure bare-$way cpu_us_per_packet)"
    done
    row "  tcp against one send a packet" \
        "$(ratio "$(figure tcp-128 cpu_us_per_packet)" "$(figure bare-tcp-send cpu_us_per_packet)")" "goal 0.6"
    row "  udp against one sendto a packet" \
        "$(ratio "$(figure udp-128 cpu_us_per_packet)" "$(figure bare-udp-sendto cpu_us_per_packet)")" "goal 0.9"
    row "Frame from the host's call to 16 idle clients, ms" "" ""
    for transport in tcp udp; do
        row "  $transport, p50" "$(figure latency-$transport latency_p50_ms)"
        row "  $transport, p99" "$(figure latency-$transport latency_p99_ms)" "goal 2"
    done
    row "Memory with 2000 idle connections and 500 playing, kB" "" ""
    for transport in tcp udp; do
        row "  $transport, for each idle connection" "$(figure memory-$transport kb_per_idle_connection)" \
            "goal 16; answered at the end: $(figure memory-$transport idle_answered_at_the_end | cut -d. -f1)"
        row "  $transport, for each playing client" "$(figure memory-$transport kb_per_playing_client)" \
            "goal 40; lost $(figure memory-$transport lost_packets | cut -d. -f1) of $(figure memory-$transport packets | cut -d. -f1)"
    done
    row "Beside a shut window and a DESCRIBE that waits, 16 clients" "" ""
    row "  packets lost and frames missing" \
        "$(figure stalled lost_packets | cut -d. -f1), $(figure stalled missing_frames | cut -d. -f1)" "goal 0, 0"
    row "  longest time between two packets, ms" "$(figure stalled longest_gap_ms)" "a frame every $(figure stalled frame_period_ms | cut -d. -f1)"
    row "HTTP, one request a connection: requests a CPU second, p99 ms" "" ""
    for what in file deviceinfo; do
        for clients in 1 8 64; do
            run=http-$what-$clients
            row "  $what, $clients clients" "$(figure $run requests_per_cpu_second | cut -d. -f1)" \
                "p99 $(figure $run p99_ms), failed $(figure $run failed | cut -d. -f1), goal $([ $what = file ] && echo 25000 || echo 15000)"
        done
        row "  $what, bare loop of as many bytes, 8 clients" "$(figure bare-http-$what requests_per_cpu_second | cut -d. -f1)"
    done
    row "Mixed reads and writes of the API, 64 clients" "" ""
    row "  p99, ms" "$(figure http-mix p99_ms)" \
        "goal 50; failed $(figure http-mix failed | cut -d. -f1) of $(figure http-mix requests | cut -d. -f1)"
    row "  memory grown, kB" "$(figure http-mix server_grown_kb | cut -d. -f1)" \
        "of $(figure http-mix server_kb | cut -d. -f1)"
    row "Report of an alarm, p50 of the host's time, ms" "$(figure alarmpush p50_ms)" "goal 2"
    row "Request of the API without sockets, CPU us" "" ""
    awk -F'\t' '$1 ~ /^"Ask\// {gsub(/"/, "", $1); sub(/^Ask\//, "", $1)
        printf "  %-56s %12.1f  %.0f allocations, %.0f bytes\n", $1, $4 / 1000, $11, $12}' "$OUT/micro-api.tsv"
    row "ONVIF client against a camera on loopback" "" ""
    row "  login, ms" "$(figure onvif-logins login_ms_median)" "goal 5"
    row "  login, us of the client's CPU" "$(figure onvif-logins login_cpu_us_median)" "goal 1000"
    row "  move, us of the client's CPU" "$(figure onvif-logins move_cpu_us_median)"
    row "  200 logins, kB of growth" "$(figure onvif-logins resident_kb_growth)" "goal 0"
    row "  64 clients for 30 s: errors" "$(figure onvif-clients errors | cut -d. -f1)" \
        "of $(figure onvif-clients rounds | cut -d. -f1) rounds; growth in the second half, kB: $(awk -v a="$(figure onvif-clients resident_kb_end)" -v b="$(figure onvif-clients resident_kb_half)" 'BEGIN {print a - b}')"
    row "  40 kB of profiles parsed and read, us" "$(awk -F'\t' '$1 ~ /ReadProfiles/ {printf "%.0f", $3 / 1000}' "$OUT/micro.tsv")" "goal 2000"
    row "Motion from a camera to the host, p99 ms" "" ""
    row "  pushed, 100 cameras" "$(figure events-push p99_ms)" "goal 350; $(figure events-push cpu_us_per_event) us of CPU an event"
    row "  pulled, 64 cameras" "$(figure events-pull p99_ms)" "goal 700; $(figure events-pull cpu_cores) cores, goal 0.25"
    row "The reference camera, recording, with motion detection and a client" "" ""
    row "  cores" "$(figure camera camera_cores)" "goal 1; $(figure camera camera_kb) kB"
    row "Packetiser alone, ns a packet" "" ""
    awk -F'\t' 'NR > 1 && $7 > 0 {gsub(/"/, "", $1); printf "  %-56s %12.0f\n", $1, 1e9 / $7}' "$OUT/micro.tsv"
} | tee "$OUT/table.txt"
