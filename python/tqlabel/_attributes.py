"""What a label has one of."""

from __future__ import annotations

import ctypes
from collections.abc import Callable
from typing import Any, TypeVar

from . import markings as m
from . import records as r
from ._fields import Algorithm, Field, Moment, Number, Octets, Text
from ._library import Handle, LabelError, c_type, library, room

T = TypeVar("T")


class Attributes:
    """The fields and records of a label."""

    _handle: Handle

    text = Text("GetLabel", "SetLabel", "Text of the head, 1 to 128 bytes.", 128)
    custom = Octets("GetCustom", "SetCustom", "Custom bytes of the head.")
    created = Moment("GetHeadCreateTime", None, "When it was made; see touch().")
    modified = Moment("GetHeadModifyTime", "SetHeadModifyTime", "When the label was changed.")
    sign_algorithm = Algorithm("GetHeadSignAlg", "SetHeadSignAlg",
                               'Algorithm of the head signature; "" also for an unknown one.')
    head_certificate = Octets("GetHeadSignCert", "SetHeadSignCert",
                              "Certificate of the head's signer, DER.")
    head_signature = Octets("GetHeadSignValue", "SetHeadSignValue",
                            "What signing signature_message() gave.")
    body_certificate = Octets("GetBodySignCert", "SetBodySignCert",
                              'Certificate of the body\'s signer; only "1.1.2" has none.')
    body_signature = Octets("GetBodySigVal", "SetBodySigVal",
                            "Signature of the body, a multiple of 32 bytes.")
    file_type = Number("GLGetFileType", "GLSetFileType", "Type of the file.")
    secrecy = Number("GetFileSecc", "SetFileSecc", "Secrecy level of the file.")
    file_size = Number("GLGetFileSize", "GLSetFileSize", "Size, in the caller's unit.")
    file_name = Text("GetFileName", "SetFileName", "Name, to 255 bytes.", 255)
    file_title = Text("GLGetFileTitle", "GLSetFileTitle", "Title, to 255 bytes.", 255)
    file_modified = Moment("GetModifyTime", "SetModifyTime", "When the file was changed.")
    expiry = Moment("GetExpired", "SetExpired", "When the file expires.")
    abolition = Moment("GetAbolishTime", None, "When the file was abolished; see abolish().")
    destruction = Moment("GetDestroyTime", "SetDestroyTime", "When the file is to be destroyed.")
    file_align = Number("GetFileAlignSize", "SetFileAlignSize",
                        'Size in bytes to which the file is aligned; "1.1.1" and "1.1.2" only.')
    uneffective = Number("GetFileUnEffectSize", "SetFileUnEffectSize",
                         "Bytes of the file that do not count.")
    label_align = Number("GetLabelAlignSize", "SetLabelAlignSize",
                         "Size in bytes to which the label is aligned.")

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
        self._handle.call("SetCertSerialAndIssuerToHead", *who(author))

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

    @property
    def watermark(self) -> m.WaterMark:
        """The watermark; where there is none, an empty one. "1.1.2" writes one that was set."""
        return self._copied("GetWaterMarkInfo", m.WaterMark.of, _free_watermark)

    @watermark.setter
    def watermark(self, mark: m.WaterMark) -> None:
        self._handle.call("SetWaterMarkInfo", ctypes.byref(mark.to_c()))

    @property
    def stamp(self) -> m.StampRecord:
        """The stamp, as the watermark."""
        return self._copied("GetStampInfo", m.StampRecord.of, library.FreeStampA)

    @stamp.setter
    def stamp(self, stamp: m.StampRecord) -> None:
        self._handle.call("SetStampInfo", ctypes.byref(stamp.to_c()))

    @property
    def fingerprints(self) -> m.Fingerprints:
        """The fingerprint record, as the watermark."""
        return self._copied("GetFingerPrintInfo", m.Fingerprints.of, library.FreeFingerPrintInfo)

    @fingerprints.setter
    def fingerprints(self, finger: m.Fingerprints) -> None:
        try:
            self._handle.call("SetFingerPrintInfo", ctypes.byref(finger.to_c()))
        except LabelError:
            if finger.entries:  # a record without any is stored, and -1 nevertheless
                raise

    def _copied(self, getter: str, of: Callable[[Any], T], release: Callable[[Any], Any],
                *arguments: Any) -> T:
        made = getattr(library, getter).argtypes[-1]._type_()
        self._handle.call(getter, *arguments, ctypes.byref(made))
        try:
            return of(made.contents)
        finally:
            release(made)


def _free_watermark(mark: Any) -> None:
    library.FreetWaterMarkInfo(mark)
    library.Asn1Free(mark.contents.text)
    library.Asn1Free(mark)


PARTS: dict[str, Any] = {name: field.kind for name, field in vars(Attributes).items()
                         if isinstance(field, Field)}
PARTS |= {"author": r.Recipient, "cipher": r.Cipher | None, "file_creator": r.FileCreator,
          "watermark": m.WaterMark, "stamp": m.StampRecord, "fingerprints": m.Fingerprints}


def who(recipient: r.Recipient) -> tuple[Any, ...]:
    """Serial number, its length and issuer: three arguments of a call."""
    return (*r.counted(recipient.serial, 255), r.issuer_to_c(recipient.issuer))
