#!/usr/bin/env python3
"""A page as Doxygen wants it: headings get the names by which other places of the pages link to them. Doxygen reads all
pages as one book, so the name of the page goes in front."""
import pathlib
import re
import sys

FENCE = re.compile(r"^\s*```")
HEADING = re.compile(r"^(##+) (.*?)\s*$")
IN_PAGE = re.compile(r"\]\(#([\w-]+)\)")
IN_OTHER = re.compile(r"\]\((?:\.\./)*(?:[\w/]+/)?(\w+)\.md#([\w-]+)\)")


def slug(text):
    return re.sub(r"\s", "-", re.sub(r"[^\w\s-]", "", text.lower()))


def main():
    path = pathlib.Path(sys.argv[1])
    page, inside = path.stem.lower(), False
    for line in path.read_text().splitlines():
        inside = inside != bool(FENCE.match(line))
        heading = HEADING.match(line) if not inside else None
        if heading:
            line = f"{heading[1]} {heading[2]} {{#{page}-{slug(heading[2])}}}"
        elif not inside:
            line = IN_PAGE.sub(rf"](#{page}-\1)", line)
            line = IN_OTHER.sub(lambda m: f"](#{m[1].lower()}-{m[2]})", line)
        print(line)


if __name__ == "__main__":
    main()
