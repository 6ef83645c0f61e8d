"""Writes the README's example host to a file, as it stands but for its two ports, which a test chooses.

usage: extract_readme_host.py README.md OUTPUT
"""

import pathlib
import re
import sys

PORTS = """#include <cstdlib>
static unsigned short Port(const char* name) { return static_cast<unsigned short>(std::atoi(std::getenv(name))); }
"""


def main(readme, output):
    blocks = re.findall(r"```cpp\n(.*?)```", pathlib.Path(readme).read_text(), re.S)
    assert len(blocks) == 1, "the README shows one host"
    host = blocks[0]
    assert len(host.splitlines()) <= 30, "the README promises 30 lines"
    for number, name in (("8080", "HTTP_PORT"), ("8554", "RTSP_PORT")):
        assert host.count(number) == 1, number
        host = host.replace(number, 'Port("%s")' % name)
    pathlib.Path(output).write_text(PORTS + host)


if __name__ == "__main__":
    main(*sys.argv[1:])
