/*
 * Telemetry: statistics of connections, sessions and streams, why the last session ended, speed tests.
 *
 * Where no note names a unit, it is as the daemon reports it.
 *
 * Include kelvarissdk.hpp; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_CPP_TELEMETRY_HPP
#define KELVARISSDK_CPP_TELEMETRY_HPP

#include <kelvarissdk/cpp/lists.hpp>

namespace kelvaris {

/** How a stream is doing. */
enum class StreamHealth : std::uint32_t { STOPPED, POOR, GOOD, UNKNOWN = 0xFFFFFFFF };

/** Why a session ended. */
enum class DisconnectReason : std::uint32_t {
    UNKNOWN,
    CONNECTIVITY,
    AIRPLANE,
    REBOOT,
    UPDATE,
    CRASH,
    SLEEP,
    USERINITIATED,
    TORRENT,
    SERVICESTOP,
    STARTTIMEOUT,
    INACTIVETIMEOUT,
    SETTINGCHANGERECONNECT,
    DNSTIMEOUT,
    TUNNELTIMEOUT,
    OVERQUOTA,
    SAFENETWORK,
};

/** What a test measured. */
enum class SpeedTestType : std::uint32_t { SPEED, STREAMING, UNKNOWN = 0xFFFFFFFF };

inline char const* toString(StreamHealth value) {
    return KelvarisSDK_StreamHealth_toString(detail::passed(value));
}
inline char const* toString(DisconnectReason value) {
    return KelvarisSDK_DisconnectReason_toString(detail::passed(value));
}
inline char const* toString(SpeedTestType value) {
    return KelvarisSDK_SpeedTestType_toString(detail::passed(value));
}

/** How one bonded connection is doing. */
struct ConnectionStats {
    std::int64_t inFlight = 0;       /**< bytes on their way */
    std::int64_t inFlightWindow = 0; /**< bytes that may be on their way at once */
    bool connected = false;
    bool sleeping = false;
    std::string adapterID;
    std::string connectionID;
    std::string localIp;
    double lossReceive = 0; /**< ratio from 0 to 1, as is the next */
    double lossSend = 0;
    std::chrono::milliseconds latencyMs{};
    std::string privateIp;
    TransportMode protocol = TransportMode::AUTO;
    std::int32_t numberOfSockets = 0;
    std::string remoteIp;
    std::int64_t totalBps = 0; /**< bits per second, as are the next two */
    std::int64_t sendBps = 0;
    std::int64_t receiveBps = 0;
    double sendEstimateMbps = 0;
    double receiveEstimateMbps = 0;
    std::chrono::milliseconds jitterMs{};
    float mos = 0; /**< mean opinion score */

    static ConnectionStats from(KelvarisSDK_ConnectionStats const& record) {
        ConnectionStats value;
        value.inFlight = record.inFlight;
        value.inFlightWindow = record.inFlightWindow;
        value.connected = record.connected;
        value.sleeping = record.sleeping;
        value.adapterID = detail::text(record.adapterID);
        value.connectionID = detail::text(record.connectionID);
        value.localIp = detail::text(record.localIp);
        value.lossReceive = record.lossReceive;
        value.lossSend = record.lossSend;
        value.latencyMs = std::chrono::milliseconds(record.latencyMs);
        value.privateIp = detail::text(record.privateIp);
        value.protocol = detail::known(record.protocol, TransportMode::TCP_MULTI);
        value.numberOfSockets = record.numberOfSockets;
        value.remoteIp = detail::text(record.remoteIp);
        value.totalBps = record.totalBps;
        value.sendBps = record.sendBps;
        value.receiveBps = record.receiveBps;
        value.sendEstimateMbps = record.sendEstimateMbps;
        value.receiveEstimateMbps = record.receiveEstimateMbps;
        value.jitterMs = std::chrono::milliseconds(record.jitterMs);
        value.mos = record.mos;
        return value;
    }
};

/** All connections at one moment. */
struct ConnectionStatsResult {
    using Record = KelvarisSDK_ConnectionStatsResult;
    std::optional<std::uint64_t> time; /**< milliseconds since the epoch; none: and then no connections */
    std::vector<ConnectionStats> connections;

    static ConnectionStatsResult from(Record const& record) {
        return {detail::unless(std::uint64_t{0}, record.stats.time),
                detail::values<ConnectionStats>(record.stats.connections, record.stats.connectionCount)};
    }
};

/** Periods of the session statistics that are no number of hours. */
inline constexpr std::chrono::hours currentSession{0};
inline constexpr std::chrono::hours allTime{0xFFFFFFFF};

/** What was counted in one period; without a note a number is a count. */
struct SessionStats {
    std::chrono::hours periodHours{}; /**< or currentSession, or allTime */
    std::int64_t bytesReceived = 0;
    std::int64_t bytesSent = 0;
    std::int64_t encryptedBytesReceived = 0;
    std::int64_t encryptedBytesSent = 0;
    double maxDownloadSpeed = 0; /**< Mbit/s */
    double maxUploadSpeed = 0;   /**< Mbit/s */
    Days daysSinceFirst{};
    std::int64_t numFailovers = 0;
    std::int64_t numSessions = 0;
    std::int64_t retransBytes = 0;
    std::int64_t periodStartTime = 0; /**< milliseconds since the epoch */
    std::chrono::minutes totalConnectedMinutes{};
    double mbpsDownBenefit = 0; /**< Mbit/s: bonding's gain over the fastest connection */
    double mbpsUpBenefit = 0;
    std::uint64_t tunPacketsIn = 0;
    std::uint64_t tunPacketsOut = 0;
    std::uint64_t tunBytesIn = 0;
    std::uint64_t tunBytesOut = 0;
    std::uint64_t tunBufferWaits = 0;
    std::uint64_t tunPacketWaits = 0;
    std::uint64_t tunReadQueue = 0;
    std::uint64_t tunDroppedIncoming = 0;
    std::uint64_t handlerPacketsIn = 0;
    std::uint64_t handlerPacketsOut = 0;
    std::uint64_t handlerBytesIn = 0;
    std::uint64_t handlerBytesOut = 0;
    std::uint64_t handlerRetries = 0;
    std::uint64_t captivePortalDetections = 0;
    std::uint64_t captivePortalSuccesses = 0;
    std::uint64_t totalFailoverSaves = 0;
    std::uint64_t totalSpeedModeSaves = 0;
    std::uint64_t totalRedundantModeSaves = 0;
    std::uint64_t totalStreams = 0;
    std::uint64_t uniqueSaves = 0;

    static SessionStats from(KelvarisSDK_SessionStats const& record) {
        SessionStats value;
        value.periodHours = std::chrono::hours(record.periodHours);
        value.bytesReceived = record.bytesReceived;
        value.bytesSent = record.bytesSent;
        value.encryptedBytesReceived = record.encryptedBytesReceived;
        value.encryptedBytesSent = record.encryptedBytesSent;
        value.maxDownloadSpeed = record.maxDownloadSpeed;
        value.maxUploadSpeed = record.maxUploadSpeed;
        value.daysSinceFirst = Days(record.daysSinceFirst);
        value.numFailovers = record.numFailovers;
        value.numSessions = record.numSessions;
        value.retransBytes = record.retransBytes;
        value.periodStartTime = record.periodStartTime;
        value.totalConnectedMinutes = std::chrono::minutes(record.totalConnectedMinutes);
        value.mbpsDownBenefit = record.mbpsDownBenefit;
        value.mbpsUpBenefit = record.mbpsUpBenefit;
        value.tunPacketsIn = record.tunPacketsIn;
        value.tunPacketsOut = record.tunPacketsOut;
        value.tunBytesIn = record.tunBytesIn;
        value.tunBytesOut = record.tunBytesOut;
        value.tunBufferWaits = record.tunBufferWaits;
        value.tunPacketWaits = record.tunPacketWaits;
        value.tunReadQueue = record.tunReadQueue;
        value.tunDroppedIncoming = record.tunDroppedIncoming;
        value.handlerPacketsIn = record.handlerPacketsIn;
        value.handlerPacketsOut = record.handlerPacketsOut;
        value.handlerBytesIn = record.handlerBytesIn;
        value.handlerBytesOut = record.handlerBytesOut;
        value.handlerRetries = record.handlerRetries;
        value.captivePortalDetections = record.captivePortalDetections;
        value.captivePortalSuccesses = record.captivePortalSuccesses;
        value.totalFailoverSaves = record.totalFailoverSaves;
        value.totalSpeedModeSaves = record.totalSpeedModeSaves;
        value.totalRedundantModeSaves = record.totalRedundantModeSaves;
        value.totalStreams = record.totalStreams;
        value.uniqueSaves = record.uniqueSaves;
        return value;
    }
};

/** The counters of the periods. */
struct SessionStatsResult {
    using Record = KelvarisSDK_SessionStatsResult;
    std::vector<SessionStats> periods; /**< sorted by the text of their hours: 0, 168, 24 */

    static SessionStatsResult from(Record const& record) {
        return {detail::values<SessionStats>(record.periods, record.periodCount)};
    }
};

/** A stream that the daemon follows. */
struct StreamStats {
    bool active = false;
    std::uint64_t duration = 0; /**< milliseconds */
    std::uint64_t id = 0;
    std::uint64_t groupId = 0;
    std::uint64_t startTime = 0; /**< milliseconds since the epoch */
    double uploadSpeed = 0;      /**< Mbit/s, as are the next three */
    double downloadSpeed = 0;
    double averageUploadSpeed = 0;
    double averageDownloadSpeed = 0;
    std::uint64_t redundantModeSaves = 0; /**< a count, as are the next two */
    std::uint64_t speedModeSaves = 0;
    std::uint64_t failoverSaves = 0;
    std::string name;
    StreamHealth health = StreamHealth::STOPPED;

    static StreamStats from(KelvarisSDK_StreamStats const& record) {
        StreamStats value;
        value.active = record.active;
        value.duration = record.duration;
        value.id = record.id;
        value.groupId = record.groupId;
        value.startTime = record.startTime;
        value.uploadSpeed = record.uploadSpeed;
        value.downloadSpeed = record.downloadSpeed;
        value.averageUploadSpeed = record.averageUploadSpeed;
        value.averageDownloadSpeed = record.averageDownloadSpeed;
        value.redundantModeSaves = record.redundantModeSaves;
        value.speedModeSaves = record.speedModeSaves;
        value.failoverSaves = record.failoverSaves;
        value.name = detail::text(record.name);
        value.health = detail::known(record.health, StreamHealth::GOOD);
        return value;
    }
};

/** The streams and what is bad for them. */
struct StreamingStatsResult {
    using Record = KelvarisSDK_StreamingStatsResult;
    BondingMode bondingMode = BondingMode::SPEED;
    std::vector<StreamStats> streams;
    bool badLoss = false;
    bool badLatency = false;
    bool badCpu = false;
    bool badMemory = false;

    static StreamingStatsResult from(Record const& record) {
        return {detail::known(record.bondingMode, BondingMode::STREAMING),
                detail::values<StreamStats>(record.streams, record.streamCount),
                record.badLoss,
                record.badLatency,
                record.badCpu,
                record.badMemory};
    }
};

/** Why and when the last session ended. */
struct DisconnectEventResult {
    using Record = KelvarisSDK_DisconnectEventResult;
    DisconnectReason disconnectReason = DisconnectReason::UNKNOWN;
    std::int64_t sessionEnd = 0; /**< time stamp */
    std::int64_t sessionLength = 0;

    static DisconnectEventResult from(Record const& record) {
        return {detail::known(record.disconnectReason, DisconnectReason::SAFENETWORK), record.sessionEnd,
                record.sessionLength};
    }
};

/** One finished test. */
struct SpeedTestEntry {
    std::optional<std::chrono::system_clock::time_point> time; /**< none that can be read: no value */
    std::string country;
    std::string city;
    std::uint16_t numConnections = 0;
    double downloadSpeed = 0;
    double uploadSpeed = 0;
    bool isError = false; /**< the test failed; `errorMessage` says why */
    std::string errorMessage;
    SpeedTestType type = SpeedTestType::SPEED;
    std::string resolution; /**< this and the next four: of a stream test only */
    std::uint16_t fps = 0;
    std::uint16_t jitter = 0;
    std::uint16_t latency = 0;
    double loss = 0;

    static SpeedTestEntry from(KelvarisSDK_SpeedTestEntry const& record) {
        SpeedTestEntry value;
        if (record.time != 0) {
            value.time = std::chrono::system_clock::from_time_t(record.time);
        }
        value.country = detail::text(record.country);
        value.city = detail::text(record.city);
        value.numConnections = record.numConnections;
        value.downloadSpeed = record.downloadSpeed;
        value.uploadSpeed = record.uploadSpeed;
        value.isError = record.isError;
        value.errorMessage = detail::text(record.errorMessage);
        value.type = detail::known(record.type, SpeedTestType::STREAMING);
        value.resolution = detail::text(record.resolution);
        value.fps = record.fps;
        value.jitter = record.jitter;
        value.latency = record.latency;
        value.loss = record.loss;
        return value;
    }
};

/** The daemon's list of tests. */
struct SpeedTestResult {
    using Record = KelvarisSDK_SpeedTestResult;
    std::vector<SpeedTestEntry> tests;

    static SpeedTestResult from(Record const& record) {
        return {detail::values<SpeedTestEntry>(record.tests, record.testCount)};
    }
};

/** The family's calls. */
class TelemetryCalls : public ListsCalls {
public:
    /** The client keeps the periods and enables statistics with them again after an outage; see 6 in kelvarissdk.hpp. */
    Call<Done> enableStatUpdates(bool enable, std::vector<std::chrono::hours> const& periods = {}) const {
        std::vector<unsigned> hours;
        for (std::size_t i = 0; i < std::min<std::size_t>(periods.size(), 5); ++i) {
            hours.push_back(static_cast<unsigned>(periods[i].count()));
        }
        auto const start = [own = core, enable, hours](KelvarisSDK_Handle* handle, auto, void*) {
            own->wantStatistics(enable, hours);
            auto given = hours; // the C interface takes it without const
            return KelvarisSDK_EnableStatUpdates(handle, enable, static_cast<unsigned char>(given.size()),
                                                 given.data());
        };
        return {core, atOnce, start};
    }
    StreamCall<ConnectionStatsResult> getConnectionStats() const {
        return stream<ConnectionStatsResult, KelvarisSDK_GetConnectionStats>(statistics);
    }
    StreamCall<SessionStatsResult> getSessionStats() const {
        return stream<SessionStatsResult, KelvarisSDK_GetSessionStats>(statistics);
    }
    StreamCall<StreamingStatsResult> getStreamingStats() const {
        return stream<StreamingStatsResult, KelvarisSDK_GetStreamingStats>(statistics);
    }

    StreamCall<DisconnectEventResult> getLastDisconnectEvent() const {
        return stream<DisconnectEventResult, KelvarisSDK_GetLastDisconnectEvent>();
    }
    StreamCall<SpeedTestResult> getSpeedTestResults() const {
        return stream<SpeedTestResult, KelvarisSDK_GetSpeedTestResults>();
    }
    Call<SpeedTestResult> startSpeedTest() const {
        return call<SpeedTestResult, KelvarisSDK_StartSpeedTest>();
    }
    Call<SpeedTestResult> startStreamTest() const {
        return call<SpeedTestResult, KelvarisSDK_StartStreamTest>();
    }

protected:
    using ListsCalls::ListsCalls;

private:
    static constexpr detail::Traits statistics{true, true, 1};
};

} // namespace kelvaris

#endif
