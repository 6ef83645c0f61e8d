"""Playing the live streams with GStreamer's rtspsrc, over every transport."""

import os
import tempfile
import unittest

from camera import Camera, gstreamer_record, odd_steps, packet_times, run

FPS = 25
SECONDS = 7


class Rtspsrc(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.camera = cls.enterClassContext(Camera("--fps", str(FPS)))
        directory = cls.enterClassContext(tempfile.TemporaryDirectory())
        cls.path = os.path.join(directory, "recording.mkv")

    def play(self, protocols, scheme="rtsp:"):
        url = self.camera.url(user="").replace("rtsp:", scheme)
        status, output = gstreamer_record(url, protocols, "admin", "admin", SECONDS, self.path)
        self.assertEqual(0, status, output)
        self.assertNotIn("ERROR", output)

        decoded = run("ffmpeg", "-nostdin", "-v", "error", "-i", self.path, "-f", "null", "-")
        self.assertEqual((0, ""), (decoded.returncode, decoded.stderr))
        times = packet_times(self.path)
        pictures, sound = times["video"], times["audio"]
        self.assertGreaterEqual(len(pictures), 100)
        self.assertGreaterEqual(len(sound), 100)
        # rtspsrc places what plays over UDP anew, once, when the first sender reports have come.
        shifts = 1 if protocols == "udp" else 0
        odd, missing = odd_steps(pictures, 1 / FPS, 0.004)
        self.assertLessEqual(len(odd), shifts, odd)
        self.assertLess(missing, len(pictures) / 10 + shifts * FPS)
        odd, missing = odd_steps(sound, 0.040, 0.0015)
        self.assertLessEqual(len(odd), shifts, odd)
        self.assertLessEqual(missing, shifts * 25)

    def test_plays_over_udp(self):
        self.play("udp")

    def test_plays_over_tcp(self):
        self.play("tcp")

    def test_plays_through_http(self):
        self.play("tcp+http", "rtsph:")

    def test_wrong_password_is_refused(self):
        status, output = gstreamer_record(self.camera.url(user=""), "tcp", "admin", "wrong", 20, self.path)
        self.assertNotEqual(0, status)
        self.assertIn("Unauthorized", output)


if __name__ == "__main__":
    unittest.main(verbosity=2)
