"""The networks, the file system and the programs of the soak.

The soak runs in name spaces of its own (main.py enters them), so that nothing reaches the machine's network or disks:

    this process and the load ---- eth0 of the camera's network       a disk of its own for the camera's data
    the network of the recorder: netserver-nvr and 20 simulated cameras on its loopback interface

A network is held by a process that sleeps in it; `nsenter` runs programs there.
"""

import collections
import contextlib
import os
import re
import resource
import select
import signal
import socket
import struct
import subprocess
import threading
import time

HERE = os.path.dirname(os.path.abspath(__file__))
CAMERA_ADDRESS, SITE_ADDRESS = "10.88.0.2", "10.88.0.1"
HTTP, RTSP, ALARM, DESCRIPTION = 8080, 8554, 7000, 33899
DISK_MB = 48
READY_SECONDS = 60    # GStreamer looks through its plugins on the first run of a machine
FORGET_SECONDS = 5
CARRIER_SECONDS = 5
ANNOUNCED_SECONDS = 10  # from the start to the announcement
END_SECONDS = 20      # for a program to end when it is asked to
SIMULATOR_FIRST_PORT = 21000
PASSWORD, OTHER_PASSWORD = "secret", "changed"


def run(*command):
    result = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            text=True)
    if result.returncode != 0:
        raise RuntimeError("%s: %s" % (" ".join(command), result.stdout.strip()))
    return result.stdout


class Network:
    """A network name space, held by a process."""

    def __init__(self):
        self.holder = subprocess.Popen(["unshare", "--net", "sh", "-c", "echo in; exec sleep infinity"],
                                       stdout=subprocess.PIPE)
        self.holder.stdout.readline()
        self.ip("link", "set", "lo", "up")

    def command(self, *command):
        return ["nsenter", "--net=/proc/%d/ns/net" % self.holder.pid, *command]

    def ip(self, *arguments):
        return run(*self.command("ip", *arguments))

    def end(self):
        self.holder.kill()
        self.holder.wait()
        self.holder.stdout.close()


class CameraNetwork(Network):
    """With a cable from its eth0 to this process's network."""

    def plug_in(self):
        run("ip", "link", "add", "soak0", "type", "veth", "peer", "name", "eth0", "netns", str(self.holder.pid))
        run("ip", "address", "add", SITE_ADDRESS + "/24", "dev", "soak0")
        run("ip", "link", "set", "soak0", "up")
        self.ip("address", "add", CAMERA_ADDRESS + "/24", "dev", "eth0")
        self.set_up()

    def set_up(self):
        self.ip("link", "set", "eth0", "up")
        self.ip("route", "replace", "default", "via", SITE_ADDRESS)
        end = time.monotonic() + CARRIER_SECONDS
        while "state UP" not in self.ip("link", "show", "eth0") and time.monotonic() < end:
            time.sleep(0.01)  # the kernel tells the carrier a moment after the link is up

    def set_down(self):
        self.ip("link", "set", "eth0", "down")

    def unplug(self):
        """Both ends of the cable are gone, with their addresses."""
        self.ip("link", "delete", "eth0")

    def connections(self):
        """The TCP connections that the camera has with others."""
        return [" ".join(one) for one in sockets(self.command()) if one[0] not in ("TIME-WAIT", "FIN-WAIT-2")]

    def forget_lost(self):
        """Ends the connections of which the camera alone knows: their client has gone with a reset, which nobody repeats
        when it is lost in an outage. A new connection from the same port makes the two notice (RFC 9293, 3.5.1).
        @return how many there were"""
        here = {local for state, local, peer in sockets([])}
        lost = [(local, peer) for state, local, peer in sockets(self.command()) if state == "ESTAB" and peer not in here]
        for camera, client in lost:
            with socket.socket() as again:
                again.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
                again.settimeout(FORGET_SECONDS)
                again.bind(address_of(client))
                with contextlib.suppress(OSError):  # nobody listens where the camera was the client
                    again.connect(address_of(camera))
        return len(lost)


def sockets(command):
    """State, local and peer address of the TCP connections where `command` runs a program."""
    text = run(*command, "ss", "--tcp", "--numeric", "--no-header", "state", "connected")
    return [(line.split()[0], *line.split()[3:5]) for line in text.splitlines()]


def address_of(text):
    host, port = text.rsplit(":", 1)
    return host, int(port)


class Announcements:
    """What the camera multicasts about itself, once when it starts."""

    def __init__(self):
        self.socket = socket.socket(type=socket.SOCK_DGRAM)
        self.socket.bind(("", 1900))
        self.socket.setsockopt(socket.IPPROTO_IP, socket.IP_ADD_MEMBERSHIP,
                               socket.inet_aton("239.255.255.250") + socket.inet_aton(SITE_ADDRESS))
        self.socket.settimeout(ANNOUNCED_SECONDS)

    def next(self):
        """@return the next datagram; empty when none comes"""
        try:
            return self.socket.recv(2048)
        except socket.timeout:
            return b""

    def close(self):
        self.socket.close()


def read_line(path):
    with open(path, errors="replace") as file:
        return file.readline().strip()


def names_of(pid, folder, name_of):
    """How often each name is in a folder of /proc/PID, numbers in the names left out."""
    names = collections.Counter()
    for entry in os.listdir("/proc/%d/%s" % (pid, folder)):
        try:
            names[re.sub(r"\d+", "N", name_of("/proc/%d/%s/%s" % (pid, folder, entry)))] += 1
        except OSError:
            pass  # it has gone meanwhile
    return names


class Figures:
    """Memory, descriptors and threads of a process."""

    NAMES = ("rss_kb", "private_kb", "descriptors", "threads")

    def __init__(self, pid):
        with open("/proc/%d/smaps_rollup" % pid) as rollup:
            sizes = dict(re.findall(r"^(\w+):\s+(\d+) kB", rollup.read(), re.M))
        self.rss_kb = int(sizes["Rss"])
        self.private_kb = int(sizes["Private_Dirty"])
        self.descriptor_names = names_of(pid, "fd", os.readlink)
        self.thread_names = names_of(pid, "task", lambda path: read_line(path + "/comm"))
        self.descriptors = sum(self.descriptor_names.values())
        self.threads = sum(self.thread_names.values())

    def values(self):
        return [getattr(self, name) for name in self.NAMES]

    @staticmethod
    def at_rest(pid):
        """The least of several looks: a recorder that asks its cameras, or a camera that begins a new file, holds some
        descriptors for a moment."""
        looks = []
        for _ in range(20):
            looks.append(Figures(pid))
            time.sleep(0.05)
        least = looks[-1]
        for what in ("descriptor", "thread"):
            one = min(looks, key=lambda look: getattr(look, what + "s"))
            for name in (what + "s", what + "_names"):
                setattr(least, name, getattr(one, name))
        return least


class Program:
    """A process whose lines on standard output and standard error are handed to functions, on threads of their own."""

    def __init__(self, command, on_line, on_error_line, environment=None):
        self.process = subprocess.Popen(command, stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                        text=True, errors="replace", env={**os.environ, **(environment or {})})
        self.pid = self.process.pid
        self.is_wanted = True
        self.readers = [threading.Thread(target=self.read, args=(stream, function), daemon=True)
                        for stream, function in ((self.process.stdout, on_line), (self.process.stderr, on_error_line))]
        for reader in self.readers:
            reader.start()

    @staticmethod
    def read(stream, function):
        for line in stream:
            function(line.rstrip("\n"))

    def order(self, *words):
        try:
            self.process.stdin.write(" ".join(str(word) for word in words) + "\n")
            self.process.stdin.flush()
        except OSError:
            pass  # it has ended; who waits for it sees that

    def has_died(self):
        return self.is_wanted and self.process.poll() is not None

    def kill(self):
        self.is_wanted = False
        self.process.kill()
        self.finish()

    def end_of_input(self):
        """Ends what runs until its input ends. @return the status, None when it does not end"""
        self.is_wanted = False
        try:
            self.process.stdin.close()
        except OSError:
            pass
        return self.finish()

    def stop(self, number=signal.SIGTERM):
        """@return the status, None when it does not end"""
        self.is_wanted = False
        self.process.send_signal(number)
        return self.finish()

    def finish(self):
        try:
            status = self.process.wait(END_SECONDS)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
            status = None
        for reader in self.readers:
            reader.join()
        return status


class Camera:
    """netserver-camera on a small disk of its own, in its network, with a clock that can be moved."""

    OPTIONS = ("--size", "320x180", "--fps", "10", "--gop", "10", "--bitrate", "400", "--record-limit", "24",
               "--http-port", str(HTTP), "--rtsp-port", str(RTSP), "--announce")

    def __init__(self, binaries, directory, network, on_log):
        self.binary = os.path.join(binaries, "Apps/Camera/netserver-camera")
        self.clock_library = os.path.join(binaries, "Tests/Soak/libsoak_clock.so")
        self.network = network
        self.on_log = on_log
        self.disk = os.path.join(directory, "disk")
        self.talk = os.path.join(directory, "talk.wav")
        self.clock = os.path.join(directory, "clock")
        self.shift_clock(0)
        os.makedirs(self.disk)
        run("mount", "-t", "tmpfs", "-o", "size=%dm" % DISK_MB, "soak", self.disk)

    def start(self):
        self.ready = threading.Event()
        self.program = Program(
            self.network.command(self.binary, *self.OPTIONS, "--data-dir", os.path.join(self.disk, "data"),
                                 "--talk-out", self.talk),
            self.take_line, self.on_log, {"LD_PRELOAD": self.clock_library, "SOAK_CLOCK_SHIFT": self.clock})
        if not self.ready.wait(READY_SECONDS):
            raise RuntimeError("the camera does not start")
        self.pid = self.program.pid

    def take_line(self, line):
        if line.startswith("ready "):
            self.ready.set()

    def shift_clock(self, seconds):
        """Moves its time of day."""
        data = struct.pack("=q", seconds)
        if not os.path.exists(self.clock):
            with open(self.clock, "wb") as file:
                file.write(data)
        with open(self.clock, "r+b", buffering=0) as file:
            file.write(data)

    def fill_disk(self):
        with open(os.path.join(self.disk, "filling"), "wb", buffering=0) as file:
            for size in (1 << 20, 4096, 1):
                while True:
                    try:
                        if file.write(bytes(size)) < size:
                            break
                    except OSError:
                        break

    def free_disk(self):
        os.unlink(os.path.join(self.disk, "filling"))

    def limit_descriptors(self, soft):
        hard = resource.prlimit(self.pid, resource.RLIMIT_NOFILE)[1]
        resource.prlimit(self.pid, resource.RLIMIT_NOFILE, (soft, hard))

    def descriptor_limit(self):
        return resource.prlimit(self.pid, resource.RLIMIT_NOFILE)[0]


class Simulator:
    """A simulated ONVIF camera that can be switched off and on, and be given another password."""

    def __init__(self, binaries, network, port, events, on_error):
        self.command = network.command(os.path.join(binaries, "Tests/Support/netserver-onvif-simulator"),
                                       "--port", str(port), "--events", events)
        self.name = "127.0.0.1:%d" % port
        self.on_error = on_error
        self.password = PASSWORD
        self.start()

    def start(self, password=PASSWORD):
        self.password = password
        self.program = Program([*self.command, "--password", password], lambda line: None, self.on_error)

    def say(self, event):
        self.program.order(event)

    def switch_off(self):
        self.program.kill()
