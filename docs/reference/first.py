import asyncio
from kelvarissdk import AsyncClient


async def main() -> None:
    async with AsyncClient() as client:
        print(await client.connect_country("us"))
        async for report in client.states():
            print(report.state)


asyncio.run(main())
