"""
What a client's calls and subscriptions share: the handle, the list of those that live, and a thread.

One mutex guards all of it. Nothing of the C interface is called while it is held, nor any code of the program. Who
calls the C interface counts as a user of the handle, which is destroyed when it has been taken away and has none.

Garbage is collected on any thread, also on the library's and while the mutex is held. So what a finalizer does is put
a command into a queue, which the thread takes.
"""

from __future__ import annotations

import atexit
import contextlib
import ctypes
import os
import queue
import signal
import sys
import threading
import time
import weakref
from collections.abc import Callable, Iterator
from typing import Any

from . import _abi, _calls
from ._calls import operations
from ._library import library
from ._link import Link, LinkWatch
from ._operations import Operation
from .errors import CallCancelledError, CallTimeoutError, SdkError, error_in

# How long the end of a client is waited for, in seconds.
END = 1.0
PARENTS = "the client is that of a parent process"
_FAULTS = {signal.SIGSEGV, signal.SIGBUS, signal.SIGFPE, signal.SIGILL, signal.SIGTRAP, signal.SIGSYS}


@contextlib.contextmanager
def signals_blocked() -> Iterator[None]:
    """For the start of a thread, so that signals come to the program's own."""
    before = signal.pthread_sigmask(signal.SIG_BLOCK, signal.valid_signals() - _FAULTS)
    try:
        yield
    finally:
        signal.pthread_sigmask(signal.SIG_SETMASK, before)


def create_settings(address: str | None, port: int | None, app_name: str) -> _abi.CreateSettings:
    """Checked here, because a field would cut them."""
    settings = _abi.CreateSettings()
    library().KelvarisSDK_InitializeCreateSettings(ctypes.byref(settings))
    for field, text in (("address", address), ("appName", app_name)):
        if text is None:
            continue
        plain = text.encode()
        if b"\0" in plain or len(plain) > {"address": 45, "appName": 32}[field]:
            raise ValueError(f"{text!r} doesn't fit the daemon's {field}")
        setattr(settings, field, plain)
    if port is not None:
        if not 0 <= port <= 0xFFFF:
            raise ValueError(f"{port} is no TCP port")
        settings.port = port
    return settings


class Core:
    """A client without its form."""

    def __init__(self, settings: _abi.CreateSettings, probing: bool) -> None:
        self.library: Any = library()
        self.settings = settings
        self.mutex = threading.RLock()
        self.unused = threading.Condition(self.mutex)
        self.live: dict[int, Operation] = {}
        self.uses = 0
        self.generation = 0
        self.replacing = False
        self.closing = False
        self.forked = False
        self.closed = threading.Event()
        self.tell_closing: Callable[[], None] = _nothing  # called with the mutex held
        self.commands: queue.SimpleQueue[Callable[[], None] | None] = queue.SimpleQueue()
        self.link = LinkWatch(self, probing)
        self.handle = self.create()
        self.thread = threading.Thread(target=self._run, name="kelvarissdk", daemon=True)
        try:
            with signals_blocked():
                self.thread.start()
        except BaseException:
            self.library.KelvarisSDK_Destroy(self.handle)
            raise
        _cores.add(self)

    def create(self) -> int | None:
        handle: int | None = self.library.KelvarisSDK_CreateWithSettings(self.settings)
        return handle

    # ---- The life of an operation ----

    def start(self, operation: Operation) -> None:
        """Hands it to the library. What goes wrong is found in the operation."""
        if self.forked:
            operation.error = SdkError(PARENTS)
            return
        with self.mutex:
            if self.closing:
                operation.fail(CallCancelledError())
                return
            self.live[operation.key] = operation
            operations[operation.key] = operation
            # Until then a new handle leaves it to this thread.
            operation.enrolling = operation.description is not None
        if operation.description is not None:
            self.enroll(operation)

    def enroll(self, operation: Operation) -> None:
        description = operation.description
        assert description is not None
        with self.mutex:
            operation.enrolling = False
            if self.replacing or operation.settled:
                return  # the new handle takes it
            operation.enrolling = True
            operation.generation = self.generation
        try:
            head = self.use_handle(description.begin, operation.arguments, operation.key)
        except BaseException:
            # A signal's handler came between, and whether the library has the call isn't known.
            operation.settled = True
            self.forget(operation)
            raise
        again = False
        with self.mutex:
            operation.enrolling = False
            lives = operation.key in self.live
            if head.error:
                operation.fail(error_in(head))
                self.forget(operation)
            elif not description.callbacks:
                operation.finish()
                self.forget(operation)
            elif lives and operation.generation != self.generation:
                again = operation.goes_on
                if not again:
                    operation.fail(CallTimeoutError())
                    self.forget(operation)
            elif lives or operation.cancelled:
                operation.id = head.callbackId
                operation.registered = True
        if again:
            self.enroll(operation)
        elif operation.cancelled:
            self._unregister(operation)

    def cancel(self, operation: Operation) -> None:
        """Ends it without telling anybody; nothing comes of it any more."""
        if self.forked:
            return
        with self.mutex:
            operation.settled = True
            operation.cancelled = True
            self.forget(operation)
            self.link.unwatch(operation)
            registered = operation.registered
        if registered:
            self._unregister(operation)

    def _unregister(self, operation: Operation) -> None:
        with self.mutex:
            registered = (
                operation.registered and operation.generation == self.generation and not self.replacing
            )
            operation.registered = False
        if registered:
            self.use_handle(self._unregister_id, operation.id)

    def _unregister_id(self, handle: int | None, number: int) -> None:
        if handle is not None:
            self.library.KelvarisSDK_UnregisterCallback(handle, number)

    def forget(self, operation: Operation) -> None:
        operations.pop(operation.key, None)
        self.live.pop(operation.key, None)

    # ---- The handle ----

    def use_handle(self, function: Callable[..., Any], *arguments: Any) -> Any:
        """Calls the C interface without the mutex."""
        used = False
        try:
            with self.mutex:
                handle = self.handle
                self.uses += 1
                used = True
            return function(handle, *arguments)
        finally:  # also where a signal's handler raises
            if used:
                with self.mutex:
                    self.uses -= 1
                    if not self.uses and self.handle is None:
                        self.unused.notify_all()

    def _take_handle(self) -> int | None:
        """From then on others find none. Waits for those who use it."""
        with self.mutex:
            handle, self.handle = self.handle, None
            self.unused.wait_for(lambda: not self.uses)
        return handle

    def replace_handle(self) -> None:
        """Only the core's thread gets here, so there is one at a time."""
        with self.mutex:
            self.replacing = True
            self.link.probe = None
            self.link.change(Link.ENDED)
        self.library.KelvarisSDK_Destroy(self._take_handle())
        fresh = self.create()
        subscriptions = []
        with self.mutex:
            self.handle = fresh
            self.generation += 1
            self.replacing = False
            self.link.last_heard = time.monotonic()
            for operation in list(self.live.values()):
                if operation.description is None or operation.enrolling:
                    continue
                waited, operation.registered = not operation.registered, False
                if operation.goes_on or waited:
                    subscriptions.append(operation)
                else:
                    operation.fail(CallTimeoutError())
                    self.forget(operation)
        self.link.enable_statistics()
        for operation in subscriptions:
            self.enroll(operation)

    # ---- The thread ----

    def nudge(self) -> None:
        self.commands.put(_nothing)

    def _run(self) -> None:
        while True:
            with self.mutex:
                due = self.link.next_due()
            try:
                wait = None if due is None else max(0.0, due - time.monotonic())
                command = self.commands.get(timeout=wait)
                if command is None:
                    break
                command()
            except queue.Empty:
                late = 0.0 if due is None else time.monotonic() - due
                if late > 0.25:
                    with self.mutex:
                        self.link.excuse(late)
            try:
                self.link.supervise()
            except Exception:  # memory that runs out, and it goes on
                sys.excepthook(*sys.exc_info())
        self._end()

    # ---- The end ----

    def close(self, tell: bool = True) -> None:
        """
        Ends all operations and lets the thread do the rest, which may take long: `closed` tells when it is over.
        """
        if self.forked:
            handle, self.handle = self.handle, None
            self.library.KelvarisSDK_Destroy(handle)  # frees what is the child's and waits for nothing
            self.closed.set()
            return
        with self.mutex:
            if self.closing:
                return
            self.closing = True
            for operation in list(self.live.values()):
                if tell:
                    operation.fail(CallCancelledError())
                operations.pop(operation.key, None)
            self.link.watchers.clear()
            self.tell_closing()
        self.commands.put(None)

    def _end(self) -> None:
        handle = self._take_handle()
        # First nobody is called any more, should the handle outlive the interpreter.
        for operation in self.live.values():
            if operation.registered and operation.generation == self.generation:
                self._unregister_id(handle, operation.id)
        self.live.clear()
        self.library.KelvarisSDK_Destroy(handle)
        self.closed.set()


def _nothing() -> None:
    """Wakes the thread."""


_cores: weakref.WeakSet[Core] = weakref.WeakSet()


def _at_exit() -> None:
    cores = [core for core in _cores if not core.forked]
    for core in cores:
        core.close(tell=False)  # the threads that are left never run again
    until = time.monotonic() + END
    for core in cores:
        core.closed.wait(max(0.0, until - time.monotonic()))


def _after_fork() -> None:
    # The parent's threads may have held the mutexes' copies.
    _calls.forget_parent()
    for core in list(_cores):
        core.forked = True
        core.mutex = threading.RLock()
        core.closed = threading.Event()


atexit.register(_at_exit)
os.register_at_fork(after_in_child=_after_fork)
