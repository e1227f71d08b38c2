"""The client whose calls wait for their results."""

from __future__ import annotations

import functools
import sys
import threading
import warnings
from collections import deque
from collections.abc import Callable
from datetime import timedelta
from types import TracebackType
from typing import Any, Generic, TypeVar, cast

from ._calls import Blocking, Description, reader_threads
from ._core import END, PARENTS, Core, create_settings, signals_blocked
from ._link import Link
from ._operations import Items, Once
from .adapters import AdaptersCalls
from .errors import CallTimeoutError, SdkError, SynchronousInCallbackError
from .lists import ListsCalls
from .safebrowsing import SafeBrowsingCalls
from .session import SessionCalls
from .settings import SettingsCalls
from .telemetry import TelemetryCalls
from .types import FirstCalls

R = TypeVar("R")

# How many reports wait for who takes them.
KEEP_ALL = 256
KEEP_LATEST = 1


class Calls(
    FirstCalls, SessionCalls, SettingsCalls, AdaptersCalls, ListsCalls, TelemetryCalls, SafeBrowsingCalls
):
    """The calls of all families."""

    def _perform(self, description: Description, arguments: list[Any]) -> Any:
        raise NotImplementedError


def prepare(core: Core, description: Description, arguments: list[Any]) -> None:
    """What a call leaves in the client."""
    if description.function.__name__ == "enable_stat_updates":
        with core.mutex:
            core.link.want_statistics(arguments)


def bound(description: Description | None, keep: int | None) -> int:
    """How many reports a subscription keeps."""
    if keep is None:
        return KEEP_LATEST if description is not None and description.statistics else KEEP_ALL
    if keep < 1:
        raise ValueError("a subscription keeps at least one report")
    return keep


def seconds_of(limit: timedelta | float | None) -> float:
    """What locks wait for; below zero it is without limit."""
    if limit is None:
        return -1
    seconds = limit.total_seconds() if isinstance(limit, timedelta) else float(limit)
    return min(max(0.0, seconds), threading.TIMEOUT_MAX)


class Waiting(Once):
    """A call that a thread waits for."""

    __slots__ = ("lock",)

    def __init__(self, core: Core, description: Description, arguments: list[Any]) -> None:
        super().__init__(core, description, arguments)
        self.lock = threading.Lock()
        self.lock.acquire()

    def tell(self) -> None:
        self.lock.release()

    def wait(self, seconds: float) -> Any:
        try:
            self.core.start(self)
            if self.error is None and not self.lock.acquire(True, seconds):
                raise CallTimeoutError()
        except BaseException:
            self.core.cancel(self)
            raise
        return self.result()


def refuse_on_reader_thread() -> None:
    """There the wait would never end."""
    if threading.get_ident() in reader_threads:
        raise SynchronousInCallbackError()


class Subscription(Generic[R]):
    """
    The reports of a kind, to be iterated over: an iteration waits for the next report. It ends when the subscription
    is closed, and raises CallCancelledError when the client is.

    An error, such as the time-out of the read that it begins with, ends nothing: it stands in `last_error`, and
    `client.links()` tells of the link. Reports wait in a bounded queue; one that finds no place drops the oldest, which
    `dropped` counts.

    One that has a callable calls it with each report, on a thread of the client, instead. Without a callable, a
    subscription that nobody refers to any more is closed.
    """

    def __init__(self, client: Client, description: Description | None, keep: int) -> None:
        self._client = client
        self._core = client._core
        self._changed = threading.Condition(self._core.mutex)
        self._items = Items(self._core, description, keep, self._tell_waiting(self._changed))
        self._call: Callable[[R], object] | None = None

    @staticmethod
    def _tell_waiting(changed: threading.Condition) -> Callable[[Items], None]:
        return lambda _: changed.notify_all()

    @property
    def dropped(self) -> int:
        """How many reports were dropped because nobody took them in time."""
        return self._items.dropped

    @property
    def last_error(self) -> Exception | None:
        """The last error that came in place of a report."""
        return self._items.last_error

    def __iter__(self) -> Subscription[R]:
        return self

    def __next__(self) -> R:
        try:
            return self.get()
        except _Closed:
            raise StopIteration from None

    def get(self, timeout: timedelta | float | None = None) -> R:
        """
        The next report. CallTimeoutError: none came in this time, which is in seconds if it is a number; ValueError: the
        subscription is closed, or has a callable.
        """
        refuse_on_reader_thread()
        if self._call is not None:
            raise ValueError("the subscription has a callable")
        if self._core.forked:
            raise SdkError(PARENTS)
        items = self._items
        seconds = seconds_of(timeout)
        with self._core.mutex:
            if not self._changed.wait_for(
                lambda: items.items or items.settled, None if seconds < 0 else seconds
            ):
                raise CallTimeoutError()
            if items.cancelled or items.error:
                raise items.error or _Closed("the subscription is closed")
            item = items.items.popleft()
        return cast(R, items.value(item))

    def close(self) -> None:
        """
        Ends it. When it returns, the callable doesn't run and never will, unless the callable itself closes it. Any
        thread may close it, any number of times.
        """
        if self._core.forked:
            return
        self._core.cancel(self._items)
        with self._core.mutex:
            self._changed.notify_all()
        if self._call is not None:
            self._client._delivery.forget(self._items)

    def __enter__(self) -> Subscription[R]:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()

    def __del__(self) -> None:
        items = getattr(self, "_items", None)
        if items is not None and self._call is None and not items.settled and not self._core.forked:
            self._core.commands.put(functools.partial(self._core.cancel, items))


class _Closed(ValueError):
    """The end of an iteration."""


class Delivery:
    """Calls the callables of a client's subscriptions, one after the other, on a thread of its own."""

    def __init__(self, core: Core, on_exception: Callable[[BaseException], object] | None) -> None:
        self.core = core
        self.on_exception = on_exception
        self.changed = threading.Condition(core.mutex)
        self.ready: deque[Items] = deque()
        self.calls: dict[Items, Callable[[Any], object]] = {}
        self.running: Items | None = None
        self.thread: threading.Thread | None = None
        core.tell_closing = self.changed.notify_all

    def add(self, items: Items, call: Callable[[Any], object]) -> None:
        with self.core.mutex:
            self.calls[items] = call
            if self.thread is None:
                self.thread = threading.Thread(target=self._run, name="kelvarissdk-delivery", daemon=True)
                with signals_blocked():
                    self.thread.start()

    def tell(self, items: Items) -> None:
        """With the mutex held."""
        if not items.queued:
            items.queued = True
            self.ready.append(items)
            self.changed.notify_all()

    def forget(self, items: Items) -> None:
        """Waits for its callable, but on the thread that runs it."""
        with self.core.mutex:
            self.calls.pop(items, None)
            if threading.current_thread() is not self.thread:
                self.changed.wait_for(lambda: self.running is not items)

    def end(self, seconds: float | None) -> None:
        """The same for all."""
        with self.core.mutex:
            self.calls.clear()
            self.changed.notify_all()
            if threading.current_thread() is not self.thread:
                self.changed.wait_for(lambda: self.running is None, seconds)

    def _run(self) -> None:
        while True:
            with self.core.mutex:
                self.running = None
                self.changed.notify_all()
                self.changed.wait_for(lambda: self.ready or self.core.closing)
                if self.core.closing:
                    return
                items = self.ready.popleft()
                items.queued = False
                call = self.calls.get(items)
                if call is None or not items.items:
                    continue
                item = items.items.popleft()
                if items.items:
                    self.tell(items)
                self.running = items
            try:
                call(items.value(item))
            except BaseException as error:
                self._report(error)
            del call, item  # what they refer to may go now

    def _report(self, error: BaseException) -> None:
        try:
            if self.on_exception is not None:
                self.on_exception(error)
                return
        except BaseException as second:
            error = second
        sys.excepthook(type(error), error, error.__traceback__)


class Client(Calls, Blocking):
    """
    A link to the daemon whose calls wait for their results; see the module's documentation.

        with Client() as client:
            print(client.get_state().state)
            for state in client.states():
                print(state.state)

    It begins to connect when it is made and doesn't wait for that. `address` is an IPv4 address or a host name,
    127.0.0.1 if it isn't given; `port` is 9330 then; `app_name` is what the daemon knows the program by, at most 32
    bytes. `probing` tells whether the link is watched. `on_exception` gets what a callable raises; without it that goes
    to sys.excepthook.

    `client.states()` and the other subscriptions may be given a callable, and how many reports they keep: `keep`.
    """

    def __init__(
        self,
        address: str | None = None,
        port: int | None = None,
        app_name: str = "",
        *,
        probing: bool = True,
        on_exception: Callable[[BaseException], object] | None = None,
    ) -> None:
        self._core = Core(create_settings(address, port, app_name), probing)
        self._delivery = Delivery(self._core, on_exception)

    def within(self, limit: timedelta | float) -> Limited:
        """
        The same calls with a time-out of one's own, in seconds if it is a number: `client.within(2).get_state()`
        raises CallTimeoutError after two seconds, if the library's own time-out hasn't ended it before.
        """
        return Limited(self, seconds_of(limit))

    def links(
        self, call: Callable[[Link], object] | None = None, *, keep: int | None = None
    ) -> Subscription[Link]:
        """Subscribes to the changes of the link, beginning with what is known of it."""
        subscription: Subscription[Link] = self._subscribe(None, call, keep=keep)
        return subscription

    @property
    def link(self) -> Link | None:
        """What is known of the link; None: nothing yet, or it isn't watched."""
        return self._core.link.link

    def close(self) -> None:
        """
        Ends the client. Calls and iterations that wait raise CallCancelledError. When it returns, no callable runs and
        none ever will, unless a callable closes the client. Requests that were queued leave if the link is open; the
        link's end is waited for up to a second. Any thread may close a client, any number of times.
        """
        self._core.close()
        if threading.get_ident() in reader_threads or self._core.forked:
            return
        self._delivery.end(None)
        if threading.current_thread() not in (self._core.thread, self._delivery.thread):
            self._core.closed.wait(END)

    def __enter__(self) -> Client:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()

    def __del__(self) -> None:
        abandon(self)

    def _perform(self, description: Description, arguments: list[Any], seconds: float = -1) -> Any:
        refuse_on_reader_thread()
        prepare(self._core, description, arguments)
        return Waiting(self._core, description, arguments).wait(seconds)

    def _subscribe(
        self,
        description: Description | None,
        call: Callable[[Any], object] | None = None,
        *,
        keep: int | None = None,
    ) -> Any:
        subscription: Subscription[Any] = Subscription(self, description, bound(description, keep))
        items = subscription._items
        if call is not None:
            subscription._call = call
            items.tell_of = self._delivery.tell
            self._delivery.add(items, call)
        try:
            self._core.start(items)
        except BaseException:
            subscription.close()
            raise
        if items.error is not None:
            raise items.error
        if description is None:
            with self._core.mutex:
                self._core.link.watch(items)
        return subscription


class Limited(Calls, Blocking):
    """A client's calls with a time-out; see Client.within()."""

    def __init__(self, client: Client, seconds: float) -> None:
        self._client = client
        self._seconds = seconds

    def _perform(self, description: Description, arguments: list[Any]) -> Any:
        return self._client._perform(description, arguments, self._seconds)

    def _subscribe(self, *_: Any, **__: Any) -> Any:
        raise TypeError("a subscription has no time-out; Subscription.get() takes one")


def abandon(client: Any) -> None:
    """The end of a client that nobody has closed. Its thread closes it, because this may run anywhere."""
    core = getattr(client, "_core", None)
    if core is not None and not core.closing and not core.forked:
        core.commands.put(core.close)
        warnings.warn(f"unclosed {type(client).__name__}", ResourceWarning, source=client)
