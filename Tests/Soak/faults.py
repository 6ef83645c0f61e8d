"""What the soak breaks on purpose, and which errors each of that explains.

A fault is a function of the soak and of the seconds that it lasts. The kinds of errors that it explains are listed as
narrowly as what clients must put up with allows: a killed client explains nothing, since nobody else may feel it.
"""

import signal
import socket
import time

import api
import world

# "log.request" too: the camera serves a request when one read brings all of it, and behind an outage TCP cuts anew what
# was on its way.
OUTAGE = ("rtsp.*", "api.*", "alarm.*", "sample.*", "log.request", "log.timeout")

# Seconds for everybody to be themselves again after an outage: TCP waits longer with each try, up to twice as long as
# the outage lasted, and clients come again within a second.
OUTAGE_AFTER = 20
IDLE_CONNECTIONS = 60   # to each port, while descriptors are short
FREE_DESCRIPTORS = 8    # left to the camera then


class Fault:
    def __init__(self, name, seconds, kinds, after, inject):
        self.name = name
        self.seconds = seconds  # at full length
        self.kinds = kinds
        self.after = after
        self.inject = inject


def kill_clients(soak, seconds):
    """A program with ten clients dies in the middle of all of them, and comes again."""
    load = soak.rtsp_loads[0]
    load.program.kill()
    soak.wait(seconds)
    load.start()
    load.program.order("go")


def reset_clients(soak, seconds):
    soak.rtsp_loads[1].program.order("reset")
    soak.wait(seconds)


def stall_readers(soak, seconds):
    soak.rtsp_loads[2].program.order("stall", seconds)
    soak.wait(seconds)


def rude_peers(soak, seconds):
    soak.api_load.program.order("rude", seconds)
    soak.wait(seconds)


def change_stream(soak, seconds):
    """Clients stay while their stream gets another rate, size and profile."""
    for size, rate, profile in (("640x360", 8, "highProfile"), ("320x180", 10, "baseLine")):
        soak.ask("SetVideoStreamConfig", api.ROOT % (
            '<streams type="list" count="1"><item id="0"><resolution>%s</resolution><frameRate>%d</frameRate>'
            "<maxBitRate>400</maxBitRate><GOP>10</GOP><encodeType>h264</encodeType><encodeLevel>%s</encodeLevel>"
            "<quality>medium</quality></item></streams>" % (size, rate, profile)))
        soak.wait(seconds / 2)


def change_sound(soak, seconds):
    """Ends all sessions: players have the code of the sound from the description that they got."""
    for code in ("G711u", "G711a"):
        soak.ask("SetAudioStreamConfig", api.ROOT % ("<audioEncode>%s</audioEncode>" % code))
        soak.wait(seconds / 2)


def exhaust_descriptors(soak, seconds):
    before = soak.camera.descriptor_limit()
    soak.camera.limit_descriptors(world.Figures(soak.camera.pid).descriptors + FREE_DESCRIPTORS)
    idle = []
    try:
        for port in (world.HTTP, world.RTSP) * IDLE_CONNECTIONS:
            one = socket.socket()
            one.setblocking(False)
            one.connect_ex((world.CAMERA_ADDRESS, port))
            idle.append(one)
        soak.wait(seconds)
    finally:
        for one in idle:
            one.close()
        soak.camera.limit_descriptors(before)


def fill_disk(soak, seconds):
    soak.camera.fill_disk()
    try:
        soak.wait(seconds)
    finally:
        soak.camera.free_disk()


def jump_clock(soak, seconds):
    """An hour ahead, an hour back, and right again."""
    for shift in (3600, -3600, 0):
        soak.camera.shift_clock(shift)
        soak.wait(seconds / 3)


def interface_down(soak, seconds):
    soak.network.set_down()
    try:
        soak.wait(seconds)
    finally:
        soak.network.set_up()


def interface_gone(soak, seconds):
    soak.network.unplug()
    try:
        soak.wait(seconds)
    finally:
        soak.network.plug_in()


def cameras_vanish(soak, seconds):
    for simulator in soak.simulators[:3]:
        simulator.switch_off()
    soak.wait(seconds)
    for simulator in soak.simulators[:3]:
        simulator.start()


def cameras_refuse(soak, seconds):
    for password in (world.OTHER_PASSWORD, world.PASSWORD):
        for simulator in soak.simulators[3:5]:
            simulator.switch_off()
        soak.wait(seconds / 2)
        for simulator in soak.simulators[3:5]:
            simulator.start(password)
        soak.wait(seconds / 2)


def cameras_hang(soak, seconds):
    for simulator in soak.simulators[5:7]:
        simulator.program.process.send_signal(signal.SIGSTOP)
    soak.wait(seconds)
    for simulator in soak.simulators[5:7]:
        simulator.program.process.send_signal(signal.SIGCONT)


def recorder_without_network(soak, seconds):
    soak.recorder_network.ip("link", "set", "lo", "down")
    soak.wait(seconds)
    soak.recorder_network.ip("link", "set", "lo", "up")


# In this order, in each round. No client may feel a fault without kinds.
CAMERA_FAULTS = [
    Fault("killed clients", 4, (), 0, kill_clients),
    Fault("clients reset", 3, (), 0, reset_clients),
    Fault("stalled readers", 14, (), 0, stall_readers),
    Fault("rude peers", 8, ("log.request",), 2, rude_peers),
    Fault("stream changed", 6, (), 0, change_stream),
    Fault("disk full", 8, ("api.answer", "log.disk"), 3, fill_disk),
    Fault("clock jumps", 9, (), 0, jump_clock),
    Fault("sound changed", 4, ("rtsp.closed", "rtsp.refused", "sample.*", "api.answer"), 3, change_sound),
    Fault("descriptors exhausted", 6, OUTAGE + ("log.descriptors", "log.media"), OUTAGE_AFTER, exhaust_descriptors),
    Fault("interface down", 4, OUTAGE, OUTAGE_AFTER, interface_down),
    Fault("interface gone", 4, OUTAGE, OUTAGE_AFTER, interface_gone),
]

# At the same time as those. The recorder looks for its cameras every ten seconds, and a login to one that hangs lasts up
# to 40 seconds, in which it looks for no other.
RECORDER_AFTER = 50
RECORDER_FAULTS = [
    Fault("cameras vanish", 15, ("recorder.*",), RECORDER_AFTER, cameras_vanish),
    Fault("cameras refuse", 30, ("recorder.*",), RECORDER_AFTER, cameras_refuse),
    Fault("cameras hang", 8, ("recorder.*",), RECORDER_AFTER, cameras_hang),
    Fault("recorder without network", 4, ("recorder.*",), RECORDER_AFTER, recorder_without_network),
]
