"""The page and the XML API, with curl and Python's HTTP client."""

import base64
import os
import re
import tempfile
import unittest

from camera import Camera, run


class Http(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.camera = cls.enterClassContext(Camera("--channels", "2", "--user", "admin:admin", "--user", "odd:a<b&c",
                                                  "--size", "320x240", "--fps", "5"))

    def curl(self, *arguments):
        return run("curl", "--silent", "--show-error", *arguments)

    def test_serves_its_page(self):
        result = self.curl("--include", self.camera.page())
        self.assertIn("HTTP/1.1 200 OK", result.stdout)
        self.assertIn("Content-type: text/html\n", result.stdout)
        self.assertIn("<title>Network camera</title>", result.stdout)

    def test_page_knows_the_rtsp_port(self):
        _, _, page = self.camera.get("")
        port = re.search(rb'<meta name="rtsp-port" content="(\d+) *">', page)
        self.assertIsNotNone(port)
        self.assertEqual(self.camera.rtsp, int(port.group(1)))

    def test_unknown_page_is_404(self):
        self.assertEqual(404, self.camera.get("nothing.html")[0])
        self.assertEqual(404, self.camera.get("nothing")[0])

    def test_device_information_is_well_formed(self):
        with tempfile.NamedTemporaryFile() as document:
            result = self.curl("--user", "admin:admin", "--output", document.name, "--write-out", "%{http_code}",
                               self.camera.page("GetDeviceInfo"))
            self.assertEqual("200", result.stdout)
            lint = run("xmllint", "--noout", document.name)
            self.assertEqual((0, ""), (lint.returncode, lint.stderr))
            path = '//*[local-name()="deviceInfo"]/*[local-name()="%s"]'
            for name, value in (("model", "netserver-camera"), ("audioInCount", "2"), ("integratedPtz", "true")):
                found = run("xmllint", "--xpath", "string(%s)" % (path % name), document.name)
                self.assertEqual(value, found.stdout.strip())

    def test_wrong_or_missing_login_is_401_with_a_challenge(self):
        for user in (["--user", "admin:wrong"], ["--user", "nobody:admin"], ["--user", "admin:admin<"], []):
            result = self.curl("--include", *user, self.camera.page("GetDeviceInfo"))
            self.assertIn("HTTP/1.1 401", result.stdout)
            self.assertIn('WWW-Authenticate: Basic realm="Web Service"', result.stdout)

    def test_password_with_markup_logs_in(self):
        self.assertEqual(200, self.camera.get("GetDeviceInfo", "odd:a<b&c")[0])
        self.assertEqual(401, self.camera.get("GetDeviceInfo", "odd:a&lt;b&amp;c")[0])

    def test_lists_its_channels(self):
        status, _, body = self.camera.get("GetChannelList")
        self.assertEqual(200, status)
        self.assertEqual([b"1", b"2"], re.findall(rb"<item[^>]*>(\d+)</item>", body))

    def test_keeps_time_settings(self):
        body = b"""<?xml version="1.0" encoding="UTF-8"?><config><time><synchronizeInfo><type>NTP</type>
            <ntpServer>pool.example</ntpServer></synchronizeInfo></time></config>"""
        self.assertEqual(200, self.camera.get("SetDateAndTime", body=body)[0])
        status, _, answer = self.camera.get("GetDateAndTime")
        self.assertEqual(200, status)
        self.assertIn(b"pool.example", answer)
        self.assertRegex(answer, rb"<type[^>]*>NTP</type>")

    def test_changes_a_password(self):
        def change(user, new):
            word = base64.b64encode(new.encode()).decode()
            body = ("<config><userPassword><oldPassword>%s</oldPassword><password>%s</password></userPassword>"
                    "</config>" % (word, word))
            return self.camera.get("ModifyPassword", user, body.encode())[0]

        self.assertEqual(200, change("admin:admin", "other"))
        self.assertEqual(401, self.camera.get("GetDeviceInfo", "admin:admin")[0])
        self.assertEqual(200, self.camera.get("GetDeviceInfo", "admin:other")[0])
        self.assertEqual(400, change("admin:other", "two words"))
        self.assertEqual(200, change("admin:other", "admin"))
        self.assertEqual(200, self.camera.get("GetDeviceInfo", "admin:admin")[0])

    def test_missing_functions_say_so(self):
        status, _, body = self.camera.get("GetProfileInfo")
        self.assertEqual(400, status)
        self.assertIn(b'errorCode="1"', body)

    def test_answers_many_clients_at_once(self):
        result = run("bash", "-c", "seq 64 | xargs -P 16 -I{} curl --silent --output %s --write-out '%%{http_code}\n'"
                     " --user admin:admin %s" % (os.devnull, self.camera.page("GetDeviceInfo")))
        self.assertEqual(["200"] * 64, result.stdout.split())


if __name__ == "__main__":
    unittest.main(verbosity=2)
