// This is the grammar of the settings of the tunnel, of DNS and of captive portals.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>
#include <type_traits>

#include "actions.h"
#include "calls.h"
#include "readers.h"

namespace {

constexpr auto readBondingMode =
    readEnumeration<KelvarisSDK_BondingMode_toString, KelvarisSDK_BondingMode_STREAMING>;

constexpr auto readTransportMode =
    readEnumeration<KelvarisSDK_TransportMode_toString, KelvarisSDK_TransportMode_TCP_MULTI>;

// Reads a number in any of strtod's forms, from 0 to 4294967295.
std::optional<double> readSpeed(char const* word) {
    char* end = nullptr;
    double const speed = std::strtod(word, &end);
    bool const inRange = speed >= 0 && speed <= 4294967295.0; // this is false for "nan"
    if (end == word || *end != '\0' || !inRange) {
        return std::nullopt;
    }
    return speed;
}

int defaultRouteAction(int argc, char* argv[]) {
    if (argc == 3) {
        return missing(usage::routeDefault);
    }
    auto const enable = readOnOff(argv[3]); // further words are accepted and ignored
    return enable ? enableDefaultRoute(*enable) : invalid(usage::routeDefault);
}

constexpr Keyword routeWords[] = {
    {"default", defaultRouteAction},
};

int captivePortalCheckAction(int argc, char* /*argv*/[]) {
    return argc == 3 ? requestCaptivePortalCheck() : invalid(usage::captivePortalCheck);
}

int captivePortalLoginAction(int argc, char* argv[]) {
    if (argc == 3) {
        return missing(usage::captivePortalLogin);
    }
    std::optional<bool> const enable = readOnOff(argv[3]);
    if (!enable) {
        return invalid(usage::captivePortalLogin);
    }
    if (!*enable) { // the usage line shows an id, but "off" is refused with one
        return argc == 4 ? setCaptivePortalLoginOff() : invalid(usage::captivePortalLogin);
    }
    if (argc == 4) {
        return missing(usage::captivePortalLogin);
    }
    return argc == 5 ? setCaptivePortalLoginOn(argv[4]) : invalid(usage::captivePortalLogin);
}

constexpr Keyword captivePortalWords[] = {
    {"check", captivePortalCheckAction},
    {"login", captivePortalLoginAction},
};

} // namespace

constinit Keywords const routeKeywords = routeWords;
constinit Keywords const captivePortalKeywords = captivePortalWords;

int modeAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, usage::mode, readBondingMode, setMode);
}

int transportAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, usage::transport, readTransportMode, setTransportMode);
}

int encryptionAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, usage::encryption, readOnOff, setEncryption);
}

int jumboAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, usage::jumbo, readOnOff, setJumboMtu);
}

int packetAggregationAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, usage::packetAggregation, readOnOff, setPacketAggregation);
}

int headerCompressionAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, usage::headerCompression, readOnOff, setHeaderCompression);
}

int startupConnectAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, usage::startupConnect, readOnOff, setStartupConnect);
}

int overflowAction(int argc, char* argv[]) {
    return oneWordAction(argc, argv, usage::overflow, readSpeed, setOverflowThreshold);
}

int routeAction(int argc, char* argv[]) {
    return runKeyword(argc, argv, 2, routeKeywords, usage::routeDefault);
}

int portsAction(int argc, char* argv[]) {
    constexpr int maxPorts = std::extent_v<decltype(KelvarisSDK_SettingsResult::forwardedPorts)>;
    int const count = argc - 2; // no word clears the list
    if (count > maxPorts) {
        return invalid(("only " + std::to_string(maxPorts) + " ports may be requested\n").c_str());
    }
    KelvarisSDK_ProtocolPortPair ports[maxPorts] = {};
    for (int i = 0; i < count; ++i) {
        auto const port = readPortPair(argv[2 + i]);
        if (!port) {
            return invalid(usage::ports);
        }
        ports[i] = *port;
    }
    return setForwardPorts(static_cast<unsigned short>(count), ports);
}

int adapterEncryptionAction(int argc, char* argv[]) {
    if (argc < 5) {
        return missing(usage::adapterEncryption);
    }
    auto const enable = argc == 5 ? readOnOff(argv[4]) : std::nullopt;
    return enable ? setConnectionEncryption(argv[3], *enable) : invalid(usage::adapterEncryption);
}

int privacyAction(int argc, char* /*argv*/[]) {
    return argc == 2 ? missing(usage::privacy) : invalid(usage::privacy); // no words of it make an action
}

int dnsAction(int argc, char* argv[]) {
    // No word clears the list. The call takes a count of 16 bits, and a larger one, cut to them, could clear it too.
    auto const count = static_cast<std::size_t>(std::min(argc - 2, UINT16_MAX));
    auto const addresses = std::make_unique<DnsText[]>(count);
    for (std::size_t i = 0; i < count; ++i) {
        copyWord(addresses[i], argv[2 + i]);
    }
    return setDnsServers(static_cast<unsigned short>(count), addresses.get());
}

int captivePortalAction(int argc, char* argv[]) {
    return runKeyword(argc, argv, 2, captivePortalKeywords, usage::captivePortal);
}
