// Programs are compiled with the places of the fields: a record keeps its layout as long as the SONAME stays.
// That is checked in compiling this file.

#include <algorithm>
#include <cstddef>
#include <functional>
#include <kelvarissdk/csdkinterface.h>

#define AT(field, place) (offsetof(Record, field) == (place))
#define RECORD(name, size, ...)                                                                              \
    static_assert([] {                                                                                       \
        using Record = KelvarisSDK_##name;                                                                   \
        bool const places[] = {__VA_ARGS__};                                                                 \
        return sizeof(Record) == (size) && std::ranges::all_of(places, std::identity());                     \
    }())

// Core
RECORD(BaseResult, 216, AT(error, 0), AT(errorCode, 4), AT(errorMessage, 8), AT(callbackId, 208));
RECORD(CreateSettings, 80, AT(appName, 0), AT(address, 32), AT(port, 78));
RECORD(StateResult, 224, AT(base, 0), AT(state, 216));
RECORD(VersionResult, 224, AT(base, 0), AT(maj, 216), AT(min, 218), AT(bug, 220), AT(build, 222));
RECORD(ProtocolPortPair, 8, AT(protocol, 0), AT(port, 4));

// Session
RECORD(AccountingResult, 560, AT(base, 0), AT(email, 216), AT(isAutoAccount, 466), AT(bytesAvail, 472),
       AT(bytesUsed, 480), AT(isTeam, 488), AT(minutesAvail, 492), AT(minutesUsed, 496), AT(paymentType, 500),
       AT(periodEndDate, 504));
RECORD(ServerInformation, 40, AT(country, 0), AT(city, 10), AT(num, 32), AT(isPrivate, 36));
RECORD(ServerInformationDetailed, 592, AT(country, 0), AT(city, 10), AT(num, 32), AT(isPrivate, 36),
       AT(torrentAllowed, 37), AT(publicIPCount, 38), AT(publicIP, 40));
RECORD(DirectoryResult, 16224, AT(base, 0), AT(serverCount, 216), AT(servers, 220));
RECORD(ConnectResult, 808, AT(base, 0), AT(server, 216));
RECORD(ServerSettingsResult, 256, AT(base, 0), AT(connectMethod, 216), AT(country, 220), AT(city, 230),
       AT(num, 252));
RECORD(DirectorySettingsResult, 424, AT(base, 0), AT(domain, 216), AT(enableEsni, 316), AT(gatewayUri, 317));

// Settings
RECORD(ConnectionEncryption, 101, AT(adapterID, 0), AT(encrypted, 100));
RECORD(ConnectionParallelSockets, 102, AT(adapterID, 0), AT(sockets, 100));
RECORD(SettingsResult, 5504, AT(base, 0), AT(jumboPackets, 216), AT(encrypted, 217),
       AT(allowChaChaEncryption, 218), AT(bondingMode, 220), AT(startupConnect, 224), AT(transportMode, 228),
       AT(forwardedPortCount, 232), AT(forwardedPorts, 236), AT(perConnectionEncryptionEnabled, 396),
       AT(perConnectionEncryptionCount, 398), AT(perConnectionEncryptionSettings, 400),
       AT(perConnectionParallelSocketsCount, 2926), AT(perConnectionParallelSockets, 2928),
       AT(overflowThreshold, 5480), AT(priorityOverflowThreshold, 5488), AT(packetAggregation, 5496),
       AT(enableDefaultRoute, 5497), AT(headerCompression, 5498), AT(language, 5499));
RECORD(PrivacySettingsResult, 368, AT(base, 0), AT(killswitch, 216), AT(dnsleak, 217), AT(ipleak, 218),
       AT(dnsAddressCount, 220), AT(dnsAddresses, 222), AT(doNotStoreCredentials, 360));
RECORD(CaptivePortalCheckResult, 2720, AT(base, 0), AT(networkCount, 216), AT(networks, 220));
RECORD(CaptivePortalLoginResult, 320, AT(base, 0), AT(enabled, 216), AT(adapterID, 217));

// Adapters
RECORD(AdapterUsageData, 56, AT(usage, 0), AT(usageDaily, 8), AT(max, 16), AT(resetDay, 24), AT(maxDaily, 32),
       AT(boostDaily, 40), AT(overlimitRate, 48));
RECORD(AdapterData, 576, AT(adapterID, 0), AT(name, 100), AT(description, 200), AT(state, 300), AT(type, 304),
       AT(priority, 308), AT(ssid, 312), AT(bssid, 412), AT(rateLimit, 512), AT(dataUsage, 520));
RECORD(AdaptersResult, 14624, AT(base, 0), AT(adapterCount, 216), AT(adapters, 224));

// Lists
RECORD(ListBlock, 7812, AT(domainCount, 0), AT(domains, 2), AT(ipv4Count, 5002), AT(ipv4, 5004),
       AT(ipv6Count, 5404), AT(ipv6, 5408), AT(portCount, 7008), AT(ports, 7012));
RECORD(FirewallSettingsResult, 8032, AT(base, 0), AT(mode, 216), AT(lists, 220));
RECORD(LocalProxyService, 1236, AT(title, 0), AT(enabled, 30), AT(watchedDomainCount, 32),
       AT(watchedDomains, 34), AT(proxiedDomainCount, 634), AT(proxiedDomains, 636));
RECORD(LocalProxySettingsResult, 38944, AT(base, 0), AT(enabled, 216), AT(matchMode, 220), AT(lists, 224),
       AT(watchlistCount, 8036), AT(watchlist, 8038));
RECORD(StreamingSettingsResult, 8032, AT(base, 0), AT(lists, 216));

// Telemetry
RECORD(ConnectionStats, 440, AT(inFlight, 0), AT(inFlightWindow, 8), AT(connected, 16), AT(sleeping, 17),
       AT(adapterID, 18), AT(connectionID, 118), AT(localIp, 218), AT(lossReceive, 264), AT(lossSend, 272),
       AT(latencyMs, 280), AT(privateIp, 288), AT(protocol, 336), AT(numberOfSockets, 340), AT(remoteIp, 344),
       AT(totalBps, 392), AT(sendBps, 400), AT(receiveBps, 408), AT(sendEstimateMbps, 416),
       AT(receiveEstimateMbps, 424), AT(jitterMs, 432), AT(mos, 436));
RECORD(ConnectionStatsGroup, 11016, AT(time, 0), AT(connectionCount, 8), AT(connections, 16));
RECORD(ConnectionStatsResult, 11232, AT(base, 0), AT(stats, 216));
RECORD(SessionStats, 280, AT(periodHours, 0), AT(bytesReceived, 8), AT(bytesSent, 16),
       AT(encryptedBytesReceived, 24), AT(encryptedBytesSent, 32), AT(maxDownloadSpeed, 40),
       AT(maxUploadSpeed, 48), AT(daysSinceFirst, 56), AT(numFailovers, 64), AT(numSessions, 72),
       AT(retransBytes, 80), AT(periodStartTime, 88), AT(totalConnectedMinutes, 96), AT(mbpsDownBenefit, 104),
       AT(mbpsUpBenefit, 112), AT(tunPacketsIn, 120), AT(tunPacketsOut, 128), AT(tunBytesIn, 136),
       AT(tunBytesOut, 144), AT(tunBufferWaits, 152), AT(tunPacketWaits, 160), AT(tunReadQueue, 168),
       AT(tunDroppedIncoming, 176), AT(handlerPacketsIn, 184), AT(handlerPacketsOut, 192),
       AT(handlerBytesIn, 200), AT(handlerBytesOut, 208), AT(handlerRetries, 216),
       AT(captivePortalDetections, 224), AT(captivePortalSuccesses, 232), AT(totalFailoverSaves, 240),
       AT(totalSpeedModeSaves, 248), AT(totalRedundantModeSaves, 256), AT(totalStreams, 264),
       AT(uniqueSaves, 272));
RECORD(SessionStatsResult, 1624, AT(base, 0), AT(periodCount, 216), AT(periods, 224));
RECORD(StreamStats, 152, AT(active, 0), AT(duration, 8), AT(id, 16), AT(groupId, 24), AT(startTime, 32),
       AT(uploadSpeed, 40), AT(downloadSpeed, 48), AT(averageUploadSpeed, 56), AT(averageDownloadSpeed, 64),
       AT(redundantModeSaves, 72), AT(speedModeSaves, 80), AT(failoverSaves, 88), AT(name, 96),
       AT(health, 148));
RECORD(StreamingStatsResult, 1752, AT(base, 0), AT(bondingMode, 216), AT(streamCount, 220), AT(streams, 224),
       AT(badLoss, 1744), AT(badLatency, 1745), AT(badCpu, 1746), AT(badMemory, 1747));
RECORD(DisconnectEventResult, 240, AT(base, 0), AT(disconnectReason, 216), AT(sessionEnd, 224),
       AT(sessionLength, 232));
RECORD(SpeedTestEntry, 288, AT(time, 0), AT(country, 8), AT(city, 18), AT(numConnections, 38),
       AT(downloadSpeed, 40), AT(uploadSpeed, 48), AT(isError, 56), AT(errorMessage, 57), AT(type, 260),
       AT(resolution, 264), AT(fps, 270), AT(jitter, 272), AT(latency, 274), AT(loss, 280));
RECORD(SpeedTestResult, 1664, AT(base, 0), AT(testCount, 216), AT(tests, 224));

// SafeBrowsing
RECORD(SafeBrowsingResult, 440, AT(base, 0), AT(connectErrorSet, 216), AT(connectErrorCode, 220),
       AT(connectErrorMessage, 224), AT(initialized, 424), AT(configSet, 425), AT(enabled, 426),
       AT(logLevel, 428), AT(networkOverride, 432));
RECORD(SafeBrowsingErrorResult, 680, AT(base, 0), AT(connectErrorSet, 216), AT(error, 220), AT(message, 224),
       AT(host, 424));
RECORD(SafeBrowsingBlockResult, 472, AT(base, 0), AT(redirected, 216), AT(host, 217));
RECORD(SafeBrowsingStatsResult, 272, AT(base, 0), AT(min, 216), AT(max, 220), AT(average, 224),
       AT(num_errors, 228), AT(num_blocks, 232), AT(failure_rate, 240), AT(num_block_responses, 248),
       AT(num_lookups, 256), AT(num_packets_filtered, 264));
