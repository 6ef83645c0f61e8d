"""The camera's announcement, as a control point on the same network sees it.

Camera and control point run in network namespaces of their own with one cable between them, so that nothing reaches the
machine's network.
"""

import ctypes
import os
import subprocess
import unittest
import xml.etree.ElementTree as ElementTree

from camera import Camera, run

CLONE_NEWNET = 0x40000000
DESCRIPTION = "http://10.77.0.1:33899/upnp_notify.xml"


def enter_network():
    """Leaves the machine's network for a new one. Returns whether the kernel allows it."""
    libc = ctypes.CDLL(None, use_errno=True)
    return libc.unshare(CLONE_NEWNET) == 0 and run("ip", "link", "set", "lo", "up").returncode == 0


class Neighbour:
    """A second network, with its eth0 at the other end of this one's eth0."""

    def __enter__(self):
        self.holder = subprocess.Popen(["unshare", "--net", "sh", "-c", "echo in; exec sleep 120"],
                                       stdout=subprocess.PIPE)
        self.holder.stdout.readline()
        self._ip("link", "add", "eth0", "type", "veth", "peer", "name", "eth0", "netns", str(self.holder.pid))
        self._ip("address", "add", "10.77.0.1/24", "dev", "eth0")
        self._ip("link", "set", "eth0", "up")
        for command in (("address", "add", "10.77.0.2/24", "dev", "eth0"), ("link", "set", "eth0", "up"),
                        ("link", "set", "lo", "up")):
            assert run(*self.command("ip", *command)).returncode == 0, command
        return self

    def __exit__(self, *_):
        self.holder.kill()
        self.holder.wait()
        self.holder.stdout.close()

    @staticmethod
    def _ip(*arguments):
        result = run("ip", *arguments)
        assert result.returncode == 0, result.stderr

    def command(self, *command):
        return ["nsenter", "--net", "--target", str(self.holder.pid), *command]


class Announcement(unittest.TestCase):
    def setUp(self):
        if not enter_network():
            self.skipTest("the kernel does not allow a network namespace here")

    def test_control_point_finds_the_camera_and_reads_its_description(self):
        with Neighbour() as neighbour:
            listener = subprocess.Popen(
                neighbour.command("gssdp-discover", "--interface", "eth0", "--timeout", "60", "--target",
                                  "upnp:rootdevice"),
                stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)
            try:
                self.assertIn("eth0", listener.stdout.readline())  # it listens
                with Camera("--fps", "5", "--size", "320x180", "--announce") as camera:
                    found = self._read_until(listener, "Location")
                    description = run(*neighbour.command("curl", "--silent", "--show-error", DESCRIPTION))
                    web_port = camera.http
            finally:
                listener.kill()
                listener.communicate()
        self.assertEqual(0, description.returncode, description.stderr)
        device = ElementTree.fromstring(description.stdout).find("{*}device")
        self.assertIn(device.find("{*}UDN").text + "::upnp:rootdevice", found)
        self.assertIn(DESCRIPTION, found)
        self.assertEqual("http://10.77.0.1:%d" % web_port, device.find("{*}presentationURL").text)

    def test_camera_is_silent_unless_asked(self):
        with Neighbour():
            with Camera("--fps", "5", "--size", "320x180"):
                with open("/proc/net/tcp") as connections:
                    self.assertNotIn(":%04X" % 33899, connections.read())
                with open("/proc/net/igmp") as groups:
                    self.assertNotIn("FAFFFFEF", groups.read())  # 239.255.255.250

    @staticmethod
    def _read_until(process, word):
        text = ""
        for line in process.stdout:
            text += line
            if word in line:
                break
        return text


if __name__ == "__main__":
    os.environ["NO_PROXY"] = "*"
    unittest.main()
