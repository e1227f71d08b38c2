/*
 * Watches the bonded connections until Ctrl-C: one line per connection and report. The daemon's port may be
 * given.
 *
 *     cc -std=c99 watch_stats.c -lkelvarissdk -o watch_stats
 */
#define _POSIX_C_SOURCE 200809L

#include <inttypes.h>
#include <pthread.h>
#include <signal.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <kelvarissdk/csdkinterface.h>

/* Texts in records have no terminator when they fill their field. "%.*s" stops at the field's end. */
#define TEXT(field) (int)sizeof(field), field

/* Runs on the library's thread: prints and returns, and waits for nothing. */
static bool showConnections(KelvarisSDK_ConnectionStatsResult result, void* userData) {
    unsigned long* reports = userData;
    if (result.base.error) {
        fprintf(stderr, "no statistics: %.*s\n", TEXT(result.base.errorMessage));
        return true; /* the library goes on trying, and so do we */
    }
    ++*reports;
    for (unsigned i = 0; i < result.stats.connectionCount; ++i) {
        KelvarisSDK_ConnectionStats const* stats = &result.stats.connections[i];
        printf("%-12.*s %-12s %6" PRId64 " ms %8.2f Mbit/s down %8.2f up, estimated\n",
               TEXT(stats->adapterID), stats->connected ? "connected" : "down", stats->latencyMs,
               stats->receiveEstimateMbps, stats->sendEstimateMbps);
    }
    puts("");
    fflush(stdout);
    return true; /* keep the subscription */
}

/* Blocked before the library starts its threads, so that they inherit it and the signals wait for us. */
static sigset_t blockEndingSignals(void) {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGINT);
    sigaddset(&signals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &signals, NULL);
    return signals;
}

int main(int argc, char* argv[]) {
    sigset_t signals = blockEndingSignals();

    KelvarisSDK_CreateSettings settings;
    KelvarisSDK_InitializeCreateSettings(&settings);
    strncpy(settings.appName, "watch_stats", sizeof(settings.appName));
    if (argc > 1) {
        settings.port = (uint16_t)atoi(argv[1]);
    }
    KelvarisSDK_Handle* sdk = KelvarisSDK_CreateWithSettings(settings);

    unsigned long reports = 0; /* the library's thread counts here until the callback is unregistered */
    KelvarisSDK_ConnectionStatsResult call = KelvarisSDK_GetConnectionStats(sdk, showConnections, &reports);
    KelvarisSDK_EnableStatUpdates(sdk, true, 0, NULL);

    int signal = 0;
    sigwait(&signals, &signal);

    KelvarisSDK_EnableStatUpdates(sdk, false, 0, NULL);
    if (!call.base.error) { /* a call that failed at once has no id */
        KelvarisSDK_UnregisterCallback(sdk, call.base.callbackId);
    }
    KelvarisSDK_Destroy(sdk);
    printf("%lu reports\n", reports);
    return 0;
}
