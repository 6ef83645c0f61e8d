"""Clients of the camera's RTSP server that come, play for some seconds, and go: a program of the soak.

    rtsp_clients.py HOST HTTP-PORT RTSP-PORT NUMBER SEED

Live streams over UDP, interleaved, and through HTTP; recordings; talk. Each looks at what it gets: sequence numbers,
the length of packets, that the stream does not stop. Orders: "go", "quiet", "stall SECONDS", "reset".
"""

import asyncio
import base64
import hashlib
import random
import re
import socket
import struct
import sys
import time

import api
from worker import Worker

REQUEST_SECONDS = 20  # for an answer; DESCRIBE alone may take four, and the machine may be busy with other work
SILENT_SECONDS = 10   # without a packet, while the camera makes 10 pictures a second
PACKET_BYTES = 1472   # the longest that the camera makes
RTP_HEADER_BYTES = 12
SLOW_BUFFER = 4096    # SO_RCVBUF of clients that may be told to stall, so that their window is shut soon
UDP_BUFFER = 1 << 20  # SO_RCVBUF of UDP clients: a client that was not scheduled for a second loses nothing
TALK_BYTES = 320      # 40 ms of A-law
TALK_SECONDS = 0.04
TRY_AGAIN_SECONDS = 1      # after a failure
ON_PURPOSE = "on purpose"  # no kind of error


class Failed(Exception):
    """What went wrong, and its kind."""

    def __init__(self, kind, detail):
        super().__init__(detail)
        self.kind = kind


class Track:
    """RTP packets of one track (RFC 3550)."""

    def __init__(self):
        self.next = None
        self.missing = 0
        self.packets = 0

    def take(self, packet):
        """@return what is wrong with it, or None"""
        if len(packet) < RTP_HEADER_BYTES or len(packet) > PACKET_BYTES or packet[0] != 0x80:
            return "a packet of %d bytes that begins with %s" % (len(packet), packet[:4].hex())
        sequence = struct.unpack_from(">H", packet, 2)[0]
        if self.next is not None:
            self.missing += (sequence - self.next) & 0xFFFF
        self.next = (sequence + 1) & 0xFFFF
        self.packets += 1
        return None


class Connection(asyncio.Protocol):
    """A TCP connection of a client, which hands on what comes."""

    def __init__(self, client):
        self.client = client

    def connection_made(self, transport):
        self.transport = transport

    def data_received(self, data):
        self.client.feed(data)

    def connection_lost(self, exception):
        self.client.lost("reset" if exception else "closed")


class Media(asyncio.DatagramProtocol):
    """A UDP socket of a client."""

    def __init__(self, client, channel):
        self.client = client
        self.channel = channel

    def datagram_received(self, data, _):
        self.client.take(self.channel, data)

    def error_received(self, _):
        pass  # the network is away; what matters is what arrives


class Client:
    """One client: a dialogue (RFC 2326) and its media, interleaved on the connection."""

    NAME = "tcp"

    def __init__(self, worker, path):
        self.worker = worker
        self.url = "rtsp://%s:%d%s" % (worker.host, worker.rtsp, path)
        self.transports = []
        self.buffer = bytearray()
        self.answer = None     # a future, while one is awaited
        self.tracks = {}
        self.sequence = 0
        self.session = ""
        self.login = None
        self.problem = None    # Failed, seen where media are taken
        self.last = time.monotonic()
        self.is_stalled = False

    async def connect(self):
        loop = asyncio.get_running_loop()
        sock = socket.socket()
        sock.setblocking(False)
        if self.worker.is_slow:
            sock.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, SLOW_BUFFER)
        try:
            await asyncio.wait_for(loop.sock_connect(sock, (self.worker.host, self.worker.rtsp)), REQUEST_SECONDS)
        except OSError as error:
            sock.close()
            raise Failed("rtsp.connect", str(error))
        except asyncio.TimeoutError:
            sock.close()
            raise Failed("rtsp.connect", "no connection in %d s" % REQUEST_SECONDS)
        transport, _ = await loop.create_connection(lambda: Connection(self), sock=sock)
        self.transports.append(transport)
        return transport

    async def open(self):
        self.transport = await self.connect()

    def send(self, data):
        self.transport.write(data)

    # What comes.

    def feed(self, data):
        self.buffer += data
        while self.problem is None and self.take_one():
            pass

    def take_one(self):
        """An interleaved packet (RFC 2326, 10.12) or an answer. @return whether there was a whole one"""
        data = self.buffer
        if len(data) < 4:
            return False
        if data[0] == 0x24:
            end = 4 + struct.unpack_from(">H", data, 2)[0]
            if len(data) < end:
                return False
            self.take(data[1], bytes(data[4:end]))
        else:
            end = self.end_of_answer()
            if end == 0:
                return False
            self.take_answer(bytes(data[:end]).decode(errors="replace"))
        del data[:end]
        return True

    def end_of_answer(self):
        if self.buffer[:4] not in (b"RTSP", b"HTTP"):
            self.lost("answered with %r" % bytes(self.buffer[:8]))
            return 0
        end = self.buffer.find(b"\r\n\r\n")
        if end < 0:
            return 0
        length = re.search(rb"Content-Length: (\d+)", self.buffer[:end + 4])
        whole = end + 4 + (int(length.group(1)) if length else 0)
        return whole if len(self.buffer) >= whole else 0

    def take_answer(self, text):
        if self.answer is not None and not self.answer.done():
            self.answer.set_result(text)

    def take(self, channel, packet):
        if channel % 2 != 0:
            return  # RTCP
        wrong = self.tracks.setdefault(channel, Track()).take(packet)
        if wrong and self.problem is None:
            self.problem = Failed("rtsp.packet", wrong)
        self.last = time.monotonic()

    def lost(self, how):
        if self.problem is None:
            self.problem = Failed("rtsp.closed", "the connection was " + how)
        if self.answer is not None and not self.answer.done():
            self.answer.set_exception(self.problem)

    # What is asked.

    async def request(self, method, url, more=""):
        self.sequence += 1
        login = self.digest(method, url) if self.login else ""
        text = "%s %s RTSP/1.0\r\nCSeq: %d\r\n%s%s%s\r\n" % (method, url, self.sequence, login, more, self.session)
        answer = await self.exchange(text.encode(), method)
        challenge = re.search(r'realm="(.*?)", nonce="(.*?)"', answer)
        if challenge:
            self.login = challenge.groups()
        return answer

    async def exchange(self, data, what):
        if self.problem is not None:
            raise self.problem
        self.answer = asyncio.get_running_loop().create_future()
        self.send(data)
        try:
            return await asyncio.wait_for(self.answer, REQUEST_SECONDS)
        except asyncio.TimeoutError:
            raise Failed("rtsp.timeout", "%s: no answer in %d s" % (what, REQUEST_SECONDS))

    async def ask(self, method, url, more=""):
        answer = await self.request(method, url, more)
        status = answer.split("\r\n")[0]
        if " 200 " not in status:
            raise Failed("rtsp.refused", "%s: %s" % (method, status))
        return answer

    def digest(self, method, url):
        def md5(text):
            return hashlib.md5(text.encode()).hexdigest()
        realm, nonce = self.login
        response = md5(md5("admin:%s:admin" % realm) + ":" + nonce + ":" + md5(method + ":" + url))
        return ('Authorization: Digest username="admin", realm="%s", nonce="%s", uri="%s", response="%s"\r\n'
                % (realm, nonce, url, response))

    async def describe(self):
        """@return the tracks of the SDP"""
        await self.request("DESCRIBE", self.url)
        sdp = await self.ask("DESCRIBE", self.url)
        return [int(number) for number in re.findall(r"a=control:[^\r\n]*trackID=(\d+)", sdp)]

    async def set_up(self, tracks):
        for track in tracks:
            answer = await self.ask("SETUP", "%s/trackID=%d" % (self.url, track),
                                    "Transport: %s\r\n" % await self.transport_of(track))
            self.session = "Session: %s\r\n" % re.search(r"Session: (\d+)", answer).group(1)

    async def transport_of(self, track):
        return "RTP/AVP/TCP;unicast;interleaved=%d-%d" % (2 * track, 2 * track + 1)

    async def play(self, seconds):
        await self.ask("PLAY", self.url)
        self.last = time.monotonic()
        end = self.last + seconds
        while self.worker.running and time.monotonic() < end:
            await asyncio.sleep(min(0.5, max(0, end - time.monotonic())))
            if self.problem is not None:
                raise self.problem
            if time.monotonic() - self.last > SILENT_SECONDS and not self.is_stalled:
                raise Failed("rtsp.silent", "no packet for %d s" % SILENT_SECONDS)

    async def visit(self, seconds):
        await self.open()
        await self.set_up(await self.describe())
        await self.play(seconds)
        if self.is_stalled:
            return  # it goes without a word
        if random.random() < 0.8:
            await self.ask("TEARDOWN", self.url)
        self.check_losses()

    def check_losses(self):
        missing = sum(track.missing for track in self.tracks.values())
        self.worker.count("lost", missing)
        if missing:
            raise Failed("rtsp.lost", "%d packets are missing" % missing)

    # What goes wrong on purpose.

    def stall(self, seconds):
        """Reads nothing for a while, then goes on."""
        self.is_stalled = True
        for transport in self.transports:
            if not transport.is_closing():
                transport.pause_reading()
        asyncio.get_running_loop().call_later(seconds, self.go_on)

    def go_on(self):
        for transport in self.transports:
            if not transport.is_closing():
                transport.resume_reading()
        self.last = time.monotonic()
        self.is_stalled = False

    def reset(self):
        """Goes with a reset, as a process does that ends with bytes unread."""
        self.problem = Failed(ON_PURPOSE, "reset")
        for transport in self.transports:
            sock = transport.get_extra_info("socket")
            if sock is not None and isinstance(transport.get_protocol(), Connection) and not transport.is_closing():
                sock.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
                transport.abort()

    def close(self):
        for transport in self.transports:
            transport.abort()


class UdpClient(Client):
    """RTP and RTCP on ports of its own."""

    NAME = "udp"

    async def transport_of(self, track):
        port = await self.take_ports(2 * track)
        return "RTP/AVP;unicast;client_port=%d-%d" % (port, port + 1)

    async def take_ports(self, channel):
        loop = asyncio.get_running_loop()
        for _ in range(100):
            port = random.randrange(30000, 60000, 2)
            pair = [socket.socket(type=socket.SOCK_DGRAM) for _ in range(2)]
            try:
                for number, one in enumerate(pair):
                    one.bind(("0.0.0.0", port + number))
            except OSError:
                for one in pair:
                    one.close()
                continue
            for number, one in enumerate(pair):
                one.setsockopt(socket.SOL_SOCKET, socket.SO_RCVBUF, UDP_BUFFER)
                one.setblocking(False)
                transport, _ = await loop.create_datagram_endpoint(
                    lambda number=number: Media(self, channel + number), sock=one)
                self.transports.append(transport)
            return port
        raise Failed("worker.failed", "no pair of ports is free")

    def stall(self, seconds):
        pass  # a server does not feel a UDP client that reads nothing


class TunnelClient(Client):
    """RTSP through HTTP: answers and media on one connection, requests as base64 on another."""

    NAME = "http"

    async def open(self):
        cookie = "%032x" % random.getrandbits(128)
        path = re.sub("rtsp://[^/]*", "", self.url)
        self.transport = await self.connect()
        answer = await self.exchange(("GET %s HTTP/1.0\r\nx-sessioncookie: %s\r\n"
                                      "Accept: application/x-rtsp-tunnelled\r\n\r\n" % (path, cookie)).encode(), "GET")
        if " 200 " not in answer.split("\r\n")[0]:
            raise Failed("rtsp.refused", "GET: " + answer.split("\r\n")[0])
        self.transport = await self.connect()
        self.transport.write(("POST %s HTTP/1.0\r\nx-sessioncookie: %s\r\nContent-Type: application/x-rtsp-tunnelled\r\n"
                              "Content-Length: 32767\r\n\r\n" % (path, cookie)).encode())

    async def exchange(self, data, what):
        return await super().exchange(data if what == "GET" else base64.b64encode(data), what)


class TalkClient(Client):
    """Speaks, and hears the camera's sound."""

    NAME = "talk"

    async def play(self, seconds):
        speaking = asyncio.get_running_loop().create_task(self.speak())
        try:
            await super().play(seconds)
        finally:
            speaking.cancel()

    async def speak(self):
        """A-law as RTP packets of payload type 8, interleaved."""
        for number in range(1 << 30):
            header = struct.pack(">BBHII", 0x80, 8, number & 0xFFFF, number * TALK_BYTES & 0xFFFFFFFF, 0x1234)
            payload = header + bytes([number & 0xFF]) * TALK_BYTES
            if self.problem is not None:
                return
            self.send(b"$\0" + struct.pack(">H", len(payload)) + payload)
            await asyncio.sleep(TALK_SECONDS)


async def live(kind, worker):
    return kind(worker, random.choice(("/live/ch1/main", "/live/ch1/main", "/live/ch1/sub")))


async def talk(worker):
    return TalkClient(worker, "/talk")


async def recording(kind, worker):
    """A client of something that was recorded; of a live stream when nothing is."""
    found = [one for one in await api.sections((worker.host, worker.http)) if one[1] >= 3]
    if not found:
        return await live(kind, worker)
    start, seconds = random.choice(api.lasting(found))
    client = kind(worker, api.recording_path(start, seconds))
    client.longest = seconds - 2
    return client


# What each of ten clients is, again and again. At most 16 recordings play at once: the camera ends the oldest.
KINDS = [
    lambda worker: live(UdpClient, worker),
    lambda worker: live(Client, worker),
    lambda worker: live(TunnelClient, worker),
    lambda worker: recording(Client, worker),
    lambda worker: live(UdpClient, worker),
    lambda worker: live(Client, worker),
    lambda worker: live(TunnelClient, worker),
    lambda worker: recording(UdpClient, worker),
    lambda worker: live(UdpClient, worker),
    talk,
]


class RtspClients(Worker):
    SECONDS = (2, 20)  # how long a client stays

    def __init__(self, host, http, rtsp, number, is_slow):
        super().__init__()
        self.host, self.http, self.rtsp = host, int(http), int(rtsp)
        self.number = int(number)
        self.is_slow = is_slow
        self.clients = set()

    def on_go(self):
        self.running = True
        for slot in range(self.number):
            self.start(self.come_and_go(KINDS[slot % len(KINDS)]))

    def on_stall(self, seconds):
        for client in list(self.clients):
            client.stall(float(seconds))

    def on_reset(self):
        for client in list(self.clients):
            client.reset()

    async def come_and_go(self, make):
        await asyncio.sleep(random.uniform(0, 2))
        while self.running:
            pause = random.uniform(0, 1) if await self.one_visit(make) else TRY_AGAIN_SECONDS
            if self.running:
                await asyncio.sleep(pause)

    async def one_visit(self, make):
        """@return whether all went well"""
        began = time.monotonic()
        client, name = None, "rtsp"
        try:
            client = await make(self)
            name = client.NAME + " " + client.url
            self.clients.add(client)
            seconds = random.uniform(*self.SECONDS)
            await client.visit(min(seconds, max(1, getattr(client, "longest", seconds))))
            self.count("visits " + client.NAME)
            return True
        except Failed as failed:
            if failed.kind == ON_PURPOSE:
                self.count("resets")
                return True
            since = client.last if failed.kind == "rtsp.silent" else began
            self.error(failed.kind, "%s: %s" % (name, failed), since)
        except (OSError, asyncio.TimeoutError, asyncio.IncompleteReadError, api.BadAnswer) as error:
            self.error("api.failed", "%s: SearchByTime: %r" % (name, error), began)
        finally:
            if client is not None:
                self.clients.discard(client)
                client.close()
                self.count("packets", sum(track.packets for track in client.tracks.values()))
        return False


if __name__ == "__main__":
    RtspClients(*sys.argv[1:5], is_slow=sys.argv[5:] == ["slow"]).run()
