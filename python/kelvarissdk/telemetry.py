"""
Telemetry: statistics of connections, sessions and streams, why the last session ended, speed tests.

Numbers are passed on as reported; where no note names a unit, the report doesn't tell it.
"""

# mypy: disable-error-code="empty-body"

from __future__ import annotations

from collections.abc import Iterable
from dataclasses import dataclass
from datetime import datetime, timedelta

from ._abi import DisconnectReason, SpeedTestType, StreamHealth
from ._calls import call, irregular_call, stream
from ._values import Days, Hours, Milliseconds, Minutes, NoneIfZero
from .types import BondingMode, TransportMode

__all__ = [
    "ALL_TIME",
    "CURRENT_SESSION",
    "ConnectionStats",
    "ConnectionStatsGroup",
    "ConnectionStatsResult",
    "DisconnectEventResult",
    "DisconnectReason",
    "SessionStats",
    "SessionStatsResult",
    "SpeedTestEntry",
    "SpeedTestResult",
    "SpeedTestType",
    "StreamHealth",
    "StreamStats",
    "StreamingStatsResult",
]

# Periods of the session statistics that are no number of hours.
CURRENT_SESSION = timedelta(0)
ALL_TIME = timedelta(hours=0xFFFFFFFF)


@dataclass(frozen=True, slots=True)
class ConnectionStats:
    """How one bonded connection is doing."""

    in_flight: int
    """Bytes on their way."""
    in_flight_window: int
    """Bytes that may be on their way at once."""
    connected: bool
    sleeping: bool
    adapter_id: str
    connection_id: str
    local_ip: str
    loss_receive: float
    loss_send: float
    latency_ms: Milliseconds
    private_ip: str
    protocol: TransportMode
    """AUTO: none reported."""
    number_of_sockets: int
    remote_ip: str
    total_bps: int
    """Per second; bits or bytes as reported, as are the next two."""
    send_bps: int
    receive_bps: int
    send_estimate_mbps: float
    """Mbit/s, as is the next."""
    receive_estimate_mbps: float
    jitter_ms: Milliseconds
    mos: float
    """Mean opinion score."""


@dataclass(frozen=True, slots=True)
class ConnectionStatsGroup:
    """All connections at one moment, at most 25."""

    time: NoneIfZero
    """Time stamp, unit as reported; None: none reported, and then no connections."""
    connections: tuple[ConnectionStats, ...]


@dataclass(frozen=True, slots=True)
class ConnectionStatsResult:
    """From report_connection_stats."""

    stats: ConnectionStatsGroup


@dataclass(frozen=True, slots=True)
class SessionStats:
    """What was counted in one period; without a note a number is a count."""

    period_hours: Hours
    """Or CURRENT_SESSION, or ALL_TIME."""
    bytes_received: int
    bytes_sent: int
    encrypted_bytes_received: int
    encrypted_bytes_sent: int
    max_download_speed: float
    """Mbit/s, as is the next."""
    max_upload_speed: float
    days_since_first: Days
    num_failovers: int
    num_sessions: int
    retrans_bytes: int
    period_start_time: int
    """Time stamp, unit as reported."""
    total_connected_minutes: Minutes
    mbps_down_benefit: float
    """Mbit/s: bonding's gain over the fastest connection; 0 without connections."""
    mbps_up_benefit: float
    """The same for sending."""
    tun_packets_in: int
    tun_packets_out: int
    tun_bytes_in: int
    tun_bytes_out: int
    tun_buffer_waits: int
    tun_packet_waits: int
    tun_read_queue: int
    """As reported."""
    tun_dropped_incoming: int
    handler_packets_in: int
    handler_packets_out: int
    handler_bytes_in: int
    handler_bytes_out: int
    handler_retries: int
    captive_portal_detections: int
    captive_portal_successes: int
    total_failover_saves: int
    total_speed_mode_saves: int
    total_redundant_mode_saves: int
    total_streams: int
    unique_saves: int


@dataclass(frozen=True, slots=True)
class SessionStatsResult:
    """From report_session_stats."""

    periods: tuple[SessionStats, ...]
    """At most 5, sorted by the text of their hours: 0, 168, 24."""


@dataclass(frozen=True, slots=True)
class StreamStats:
    """A stream that the daemon follows."""

    active: bool
    duration: int
    id: int
    group_id: int
    start_time: int
    """Time stamp, unit as reported."""
    upload_speed: float
    download_speed: float
    average_upload_speed: float
    average_download_speed: float
    redundant_mode_saves: int
    """A count, as are the next two."""
    speed_mode_saves: int
    failover_saves: int
    name: str
    health: StreamHealth


@dataclass(frozen=True, slots=True)
class StreamingStatsResult:
    """The streams, at most 10, and what is bad for them, from report_streaming_stats."""

    bonding_mode: BondingMode
    streams: tuple[StreamStats, ...]
    bad_loss: bool
    bad_latency: bool
    bad_cpu: bool
    bad_memory: bool


@dataclass(frozen=True, slots=True)
class DisconnectEventResult:
    """Why and when the last session ended, from report_disconnect_reason."""

    disconnect_reason: DisconnectReason
    session_end: int
    """Time stamp, unit as reported."""
    session_length: int


@dataclass(frozen=True, slots=True)
class SpeedTestEntry:
    """One finished test."""

    time: datetime | None
    """From a local time in the report, with the time zone UTC; None: none that can be read."""
    country: str
    city: str
    num_connections: int
    download_speed: float
    upload_speed: float
    is_error: bool
    """The test failed; `error_message` says why."""
    error_message: str
    type: SpeedTestType
    resolution: str
    """Of a stream test only, as are the next four."""
    fps: int
    """Frames per second."""
    jitter: int
    latency: int
    loss: float


@dataclass(frozen=True, slots=True)
class SpeedTestResult:
    """The daemon's list of tests, its first five, from report_speedtest_results."""

    tests: tuple[SpeedTestEntry, ...]


class TelemetryCalls:
    """The family's calls."""

    @irregular_call(callbacks=0)
    def enable_stat_updates(self, enable: bool, periods: Iterable[timedelta] = ()) -> None:
        """
        Asks the daemon to send its statistics at regular intervals, or no longer to do so; the subscriptions
        `connection_stats`, `session_stats` and `streaming_stats` get them. It waits for nothing: the request is queued
        when it returns.

        `periods` are those of the session statistics: whole hours, CURRENT_SESSION or ALL_TIME; at most five are sent.
        The client keeps them and enables the statistics with them again after an outage.
        """

    @call
    def get_connection_stats(self) -> ConnectionStatsResult:
        """The state of all bonded connections."""

    connection_stats = stream(get_connection_stats)

    @call
    def get_session_stats(self) -> SessionStatsResult:
        """The counters of the periods that were named to `enable_stat_updates`."""

    session_stats = stream(get_session_stats)

    @call
    def get_streaming_stats(self) -> StreamingStatsResult:
        """The streams and their health."""

    streaming_stats = stream(get_streaming_stats)

    @call
    def get_last_disconnect_event(self) -> DisconnectEventResult:
        """Why and when the last session ended."""

    last_disconnect_events = stream(get_last_disconnect_event)

    @call
    def get_speed_test_results(self) -> SpeedTestResult:
        """The daemon's list of tests."""

    speed_test_results = stream(get_speed_test_results)

    @call
    def start_speed_test(self) -> SpeedTestResult:
        """
        Measures download and upload. Ends with the newest test of the daemon's list, or with none when the list has no
        time that can be read. A test that failed raises nothing: its entry says so. The time-out is 60 seconds.
        """

    @call
    def start_stream_test(self) -> SpeedTestResult:
        """Measures how a video would stream; otherwise like `start_speed_test`. The time-out is 200 seconds."""
