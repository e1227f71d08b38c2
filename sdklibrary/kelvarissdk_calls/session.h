// What the session's files share: servers in reports, awaited states, reported errors.

#pragma once

#include <string>

#include <json/json.h>
#include <kelvarissdk/session.h>

#include "wswrapper.h"

namespace kelvarissdk {

// One server object. The country of a private server is stored without the "private" in front of it.
void setServerData(KelvarisSDK_ServerInformation& info, Json::Value const& server);
void setServerDetailedData(KelvarisSDK_ServerInformationDetailed& info, Json::Value const& server);
// The list of the directory.
void setDirectoryListResult(KelvarisSDK_DirectoryResult& result, Json::Value const& list);

// A place in a request: "country|city" or "country|city|num".
std::string placeText(char const* country, char const* city);
std::string placeText(char const* country, char const* city, int num);

// A report of this state alone.
AwaitedReport stateReached(KelvarisSDK_State state);
// What the daemon says of a login or a connection that failed.
void setReportedError(KelvarisSDK_BaseResult& result, Json::Value const& report);

} // namespace kelvarissdk
