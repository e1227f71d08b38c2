// Programs are compiled with the places of the fields: a record keeps its layout as long as the SONAME stays.
// That is checked in compiling this file.

#include <array>
#include <cstddef>
#include <gtest/gtest.h>
#include <kelvarissdk/csdkinterface.h>

namespace {

// A record's layout: the offset of each field in its order, then the size.
template <typename... Number> constexpr auto layout(Number... numbers) {
    return std::array{static_cast<size_t>(numbers)...};
}

} // namespace

TEST(Records, Core) {
    using Base = KelvarisSDK_BaseResult;
    static_assert(layout(offsetof(Base, error), offsetof(Base, errorCode), offsetof(Base, errorMessage),
                         offsetof(Base, callbackId), sizeof(Base)) == layout(0, 4, 8, 208, 216));
    using Create = KelvarisSDK_CreateSettings;
    static_assert(layout(offsetof(Create, appName), offsetof(Create, address), offsetof(Create, port),
                         sizeof(Create)) == layout(0, 32, 78, 80));
    using State = KelvarisSDK_StateResult;
    static_assert(layout(offsetof(State, base), offsetof(State, state), sizeof(State)) ==
                  layout(0, 216, 224));
    using Version = KelvarisSDK_VersionResult;
    static_assert(layout(offsetof(Version, base), offsetof(Version, maj), offsetof(Version, min),
                         offsetof(Version, bug), offsetof(Version, build),
                         sizeof(Version)) == layout(0, 216, 218, 220, 222, 224));
    using Port = KelvarisSDK_ProtocolPortPair;
    static_assert(layout(offsetof(Port, protocol), offsetof(Port, port), sizeof(Port)) == layout(0, 4, 8));
}

TEST(Records, Session) {
    using Accounting = KelvarisSDK_AccountingResult;
    static_assert(layout(offsetof(Accounting, base), offsetof(Accounting, email),
                         offsetof(Accounting, isAutoAccount), offsetof(Accounting, bytesAvail),
                         offsetof(Accounting, bytesUsed), offsetof(Accounting, isTeam),
                         offsetof(Accounting, minutesAvail), offsetof(Accounting, minutesUsed),
                         offsetof(Accounting, paymentType), offsetof(Accounting, periodEndDate),
                         sizeof(Accounting)) == layout(0, 216, 466, 472, 480, 488, 492, 496, 500, 504, 560));
    using Server = KelvarisSDK_ServerInformation;
    static_assert(layout(offsetof(Server, country), offsetof(Server, city), offsetof(Server, num),
                         offsetof(Server, isPrivate), sizeof(Server)) == layout(0, 10, 32, 36, 40));
    using Detailed = KelvarisSDK_ServerInformationDetailed;
    static_assert(layout(offsetof(Detailed, country), offsetof(Detailed, city), offsetof(Detailed, num),
                         offsetof(Detailed, isPrivate), offsetof(Detailed, torrentAllowed),
                         offsetof(Detailed, publicIPCount), offsetof(Detailed, publicIP),
                         sizeof(Detailed)) == layout(0, 10, 32, 36, 37, 38, 40, 592));
    using Directory = KelvarisSDK_DirectoryResult;
    static_assert(layout(offsetof(Directory, base), offsetof(Directory, serverCount),
                         offsetof(Directory, servers), sizeof(Directory)) == layout(0, 216, 220, 16224));
    using Connect = KelvarisSDK_ConnectResult;
    static_assert(layout(offsetof(Connect, base), offsetof(Connect, server), sizeof(Connect)) ==
                  layout(0, 216, 808));
    using Method = KelvarisSDK_ServerSettingsResult;
    static_assert(layout(offsetof(Method, base), offsetof(Method, connectMethod), offsetof(Method, country),
                         offsetof(Method, city), offsetof(Method, num),
                         sizeof(Method)) == layout(0, 216, 220, 230, 252, 256));
    using Gateway = KelvarisSDK_DirectorySettingsResult;
    static_assert(layout(offsetof(Gateway, base), offsetof(Gateway, domain), offsetof(Gateway, enableEsni),
                         offsetof(Gateway, gatewayUri), sizeof(Gateway)) == layout(0, 216, 316, 317, 424));
}

TEST(Records, Settings) {
    using Encryption = KelvarisSDK_ConnectionEncryption;
    static_assert(layout(offsetof(Encryption, adapterID), offsetof(Encryption, encrypted),
                         sizeof(Encryption)) == layout(0, 100, 101));
    using Sockets = KelvarisSDK_ConnectionParallelSockets;
    static_assert(layout(offsetof(Sockets, adapterID), offsetof(Sockets, sockets), sizeof(Sockets)) ==
                  layout(0, 100, 102));
    using Settings = KelvarisSDK_SettingsResult;
    static_assert(layout(offsetof(Settings, base), offsetof(Settings, jumboPackets),
                         offsetof(Settings, encrypted), offsetof(Settings, allowChaChaEncryption),
                         offsetof(Settings, bondingMode), offsetof(Settings, startupConnect),
                         offsetof(Settings, transportMode), offsetof(Settings, forwardedPortCount),
                         offsetof(Settings, forwardedPorts),
                         offsetof(Settings, perConnectionEncryptionEnabled),
                         offsetof(Settings, perConnectionEncryptionCount),
                         offsetof(Settings, perConnectionEncryptionSettings),
                         offsetof(Settings, perConnectionParallelSocketsCount),
                         offsetof(Settings, perConnectionParallelSockets),
                         offsetof(Settings, overflowThreshold), offsetof(Settings, priorityOverflowThreshold),
                         offsetof(Settings, packetAggregation), offsetof(Settings, enableDefaultRoute),
                         offsetof(Settings, headerCompression), offsetof(Settings, language),
                         sizeof(Settings)) == layout(0, 216, 217, 218, 220, 224, 228, 232, 236, 396, 398, 400,
                                                     2926, 2928, 5480, 5488, 5496, 5497, 5498, 5499, 5504));
    using Privacy = KelvarisSDK_PrivacySettingsResult;
    static_assert(layout(offsetof(Privacy, base), offsetof(Privacy, killswitch), offsetof(Privacy, dnsleak),
                         offsetof(Privacy, ipleak), offsetof(Privacy, dnsAddressCount),
                         offsetof(Privacy, dnsAddresses), offsetof(Privacy, doNotStoreCredentials),
                         sizeof(Privacy)) == layout(0, 216, 217, 218, 220, 222, 360, 368));
    using Check = KelvarisSDK_CaptivePortalCheckResult;
    static_assert(layout(offsetof(Check, base), offsetof(Check, networkCount), offsetof(Check, networks),
                         sizeof(Check)) == layout(0, 216, 220, 2720));
    using Login = KelvarisSDK_CaptivePortalLoginResult;
    static_assert(layout(offsetof(Login, base), offsetof(Login, enabled), offsetof(Login, adapterID),
                         sizeof(Login)) == layout(0, 216, 217, 320));
}

TEST(Records, Adapters) {
    using Usage = KelvarisSDK_AdapterUsageData;
    static_assert(layout(offsetof(Usage, usage), offsetof(Usage, usageDaily), offsetof(Usage, max),
                         offsetof(Usage, resetDay), offsetof(Usage, maxDaily), offsetof(Usage, boostDaily),
                         offsetof(Usage, overlimitRate),
                         sizeof(Usage)) == layout(0, 8, 16, 24, 32, 40, 48, 56));
    using Adapter = KelvarisSDK_AdapterData;
    static_assert(layout(offsetof(Adapter, adapterID), offsetof(Adapter, name),
                         offsetof(Adapter, description), offsetof(Adapter, state), offsetof(Adapter, type),
                         offsetof(Adapter, priority), offsetof(Adapter, ssid), offsetof(Adapter, bssid),
                         offsetof(Adapter, rateLimit), offsetof(Adapter, dataUsage),
                         sizeof(Adapter)) == layout(0, 100, 200, 300, 304, 308, 312, 412, 512, 520, 576));
    using Adapters = KelvarisSDK_AdaptersResult;
    static_assert(layout(offsetof(Adapters, base), offsetof(Adapters, adapterCount),
                         offsetof(Adapters, adapters), sizeof(Adapters)) == layout(0, 216, 224, 14624));
}

TEST(Records, Lists) {
    using Lists = KelvarisSDK_ListBlock;
    static_assert(layout(offsetof(Lists, domainCount), offsetof(Lists, domains), offsetof(Lists, ipv4Count),
                         offsetof(Lists, ipv4), offsetof(Lists, ipv6Count), offsetof(Lists, ipv6),
                         offsetof(Lists, portCount), offsetof(Lists, ports),
                         sizeof(Lists)) == layout(0, 2, 5002, 5004, 5404, 5408, 7008, 7012, 7812));
    using Firewall = KelvarisSDK_FirewallSettingsResult;
    static_assert(layout(offsetof(Firewall, base), offsetof(Firewall, mode), offsetof(Firewall, lists),
                         sizeof(Firewall)) == layout(0, 216, 220, 8032));
    using Service = KelvarisSDK_LocalProxyService;
    static_assert(layout(offsetof(Service, title), offsetof(Service, enabled),
                         offsetof(Service, watchedDomainCount), offsetof(Service, watchedDomains),
                         offsetof(Service, proxiedDomainCount), offsetof(Service, proxiedDomains),
                         sizeof(Service)) == layout(0, 30, 32, 34, 634, 636, 1236));
    using LocalProxy = KelvarisSDK_LocalProxySettingsResult;
    static_assert(layout(offsetof(LocalProxy, base), offsetof(LocalProxy, enabled),
                         offsetof(LocalProxy, matchMode), offsetof(LocalProxy, lists),
                         offsetof(LocalProxy, watchlistCount), offsetof(LocalProxy, watchlist),
                         sizeof(LocalProxy)) == layout(0, 216, 220, 224, 8036, 8038, 38944));
    using Streaming = KelvarisSDK_StreamingSettingsResult;
    static_assert(layout(offsetof(Streaming, base), offsetof(Streaming, lists), sizeof(Streaming)) ==
                  layout(0, 216, 8032));
}

TEST(Records, Telemetry) {
    using Connection = KelvarisSDK_ConnectionStats;
    static_assert(layout(offsetof(Connection, inFlight), offsetof(Connection, inFlightWindow),
                         offsetof(Connection, connected), offsetof(Connection, sleeping),
                         offsetof(Connection, adapterID), offsetof(Connection, connectionID),
                         offsetof(Connection, localIp), offsetof(Connection, lossReceive),
                         offsetof(Connection, lossSend), offsetof(Connection, latencyMs),
                         offsetof(Connection, privateIp), offsetof(Connection, protocol),
                         offsetof(Connection, numberOfSockets), offsetof(Connection, remoteIp),
                         offsetof(Connection, totalBps), offsetof(Connection, sendBps),
                         offsetof(Connection, receiveBps), offsetof(Connection, sendEstimateMbps),
                         offsetof(Connection, receiveEstimateMbps), offsetof(Connection, jitterMs),
                         offsetof(Connection, mos),
                         sizeof(Connection)) == layout(0, 8, 16, 17, 18, 118, 218, 264, 272, 280, 288, 336,
                                                       340, 344, 392, 400, 408, 416, 424, 432, 436, 440));
    using Group = KelvarisSDK_ConnectionStatsGroup;
    static_assert(layout(offsetof(Group, time), offsetof(Group, connectionCount),
                         offsetof(Group, connections), sizeof(Group)) == layout(0, 8, 16, 11016));
    using Connections = KelvarisSDK_ConnectionStatsResult;
    static_assert(layout(offsetof(Connections, base), offsetof(Connections, stats), sizeof(Connections)) ==
                  layout(0, 216, 11232));
    using Period = KelvarisSDK_SessionStats;
    static_assert(layout(offsetof(Period, periodHours), offsetof(Period, bytesReceived),
                         offsetof(Period, bytesSent), offsetof(Period, encryptedBytesReceived),
                         offsetof(Period, encryptedBytesSent), offsetof(Period, maxDownloadSpeed),
                         offsetof(Period, maxUploadSpeed), offsetof(Period, daysSinceFirst),
                         offsetof(Period, numFailovers), offsetof(Period, numSessions),
                         offsetof(Period, retransBytes), offsetof(Period, periodStartTime),
                         offsetof(Period, totalConnectedMinutes), offsetof(Period, mbpsDownBenefit),
                         offsetof(Period, mbpsUpBenefit), offsetof(Period, tunPacketsIn),
                         offsetof(Period, tunPacketsOut), offsetof(Period, tunBytesIn),
                         offsetof(Period, tunBytesOut), offsetof(Period, tunBufferWaits),
                         offsetof(Period, tunPacketWaits), offsetof(Period, tunReadQueue),
                         offsetof(Period, tunDroppedIncoming), offsetof(Period, handlerPacketsIn),
                         offsetof(Period, handlerPacketsOut), offsetof(Period, handlerBytesIn),
                         offsetof(Period, handlerBytesOut), offsetof(Period, handlerRetries),
                         offsetof(Period, captivePortalDetections), offsetof(Period, captivePortalSuccesses),
                         offsetof(Period, totalFailoverSaves), offsetof(Period, totalSpeedModeSaves),
                         offsetof(Period, totalRedundantModeSaves), offsetof(Period, totalStreams),
                         offsetof(Period, uniqueSaves), sizeof(Period)) ==
                  layout(0, 8, 16, 24, 32, 40, 48, 56, 64, 72, 80, 88, 96, 104, 112, 120, 128, 136, 144, 152,
                         160, 168, 176, 184, 192, 200, 208, 216, 224, 232, 240, 248, 256, 264, 272, 280));
    using Periods = KelvarisSDK_SessionStatsResult;
    static_assert(layout(offsetof(Periods, base), offsetof(Periods, periodCount), offsetof(Periods, periods),
                         sizeof(Periods)) == layout(0, 216, 224, 1624));
    using Stream = KelvarisSDK_StreamStats;
    static_assert(layout(offsetof(Stream, active), offsetof(Stream, duration), offsetof(Stream, id),
                         offsetof(Stream, groupId), offsetof(Stream, startTime),
                         offsetof(Stream, uploadSpeed), offsetof(Stream, downloadSpeed),
                         offsetof(Stream, averageUploadSpeed), offsetof(Stream, averageDownloadSpeed),
                         offsetof(Stream, redundantModeSaves), offsetof(Stream, speedModeSaves),
                         offsetof(Stream, failoverSaves), offsetof(Stream, name), offsetof(Stream, health),
                         sizeof(Stream)) ==
                  layout(0, 8, 16, 24, 32, 40, 48, 56, 64, 72, 80, 88, 96, 148, 152));
    using Streaming = KelvarisSDK_StreamingStatsResult;
    static_assert(layout(offsetof(Streaming, base), offsetof(Streaming, bondingMode),
                         offsetof(Streaming, streamCount), offsetof(Streaming, streams),
                         offsetof(Streaming, badLoss), offsetof(Streaming, badLatency),
                         offsetof(Streaming, badCpu), offsetof(Streaming, badMemory),
                         sizeof(Streaming)) == layout(0, 216, 220, 224, 1744, 1745, 1746, 1747, 1752));
    using Disconnect = KelvarisSDK_DisconnectEventResult;
    static_assert(layout(offsetof(Disconnect, base), offsetof(Disconnect, disconnectReason),
                         offsetof(Disconnect, sessionEnd), offsetof(Disconnect, sessionLength),
                         sizeof(Disconnect)) == layout(0, 216, 224, 232, 240));
    using Entry = KelvarisSDK_SpeedTestEntry;
    static_assert(layout(offsetof(Entry, time), offsetof(Entry, country), offsetof(Entry, city),
                         offsetof(Entry, numConnections), offsetof(Entry, downloadSpeed),
                         offsetof(Entry, uploadSpeed), offsetof(Entry, isError),
                         offsetof(Entry, errorMessage), offsetof(Entry, type), offsetof(Entry, resolution),
                         offsetof(Entry, fps), offsetof(Entry, jitter), offsetof(Entry, latency),
                         offsetof(Entry, loss), sizeof(Entry)) ==
                  layout(0, 8, 18, 38, 40, 48, 56, 57, 260, 264, 270, 272, 274, 280, 288));
    using Entries = KelvarisSDK_SpeedTestResult;
    static_assert(layout(offsetof(Entries, base), offsetof(Entries, testCount), offsetof(Entries, tests),
                         sizeof(Entries)) == layout(0, 216, 224, 1664));
}

TEST(Records, SafeBrowsing) {
    using Service = KelvarisSDK_SafeBrowsingResult;
    static_assert(layout(offsetof(Service, base), offsetof(Service, connectErrorSet),
                         offsetof(Service, connectErrorCode), offsetof(Service, connectErrorMessage),
                         offsetof(Service, initialized), offsetof(Service, configSet),
                         offsetof(Service, enabled), offsetof(Service, logLevel),
                         offsetof(Service, networkOverride),
                         sizeof(Service)) == layout(0, 216, 220, 224, 424, 425, 426, 428, 432, 440));
    using Error = KelvarisSDK_SafeBrowsingErrorResult;
    static_assert(layout(offsetof(Error, base), offsetof(Error, connectErrorSet), offsetof(Error, error),
                         offsetof(Error, message), offsetof(Error, host),
                         sizeof(Error)) == layout(0, 216, 220, 224, 424, 680));
    using Block = KelvarisSDK_SafeBrowsingBlockResult;
    static_assert(layout(offsetof(Block, base), offsetof(Block, redirected), offsetof(Block, host),
                         sizeof(Block)) == layout(0, 216, 217, 472));
    using Stats = KelvarisSDK_SafeBrowsingStatsResult;
    static_assert(layout(offsetof(Stats, base), offsetof(Stats, min), offsetof(Stats, max),
                         offsetof(Stats, average), offsetof(Stats, num_errors), offsetof(Stats, num_blocks),
                         offsetof(Stats, failure_rate), offsetof(Stats, num_block_responses),
                         offsetof(Stats, num_lookups), offsetof(Stats, num_packets_filtered),
                         sizeof(Stats)) == layout(0, 216, 220, 224, 228, 232, 240, 248, 256, 264, 272));
}
