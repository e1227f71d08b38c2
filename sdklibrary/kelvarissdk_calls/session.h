// The session's files share how servers, states and errors are read from reports.

#pragma once

#include <string>

#include <json/json.h>
#include <kelvarissdk/session.h>

#include "wswrapper.h"

namespace kelvarissdk {

// Both fill the record of one server. The country of a private server is stored without the "private" in front of it.
void setServerData(KelvarisSDK_ServerInformation& info, Json::Value const& server);
void setServerDetailedData(KelvarisSDK_ServerInformationDetailed& info, Json::Value const& server);
// Returns the word of a method on the wire, or null for a method that has none.
char const* methodWord(KelvarisSDK_AutoConnectMethod method);

// Both make the text that names a place in a request: "country|city" or "country|city|num".
std::string placeText(char const* country, char const* city);
std::string placeText(char const* country, char const* city, int num);

// Awaits a report of this state and no other.
AwaitedReport stateReached(KelvarisSDK_State state);
// Fills the head from the report of a login or a connection that failed.
void setReportedError(KelvarisSDK_BaseResult& result, Json::Value const& report);

} // namespace kelvarissdk
