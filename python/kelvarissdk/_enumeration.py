"""What the enumerations have in common."""

from __future__ import annotations

from enum import IntEnum
from typing import TypeVar

_Self = TypeVar("_Self", bound="Enumeration")


class Enumeration(IntEnum):
    """An enumeration of the C interface. Any number without a name becomes its member UNKNOWN."""

    @classmethod
    def _missing_(cls: type[_Self], value: object) -> _Self | None:
        return cls["UNKNOWN"] if isinstance(value, int) else None

    def __str__(self) -> str:
        return self.name
