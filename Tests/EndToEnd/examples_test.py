"""The programs of examples/, driven by real clients and a simulated camera."""

import ctypes
import os
import select
import signal
import subprocess
import tempfile
import time
import unittest
import urllib.request

from camera import decode, free_ports, odd_steps, played_times, run, streams_of
from nvr import SIMULATOR

MINIMAL_HOST = os.environ["NETSERVER_MINIMAL_HOST"]
WEB_ROOT = os.environ["NETSERVER_MINIMAL_HOST_PAGE"]
NVR_EVENTS = os.environ["NETSERVER_NVR_EVENTS"]
CLONE_NEWNET = 0x40000000
LIMIT = 20  # seconds
RATE = 20


class MinimalHost(unittest.TestCase):
    def setUp(self):
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.directory = directory.name

    def video(self, name, *options):
        """A second of H.264, with a key frame at its beginning only."""
        path = os.path.join(self.directory, name)
        result = run("ffmpeg", "-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i",
                     "testsrc2=s=320x240:r=%d:d=1" % RATE, "-c:v", "libx264", "-bf", "0", *options, path)
        self.assertEqual(0, result.returncode, result.stderr)
        return path

    def one_slice(self):
        return self.video("one.h264", "-x264-params", "slices=1:sliced-threads=0")

    def test_shows_its_file_again_and_again_and_a_page(self):
        http, rtsp = free_ports(2)
        url = "rtsp://127.0.0.1:%d/live" % rtsp
        with subprocess.Popen([MINIMAL_HOST, self.one_slice(), WEB_ROOT, str(http), str(rtsp), str(RATE)],
                              cwd=self.directory, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True) as host:
            try:
                self.assertEqual("%d pictures: %s http://localhost:%d/\n" %
                                 (RATE, url.replace("127.0.0.1", "localhost"), http), host.stdout.readline())
                found = streams_of(url, "tcp")["video"]
                self.assertEqual(("h264", 320, 240), (found["codec_name"], found["width"], found["height"]))
                for transport in ("tcp", "udp"):
                    self.assertEqual((0, ""), decode(url, transport, 2 * RATE), transport)
                times = played_times(url, "tcp", 3)["video"]
                self.assertGreater(len(times), 2 * RATE, "it goes on behind the end of the file")
                self.assertEqual(([], 0), odd_steps(times, 1 / RATE, 0.001))
                with urllib.request.urlopen("http://127.0.0.1:%d/" % http, timeout=LIMIT) as page:
                    self.assertIn(b"<title>Minimal host</title>", page.read())
                with urllib.request.urlopen("http://127.0.0.1:%d/GetDeviceInfo" % http, timeout=LIMIT) as answer:
                    self.assertIn(b"<![CDATA[Minimal host]]>", answer.read())
            finally:
                host.terminate()
                host.communicate(timeout=LIMIT)
            self.assertEqual(0, host.returncode)

    def test_refuses_what_the_library_does_not_take(self):
        empty = os.path.join(self.directory, "empty.h264")
        open(empty, "w").close()
        slices = self.video("slices.h264", "-x264-params", "slices=4")
        for arguments in ([], [self.one_slice()], ["/nonexistent", WEB_ROOT], [empty, WEB_ROOT], [slices, WEB_ROOT],
                          [self.one_slice(), WEB_ROOT, "1", "2", "0"]):
            with self.subTest(arguments):
                result = run(MINIMAL_HOST, *arguments)
                self.assertEqual((2, ""), (result.returncode, result.stdout))
                self.assertIn("one slice a picture", result.stderr)


class Camera:
    def __init__(self, events):
        self.events = events

    def __enter__(self):
        self.process = subprocess.Popen([SIMULATOR, "--events", self.events], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE)
        self.name = "127.0.0.1:%d" % int(self.process.stdout.readline())
        return self

    def __exit__(self, *_):
        self.process.communicate()

    def say(self, line):
        self.process.stdin.write(line.encode() + b"\n")
        self.process.stdin.flush()


class NvrEvents(unittest.TestCase):
    def setUp(self):
        # A network of its own: cameras push to a fixed port.
        if ctypes.CDLL(None).unshare(CLONE_NEWNET) != 0:
            self.skipTest("the kernel does not allow a network namespace here")
        subprocess.run(["ip", "link", "set", "lo", "up"], check=True)

    def line_about(self, program, camera, event):
        """Repeats an event until the program, which may still log in, tells it. Returns the line."""
        end = time.monotonic() + LIMIT
        while time.monotonic() < end:
            camera.say(event)
            if select.select([program.stdout], [], [], 0.1)[0]:
                return program.stdout.readline()
        return ""

    def test_tells_of_motion_and_alarm_inputs_of_each_camera(self):
        with Camera("push") as first, Camera("pull") as second:
            with subprocess.Popen([NVR_EVENTS, "admin", "secret", first.name, second.name, "127.0.0.1:1"],
                                  stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, bufsize=1) as program:
                try:
                    for camera in (first, second):
                        self.assertEqual(camera.name + ": motion on\n", self.line_about(program, camera, "motion on"))
                        camera.say("motion off")
                        self.assertEqual(camera.name + ": motion off\n", program.stdout.readline())
                    self.assertEqual(first.name + ": alarm input on\n", self.line_about(program, first, "alarm-in on"))
                finally:
                    program.send_signal(signal.SIGINT)
                    _, errors = program.communicate(timeout=LIMIT)
                self.assertEqual(0, program.returncode)
                self.assertEqual(["%s: watching" % first.name, "%s: watching" % second.name,
                                  "127.0.0.1:1: login failed with code 4; trying again in 10 seconds"],
                                 errors.splitlines())

    def test_tells_how_it_is_used(self):
        result = run(NVR_EVENTS, "admin", "secret")
        self.assertEqual((2, ""), (result.returncode, result.stdout))
        self.assertIn("usage: nvr-events USER PASSWORD ADDRESS[:PORT]...", result.stderr)


if __name__ == "__main__":
    unittest.main(verbosity=2)
