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
int requestAdapters();
int setAdapterPriority(char const* adapterID, KelvarisSDK_ConnectionPriority priority);
int setAdapterRateLimit(char const* adapterID, long long bitsPerSecond);
int resetConnectionRateLimit(char const* adapterID);
int setAdapterMonthlyDataLimit(char const* adapterID, long long bytes, long long resetDay);
int disableAdapterMonthlyDataLimit(char const* adapterID);
int setAdapterDailyDataLimit(char const* adapterID, long long bytes);
int disableAdapterDailyDataLimit(char const* adapterID);
int addAdapterDailyDataLimitBoost(char const* adapterID, long long bytes);
int setAdapterOverlimitRatelimit(char const* adapterID, long long bitsPerSecond);
int resetAdapterUsage(char const* adapterID);

// lists

// telemetry
int requestStats(int duration, unsigned char count, unsigned int const* periods);
int requestLastDisconnectEvent();
int startSpeedtest();
int startStreamtest();
int requestSpeedTestResults();

// safebrowsing
