"""netserver-nvr against a simulated camera: each command, each key in each dialect, each exit status."""

import os
import pathlib
import pty
import select
import signal
import socket
import subprocess
import tempfile
import threading
import time
import unittest

import nvr
from nvr import DIALECTS, Simulator

GET_KEYS = ["ipv4", "dns", "networkProtocols", "dateAndTime", "streamURI", "profiles", "profile", "videoEncoderCfgOpts",
            "videoEncoderCfg", "imageOpts", "imageSettings", "devInfo", "alarmout", "alarmin", "streamCount",
            "serviceUrl", "motion", "presets", "cruises"]  # and snapshotURI, pullMessages, which answer otherwise
SETS = [
    "<ipv4><token>eth0</token><dhcp>false</dhcp><ip>10.0.0.5</ip><netmask>255.255.255.0</netmask>"
    "<gateway>10.0.0.1</gateway></ipv4>",
    "<dns><dhcp>false</dhcp><ip>10.0.0.2</ip></dns>",
    "<networkProtocols><http><port>8080</port></http><rtsp><port>8554</port></rtsp></networkProtocols>",
    "<dateAndTime><type>NTP</type></dateAndTime>",
    "<videoEncodeCfg><item><index>0</index><encode>H264</encode><frameRate>10</frameRate></item></videoEncodeCfg>",
    "<imageSettings><brightness>10</brightness></imageSettings>",
    "<createPullPointSubscription><timeout>PT60S</timeout></createPullPointSubscription>",
    "<subscribe><clientAddr>http://127.0.0.1:6699/subscription_0</clientAddr><timeout>PT60S</timeout></subscribe>",
    "<renew><serverAddr>http://127.0.0.1:PORT/onvif/subscription_1</serverAddr><timeout>PT60S</timeout></renew>",
    "<unsubscribe/>",
    "<continuousMove><ptz><velocity><x>10</x></velocity></ptz></continuousMove>",
    "<ptzStop><panTilt>true</panTilt><zoom>true</zoom></ptzStop>",
    "<addPreset><presetName>yard</presetName></addPreset>",
    "<modifyPresetName><presetToken>3</presetToken><presetName>garden</presetName></modifyPresetName>",
    "<gotoPreset><presetToken>3</presetToken></gotoPreset>",
    "<removePreset><presetToken>3</presetToken></removePreset>",
    "<continuousFocus><speed>50</speed></continuousFocus>",
    "<imageStop><token>VideoSource_1</token></imageStop>",
    "<alarmout><token>Alarm1</token><delayTime>5</delayTime><switch>off</switch></alarmout>",
    "<manualAlarmout><token>Alarm1</token><active>1</active></manualAlarmout>",
    "<motion><sensitivity>40</sensitivity><area><item>1111111111111111111111</item></area></motion>",
    "<addCruise/>",
    "<modifyCruise><token>2</token><name>night</name><presets><item><token>1</token></item></presets></modifyCruise>",
    "<startCruise><token>2</token></startCruise>",
    "<pauseCruise><token>2</token></pauseCruise>",
    "<stopCruise><token>2</token></stopCruise>",
]  # and delCruise, which no camera understands


def set_document(keys):
    return f'<Set version="1.0" systemType="ipc">{keys}</Set>'


def operations(trace):
    """What a trace shows was asked, in order."""
    return [line.strip()[1:].split(">")[0].split("/")[0].split(":")[-1]
            for before, line in zip(trace.splitlines(), trace.splitlines()[1:]) if before.strip() == "<s:Body>"]


class Dialects(unittest.TestCase):
    def each(self, check):
        for dialect in DIALECTS:
            with self.subTest(dialect), Simulator(dialect) as camera:
                check(camera)

    def test_login_shows_services_and_profiles(self):
        def check(camera):
            status, out, err = camera.run("login")
            self.assertEqual((0, ""), (status, err))
            self.assertIn("media      /onvif/media_service\n", out)
            self.assertIn("0      Profile_1  main  H264      1920*1080  25        4096    yes\n", out)
        self.each(check)

    def test_get_reads_each_key(self):
        def check(camera):
            for key in GET_KEYS:
                status, out, err = camera.run("get", key)
                self.assertEqual((0, ""), (status, err), key)
                self.assertIn(f"<{key}>", out)
                self.assertNotIn("<status>fail", out)
        self.each(check)

    def test_set_sends_each_key(self):
        def check(camera):
            for keys in SETS:
                document = set_document(keys.replace("PORT", str(camera.port)))
                status, out, err = camera.run("set", "-", text_in=document)
                self.assertEqual((0, ""), (status, err), keys)
                self.assertIn("<status>success", out)
        self.each(check)

    def test_snapshot_writes_the_picture(self):
        def check(camera):
            with tempfile.TemporaryDirectory() as directory:
                path = pathlib.Path(directory, "a.jpg")
                self.assertEqual((0, "", ""), camera.run("snapshot", "1", str(path)))
                self.assertEqual(b"\xff\xd8\xff\xe0 a small picture \xff\xd9", path.read_bytes())
        self.each(check)


class Commands(unittest.TestCase):
    def setUp(self):
        self.camera = Simulator().__enter__()
        self.addCleanup(self.camera.__exit__)
        directory = tempfile.TemporaryDirectory()
        self.addCleanup(directory.cleanup)
        self.trace = pathlib.Path(directory.name, "trace")

    def traced(self, *command):
        self.assertEqual((0, "", ""), self.camera.run("--trace", str(self.trace), *command))
        return self.trace.read_text()

    def test_move_ends_with_a_stop(self):
        trace = self.traced("move", "-50", "0", "100", "--ms", "20")
        self.assertEqual(["ContinuousMove", "Stop"], operations(trace)[-2:])
        self.assertIn('<tt:PanTilt x="-0.50000000" y="0.00000000"', trace)
        self.assertIn('<tt:Zoom x="1.00000000"', trace)

    def test_a_move_that_is_interrupted_ends_with_a_stop(self):
        process = subprocess.Popen([nvr.NVR, *self.camera.login(), "--trace", str(self.trace), "move", "1", "1", "1",
                                    "--ms", "60000"], env=nvr.environment(), stderr=subprocess.PIPE, text=True)
        while not self.trace.exists() or "ContinuousMoveResponse" not in self.trace.read_text():
            self.assertIsNone(process.poll())
            time.sleep(0.01)
        process.send_signal(signal.SIGINT)
        self.assertEqual("", process.communicate(timeout=10)[1])
        self.assertEqual(0, process.returncode)
        self.assertEqual(["ContinuousMove", "Stop"], operations(self.trace.read_text())[-2:])

    def test_stop_stops_all_axes(self):
        trace = self.traced("stop")
        self.assertIn("<ptzw:PanTilt>true</ptzw:PanTilt>", trace)
        self.assertIn("<ptzw:Zoom>true</ptzw:Zoom>", trace)

    def test_presets_lists_them(self):
        self.assertEqual((0, "TOKEN  NAME\n1      door\n2      gate\n", ""), self.camera.run("presets"))

    def test_goto_moves_to_one(self):
        self.assertIn("<ptzw:PresetToken>2</ptzw:PresetToken>", self.traced("goto", "2"))

    def test_raw_shows_what_is_said(self):
        status, out, _ = self.camera.run("raw", "streamURI", "--index", "1")
        self.assertEqual(0, status)
        self.assertIn("POST /onvif/media_service HTTP/1.1\n", out)
        self.assertIn("<mdw:ProfileToken>Profile_2</mdw:ProfileToken>", out)
        self.assertIn("rtsp://192.168.1.20:554/Profile_2", out)
        self.assertNotIn("<GetResponse", out)

    def test_traces_hold_no_credentials(self):
        trace = self.traced("goto", "1")
        self.assertIn("GetServices", trace)
        self.assertNotIn("secret", trace)
        self.assertNotIn("YWRtaW46c2VjcmV0", trace)
        self.assertEqual(trace.count("#PasswordDigest"), trace.count('#PasswordDigest">***</wsse:Password>'))
        self.assertGreater(trace.count("***"), 2)

    def test_pull_messages_shows_the_request_without_credentials(self):
        status, out, _ = self.camera.run("get", "pullMessages", "--field", "timeout=PT5S", "--field", "messageLimit=10")
        self.assertEqual(0, status)
        self.assertIn("Authorization: Basic ***\n", out)
        self.assertIn('#PasswordDigest">***</wsse:Password>', out)
        self.assertIn("<ew:Timeout>PT5S</ew:Timeout>", out)

    def test_the_options_of_the_login_may_stand_behind_the_command(self):
        self.assertEqual(0, nvr.run("presets", *self.camera.login())[0])

    def test_set_reads_a_file(self):
        self.trace.write_text(set_document("<gotoPreset><presetToken>1</presetToken></gotoPreset>"))
        self.assertEqual(0, self.camera.run("set", str(self.trace))[0])

    def test_the_password_is_asked_for_on_the_terminal(self):
        pid, terminal = pty.fork()
        if pid == 0:
            os.execve(nvr.NVR, [nvr.NVR, *self.camera.login(), "presets"], nvr.environment(None))
        shown = self.read_until(terminal, b"Password of admin: ")
        os.write(terminal, b"secret\n")
        shown += self.read_until(terminal, b"gate")
        self.assertEqual(0, os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1]))
        os.close(terminal)
        self.assertNotIn(b"secret", shown)

    def test_the_password_is_asked_for_when_the_document_comes_by_standard_input(self):
        document = self.trace.with_name("document")
        document.write_text(set_document("<gotoPreset><presetToken>1</presetToken></gotoPreset>"))
        pid, terminal = pty.fork()
        if pid == 0:
            os.dup2(os.open(document, os.O_RDONLY), 0)
            os.execve(nvr.NVR, [nvr.NVR, *self.camera.login(), "set", "-"], nvr.environment(None))
        self.read_until(terminal, b"Password of admin: ")
        os.write(terminal, b"secret\n")
        self.read_until(terminal, b"success")
        self.assertEqual(0, os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1]))
        os.close(terminal)

    def test_a_password_that_is_given_up_ends_the_tool(self):
        pid, terminal = pty.fork()
        if pid == 0:
            os.execve(nvr.NVR, [nvr.NVR, *self.camera.login(), "stop"], nvr.environment(None))
        self.read_until(terminal, b"Password of admin: ")
        os.write(terminal, b"sec\x03\n")
        self.read_until(terminal, b"no password")
        self.assertEqual(2, os.waitstatus_to_exitcode(os.waitpid(pid, 0)[1]))
        os.close(terminal)

    def read_until(self, terminal, text):
        shown = b""
        while text not in shown:
            self.assertTrue(select.select([terminal], [], [], 20)[0], shown)
            shown += os.read(terminal, 4096)
        return shown


class Failures(unittest.TestCase):
    def setUp(self):
        self.camera = Simulator().__enter__()
        self.addCleanup(self.camera.__exit__)

    def test_a_fault_is_told_with_status_1(self):
        self.assertEqual((1, "", "netserver-nvr: gotoPreset: fault 5: No such preset\n"), self.camera.run("goto", "9"))
        status, out, err = self.camera.run("set", "-", text_in=set_document("<delCruise><token>1</token></delCruise>"))
        self.assertEqual((1, "netserver-nvr: delCruise: fault 5: No such tour\n"), (status, err))
        self.assertIn("<description>No such tour</description>", out)

    def test_a_missing_answer_is_told_with_status_1(self):
        status, out, err = self.camera.run("set", "-", text_in=set_document("<unsubscribe/><delCruise/>"))
        self.assertEqual((1, ""), (status, out))
        self.assertIn("netserver-nvr: no usable answer to the document; 127.0.0.1:", err)

    def test_bad_usage_is_told_with_status_2(self):
        document = set_document("<nix/>")
        for command, text_in, message in [
                (["get", "nix"], None, "'nix' is no key of a Get document"),
                (["get", "streamURI", "--index", "2"], None, "there is no profile 2: the camera has 2, counted from 0"),
                (["snapshot", "2", "/dev/null"], None, "there is no profile 2"),
                (["snapshot", "0", "/no such directory/a.jpg"], None, "cannot write '/no such directory/a.jpg'"),
                (["set", "-"], document, "-: line 1: 'nix' is no key of a Set document"),
                (["set", "-"], "<Set>", "not well-formed XML"),
                (["set", "-"], "<Set>" + "x" * (1 << 20), "more than 1 MiB"),
                (["set", "/no such file"], None, "cannot read '/no such file'"),
                (["--trace", "/no such directory/t", "stop"], None, "--trace: cannot write"),
                (["dance"], None, "A subcommand is required")]:
            status, out, err = self.camera.run(*command, text_in=text_in)
            self.assertEqual((2, ""), (status, out), command)
            self.assertIn(message, err)

    def test_a_camera_without_profiles_is_told_with_status_2(self):
        with Simulator(profiles=0) as camera:
            self.assertEqual(0, camera.run("login")[0])
            self.assertEqual(0, camera.run("get", "streamCount", "ipv4")[0])
            for command, text_in in [(["stop"], None), (["move", "1", "1", "1"], None), (["presets"], None),
                                     (["get", "imageOpts"], None), (["get", "profile"], None), (["goto", "1"], None),
                                     (["set", "-"], set_document("<ipv4/><ptzStop/>"))]:
                self.assertEqual((2, "", "netserver-nvr: this needs a profile with a video encoder, and the camera has "
                                         "none; 'login' lists what it has\n"), camera.run(*command, text_in=text_in), command)
            self.assertIn("there is no profile 0", camera.run("snapshot", "0", "/dev/null")[2])

    def test_a_refused_login_is_told_with_status_3(self):
        status, out, err = nvr.run(*self.camera.login(), "login", password="wrong")
        self.assertEqual((3, ""), (status, out))
        self.assertIn("login failed with code 401: the camera refuses the user name or the password", err)

    def test_a_camera_that_is_not_there_is_told_with_status_3(self):
        with socket.socket() as free:
            free.bind(("127.0.0.1", 0))
            port = free.getsockname()[1]
        status, _, err = nvr.run("--host", "127.0.0.1", "--port", str(port), "login")
        self.assertEqual(3, status)
        self.assertEqual(1, err.count("\n"), err)
        self.assertIn("127.0.0.1:%d gave no answer to GetProfiles" % port, err)
        self.assertIn("login failed with code 4: no answer that can be read: check --host and --port", err)

    def test_a_web_server_is_told_with_status_3(self):
        with socket.create_server(("127.0.0.1", 0)) as server:
            def serve():
                connection = server.accept()[0]
                connection.recv(65536)
                connection.sendall(b"HTTP/1.1 404 Not Found\r\nContent-Length: 6\r\n\r\n<html>")
                connection.close()
            thread = threading.Thread(target=serve)
            thread.start()
            status, _, err = nvr.run("--host", "127.0.0.1", "--port", str(server.getsockname()[1]), "login")
            thread.join()
        self.assertEqual(3, status)
        self.assertIn("login failed with code 6: what answers does not speak ONVIF", err)

    def test_a_missing_password_is_told_with_status_2(self):
        result = subprocess.run([nvr.NVR, *self.camera.login(), "login"], stdin=subprocess.DEVNULL,
                                stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=nvr.environment(None), text=True,
                                start_new_session=True)
        self.assertEqual((2, ""), (result.returncode, result.stdout))
        self.assertIn("no password: set NETSERVER_NVR_PASSWORD", result.stderr)

    def test_an_unknown_host_is_told_with_status_2(self):
        status, _, err = nvr.run("--host", "no.such.host.invalid", "stop")
        self.assertEqual(2, status)
        self.assertIn("no name that is known", err)

    def test_help_is_no_failure(self):
        status, out, err = nvr.run("--help")
        self.assertEqual((0, ""), (status, err))
        self.assertIn("snapshot", out)


if __name__ == "__main__":
    unittest.main(verbosity=2)
