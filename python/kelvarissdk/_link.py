"""
Watches a client's link.

The library reports no link, so its loss is found by a read of the version, which no subscription hears, when nothing
has come for a second; there is one read at a time. That request may have gone down with the link, so at the loss a
read of the state takes its place and is left standing: the library keeps the request while it has no link, and the
subscription that this read is stays until it is answered. Once more it is made anew, if the library says after five
seconds that there is no link. So a daemon that comes back after whatever time finds three requests at most.
"""

from __future__ import annotations

import time
from enum import Enum
from typing import TYPE_CHECKING, Any

from ._abi import ErrorType
from ._calls import NOBODY
from ._operations import Items, Operation
from .types import FirstCalls

if TYPE_CHECKING:
    from ._core import Core

QUIET = 1.0  # seconds until a probe is sent, and until it is taken for unanswered
STATISTICS = 3.0  # seconds until statistics that stay away are enabled again
LONGEST_STATISTICS = 45.0
_GET_STATE = FirstCalls.get_state.description  # type: ignore[attr-defined]
_GET_VERSION = FirstCalls.get_version.description  # type: ignore[attr-defined]


class Link(Enum):
    """The link to the daemon."""

    UP = "up"
    """The daemon answers."""
    LOST = "lost"
    """It doesn't answer; the library tries to connect again."""
    ENDED = "ended"
    """It has closed the link properly; the client makes a new one."""


class Probe(Operation):
    """The read that shows whether the daemon answers."""

    __slots__ = ()

    def take(self, record: Any) -> bool:
        return self.core.link.probed(self, record.base)


class LinkWatch:
    """All of it is guarded by the core's mutex; `supervise` runs on the core's thread and takes it."""

    def __init__(self, core: Core, probing: bool) -> None:
        self.core = core
        self.probing = probing
        self.link: Link | None = None
        self.watchers: list[Items] = []
        self.last_heard = time.monotonic()
        self.probe: Probe | None = None
        self.probed_at = 0.0
        self.probe_ended = False
        self.standing_wanted = False
        self.standing_renewed = False
        self.ever_up = False
        self.returned = False
        self.statistics: list[Any] | None = None  # the arguments that they were enabled with
        self.statistics_heard = 0.0
        self.patience = STATISTICS

    # ---- With the mutex held ----

    def heard(self, operation: Operation, head: Any) -> None:
        if not self.probing:
            return
        if not head.error:
            self.last_heard = time.monotonic()
            if operation.description is not None and operation.description.statistics:
                self.statistics_heard = self.last_heard
                self.patience = STATISTICS
            if self.link is not Link.UP:
                self.change(Link.UP)
        elif head.errorCode == ErrorType.NOT_CONNECTED:
            self.change(Link.LOST)

    def change(self, to: Link) -> None:
        if self.link is to or self.core.closing:
            return
        self.returned = self.returned or (to is Link.UP and self.link is Link.LOST and self.ever_up)
        self.ever_up = self.ever_up or to is Link.UP
        self.standing_wanted = to is Link.LOST
        self.standing_renewed = False
        self.link = to
        for watcher in self.watchers:
            watcher.offer(to)
        self.core.nudge()

    def watch(self, watcher: Items) -> None:
        """One that comes late is told how things stand."""
        if self.link is not None:
            watcher.offer(self.link)
        self.watchers.append(watcher)

    def unwatch(self, operation: Operation) -> None:
        self.watchers = [each for each in self.watchers if each is not operation]

    def probed(self, probe: Probe, head: Any) -> bool:
        waits = bool(head.error and head.errorCode == ErrorType.NOT_CONNECTED)
        if probe is not self.probe:
            return False
        if waits:
            self.change(Link.LOST)
            self.standing_wanted = not self.standing_renewed
            self.standing_renewed = True
        else:
            self.probe = None
            probe.settled = True
            if head.error and head.errorCode == ErrorType.TIMEOUT:
                self.probe_ended = True
            else:  # also a report that can't be read is one
                self.last_heard = time.monotonic()
                self.change(Link.UP)
        self.core.nudge()
        return waits

    def want_statistics(self, arguments: list[Any]) -> None:
        self.statistics = arguments if arguments[0] else None
        self.statistics_heard = time.monotonic()
        self.patience = STATISTICS
        self.core.nudge()

    def excuse(self, seconds: float) -> None:
        """The interpreter was busy for so long, which says nothing of the link: what waits begins anew."""
        self.last_heard += seconds + QUIET
        self.probed_at += seconds + QUIET
        self.statistics_heard += seconds

    def next_due(self) -> float | None:
        """When there is something to supervise; None: when something happens."""
        if not self.probing or self.link is Link.LOST:
            return None
        waits_for_answer = self.probe is not None and self.probed_at >= self.last_heard
        due = QUIET + (self.probed_at if waits_for_answer else self.last_heard)
        if self.link is Link.UP and self._has_statistics():
            due = min(due, self.statistics_heard + self.patience)
        return due

    def _has_statistics(self) -> bool:
        return self.statistics is not None and any(
            each.goes_on and each.description is not None and each.description.statistics
            for each in self.core.live.values()
        )

    # ---- On the core's thread, without the mutex ----

    def supervise(self) -> None:
        if not self.probing:
            return
        if self.probe_ended:
            self.probe_ended = False
            self.core.replace_handle()
            return
        with self.core.mutex:
            returned, self.returned = self.returned, False
        if returned:
            self._read_anew()
        now = time.monotonic()
        with self.core.mutex:
            lost = self.link is Link.LOST
            standing, self.standing_wanted = lost and self.standing_wanted, self.standing_wanted and not lost
            quiet = not lost and now >= self.last_heard + QUIET
            # What came after a probe shows that there was a link, and says nothing of now.
            unanswered = quiet and self.probe is not None and self.probed_at >= self.last_heard
            if unanswered and now >= self.probed_at + QUIET:
                self.change(Link.LOST)
        if standing:
            self._probe(_GET_STATE)
        elif quiet and not unanswered:
            self._probe(_GET_VERSION)
        with self.core.mutex:
            missed = (
                self.link is Link.UP
                and self._has_statistics()
                and time.monotonic() >= self.statistics_heard + self.patience
            )
            if missed:  # each time in vain it waits longer: a daemon may have a slower pace
                self.patience = min(self.patience * 2, LONGEST_STATISTICS)
        if missed:
            self.enable_statistics()

    def _probe(self, read: Any) -> None:
        if self.probe is not None:
            self.core.cancel(self.probe)
        with self.core.mutex:
            probe = self.probe = Probe(self.core, read, [])  # before its answer, which may come at once
            self.probed_at = time.monotonic()
        self.core.start(probe)
        if probe.error is not None:  # there is no handle
            with self.core.mutex:
                self.probe = None
                self.change(Link.LOST)

    def _read_anew(self) -> None:
        """A read's report reaches the subscriptions of its kind, so they needn't be made again."""
        self.enable_statistics()  # before a read of them, which names no periods
        with self.core.mutex:
            reads = {
                each.description
                for each in self.core.live.values()
                if each.goes_on and each.registered and each.description and not each.description.listens
            }
        for read in reads:
            self.core.use_handle(read.begin, [], NOBODY)

    def enable_statistics(self) -> None:
        with self.core.mutex:
            arguments = self.statistics
            self.statistics_heard = time.monotonic()
        if arguments is not None:
            self.core.use_handle(self.core.library.KelvarisSDK_EnableStatUpdates, *arguments)
