#include "jsonprinter.h"

#include <cstdint>
#include <string>

#include "periods.h"
#include "recordtext.h"

namespace {

using ConnectionRecord = KelvarisSDK_ConnectionStatsResult;

Json::Value connectionDocument(ConnectionRecord const& result, KelvarisSDK_ConnectionStats const& stats) {
    Json::Value document;
    document["inFlight"] = stats.inFlight;
    document["inFlightWindow"] = stats.inFlightWindow;
    document["connected"] = stats.connected;
    document["sleeping"] = stats.sleeping;
    document["adapterID"] = recordText(result, stats.adapterID);
    document["connectionID"] = recordText(result, stats.connectionID);
    document["lossReceive"] = stats.lossReceive;
    document["lossSend"] = stats.lossSend;
    document["latencyMs"] = stats.latencyMs;
    document["totalBps"] = stats.totalBps;
    return document;
}

void addDetails(Json::Value& document, ConnectionRecord const& result,
                KelvarisSDK_ConnectionStats const& stats) {
    document["localIp"] = recordText(result, stats.localIp);
    document["privateIp"] = recordText(result, stats.privateIp);
    document["protocol"] = KelvarisSDK_TransportMode_toString(stats.protocol);
    document["numberOfSockets"] = static_cast<uint32_t>(stats.numberOfSockets);
    document["remoteIp"] = recordText(result, stats.remoteIp);
    document["sendBps"] = stats.sendBps;
    document["receiveBps"] = stats.receiveBps;
    document["sendEstimateMbps"] = stats.sendEstimateMbps;
    document["receiveEstimateMbps"] = stats.receiveEstimateMbps;
    document["jitterMs"] = static_cast<uint32_t>(stats.jitterMs);
    document["mos"] = static_cast<double>(stats.mos);
}

std::string periodKey(uint32_t hours) {
    for (NamedPeriod const& period : namedPeriods) {
        if (period.hours == hours) {
            return period.name;
        }
    }
    return std::to_string(hours);
}

void printSessionStatsMember(Json::Value& target, KelvarisSDK_SessionStats const& stats) {
    target["bytesReceived"] = stats.bytesReceived;
    target["bytesSent"] = stats.bytesSent;
    target["encryptedBytesReceived"] = stats.encryptedBytesReceived;
    target["encryptedBytesSent"] = stats.encryptedBytesSent;
    target["maxDownloadSpeed"] = stats.maxDownloadSpeed;
    target["maxUploadSpeed"] = stats.maxUploadSpeed;
    target["daysSinceFirst"] = stats.daysSinceFirst;
    target["numFailovers"] = stats.numFailovers;
    target["numSessions"] = stats.numSessions;
    target["retransBytes"] = stats.retransBytes;
    target["periodStartTime"] = stats.periodStartTime;
    target["totalConnectedMinutes"] = stats.totalConnectedMinutes;
    target["mbpsDownBenefit"] = stats.mbpsDownBenefit;
    target["mbpsUpBenefit"] = stats.mbpsUpBenefit;

    Json::Value& tun = target["tun"];
    tun["packetsIn"] = stats.tunPacketsIn;
    tun["packetsOut"] = stats.tunPacketsOut;
    tun["bytesIn"] = stats.tunBytesIn;
    tun["bytesOut"] = stats.tunBytesOut;
    tun["bufferWaits"] = stats.tunBufferWaits;
    tun["packetWaits"] = stats.tunPacketWaits;
    tun["readQueue"] = stats.tunReadQueue;
    tun["droppedIncoming"] = stats.tunDroppedIncoming;

    Json::Value& handler = target["packetHandler"];
    handler["packetsIn"] = stats.handlerPacketsIn;
    handler["packetsOut"] = stats.handlerPacketsOut;
    handler["bytesIn"] = stats.handlerBytesIn;
    handler["bytesOut"] = stats.handlerBytesOut;
    handler["retries"] = stats.handlerRetries;

    Json::Value& captivePortal = target["captivePortal"];
    captivePortal["detections"] = stats.captivePortalDetections;
    captivePortal["successes"] = stats.captivePortalSuccesses;

    Json::Value& streaming = target["streaming"];
    streaming["totalFailoverSaves"] = stats.totalFailoverSaves;
    streaming["totalSpeedModeSaves"] = stats.totalSpeedModeSaves;
    streaming["totalRedundantModeSaves"] = stats.totalRedundantModeSaves;
    streaming["totalStreams"] = stats.totalStreams;
    streaming["uniqueSaves"] = stats.uniqueSaves;
}

Json::Value streamStatsDocument(KelvarisSDK_StreamingStatsResult const& result,
                                KelvarisSDK_StreamStats const& stats) {
    Json::Value document;
    document["active"] = stats.active;
    document["duration"] = stats.duration;
    document["id"] = stats.id;
    document["groupId"] = stats.groupId;
    document["startTime"] = stats.startTime;
    document["uploadSpeed"] = stats.uploadSpeed;
    document["downloadSpeed"] = stats.downloadSpeed;
    document["averageUploadSpeed"] = stats.averageUploadSpeed;
    document["averageDownloadSpeed"] = stats.averageDownloadSpeed;
    document["redundantModeSaves"] = stats.redundantModeSaves;
    document["speedModeSaves"] = stats.speedModeSaves;
    document["failoverSaves"] = stats.failoverSaves;
    document["name"] = recordText(result, stats.name);
    document["health"] = KelvarisSDK_StreamHealth_toString(stats.health);
    return document;
}

// A failed test has measured nothing, so its message stands in the place of the measures.
Json::Value testDocument(KelvarisSDK_SpeedTestResult const& result, KelvarisSDK_SpeedTestEntry const& test) {
    Json::Value document;
    document["time"] = test.time;
    document["isError"] = test.isError;
    document["country"] = recordText(result, test.country);
    document["city"] = recordText(result, test.city);
    document["numConnections"] = test.numConnections;
    document["latency"] = test.latency;
    document["type"] = KelvarisSDK_SpeedTestType_toString(test.type);
    if (test.isError) {
        document["errorMessage"] = recordText(result, test.errorMessage);
        return document;
    }
    document["downloadSpeed"] = test.downloadSpeed;
    document["uploadSpeed"] = test.uploadSpeed;
    if (test.type == KelvarisSDK_SpeedTestType_STREAMING) {
        document["resolution"] = recordText(result, test.resolution);
        document["fps"] = test.fps;
        document["jitter"] = test.jitter;
        document["loss"] = test.loss;
    }
    return document;
}

} // namespace

void printConnectionStatsResult(KelvarisSDK_ConnectionStatsResult const& result, bool briefOutput) {
    Json::Value document;
    document["time"] = result.stats.time;
    Json::Value& connections = document["connections"] = Json::arrayValue;
    for (unsigned i = 0; i < result.stats.connectionCount; ++i) {
        KelvarisSDK_ConnectionStats const& stats = result.stats.connections[i];
        Json::Value& connection = connections.append(connectionDocument(result, stats));
        if (!briefOutput) {
            addDetails(connection, result, stats);
        }
    }
    writeDocument(document);
}

// Without any period the document is null.
void printSessionStatsResult(KelvarisSDK_SessionStatsResult const& result) {
    Json::Value document;
    for (unsigned i = 0; i < result.periodCount; ++i) {
        printSessionStatsMember(document[periodKey(result.periods[i].periodHours)], result.periods[i]);
    }
    writeDocument(document);
}

void printStreamingStatsResult(KelvarisSDK_StreamingStatsResult const& result) {
    Json::Value document;
    document["bondingMode"] = KelvarisSDK_BondingMode_toString(result.bondingMode);
    document["badLoss"] = result.badLoss;
    document["badLatency"] = result.badLatency;
    document["badCpu"] = result.badCpu;
    document["badMemory"] = result.badMemory;
    Json::Value& streams = document["streams"] = Json::arrayValue;
    for (unsigned i = 0; i < result.streamCount; ++i) {
        streams.append(streamStatsDocument(result, result.streams[i]));
    }
    writeDocument(document);
}

void printDisconnectEvent(KelvarisSDK_DisconnectEventResult const& result) {
    Json::Value document;
    document["disconnectReason"] = KelvarisSDK_DisconnectReason_toString(result.disconnectReason);
    writeDocument(document);
}

void printSpeedTestResult(KelvarisSDK_SpeedTestResult const& result) {
    Json::Value document(Json::arrayValue);
    for (unsigned i = 0; i < result.testCount; ++i) {
        document.append(testDocument(result, result.tests[i]));
    }
    writeDocument(document);
}
