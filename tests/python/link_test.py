"""How both clients see the link: the simulator killed and started again, a daemon that closes."""

import asyncio
import threading
import time
import unittest
from datetime import timedelta

from kelvarissdk import *
from support import PATIENCE, Daemon, Simulator, state

DAY = timedelta(days=1)


class Closing(Daemon):
    """A daemon that closes its links properly when it is asked for the version, so many times."""

    def __init__(self, times):
        super().__init__({"request_current_state": [state(6)], "request_version_data": self.close})
        self.times = times

    def close(self):
        if self.times:
            self.times -= 1
            for link in self.links:
                self.send_frame(8, b"\x03\xe8", link)
        return ()


class Watched:
    """A client of either kind, whose subscriptions are awaited."""

    def __init__(self, kind, port):
        self.client = kind(port=port)
        self.links = self.client.links()
        self.states = self.client.states()
        self.settings = self.client.settings()
        self.stats = self.client.session_stats()

    async def call(self, method, *arguments):
        called = await asyncio.to_thread(method, *arguments)
        return await called if asyncio.iscoroutine(called) else called

    async def next(self, subscription):
        async with asyncio.timeout(PATIENCE):
            if isinstance(subscription, AsyncSubscription):
                return await anext(subscription)
            return await asyncio.to_thread(subscription.get, PATIENCE)

    async def next_stats(self):
        """The next statistics are of the period that was asked for."""
        return [each.period_hours for each in (await self.next(self.stats)).periods] == [DAY]


class Links(unittest.IsolatedAsyncioTestCase):
    async def both(self, function, port):
        """The same for both clients at the same time."""

        async def run(kind):
            watched = Watched(kind, port)
            try:
                await function(watched)
            finally:
                await watched.call(watched.client.close)

        await asyncio.gather(run(Client), run(AsyncClient))

    async def lose_and_find(self):
        """After a long outage all is read anew; after a short one the statistics come back."""
        simulator = Simulator("--interval", 200)
        port = simulator.port
        stages = asyncio.Barrier(3)
        back = 0.0

        async def see(watched):
            self.assertEqual(await watched.next(watched.links), Link.UP)
            await watched.call(watched.client.enable_stat_updates, True, [DAY])
            while not await watched.next_stats():
                pass
            await stages.wait()
            killed = time.monotonic()
            self.assertEqual(await watched.next(watched.links), Link.LOST)
            self.assertLess(time.monotonic() - killed, 3.5)
            for each in (watched.settings, watched.stats):
                while each._items.items:
                    await watched.next(each)
            await stages.wait()
            self.assertEqual(await watched.next(watched.links), Link.UP)
            self.assertLess(time.monotonic() - back, 2)
            await watched.next(watched.settings)
            self.assertTrue(await watched.next_stats())
            await stages.wait()
            await stages.wait()
            if watched.stats._items.items:
                await watched.next(watched.stats)
            self.assertTrue(await watched.next_stats())

        async def bring_about():
            nonlocal simulator, back
            await stages.wait()
            simulator.kill()
            await stages.wait()
            simulator, back = Simulator("--interval", 200, port=port), time.monotonic()
            await stages.wait()
            simulator.kill()
            simulator = Simulator("--interval", 200, port=port)
            await stages.wait()

        try:
            async with asyncio.timeout(3 * PATIENCE):
                await asyncio.gather(self.both(see, port), bring_about())
        finally:
            simulator.kill()

    async def end(self):
        """A daemon that closes properly is replaced: calls that wait time out, subscriptions go on."""
        with Closing(times=2) as daemon:

            async def see(watched):
                self.assertEqual((await watched.next(watched.states)).state, State.CONNECTED)
                waits = asyncio.create_task(watched.call(watched.client.check_for_captive_portals))
                seen = [await watched.next(watched.links) for _ in range(3)]
                self.assertEqual(seen, [Link.UP, Link.LOST, Link.ENDED])
                with self.assertRaises(CallTimeoutError):
                    await waits  # whose own time-out is 30 seconds
                self.assertEqual((await watched.next(watched.states)).state, State.CONNECTED)
                self.assertEqual(await watched.next(watched.links), Link.UP)

            await self.both(see, daemon.port)

    async def begin_meanwhile(self):
        """A call that is made before the handle is replaced and begins afterwards reaches the new one, once."""
        with Closing(times=1) as daemon:
            with Client(port=daemon.port) as client:
                links, states = client.links(), client.states()
                replaced = threading.Event()
                enroll = client._core.enroll

                def enroll_late(operation):
                    if threading.current_thread() is not client._core.thread:
                        replaced.wait(PATIENCE)
                    enroll(operation)

                client._core.enroll = enroll_late
                waits = asyncio.create_task(asyncio.to_thread(client.get_directory_settings))
                while await asyncio.to_thread(links.get, PATIENCE) is not Link.ENDED:
                    pass
                self.assertIs(await asyncio.to_thread(links.get, PATIENCE), Link.UP)
                replaced.set()
                await asyncio.to_thread(daemon.request, "request_directory_url")
                daemon.send("directory_settings", {})
                await waits
                states.close()
                client.daemon_exit()
                self.assertEqual((await asyncio.to_thread(daemon.request))[0], "exit")

    async def return_late(self):
        """The requests that wait for a daemon are few after whatever time: here after 7.5 seconds."""
        with Daemon(refusals=30) as daemon:
            async with AsyncClient(port=daemon.port) as client:
                links = client.links()
                self.assertEqual(await anext(links), Link.LOST)
                asked = [(await asyncio.to_thread(daemon.request))[0] for _ in range(3)]
                self.assertEqual(asked, ["request_version_data", *["request_current_state"] * 2])
                daemon.send(*state(6))
                self.assertEqual(await anext(links), Link.UP)
                await client.daemon_exit()
                self.assertEqual(await asyncio.to_thread(daemon.request), ("exit", None))

    async def test_links(self):
        """They take their time, so they run together."""
        await asyncio.gather(self.lose_and_find(), self.end(), self.begin_meanwhile(), self.return_late())


if __name__ == "__main__":
    unittest.main()
