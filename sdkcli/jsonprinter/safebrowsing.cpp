#include "jsonprinter.h"

#include "recordtext.h"

void printSafeBrowsingResult(KelvarisSDK_SafeBrowsingResult const& result) {
    Json::Value document;
    document["initialized"] = result.initialized;
    document["configSet"] = result.configSet;
    document["enabled"] = result.enabled;
    document["log_level"] = KelvarisSDK_SafeBrowsing_LogLevel_toString(result.logLevel);
    document["network_override"] =
        KelvarisSDK_SafeBrowsing_SafeNetworkOverride_toString(result.networkOverride);
    writeDocument(document);
}

void printSafeBrowsingConnectError(KelvarisSDK_SafeBrowsingResult const& result) {
    Json::Value document;
    document["error"] = result.connectErrorCode;
    document["msg"] = recordText(result, result.connectErrorMessage);
    writeDocument(document);
}

void printSafeBrowsingErrorResult(KelvarisSDK_SafeBrowsingErrorResult const& result) {
    Json::Value document;
    document["error"] = result.error;
    document["message"] = recordText(result, result.message);
    document["host"] = recordText(result, result.host);
    writeDocument(document);
}

void printSafeBrowsingBlockResult(KelvarisSDK_SafeBrowsingBlockResult const& result) {
    Json::Value document;
    document["redirected"] = result.redirected;
    document["host"] = recordText(result, result.host);
    writeDocument(document);
}

void printSafeBrowsingStatsResult(KelvarisSDK_SafeBrowsingStatsResult const& result) {
    Json::Value document;
    document["min"] = result.min;
    document["max"] = result.max;
    document["average"] = result.average;
    document["num_errors"] = result.num_errors;
    document["num_blocks"] = result.num_blocks;
    document["failure_rate"] = result.failure_rate;
    document["num_block_responses"] = result.num_block_responses;
    document["num_lookups"] = result.num_lookups;
    document["num_packets_filtered"] = result.num_packets_filtered;
    writeDocument(document);
}
