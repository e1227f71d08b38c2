#include "../jsonprinter.h"

#include "serverdocument.h"

void printDirectoryResult(KelvarisSDK_DirectoryResult const& result) {
    Json::Value document;
    Json::Value& publicServers = document["public"] = Json::Value(Json::arrayValue);
    Json::Value& privateServers = document["private"] = Json::Value(Json::arrayValue);
    for (uint32_t i = 0; i < result.serverCount; ++i) {
        KelvarisSDK_ServerInformation const& server = result.servers[i];
        (server.isPrivate ? privateServers : publicServers).append(serverDocument(result, server));
    }
    writeDocument(document);
}
