#include "serverlist.h"

#include <algorithm>
#include <sstream>

namespace kelvarissim {

namespace {

struct Location {
    char const* country;
    char const* city;
    int count;
    int privateCount;
    bool permitsTorrents;
};

// clang-format off
constexpr Location locations[] = {
    {"us", "nyc",        5, 2, false},
    {"us", "chicago",    3, 0, false},
    {"us", "la",         4, 0, false},
    {"us", "sf",         2, 1, false},
    {"us", "nova",       2, 0, false},
    {"ca", "toronto",    3, 0, true},
    {"ca", "bhs",        2, 0, true},
    {"mx", "mexicocity", 1, 0, true},
    {"br", "saopaulo",   2, 0, true},
    {"gb", "london",     4, 1, false},
    {"ie", "dublin",     1, 0, false},
    {"fr", "paris",      2, 0, false},
    {"nl", "amsterdam",  3, 0, true},
    {"de", "frankfurt",  3, 0, false},
    {"de", "dusseldorf", 1, 0, false},
    {"ch", "zurich",     2, 0, true},
    {"es", "madrid",     1, 0, true},
    {"it", "milano",     1, 0, false},
    {"se", "stockholm",  2, 0, true},
    {"ro", "bucharest",  2, 0, true},
    {"tr", "izmir",      1, 0, false},
    {"za", "johannesburg", 1, 0, true},
    {"in", "mumbai",     1, 0, false},
    {"sg", "singapore",  2, 0, false},
    {"jp", "tokyo",      3, 0, false},
    {"au", "sydney",     2, 0, false},
};
// clang-format on

std::vector<ListedServer> makeServers() {
    std::vector<ListedServer> list;
    for (Location const& location : locations) {
        std::string const country = location.country;
        auto const add = [&](int num, bool isPrivate) {
            list.push_back({isPrivate ? "private" + country : country, location.city, num, isPrivate,
                            location.permitsTorrents && !isPrivate, static_cast<int>(list.size()) + 1});
        };
        for (int num = 1; num <= location.count; ++num) {
            add(num, false);
        }
        for (int num = 1; num <= location.privateCount; ++num) {
            add(num, true);
        }
    }
    return list;
}

Json::Value serverReport(ListedServer const& server) {
    Json::Value report;
    report["country"] = server.country;
    report["city"] = server.city;
    report["num"] = server.num;
    report["private"] = server.isPrivate ? "yes" : "no";
    report["torrent"] = server.permitsTorrents ? "yes" : "no";
    return report;
}

template <typename Matches> std::optional<ListedServer> findFirst(Matches matches) {
    auto const server = std::find_if(servers().begin(), servers().end(), matches);
    return server == servers().end() ? std::nullopt : std::optional(*server);
}

std::optional<ListedServer> findByLocation(std::string const& text) {
    std::istringstream pieces(text);
    std::string country;
    std::string city;
    std::string num;
    std::getline(pieces, country, '|');
    std::getline(pieces, city, '|');
    std::getline(pieces, num);
    return findFirst([&](ListedServer const& server) {
        return server.country == country && (city.empty() || server.city == city) &&
               (num.empty() || std::to_string(server.num) == num);
    });
}

} // namespace

std::vector<ListedServer> const& servers() {
    static std::vector<ListedServer> const list = makeServers();
    return list;
}

ListedServer proxyServer() {
    return {"proxy", "", 0, false, false, 0};
}

std::optional<ListedServer> findServer(std::string const& text) {
    if (text == "user" || text == "userpublic") {
        return findFirst([](ListedServer const& server) { return !server.isPrivate; });
    }
    if (text == "userprivate") {
        return findFirst([](ListedServer const& server) { return server.isPrivate; });
    }
    if (text == "p2p") {
        return findFirst([](ListedServer const& server) { return server.permitsTorrents; });
    }
    return text == "proxy" ? proxyServer() : findByLocation(text);
}

Json::Value directoryReport() {
    Json::Value report(Json::arrayValue);
    for (ListedServer const& server : servers()) {
        report.append(serverReport(server));
    }
    return report;
}

// The addresses are from the blocks that are reserved for documentation.
Json::Value connectedServerReport(ListedServer const& server) {
    Json::Value report = serverReport(server);
    report["publicIP"].append("203.0.113." + std::to_string(100 + server.position));
    report["publicIP"].append("2001:db8::" + std::to_string(100 + server.position));
    return report;
}

} // namespace kelvarissim
