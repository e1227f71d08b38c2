"""The client whose calls wait: its subscriptions, its end, and what it survives."""

import ctypes
import gc
import os
import queue
import signal
import subprocess
import sys
import threading
import unittest
import warnings
from unittest import mock

from kelvarissdk import *
from kelvarissdk import _calls, _link
from support import PATIENCE, Daemon, Simulator, state, succeeds_in_child


def in_thread(function):
    """What the function returns or raises, once it has."""
    outcome = queue.SimpleQueue()

    def run():
        try:
            outcome.put(function())
        except Exception as error:
            outcome.put(error)

    threading.Thread(target=run, daemon=True).start()
    return lambda timeout=PATIENCE: outcome.get(timeout=timeout)


class World(unittest.TestCase):
    """A client of a daemon that reports what the test says, and answers a read of the version."""

    answers = {"request_current_state": [state(6)], "request_version_data": [("version_data", {"maj": 1})]}

    def setUp(self):
        self.daemon = self.enterContext(Daemon(dict(self.answers)))
        self.raised = queue.SimpleQueue()
        self.client = Client(port=self.daemon.port, probing=False, on_exception=self.raised.put)
        self.addCleanup(self.client.close)
        self.client.get_version()

    def send_states(self, numbers):
        """When it returns, all of them have arrived."""
        for number in numbers:
            self.daemon.send(*state(number))
        self.client.get_version()


class Calls(World):
    def test_are_interrupted(self):
        """Ctrl-C ends the wait, and the client works as before."""

        live = self.client._core.live

        def interrupt():
            while not any(each.registered for each in list(live.values())):
                pass  # until the call waits
            os.kill(os.getpid(), signal.SIGINT)
            return ()

        self.daemon.answers["request_networks"] = interrupt
        with self.assertRaises(KeyboardInterrupt):
            self.client.get_adapters()
        with self.assertRaises(KeyboardInterrupt), self.client.adapters() as adapters:
            next(adapters)
        self.assertEqual(self.client.get_version().maj, 1)
        self.assertEqual(live, {})

    def test_time_outs(self):
        with self.assertRaises(CallTimeoutError):
            self.client.within(0.01).get_directory()
        with self.assertRaises(CallTimeoutError), self.client.states() as states:
            states.get()
            states.get(0.01)
        self.assertEqual(self.client.within(PATIENCE).get_state().state, State.CONNECTED)
        self.assertEqual(self.client._core.live, {})

    def test_never_wait_on_the_reader_thread(self):
        """Only garbage that is collected there gets a program's code to it."""
        _calls.reader_threads.add(threading.get_ident())
        try:
            for wait in (self.client.get_state, lambda: next(self.client.states())):
                with self.assertRaises(SynchronousInCallbackError):
                    wait()
        finally:
            _calls.reader_threads.discard(threading.get_ident())


class Subscriptions(World):
    def test_keep_what_there_is_room_for(self):
        all_of_them, latest = self.client.states(), self.client.states(keep=1)
        for each in (all_of_them, latest):
            each.get()
        self.client.get_version()  # behind both reads
        self.send_states([i % 8 for i in range(300)])
        self.assertEqual([each.get(0).state for each in [all_of_them] * 256], [i % 8 for i in range(44, 300)])
        self.assertEqual(latest.get(0).state, 299 % 8)
        self.assertEqual(all_of_them.dropped, 300 - 256 + 1)  # the client's second read came between
        for each in (all_of_them, latest):
            with self.assertRaises(CallTimeoutError):
                each.get(0)

    def test_end(self):
        iterated = self.client.states()
        self.assertEqual(next(iterated).state, State.CONNECTED)
        seen = in_thread(lambda: [each.state for each in iterated])
        self.send_states([1, 2])
        while iterated._items.items:
            self.client.get_version()
        iterated.close()
        iterated.close()
        self.assertEqual(seen(), [1, 2])
        waits = in_thread(lambda: next(self.client.states()) and next(self.client.directories()))
        self.daemon.request("request_directory")
        self.client.close()
        self.assertIsInstance(waits(), CallCancelledError)
        with self.assertRaises(CallCancelledError):
            self.client.states()

    def test_that_nobody_keeps_are_closed(self):
        next(self.client.states())
        self.client.states(lambda _: None)
        gc.collect()
        ended = threading.Event()
        self.client._core.commands.put(ended.set)  # behind the end
        self.assertTrue(ended.wait(PATIENCE))
        self.assertEqual(len(self.client._core.live), 1)

    def test_errors_end_nothing(self):
        self.daemon.answers["request_current_state"] = [("current_state", {"state": "unreadable"})]
        states = self.client.states()
        self.send_states([2])
        self.assertEqual(states.get(0).state, State.LOGGED_IN)
        self.assertIsInstance(states.last_error, SdkError)


class Callables(World):
    def test_that_block(self):
        """Calls and iterations go on meanwhile; reports wait, and the oldest are dropped."""
        entered, release = threading.Event(), threading.Event()
        seen = []

        def block(report):
            seen.append(report.state)
            entered.set()
            release.wait(PATIENCE)

        blocking = self.client.states(block, keep=2)
        entered.wait(PATIENCE)
        with self.client.states() as states:
            self.assertEqual(next(states).state, State.CONNECTED)
            self.send_states([1, 2, 3])
            self.assertEqual([states.get(0).state for _ in range(3)], [1, 2, 3])
        self.assertEqual(blocking.dropped, 2)
        closed = in_thread(blocking.close)
        while self.client._delivery.calls:
            pass  # until the end is asked for
        with self.assertRaises(queue.Empty):
            closed(0.05)
        self.assertEqual(seen, [6])
        release.set()
        self.assertIsNone(closed())
        self.send_states([4])
        self.assertEqual(seen, [6])

    def test_may_do_what_they_like(self):
        """They call, raise, and close their subscription and their client."""
        done = queue.SimpleQueue()

        def call(report):
            if report.state == State.CONNECTED:
                raise LookupError("first")
            done.put(self.client.get_version().maj)
            subscription.close()
            self.client.close()
            done.put("closed")

        subscription = self.client.states(call)
        self.assertEqual(str(self.raised.get(timeout=PATIENCE)), "first")
        self.daemon.send(*state(2))
        self.assertEqual([done.get(timeout=PATIENCE) for _ in range(2)], [1, "closed"])
        self.assertTrue(self.client._core.closed.wait(PATIENCE))


class End(World):
    def test_close(self):
        waits = [in_thread(self.client.get_directory) for _ in range(3)]
        for _ in waits:
            self.daemon.request("request_directory")
        closes = [in_thread(self.client.close) for _ in range(2)]
        for each in waits:
            self.assertIsInstance(each(), CallCancelledError)
        self.assertEqual([each() for each in closes], [None, None])
        for end in (self.client.get_state, self.client.daemon_exit, self.client.links):
            with self.assertRaises(CallCancelledError):
                end()
        self.assertFalse(any(each.core is self.client._core for each in _calls.operations.values()))

    def test_of_one_that_nobody_closes(self):
        core = self.client._core
        self._cleanups.clear()
        self.addCleanup(self.daemon.__exit__)
        with warnings.catch_warnings(record=True) as caught:
            warnings.simplefilter("always")
            del self.client
            gc.collect()
        self.assertEqual([each.category for each in caught], [ResourceWarning])
        self.assertTrue(core.closed.wait(PATIENCE))

    def test_of_the_interpreter(self):
        """Clients that live, with reports every millisecond and threads that wait, don't hold it up or call into it."""
        program = """
import atexit, sys, threading, time
atexit.register(lambda: print(client._core.closed.is_set()))
from kelvarissdk import *
class Slow:
    def __del__(self, sleep=time.sleep):
        sleep(0.05)
slow = Slow()
client = Client(port=int(sys.argv[1]))
client.enable_stat_updates(True)
client.connection_stats(lambda _: None)
stats = client.session_stats()
print(type(next(stats)).__name__)
threading.Thread(target=lambda: list(stats), daemon=True).start()
"""
        with Simulator("--interval", 1) as simulator:
            for _ in range(2):
                command = [sys.executable, "-c", program, str(simulator.port)]
                ended = subprocess.run(command, capture_output=True, text=True, timeout=PATIENCE)
                self.assertEqual(
                    (ended.returncode, ended.stdout, ended.stderr), (0, "SessionStatsResult\nTrue\n", "")
                )

    def test_after_a_fork(self):
        subscription = self.client.states()
        held, release = threading.Event(), threading.Event()

        def hold():
            with self.client._core.mutex:
                held.set()
                release.wait(PATIENCE)

        def use_in_child():
            within = self.client.within(1)
            for use in (self.client.get_version, self.client.states, within.get_state, subscription.get):
                with self.assertRaises(SdkError):
                    use()
            subscription.close()
            self.client.close()
            with Client(port=self.daemon.port, probing=False) as own:
                self.assertEqual(own.get_version().maj, 1)

        holds = in_thread(hold)
        held.wait(PATIENCE)
        self.assertTrue(succeeds_in_child(use_in_child))
        release.set()
        holds()
        self.assertEqual(self.client.get_version().maj, 1)


class BadInput(unittest.TestCase):
    def test_upgrade_that_is_never_completed(self):
        """The link is lost; a call waits until it has a time-out or the client ends, which takes a second."""
        with Daemon(upgrades=False) as daemon:
            client = Client(port=daemon.port)
            waits = in_thread(client.get_state)
            with self.assertRaises(CallTimeoutError):
                client.within(0.01).get_state()
            self.assertEqual(next(client.links()), Link.LOST)
            client.close()
            self.assertIsInstance(waits(), CallCancelledError)
            self.assertFalse(client._core.closed.is_set())
        self.assertTrue(client._core.closed.wait(PATIENCE))

    def test_interpreter_that_is_busy(self):
        """That an answer waits for the interpreter says nothing of the link."""
        daemon = self.enterContext(Daemon({"request_current_state": [state(6)]}))
        hold = ctypes.PyDLL(None).usleep  # it doesn't let others have the interpreter

        def answer():
            hold(1_000_000)
            return [("version_data", {"maj": 1})]

        daemon.answers["request_version_data"] = answer
        with mock.patch.object(_link, "QUIET", 0.3), Client(port=daemon.port) as client:
            links = client.links()
            client.get_state()
            daemon.request("request_version_data")
            client.get_state()
            self.assertEqual([links.get(0), *links._items.items], [Link.UP])


class Garbage(unittest.TestCase):
    def test_is_collected_everywhere(self):
        """Also on the reader thread, while reports come every millisecond and subscriptions come and go."""
        before = gc.get_threshold()
        gc.freeze()  # what was there before would make it slow
        self.addCleanup(gc.unfreeze)
        gc.set_threshold(5, 5, 5)
        self.addCleanup(gc.set_threshold, *before)
        stop = threading.Event()
        self.addCleanup(stop.set)

        def collect():
            while not stop.wait(0.002):
                gc.collect()

        with Simulator("--interval", 1) as simulator, Client(port=simulator.port) as client:
            client.enable_stat_updates(True)
            collector = threading.Thread(target=collect)
            collector.start()
            called = queue.SimpleQueue()
            kept = [client.connection_stats(called.put), client.session_stats(called.put)]
            for _ in range(40):
                self.assertEqual(len(next(client.session_stats()).periods), 1)
                client.get_settings()
            for _ in range(100):
                called.get(timeout=PATIENCE)
            stop.set()
            collector.join()
            del kept
        self.assertTrue(client._core.closed.is_set())


if __name__ == "__main__":
    unittest.main()
