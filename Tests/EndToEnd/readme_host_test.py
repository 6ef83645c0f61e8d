"""The README's example host, compiled: it plays its picture and tells what it is."""

import os
import re
import subprocess
import tempfile
import time
import unittest
import urllib.request

from camera import free_ports, run, streams_of

HOST = os.environ["NETSERVER_README_HOST"]


def key_frame(path):
    """An H.264 file of one key frame in the form that the README tells."""
    result = run("ffmpeg", "-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i", "testsrc2=s=320x240", "-frames:v", "1",
                 "-c:v", "libx264", "-x264-params", "slices=1:threads=1", "-f", "h264", path)
    assert result.returncode == 0, result.stderr
    with open(path, "rb") as file:
        units = re.split(rb"\x00\x00\x00?\x01", file.read())[1:]
    with open(path, "wb") as file:
        for unit in units:
            if unit[0] & 0x1f in (5, 7, 8):
                file.write(b"\x00\x00\x00\x01" + unit)


class ReadmeHost(unittest.TestCase):
    def test_plays_and_answers(self):
        http, rtsp = free_ports(2)
        with tempfile.TemporaryDirectory() as directory:
            key_frame(os.path.join(directory, "picture.h264"))
            host = subprocess.Popen([HOST], cwd=directory, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                    env={"HTTP_PORT": str(http), "RTSP_PORT": str(rtsp)})
            try:
                url = "http://127.0.0.1:%d/GetDeviceInfo" % http
                self.assertIn(b"<![CDATA[My camera]]>", self.await_answer(url))
                found = streams_of("rtsp://127.0.0.1:%d/live" % rtsp, "tcp")
                self.assertEqual(("h264", 320, 240), tuple(found["video"][key]
                                                           for key in ("codec_name", "width", "height")))
            finally:
                host.kill()
                host.wait()

    def await_answer(self, url):
        deadline = time.monotonic() + 20
        while True:
            try:
                with urllib.request.urlopen(url, timeout=5) as answer:
                    return answer.read()
            except OSError:
                if time.monotonic() > deadline:
                    raise
                time.sleep(0.05)


if __name__ == "__main__":
    unittest.main(verbosity=2)
