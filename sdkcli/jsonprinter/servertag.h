// Documents name a server by its tag.

#pragma once

#include <string>

#include "recordtext.h"

// Puts the tag together. The record is the whole result that the server stands in, because a full field runs on
// into what follows it there.
template <class Record, class Server> std::string serverTag(Record const& record, Server const& server) {
    std::string tag = server.isPrivate ? "private" : "";
    tag += recordText(record, server.country);
    tag += '-';
    tag += recordText(record, server.city);
    tag += '-';
    tag += std::to_string(server.num);
    return tag;
}
