// What the session's files have in common: servers in reports, awaited states, reported errors.

#pragma once

#include <string>

#include <json/json.h>
#include <kelvarissdk/session.h>

#include "wswrapper.h"

namespace kelvarissdk {

// Fill the record of one server. The country of a private server is stored without the "private" in front of it.
void setServerData(KelvarisSDK_ServerInformation& info, Json::Value const& server);
void setServerDetailedData(KelvarisSDK_ServerInformationDetailed& info, Json::Value const& server);
// The word of a method on the wire; null for one that has none.
char const* methodWord(KelvarisSDK_AutoConnectMethod method);

// Make the text that names a place in a request: "country|city" or "country|city|num".
std::string placeText(char const* country, char const* city);
std::string placeText(char const* country, char const* city, int num);

// Awaits a report of this state and no other.
AwaitedReport stateReached(KelvarisSDK_State state);
// Fills the head from the report of a login or a connection that failed.
void setReportedError(KelvarisSDK_BaseResult& result, Json::Value const& report);

} // namespace kelvarissdk
