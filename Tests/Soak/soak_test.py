"""What the soak's verdict rests on: which errors a fault explains, and that the clock of a process moves.

    SOAK_CLOCK=build/dev/Tests/Soak/libsoak_clock.so python3 Tests/Soak/soak_test.py
"""

import os
import struct
import subprocess
import tempfile
import time
import unittest

from judge import Judge

HOUR = 3600


class Errors(unittest.TestCase):
    def setUp(self):
        self.judge = Judge(lambda text: None)

    def injected(self):
        return self.judge.injected

    def test_without_a_fault_is_unexplained(self):
        self.judge.error("rtsp.closed", "x")
        self.assertTrue(self.judge.failed())

    def test_of_a_kind_that_the_fault_explains_is_injected(self):
        self.judge.open("disk full", ("log.disk", "api.*"), 0)
        self.judge.error("api.answer", "x")
        self.assertEqual({("disk full", "api.answer"): 1}, self.injected())
        self.assertFalse(self.judge.failed())

    def test_of_another_kind_is_unexplained(self):
        self.judge.open("disk full", ("log.disk",), 0)
        self.judge.error("log.unexpected", "x")
        self.assertTrue(self.judge.failed())

    def test_behind_the_fault_is_explained_for_a_while(self):
        window = self.judge.open("interface down", ("rtsp.*",), 20)
        self.judge.close(window)
        self.judge.error("rtsp.silent", "x", window.end + 19, window.end + 30)
        self.assertFalse(self.judge.failed())
        self.judge.error("rtsp.silent", "x", window.end + 21, window.end + 30)
        self.assertTrue(self.judge.failed())

    def test_that_began_and_ended_in_front_of_the_fault_is_unexplained(self):
        window = self.judge.open("interface down", ("rtsp.*",), 20)
        self.judge.error("rtsp.closed", "x", window.begin - 2, window.begin - 1)
        self.assertTrue(self.judge.failed())

    def test_that_began_in_front_of_the_fault_and_ended_in_it_is_explained(self):
        window = self.judge.open("interface down", ("rtsp.*",), 20)
        self.judge.error("rtsp.closed", "x", window.begin - 2, window.begin + 1)
        self.assertFalse(self.judge.failed())


class Clock(unittest.TestCase):
    def test_of_a_process_moves_and_its_monotonic_clock_stays(self):
        with tempfile.NamedTemporaryFile() as shift:
            shift.write(struct.pack("=q", -HOUR))
            shift.flush()
            before = time.monotonic()
            said = subprocess.run(["python3", "-c", "import time; print(time.time(), time.monotonic())"], check=True,
                                  stdout=subprocess.PIPE, text=True,
                                  env={**os.environ, "LD_PRELOAD": os.environ["SOAK_CLOCK"],
                                       "SOAK_CLOCK_SHIFT": shift.name}).stdout.split()
        self.assertAlmostEqual(time.time() - HOUR, float(said[0]), delta=60)
        self.assertGreater(float(said[1]), before)


if __name__ == "__main__":
    unittest.main()
