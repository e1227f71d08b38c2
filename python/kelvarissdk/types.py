"""What families share, and the first calls."""

# mypy: disable-error-code="empty-body"
# The bodies of the calls are empty, because their signatures describe them.

from __future__ import annotations

from dataclasses import dataclass

from ._abi import BondingMode, ErrorType, PortProtocol, State, TransportMode
from ._calls import call, irregular_call, stream

__all__ = [
    "BondingMode",
    "ErrorType",
    "PortProtocol",
    "ProtocolPortPair",
    "State",
    "StateResult",
    "TransportMode",
    "VersionResult",
]


@dataclass(frozen=True, slots=True)
class StateResult:
    """The session's state, from report_current_state."""

    state: State


@dataclass(frozen=True, slots=True)
class VersionResult:
    """The daemon's version, from report_version_data; each number is cut to its low 16 bits."""

    maj: int
    min: int
    bug: int
    build: int


@dataclass(frozen=True, slots=True)
class ProtocolPortPair:
    """A port of a protocol. A protocol that the daemon names and nobody knows is TCP."""

    protocol: PortProtocol
    port: int


class FirstCalls:
    """The first calls."""

    @call
    def get_state(self) -> StateResult:
        """The session's state."""

    states = stream(get_state)

    @call
    def get_version(self) -> VersionResult:
        """The daemon's version."""

    @irregular_call(callbacks=0)
    def daemon_exit(self) -> None:
        """Asks the daemon to end. It waits for nothing: the request is queued when it returns."""
