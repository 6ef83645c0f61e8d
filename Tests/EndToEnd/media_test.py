"""What goes on over RTSP beside the live streams: changes while clients play, recordings, talk, alarm pushes."""

import hashlib
import json
import os
import re
import select
import signal
import socket
import struct
import subprocess
import tempfile
import threading
import time
import unittest

from camera import Camera, packet_times, run, steps

ROOT = '<?xml version="1.0" encoding="UTF-8"?><config version="1.0">%s</config>'


def wait_for(condition, seconds=20):
    end = time.monotonic() + seconds
    while not condition():
        assert time.monotonic() < end, "never came true"
        time.sleep(0.05)


class Changes(unittest.TestCase):
    def test_a_client_stays_while_its_stream_gets_another_size(self):
        with Camera("--size", "640x360", "--fps", "10") as camera:
            client = subprocess.Popen(
                ["ffprobe", "-v", "error", "-rtsp_transport", "tcp", "-select_streams", "v", "-show_entries",
                 "frame=width,height,pict_type", "-of", "csv=p=0", camera.url()],
                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
            try:
                self.await_size(client, "640,360")
                self.set(camera, "320x180", 5, "highProfile")
                self.await_size(client, "320,180")
                self.set(camera, "640x360", 10, "baseLine")
                self.await_size(client, "640,360")
            finally:
                client.kill()
                client.wait()
                client.stdout.close()

    def set(self, camera, resolution, rate, level):
        body = ROOT % ('<streams type="list" count="1"><item id="0"><resolution>%s</resolution><frameRate>%d</frameRate>'
                       "<maxBitRate>300</maxBitRate><GOP>20</GOP><encodeType>h264</encodeType>"
                       "<encodeLevel>%s</encodeLevel><quality>medium</quality></item></streams>"
                       % (resolution, rate, level))
        status, _, answer = camera.get("SetVideoStreamConfig", body=body.encode())
        self.assertEqual(200, status, answer)

    def await_size(self, client, size):
        """The stream goes on with a key frame of the new size."""
        for line in client.stdout:
            if line.startswith(size):
                self.assertIn("I", line)
                return
        self.fail("the client has ended")


class Recordings(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.camera = cls.enterClassContext(Camera("--size", "320x240", "--fps", "10", "--gop", "10"))
        time.sleep(8)  # what is to be found

    def sections(self):
        body = ROOT % "<search><starttime>2000-01-01 00:00:00</starttime><endtime>2099-01-01 00:00:00</endtime></search>"
        status, _, answer = self.camera.get("SearchByTime/1", body=body.encode())
        self.assertEqual(200, status)
        return [(start, int(seconds)) for start, seconds in re.findall(
            rb"<starttime[^>]*><!\[CDATA\[(.*?)\]\]></starttime>\s*<seconds[^>]*>(\d+)<", answer)]

    def url(self, after=0, seconds=60):
        start = time.mktime(time.strptime(self.sections()[0][0].decode(), "%Y-%m-%d %H:%M:%S")) + after
        local = time.localtime(start)
        return self.camera.url("/1?date=%d-%d-%d&time=%d:%d:%d&timelen=%d"
                               % (local.tm_year, local.tm_mon, local.tm_mday, local.tm_hour, local.tm_min, local.tm_sec,
                                  seconds))

    def record(self, url, seconds):
        """Plays for some seconds into a file. Returns packet times."""
        with tempfile.TemporaryDirectory() as directory:
            path = os.path.join(directory, "x.mkv")
            result = run("ffmpeg", "-nostdin", "-v", "error", "-rtsp_transport", "tcp", "-i", url, "-t", str(seconds),
                         "-c", "copy", path)
            self.assertEqual(0, result.returncode, result.stderr)
            return packet_times(path)

    def test_are_found_by_day_and_by_time(self):
        _, _, days = self.camera.get("SearchRecordDate")
        today = time.localtime()
        self.assertIn(b'count="1"', days)
        self.assertRegex(days.decode(), "<item>%d-0?%d-0?%d</item>" % (today.tm_year, today.tm_mon, today.tm_mday))
        sections = self.sections()
        self.assertEqual(1, len(sections))
        self.assertGreater(sections[0][1], 5)
        status, _, answer = self.camera.get("SearchByTime/2", body=b"<config/>")
        self.assertEqual(400, status, answer)

    def test_play_with_pictures_and_sound(self):
        result = run("ffprobe", "-v", "error", "-rtsp_transport", "tcp", "-show_entries",
                     "stream=codec_name,width,height", "-of", "json", self.url())
        self.assertEqual(0, result.returncode, result.stderr)
        streams = json.loads(result.stdout)["streams"]
        self.assertEqual(["h264", "pcm_alaw"], [stream["codec_name"] for stream in streams])
        self.assertEqual(320, streams[0]["width"])

    def test_play_at_their_pace(self):
        begin = time.monotonic()
        times = self.record(self.url(), 4)
        self.assertGreater(time.monotonic() - begin, 3.5)
        self.assertGreater(len(times["video"]), 30)
        self.assertGreater(len(times["audio"]), 80)
        for step in steps(times["video"]):
            self.assertAlmostEqual(0.1, step, delta=0.03)

    def test_play_from_the_time_that_is_asked_for(self):
        # The burnt-in time would tell, too; the pictures are decoded without an error from the first one on.
        result = run("ffmpeg", "-nostdin", "-v", "error", "-rtsp_transport", "tcp", "-i", self.url(after=3), "-frames:v",
                     "15", "-f", "null", "-")
        self.assertEqual((0, ""), (result.returncode, result.stderr))

    def test_several_play_at_once(self):
        clients = [subprocess.Popen(["ffmpeg", "-nostdin", "-v", "error", "-rtsp_transport", "tcp", "-i",
                                     self.url(after=after), "-frames:v", "20", "-f", "null", "-"],
                                    stdin=subprocess.DEVNULL, stderr=subprocess.PIPE) for after in (0, 1, 2, 3)]
        self.assertEqual([(0, b"")] * 4, [(client.wait(60), client.communicate()[1]) for client in clients])

    def test_the_asked_length_is_played_and_no_more(self):
        with Rtsp(self.camera, self.url(seconds=4)) as client:
            client.setup(0)
            client.play()
            pictures = client.read(8)
        spans = [stamp for channel, stamp, marker in pictures if channel == 0]
        self.assertGreater(len(spans), 5)
        self.assertLessEqual((spans[-1] - spans[0]) / 90000, 5.1)  # four seconds and what lies in front of the key frame

    def test_what_was_not_recorded_is_not_found(self):
        url = self.camera.url("/1?date=2001-1-1&time=0:0:0&timelen=10")
        result = run("ffprobe", "-v", "error", "-rtsp_transport", "tcp", url)
        self.assertNotEqual(0, result.returncode)
        self.assertIn("404", result.stderr)

    def test_survive_the_end_of_the_process(self):
        with Camera("--size", "320x240", "--fps", "10", "--gop", "10") as camera:
            time.sleep(4)
            camera.kill_and_start_again()
            _, _, answer = camera.get("SearchByTime/1", body=b"<config/>")
            self.assertGreaterEqual(int(re.search(rb">(\d+)</seconds>", answer).group(1)), 3, answer)

    def test_the_oldest_make_room(self):
        with Camera("--size", "320x240", "--fps", "10", "--gop", "10", "--record-limit", "1") as camera:
            def segments():
                names = [name for name in os.listdir(camera.data("recordings")) if name.endswith(".seg")]
                return sorted(names), sum(os.path.getsize(camera.data("recordings/" + name)) for name in names)
            wait_for(lambda: segments()[0][:1] not in ([], ["00000001.seg"]), 60)
            self.assertLess(segments()[1], 1300000)

    def test_without_room_nothing_is_recorded(self):
        with Camera("--size", "320x240", "--record-limit", "0") as camera:
            self.assertEqual([], [name for name in os.listdir(camera.data("recordings")) if name.endswith(".seg")])
            _, _, days = camera.get("SearchRecordDate")
            self.assertIn(b'count="0"', days)


class Rtsp:
    """A client that logs in with Digest and has its tracks interleaved on one connection."""

    def __init__(self, camera, url):
        self.url = re.sub("//.*?@", "//", url)
        self.socket = socket.create_connection(("127.0.0.1", camera.rtsp), 20)
        self.buffer = b""
        self.sequence = 0
        self.session = ""
        self.login = ""

    def __enter__(self):
        self.request("DESCRIBE", self.url)
        self.description = self.request("DESCRIBE", self.url)
        assert " 200 " in self.description.splitlines()[0], self.description
        return self

    def __exit__(self, *_):
        self.request("TEARDOWN", self.url)
        self.socket.close()

    def request(self, method, url, more=""):
        self.sequence += 1
        login = self.digest(method, url) if self.login else ""
        self.socket.sendall(("%s %s RTSP/1.0\r\nCSeq: %d\r\n%s%s%s\r\n"
                             % (method, url, self.sequence, login, more, self.session)).encode())
        answer = self.answer()
        nonce = re.search(r'realm="(.*?)", nonce="(.*?)"', answer)
        if nonce:
            self.login = nonce.groups()
        return answer

    def digest(self, method, url):
        def md5(text):
            return hashlib.md5(text.encode()).hexdigest()
        realm, nonce = self.login
        response = md5(md5("admin:%s:admin" % realm) + ":" + nonce + ":" + md5(method + ":" + url))
        return ('Authorization: Digest username="admin", realm="%s", nonce="%s", uri="%s", response="%s"\r\n'
                % (realm, nonce, url, response))

    def fill(self, limit=20):
        if not select.select([self.socket], [], [], limit)[0]:
            return False
        piece = self.socket.recv(65536)
        self.buffer += piece
        return piece != b""

    def answer(self):
        while True:
            while self.buffer[:1] == b"$":
                if not self.packet():
                    assert self.fill(), "cut off"
            end = self.buffer.find(b"\r\n\r\n")
            if end >= 0:
                head = self.buffer[:end + 4]
                length = re.search(rb"Content-Length: (\d+)", head)
                whole = end + 4 + (int(length.group(1)) if length else 0)
                if len(self.buffer) >= whole:
                    text, self.buffer = self.buffer[:whole], self.buffer[whole:]
                    return text.decode()
            assert self.fill(), "cut off"

    def packet(self):
        """Takes an interleaved packet: channel and payload."""
        if len(self.buffer) < 4:
            return None
        channel, length = self.buffer[1], struct.unpack(">H", self.buffer[2:4])[0]
        if len(self.buffer) < 4 + length:
            return None
        payload, self.buffer = self.buffer[4:4 + length], self.buffer[4 + length:]
        return channel, payload

    def setup(self, track):
        answer = self.request("SETUP", "%s/trackID=%d" % (self.url, track),
                              "Transport: RTP/AVP/TCP;unicast;interleaved=0-1\r\n")
        assert " 200 " in answer.splitlines()[0], answer
        self.session = "Session: %s\r\n" % re.search(r"Session: (\d+)", answer).group(1)

    def play(self):
        answer = self.request("PLAY", self.url)
        assert " 200 " in answer.splitlines()[0], answer

    def read(self, seconds):
        """RTP packets of some seconds: channel, time stamp, marker bit."""
        packets = []
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            one = self.packet()
            if one is None:
                self.fill(max(0, end - time.monotonic()))
            elif len(one[1]) >= 12 and one[0] % 2 == 0:
                packets.append((one[0], struct.unpack(">I", one[1][4:8])[0], one[1][1] >> 7))
        return packets

    def speak(self, alaw):
        for number in range(0, len(alaw) // 320):
            header = struct.pack(">BBHII", 0x80, 8, number, number * 320, 0x1234)
            payload = header + alaw[number * 320:number * 320 + 320]
            self.socket.sendall(b"$\0" + struct.pack(">H", len(payload)) + payload)


class Talk(unittest.TestCase):
    def test_speech_is_written_and_the_cameras_sound_comes_back(self):
        with tempfile.TemporaryDirectory() as directory:
            path = os.path.join(directory, "talk.wav")
            tone = subprocess.run(["ffmpeg", "-v", "error", "-f", "lavfi", "-i", "sine=1000:d=2:r=8000", "-f", "alaw", "-"],
                                  stdout=subprocess.PIPE, timeout=60).stdout
            self.assertEqual(16000, len(tone))
            with Camera("--size", "320x240", "--talk-out", path) as camera:
                with Rtsp(camera, camera.url("/talk")) as client:
                    client.setup(2)
                    client.play()
                    client.speak(tone)
                    sound = client.read(2)
                self.assertGreater(len(sound), 25)
                wait_for(lambda: os.path.getsize(path) >= 44 + 32000)
                found = run("ffprobe", "-v", "error", "-show_entries", "stream=codec_name,sample_rate,channels", "-of",
                            "csv=p=0", path).stdout.strip()
                self.assertEqual("pcm_s16le,8000,1", found)
                decoded = subprocess.run(["ffmpeg", "-v", "error", "-i", path, "-f", "alaw", "-"],
                                         stdout=subprocess.PIPE, timeout=60).stdout
                self.assertEqual(tone, decoded)


class VideoLoss(unittest.TestCase):
    def test_a_source_that_goes_away_is_a_loss(self):
        with Camera("--size", "320x240", "--fps", "10", "--no-rtsp-auth") as source:
            with Camera("--size", "320x240", "--fps", "10", "--source", source.url(user="")) as camera:
                self.assertIn(b"<videoLoss>false", self.state(camera))
                source.process.send_signal(signal.SIGSTOP)
                try:
                    wait_for(lambda: b"<videoLoss>true" in self.state(camera), 40)
                    wait_for(lambda: re.search(rb"<videoLoss[^>]*>true", camera.get("GetAlarmStatus")[2]))
                finally:
                    source.process.send_signal(signal.SIGCONT)
                wait_for(lambda: b"<videoLoss>false" in self.state(camera), 60)

    def state(self, camera):
        return camera.get("camera", body=b"ORBIT-700 status")[2]


class AlarmServer(unittest.TestCase):
    def test_gets_each_edge_in_order(self):
        received = []
        listener = socket.create_server(("127.0.0.1", 0))

        def serve():
            while True:
                try:
                    connection, _ = listener.accept()
                except OSError:
                    return
                with connection:
                    text = b""
                    while piece := connection.recv(4096):
                        text += piece
                    received.append(text)

        thread = threading.Thread(target=serve)
        thread.start()
        try:
            with Camera("--size", "320x240", "--fps", "5") as camera:
                for sensor in (0, 1):
                    body = ROOT % "<sensor><alarmHoldTime>0</alarmHoldTime></sensor>"
                    camera.get("SetAlarmInConfig/%d" % sensor, body=body.encode())
                body = ROOT % ("<alarmServer><serverAddr>127.0.0.1</serverAddr><serverPort>%d</serverPort></alarmServer>"
                               % listener.getsockname()[1])
                self.assertEqual(200, camera.get("SetAlarmServerConfig", body=body.encode())[0])
                for command in ("sensor 0 close", "sensor 1 close", "sensor 0 open", "sensor 1 open"):
                    self.assertEqual(200, camera.get("camera", body=b"ORBIT-700 " + command.encode())[0])
                wait_for(lambda: len(received) >= 4)
            states = [re.findall(rb'<item id="\d">(\w+)</item>', text) for text in received]
            self.assertEqual([[b"true", b"false"], [b"true", b"true"], [b"false", b"true"], []], states[:4])
            self.assertEqual(b"", received[3])  # all is quiet again
        finally:
            listener.shutdown(socket.SHUT_RDWR)
            listener.close()
            thread.join()


if __name__ == "__main__":
    unittest.main(verbosity=2)
