#include "jsonprinter.h"

#include <string>

#include "recordtext.h"
#include "servertag.h"

// A directory has hundreds of servers. To build a document of them and to write it would take twice as long as
// to parse the report, so the text is put together as it goes. It equals the styled document to the byte.

namespace {

void addQuoted(std::string& text, char const* key, std::string const& value) {
    text += key;
    text += Json::valueToQuotedString(value.c_str());
}

void addServer(std::string& text, KelvarisSDK_DirectoryResult const& result,
               KelvarisSDK_ServerInformation const& server) {
    addQuoted(text, "\t\t{\n\t\t\t\"city\" : ", recordText(result, server.city));
    addQuoted(text, ",\n\t\t\t\"country\" : ", recordText(result, server.country));
    text += server.isPrivate ? ",\n\t\t\t\"isPrivate\" : true" : ",\n\t\t\t\"isPrivate\" : false";
    text += ",\n\t\t\t\"num\" : ";
    text += std::to_string(server.num);
    addQuoted(text, ",\n\t\t\t\"tag\" : ", serverTag(result, server));
    text += "\n\t\t}";
}

void addServers(std::string& text, KelvarisSDK_DirectoryResult const& result, bool privateOnes) {
    char const* separator = "\n\t[\n";
    bool empty = true;
    for (uint32_t i = 0; i < result.serverCount; ++i) {
        if (result.servers[i].isPrivate == privateOnes) {
            text += separator;
            addServer(text, result, result.servers[i]);
            separator = ",\n";
            empty = false;
        }
    }
    text += empty ? "[]" : "\n\t]";
}

} // namespace

void printDirectoryResult(KelvarisSDK_DirectoryResult const& result) {
    std::string text = "{\n\t\"private\" : ";
    addServers(text, result, true);
    text += ",\n\t\"public\" : ";
    addServers(text, result, false);
    text += "\n}\n";
    writeText(text);
}
