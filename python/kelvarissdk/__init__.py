"""
The Kelvaris client library in Python.

    from kelvarissdk import Client

    with Client() as client:
        print(client.get_state().state)
        client.connect_country("us")
        for report in client.states():
            print(report.state)

CONVENTIONS

1. A client is one link to the daemon. `Client` waits for its results, `AsyncClient` is awaited; otherwise they are the
   same. Each has a method for each function of the C interface, of the same name in Python's spelling. Any thread may
   use a `Client`; an `AsyncClient` belongs to one event loop and its thread. Both are closed by `with` or `close()`.
   Subclassing either isn't supported.

2. Results are frozen dataclasses, made when they are taken: lists are tuples, a span of time is a timedelta, a moment a
   datetime or a date, and an enumeration's number without a name its member UNKNOWN. None stands where the record says
   "none". A note at the class says which report it comes from, those at the fields name units and capacities. Arguments
   that wouldn't arrive as they are, such as numbers out of range, raise ValueError or TypeError, and nothing is sent; of
   a list, so many items are sent as its method says.

3. Errors are subclasses of KelvarisError, one for each code; CallTimeoutError is a TimeoutError too, NotConnectedError a
   ConnectionError, and InvalidArgumentError a ValueError. A call ends once, with what comes first: its result, the
   library's time-out, which is 5 seconds where the method names no other, `within()` or `asyncio.timeout()`, which make
   it shorter and never longer, Ctrl-C, or the client's end, which raises CallCancelledError. A request that has left
   isn't taken back by any of them: the daemon may still do what it asks for.

4. `client.states()` subscribes to what `client.get_state()` reads, and so do the methods that are named after the other
   reads: `settings()`, `adapters()`, `session_stats()` and so on. A subscription is iterated over; that of a `Client` may
   be given a callable instead, which runs on a thread of the client, where it may make calls that wait. No two callables
   of a client run at once. What a callable raises goes to `on_exception`, and the subscription goes on.

5. What waits for a subscription is bounded: the latest report of statistics, 256 reports of all else, or what `keep`
   says. A report that finds no place drops the oldest, and `dropped` counts those. An error in place of a report, as when
   the link is lost, stands in `last_error` and ends nothing.

6. The link is watched unless `probing` is false; `links()` has its changes. When nothing has come for a second, the
   daemon is asked for its version; unanswered for a second the link is LOST. When the daemon is back it is UP, what is
   subscribed to is read anew, and statistics are enabled with the periods that the program gave, within a second of its
   return. After an outage too short to be LOST, statistics that stay away for three seconds are enabled again, and then
   less and less often, up to every 45 seconds. A daemon that closes the link properly is ENDED: calls that wait raise
   CallTimeoutError, and subscriptions go on with a new link. A client has a thread for it, which wakes once in a second
   without reports. A program that keeps the interpreter for itself delays all of this, and isn't taken for a lost link.

7. The end. `close()` raises CallCancelledError in what waits and sends what is queued if the link is open. It waits for
   callables that run on another thread, and up to a second for the link's end. A client that nobody refers to any more is closed with a ResourceWarning; when the interpreter
   exits, all are. In a child of fork() a client raises SdkError, the parent's goes on, and new ones work.

8. Bad input. A daemon that never completes the upgrade is LOST after two seconds; calls wait until it does, the client is
   closed, or a time-out of their own, and `close()` leaves the link's end to a thread after a second. One that closes is
   ENDED, one that restarts LOST and UP. One that floods fills the bounded queues; the other tasks of an event loop get
   their turns. A text that its field cuts within a character ends with U+FFFD. A callable that blocks holds up the other
   callables of its client and nothing else, a task that blocks its event loop: meanwhile the oldest reports are dropped.
   A daemon that neither reports nor closes for as long as the time-out of a read, five seconds, is taken for ENDED.

The library is looked for when it is used first: where KELVARISSDK_LIBRARY says, or where the system's loader finds it.
"""

from . import adapters, errors, lists, safebrowsing, session, settings, telemetry, types
from ._aio import AsyncClient, AsyncSubscription
from ._client import Client, Subscription
from ._link import Link
from .adapters import *
from .errors import *
from .lists import *
from .safebrowsing import *
from .session import *
from .settings import *
from .telemetry import *
from .types import *

__all__ = ["AsyncClient", "AsyncSubscription", "Client", "Link", "Subscription"]
__all__ += adapters.__all__
__all__ += errors.__all__
__all__ += lists.__all__
__all__ += safebrowsing.__all__
__all__ += session.__all__
__all__ += settings.__all__
__all__ += telemetry.__all__
__all__ += types.__all__
