"""What the documents show: links lead somewhere, examples print what stands below them."""

import pathlib
import re
import subprocess
import unittest

from camera import Camera

ROOT = pathlib.Path(__file__).resolve().parents[2]
EXAMPLE_LIMIT = 60  # seconds


def documents():
    found = subprocess.run(["git", "ls-files", "--cached", "--others", "--exclude-standard", "*.md"], cwd=ROOT,
                           stdout=subprocess.PIPE, text=True)
    names = found.stdout.split() or [str(path.relative_to(ROOT)) for path in ROOT.rglob("*.md")
                                     if "build" not in path.parts]
    return [ROOT / name for name in names]


def examples(path):
    """The commands of a document's console blocks, each with the lines it shall print."""
    for block in re.findall(r"```console\n(.*?)```", path.read_text(), re.S):
        command, expected = None, []
        for line in block.splitlines():
            if line.startswith("$ "):
                if command is not None:
                    yield command, expected
                command, expected = line[2:], []
            else:
                expected.append(line)
        yield command, expected


def fits(expected, printed):
    """Whether lines are as expected: "..." is any part of a line; alone, any lines."""
    if not expected:
        return not printed
    if expected[0] == "...":
        return any(fits(expected[1:], printed[skipped:]) for skipped in range(len(printed) + 1))
    if not printed:
        return False
    pattern = re.escape(expected[0]).replace(r"\.\.\.", ".*")
    return re.fullmatch(pattern, printed[0]) is not None and fits(expected[1:], printed[1:])


def anchors(text):
    """The names of a page's headings, as forges make them."""
    return {re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-")
            for heading in re.findall(r"^#+ (.*)$", text, re.M)}


class Links(unittest.TestCase):
    def test_lead_somewhere(self):
        for document in documents():
            for target in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", document.read_text()):
                with self.subTest(str(document.relative_to(ROOT)), link=target):
                    self.assertTrue((document.parent / target).exists())


    def test_lead_to_headings_that_exist(self):
        for document in documents():
            for target, heading in re.findall(r"\]\(([^)#:]*)#([^)]*)\)", document.read_text()):
                with self.subTest(str(document.relative_to(ROOT)), link=heading):
                    page = document.parent / target if target else document
                    self.assertIn(heading, anchors(page.read_text()))

    def test_show_pictures_that_exist(self):
        shown = re.findall(r'<img src="([^"]+)"', (ROOT / "README.md").read_text())
        self.assertEqual(["docs/camera-page.png"], shown)
        self.assertTrue((ROOT / shown[0]).exists())


class Examples(unittest.TestCase):
    def check(self, name):
        count = 0
        with Camera() as camera:
            for command, expected in examples(ROOT / "docs" / name):
                count += 1
                used = command.replace("8080", str(camera.http)).replace("8554", str(camera.rtsp))
                used = used.replace("localhost", "127.0.0.1")
                result = subprocess.run(["bash", "-c", used], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                        timeout=EXAMPLE_LIMIT, text=True, errors="replace")
                printed = result.stdout.replace("\r", "")
                printed = re.sub(r"\b%d\b" % camera.http, "8080", printed)
                printed = re.sub(r"\b%d\b" % camera.rtsp, "8554", printed).splitlines()
                with self.subTest(command):
                    self.assertTrue(fits(expected, printed), "printed:\n" + result.stdout)
        self.assertGreater(count, 0)

    def test_camera(self):
        self.check("camera.md")

    def test_rtsp(self):
        self.check("rtsp.md")

    def test_api_device(self):
        self.check("api/device.md")

    def test_api_alarms(self):
        self.check("api/alarms.md")

    def test_api_image(self):
        self.check("api/image.md")

    def test_api_network(self):
        self.check("api/network.md")

    def test_api_ptz(self):
        self.check("api/ptz.md")

    def test_api_recordings(self):
        self.check("api/recordings.md")

    def test_api_streams(self):
        self.check("api/streams.md")

    def test_every_api_command_has_an_example(self):
        table = (ROOT / "QlxApi" / "QlxApiCommands.cpp").read_text()
        words = set(re.findall(r'^    \{"(\w+)"', table, re.M))
        asked = set()
        for page in (ROOT / "docs" / "api").glob("*.md"):
            for command, _ in examples(page) if "```console\n" in page.read_text() else []:
                asked.update(re.findall(r"localhost:8080/(\w+)", command))
        self.assertEqual(59, len(words))
        self.assertEqual(set(), words - asked)

    def test_every_page_with_examples_is_tried(self):
        pages = {str(path.relative_to(ROOT / "docs")) for path in (ROOT / "docs").rglob("*.md")
                 if "```console\n" in path.read_text()}
        api = {"api/%s.md" % name
               for name in ("alarms", "device", "image", "network", "ptz", "recordings", "streams")}
        self.assertEqual({"camera.md", "getting-started.md", "rtsp.md", "onvif-client.md"} | api, pages)


if __name__ == "__main__":
    unittest.main(verbosity=2)
