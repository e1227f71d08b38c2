// Each printer writes its record as one styled JSON text to standard output (printError to standard error) and
// flushes. The text is whole before its first byte is written: when memory runs out a printer throws and has written
// nothing.

#pragma once

#include <cstdio>
#include <string>

#include <json/json.h>
#include <kelvarissdk/csdkinterface.h>

void writeDocument(Json::Value const& document, std::FILE* stream = stdout);
// Writes a document's finished text in the same way.
void writeText(std::string const& text, std::FILE* stream = stdout);

// A document that is written while one of these lives becomes a report of a stream: an array of the tag and the
// document, and an empty line. What follows the document isn't flushed. One thread at a time may have one.
class ReportFrame {
public:
    explicit ReportFrame(char const* tag);
    ~ReportFrame();
    ReportFrame(ReportFrame const&) = delete;
    ReportFrame& operator=(ReportFrame const&) = delete;
};

// core
void printError(KelvarisSDK_BaseResult const& result);
void printStateResult(KelvarisSDK_StateResult const& result);
void printVersionResult(KelvarisSDK_VersionResult const& result);
// The pairs make an array of objects, each with its protocol and port.
Json::Value portsDocument(KelvarisSDK_ProtocolPortPair const* ports, unsigned count);

// session
void printAccountingResult(KelvarisSDK_AccountingResult const& result);
void printDirectoryResult(KelvarisSDK_DirectoryResult const& result);
void printConnectResult(KelvarisSDK_ConnectResult const& result);
void printServerSettingsResult(KelvarisSDK_ServerSettingsResult const& result);
void printDirectorySettingsResult(KelvarisSDK_DirectorySettingsResult const& result);

// settings
void printSettingsResult(KelvarisSDK_SettingsResult const& result);
void printPrivacySettingsResult(KelvarisSDK_PrivacySettingsResult const& result);
void printCaptivePortalResult(KelvarisSDK_CaptivePortalCheckResult const& result);
void printCaptivePortalLoginResult(KelvarisSDK_CaptivePortalLoginResult const& result);

// adapters
void printAdaptersResult(KelvarisSDK_AdaptersResult const& result);

// lists
void printFirewallResult(KelvarisSDK_FirewallSettingsResult const& result);
// This prints the proxy's switch alone; its lists and services are what streaming bypass shows.
void printLocalProxyResult(KelvarisSDK_LocalProxySettingsResult const& result);
void printStreamingBypass(KelvarisSDK_LocalProxySettingsResult const& result);
void printStreamingResult(KelvarisSDK_StreamingSettingsResult const& result);

// telemetry
// The brief form leaves out addresses, sockets, single directions, estimates, jitter and score.
void printConnectionStatsResult(KelvarisSDK_ConnectionStatsResult const& result, bool briefOutput);
void printSessionStatsResult(KelvarisSDK_SessionStatsResult const& result);
void printStreamingStatsResult(KelvarisSDK_StreamingStatsResult const& result);
void printDisconnectEvent(KelvarisSDK_DisconnectEventResult const& result);
void printSpeedTestResult(KelvarisSDK_SpeedTestResult const& result);

// safebrowsing
void printSafeBrowsingResult(KelvarisSDK_SafeBrowsingResult const& result);
void printSafeBrowsingConnectError(KelvarisSDK_SafeBrowsingResult const& result);
void printSafeBrowsingErrorResult(KelvarisSDK_SafeBrowsingErrorResult const& result);
void printSafeBrowsingBlockResult(KelvarisSDK_SafeBrowsingBlockResult const& result);
void printSafeBrowsingStatsResult(KelvarisSDK_SafeBrowsingStatsResult const& result);
