"""What the programs that load the camera have in common: orders on standard input, reports on standard output.

Orders are words on a line; the end of the input ends the program. Reports are JSON objects, one a line: errors as
{"kind", "detail", "since", "until"}, counts as {"counts": {name: number since the last report}}.
"""

import asyncio
import json
import sys
import time


class Worker:
    REPORT_SECONDS = 2

    def __init__(self):
        self.counts = {}
        self.running = False
        self.tasks = set()

    def count(self, name, number=1):
        self.counts[name] = self.counts.get(name, 0) + number

    def error(self, kind, detail, since=None):
        now = time.monotonic()
        self.write({"kind": kind, "detail": detail, "since": since or now, "until": now})

    @staticmethod
    def write(report):
        sys.stdout.write(json.dumps(report) + "\n")
        sys.stdout.flush()

    def report(self):
        counts, self.counts = self.counts, {}
        self.write({"counts": counts, "running": len(self.tasks)})

    def start(self, coroutine):
        task = asyncio.get_running_loop().create_task(coroutine)
        self.tasks.add(task)
        task.add_done_callback(self.ended)

    def ended(self, task):
        self.tasks.discard(task)
        if not task.cancelled() and task.exception() is not None:
            self.error("worker.failed", repr(task.exception()))

    async def orders(self):
        """Carries out orders until the input ends."""
        reader = asyncio.StreamReader()
        await asyncio.get_running_loop().connect_read_pipe(lambda: asyncio.StreamReaderProtocol(reader), sys.stdin)
        while True:
            try:
                line = await asyncio.wait_for(reader.readline(), self.REPORT_SECONDS)
            except asyncio.TimeoutError:
                self.report()
                continue
            if line == b"":
                return
            words = line.decode().split()
            getattr(self, "on_" + words[0])(*words[1:])

    def on_quiet(self):
        """The clients take their leave."""
        self.running = False

    def run(self):
        asyncio.run(self.orders())
