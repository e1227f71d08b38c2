"""
Safe browsing: a filter in the daemon that looks hosts up at a service and blocks or redirects them.

Configuration, token and extra information are texts of that service, which the library passes on unread.
"""

# mypy: disable-error-code="empty-body"

from __future__ import annotations

from dataclasses import dataclass

from ._abi import SafeBrowsingLogLevel, SafeBrowsingSafeNetworkOverride
from ._calls import call, irregular_call, listener, stream

__all__ = [
    "SafeBrowsingBlockResult",
    "SafeBrowsingErrorResult",
    "SafeBrowsingLogLevel",
    "SafeBrowsingResult",
    "SafeBrowsingSafeNetworkOverride",
    "SafeBrowsingStatsResult",
]


@dataclass(frozen=True, slots=True)
class SafeBrowsingResult:
    """
    The filter's state, from report_safe_browsing_settings; or, from report_safe_browsing_connect_error, why the
    service couldn't be reached, which is a result and raises nothing.
    """

    connect_error_set: bool
    """A connect error came, and the next two fields hold it."""
    connect_error_code: int
    """The service's own number."""
    connect_error_message: str
    initialized: bool
    config_set: bool
    """The service has a configuration."""
    enabled: bool
    log_level: SafeBrowsingLogLevel
    """DEBUG until a known text came."""
    network_override: SafeBrowsingSafeNetworkOverride
    """NONE until a known text came."""


@dataclass(frozen=True, slots=True)
class SafeBrowsingErrorResult:
    """A failed look-up, from report_safe_browsing_lookup_error."""

    error: int
    """The service's own number."""
    message: str
    host: str


@dataclass(frozen=True, slots=True)
class SafeBrowsingBlockResult:
    """A blocked host, from report_safe_browsing_block."""

    redirected: bool
    """The host was redirected."""
    host: str


@dataclass(frozen=True, slots=True)
class SafeBrowsingStatsResult:
    """The filter's counters, from report_safe_browsing_stats; where no note stands, as reported."""

    min: int
    max: int
    average: int
    num_errors: int
    """A count, as is each field whose name begins so."""
    num_blocks: int
    failure_rate: float
    num_block_responses: int
    num_lookups: int
    num_packets_filtered: int


class SafeBrowsingCalls:
    """The family's calls."""

    @irregular_call(callbacks=2)
    def start_safe_browsing(self, config: str) -> SafeBrowsingResult:
        """
        Enables the filter and initializes it with the configuration. Both steps are sent at once; it ends with the
        result of the second. A connect error is a result.
        """

    @irregular_call(callbacks=2)
    def stop_safe_browsing(self) -> SafeBrowsingResult:
        """Disables the filter, then initializes it with an empty configuration. Otherwise like the start."""

    @call
    def init_safe_browsing(self, config: str) -> SafeBrowsingResult:
        """Hands the service its configuration. A connect error is a result."""

    @call
    def set_safe_browsing_config(self, config: str) -> SafeBrowsingResult:
        """Changes the configuration. The lock that concerns this call is the initialization's."""

    @call
    def set_safe_browsing_enabled(self, enable: bool) -> SafeBrowsingResult:
        """Turns the filter on or off."""

    @call
    def set_safe_browsing_log_level(self, level: SafeBrowsingLogLevel) -> SafeBrowsingResult:
        """Sets what the service logs; no lock concerns it. UNKNOWN is sent as debug."""

    @call
    def set_safe_browsing_safe_network_override(
        self, value: SafeBrowsingSafeNetworkOverride
    ) -> SafeBrowsingResult:
        """Sets the override; no lock concerns it. UNKNOWN is sent as none."""

    @call
    def refresh_safe_browsing_token(self, token: str) -> SafeBrowsingResult:
        """
        Hands the service a new token. Ends with the first settings that are initialized, or with a connect error,
        which is a result.
        """

    @call
    def report_safe_browsing_home_network_with_parameters(
        self, retries: int, delay: int, timeout: int
    ) -> SafeBrowsingResult:
        """
        Reports this network to the service as the home network. The three numbers go to the daemon as they are, which
        defines their units. Ends like `refresh_safe_browsing_token`, whose lock concerns it too.
        """

    @call
    def update_safe_browsing_extra_info(self, info: str) -> SafeBrowsingResult:
        """Hands the service extra information. Ends like `refresh_safe_browsing_token`."""

    @call
    def get_safe_browsing(self) -> SafeBrowsingResult:
        """The filter's state."""

    safe_browsing = stream(get_safe_browsing)

    @listener
    def listen_for_safe_browsing_error(self) -> SafeBrowsingErrorResult:
        """Subscribes to each look-up that fails from now on."""

    @listener
    def listen_for_safe_browsing_block(self) -> SafeBrowsingBlockResult:
        """Subscribes to each host that is blocked from now on."""

    @call
    def get_safe_browsing_stats(self) -> SafeBrowsingStatsResult:
        """The filter's counters."""

    safe_browsing_stats = stream(get_safe_browsing_stats)
