"""What labels take and hand out.

Octets of serial numbers and INTEGERs are content octets, most significant first. Texts are UTF-8;
bytes that are none become lone surrogates, as Python does it for file names. Times are aware and
in whole seconds; None is "not set". What a label cannot hold raises ValueError when it is given.
"""

from __future__ import annotations

import ctypes
import dataclasses
import typing
from dataclasses import dataclass
from datetime import datetime, timezone
from enum import IntFlag
from typing import Any, TypeVar

from ._library import c_type, room

T = TypeVar("T")
Time = datetime | None
_LAST = 253402300799  # 9999-12-31T23:59:59Z
_NAMES = {
    "CN": "550403", "C": "550406", "L": "550407", "ST": "550408", "O": "55040a", "OU": "55040b",
    "E": "2a864886f70d010901",
}
_SHORT = {bytes.fromhex(octets): name for name, octets in _NAMES.items()}


@dataclass(frozen=True)
class Attribute:
    """One attribute of an issuer name, such as Attribute("CN", "Example Root")."""

    type: str  #: CN, C, L, ST, O, OU or E; another as # and its identifier's octets in hexadecimal
    value: str  #: to 128 bytes; of a BMPString, its two-byte characters as bytes
    string_type: int = 19  #: 12 UTF8String (stored as 19), 19 PrintableString, 22 IA5, 30 BMPString


Name = tuple[Attribute, ...]


@dataclass(frozen=True)
class Recipient:
    """Who holds a certificate: its serial number and its issuer, of 1 to 10 attributes."""

    serial: bytes
    issuer: Name


class Rights(IntFlag):
    """The four flags of Privileges. What they mean is up to the caller."""

    FIRST = 1
    SECOND = 2
    THIRD = 4
    FOURTH = 8


@dataclass(frozen=True)
class PrivilegePair:
    """A further privilege: a type of 16 bits and its value of 32."""

    type: int
    value: int


@dataclass(frozen=True)
class Privileges:
    """What a recipient may do. Numbers, of 32 bits, mean what callers want them to."""

    data: bytes  #: the recipient's certificate, or another DER SEQUENCE or OBJECT IDENTIFIER
    rights: Rights = Rights(0)
    number1: int = 0
    read_count: int = 0
    number3: int = 0
    number4: int = 0
    pairs: tuple[PrivilegePair, ...] = ()

    def to_c(self) -> Any:
        """The record of the library, which owns what it points to."""
        info = c_type("PrivilegeInfo")(
            flag1=bit(self.rights, 0), flag2=bit(self.rights, 1),
            flag3=bit(self.rights, 2), flag4=bit(self.rights, 3), number1=checked(self.number1),
            readCount=checked(self.read_count), number3=checked(self.number3),
            number4=checked(self.number4), entryCount=len(self.pairs))
        put(info, "data", self.data)
        info.entries = (c_type("PrivilegeEntry") * max(1, len(self.pairs)))()
        for i, pair in enumerate(reversed(self.pairs)):  # the library stores them in reverse
            info.entries[i].type = checked(pair.type, 0xFFFF)
            info.entries[i].value = checked(pair.value)
        return info

    @classmethod
    def of(cls, info: Any) -> Privileges:
        """What a record of the library holds."""
        flags = (info.flag1, info.flag2, info.flag3, info.flag4)
        pairs = (info.entries[i] for i in range(info.entryCount))
        return cls(taken(info, "data"), Rights(sum(1 << i for i in range(4) if flags[i])),
                   info.number1, info.readCount, info.number3, info.number4,
                   tuple(PrivilegePair(pair.type, pair.value) for pair in pairs))


@dataclass(frozen=True)
class Envelope:
    """The key of the file, wrapped for a recipient, and what he may do with it.

    The name of the algorithm comes back without key length and mode.
    """

    recipient: Recipient
    key: bytes  #: of the body
    privileges: Privileges
    head_key: bytes | None = None  #: of the head; None where it has no envelope
    algorithm: str = "RSA"


@dataclass(frozen=True)
class Cipher:
    """The cipher of the body, such as "AES.256.CBC". The "1.1" family hands out the "AES" of it."""

    name: str
    feedback_bits: int = 0  #: 0 to 255


@dataclass(frozen=True)
class FileCreator:
    """The file creator record."""

    file_number: str = ""  #: stored with a terminating zero
    text: str = ""
    time: Time = None  #: to 2106-02-07T06:28:15Z; of a later one the low 32 bits are handed out

    def to_c(self) -> Any:
        """The record of the library, which owns what it points to."""
        info = c_type("FileCreatorInfo")(time=checked(seconds(self.time)))
        put(info, "str1", octets(self.file_number) + b"\0" if self.file_number else b"")
        put(info, "str2", self.text)
        return info

    @classmethod
    def of(cls, info: Any) -> FileCreator:
        """What a record of the library holds."""
        return cls(text(taken(info, "str1").removesuffix(b"\0")), text(taken(info, "str2")),
                   moment(info.time))


@dataclass(frozen=True)
class Log:
    """An entry of the log. Numbers have 32 bits and mean what callers want them to."""

    number: int
    text1: str  #: to 255 bytes
    issuer: Name  #: 1 to 10 attributes; none in "6.0", which does not write them
    array1: bytes = b"\0"  #: octets of an INTEGER, to 255
    array2: bytes = b"\0"  #: octets of an INTEGER, to 255
    time: Time = None
    value: int = 0
    text2: str = ""

    def to_c(self) -> Any:
        """The record of the library, which owns what it points to."""
        info = c_type("LogInfo")(number=checked(self.number), value=checked(self.value),
                                 time=seconds(self.time), issuer=issuer_to_c(self.issuer))
        put(info, "text1", self.text1, 255)
        put(info, "array1", self.array1, 255)
        put(info, "array2", self.array2, 255)
        put(info, "text2", self.text2)
        return info

    @classmethod
    def of(cls, info: Any) -> Log:
        """What a record of the library holds."""
        return cls(info.number, text(taken(info, "text1")), issuer_of(info.issuer),
                   taken(info, "array1"), taken(info, "array2"), moment(info.time), info.value,
                   text(taken(info, "text2")))


@dataclass(frozen=True)
class Signature:
    """A signature in the chain of a "1.1.2" body."""

    algorithm: str
    value: bytes
    certificate: bytes

    def to_c(self) -> Any:
        """The record of the library, which owns what it points to."""
        info = c_type("SignAttribute")(ctypes.create_string_buffer(octets(self.algorithm)))
        put(info, "value", self.value)
        put(info, "cert", self.certificate)
        return info


@dataclass(frozen=True)
class Extension:
    """An extension value; the type has 32 bits."""

    type: int
    value: bytes


def octets(value: str | bytes, most: int = 0xFFFFFFFF) -> bytes:
    """The bytes to store, which must fit. A text has no zero: some fields end at one."""
    if isinstance(value, str) and "\0" in value:
        raise ValueError("a zero within a text")
    data = value.encode("utf-8", "surrogateescape") if isinstance(value, str) else bytes(value)
    if len(data) > most:
        raise ValueError(f"{len(data)} bytes, where {most} are the most")
    return data


def text(data: bytes) -> str:
    """The text that bytes are."""
    return data.decode("utf-8", "surrogateescape")


def counted(value: str | bytes, most: int = 0xFFFFFFFF) -> tuple[bytes, int]:
    """Bytes and their number: two arguments of a call."""
    data = octets(value, most)
    return data, len(data)


def checked(value: int, most: int = 0xFFFFFFFF) -> int:
    """A number that ctypes must not cut."""
    if not 0 <= value <= most:
        raise ValueError(f"{value} is not from 0 to {most}")
    return value


def bit(value: int, position: int) -> int:
    """One of the four flags."""
    return checked(value, 15) >> position & 1


def seconds(time: Time) -> int:
    """Seconds since the epoch. The first of them means "not set" and is refused."""
    if time is None:
        return 0
    if time.tzinfo is None:
        raise ValueError("a time without a time zone")
    return checked(int(time.timestamp()) - 1, _LAST - 1) + 1


def moment(count: int) -> Time:
    """The time that so many seconds after the epoch are."""
    return datetime.fromtimestamp(count, timezone.utc) if count else None


def put(info: Any, name: str, value: str | bytes, most: int = 0xFFFFFFFF) -> None:
    """Points a member of a record, and the length that goes with it, to a copy of bytes."""
    data = octets(value, most)
    buffer = room(len(data))
    ctypes.memmove(buffer, data, len(data))
    setattr(info, name, buffer)
    setattr(info, name + "Len", len(data))


def taken(info: Any, name: str) -> bytes:
    """A copy of the bytes that a member of a record points to."""
    return ctypes.string_at(getattr(info, name), getattr(info, name + "Len"))


def issuer_to_c(name: Name) -> Any:
    """A pointer to an issuer of the library, with room for any name that is handed out."""
    entries = (c_type("PJCertIssuerEntry") * 10)()
    if len(name) > len(entries):
        raise ValueError("an issuer of more than 10 attributes")
    for entry, attribute in zip(entries, name):
        kind = octets(bytes.fromhex(_NAMES.get(attribute.type) or attribute.type.lstrip("#")), 16)
        value = octets(attribute.value.encode("utf-8", "surrogateescape"), 128)
        ctypes.memmove(entry.type, kind, len(kind))
        ctypes.memmove(entry.value, value, len(value))
        entry.typeLen, entry.valueLen = len(kind), len(value)
        entry.valueTag = checked(attribute.string_type)
    return ctypes.pointer(c_type("PJCertIssuer")(entries, len(name), len(entries)))


def issuer_of(issuer: Any) -> Name:
    """The name that a pointer to an issuer of the library, or a null one, leads to."""
    entries = (issuer.contents.entries[i] for i in range(issuer.contents.count if issuer else 0))
    return tuple(Attribute(_type_name(bytes(entry.type[:entry.typeLen])),
                           text(bytes(entry.value[:entry.valueLen])), entry.valueTag)
                 for entry in entries)


def _type_name(identifier: bytes) -> str:
    return _SHORT.get(identifier) or "#" + identifier.hex()


def to_plain(value: Any) -> Any:
    """A value as what JSON has: octets in hexadecimal, times as in ISO 8601."""
    if dataclasses.is_dataclass(value):
        return {field.name: to_plain(getattr(value, field.name))
                for field in dataclasses.fields(value)}
    if isinstance(value, (tuple, list)):
        return [to_plain(entry) for entry in value]
    if isinstance(value, bytes):
        return value.hex()
    if isinstance(value, Rights):
        return int(value)
    return value.isoformat() if isinstance(value, datetime) else value


def from_plain(value: Any, kind: Any) -> Any:
    """What to_plain() was given, by its type; ValueError where that could not be."""
    options = [option for option in typing.get_args(kind) if option is not type(None)]
    if typing.get_origin(kind) is tuple:
        return tuple(from_plain(entry, options[0]) for entry in _expect(value, list))
    if options:  # one type, or None
        return None if value is None else from_plain(value, options[0])
    if dataclasses.is_dataclass(kind):
        known = typing.get_type_hints(kind)
        refuse_unknown(_expect(value, dict), known)
        parts = {name: from_plain(part, known[name]) for name, part in value.items()}
        try:
            return typing.cast(Any, kind)(**parts)
        except TypeError as error:  # a part is missing
            raise ValueError(str(error)) from error
    if kind is bytes:
        return bytes.fromhex(_expect(value, str))
    if kind is datetime:
        return datetime.fromisoformat(_expect(value, str))
    return Rights(_expect(value, int)) if kind is Rights else _expect(value, kind)


def refuse_unknown(plain: dict[str, Any], known: typing.Iterable[str]) -> None:
    """Raises ValueError where a dictionary has further keys."""
    if unknown := plain.keys() - set(known):
        raise ValueError(f"unknown keys: {', '.join(sorted(unknown))}")


def _expect(value: Any, kind: type[T]) -> T:
    if not isinstance(value, kind) or isinstance(value, bool):
        raise ValueError(f"{value!r} in place of a value of type {kind.__name__}")
    return value
