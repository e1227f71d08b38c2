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
    int place; // in the list, from 1; the addresses are made of it
};

// The closest one first.
std::vector<ListedServer> const& servers();

// What connects through the proxy; it is no server of the list.
ListedServer proxyServer();

// The first server that a text names: "user", "userpublic", "userprivate", "p2p", "proxy", or
// "country[|city[|num]]". An empty city is any.
std::optional<ListedServer> findServer(std::string const& text);

Json::Value directoryReport();
Json::Value connectedServerReport(ListedServer const& server);

} // namespace kelvarissim
