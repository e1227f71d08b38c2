"""The client whose calls are awaited."""

import asyncio
import gc
import threading
import unittest
import warnings

from kelvarissdk import *
from support import PATIENCE, Daemon, Simulator, state, succeeds_in_child

ANSWERS = {"request_current_state": [state(6)], "request_version_data": [("version_data", {"maj": 1})]}


class World(unittest.IsolatedAsyncioTestCase):
    async def asyncSetUp(self):
        self.daemon = self.enterContext(Daemon(dict(ANSWERS)))
        self.client = await self.enterAsyncContext(AsyncClient(port=self.daemon.port, probing=False))
        await self.client.get_version()

    async def send_states(self, numbers):
        """When it returns, all of them have arrived."""
        for number in numbers:
            self.daemon.send(*state(number))
        await self.client.get_version()


class Calls(World):
    async def test_outcomes(self):
        self.assertEqual((await self.client.get_state()).state, State.CONNECTED)
        self.assertIsNone(await self.client.enable_stat_updates(False))
        with self.assertRaises(InvalidArgumentError):
            await self.client.connect_country(None)
        with self.assertRaises(TimeoutError):
            async with asyncio.timeout(0.01):
                await self.client.get_directory()
        self.assertEqual(self.client._core.live, {})
        several = await asyncio.gather(*(self.client.get_version() for _ in range(50)))
        self.assertEqual([each.maj for each in several], [1] * 50)

    async def test_close(self):
        waits = asyncio.gather(
            self.client.get_directory(), anext(self.client.directories()), return_exceptions=True
        )
        await asyncio.sleep(0)
        for _ in range(2):
            await self.client.close()
        self.assertEqual([type(each) for each in await waits], [CallCancelledError] * 2)
        self.assertTrue(self.client._core.closed.is_set())
        for use in (self.client.get_state, self.client.daemon_exit):
            with self.assertRaises(CallCancelledError):
                await use()
        with self.assertRaises(CallCancelledError):
            self.client.states()

    async def test_belongs_to_one_loop(self):
        def use_elsewhere():
            asyncio.run(self.client.get_version())

        with self.assertRaises(RuntimeError):
            await asyncio.to_thread(use_elsewhere)
        self.assertEqual((await self.client.get_version()).maj, 1)


class Subscriptions(World):
    async def test_keep_what_there_is_room_for(self):
        all_of_them, latest = self.client.states(), self.client.states(keep=1)
        for each in (all_of_them, latest):
            await anext(each)
        await self.client.get_version()  # behind both reads
        await self.send_states([i % 8 for i in range(300)])
        found = [(await anext(all_of_them)).state for _ in range(256)]
        self.assertEqual(found, [i % 8 for i in range(44, 300)])
        self.assertEqual((all_of_them.dropped, (await anext(latest)).state), (300 - 256 + 1, 299 % 8))

    async def test_end(self):
        found = []
        async with self.client.states() as states:
            async for each in states:
                found.append(each.state)
                if len(found) == 1:
                    await self.send_states([1, 2])
                if len(found) == 3:
                    states.close()
        self.assertEqual(found, [6, 1, 2])
        waits = asyncio.create_task(anext(states := self.client.directories(), "end"))
        await asyncio.sleep(0)
        with self.assertRaises(RuntimeError):
            await anext(states)  # one waits already
        states.close()
        self.assertEqual(await waits, "end")
        waits = asyncio.create_task(anext(states := self.client.directories()))
        await asyncio.sleep(0)
        waits.cancel()
        with self.assertRaises(asyncio.CancelledError):
            await waits
        self.daemon.send("directory", {})
        self.assertEqual((await anext(states)).servers, ())

    async def test_that_nobody_keeps_are_closed(self):
        async for _ in self.client.states():
            break
        gc.collect()
        ended = threading.Event()
        self.client._core.commands.put(ended.set)  # behind the end
        self.assertTrue(ended.wait(PATIENCE))
        self.assertEqual(self.client._core.live, {})


class BadInput(World):
    async def test_flood_leaves_turns_to_others(self):
        """While reports come faster than they are taken, the loop's other tasks run."""
        states = self.client.states()
        await self.send_states([1] * 256)
        taken, turn = [], []
        other = asyncio.create_task(asyncio.sleep(0))
        other.add_done_callback(lambda _: turn.append(len(taken)))
        for _ in range(256):
            taken.append(await anext(states))
        self.assertLess(min(turn, default=256), 200)

    async def test_task_that_blocks(self):
        states = self.client.states()
        await anext(states)
        threading.Timer(0.05, lambda: [self.daemon.send(*state(i % 8)) for i in range(300)]).start()
        while not states.dropped:
            pass  # the loop stands still
        self.assertEqual((await self.client.get_version()).maj, 1)

    async def test_after_a_fork(self):
        def use_in_child():
            with self.assertRaises(SdkError):
                self.client.states()

        self.assertTrue(succeeds_in_child(use_in_child))
        self.assertEqual((await self.client.get_version()).maj, 1)


class End(unittest.TestCase):
    def test_of_a_client_that_nobody_closes(self):
        async def use(port):
            client = AsyncClient(port=port)
            await client.get_state()
            return client._core

        with Simulator("--interval", 1) as simulator, warnings.catch_warnings(record=True) as caught:
            warnings.simplefilter("always")
            core = asyncio.run(use(simulator.port))
            gc.collect()
            self.assertTrue(core.closed.wait(PATIENCE))
        self.assertIn(ResourceWarning, [each.category for each in caught])


class Garbage(unittest.IsolatedAsyncioTestCase):
    async def test_is_collected_everywhere(self):
        """Also on the reader thread, while reports come every millisecond and subscriptions come and go."""
        before = gc.get_threshold()
        gc.freeze()  # what was there before would make it slow
        self.addCleanup(gc.unfreeze)
        gc.set_threshold(5, 5, 5)
        self.addCleanup(gc.set_threshold, *before)
        with Simulator("--interval", 1) as simulator:
            async with AsyncClient(port=simulator.port) as client:
                await client.enable_stat_updates(True)
                kept = client.connection_stats(keep=256)
                for _ in range(20):
                    self.assertEqual(len((await anext(client.session_stats())).periods), 1)
                    await client.get_settings()
                for _ in range(50):
                    await anext(kept)


if __name__ == "__main__":
    unittest.main()
