// The actions: each calls one or two functions of the library on `sdk`, prints the result, and returns the
// run's status: 0, or 1 when the result is an error.

#pragma once

#include <kelvarissdk/csdkinterface.h>

// core
int requestState();
int requestVersion();
int requestExit();

// session

// settings

// adapters

// lists

// telemetry

// safebrowsing
int startSafeBrowsing(char const* config);
int stopSafeBrowsing();
int initSafeBrowsing(char const* config);
int setSafeBrowsingConfig(char const* config);
int setSafeBrowsingEnabled(bool enable);
int setSafeBrowsingLogLevel(KelvarisSDK_SafeBrowsingLogLevel level);
int setSafeBrowsingSafeNetworkOverride(KelvarisSDK_SafeBrowsingSafeNetworkOverride value);
int refreshSafeBrowsingToken(char const* token);
// The connect errors 0 and 17 are successes of this call.
int reportSafeBrowsingHomeNetwork(unsigned int retries, unsigned long long delay, unsigned long long timeout);
int updateSafeBrowsingExtraInfo(char const* info);
int getSafeBrowsingSettings();
// Both print events as a stream until `duration` seconds after the first one; without end for 0 and -1.
int listenForSafeBrowsingErrors(int duration);
int listenForSafeBrowsingBlocks(int duration);
int getSafeBrowsingStats();
