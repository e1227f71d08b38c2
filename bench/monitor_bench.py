"""Measures kelvaris-monitor against a simulated daemon with ten adapters, and prints one number.

    python3 monitor_bench.py MONITOR PORT picture|top|memory|watch|scrape

`picture` is the time in seconds from the start of `top` to the last adapter in its terminal; `top` is the processor time
that it uses in a second, at a report a second, and `memory` its resident memory in bytes; `watch` is the processor time in
seconds that a second's reports cost; `scrape` is the time in seconds that an HTTP request takes whose connection is kept.
The simulated daemon has four adapters, which a relay makes ten.
"""

import http.client
import json
import os
import pty
import select
import signal
import socket
import statistics
import struct
import subprocess
import sys
import termios
import threading
import time
from collections.abc import Iterator
from contextlib import contextmanager, suppress
from pathlib import Path
from typing import Any, BinaryIO

ADAPTERS = 10
MEASURED_SECONDS = 30
REPORTS = 20
SCRAPES = 1000


def repeated(items: list[dict[str, Any]], key: str) -> list[dict[str, Any]]:
    return [{**items[i % len(items)], key: f"line{i}"} for i in range(ADAPTERS)] if items else []


def with_ten_adapters(message: bytes) -> bytes:
    name, payload, *rest = json.loads(message)
    if name == "report_networks":
        payload = repeated(payload, "guid")
        for i, adapter in enumerate(payload):
            adapter["name"] = f"Line-{i}"
    elif name == "report_connection_stats":
        payload["connections"] = repeated(payload["connections"], "adapter")
    return json.dumps([name, payload, *rest]).encode()


def read_frame(stream: BinaryIO) -> tuple[int, bytes]:
    first, size = stream.read(2)
    if size > 125:
        size = int.from_bytes(stream.read(2 if size == 126 else 8), "big")
    return first, stream.read(size)


def frame(first: int, message: bytes) -> bytes:
    size = len(message)
    if size < 126:
        return bytes([first, size]) + message
    return bytes([first, 126]) + struct.pack(">H", size) + message


def relay_reports(daemon: socket.socket, client: socket.socket) -> None:
    stream = daemon.makefile("rb")
    for line in iter(stream.readline, b"\r\n"):
        client.sendall(line)
    client.sendall(b"\r\n")
    while True:
        first, message = read_frame(stream)
        client.sendall(frame(first, with_ten_adapters(message) if first == 0x81 else message))


def relay_requests(client: socket.socket, daemon: socket.socket) -> None:
    while data := client.recv(1 << 16):
        daemon.sendall(data)


def serve(listener: socket.socket, port: int) -> None:
    while True:
        client = listener.accept()[0]
        daemon = socket.create_connection(("127.0.0.1", port))
        client.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
        for work, ends in ((relay_reports, (daemon, client)), (relay_requests, (client, daemon))):
            threading.Thread(target=work, args=ends, daemon=True).start()


def processor_seconds(process: int) -> float:
    threads = Path(f"/proc/{process}/task").glob("*/schedstat")
    return sum(int(thread.read_text().split()[0]) for thread in threads) / 1e9


def resident_bytes(process: int) -> float:
    lines = Path(f"/proc/{process}/status").read_text().splitlines()
    return next(int(line.split()[1]) for line in lines if line.startswith("VmRSS")) * 1024


class Terminal:
    """`top` in a terminal of 100 columns and 50 rows."""

    def __init__(self, command: list[str]) -> None:
        self.start = time.perf_counter()
        self.process, self.fd = pty.fork()
        if self.process == 0:
            os.environ.update(TERM="xterm-256color", LC_ALL="C.UTF-8")
            termios.tcsetwinsize(0, (50, 100))
            os.execv(command[0], command)

    def read(self, seconds: float) -> bytes:
        return os.read(self.fd, 1 << 16) if select.select([self.fd], [], [], max(seconds, 0))[0] else b""

    def wait_for_picture(self) -> float:
        seen = b""
        while f"Line-{ADAPTERS - 1}".encode() not in seen:
            seen += self.read(10)
        return time.perf_counter() - self.start

    def watch(self, seconds: float) -> None:
        end = time.monotonic() + seconds
        while time.monotonic() < end:
            self.read(end - time.monotonic())

    def close(self) -> None:
        os.kill(self.process, signal.SIGTERM)
        # Linux ends a terminal that no process has open any more with an error.
        with suppress(OSError):
            while self.read(10):
                pass
        os.close(self.fd)
        os.waitpid(self.process, 0)


def picture(monitor: list[str]) -> float:
    terminal = Terminal([*monitor, "top"])
    time_taken = terminal.wait_for_picture()
    terminal.close()
    return time_taken


def live(monitor: list[str], what: str) -> float:
    terminal = Terminal([*monitor, "top"])
    terminal.wait_for_picture()
    before = processor_seconds(terminal.process)
    terminal.watch(MEASURED_SECONDS)
    share = (processor_seconds(terminal.process) - before) / MEASURED_SECONDS
    memory = resident_bytes(terminal.process)
    terminal.close()
    return memory if what == "memory" else share


@contextmanager
def started(command: list[str]) -> Iterator[subprocess.Popen[str]]:
    with subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True) as process:
        yield process
        process.terminate()


def watch(monitor: list[str]) -> float:
    with started([*monitor, "watch", "connections"]) as process:
        assert process.stdout
        process.stdout.readline()
        before = processor_seconds(process.pid)
        reports = 0
        while reports < REPORTS:
            reports += json.loads(process.stdout.readline())["event"] == "connections"
        return (processor_seconds(process.pid) - before) / REPORTS


def scrape(monitor: list[str]) -> float:
    with started([*monitor, "export", "--listen", "127.0.0.1:0"]) as process:
        assert process.stdout
        port = int(process.stdout.readline().split(":")[-1].split("/")[0])
        connection = http.client.HTTPConnection("127.0.0.1", port)
        times: list[float] = []
        text = b""
        while f"Line-{ADAPTERS - 1}".encode() not in text or len(times) < SCRAPES:
            start = time.perf_counter()
            connection.request("GET", "/metrics")
            text = connection.getresponse().read()
            times.append(time.perf_counter() - start)
        connection.close()
        return statistics.median(times[-SCRAPES:])


def main() -> None:
    program, port, what = sys.argv[1], int(sys.argv[2]), sys.argv[3]
    listener = socket.create_server(("127.0.0.1", 0))
    threading.Thread(target=serve, args=(listener, port), daemon=True).start()
    monitor = [program, "--port", str(listener.getsockname()[1])]
    if what in ("top", "memory"):
        print(live(monitor, what))
    else:
        print({"picture": picture, "watch": watch, "scrape": scrape}[what](monitor))


if __name__ == "__main__":
    main()
