"""Labels through the package."""

import gc
import json
import threading
from collections.abc import Callable
from dataclasses import replace
from datetime import datetime, timedelta, timezone
from functools import partial
from typing import Any

import pytest

from conftest import (FINGERS, ISSUER, MARK, ROOT, SEQUENCE, SIGNATURES, STAMP, THEN, VERSIONS,
                      envelope, full, recipient)
from tqlabel import (Attribute, Cipher, Extension, FileCreator, Fingerprint, Fingerprints, Label,
                     LabelError, Log, PrivilegePair, Privileges, Recipient, Rights, Seal, Stamp,
                     StampRecord, WaterMark)
from tqlabel._library import library


def labels_at_hand(name: str) -> bytes:
    return (ROOT / "tests/data/cli" / f"{name}.der").read_bytes()


@pytest.mark.parametrize("version", VERSIONS)
def test_round_trips(version: str) -> None:
    made = full(version)
    data = made.encode()
    read = Label.decode(data)
    assert read.encode() == data
    plain = read.to_dict()
    if version == "6.0":  # which does not write the feedback bits
        made.cipher = Cipher("AES")
    assert made.to_dict() == plain
    plain["created"] = "1999-12-31T23:59:59+00:00"
    assert json.loads(json.dumps(plain)) == plain
    again = Label.from_dict(plain)
    assert again.to_dict() == plain
    again.modified = None
    assert Label.from_dict(again.to_dict()).encode() == again.encode()
    assert Label.from_dict(Label(version).to_dict()).to_dict() == Label(version).to_dict()


@pytest.mark.parametrize("name", ["60", "hostile_texts"])
def test_labels_of_others_come_back(name: str) -> None:
    label = Label.decode(labels_at_hand(name))
    assert label.encode() == labels_at_hand(name)
    plain = label.to_dict()
    again = Label.from_dict(plain).to_dict()
    if name == "60":  # its second text is another one than the library stores
        plain["stamp"]["stamp"]["text2"] = "end"
    assert again == plain


def test_fields_are_read_back() -> None:
    label = Label.decode(full("1.1.2").encode())
    assert (label.version, label.text, label.custom) == ("1.1.2", "secret", b"\x00\xff")
    assert (label.modified, label.expiry, label.file_modified) == (THEN, THEN, THEN)
    assert label.destruction == THEN.replace(year=9999)
    assert label.author == Recipient(b"\x05", ISSUER)
    assert (label.cipher, label.is_encrypted) == (Cipher("AES", 8), True)
    assert label.file_creator == FileCreator("F-17", "maker", THEN)
    assert (label.file_name, label.file_title) == ("pl\u00e4n.odt", "The plan")
    assert (label.file_size, label.secrecy, label.file_type) == (0xFFFFFFFF, 3, 1)
    assert (label.file_align, label.uneffective, label.label_align) == (512, 17, 4096)
    assert label.head_certificate == SEQUENCE
    now = datetime.now(timezone.utc)
    assert label.created and now - timedelta(minutes=1) < label.created <= now
    assert label.abolition and not label.is_valid and not label.is_due
    label.destruction = THEN
    assert label.is_due
    assert list(label.logs()) == [
        Log(2, "closed", ISSUER),
        Log(1, "opened", ISSUER, b"\x12\x34", b"\x00\x80", THEN, 2, "ok")]
    assert list(label.extensions()) == [Extension(0xFFFFFFFF, b""), Extension(7, b"value")]
    assert (label.watermark, label.stamp, label.fingerprints) == (MARK, STAMP, FINGERS)
    label.remove_extension(7)
    label.clear_logs()
    assert (len(list(label.logs())), len(list(label.extensions()))) == (0, 1)


def test_shapes_of_encoding() -> None:
    label = full("1.1")
    plain = label.encode()
    assert label.encode(padding=300).endswith(b"\x04\x82\x01\x2c" + bytes(300))
    assert label.encode(padding=0).endswith(b"\x04\x00")
    assert Label.decode(label.encode(padding=300)).encode() == plain
    sealed = bytes(octet ^ 0x55 for octet in label.encode_body())
    for padding in (None, 5):
        head, body = Label.decode_encrypted(label.encode(encrypted_body=sealed, padding=padding))
        assert body == sealed
        head.decode_body(bytes(octet ^ 0x55 for octet in body))
        assert head.encode() == plain
    with pytest.raises(LabelError):
        Label.decode(label.encode(encrypted_body=sealed))


def test_bytes_to_sign_are_the_label_without_the_value() -> None:
    label = full("1.1.1")
    message = label.signature_message()
    label.head_signature = b"another"
    assert b"another" in label.encode() and label.signature_message() == message
    label.head_certificate = bytes.fromhex("3003020108")
    assert label.signature_message() != message


@pytest.mark.parametrize("version", ["1.1", "1.1.1", "1.1.2"])
def test_recipients(version: str) -> None:
    label = full(version)
    large = envelope(3, key=bytes(9000))
    label.add_recipient(large)
    data = label.encode()
    assert list(label.recipients()) == [large, envelope(2), envelope(1, head_key=None)]
    assert label.encode() == data
    label.add_recipient(envelope(1, key=b"new"))
    label.set_read_count(recipient(1), 77)
    rights = replace(envelope(1).privileges, read_count=77)
    assert next(label.recipients()) == replace(envelope(1, key=b"new"), privileges=rights)
    label.remove_recipient(recipient(2))
    assert recipient(1) in label and recipient(2) not in label
    assert [to.recipient for to in label.recipients()] == [recipient(1), recipient(3)]
    for serial in range(10, 120):
        label.add_recipient(envelope(serial))
    assert len(list(label.recipients())) == 112
    assert label.file_creator == FileCreator("F-17", "maker", THEN)


@pytest.mark.parametrize("version", ["1.1", "1.1.1", "1.1.2"])
def test_recipients_get_new_keys(version: str) -> None:
    label = full(version)
    before = list(label.recipients())
    keys = [b"key of the newest", b"key of the oldest"]
    wrapped = iter(keys)
    label.rekey(lambda certificate: next(wrapped) if certificate == SEQUENCE else b"")
    assert list(label.recipients()) == [replace(envelope, key=key, head_key=key)
                                        for envelope, key in zip(before, keys)][::-1]
    with pytest.raises(RuntimeError, match="changed"):
        label.rekey(lambda _: label.add_recipient(envelope(9)) or b"")
    with pytest.raises(LabelError):
        Label(version).rekey(lambda _: b"")


def test_signers_sign_those_before_them() -> None:
    label = full("1.1.2")
    assert list(label.signatures()) == SIGNATURES
    first, second = (signature.certificate for signature in SIGNATURES)
    assert label.signer_message(first) == b""
    assert SIGNATURES[0].value in label.signer_message(second)
    assert SIGNATURES[1].value not in label.signer_message(second)
    assert SIGNATURES[1].value in label.signer_message() == label.signer_message(b"nobody")
    label.add_signature(SIGNATURES[1], first=True)
    assert list(label.signatures()) == SIGNATURES[1:]
    assert list(Label("1.1.2").signatures()) == list(full("1.1").signatures()) == []
    unnamed = Label("1.1.2")
    unnamed.add_signature(SIGNATURES[0], first=True)
    with pytest.raises(LabelError, match="GetNextSign"):
        list(unnamed.signatures())


def test_fingerprints_may_be_none() -> None:
    label = full("1.1.2")
    label.fingerprints = Fingerprints(b"x")
    assert label.fingerprints == Fingerprints(b"x")


def test_what_would_be_cut_or_misread_is_refused() -> None:
    label = full("1.1.1")
    data = label.encode()
    long_name, odd_type = (Attribute("CN", "x" * 129),), (Attribute("#" + "2a" * 17, "x"),)
    wrong: list[tuple[str, Any]] = [
        ("file_name", "a\0b"), ("file_name", "\u00e4" * 128), ("text", "x" * 129),
        ("secrecy", -1), ("secrecy", 1 << 32), ("expiry", datetime(2023, 1, 1)),
        ("expiry", datetime.fromtimestamp(0, timezone.utc)),
        ("expiry", datetime.max.replace(tzinfo=timezone(-timedelta(hours=1)))),
        ("cipher", Cipher("AES", 256)), ("author", Recipient(bytes(129), ISSUER)),
        ("author", Recipient(b"1", ISSUER * 4)), ("author", Recipient(b"1", long_name)),
        ("author", Recipient(b"1", odd_type)), ("file_creator", FileCreator("1\0")),
        ("file_creator", FileCreator(time=THEN.replace(year=2200))),
        ("watermark", WaterMark(text="a\0")), ("watermark", WaterMark(alg=1 << 32)),
        ("stamp", StampRecord(seal=Seal(type=256))),
        ("stamp", StampRecord(stamp=Stamp(value=(0, 0, 0, 1 << 32)))),
        ("fingerprints", Fingerprints(entries=(Fingerprint(b"", (2,) * 9),))),
        ("fingerprints", Fingerprints(entries=(Fingerprint(b"", (1,) * 8),))),
    ]
    calls: list[tuple[Callable[[Any], Any], Any]] = [
        (label.add_log, Log(1, "x" * 256, ISSUER)), (label.add_log, Log(1, "", ISSUER, bytes(256))),
        (label.add_extension, Extension(1 << 32, b"")), (label.remove_extension, 65536 + 7),
        (label.add_recipient, replace(envelope(1), algorithm="R" * 256)),
        (label.add_recipient, replace(envelope(1), privileges=Privileges(b"", Rights(16)))),
        (label.add_recipient, replace(envelope(1), privileges=Privileges(
            b"", pairs=(PrivilegePair(65536, 0),)))),
        (label.add_signature, SIGNATURES[0]),
        (Label.from_dict, {"version": "1.1", "nothing": 1}), (Label.from_dict, {}),
        (Label.from_dict, {"version": "1.1", "secrecy": True}),
        (Label.from_dict, {"version": "1.1", "logs": [{"x": 1}]}), (Label, "1.2"),
        (Label.from_dict, {"version": "1.1", "logs": [{"number": 1}]}),
        (Label.from_dict, {"version": "6.0", "created": "2023-01-01T00:00:00"}),
        *((partial(setattr, label, name), value) for name, value in wrong)]
    for call, value in calls:
        with pytest.raises(ValueError):
            call(value)
        assert label.encode() == data


def test_errors_name_the_call() -> None:
    for refused, name in [
        (lambda: Label("6.0").add_recipient(envelope(1)), "ADDigitEnvlopeToBody"),
        (lambda: Label("1.1").encode(), "EncodeLabel"),
        (lambda: setattr(Label("1.1"), "sign_algorithm", "none"), "SetHeadSignAlg"),
    ]:
        with pytest.raises(LabelError, match=f"^{name} gave -1$") as caught:
            refused()
        assert (caught.value.call, caught.value.code) == (name, -1)
    with pytest.raises(AttributeError):
        Label("1.1").created = THEN


@pytest.mark.parametrize("version", VERSIONS)
def test_hostile_bytes(version: str) -> None:
    data = full(version).encode()
    sealed = full(version).encode(encrypted_body=bytes(200))
    for decode, whole in ((Label.decode, data), (Label.decode_encrypted, sealed)):
        for length in range(len(whole)):
            with pytest.raises(LabelError):
                decode(whole[:length])
    for position in range(len(data)):
        for flip in (0x01, 0x80, 0xFF):
            bad = bytearray(data)
            bad[position] ^= flip
            try:
                Label.decode(bytes(bad)).to_dict()
            except LabelError:
                pass
    for name in ("broken_body", "no_body", "unknown_version"):
        with pytest.raises(LabelError):
            Label.decode(labels_at_hand(name))


def test_labels_are_released_once(monkeypatch: pytest.MonkeyPatch) -> None:
    released: list[int] = []
    free = library.FreeHandleLabel
    monkeypatch.setattr(library, "FreeHandleLabel",
                        lambda handle: (released.append(handle), free(handle)))
    with full("1.1") as label:
        logs = label.logs()
        next(logs)
    label.close()
    for use in (label.encode, label.to_dict, lambda: next(logs), lambda: label.text):
        with pytest.raises(ValueError, match="closed"):
            use()
    assert len(released) == 1
    dropped = Label("6.0")
    del label, dropped
    gc.collect()
    assert len(released) == 2


def test_threads_share_a_label() -> None:
    label = full("1.1.2")
    label.clear_logs()
    failed: list[Exception] = []

    def work(number: int) -> None:
        try:
            for i in range(50):
                label.add_log(Log(number, "x" * i, ISSUER))
                label.file_name = "n" * (5 * i)
                assert set(label.file_name) <= {"n"}
                Label.decode(label.encode())
        except (AssertionError, LabelError) as error:
            failed.append(error)

    threads = [threading.Thread(target=work, args=(number,)) for number in range(4)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not failed
    assert sorted(log.number for log in label.logs()) == sorted([*range(4)] * 50)
