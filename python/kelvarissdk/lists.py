"""
Lists of traffic: the firewall, the local proxy and its streaming services, and what counts as streaming.

The daemon replaces whole lists only. To add or remove an item, get the list, change it and set it; nothing keeps
another client from changing it in between. Of more than 100 items the first 100 are sent; none clears the list. A
domain is any text of at most 50 bytes; a longer one raises ValueError. An address may also be given as a text.
"""

# mypy: disable-error-code="empty-body"

from __future__ import annotations

from collections.abc import Iterable
from dataclasses import dataclass
from ipaddress import IPv4Address, IPv6Address

from ._abi import FirewallMode, LocalProxyMatchMode
from ._calls import call, stream
from .types import ProtocolPortPair

__all__ = [
    "FirewallMode",
    "FirewallSettingsResult",
    "ListBlock",
    "LocalProxyMatchMode",
    "LocalProxyService",
    "LocalProxySettingsResult",
    "StreamingSettingsResult",
]


@dataclass(frozen=True, slots=True)
class ListBlock:
    """The four lists that each of the three results holds."""

    domains: tuple[str, ...]
    ipv4: tuple[IPv4Address | None, ...]
    """None: the report's text is no such address."""
    ipv6: tuple[IPv6Address | None, ...]
    """None: the report's text is no such address."""
    ports: tuple[ProtocolPortPair, ...]


@dataclass(frozen=True, slots=True)
class FirewallSettingsResult:
    """The firewall's mode and lists, from report_firewall_settings."""

    mode: FirewallMode
    """OFF when the report names no mode or an unknown one."""
    lists: ListBlock


@dataclass(frozen=True, slots=True)
class LocalProxyService:
    """A service with the domains of it that the local proxy watches, and those that it proxies, 12 each at most."""

    title: str
    enabled: bool
    watched_domains: tuple[str, ...]
    proxied_domains: tuple[str, ...]


@dataclass(frozen=True, slots=True)
class LocalProxySettingsResult:
    """The local proxy's switch, lists and services, from report_localproxy_settings."""

    enabled: bool
    match_mode: LocalProxyMatchMode
    """ALLOWLIST when the report names none or an unknown one."""
    lists: ListBlock
    watchlist: tuple[LocalProxyService, ...]


@dataclass(frozen=True, slots=True)
class StreamingSettingsResult:
    """The lists of what counts as streaming, from report_streaming_settings."""

    lists: ListBlock


class ListsCalls:
    """The family's calls."""

    @call
    def get_firewall_settings(self) -> FirewallSettingsResult:
        """The firewall's mode and lists."""

    firewall_settings = stream(get_firewall_settings)

    @call
    def set_firewall_mode(self, mode: FirewallMode) -> FirewallSettingsResult:
        """Sets what the lists mean. Any number is sent, as its text."""

    @call
    def set_firewall_domains(self, domains: Iterable[str]) -> FirewallSettingsResult:
        """Replaces the domains of the firewall."""

    @call
    def set_firewall_ipv4(self, addresses: Iterable[IPv4Address | str]) -> FirewallSettingsResult:
        """Replaces the IPv4 addresses of the firewall."""

    @call
    def set_firewall_ipv6(self, addresses: Iterable[IPv6Address | str]) -> FirewallSettingsResult:
        """Replaces the IPv6 addresses of the firewall."""

    @call
    def set_firewall_ports(self, ports: Iterable[ProtocolPortPair]) -> FirewallSettingsResult:
        """Replaces the ports of the firewall."""

    @call
    def get_local_proxy_settings(self) -> LocalProxySettingsResult:
        """The local proxy's switch, lists and services."""

    local_proxy_settings = stream(get_local_proxy_settings)

    @call
    def set_local_proxy_enabled(self, enabled: bool) -> LocalProxySettingsResult:
        """Switches the local proxy."""

    @call
    def set_local_proxy_domains(self, domains: Iterable[str]) -> LocalProxySettingsResult:
        """Replaces the domains of the local proxy."""

    @call
    def set_local_proxy_ipv4(self, addresses: Iterable[IPv4Address | str]) -> LocalProxySettingsResult:
        """Replaces the IPv4 addresses of the local proxy."""

    @call
    def set_local_proxy_ipv6(self, addresses: Iterable[IPv6Address | str]) -> LocalProxySettingsResult:
        """Replaces the IPv6 addresses of the local proxy."""

    @call
    def set_local_proxy_ports(self, ports: Iterable[ProtocolPortPair]) -> LocalProxySettingsResult:
        """
        Replaces the ports of the local proxy. It takes a lock of the firewall's ports for its own. A lock of the
        proxy's ports ends only its time-out, and the call waits for the next report without limit.
        """

    @call
    def set_local_proxy_domain_watchlist_enable(self, title: str, enabled: bool) -> LocalProxySettingsResult:
        """Switches the service of this title. No lock concerns it, and the title isn't checked here."""

    @call
    def get_streaming_settings(self) -> StreamingSettingsResult:
        """The lists of what counts as streaming."""

    streaming_settings = stream(get_streaming_settings)

    @call
    def set_streaming_domains(self, domains: Iterable[str]) -> StreamingSettingsResult:
        """Replaces the domains that count as streaming."""

    @call
    def set_streaming_ipv4(self, addresses: Iterable[IPv4Address | str]) -> StreamingSettingsResult:
        """Replaces the IPv4 addresses that count as streaming."""

    @call
    def set_streaming_ipv6(self, addresses: Iterable[IPv6Address | str]) -> StreamingSettingsResult:
        """Replaces the IPv6 addresses that count as streaming."""

    @call
    def set_streaming_ports(self, ports: Iterable[ProtocolPortPair]) -> StreamingSettingsResult:
        """Replaces the ports that count as streaming."""
