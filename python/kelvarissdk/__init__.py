"""The Kelvaris client library in Python."""

from ._aio import AsyncClient as AsyncClient
from ._aio import AsyncSubscription as AsyncSubscription
from ._client import Client as Client
from ._client import Subscription as Subscription
from ._link import Link as Link
from .adapters import *
from .errors import *
from .lists import *
from .safebrowsing import *
from .session import *
from .settings import *
from .telemetry import *
from .types import *
