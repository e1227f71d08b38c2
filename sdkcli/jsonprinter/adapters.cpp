#include "jsonprinter.h"

#include "recordtext.h"

namespace {

Json::Value usageDocument(KelvarisSDK_AdapterUsageData const& usage) {
    Json::Value document;
    document["usageMonthly"] = usage.usage;
    document["usageDaily"] = usage.usageDaily;
    document["usageMonthlyLimit"] = usage.max;
    document["usageMonthlyResetDay"] = usage.resetDay;
    document["usageDailyLimit"] = usage.maxDaily;
    document["usageDailyBoost"] = usage.boostDaily;
    document["overlimitRatelimit"] = usage.overlimitRate;
    return document;
}

Json::Value adapterDocument(KelvarisSDK_AdaptersResult const& result,
                            KelvarisSDK_AdapterData const& adapter) {
    Json::Value document;
    document["adapterID"] = recordText(result, adapter.adapterID);
    document["description"] = recordText(result, adapter.description);
    document["name"] = recordText(result, adapter.name);
    document["state"] = KelvarisSDK_ConnectionState_toString(adapter.state);
    document["type"] = KelvarisSDK_NetworkType_toString(adapter.type);
    document["priority"] = KelvarisSDK_ConnectionPriority_toString(adapter.priority);
    document["connectedNetworkName"] = recordText(result, adapter.ssid);
    document["connectedNetworkBSSID"] = recordText(result, adapter.bssid);
    document["rateLimit"] = adapter.rateLimit;
    document["dataUsage"] = usageDocument(adapter.dataUsage);
    return document;
}

} // namespace

void printAdaptersResult(KelvarisSDK_AdaptersResult const& result) {
    Json::Value document(Json::arrayValue);
    for (uint32_t i = 0; i < result.adapterCount; ++i) {
        document.append(adapterDocument(result, result.adapters[i]));
    }
    writeDocument(document);
}
