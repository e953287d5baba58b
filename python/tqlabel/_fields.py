"""Fields of a label as attributes."""

from __future__ import annotations

from typing import TYPE_CHECKING, Any, ClassVar, Generic, TypeVar, overload

from . import records as r
from ._library import Handle, LabelError

if TYPE_CHECKING:
    from ._attributes import Attributes

T = TypeVar("T")


class Field(Generic[T]):
    """A field that one function hands out and another one, unless there is none, stores."""

    kind: ClassVar[Any]

    def __init__(self, getter: str, setter: str | None, doc: str, most: int = 0xFFFFFFFF) -> None:
        self.getter, self.setter, self.__doc__, self.most = getter, setter, doc, most

    def read(self, handle: Handle) -> T:
        """What the library hands out."""
        raise NotImplementedError

    def given(self, value: T) -> tuple[Any, ...]:
        """The arguments that store a value."""
        raise NotImplementedError

    @overload
    def __get__(self, label: None, owner: type) -> Field[T]: ...
    @overload
    def __get__(self, label: Attributes, owner: type) -> T: ...

    def __get__(self, label: Attributes | None, owner: type) -> Field[T] | T:
        return self if label is None else self.read(label._handle)

    def __set__(self, label: Attributes, value: T) -> None:
        if self.setter is None:
            raise AttributeError("this field is read only")
        label._handle.call(self.setter, *self.given(value))


class Octets(Field[bytes]):
    """Bytes."""

    kind = bytes

    def read(self, handle: Handle) -> bytes:
        return handle.fetch(self.getter)

    def given(self, value: bytes) -> tuple[Any, ...]:
        return r.counted(value, self.most)


class Text(Field[str]):
    """A text."""

    kind = str

    def read(self, handle: Handle) -> str:
        return r.text(handle.fetch(self.getter))

    def given(self, value: str) -> tuple[Any, ...]:
        return r.counted(value, self.most)


class Algorithm(Text):
    """The name of an algorithm. The library does not tell none from one that has no name."""

    def read(self, handle: Handle) -> str:
        try:
            return super().read(handle)
        except LabelError:
            return ""


class Number(Field[int]):
    """A number of 32 bits."""

    kind = int

    def read(self, handle: Handle) -> int:
        return handle.number(self.getter)

    def given(self, value: int) -> tuple[Any, ...]:
        return (r.checked(value, self.most),)


class Moment(Field[r.Time]):
    """A time."""

    kind = r.Time

    def read(self, handle: Handle) -> r.Time:
        return r.moment(handle.number(self.getter))

    def given(self, value: r.Time) -> tuple[Any, ...]:
        return (r.seconds(value),)
