"""How the daemon's tunnel is set up: connection settings, privacy and DNS, captive portals."""

# mypy: disable-error-code="empty-body"

from __future__ import annotations

from collections.abc import Iterable
from dataclasses import dataclass

from ._calls import call, stream
from .types import BondingMode, ProtocolPortPair, TransportMode

__all__ = [
    "CaptivePortalCheckResult",
    "CaptivePortalLoginResult",
    "ConnectionEncryption",
    "ConnectionParallelSockets",
    "PrivacySettingsResult",
    "SettingsResult",
]


@dataclass(frozen=True, slots=True)
class ConnectionEncryption:
    """Whether an adapter's part of the tunnel is encrypted."""

    adapter_id: str
    encrypted: bool


@dataclass(frozen=True, slots=True)
class ConnectionParallelSockets:
    """How many sockets an adapter's part of the tunnel uses."""

    adapter_id: str
    sockets: int


@dataclass(frozen=True, slots=True)
class SettingsResult:
    """The connection settings, from report_connection_settings."""

    jumbo_packets: bool
    encrypted: bool
    """The whole tunnel."""
    allow_chacha_encryption: bool
    """No call sets it."""
    bonding_mode: BondingMode
    """SPEED: none reported, or an unknown one."""
    startup_connect: bool
    """The daemon connects when it starts."""
    transport_mode: TransportMode
    """AUTO: none reported, or an unknown one."""
    forwarded_ports: tuple[ProtocolPortPair, ...]
    per_connection_encryption_enabled: bool
    """The adapters' own settings are in force."""
    per_connection_encryption_settings: tuple[ConnectionEncryption, ...]
    """Empty while they are not."""
    per_connection_parallel_sockets: tuple[ConnectionParallelSockets, ...]
    overflow_threshold: float
    """Mbps; it decides when secondary adapters are used."""
    priority_overflow_threshold: float
    """As reported; no call sets it."""
    packet_aggregation: bool
    enable_default_route: bool
    header_compression: bool
    language: str
    """The daemon's language code; no call sets it."""


@dataclass(frozen=True, slots=True)
class PrivacySettingsResult:
    """The privacy settings, from report_privacy_settings."""

    killswitch: bool
    """No call sets this and the next two."""
    dnsleak: bool
    """DNS leak protection."""
    ipleak: bool
    """IP leak protection."""
    dns_addresses: tuple[str, ...]
    do_not_store_credentials: bool
    """No call sets it."""


@dataclass(frozen=True, slots=True)
class CaptivePortalCheckResult:
    """The networks behind a captive portal, from report_captive_networks."""

    networks: tuple[str, ...]


@dataclass(frozen=True, slots=True)
class CaptivePortalLoginResult:
    """The adapter that is left out of the tunnel for a portal's login, from report_cplogin_network."""

    enabled: bool
    adapter_id: str


class SettingsCalls:
    """The family's calls. Those that change a connection setting bring all settings, as they are after the change."""

    @call
    def get_settings(self) -> SettingsResult:
        """The connection settings."""

    settings = stream(get_settings)

    @call
    def set_mode(self, mode: BondingMode) -> SettingsResult:
        """How several adapters are used at once. UNKNOWN is sent as speed."""

    @call
    def set_connection_transport_mode(self, mode: TransportMode) -> SettingsResult:
        """How the packets travel. UNKNOWN is sent as auto."""

    @call
    def set_tunnel_encrypted(self, enable: bool) -> SettingsResult:
        """Encrypts the whole tunnel, or doesn't. One lock holds for this and `set_connection_encryption`."""

    @call
    def set_jumbo_packets(self, enable: bool) -> SettingsResult:
        """Switches jumbo packets on or off."""

    @call
    def set_packet_aggregation(self, enable: bool) -> SettingsResult:
        """Switches packet aggregation on or off."""

    @call
    def set_header_compression(self, enable: bool) -> SettingsResult:
        """Switches header compression on or off."""

    @call
    def set_startup_connect(self, connect: bool) -> SettingsResult:
        """Lets the daemon connect when it starts, or not."""

    @call
    def set_overflow_threshold(self, speed: float) -> SettingsResult:
        """Sets the threshold in Mbps that decides when secondary adapters are used. Nothing is checked here."""

    @call
    def set_enable_default_route(self, enable: bool) -> SettingsResult:
        """Switches the default route into the tunnel on or off."""

    @call
    def set_forward_ports(self, ports: Iterable[ProtocolPortPair]) -> SettingsResult:
        """Replaces the forwarded ports by the first 20 of `ports`; none clears the list."""

    @call
    def set_connection_encryption(self, adapter_id: str, enable: bool) -> SettingsResult:
        """Encrypts one adapter's part of the tunnel, or doesn't."""

    @call
    def get_privacy_settings(self) -> PrivacySettingsResult:
        """The privacy settings."""

    privacy_settings = stream(get_privacy_settings)

    @call
    def set_dns_servers(self, addresses: Iterable[str]) -> PrivacySettingsResult:
        """
        Replaces the DNS servers by the first 3 of `addresses`, of at most 46 bytes each; none clears the list.
        Whether a text is an address isn't checked here.
        """

    @call
    def check_for_captive_portals(self) -> CaptivePortalCheckResult:
        """Lets the daemon test the networks. The time-out is 30 seconds."""

    @call
    def set_captive_portal_login_mode(
        self, enable: bool, adapter_id: str | None = None
    ) -> CaptivePortalLoginResult:
        """
        Leaves an adapter out of the tunnel, so that somebody can log in through the portal, or ends that. No lock
        concerns it. Without an adapter it can be ended only, or raises InvalidArgumentError.
        """
