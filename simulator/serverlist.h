#pragma once

#include <json/value.h>
#include <optional>
#include <string>
#include <vector>

namespace kelvarissim {

struct ListedServer {
    std::string country; // code; a private server's has "private" in front
    std::string city;
    int num;
    bool isPrivate;
    bool permitsTorrents;
    int position; // in the list, from 1; the server's addresses are derived from it
};

// The servers, sorted by distance.
std::vector<ListedServer> const& servers();

// The proxy, which isn't in the list.
ListedServer proxyServer();

// Returns the first server that matches the text: "user", "userpublic", "userprivate", "p2p", "proxy", or
// "country[|city[|num]]". An empty city matches any city.
std::optional<ListedServer> findServer(std::string const& text);

Json::Value directoryReport();
Json::Value connectedServerReport(ListedServer const& server);

} // namespace kelvarissim
