"""The C interface for ctypes: enumerations, structures, callback types, prototypes.

Written by generate.py from the C headers; don't edit it. Names are those of the C interface without their
prefix.
"""

from __future__ import annotations

import ctypes
from typing import Any

from ._enumeration import Enumeration

# The version of the headers.
VERSION_MAJOR = 12
VERSION_MINOR = 1
VERSION_PATCH = 1


class ErrorType(Enumeration):
    """Why a call failed. 0 to 8 come from the daemon, the others from the library."""

    NO_ERROR = 0
    NETWORK = 1
    SERVER = 2
    CREDENTIALS = 3
    DIRECTORY = 4
    ACCOUNT = 5
    TOO_MANY_REQUESTS = 6
    OAUTH_TOKEN_EXPIRED = 7
    VPN_ADAPTER = 8
    ASYNC_CALL = 3584
    SDK = 3840
    TIMEOUT = 3841
    INVALID_ARGUMENT = 3842
    CALLBACK_REQUIRED = 3843
    PLATFORM_UNSUPPORTED = 3844
    NOT_CONNECTED = 3845
    LOCKED_BY_SERVER = 3846
    SYNCHRONOUS_IN_CALLBACK = 3847
    LOCKED_BY_ACCOUNT = 3848
    CANCELLED = 4096
    UNKNOWN = 0xFFFFFFFF


class State(Enumeration):
    """State of the daemon's session."""

    LOGGED_OUT = 0
    LOGGING_IN = 1
    LOGGED_IN = 2
    AUTO_CONNECTING = 3
    CONNECTING = 4
    DISCONNECTING = 5
    CONNECTED = 6
    OVERLIMIT = 7
    UNKNOWN = 8


class BondingMode(Enumeration):
    """How the daemon uses several adapters at once. Any other number is taken as speed."""

    SPEED = 0
    REDUNDANT = 1
    STREAMING = 2
    UNKNOWN = 0xFFFFFFFF


class TransportMode(Enumeration):
    """How the tunnel's packets travel. Any other number is taken as auto."""

    TCP = 0
    UDP = 1
    AUTO = 2
    HTTPS = 3
    TCP_MULTI = 4
    UNKNOWN = 0xFFFFFFFF


class PortProtocol(Enumeration):
    """The protocol of a port."""

    TCP = 0
    UDP = 1
    UNKNOWN = 0xFFFFFFFF


class ConnectionState(Enumeration):
    """State of the connection over an adapter."""

    DISCONNECTED = 0
    CONNECTING = 1
    CONNECTED = 2
    UNKNOWN = 0xFFFFFFFF


class NetworkType(Enumeration):
    """The kind of network that an adapter is in."""

    WIFI = 0
    ETHERNET = 1
    CELLULAR = 2
    VPN = 3
    LOOPBACK = 4
    BLUETOOTH = 5
    UNKNOWN = 6


class ConnectionPriority(Enumeration):
    """When an adapter is used."""

    ALWAYS = 0
    SECONDARY = 1
    BACKUP = 2
    NEVER = 3
    UNKNOWN = 0xFFFFFFFF


class FirewallMode(Enumeration):
    """What the firewall's lists mean."""

    OFF = 0
    ALLOWLIST = 1
    DENYLIST = 2
    UNKNOWN = 0xFFFFFFFF


class LocalProxyMatchMode(Enumeration):
    """What the local proxy's lists mean."""

    ALLOWLIST = 0
    DENYLIST = 1
    UNKNOWN = 0xFFFFFFFF


class SafeBrowsingLogLevel(Enumeration):
    """What the service writes into its log. The numbers are not in the order of severity."""

    DEBUG = 0
    INFO = 1
    ERROR = 2
    TRACE = 3
    WARNING = 4
    UNKNOWN = 0xFFFFFFFF


class SafeBrowsingSafeNetworkOverride(Enumeration):
    """The override of the service's own decision whether the network is safe."""

    NONE = 0
    UNSAFE = 1
    SAFE = 2
    UNKNOWN = 0xFFFFFFFF


class AccountPaymentType(Enumeration):
    """How often the account is paid for."""

    FREE = 0
    MONTHLY = 1
    YEARLY = 2
    UNKNOWN = 0xFFFFFFFF


class AutoConnectMethod(Enumeration):
    """How the daemon picks a server."""

    CLOSEST = 0
    PRIVATE = 1
    PUBLIC = 2
    LAST = 3
    P2P = 4
    AUTO = 5
    COUNTRY = 6
    PROXY = 7
    UNKNOWN = 0xFFFFFFFF


class StreamHealth(Enumeration):
    """How a stream is doing."""

    STOPPED = 0
    POOR = 1
    GOOD = 2
    UNKNOWN = 0xFFFFFFFF


class DisconnectReason(Enumeration):
    """Why a session ended."""

    UNKNOWN = 0
    CONNECTIVITY = 1
    AIRPLANE = 2
    REBOOT = 3
    UPDATE = 4
    CRASH = 5
    SLEEP = 6
    USERINITIATED = 7
    TORRENT = 8
    SERVICESTOP = 9
    STARTTIMEOUT = 10
    INACTIVETIMEOUT = 11
    SETTINGCHANGERECONNECT = 12
    DNSTIMEOUT = 13
    TUNNELTIMEOUT = 14
    OVERQUOTA = 15
    SAFENETWORK = 16


class SpeedTestType(Enumeration):
    """What a test measured."""

    SPEED = 0
    STREAMING = 1
    UNKNOWN = 0xFFFFFFFF


class BaseResult(ctypes.Structure):
    """The head of every result record."""

    error: bool
    errorCode: int
    errorMessage: bytes
    callbackId: int
    _fields_ = [
        ("error", ctypes.c_bool),
        ("errorCode", ctypes.c_int32),
        ("errorMessage", ctypes.c_char * 200),
        ("callbackId", ctypes.c_uint64),
    ]


class StateResult(ctypes.Structure):
    """The session's state, from report_current_state."""

    base: BaseResult
    state: int
    _fields_ = [
        ("base", BaseResult),
        ("state", ctypes.c_uint32),
    ]


class ProtocolPortPair(ctypes.Structure):
    """A port of a protocol. In a report, a protocol that is neither "tcp" nor "udp" leaves the field as it
    was: TCP in the first report.
    """

    protocol: int
    port: int
    _fields_ = [
        ("protocol", ctypes.c_uint32),
        ("port", ctypes.c_uint16),
    ]


class AdapterUsageData(ctypes.Structure):
    """What an adapter has carried and may carry."""

    usage: int
    usageDaily: int
    max: int
    resetDay: int
    maxDaily: int
    boostDaily: int
    overlimitRate: int
    _fields_ = [
        ("usage", ctypes.c_int64),
        ("usageDaily", ctypes.c_int64),
        ("max", ctypes.c_int64),
        ("resetDay", ctypes.c_int64),
        ("maxDaily", ctypes.c_int64),
        ("boostDaily", ctypes.c_int64),
        ("overlimitRate", ctypes.c_int64),
    ]


class AdapterData(ctypes.Structure):
    """One network adapter with its limits and its usage."""

    adapterID: bytes
    name: bytes
    description: bytes
    state: int
    type: int
    priority: int
    ssid: bytes
    bssid: bytes
    rateLimit: int
    dataUsage: AdapterUsageData
    _fields_ = [
        ("adapterID", ctypes.c_char * 100),
        ("name", ctypes.c_char * 100),
        ("description", ctypes.c_char * 100),
        ("state", ctypes.c_uint32),
        ("type", ctypes.c_uint32),
        ("priority", ctypes.c_uint32),
        ("ssid", ctypes.c_char * 100),
        ("bssid", ctypes.c_char * 100),
        ("rateLimit", ctypes.c_int64),
        ("dataUsage", AdapterUsageData),
    ]


class AdaptersResult(ctypes.Structure):
    """The adapters, from report_networks. A report in which any `rateLimit` is 2147483648 bit/s (2^31) or
    more can't be read: every call that waits for it ends with SDK (3840), until the daemon reports a lower
    limit.
    """

    base: BaseResult
    adapterCount: int
    adapters: ctypes.Array[AdapterData]
    _fields_ = [
        ("base", BaseResult),
        ("adapterCount", ctypes.c_uint32),
        ("adapters", AdapterData * 25),
    ]


class in_addr(ctypes.Structure):
    s_addr: int
    _fields_ = [
        ("s_addr", ctypes.c_uint32),
    ]


class in6_addr(ctypes.Structure):
    s6_addr32: ctypes.Array[ctypes.c_uint32]
    _fields_ = [
        ("s6_addr32", ctypes.c_uint32 * 4),
    ]


class ListBlock(ctypes.Structure):
    """The four lists that each of the three records holds."""

    domainCount: int
    domains: ctypes.Array[ctypes.Array[ctypes.c_char]]
    ipv4Count: int
    ipv4: ctypes.Array[in_addr]
    ipv6Count: int
    ipv6: ctypes.Array[in6_addr]
    portCount: int
    ports: ctypes.Array[ProtocolPortPair]
    _fields_ = [
        ("domainCount", ctypes.c_uint16),
        ("domains", ctypes.c_char * 50 * 100),
        ("ipv4Count", ctypes.c_uint16),
        ("ipv4", in_addr * 100),
        ("ipv6Count", ctypes.c_uint16),
        ("ipv6", in6_addr * 100),
        ("portCount", ctypes.c_uint16),
        ("ports", ProtocolPortPair * 100),
    ]


class FirewallSettingsResult(ctypes.Structure):
    """From report_firewall_settings."""

    base: BaseResult
    mode: int
    lists: ListBlock
    _fields_ = [
        ("base", BaseResult),
        ("mode", ctypes.c_uint32),
        ("lists", ListBlock),
    ]


class LocalProxyService(ctypes.Structure):
    """A service with the domains of it that the local proxy watches, and those that it proxies."""

    title: bytes
    enabled: bool
    watchedDomainCount: int
    watchedDomains: ctypes.Array[ctypes.Array[ctypes.c_char]]
    proxiedDomainCount: int
    proxiedDomains: ctypes.Array[ctypes.Array[ctypes.c_char]]
    _fields_ = [
        ("title", ctypes.c_char * 30),
        ("enabled", ctypes.c_bool),
        ("watchedDomainCount", ctypes.c_uint16),
        ("watchedDomains", ctypes.c_char * 50 * 12),
        ("proxiedDomainCount", ctypes.c_uint16),
        ("proxiedDomains", ctypes.c_char * 50 * 12),
    ]


class LocalProxySettingsResult(ctypes.Structure):
    """From report_localproxy_settings."""

    base: BaseResult
    enabled: bool
    matchMode: int
    lists: ListBlock
    watchlistCount: int
    watchlist: ctypes.Array[LocalProxyService]
    _fields_ = [
        ("base", BaseResult),
        ("enabled", ctypes.c_bool),
        ("matchMode", ctypes.c_uint32),
        ("lists", ListBlock),
        ("watchlistCount", ctypes.c_uint16),
        ("watchlist", LocalProxyService * 25),
    ]


class StreamingSettingsResult(ctypes.Structure):
    """From report_streaming_settings."""

    base: BaseResult
    lists: ListBlock
    _fields_ = [
        ("base", BaseResult),
        ("lists", ListBlock),
    ]


class SafeBrowsingResult(ctypes.Structure):
    """The filter's state, from report_safe_browsing_settings; or, from report_safe_browsing_connect_error,
    why the service couldn't be reached. A connect error is a result: `error` in the head stays false.
    """

    base: BaseResult
    connectErrorSet: bool
    connectErrorCode: int
    connectErrorMessage: bytes
    initialized: bool
    configSet: bool
    enabled: bool
    logLevel: int
    networkOverride: int
    _fields_ = [
        ("base", BaseResult),
        ("connectErrorSet", ctypes.c_bool),
        ("connectErrorCode", ctypes.c_int32),
        ("connectErrorMessage", ctypes.c_char * 200),
        ("initialized", ctypes.c_bool),
        ("configSet", ctypes.c_bool),
        ("enabled", ctypes.c_bool),
        ("logLevel", ctypes.c_uint32),
        ("networkOverride", ctypes.c_uint32),
    ]


class SafeBrowsingErrorResult(ctypes.Structure):
    """A failed look-up, from report_safe_browsing_lookup_error."""

    base: BaseResult
    connectErrorSet: bool
    error: int
    message: bytes
    host: bytes
    _fields_ = [
        ("base", BaseResult),
        ("connectErrorSet", ctypes.c_bool),
        ("error", ctypes.c_int32),
        ("message", ctypes.c_char * 200),
        ("host", ctypes.c_char * 253),
    ]


class SafeBrowsingBlockResult(ctypes.Structure):
    """A blocked host, from report_safe_browsing_block."""

    base: BaseResult
    redirected: bool
    host: bytes
    _fields_ = [
        ("base", BaseResult),
        ("redirected", ctypes.c_bool),
        ("host", ctypes.c_char * 253),
    ]


class SafeBrowsingStatsResult(ctypes.Structure):
    """The filter's counters, from report_safe_browsing_stats."""

    base: BaseResult
    min: int
    max: int
    average: int
    num_errors: int
    num_blocks: int
    failure_rate: float
    num_block_responses: int
    num_lookups: int
    num_packets_filtered: int
    _fields_ = [
        ("base", BaseResult),
        ("min", ctypes.c_uint32),
        ("max", ctypes.c_uint32),
        ("average", ctypes.c_uint32),
        ("num_errors", ctypes.c_uint32),
        ("num_blocks", ctypes.c_uint32),
        ("failure_rate", ctypes.c_double),
        ("num_block_responses", ctypes.c_uint32),
        ("num_lookups", ctypes.c_uint64),
        ("num_packets_filtered", ctypes.c_uint64),
    ]


class tm(ctypes.Structure):
    tm_sec: int
    tm_min: int
    tm_hour: int
    tm_mday: int
    tm_mon: int
    tm_year: int
    tm_wday: int
    tm_yday: int
    tm_isdst: int
    tm_gmtoff: int
    tm_zone: Any
    _fields_ = [
        ("tm_sec", ctypes.c_int),
        ("tm_min", ctypes.c_int),
        ("tm_hour", ctypes.c_int),
        ("tm_mday", ctypes.c_int),
        ("tm_mon", ctypes.c_int),
        ("tm_year", ctypes.c_int),
        ("tm_wday", ctypes.c_int),
        ("tm_yday", ctypes.c_int),
        ("tm_isdst", ctypes.c_int),
        ("tm_gmtoff", ctypes.c_long),
        ("tm_zone", ctypes.c_char_p),
    ]


class AccountingResult(ctypes.Structure):
    """The account and what it has used in its data period, from report_accounting_data."""

    base: BaseResult
    email: bytes
    isAutoAccount: bool
    bytesAvail: int
    bytesUsed: int
    isTeam: bool
    minutesAvail: int
    minutesUsed: int
    paymentType: int
    periodEndDate: tm
    _fields_ = [
        ("base", BaseResult),
        ("email", ctypes.c_char * 250),
        ("isAutoAccount", ctypes.c_bool),
        ("bytesAvail", ctypes.c_int64),
        ("bytesUsed", ctypes.c_int64),
        ("isTeam", ctypes.c_bool),
        ("minutesAvail", ctypes.c_int32),
        ("minutesUsed", ctypes.c_int32),
        ("paymentType", ctypes.c_uint32),
        ("periodEndDate", tm),
    ]


class ServerInformation(ctypes.Structure):
    """A server of the directory."""

    country: bytes
    city: bytes
    num: int
    isPrivate: bool
    _fields_ = [
        ("country", ctypes.c_char * 10),
        ("city", ctypes.c_char * 20),
        ("num", ctypes.c_int32),
        ("isPrivate", ctypes.c_bool),
    ]


class ServerInformationDetailed(ctypes.Structure):
    """A server in use. It begins with the fields of ServerInformation at the same places."""

    country: bytes
    city: bytes
    num: int
    isPrivate: bool
    torrentAllowed: bool
    publicIPCount: int
    publicIP: ctypes.Array[ctypes.Array[ctypes.c_char]]
    _fields_ = [
        ("country", ctypes.c_char * 10),
        ("city", ctypes.c_char * 20),
        ("num", ctypes.c_int32),
        ("isPrivate", ctypes.c_bool),
        ("torrentAllowed", ctypes.c_bool),
        ("publicIPCount", ctypes.c_uint16),
        ("publicIP", ctypes.c_char * 46 * 12),
    ]


class DirectoryResult(ctypes.Structure):
    """The servers that the account may use, in the order of report_directory."""

    base: BaseResult
    serverCount: int
    servers: ctypes.Array[ServerInformation]
    _fields_ = [
        ("base", BaseResult),
        ("serverCount", ctypes.c_uint32),
        ("servers", ServerInformation * 400),
    ]


class ConnectResult(ctypes.Structure):
    """The server of the connection, from report_connected_server."""

    base: BaseResult
    server: ServerInformationDetailed
    _fields_ = [
        ("base", BaseResult),
        ("server", ServerInformationDetailed),
    ]


class ServerSettingsResult(ctypes.Structure):
    """The daemon's setting of how it picks a server, from report_server_settings. A method that isn't
    known leaves `connectMethod` as it was: CLOSEST in the first report.
    """

    base: BaseResult
    connectMethod: int
    country: bytes
    city: bytes
    num: int
    _fields_ = [
        ("base", BaseResult),
        ("connectMethod", ctypes.c_uint32),
        ("country", ctypes.c_char * 10),
        ("city", ctypes.c_char * 20),
        ("num", ctypes.c_int32),
    ]


class DirectorySettingsResult(ctypes.Structure):
    """How the daemon reaches its directory service, from report_directory_settings."""

    base: BaseResult
    domain: bytes
    enableEsni: bool
    gatewayUri: bytes
    _fields_ = [
        ("base", BaseResult),
        ("domain", ctypes.c_char * 100),
        ("enableEsni", ctypes.c_bool),
        ("gatewayUri", ctypes.c_char * 100),
    ]


class ConnectionEncryption(ctypes.Structure):
    """Whether an adapter's part of the tunnel is encrypted."""

    adapterID: bytes
    encrypted: bool
    _fields_ = [
        ("adapterID", ctypes.c_char * 100),
        ("encrypted", ctypes.c_bool),
    ]


class ConnectionParallelSockets(ctypes.Structure):
    """How many sockets an adapter's part of the tunnel uses."""

    adapterID: bytes
    sockets: int
    _fields_ = [
        ("adapterID", ctypes.c_char * 100),
        ("sockets", ctypes.c_uint16),
    ]


class SettingsResult(ctypes.Structure):
    """The connection settings, from report_connection_settings."""

    base: BaseResult
    jumboPackets: bool
    encrypted: bool
    allowChaChaEncryption: bool
    bondingMode: int
    startupConnect: bool
    transportMode: int
    forwardedPortCount: int
    forwardedPorts: ctypes.Array[ProtocolPortPair]
    perConnectionEncryptionEnabled: bool
    perConnectionEncryptionCount: int
    perConnectionEncryptionSettings: ctypes.Array[ConnectionEncryption]
    perConnectionParallelSocketsCount: int
    perConnectionParallelSockets: ctypes.Array[ConnectionParallelSockets]
    overflowThreshold: float
    priorityOverflowThreshold: float
    packetAggregation: bool
    enableDefaultRoute: bool
    headerCompression: bool
    language: bytes
    _fields_ = [
        ("base", BaseResult),
        ("jumboPackets", ctypes.c_bool),
        ("encrypted", ctypes.c_bool),
        ("allowChaChaEncryption", ctypes.c_bool),
        ("bondingMode", ctypes.c_uint32),
        ("startupConnect", ctypes.c_bool),
        ("transportMode", ctypes.c_uint32),
        ("forwardedPortCount", ctypes.c_uint16),
        ("forwardedPorts", ProtocolPortPair * 20),
        ("perConnectionEncryptionEnabled", ctypes.c_bool),
        ("perConnectionEncryptionCount", ctypes.c_uint16),
        ("perConnectionEncryptionSettings", ConnectionEncryption * 25),
        ("perConnectionParallelSocketsCount", ctypes.c_uint16),
        ("perConnectionParallelSockets", ConnectionParallelSockets * 25),
        ("overflowThreshold", ctypes.c_double),
        ("priorityOverflowThreshold", ctypes.c_double),
        ("packetAggregation", ctypes.c_bool),
        ("enableDefaultRoute", ctypes.c_bool),
        ("headerCompression", ctypes.c_bool),
        ("language", ctypes.c_char * 3),
    ]


class PrivacySettingsResult(ctypes.Structure):
    """The privacy settings, from report_privacy_settings."""

    base: BaseResult
    killswitch: bool
    dnsleak: bool
    ipleak: bool
    dnsAddressCount: int
    dnsAddresses: ctypes.Array[ctypes.Array[ctypes.c_char]]
    doNotStoreCredentials: bool
    _fields_ = [
        ("base", BaseResult),
        ("killswitch", ctypes.c_bool),
        ("dnsleak", ctypes.c_bool),
        ("ipleak", ctypes.c_bool),
        ("dnsAddressCount", ctypes.c_uint16),
        ("dnsAddresses", ctypes.c_char * 46 * 3),
        ("doNotStoreCredentials", ctypes.c_bool),
    ]


class CaptivePortalCheckResult(ctypes.Structure):
    """The networks behind a captive portal, from report_captive_networks."""

    base: BaseResult
    networkCount: int
    networks: ctypes.Array[ctypes.Array[ctypes.c_char]]
    _fields_ = [
        ("base", BaseResult),
        ("networkCount", ctypes.c_uint32),
        ("networks", ctypes.c_char * 100 * 25),
    ]


class CaptivePortalLoginResult(ctypes.Structure):
    """The adapter that is left out of the tunnel for a portal's login, from report_cplogin_network."""

    base: BaseResult
    enabled: bool
    adapterID: bytes
    _fields_ = [
        ("base", BaseResult),
        ("enabled", ctypes.c_bool),
        ("adapterID", ctypes.c_char * 100),
    ]


class ConnectionStats(ctypes.Structure):
    """How one bonded connection is doing."""

    inFlight: int
    inFlightWindow: int
    connected: bool
    sleeping: bool
    adapterID: bytes
    connectionID: bytes
    localIp: bytes
    lossReceive: float
    lossSend: float
    latencyMs: int
    privateIp: bytes
    protocol: int
    numberOfSockets: int
    remoteIp: bytes
    totalBps: int
    sendBps: int
    receiveBps: int
    sendEstimateMbps: float
    receiveEstimateMbps: float
    jitterMs: int
    mos: float
    _fields_ = [
        ("inFlight", ctypes.c_int64),
        ("inFlightWindow", ctypes.c_int64),
        ("connected", ctypes.c_bool),
        ("sleeping", ctypes.c_bool),
        ("adapterID", ctypes.c_char * 100),
        ("connectionID", ctypes.c_char * 100),
        ("localIp", ctypes.c_char * 46),
        ("lossReceive", ctypes.c_double),
        ("lossSend", ctypes.c_double),
        ("latencyMs", ctypes.c_int64),
        ("privateIp", ctypes.c_char * 46),
        ("protocol", ctypes.c_uint32),
        ("numberOfSockets", ctypes.c_int32),
        ("remoteIp", ctypes.c_char * 46),
        ("totalBps", ctypes.c_int64),
        ("sendBps", ctypes.c_int64),
        ("receiveBps", ctypes.c_int64),
        ("sendEstimateMbps", ctypes.c_double),
        ("receiveEstimateMbps", ctypes.c_double),
        ("jitterMs", ctypes.c_int32),
        ("mos", ctypes.c_float),
    ]


class ConnectionStatsGroup(ctypes.Structure):
    """All connections at one moment."""

    time: int
    connectionCount: int
    connections: ctypes.Array[ConnectionStats]
    _fields_ = [
        ("time", ctypes.c_uint64),
        ("connectionCount", ctypes.c_uint16),
        ("connections", ConnectionStats * 25),
    ]


class ConnectionStatsResult(ctypes.Structure):
    """From report_connection_stats."""

    base: BaseResult
    stats: ConnectionStatsGroup
    _fields_ = [
        ("base", BaseResult),
        ("stats", ConnectionStatsGroup),
    ]


class SessionStats(ctypes.Structure):
    """What was counted in one period."""

    periodHours: int
    bytesReceived: int
    bytesSent: int
    encryptedBytesReceived: int
    encryptedBytesSent: int
    maxDownloadSpeed: float
    maxUploadSpeed: float
    daysSinceFirst: int
    numFailovers: int
    numSessions: int
    retransBytes: int
    periodStartTime: int
    totalConnectedMinutes: int
    mbpsDownBenefit: float
    mbpsUpBenefit: float
    tunPacketsIn: int
    tunPacketsOut: int
    tunBytesIn: int
    tunBytesOut: int
    tunBufferWaits: int
    tunPacketWaits: int
    tunReadQueue: int
    tunDroppedIncoming: int
    handlerPacketsIn: int
    handlerPacketsOut: int
    handlerBytesIn: int
    handlerBytesOut: int
    handlerRetries: int
    captivePortalDetections: int
    captivePortalSuccesses: int
    totalFailoverSaves: int
    totalSpeedModeSaves: int
    totalRedundantModeSaves: int
    totalStreams: int
    uniqueSaves: int
    _fields_ = [
        ("periodHours", ctypes.c_uint32),
        ("bytesReceived", ctypes.c_int64),
        ("bytesSent", ctypes.c_int64),
        ("encryptedBytesReceived", ctypes.c_int64),
        ("encryptedBytesSent", ctypes.c_int64),
        ("maxDownloadSpeed", ctypes.c_double),
        ("maxUploadSpeed", ctypes.c_double),
        ("daysSinceFirst", ctypes.c_int32),
        ("numFailovers", ctypes.c_int64),
        ("numSessions", ctypes.c_int64),
        ("retransBytes", ctypes.c_int64),
        ("periodStartTime", ctypes.c_int64),
        ("totalConnectedMinutes", ctypes.c_int64),
        ("mbpsDownBenefit", ctypes.c_double),
        ("mbpsUpBenefit", ctypes.c_double),
        ("tunPacketsIn", ctypes.c_uint64),
        ("tunPacketsOut", ctypes.c_uint64),
        ("tunBytesIn", ctypes.c_uint64),
        ("tunBytesOut", ctypes.c_uint64),
        ("tunBufferWaits", ctypes.c_uint64),
        ("tunPacketWaits", ctypes.c_uint64),
        ("tunReadQueue", ctypes.c_uint64),
        ("tunDroppedIncoming", ctypes.c_uint64),
        ("handlerPacketsIn", ctypes.c_uint64),
        ("handlerPacketsOut", ctypes.c_uint64),
        ("handlerBytesIn", ctypes.c_uint64),
        ("handlerBytesOut", ctypes.c_uint64),
        ("handlerRetries", ctypes.c_uint64),
        ("captivePortalDetections", ctypes.c_uint64),
        ("captivePortalSuccesses", ctypes.c_uint64),
        ("totalFailoverSaves", ctypes.c_uint64),
        ("totalSpeedModeSaves", ctypes.c_uint64),
        ("totalRedundantModeSaves", ctypes.c_uint64),
        ("totalStreams", ctypes.c_uint64),
        ("uniqueSaves", ctypes.c_uint64),
    ]


class SessionStatsResult(ctypes.Structure):
    """From report_session_stats."""

    base: BaseResult
    periodCount: int
    periods: ctypes.Array[SessionStats]
    _fields_ = [
        ("base", BaseResult),
        ("periodCount", ctypes.c_uint16),
        ("periods", SessionStats * 5),
    ]


class StreamStats(ctypes.Structure):
    """A stream that the daemon follows."""

    active: bool
    duration: int
    id: int
    groupId: int
    startTime: int
    uploadSpeed: float
    downloadSpeed: float
    averageUploadSpeed: float
    averageDownloadSpeed: float
    redundantModeSaves: int
    speedModeSaves: int
    failoverSaves: int
    name: bytes
    health: int
    _fields_ = [
        ("active", ctypes.c_bool),
        ("duration", ctypes.c_uint64),
        ("id", ctypes.c_uint64),
        ("groupId", ctypes.c_uint64),
        ("startTime", ctypes.c_uint64),
        ("uploadSpeed", ctypes.c_double),
        ("downloadSpeed", ctypes.c_double),
        ("averageUploadSpeed", ctypes.c_double),
        ("averageDownloadSpeed", ctypes.c_double),
        ("redundantModeSaves", ctypes.c_uint64),
        ("speedModeSaves", ctypes.c_uint64),
        ("failoverSaves", ctypes.c_uint64),
        ("name", ctypes.c_char * 50),
        ("health", ctypes.c_uint32),
    ]


class StreamingStatsResult(ctypes.Structure):
    """From report_streaming_stats."""

    base: BaseResult
    bondingMode: int
    streamCount: int
    streams: ctypes.Array[StreamStats]
    badLoss: bool
    badLatency: bool
    badCpu: bool
    badMemory: bool
    _fields_ = [
        ("base", BaseResult),
        ("bondingMode", ctypes.c_uint32),
        ("streamCount", ctypes.c_uint32),
        ("streams", StreamStats * 10),
        ("badLoss", ctypes.c_bool),
        ("badLatency", ctypes.c_bool),
        ("badCpu", ctypes.c_bool),
        ("badMemory", ctypes.c_bool),
    ]


class DisconnectEventResult(ctypes.Structure):
    """From report_disconnect_reason."""

    base: BaseResult
    disconnectReason: int
    sessionEnd: int
    sessionLength: int
    _fields_ = [
        ("base", BaseResult),
        ("disconnectReason", ctypes.c_uint32),
        ("sessionEnd", ctypes.c_int64),
        ("sessionLength", ctypes.c_int64),
    ]


class SpeedTestEntry(ctypes.Structure):
    """One finished test."""

    time: int
    country: bytes
    city: bytes
    numConnections: int
    downloadSpeed: float
    uploadSpeed: float
    isError: bool
    errorMessage: bytes
    type: int
    resolution: bytes
    fps: int
    jitter: int
    latency: int
    loss: float
    _fields_ = [
        ("time", ctypes.c_int64),
        ("country", ctypes.c_char * 10),
        ("city", ctypes.c_char * 20),
        ("numConnections", ctypes.c_uint16),
        ("downloadSpeed", ctypes.c_double),
        ("uploadSpeed", ctypes.c_double),
        ("isError", ctypes.c_bool),
        ("errorMessage", ctypes.c_char * 200),
        ("type", ctypes.c_uint32),
        ("resolution", ctypes.c_char * 6),
        ("fps", ctypes.c_uint16),
        ("jitter", ctypes.c_uint16),
        ("latency", ctypes.c_uint16),
        ("loss", ctypes.c_double),
    ]


class SpeedTestResult(ctypes.Structure):
    """From report_speedtest_results."""

    base: BaseResult
    testCount: int
    tests: ctypes.Array[SpeedTestEntry]
    _fields_ = [
        ("base", BaseResult),
        ("testCount", ctypes.c_uint16),
        ("tests", SpeedTestEntry * 5),
    ]


class CreateSettings(ctypes.Structure):
    """What CreateWithSettings takes. Fill it with InitializeCreateSettings first."""

    appName: bytes
    address: bytes
    port: int
    _fields_ = [
        ("appName", ctypes.c_char * 32),
        ("address", ctypes.c_char * 46),
        ("port", ctypes.c_uint16),
    ]


class VersionResult(ctypes.Structure):
    """The daemon's version, from report_version_data; each number is cut to its low 16 bits."""

    base: BaseResult
    maj: int
    min: int
    bug: int
    build: int
    _fields_ = [
        ("base", BaseResult),
        ("maj", ctypes.c_uint16),
        ("min", ctypes.c_uint16),
        ("bug", ctypes.c_uint16),
        ("build", ctypes.c_uint16),
    ]


# Who makes one keeps it while the library may call it. Made without an argument it is null.
StateCallback = ctypes.CFUNCTYPE(ctypes.c_bool, StateResult, ctypes.c_void_p)
AdaptersCallback = ctypes.CFUNCTYPE(ctypes.c_bool, AdaptersResult, ctypes.c_void_p)
FirewallSettingsCallback = ctypes.CFUNCTYPE(ctypes.c_bool, FirewallSettingsResult, ctypes.c_void_p)
LocalProxySettingsCallback = ctypes.CFUNCTYPE(ctypes.c_bool, LocalProxySettingsResult, ctypes.c_void_p)
StreamingSettingsCallback = ctypes.CFUNCTYPE(ctypes.c_bool, StreamingSettingsResult, ctypes.c_void_p)
SafeBrowsingCallback = ctypes.CFUNCTYPE(ctypes.c_bool, SafeBrowsingResult, ctypes.c_void_p)
SafeBrowsingErrorCallback = ctypes.CFUNCTYPE(ctypes.c_bool, SafeBrowsingErrorResult, ctypes.c_void_p)
SafeBrowsingBlockCallback = ctypes.CFUNCTYPE(ctypes.c_bool, SafeBrowsingBlockResult, ctypes.c_void_p)
SafeBrowsingStatsCallback = ctypes.CFUNCTYPE(ctypes.c_bool, SafeBrowsingStatsResult, ctypes.c_void_p)
AccountingCallback = ctypes.CFUNCTYPE(ctypes.c_bool, AccountingResult, ctypes.c_void_p)
DirectoryCallback = ctypes.CFUNCTYPE(ctypes.c_bool, DirectoryResult, ctypes.c_void_p)
ConnectCallback = ctypes.CFUNCTYPE(ctypes.c_bool, ConnectResult, ctypes.c_void_p)
ServerSettingsCallback = ctypes.CFUNCTYPE(ctypes.c_bool, ServerSettingsResult, ctypes.c_void_p)
DirectorySettingsCallback = ctypes.CFUNCTYPE(ctypes.c_bool, DirectorySettingsResult, ctypes.c_void_p)
SettingsCallback = ctypes.CFUNCTYPE(ctypes.c_bool, SettingsResult, ctypes.c_void_p)
PrivacySettingsCallback = ctypes.CFUNCTYPE(ctypes.c_bool, PrivacySettingsResult, ctypes.c_void_p)
CaptivePortalCheckCallback = ctypes.CFUNCTYPE(ctypes.c_bool, CaptivePortalCheckResult, ctypes.c_void_p)
CaptivePortalLoginCallback = ctypes.CFUNCTYPE(ctypes.c_bool, CaptivePortalLoginResult, ctypes.c_void_p)
ConnectionStatsCallback = ctypes.CFUNCTYPE(ctypes.c_bool, ConnectionStatsResult, ctypes.c_void_p)
SessionStatsCallback = ctypes.CFUNCTYPE(ctypes.c_bool, SessionStatsResult, ctypes.c_void_p)
StreamingStatsCallback = ctypes.CFUNCTYPE(ctypes.c_bool, StreamingStatsResult, ctypes.c_void_p)
DisconnectEventCallback = ctypes.CFUNCTYPE(ctypes.c_bool, DisconnectEventResult, ctypes.c_void_p)
SpeedTestCallback = ctypes.CFUNCTYPE(ctypes.c_bool, SpeedTestResult, ctypes.c_void_p)
VersionCallback = ctypes.CFUNCTYPE(ctypes.c_bool, VersionResult, ctypes.c_void_p)

# The type of the result and those of the arguments.
FUNCTIONS: dict[str, tuple[Any, list[Any]]] = {
    "KelvarisSDK_AccountPaymentType_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_AddAdapterDailyDataLimitBoost": (
        AdaptersResult,
        [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_longlong, AdaptersCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_AutoConnectMethod_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_BondingMode_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_CheckForCaptivePortals": (
        CaptivePortalCheckResult,
        [ctypes.c_void_p, CaptivePortalCheckCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_ConnectAuto": (
        ConnectResult,
        [ctypes.c_void_p, ctypes.c_uint32, ConnectCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_ConnectCity": (
        ConnectResult,
        [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p, ConnectCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_ConnectCountry": (
        ConnectResult,
        [ctypes.c_void_p, ctypes.c_char_p, ConnectCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_ConnectProxy": (ConnectResult, [ctypes.c_void_p, ConnectCallback, ctypes.c_void_p]),
    "KelvarisSDK_ConnectServer": (
        ConnectResult,
        [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p, ctypes.c_int, ConnectCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_ConnectionPriority_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_ConnectionState_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_CreateWithSettings": (ctypes.c_void_p, [CreateSettings]),
    "KelvarisSDK_DaemonExit": (BaseResult, [ctypes.c_void_p]),
    "KelvarisSDK_Destroy": (None, [ctypes.c_void_p]),
    "KelvarisSDK_DisableAdapterDailyDataLimit": (
        AdaptersResult,
        [ctypes.c_void_p, ctypes.c_char_p, AdaptersCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_DisableAdapterMonthlyDataLimit": (
        AdaptersResult,
        [ctypes.c_void_p, ctypes.c_char_p, AdaptersCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_Disconnect": (StateResult, [ctypes.c_void_p, StateCallback, ctypes.c_void_p]),
    "KelvarisSDK_DisconnectReason_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_EnableStatUpdates": (
        BaseResult,
        [ctypes.c_void_p, ctypes.c_bool, ctypes.c_ubyte, ctypes.POINTER(ctypes.c_uint)],
    ),
    "KelvarisSDK_ErrorType_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_FirewallMode_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_GetAccountingData": (
        AccountingResult,
        [ctypes.c_void_p, AccountingCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_GetAdapters": (AdaptersResult, [ctypes.c_void_p, AdaptersCallback, ctypes.c_void_p]),
    "KelvarisSDK_GetConnectedServer": (ConnectResult, [ctypes.c_void_p, ConnectCallback, ctypes.c_void_p]),
    "KelvarisSDK_GetConnectionStats": (
        ConnectionStatsResult,
        [ctypes.c_void_p, ConnectionStatsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_GetDirectory": (DirectoryResult, [ctypes.c_void_p, DirectoryCallback, ctypes.c_void_p]),
    "KelvarisSDK_GetDirectorySettings": (
        DirectorySettingsResult,
        [ctypes.c_void_p, DirectorySettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_GetFirewallSettings": (
        FirewallSettingsResult,
        [ctypes.c_void_p, FirewallSettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_GetLastDisconnectEvent": (
        DisconnectEventResult,
        [ctypes.c_void_p, DisconnectEventCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_GetLocalProxySettings": (
        LocalProxySettingsResult,
        [ctypes.c_void_p, LocalProxySettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_GetPrivacySettings": (
        PrivacySettingsResult,
        [ctypes.c_void_p, PrivacySettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_GetSafeBrowsing": (
        SafeBrowsingResult,
        [ctypes.c_void_p, SafeBrowsingCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_GetSafeBrowsingStats": (
        SafeBrowsingStatsResult,
        [ctypes.c_void_p, SafeBrowsingStatsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_GetServerSettings": (
        ServerSettingsResult,
        [ctypes.c_void_p, ServerSettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_GetSessionStats": (
        SessionStatsResult,
        [ctypes.c_void_p, SessionStatsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_GetSettings": (SettingsResult, [ctypes.c_void_p, SettingsCallback, ctypes.c_void_p]),
    "KelvarisSDK_GetSpeedTestResults": (
        SpeedTestResult,
        [ctypes.c_void_p, SpeedTestCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_GetState": (StateResult, [ctypes.c_void_p, StateCallback, ctypes.c_void_p]),
    "KelvarisSDK_GetStreamingSettings": (
        StreamingSettingsResult,
        [ctypes.c_void_p, StreamingSettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_GetStreamingStats": (
        StreamingStatsResult,
        [ctypes.c_void_p, StreamingStatsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_GetVersion": (VersionResult, [ctypes.c_void_p, VersionCallback, ctypes.c_void_p]),
    "KelvarisSDK_InitSafeBrowsing": (
        SafeBrowsingResult,
        [ctypes.c_void_p, ctypes.c_char_p, SafeBrowsingCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_InitializeCreateSettings": (None, [ctypes.POINTER(CreateSettings)]),
    "KelvarisSDK_ListenForSafeBrowsingBlock": (
        SafeBrowsingBlockResult,
        [ctypes.c_void_p, SafeBrowsingBlockCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_ListenForSafeBrowsingError": (
        SafeBrowsingErrorResult,
        [ctypes.c_void_p, SafeBrowsingErrorCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_Login": (
        StateResult,
        [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p, StateCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_LoginAutoAccount": (StateResult, [ctypes.c_void_p, StateCallback, ctypes.c_void_p]),
    "KelvarisSDK_LoginOAuth": (
        StateResult,
        [ctypes.c_void_p, ctypes.c_char_p, StateCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_Logout": (StateResult, [ctypes.c_void_p, StateCallback, ctypes.c_void_p]),
    "KelvarisSDK_NetworkType_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_PortProtocol_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_RefreshSafeBrowsingToken": (
        SafeBrowsingResult,
        [ctypes.c_void_p, ctypes.c_char_p, SafeBrowsingCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_ReportSafeBrowsingHomeNetworkWithParameters": (
        SafeBrowsingResult,
        [
            ctypes.c_void_p,
            ctypes.c_uint,
            ctypes.c_ulonglong,
            ctypes.c_ulonglong,
            SafeBrowsingCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_ResetAdapterUsage": (
        AdaptersResult,
        [ctypes.c_void_p, ctypes.c_char_p, AdaptersCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_ResetConnectionRateLimit": (
        AdaptersResult,
        [ctypes.c_void_p, ctypes.c_char_p, AdaptersCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_ResetDirectoryDomain": (
        DirectorySettingsResult,
        [ctypes.c_void_p, DirectorySettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_ResetDirectoryGatewayURI": (
        DirectorySettingsResult,
        [ctypes.c_void_p, DirectorySettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SafeBrowsing_LogLevel_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_SafeBrowsing_SafeNetworkOverride_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_ServerInformationDetailed_toString": (ctypes.c_char_p, [ServerInformationDetailed]),
    "KelvarisSDK_ServerInformation_GetCityName": (ctypes.c_char_p, [ServerInformation]),
    "KelvarisSDK_ServerInformation_GetCountryName": (ctypes.c_char_p, [ServerInformation]),
    "KelvarisSDK_ServerInformation_toString": (ctypes.c_char_p, [ServerInformation]),
    "KelvarisSDK_SetAdapterDailyDataLimit": (
        AdaptersResult,
        [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_longlong, AdaptersCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetAdapterMonthlyDataLimit": (
        AdaptersResult,
        [
            ctypes.c_void_p,
            ctypes.c_char_p,
            ctypes.c_longlong,
            ctypes.c_longlong,
            AdaptersCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetAdapterOverlimitRateLimit": (
        AdaptersResult,
        [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_longlong, AdaptersCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetCaptivePortalLoginMode": (
        CaptivePortalLoginResult,
        [ctypes.c_void_p, ctypes.c_bool, ctypes.c_char_p, CaptivePortalLoginCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetConnectMethodAuto": (
        ServerSettingsResult,
        [ctypes.c_void_p, ctypes.c_uint32, ServerSettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetConnectMethodCity": (
        ServerSettingsResult,
        [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p, ServerSettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetConnectMethodCountry": (
        ServerSettingsResult,
        [ctypes.c_void_p, ctypes.c_char_p, ServerSettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetConnectMethodServer": (
        ServerSettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_char_p,
            ctypes.c_char_p,
            ctypes.c_int,
            ServerSettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetConnectionEncryption": (
        SettingsResult,
        [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_bool, SettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetConnectionPriorities": (
        AdaptersResult,
        [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_uint32, AdaptersCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetConnectionRateLimit": (
        AdaptersResult,
        [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_longlong, AdaptersCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetConnectionTransportMode": (
        SettingsResult,
        [ctypes.c_void_p, ctypes.c_uint32, SettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetDNSServers": (
        PrivacySettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_ushort,
            ctypes.POINTER(ctypes.c_char * 46),
            PrivacySettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetDirectoryDomain": (
        DirectorySettingsResult,
        [ctypes.c_void_p, ctypes.c_char_p, DirectorySettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetDirectoryGatewayURI": (
        DirectorySettingsResult,
        [ctypes.c_void_p, ctypes.c_char_p, DirectorySettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetESNIEnabled": (
        DirectorySettingsResult,
        [ctypes.c_void_p, ctypes.c_bool, DirectorySettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetEnableDefaultRoute": (
        SettingsResult,
        [ctypes.c_void_p, ctypes.c_bool, SettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetFirewallDomains": (
        FirewallSettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_ushort,
            ctypes.POINTER(ctypes.c_char * 50),
            FirewallSettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetFirewallIPv4": (
        FirewallSettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_ushort,
            ctypes.POINTER(in_addr),
            FirewallSettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetFirewallIPv6": (
        FirewallSettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_ushort,
            ctypes.POINTER(in6_addr),
            FirewallSettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetFirewallMode": (
        FirewallSettingsResult,
        [ctypes.c_void_p, ctypes.c_uint32, FirewallSettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetFirewallPorts": (
        FirewallSettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_ushort,
            ctypes.POINTER(ProtocolPortPair),
            FirewallSettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetForwardPorts": (
        SettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_ushort,
            ctypes.POINTER(ProtocolPortPair),
            SettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetHeaderCompression": (
        SettingsResult,
        [ctypes.c_void_p, ctypes.c_bool, SettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetJumboPackets": (
        SettingsResult,
        [ctypes.c_void_p, ctypes.c_bool, SettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetLocalProxyDomainWatchlistEnable": (
        LocalProxySettingsResult,
        [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_bool, LocalProxySettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetLocalProxyDomains": (
        LocalProxySettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_ushort,
            ctypes.POINTER(ctypes.c_char * 50),
            LocalProxySettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetLocalProxyEnabled": (
        LocalProxySettingsResult,
        [ctypes.c_void_p, ctypes.c_bool, LocalProxySettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetLocalProxyIPv4": (
        LocalProxySettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_ushort,
            ctypes.POINTER(in_addr),
            LocalProxySettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetLocalProxyIPv6": (
        LocalProxySettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_ushort,
            ctypes.POINTER(in6_addr),
            LocalProxySettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetLocalProxyPorts": (
        LocalProxySettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_ushort,
            ctypes.POINTER(ProtocolPortPair),
            LocalProxySettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetMode": (
        SettingsResult,
        [ctypes.c_void_p, ctypes.c_uint32, SettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetOverflowThreshold": (
        SettingsResult,
        [ctypes.c_void_p, ctypes.c_double, SettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetPacketAggregation": (
        SettingsResult,
        [ctypes.c_void_p, ctypes.c_bool, SettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetSafeBrowsingConfig": (
        SafeBrowsingResult,
        [ctypes.c_void_p, ctypes.c_char_p, SafeBrowsingCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetSafeBrowsingEnabled": (
        SafeBrowsingResult,
        [ctypes.c_void_p, ctypes.c_bool, SafeBrowsingCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetSafeBrowsingLogLevel": (
        SafeBrowsingResult,
        [ctypes.c_void_p, ctypes.c_uint32, SafeBrowsingCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetSafeBrowsingSafeNetworkOverride": (
        SafeBrowsingResult,
        [ctypes.c_void_p, ctypes.c_uint32, SafeBrowsingCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetStartupConnect": (
        SettingsResult,
        [ctypes.c_void_p, ctypes.c_bool, SettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SetStreamingDomains": (
        StreamingSettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_ushort,
            ctypes.POINTER(ctypes.c_char * 50),
            StreamingSettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetStreamingIPv4": (
        StreamingSettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_ushort,
            ctypes.POINTER(in_addr),
            StreamingSettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetStreamingIPv6": (
        StreamingSettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_ushort,
            ctypes.POINTER(in6_addr),
            StreamingSettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetStreamingPorts": (
        StreamingSettingsResult,
        [
            ctypes.c_void_p,
            ctypes.c_ushort,
            ctypes.POINTER(ProtocolPortPair),
            StreamingSettingsCallback,
            ctypes.c_void_p,
        ],
    ),
    "KelvarisSDK_SetTunnelEncrypted": (
        SettingsResult,
        [ctypes.c_void_p, ctypes.c_bool, SettingsCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_SpeedTestType_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_StartSafeBrowsing": (
        SafeBrowsingResult,
        [ctypes.c_void_p, ctypes.c_char_p, SafeBrowsingCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_StartSpeedTest": (SpeedTestResult, [ctypes.c_void_p, SpeedTestCallback, ctypes.c_void_p]),
    "KelvarisSDK_StartStreamTest": (SpeedTestResult, [ctypes.c_void_p, SpeedTestCallback, ctypes.c_void_p]),
    "KelvarisSDK_State_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_StopSafeBrowsing": (
        SafeBrowsingResult,
        [ctypes.c_void_p, SafeBrowsingCallback, ctypes.c_void_p],
    ),
    "KelvarisSDK_StreamHealth_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_TransportMode_toString": (ctypes.c_char_p, [ctypes.c_uint32]),
    "KelvarisSDK_UnregisterCallback": (None, [ctypes.c_void_p, ctypes.c_ulonglong]),
    "KelvarisSDK_UpdateSafeBrowsingExtraInfo": (
        SafeBrowsingResult,
        [ctypes.c_void_p, ctypes.c_char_p, SafeBrowsingCallback, ctypes.c_void_p],
    ),
}


def bind(library: ctypes.CDLL) -> None:
    """Gives a loaded library's functions their prototypes. AttributeError: it doesn't have one of them."""
    for name, (result, arguments) in FUNCTIONS.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = arguments
