"""netserver-nvr watch: events of simulated cameras, over real sockets.

Each test runs in a network of its own: cameras push to a fixed port, and to no address of this machine.
"""

import ctypes
import json
import os
import re
import select
import signal
import subprocess
import tempfile
import time
import unittest

from nvr import NVR, SIMULATOR, environment

CLONE_NEWNET = 0x40000000
LIMIT = 20  # seconds for a line


class Camera:
    def __init__(self, events):
        self.events = events

    def __enter__(self):
        self.process = subprocess.Popen([SIMULATOR, "--events", self.events], stdin=subprocess.PIPE,
                                        stdout=subprocess.PIPE)
        self.port = int(self.process.stdout.readline())
        return self

    def __exit__(self, *_):
        self.process.communicate()

    def say(self, line):
        self.process.stdin.write(line.encode() + b"\n")
        self.process.stdin.flush()


class Watch:
    def __init__(self, *arguments):
        self.process = subprocess.Popen([NVR, *arguments], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                        stderr=subprocess.PIPE, env=environment(), text=True, bufsize=1)

    def line(self):
        """The next line, without its end; empty when none comes."""
        ready = select.select([self.process.stdout], [], [], LIMIT)[0]
        return self.process.stdout.readline().rstrip("\n") if ready else ""

    def stop(self, number=signal.SIGINT):
        self.process.send_signal(number)
        out, err = self.process.communicate(timeout=LIMIT)
        return self.process.returncode, out, err


class WatchTest(unittest.TestCase):
    def setUp(self):
        if ctypes.CDLL(None).unshare(CLONE_NEWNET) != 0:
            self.skipTest("the kernel does not allow a network namespace here")
        subprocess.run(["ip", "link", "set", "lo", "up"], check=True)

    def login(self, camera):
        return ["--host", "127.0.0.1", "--port", str(camera.port), "--user", "admin", "watch"]

    def until_told(self, camera, watch, event):
        """Repeats an event until the tool, which may still log in, tells it. Returns the line."""
        end = time.monotonic() + LIMIT
        while time.monotonic() < end:
            camera.say(event)
            if select.select([watch.process.stdout], [], [], 0.1)[0]:
                return watch.line()
        return ""

    def assert_line(self, line, camera, event):
        self.assertRegex(line, r"^\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}Z 127\.0\.0\.1:%d %s$" % (camera.port, event))

    def try_motion(self, events):
        with Camera(events) as camera:
            watch = Watch(*self.login(camera))
            self.assert_line(self.until_told(camera, watch, "motion on"), camera, "motion on")
            camera.say("motion off")
            self.assert_line(watch.line(), camera, "motion off")
            self.assertEqual((0, "", ""), watch.stop())

    def test_motion_of_a_camera_that_pushes(self):
        self.try_motion("push")

    def test_motion_of_a_camera_that_is_asked(self):
        self.try_motion("pull")

    def test_alarm_inputs(self):
        with Camera("push") as camera:
            watch = Watch(*self.login(camera))
            self.assert_line(self.until_told(camera, watch, "alarm-in on"), camera, "alarm-in on")
            camera.say("alarm-in off")
            self.assert_line(watch.line(), camera, "alarm-in off")
            self.assertEqual((0, "", ""), watch.stop(signal.SIGTERM))

    def test_json(self):
        with Camera("push") as camera:
            watch = Watch(*self.login(camera), "--json")
            event = json.loads(self.until_told(camera, watch, "motion on"))
            self.assertTrue(re.match(r"\d{4}-\d\d-\d\dT", event.pop("time")))
            self.assertEqual({"camera": "127.0.0.1:%d" % camera.port, "event": "motion", "state": "on"}, event)
            watch.stop()

    def test_several_cameras_of_a_file(self):
        with Camera("push") as first, Camera("pull") as second, tempfile.NamedTemporaryFile("w") as file:
            file.write("# two cameras\n\n127.0.0.1:%d admin secret\n127.0.0.1:%d admin\n" % (first.port, second.port))
            file.write("127.0.0.1:1 admin secret\n")
            file.flush()
            watch = Watch("watch", "--cameras", file.name)
            self.assert_line(self.until_told(second, watch, "motion on"), second, "motion on")
            self.assert_line(self.until_told(first, watch, "motion on"), first, "motion on")
            status, _, errors = watch.stop()
            self.assertEqual(0, status)
            self.assertIn("127.0.0.1:1: login failed with code 4", errors)

    def test_ends_after_its_seconds(self):
        with Camera("push") as camera:
            watch = Watch(*self.login(camera), "--seconds", "1")
            out, err = watch.process.communicate(timeout=LIMIT)
            self.assertEqual((0, "", ""), (watch.process.returncode, out, err))

    def test_without_any_login_the_status_tells(self):
        watch = Watch("--host", "127.0.0.1", "--port", "1", "--user", "admin", "watch")
        _, err = watch.process.communicate(timeout=60)
        self.assertEqual(3, watch.process.returncode)
        self.assertIn("login failed with code 4", err)

    def test_bad_files_are_refused(self):
        with tempfile.NamedTemporaryFile("w") as file:
            for text, problem in (("", "it names no camera"), ("a:0 u p\n", "line 1: '0' is no port"),
                                  ("\na b c d\n", "line 2: more than HOST[:PORT] USER PASSWORD")):
                file.seek(0)
                file.truncate()
                file.write(text)
                file.flush()
                watch = Watch("watch", "--cameras", file.name)
                _, err = watch.process.communicate(timeout=LIMIT)
                self.assertEqual(2, watch.process.returncode)
                self.assertIn(problem, err)


if __name__ == "__main__":
    os.environ["NO_PROXY"] = "*"
    unittest.main()
