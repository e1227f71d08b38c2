#include "readers.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "../arguments.h"

bool is(char const* word, char const* keyword) {
    return std::strcmp(word, keyword) == 0;
}

int missing(char const* usage) {
    std::fprintf(stderr, "Missing parameters: %s %s\n", binName, usage);
    return 3;
}

int invalid(char const* usage) {
    std::fprintf(stderr, "Invalid parameters: %s %s\n", binName, usage);
    return 2;
}

std::optional<bool> readOnOff(char const* word) {
    if (is(word, "on")) {
        return true;
    }
    if (is(word, "off")) {
        return false;
    }
    return std::nullopt;
}

std::optional<long long> readNumber(char const* word) {
    char* end = nullptr;
    long long const number = std::strtoll(word, &end, 10);
    if (end == word || *end != '\0') {
        return std::nullopt;
    }
    return number;
}

std::optional<uint32_t> readCount(char const* word) {
    std::optional<long long> const number = readNumber(word);
    if (!number || *number < 0 || *number > UINT32_MAX) {
        return std::nullopt;
    }
    return static_cast<uint32_t>(*number);
}

std::optional<int> readInt(char const* word, int least) {
    std::optional<long long> const number = readNumber(word);
    if (!number || *number < least || *number > INT_MAX) {
        return std::nullopt;
    }
    return static_cast<int>(*number);
}

std::optional<unsigned long long> readUnsigned(char const* word) {
    char* end = nullptr;
    errno = 0;
    unsigned long long const number = std::strtoull(word, &end, 10);
    if (end == word || *end != '\0' || errno == ERANGE) {
        return std::nullopt;
    }
    return number;
}

std::optional<KelvarisSDK_ProtocolPortPair> readPortPair(char const* word) {
    char const* const slash = std::strchr(word, '/');
    std::string const text = slash == nullptr ? word : std::string(word, slash);
    char const* const protocol = slash == nullptr ? "tcp" : slash + 1;

    std::optional<long long> const port = readNumber(text.c_str());
    if (!port || *port < 1 || *port > UINT16_MAX) {
        return std::nullopt;
    }
    if (std::strncmp(protocol, "tcp", 3) == 0) {
        return KelvarisSDK_ProtocolPortPair{KelvarisSDK_PortProtocol_TCP, static_cast<uint16_t>(*port)};
    }
    if (std::strncmp(protocol, "udp", 3) == 0) {
        return KelvarisSDK_ProtocolPortPair{KelvarisSDK_PortProtocol_UDP, static_cast<uint16_t>(*port)};
    }
    return std::nullopt;
}
