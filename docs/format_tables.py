#!/usr/bin/env python3
"""Prints the tables of docs/format.md from docs/label.asn1, which tests hold to the code.

usage: format_tables.py [--write]     (without: fails where the page has other tables)

An element without a meaning below, or a meaning without an element, fails.
"""

import re
import sys
from pathlib import Path

from generated import settle

DOCS = Path(__file__).resolve().parent
PAGE = DOCS / "format.md"
BEGIN, END = "<!-- tables -->\n", "<!-- end of tables -->\n"
VERSIONS = ("6.0", "1.1", "1.1.1", "1.1.2")

# Each record: the types of its versions, and what its elements hold.
ALL = ("Label60", "Label11", "Label111", "Label112")
RECORDS = {
    "Label": (ALL, {
        "head": "what everybody can read",
        "body": "what describes the file; or, encrypted, an OCTET STRING of the body's bytes under the cipher",
        "padding": "zeros; the label takes the room that the file keeps for it",
    }),
    "Head": (("Head60", "Head11", "Head11", "Head11"), {
        "label": "a text for everybody, such as `internal`; 1 to 128 bytes",
        "version": "the version, which says how all else is laid out",
        "issuer": "issuer of the author's certificate",
        "serial": "serial number of the author's certificate; 1 to 128 octets",
        "createTime": "when the label was made",
        "modifyTime": "when it was changed last",
        "custom": "bytes for any use",
        "encrypt": "cipher of the body, and who may open it",
        "sign": "signature of the label",
    }),
    "Sign": (("Sign60", "Sign11", "Sign11", "Sign11"), {
        "cert": "the signer's certificate, as it is",
        "algorithm": "of the signature: a name, or its identifier",
        "value": "the signature; whole octets",
    }),
    "EncryptHead": (("EncryptHead60", "EncryptHead11", "EncryptHead11", "EncryptHead11"), {
        "algorithm": "of the body; empty where it is in the clear",
        "mode": "0",
        "feedBackBits": "feedback size of the cipher in bits, to 255",
        "envelopes": "an `Envelope` for each recipient, newest first",
    }),
    "Envelope": ((None, "Envelope", "Envelope", "Envelope"), {
        "issuer": "issuer of the recipient's certificate",
        "serial": "its serial number; to 255 octets",
        "algorithm": "with which the key is wrapped",
        "key": "the file's key, wrapped for the recipient",
    }),
    "Body": (("Body60", "Body11", "Body111", "Body112"), {
        "signs": "chain of signatures, each over those before it",
        "signValue": "signature of the file; a multiple of 32 bytes",
        "signCert": "certificate of who signed it",
        "envelopes": "a `BodyEnvelope` for each recipient, newest first",
        "stamp": "a stamp with its seal",
        "waterMark": "a watermark",
        "fingerPrint": "fingerprints",
        "creator": "number and maker of the file",
        "content": "what the file is, and until when it may be used",
        "fileAlign": "sizes to which file and label are aligned",
        "extends": "values of applications by type number, newest first",
        "logs": "what was done with the file, newest first",
    }),
    "BodyEnvelope": ((None, "BodyEnvelope", "BodyEnvelope", "BodyEnvelope"), {
        "envelope": "the recipient and the wrapped key",
        "privilege": "what he may do",
    }),
    "Privilege": ((None, "Privilege", "Privilege", "Privilege"), {
        "subject": "the recipient's certificate, or an OBJECT IDENTIFIER",
        "flag1": "the caller's; sealed files: may open",
        "value1": "the caller's; sealed files: how often he may",
        "value2": "how often the file was read",
        "flag2": "the caller's; sealed files: may print",
        "flag3": "the caller's; sealed files: may copy",
        "flag4": "the caller's; sealed files: may edit",
        "value3": "the caller's",
        "value4": "the caller's",
        "more": "further privileges: a type of 16 bits, followed by two bytes that are kept, and a value",
    }),
    "Content": (("Content",) * 4, {
        "fileType": "the caller's number",
        "secrecy": "the caller's level",
        "fileSize": "in the caller's unit",
        "fileName": "to 255 bytes",
        "fileTitle": "to 255 bytes",
        "modifyTime": "when the file was changed",
        "expiryTime": "when it expires",
        "abolishTime": "when it was put out of force",
        "destroyTime": "when it is to be destroyed",
    }),
    "Creator": (("Creator",) * 4, {
        "fileNo": "number of the file, with a terminating zero",
        "text": "the caller's",
        "time": "the caller's; 32 bits are read back",
    }),
    "FileAlign": ((None, None, "FileAlign", "FileAlign"), {
        "labelAlign": "size to which the label is aligned, in bytes",
        "fileAlign": "size to which the file is aligned, in bytes",
        "unEffect": "bytes of the file that do not count",
    }),
    "ExtendList": (("ExtendList",) * 4, {
        "set": "type number and value of each",
    }),
    "LogList": ((None, "LogList", "LogList", "LogList"), {
        "set": "the logs",
    }),
    "Log": (("Log60", "Log11", "Log11", "Log11"), {
        "type": "the caller's number",
        "text1": "the caller's; 255 bytes are read back",
        "name": "an issuer",
        "array1": "an INTEGER of any length; 255 octets are read back",
        "array2": "likewise",
        "time": "when",
        "value": "the caller's",
        "text2": "the caller's",
    }),
    "StampAttr": (("StampAttr",) * 4, {
        "name": "name of the stamp",
        "seal": "the seal",
        "stamp": "the stamp proper",
        "bits": "whole octets",
    }),
    "Seal": (("Seal",) * 4, {
        "name": "name of the seal",
        "meta": "what it says about itself",
        "type": "the caller's number; its low 8 bits are read back",
        "data": "the caller's",
        "element": "any element but a BIT STRING",
        "bits": "whole octets",
    }),
    "Meta": (("Meta",) * 4, {
        "element": "a SEQUENCE",
        "time1": "the caller's", "text1": "the caller's", "time2": "the caller's",
        "time3": "the caller's", "text2": "the caller's",
    }),
    "Stamp": (("Stamp",) * 4, {
        "text1": "with a terminating zero",
        "value0": "the caller's", "value1": "the caller's", "value2": "the caller's",
        "value3": "the caller's",
        "text2": "bytes of `text3` in the length of the text that was given, with zeros behind them",
        "time": "the caller's",
        "text3": "any bytes",
    }),
    "WaterMark": (("WaterMark",) * 4, {
        "data1": "the caller's", "data2": "the caller's",
        "alg": "algorithm number and its parameter",
        "text": "with a terminating zero",
        "time": "the caller's",
    }),
    "FingerPrint": (("FingerPrint",) * 4, {
        "sys": "system information: three byte strings and a number",
        "list": "an `Action` for each fingerprint",
    }),
    "Action": (("Action",) * 4, {
        "subject": "a SEQUENCE",
        **{f"flag{i}": "the caller's" for i in range(9)},
        "flag9": "false where it is set by this library", "flag10": "likewise",
    }),
}


def top_level(text):
    """The parts between commas that no brace encloses."""
    depth, part, parts = 0, "", []
    for letter in text:
        depth += {"{": 1, "}": -1}.get(letter, 0)
        if letter == "," and depth == 0:
            parts.append(part)
            part = ""
        else:
            part += letter
    return [" ".join(each.split()) for each in [*parts, part]]


def sequences():
    """The elements of each SEQUENCE type: name, type, and whether it may be missing."""
    module = re.sub(r"--.*", "", (DOCS / "label.asn1").read_text("ascii"))
    found = {}
    for name, short, long in re.findall(
            r"^(\w+)\s*::= SEQUENCE \{(?: (.*) |\n([\s\S]*?)\n)\}$", module, re.M):
        found[name] = [re.fullmatch(r"(\w+) (.*?)( OPTIONAL)?", each).groups()
                       for each in top_level(short or long)]
    return found


def table(kinds, meanings, types):
    """A row for each element; a number says where it stands in that version."""
    versions = [types[kind] if kind else [] for kind in kinds]
    names = list(dict.fromkeys(element[0] for elements in reversed(versions) for element in elements))
    if set(names) != set(meanings):
        sys.exit(f"{kinds[-1]}: meanings and elements differ: {set(names) ^ set(meanings)}")
    yield f"| element | type | {' | '.join(VERSIONS)} | holds |\n|---|---|{'---|' * 4}---|\n"
    for name in meanings:
        shapes, places = [], []
        for elements in versions:
            at = next((i for i, element in enumerate(elements) if element[0] == name), None)
            places.append("" if at is None else f"{at + 1}{' ?' if elements[at][2] else ''}")
            shapes += [] if at is None else [elements[at][1]]
        shown = ", ".join(f"`{shape}`" for shape in dict.fromkeys(shapes))
        yield f"| `{name}` | {shown} | {' | '.join(places)} | {meanings[name]} |\n"


def tables():
    types = sequences()
    unused = {kind for kind in types if not kind.startswith(("Message", "Sealed"))} - {
        kind for kinds, _ in RECORDS.values() for kind in kinds}
    if unused:
        sys.exit(f"records without a table: {unused}")
    for name, (kinds, meanings) in RECORDS.items():
        yield f"\n### {name}\n\n"
        yield from table(kinds, meanings, types)


def main():
    page = PAGE.read_text("utf-8")
    before, rest = page.split(BEGIN)
    settle(PAGE, before + BEGIN + "".join(tables()) + "\n" + END + rest.split(END)[1])


if __name__ == "__main__":
    main()
