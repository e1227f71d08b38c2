#include "jsonprinter.h"

#include "recordtext.h"

namespace {

Json::Value encryptionDocument(KelvarisSDK_SettingsResult const& result) {
    Json::Value document(Json::arrayValue);
    for (unsigned i = 0; i < result.perConnectionEncryptionCount; ++i) {
        KelvarisSDK_ConnectionEncryption const& slot = result.perConnectionEncryptionSettings[i];
        Json::Value& adapter = document.append(Json::Value());
        adapter["adapterID"] = recordText(result, slot.adapterID);
        adapter["encrypted"] = slot.encrypted;
    }
    return document;
}

Json::Value socketsDocument(KelvarisSDK_SettingsResult const& result) {
    Json::Value document(Json::arrayValue);
    for (unsigned i = 0; i < result.perConnectionParallelSocketsCount; ++i) {
        KelvarisSDK_ConnectionParallelSockets const& slot = result.perConnectionParallelSockets[i];
        Json::Value& adapter = document.append(Json::Value());
        adapter["adapterID"] = recordText(result, slot.adapterID);
        adapter["sockets"] = slot.sockets;
    }
    return document;
}

} // namespace

void printSettingsResult(KelvarisSDK_SettingsResult const& result) {
    Json::Value document;
    document["jumboPackets"] = result.jumboPackets;
    document["encrypted"] = result.encrypted;
    document["allowChaChaEncryption"] = result.allowChaChaEncryption;
    document["bondingMode"] = KelvarisSDK_BondingMode_toString(result.bondingMode);
    document["startupConnect"] = result.startupConnect;
    document["transportMode"] = KelvarisSDK_TransportMode_toString(result.transportMode);
    document["packetAggregation"] = result.packetAggregation;
    document["headerCompression"] = result.headerCompression;
    document["forwardedPorts"] = portsDocument(result.forwardedPorts, result.forwardedPortCount);
    document["perConnectionEncryptionEnabled"] = result.perConnectionEncryptionEnabled;
    document["perConnectionEncryptionSettings"] = encryptionDocument(result);
    document["perConnectionParallelSockets"] = socketsDocument(result);
    document["overflowThreshold"] = result.overflowThreshold;
    document["priorityOverflowThreshold"] = result.priorityOverflowThreshold;
    document["enableDefaultRoute"] = result.enableDefaultRoute;
    writeDocument(document);
}

void printPrivacySettingsResult(KelvarisSDK_PrivacySettingsResult const& result) {
    Json::Value document;
    Json::Value& addresses = document["dnsAddresses"] = Json::Value(Json::arrayValue);
    for (unsigned i = 0; i < result.dnsAddressCount; ++i) {
        addresses.append(recordText(result, result.dnsAddresses[i]));
    }
    writeDocument(document);
}

void printCaptivePortalResult(KelvarisSDK_CaptivePortalCheckResult const& result) {
    Json::Value document(Json::arrayValue);
    for (uint32_t i = 0; i < result.networkCount; ++i) {
        document.append(recordText(result, result.networks[i]));
    }
    writeDocument(document);
}

void printCaptivePortalLoginResult(KelvarisSDK_CaptivePortalLoginResult const& result) {
    Json::Value document;
    document["enabled"] = result.enabled;
    document["adapterID"] = recordText(result, result.adapterID);
    writeDocument(document);
}
