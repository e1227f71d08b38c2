/*
 * What all families of the interface share: the handle, the head of every record, error types, session
 * states.
 *
 * Include csdkinterface.h; it opens with the conventions and brings in this header and all families.
 */
#ifndef KELVARISSDK_TYPES_H
#define KELVARISSDK_TYPES_H

#include <stdbool.h>
#include <stdint.h>

#if defined(__GNUC__)
#define KELVARISSDK_API __attribute__((visibility("default")))
#else
#define KELVARISSDK_API
#endif

/* Enumerations have 32 bits without sign in C and in C++, so that any number is a valid value of them:
 * enum KELVARISSDK_TAG(Name) KELVARISSDK_UINT32 { ... };
 * KELVARISSDK_ENUM(Name)
 * C has the constants in an enumeration without a tag, since a tag of the same word would name another type. */
#ifdef __cplusplus
#define KELVARISSDK_TAG(name) name
#define KELVARISSDK_UINT32 : uint32_t
#define KELVARISSDK_ENUM(name) static_assert(sizeof(name) == sizeof(uint32_t), "an enumeration has 32 bits");
#else
#define KELVARISSDK_TAG(name)
#define KELVARISSDK_UINT32
#define KELVARISSDK_ENUM(name) typedef uint32_t name;
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** A library object: one link to the daemon with its threads. From KelvarisSDK_CreateWithSettings. */
typedef struct KelvarisSDK_Handle KelvarisSDK_Handle;

/** The head of every result record. */
typedef struct KelvarisSDK_BaseResult {
    bool error;             /* the call failed; the code alone doesn't say so */
    int32_t errorCode;      /* a KelvarisSDK_ErrorType: cast it for KelvarisSDK_ErrorType_toString */
    char errorMessage[200]; /* text; no terminator when full */
    uint64_t callbackId; /* for KelvarisSDK_UnregisterCallback; of no meaning where the call failed at once */
} KelvarisSDK_BaseResult;

/** Why a call failed. 0 to 8 come from the daemon, the others from the library. */
enum KELVARISSDK_TAG(KelvarisSDK_ErrorType) KELVARISSDK_UINT32 {
    KelvarisSDK_ErrorType_NO_ERROR = 0,
    KelvarisSDK_ErrorType_NETWORK = 1,
    KelvarisSDK_ErrorType_SERVER = 2,
    KelvarisSDK_ErrorType_CREDENTIALS = 3,
    KelvarisSDK_ErrorType_DIRECTORY = 4,
    KelvarisSDK_ErrorType_ACCOUNT = 5,
    KelvarisSDK_ErrorType_TOO_MANY_REQUESTS = 6,
    KelvarisSDK_ErrorType_OAUTH_TOKEN_EXPIRED = 7,
    KelvarisSDK_ErrorType_VPN_ADAPTER = 8,
    KelvarisSDK_ErrorType_ASYNC_CALL = 3584, /* no failure: the callback brings the result */
    KelvarisSDK_ErrorType_SDK = 3840,        /* a report that can't be read; ConnectAuto's refusal */
    KelvarisSDK_ErrorType_TIMEOUT = 3841,    /* no report in time; the link is open, or closed for good */
    KelvarisSDK_ErrorType_INVALID_ARGUMENT = 3842,        /* refused before anything was sent */
    KelvarisSDK_ErrorType_CALLBACK_REQUIRED = 3843,       /* the call has no synchronous form */
    KelvarisSDK_ErrorType_PLATFORM_UNSUPPORTED = 3844,    /* not raised */
    KelvarisSDK_ErrorType_NOT_CONNECTED = 3845,           /* no report in time, no link; it is tried again */
    KelvarisSDK_ErrorType_LOCKED_BY_SERVER = 3846,        /* the setting can't be changed */
    KelvarisSDK_ErrorType_SYNCHRONOUS_IN_CALLBACK = 3847, /* refused on the library's thread */
    KelvarisSDK_ErrorType_LOCKED_BY_ACCOUNT = 3848        /* the setting can't be changed */
};
KELVARISSDK_ENUM(KelvarisSDK_ErrorType)

/** The text of an error type; "Unknown error" for any other number. A constant; never freed. */
KELVARISSDK_API char const* KelvarisSDK_ErrorType_toString(KelvarisSDK_ErrorType type);

/** State of the daemon's session. */
enum KELVARISSDK_TAG(KelvarisSDK_State) KELVARISSDK_UINT32 {
    KelvarisSDK_State_LOGGED_OUT = 0,
    KelvarisSDK_State_LOGGING_IN = 1,
    KelvarisSDK_State_LOGGED_IN = 2,
    KelvarisSDK_State_AUTO_CONNECTING = 3,
    KelvarisSDK_State_CONNECTING = 4,
    KelvarisSDK_State_DISCONNECTING = 5,
    KelvarisSDK_State_CONNECTED = 6,
    KelvarisSDK_State_OVERLIMIT = 7,
    KelvarisSDK_State_UNKNOWN = 8 /* what any other number of the daemon is read as */
};
KELVARISSDK_ENUM(KelvarisSDK_State)

/** "LOGGED_OUT", "LOGGED_IN" and so on; "UNKNOWN" for any other number. A constant; never freed. */
KELVARISSDK_API char const* KelvarisSDK_State_toString(KelvarisSDK_State state);

/** The session's state, from report_current_state. */
typedef struct KelvarisSDK_StateResult {
    KelvarisSDK_BaseResult base;
    KelvarisSDK_State state;
} KelvarisSDK_StateResult;

typedef bool (*KelvarisSDK_StateCallback)(KelvarisSDK_StateResult result, void* userData);

/** How the daemon uses several adapters at once. Any other number is taken as speed. */
enum KELVARISSDK_TAG(KelvarisSDK_BondingMode) KELVARISSDK_UINT32 {
    KelvarisSDK_BondingMode_SPEED = 0,
    KelvarisSDK_BondingMode_REDUNDANT = 1,
    KelvarisSDK_BondingMode_STREAMING = 2
};
KELVARISSDK_ENUM(KelvarisSDK_BondingMode)

/** "speed", "redundant" or "streaming"; "speed" for any other number. A constant; never freed. */
KELVARISSDK_API char const* KelvarisSDK_BondingMode_toString(KelvarisSDK_BondingMode mode);

/** How the tunnel's packets travel. Any other number is taken as auto. */
enum KELVARISSDK_TAG(KelvarisSDK_TransportMode) KELVARISSDK_UINT32 {
    KelvarisSDK_TransportMode_TCP = 0,
    KelvarisSDK_TransportMode_UDP = 1,
    KelvarisSDK_TransportMode_AUTO = 2,
    KelvarisSDK_TransportMode_HTTPS = 3,
    KelvarisSDK_TransportMode_TCP_MULTI = 4
};
KELVARISSDK_ENUM(KelvarisSDK_TransportMode)

/** "tcp", "udp", "auto", "https" or "tcp-multi"; "auto" for any other number. A constant; never freed. */
KELVARISSDK_API char const* KelvarisSDK_TransportMode_toString(KelvarisSDK_TransportMode mode);

/** The protocol of a port. */
enum KELVARISSDK_TAG(KelvarisSDK_PortProtocol) KELVARISSDK_UINT32 {
    KelvarisSDK_PortProtocol_TCP = 0,
    KelvarisSDK_PortProtocol_UDP = 1
};
KELVARISSDK_ENUM(KelvarisSDK_PortProtocol)

/** "tcp" for 0, "udp" for any other number. A constant; never freed. */
KELVARISSDK_API char const* KelvarisSDK_PortProtocol_toString(KelvarisSDK_PortProtocol protocol);

/**
 * A port of a protocol. In a report, a protocol that is neither "tcp" nor "udp" leaves the field as it was:
 * TCP in the first report.
 */
typedef struct KelvarisSDK_ProtocolPortPair {
    KelvarisSDK_PortProtocol protocol;
    uint16_t port; /* the port's number, cut to its low 16 bits when it is read */
} KelvarisSDK_ProtocolPortPair;

#ifdef __cplusplus
}
#endif

#endif
