"""Playing the live streams with GStreamer's rtspsrc, over every transport."""

import unittest

from camera import Camera, gstreamer_times, steps

FPS = 25


class Rtspsrc(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.camera = cls.enterClassContext(Camera("--fps", str(FPS)))

    def play(self, protocols, scheme="rtsp:"):
        url = self.camera.url(user="").replace("rtsp:", scheme)
        times, output = gstreamer_times(url, protocols, "admin", "admin", 100)
        self.assertGreaterEqual(len(times["pictures"]), 100, output)
        self.assertGreaterEqual(len(times["sound"]), 50, output)
        self.assertNotIn("ERROR", output)
        self.assertTrue(all(step > 0 for step in steps(times["pictures"])), times["pictures"])
        self.assertTrue(all(step > 0 for step in steps(times["sound"])), times["sound"])
        played = times["pictures"][-1] - times["pictures"][0]
        self.assertAlmostEqual(99 / FPS, played, delta=0.5)
        self.assertAlmostEqual(played, times["sound"][-1] - times["sound"][0], delta=0.5)

    def test_plays_over_udp(self):
        self.play("udp")

    def test_plays_over_tcp(self):
        self.play("tcp")

    def test_plays_through_http(self):
        self.play("tcp+http", "rtsph:")

    def test_wrong_password_is_refused(self):
        times, output = gstreamer_times(self.camera.url(user=""), "tcp", "admin", "wrong", 1, limit=20)
        self.assertEqual([], times["pictures"])
        self.assertIn("ERROR", output)
        self.assertIn("Unauthorized", output)


if __name__ == "__main__":
    unittest.main(verbosity=2)
