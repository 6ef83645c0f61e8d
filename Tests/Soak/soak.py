"""make soak: the reference camera and the recorder under load and faults for SOAK_MINUTES (10).

    soak.py [--minutes N] [--build DIRECTORY] [--out DIRECTORY]

Rounds of load and faults, each with a quiet point behind it at which memory, descriptors and threads are compared with
those behind the first round. Prints what it does, a table, and a verdict; ends with status 0 when all holds. See
docs/soak.md. Open judge.py, faults.py and world.py next.
"""

import argparse
import asyncio
import collections
import itertools
import json
import os
import re
import signal
import subprocess
import sys
import tempfile
import threading
import time
import traceback

import api
import faults
import world
from judge import Judge

HERE = os.path.dirname(os.path.abspath(__file__))
ROUND_SECONDS = 120          # of a long run; a short one has at least a first round and another
SHORTEST_ROUND_SECONDS = 30
RTSP_LOADS, CLIENTS_OF_A_WORKER = 5, 10
SIMULATORS = 20
LINE_SECONDS = 5             # between two lines that say what is going on
LEAVE_SECONDS = 60           # for the clients to take their leave, with requests under way
SETTLE_SECONDS = 60          # then for descriptors and threads to be what they were
EVENT_SECONDS = 15           # from a simulated camera's motion to the recorder's line; it pulls every 300 ms
WATCH_SECONDS = 60          # from the start of the recorder until it has subscribed to a camera
WATCH_PAUSE_SECONDS = 3     # between the changes that show it
SAMPLE_SECONDS = 60          # for ffmpeg to decode so many pictures, two seconds of a stream
SAMPLE_PICTURES = 20
SAMPLE_PAUSE_SECONDS = 5
RECORDER_PAUSE_SECONDS = 30  # between two faults of the recorder's side
STEADY_SECONDS = 8           # without a change, behind the first round
SHOWN_OF_A_KIND = 5          # of the errors that nothing explains; all of them are in errors.tsv
RESUME_SECONDS = 15          # for a recording to grow again

# What memory may be more at the end than behind the first round, and than in the middle of the run. Without a leak it
# differs by pages that the allocator keeps in the arena of each thread (which requests met makes their peak), and by
# SQLite's page cache, which grows with the index of the recordings up to 2 MB.
GROWTH_KB = {"camera": 6 * 1024, "recorder": 1024}
LATE_GROWTH_KB = {"camera": 3 * 1024, "recorder": 512}

# What the programs may say on standard error: the kind of error that it is, None for none. Anything else is an error of
# the kind "log.unexpected", which no fault explains.
CAMERA_LINES = [  # first match wins
    (None, r"CRTSP_DataManager::GetSnapShot timeout"),  # the client is told
    ("log.request", r" info .*rtsp cmd parse error"),
    ("log.request", r"^Transport +(error para|param error)"),
    ("log.timeout", r"[Tt]ime ?[Oo]ut(\*+|, sock = \d+|=+|$)"),
    (None, r" info RTSP_\w+\.cpp:\d+ "),
    (None, r" info ThreadPool\.cpp:\d+ thread pool: a thread leaves"),
    (None, r"^rtsp (accept|teardown)\b"),
    (None, r"^\+*m_sessionList\.size\(\) = \d+$"),
    (None, r"^RT[cC]?P sock \d+$"),
    (None, r"^cookie: "),
    (None, r"CRTSP_ClientSession::HandleTalkData, len:\d+"),
    (None, r"^CRTSP_DataManager::GetSDPInfo failed"),  # in front of a stream's first key frame
    (None, r"RTSP_RTPLink_UDP\.cpp \d+ RecvData +why recv data"),  # the kernel tells that a client's port is shut
    ("log.descriptors", r" error NC_Socket\.cpp:\d+ ASSERT"),
    ("log.descriptors", r" error Listener\.cpp:\d+ port \d+: no descriptor is left, connections are refused"),
    ("log.descriptors", r": Too many open files$"),
    ("log.media", r"^netserver-camera: (.*; trying again|stream \d+: .*)$"),
    ("log.media", r"\b(GStreamer|GLib)[-\w]* \*\*"),
    ("log.disk", r"^netserver-camera: .*'; trying again with each key frame;"),
    ("log.disk", r"^netserver-camera: a setting could not be stored and stays as it was;"),
    (None, r"^netserver-camera: waiting for the first pictures of the source"),
]
RECORDER_LINES = [
    ("recorder.login", r"^netserver-nvr: [0-9.:]+: login failed with code \d+"),
    ("recorder.away", r"^netserver-nvr: [0-9.:]+ does not answer; waiting for it$"),
    (None, r"^netserver-nvr: \w+ took "),  # too late for an event is told where the event is waited for
    (None, r"^netserver-nvr: [0-9.:]+ is watched again$"),
    ("recorder.silent", r"^netserver-nvr: [0-9.:]+ gave no answer to \w+ within "),
]


class Dead(Exception):
    """A program under test has ended, or does not begin."""


def difference(now, then):
    """Of two counts by name: "+2 socket, -1 pipe"."""
    return ", ".join("%+d %s" % (now[name] - then[name], name) for name in sorted({*now, *then})
                     if now[name] != then[name])


class Load:
    """A program that loads the camera, and how many clients it has."""

    def __init__(self, start, arguments):
        self.start_program = start
        self.arguments = arguments
        self.start()

    def start(self):
        self.running = 0
        self.reported = 0
        self.program = self.start_program(self)


class Soak:
    def __init__(self, minutes, binaries, out, directory):
        self.binaries = binaries
        self.out = out
        self.directory = directory
        self.total = minutes * 60
        self.round_seconds = max(SHORTEST_ROUND_SECONDS, min(ROUND_SECONDS, self.total / 3))
        self.began = time.monotonic()
        self.lock = threading.Lock()
        self.history = open(os.path.join(out, "events.tsv"), "w")
        self.problems = open(os.path.join(out, "problems.log"), "w")  # of the soak itself
        self.timeline = open(os.path.join(out, "timeline.tsv"), "w")
        self.judge = Judge(self.tell)
        self.totals = {}
        self.recent = {}          # counts since the last line
        self.seen = {}            # the last line of the recorder about each camera
        self.seen_change = threading.Condition()
        self.phase = "start"
        self.round = 0
        self.is_loaded = threading.Event()
        self.quiet_points = []
        self.is_over = threading.Event()
        self.simulators = []
        self.last_figures, self.same_since = None, self.began
        self.recorder_busy = threading.Lock()  # while a fault of its side lasts

    # For the person who watches.

    def clock(self):
        seconds = int(time.monotonic() - self.began)
        return "%3d:%02d" % (seconds // 60, seconds % 60)

    def tell(self, text):
        with self.lock:
            print("[%s] %s" % (self.clock(), text), flush=True)
            self.history.write("%.1f\t%d\t%s\n" % (time.monotonic() - self.began, self.round, text))
            self.history.flush()

    def tell_often(self):
        """A line now and then, and a row of figures beside it."""
        self.timeline.write("seconds\tround\tphase\t" + "\t".join(
            "%s_%s" % (who, name) for who in ("camera", "recorder") for name in world.Figures.NAMES) +
            "\tclients\tpackets\trequests\talarms\tevents\tinjected\tunexplained\n")
        while not self.is_over.wait(LINE_SECONDS):
            with self.lock:
                recent, self.recent = self.recent, {}
            try:
                camera, recorder = world.Figures(self.camera.pid), world.Figures(self.recorder.pid)
            except OSError:
                continue  # it has ended; who looks after it tells
            clients = sum(load.running for load in self.rtsp_loads)
            injected = sum(self.judge.injected.values())
            rates = [recent.get(name, 0) for name in ("packets", "requests", "alarms", "events")]
            print("[%s] round %d, %-24s %2d clients %6d packets/s %3d requests/s | camera %3d MB %3d fds %3d threads | "
                  "errors: %d injected, %d not"
                  % (self.clock(), self.round, self.phase, clients, rates[0] / LINE_SECONDS, rates[1] / LINE_SECONDS,
                     camera.rss_kb / 1024, camera.descriptors, camera.threads, injected,
                     len(self.judge.unexplained)), flush=True)
            self.timeline.write("\t".join(str(value) for value in [
                "%.1f" % (time.monotonic() - self.began), self.round, self.phase, *camera.values(),
                *recorder.values(), clients, *rates, injected, len(self.judge.unexplained)]) + "\n")
            self.timeline.flush()

    def count(self, name, number=1):
        with self.lock:
            self.totals[name] = self.totals.get(name, 0) + number
            self.recent[name] = self.recent.get(name, 0) + number

    # The programs.

    def set_up(self):
        world.run("ip", "link", "set", "lo", "up")
        self.network = world.CameraNetwork()
        self.recorder_network = world.Network()
        self.network.plug_in()
        self.camera_log = open(os.path.join(self.out, "camera.log"), "w")
        self.recorder_log = open(os.path.join(self.out, "recorder.log"), "w")
        self.camera = world.Camera(self.binaries, self.directory, self.network, self.on_camera_log)
        self.tell("starting the camera")
        self.start_camera()
        self.tell("starting %d simulated cameras and the recorder" % SIMULATORS)
        self.start_recorder()
        self.rtsp_loads = [Load(self.start_load, ["rtsp_clients.py", world.CAMERA_ADDRESS, world.HTTP, world.RTSP,
                                                  CLIENTS_OF_A_WORKER] + (["slow"] if number == 2 else []))
                           for number in range(RTSP_LOADS)]
        self.api_load = Load(self.start_load, ["api_clients.py", world.CAMERA_ADDRESS, world.HTTP, world.RTSP,
                                               world.SITE_ADDRESS, world.ALARM])

    def start_camera(self):
        announcements = world.Announcements()
        self.camera.start()
        said = announcements.next()
        announcements.close()
        if not said.startswith(b"NOTIFY ") or world.CAMERA_ADDRESS.encode() not in said:
            self.judge.error("kept.announcement", "the camera announced itself with %r" % said[:200])

    def start_load(self, load):
        arguments = [str(argument) for argument in load.arguments]
        return world.Program([sys.executable, "-B", os.path.join(HERE, arguments[0]), *arguments[1:]],
                             lambda line: self.on_report(load, line),
                             lambda line: self.judge.error("load.failed", arguments[0] + ": " + line))

    def on_report(self, load, line):
        report = json.loads(line)
        if "kind" in report:
            self.judge.error(report["kind"], report["detail"], report["since"], report["until"])
            return
        load.running = report["running"]
        load.reported = time.monotonic()
        for name, number in report["counts"].items():
            self.count(name, number)

    def start_recorder(self):
        for number in range(SIMULATORS):
            self.simulators.append(world.Simulator(
                self.binaries, self.recorder_network, world.SIMULATOR_FIRST_PORT + number,
                "pull" if number % 2 else "push", lambda line: self.judge.error("load.failed", "simulator: " + line)))
        path = os.path.join(self.directory, "cameras")
        with open(path, "w") as file:
            for simulator in self.simulators:
                file.write("%s admin %s\n" % (simulator.name, world.PASSWORD))
        self.recorder = world.Program(
            self.recorder_network.command(os.path.join(self.binaries, "Apps/Nvr/netserver-nvr"), "watch", "--cameras",
                                          path),
            self.on_event, self.on_recorder_log)
        for simulator in self.simulators:
            self.await_watched(simulator)

    def await_watched(self, simulator):
        """A state that a camera tells before the recorder has subscribed is told to nobody, so it is changed until it
        is."""
        end = time.monotonic() + WATCH_SECONDS
        while time.monotonic() < end:
            for state in ("on", "off"):
                if self.is_told(simulator, state, WATCH_PAUSE_SECONDS):
                    if state == "on":
                        self.is_told(simulator, "off", EVENT_SECONDS)
                    return
        raise Dead("the recorder did not watch %s in %d s" % (simulator.name, WATCH_SECONDS))

    def on_event(self, line):
        words = line.split()
        with self.seen_change:
            if len(words) == 4 and words[2] == "motion":
                self.seen[words[1]] = words[3]
            else:
                self.judge.error("recorder.line", line)
            self.seen_change.notify_all()

    # What the programs say.

    def on_camera_log(self, line):
        self.camera_log.write("%s %s\n" % (self.clock(), line))
        self.camera_log.flush()
        self.judge_line("camera", line, CAMERA_LINES)

    def on_recorder_log(self, line):
        self.recorder_log.write("%s %s\n" % (self.clock(), line))
        self.recorder_log.flush()
        self.judge_line("recorder", line, RECORDER_LINES)

    def judge_line(self, who, line, known):
        line = line.strip(" ")  # one text of the camera's ends with a blank behind its end of line
        for kind, pattern in known:
            if re.search(pattern, line):
                if kind is not None:
                    self.judge.error(kind, "%s says: %s" % (who, line))
                return
        self.judge.error("log.unexpected", "%s says: %s" % (who, line))

    # What faults use.

    def wait(self, seconds):
        """While a fault lasts: sees that the camera and the recorder are there."""
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.check_alive()
            time.sleep(min(0.2, max(0, end - time.monotonic())))

    def check_alive(self):
        for name, program in (("camera", self.camera.program), ("recorder", self.recorder)):
            if program.has_died():
                raise Dead("the %s ended with status %d" % (name, program.process.returncode))

    def ask(self, path, body=None):
        """A request of the soak itself. @return the answer; None when there is none, which is judged"""
        began = time.monotonic()
        try:
            return asyncio.run(api.ask((world.CAMERA_ADDRESS, world.HTTP), path, body))
        except (OSError, EOFError, api.BadAnswer, asyncio.TimeoutError, ValueError, IndexError) as error:
            self.judge.error("api.answer" if isinstance(error, api.BadAnswer) else "api.failed",
                             "%s: %r" % (path, error), began)
            return None

    def inject(self, fault, scale):
        window = self.judge.open(fault.name, fault.kinds, fault.after)
        try:
            fault.inject(self, fault.seconds * scale)
        finally:
            self.judge.close(window)

    # What goes on beside the faults.

    def record_events(self):
        """Motion of one simulated camera after the other, which the recorder must tell."""
        for simulator in itertools.cycle(self.simulators):
            if self.is_over.is_set():
                return
            self.is_loaded.wait()
            for state in ("on", "off"):
                self.one_event(simulator, state)

    def one_event(self, simulator, state):
        began = time.monotonic()
        if self.is_told(simulator, state, EVENT_SECONDS):
            self.count("events")
            return
        self.judge.error("recorder.event", "%s: motion %s was not told in %d s" % (simulator.name, state, EVENT_SECONDS),
                         began)

    def is_told(self, simulator, state, seconds):
        with self.seen_change:
            self.seen.pop(simulator.name, None)
            simulator.say("motion " + state)
            return self.seen_change.wait_for(lambda: self.seen.get(simulator.name) == state, seconds)

    def sample(self):
        """An independent client now and then, which decodes what it gets."""
        for transport, stream in itertools.cycle(itertools.product(("tcp", "udp", "http"), ("main", "sub"))):
            if self.is_over.wait(SAMPLE_PAUSE_SECONDS):
                return
            if self.is_loaded.is_set():
                self.one_sample(transport, "rtsp://admin:admin@%s:%d/live/ch1/%s"
                                % (world.CAMERA_ADDRESS, world.RTSP, stream), SAMPLE_PICTURES)

    def one_sample(self, transport, url, pictures):
        began = time.monotonic()
        command = ["ffmpeg", "-nostdin", "-v", "error", "-rtsp_transport", transport, "-i", url, "-frames:v",
                   str(pictures), "-f", "null", "-"]
        try:
            result = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                    stderr=subprocess.PIPE, text=True, errors="replace", timeout=SAMPLE_SECONDS)
            wrong = result.stderr.strip() or (result.returncode != 0 and "status %d" % result.returncode)
        except subprocess.TimeoutExpired:
            wrong = "not done in %d s" % SAMPLE_SECONDS
        if wrong:
            self.judge.error("sample.decode", "%s %s: %s" % (transport, url.split("@")[1], wrong), began)
        else:
            self.count("samples")

    def run_recorder_faults(self):
        for fault in itertools.cycle(faults.RECORDER_FAULTS):
            self.is_loaded.wait()
            if self.is_over.wait(RECORDER_PAUSE_SECONDS):
                return
            with self.recorder_busy:
                if self.is_loaded.is_set() and not self.is_over.is_set():
                    self.tell("recorder: " + fault.name)
                    self.inject(fault, 1)

    # The rounds.

    def run_round(self):
        scale = self.round_seconds / ROUND_SECONDS
        end = time.monotonic() + self.round_seconds
        self.is_loaded.set()
        for load in (*self.rtsp_loads, self.api_load):
            load.program.order("go")
        self.phase = "load"
        self.wait(10 * scale)
        for fault in faults.CAMERA_FAULTS:
            self.phase = fault.name
            self.tell("camera: " + fault.name)
            self.inject(fault, scale)
            self.phase = "load"
            self.wait(2 * scale)
        self.wait(end - time.monotonic())

    def quiet(self):
        """Everybody leaves; then what the programs hold is compared with what they held behind the first round."""
        self.phase = "clients leave"
        self.is_loaded.clear()
        asked = time.monotonic()
        loads = (*self.rtsp_loads, self.api_load)
        for load in loads:
            load.program.order("quiet")
        if not self.await_true(LEAVE_SECONDS, lambda: all(load.reported > asked and load.running == 0
                                                          for load in loads)):
            self.judge.error("load.failed", "clients are still there after %d s" % LEAVE_SECONDS)
        self.phase = "checking what is kept"
        self.check_kept()
        self.check_description()
        self.phase = "settling"
        with self.recorder_busy:
            self.settle()

    def settle(self):
        begun = time.monotonic()
        self.lost = 0
        self.await_true(SETTLE_SECONDS, self.is_settled)
        figures = self.figures_at_rest()
        self.quiet_points.append((time.monotonic() - self.began, figures))
        self.tell("quiet after round %d: " % self.round + "; ".join(
            "%s %d kB private, %d descriptors, %d threads" % (who, one.private_kb, one.descriptors, one.threads)
            for who, one in figures.items()) + " (settled in %d s, %d connections, %d lost in an outage)"
            % (time.monotonic() - begun, len(self.network.connections()), self.lost))
        for connection in self.network.connections():
            self.judge.error("figures.connections", "the camera still has " + connection)
        self.compare(figures)

    def figures_at_rest(self):
        return {"camera": world.Figures.at_rest(self.camera.pid), "recorder": world.Figures.at_rest(self.recorder.pid)}

    def is_settled(self):
        """As behind the first round; behind that, the same for some seconds."""
        self.lost += self.network.forget_lost()
        now = [(one.descriptors, one.threads) for one in self.figures_at_rest().values()]
        if self.quiet_points:
            first = [(one.descriptors, one.threads) for one in self.quiet_points[0][1].values()]
            return now == first and not self.network.connections()
        if now != self.last_figures or self.network.connections():
            self.last_figures, self.same_since = now, time.monotonic()
        return time.monotonic() - self.same_since > STEADY_SECONDS

    def compare(self, figures):
        for who, one in figures.items():
            first = self.quiet_points[0][1][who]
            for name in ("descriptor", "thread"):
                now, then = (getattr(figure, name + "_names") for figure in (one, first))
                if now.total() != then.total():
                    self.judge.error("figures." + name + "s", "the %s has %d %ss, behind the first round it had %d: %s"
                                     % (who, now.total(), name, then.total(), difference(now, then)))

    def await_true(self, seconds, condition):
        end = time.monotonic() + seconds
        while not condition():
            self.check_alive()
            if time.monotonic() > end:
                return False
            time.sleep(0.5)
        return True

    # What must have stayed.

    def mark(self):
        """Writes a setting, which must be there at the next quiet point."""
        self.marker = "Round %d" % self.round
        self.ask("SetImageOsdConfig", api.ROOT % (
            "<imageOsd><time><switch>true</switch><X>8</X><Y>8</Y><dateFormat>year-month-day</dateFormat></time>"
            "<channelName><switch>true</switch><X>8</X><Y>48</Y><name>%s</name></channelName></imageOsd>" % self.marker))

    def check_kept(self):
        """Settings, recordings, and the announced description are what they should be."""
        osd = self.ask("GetImageOsdConfig")
        if osd is not None and self.marker.encode() not in osd:
            self.judge.error("kept.settings", "the name in the picture is not %r any more" % self.marker)
        sections = self.sections()
        if not sections:
            self.judge.error("kept.recordings", "nothing is recorded")
            return
        if not self.await_true(RESUME_SECONDS, lambda: self.sections() != sections):
            self.judge.error("kept.recordings", "nothing is added to the recordings in %d s" % RESUME_SECONDS)
        playable = api.lasting([one for one in sections if one[1] >= 4])
        for start, seconds in playable[:1] + playable[-1:]:
            self.one_sample("tcp", "rtsp://admin:admin@%s:%d%s" % (
                world.CAMERA_ADDRESS, world.RTSP, api.recording_path(start, seconds)), 20)

    def sections(self):
        return asyncio.run(api.sections((world.CAMERA_ADDRESS, world.HTTP)))

    def check_description(self):
        text = asyncio.run(api.exchange((world.CAMERA_ADDRESS, world.DESCRIPTION), "upnp_notify.xml"))[1]
        if b"<UDN>uuid:" not in text:
            self.judge.error("kept.description", "the description reads %r" % text[:200])

    # The whole.

    def run(self):
        self.set_up()
        for function in (self.tell_often, self.record_events, self.sample, self.run_recorder_faults):
            threading.Thread(target=self.guarded, args=(function,), daemon=True).start()
        end = self.began + self.total
        while self.round < 2 or time.monotonic() < end:
            self.round += 1
            self.mark()
            self.run_round()
            self.quiet()
        self.restart_camera()

    def guarded(self, function):
        try:
            function()
        except Exception as error:  # whatever it is, the run must not pass without this thread
            traceback.print_exc(file=self.problems)
            if not self.is_over.is_set():
                self.judge.error("load.failed", "%s: %r" % (function.__name__, error))

    def restart_camera(self):
        """It ends when it is asked to, and has everything when it comes again."""
        self.phase = "starting again"
        self.tell("ending the recorder, and starting the camera again")
        self.is_over.set()
        for name, program, number in (("recorder", self.recorder, signal.SIGINT),
                                      ("camera", self.camera.program, signal.SIGTERM)):
            status = program.stop(number)
            if status != 0:
                self.judge.error("end.status", "the %s ended with %s" % (name, status))
        self.start_camera()
        self.check_kept()
        self.camera.program.stop()

    def tear_down(self):
        """Whatever is still there, after a failure too."""
        self.is_over.set()
        self.is_loaded.set()
        for load in (*getattr(self, "rtsp_loads", ()), *filter(None, [getattr(self, "api_load", None)])):
            load.program.kill()
        for simulator in self.simulators:
            simulator.switch_off()
        for program in (getattr(self, "recorder", None), getattr(getattr(self, "camera", None), "program", None)):
            if program is not None:
                program.kill()
        for network in (getattr(self, "network", None), getattr(self, "recorder_network", None)):
            if network is not None:
                network.end()

    # The verdict.

    def judge_memory(self):
        middle = len(self.quiet_points) // 2
        for bounds, since, number in ((GROWTH_KB, "the first round", 0), (LATE_GROWTH_KB, "half of the run", middle)):
            for who, bound in bounds.items():
                then, now = (self.quiet_points[point][1][who].private_kb for point in (number, -1))
                if now - then > bound:
                    self.judge.error("figures.memory", "the %s has grown by %d kB since %s, %d are allowed"
                                     % (who, now - then, since, bound))

    def report(self):
        print("\nQuiet points: memory of its own (kB), descriptors, threads")
        print("  %8s  %33s  %33s" % ("minutes", "camera", "recorder"))
        with open(os.path.join(self.out, "quiet.tsv"), "w") as file:
            file.write("seconds\t" + "\t".join("%s_%s" % (who, name) for who in GROWTH_KB
                                               for name in world.Figures.NAMES) + "\n")
            for seconds, figures in self.quiet_points:
                print("  %8.1f  %s" % (seconds / 60, "  ".join("%15d %8d %8d" % (one.private_kb, one.descriptors,
                                                                                one.threads)
                                                               for one in figures.values())))
                file.write("%.1f\t" % seconds + "\t".join(str(value) for one in figures.values()
                                                          for value in one.values()) + "\n")
        print("\nDone")
        for name, number in sorted(self.totals.items()):
            print("  %-24s %10d" % (name, number))
        print("\nErrors that the injected faults explain")
        for (fault, kind), number in sorted(self.judge.injected.items()):
            print("  %-24s %-18s %6d" % (fault, kind, number))
        print("\nErrors that nothing explains: %d" % len(self.judge.unexplained))
        shown = collections.Counter()
        with open(os.path.join(self.out, "errors.tsv"), "w") as file:
            for until, kind, detail in self.judge.unexplained:
                file.write("%.1f\t%s\t%s\n" % (until - self.began, kind, detail))
                shown[kind] += 1
                if shown[kind] <= SHOWN_OF_A_KIND:
                    print("  %5.0f s  %s: %s" % (until - self.began, kind, detail))
        for kind, number in sorted(shown.items()):
            print("  %-43s %6d" % (kind, number))
        minutes = (time.monotonic() - self.began) / 60
        print("\nSOAK %s after %.0f minutes and %d rounds" % ("FAILED" if self.judge.failed() else "PASSED", minutes,
                                                             self.round))
        return 1 if self.judge.failed() else 0


def enter_name_spaces():
    """Starts this program again in a network and a mount name space of its own; as a user, in a user name space too."""
    if os.environ.get("SOAK_INSIDE") == "yes":
        return
    kinds = ["--net", "--mount"] + (["--user", "--map-root-user"] if os.geteuid() != 0 else [])
    command = ["unshare", *kinds, sys.executable, "-B", *sys.argv]
    if subprocess.run(["unshare", *kinds, "true"]).returncode != 0:
        sys.exit("soak.py: the kernel allows no name spaces here; run it as root, or allow user name spaces")
    os.execvpe(command[0], command, {**os.environ, "SOAK_INSIDE": "yes", "NO_PROXY": "*"})


def main():
    root = os.path.dirname(os.path.dirname(HERE))
    parser = argparse.ArgumentParser(description="The reference camera and the recorder under load and faults.")
    parser.add_argument("--minutes", type=float, default=10)
    parser.add_argument("--build", default=os.path.join(root, "build/release"))
    parser.add_argument("--out", default=os.path.join(root, "build/soak"))
    options = parser.parse_args()
    enter_name_spaces()
    os.makedirs(options.out, exist_ok=True)
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    with tempfile.TemporaryDirectory(prefix="soak-") as directory:
        soak = Soak(options.minutes, options.build, options.out, directory)
        try:
            soak.run()
            soak.judge_memory()
        except Exception as error:  # whatever it is, the run has not done what it should
            traceback.print_exc(file=soak.problems)
            soak.judge.error("soak.ended", repr(error))
        except KeyboardInterrupt:
            soak.judge.error("soak.ended", "interrupted")
        finally:
            soak.tear_down()
            subprocess.run(["umount", soak.camera.disk])
        sys.exit(soak.report())


if __name__ == "__main__":
    main()
