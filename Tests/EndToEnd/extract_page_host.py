"""Writes a page's host to a file: its C++ blocks one behind the other, as they stand but for the ports, which a test
chooses.

usage: extract_page_host.py PAGE OUTPUT
"""

import pathlib
import re
import sys

from extract_readme_host import PORTS


def main(page, output):
    host = "".join(re.findall(r"```cpp\n(.*?)```", pathlib.Path(page).read_text(), re.S))
    for number, name in (("8080", "HTTP_PORT"), ("8554", "RTSP_PORT")):
        assert host.count(number) == 1, number
        host = host.replace(number, 'Port("%s")' % name)
    pathlib.Path(output).write_text(PORTS + host)


if __name__ == "__main__":
    main(*sys.argv[1:])
