#!/usr/bin/env python3
"""Checks that the links of the Markdown files in the repository lead to a file, and to a heading of it."""

import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
FENCED = re.compile(r"^```.*?^```$", re.MULTILINE | re.DOTALL)
LINK = re.compile(r"(?:\]\(|(?:src|srcset)=\")([^)\s\"]+)")


def anchors(page):
    """What a heading is called in links: its letters in lower case, blanks as hyphens."""
    headings = re.findall(r"^#+ (.*)$", FENCED.sub("", page.read_text("utf-8")), re.MULTILINE)
    return {re.sub(r"[^\w\- ]", "", heading.lower()).replace(" ", "-") for heading in headings}


def faults(page):
    for link in LINK.findall(FENCED.sub("", page.read_text("utf-8"))):
        path, _, anchor = link.partition("#")
        target = (page.parent / path).resolve() if path else page
        if re.match(r"https?:|mailto:", link):
            continue
        if not target.exists() or not target.is_relative_to(ROOT):
            yield f"{page.relative_to(ROOT)}: {link}: no such file"
        elif anchor and anchor not in anchors(target):
            yield f"{page.relative_to(ROOT)}: {link}: no such heading"


def main():
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "*.md"], cwd=ROOT,
                            capture_output=True, text=True, check=True).stdout.split()
    pages = [ROOT / name for name in listed if (ROOT / name).exists()]
    found = [fault for page in pages for fault in faults(page)]
    sys.exit("\n".join(found or (["no pages"] if not pages else [])) or 0)


if __name__ == "__main__":
    main()
