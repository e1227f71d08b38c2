"""
How the families describe their calls.

A call is described once, by its signature:

    @call
    def connect_country(self, country: str) -> ConnectResult: ...

Its name leads to the function of the C interface, whose prototype tells how the arguments are passed. A client's
base class says what becomes of the call: `Blocking` waits for the result, `Awaiting` makes a coroutine of it.
"""

from __future__ import annotations

import functools
import inspect
import threading
from collections.abc import Callable, Coroutine
from typing import TYPE_CHECKING, Any, Concatenate, Generic, ParamSpec, Protocol, TypeVar, cast
from typing import get_type_hints, overload

from . import _abi
from ._library import library
from ._values import argument_converter, converter, snake_case

if TYPE_CHECKING:
    from ._aio import AsyncSubscription
    from ._client import Subscription

P = ParamSpec("P")
R = TypeVar("R")

# The functions of the C interface by their names in Python.
FUNCTIONS = {snake_case(name.removeprefix("KelvarisSDK_")): name for name in _abi.FUNCTIONS}


class Blocking:
    """A client whose calls wait for their results."""


class Awaiting:
    """A client whose calls are awaited."""


class Call(Generic[P, R]):
    """What a type checker sees in a description: a method that waits, or one that is awaited."""

    @overload
    def __get__(self, client: Blocking, owner: object = None) -> Callable[P, R]:
        ...

    @overload
    def __get__(self, client: Awaiting, owner: object = None) -> Callable[P, Coroutine[Any, Any, R]]:
        ...

    @overload
    def __get__(self, client: None, owner: object = None) -> Callable[..., Any]:
        ...

    def __get__(self, client: object, owner: object = None) -> Any:
        ...


class Subscribing(Protocol[R]):
    """Subscribes; see `Client`."""

    def __call__(
        self, call: Callable[[R], object] | None = None, *, keep: int | None = None
    ) -> Subscription[R]:
        ...


class AsyncSubscribing(Protocol[R]):
    """Subscribes; see `AsyncClient`."""

    def __call__(self, *, keep: int | None = None) -> AsyncSubscription[R]:
        ...


class Stream(Generic[R]):
    """What a type checker sees in a subscription's description."""

    @overload
    def __get__(self, client: Blocking, owner: object = None) -> Subscribing[R]:
        ...

    @overload
    def __get__(self, client: Awaiting, owner: object = None) -> AsyncSubscribing[R]:
        ...

    @overload
    def __get__(self, client: None, owner: object = None) -> Callable[..., Any]:
        ...

    def __get__(self, client: object, owner: object = None) -> Any:
        ...


class Description:
    """A call without its arguments."""

    def __init__(self, function: Callable[..., Any], callbacks: int = 1, *, nameless: bool = False) -> None:
        self.function = function
        self.callbacks = callbacks  # the library calls back so often; 0: the call is over when it returns
        self.nameless = nameless  # the library hands null to its callback instead of the key
        self.statistics = function.__name__.endswith("_stats") and "browsing" not in function.__name__
        self.listens = function.__name__.startswith("listen")  # reading it brings no report

    # These need the other modules, or the library, and are made when they are used first.

    @functools.cached_property
    def name(self) -> str:
        return FUNCTIONS[self.function.__name__]

    @functools.cached_property
    def signature(self) -> inspect.Signature:
        return inspect.signature(self.function)

    @functools.cached_property
    def arity(self) -> int:
        return len(self.signature.parameters) - 1

    @functools.cached_property
    def arguments(self) -> Callable[..., list[Any]]:
        types = _abi.FUNCTIONS[self.name][1]
        return argument_converter(types[1 : len(types) - 2 if self.callbacks else None])

    @functools.cached_property
    def value(self) -> Callable[[Any], Any]:
        hint: Any = get_type_hints(self.function)["return"]
        return converter(hint)

    @functools.cached_property
    def symbol(self) -> Any:
        return getattr(library(), self.name)

    @functools.cached_property
    def trampoline(self) -> Any:
        return _trampolines[_abi.FUNCTIONS[self.name][1][-2]]

    def bind(self, given: tuple[Any, ...], named: dict[str, Any]) -> list[Any]:
        """The library's arguments. Named ones are put in their places."""
        if named or len(given) != self.arity:
            bound = self.signature.bind(None, *given, **named)
            bound.apply_defaults()
            given = bound.args[1:]
        return self.arguments(given)

    def begin(self, handle: Any, arguments: list[Any], key: int) -> Any:
        """Hands the call to the library; returns the head of the record that comes back at once."""
        if not self.callbacks:
            return self.symbol(handle, *arguments)
        if self.nameless and key != NOBODY:
            with _nameless_lock:
                head = self.symbol(handle, *arguments, self.trampoline, None).base
                if not head.error:
                    _nameless[head.callbackId] = key
                return head
        return self.symbol(handle, *arguments, self.trampoline, key).base


def call(function: Callable[Concatenate[Any, P], R]) -> Call[P, R]:
    """A call of the C interface, described by its signature."""
    return cast("Call[P, R]", _method(Description(function)))


def irregular_call(
    callbacks: int = 1, *, nameless: bool = False
) -> Callable[[Callable[Concatenate[Any, P], R]], Call[P, R]]:
    """The same for a call that Description has to know more of."""

    def describe(function: Callable[Concatenate[Any, P], R]) -> Call[P, R]:
        return cast("Call[P, R]", _method(Description(function, callbacks, nameless=nameless)))

    return describe


def _method(description: Description) -> Any:
    @functools.wraps(description.function)
    def method(self: Any, /, *given: Any, **named: Any) -> Any:
        return self._perform(description, description.bind(given, named))

    method.description = description  # type: ignore[attr-defined]
    return method


def stream(read: Call[[], R]) -> Stream[R]:
    """The subscription to what a call reads."""
    read_function = cast(Any, read)
    method = _subscriber(read_function.description)
    method.__doc__ = f"Subscribes to what `{read_function.__name__}` reads, and to each later report of it."
    return cast("Stream[R]", method)


def listener(function: Callable[[Any], R]) -> Stream[R]:
    """A subscription to something that can't be read."""
    return cast("Stream[R]", functools.update_wrapper(_subscriber(Description(function)), function))


def _subscriber(description: Description) -> Any:
    def method(self: Any, /, *given: Any, **named: Any) -> Any:
        return self._subscribe(description, *given, **named)

    method.description = description  # type: ignore[attr-defined]
    return method


# ---- What the library calls, on its reader threads ----

# The key of calls whose callback concerns nobody, as all that aren't in the table.
NOBODY = (1 << 63) - 1

# What waits for callbacks, by the key that is their user data: an object with `arrive`.
operations: dict[int, Any] = {}
# Those whose callback gets null for its user data, by the library's number of the call.
_nameless: dict[int, int] = {}
_nameless_lock = threading.Lock()
# The threads that are inside a callback, where nothing may wait.
reader_threads: set[int] = set()


def _arrive(record: Any, key: int | None) -> bool:
    """
    Hands a record to who waits for it. ctypes has copied it. Returns whether more is wanted, and never anything but
    a bool: None would be taken for false.
    """
    thread = threading.get_ident()
    reader_threads.add(thread)
    try:
        if key is None:
            with _nameless_lock:
                key = _nameless.pop(record.base.callbackId, NOBODY)
        operation = operations.get(key)
        return operation is not None and operation.arrive(record) is True
    except BaseException as error:  # nothing may leave, or ctypes would return what happens to lie there
        _report(error)
        return True
    finally:
        reader_threads.discard(thread)


def _report(error: BaseException) -> None:
    try:
        import sys

        sys.excepthook(type(error), error, error.__traceback__)
    except BaseException:
        pass  # even this may find no memory


def forget_parent() -> None:
    """In a child of fork(): what its parent's threads were doing ends there."""
    global _nameless_lock
    operations.clear()
    reader_threads.clear()
    _nameless.clear()
    _nameless_lock = threading.Lock()


# One for each type of callback. They live as long as the module, because the library may call them at any time.
_trampolines = {
    arguments[-2]: arguments[-2](_arrive)
    for _, arguments in _abi.FUNCTIONS.values()
    if len(arguments) >= 3 and hasattr(arguments[-2], "_restype_")
}
