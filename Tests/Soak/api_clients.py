"""Clients of the camera's XML API: a program of the soak.

    api_clients.py HOST HTTP-PORT RTSP-PORT LOCAL-ADDRESS ALARM-PORT

Reads and writes in turn, pictures, alarms and their reports to a server, and peers that do not finish what they begin.
Orders: "go", "quiet", "rude SECONDS".
"""

import asyncio
import itertools
import random
import sys
import time

import api
from worker import Worker

READERS = 4
PAUSE_SECONDS = 0.2  # between two requests of a client: some 20 requests a second of all of them
ALARM_SECONDS = 10   # for a report to come: the alarm ends after the hold time of the input, which is set to 1 s
RUDE_PEERS = 8       # of each sort

READS = ["GetDeviceInfo", "GetDateAndTime", "GetChannelList", "GetAlarmInList", "GetAlarmOutList", "GetImageConfig",
         "GetImageOsdConfig", "GetPrivacyMaskConfig", "GetStreamCaps", "GetVideoStreamConfig", "GetAudioStreamConfig",
         "GetMotionConfig", "GetAlarmInConfig/1", "GetAlarmOutConfig/1", "GetAlarmStatus", "GetAlarmServerConfig",
         "GetNetBasicConfig", "GetPortConfig", "GetDdnsConfig", "PtzGetCaps", "SearchRecordDate", "GetSnapshot"]

WRITES = [
    ("SetMotionConfig", "<motion><switch>true</switch><sensitivity>8</sensitivity></motion>"),
    ("SetMotionConfig", "<motion><switch>false</switch></motion>"),
    ("SetAlarmOutConfig/1", "<alarmOut><alarmOutName>Siren</alarmOutName><alarmHoldTime>2</alarmHoldTime></alarmOut>"),
    ("ManualAlarmOut/1", "<action><status>true</status></action>"),
    ("ManualAlarmOut/1", "<action><status>false</status></action>"),
    ("SearchByTime/1", api.EVER),
    ("RequestKeyFrame", ""),
]

SENSOR = "<sensor><sensorName>Door</sensorName><switch>true</switch><voltage>NO</voltage><alarmHoldTime>1</alarmHoldTime></sensor>"
OPEN_HEAD = b"GET /GetDeviceInfo HTTP/1.1\r\nHost: camera\r\n"

# What rude peers send at once, and what then every half second.
RUDE = [
    (b"", b""),                                                                                # nothing at all
    (OPEN_HEAD, b""),                                                                          # half a request
    (OPEN_HEAD, b"X-Slow: 1\r\n"),                                                             # one without an end
    (b"GET /GetDeviceInfo HTTP/1.1\r\nX-Long: " + b"x" * (1 << 20), b""),                      # a header of 1 MiB
    (b"POST /SetImageConfig HTTP/1.1\r\nContent-Length: 2147483647\r\n\r\n", b"<" * 65536),    # a body of 2 GiB
    (b"POST /SetImageConfig HTTP/1.1\r\nContent-Length: 99\r\n\r\n<config>", b""),             # a body cut short
    (bytes(range(256)) * 16, b""),                                                             # no HTTP at all
]


class ApiClients(Worker):
    def __init__(self, host, http, rtsp, local, alarm_port):
        super().__init__()
        self.camera = (host, int(http))
        self.rtsp = (host, int(rtsp))
        self.local, self.alarm_port = local, int(alarm_port)
        self.reports = None

    def on_go(self):
        self.running = True
        for number in range(READERS):
            self.start(self.read_and_write(number))
        self.start(self.alarms())

    def on_rude(self, seconds):
        for first, more in RUDE:
            for _ in range(RUDE_PEERS):
                self.start(self.be_rude(self.camera, first, more, float(seconds)))
        for first in (b"", b"DESCRIBE rtsp://camera/live", b"SETUP " + b"x" * 100000, b"$\0\xff\xff"):
            for _ in range(RUDE_PEERS):
                self.start(self.be_rude(self.rtsp, first, b"", float(seconds)))

    async def ask(self, path, body=None):
        """@return the answer, or None when there is none that can be used; that is reported"""
        began = time.monotonic()
        try:
            answer = await api.ask(self.camera, path, body)
        except api.BadAnswer as bad:
            self.error("api.answer", str(bad), began)
        except asyncio.TimeoutError:
            self.error("api.timeout", "%s: no answer in %d s" % (path, api.ANSWER_SECONDS), began)
        except (OSError, asyncio.IncompleteReadError, ValueError, IndexError) as error:
            self.error("api.failed", "%s: %r" % (path, error), began)
        else:
            self.count("requests")
            return answer
        return None

    async def read_and_write(self, number):
        writes = itertools.cycle(WRITES[number:] + WRITES[:number])
        while self.running:
            await self.ask(random.choice(READS))
            await asyncio.sleep(random.uniform(0, 2 * PAUSE_SECONDS))
            if random.random() < 0.25:
                path, body = next(writes)
                await self.ask(path, api.ROOT % body)

    # Alarms: a contact closes and opens, and a server is told each time.

    async def alarms(self):
        self.reports = asyncio.Queue()
        server = await asyncio.start_server(self.take_report, self.local, self.alarm_port)
        try:
            await self.ask("SetAlarmServerConfig", api.ROOT % (
                "<alarmServer><serverAddr>%s</serverAddr><serverPort>%d</serverPort></alarmServer>"
                % (self.local, self.alarm_port)))
            await self.ask("SetAlarmInConfig/0", api.ROOT % SENSOR)
            while self.running:
                await self.one_alarm()
                await asyncio.sleep(2)
        finally:
            server.close()
            await server.wait_closed()

    async def one_alarm(self):
        while not self.reports.empty():
            self.reports.get_nowait()
        for word, is_wanted in (("close", lambda report: b'<item id="0">true' in report),
                                ("open", lambda report: b'<item id="0">true' not in report)):
            began = time.monotonic()
            if await self.ask("camera", "ORBIT-700 sensor 0 " + word) is None:
                return
            if not await self.is_reported(is_wanted):
                self.error("alarm.missing", "sensor 0 %s: no report in %d s" % (word, ALARM_SECONDS), began)
            self.count("alarms")

    async def is_reported(self, is_wanted):
        end = time.monotonic() + ALARM_SECONDS
        while time.monotonic() < end:
            try:
                if is_wanted(await asyncio.wait_for(self.reports.get(), max(0.01, end - time.monotonic()))):
                    return True
            except asyncio.TimeoutError:
                return False
        return False

    async def take_report(self, reader, writer):
        try:
            report = await asyncio.wait_for(reader.read(), ALARM_SECONDS)
            await self.reports.put(report)
            if report:
                api.check_document("a report of an alarm", report)
        except api.BadAnswer as bad:
            self.error("alarm.report", str(bad))
        except (OSError, asyncio.TimeoutError):
            pass  # the report is missed where it is waited for
        finally:
            writer.close()

    async def be_rude(self, address, first, more, seconds):
        """Whatever the camera does with such a peer, nobody else feels it."""
        end = time.monotonic() + seconds
        try:
            _, writer = await asyncio.open_connection(*address)
        except OSError as error:
            self.error("api.failed", "a rude peer cannot connect: %s" % error)
            return
        try:
            writer.write(first)
            while time.monotonic() < end:
                await asyncio.sleep(0.5)
                writer.write(more)
            self.count("rude")
        except OSError:
            self.count("rude")
        finally:
            writer.transport.abort()


if __name__ == "__main__":
    ApiClients(*sys.argv[1:6]).run()
