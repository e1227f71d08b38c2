#include <algorithm>
#include <ctime>
#include <iomanip>
#include <iterator>
#include <locale>
#include <new>
#include <sstream>
#include <string>

#include "core.h"
#include "fields.h"
#include "kelvarissdk.h"
#include "keys.h"
#include "websockets.h"
#include "wswrapper.h"

namespace kelvarissdk {

namespace {

// A subscription names as many periods as the record of their statistics holds.
constexpr unsigned maxPeriods = std::size(KelvarisSDK_SessionStatsResult{}.periods);

// A name that is no protocol leaves the slot as an earlier report filled it.
void setProtocol(KelvarisSDK_TransportMode& protocol, Json::Value const& connection) {
    if (!connection.isMember(Keys::_protocol)) {
        protocol = KelvarisSDK_TransportMode_AUTO;
        return;
    }
    auto const named = enumFrom(connection[Keys::_protocol], KelvarisSDK_TransportMode_TCP_MULTI,
                                KelvarisSDK_TransportMode_toString);
    if (named && *named != KelvarisSDK_TransportMode_AUTO) { // "auto" is a setting and no protocol
        protocol = *named;
    }
}

void setConnection(KelvarisSDK_ConnectionStats& stats, Json::Value const& connection) {
    stats.inFlight = connection[Keys::_bInF].asInt64();
    stats.inFlightWindow = connection[Keys::_bInFL].asInt64();
    stats.connected = connection[Keys::_cnnct].asBool();
    stats.sleeping = connection[Keys::_zzz].asInt64() != 0;
    copyText(stats.adapterID, connection[Keys::_guid]);
    copyText(stats.connectionID, connection[Keys::_key]);
    copyText(stats.localIp, connection[Keys::_localIp]);
    stats.lossReceive = connection[Keys::_lsR].asDouble();
    stats.lossSend = connection[Keys::_lsS].asDouble();
    stats.latencyMs = connection[Keys::_ltMs].asInt64();
    copyText(stats.privateIp, connection[Keys::_privateIp]);
    setProtocol(stats.protocol, connection);
    stats.numberOfSockets = connection[Keys::_numConns].asInt();
    copyText(stats.remoteIp, connection[Keys::_remoteIp]);
    stats.totalBps = connection[Keys::_totBps].asInt64();
    stats.sendBps = connection[Keys::_sndBps].asInt64();
    stats.receiveBps = connection[Keys::_rcvBps].asInt64();
    stats.sendEstimateMbps = connection[Keys::_sndEstMbps].asDouble();
    stats.receiveEstimateMbps = connection[Keys::_rcvEstMbps].asDouble();
    stats.jitterMs = connection[Keys::_jtMs].asInt();
    stats.mos = static_cast<float>(connection[Keys::_mos].asDouble());
}

// A report without its time or without a list of connections is an empty group.
void setConnectionStats(KelvarisSDK_ConnectionStatsGroup& group, Json::Value const& report) {
    group.time = 0;
    group.connectionCount = 0;
    if (!report.isMember(Keys::_connections) || !report.isMember(Keys::_time)) {
        return;
    }
    group.time = report[Keys::_time].asUInt64();
    fillSlots(group.connectionCount, group.connections, report[Keys::_connections], setConnection);
}

void setConnectionStatsResult(KelvarisSDK_ConnectionStatsResult& result, Json::Value const& report) {
    setConnectionStats(result.stats, report);
}

double benefit(Json::Value const& bonding) {
    if (bonding[Keys::_num_connections].asInt() == 0) {
        return 0.0;
    }
    return bonding[Keys::_combined_mbps].asDouble() - bonding[Keys::_fastest_conn_mbps].asDouble();
}

// Counters are read with a sign and kept without one.
uint64_t counter(Json::Value const& value) {
    return static_cast<uint64_t>(value.asInt64());
}

void fillSessionStats(KelvarisSDK_SessionStats& stats, Json::Value const& period) {
    stats.bytesReceived = period[Keys::_bytes_recv].asInt64();
    stats.bytesSent = period[Keys::_bytes_sent].asInt64();
    stats.encryptedBytesReceived = period[Keys::_encrypted_bytes_recv].asInt64();
    stats.encryptedBytesSent = period[Keys::_encrypted_bytes_sent].asInt64();
    stats.maxDownloadSpeed = period[Keys::_max_download_mbps].asDouble();
    stats.maxUploadSpeed = period[Keys::_max_upload_mbps].asDouble();
    stats.daysSinceFirst = period[Keys::_days_since_first].asInt();
    stats.numFailovers = period[Keys::_num_failovers].asInt64();
    stats.numSessions = period[Keys::_num_sessions].asInt64();
    stats.retransBytes = period[Keys::_retrans_bytes].asInt64();
    stats.periodStartTime = period[Keys::_session_start_time].asInt64();
    stats.totalConnectedMinutes = period[Keys::_total_connected_minutes].asInt64();
    stats.mbpsDownBenefit = benefit(period[Keys::_down_benefit]);
    stats.mbpsUpBenefit = benefit(period[Keys::_up_benefit]);

    Json::Value const& tun = period[Keys::_tun];
    stats.tunPacketsIn = counter(tun[Keys::_packets_in]);
    stats.tunPacketsOut = counter(tun[Keys::_packets_out]);
    stats.tunBytesIn = counter(tun[Keys::_bytes_in]);
    stats.tunBytesOut = counter(tun[Keys::_bytes_out]);
    stats.tunBufferWaits = counter(tun[Keys::_buffer_waits]);
    stats.tunPacketWaits = counter(tun[Keys::_packet_waits]);
    stats.tunReadQueue = counter(tun[Keys::_read_queue]);
    stats.tunDroppedIncoming = counter(tun[Keys::_dropped_incoming]);

    Json::Value const& handler = period[Keys::_packet_handler];
    stats.handlerPacketsIn = counter(handler[Keys::_packets_in]);
    stats.handlerPacketsOut = counter(handler[Keys::_packets_out]);
    stats.handlerBytesIn = counter(handler[Keys::_bytes_in]);
    stats.handlerBytesOut = counter(handler[Keys::_bytes_out]);
    stats.handlerRetries = counter(handler[Keys::_retries]);

    Json::Value const& captivePortal = period[Keys::_cp_benefit];
    stats.captivePortalDetections = counter(captivePortal[Keys::_cp_detect]);
    stats.captivePortalSuccesses = counter(captivePortal[Keys::_cp_success]);

    Json::Value const& streaming = period[Keys::_streaming];
    stats.totalFailoverSaves = streaming[Keys::_total_failover_saves].asUInt64();
    stats.totalSpeedModeSaves = streaming[Keys::_total_speed_saves].asUInt64();
    stats.totalRedundantModeSaves = streaming[Keys::_total_redundant_saves].asUInt64();
    stats.totalStreams = streaming[Keys::_total_streams].asUInt64();
    stats.uniqueSaves = streaming[Keys::_unique_saves].asUInt64();
}

// The report is an object: each member's name is a period's hours, and names are sorted as text.
void setSessionStatsResult(KelvarisSDK_SessionStatsResult& result, Json::Value const& report) {
    result.periodCount = 0;
    for (std::string const& name : report.getMemberNames()) {
        if (result.periodCount == std::size(result.periods)) {
            break;
        }
        KelvarisSDK_SessionStats& stats = result.periods[result.periodCount];
        stats.periodHours = static_cast<uint32_t>(std::stoul(name));
        fillSessionStats(stats, report[name]);
        ++result.periodCount;
    }
}

KelvarisSDK_StreamHealth streamHealthFrom(int number) {
    switch (number) {
    case 1:
        return KelvarisSDK_StreamHealth_POOR;
    case 2:
        return KelvarisSDK_StreamHealth_GOOD;
    default:
        return KelvarisSDK_StreamHealth_STOPPED;
    }
}

void setStream(KelvarisSDK_StreamStats& stats, Json::Value const& stream) {
    stats.active = stream[Keys::_active].asBool();
    stats.duration = stream[Keys::_duration].asUInt64();
    stats.id = stream[Keys::_id].asUInt64();
    stats.groupId = stream[Keys::_group_id].asUInt64();
    stats.startTime = stream[Keys::_start_time].asUInt64();
    stats.uploadSpeed = stream[Keys::_upload_speed].asDouble();
    stats.downloadSpeed = stream[Keys::_download_speed].asDouble();
    stats.averageUploadSpeed = stream[Keys::_average_upload_speed].asDouble();
    stats.averageDownloadSpeed = stream[Keys::_average_download_speed].asDouble();
    stats.redundantModeSaves = stream[Keys::_redundant_saves].asUInt64();
    stats.speedModeSaves = stream[Keys::_speed_saves].asUInt64();
    stats.failoverSaves = stream[Keys::_failover_saves].asUInt64();
    copyText(stats.name, stream[Keys::_name]);
    stats.health = streamHealthFrom(stream[Keys::_health].asInt());
}

void setStreamingStatsResult(KelvarisSDK_StreamingStatsResult& result, Json::Value const& report) {
    result.bondingMode = bondingModeFrom(report[Keys::_bonding_mode]);
    result.streamCount = 0;
    result.badLoss = report[Keys::_badLoss].asBool();
    result.badLatency = report[Keys::_badLatency].asBool();
    result.badCpu = report[Keys::_badCpu].asBool();
    result.badMemory = report[Keys::_badMemory].asBool();
    fillSlots(result.streamCount, result.streams, report[Keys::_streams], setStream);
}

KelvarisSDK_DisconnectReason disconnectReasonFromString(Json::Value const& text) {
    return enumFrom(text, KelvarisSDK_DisconnectReason_SAFENETWORK, KelvarisSDK_DisconnectReason_toString)
        .value_or(KelvarisSDK_DisconnectReason_UNKNOWN);
}

void setDisconnectEventResult(KelvarisSDK_DisconnectEventResult& result, Json::Value const& event) {
    result.disconnectReason = disconnectReasonFromString(event[Keys::_disconnectReason]);
    result.sessionEnd = event[Keys::_sessionEnd].asInt64();
    result.sessionLength = event[Keys::_sessionLength].asInt64();
}

// Reads a local time. What stands behind the seconds isn't looked at; a text that lacks a part of the format is 0,
// and so is a time before the epoch.
int64_t testTime(std::string const& text) {
    std::tm time{};
    time.tm_isdst = -1;
    time.tm_sec = -1; // a text that ends early doesn't fail the stream, but leaves this one unread
    std::istringstream stream(text);
    stream.imbue(std::locale::classic()); // the program's locale must not change what a date is
    stream >> std::get_time(&time, "%Y-%m-%dT%H:%M:%S");
    if (stream.bad()) {
        throw std::bad_alloc(); // a stream keeps it to itself
    }
    if (stream.fail() || time.tm_sec < 0) {
        return 0;
    }
    return std::max<int64_t>(std::mktime(&time), 0);
}

void setSpeedTest(KelvarisSDK_SpeedTestEntry& entry, int64_t time, Json::Value const& test) {
    unsigned const type = test[Keys::_type].asUInt();
    entry.time = time;
    copyText(entry.country, test[Keys::_country]);
    copyText(entry.city, test[Keys::_city]);
    entry.numConnections = static_cast<uint16_t>(test[Keys::_num_connections].asInt());
    entry.downloadSpeed = test[Keys::_download].asDouble();
    entry.uploadSpeed = test[Keys::_upload].asDouble();
    entry.isError = test[Keys::_error].asBool();
    copyText(entry.errorMessage, test[Keys::_msg]);
    entry.type = type == 2 ? KelvarisSDK_SpeedTestType_STREAMING : KelvarisSDK_SpeedTestType_SPEED;
    entry.latency = static_cast<uint16_t>(test[Keys::_latency].asUInt());
    if (type == 2) {
        copyText(entry.resolution, test[Keys::_resolution]);
        entry.fps = static_cast<uint16_t>(test[Keys::_fps].asUInt());
        entry.jitter = static_cast<uint16_t>(test[Keys::_jitter].asUInt());
        entry.loss = test[Keys::_loss].asDouble();
    }
}

// Keeps all tests that fit, or the newest alone, which is the last of several that are equally new. Without a time
// that can be read there is no newest one.
void setSpeedTestResults(KelvarisSDK_SpeedTestResult& result, Json::Value const& tests, bool onlyLatest) {
    result.testCount = 0;
    int64_t latest = 0;
    for (Json::Value const& test : tests) {
        int64_t const time = testTime(test[Keys::_time].asString());
        if (onlyLatest && time < latest) {
            continue;
        }
        latest = time;
        setSpeedTest(result.tests[result.testCount], time, test);
        if (!onlyLatest && ++result.testCount == std::size(result.tests)) {
            return;
        }
    }
    if (onlyLatest && latest != 0) {
        result.testCount = 1;
    }
}

void setAllTests(KelvarisSDK_SpeedTestResult& result, Json::Value const& tests) {
    setSpeedTestResults(result, tests, false);
}

void setLatestTest(KelvarisSDK_SpeedTestResult& result, Json::Value const& tests) {
    setSpeedTestResults(result, tests, true);
}

Exchange testWithin(char const* request, uint64_t timeoutMs) {
    return {.requests = {{request}}, .awaited = {{"report_speedtest_results"}}, .timeoutMs = timeoutMs};
}

} // namespace

// Nobody answers this request. The lock is held until it is queued, so that the last of several calls is also the
// last that the daemon hears of.
KelvarisSDK_BaseResult KelvarisSDK::enableStatUpdates(bool enable, unsigned char periodCount,
                                                      unsigned int* periods) {
    KelvarisSDK_BaseResult result{};
    if (!websocket) {
        noWebsocketImplementation(&result);
        return result;
    }
    if (enable && periodCount > 0 && periods == nullptr) {
        invalidArgument(&result);
        return result;
    }
    std::lock_guard const lock(statsLock);
    if (enable && !startStatsThread()) {
        setSdkError(&result);
        return result;
    }
    sendStatSubscription(enable, periodCount, periods);
    return result;
}

void KelvarisSDK::sendStatSubscription(bool enable, unsigned char periodCount, unsigned int const* periods) {
    Json::Value payload;
    payload[Keys::_enable] = enable;
    if (enable && periodCount != 0) {
        Json::Value& list = payload[Keys::_periods] = Json::arrayValue;
        for (unsigned i = 0; i < std::min<unsigned>(periodCount, maxPeriods); ++i) {
            list.append(periods[i]);
        }
    }
    websocket->sendRequest("stat_subscribe", payload);
    statsEnabled = enable;
    statsChanged.notify_all();
}

KelvarisSDK_ConnectionStatsResult
KelvarisSDK::getConnectionStats(KelvarisSDK_ConnectionStatsCallback callback, void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_connection_stats", "report_connection_stats"),
                                 setConnectionStatsResult);
}

KelvarisSDK_SessionStatsResult KelvarisSDK::getSessionStats(KelvarisSDK_SessionStatsCallback callback,
                                                            void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_session_stats", "report_session_stats"),
                                 setSessionStatsResult);
}

KelvarisSDK_StreamingStatsResult KelvarisSDK::getStreamingStats(KelvarisSDK_StreamingStatsCallback callback,
                                                                void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_streaming_stats", "report_streaming_stats"),
                                 setStreamingStatsResult);
}

KelvarisSDK_DisconnectEventResult
KelvarisSDK::getLastDisconnectEvent(KelvarisSDK_DisconnectEventCallback callback, void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_disconnect_reason", "report_disconnect_reason"),
                                 setDisconnectEventResult);
}

KelvarisSDK_SpeedTestResult KelvarisSDK::getSpeedTestResults(KelvarisSDK_SpeedTestCallback callback,
                                                             void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_speedtest_results", "report_speedtest_results"), setAllTests);
}

KelvarisSDK_SpeedTestResult KelvarisSDK::startSpeedTest(KelvarisSDK_SpeedTestCallback callback,
                                                        void* userData) {
    return wsNonSubscriptionWrapper(callback, userData, websocket, testWithin("speedtest", 60000),
                                    setLatestTest);
}

KelvarisSDK_SpeedTestResult KelvarisSDK::startStreamTest(KelvarisSDK_SpeedTestCallback callback,
                                                         void* userData) {
    return wsNonSubscriptionWrapper(callback, userData, websocket, testWithin("streamtest", 200000),
                                    setLatestTest);
}

} // namespace kelvarissdk
