"""Watermark, stamp and fingerprints of a body. Values mean what callers want them to."""

from __future__ import annotations

import ctypes
from dataclasses import dataclass
from typing import Any

from ._library import c_type
from .records import Time, checked, moment, octets, put, seconds, taken, text


@dataclass(frozen=True)
class WaterMark:
    """A watermark."""

    data1: bytes = b""
    data2: bytes = b""
    alg: int = 0
    alg_param: int = 0
    text: str = ""
    time: Time = None

    def to_c(self) -> Any:
        """The record of the library, which owns what it points to."""
        info = c_type("WaterMark")(alg=checked(self.alg), algParam=checked(self.alg_param),
                                   text=_terminated(self.text), time=seconds(self.time))
        put(info, "data1", self.data1)
        put(info, "data2", self.data2)
        return info

    @classmethod
    def of(cls, info: Any) -> WaterMark:
        """What a record of the library holds."""
        return cls(taken(info, "data1"), taken(info, "data2"), info.alg, info.algParam,
                   _until_zero(info, "text"), moment(info.time))


@dataclass(frozen=True)
class Meta:
    """What a seal says about itself."""

    element: bytes = b""  #: a DER SEQUENCE of up to 255 bytes, or empty
    time1: Time = None
    text1: str = ""
    time2: Time = None
    time3: Time = None
    text2: str = ""

    def put_to(self, info: Any) -> None:
        """Fills the part of a record of the library."""
        info.time1, info.time2, info.time3 = map(seconds, (self.time1, self.time2, self.time3))
        put(info, "element", self.element, 255)
        put(info, "text1", self.text1)
        put(info, "text2", self.text2)

    @classmethod
    def of(cls, info: Any) -> Meta:
        """What a record of the library holds."""
        return cls(taken(info, "element"), moment(info.time1), text(taken(info, "text1")),
                   moment(info.time2), moment(info.time3), text(taken(info, "text2")))


@dataclass(frozen=True)
class Seal:
    """The seal of a stamp."""

    name: str = ""
    meta: Meta = Meta()
    type: int = 0  #: 0 to 255
    data: bytes = b""
    element: bytes = b""  #: a DER element but a BIT STRING, or empty
    bits: bytes = b""

    def put_to(self, info: Any) -> None:
        """Fills the part of a record of the library."""
        info.type = checked(self.type, 255)
        self.meta.put_to(info.meta)
        for name in ("name", "data", "element", "bits"):
            put(info, name, getattr(self, name))

    @classmethod
    def of(cls, info: Any) -> Seal:
        """What a record of the library holds."""
        return cls(text(taken(info, "name")), Meta.of(info.meta), info.type, taken(info, "data"),
                   taken(info, "element"), taken(info, "bits"))


@dataclass(frozen=True)
class Stamp:
    """The stamp proper. The library stores in place of `text2` as many bytes of `data` as it has,
    and one more: where there are that many, what is read back is longer."""

    text1: str = ""
    value: tuple[int, int, int, int] = (0, 0, 0, 0)
    text2: str = ""
    time: Time = None
    data: bytes = b""

    def put_to(self, info: Any) -> None:
        """Fills the part of a record of the library."""
        info.text1, info.text2 = _terminated(self.text1), _terminated(self.text2)
        info.time = seconds(self.time)
        _put_numbers(info.value, self.value)
        put(info, "data", self.data)

    @classmethod
    def of(cls, info: Any) -> Stamp:
        """What a record of the library holds."""
        first, second, third, fourth = info.value
        return cls(_until_zero(info, "text1"), (first, second, third, fourth),
                   _until_zero(info, "text2"), moment(info.time), taken(info, "data"))


@dataclass(frozen=True)
class StampRecord:
    """A stamp with its seal."""

    name: str = ""
    seal: Seal = Seal()
    stamp: Stamp = Stamp()
    bits: bytes = b""

    def to_c(self) -> Any:
        """The record of the library, which owns what it points to."""
        info = c_type("StampRecord")()
        put(info, "name", self.name)
        put(info, "bits", self.bits)
        self.seal.put_to(info.seal)
        self.stamp.put_to(info.stamp)
        return info

    @classmethod
    def of(cls, info: Any) -> StampRecord:
        """What a record of the library holds."""
        return cls(text(taken(info, "name")), Seal.of(info.seal), Stamp.of(info.stamp),
                   taken(info, "bits"))


@dataclass(frozen=True)
class Fingerprint:
    """One fingerprint."""

    value: bytes  #: a DER SEQUENCE, or empty
    action: tuple[int, ...] = (0,) * 9  #: nine flags, each 0 or 1


@dataclass(frozen=True)
class Fingerprints:
    """The fingerprint record, with its fingerprints in the order of the label."""

    sys1: bytes = b""
    sys2: bytes = b""
    sys3: bytes = b""
    sys_value: int = 0
    entries: tuple[Fingerprint, ...] = ()

    def to_c(self) -> Any:
        """The record of the library, which owns what it points to."""
        info = c_type("Finger")(sysValue=checked(self.sys_value))
        for name in ("sys1", "sys2", "sys3"):
            put(info, name, getattr(self, name))
        entries = (c_type("FingerEntry") * max(1, len(self.entries)))()
        for entry, given in zip(entries, reversed(self.entries)):  # the library reverses them
            put(entry, "value", given.value)
            _put_numbers(entry.action, given.action, 1)
        info.list.count, info.list.entries = len(self.entries), entries
        return info

    @classmethod
    def of(cls, info: Any) -> Fingerprints:
        """What a record of the library holds."""
        entries = (info.list.entries[i] for i in range(info.list.count))
        return cls(taken(info, "sys1"), taken(info, "sys2"), taken(info, "sys3"), info.sysValue,
                   tuple(Fingerprint(taken(each, "value"), tuple(each.action)) for each in entries))


def _terminated(value: str) -> Any:
    return ctypes.create_string_buffer(octets(value))


def _until_zero(info: Any, name: str) -> str:
    return text(taken(info, name).partition(b"\0")[0])


def _put_numbers(array: Any, values: tuple[int, ...], most: int = 0xFFFFFFFF) -> None:
    if len(values) != len(array):
        raise ValueError(f"{len(values)} numbers in place of {len(array)}")
    for i, value in enumerate(values):
        array[i] = checked(value, most)
