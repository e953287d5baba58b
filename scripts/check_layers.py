#!/usr/bin/env python3
"""Checks that each file in src/ includes only its own layer and the layers below it."""

import pathlib
import re
import sys

# From the bottom up. Folders of one row do not include each other.
ROWS = [
    ["asn1"],
    ["core/model"],
    ["der/schema"],
    ["der/records"],
    ["crypto"],
    ["der/label"],
    ["core/entry"],
    ["access", "policy"],
]
RANK = {folder: rank for rank, row in enumerate(ROWS) for folder in row}
SHARED_ASN1_HEADERS = {"asn1/der.h", "asn1/node.h", "asn1/writer.h"}  # the rest of asn1/ is libtqasn1's own
INCLUDE = re.compile(r'\s*#\s*include\s*(?:"([^"]+)"|<([^>]+)>)')


def fault(folder, quoted, bracketed, src):
    """Says why a file in `folder` may not have this include, or returns None."""
    if bracketed:
        if folder == "asn1" and bracketed.startswith("tqlabel/"):
            return "asn1 does not know the label library"
        if (src / bracketed).is_file():
            return f'internal header <{bracketed}> is included as "{bracketed}"'
        return None
    if not (src / quoted).is_file():
        return f'"{quoted}" is not a path from src/'
    target = str(pathlib.PurePosixPath(quoted).parent)
    if target == folder:
        return None
    if target not in RANK:
        return f'"{quoted}" is in no layer'
    if target == "asn1" and quoted not in SHARED_ASN1_HEADERS:
        return f'"{quoted}" belongs to the ASN.1 library; it shares {sorted(SHARED_ASN1_HEADERS)}'
    if RANK[target] >= RANK[folder]:
        return f"{folder} may not include {target}"
    return None


def check(src):
    faults = []
    files = sorted(p for p in src.rglob("*") if p.suffix in (".h", ".c", ".cpp"))
    for path in files:
        folder = str(path.relative_to(src).parent.as_posix())
        where = path.relative_to(src.parent)
        if folder not in RANK:
            faults.append(f"{where}:1: {folder} is in no layer")
            continue
        for number, line in enumerate(path.read_text().splitlines(), 1):
            match = INCLUDE.match(line)
            reason = match and fault(folder, match[1], match[2], src)
            if reason:
                faults.append(f"{where}:{number}: {reason}")
    return files, faults


def main():
    files, faults = check(pathlib.Path(__file__).resolve().parent.parent / "src")
    print(*faults, sep="\n", end="\n" if faults else "")
    if not files:
        sys.exit("no sources found")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
