#include "../jsonprinter.h"

#include "serverdocument.h"

void printConnectResult(KelvarisSDK_ConnectResult const& result) {
    KelvarisSDK_ServerInformationDetailed const& server = result.server;
    Json::Value document = serverDocument(result, server);
    document["friendlyName"] = KelvarisSDK_ServerInformationDetailed_toString(server);
    document["torrentAllowed"] = server.torrentAllowed;
    Json::Value& addresses = document["publicIP"] = Json::Value(Json::arrayValue);
    for (unsigned i = 0; i < server.publicIPCount; ++i) {
        addresses.append(recordText(result, server.publicIP[i]));
    }
    writeDocument(document);
}
