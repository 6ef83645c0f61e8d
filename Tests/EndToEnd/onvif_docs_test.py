"""What docs/onvif-client.md shows: each example prints what stands below it, and each key has one."""

import re
import subprocess
import unittest

import nvr
from docs_test import ROOT, examples, fits

PAGE = ROOT / "docs" / "onvif-client.md"
KEYS = ROOT / "Apps" / "Nvr" / "NvrKeys.cpp"


class OnvifClient(unittest.TestCase):
    def test_examples(self):
        count = 0
        with nvr.Simulator() as camera:
            for command, expected in examples(PAGE):
                count += 1
                used = command.replace("netserver-nvr", nvr.NVR)
                used = used.replace("--host 192.168.1.20", f"--host 127.0.0.1 --port {camera.port}")
                used = used.replace("http://192.168.1.20/", f"http://127.0.0.1:{camera.port}/")
                result = subprocess.run(["bash", "-c", used], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                        stderr=subprocess.STDOUT, timeout=nvr.LIMIT, text=True, errors="replace",
                                        env=nvr.environment())
                printed = result.stdout.replace("\r", "").splitlines()
                with self.subTest(command):
                    self.assertTrue(fits(expected, printed), "printed:\n" + result.stdout)
        self.assertGreater(count, 40)

    def test_every_key_has_an_example(self):
        page = PAGE.read_text()
        get_keys, set_keys = re.split(r"NvrSetKeys\(\)\n", KEYS.read_text(), 1)
        for key in re.findall(r'^        \{"(\w+)",', get_keys, re.M):
            with self.subTest("Get", key=key):
                self.assertRegex(page, rf"admin get [^\n]*\b{key}\b" if key != "snapshotURI" else "snapshot 0 ")
        for key in re.findall(r'^        \{"(\w+)",', set_keys, re.M):
            with self.subTest("Set", key=key):
                self.assertRegex(page, rf"<Set><{key}\b")


if __name__ == "__main__":
    unittest.main(verbosity=2)
