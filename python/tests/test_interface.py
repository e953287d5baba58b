"""The declared interface against the header, and how the library is found."""

import os
import re
import subprocess
import sys

from conftest import ROOT
from tqlabel._library import FUNCTIONS, RECORDS

HEADERS = ("include/tqlabel/label.h", "include/tqasn1/asn1.h")
CODE = re.sub(r"/\*.*?\*/", "", "".join((ROOT / name).read_text() for name in HEADERS), flags=re.S)


def test_functions_are_those_of_the_header() -> None:
    declared = {}
    for result, name, arguments in re.findall(r"TQ_(?:ASN1_)?API ([\w*]+) (\w+)\(([^)]*)\)", CODE):
        kinds = [re.sub(r" \w+$", "", argument.strip()) for argument in arguments.split(",")]
        declared[name] = f"{result}({', '.join(kinds)})"
    used = {name: shape for shape, names in FUNCTIONS.items() for name in names.split()}
    assert {name: declared.get(name) for name in used} == used
    sources = (file.read_text() for file in (ROOT / "python/tqlabel").glob("*.py"))
    called = set(re.findall(r'(?:"|library\.)([A-Z]\w+)(?:"|\b)', "".join(sources)))
    assert not set(declared) & called - set(used)


def test_records_are_those_of_the_header() -> None:
    declared = {name: " ".join(members.split())
                for members, name in re.findall(r"typedef struct \w+ \{(.*?)\} (\w+);", CODE, re.S)}
    assert {name: declared.get(name) for name in RECORDS} == RECORDS


def test_missing_library_is_named_with_advice() -> None:
    run = subprocess.run([sys.executable, "-c", "import tqlabel"], capture_output=True, text=True,
                         env={**os.environ, "TQLABEL_LIBRARY": "/none/libtqlabel.so.7"})
    assert run.returncode != 0
    assert re.search(r"ImportError: /none/.*\. Install the library, or set TQLABEL_LIBRARY",
                     run.stderr)


def test_example_lists_recipients_and_log() -> None:
    for label, listing in [
        ("60", "recipients: 0\nlog entries: 1\n  2023-11-14T22:13:20+00:00 'opened'\n"),
        ("11_padded_encrypted", "the body is encrypted\n"),
    ]:
        command = [sys.executable, ROOT / "python/examples/list_recipients.py",
                   ROOT / f"tests/data/cli/{label}.der"]
        assert subprocess.run(command, text=True, capture_output=True).stdout == listing
