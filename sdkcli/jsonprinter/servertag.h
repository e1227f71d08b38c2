// How the documents of servers name one.

#pragma once

#include <string>

#include "recordtext.h"

// The name under which the daemon knows the server. The record is the whole result that the server stands in.
template <class Record, class Server> std::string serverTag(Record const& record, Server const& server) {
    std::string tag = server.isPrivate ? "private" : "";
    tag += recordText(record, server.country);
    tag += '-';
    tag += recordText(record, server.city);
    tag += '-';
    tag += std::to_string(server.num);
    return tag;
}
