// Records as documents: each printer writes one styled JSON text to standard output (printError to standard
// error) and flushes.

#pragma once

#include <cstdio>

#include <json/json.h>
#include <kelvarissdk/csdkinterface.h>

void writeDocument(Json::Value const& document, std::FILE* stream = stdout);

// core
void printError(KelvarisSDK_BaseResult const& result);
void printStateResult(KelvarisSDK_StateResult const& result);
void printVersionResult(KelvarisSDK_VersionResult const& result);
// Pairs as an array of objects, each with its protocol and port.
Json::Value portsDocument(KelvarisSDK_ProtocolPortPair const* ports, unsigned count);

// session

// settings

// adapters

// lists
void printFirewallResult(KelvarisSDK_FirewallSettingsResult const& result);
// The proxy's switch alone; its lists and services are what streaming bypass shows.
void printLocalProxyResult(KelvarisSDK_LocalProxySettingsResult const& result);
void printStreamingBypass(KelvarisSDK_LocalProxySettingsResult const& result);
void printStreamingResult(KelvarisSDK_StreamingSettingsResult const& result);

// telemetry

// safebrowsing
