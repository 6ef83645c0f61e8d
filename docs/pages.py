"""Makes the pages ready for Doxygen, which reads Markdown in its own way.

Copies the pages of docs/ into a directory. Links to other pages stay; those to anything else, which has no place on the
site, become their text. Pictures are found by their names. What Doxygen would take for a command is protected. Prints
where the pages are, in the order of the index, which is the order of the site's navigation.

usage: pages.py DIRECTORY
"""

import pathlib
import re
import sys

HERE = pathlib.Path(__file__).resolve().parent
NO_PAGES = {"pictures/README.md", "performance/README.md"}  # for those who change them


def pages():
    return sorted(path for path in HERE.rglob("*.md") if str(path.relative_to(HERE)) not in NO_PAGES)


def link(page, known):
    def replaced(match):
        picture, text, target = match.groups()
        path = target.split("#")[0]
        if picture:
            return f"![{text}]({pathlib.PurePosixPath(path).name})"
        if path.startswith("http"):
            return match[0]
        other = (page.parent / path).resolve() if path else page
        if other not in known:
            return text
        heading = target.partition("#")[2]
        return f"[{text}](@ref {identifier(other)}{'_' + heading.replace('-', '_') if heading else ''})"
    return replaced


def named(page):
    """Gives a heading the name by which links to it know it."""
    def replaced(match):
        slug = re.sub(r"[^\w -]", "", match[2].lower()).replace(" ", "_").replace("-", "_")
        return f"{match[1]} {match[2]} {{#{identifier(page)}_{slug}}}"
    return replaced


def identifier(page):
    return "page_" + re.sub(r"\W", "_", str(page.relative_to(HERE).with_suffix("")))


# What begins a command, a tag that is none of the few that pages use, or a word that shall be no link.
COMMAND = re.compile(r"[@\\]|%(?=\w)|<(?=[A-Za-z])(?!(?:https?:|a |/a>|img |br>))")


def prose(text, page, known):
    """What stands outside of code: links, and characters that begin a command."""
    pieces = re.split(r"(`[^`]*`)", text)
    text = "".join(piece if piece.startswith("`") else COMMAND.sub(r"\\\g<0>", piece) for piece in pieces)
    return re.sub(r"(!?)\[([^\]]*)\]\(([^)]*)\)", link(page, known), text)


def prepared(page, known):
    """The page with its identifier behind the title; blocks of code are left alone."""
    blocks = re.split(r"(^```.*?^```$|^(?:    [^\n]*\n)+)", page.read_text(encoding="utf-8"), flags=re.S | re.M)
    text = "".join(block if block.startswith(("```", "    ")) else prose(block, page, known) for block in blocks)
    text = re.sub(r"\A# (.*)", lambda title: f"# {title[1]} {{#{identifier(page)}}}", text)
    code = r"(^```.*?^```$)"
    return "".join(block if block.startswith("```") else re.sub(r"^(##+) (.*)$", named(page), block, flags=re.M)
                   for block in re.split(code, text, flags=re.S | re.M))


def in_order(known):
    """As docs/README.md names them; what it does not name comes last."""
    index = HERE / "README.md"
    named = [(HERE / target).resolve() for target in re.findall(r"\]\(([^)#]+\.md)\)", index.read_text(encoding="utf-8"))]
    order = [index, *named]
    return sorted(known, key=lambda page: (order.index(page) if page in order else len(order), page))


def main(directory):
    known = set(pages())
    for page in in_order(known):
        target = pathlib.Path(directory) / page.relative_to(HERE)
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text(prepared(page, known), encoding="utf-8")
        print(target)


if __name__ == "__main__":
    main(*sys.argv[1:])
