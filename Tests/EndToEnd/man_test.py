"""The man pages: sound, and complete beside what the tools say of themselves."""

import os
import re
import unittest

from camera import CAMERA, run
from nvr import NVR

CAMERA_PAGE = os.environ["NETSERVER_CAMERA_PAGE"]
NVR_PAGE = os.environ["NETSERVER_NVR_PAGE"]
NVR_COMMANDS = ["login", "get", "set", "snapshot", "move", "stop", "presets", "goto", "watch", "raw"]


def printed(command):
    """What a command prints, without the backspaces that make bold type."""
    result = run(*command)
    assert (result.returncode, result.stderr) == (0, ""), result
    return re.sub(".\b", "", result.stdout)


def text_of(page):
    return printed(["mandoc", "-T", "ascii", "-O", "width=200", page])


def options_in(text):
    return set(re.findall(r"(?<![\w-])--[a-z][a-z-]*", text))


class ManPages(unittest.TestCase):
    def test_they_are_sound(self):
        for page in (CAMERA_PAGE, NVR_PAGE):
            result = run("mandoc", "-T", "lint", "-W", "warning", page)
            self.assertEqual((0, "", ""), (result.returncode, result.stdout, result.stderr))

    def test_the_camera_has_the_options_of_its_help(self):
        known = options_in(printed([CAMERA, "--help"]))
        page = text_of(CAMERA_PAGE)
        self.assertGreater(len(known), 15)
        self.assertEqual(known, options_in(page))
        listed = options_in("\n".join(re.findall(r"^ +(?:-h, )?--.*", page[page.index("DESCRIPTION"):], re.M)))
        self.assertEqual(set(), known - listed, "each has a paragraph")

    def test_the_nvr_has_the_commands_options_and_keys_of_its_help(self):
        page = text_of(NVR_PAGE)
        known = options_in(printed([NVR, "--help"]))
        for command in NVR_COMMANDS:
            self.assertRegex(page, r"(?m)^ +%s\b" % command)
            help_text = printed([NVR, command, "--help"])
            known |= options_in(help_text)
            if command in ("get", "set"):
                keys = re.findall(r"(?m)^  (\w+) ", help_text[help_text.index("Keys:"):])
                self.assertGreater(len(keys), 15)
                section = page[page.index("Keys of " + command):]
                for key in keys:
                    self.assertRegex(section, r"(?m)^ +%s\b" % key)
        self.assertEqual(known, options_in(page))
        summary = printed([NVR, "--help"])
        self.assertEqual(set(NVR_COMMANDS),
                         set(re.findall(r"(?m)^  (\w+) ", summary[summary.index("Subcommands:"):])))

    def test_they_tell_every_exit_status(self):
        for page, statuses in ((CAMERA_PAGE, "012"), (NVR_PAGE, "0123")):
            text = text_of(page)
            section = text[text.index("EXIT STATUS"):text.index("EXAMPLES")]
            self.assertEqual(list(statuses), re.findall(r"(?m)^ {5}(\d) ", section))


if __name__ == "__main__":
    unittest.main(verbosity=2)
