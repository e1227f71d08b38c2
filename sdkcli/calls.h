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
int requestFirewallSettings();
int setFirewallMode(KelvarisSDK_FirewallMode mode);
int requestLocalProxySettings();
int setLocalProxyEnabled(bool enabled);
int requestStreamingSettings();
int requestStreamingBypass();
int setStreamingBypass(char const* name, bool enable);
// Replacing a list, adding to it and removing from it. The array has room for mostListItems; of a larger
// count it holds the first of them. Adding and removing are a read and a write; nobody locks the list in
// between.
using DomainText = char[50];
constexpr int mostListItems = 100;
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

// safebrowsing
