"""Labels."""

from __future__ import annotations

import ctypes
from collections.abc import Iterator
from dataclasses import replace
from datetime import datetime, timezone
from typing import Any

from . import records as r
from ._fields import Algorithm, Field
from ._library import Handle, LabelError, c_type, call, library, room

_ENOUGH = 4096  # octets of most keys and certificates
_NOBODY = r.Envelope(r.Recipient(b"\0", (r.Attribute("#00", ""),)), b"", r.Privileges(b""))


class Label:
    """A label, which is released with its last reference, by close() or by the end of a `with`.

    What the library refuses raises LabelError: bytes that are none, a field that the version does
    not have, a text or number of a decoded label that does not fit its getter. What cannot be
    stored as it was given raises ValueError, as does every use of a closed label. Threads may share
    a label: each call has it to itself.
    """

    text = Field[str](str, "GetLabel", "SetLabel", "Text of the head, 1 to 128 bytes.", 128)
    custom = Field[bytes](bytes, "GetCustom", "SetCustom", "Custom bytes of the head.")
    created = Field[r.Time](r.Time, "GetHeadCreateTime", None, "When it was made; see touch().")
    modified = Field[r.Time](r.Time, "GetHeadModifyTime", "SetHeadModifyTime",
                             "When the label was changed.")
    sign_algorithm = Field[str](Algorithm, "GetHeadSignAlg", "SetHeadSignAlg",
                                'Algorithm of the head signature; "" also for an unknown one.')
    head_certificate = Field[bytes](bytes, "GetHeadSignCert", "SetHeadSignCert",
                                    "Certificate of the head's signer, DER.")
    head_signature = Field[bytes](bytes, "GetHeadSignValue", "SetHeadSignValue",
                                  "What signing signature_message() gave.")
    body_certificate = Field[bytes](bytes, "GetBodySignCert", "SetBodySignCert",
                                    'Certificate of the body\'s signer; only "1.1.2" has none.')
    body_signature = Field[bytes](bytes, "GetBodySigVal", "SetBodySigVal",
                                  "Signature of the body, a multiple of 32 bytes.")
    file_type = Field[int](int, "GLGetFileType", "GLSetFileType", "Type of the file.")
    secrecy = Field[int](int, "GetFileSecc", "SetFileSecc", "Secrecy level of the file.")
    file_size = Field[int](int, "GLGetFileSize", "GLSetFileSize", "Size, in the caller's unit.")
    file_name = Field[str](str, "GetFileName", "SetFileName", "Name, to 255 bytes.", 255)
    file_title = Field[str](str, "GLGetFileTitle", "GLSetFileTitle", "Title, to 255 bytes.", 255)
    file_modified = Field[r.Time](r.Time, "GetModifyTime", "SetModifyTime",
                                  "When the file was changed.")
    expiry = Field[r.Time](r.Time, "GetExpired", "SetExpired", "When the file expires.")
    abolition = Field[r.Time](r.Time, "GetAbolishTime", None,
                              "When the file was abolished; see abolish().")
    destruction = Field[r.Time](r.Time, "GetDestroyTime", "SetDestroyTime",
                                "When the file is to be destroyed.")
    file_align = Field[int](int, "GetFileAlignSize", "SetFileAlignSize",
                            'Size in bytes to which the file is aligned; "1.1.1" and "1.1.2" only.')
    uneffective = Field[int](int, "GetFileUnEffectSize", "SetFileUnEffectSize",
                             "Bytes of the file that do not count.")
    label_align = Field[int](int, "GetLabelAlignSize", "SetLabelAlignSize",
                             "Size in bytes to which the label is aligned.")

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

    @property
    def version(self) -> str:
        """The version as it was set or decoded."""
        return r.text(self._handle.fetch("GLGetVersion"))

    @property
    def author(self) -> r.Recipient:
        """The certificate that the head is addressed to. "6.0" has no issuer."""
        serial, length = room(255), ctypes.c_uint8(255)
        issuer = ctypes.POINTER(c_type("PJCertIssuer"))()
        self._handle.call("GetCertSerialAndIssuerToHead", serial, ctypes.byref(length),
                          ctypes.byref(issuer))
        try:
            return r.Recipient(bytes(serial[:length.value]), r.issuer_of(issuer))
        finally:
            library.FreeIssuerName(issuer)

    @author.setter
    def author(self, author: r.Recipient) -> None:
        r.octets(author.serial, 128)
        self._handle.call("SetCertSerialAndIssuerToHead", *_who(author))

    @property
    def cipher(self) -> r.Cipher | None:
        """The cipher of the body, or None. Setting it says that the body is encrypted."""
        name, length, bits = room(255), ctypes.c_uint8(255), ctypes.c_uint8()
        self._handle.call("GetEncryptHead", name, ctypes.byref(length), ctypes.byref(bits))
        text = r.text(bytes(name[:length.value]))
        return r.Cipher(text, bits.value) if text else None

    @cipher.setter
    def cipher(self, cipher: r.Cipher | None) -> None:
        name, bits = (cipher.name, cipher.feedback_bits) if cipher else ("", 0)
        self._handle.call("SetEncryptHead", *r.counted(name, 255), r.checked(bits, 255))

    @property
    def file_creator(self) -> r.FileCreator:
        """The file creator record. Setting an empty text leaves the one that is there."""
        info = c_type("FileCreatorInfo")()
        with self._handle.lock:
            size = self._text_room()
            info.str1, info.str2 = room(size), room(size)
            self._handle.call("GetFileIdentify", ctypes.byref(info))
        return r.FileCreator.of(info)

    @file_creator.setter
    def file_creator(self, creator: r.FileCreator) -> None:
        self._handle.call("SetBodyFileCreator", ctypes.byref(creator.to_c()))

    # The library gives no sizes for more than 100 envelopes; a body is longer than its texts.
    def _text_room(self) -> int:
        sizes = c_type("LabelSizeInfo")()
        try:
            self._handle.call("LabCalSize", ctypes.byref(sizes))
        except LabelError:
            return self._handle.number("EncodeBodyPlaint", None)
        return int(max(sizes.fileNoLen, sizes.creatorStr2Len))

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
        return self._handle.call(name, *_who(recipient), ctypes.byref(previous)) == 1

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
        self._handle.call("DelPrivilegeFromLabel", *_who(recipient))

    def set_read_count(self, recipient: r.Recipient, count: int) -> None:
        """Stores how often a recipient has read the file."""
        self._handle.call("SetAlreadyReadCountsToLabel", *_who(recipient), r.checked(count))

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
        info = ctypes.POINTER(c_type("LogInfo"))()
        self._handle.call("GetLog", position, ctypes.byref(info))
        try:
            log = r.Log.of(info.contents)
            return replace(log, issuer=()) if self.version == "6.0" else log
        finally:
            library.FreeLog(info)

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
        Markings, the chain of signatures of "1.1.2", padding and the cipher's mode are left out."""
        with self._handle.lock:
            parts = {name: getattr(self, name) for name in ("version", *_PARTS)}
            lists = {name: list(getattr(self, name)()) for name in _LISTS}
        return {name: r.to_plain(value) for name, value in (parts | lists).items()}

    @classmethod
    def from_dict(cls, plain: dict[str, Any]) -> Label:
        """The label of a dictionary of to_dict(). What is missing is not set; what could not be
        from one raises ValueError. The creation time of a label of the "1.1" family without an
        author, which does not encode, becomes the present."""
        r.refuse_unknown(plain, ("version", *_PARTS, *_LISTS))
        kinds = {"version": str, **_PARTS, **_LISTS}
        given = {name: r.from_plain(part, kinds[name]) for name, part in plain.items()}
        label = cls(given.pop("version", ""))
        if given.get("created"):
            label = label._made_at(given["created"], given.get("author"))
        if given.get("abolition"):  # first, since it needs a label without a file name
            content = c_type("ContentAttrInfo")(abolishTime=r.seconds(given["abolition"]))
            label._handle.call("SetContentAtrr", ctypes.byref(content))
        empty = label.to_dict()
        for name in _PARTS:
            if name in given and plain[name] != empty[name] and name != "created":
                setattr(label, name, given[name])
        for name in _LISTS:
            for entry in reversed(given.get(name, ())):
                getattr(label, "add_" + name.removesuffix("s"))(entry)
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


_PARTS: dict[str, Any] = {name: field.kind for name, field in vars(Label).items()
                          if isinstance(field, Field)}
_PARTS |= {"sign_algorithm": str, "author": r.Recipient, "cipher": r.Cipher | None,
           "file_creator": r.FileCreator}
_LISTS: dict[str, Any] = {"recipients": tuple[r.Envelope, ...], "logs": tuple[r.Log, ...],
                          "extensions": tuple[r.Extension, ...]}


def _who(recipient: r.Recipient) -> tuple[Any, ...]:
    return (*r.counted(recipient.serial, 255), r.issuer_to_c(recipient.issuer))


def _envelope_info(to: r.Recipient, algorithm: bytes, key: bytes) -> Any:
    info = c_type("EnvelopeInfo")(issuer=r.issuer_to_c(to.issuer))
    r.put(info, "alg", algorithm, 255)
    r.put(info, "serial", to.serial, 255)
    r.put(info, "key", key)
    return info
