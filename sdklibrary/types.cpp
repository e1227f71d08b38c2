// Enumerations have texts, and servers have names.

#include <cstddef>
#include <cstring>
#include <new>
#include <string>

#include <kelvarissdk/csdkinterface.h>

#include "fields.h"
#include "locationnames.h"

// core

char const* KelvarisSDK_ErrorType_toString(KelvarisSDK_ErrorType type) {
    switch (type) {
    case KelvarisSDK_ErrorType_NO_ERROR:
        return "No error";
    case KelvarisSDK_ErrorType_NETWORK:
        return "Network related error";
    case KelvarisSDK_ErrorType_SERVER:
        return "An error occurred on the server";
    case KelvarisSDK_ErrorType_CREDENTIALS:
        return "Invalid credentials";
    case KelvarisSDK_ErrorType_DIRECTORY:
        return "Directory related error";
    case KelvarisSDK_ErrorType_ACCOUNT:
        return "An issue with the account being used";
    case KelvarisSDK_ErrorType_TOO_MANY_REQUESTS:
        return "Too many requests are being made by this device";
    case KelvarisSDK_ErrorType_OAUTH_TOKEN_EXPIRED:
        return "The provided OAUTH token is expired";
    case KelvarisSDK_ErrorType_VPN_ADAPTER:
        return "Error opening or configuring the VPN adapter";
    case KelvarisSDK_ErrorType_ASYNC_CALL:
        return "Result is an async call SDK";
    case KelvarisSDK_ErrorType_SDK:
        return "An error in the SDK";
    case KelvarisSDK_ErrorType_TIMEOUT:
        return "Timeout waiting for result";
    case KelvarisSDK_ErrorType_INVALID_ARGUMENT:
        return "An invalid argument was supplied";
    case KelvarisSDK_ErrorType_CALLBACK_REQUIRED:
        return "A callback is required for this call";
    case KelvarisSDK_ErrorType_PLATFORM_UNSUPPORTED:
        return "Platform does not support this call";
    case KelvarisSDK_ErrorType_NOT_CONNECTED:
        return "Not able to establish connection to daemon";
    case KelvarisSDK_ErrorType_LOCKED_BY_SERVER:
        return "Setting locked by server configuration";
    case KelvarisSDK_ErrorType_SYNCHRONOUS_IN_CALLBACK:
        return "Synchronous call used from within asynchronous callback. Not supported";
    case KelvarisSDK_ErrorType_LOCKED_BY_ACCOUNT:
        return "Setting locked by account configuration";
    }
    return "Unknown error";
}

char const* KelvarisSDK_State_toString(KelvarisSDK_State state) {
    switch (state) {
    case KelvarisSDK_State_LOGGED_OUT:
        return "LOGGED_OUT";
    case KelvarisSDK_State_LOGGING_IN:
        return "LOGGING_IN";
    case KelvarisSDK_State_LOGGED_IN:
        return "LOGGED_IN";
    case KelvarisSDK_State_AUTO_CONNECTING:
        return "AUTO_CONNECTING";
    case KelvarisSDK_State_CONNECTING:
        return "CONNECTING";
    case KelvarisSDK_State_DISCONNECTING:
        return "DISCONNECTING";
    case KelvarisSDK_State_CONNECTED:
        return "CONNECTED";
    case KelvarisSDK_State_OVERLIMIT:
        return "OVERLIMIT";
    case KelvarisSDK_State_UNKNOWN:
        break;
    }
    return "UNKNOWN";
}

char const* KelvarisSDK_BondingMode_toString(KelvarisSDK_BondingMode mode) {
    switch (mode) {
    case KelvarisSDK_BondingMode_SPEED:
        break;
    case KelvarisSDK_BondingMode_REDUNDANT:
        return "redundant";
    case KelvarisSDK_BondingMode_STREAMING:
        return "streaming";
    }
    return "speed";
}

char const* KelvarisSDK_TransportMode_toString(KelvarisSDK_TransportMode mode) {
    switch (mode) {
    case KelvarisSDK_TransportMode_TCP:
        return "tcp";
    case KelvarisSDK_TransportMode_UDP:
        return "udp";
    case KelvarisSDK_TransportMode_AUTO:
        break;
    case KelvarisSDK_TransportMode_HTTPS:
        return "https";
    case KelvarisSDK_TransportMode_TCP_MULTI:
        return "tcp-multi";
    }
    return "auto";
}

char const* KelvarisSDK_PortProtocol_toString(KelvarisSDK_PortProtocol protocol) {
    return protocol == KelvarisSDK_PortProtocol_TCP ? "tcp" : "udp";
}

// session

char const* KelvarisSDK_AccountPaymentType_toString(KelvarisSDK_AccountPaymentType type) {
    switch (type) {
    case KelvarisSDK_AccountPaymentType_FREE:
        return "free";
    case KelvarisSDK_AccountPaymentType_MONTHLY:
        return "monthly";
    case KelvarisSDK_AccountPaymentType_YEARLY:
        return "yearly";
    }
    return "Unknown payment type";
}

char const* KelvarisSDK_AutoConnectMethod_toString(KelvarisSDK_AutoConnectMethod method) {
    switch (method) {
    case KelvarisSDK_AutoConnectMethod_CLOSEST:
        break;
    case KelvarisSDK_AutoConnectMethod_PRIVATE:
        return "private";
    case KelvarisSDK_AutoConnectMethod_PUBLIC:
        return "public";
    case KelvarisSDK_AutoConnectMethod_LAST:
        return "last";
    case KelvarisSDK_AutoConnectMethod_P2P:
        return "p2p";
    case KelvarisSDK_AutoConnectMethod_AUTO:
        return "auto";
    case KelvarisSDK_AutoConnectMethod_COUNTRY:
        return "country";
    case KelvarisSDK_AutoConnectMethod_PROXY:
        return "proxy";
    }
    return "closest";
}

namespace {

// A static result has 100 bytes of text, and a zero byte behind them that nothing overwrites.
class NameBuffer {
public:
    char const* set(std::string const& name) {
        std::strncpy(bytes, name.c_str(), sizeof(bytes) - 1);
        return bytes;
    }

private:
    char bytes[100 + 1];
};

NameBuffer serverInfo_buffer_country;
NameBuffer serverInfo_buffer_city;
NameBuffer serverInfo_buffer_fullName;

char const* setCountryName(KelvarisSDK_ServerInformation const& info) {
    return serverInfo_buffer_country.set(kelvarissdk::getCountry(kelvarissdk::textIn(info, info.country)));
}

char const* setCityName(KelvarisSDK_ServerInformation const& info) {
    return serverInfo_buffer_city.set(kelvarissdk::getCity(kelvarissdk::textIn(info, info.city)));
}

// Null when memory runs out.
template <class Name> char const* textOrNull(Name name) {
    try {
        return name();
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}

// Fills the two buffers of the parts as well.
char const* setFullName(KelvarisSDK_ServerInformation const& info) {
    std::string name = setCountryName(info);
    std::string const city = setCityName(info);
    if (!city.empty()) {
        name += " - " + city;
    }
    if (info.num > 0) {
        name += " #" + std::to_string(info.num);
    }
    return serverInfo_buffer_fullName.set(name);
}

} // namespace

char const* KelvarisSDK_ServerInformation_GetCountryName(KelvarisSDK_ServerInformation info) {
    return textOrNull([&] { return setCountryName(info); });
}

char const* KelvarisSDK_ServerInformation_GetCityName(KelvarisSDK_ServerInformation info) {
    return textOrNull([&] { return setCityName(info); });
}

char const* KelvarisSDK_ServerInformation_toString(KelvarisSDK_ServerInformation info) {
    return textOrNull([&] { return setFullName(info); });
}

char const* KelvarisSDK_ServerInformationDetailed_toString(KelvarisSDK_ServerInformationDetailed info) {
    KelvarisSDK_ServerInformation leading{};
    std::memcpy(&leading, &info, offsetof(KelvarisSDK_ServerInformationDetailed, torrentAllowed));
    return KelvarisSDK_ServerInformation_toString(leading);
}

// adapters

char const* KelvarisSDK_ConnectionState_toString(KelvarisSDK_ConnectionState state) {
    switch (state) {
    case KelvarisSDK_ConnectionState_DISCONNECTED:
        break;
    case KelvarisSDK_ConnectionState_CONNECTING:
        return "connecting";
    case KelvarisSDK_ConnectionState_CONNECTED:
        return "connected";
    }
    return "disconnected";
}

char const* KelvarisSDK_NetworkType_toString(KelvarisSDK_NetworkType type) {
    switch (type) {
    case KelvarisSDK_NetworkType_WIFI:
        break;
    case KelvarisSDK_NetworkType_ETHERNET:
        return "Ethernet";
    case KelvarisSDK_NetworkType_CELLULAR:
        return "Cellular";
    case KelvarisSDK_NetworkType_VPN:
        return "VPN";
    case KelvarisSDK_NetworkType_LOOPBACK:
        return "Loopback";
    case KelvarisSDK_NetworkType_BLUETOOTH:
        return "Bluetooth";
    case KelvarisSDK_NetworkType_UNKNOWN:
        return "Unknown";
    }
    return "Wi-Fi";
}

char const* KelvarisSDK_ConnectionPriority_toString(KelvarisSDK_ConnectionPriority priority) {
    switch (priority) {
    case KelvarisSDK_ConnectionPriority_ALWAYS:
        break;
    case KelvarisSDK_ConnectionPriority_SECONDARY:
        return "secondary";
    case KelvarisSDK_ConnectionPriority_BACKUP:
        return "backup";
    case KelvarisSDK_ConnectionPriority_NEVER:
        return "never";
    }
    return "always";
}

// lists

char const* KelvarisSDK_FirewallMode_toString(KelvarisSDK_FirewallMode mode) {
    switch (mode) {
    case KelvarisSDK_FirewallMode_OFF:
        return "off";
    case KelvarisSDK_FirewallMode_ALLOWLIST:
        return "allowlist";
    case KelvarisSDK_FirewallMode_DENYLIST:
        return "denylist";
    }
    return "Unknown mode";
}

// telemetry

char const* KelvarisSDK_StreamHealth_toString(KelvarisSDK_StreamHealth health) {
    switch (health) {
    case KelvarisSDK_StreamHealth_STOPPED:
        break;
    case KelvarisSDK_StreamHealth_POOR:
        return "poor";
    case KelvarisSDK_StreamHealth_GOOD:
        return "good";
    }
    return "stopped";
}

char const* KelvarisSDK_DisconnectReason_toString(KelvarisSDK_DisconnectReason reason) {
    switch (reason) {
    case KelvarisSDK_DisconnectReason_UNKNOWN:
        break;
    case KelvarisSDK_DisconnectReason_CONNECTIVITY:
        return "CONNECTIVITY";
    case KelvarisSDK_DisconnectReason_AIRPLANE:
        return "AIRPLANE";
    case KelvarisSDK_DisconnectReason_REBOOT:
        return "REBOOT";
    case KelvarisSDK_DisconnectReason_UPDATE:
        return "UPDATE";
    case KelvarisSDK_DisconnectReason_CRASH:
        return "CRASH";
    case KelvarisSDK_DisconnectReason_SLEEP:
        return "SLEEP";
    case KelvarisSDK_DisconnectReason_USERINITIATED:
        return "USERINITIATED";
    case KelvarisSDK_DisconnectReason_TORRENT:
        return "TORRENT";
    case KelvarisSDK_DisconnectReason_SERVICESTOP:
        return "SERVICESTOP";
    case KelvarisSDK_DisconnectReason_STARTTIMEOUT:
        return "STARTTIMEOUT";
    case KelvarisSDK_DisconnectReason_INACTIVETIMEOUT:
        return "INACTIVETIMEOUT";
    case KelvarisSDK_DisconnectReason_SETTINGCHANGERECONNECT:
        return "SETTINGCHANGERECONNECT";
    case KelvarisSDK_DisconnectReason_DNSTIMEOUT:
        return "DNSTIMEOUT";
    case KelvarisSDK_DisconnectReason_TUNNELTIMEOUT:
        return "TUNNELTIMEOUT";
    case KelvarisSDK_DisconnectReason_OVERQUOTA:
        return "OVERQUOTA";
    case KelvarisSDK_DisconnectReason_SAFENETWORK:
        return "SAFENETWORK";
    }
    return "UNKNOWN";
}

char const* KelvarisSDK_SpeedTestType_toString(KelvarisSDK_SpeedTestType type) {
    return type == KelvarisSDK_SpeedTestType_STREAMING ? "streaming" : "speed";
}

// safebrowsing

char const* KelvarisSDK_SafeBrowsing_LogLevel_toString(KelvarisSDK_SafeBrowsingLogLevel level) {
    switch (level) {
    case KelvarisSDK_SafeBrowsingLogLevel_DEBUG:
        break;
    case KelvarisSDK_SafeBrowsingLogLevel_INFO:
        return "info";
    case KelvarisSDK_SafeBrowsingLogLevel_ERROR:
        return "error";
    case KelvarisSDK_SafeBrowsingLogLevel_TRACE:
        return "trace";
    case KelvarisSDK_SafeBrowsingLogLevel_WARNING:
        return "warning";
    }
    return "debug";
}

char const*
KelvarisSDK_SafeBrowsing_SafeNetworkOverride_toString(KelvarisSDK_SafeBrowsingSafeNetworkOverride value) {
    switch (value) {
    case KelvarisSDK_SafeBrowsingSafeNetworkOverride_NONE:
        break;
    case KelvarisSDK_SafeBrowsingSafeNetworkOverride_UNSAFE:
        return "unsafe";
    case KelvarisSDK_SafeBrowsingSafeNetworkOverride_SAFE:
        return "safe";
    }
    return "none";
}
