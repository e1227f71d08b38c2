"""The Kelvaris client library in Python."""

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
