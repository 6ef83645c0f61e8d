"""The tables of docs/performance.md, written from the figures that stand in this folder.

In the page, what is between `<!-- table NAME -->` and `<!-- end -->` comes from NAME.tsv. `--check` tells whether page
and figures agree, by its exit status.

usage: tables.py [--check]
"""

import csv
import pathlib
import re
import sys

HERE = pathlib.Path(__file__).resolve().parent
PAGE = HERE.parent / "performance.md"

NOT_MEASURED = "Not measured for this version yet; `make bench` fills this table.\n"

# Data file: its columns as the page shows them, in order: name, heading.
COLUMNS = {
    "machine": (("name", ""), ("value", "")),
    "packets": (("transport", "Transport"), ("clients", "Clients"), ("cpu_us_per_packet", "Server CPU a packet, us"),
                ("packets", "Packets"), ("lost_packets", "Lost"), ("missing_frames", "Frames missing")),
    "bare": (("way", "Bare loop, 128 clients"), ("cpu_us_per_packet", "CPU a packet, us")),
    "latency": (("transport", "Transport"), ("latency_p50_ms", "p50, ms"), ("latency_p99_ms", "p99, ms"),
                ("latency_max_ms", "Longest, ms"), ("stamped_frames", "Frames")),
    "memory": (("transport", "Transport"), ("kb_per_idle_connection", "Idle connection, kB"),
               ("kb_per_playing_client", "Playing client, kB"), ("idle_connections", "Idle"),
               ("playing_clients", "Playing"), ("lost_packets", "Packets lost"),
               ("idle_answered_at_the_end", "Idle answered at the end")),
    "stalled": (("lost_packets", "Packets lost"), ("missing_frames", "Frames missing"),
                ("longest_gap_ms", "Longest time between two packets, ms"), ("frame_period_ms", "A frame every, ms")),
    "http": (("what", "What"), ("clients", "Clients"), ("requests_per_cpu_second", "Requests a CPU second"),
             ("p99_ms", "p99, ms"), ("failed", "Failed")),
    "mix": (("requests", "Requests"), ("failed", "Failed"), ("p50_ms", "p50, ms"), ("p99_ms", "p99, ms"),
            ("server_kb", "Memory, kB"), ("server_grown_kb", "Grown, kB")),
    "commands": (("command", "Command"), ("cpu_us", "CPU, us"), ("allocations", "Allocations"),
                 ("bytes", "Bytes of the answer")),
    "alarm": (("pushes", "Reports"), ("bytes", "Bytes each"), ("p50_ms", "p50, ms"), ("p99_ms", "p99, ms")),
    "logins": (("login_ms_median", "Login, ms"), ("login_cpu_us_median", "Login, us of CPU"),
               ("move_cpu_us_median", "Move, us of CPU"), ("resident_kb_growth", "Growth over all logins, kB")),
    "clients": (("rounds", "Rounds"), ("errors", "Errors"), ("resident_kb_half", "Memory at half time, kB"),
                ("resident_kb_end", "Memory at the end, kB")),
    "events": (("way", "Events are"), ("cameras", "Cameras"), ("p50_ms", "p50, ms"), ("p99_ms", "p99, ms"),
               ("max_ms", "Longest, ms"), ("cpu_us_per_event", "CPU an event, us"), ("cpu_cores", "Cores")),
    "camera": (("camera_cores", "Cores"), ("camera_kb", "Memory, kB")),
    "packetiser": (("benchmark", "Benchmark"), ("ns_per_packet", "ns a packet")),
}

# Data file: what the plot of it shows; it stands below the table.
PLOTS = {
    "bare": ("packets", "Server CPU for each packet, by the number of clients"),
    "latency": ("latency", "Times from the host's call to the client"),
    "memory": ("memory", "Memory for each connection"),
    "http": ("http", "HTTP requests for each second of the server's CPU"),
    "events": ("events", "Times from a camera's event to the host's observer"),
}

BLOCK = re.compile(r"(<!-- table (\w+) -->\n)(.*?)(<!-- end -->)", re.S)


def cell(text):
    """Numbers with three significant digits at most behind the point, texts as they are."""
    try:
        value = float(text)
    except ValueError:
        return text
    if value == int(value) or abs(value) >= 100:
        return str(round(value))
    return f"{value:.3g}"


def table(name):
    path = HERE / f"{name}.tsv"
    if not path.exists():
        return NOT_MEASURED
    with open(path, encoding="utf-8", newline="") as file:
        rows = list(csv.DictReader(file, delimiter="\t"))
    columns = COLUMNS[name]
    lines = ["| " + " | ".join(heading for _, heading in columns) + " |", "|" + "---|" * len(columns)]
    # What a run was made with is shown as it stands: a day or a version is no number.
    shown = str if name == "machine" else cell
    lines += ["| " + " | ".join(shown(row[column]) for column, _ in columns) + " |" for row in rows]
    if name in PLOTS:
        lines += ["", "![%s](pictures/plot-%s.svg)" % (PLOTS[name][1], PLOTS[name][0])]
    return "\n".join(lines) + "\n"


def written(page):
    return BLOCK.sub(lambda block: block[1] + "\n" + table(block[2]) + "\n" + block[4], page)


def write():
    PAGE.write_text(written(PAGE.read_text(encoding="utf-8")), encoding="utf-8")


def main(arguments):
    if arguments == ["--check"]:
        page = PAGE.read_text(encoding="utf-8")
        return 0 if page == written(page) else 1
    write()
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
