// A server in a document.

#pragma once

#include <cstdio>
#include <string>

#include <json/json.h>

#include "recordtext.h"

// The keys that both server records have. The tag is the name under which the daemon knows the server. The
// record is the whole result that the server stands in.
template <class Record, class Server> Json::Value serverDocument(Record const& record, Server const& server) {
    std::string const country = recordText(record, server.country);
    std::string const city = recordText(record, server.city);
    char tag[100];
    std::snprintf(tag, sizeof(tag), "%s%s-%s-%d", server.isPrivate ? "private" : "", country.c_str(),
                  city.c_str(), server.num);

    Json::Value document;
    document["country"] = country;
    document["city"] = city;
    document["num"] = server.num;
    document["isPrivate"] = server.isPrivate;
    document["tag"] = tag;
    return document;
}
