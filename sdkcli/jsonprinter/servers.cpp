#include "../jsonprinter.h"

#include <string>

#include "recordtext.h"
#include "servertag.h"

// A directory has hundreds of servers. To build a document of them and to write it would take twice as long as to
// parse the report, so the text is put together as it goes: to the byte what the styled document would be.

namespace {

std::string styledServer(KelvarisSDK_DirectoryResult const& result,
                         KelvarisSDK_ServerInformation const& server) {
    auto const quoted = [](std::string const& text) { return Json::valueToQuotedString(text.c_str()); };
    std::string text = "\t\t{\n\t\t\t\"city\" : " + quoted(recordText(result, server.city));
    text += ",\n\t\t\t\"country\" : " + quoted(recordText(result, server.country));
    text += std::string(",\n\t\t\t\"isPrivate\" : ") + (server.isPrivate ? "true" : "false");
    text += ",\n\t\t\t\"num\" : " + std::to_string(server.num);
    text += ",\n\t\t\t\"tag\" : " + quoted(serverTag(result, server)) + "\n\t\t}";
    return text;
}

std::string styledServers(KelvarisSDK_DirectoryResult const& result, bool privateOnes) {
    std::string servers;
    for (uint32_t i = 0; i < result.serverCount; ++i) {
        if (result.servers[i].isPrivate == privateOnes) {
            servers += servers.empty() ? "" : ",\n";
            servers += styledServer(result, result.servers[i]);
        }
    }
    return servers.empty() ? "[]" : "\n\t[\n" + servers + "\n\t]";
}

} // namespace

void printDirectoryResult(KelvarisSDK_DirectoryResult const& result) {
    writeText("{\n\t\"private\" : " + styledServers(result, true) +
              ",\n\t\"public\" : " + styledServers(result, false) + "\n}\n");
}
