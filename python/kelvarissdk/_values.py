"""
From the library's records to plain values, and from arguments to what the library takes.

Both are made of descriptions that are there anyway: the fields of a dataclass with their types on one side, the
structures and prototypes of the C interface on the other. The names are the same but for their spelling.
"""

from __future__ import annotations

import ctypes
import operator
import re
from collections.abc import Callable, Iterable
from dataclasses import fields
from datetime import date, datetime, timedelta, timezone
from functools import cache, partial
from ipaddress import IPv4Address, IPv6Address
from types import NoneType, UnionType
from typing import Annotated, Any, TypeAlias, get_args, get_origin, get_type_hints

from . import _abi
from ._enumeration import Enumeration

# The types of fields whose record needs more than the type: the unit of a time, or the number that means "none".
Milliseconds: TypeAlias = Annotated[timedelta, timedelta(milliseconds=1)]
Minutes: TypeAlias = Annotated[timedelta, timedelta(minutes=1)]
Hours: TypeAlias = Annotated[timedelta, timedelta(hours=1)]
Days: TypeAlias = Annotated[timedelta, timedelta(days=1)]
NoneIfZero: TypeAlias = Annotated[int | None, 0]
NoneIfBelowZero: TypeAlias = Annotated[int | None, -1]


def snake_case(name: str) -> str:
    """The spelling in Python: `SetFirewallIPv4` is `set_firewall_ipv4`."""
    for word in ("IPv", "OAuth", "ChaCha"):
        name = name.replace(word, word.capitalize())
    return re.sub(r"(?<=[a-z0-9])(?=[A-Z])|(?<=[A-Z])(?=[A-Z][a-z])", "_", name).lower()


# ---- Records to values ----


def text(field: bytes) -> str:
    """A field's text up to its terminator or its end. A character that the end cuts becomes U+FFFD."""
    return field.decode("utf-8", "replace")


def _duration(unit: timedelta, number: int) -> timedelta:
    try:
        return number * unit
    except OverflowError:
        return timedelta.max if number > 0 else timedelta.min


def _moment(seconds: int) -> datetime | None:
    try:
        return datetime.fromtimestamp(seconds, timezone.utc) if seconds else None
    except (OverflowError, ValueError, OSError):
        return None


def _day(moment: _abi.tm) -> date | None:
    try:
        return date(1900 + moment.tm_year, 1 + moment.tm_mon, moment.tm_mday)
    except ValueError:
        return None


def _address(kind: Any, record: Any) -> Any:
    packed = bytes(record)
    return kind(packed) if any(packed) else None


def _unless(sentinel: int, number: int) -> int | None:
    return None if number == sentinel else number


def _conversion(hint: Any) -> Callable[[Any], Any] | None:
    """What makes a value of this type of a field; None where the field is one."""
    if get_origin(hint) is Annotated:
        (note,) = hint.__metadata__
        if isinstance(note, timedelta):
            return partial(_duration, note)
        return partial(_unless, note)
    if get_origin(hint) is UnionType:
        (hint,) = (each for each in get_args(hint) if each is not NoneType)
    if hint in (bool, int, float):
        return None
    if hint in (IPv4Address, IPv6Address):
        return partial(_address, hint)
    plain: dict[Any, Callable[[Any], Any]] = {str: text, date: _day, datetime: _moment}
    if issubclass(hint, Enumeration):
        plain[hint] = hint
    return plain.get(hint) or converter(hint)


def _elements(convert: Callable[[Any], Any], get_count: Callable[[Any], int], record: Any, array: Any) -> Any:
    return tuple(map(convert, array[: get_count(record)]))


def _whole(convert: Callable[[Any], Any], _record: Any, field: Any) -> Any:
    return convert(field)


@cache
def converter(value: Any) -> Callable[[Any], Any]:
    """What makes a value of the structure of the same name."""
    structure: Any = getattr(_abi, value.__name__)
    names = [name for name, _ in structure._fields_]
    spelt = {snake_case(name): name for name in names}
    hints = get_type_hints(value, include_extras=True)
    own = [spelt[field.name] for field in fields(value)]
    get = operator.attrgetter(*own, own[0])  # one more, because of a single name it doesn't make a tuple
    conversions: list[tuple[int, Callable[[Any, Any], Any]]] = []
    for index, name in enumerate(own):
        hint = hints[snake_case(name)]
        if get_origin(hint) is tuple:
            element = _conversion(get_args(hint)[0])
            assert element is not None
            if get_args(hint)[0] is str:
                element = _slot
            # The field in front of an array counts its elements in use.
            count = operator.attrgetter(names[names.index(name) - 1])
            conversions.append((index, partial(_elements, element, count)))
        elif (whole := _conversion(hint)) is not None:
            conversions.append((index, partial(_whole, whole)))

    def convert(record: Any) -> Any:
        found = [*get(record)]
        found.pop()
        for index, conversion in conversions:
            found[index] = conversion(record, found[index])
        return value(*found)

    return convert


def _slot(slot: Any) -> str:
    return text(slot.value)


# ---- Arguments ----


def _plain_text(value: Any) -> bytes | None:
    if value is None:
        return None
    if not isinstance(value, str):
        raise TypeError(f"a text is a str, not {type(value).__name__}")
    if "\0" in value:
        raise ValueError("a text holds no null character")
    return value.encode()


def _plain_bool(value: Any) -> bool:
    if not isinstance(value, bool):
        raise TypeError(f"a switch is a bool, not {type(value).__name__}")
    return value


def _plain_number(kind: Any, value: Any) -> int:
    number = operator.index(value)
    if kind(number).value != number:
        raise ValueError(f"{number} is out of range")
    return number


def _plain_address(kind: Any, structure: Any, value: Any) -> Any:
    return structure.from_buffer_copy(kind(value).packed)


def _plain_port(value: Any) -> _abi.ProtocolPortPair:
    protocol = _plain_number(ctypes.c_uint32, value.protocol)
    return _abi.ProtocolPortPair(protocol, _plain_number(ctypes.c_uint16, value.port))


def _plain_slot(slot: Any, value: Any) -> Any:
    encoded = _plain_text(value) or b""
    if len(encoded) > ctypes.sizeof(slot):
        raise ValueError(f"{value!r} has more than {ctypes.sizeof(slot)} bytes")
    return slot(*encoded)


def _plain_hours(value: Any) -> int:
    if isinstance(value, timedelta):
        value, rest = divmod(value, timedelta(hours=1))
        if rest:
            raise ValueError("a period is a whole number of hours")
    return _plain_number(ctypes.c_uint, value)


def _plain_list(count: Any, item: Any, values: Iterable[Any]) -> tuple[int, Any]:
    if isinstance(values, str):
        raise TypeError("a list is wanted, not a str")
    plain: Callable[[Any], Any]
    if item is _abi.ProtocolPortPair:
        plain = _plain_port
    elif item is _abi.in_addr:
        plain = partial(_plain_address, IPv4Address, item)
    elif item is _abi.in6_addr:
        plain = partial(_plain_address, IPv6Address, item)
    elif item is ctypes.c_uint:
        plain = _plain_hours
    else:
        plain = partial(_plain_slot, item)
    plains = [plain(each) for each in values][: (1 << 8 * ctypes.sizeof(count)) - 1]
    return len(plains), (item * len(plains))(*plains)


def argument_converter(types: list[Any]) -> Callable[[Iterable[Any]], list[Any]]:
    """What makes the library's arguments of these types of a caller's, where a count and an array are one list."""
    steps: list[Callable[[Any], Any]] = []
    for kind, following in zip(types, [*types[1:], None]):
        if hasattr(kind, "contents"):
            continue
        if hasattr(following, "contents"):
            steps.append(partial(_plain_list, kind, following._type_))
        elif kind is ctypes.c_char_p:
            steps.append(_plain_text)
        elif kind is ctypes.c_bool:
            steps.append(_plain_bool)
        elif kind is ctypes.c_double:
            steps.append(float)
        else:
            steps.append(partial(_plain_number, kind))

    def convert(values: Iterable[Any]) -> list[Any]:
        plain: list[Any] = []
        for step, value in zip(steps, values, strict=True):
            argument = step(value)
            plain.extend(argument) if isinstance(argument, tuple) else plain.append(argument)
        return plain

    return convert
