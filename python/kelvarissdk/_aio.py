"""The client whose calls are awaited."""

from __future__ import annotations

import asyncio
import functools
import os
from collections import deque
from typing import Any, Generic, TypeVar, cast

from ._calls import Awaiting, Description
from ._client import Calls, abandon, bound, prepare
from ._core import END, PARENTS, Core, create_settings
from ._link import Link
from ._operations import Items, Once, Operation
from .errors import SdkError

R = TypeVar("R")

_os: Any = os  # the type checker of Debian 12 doesn't know its descriptors of events

# So many reports may be taken in a row before the other tasks of the loop get their turn.
_TURN = 64


class Awaited(Once):
    """A call that a task waits for."""

    __slots__ = ("future", "wakes")

    def __init__(self, loop: Wakes, description: Description, arguments: list[Any]) -> None:
        super().__init__(loop.core, description, arguments)
        self.wakes = loop
        self.future: asyncio.Future[None] = loop.loop.create_future()

    def tell(self) -> None:
        self.wakes.put(self)

    def wake(self) -> None:
        if not self.future.done():
            self.future.set_result(None)


class AsyncItems(Items):
    """A subscription that a task iterates over."""

    __slots__ = ("future", "wakes")

    def __init__(self, loop: Wakes, description: Description | None, keep: int) -> None:
        super().__init__(loop.core, description, keep, self.put)
        self.wakes = loop
        self.future: asyncio.Future[None] | None = None

    @staticmethod
    def put(items: Items) -> None:
        own = cast(AsyncItems, items)
        if not own.queued:
            own.queued = True
            own.wakes.put(own)

    def wake(self) -> None:
        if self.future is not None and not self.future.done():
            self.future.set_result(None)


class Wakes:
    """What has news for its tasks, and the descriptor that wakes the loop. It belongs to one loop."""

    def __init__(self, core: Core) -> None:
        self.core = core
        self.loop = asyncio.get_running_loop()
        self.ready: deque[Awaited | AsyncItems] = deque()
        self.descriptor = _os.eventfd(0, _os.EFD_CLOEXEC | _os.EFD_NONBLOCK)
        self.loop.add_reader(self.descriptor, self.drain)

    def put(self, operation: Awaited | AsyncItems) -> None:
        """With the mutex held; from any thread."""
        self.ready.append(operation)
        if len(self.ready) == 1 and self.descriptor >= 0:
            _os.eventfd_write(self.descriptor, 1)

    def drain(self) -> None:
        """On the loop: wakes the tasks."""
        with self.core.mutex:
            if self.descriptor >= 0 and self.ready:
                _os.eventfd_read(self.descriptor)
            ready, self.ready = self.ready, deque()
            for operation in ready:
                if isinstance(operation, AsyncItems):
                    operation.queued = False
        for operation in ready:
            operation.wake()

    def end(self) -> None:
        """On the loop: nothing wakes it any more."""
        self.drain()
        with self.core.mutex:
            descriptor, self.descriptor = self.descriptor, -1
        if descriptor >= 0:
            self.loop.remove_reader(descriptor)
            os.close(descriptor)

    def __del__(self) -> None:
        # The loop refers to it until it ends, and what writes to the descriptor does too.
        if getattr(self, "descriptor", -1) >= 0:
            os.close(self.descriptor)


class AsyncSubscription(Generic[R]):
    """
    The reports of a kind, to be iterated over with `async for`. It ends when the subscription is closed, and raises
    CallCancelledError when the client is. One task may iterate over it at a time.

    An error, such as the time-out of the read that it begins with, ends nothing: it stands in `last_error`, and
    `client.links()` tells of the link. Reports wait in a bounded queue; one that finds no place drops the oldest, which
    `dropped` counts. A subscription that nobody refers to any more is closed.
    """

    def __init__(self, client: AsyncClient, items: AsyncItems) -> None:
        self._client = client
        self._core = client._core
        self._items = items
        self._turn = 0

    @property
    def dropped(self) -> int:
        """How many reports were dropped because nobody took them in time."""
        return self._items.dropped

    @property
    def last_error(self) -> Exception | None:
        """The last error that came in place of a report."""
        return self._items.last_error

    def __aiter__(self) -> AsyncSubscription[R]:
        return self

    async def __anext__(self) -> R:
        items = self._items
        self._turn += 1
        if self._turn >= _TURN:
            self._turn = 0
            await asyncio.sleep(0)
        while True:
            with self._core.mutex:
                if items.error is not None:
                    raise items.error
                if items.cancelled:
                    raise StopAsyncIteration
                if items.items:
                    item = items.items.popleft()
                    break
                if items.future is not None:
                    raise RuntimeError("another task iterates over the subscription")
                items.future = self._client._loop().loop.create_future()
            self._turn = 0
            try:
                await items.future
            finally:
                items.future = None
        return cast(R, items.value(item))

    def close(self) -> None:
        """Ends it, on the loop's thread, any number of times."""
        if self._core.forked:
            return
        self._core.cancel(self._items)
        self._items.wake()

    async def __aenter__(self) -> AsyncSubscription[R]:
        return self

    async def __aexit__(self, *_: object) -> None:
        self.close()

    def __del__(self) -> None:
        items: Operation | None = getattr(self, "_items", None)
        if items is not None and not items.settled and not self._core.forked:
            self._core.commands.put(functools.partial(self._core.cancel, items))


class AsyncClient(Calls, Awaiting):
    """
    A link to the daemon whose calls are awaited; see the module's documentation, and `Client` for the arguments.

        async with AsyncClient() as client:
            await client.connect_country("us")
            async for state in client.states():
                print(state.state)

    It belongs to the loop that is running when it is used first, and to that loop's thread. A task that is cancelled
    cancels the call that it waits for; the daemon may still do what was asked. `asyncio.timeout()` makes a time-out of
    one's own.
    """

    def __init__(
        self, address: str | None = None, port: int | None = None, app_name: str = "", *, probing: bool = True
    ) -> None:
        self._core = Core(create_settings(address, port, app_name), probing)
        self._wakes: Wakes | None = None

    def links(self, *, keep: int | None = None) -> AsyncSubscription[Link]:
        """Subscribes to the changes of the link, beginning with what is known of it."""
        subscription: AsyncSubscription[Link] = self._subscribe(None, keep=keep)
        return subscription

    @property
    def link(self) -> Link | None:
        """What is known of the link; None: nothing yet, or it isn't watched."""
        return self._core.link.link

    async def close(self) -> None:
        """
        Ends the client. Calls and iterations that wait raise CallCancelledError. Requests that were queued leave if the
        link is open; the link's end is waited for up to a second. It may be closed any number of times.
        """
        self._core.close()
        if self._wakes is not None and not self._core.forked:
            self._wakes.end()
        if not self._core.closed.is_set():
            await asyncio.to_thread(self._core.closed.wait, END)

    async def __aenter__(self) -> AsyncClient:
        return self

    async def __aexit__(self, *_: object) -> None:
        await self.close()

    def __del__(self) -> None:
        abandon(self)

    def _loop(self) -> Wakes:
        if self._core.forked:
            raise SdkError(PARENTS)
        loop = asyncio.get_running_loop()
        if self._wakes is None:
            self._wakes = Wakes(self._core)
        elif self._wakes.loop is not loop:
            raise RuntimeError("the client belongs to another loop")
        return self._wakes

    async def _perform(self, description: Description, arguments: list[Any]) -> Any:
        operation = Awaited(self._loop(), description, arguments)
        prepare(self._core, description, arguments)
        try:
            self._core.start(operation)
            if operation.error is None:
                await operation.future
        except BaseException:
            self._core.cancel(operation)
            raise
        return operation.result()

    def _subscribe(self, description: Description | None, *, keep: int | None = None) -> Any:
        items = AsyncItems(self._loop(), description, bound(description, keep))
        subscription: AsyncSubscription[Any] = AsyncSubscription(self, items)
        self._core.start(items)
        if items.error is not None:
            raise items.error
        if description is None:
            with self._core.mutex:
                self._core.link.watch(items)
        return subscription
