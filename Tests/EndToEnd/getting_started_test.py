"""What docs/getting-started.md shows: the camera's part against a camera, the host's part as a reader does it.

NETSERVER_BUILD is the build tree that is installed in place of build/release.
"""

import os
import re
import subprocess
import tempfile
import time
import unittest
import urllib.request

from camera import Camera, free_ports
from docs_test import ROOT, examples, fits

PAGE = ROOT / "docs" / "getting-started.md"
STEP_LIMIT = 120  # seconds


def with_ports(text, http, rtsp):
    return text.replace("8080", str(http)).replace("8554", str(rtsp)).replace("localhost", "127.0.0.1")


class GettingStarted(unittest.TestCase):
    def check(self, commands, http, rtsp, **where):
        for command, expected in commands:
            result = subprocess.run(["bash", "-c", with_ports(command, http, rtsp)], stdin=subprocess.DEVNULL,
                                    stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=STEP_LIMIT, text=True,
                                    errors="replace", **where)
            with self.subTest(command):
                self.assertTrue(fits(expected, result.stdout.splitlines()), "printed:\n" + result.stdout)

    def commands(self):
        """The page's commands: those of the camera, and those of the reader's own host."""
        found = list(examples(PAGE))
        first = next(number for number, (command, _) in enumerate(found) if command.startswith("cmake --build"))
        self.assertGreater(first, 0)
        return found[:first], found[first:]

    def test_the_cameras_part(self):
        with Camera() as camera:
            self.check(self.commands()[0], camera.http, camera.rtsp)

    def test_the_hosts_part(self):
        http, rtsp = free_ports(2)
        blocks = dict(re.findall(r"^```(cmake|cpp)\n(.*?)^```$", PAGE.read_text(), re.S | re.M))
        with tempfile.TemporaryDirectory() as home:
            project = os.path.join(home, "my-camera")
            os.mkdir(project)
            for name, text in (("CMakeLists.txt", blocks["cmake"]), ("main.cpp", blocks["cpp"])):
                with open(os.path.join(project, name), "w", encoding="utf-8") as file:
                    file.write(with_ports(text, http, rtsp))
            environment = dict(os.environ, HOME=home)
            commands = [(command.replace("build/release", os.environ["NETSERVER_BUILD"]), expected)
                        for command, expected in self.commands()[1]]
            start = next(number for number, (command, _) in enumerate(commands) if " & " in command)
            self.check(commands[:start], http, rtsp, cwd=project, env=environment)
            subprocess.run(["mkdir", os.path.join(project, "www")], check=True)
            self.assertEqual("mkdir -p www; build/my-camera > log 2>&1 & sleep 1", commands[start][0])
            with open(os.path.join(project, "log"), "w", encoding="utf-8") as log:
                host = subprocess.Popen(["build/my-camera"], cwd=project, stdout=log, stderr=log)
            try:
                self.await_answer("http://127.0.0.1:%d/" % http)
                self.check(commands[start + 1:], http, rtsp, cwd=project, env=environment)
            finally:
                host.kill()
                host.wait()

    def await_answer(self, url):
        deadline = time.monotonic() + 20
        while time.monotonic() < deadline:
            try:
                urllib.request.urlopen(url, timeout=5)
                return
            except urllib.error.HTTPError:
                return  # it serves: there is no page
            except OSError:
                time.sleep(0.05)
        raise AssertionError("the host does not serve")


if __name__ == "__main__":
    unittest.main(verbosity=2)
