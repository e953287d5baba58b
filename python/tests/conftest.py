"""Labels for the tests."""

from datetime import datetime, timezone
from pathlib import Path

from tqlabel import (Attribute, Cipher, Envelope, Extension, FileCreator, Label, Log,
                     PrivilegePair, Privileges, Recipient, Rights)

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
    if version != "1.1.2":
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
