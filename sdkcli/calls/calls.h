// Each action calls one or two functions of the library on `sdk`, prints the result, and returns the run's
// status: 0, or 1 when the result is an error.

#pragma once

#include <type_traits>

#include <kelvarissdk/csdkinterface.h>

// The library object of this run is null before main makes it and after main has destroyed it.
extern KelvarisSDK_Handle* sdk;

// core
int requestState();
int requestVersion();
int requestExit();

// session
int requestLogin(char const* username, char const* password);
int loginOAuth(char const* token);
int loginAutoAccount();
int requestLogout();
int requestUserData();
int requestServers();
int requestConnectAuto(KelvarisSDK_AutoConnectMethod method);
int requestConnectCountry(char const* country);
int requestConnectCity(char const* country, char const* city);
int requestConnectServer(char const* country, char const* city, int num);
int requestConnectProxy();
int requestDisconnect();
int requestCurrentServer();
int requestServerSettings();
int setConnectMethodAuto(KelvarisSDK_AutoConnectMethod method);
int setConnectMethodCountry(char const* country);
int setConnectMethodCity(char const* country, char const* city);
int setConnectMethodServer(char const* country, char const* city, int num);
int requestDirectory();
int setEsniEnabled(bool enabled);
int setDirectory(char const* domain);
int resetDirectory();
int setGateway(char const* uri);
int resetGateway();

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
using DnsText = std::remove_extent_t<decltype(KelvarisSDK_PrivacySettingsResult::dnsAddresses)>;
int setDnsServers(unsigned short count, DnsText* addresses);
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
int requestFirewallSettings();
int setFirewallMode(KelvarisSDK_FirewallMode mode);
int requestLocalProxySettings();
int setLocalProxyEnabled(bool enabled);
int requestStreamingSettings();
int requestStreamingBypass();
int setStreamingBypass(char const* name, bool enable);
// These replace a list, add to it and remove from it. The array has maxListItems elements, and of a
// larger count it holds the first. Adding and removing are a read and a write; nobody locks the list in between.
using DomainText = std::remove_extent_t<decltype(KelvarisSDK_ListBlock::domains)>;
constexpr int maxListItems = std::extent_v<decltype(KelvarisSDK_ListBlock::domains)>;
int setFirewallDomains(int count, DomainText* domains);
int addFirewallDomains(int count, DomainText* domains);
int remFirewallDomains(int count, DomainText* domains);
int setFirewallIPv4(int count, in_addr* addresses);
int addFirewallIPv4(int count, in_addr* addresses);
int remFirewallIPv4(int count, in_addr* addresses);
int setFirewallIPv6(int count, in6_addr* addresses);
int addFirewallIPv6(int count, in6_addr* addresses);
int remFirewallIPv6(int count, in6_addr* addresses);
int setFirewallPorts(int count, KelvarisSDK_ProtocolPortPair* ports);
int addFirewallPorts(int count, KelvarisSDK_ProtocolPortPair* ports);
int remFirewallPorts(int count, KelvarisSDK_ProtocolPortPair* ports);
int setStreamingDomains(int count, DomainText* domains);
int addStreamingDomains(int count, DomainText* domains);
int remStreamingDomains(int count, DomainText* domains);
int setStreamingIPv4(int count, in_addr* addresses);
int addStreamingIPv4(int count, in_addr* addresses);
int remStreamingIPv4(int count, in_addr* addresses);
int setStreamingIPv6(int count, in6_addr* addresses);
int addStreamingIPv6(int count, in6_addr* addresses);
int remStreamingIPv6(int count, in6_addr* addresses);
int setStreamingPorts(int count, KelvarisSDK_ProtocolPortPair* ports);
int addStreamingPorts(int count, KelvarisSDK_ProtocolPortPair* ports);
int remStreamingPorts(int count, KelvarisSDK_ProtocolPortPair* ports);
int setLocalProxyDomains(int count, DomainText* domains);
int addLocalProxyDomains(int count, DomainText* domains);
int remLocalProxyDomains(int count, DomainText* domains);
int setLocalProxyIPv4(int count, in_addr* addresses);
int addLocalProxyIPv4(int count, in_addr* addresses);
int remLocalProxyIPv4(int count, in_addr* addresses);
int setLocalProxyIPv6(int count, in6_addr* addresses);
int addLocalProxyIPv6(int count, in6_addr* addresses);
int remLocalProxyIPv6(int count, in6_addr* addresses);
int setLocalProxyPorts(int count, KelvarisSDK_ProtocolPortPair* ports);
int addLocalProxyPorts(int count, KelvarisSDK_ProtocolPortPair* ports);
int remLocalProxyPorts(int count, KelvarisSDK_ProtocolPortPair* ports);

// telemetry
int requestStats(int duration, unsigned char count, unsigned int* periods);
int requestLastDisconnectEvent();
int startSpeedtest();
int startStreamtest();
int requestSpeedTestResults();

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
// Both print events as a stream until `duration` seconds after the first one; 0 and -1 have no end.
int listenForSafeBrowsingErrors(int duration);
int listenForSafeBrowsingBlocks(int duration);
int getSafeBrowsingStats();
