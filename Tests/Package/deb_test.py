"""The Debian packages, unpacked into an empty directory: what they hold, and that it runs from there."""

import glob
import os
import re
import select
import subprocess
import tempfile
import unittest

from camera import free_ports

BUILD = os.environ["NETSERVER_BUILD"]
SOURCE = os.environ["NETSERVER_SOURCE"]
PACKAGES = ["libnetserver-dev", "libnetserver1", "netserver-camera", "netserver-nvr"]
LIMIT = 30  # seconds
MAKE_LIMIT = 250


def run(*command, **options):
    result = subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True,
                            **{"timeout": LIMIT, **options})
    return result.returncode, result.stdout, result.stderr


class Packages(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        directory = tempfile.TemporaryDirectory()
        cls.addClassCleanup(directory.cleanup)
        cls.debs = os.path.join(directory.name, "debs")
        cls.root = os.path.join(directory.name, "root")
        # Quickly: without packages of debug information, and without compression.
        quick = dict(os.environ, DEB_BUILD_OPTIONS="noautodbgsym", DPKG_DEB_COMPRESSOR_TYPE="none")
        made = run(os.path.join(SOURCE, "packaging", "make-debs.sh"), BUILD, cls.debs, env=quick, timeout=MAKE_LIMIT)
        assert made[0] == 0, made
        os.mkdir(cls.root)
        for deb in glob.glob(os.path.join(cls.debs, "*.deb")):
            assert run("dpkg", "-x", deb, cls.root)[0] == 0
        cls.libraries = os.path.dirname(cls.path("usr/lib/**/libnetserver.so.1"))
        cls.environment = dict(os.environ, LD_LIBRARY_PATH=cls.libraries)

    @classmethod
    def path(cls, pattern):
        """The one file of that name in the tree."""
        found = glob.glob(os.path.join(cls.root, pattern), recursive=True)
        assert len(found) == 1, (pattern, found)
        return found[0]

    def field(self, package, name):
        return run("dpkg-deb", "--field", glob.glob(os.path.join(self.debs, package + "_*.deb"))[0], name)[1].strip()

    def test_there_are_four_with_the_version_of_the_project(self):
        debs = sorted(os.path.basename(path).split("_") for path in glob.glob(os.path.join(self.debs, "*.deb")))
        self.assertEqual(PACKAGES, [name for name, _, _ in debs])
        with open(os.path.join(BUILD, "CMakeCache.txt")) as cache:
            version = re.search(r"^CMAKE_PROJECT_VERSION:STATIC=(.*)$", cache.read(), re.M).group(1)
        self.assertEqual({version}, {re.sub(r"-\d+$", "", found) for _, found, _ in debs})

    def test_each_names_what_it_needs(self):
        version = self.field("libnetserver1", "Version")
        self.assertIn("libnetserver1 (= %s)" % version, self.field("libnetserver-dev", "Depends"))
        for package in ("netserver-camera", "netserver-nvr"):
            self.assertIn("libnetserver1 (>= ", self.field(package, "Depends"))
        self.assertIn("gstreamer1.0-plugins-ugly", self.field("netserver-camera", "Depends"))

    def test_development_files_are_complete(self):
        for file in ("usr/include/netserver/NetServerSDK.h", "usr/include/netserver/NetSocket.h",
                     "usr/lib/**/libnetserver.a", "usr/lib/**/libnetserver.so",
                     "usr/lib/**/cmake/NetServer/NetServerConfig.cmake", "usr/lib/**/pkgconfig/netserver.pc"):
            self.path(file)

    def test_the_camera_starts_and_serves_its_page(self):
        http, rtsp = free_ports(2)
        program = self.path("usr/bin/netserver-camera")
        with tempfile.TemporaryDirectory() as data, subprocess.Popen(
                [program, "--http-port", str(http), "--rtsp-port", str(rtsp), "--data-dir", data, "--size", "320x240"],
                env=self.environment, cwd="/", stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True) as camera:
            try:
                self.assertTrue(select.select([camera.stdout], [], [], LIMIT)[0], "no line came")
                self.assertEqual("ready http=%d rtsp=%d\n" % (http, rtsp), camera.stdout.readline())
                url = "http://127.0.0.1:%d/" % http
                for page in ("", "main.js"):
                    with open(self.path("usr/share/netserver-camera/www/" + (page or "index.html"))) as file:
                        expected = file.read().replace("@rtsp-port@", "%-11d" % rtsp)
                    self.assertEqual((0, expected, ""), run("curl", "--silent", "--fail", url + page))
                status, answer, _ = run("curl", "--silent", "--fail", "--user", "admin:admin", url + "GetDeviceInfo")
                self.assertEqual(0, status)
                self.assertIn("<deviceInfo>", answer)
                with open("/proc/%d/maps" % camera.pid) as maps:
                    used = set(re.findall(r"/\S*/lib(?:netserver|netsocket|sharesdk)\.so\S*", maps.read()))
                self.assertEqual({self.libraries}, {os.path.dirname(path) for path in used})
                self.assertEqual(3, len(used))
            finally:
                camera.terminate()
                camera.wait(LIMIT)
            self.assertEqual(0, camera.returncode)

    def test_the_nvr_starts(self):
        program = self.path("usr/bin/netserver-nvr")
        version = re.sub(r"-\d+$", "", self.field("netserver-nvr", "Version"))
        self.assertEqual((0, "netserver-nvr %s\n" % version, ""), run(program, "--version", env=self.environment))
        status, out, err = run(program, "--help", env=self.environment)
        self.assertEqual((0, ""), (status, err))
        self.assertIn("watch", out)

    def test_the_service_is_sound(self):
        with open(self.path("lib/systemd/system/netserver-camera.service")) as file:
            unit = file.read()
        self.assertIn("ExecStart=/usr/bin/netserver-camera --data-dir %S/netserver-camera $NETSERVER_CAMERA_OPTIONS\n",
                      unit)
        with tempfile.TemporaryDirectory() as directory:
            path = os.path.join(directory, "netserver-camera.service")
            with open(path, "w") as file:
                file.write(unit.replace("=/usr/bin/", "=%s/usr/bin/" % self.root))
            self.assertEqual((0, "", ""), run("systemd-analyze", "verify", "--man=no", path))

    def test_the_options_of_the_service_are_kept_over_upgrades(self):
        self.path("etc/default/netserver-camera")
        deb = glob.glob(os.path.join(self.debs, "netserver-camera_*.deb"))[0]
        self.assertEqual("/etc/default/netserver-camera\n", run("dpkg-deb", "--info", deb, "conffiles")[1])

    def test_man_pages_are_there(self):
        for name in ("netserver-camera", "netserver-nvr"):
            status, text, _ = run("zcat", self.path("usr/share/man/man1/%s.1.gz" % name))
            self.assertEqual(0, status)
            self.assertIn(".Nm " + name, text)


if __name__ == "__main__":
    unittest.main(verbosity=2)
