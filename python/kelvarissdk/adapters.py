"""The network adapters that the daemon bonds: what they are, when they are used, how much they may carry."""

# mypy: disable-error-code="empty-body"

from __future__ import annotations

from dataclasses import dataclass

from ._abi import ConnectionPriority, ConnectionState, NetworkType
from ._calls import call, stream
from ._values import NoneIfBelowZero, NoneIfZero

__all__ = [
    "AdapterData",
    "AdapterUsageData",
    "AdaptersResult",
    "ConnectionPriority",
    "ConnectionState",
    "NetworkType",
]


@dataclass(frozen=True, slots=True)
class AdapterUsageData:
    """What an adapter has carried and may carry."""

    usage: int
    """Bytes in the month."""
    usage_daily: int
    """Bytes in the day."""
    max: NoneIfBelowZero
    """Bytes per month; None: no limit reported."""
    reset_day: NoneIfZero
    """Day of the month on which the monthly usage begins anew; None: it is that of the last 30 days."""
    max_daily: NoneIfBelowZero
    """Bytes per day; None: no limit reported."""
    boost_daily: int
    """Bytes added to the daily limit."""
    overlimit_rate: NoneIfBelowZero
    """Bits per second once over a limit; None: none reported."""


@dataclass(frozen=True, slots=True)
class AdapterData:
    """One network adapter with its limits and its usage."""

    adapter_id: str
    """Names the adapter in calls."""
    name: str
    description: str
    state: ConnectionState
    type: NetworkType
    priority: ConnectionPriority
    ssid: str
    """The wireless network's name."""
    bssid: str
    """The wireless network's hardware address."""
    rate_limit: NoneIfBelowZero
    """Bits per second, at most 2147483647; None: none reported."""
    data_usage: AdapterUsageData


@dataclass(frozen=True, slots=True)
class AdaptersResult:
    """
    The adapters, at most 25, from report_networks. A report in which any rate limit is 2**31 bit/s or more can't be
    read, and calls that wait for it raise SdkError, until the daemon reports a lower limit.
    """

    adapters: tuple[AdapterData, ...]


class AdaptersCalls:
    """
    The family's calls, which all bring the whole list. Whether an adapter's id is known is the daemon's to judge, and
    so is what it makes of numbers below zero.
    """

    @call
    def get_adapters(self) -> AdaptersResult:
        """The adapters."""

    adapters = stream(get_adapters)

    @call
    def set_connection_priorities(self, adapter_id: str, priority: ConnectionPriority) -> AdaptersResult:
        """Sets when one adapter is used. UNKNOWN raises InvalidArgumentError."""

    @call
    def set_connection_rate_limit(self, adapter_id: str, bits_per_second: int) -> AdaptersResult:
        """Limits an adapter's rate; 0 lifts the limit. Keep it below 2**31, see AdaptersResult."""

    @call
    def reset_connection_rate_limit(self, adapter_id: str) -> AdaptersResult:
        """Lifts the limit of an adapter's rate."""

    @call
    def set_adapter_monthly_data_limit(self, adapter_id: str, bytes: int, reset_day: int) -> AdaptersResult:
        """
        Limits what an adapter carries in a month; 0 bytes lift the limit. The month begins on `reset_day`; with 0 it
        is the last 30 days.
        """

    @call
    def disable_adapter_monthly_data_limit(self, adapter_id: str) -> AdaptersResult:
        """Lifts the monthly limit."""

    @call
    def set_adapter_daily_data_limit(self, adapter_id: str, bytes: int) -> AdaptersResult:
        """Limits what an adapter carries in a day; 0 bytes lift the limit."""

    @call
    def disable_adapter_daily_data_limit(self, adapter_id: str) -> AdaptersResult:
        """Lifts the daily limit."""

    @call
    def add_adapter_daily_data_limit_boost(self, adapter_id: str, bytes: int) -> AdaptersResult:
        """Adds this many bytes to the daily limit, once. No lock concerns it."""

    @call
    def set_adapter_overlimit_rate_limit(self, adapter_id: str, bits_per_second: int) -> AdaptersResult:
        """Limits the rate of an adapter that is over one of its data limits; with 0 it isn't used then."""

    @call
    def reset_adapter_usage(self, adapter_id: str) -> AdaptersResult:
        """Sets an adapter's usage back to 0. No lock concerns it."""
