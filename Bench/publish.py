"""Turns the output of a benchmark run into the tables of figures that the documents show.

Reads build/bench/*.tsv, which run.sh leaves there, writes docs/performance/*.tsv, and has the tables of
docs/performance.md written and the plots drawn anew. A run that is missing, or lacks a figure, ends it with the figures as they were.

usage: publish.py [BENCH_OUTPUT [DATA]]      build/bench docs/performance
"""

import csv
import os
import pathlib
import platform
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
sys.path.insert(0, str(ROOT / "docs" / "performance"))
import tables  # noqa: E402  (it stands beside the data)

LOADS = (1, 16, 64, 128)
HTTP_CLIENTS = (1, 8, 64)

# Data file: names of its key columns, figures of its other columns, and for each row its keys and the run it is of.
PLAIN = {
    "packets": (("transport", "clients"), ("cpu_us_per_packet", "packets", "lost_packets", "missing_frames"),
                [((way, clients), f"{way}-{clients}") for way in ("tcp", "udp") for clients in LOADS]),
    "bare": (("way",), ("cpu_us_per_packet",),
             [((way,), f"bare-{way}") for way in ("tcp-send", "tcp-sendmsg", "udp-sendto", "udp-gso")]),
    "latency": (("transport",), ("latency_p50_ms", "latency_p99_ms", "latency_max_ms", "stamped_frames"),
                [(("TCP",), "latency-tcp"), (("UDP",), "latency-udp")]),
    "memory": (("transport",), ("kb_per_idle_connection", "kb_per_playing_client", "idle_connections",
                                "playing_clients", "lost_packets", "idle_answered_at_the_end"),
               [(("TCP",), "memory-tcp"), (("UDP",), "memory-udp")]),
    "stalled": ((), ("lost_packets", "missing_frames", "longest_gap_ms", "frame_period_ms"), [((), "stalled")]),
    "http": (("what", "clients"), ("requests_per_cpu_second", "p99_ms", "failed"),
             [((what, clients), f"http-{run}-{clients}") for what, run in (("file", "file"),
                                                                          ("GetDeviceInfo", "deviceinfo"))
              for clients in HTTP_CLIENTS]
             + [(("bare loop, as many bytes as the file", 8), "bare-http-file"),
                (("bare loop, as many bytes as GetDeviceInfo", 8), "bare-http-deviceinfo")]),
    "mix": ((), ("requests", "failed", "p50_ms", "p99_ms", "server_kb", "server_grown_kb"), [((), "http-mix")]),
    "alarm": ((), ("pushes", "bytes", "p50_ms", "p99_ms"), [((), "alarmpush")]),
    "events": (("way",), ("cameras", "p50_ms", "p99_ms", "max_ms", "cpu_us_per_event", "cpu_cores"),
               [(("pushed",), "events-push"), (("pulled",), "events-pull")]),
    "logins": ((), ("login_ms_median", "login_cpu_us_median", "move_cpu_us_median", "resident_kb_growth"),
               [((), "onvif-logins")]),
    "clients": ((), ("rounds", "errors", "resident_kb_half", "resident_kb_end"), [((), "onvif-clients")]),
    "camera": ((), ("camera_cores", "camera_kb"), [((), "camera")]),
}


def figures(path):
    """The `name<TAB>value` lines of a run."""
    if not path.exists():
        raise SystemExit(f"publish.py: {path} is not there: run Bench/run.sh to its end")
    return dict(line.split("\t", 1) for line in path.read_text().splitlines() if "\t" in line)


def plain_rows(bench, figure_names, runs):
    for keys, run in runs:
        found = figures(bench / f"{run}.tsv")
        missing = [name for name in figure_names if name not in found]
        if missing:
            raise SystemExit(f"publish.py: {run}.tsv lacks {', '.join(missing)}")
        yield [*keys, *(found[name] for name in figure_names)]


def micro_rows(path):
    """Rows of Google Benchmark's CSV, tabs for commas, by the names of its header line."""
    if not path.exists():
        raise SystemExit(f"publish.py: {path} is not there: run Bench/run.sh to its end")
    lines = [line for line in path.read_text().splitlines() if "\t" in line]
    head = next(number for number, line in enumerate(lines) if line.startswith("name\t"))
    return list(csv.DictReader(lines[head:], delimiter="\t"))


def command_rows(bench):
    for row in micro_rows(bench / "micro-api.tsv"):
        if row["name"].startswith("Ask/"):
            yield [row["name"][4:], float(row["cpu_time"]) / 1000, float(row["allocations"]), float(row["bytes"])]


def packetiser_rows(bench):
    for row in micro_rows(bench / "micro.tsv"):
        if row.get("items_per_second"):
            yield [row["name"], 1e9 / float(row["items_per_second"])]


def machine_rows(bench):
    """Where and when, so that a reader can judge the figures."""
    made_with = figures(bench / "run.tsv")
    with open("/proc/cpuinfo", encoding="utf-8") as cpuinfo:
        cpu = next((line.split(":", 1)[1].strip() for line in cpuinfo if line.startswith("model name")), "unknown")
    commit = subprocess.run(["git", "rev-parse", "--short", "HEAD"], cwd=ROOT, stdout=subprocess.PIPE, text=True)
    compiler = subprocess.run(["g++", "--version"], stdout=subprocess.PIPE, text=True).stdout.splitlines()[0]
    yield from (["day", time.strftime("%Y-%m-%d")], ["commit", commit.stdout.strip() or "unknown"],
                ["processor", f"{cpu}, {os.cpu_count()} cores"], ["kernel", platform.release().split("-")[0]],
                ["compiler", compiler], ["seconds a load", made_with["seconds"]],
                ["load average at the start", made_with["load_average"]])


def main(bench=ROOT / "build" / "bench", data=ROOT / "docs" / "performance"):
    bench, data = pathlib.Path(bench), pathlib.Path(data)
    files = {name: [[*keys, *names], *plain_rows(bench, names, runs)] for name, (keys, names, runs) in PLAIN.items()}
    files["commands"] = [["command", "cpu_us", "allocations", "bytes"], *command_rows(bench)]
    files["packetiser"] = [["benchmark", "ns_per_packet"], *packetiser_rows(bench)]
    files["machine"] = [["name", "value"], *machine_rows(bench)]
    data.mkdir(parents=True, exist_ok=True)
    for name, rows in files.items():
        with open(data / f"{name}.tsv", "w", encoding="utf-8", newline="") as file:
            csv.writer(file, delimiter="\t", lineterminator="\n").writerows(rows)
    if data == ROOT / "docs" / "performance":
        tables.write()
        subprocess.run([ROOT / "docs" / "pictures" / "draw.sh", ROOT / "docs" / "pictures"], check=True)
    print(f"{len(files)} tables of figures in {data}")


if __name__ == "__main__":
    main(*sys.argv[1:])
