"""The documents as a site: the reference of the public headers, the pictures, and the figures of the benchmarks."""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parents[2]
DOCS = ROOT / "docs"
PICTURES = DOCS / "pictures"
LIMIT = 120  # seconds

sys.path[:0] = [str(DOCS / "performance"), str(ROOT / "Bench")]
import publish  # noqa: E402
import tables  # noqa: E402

SVG = "{http://www.w3.org/2000/svg}"


def run(*command, cwd=ROOT):
    return subprocess.run(command, cwd=cwd, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          timeout=LIMIT, text=True, errors="replace")


def public_names():
    """Functions, types and enumerators that the public headers declare."""
    headers = [*(ROOT / "include").glob("*.h"), ROOT / "LibProject/NetSocket/NetSocket.h",
               ROOT / "LibProject/ShareSDK/ShareSDK.h"]
    names = set()
    for header in headers:
        code = re.sub(r"//.*", "", header.read_text())
        names.update(re.findall(r"\b((?:NET_SERVER|NET_SOCKET|SHARESDK|ONVIF_CLIENT|ONVIF_SEARCH)_\w+)\(", code))
        names.update(re.findall(r"^(?:struct|class|enum) (\w+)\b[^;]*$", code, re.M))
        names.update(re.findall(r"^constexpr .*?(\w+) = ", code, re.M))
        names.update(re.findall(r"^    (\w+) = \d+,", code, re.M))
    return names


# A function, a field and an argument that nobody told about.
FORGOTTEN = """
int NET_SERVER_Forgotten(int level);
/// A record.
struct NEW_RECORD
{
    int forgottenLevel;
};
/// Adds.
/// @param a  one
/// @return the sum
int NET_SERVER_Added(int a, int forgottenArgument);
"""


class Reference(unittest.TestCase):
    def test_is_made_without_a_complaint_and_knows_every_public_name(self):
        with tempfile.TemporaryDirectory() as directory:
            made = run("docs/make.sh", directory)
            self.assertEqual(0, made.returncode, made.stdout)
            text = "".join(page.read_text(errors="replace") for page in pathlib.Path(directory, "html").glob("*.html"))
            names = public_names()
            self.assertGreater(len(names), 120)
            self.assertEqual(set(), {name for name in names if not re.search(r"\b%s\b" % name, text)})
            for page in DOCS.rglob("*.md"):
                title = page.read_text().splitlines()[0].lstrip("# ")
                if page.parent not in (PICTURES, DOCS / "performance"):
                    self.assertTrue("<title>netserver: %s</title>" % title in text, page)

    def test_refuses_a_public_name_without_a_word_about_it(self):
        with tempfile.TemporaryDirectory() as directory:
            tree = pathlib.Path(directory)
            shutil.copytree(DOCS, tree / "docs")
            shutil.copytree(ROOT / "include", tree / "include")
            for service in ("NetSocket", "ShareSDK"):
                shutil.copytree(ROOT / "LibProject" / service, tree / "LibProject" / service)
            shutil.copy(ROOT / "CMakeLists.txt", tree)
            header = tree / "include" / "NetServerSDK.h"
            header.write_text(header.read_text() + FORGOTTEN)
            made = run("docs/make.sh", "site", cwd=tree)
            self.assertNotEqual(0, made.returncode)
            for name in ("NET_SERVER_Forgotten", "forgottenLevel", "forgottenArgument"):
                self.assertRegex(made.stdout, r"(?s)error:[^\n]*\n?[^\n]*%s" % name)


def words(path):
    """What a picture says: its texts in order, without how they are laid out."""
    root = xml.etree.ElementTree.parse(path).getroot()
    return sorted("".join(text.itertext()).strip() for text in root.iter(SVG + "text"))


class Pictures(unittest.TestCase):
    def test_show_what_their_sources_say(self):
        with tempfile.TemporaryDirectory() as directory:
            drawn = run("docs/pictures/draw.sh", directory)
            self.assertEqual(0, drawn.returncode, drawn.stdout)
            fresh = {path.name: path for path in pathlib.Path(directory).glob("*.svg")}
            self.assertEqual(set(fresh), {path.name for path in PICTURES.glob("*.svg")},
                             "run docs/pictures/draw.sh docs/pictures")
            self.assertGreater(len(fresh), 7)
            for name, path in fresh.items():
                with self.subTest(name):
                    self.assertEqual(words(path), words(PICTURES / name), "run docs/pictures/draw.sh docs/pictures")

    def test_are_white_behind_and_used_by_a_page(self):
        pages = "".join(page.read_text() for page in [ROOT / "README.md", *DOCS.rglob("*.md")])
        for picture in PICTURES.glob("*.svg"):
            with self.subTest(picture.name):
                self.assertRegex(picture.read_text(), r'fill="(white|#ffffff)"')
                self.assertTrue("pictures/" + picture.name in pages, "no page shows it")


RUNS = {run: names for _, (_, names, runs) in publish.PLAIN.items() for _, run in runs}


def bench_output(directory):
    """A run's files as the benchmarks print them, each figure a number of its own."""
    number = 1
    for name, figure_names in RUNS.items():
        lines = []
        for figure in figure_names:
            number += 1
            lines.append("%s\t%d.5\n" % (figure, number))
        (directory / (name + ".tsv")).write_text("".join(lines))
    (directory / "run.tsv").write_text("seconds\t8\nload_average\t0.25\n")
    head = "name\titerations\treal_time\tcpu_time\ttime_unit\tbytes_per_second\titems_per_second\tlabel\terror_occurred\terror_message"
    (directory / "micro-api.tsv").write_text(
        head + '\t"allocations"\t"bytes"\n"Ask/GetDeviceInfo"\t1\t2\t12500\tns\t\t\t\t\t\t31\t1650\n')
    (directory / "micro.tsv").write_text(head + '\n"Pack/FU-A"\t1\t2\t3\tns\t\t20000000\t\t\t\n')


class Figures(unittest.TestCase):
    def test_of_a_benchmark_run_become_tables(self):
        with tempfile.TemporaryDirectory() as bench, tempfile.TemporaryDirectory() as data:
            bench_output(pathlib.Path(bench))
            publish.main(bench, data)
            self.assertEqual(set(tables.COLUMNS), {path.stem for path in pathlib.Path(data).glob("*.tsv")})
            self.assertIn("GetDeviceInfo\t12.5\t31.0\t1650.0\n", pathlib.Path(data, "commands.tsv").read_text())
            self.assertIn("Pack/FU-A\t50.0\n", pathlib.Path(data, "packetiser.tsv").read_text())
            self.assertIn("load average at the start\t0.25\n", pathlib.Path(data, "machine.tsv").read_text())
            self.assertIn("tcp\t128\t", pathlib.Path(data, "packets.tsv").read_text())
            for name, columns in tables.COLUMNS.items():
                head = pathlib.Path(data, name + ".tsv").read_text().splitlines()[0].split("\t")
                self.assertLessEqual({column for column, _ in columns}, set(head), name)

    def test_of_a_run_that_was_cut_short_change_nothing(self):
        with tempfile.TemporaryDirectory() as bench, tempfile.TemporaryDirectory() as data:
            bench_output(pathlib.Path(bench))
            pathlib.Path(bench, "udp-64.tsv").write_text("packets\t1\n")
            with self.assertRaisesRegex(SystemExit, "udp-64.tsv lacks"):
                publish.main(bench, data)
            self.assertEqual([], list(pathlib.Path(data).iterdir()))

    def test_are_drawn(self):
        with tempfile.TemporaryDirectory() as directory:
            tree = pathlib.Path(directory)
            (tree / "bench").mkdir()
            shutil.copytree(PICTURES, tree / "docs" / "pictures")
            bench_output(tree / "bench")
            publish.main(tree / "bench", tree / "docs" / "performance")
            drawn = run(str(tree / "docs" / "pictures" / "draw.sh"), str(tree / "drawn"))
            self.assertEqual(0, drawn.returncode, drawn.stdout)
            self.assertEqual("", drawn.stdout)
            for source in PICTURES.glob("plot-*.gnuplot"):
                self.assertTrue((tree / "drawn" / (source.stem + ".svg")).exists(), source.stem)

    def test_stand_in_the_page_as_they_were_measured(self):
        page = tables.PAGE.read_text()
        self.assertEqual(tables.written(page), page, "run docs/performance/tables.py")
        self.assertEqual(set(tables.COLUMNS), set(re.findall(r"<!-- table (\w+) -->", page)))


def test_sources():
    return "".join(path.read_text(errors="replace") for path in (ROOT / "Tests").rglob("*.cpp"))


class Claims(unittest.TestCase):
    """What pages say of the code and its tests."""

    def test_name_tests_that_exist(self):
        names = {"%s.%s" % found
                 for found in re.findall(r"^(?:TEST|TEST_F|TEST_P)\((\w+),\s*(\w+)\)", test_sources(), re.M)}
        page = (DOCS / "limits.md").read_text()
        rows = [line for line in page.splitlines() if line.startswith("| ") and not line.endswith(("| Test |", "| |"))]
        cited = set(re.findall(r"`(\w+\.\w+)`", "".join(row.rsplit("|", 2)[1] for row in rows)))
        self.assertGreater(len(cited), 300)
        self.assertEqual(set(), cited - names)
        tables = page[page.index("## Bounds"):]
        for row in re.findall(r"^\| .* \|$", tables, re.M):
            self.assertRegex(row, r"`\w+\.\w+` \|$|Test \|$", "a row without its test")

    def test_show_bytes_that_tests_expect(self):
        expected = re.sub(r'"\s*\n\s*"', "", test_sources()).replace('\\"', '"')
        page = (DOCS / "wire-formats.md").read_text()
        lines = re.findall(r"^    (.+)$", page, re.M)
        self.assertGreater(len(lines), 60)
        for line in lines:
            for piece in line.split("..."):
                with self.subTest(line):
                    self.assertTrue(piece.rstrip("\n") in expected, piece)

    def test_tell_every_operation_that_a_host_implements(self):
        page = (DOCS / "host.md").read_text()
        tables = page[page.index("## What each operation must do"):]
        for header in ("DevInterface.h", "StreamCtrl.h"):
            code = (ROOT / "include" / header).read_text()
            operations = re.findall(r"virtual [\w:]+(?: int)? (\w+)\(", code)
            self.assertGreater(len(operations), 7)
            for operation in operations:
                with self.subTest(operation):
                    self.assertRegex(tables, r"(?m)^\|[^|]*`%s`" % operation)

    def test_tell_every_key_of_the_onvif_client(self):
        page = (DOCS / "onvif-client.md").read_text()
        listed = page[page.index("## All keys"):]
        code = (ROOT / "Onvif" / "Client" / "HttpClientDispatch.cpp").read_text()
        reads, writes = code.split("SET_KEYS[]", 1)
        for way, table in (("Get", reads), ("Set", writes)):
            rows = listed[listed.index("### %s" % way):]
            rows = rows[:rows.index("\n#", 1) if "\n#" in rows[1:] else len(rows)]
            keys = re.findall(r'^    \{"(\w+)",', table, re.M)
            self.assertGreater(len(keys), 20)
            self.assertEqual(sorted(keys), sorted(re.findall(r"^\| `(\w+)` \|", rows, re.M)), way)

    def test_name_make_targets_that_exist(self):
        makefile = (ROOT / "Makefile").read_text()
        targets = set(re.search(r"^\.PHONY: (.*)$", makefile, re.M)[1].split())
        pages = "".join(page.read_text() for page in [ROOT / "README.md", *DOCS.rglob("*.md")])
        named = set(re.findall(r"(?:`|^    |&& )make ([a-z][a-z-]*)", pages, re.M))
        self.assertGreater(len(named), 10)
        self.assertEqual(set(), named - targets)

    def test_begin_with_whom_they_are_for(self):
        for page in DOCS.rglob("*.md"):
            if page.parent in (PICTURES, DOCS / "performance") or page == DOCS / "README.md":
                continue
            opening = " ".join(page.read_text().split("\n## ")[0].split("\n```")[0].split())
            with self.subTest(str(page.relative_to(DOCS))):
                self.assertRegex(opening, r"^# .*? For .*[.:] [Aa]fter (this|these|ten) ")

    def test_tell_every_command_of_the_xml_api(self):
        code = (ROOT / "QlxApi" / "QlxApiCommands.cpp").read_text()
        index = (DOCS / "api" / "README.md").read_text()
        self.assertEqual(sorted(re.findall(r'^    \{"(\w+)"', code, re.M)),
                         sorted(re.findall(r"^\| `(\w+)` \|", index, re.M)))


if __name__ == "__main__":
    unittest.main(verbosity=2)
