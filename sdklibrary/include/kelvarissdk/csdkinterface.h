/*
 * The C interface of the Kelvaris client library. Include this header; it brings in all families.
 *
 * CONVENTIONS
 *
 *  1. Life of a handle. KelvarisSDK_CreateWithSettings starts the library's threads and begins to
 *     connect; it doesn't wait for the connection. Calls may follow at once: they wait for the link as
 *     they wait for the daemon. A lost link is made again, every 250 ms, for as long as the handle
 *     lives; only a daemon that closes the WebSocket properly, or breaks its protocol, is not tried
 *     again. KelvarisSDK_Destroy ends the threads and returns when they have ended. A process may hold
 *     any number of handles.
 *
 *  2. Arguments. The handle comes first, then what is the call's own, then the callback, then the user
 *     data. The handle must be valid (only KelvarisSDK_Destroy takes null); texts are zero-terminated
 *     UTF-8, not null where a block doesn't say so, and copied before the call returns. Arrays go in
 *     as a count and a pointer; what is beyond the capacity that a block names isn't sent. They are
 *     read before the call returns and never written; with a count of 0 the pointer may be null.
 *
 *  3. Records come back by value and hold everything in fixed arrays: the caller frees nothing, and
 *     one memory copy copies a record. Every record begins with KelvarisSDK_BaseResult. A field that
 *     the daemon's report left out is false, 0, empty, or what the note at the field says.
 *
 *  4. Texts in records fill their field over its full width. A text as long as the field has NO
 *     terminator: read with a bound (strnlen, "%.*s"), never with strlen. A longer one is cut,
 *     possibly within a character.
 *
 *  5. Lists in records are an array of fixed capacity and a count of the elements in use. What a
 *     report holds beyond the capacity is dropped.
 *
 *  6. Errors. A call never throws and has no status: `error` in the record's head says that it failed,
 *     `errorCode` (a KelvarisSDK_ErrorType) and `errorMessage` say why. Where a block below names no
 *     errors, the call can end with TIMEOUT (3841) or NOT_CONNECTED (3845) after its time-out, with
 *     SDK (3840) when a report can't be read, and with SYNCHRONOUS_IN_CALLBACK (3847). A call that
 *     changes a setting can also end with LOCKED_BY_SERVER (3846) or LOCKED_BY_ACCOUNT (3848); a lock
 *     for any other reason ends it with `error` false and a record that holds no report. The time-out
 *     is 5 seconds where a block names no other. It guards the wait for the first report only: one
 *     that doesn't finish the call, or the lock of another setting, ends the guard, and the call then
 *     waits without limit. No time-out comes while the library looks up the address, connects, or
 *     waits for the daemon to complete the upgrade, none of which it limits.
 *     KelvarisSDK_CreateWithSettings is the one function that a C++ exception can leave:
 *     std::system_error when a thread can't be started.
 *
 *  7. Synchronous and asynchronous. With a null callback a call waits and returns the finished record.
 *     With a callback it returns at once: `error` false, `errorCode` 3584, `callbackId` the id of the
 *     call; the callback gets the finished record later. That record's `errorCode` may still be 3584,
 *     or code and message those of an earlier error: look at `error` only.
 *
 *  8. Callbacks run on the library's reader thread, one at a time per handle, with the user data of
 *     the call. On their own handle they may make asynchronous calls, use KelvarisSDK_DaemonExit and
 *     KelvarisSDK_EnableStatUpdates, and unregister any call; they may use everything that takes no
 *     handle. They must not wait: while one runs, nothing is sent or
 *     received on that handle, so synchronous calls and KelvarisSDK_UnregisterCallback of other threads
 *     wait for it. So a callback must not take a lock that such a thread holds, and callbacks of two
 *     handles must not unregister each other's calls. A synchronous call is refused there with 3847,
 *     and KelvarisSDK_Destroy must not be called.
 *
 *  9. Subscriptions. Calls marked "subscription" go on delivering each later report while their
 *     callback returns true; false ends them. All others end with their first result, whatever their
 *     callback returns. From outside, KelvarisSDK_UnregisterCallback ends either. An error record (a
 *     time-out, say) doesn't end a subscription whose callback returns true.
 *
 * 10. Threads. Any thread may use a handle, also several at once. Who destroys it must know that no
 *     other thread is inside a call on it: such a call would never return. Functions that return text
 *     from a static buffer say so; one thread at a time may use them.
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

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Life of a handle ---- */

/** What KelvarisSDK_CreateWithSettings takes. Fill it with KelvarisSDK_InitializeCreateSettings first. */
typedef struct KelvarisSDK_CreateSettings {
    char appName[32]; /* shown in the daemon's log; may fill the field; empty: none is sent */
    char address[46]; /* the daemon's IPv4 address or host name, at most 45 bytes and a terminator */
    uint16_t port;
} KelvarisSDK_CreateSettings;

/** Sets the defaults: no application name, address 127.0.0.1, port 9330. */
KELVARISSDK_API void KelvarisSDK_InitializeCreateSettings(KelvarisSDK_CreateSettings* settings);

/**
 * Makes a handle, starts its threads and begins to connect. That no daemon can be reached is reported by the
 * calls that follow. The caller owns the handle until KelvarisSDK_Destroy.
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

/** The daemon's version, from report_version_data; each number cut to 16 bits. */
typedef struct KelvarisSDK_VersionResult {
    KelvarisSDK_BaseResult base;
    uint16_t maj;
    uint16_t min;
    uint16_t bug;
    uint16_t build;
} KelvarisSDK_VersionResult;

typedef bool (*KelvarisSDK_VersionCallback)(KelvarisSDK_VersionResult result, void* userData);

/** The session's state. Subscription: every later change of state. */
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
