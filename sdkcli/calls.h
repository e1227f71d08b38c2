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
int requestConnectionSettings();
int setMode(KelvarisSDK_BondingMode mode);
int setTransportMode(KelvarisSDK_TransportMode mode);
int setEncryption(bool enable);
int setJumboMtu(bool enable);
int setPacketAggregation(bool enable);
int setHeaderCompression(bool enable);
int setStartupConnect(bool connect);
int setOverflowThreshold(double speed);
int enableDefaultRoute(bool enable);
int setForwardPorts(unsigned short count, KelvarisSDK_ProtocolPortPair* ports);
int setConnectionEncryption(char const* adapterID, bool enable);
int requestPrivacySettings();
int setDnsServers(unsigned short count, char (*addresses)[46]);
int requestCaptivePortalCheck();
int setCaptivePortalLoginOn(char const* adapterID);
int setCaptivePortalLoginOff();

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
