#!/usr/bin/env python3
"""Prints a page as the manual has it: links to files that are no pages lead to copies of them.

usage: page_links.py MANUAL PAGE.md     (a filter of Doxygen)
"""

import re
import shutil
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
HEADERS = {"label.h": "label_8h.html", "asn1.h": "asn1_8h.html",
           "label.hpp": "cpp/label_8hpp.html"}
# a code block, to be left as it is, or a link that is no image
BLOCK_OR_LINK = re.compile(r"^```.*?^```$|(?<!!)(\[[^\]]*\]\()([^)#:]+)\)", re.MULTILINE | re.DOTALL)


def main():
    manual, page = Path(sys.argv[1]), Path(sys.argv[2]).resolve()

    def moved(found):
        if not found[2] or found[2].endswith(".md"):
            return found[0]
        target = (page.parent / found[2]).resolve()
        if target.name in HEADERS:
            return f"{found[1]}{HEADERS[target.name]})"
        copy = Path("files") / target.relative_to(ROOT)
        (manual / copy).parent.mkdir(parents=True, exist_ok=True)
        shutil.copy(target, manual / copy)
        return f"{found[1]}{copy})"

    sys.stdout.write(BLOCK_OR_LINK.sub(moved, page.read_text("utf-8")))


if __name__ == "__main__":
    main()
