"""The daemons that the tests speak to."""

import base64
import hashlib
import json
import os
import queue
import signal
import socket
import struct
import subprocess
import threading
import warnings

# Longer than anything takes that works.
PATIENCE = 20


class Simulator:
    """The simulated daemon as a child, which listens once the object stands."""

    def __init__(self, *options, port=0):
        command = [os.environ["KELVARISSIM"], "--port", str(port), *map(str, options)]
        self.process = subprocess.Popen(command, stdout=subprocess.PIPE)
        self.port = int(self.process.stdout.readline().rsplit(b":", 1)[1])

    def kill(self):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.kill()


class Daemon:
    """
    A daemon that answers a request with what `answers` has under its name: a list of reports. It keeps what it was
    asked in `requests`. Without `upgrades` it takes connections and never completes the upgrade. The first connections
    are closed at once, as many as `refusals`.
    """

    def __init__(self, answers=None, upgrades=True, refusals=0):
        self.answers = answers or {}
        self.refusals = refusals
        self.upgrades = upgrades
        self.requests = queue.SimpleQueue()
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        self.links = []
        self.threads = [threading.Thread(target=self._accept)]
        self.threads[0].start()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.listener.shutdown(socket.SHUT_RDWR)
        for link in self.links:
            try:
                link.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass  # the client was first
        for thread in self.threads:
            thread.join()
        for each in [self.listener, *self.links]:
            each.close()

    def request(self, name=None):
        """The payload of the next request, of this name."""
        while True:
            found, payload = self.requests.get(timeout=PATIENCE)
            if name in (None, found):
                return payload if name else (found, payload)

    def send(self, report, payload, link=None):
        """On the latest link, if none is named."""
        content = json.dumps([f"report_{report}", payload], ensure_ascii=False)
        self.send_frame(1, content.encode(), link or self.links[-1])

    @staticmethod
    def send_frame(code, content, link):
        length = len(content)
        size = bytes([length]) if length < 126 else struct.pack(">BH", 126, length)
        link.sendall(bytes([0x80 | code]) + size + content)

    def _accept(self):
        while True:
            try:
                link, _ = self.listener.accept()
            except OSError:
                return
            if self.refusals:
                self.refusals -= 1
                link.close()
                continue
            self.links.append(link)
            thread = threading.Thread(target=self._serve, args=(link,))
            self.threads.append(thread)
            thread.start()

    def _serve(self, link):
        try:
            with link.makefile("rb") as stream:
                self._talk(link, stream)
        except (OSError, ValueError):
            pass  # the link is gone

    def _talk(self, link, stream):
        key = None
        while (line := stream.readline().strip()) and self.upgrades:
            if line.lower().startswith(b"sec-websocket-key:"):
                key = line.split(b":", 1)[1].strip()
        if key is None:
            stream.read()
            return
        accept = hashlib.sha1(key + b"258EAFA5-E914-47DA-95CA-C5AB0DC85B11").digest()
        link.sendall(
            b"HTTP/1.1 101 Switching Protocols\r\nUpgrade: websocket\r\nConnection: Upgrade\r\n"
            b"Sec-WebSocket-Accept: " + base64.b64encode(accept) + b"\r\n\r\n"
        )
        while head := stream.read(2):
            length = head[1] & 0x7F
            if length == 126:
                (length,) = struct.unpack(">H", stream.read(2))
            mask = stream.read(4)
            content = bytes(sign ^ mask[i % 4] for i, sign in enumerate(stream.read(length)))
            if head[0] & 0x0F == 1:
                self._answer(link, *json.loads(content)[:2])

    def _answer(self, link, name, payload):
        answer = self.answers.get(name, ())
        for report in answer() if callable(answer) else answer:
            self.send(*report, link)
        if name != "set_app_name":
            self.requests.put((name, payload))


def state(number):
    return ("current_state", {"state": number})


def succeeds_in_child(function):
    """Whether the function returns in a child that is forked off."""
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")  # newer interpreters warn of forks with threads
        child = os.fork()
    if child == 0:
        signal.alarm(PATIENCE)
        try:
            function()
            os._exit(0)
        finally:
            os._exit(1)
    return os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 0
