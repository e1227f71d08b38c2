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

    def to_string(self) -> str:
        """
        The library's text for it; for UNKNOWN, the text that stands there for any other number. Where the library has
        none for the enumeration it is the name in small letters.
        """
        from ._library import library

        name = type(self).__name__.replace("SafeBrowsing", "SafeBrowsing_")
        function = getattr(library(), f"KelvarisSDK_{name}_toString", None)
        text: bytes = function(self) if function else self.name.lower().encode()
        return text.decode()
