#include "readers.h"

#include <cctype>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

char binName[512 + 1];

int missing(char const* line) {
    std::fprintf(stderr, "Missing parameters: %s %s\n", binName, line);
    return 3;
}

int invalid(char const* line) {
    std::fprintf(stderr, "Invalid parameters: %s %s\n", binName, line);
    return 2;
}

bool equals(char const* word, char const* other) {
    return std::strcmp(word, other) == 0;
}

bool isPrivate(char const* word) {
    constexpr char start[] = "private";
    constexpr std::size_t startLength = sizeof(start) - 1;
    return std::strncmp(word, start, startLength) == 0 && std::strlen(word) == startLength + 2 &&
           isCity(word + startLength);
}

bool isCountry(char const* word) {
    return (std::strlen(word) == 2 && isCity(word)) || isPrivate(word);
}

bool isCity(char const* word) {
    while (std::isalpha(static_cast<unsigned char>(*word)) != 0) {
        ++word;
    }
    return *word == '\0';
}

std::optional<bool> readOnOff(char const* word) {
    if (equals(word, "on")) {
        return true;
    }
    if (equals(word, "off")) {
        return false;
    }
    return std::nullopt;
}

std::optional<KelvarisSDK_AutoConnectMethod> readMethod(char const* word) {
    auto const method =
        readEnumeration<KelvarisSDK_AutoConnectMethod_toString, KelvarisSDK_AutoConnectMethod_PROXY>(word);
    if (method == KelvarisSDK_AutoConnectMethod_AUTO || method == KelvarisSDK_AutoConnectMethod_COUNTRY) {
        return std::nullopt;
    }
    return method;
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

std::optional<int> readInt(char const* word, int min) {
    std::optional<long long> const number = readNumber(word);
    if (!number || *number < min || *number > INT_MAX) {
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
