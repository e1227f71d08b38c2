/*
 * Telemetry: statistics of connections, sessions and streams, why the last session ended, speed tests.
 *
 * Numbers are passed on as reported; the library calculates with none of them but the two benefits of a
 * session. A note that says "as reported" stands where the report doesn't tell the unit.
 *
 * Include csdkinterface.h; it opens with the conventions and brings in this header.
 */
#ifndef KELVARISSDK_TELEMETRY_H
#define KELVARISSDK_TELEMETRY_H

#include <kelvarissdk/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Periodic reports ---- */

/**
 * Asks the daemon to send its statistics at regular intervals, or no longer to do so. The reports reach those
 * who subscribed to them. While they are wanted the library repeats the request every 45 seconds, so that the
 * reports go on after a lost link. The first repeat leaves within 250 ms; when the last one of an earlier
 * subscription was less than 45 seconds ago, the first leaves when those are over. A repeat carries no
 * periods: a daemon that was restarted meanwhile doesn't know them until this function is called with them
 * again.
 *
 * `periods` are those of the session statistics, in hours: 0 is the current session, 4294967295 all time. At
 * most five are sent; a `periodCount` of five or more takes five values from the array. With `enable` false
 * or a `periodCount` of 0 it isn't read and may be null. Waits for nothing: `error` is false once the request
 * is queued. It is SDK (3840) when the thread that repeats the request, which the first subscription of a
 * handle starts, can't be started. May be called in a callback.
 */
KELVARISSDK_API KelvarisSDK_BaseResult KelvarisSDK_EnableStatUpdates(KelvarisSDK_Handle* sdk, bool enable,
                                                                     unsigned char periodCount,
                                                                     unsigned int* periods);

/* ---- Connections ---- */

/** How one bonded connection is doing. */
typedef struct KelvarisSDK_ConnectionStats {
    int64_t inFlight;       /* bytes on their way */
    int64_t inFlightWindow; /* bytes that may be on their way at once */
    bool connected;
    bool sleeping;          /* as reported */
    char adapterID[100];    /* text; no terminator when full */
    char connectionID[100]; /* text; no terminator when full */
    char localIp[46];       /* text; no terminator when full */
    double lossReceive;     /* ratio from 0 to 1, as is the next */
    double lossSend;
    int64_t latencyMs;                  /* milliseconds */
    char privateIp[46];                 /* text; no terminator when full */
    KelvarisSDK_TransportMode protocol; /* AUTO: none reported; a name that is none leaves what stood here */
    int32_t numberOfSockets;            /* a count */
    char remoteIp[46];                  /* text; no terminator when full */
    int64_t totalBps;                   /* bits per second, as are the next two */
    int64_t sendBps;
    int64_t receiveBps;
    double sendEstimateMbps; /* Mbit/s, as is the next */
    double receiveEstimateMbps;
    int32_t jitterMs; /* milliseconds */
    float mos;        /* mean opinion score */
} KelvarisSDK_ConnectionStats;

/** All connections at one moment. */
typedef struct KelvarisSDK_ConnectionStatsGroup {
    uint64_t time;            /* milliseconds since the epoch; 0: none reported, and then no connections */
    uint16_t connectionCount; /* elements of `connections` in use */
    KelvarisSDK_ConnectionStats connections[25];
} KelvarisSDK_ConnectionStatsGroup;

/** From report_connection_stats. */
typedef struct KelvarisSDK_ConnectionStatsResult {
    KelvarisSDK_BaseResult base;
    KelvarisSDK_ConnectionStatsGroup stats;
} KelvarisSDK_ConnectionStatsResult;

typedef bool (*KelvarisSDK_ConnectionStatsCallback)(KelvarisSDK_ConnectionStatsResult result, void* userData);

/** The state of all bonded connections. Subscription: every later report, see KelvarisSDK_EnableStatUpdates.
 */
KELVARISSDK_API KelvarisSDK_ConnectionStatsResult KelvarisSDK_GetConnectionStats(
    KelvarisSDK_Handle* sdk, KelvarisSDK_ConnectionStatsCallback callback, void* userData);

/* ---- Sessions ---- */

/** What was counted in one period. */
typedef struct KelvarisSDK_SessionStats {
    uint32_t periodHours;  /* hours; 0: the current session, 4294967295: all time */
    int64_t bytesReceived; /* bytes, as are the next three */
    int64_t bytesSent;
    int64_t encryptedBytesReceived;
    int64_t encryptedBytesSent;
    double maxDownloadSpeed; /* Mbit/s */
    double maxUploadSpeed;   /* Mbit/s */
    int32_t daysSinceFirst;  /* days */
    int64_t numFailovers;    /* a count, as is the next */
    int64_t numSessions;
    int64_t retransBytes;          /* bytes */
    int64_t periodStartTime;       /* milliseconds since the epoch */
    int64_t totalConnectedMinutes; /* minutes */
    double mbpsDownBenefit; /* Mbit/s: bonding's gain over the fastest connection; 0 without connections */
    double mbpsUpBenefit;   /* the same for sending */
    uint64_t tunPacketsIn;  /* packets, as is the next */
    uint64_t tunPacketsOut;
    uint64_t tunBytesIn; /* bytes, as is the next */
    uint64_t tunBytesOut;
    uint64_t tunBufferWaits; /* a count, as is the next */
    uint64_t tunPacketWaits;
    uint64_t tunReadQueue;       /* as reported */
    uint64_t tunDroppedIncoming; /* a count */
    uint64_t handlerPacketsIn;   /* packets, as is the next */
    uint64_t handlerPacketsOut;
    uint64_t handlerBytesIn; /* bytes, as is the next */
    uint64_t handlerBytesOut;
    uint64_t handlerRetries; /* a count, as are all that follow */
    uint64_t captivePortalDetections;
    uint64_t captivePortalSuccesses;
    uint64_t totalFailoverSaves;
    uint64_t totalSpeedModeSaves;
    uint64_t totalRedundantModeSaves;
    uint64_t totalStreams;
    uint64_t uniqueSaves;
} KelvarisSDK_SessionStats;

/** From report_session_stats. */
typedef struct KelvarisSDK_SessionStatsResult {
    KelvarisSDK_BaseResult base;
    uint16_t periodCount;                /* elements of `periods` in use */
    KelvarisSDK_SessionStats periods[5]; /* sorted by the text of their hours: 0, 168, 24 */
} KelvarisSDK_SessionStatsResult;

typedef bool (*KelvarisSDK_SessionStatsCallback)(KelvarisSDK_SessionStatsResult result, void* userData);

/** Counters of the periods named to KelvarisSDK_EnableStatUpdates. Subscription: every later report. */
KELVARISSDK_API KelvarisSDK_SessionStatsResult KelvarisSDK_GetSessionStats(
    KelvarisSDK_Handle* sdk, KelvarisSDK_SessionStatsCallback callback, void* userData);

/* ---- Streams ---- */

/** How a stream is doing. */
enum KELVARISSDK_TAG(KelvarisSDK_StreamHealth) KELVARISSDK_UINT32 {
    KelvarisSDK_StreamHealth_STOPPED = 0, /* also what any other number of the daemon is read as */
    KelvarisSDK_StreamHealth_POOR = 1,
    KelvarisSDK_StreamHealth_GOOD = 2
};
KELVARISSDK_ENUM(KelvarisSDK_StreamHealth)

/** "stopped", "poor" or "good"; "stopped" for any other number. A constant; never freed. */
KELVARISSDK_API char const* KelvarisSDK_StreamHealth_toString(KelvarisSDK_StreamHealth health);

/** A stream that the daemon follows. */
typedef struct KelvarisSDK_StreamStats {
    bool active;
    uint64_t duration; /* milliseconds */
    uint64_t id;
    uint64_t groupId;
    uint64_t startTime; /* milliseconds since the epoch */
    double uploadSpeed; /* Mbit/s, as are the next three */
    double downloadSpeed;
    double averageUploadSpeed;
    double averageDownloadSpeed;
    uint64_t redundantModeSaves; /* a count, as are the next two */
    uint64_t speedModeSaves;
    uint64_t failoverSaves;
    char name[50]; /* text; no terminator when full */
    KelvarisSDK_StreamHealth health;
} KelvarisSDK_StreamStats;

/** From report_streaming_stats. */
typedef struct KelvarisSDK_StreamingStatsResult {
    KelvarisSDK_BaseResult base;
    KelvarisSDK_BondingMode bondingMode;
    uint32_t streamCount; /* elements of `streams` in use */
    KelvarisSDK_StreamStats streams[10];
    bool badLoss; /* this and the next three: the report's flags of what is bad */
    bool badLatency;
    bool badCpu;
    bool badMemory;
} KelvarisSDK_StreamingStatsResult;

typedef bool (*KelvarisSDK_StreamingStatsCallback)(KelvarisSDK_StreamingStatsResult result, void* userData);

/** The streams and their health. Subscription: every later report, see KelvarisSDK_EnableStatUpdates. */
KELVARISSDK_API KelvarisSDK_StreamingStatsResult KelvarisSDK_GetStreamingStats(
    KelvarisSDK_Handle* sdk, KelvarisSDK_StreamingStatsCallback callback, void* userData);

/* ---- The end of the last session ---- */

/** Why a session ended. */
enum KELVARISSDK_TAG(KelvarisSDK_DisconnectReason) KELVARISSDK_UINT32 {
    KelvarisSDK_DisconnectReason_UNKNOWN = 0, /* also what any other text of the daemon is read as */
    KelvarisSDK_DisconnectReason_CONNECTIVITY = 1,
    KelvarisSDK_DisconnectReason_AIRPLANE = 2,
    KelvarisSDK_DisconnectReason_REBOOT = 3,
    KelvarisSDK_DisconnectReason_UPDATE = 4,
    KelvarisSDK_DisconnectReason_CRASH = 5,
    KelvarisSDK_DisconnectReason_SLEEP = 6,
    KelvarisSDK_DisconnectReason_USERINITIATED = 7,
    KelvarisSDK_DisconnectReason_TORRENT = 8,
    KelvarisSDK_DisconnectReason_SERVICESTOP = 9,
    KelvarisSDK_DisconnectReason_STARTTIMEOUT = 10,
    KelvarisSDK_DisconnectReason_INACTIVETIMEOUT = 11,
    KelvarisSDK_DisconnectReason_SETTINGCHANGERECONNECT = 12,
    KelvarisSDK_DisconnectReason_DNSTIMEOUT = 13,
    KelvarisSDK_DisconnectReason_TUNNELTIMEOUT = 14,
    KelvarisSDK_DisconnectReason_OVERQUOTA = 15,
    KelvarisSDK_DisconnectReason_SAFENETWORK = 16
};
KELVARISSDK_ENUM(KelvarisSDK_DisconnectReason)

/** "CONNECTIVITY", "AIRPLANE" and so on; "UNKNOWN" for any other number. A constant; never freed. */
KELVARISSDK_API char const* KelvarisSDK_DisconnectReason_toString(KelvarisSDK_DisconnectReason reason);

/** From report_disconnect_reason. */
typedef struct KelvarisSDK_DisconnectEventResult {
    KelvarisSDK_BaseResult base;
    KelvarisSDK_DisconnectReason disconnectReason;
    int64_t sessionEnd;    /* time stamp, unit as reported */
    int64_t sessionLength; /* unit as reported */
} KelvarisSDK_DisconnectEventResult;

typedef bool (*KelvarisSDK_DisconnectEventCallback)(KelvarisSDK_DisconnectEventResult result, void* userData);

/** Why and when the last session ended. Subscription: every later report of it. */
KELVARISSDK_API KelvarisSDK_DisconnectEventResult KelvarisSDK_GetLastDisconnectEvent(
    KelvarisSDK_Handle* sdk, KelvarisSDK_DisconnectEventCallback callback, void* userData);

/* ---- Speed and stream tests ---- */

/** What a test measured. */
enum KELVARISSDK_TAG(KelvarisSDK_SpeedTestType) KELVARISSDK_UINT32 {
    KelvarisSDK_SpeedTestType_SPEED = 0,
    KelvarisSDK_SpeedTestType_STREAMING = 1 /* 2 in the report */
};
KELVARISSDK_ENUM(KelvarisSDK_SpeedTestType)

/** "speed" or "streaming"; "speed" for any other number. A constant; never freed. */
KELVARISSDK_API char const* KelvarisSDK_SpeedTestType_toString(KelvarisSDK_SpeedTestType type);

/** One finished test. */
typedef struct KelvarisSDK_SpeedTestEntry {
    int64_t time;     /* seconds since the epoch, from a local time in the report; 0: none that can be read */
    char country[10]; /* text; no terminator when full */
    char city[20];    /* text; no terminator when full */
    uint16_t numConnections; /* a count, cut to its low 16 bits */
    double downloadSpeed;    /* unit as reported, as is the next */
    double uploadSpeed;
    bool isError;           /* the test failed; `errorMessage` says why */
    char errorMessage[200]; /* text; no terminator when full */
    KelvarisSDK_SpeedTestType type;
    char resolution[6]; /* text; no terminator when full; this and the next two: of a stream test only */
    uint16_t fps;       /* frames per second, cut to its low 16 bits */
    uint16_t jitter;    /* unit as reported, cut to its low 16 bits, as is the next */
    uint16_t latency;
    double loss; /* unit as reported; of a stream test only */
} KelvarisSDK_SpeedTestEntry;

/** From report_speedtest_results. */
typedef struct KelvarisSDK_SpeedTestResult {
    KelvarisSDK_BaseResult base;
    uint16_t testCount; /* elements of `tests` in use */
    KelvarisSDK_SpeedTestEntry tests[5];
} KelvarisSDK_SpeedTestResult;

typedef bool (*KelvarisSDK_SpeedTestCallback)(KelvarisSDK_SpeedTestResult result, void* userData);

/** The daemon's list of tests, its first five. Subscription: every later report of the list. */
KELVARISSDK_API KelvarisSDK_SpeedTestResult KelvarisSDK_GetSpeedTestResults(
    KelvarisSDK_Handle* sdk, KelvarisSDK_SpeedTestCallback callback, void* userData);

/**
 * Measures download and upload. The record holds the newest test of the daemon's list, or none when the list
 * has no time that can be read. A test that failed is no error of the call: its entry says so. Time-out: 60
 * seconds.
 */
KELVARISSDK_API KelvarisSDK_SpeedTestResult KelvarisSDK_StartSpeedTest(KelvarisSDK_Handle* sdk,
                                                                       KelvarisSDK_SpeedTestCallback callback,
                                                                       void* userData);

/** Measures how a video would stream; otherwise like KelvarisSDK_StartSpeedTest. Time-out: 200 seconds. */
KELVARISSDK_API KelvarisSDK_SpeedTestResult
KelvarisSDK_StartStreamTest(KelvarisSDK_Handle* sdk, KelvarisSDK_SpeedTestCallback callback, void* userData);

#ifdef __cplusplus
}
#endif

#endif
