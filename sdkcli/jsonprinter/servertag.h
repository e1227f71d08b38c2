// How the documents of servers name one.

#pragma once

#include <cstdio>
#include <string>

#include "recordtext.h"

// The name under which the daemon knows the server. The record is the whole result that the server stands in.
template <class Record, class Server> std::string serverTag(Record const& record, Server const& server) {
    char tag[100];
    std::snprintf(tag, sizeof(tag), "%s%s-%s-%d", server.isPrivate ? "private" : "",
                  recordText(record, server.country).c_str(), recordText(record, server.city).c_str(),
                  server.num);
    return tag;
}
