"""Account and session: logging in, connecting, the servers, how a server is chosen, the directory service."""

# mypy: disable-error-code="empty-body"

from __future__ import annotations

import threading
from dataclasses import dataclass
from datetime import date

from . import _abi
from ._abi import AccountPaymentType, AutoConnectMethod
from ._calls import call, irregular_call, stream
from ._library import library
from ._values import Minutes, NoneIfZero, text
from .types import StateResult

__all__ = [
    "AccountPaymentType",
    "AccountingResult",
    "AutoConnectMethod",
    "ConnectResult",
    "DirectoryResult",
    "DirectorySettingsResult",
    "ServerInformation",
    "ServerInformationDetailed",
    "ServerSettingsResult",
]


@dataclass(frozen=True, slots=True)
class AccountingResult:
    """The account and what it has used in its data period, from report_accounting_data."""

    email: str
    is_auto_account: bool
    """The account was made for a device."""
    bytes_avail: int
    """Bytes that the account may use in the period."""
    bytes_used: int
    is_team: bool
    minutes_avail: Minutes
    """The time that the account may use in the period."""
    minutes_used: Minutes
    payment_type: AccountPaymentType
    """FREE where the daemon's tier isn't known."""
    period_end_date: date | None
    """None where the report has no date."""


# The library's names stand in static buffers, which one thread at a time may use.
_names = threading.Lock()


def _name(function: str, server: ServerInformation | ServerInformationDetailed) -> str:
    record = getattr(_abi, type(server).__name__)(
        server.country.encode()[:10], server.city.encode()[:20], server.num or 0, server.is_private
    )
    with _names:
        name = getattr(library(), f"KelvarisSDK_{function}")(record) or b""
    return text(name)


@dataclass(frozen=True, slots=True)
class ServerInformation:
    """A server of the directory."""

    country: str
    """Its code."""
    city: str
    """Its code."""
    num: NoneIfZero
    """The server's number within the city."""
    is_private: bool
    """It is private to this account."""

    def get_country_name(self) -> str:
        """The English name of the country: "United States"; "{{LOCATION.COUNTRY.xx}}" where none is known."""
        return _name("ServerInformation_GetCountryName", self)

    def get_city_name(self) -> str:
        """The English name of the city: "New York City" or "{{LOCATION.CITY.xx}}"."""
        return _name("ServerInformation_GetCityName", self)

    def to_string(self) -> str:
        """A name for people: "United States - New York City #12"."""
        return _name("ServerInformation_toString", self)


@dataclass(frozen=True, slots=True)
class ServerInformationDetailed:
    """A server in use."""

    country: str
    """Its code."""
    city: str
    """Its code."""
    num: NoneIfZero
    """The server's number within the city."""
    is_private: bool
    """It is private to this account."""
    torrent_allowed: bool
    """True where the report doesn't say."""
    public_ip: tuple[str, ...]
    """IPv4 or IPv6 addresses, at most 12."""

    def to_string(self) -> str:
        """A name for people: "United States - New York City #12"."""
        return _name("ServerInformationDetailed_toString", self)


@dataclass(frozen=True, slots=True)
class DirectoryResult:
    """The servers that the account may use, at most 400, in the order of report_directory."""

    servers: tuple[ServerInformation, ...]


@dataclass(frozen=True, slots=True)
class ConnectResult:
    """The server of the connection, from report_connected_server."""

    server: ServerInformationDetailed


@dataclass(frozen=True, slots=True)
class ServerSettingsResult:
    """The daemon's setting of how it picks a server, from report_server_settings."""

    connect_method: AutoConnectMethod
    """COUNTRY: the place below. What the report names and nobody knows is CLOSEST."""
    country: str
    city: str
    num: NoneIfZero


@dataclass(frozen=True, slots=True)
class DirectorySettingsResult:
    """How the daemon reaches its directory service, from report_directory_settings."""

    domain: str
    enable_esni: bool
    """Encrypted server name indication."""
    gateway_uri: str


class SessionCalls:
    """The family's calls."""

    @call
    def login(self, username: str, password: str) -> StateResult:
        """
        Logs in. Ends with the state that the session settles in, LOGGED_IN, CONNECTED or OVERLIMIT; or raises the
        daemon's own error, from report_login_error. The time-out is 60 seconds; the daemon may go on after it.
        """

    @call
    def login_oauth(self, token: str) -> StateResult:
        """The same with an OAuth access token."""

    @call
    def login_auto_account(self) -> StateResult:
        """The same with an account that is made for this device."""

    @call
    def logout(self) -> StateResult:
        """Logs out. Ends with the state LOGGED_OUT; at once where that is the state."""

    @call
    def get_accounting_data(self) -> AccountingResult:
        """The account's data."""

    accounting_data = stream(get_accounting_data)

    @call
    def get_directory(self) -> DirectoryResult:
        """The list of servers."""

    directories = stream(get_directory)

    @call
    def connect_auto(self, method: AutoConnectMethod = AutoConnectMethod.AUTO) -> ConnectResult:
        """
        Connects to a server that the daemon picks. Ends when the session is CONNECTED, with the server reported last
        before that; or raises the daemon's own error, from report_connect_error or report_login_error. It can be
        locked as a setting can. The time-out is 60 seconds, up to the first report of a server; the daemon may go on
        after it. COUNTRY raises SdkError; PROXY is sent as AUTO, there is `connect_proxy`.
        """

    @call
    def connect_country(self, country: str) -> ConnectResult:
        """The same with a server of a country: its code, or "private" and the code. Nothing is checked here."""

    @call
    def connect_city(self, country: str, city: str) -> ConnectResult:
        """The same with a server of a city."""

    @call
    def connect_server(self, country: str, city: str, num: int) -> ConnectResult:
        """The same with one server."""

    @call
    def connect_proxy(self) -> ConnectResult:
        """The same through the proxy."""

    @call
    def disconnect(self) -> StateResult:
        """Disconnects. Ends with the state LOGGED_IN or LOGGED_OUT."""

    @call
    def get_connected_server(self) -> ConnectResult:
        """The server in use."""

    connected_servers = stream(get_connected_server)

    @call
    def get_server_settings(self) -> ServerSettingsResult:
        """How the daemon picks a server."""

    server_settings = stream(get_server_settings)

    @call
    def set_connect_method_auto(self, method: AutoConnectMethod) -> ServerSettingsResult:
        """Sets CLOSEST, PRIVATE, PUBLIC, P2P or PROXY; any other raises InvalidArgumentError."""

    @call
    def set_connect_method_country(self, country: str) -> ServerSettingsResult:
        """Sets a country. Nothing is checked here, nor in the next two."""

    @call
    def set_connect_method_city(self, country: str, city: str) -> ServerSettingsResult:
        """Sets a city."""

    @call
    def set_connect_method_server(self, country: str, city: str, num: int) -> ServerSettingsResult:
        """Sets one server."""

    @call
    def get_directory_settings(self) -> DirectorySettingsResult:
        """How the daemon reaches its directory service."""

    directory_settings = stream(get_directory_settings)

    @call
    def set_esni_enabled(self, enabled: bool) -> DirectorySettingsResult:
        """Switches encrypted server name indication on or off."""

    @call
    def set_directory_domain(self, domain: str | None) -> DirectorySettingsResult:
        """Sets the directory server's domain; None goes back to the daemon's own. No lock concerns it."""

    @irregular_call(nameless=True)
    def reset_directory_domain(self) -> DirectorySettingsResult:
        """Goes back to the daemon's own domain."""

    @call
    def set_directory_gateway_uri(self, uri: str | None) -> DirectorySettingsResult:
        """Sets the URI of a directory gateway; None goes back to the daemon's own. No lock concerns it."""

    @irregular_call(nameless=True)
    def reset_directory_gateway_uri(self) -> DirectorySettingsResult:
        """Goes back to the daemon's own gateway."""
