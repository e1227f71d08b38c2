#include "jsonprinter.h"

#include "recordtext.h"

void printServerSettingsResult(KelvarisSDK_ServerSettingsResult const& result) {
    Json::Value document;
    document["connectMethod"] = KelvarisSDK_AutoConnectMethod_toString(result.connectMethod);
    document["country"] = recordText(result, result.country);
    document["city"] = recordText(result, result.city);
    document["num"] = result.num;
    writeDocument(document);
}
