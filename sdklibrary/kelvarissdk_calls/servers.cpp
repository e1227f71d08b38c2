#include <cstdlib>
#include <string>
#include <string_view>

#include "fields.h"
#include "kelvarissdk.h"
#include "keys.h"
#include "session.h"
#include "wswrapper.h"

namespace kelvarissdk {

namespace {

constexpr std::string_view privatePrefix = "private";

// Fills the fields with which both records of a server begin.
template <class Server> void setPlace(Server& info, Json::Value const& server) {
    Text const country(server[Keys::_country]);
    info.isPrivate = Text(server[Keys::_private]).view() == "yes";
    bool const prefixed = info.isPrivate && country.view().starts_with(privatePrefix);
    setText(info.country, country.view().substr(prefixed ? privatePrefix.size() : 0));
    copyText(info.city, server[Keys::_city]);
    Json::Value const& num = server[Keys::_num]; // it comes as a number or as a text
    info.num = num.isInt() ? num.asInt() : std::atoi(num.asString().c_str());
}

} // namespace

void setServerData(KelvarisSDK_ServerInformation& info, Json::Value const& server) {
    setPlace(info, server);
}

void setServerDetailedData(KelvarisSDK_ServerInformationDetailed& info, Json::Value const& server) {
    setPlace(info, server);
    info.torrentAllowed = server[Keys::_torrent].asString() != "no";
    fillTexts(info.publicIPCount, info.publicIP, server[Keys::_publicIP]);
}

namespace {

void setDirectoryListResult(KelvarisSDK_DirectoryResult& result, Json::Value const& list) {
    fillSlots(result.serverCount, result.servers, list, setServerData);
}

} // namespace

KelvarisSDK_DirectoryResult KelvarisSDK::getDirectory(KelvarisSDK_DirectoryCallback callback,
                                                      void* userData) {
    return wsSubscriptionWrapper(callback, userData, websocket,
                                 query("request_directory", "report_directory"), setDirectoryListResult);
}

} // namespace kelvarissdk
