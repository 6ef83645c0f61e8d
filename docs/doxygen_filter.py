"""Doxygen's input filter: completes the comments of a header with what is said once at the top of its class.

Operations of CDevInterface share `verify`, `chn` and the DEV_RET result. Their comments tell only what is their own, and
the reference shall still name each argument. The first comment of a header becomes that of the file. Line numbers stay: what is added goes to the end of a comment line.

usage: doxygen_filter.py FILE
"""

import re
import sys

SHARED = {
    "verify": "@param verify user verification text: name, password and address of the client, see CDevInterface",
    "chn": "@param chn channel number of the request, 1 when it names none; not checked",
}
RESULT = "@return NETNS::DEV_RET_OK or what clients shall see, see NETNS::DEV_RET"

DECLARATION = re.compile(r"((?:^ *///.*\n)+)(^ *virtual [^;]*;)", re.M)


HEAD = re.compile(r"\A// (\w+\.h): ((?:.*\n)(?://.*\n)*)")


def complete(match):
    comment, declaration = match.groups()
    added = []
    for name, text in SHARED.items():
        if re.search(r"\b%s[,)]" % name, declaration) and "@param %s " % name not in comment:
            added.append(text)
    if "virtual NETNS::DEV_RET " in declaration and "@return" not in comment:
        added.append(RESULT)
    # In front of what the operation tells of its own arguments. A command in the middle of a line begins a paragraph, as
    # one at its beginning does.
    lines = comment.rstrip("\n").split("\n")
    last = next((number for number, line in enumerate(lines) if "@param" in line), len(lines)) - 1
    lines[last] += "".join(" " + text for text in added)
    return "\n".join(lines) + "\n" + declaration


def file_comment(match):
    """The first comment of a header is about the file; Doxygen knows only those that say so."""
    name, rest = match.groups()
    return "/// @file %s @brief %s" % (name, re.sub(r"^//", "///", rest, flags=re.M))


def main(path):
    with open(path, encoding="utf-8") as file:
        text = file.read()
    if path.endswith(".h"):
        text = HEAD.sub(file_comment, text, count=1)
    if path.endswith("DevInterface.h"):
        text = DECLARATION.sub(complete, text)
    sys.stdout.write(text)


if __name__ == "__main__":
    main(sys.argv[1])
