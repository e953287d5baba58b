#!/usr/bin/env python3
"""Draws docs/anatomy.svg: the elements of a label with their places, as the tool tells them.

usage: draw_anatomy.py TOOL [--write]     (without: fails where the picture is not as it should be)

TQLABEL_LIBRARY and PYTHONPATH lead to the library and to the package in python/.
"""

import json
import subprocess
import sys
from pathlib import Path

from svg import box, finish, line
from tqlabel import Attribute, Envelope, Extension, Label, Log, Privileges, Recipient, Rights

PICTURE = Path(__file__).resolve().parent / "anatomy.svg"
# what the elements are for; one that is not here, or here and not there, fails the drawing
HEAD = {
    "label": "a text for everybody, such as internal",
    "versionText": "6.0, 1.1, 1.1.1 or 1.1.2",
    "issuer": "author's certificate: who issued it",
    "serialNum": "author's certificate: its number",
    "createTime": "when the label was made",
    "modifyTime": "when it was changed last",
    "custom": "bytes for any use",
    "encryptHead": "cipher of the body; who may open it",
    "encryptHead.envelopes[1]": "the file's key, wrapped for Bob",
    "encryptHead.envelopes[2]": "the file's key, wrapped for Ann",
    "headSign": "certificate, algorithm, signature",
}
BODY = {
    "bodySignValue": "signature of the file",
    "bodySignCert": "certificate of its signer",
    "bodyEnvelopes": "recipients with their privileges",
    "bodyEnvelopes[1]": "Bob: key, certificate, rights, count",
    "bodyEnvelopes[2]": "Ann: key, certificate, rights, count",
    "stamp": "a seal to show",
    "waterMark": "a text to show",
    "fingerPrint": "marks to look for",
    "fileCreator": "who made the file, its number",
    "content": "name, title, size, expiry, destruction",
    "align": "sizes to which all was aligned",
    "extends": "values of applications, by type",
    "logs": "what was done with the file",
}
WIDTH, ROW, LEFT = 620, 22, 12


def sample():
    """A label of "1.1.1" for two recipients, signed, logged once, in 8192 bytes."""
    ca = (Attribute("C", "XX"), Attribute("O", "Example"), Attribute("CN", "CA"))
    certificate = b"\x30\x82\x02\xc8" + bytes(712)
    label = Label("1.1.1")
    label.text, label.author = "internal", Recipient(b"\1", ca)
    label.sign_algorithm, label.head_signature = "sha256WithRSAEncryption", bytes(256)
    label.head_certificate = label.body_certificate = certificate
    label.body_signature = bytes(256)
    label.file_name, label.file_title, label.file_size = "report.odt", "Quarterly report", 48213
    for serial in b"\2", b"\3":
        label.add_recipient(Envelope(Recipient(serial, ca), bytes(256),
                                     Privileges(certificate, Rights.FIRST, 3), bytes(256)))
    label.add_log(Log(1, "open", ca, text2="office"))
    label.add_extension(Extension(4097, bytes(40)))
    return label.encode(padding=8192 - len(label.encode()) - 4)


def elements(tool):
    """Place and length of each element, by its path."""
    shown = subprocess.run([tool, "--json", "inspect", "--offsets", "-"], input=sample(),
                           stdout=subprocess.PIPE, check=True).stdout
    return {entry["path"]: (entry["at"], entry["length"])
            for entry in json.loads(shown)["notes"]["offsets"]}


def row(y, path, place, meaning):
    indent = 30 if "[" in path else 14
    return "\n".join((
        line(LEFT + indent, y, path.rpartition(".")[2], ""),
        line(300, y, f"{place[0]} + {place[1]}", "n", "end"),
        line(316, y, meaning, "p")))


def frame(y, name, kind, found, meanings):
    """An element with its own ones below, and the line below it."""
    height = ROW * (len(meanings) + 1) + 12
    at, length = found[name]
    drawn = [box(LEFT, y, WIDTH - 2 * LEFT, height, kind), line(LEFT + 8, y + 18, name, "t"),
             line(300, y + 18, f"{at} + {length}", "n", "end")]
    for i, (path, meaning) in enumerate(meanings.items()):
        drawn.append(row(y + 18 + ROW * (i + 1), path, found[f"{name}.{path}"], meaning))
    return drawn, y + height + 10


def draw(found):
    for name, meanings in ("head", HEAD), ("body", BODY):
        there = {path.partition(".")[2] for path in found if path.startswith(name + ".")}
        missing = {path for path in there if not set(path) & set(".[")} ^ {
            path for path in meanings if not set(path) & set(".[")}
        if missing or not set(meanings) <= there:
            sys.exit(f"elements of the {name} without a meaning, or the reverse: {missing}")
    drawn, y = [line(LEFT, 20, "label", "t"), line(
        LEFT + 60, 20, f"SEQUENCE of {found[''][1]} bytes; offset + length of each element", "p")], 32
    for name, kind, meanings in ("head", "h", HEAD), ("body", "b", BODY), ("padding", "z", {}):
        more, y = frame(y, name, kind, found, meanings)
        drawn += more
    drawn.append(line(316, y - 26, "zeros, so that it can grow in place", "p"))
    finish(PICTURE, "Anatomy of a label", WIDTH, y, drawn)


if __name__ == "__main__":
    draw(elements(sys.argv[1]))
