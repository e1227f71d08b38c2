// The texts of the enumerations.

#include <kelvarissdk/csdkinterface.h>

// core

const char* KelvarisSDK_ErrorType_toString(KelvarisSDK_ErrorType type) {
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

const char* KelvarisSDK_State_toString(KelvarisSDK_State state) {
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

const char* KelvarisSDK_BondingMode_toString(KelvarisSDK_BondingMode mode) {
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

const char* KelvarisSDK_TransportMode_toString(KelvarisSDK_TransportMode mode) {
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

const char* KelvarisSDK_PortProtocol_toString(KelvarisSDK_PortProtocol protocol) {
    return protocol == KelvarisSDK_PortProtocol_TCP ? "tcp" : "udp";
}

// session

// settings

// adapters

// lists

const char* KelvarisSDK_FirewallMode_toString(KelvarisSDK_FirewallMode mode) {
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

// safebrowsing
