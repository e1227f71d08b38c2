// How requests become text and leave, and that nothing of them stays in memory.

#include "websockets.h"

#include <cstring>
#include <exception>
#include <new>
#include <sstream>
#include <utility>

#include "secrettext.h"
#include "step.h"

namespace kelvarissdk {

namespace {

constexpr char senderName[] = "kelvaris_sdk";

// Overwrites the texts of a value, which leaves the rest of it as it is.
void wipe(Json::Value& value) {
    if (value.isString()) {
        char const* begin = nullptr;
        char const* end = nullptr;
        value.getString(&begin, &end);
        explicit_bzero(const_cast<char*>(begin), static_cast<std::size_t>(end - begin));
    } else if (value.isArray() || value.isObject()) {
        for (Json::Value& element : value) {
            wipe(element);
        }
    }
}

// Overwrites a request's text, also when it can't be sent.
struct Secret {
    std::string text;

    ~Secret() {
        explicit_bzero(text.data(), text.size());
    }
};

} // namespace

Request::Request(std::string ofName, Json::Value withPayload)
    : name(std::move(ofName)), payload(std::move(withPayload)) {}

Request::~Request() {
    wipe(payload);
}

std::string WebsocketImpl::requestToString(std::string const& request, Json::Value const& payload) {
    if (holdsTextsOnly(payload)) {
        return secretText(request, payload, senderName) + '\n';
    }
    Request envelope{{}, Json::arrayValue};
    envelope.payload.append(request);
    envelope.payload.append(payload);
    envelope.payload.append(senderName);
    // This writes what toStyledString() writes, whose writer costs more to make than a small request to write.
    if (!requestWriter) {
        requestWriter.reset(Json::StreamWriterBuilder().newStreamWriter());
    }
    std::ostringstream text;
    requestWriter->write(envelope.payload, &text);
    text << '\n';
    if (!text) {
        throw std::bad_alloc(); // a stream keeps it to itself and would leave half a request
    }
    return std::move(text).str();
}

// False: no memory was left. Requests that haven't been taken out of the queue yet stay; the others are dropped whole.
bool WebsocketImpl::sendOutgoing() {
    try {
        std::deque<Request> requests;
        {
            std::lock_guard const lock(outgoingMutex);
            requests.swap(outgoing);
        }
        step();
        for (Request const& request : requests) {
            Secret const text{requestToString(request.name, request.payload)};
            ws->send(text.text);
        }
    } catch (std::exception const&) {
        return false;
    }
    ws->flush();
    return true;
}

} // namespace kelvarissdk
