#!/usr/bin/env python3
"""Writes the labels of the lint cases to tests/data/cli/lint.

Each is named after the one code that lint finds in it; clean.der has none.
"""

import pathlib

from make_labels import (ALIGN, BMP, CERTIFICATE, CHANGED, EMPTY_MARKINGS, KEY, MADE, NULL, PRINTABLE, SHA256_RSA, SIGNATURE, SM3_SM2, STAMP, UNSET, UTF8,
                         WATER_MARK, bits, entries, flag, name, num, octets, oid, seq, sign, text,
                         tlv, when)

COUNTRY, OFFICE = ("2.5.4.6", PRINTABLE, b"XX"), ("2.5.4.10", PRINTABLE, b"Office")
CA = name(COUNTRY, OFFICE)
RSA, IBCCS, CIPHER = (oid("1.2.840.113549.1.1.1"), oid("2.16.840.1.114334.1.5.1"),
                      oid("2.16.840.1.101.3.4.1.42"))
NONE = tlv(0x06)
BROKEN_SEQUENCE = tlv(0x30, b"\x04\x7f")
HEAD = {
    "label": text("secret"), "version": text("1.1"), "issuer": CA, "serial": num(7),
    "created": MADE, "changed": CHANGED, "custom": octets(b""), "cipher": NONE, "mode": num(0),
    "feedback": num(8), "envelopes": NULL, "sign": sign(SHA256_RSA),
}
BODY = {
    "signatures": SIGNATURE + CERTIFICATE, "envelopes": NULL, "markings": EMPTY_MARKINGS,
    "fileNo": text("F-17\0"), "creator": text("creator"), "created": MADE, "size": num(9),
    "fileName": text("plan.odt"), "title": text("plan"), "modified": MADE, "expiry": UNSET,
    "abolish": UNSET, "destroy": UNSET, "align": b"", "extends": b"", "logs": b"", "behind": b"",
}
MULTI_SIGN = {"markings": b"", "align": ALIGN}


def head(**changed):
    p = {**HEAD, **changed}
    encrypt = seq(p["cipher"], p["mode"], p["feedback"], p["envelopes"])
    return seq(*(p[k] for k in ("label", "version", "issuer", "serial", "created", "changed",
                                "custom")), encrypt, p["sign"])


def body(**changed):
    p = {**BODY, **changed}
    return seq(p["signatures"], p["envelopes"], p["markings"],
               seq(p["fileNo"], p["creator"], p["created"]),
               seq(num(1), num(3), *(p[k] for k in ("size", "fileName", "title", "modified",
                                                    "expiry", "abolish", "destroy"))),
               p["align"], p["extends"], p["logs"], p["behind"])


def label(in_head=None, in_body=None, *behind):
    return seq(head(**(in_head or {})), body(**(in_body or {})), *behind)


def label112(**changed):
    return label({"version": text("1.1.2")}, {**MULTI_SIGN, **changed})


def envelope(issuer=CA, serial=num(1), algorithm=RSA, key=KEY):
    return seq(issuer, serial, algorithm, key)


def with_privilege(recipient, pairs=b""):
    return seq(recipient, seq(seq(), flag(True), num(5), num(2), flag(False), flag(True),
                              flag(False), num(0), num(128), pairs))


def recipients(*envelopes, pairs=b""):
    """The same recipients in head and body, sorted as DER has it."""
    in_body = sorted(with_privilege(e, pairs) for e in envelopes)
    return label({"envelopes": entries(*sorted(envelopes))}, {"envelopes": entries(*in_body)})


def extends(*types):
    return {"extends": tlv(0xA0, entries(*(seq(num(t), octets(bytes([i])))
                                           for i, t in enumerate(types))))}


def logs(*entries_):
    return {"logs": tlv(0xA1, entries(*entries_))}


def log(size=6, time=MADE):
    return seq(num(2), text("o" * size), CA, num(1), num(2), time, num(1), text("ok"))


IDENTITY_KEY = seq(tlv(0x02, b"\1\2\3\4\5"), text("alice"), octets(b"\3"),
                   octets(b"\4" + b"\7" * 8), octets(b"\5"))
STAMPED, MARKED = tlv(0xA0, STAMP), tlv(0xA1, WATER_MARK)

LABELS = {
    "clean": recipients(envelope(), envelope(name(OFFICE), num(2))),
    "TQ001": label()[:200],
    "TQ002": seq(head()),
    "TQ003": label(None, {"fileName": octets(b"plan")}),
    "TQ004": label(None, {"expiry": when("20230230000000Z")}),
    "TQ005": label({"version": text("1.1\0")}),
    "TQ010": seq(head(cipher=CIPHER), octets(bytes(127))),
    "TQ011": label({"issuer": name(COUNTRY, ("2.5.4.3", PRINTABLE, b"c" * 129))}),
    "TQ012": label(None, {"fileName": text("n" * 256)}),
    "TQ013": label({"sign": sign(oid("1.2.3.4.5"))}),
    "TQ014": label({"issuer": name(COUNTRY, ("2.5.4.5", PRINTABLE, b"1"))}),
    "TQ015": label(None, {"signatures": SIGNATURE + NULL}),
    "TQ016": label({"envelopes": entries(envelope(), envelope(name(OFFICE, COUNTRY)))},
                   {"envelopes": entries(with_privilege(envelope()))}),
    "TQ017": recipients(envelope(algorithm=IBCCS, key=IDENTITY_KEY)),
    "TQ020": label(None, {"behind": octets(b"later")}),
    "TQ021": label112(signatures=seq(sign(SHA256_RSA)), markings=MARKED + MARKED),
    "TQ022": label(None, {**extends(1), "logs": tlv(0xA2, entries(log()))}),
    "TQ023": label(None, None, octets(b"\0\0old")),
    "TQ024": label(None, {"fileName": text("plan_1.odt")}),
    "TQ025": label(None, {"fileName": text("plan.odt\0.exe")}),
    "TQ026": label(None, {"fileNo": text("F-17")}),
    "TQ027": label({"serial": tlv(0x02, b"\xc0\xff\xee")}),
    "TQ028": label(None, {"signatures": SIGNATURE + seq(num(1), BROKEN_SEQUENCE)}),
    "TQ029": label({"issuer": name(COUNTRY, ("2.5.4.3", UTF8, "B\u00fcro".encode()))}),
    "TQ030": label(None, {"signatures": bits(bytes(71)) + CERTIFICATE}),
    "TQ031": label(None, logs(log(256))),
    "TQ032": label(None, extends(65543)),
    "TQ033": label(None, extends(7, 7)),
    "TQ034": recipients(envelope(), pairs=entries(*(seq(num(i), num(0)) for i in range(21)))),
    "TQ040": seq(
        seq(text("public"), text("6.0"), octets(b""), sign(text("sha1WithRSAEncryption")),
            seq(text(""), num(0), entries(seq(num(1), text("RSA"), KEY))), num(7), MADE, CHANGED),
        body(extends=NULL, logs=NULL)),
    "TQ041": recipients(envelope(), envelope(name(OFFICE))),
    "TQ042": label(None, {"envelopes": entries(with_privilege(envelope()))}),
    "TQ043": label({"envelopes": entries(envelope())}),
    "TQ050": label({"cipher": CIPHER}),
    "TQ051": seq(head(), octets(bytes(128))),
    "TQ052": label(None, {"expiry": CHANGED, "destroy": MADE}),
    "TQ053": label112(signatures=seq(sign(SM3_SM2))),
    "TQ054": label112(signatures=seq(sign(SHA256_RSA), sign(SHA256_RSA))),
    "TQ060": label(None, logs(log(7), log(6))),
    # Found in other ways.
    "elsewhere": label(
        {"issuer": seq(tlv(0x31, seq(oid("2.5.4.3"), text("a")), seq(oid("2.5.4.3"), text("b"))),
                       tlv(0x31, seq(oid("2.5.4.3"), tlv(BMP, b"\xd8\x00")))),
         "label": text("l" * 129), "serial": tlv(0x02), "feedback": num(256)},
        {"extends": tlv(0xA0, seq(entries(seq(num(1), octets(b"")))[2:], NULL)),
         **logs(log(6, MADE), log(6, CHANGED))}, octets(b""), NULL),
    "unlike": label112(signatures=seq(sign(SHA256_RSA)), markings=MARKED + STAMPED),
    "many": label(None, extends(*[7] * 111)),
}


def main():
    folder = pathlib.Path(__file__).resolve().parent.parent / "data" / "cli" / "lint"
    folder.mkdir(parents=True, exist_ok=True)
    for file, der in LABELS.items():
        (folder / f"{file}.der").write_bytes(der)


if __name__ == "__main__":
    main()
