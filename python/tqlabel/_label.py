"""Labels."""

from __future__ import annotations

import ctypes
from collections.abc import Callable, Iterator
from dataclasses import replace
from datetime import datetime, timezone
from typing import Any

from . import records as r
from ._attributes import PARTS, Attributes, who
from ._library import Handle, LabelError, c_type, call, library, room

_ENOUGH = 4096  # octets of most keys and certificates
_NOBODY = r.Envelope(r.Recipient(b"\0", (r.Attribute("#00", ""),)), b"", r.Privileges(b""))


class Label(Attributes):
    """A label, which is released with its last reference, by close() or by the end of a `with`.

    What the library refuses raises LabelError: bytes that are none, a field that the version does
    not have, a text or number of a decoded label that does not fit its getter. What cannot be
    stored as it was given raises ValueError, as does every use of a closed label. Threads may share
    a label: each call has it to itself.
    """

    def __init__(self, version: str) -> None:
        """Makes an empty label of version "1.1", "1.1.1", "1.1.2" or "6.0"."""
        if version not in ("1.1", "1.1.1", "1.1.2", "6.0"):
            raise ValueError(f"no version: {version!r}")
        self._handle = Handle(library.GetHandleLabel())
        self._handle.call("GLSetVersion", *r.counted(version))

    @classmethod
    def decode(cls, data: bytes) -> Label:
        """Decodes a label whose body is in the clear; padding and what follows are ignored."""
        handle = ctypes.c_void_p()
        call("DecodeLabel", *r.counted(data), ctypes.byref(handle))
        return cls._of(handle)

    @classmethod
    def decode_encrypted(cls, data: bytes) -> tuple[Label, bytes]:
        """Decodes the head of a label, and hands out the encrypted body: decrypt it, and give it to
        decode_body(). One of less than 128 bytes is handed out as empty."""
        handle, length, body = ctypes.c_void_p(), ctypes.c_uint32(len(data)), room(len(data))
        call("DecodeLabelEncrypted", *r.counted(data), body, ctypes.byref(length),
             ctypes.byref(handle))
        return cls._of(handle), ctypes.string_at(body, length.value)

    @classmethod
    def _of(cls, handle: ctypes.c_void_p) -> Label:
        label = cls.__new__(cls)
        label._handle = Handle(handle.value)
        return label

    def close(self) -> None:
        """Releases the label; closing it again does nothing."""
        self._handle.close()

    def __enter__(self) -> Label:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def encode(self, *, padding: int | None = None, encrypted_body: bytes | None = None) -> bytes:
        """Encodes the label: with its body in the clear or around an encrypted one, encode_body()
        under a cipher; without padding or with so many bytes of it."""
        name = "EncodeLabel" if padding is None else "EncodeLabelPad"
        body = () if encrypted_body is None else r.counted(encrypted_body)
        with self._handle.lock:
            if padding is not None:
                self._handle.call("SetLabelPadSize", r.checked(padding))
            return self._handle.fetch(name + "Encrypted" if body else name, *body)

    def encode_body(self) -> bytes:
        """Encodes the body alone: what is to be encrypted."""
        return self._handle.fetch("EncodeBodyPlaint")

    def decode_body(self, data: bytes) -> None:
        """Decodes a decrypted body in place of the label's own."""
        self._handle.call("DecodeLabelDecrypted", *r.counted(data))

    def signature_message(self) -> bytes:
        """What the head signature signs; its certificate and algorithm are part of it."""
        return self._handle.fetch("GetSignatureMessage")

    def touch(self) -> None:
        """Sets the creation time to the present."""
        self._handle.call("SetHeadCreateTime")

    def abolish(self) -> None:
        """Abolishes the file at once."""
        self._handle.call("AbolishSF")

    @property
    def is_encrypted(self) -> bool:
        """Whether the head names a cipher."""
        return self._handle.call("LabelBodyNeedEnc") == 1

    @property
    def is_valid(self) -> bool:
        """Whether the file is neither expired nor abolished."""
        with self._handle.lock:
            return bool(library.CheckLabelDate(self._handle.value) == 0)

    @property
    def is_due(self) -> bool:
        """Whether the file is to be destroyed: whether its destruction time has passed."""
        with self._handle.lock:
            return bool(library.CheckDestroyDate(self._handle.value) != 0)

    def recipients(self) -> Iterator[r.Envelope]:
        """The recipients of the body, newest first, as it is when iteration begins, each with the
        key that the head has. A body that has some must encode; "6.0" hands out none."""
        with self._handle.lock:
            count = self._handle.number("GetDigitEnvlopeCountFromBody")
            if count == 0 or self.version == "6.0":
                return
            body = self.encode_body()
            copy = self._turned(body)
        with copy:
            for index in reversed(range(count)):
                envelope = copy._envelope(index, len(body))
                yield replace(envelope, head_key=self._head_key(envelope.recipient))

    # Of the envelopes of a body the library hands out all but the last, and only those who re-key
    # have their order reversed. So in a copy, one more is put in front and then turned to the end.
    def _turned(self, body: bytes) -> Label:
        copy, enumerator = Label(self.version), ctypes.c_void_p()
        copy.decode_body(body)
        copy.add_recipient(_NOBODY)
        call("CreatEmurateDigitEnvolop", ctypes.byref(enumerator), copy._handle.value)
        library.DestroyEmura(enumerator)
        return copy

    # The library does not tell how much room an envelope takes. The whole body holds any of them,
    # but few need so much.
    def _envelope(self, index: int, limit: int, size: int = _ENOUGH) -> r.Envelope:
        info = _envelope_info(r.Recipient(bytes(255), ()), bytes(255), bytes(size))
        rights = c_type("PrivilegeInfo")(room(size), size, entryCount=size // 8)  # they take 8
        rights.entries = (c_type("PrivilegeEntry") * (size // 8))()
        try:
            self._handle.call("GetDigitEnvlope", index, ctypes.byref(info), ctypes.byref(rights))
        except LabelError:
            if size >= limit:
                raise
            return self._envelope(index, limit, limit)
        return r.Envelope(r.Recipient(r.taken(info, "serial"), r.issuer_of(info.issuer)),
                          r.taken(info, "key"), r.Privileges.of(rights),
                          algorithm=r.text(r.taken(info, "alg")))

    def _head_key(self, recipient: r.Recipient) -> bytes | None:
        info = _envelope_info(recipient, bytes(255), b"")
        info.key = None
        with self._handle.lock:
            if not self._has("HaveTheEnvelopeFromHEnv", recipient):
                return None
            self._handle.call("GetEnvelopeFromHead", ctypes.byref(info))
            info.algLen, info.key = 255, room(info.keyLen)
            self._handle.call("GetEnvelopeFromHead", ctypes.byref(info))
        return r.taken(info, "key")

    def _has(self, name: str, recipient: r.Recipient) -> bool:
        previous = ctypes.c_void_p()
        return self._handle.call(name, *who(recipient), ctypes.byref(previous)) == 1

    def __contains__(self, recipient: r.Recipient) -> bool:
        """Whether a recipient has an envelope in the body; "1.1" family only."""
        return self._has("HaveTheEnvelopeFromBEnv", recipient)

    def add_recipient(self, envelope: r.Envelope) -> None:
        """Adds a recipient in front, or puts him there with all that is new; "1.1" family only."""
        algorithm, rights = r.octets(envelope.algorithm, 255), envelope.privileges.to_c()
        info = _envelope_info(envelope.recipient, algorithm, envelope.key)
        with self._handle.lock:
            self._handle.call("ADDigitEnvlopeToBody", ctypes.byref(info), ctypes.byref(rights))
            if envelope.head_key is not None:
                r.put(info, "key", envelope.head_key)
                self._handle.call("AddEnvelopeToHead", ctypes.byref(info))

    def remove_recipient(self, recipient: r.Recipient) -> None:
        """Removes a recipient from the head and then from the body. Who is not in the head is
        refused; who is not in the body has left the head then."""
        self._handle.call("DelPrivilegeFromLabel", *who(recipient))

    def set_read_count(self, recipient: r.Recipient, count: int) -> None:
        """Stores how often a recipient has read the file."""
        self._handle.call("SetAlreadyReadCountsToLabel", *who(recipient), r.checked(count))

    def rekey(self, wrap: Callable[[bytes], bytes]) -> None:
        """Gives each recipient a new key, in head and body: wrap() takes the privilege data, the
        certificate, and gives the wrapped key. The recipients run the other way afterwards."""
        certificates = [envelope.privileges.data for envelope in self.recipients()]
        keys = [wrap(certificate) for certificate in certificates]
        enumerator, length = ctypes.c_void_p(), ctypes.c_uint32()
        with self._handle.lock:
            if certificates != [envelope.privileges.data for envelope in self.recipients()]:
                raise RuntimeError("the recipients have changed meanwhile")
            call("CreatEmurateDigitEnvolop", ctypes.byref(enumerator), self._handle.value)
            try:
                for key in reversed(keys):
                    call("GetCurrentDigitEnvolop", enumerator, None, ctypes.byref(length))
                    call("GetCurrentDigitEnvolop", enumerator, room(length.value),
                         ctypes.byref(length))
                    call("SetCurrentEmuEnvolop", enumerator, *r.counted(key), *r.counted(key))
            finally:
                library.DestroyEmura(enumerator)

    def signatures(self) -> Iterator[r.Signature]:
        """The chain of signatures of a "1.1.2" body, first to last, as it is when iteration begins,
        each with the head's algorithm, which there must be. Other versions have body_signature."""
        enumerator, found = ctypes.c_void_p(), []
        with self._handle.lock:
            if self.version == "1.1.2":
                self._handle.call("CreateEmurateSign", ctypes.byref(enumerator))
                try:
                    while (signature := _next_signature(enumerator)) is not None:
                        found.append(signature)
                finally:
                    library.DestroySignEmura(enumerator)
        yield from found

    def add_signature(self, signature: r.Signature, *, first: bool = False) -> None:
        """Adds a signature behind the chain of a "1.1.2" body. The first one replaces all."""
        if self.version != "1.1.2":
            raise ValueError("a chain of signatures in another version than 1.1.2")
        self._handle.call("SetBodySignAttr", int(not first), ctypes.byref(signature.to_c()))

    def signer_message(self, certificate: bytes | None = None) -> bytes:
        """What a signer of a "1.1.2" body signs: all signatures before that of the certificate, or
        all that there are where it is not among them."""
        request = c_type("MultiSignData")()
        if certificate is not None:
            r.put(request, "cert", certificate)
        with self._handle.lock:
            self._handle.call("GetMultiSignData", ctypes.byref(request))
            request.data = room(request.dataLen)
            self._handle.call("GetMultiSignData", ctypes.byref(request))
        return r.taken(request, "data")

    def logs(self) -> Iterator[r.Log]:
        """The log, newest first; one that grows or shrinks meanwhile moves what follows."""
        position = 0
        while True:
            with self._handle.lock:
                if position >= self._handle.number("GetLogCout"):
                    return
                log = self._log(position)
            yield log
            position += 1

    def _log(self, position: int) -> r.Log:
        log = self._copied("GetLog", r.Log.of, library.FreeLog, position)
        return replace(log, issuer=()) if self.version == "6.0" else log

    def add_log(self, log: r.Log) -> None:
        """Adds an entry in front of the log. In "6.0" its issuer does not count."""
        if self.version == "6.0":  # the library wants one, which it does not write
            log = replace(log, issuer=_NOBODY.recipient.issuer)
        self._handle.call("AddLog", ctypes.byref(log.to_c()))

    def clear_logs(self) -> None:
        """Removes all entries of the log."""
        self._handle.call("DelAlLog")

    def extensions(self) -> Iterator[r.Extension]:
        """The extension values, newest first, as logs()."""
        position, kind = 0, ctypes.c_uint32()
        while True:
            with self._handle.lock:
                if position >= self._handle.number("GetExtendCount"):
                    return
                value = self._handle.fetch("GetExtend", position, ctypes.byref(kind))
            yield r.Extension(kind.value, value)
            position += 1

    def add_extension(self, extension: r.Extension) -> None:
        """Adds an extension value in front; earlier ones of its type stay."""
        kind, value = r.checked(extension.type), r.counted(extension.value)
        self._handle.call("AddExtendValue", kind, *value)

    def remove_extension(self, kind: int) -> None:
        """Removes the newest extension value of a type below 65536."""
        self._handle.call("DelExtendAttr", r.checked(kind, 0xFFFF))

    def to_dict(self) -> dict[str, Any]:
        """The label as JSON has it: octets in hexadecimal, times in ISO 8601, None for "not set".
        Padding and the cipher's mode are left out."""
        with self._handle.lock:
            parts = {name: getattr(self, name) for name in ("version", *PARTS)}
            lists = {name: list(getattr(self, name)()) for name in _LISTS}
        return {name: r.to_plain(value) for name, value in (parts | lists).items()}

    @classmethod
    def from_dict(cls, plain: dict[str, Any]) -> Label:
        """The label of a dictionary of to_dict(). What is missing is not set; what could not be
        from one raises ValueError. The creation time of a label of the "1.1" family without an
        author, which does not encode, becomes the present."""
        r.refuse_unknown(plain, ("version", *PARTS, *_LISTS))
        kinds: dict[str, Any] = {"version": str, **PARTS, **_LISTS}
        given = {name: r.from_plain(part, kinds[name]) for name, part in plain.items()}
        label = cls(given.pop("version", ""))
        if given.get("created"):
            label = label._made_at(given["created"], given.get("author"))
        if given.get("abolition"):  # first, since it needs a label without a file name
            content = c_type("ContentAttrInfo")(abolishTime=r.seconds(given["abolition"]))
            label._handle.call("SetContentAtrr", ctypes.byref(content))
        empty = label.to_dict()
        for name in PARTS:
            if name in given and plain[name] != empty[name] and name != "created":
                setattr(label, name, given[name])
        for name in _NEWEST_FIRST:
            for entry in reversed(given.get(name, ())):
                getattr(label, "add_" + name.removesuffix("s"))(entry)
        for i, signature in enumerate(given.get("signatures", ())):
            label.add_signature(signature, first=i == 0)
        return label

    # The library sets the present only. So another time takes its place in an encoded head, where
    # no time follows it but those that are not set.
    def _made_at(self, time: datetime, author: r.Recipient | None) -> Label:
        r.seconds(time)
        self.touch()
        try:
            if author:
                self.author = author
            data = self.encode(encrypted_body=bytes(128))
        except LabelError:
            return self
        present, wanted = (f"{at.astimezone(timezone.utc):%Y%m%d%H%M%SZ}".encode()
                           for at in (self.created, time) if at)
        before, _, behind = data.rpartition(present)
        return Label.decode_encrypted(before + wanted + behind)[0]


_NEWEST_FIRST: dict[str, Any] = {"recipients": tuple[r.Envelope, ...], "logs": tuple[r.Log, ...],
                                 "extensions": tuple[r.Extension, ...]}
_LISTS = _NEWEST_FIRST | {"signatures": tuple[r.Signature, ...]}


def _envelope_info(to: r.Recipient, algorithm: bytes, key: bytes) -> Any:
    info = c_type("EnvelopeInfo")(issuer=r.issuer_to_c(to.issuer))
    r.put(info, "alg", algorithm, 255)
    r.put(info, "serial", to.serial, 255)
    r.put(info, "key", key)
    return info


def _next_signature(enumerator: ctypes.c_void_p) -> r.Signature | None:
    info = c_type("SignAttribute")()
    if call("GetNextSign", enumerator, ctypes.byref(info)) == 1:
        return None
    info.value, info.cert = room(info.valueLen), room(info.certLen)
    try:
        call("GetNextSign", enumerator, ctypes.byref(info))
    except LabelError:
        if info.valueLen or info.certLen:
            raise
        return None  # an empty one, in a label without an algorithm
    return r.Signature(r.text(ctypes.string_at(info.algName)), r.taken(info, "value"),
                       r.taken(info, "cert"))
