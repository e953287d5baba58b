#!/usr/bin/env python3
"""Writes the labels of the command line cases to tests/data/cli.

It puts DER together on its own, so that the cases compare the tool with something other than the
library's writer. Run it after a change and commit what it writes; the cases do not need it.
"""

import pathlib


def tlv(tag, *parts):
    content = b"".join(parts)
    size = len(content)
    if size < 0x80:
        return bytes([tag, size]) + content
    octets = size.to_bytes((size.bit_length() + 7) // 8, "big")
    return bytes([tag, 0x80 | len(octets)]) + octets + content


def seq(*parts):
    return tlv(0x30, *parts)


def num(value):
    return tlv(0x02, value.to_bytes(value.bit_length() // 8 + 1, "big"))


def flag(value):
    return tlv(0x01, b"\xff" if value else b"\x00")


def octets(value):
    return tlv(0x04, value)


def bits(value):
    return tlv(0x03, b"\x00", value)


def text(value):
    return tlv(0x13, value if isinstance(value, bytes) else value.encode())


def when(value):
    return tlv(0x18, value.encode())


def oid(dotted):
    first, second, *arcs = (int(arc) for arc in dotted.split("."))
    content = b""
    for arc in [40 * first + second, *arcs]:
        low = [arc & 0x7F]
        while arc := arc >> 7:
            low.append(arc & 0x7F | 0x80)
        content += bytes(reversed(low))
    return tlv(0x06, content)


def entries(*parts):
    return seq(tlv(0x31, *parts))


def name(*attributes):
    """Attributes are (type, tag of the value, value)."""
    return seq(*(tlv(0x31, seq(oid(kind), tlv(tag, value))) for kind, tag, value in attributes))


NULL = tlv(0x05)
UTF8, PRINTABLE, IA5, BMP = 0x0C, 0x13, 0x16, 0x1E
UNSET = when("19700101000000Z")
MADE, CHANGED = when("20231114221320Z"), when("20240229235959Z")
SERIAL = num(0x00C0FFEE)
CERTIFICATE = seq(num(7), octets(bytes(range(64))))
SIGNATURE = bits(bytes(range(128)))
KEY = octets(bytes(range(48)))
SHA256_RSA, SM3_SM2 = oid("1.2.840.113549.1.1.11"), oid("1.2.156.10197.1.501")
ISSUER = name(
    ("2.5.4.6", PRINTABLE, b"XX"),
    ("2.5.4.10", UTF8, "B\u00fcro, Abt. 1".encode()),
    ("2.5.4.3", BMP, "\u4e2d\u6587 CA".encode("utf-16-be")),
    ("1.2.840.113549.1.9.1", IA5, b"ca@example.org"),
    ("2.5.4.97", UTF8, b"unnamed type"),
)
CONTENT = seq(num(1), num(3), num(0xFFFFFFFF), text("plan.odt"), text("The \"plan\""),
              MADE, CHANGED, UNSET, UNSET)
ALIGN = seq(num(4096), num(512), num(17))


def sign(algorithm):
    return seq(CERTIFICATE, algorithm, SIGNATURE)


def head60(label, version="6.0", envelopes=NULL):
    return seq(text(label), text(version), octets(b"custom"), sign(text("sha1WithRSAEncryption")),
               seq(text("AES"), num(2), envelopes), SERIAL, MADE, CHANGED)


def head11(version, cipher, signature, envelopes=NULL):
    return seq(text("secret"), text(version), ISSUER, SERIAL, MADE, UNSET, octets(b""),
               seq(cipher, num(0), num(8), envelopes), signature)


def privilege(subject, pairs):
    return seq(subject, flag(True), num(5), num(2), flag(False), flag(True), flag(False), num(0),
               num(128), pairs)


STAMP = seq(text("Seal"),
            seq(text("Maker"), seq(seq(num(1)), MADE, text("a"), UNSET, CHANGED, text("b")), num(4),
                octets(b"\x01\x02"), oid("1.2.156.10197.1.501"), bits(b"\x03")),
            seq(text("left"), num(10), num(20), num(30), num(40), text("right"), MADE, text("end")),
            bits(b"\x04\x05"))
WATER_MARK = seq(octets(b"one"), octets(bytes(33)), seq(num(6), num(7)), text("draft"), MADE)
FINGER_PRINT = seq(
    seq(octets(b"s1"), octets(b"s2"), octets(b""), num(9)),
    entries(seq(seq(num(1)), *(flag(i % 3 == 0) for i in range(11))),
            seq(*(flag(True) for _ in range(11)))))
CREATOR = seq(text(b"F-17\x00"), text("creator"), MADE)
EXTENDS = entries(seq(num(1), octets(b"\xca\xfe")), seq(num(300), octets(bytes(40))))


def log(with_name):
    return seq(num(2), text("opened"), *([ISSUER] if with_name else []), num(0x1234), num(0x80),
               MADE, num(1), text("ok"))


def body(signatures, envelopes, markings, align=b"", tail=b"", creator=CREATOR):
    return seq(signatures, envelopes, markings, creator, CONTENT, align, tail)


def envelope60():
    return seq(SERIAL, text("RSA"), KEY)


def envelope11():
    return seq(ISSUER, num(1), oid("1.2.840.113549.1.1.1"), KEY)


SIGNED = SIGNATURE + CERTIFICATE
EMPTY_MARKINGS = (
    seq(text(""), seq(text(""), seq(UNSET, text(""), UNSET, UNSET, text("")), num(0), octets(b""),
                      bits(b"")),
        seq(text(""), num(0), num(0), num(0), num(0), text(""), UNSET, text("")), bits(b""))
    + seq(octets(b""), octets(b""), seq(num(0), num(0)), text(""), UNSET)
    + seq(seq(octets(b""), octets(b""), octets(b""), num(0)), NULL))
# What a terminal would act on, what it would not show, and what is no text.
HOSTILE = (b"\x1b]0;title\x07\x1b[2J\r\n\t\x7f" + "\u009b31m \u202edcba\u2069".encode()
           + b" \xc3\x28 \xf5 \\ \" end")
FULL_MARKINGS = STAMP + WATER_MARK + FINGER_PRINT
FULL_TAIL_11 = tlv(0xA0, EXTENDS) + tlv(0xA1, entries(log(True)))

LABELS = {
    "60": seq(
        head60("public", envelopes=entries(envelope60(), envelope60())),
        body(SIGNED, entries(seq(envelope60(), privilege(seq(), entries(seq(num(1), num(2)))))),
             FULL_MARKINGS, tail=EXTENDS + entries(log(False)))),
    "11": seq(
        head11("1.1", tlv(0x06), sign(SHA256_RSA)),
        body(SIGNED, entries(seq(envelope11(), privilege(oid("2.5.4.3"), b""))), EMPTY_MARKINGS,
             tail=FULL_TAIL_11)),
    "111_padded": seq(
        head11("1.1.1", tlv(0x06), sign(oid("1.2.3.4.5"))),
        body(SIGNED, NULL, EMPTY_MARKINGS, align=ALIGN), octets(bytes(16))),
    "112": seq(
        head11("1.1.2", tlv(0x06), sign(SM3_SM2)),
        body(seq(sign(SM3_SM2), sign(SHA256_RSA)), NULL, tlv(0xA1, WATER_MARK), align=ALIGN)),
    "11_padded_encrypted": seq(
        head11("1.1", oid("2.16.840.1.101.3.4.1.42"), sign(SM3_SM2), entries(envelope11())),
        octets(bytes(200)), octets(b"\x00\x01")) + b"the file itself",
    "hostile_texts": seq(
        head60(HOSTILE), body(SIGNED, NULL, EMPTY_MARKINGS, tail=NULL + NULL,
                              creator=seq(text(HOSTILE * 23), text("o\u0308".encode()), UNSET))),
    "unknown_version": seq(head60("public", version="9.9"), seq()),
    "broken_body": seq(head60("public"), seq(num(1))),
    "no_body": seq(head60("public")),
}


def main():
    folder = pathlib.Path(__file__).resolve().parent.parent / "data" / "cli"
    folder.mkdir(parents=True, exist_ok=True)
    for label, der in LABELS.items():
        (folder / f"{label}.der").write_bytes(der)


if __name__ == "__main__":
    main()
