#!/usr/bin/env python3
"""Draws docs/layers.svg: the layers of src/ as the check of includes knows them, and their callers.

usage: draw_layers.py [--write]     (without: fails where the picture is not as it should be)
"""

import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "scripts"))
sys.dont_write_bytecode = True

from check_layers import ROWS  # noqa: E402
from svg import box, finish, line  # noqa: E402

CALLERS = {"tools/tqlabel": "the tool", "label.hpp": "C++", "python": "Python"}
TASKS = {
    "access": "fields, lists, markings, re-keying",
    "policy": "deadlines and privileges",
    "core/entry": "handles; labels encoded, decoded, asked",
    "der/label": "head and body in each version and shape",
    "crypto": "names, algorithms, envelopes, signatures: no cryptography",
    "der/records": "the other records, one declaration each",
    "der/schema": "how a declared record is read, sized and written",
    "core/model": "the label in memory, and who owns its bytes",
    "asn1": "the rules of DER; libtqasn1 with the allocator",
}
WIDTH, HEIGHT, GAP = 640, 34, 6


def rows(entries, y, kind):
    """One box for each of the entries, side by side."""
    width = (WIDTH - 24 - GAP * (len(entries) - 1)) / len(entries)
    for i, (name, task) in enumerate(entries):
        x = 12 + i * (width + GAP)
        yield box(f"{x:g}", y, f"{width:g}", HEIGHT, kind)
        if len(entries) == 1:
            yield line(x + 10, y + 21, name, "t")
            yield line(x + 130, y + 21, task, "p")
        else:
            yield line(f"{x + 10:g}", y + 14, name, "t")
            yield line(f"{x + 10:g}", y + 29, task, "p")


def main():
    if set(TASKS) != {folder for row in ROWS for folder in row}:
        sys.exit("layers without a task, or the reverse")
    header = [("include/tqlabel/label.h, include/tqasn1/asn1.h", "the C interface")]
    parts, y = list(rows(list(CALLERS.items()), 12, "z")), 12 + HEIGHT + GAP
    parts += [box(12, y, WIDTH - 24, HEIGHT, "b"), line(22, y + 21, header[0][0], "t"),
              line(WIDTH - 22, y + 21, header[0][1], "p", "end")]
    for row in reversed(ROWS):
        y += HEIGHT + GAP
        parts += rows([(folder, TASKS[folder]) for folder in row], y, "h")
    finish(ROOT / "docs/layers.svg", "The layers of the library", WIDTH, y + HEIGHT + 12, parts)


if __name__ == "__main__":
    main()
