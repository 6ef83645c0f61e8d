"""Each command of the XML API with curl against the camera, and what it does there."""

import base64
import os
import re
import socket
import tempfile
import time
import unittest

from camera import Camera, gray_picture, mean_luma, run

ROOT = '<?xml version="1.0" encoding="UTF-8"?><config version="1.0">%s</config>'


class Api(unittest.TestCase):
    OPTIONS = ("--size", "640x360", "--fps", "10")

    @classmethod
    def setUpClass(cls):
        cls.camera = cls.enterClassContext(Camera(*cls.OPTIONS))

    def curl(self, command, body=None, user="admin:admin"):
        """Status and body of the answer."""
        with tempfile.NamedTemporaryFile() as answer:
            more = [] if body is None else ["--data-binary", body]
            result = run("curl", "--silent", "--show-error", "--user", user, "--output", answer.name, "--write-out",
                         "%{http_code}", *more, self.camera.page(command))
            answer.seek(0)
            return int(result.stdout), answer.read()

    def get(self, command, body=None):
        status, answer = self.curl(command, body)
        self.assertEqual(200, status, (command, answer))
        self.check_form(answer)
        return answer.decode()

    def set(self, command, content, wrap=True):
        status, answer = self.curl(command, ROOT % content if wrap else content)
        self.assertEqual(200, status, (command, answer))
        self.assertIn(b'status="success"', answer)

    def refuse(self, command, content, code, wrap=True):
        status, answer = self.curl(command, ROOT % content if wrap else content)
        self.assertEqual(400, status, (command, answer))
        self.assertIn(b'errorCode="%d"' % code, answer)

    def check_form(self, document):
        lint = run("bash", "-c", "xmllint --noout - <<'END'\n%s\nEND" % document.decode())
        self.assertEqual("", lint.stderr)

    def value(self, document, name):
        """The text of the last element of this name; a type may have the same name."""
        found = re.findall(r"<%s[^>]*>(?:<!\[CDATA\[)?([^<]*?)(?:\]\]>)?</%s>" % (name, name), document)
        self.assertNotEqual([], found, (name, document))
        return found[-1]

    def state(self):
        return self.get("camera", "ORBIT-700 status")

    def wait_for(self, condition, seconds=20):
        end = time.monotonic() + seconds
        while not condition():
            self.assertLess(time.monotonic(), end, "never came true")
            time.sleep(0.05)

    def snapshot(self):
        status, picture = self.curl("GetSnapshot")
        self.assertEqual(200, status)
        return picture


class Device(Api):
    def test_tells_what_it_is(self):
        info = self.get("GetDeviceInfo")
        self.assertEqual("netserver-camera", self.value(info, "model"))
        self.assertEqual("2", self.value(info, "alarmInCount"))
        self.assertEqual("1", self.value(info, "audioOutCount"))
        self.assertIn("<item>1</item>", self.get("GetChannelList"))
        for command in ("GetAlarmInList", "GetAlarmOutList"):
            self.assertIn('count="2"', self.get(command))

    def test_keeps_its_time_settings(self):
        self.set("SetDateAndTime", "<time><timezoneInfo><timeZone>GMT+02:00</timeZone></timezoneInfo></time>")
        self.assertEqual("GMT+02:00", self.value(self.get("GetDateAndTime"), "timeZone"))

    def test_password_change_holds_at_once(self):
        def change(user, new):
            word = base64.b64encode(new.encode()).decode()
            return self.curl("ModifyPassword", ROOT % (
                "<userPassword><oldPassword>%s</oldPassword><password>%s</password></userPassword>" % (word, word)),
                user)[0]
        self.assertEqual(200, change("admin:admin", "new"))
        self.assertEqual(401, self.curl("GetDeviceInfo")[0])
        self.assertEqual(200, change("admin:new", "admin"))
        self.assertEqual(200, self.curl("GetDeviceInfo")[0])

    def test_has_no_profile_info(self):
        status, answer = self.curl("GetProfileInfo")
        self.assertEqual(400, status)
        self.assertIn(b'errorCode="1"', answer)

    def test_every_write_needs_a_login(self):
        for command, content in (("SetImageConfig", "<image><bright>1</bright></image>"), ("PtzControl/1/up", "<a/>"),
                                 ("SetPortConfig", "<port><netPort>1</netPort></port>"), ("Reboot", "<a/>"),
                                 ("SetPrivacyMaskConfig", '<privacyMask count="0"/>'), ("ManualAlarmOut/0",
                                 "<action><status>true</status></action>")):
            with self.subTest(command):
                status = self.curl(command, ROOT % content, "admin:wrong")[0]
                self.assertIn(status, (400, 401))  # some answer 3 to whatever the host refuses
        self.assertEqual("50", self.value(self.get("GetImageConfig"), "bright"))


class Picture(Api):
    def mean(self):
        return mean_luma(self.snapshot())

    def test_image_acts_on_the_next_snapshot(self):
        before = self.mean()
        self.set("SetImageConfig", "<image><bright>90</bright></image>")
        self.assertGreater(self.mean(), before + 40)
        self.set("SetImageConfig", "<image><bright>10</bright></image>")
        self.assertLess(self.mean(), before - 40)
        self.set("SetImageConfig", "<image><bright>50</bright><contrast>0</contrast></image>")
        _, _, pixels = gray_picture(self.snapshot())
        self.assertLess(max(pixels[640 * 60:]) - min(pixels[640 * 60:]), 60)
        self.set("SetImageConfig", "<image><contrast>50</contrast></image>")
        self.refuse("SetImageConfig", "<image><bright>101</bright></image>", 3)
        self.refuse("SetImageConfig", "<image><IRCutMode>dusk</IRCutMode></image>", 3)

    def test_flip_turns_the_picture_over(self):
        # The lowest part of the test picture is darker than its upper part.
        def halves():
            width, height, pixels = gray_picture(self.snapshot())
            rows = [sum(pixels[row * width:(row + 1) * width]) / width for row in range(height)]
            return sum(rows[30:height // 3]), sum(rows[-height // 3 + 30:])
        upper, lower = halves()
        self.set("SetImageConfig", "<image><flipSwitch>true</flipSwitch></image>")
        flipped_upper, flipped_lower = halves()
        self.set("SetImageConfig", "<image><flipSwitch>false</flipSwitch></image>")
        self.assertGreater((upper - lower) * (flipped_lower - flipped_upper), 0)

    def test_night_has_no_colour(self):
        self.set("SetImageConfig", "<image><IRCutMode>night</IRCutMode></image>")
        with tempfile.NamedTemporaryFile(suffix=".jpg") as file:
            file.write(self.snapshot())
            file.flush()
            colours = run("bash", "-c", "ffmpeg -v error -i %s -vf extractplanes=u -f rawvideo - | od -An -v -tu1 -w1"
                          " | sort -u" % file.name).stdout.split()
        self.set("SetImageConfig", "<image><IRCutMode>auto</IRCutMode></image>")
        self.assertTrue(all(126 <= int(colour) <= 130 for colour in colours), colours)

    def test_masks_hide(self):
        self.set("SetPrivacyMaskConfig", '<privacyMask type="list" count="1"><itemType/><item><switch>true</switch>'
                 "<rectangle><X>100</X><Y>100</Y><width>200</width><height>100</height></rectangle>"
                 "<color>white</color></item></privacyMask>")
        width, _, pixels = gray_picture(self.snapshot())
        inside = [pixels[row * width + column] for row in range(110, 190, 5) for column in range(110, 290, 5)]
        self.assertGreater(min(inside), 225)
        self.assertIn('count="1"', self.get("GetPrivacyMaskConfig"))
        self.refuse("SetPrivacyMaskConfig", '<privacyMask type="list" count="1"><itemType/><item><switch>true</switch>'
                    "<rectangle><X>700</X><Y>0</Y><width>2</width><height>1</height></rectangle>"
                    "<color>white</color></item></privacyMask>", 3)
        self.set("SetPrivacyMaskConfig", '<privacyMask type="list" count="0"><itemType/></privacyMask>')
        self.assertIn('count="0"', self.get("GetPrivacyMaskConfig"))

    def test_text_is_burnt_in_at_its_place(self):
        def row_of_text(y):
            """How many pixels differ from their left neighbour by much, in the band of the text."""
            width, _, pixels = gray_picture(self.snapshot())
            return sum(abs(pixels[row * width + column] - pixels[row * width + column - 1]) > 60
                       for row in range(y, y + 20) for column in range(1, width))
        plain = row_of_text(150)
        self.set("SetImageOsdConfig", "<imageOsd><time><switch>true</switch><X>20</X><Y>150</Y>"
                 "<dateFormat>day-month-year</dateFormat></time><channelName><switch>true</switch><X>300</X><Y>150</Y>"
                 "<name>Gate &amp; yard</name></channelName></imageOsd>")
        self.assertGreater(row_of_text(150), plain + 100)
        config = self.get("GetImageOsdConfig")
        self.assertIn("Gate & yard", config)
        self.assertEqual("day-month-year", self.value(config, "dateFormat").strip())
        self.refuse("SetImageOsdConfig", "<imageOsd><time><switch>true</switch><X>640</X></time></imageOsd>", 3)

    def test_snapshot_comes_within_half_a_second(self):
        self.snapshot()
        for _ in range(5):
            begin = time.monotonic()
            self.snapshot()
            self.assertLess(time.monotonic() - begin, 0.5 + 0.2)  # curl's own start

    def test_snapshots_come_at_a_low_frame_rate_too(self):
        with Camera("--size", "320x240", "--fps", "1", "--record-limit", "0") as camera:
            for _ in range(4):
                begin = time.monotonic()
                self.assertEqual(200, camera.get("GetSnapshot")[0])
                self.assertLess(time.monotonic() - begin, 0.5)

    def test_streams_are_described(self):
        caps = self.get("GetStreamCaps")
        self.assertEqual(str(self.camera.rtsp), self.value(caps, "rtspPort"))
        self.assertIn('count="2"', caps)
        self.assertIn("640x360", caps)
        self.assertIn("main", self.get("GetVideoStreamConfig"))
        self.set("RequestKeyFrame", "")
        self.set("SetVideoStreamConfig", '<streams type="list" count="1"><item id="1"><resolution>160x90</resolution>'
                 "<frameRate>5</frameRate></item></streams>")
        sub = self.get("GetVideoStreamConfig").split("<item")[2]
        self.assertIn("160x90", sub)
        self.assertRegex(sub, "<frameRate[^>]*>5<")

    def test_sound_has_another_code_after_a_change(self):
        self.assertEqual("G711a", self.value(self.get("GetAudioStreamConfig"), "audioEncode"))
        self.set("SetAudioStreamConfig", "<audioEncode>G711u</audioEncode>")
        self.assertEqual("G711u", self.value(self.get("GetAudioStreamConfig"), "audioEncode"))

        def code():
            return run("ffprobe", "-v", "error", "-rtsp_transport", "tcp", "-select_streams", "a", "-show_entries",
                       "stream=codec_name", "-of", "csv=p=0", self.camera.url()).stdout.strip()
        self.wait_for(lambda: code() == "pcm_mulaw")
        self.set("SetAudioStreamConfig", "<audioEncode>G711a</audioEncode>")
        self.wait_for(lambda: code() == "pcm_alaw")


class Ptz(Api):
    def view(self):
        return {name: float(value) for name, value in re.findall(r'(x|y|zoom|focus|iris)="([0-9.]+)"', self.state())}

    def act(self, command, content):
        self.set(command, content, wrap=False)

    def test_moves_and_stops(self):
        self.assertEqual("8", self.value(self.get("PtzGetCaps"), "controlMaxSpeed"))
        self.act("PtzControl/1/zoomin", "<actionInfo><speed>8</speed></actionInfo>")
        self.wait_for(lambda: self.view()["zoom"] > 2)
        self.act("PtzControl/1/LEFT", "<actionInfo><speed>8</speed></actionInfo>")
        self.wait_for(lambda: self.view()["x"] < 0.45)
        self.act("PtzControl/1/stop", "<actionInfo/>")
        still = self.view()
        self.assertEqual(still, self.view())
        before = self.view()["focus"]
        self.act("PtzControl/1/far", "<actionInfo><speed>2</speed></actionInfo>")
        self.assertEqual(before + 2, self.view()["focus"])
        self.refuse("PtzControl/1/jump", "<actionInfo/>", 3, wrap=False)

    def test_presets_and_cruises(self):
        self.act("PtzAddPreset", "<presetInfo><name>home</name></presetInfo>")
        self.act("PtzAddPreset", "<presetInfo><name>gate</name></presetInfo>")
        self.act("PtzModifyPresetName", "<presetInfo><id>2</id><name>yard</name></presetInfo>")
        self.act("PtzModifyPresetPosition", "<presetInfo><id>2</id></presetInfo>")
        presets = self.get("PtzGetPresets")
        self.assertIn("<![CDATA[home]]>", presets)
        self.assertIn("<![CDATA[yard]]>", presets)
        self.act("PtzGotoPreset", "<presetInfo><id>1</id></presetInfo>")
        self.refuse("PtzGotoPreset", "<presetInfo/>", 3, wrap=False)
        points = "".join('<item id="%d"><speed>8</speed><holdTime>1</holdTime></item>' % one for one in (1, 2))
        self.act("PtzAddCruise", "<cruiseInfo><name>round</name><presetInfo>%s</presetInfo></cruiseInfo>" % points)
        self.act("PtzModifyCruise", "<cruiseInfo><id>1</id><name>walk</name><presetInfo>%s</presetInfo></cruiseInfo>"
                 % points)
        self.assertIn("<![CDATA[walk]]>", self.get("PtzGetCruises"))
        cruise = self.get("PtzGetCruise", "<cruiseInfo><id>1</id></cruiseInfo>")
        self.assertIn("<![CDATA[yard]]>", cruise)
        self.act("PtzRunCruise", "<cruiseInfo><id>1</id></cruiseInfo>")
        self.assertIn('cruise="true"', self.state())
        self.act("PtzStopCruise", "<any/>")
        self.assertIn('cruise="false"', self.state())
        self.act("PtzDeleteCruise", "<cruiseInfo><id>1</id></cruiseInfo>")
        self.act("PtzDeletePreset", "<presetInfo><id>1</id></presetInfo>")
        self.act("PtzDeletePreset", "<presetInfo><id>2</id></presetInfo>")
        self.assertNotIn("CDATA", self.get("PtzGetPresets"))

    def test_protocol_of_an_external_head(self):
        self.set("PtzSetProtocolConfig", "<ptzInfo><baudRate>4800</baudRate><protocol>VISCA</protocol>"
                 "<address>7</address></ptzInfo>")
        config = self.get("PtzGetProtocolConfig")
        self.assertIn("VISCA</protocol>", config)
        self.assertIn(">4800<", config)

    def test_refusals_without_both_kinds_of_head(self):
        for kind in ("none", "integrated", "rs485"):
            with self.subTest(kind), Camera("--ptz", kind, "--size", "320x240", "--fps", "5") as camera:
                status, _, body = camera.get("PtzGetPresets")
                self.assertEqual(400, status)
                self.assertIn(b'errorCode="1"', body)


class Alarms(Api):
    def test_configurations(self):
        self.set("SetAlarmInConfig/0", "<sensor><sensorName>Door</sensorName><voltage>NC</voltage></sensor>")
        self.assertIn("Door", self.get("GetAlarmInConfig/0"))
        self.assertIn("NC", self.value(self.get("GetAlarmInConfig/0"), "voltage"))
        self.set("SetAlarmInConfig/0", "<sensor><voltage>NO</voltage></sensor>")
        self.set("SetAlarmOutConfig/1", "<alarmOut><alarmOutName>Siren</alarmOutName></alarmOut>")
        self.assertIn("Siren", self.get("GetAlarmOutConfig/1"))
        self.assertEqual(400, self.curl("GetAlarmInConfig/7")[0])

    def test_outputs_are_switched(self):
        self.set("ManualAlarmOut/1", "<action><status>true</status></action>")
        self.assertIn('<output id="1">true</output>', self.state())
        self.set("ManualAlarmOut/1", "<action><status>false</status></action>")
        self.assertIn('<output id="1">false</output>', self.state())

    def test_a_sensor_shows_in_the_status_and_triggers_its_output(self):
        self.assertNotIn("true", self.get("GetAlarmStatus"))
        self.set("SetAlarmInConfig/1", '<sensor><alarmHoldTime>0</alarmHoldTime><triggerAlarmOut><item id="0">true</item>'
                 "</triggerAlarmOut></sensor>")
        self.get("camera", "ORBIT-700 sensor 1 close")
        self.wait_for(lambda: '<item id="1">true</item>' in self.get("GetAlarmStatus"))
        self.assertIn('<output id="0">true</output>', self.state())
        self.get("camera", "ORBIT-700 sensor 1 open")
        self.wait_for(lambda: "true" not in self.get("GetAlarmStatus"))
        self.assertEqual(401, self.curl("camera", "ORBIT-700 sensor 1 close", "admin:wrong")[0])
        self.assertEqual(400, self.curl("camera", "ORBIT-700 sensor 9 close")[0])

    def test_motion_begins_and_ends(self):
        self.assertEqual("6", self.value(self.get("GetMotionConfig"), "sensitivity"))
        # The test picture moves all the time, until a mask covers it.
        self.set("SetMotionConfig", "<motion><switch>true</switch><sensitivity>6</sensitivity>"
                 "<alarmHoldTime>0</alarmHoldTime></motion>")
        self.wait_for(lambda: re.search(r"<motionAlarm[^>]*>true", self.get("GetAlarmStatus")))
        self.set("SetPrivacyMaskConfig", '<privacyMask type="list" count="1"><itemType/><item><switch>true</switch>'
                 "<rectangle><X>0</X><Y>0</Y><width>640</width><height>360</height></rectangle>"
                 "<color>black</color></item></privacyMask>")
        self.wait_for(lambda: re.search(r"<motionAlarm[^>]*>false", self.get("GetAlarmStatus")))
        self.set("SetPrivacyMaskConfig", '<privacyMask type="list" count="0"><itemType/></privacyMask>')
        self.wait_for(lambda: re.search(r"<motionAlarm[^>]*>true", self.get("GetAlarmStatus")))
        # No cell is looked at.
        rows = "<itemType/>" + "<item>0</item>" * 8
        self.set("SetMotionConfig", "<motion><area>%s</area></motion>" % rows)
        self.wait_for(lambda: re.search(r"<motionAlarm[^>]*>false", self.get("GetAlarmStatus")))
        self.set("SetMotionConfig", "<motion><switch>false</switch></motion>")


class Records(Api):
    def test_are_searched(self):
        self.wait_for(lambda: 'count="1"' in self.get("SearchRecordDate"))
        self.wait_for(lambda: 'count="1"' in self.get("SearchByTime", ROOT % ""))
        self.assertIn('count="0"', self.get("SearchByTime", ROOT % (
            "<search><starttime>2001-01-01 00:00:00</starttime><endtime>2001-01-02 00:00:00</endtime></search>")))
        self.assertEqual(400, self.curl("SearchByTime/2", ROOT % "")[0])


class Network(Api):
    def test_settings_are_kept(self):
        self.set("SetNetBasicConfig", "<tcpIp><ipSettingMode>dhcp</ipSettingMode><dnsServer1>192.0.2.1</dnsServer1></tcpIp>")
        self.assertIn("192.0.2.1", self.get("GetNetBasicConfig"))
        self.set("SetNetPppoeConfig", "<pppoe><switch>true</switch><userName>me</userName></pppoe>")
        self.assertEqual("me", self.value(self.get("GetNetPppoeConfig"), "userName"))
        self.set("SetDdnsConfig", "<ddns><servertype>mintdns</servertype><serverName>ns.example</serverName></ddns>")
        self.assertEqual("ns.example", self.value(self.get("GetDdnsConfig"), "serverName"))
        self.refuse("SetPortConfig", "<port><httpPort>0</httpPort></port>", 3)
        self.assertEqual(str(self.camera.http), self.value(self.get("GetPortConfig"), "httpPort"))
        port = self.camera.free_port()
        self.set("SetAlarmServerConfig", "<alarmServer><serverAddr>127.0.0.1</serverAddr><serverPort>%d</serverPort>"
                 "</alarmServer>" % port)
        self.assertEqual(str(port), self.value(self.get("GetAlarmServerConfig"), "serverPort"))


class Ports(Api):
    def test_a_changed_port_is_served_and_kept(self):
        http, rtsp = self.camera.free_port(), self.camera.free_port()
        self.set("SetPortConfig", "<port><httpPort>%d</httpPort><rtspPort>%d</rtspPort></port>" % (http, rtsp))
        self.camera.http, self.camera.rtsp = http, rtsp
        self.wait_for(lambda: self.answers("GetDeviceInfo"))
        self.wait_for(lambda: run("ffprobe", "-v", "error", "-rtsp_transport", "tcp", self.camera.url()).returncode == 0)
        self.camera.kill_and_start_again()
        self.assertEqual(b"ready http=%d rtsp=%d\n" % (http, rtsp), self.camera.ready_line)

    def answers(self, command):
        try:
            return self.camera.get(command)[0] == 200
        except OSError:
            return False


class Lasting(Api):
    def test_a_killed_camera_has_every_setting_that_it_acknowledged(self):
        self.set("SetImageConfig", "<image><hue>33</hue></image>")
        self.set("PtzAddPreset", "<presetInfo><name>kept</name></presetInfo>", wrap=False)
        self.camera.kill_and_start_again()
        self.assertEqual("33", self.value(self.get("GetImageConfig"), "hue"))
        self.assertIn("<![CDATA[kept]]>", self.get("PtzGetPresets"))
        status, _, _ = self.camera.stop()
        self.assertEqual(0, status)

    def test_a_damaged_store_is_named(self):
        with tempfile.TemporaryDirectory() as directory:
            with open(os.path.join(directory, "camera.db"), "w") as file:
                file.write("no database " * 100)
            result = run(os.environ["NETSERVER_CAMERA"], "--data-dir", directory)
            self.assertEqual(1, result.returncode)
            self.assertIn("camera.db' is damaged", result.stderr)


class Restart(Api):
    def test_reboot_starts_the_services_again(self):
        process = self.camera.process.pid
        with socket.create_connection(("127.0.0.1", self.camera.rtsp), 20) as client:
            status, _ = self.curl("Reboot")
            self.assertEqual(200, status)
            self.assertEqual(b"", client.recv(1))  # cut off

        def plays():
            return run("ffprobe", "-v", "error", "-rtsp_transport", "tcp", self.camera.url()).returncode == 0
        self.wait_for(plays, 30)
        self.assertEqual("netserver-camera", self.value(self.get("GetDeviceInfo"), "model"))
        self.assertEqual(process, self.camera.process.pid)
        self.assertIsNone(self.camera.process.poll())


if __name__ == "__main__":
    del Api  # what the others share
    unittest.main(verbosity=2)
