/*
 * The C interface of the Kelvaris client library. Include this header; it brings in all families.
 *
 * CONVENTIONS
 *
 *  1. Life of a handle. KelvarisSDK_CreateWithSettings starts the library's reader thread and begins to
 *     connect; it doesn't wait for the connection. Calls may follow at once: they wait for the link as
 *     they wait for the daemon. A lost link is made again, with an attempt every 250 ms, for as long as
 *     the handle lives; only a daemon that closes the WebSocket properly, or breaks its protocol, is
 *     not tried again. KelvarisSDK_Destroy ends the threads and returns when they have ended. A process
 *     may hold any number of handles.
 *
 *  2. Arguments. The handle comes first, then the call's own arguments, then the callback, then the
 *     user data. On a null handle every call returns the record of a missing link: SDK (3840). Texts
 *     are zero-terminated UTF-8 and copied before the call returns. Arrays go in as a count and a pointer;
 *     what is beyond the capacity that a block names isn't sent. They are read before the call returns and
 *     never written; with a count of 0 the pointer may be null. A null text or array is refused with
 *     INVALID_ARGUMENT (3842), where no block gives it a meaning, and nothing is sent.
 *
 *  3. Records come back by value and hold everything in fixed arrays: the caller frees nothing, and
 *     one memory copy copies a record. Every record begins with KelvarisSDK_BaseResult. A field that
 *     the daemon's report left out is false, 0, empty, or what the note at the field says; a list that
 *     it left out is empty. A number that doesn't fit the field's type makes the whole report unreadable
 *     (see 6), but for the fields of 16 bits, which take its low 16 bits. The notes at the fields name
 *     units and capacities; where a note says "as reported", the daemon defines the unit.
 *
 *  4. Texts in records fill their field over its full width. A text as long as the field has NO
 *     terminator, so strlen and "%s" may run on into the next field. printf stops at the field's end
 *     with "%.*s":
 *         printf("%.*s", (int)sizeof(r.errorMessage), r.errorMessage);
 *     and a copy with a byte more has its terminator:
 *         char text[sizeof(r.errorMessage) + 1] = "";
 *         memcpy(text, r.errorMessage, sizeof(r.errorMessage));
 *     A text longer than the field is cut, possibly within a character.
 *
 *  5. Lists in records are an array of fixed capacity and a count of the elements in use. What a
 *     report holds beyond the capacity is dropped.
 *
 *  6. Errors. A call has no status: `error` in the record's head says that it failed, `errorCode` and
 *     `errorMessage` say why. The code is a KelvarisSDK_ErrorType in the width of the wire; its text is
 *         KelvarisSDK_ErrorType_toString((KelvarisSDK_ErrorType)r.errorCode)
 *     Where a block below names no errors, the call can end with TIMEOUT (3841) or NOT_CONNECTED (3845)
 *     after its time-out, with SDK (3840) when a report can't be read, and with SYNCHRONOUS_IN_CALLBACK
 *     (3847). A call that changes a setting can also end with LOCKED_BY_SERVER (3846) or
 *     LOCKED_BY_ACCOUNT (3848); a lock for any other reason ends it with `error` false and a record that
 *     holds no report. The time-out is 5 seconds where a block names no other. It begins with the call;
 *     while callbacks of the handle run, it begins when they have returned. It guards the wait for the
 *     first report only: the report of a server before the connection stands, or the lock of another
 *     setting, ends the guard, and the call then waits without limit. A state that doesn't end the call
 *     leaves the guard, as do settings of safe browsing that aren't initialized yet. No time-out comes while
 *     the library looks up the address, connects, or waits for the daemon to complete the upgrade, none of
 *     which it limits.
 *     Memory that runs out ends a call with SDK (3840), "Error from SDK", and nothing of the call is sent;
 *     when it runs out on the reader thread, the link is lost and made again, and the calls that wait for
 *     their reports end by their time-outs. The handle stays usable. One C++ exception can leave the
 *     interface: std::system_error leaves KelvarisSDK_CreateWithSettings when a thread can't be started.
 *
 *  7. Synchronous and asynchronous. With a null callback a call waits and returns the finished record.
 *     With a callback it returns at once: `error` false, `errorCode` 3584, `callbackId` the id of the
 *     call; the callback gets the finished record later. That record's `errorCode` may still be 3584,
 *     or code and message those of an earlier error: look at `error` only. A call that is refused for
 *     its arguments returns at once too, with `error` true and no id of its own, and its callback never
 *     runs.
 *
 *  8. User data belong to the caller. The library doesn't touch what they point to; it hands them to the
 *     callback. So they may be freed
 *       - at once when an asynchronous call returned with `error` true,
 *       - by the callback itself when it runs for a call that isn't a subscription, or returns false,
 *       - after KelvarisSDK_UnregisterCallback has returned, if the callback hasn't freed them before,
 *       - after KelvarisSDK_Destroy has returned; calls that still waited end without their callback.
 *     KelvarisSDK_StartSafeBrowsing and KelvarisSDK_StopSafeBrowsing call back twice.
 *
 *  9. Callbacks run on the library's reader thread, one at a time per handle, with the user data of
 *     the call. On their own handle they may make asynchronous calls, use KelvarisSDK_DaemonExit and
 *     KelvarisSDK_EnableStatUpdates, and unregister any call; they may use everything that takes no
 *     handle. They must not wait: while one runs, nothing is sent or received on that handle, so
 *     synchronous calls and KelvarisSDK_UnregisterCallback of other threads wait for it. So a callback
 *     must not take a lock that such a thread holds, and callbacks of two handles must not unregister
 *     each other's calls. A synchronous call on any handle is refused there with 3847, and
 *     KelvarisSDK_Destroy must not be called. A C++ exception that leaves a callback ends the process by
 *     std::terminate, which runs the handler that the program has set.
 *
 * 10. Subscriptions. Calls marked "subscription" go on delivering each later report of their kind,
 *     whoever has asked for it, while their callback returns true; false ends them. All others end with
 *     their first result, whatever their callback returns. From outside, KelvarisSDK_UnregisterCallback
 *     ends either. An error record (a time-out, for example) doesn't end a subscription whose callback
 *     returns true.
 *
 * 11. Threads. Any thread may use a handle, also several at once. Who destroys it must know that no
 *     other thread is inside a call on it: such a call would never return. Functions that return text
 *     from a static buffer say so; one thread at a time may use them.
 *
 * 12. Stack. A synchronous call needs the size of the record that it returns and up to 4 KiB more. A
 *     callback gets its record by value. The sizes in bytes, with 64-bit pointers:
 *
 *         KelvarisSDK_BaseResult                  216    KelvarisSDK_DirectorySettingsResult     424
 *         KelvarisSDK_StateResult                 224    KelvarisSDK_SafeBrowsingResult          440
 *         KelvarisSDK_VersionResult               224    KelvarisSDK_SafeBrowsingBlockResult     472
 *         KelvarisSDK_DisconnectEventResult       240    KelvarisSDK_AccountingResult            560
 *         KelvarisSDK_ServerSettingsResult        256    KelvarisSDK_SafeBrowsingErrorResult     680
 *         KelvarisSDK_SafeBrowsingStatsResult     272    KelvarisSDK_ConnectResult               808
 *         KelvarisSDK_CaptivePortalLoginResult    320    KelvarisSDK_SessionStatsResult         1624
 *         KelvarisSDK_PrivacySettingsResult       368    KelvarisSDK_SpeedTestResult            1664
 *         KelvarisSDK_StreamingStatsResult       1752    KelvarisSDK_ConnectionStatsResult     11232
 *         KelvarisSDK_CaptivePortalCheckResult   2720    KelvarisSDK_AdaptersResult            14624
 *         KelvarisSDK_SettingsResult             5504    KelvarisSDK_DirectoryResult           16224
 *         KelvarisSDK_FirewallSettingsResult     8032    KelvarisSDK_LocalProxySettingsResult  38944
 *         KelvarisSDK_StreamingSettingsResult    8032
 *
 * 13. The process. The library's threads block all signals but SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP and
 *     SIGSYS, so the program's own threads get them. What a callback forks off or starts inherits that
 *     mask. In a process made by fork(), calls on a handle of the parent return at once with SDK (3840),
 *     KelvarisSDK_Destroy frees it without waiting and without a byte to the daemon, and new handles work;
 *     the parent's handles don't notice. What the parent's threads were changing at the moment of the fork
 *     isn't freed. When a callback returns in a process that it has forked off, that process ends as its
 *     only thread does: by exit() with status 0. A process may end with handles that live. A thread may be
 *     cancelled (pthread_cancel) while it waits in a call; a handle is made or destroyed in full first.
 *
 * 14. Data models. The fields have the same places and sizes on all machines, but for one that holds a record
 *     of the system: where `long` has 32 bits, `periodEndDate` has 44 bytes instead of 56, and the record around
 *     it, KelvarisSDK_AccountingResult, has 552. On 32-bit x86, where numbers of 64 bits stand at multiples of
 *     4, other records differ as well; kelvarissdk-abi.json has the places and sizes of the machine that it is
 *     installed on. No record and no call has a time_t: time stamps have 64 bits. The library itself is built
 *     with a time_t of 64 bits, and reads times after January 2038 right, where the C library offers one; with
 *     glibc before 2.34 on 32-bit machines they are 0.
 */
#ifndef KELVARISSDK_CSDKINTERFACE_H
#define KELVARISSDK_CSDKINTERFACE_H

#include <kelvarissdk/adapters.h>
#include <kelvarissdk/lists.h>
#include <kelvarissdk/safebrowsing.h>
#include <kelvarissdk/session.h>
#include <kelvarissdk/settings.h>
#include <kelvarissdk/telemetry.h>
#include <kelvarissdk/types.h>
#include <kelvarissdk/version.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Life of a handle ---- */

/** What KelvarisSDK_CreateWithSettings takes. Fill it with KelvarisSDK_InitializeCreateSettings first. */
typedef struct KelvarisSDK_CreateSettings {
    char appName
        [32]; /* the name by which the daemon knows the program; may fill the field; empty: none is sent */
    char address[46]; /* the daemon's IPv4 address or host name, at most 45 bytes and a terminator */
    uint16_t port;    /* the daemon's TCP port */
} KelvarisSDK_CreateSettings;

/** Sets the defaults: no application name, address 127.0.0.1, port 9330. */
KELVARISSDK_API void KelvarisSDK_InitializeCreateSettings(KelvarisSDK_CreateSettings* settings);

/**
 * Makes a handle, starts its reader thread and begins to connect. That no daemon can be reached is reported
 * by the calls that follow. The caller owns the handle until KelvarisSDK_Destroy. Null when memory runs out.
 */
KELVARISSDK_API KelvarisSDK_Handle* KelvarisSDK_CreateWithSettings(KelvarisSDK_CreateSettings settings);

/**
 * Ends the handle's threads and frees it; null is ignored. Requests that are queued still leave if the link
 * is open. Calls that wait for their callback end without one, and after the return no callback runs. Not to
 * be called from a callback, nor while another thread is inside a call on this handle. An address that is
 * looked up slowly or doesn't answer holds it up, and so does a daemon that never completes the upgrade.
 */
KELVARISSDK_API void KelvarisSDK_Destroy(KelvarisSDK_Handle* sdk);

/**
 * Ends the call with this `callbackId`. When the function returns, no further callback of that call runs;
 * from another thread it waits for one that is running. Inside a callback it may name any call, its own too.
 * An unknown id is ignored. 0 is an id like any other: name only what an asynchronous call returned that
 * didn't fail.
 */
KELVARISSDK_API void KelvarisSDK_UnregisterCallback(KelvarisSDK_Handle* sdk, unsigned long long callbackId);

/* ---- First calls ---- */

/** The daemon's version, from report_version_data; each number is cut to its low 16 bits. */
typedef struct KelvarisSDK_VersionResult {
    KelvarisSDK_BaseResult base;
    uint16_t maj;
    uint16_t min;
    uint16_t bug;
    uint16_t build;
} KelvarisSDK_VersionResult;

typedef bool (*KelvarisSDK_VersionCallback)(KelvarisSDK_VersionResult result, void* userData);

/** The session's state. Subscription: every later report of it. */
KELVARISSDK_API KelvarisSDK_StateResult KelvarisSDK_GetState(KelvarisSDK_Handle* sdk,
                                                             KelvarisSDK_StateCallback callback,
                                                             void* userData);

/** The daemon's version. */
KELVARISSDK_API KelvarisSDK_VersionResult KelvarisSDK_GetVersion(KelvarisSDK_Handle* sdk,
                                                                 KelvarisSDK_VersionCallback callback,
                                                                 void* userData);

/** Asks the daemon to end. Waits for nothing; `error` is false once the request is queued. */
KELVARISSDK_API KelvarisSDK_BaseResult KelvarisSDK_DaemonExit(KelvarisSDK_Handle* sdk);

#ifdef __cplusplus
}
#endif

#endif
