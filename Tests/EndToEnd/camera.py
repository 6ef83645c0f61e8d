"""One running netserver-camera for a test, and the clients that play it."""

import json
import os
import select
import signal
import socket
import subprocess
import tempfile
import time
import urllib.error
import urllib.request
import base64

CAMERA = os.environ.get("NETSERVER_CAMERA", "netserver-camera")
READY_LIMIT = 40   # seconds; GStreamer looks through its plugins on the first run of a machine
CLIENT_LIMIT = 60  # seconds for a client that plays some seconds


def free_ports(count):
    """Ports that nothing listens on, all different."""
    sockets = [socket.socket() for _ in range(count)]
    for one in sockets:
        one.bind(("127.0.0.1", 0))
    ports = [one.getsockname()[1] for one in sockets]
    for one in sockets:
        one.close()
    return ports


class Camera:
    """Starts the camera with the given options and waits for its ready line; stops it at the end of `with`."""

    def __init__(self, *options):
        self.options = options

    def __enter__(self):
        for _ in range(3):  # another process may take a port between the choice and the start
            if self._start():
                return self
        raise AssertionError("the camera does not start:\n" + self.log())

    def _start(self):
        self.directory = tempfile.TemporaryDirectory(prefix="camera-")
        self.http, self.rtsp = free_ports(2)
        self.log_path = os.path.join(self.directory.name, "log")
        self.command = [CAMERA, "--http-port", str(self.http), "--rtsp-port", str(self.rtsp), "--data-dir", self.data(),
                        *self.options]
        self._launch()
        self.ready_line = self._read_line()
        if self.ready_line != b"":
            return True
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()
        return False

    def _launch(self):
        with open(self.log_path, "ab") as log:
            self.process = subprocess.Popen(self.command, stdout=subprocess.PIPE, stderr=log)

    def _read_line(self):
        line = b""
        end = time.monotonic() + READY_LIMIT
        while not line.endswith(b"\n"):
            left = end - time.monotonic()
            if left <= 0 or not select.select([self.process.stdout], [], [], left)[0]:
                return b""
            piece = os.read(self.process.stdout.fileno(), 1)
            if piece == b"":
                return b""
            line += piece
        return line

    @staticmethod
    def free_port():
        return free_ports(1)[0]

    def data(self, name=""):
        return os.path.join(self.directory.name, "data", name)

    def kill_and_start_again(self):
        """As after a loss of power of the program: what was acknowledged must be there."""
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()
        self._launch()
        self.ready_line = self._read_line()
        assert self.ready_line, self.log()

    def __exit__(self, *_):
        if self.process.poll() is None:
            self.process.terminate()
            try:
                self.process.wait(10)
            except subprocess.TimeoutExpired:
                self.process.kill()
                self.process.wait()
        self.process.stdout.close()
        self.directory.cleanup()

    def log(self):
        with open(self.log_path, errors="replace") as log:
            return log.read()

    def stop(self, number=signal.SIGTERM):
        """Sends a signal. Returns exit status, seconds until the end, and what else was on standard output."""
        begin = time.monotonic()
        self.process.send_signal(number)
        status = self.process.wait(20)
        seconds = time.monotonic() - begin
        return status, seconds, self.process.stdout.read()

    def url(self, path="/live/ch1/main", user="admin:admin"):
        at = user + "@" if user else ""
        return "rtsp://%s127.0.0.1:%d%s" % (at, self.rtsp, path)

    def page(self, path=""):
        return "http://127.0.0.1:%d/%s" % (self.http, path)

    def get(self, path, user="admin:admin", body=None):
        """An HTTP request: status, headers, body."""
        request = urllib.request.Request(self.page(path), data=body)
        if user is not None:
            request.add_header("Authorization", "Basic " + base64.b64encode(user.encode()).decode())
        try:
            with urllib.request.urlopen(request, timeout=10) as answer:
                return answer.status, answer.headers, answer.read()
        except urllib.error.HTTPError as answer:
            return answer.code, answer.headers, answer.read()

    def rtsp_exchange(self, text):
        """One RTSP request on a connection of its own; the answer's header."""
        with socket.create_connection(("127.0.0.1", self.rtsp), 10) as connection:
            connection.settimeout(10)
            connection.sendall(text.encode())
            answer = b""
            while b"\r\n\r\n" not in answer:
                piece = connection.recv(4096)
                if not piece:
                    break
                answer += piece
            return answer.decode()


def run(*command, limit=CLIENT_LIMIT):
    return subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                          timeout=limit, text=True, errors="replace")


def probe(url, transport, *more):
    return run("ffprobe", "-v", "error", "-rtsp_transport", transport, *more, "-of", "json", url)


def streams_of(url, transport):
    """The streams that ffprobe finds, by kind."""
    result = probe(url, transport, "-show_streams")
    assert result.returncode == 0, result.stderr
    return {stream["codec_type"]: stream for stream in json.loads(result.stdout)["streams"]}


def packet_times(source, *options):
    """Time stamps in seconds of the packets of each kind, as ffprobe reads them.

    It knows no time for the first picture of a stream: it waits for a second one to learn the order of decoding.
    """
    result = run("ffprobe", "-v", "error", *options, "-show_entries", "packet=codec_type,pts_time", "-of", "json",
                 source)
    assert result.returncode == 0, result.stderr
    times = {"video": [], "audio": []}
    for packet in json.loads(result.stdout)["packets"]:
        known = times[packet["codec_type"]]
        if "pts_time" in packet or known:
            known.append(float(packet["pts_time"]))
    return times


def played_times(url, transport, seconds):
    """Time stamps of some seconds of playing."""
    return packet_times(url, "-rtsp_transport", transport, "-read_intervals", "%%+%d" % seconds)


def decode(url, transport, frames):
    """Decodes so many pictures and the sound beside them. Returns exit status and complaints."""
    result = run("ffmpeg", "-nostdin", "-v", "error", "-rtsp_transport", transport, "-i", url, "-map", "0",
                 "-frames:v", str(frames), "-f", "null", "-")
    return result.returncode, result.stderr


def gray_picture(jpeg):
    """The brightness of each pixel of a JPEG picture: width, height, bytes."""
    result = subprocess.run(["ffmpeg", "-v", "error", "-i", "-", "-f", "rawvideo", "-pix_fmt", "gray", "-"],
                            input=jpeg, stdout=subprocess.PIPE, timeout=CLIENT_LIMIT)
    size = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "stream=width,height", "-of", "csv=p=0", "-"],
                          input=jpeg, stdout=subprocess.PIPE, timeout=CLIENT_LIMIT).stdout.decode().strip().split(",")
    return int(size[0]), int(size[1]), result.stdout


def mean_luma(jpeg):
    _, _, pixels = gray_picture(jpeg)
    return sum(pixels) / len(pixels)


def steps(times):
    return [later - earlier for earlier, later in zip(times, times[1:])]


def odd_steps(times, interval, tolerance):
    """The steps between time stamps that are no multiple of the interval; and how many intervals were left out.

    A busy machine may leave out a picture; the time stamps of all others must be right nevertheless.
    """
    odd, missing = [], 0
    for step in steps(times):
        intervals = max(1, round(step / interval))
        if abs(step - intervals * interval) > tolerance * intervals:
            odd.append(step)
        missing += intervals - 1
    return odd, missing


def gstreamer_record(url, protocols, user, password, seconds, path):
    """Records pictures and sound with rtspsrc into a Matroska file. Returns exit status and output."""
    process = subprocess.Popen(
        ["gst-launch-1.0", "-e", "rtspsrc", "name=camera", "location=" + url, "protocols=" + protocols,
         "user-id=" + user, "user-pw=" + password, "buffer-mode=none",
         "camera.", "!", "rtph264depay", "!", "h264parse", "!", "queue", "!", "matroskamux", "name=file", "!",
         "filesink", "location=" + path, "camera.", "!", "rtppcmadepay", "!", "queue", "!", "file."],
        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, errors="replace")
    try:
        output, _ = process.communicate(timeout=seconds)
    except subprocess.TimeoutExpired:
        process.send_signal(signal.SIGINT)  # it completes the file
        try:
            output, _ = process.communicate(timeout=CLIENT_LIMIT)
        except subprocess.TimeoutExpired:
            process.kill()
            output, _ = process.communicate()
    return process.returncode, output
