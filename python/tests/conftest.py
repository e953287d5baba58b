"""Labels for the tests."""

from datetime import datetime, timezone
from pathlib import Path

from tqlabel import (Attribute, Cipher, Envelope, Extension, FileCreator, Fingerprint, Fingerprints,
                     Label, Log, Meta, PrivilegePair, Privileges, Recipient, Rights, Seal, Signature,
                     Stamp, StampRecord, WaterMark)

ROOT = Path(__file__).resolve().parents[2]
VERSIONS = ("1.1", "1.1.1", "1.1.2", "6.0")
SEQUENCE = bytes.fromhex("3003020107")
ISSUER = (Attribute("C", "XX"), Attribute("O", "B\u00fcro"), Attribute("E", "a@b.c", 22))
THEN = datetime(2023, 11, 14, 22, 13, 20, tzinfo=timezone.utc)


def recipient(serial: int) -> Recipient:
    """A recipient by its number."""
    return Recipient(serial.to_bytes(2, "big"), ISSUER)


def envelope(serial: int, key: bytes = b"key", head_key: bytes | None = b"head") -> Envelope:
    """An envelope with privileges of many values."""
    rights = Privileges(SEQUENCE, Rights.FIRST | Rights.THIRD, 1, 2, 3, 0xFFFFFFFF,
                        (PrivilegePair(1, 10), PrivilegePair(0xFFFF, 20)))
    return Envelope(recipient(serial), key, rights, head_key)


# Two values that are swapped show, since each is of its own.
MARK = WaterMark(b"one", b"two", 6, 7, "draft", THEN)
STAMP = StampRecord(
    "name", Seal("seal", Meta(SEQUENCE, THEN, "a", THEN.replace(day=2), None, "b"), 8, b"data",
                 bytes.fromhex("020109"), b"\x0f"),
    Stamp("first", (1, 2, 3, 4), "same", THEN, b"same"), b"\xf0")
FINGERS = Fingerprints(b"1", b"2", b"3", 4, (
    Fingerprint(SEQUENCE, (1, 0, 0, 1, 0, 0, 0, 0, 1)), Fingerprint(b"", (0,) * 9)))
SIGNATURES = [Signature("sha1WithRSAEncryption", bytes([i]) * 9, SEQUENCE[:-1] + bytes([i]))
              for i in (1, 2)]


def full(version: str) -> Label:
    """A label with all that the package sets."""
    label = Label(version)
    label.text, label.custom, label.modified = "secret", b"\x00\xff", THEN
    label.sign_algorithm, label.head_certificate = "sha1WithRSAEncryption", SEQUENCE
    label.head_signature, label.author = b"signed", Recipient(b"\x05", ISSUER)
    label.cipher, label.file_creator = Cipher("AES", 8), FileCreator("F-17", "maker", THEN)
    label.file_type, label.secrecy, label.file_size = 1, 3, 0xFFFFFFFF
    label.file_name, label.file_title = "pl\u00e4n.odt", "The plan"
    label.file_modified, label.expiry, label.destruction = THEN, THEN, THEN.replace(year=9999)
    label.touch()
    label.abolish()
    label.watermark, label.stamp, label.fingerprints = MARK, STAMP, FINGERS
    if version == "1.1.2":
        for signature in SIGNATURES:
            label.add_signature(signature, first=signature is SIGNATURES[0])
    else:
        label.body_certificate, label.body_signature = SEQUENCE, bytes(range(64))
    if version in ("1.1.1", "1.1.2"):
        label.file_align, label.uneffective, label.label_align = 512, 17, 4096
    if version != "6.0":
        label.add_recipient(envelope(1, head_key=None))
        label.add_recipient(envelope(2))
    label.add_log(Log(1, "opened", ISSUER, b"\x12\x34", b"\x00\x80", THEN, 2, "ok"))
    label.add_log(Log(2, "closed", ISSUER))
    label.add_extension(Extension(7, b"value"))
    label.add_extension(Extension(0xFFFFFFFF, b""))
    return label
