#include "document.h"
#include "text.h"

#include <json/writer.h>
#include <memory>
#include <sstream>

namespace monitor {

namespace {

template <class T> void addIfReported(Json::Value& document, char const* key, std::optional<T> const& value) {
    if (value) {
        document[key] = *value;
    }
}

char const* nameOf(std::optional<kelvaris::Link> link) {
    if (!link) {
        return "unknown";
    }
    return *link == kelvaris::Link::UP ? "up" : *link == kelvaris::Link::LOST ? "lost" : "ended";
}

Json::Value linkDocument(Snapshot const& snapshot) {
    Json::Value document;
    document["link"] = nameOf(snapshot.link);
    document["since"] = rfc3339(snapshot.linkSinceWall);
    return document;
}

Json::Value serverDocument(kelvaris::ServerInformationDetailed const& server) {
    Json::Value document;
    if (server.country.empty()) {
        return document; // reported while there is none
    }
    document["name"] = repaired(kelvaris::toString(server));
    document["country"] = repaired(server.country);
    document["city"] = repaired(server.city);
    addIfReported(document, "num", server.num);
    document["isPrivate"] = server.isPrivate;
    Json::Value& addresses = document["publicIP"] = Json::arrayValue;
    for (std::string const& address : server.publicIP) {
        addresses.append(repaired(address));
    }
    return document;
}

Json::Value settingsDocument(Settings const& settings) {
    Json::Value document;
    document["bondingMode"] = toString(settings.bondingMode);
    document["transportMode"] = toString(settings.transportMode);
    document["encrypted"] = settings.encrypted;
    return document;
}

Json::Value adapterDocument(kelvaris::AdapterData const& adapter) {
    Json::Value document;
    document["adapterID"] = repaired(adapter.adapterID);
    document["description"] = repaired(adapter.description);
    document["name"] = repaired(adapter.name);
    document["state"] = toString(adapter.state);
    document["type"] = toString(adapter.type);
    document["priority"] = toString(adapter.priority);
    document["connectedNetworkName"] = repaired(adapter.ssid);
    document["connectedNetworkBSSID"] = repaired(adapter.bssid);
    addIfReported(document, "rateLimit", adapter.rateLimit);
    Json::Value& usage = document["dataUsage"];
    usage["usageMonthly"] = adapter.dataUsage.usage;
    usage["usageDaily"] = adapter.dataUsage.usageDaily;
    addIfReported(usage, "usageMonthlyLimit", adapter.dataUsage.max);
    addIfReported(usage, "usageMonthlyResetDay", adapter.dataUsage.resetDay);
    addIfReported(usage, "usageDailyLimit", adapter.dataUsage.maxDaily);
    usage["usageDailyBoost"] = adapter.dataUsage.boostDaily;
    addIfReported(usage, "overlimitRatelimit", adapter.dataUsage.overlimitRate);
    return document;
}

Json::Value connectionDocument(kelvaris::ConnectionStats const& stats) {
    Json::Value document;
    document["adapterID"] = repaired(stats.adapterID);
    document["connectionID"] = repaired(stats.connectionID);
    document["connected"] = stats.connected;
    document["sleeping"] = stats.sleeping;
    document["protocol"] = toString(stats.protocol);
    document["numberOfSockets"] = stats.numberOfSockets;
    document["localIp"] = repaired(stats.localIp);
    document["privateIp"] = repaired(stats.privateIp);
    document["remoteIp"] = repaired(stats.remoteIp);
    document["totalBps"] = stats.totalBps;
    document["receiveBps"] = stats.receiveBps;
    document["sendBps"] = stats.sendBps;
    document["receiveEstimateMbps"] = stats.receiveEstimateMbps;
    document["sendEstimateMbps"] = stats.sendEstimateMbps;
    document["latencyMs"] = Json::Int64(stats.latencyMs.count());
    document["jitterMs"] = Json::Int64(stats.jitterMs.count());
    document["lossReceive"] = stats.lossReceive;
    document["lossSend"] = stats.lossSend;
    document["inFlight"] = stats.inFlight;
    document["inFlightWindow"] = stats.inFlightWindow;
    document["mos"] = static_cast<double>(stats.mos);
    return document;
}

Json::Value connectionsDocument(kelvaris::ConnectionStatsResult const& report) {
    Json::Value document;
    addIfReported(document, "time", report.time);
    Json::Value& connections = document["connections"] = Json::arrayValue;
    for (kelvaris::ConnectionStats const& each : report.connections) {
        connections.append(connectionDocument(each));
    }
    return document;
}

Json::Value sessionDocument(kelvaris::SessionStats const& stats) {
    Json::Value document;
    document["bytesReceived"] = stats.bytesReceived;
    document["bytesSent"] = stats.bytesSent;
    document["encryptedBytesReceived"] = stats.encryptedBytesReceived;
    document["encryptedBytesSent"] = stats.encryptedBytesSent;
    document["maxDownloadSpeed"] = stats.maxDownloadSpeed;
    document["maxUploadSpeed"] = stats.maxUploadSpeed;
    document["daysSinceFirst"] = Json::Int64(stats.daysSinceFirst.count());
    document["numFailovers"] = stats.numFailovers;
    document["numSessions"] = stats.numSessions;
    document["retransBytes"] = stats.retransBytes;
    document["periodStartTime"] = stats.periodStartTime;
    document["totalConnectedMinutes"] = Json::Int64(stats.totalConnectedMinutes.count());
    document["mbpsDownBenefit"] = stats.mbpsDownBenefit;
    document["mbpsUpBenefit"] = stats.mbpsUpBenefit;
    Json::Value& tun = document["tun"];
    tun["packetsIn"] = stats.tunPacketsIn;
    tun["packetsOut"] = stats.tunPacketsOut;
    tun["bytesIn"] = stats.tunBytesIn;
    tun["bytesOut"] = stats.tunBytesOut;
    tun["bufferWaits"] = stats.tunBufferWaits;
    tun["packetWaits"] = stats.tunPacketWaits;
    tun["readQueue"] = stats.tunReadQueue;
    tun["droppedIncoming"] = stats.tunDroppedIncoming;
    Json::Value& handler = document["packetHandler"];
    handler["packetsIn"] = stats.handlerPacketsIn;
    handler["packetsOut"] = stats.handlerPacketsOut;
    handler["bytesIn"] = stats.handlerBytesIn;
    handler["bytesOut"] = stats.handlerBytesOut;
    handler["retries"] = stats.handlerRetries;
    Json::Value& captivePortal = document["captivePortal"];
    captivePortal["detections"] = stats.captivePortalDetections;
    captivePortal["successes"] = stats.captivePortalSuccesses;
    Json::Value& streaming = document["streaming"];
    streaming["totalFailoverSaves"] = stats.totalFailoverSaves;
    streaming["totalSpeedModeSaves"] = stats.totalSpeedModeSaves;
    streaming["totalRedundantModeSaves"] = stats.totalRedundantModeSaves;
    streaming["totalStreams"] = stats.totalStreams;
    streaming["uniqueSaves"] = stats.uniqueSaves;
    return document;
}

Json::Value streamDocument(kelvaris::StreamStats const& stats) {
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
    document["name"] = repaired(stats.name);
    document["health"] = toString(stats.health);
    return document;
}

Json::Value streamsDocument(kelvaris::StreamingStatsResult const& report) {
    Json::Value document;
    document["bondingMode"] = toString(report.bondingMode);
    document["badLoss"] = report.badLoss;
    document["badLatency"] = report.badLatency;
    document["badCpu"] = report.badCpu;
    document["badMemory"] = report.badMemory;
    Json::Value& streams = document["streams"] = Json::arrayValue;
    for (kelvaris::StreamStats const& each : report.streams) {
        streams.append(streamDocument(each));
    }
    return document;
}

Json::Value errorsDocument(std::map<Topic, Failure> const& errors) {
    Json::Value document(Json::arrayValue);
    for (auto const& [topic, failure] : errors) {
        Json::Value& error = document.append(Json::objectValue);
        error["topic"] = toString(topic);
        error["errorCode"] = failure.error.number;
        error["errorMessage"] = repaired(failure.error.message);
        error["time"] = rfc3339(failure.wallTime);
    }
    return document;
}

template <class T, class Document> Json::Value ifKnown(Part<T> const& part, Document document) {
    return part ? document(*part) : Json::Value();
}

} // namespace

Json::Value documentOf(Snapshot const& snapshot, Topic topic) {
    switch (topic) {
    case Topic::link:
        return linkDocument(snapshot);
    case Topic::state:
        return ifKnown(snapshot.state, [](kelvaris::State state) {
            Json::Value document;
            document["state"] = toString(state);
            return document;
        });
    case Topic::server:
        return ifKnown(snapshot.server, serverDocument);
    case Topic::settings:
        return ifKnown(snapshot.settings, settingsDocument);
    case Topic::adapters:
        return ifKnown(snapshot.adapters, [](std::vector<kelvaris::AdapterData> const& adapters) {
            Json::Value document(Json::arrayValue);
            for (kelvaris::AdapterData const& each : adapters) {
                document.append(adapterDocument(each));
            }
            return document;
        });
    case Topic::connections:
        return ifKnown(snapshot.connections, connectionsDocument);
    case Topic::session:
        return ifKnown(snapshot.session, sessionDocument);
    case Topic::streams:
        return ifKnown(snapshot.streams, streamsDocument);
    case Topic::error:
        break;
    }
    return errorsDocument(snapshot.errors);
}

Json::Value documentOf(Snapshot const& snapshot, Topics topics) {
    Json::Value document(Json::objectValue);
    for (unsigned i = 0; i < topicCount; ++i) {
        if (auto const topic = static_cast<Topic>(i); topics.has(topic)) {
            document[toString(topic)] = documentOf(snapshot, topic);
        }
    }
    return document;
}

// Characters beyond ASCII are escaped: the lines are for programs, and nothing in them moves a terminal's cursor.
std::string compact(Json::Value const& document) {
    static std::unique_ptr<Json::StreamWriter> const writer = [] {
        Json::StreamWriterBuilder builder;
        builder["indentation"] = "";
        builder["precision"] = 15;
        return std::unique_ptr<Json::StreamWriter>(builder.newStreamWriter());
    }();
    std::ostringstream stream;
    writer->write(document, &stream);
    std::string text = stream.str();
    for (std::size_t at = 0; (at = text.find('\x7F', at)) != std::string::npos;) {
        text.replace(at, 1, "\\u007f"); // the one control character that the writer leaves
    }
    return text;
}

} // namespace monitor
