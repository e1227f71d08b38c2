"""Calls and subscriptions on their way: what takes the library's records, and who is told."""

from __future__ import annotations

import itertools
from collections import deque
from collections.abc import Callable
from typing import TYPE_CHECKING, Any

from .errors import KelvarisError, error_in

if TYPE_CHECKING:
    from ._calls import Description
    from ._core import Core

_keys = itertools.count(1)


class Operation:
    """
    Something that the library calls back for. All of it is guarded by the core's mutex.

    It is found by its key, which is what the library knows of it. So it may be forgotten at any time: a record that
    comes late finds nobody.
    """

    __slots__ = (
        "arguments",
        "cancelled",
        "core",
        "description",
        "enrolling",
        "error",
        "generation",
        "id",
        "key",
        "registered",
        "settled",
    )
    goes_on = False  # after a record

    def __init__(self, core: Core, description: Description | None, arguments: list[Any]) -> None:
        self.core = core
        self.description = description  # None: nothing of the library brings its items
        self.arguments = arguments
        self.key = next(_keys)
        self.id = 0
        self.registered = False  # the library may call back, and `id` is its number
        self.enrolling = False  # its call of the C interface hasn't returned
        self.generation = 0  # of the handle that it is registered with
        self.settled = False  # nothing more is taken
        self.cancelled = False
        self.error: KelvarisError | None = None

    def arrive(self, record: Any) -> bool:
        """Takes a record on the library's thread; returns whether more is wanted."""
        core = self.core
        with core.mutex:
            if self.settled:
                return False
            core.link.heard(self, record.base)
            more = self.take(record)
            if self.settled:
                core.forget(self)
            return more

    def take(self, record: Any) -> bool:
        raise NotImplementedError

    def fail(self, error: KelvarisError) -> None:
        """Ends it with an error."""
        if not self.settled:
            self.settled = True
            self.error = error
            self.tell()

    def finish(self) -> None:
        """Ends a call that was over when it returned."""
        if not self.settled:
            self.settled = True
            self.tell()

    def tell(self) -> None:
        """Lets who waits look."""


class Once(Operation):
    """A call that has one result."""

    __slots__ = ("first", "record")

    def __init__(self, core: Core, description: Description, arguments: list[Any]) -> None:
        super().__init__(core, description, arguments)
        self.first: Any = None
        self.record: Any = None

    def take(self, record: Any) -> bool:
        if self.description is not None and self.description.callbacks == 2:
            # Of two steps the second has the result, whichever ended first.
            if self.first is None:
                self.first = record
                return False
            if self.first.base.callbackId > record.base.callbackId:
                record = self.first
        self.settled = True
        if record.base.error:
            self.error = error_in(record.base)
        else:
            self.record = record
        self.tell()
        return False

    def result(self) -> Any:
        if self.error is not None:
            raise self.error
        # A call that was over when it returned has no record.
        return self.description.value(self.record) if self.description and self.record else None


class Items(Operation):
    """A subscription, with what waits to be taken from it: records, or changes of the link."""

    __slots__ = ("dropped", "items", "keep", "last_error", "queued", "tell_of")
    goes_on = True

    def __init__(
        self, core: Core, description: Description | None, keep: int, tell: Callable[[Items], None]
    ) -> None:
        super().__init__(core, description, [])
        self.items: deque[Any] = deque()
        self.keep = keep
        self.dropped = 0
        self.last_error: KelvarisError | None = None
        self.queued = False
        self.tell_of = tell

    def take(self, record: Any) -> bool:
        if record.base.error:
            self.last_error = error_in(record.base)
        else:
            self.offer(record)
        return True

    def offer(self, item: Any) -> None:
        """What finds no place takes that of the oldest."""
        if len(self.items) >= self.keep:
            self.items.popleft()
            self.dropped += 1
        self.items.append(item)
        self.tell()

    def fail(self, error: KelvarisError) -> None:
        if not self.settled:
            self.dropped += len(self.items)
            self.items.clear()
            super().fail(error)

    def tell(self) -> None:
        self.tell_of(self)

    def value(self, item: Any) -> Any:
        """What an item is to the program."""
        return self.description.value(item) if self.description else item
