#include "jsonprinter.h"

#include "recordtext.h"
#include "servertag.h"

void printConnectResult(KelvarisSDK_ConnectResult const& result) {
    KelvarisSDK_ServerInformationDetailed const& server = result.server;
    Json::Value document;
    document["country"] = recordText(result, server.country);
    document["city"] = recordText(result, server.city);
    document["num"] = server.num;
    document["isPrivate"] = server.isPrivate;
    document["tag"] = serverTag(result, server);
    document["friendlyName"] = KelvarisSDK_ServerInformationDetailed_toString(server);
    document["torrentAllowed"] = server.torrentAllowed;
    Json::Value& addresses = document["publicIP"] = Json::Value(Json::arrayValue);
    for (unsigned i = 0; i < server.publicIPCount; ++i) {
        addresses.append(recordText(result, server.publicIP[i]));
    }
    writeDocument(document);
}
