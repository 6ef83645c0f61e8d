"""Playing the live streams with ffmpeg, over every transport, with logins right and wrong."""

import concurrent.futures
import signal
import subprocess
import unittest

from camera import Camera, decode, odd_steps, played_times, probe, run, streams_of

FPS = 25
TRANSPORTS = ("tcp", "udp", "http")


class Play(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.camera = cls.enterClassContext(Camera("--fps", str(FPS), "--channels", "2", "--user", "admin:admin",
                                                  "--user", "odd:a<b&c"))

    def test_main_stream_is_720p_h264_with_alaw(self):
        for transport in TRANSPORTS:
            with self.subTest(transport):
                found = streams_of(self.camera.url(), transport)
                self.assertEqual("h264", found["video"]["codec_name"])
                self.assertEqual((1280, 720), (found["video"]["width"], found["video"]["height"]))
                self.assertEqual("pcm_alaw", found["audio"]["codec_name"])
                self.assertEqual("8000", found["audio"]["sample_rate"])

    def test_sub_stream_has_half_the_size(self):
        found = streams_of(self.camera.url("/live/ch1/sub"), "tcp")
        self.assertEqual((640, 360), (found["video"]["width"], found["video"]["height"]))
        self.assertEqual("pcm_alaw", found["audio"]["codec_name"])

    def test_second_channel_plays(self):
        self.assertEqual((0, ""), decode(self.camera.url("/live/ch2/sub"), "tcp", 20))

    def test_decodes_100_pictures_without_an_error(self):
        for transport in TRANSPORTS:
            with self.subTest(transport):
                self.assertEqual((0, ""), decode(self.camera.url(), transport, 100))

    def test_time_stamps_advance_as_the_media_do(self):
        for transport in TRANSPORTS:
            with self.subTest(transport):
                times = played_times(self.camera.url(), transport, 7)
                # ffprobe places the first packets over UDP anew when the first sender reports have come.
                begin = 2 if transport == "udp" else 0
                video, audio = times["video"][begin:], times["audio"][begin:]
                self.assertGreaterEqual(len(video), 100)
                self.assertGreaterEqual(len(audio), 100)
                odd, missing = odd_steps(audio, 0.040, 0.0015)
                self.assertEqual(([], 0), (odd, missing))
                odd, missing = odd_steps(video, 1 / FPS, 0.004)
                self.assertEqual([], odd)
                self.assertLess(missing, len(video) / 10)
                # Neither clock runs away from the other.
                self.assertAlmostEqual(video[-1] - video[0], audio[-1] - audio[0], delta=0.3)

    def test_wrong_logins_are_refused(self):
        for user in ("admin:wrong", "nobody:admin", ""):
            with self.subTest(user):
                result = probe(self.camera.url(user=user), "tcp", "-show_streams")
                self.assertNotEqual(0, result.returncode)
                self.assertIn("401 Unauthorized", result.stderr)

    def test_challenge_is_digest(self):
        answer = self.camera.rtsp_exchange("DESCRIBE %s RTSP/1.0\r\nCSeq: 1\r\n\r\n" % self.camera.url(user=""))
        self.assertTrue(answer.startswith("RTSP/1.0 401 Unauthorized\r\nCSeq: 1\r\n"), answer)
        self.assertRegex(answer, r'\r\nWWW-Authenticate: Digest realm="RTSP SERVER", nonce="[0-9a-f]{32}"\r\n')

    def test_login_with_markup_in_the_password_plays(self):
        self.assertEqual((0, ""), decode(self.camera.url(user="odd:a%3Cb%26c"), "tcp", 10))

    def test_unknown_url_is_not_found(self):
        result = probe(self.camera.url("/live/ch3/main"), "tcp", "-show_streams")
        self.assertNotEqual(0, result.returncode)
        self.assertIn("404", result.stderr)

    def test_several_clients_play_at_once(self):
        urls = [(self.camera.url("/live/ch%d/%s" % (channel, stream)), transport)
                for channel, stream, transport in ((1, "main", "tcp"), (1, "main", "udp"), (1, "sub", "http"),
                                                   (2, "main", "tcp"), (2, "sub", "udp"))]
        with concurrent.futures.ThreadPoolExecutor(len(urls)) as pool:
            results = list(pool.map(lambda one: decode(*one, 50), urls))
        self.assertEqual([(0, "")] * len(urls), results)

    def test_client_that_leaves_without_a_word_harms_nobody(self):
        for transport in TRANSPORTS:
            with self.subTest(transport):
                client = subprocess.Popen(
                    ["ffmpeg", "-nostdin", "-v", "quiet", "-rtsp_transport", transport, "-i", self.camera.url(),
                     "-f", "null", "-progress", "pipe:1", "-"], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE)
                client.stdout.readline()  # it plays
                client.send_signal(signal.SIGKILL)
                client.wait()
                client.stdout.close()
                self.assertEqual((0, ""), decode(self.camera.url(), transport, 20))


class KeyFrames(unittest.TestCase):
    def test_new_client_forces_one(self):
        # With a key frame every 66 seconds by itself, what comes earlier was asked for.
        with Camera("--size", "320x240", "--gop", "1000") as camera:
            watcher = subprocess.Popen(
                ["ffprobe", "-v", "error", "-rtsp_transport", "tcp", "-select_streams", "v", "-show_entries",
                 "packet=flags", "-of", "csv", camera.url()],
                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
            try:
                self.assertLessEqual(self.await_key_frame(watcher), 30, "its own")
                self.await_quiet(watcher)
                with concurrent.futures.ThreadPoolExecutor() as pool:
                    other = pool.submit(decode, camera.url(), "tcp", 5)
                    self.assertLess(self.await_key_frame(watcher), 100)
                    self.assertEqual((0, ""), other.result())
            finally:
                watcher.kill()
                watcher.wait()
                watcher.stdout.close()

    def await_key_frame(self, watcher):
        """Reads on to the next key frame. Returns the number of frames that took."""
        for count, line in enumerate(watcher.stdout, 1):
            if ",K" in line:
                return count
        self.fail("the watcher has ended")

    def await_quiet(self, watcher):
        """Reads on until two seconds have passed without a key frame."""
        since = 0
        while since < 30:
            since = 0 if ",K" in watcher.stdout.readline() else since + 1


class Transcript(unittest.TestCase):
    def test_standard_output_has_the_ready_line_only(self):
        with Camera("--size", "320x240") as camera:
            self.assertEqual(b"ready http=%d rtsp=%d\n" % (camera.http, camera.rtsp), camera.ready_line)
            self.assertEqual((0, ""), decode(camera.url(), "tcp", 5))
            run("curl", "--silent", camera.page())
            status, _, rest = camera.stop()
            self.assertEqual((0, b""), (status, rest))


if __name__ == "__main__":
    unittest.main(verbosity=2)
