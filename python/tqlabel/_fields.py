"""Fields of a label as attributes."""

from __future__ import annotations

from collections.abc import Callable
from typing import TYPE_CHECKING, Any, Generic, NewType, TypeVar, overload

from . import records as r
from ._library import Handle, LabelError

if TYPE_CHECKING:
    from ._label import Label

T = TypeVar("T")
Algorithm = NewType("Algorithm", str)


# The library does not tell no algorithm from one that has no name.
def _algorithm(handle: Handle, getter: str) -> str:
    try:
        return r.text(handle.fetch(getter))
    except LabelError:
        return ""


_READ: dict[Any, Callable[[Handle, str], Any]] = {
    bytes: Handle.fetch,
    str: lambda handle, getter: r.text(handle.fetch(getter)),
    Algorithm: _algorithm,
    int: Handle.number,
    r.Time: lambda handle, getter: r.moment(handle.number(getter)),
}
_GIVEN: dict[Any, Callable[[Any, int], tuple[Any, ...]]] = {
    bytes: r.counted,
    str: r.counted,
    Algorithm: r.counted,
    int: lambda value, most: (r.checked(value, most),),
    r.Time: lambda value, most: (r.seconds(value),),
}


class Field(Generic[T]):
    """A field that one function hands out and another one, unless there is none, stores."""

    def __init__(self, kind: Any, getter: str, setter: str | None, doc: str,
                 most: int = 0xFFFFFFFF) -> None:
        self.kind, self.__doc__ = kind, doc
        self._getter, self._setter, self._most = getter, setter, most

    @overload
    def __get__(self, label: None, owner: type) -> Field[T]: ...
    @overload
    def __get__(self, label: Label, owner: type) -> T: ...

    def __get__(self, label: Label | None, owner: type) -> Field[T] | T:
        return self if label is None else _READ[self.kind](label._handle, self._getter)

    def __set__(self, label: Label, value: T) -> None:
        if self._setter is None:
            raise AttributeError("this field is read only")
        label._handle.call(self._setter, *_GIVEN[self.kind](value, self._most))
