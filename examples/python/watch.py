"""Shows each state of the session and each change of the link, until so many states have come or Ctrl-C is pressed.

    python3 watch.py [PORT [COUNT]]
"""

import asyncio
import sys

from kelvarissdk import AsyncClient


async def show_links(client: AsyncClient) -> None:
    async for link in client.links():
        print(f"link: {link}", file=sys.stderr)


async def watch(port: int | None, count: int | None) -> None:
    async with AsyncClient(port=port) as client, asyncio.TaskGroup() as tasks:
        links = tasks.create_task(show_links(client))
        async for report in client.states():
            print(report.state, flush=True)
            count = count and count - 1
            if count == 0:
                break
        links.cancel()


numbers = [int(word) for word in sys.argv[1:]]
try:
    asyncio.run(watch(*(numbers + [None, None])[:2]))
except KeyboardInterrupt:
    pass
