"""Measures the Python layer, with the library that KELVARISSDK_LIBRARY names, and prints one rate, a second.

    python3 python_bench.py PORT calls|ctypes|reports

`calls` are the client's, which wait; `ctypes` are the same on the C interface alone; `reports` are bursts that come
through asyncio from the daemon that makes loads.
"""

import asyncio
import ctypes
import sys
import time
from collections.abc import Callable
from pathlib import Path

sys.path.insert(0, str(Path(__file__).parent.parent / "python"))

from kelvarissdk import AsyncClient, Client, _abi
from kelvarissdk._library import library

CALLS = 5000
BURST = 2000
BURSTS = 5


def rate(call: Callable[[], object]) -> float:
    call()  # waits for the link
    start = time.perf_counter()
    for _ in range(CALLS):
        call()
    return CALLS / (time.perf_counter() - start)


def calls(port: int) -> float:
    with Client(port=port) as client:
        return rate(client.get_version)


def plain_calls(port: int) -> float:
    settings = _abi.CreateSettings()
    library().KelvarisSDK_InitializeCreateSettings(ctypes.byref(settings))
    settings.port = port
    handle = library().KelvarisSDK_CreateWithSettings(settings)
    nobody = _abi.VersionCallback()
    found = rate(lambda: library().KelvarisSDK_GetVersion(handle, nobody, None))
    library().KelvarisSDK_Destroy(handle)
    return found


async def reports(port: int) -> float:
    async with AsyncClient(port=port, app_name=f"load {BURST} 0", probing=False) as client:
        await client.get_state()
        start = time.perf_counter()
        for _ in range(BURSTS):
            left = BURST
            async for _report in (states := client.states(keep=BURST)):
                left -= 1
                if left == 0:
                    break
            assert states.dropped == 0
            states.close()
        return BURSTS * BURST / (time.perf_counter() - start)


if __name__ == "__main__":
    number, what = int(sys.argv[1]), sys.argv[2]
    if what == "reports":
        print(asyncio.run(reports(number)))
    else:
        print({"calls": calls, "ctypes": plain_calls}[what](number))
