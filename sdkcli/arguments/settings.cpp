// The grammar of the settings. Seven take one word of a few; "overflow", "route", "ports" and
// "adapter encryption" have grammars of their own, and so have the words of DNS and captive portals.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "../calls.h"
#include "actions.h"
#include "readers.h"

namespace {

constexpr int mostPorts = 20;

std::optional<KelvarisSDK_BondingMode> readBondingMode(char const* word) {
    if (is(word, "redundant")) {
        return KelvarisSDK_BondingMode_REDUNDANT;
    }
    if (is(word, "speed")) {
        return KelvarisSDK_BondingMode_SPEED;
    }
    if (is(word, "streaming")) {
        return KelvarisSDK_BondingMode_STREAMING;
    }
    return std::nullopt;
}

std::optional<KelvarisSDK_TransportMode> readTransportMode(char const* word) {
    if (is(word, "auto")) {
        return KelvarisSDK_TransportMode_AUTO;
    }
    if (is(word, "tcp")) {
        return KelvarisSDK_TransportMode_TCP;
    }
    if (is(word, "udp")) {
        return KelvarisSDK_TransportMode_UDP;
    }
    if (is(word, "https")) {
        return KelvarisSDK_TransportMode_HTTPS;
    }
    if (is(word, "tcp-multi")) {
        return KelvarisSDK_TransportMode_TCP_MULTI;
    }
    return std::nullopt;
}

// A number in any of strtod's forms, from 0 to 4294967295.
std::optional<double> readSpeed(char const* word) {
    char* end = nullptr;
    double const speed = std::strtod(word, &end);
    bool const inRange = speed >= 0 && speed <= 4294967295.0; // false for "nan"
    if (end == word || *end != '\0' || !inRange) {
        return std::nullopt;
    }
    return speed;
}

int captivePortalLogin(int argc, char* argv[]) {
    char const* const usage = "captiveportal login <on|off> <adapter id>";
    if (argc == 3) {
        return missing(usage);
    }
    if (is(argv[3], "off")) { // takes no id, whatever the usage says
        return argc == 4 ? setCaptivePortalLoginOff() : invalid(usage);
    }
    if (!is(argv[3], "on")) {
        return invalid(usage);
    }
    if (argc == 4) {
        return missing(usage);
    }
    return argc == 5 ? setCaptivePortalLoginOn(argv[4]) : invalid(usage);
}

} // namespace

int modeAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, "mode <redundant|speed|streaming>", readBondingMode, setMode);
}

int transportAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, "transport <auto|tcp|tcp-multi|udp|https>", readTransportMode,
                         setTransportMode);
}

int encryptionAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, "encryption <on|off>", readOnOff, setEncryption);
}

int jumboAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, "jumbo <on|off>", readOnOff, setJumboMtu);
}

int packetAggregationAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, "packetaggr <on|off>", readOnOff, setPacketAggregation);
}

int headerCompressionAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, "headercompression <on|off>", readOnOff, setHeaderCompression);
}

int startupConnectAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, "startupconnect <on|off>", readOnOff, setStartupConnect);
}

int overflowAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, "overflow <speed in mbps>", readSpeed, setOverflowThreshold);
}

int routeAction(int argc, char* argv[]) {
    char const* const usage = "route default <on|off>";
    if (argc == 2) {
        return missing(usage);
    }
    if (!is(argv[2], "default")) {
        return invalid(usage);
    }
    if (argc == 3) {
        return missing(usage);
    }
    auto const enable = readOnOff(argv[3]); // words behind it don't matter
    return enable ? enableDefaultRoute(*enable) : invalid(usage);
}

int portsAction(int argc, char* argv[]) {
    int const count = argc - 2; // none clears the list
    if (count > mostPorts) {
        return invalid(("only " + std::to_string(mostPorts) + " ports may be requested\n").c_str());
    }
    KelvarisSDK_ProtocolPortPair ports[mostPorts] = {};
    for (int i = 0; i < count; ++i) {
        auto const port = readPortPair(argv[2 + i]);
        if (!port) {
            return invalid("ports [port/proto] ...");
        }
        ports[i] = *port;
    }
    return setForwardPorts(static_cast<unsigned short>(count), ports);
}

int adapterEncryptionAction(int argc, char* argv[]) {
    char const* const usage = "adapter encryption <adapter id> <on|off>";
    if (argc < 5) {
        return missing(usage);
    }
    auto const enable = argc == 5 ? readOnOff(argv[4]) : std::nullopt;
    return enable ? setConnectionEncryption(argv[3], *enable) : invalid(usage);
}

int privacyAction(int argc) {
    char const* const usage = "privacy";
    return argc == 2 ? missing(usage) : invalid(usage); // has no action left
}

int dnsAction(int argc, char* argv[]) {
    // None clears the list. More than the call's 16 bits can count mustn't look like fewer.
    auto const count = static_cast<std::size_t>(std::min(argc - 2, UINT16_MAX));
    auto const addresses = std::make_unique<char[][46]>(count);
    for (std::size_t i = 0; i < count; ++i) {
        copyWord(addresses[i], argv[2 + i]);
    }
    return setDnsServers(static_cast<unsigned short>(count), addresses.get());
}

int captivePortalAction(int argc, char* argv[]) {
    char const* const usage = "captiveportal check|login";
    if (argc == 2) {
        return missing(usage);
    }
    if (is(argv[2], "check")) {
        return argc == 3 ? requestCaptivePortalCheck() : invalid("captiveportal check");
    }
    return is(argv[2], "login") ? captivePortalLogin(argc, argv) : invalid(usage);
}
