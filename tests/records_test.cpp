// Programs are compiled with the places of the fields: a record keeps its layout as long as the SONAME stays.

#include <cstddef>
#include <gtest/gtest.h>
#include <kelvarissdk/csdkinterface.h>
#include <typeinfo>
#include <vector>

namespace {

// The offset of each field in its order, then the size.
template <class Record, class... Field>
void expect(std::vector<std::ptrdiff_t> const& layout, Record const& record, Field const&... fields) {
    auto const at = [](auto const* place) { return reinterpret_cast<char const*>(place); };
    EXPECT_EQ((std::vector{at(&fields) - at(&record)..., std::ptrdiff_t{sizeof(Record)}}), layout)
        << typeid(Record).name();
}

} // namespace

TEST(Records, Core) {
    KelvarisSDK_BaseResult const b{};
    expect({0, 4, 8, 208, 216}, b, b.error, b.errorCode, b.errorMessage, b.callbackId);
    KelvarisSDK_CreateSettings const c{};
    expect({0, 32, 78, 80}, c, c.appName, c.address, c.port);
    KelvarisSDK_StateResult const s{};
    expect({0, 216, 224}, s, s.base, s.state);
    KelvarisSDK_VersionResult const v{};
    expect({0, 216, 218, 220, 222, 224}, v, v.base, v.maj, v.min, v.bug, v.build);
    KelvarisSDK_ProtocolPortPair const p{};
    expect({0, 4, 8}, p, p.protocol, p.port);
}

TEST(Records, Session) {
    KelvarisSDK_AccountingResult const a{};
    expect({0, 216, 466, 472, 480, 488, 492, 496, 500, 504, 560}, a, a.base, a.email, a.isAutoAccount,
           a.bytesAvail, a.bytesUsed, a.isTeam, a.minutesAvail, a.minutesUsed, a.paymentType,
           a.periodEndDate);
    KelvarisSDK_ServerInformation const s{};
    expect({0, 10, 32, 36, 40}, s, s.country, s.city, s.num, s.isPrivate);
    KelvarisSDK_ServerInformationDetailed const d{};
    expect({0, 10, 32, 36, 37, 38, 40, 592}, d, d.country, d.city, d.num, d.isPrivate, d.torrentAllowed,
           d.publicIPCount, d.publicIP);
    KelvarisSDK_DirectoryResult const di{};
    expect({0, 216, 220, 16224}, di, di.base, di.serverCount, di.servers);
    KelvarisSDK_ConnectResult const c{};
    expect({0, 216, 808}, c, c.base, c.server);
    KelvarisSDK_ServerSettingsResult const m{};
    expect({0, 216, 220, 230, 252, 256}, m, m.base, m.connectMethod, m.country, m.city, m.num);
    KelvarisSDK_DirectorySettingsResult const g{};
    expect({0, 216, 316, 317, 424}, g, g.base, g.domain, g.enableEsni, g.gatewayUri);
}

TEST(Records, Settings) {
    KelvarisSDK_ConnectionEncryption const e{};
    expect({0, 100, 101}, e, e.adapterID, e.encrypted);
    KelvarisSDK_ConnectionParallelSockets const s{};
    expect({0, 100, 102}, s, s.adapterID, s.sockets);
    KelvarisSDK_SettingsResult const se{};
    expect({0,   216,  217,  218,  220,  224,  228,  232,  236,  396, 398,
            400, 2926, 2928, 5480, 5488, 5496, 5497, 5498, 5499, 5504},
           se, se.base, se.jumboPackets, se.encrypted, se.allowChaChaEncryption, se.bondingMode,
           se.startupConnect, se.transportMode, se.forwardedPortCount, se.forwardedPorts,
           se.perConnectionEncryptionEnabled, se.perConnectionEncryptionCount,
           se.perConnectionEncryptionSettings, se.perConnectionParallelSocketsCount,
           se.perConnectionParallelSockets, se.overflowThreshold, se.priorityOverflowThreshold,
           se.packetAggregation, se.enableDefaultRoute, se.headerCompression, se.language);
    KelvarisSDK_PrivacySettingsResult const p{};
    expect({0, 216, 217, 218, 220, 222, 360, 368}, p, p.base, p.killswitch, p.dnsleak, p.ipleak,
           p.dnsAddressCount, p.dnsAddresses, p.doNotStoreCredentials);
    KelvarisSDK_CaptivePortalCheckResult const c{};
    expect({0, 216, 220, 2720}, c, c.base, c.networkCount, c.networks);
    KelvarisSDK_CaptivePortalLoginResult const l{};
    expect({0, 216, 217, 320}, l, l.base, l.enabled, l.adapterID);
}

TEST(Records, Adapters) {
    KelvarisSDK_AdapterUsageData const u{};
    expect({0, 8, 16, 24, 32, 40, 48, 56}, u, u.usage, u.usageDaily, u.max, u.resetDay, u.maxDaily,
           u.boostDaily, u.overlimitRate);
    KelvarisSDK_AdapterData const a{};
    expect({0, 100, 200, 300, 304, 308, 312, 412, 512, 520, 576}, a, a.adapterID, a.name, a.description,
           a.state, a.type, a.priority, a.ssid, a.bssid, a.rateLimit, a.dataUsage);
    KelvarisSDK_AdaptersResult const ad{};
    expect({0, 216, 224, 14624}, ad, ad.base, ad.adapterCount, ad.adapters);
}

TEST(Records, Lists) {
    KelvarisSDK_ListBlock const l{};
    expect({0, 2, 5002, 5004, 5404, 5408, 7008, 7012, 7812}, l, l.domainCount, l.domains, l.ipv4Count, l.ipv4,
           l.ipv6Count, l.ipv6, l.portCount, l.ports);
    KelvarisSDK_FirewallSettingsResult const f{};
    expect({0, 216, 220, 8032}, f, f.base, f.mode, f.lists);
    KelvarisSDK_LocalProxyService const s{};
    expect({0, 30, 32, 34, 634, 636, 1236}, s, s.title, s.enabled, s.watchedDomainCount, s.watchedDomains,
           s.proxiedDomainCount, s.proxiedDomains);
    KelvarisSDK_LocalProxySettingsResult const lo{};
    expect({0, 216, 220, 224, 8036, 8038, 38944}, lo, lo.base, lo.enabled, lo.matchMode, lo.lists,
           lo.watchlistCount, lo.watchlist);
    KelvarisSDK_StreamingSettingsResult const st{};
    expect({0, 216, 8032}, st, st.base, st.lists);
}

TEST(Records, Telemetry) {
    KelvarisSDK_ConnectionStats const c{};
    expect({0,   8,   16,  17,  18,  118, 218, 264, 272, 280, 288,
            336, 340, 344, 392, 400, 408, 416, 424, 432, 436, 440},
           c, c.inFlight, c.inFlightWindow, c.connected, c.sleeping, c.adapterID, c.connectionID, c.localIp,
           c.lossReceive, c.lossSend, c.latencyMs, c.privateIp, c.protocol, c.numberOfSockets, c.remoteIp,
           c.totalBps, c.sendBps, c.receiveBps, c.sendEstimateMbps, c.receiveEstimateMbps, c.jitterMs, c.mos);
    KelvarisSDK_ConnectionStatsGroup const g{};
    expect({0, 8, 16, 11016}, g, g.time, g.connectionCount, g.connections);
    KelvarisSDK_ConnectionStatsResult const co{};
    expect({0, 216, 11232}, co, co.base, co.stats);
    KelvarisSDK_SessionStats const p{};
    expect({0,   8,   16,  24,  32,  40,  48,  56,  64,  72,  80,  88,  96,  104, 112, 120, 128, 136,
            144, 152, 160, 168, 176, 184, 192, 200, 208, 216, 224, 232, 240, 248, 256, 264, 272, 280},
           p, p.periodHours, p.bytesReceived, p.bytesSent, p.encryptedBytesReceived, p.encryptedBytesSent,
           p.maxDownloadSpeed, p.maxUploadSpeed, p.daysSinceFirst, p.numFailovers, p.numSessions,
           p.retransBytes, p.periodStartTime, p.totalConnectedMinutes, p.mbpsDownBenefit, p.mbpsUpBenefit,
           p.tunPacketsIn, p.tunPacketsOut, p.tunBytesIn, p.tunBytesOut, p.tunBufferWaits, p.tunPacketWaits,
           p.tunReadQueue, p.tunDroppedIncoming, p.handlerPacketsIn, p.handlerPacketsOut, p.handlerBytesIn,
           p.handlerBytesOut, p.handlerRetries, p.captivePortalDetections, p.captivePortalSuccesses,
           p.totalFailoverSaves, p.totalSpeedModeSaves, p.totalRedundantModeSaves, p.totalStreams,
           p.uniqueSaves);
    KelvarisSDK_SessionStatsResult const pe{};
    expect({0, 216, 224, 1624}, pe, pe.base, pe.periodCount, pe.periods);
    KelvarisSDK_StreamStats const s{};
    expect({0, 8, 16, 24, 32, 40, 48, 56, 64, 72, 80, 88, 96, 148, 152}, s, s.active, s.duration, s.id,
           s.groupId, s.startTime, s.uploadSpeed, s.downloadSpeed, s.averageUploadSpeed,
           s.averageDownloadSpeed, s.redundantModeSaves, s.speedModeSaves, s.failoverSaves, s.name, s.health);
    KelvarisSDK_StreamingStatsResult const st{};
    expect({0, 216, 220, 224, 1744, 1745, 1746, 1747, 1752}, st, st.base, st.bondingMode, st.streamCount,
           st.streams, st.badLoss, st.badLatency, st.badCpu, st.badMemory);
    KelvarisSDK_DisconnectEventResult const d{};
    expect({0, 216, 224, 232, 240}, d, d.base, d.disconnectReason, d.sessionEnd, d.sessionLength);
    KelvarisSDK_SpeedTestEntry const e{};
    expect({0, 8, 18, 38, 40, 48, 56, 57, 260, 264, 270, 272, 274, 280, 288}, e, e.time, e.country, e.city,
           e.numConnections, e.downloadSpeed, e.uploadSpeed, e.isError, e.errorMessage, e.type, e.resolution,
           e.fps, e.jitter, e.latency, e.loss);
    KelvarisSDK_SpeedTestResult const en{};
    expect({0, 216, 224, 1664}, en, en.base, en.testCount, en.tests);
}

TEST(Records, SafeBrowsing) {
    KelvarisSDK_SafeBrowsingResult const s{};
    expect({0, 216, 220, 224, 424, 425, 426, 428, 432, 440}, s, s.base, s.connectErrorSet, s.connectErrorCode,
           s.connectErrorMessage, s.initialized, s.configSet, s.enabled, s.logLevel, s.networkOverride);
    KelvarisSDK_SafeBrowsingErrorResult const e{};
    expect({0, 216, 220, 224, 424, 680}, e, e.base, e.connectErrorSet, e.error, e.message, e.host);
    KelvarisSDK_SafeBrowsingBlockResult const b{};
    expect({0, 216, 217, 472}, b, b.base, b.redirected, b.host);
    KelvarisSDK_SafeBrowsingStatsResult const st{};
    expect({0, 216, 220, 224, 228, 232, 240, 248, 256, 264, 272}, st, st.base, st.min, st.max, st.average,
           st.num_errors, st.num_blocks, st.failure_rate, st.num_block_responses, st.num_lookups,
           st.num_packets_filtered);
}
