// The library object behind the C interface: one link to the daemon, and a method for every call.

#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include <kelvarissdk/csdkinterface.h>

namespace kelvarissdk {

class WebsocketImpl;

// Safe for use from several threads. A method has its own arguments, then the callback, then the user data; a
// null callback makes the call synchronous. The methods of a family stand in kelvarissdk_calls/.
class KelvarisSDK {
public:
    // Starts the reader thread; failure throws std::system_error.
    explicit KelvarisSDK(KelvarisSDK_CreateSettings const& settings);
    // Returns when the threads have ended. No other thread may be inside a call.
    ~KelvarisSDK();
    KelvarisSDK(KelvarisSDK const&) = delete;
    KelvarisSDK& operator=(KelvarisSDK const&) = delete;

    // True in a process that was forked off while the object existed: link and threads are the parent's. Nothing but
    // destroyInherited() may be done with the object then.
    bool isInherited() const;
    // Waits for nothing and leaves the parent's connection alone.
    static void destroyInherited(KelvarisSDK* sdk);

    // The objects that live, in all of the process.
    static std::atomic<int> instances;

    // core
    KelvarisSDK_BaseResult setAppName(char const* name);
    void unregisterCallback(unsigned long long callbackId);
    KelvarisSDK_StateResult getState(KelvarisSDK_StateCallback callback, void* userData);
    KelvarisSDK_VersionResult getVersion(KelvarisSDK_VersionCallback callback, void* userData);
    KelvarisSDK_BaseResult daemonExit();

    // session
    KelvarisSDK_StateResult login(char const* username, char const* password,
                                  KelvarisSDK_StateCallback callback, void* userData);
    KelvarisSDK_StateResult loginOAuth(char const* token, KelvarisSDK_StateCallback callback, void* userData);
    KelvarisSDK_StateResult loginAutoAccount(KelvarisSDK_StateCallback callback, void* userData);
    KelvarisSDK_StateResult logout(KelvarisSDK_StateCallback callback, void* userData);
    KelvarisSDK_AccountingResult getAccountingData(KelvarisSDK_AccountingCallback callback, void* userData);

    KelvarisSDK_DirectoryResult getDirectory(KelvarisSDK_DirectoryCallback callback, void* userData);

    KelvarisSDK_ConnectResult connectAuto(KelvarisSDK_AutoConnectMethod method,
                                          KelvarisSDK_ConnectCallback callback, void* userData);
    KelvarisSDK_ConnectResult connectCountry(char const* country, KelvarisSDK_ConnectCallback callback,
                                             void* userData);
    KelvarisSDK_ConnectResult connectCity(char const* country, char const* city,
                                          KelvarisSDK_ConnectCallback callback, void* userData);
    KelvarisSDK_ConnectResult connectServer(char const* country, char const* city, int num,
                                            KelvarisSDK_ConnectCallback callback, void* userData);
    KelvarisSDK_ConnectResult connectProxy(KelvarisSDK_ConnectCallback callback, void* userData);
    // Connects to what the text names: a server, or a way to choose one.
    KelvarisSDK_ConnectResult connectCombined(std::string const& server, KelvarisSDK_ConnectCallback callback,
                                              void* userData);
    KelvarisSDK_StateResult disconnect(KelvarisSDK_StateCallback callback, void* userData);
    KelvarisSDK_ConnectResult getConnectedServer(KelvarisSDK_ConnectCallback callback, void* userData);

    KelvarisSDK_ServerSettingsResult getServerSettings(KelvarisSDK_ServerSettingsCallback callback,
                                                       void* userData);
    KelvarisSDK_ServerSettingsResult setConnectMethodAuto(KelvarisSDK_AutoConnectMethod method,
                                                          KelvarisSDK_ServerSettingsCallback callback,
                                                          void* userData);
    KelvarisSDK_ServerSettingsResult
    setConnectMethodCountry(char const* country, KelvarisSDK_ServerSettingsCallback callback, void* userData);
    KelvarisSDK_ServerSettingsResult setConnectMethodCity(char const* country, char const* city,
                                                          KelvarisSDK_ServerSettingsCallback callback,
                                                          void* userData);
    KelvarisSDK_ServerSettingsResult setConnectMethodServer(char const* country, char const* city, int num,
                                                            KelvarisSDK_ServerSettingsCallback callback,
                                                            void* userData);
    // Sets the method by the texts of the request.
    KelvarisSDK_ServerSettingsResult setConnectMethodCombined(std::string const& method,
                                                              std::string const& countryCode,
                                                              KelvarisSDK_ServerSettingsCallback callback,
                                                              void* userData);

    KelvarisSDK_DirectorySettingsResult getDirectorySettings(KelvarisSDK_DirectorySettingsCallback callback,
                                                             void* userData);
    KelvarisSDK_DirectorySettingsResult
    setESNIEnabled(bool enabled, KelvarisSDK_DirectorySettingsCallback callback, void* userData);
    KelvarisSDK_DirectorySettingsResult
    setDirectoryDomain(char const* domain, KelvarisSDK_DirectorySettingsCallback callback, void* userData);
    KelvarisSDK_DirectorySettingsResult resetDirectoryDomain(KelvarisSDK_DirectorySettingsCallback callback,
                                                             void* userData);
    KelvarisSDK_DirectorySettingsResult
    setDirectoryGatewayURI(char const* uri, KelvarisSDK_DirectorySettingsCallback callback, void* userData);
    KelvarisSDK_DirectorySettingsResult
    resetDirectoryGatewayURI(KelvarisSDK_DirectorySettingsCallback callback, void* userData);

    // settings
    KelvarisSDK_SettingsResult getSettings(KelvarisSDK_SettingsCallback callback, void* userData);
    KelvarisSDK_SettingsResult setMode(KelvarisSDK_BondingMode mode, KelvarisSDK_SettingsCallback callback,
                                       void* userData);
    KelvarisSDK_SettingsResult setConnectionTransportMode(KelvarisSDK_TransportMode mode,
                                                          KelvarisSDK_SettingsCallback callback,
                                                          void* userData);
    KelvarisSDK_SettingsResult setTunnelEncrypted(bool enable, KelvarisSDK_SettingsCallback callback,
                                                  void* userData);
    KelvarisSDK_SettingsResult setJumboPackets(bool enable, KelvarisSDK_SettingsCallback callback,
                                               void* userData);
    KelvarisSDK_SettingsResult setPacketAggregation(bool enable, KelvarisSDK_SettingsCallback callback,
                                                    void* userData);
    KelvarisSDK_SettingsResult setHeaderCompression(bool enable, KelvarisSDK_SettingsCallback callback,
                                                    void* userData);
    KelvarisSDK_SettingsResult setStartupConnect(bool connect, KelvarisSDK_SettingsCallback callback,
                                                 void* userData);
    KelvarisSDK_SettingsResult setOverflowThreshold(double speed, KelvarisSDK_SettingsCallback callback,
                                                    void* userData);
    KelvarisSDK_SettingsResult setEnableDefaultRoute(bool enable, KelvarisSDK_SettingsCallback callback,
                                                     void* userData);
    KelvarisSDK_SettingsResult setForwardPorts(unsigned short count, KelvarisSDK_ProtocolPortPair* ports,
                                               KelvarisSDK_SettingsCallback callback, void* userData);
    KelvarisSDK_SettingsResult setConnectionEncryption(char const* adapterID, bool enable,
                                                       KelvarisSDK_SettingsCallback callback, void* userData);
    KelvarisSDK_PrivacySettingsResult getPrivacySettings(KelvarisSDK_PrivacySettingsCallback callback,
                                                         void* userData);
    KelvarisSDK_PrivacySettingsResult setDNSServers(unsigned short count, char (*addresses)[46],
                                                    KelvarisSDK_PrivacySettingsCallback callback,
                                                    void* userData);
    KelvarisSDK_CaptivePortalCheckResult
    checkForCaptivePortals(KelvarisSDK_CaptivePortalCheckCallback callback, void* userData);
    KelvarisSDK_CaptivePortalLoginResult
    setCaptivePortalLoginMode(bool enable, char const* adapterID,
                              KelvarisSDK_CaptivePortalLoginCallback callback, void* userData);

    // adapters
    KelvarisSDK_AdaptersResult getAdapters(KelvarisSDK_AdaptersCallback callback, void* userData);
    KelvarisSDK_AdaptersResult setConnectionPriorities(char const* adapterID,
                                                       KelvarisSDK_ConnectionPriority priority,
                                                       KelvarisSDK_AdaptersCallback callback, void* userData);
    KelvarisSDK_AdaptersResult setConnectionRateLimit(char const* adapterID, long long bitsPerSecond,
                                                      KelvarisSDK_AdaptersCallback callback, void* userData);
    KelvarisSDK_AdaptersResult
    resetConnectionRateLimit(char const* adapterID, KelvarisSDK_AdaptersCallback callback, void* userData);
    KelvarisSDK_AdaptersResult setAdapterMonthlyDataLimit(char const* adapterID, long long bytes,
                                                          long long resetDay,
                                                          KelvarisSDK_AdaptersCallback callback,
                                                          void* userData);
    KelvarisSDK_AdaptersResult disableAdapterMonthlyDataLimit(char const* adapterID,
                                                              KelvarisSDK_AdaptersCallback callback,
                                                              void* userData);
    KelvarisSDK_AdaptersResult setAdapterDailyDataLimit(char const* adapterID, long long bytes,
                                                        KelvarisSDK_AdaptersCallback callback,
                                                        void* userData);
    KelvarisSDK_AdaptersResult disableAdapterDailyDataLimit(char const* adapterID,
                                                            KelvarisSDK_AdaptersCallback callback,
                                                            void* userData);
    KelvarisSDK_AdaptersResult addAdapterDailyDataLimitBoost(char const* adapterID, long long bytes,
                                                             KelvarisSDK_AdaptersCallback callback,
                                                             void* userData);
    KelvarisSDK_AdaptersResult setAdapterOverlimitRatelimit(char const* adapterID, long long bitsPerSecond,
                                                            KelvarisSDK_AdaptersCallback callback,
                                                            void* userData);
    KelvarisSDK_AdaptersResult resetAdapterUsage(char const* adapterID, KelvarisSDK_AdaptersCallback callback,
                                                 void* userData);

    // lists
    KelvarisSDK_FirewallSettingsResult getFirewallSettings(KelvarisSDK_FirewallSettingsCallback callback,
                                                           void* userData);
    KelvarisSDK_FirewallSettingsResult setFirewallMode(KelvarisSDK_FirewallMode mode,
                                                       KelvarisSDK_FirewallSettingsCallback callback,
                                                       void* userData);
    KelvarisSDK_FirewallSettingsResult setFirewallDomains(unsigned short count, char (*domains)[50],
                                                          KelvarisSDK_FirewallSettingsCallback callback,
                                                          void* userData);
    KelvarisSDK_FirewallSettingsResult setFirewallIPv4(unsigned short count, in_addr* addresses,
                                                       KelvarisSDK_FirewallSettingsCallback callback,
                                                       void* userData);
    KelvarisSDK_FirewallSettingsResult setFirewallIPv6(unsigned short count, in6_addr* addresses,
                                                       KelvarisSDK_FirewallSettingsCallback callback,
                                                       void* userData);
    KelvarisSDK_FirewallSettingsResult setFirewallPorts(unsigned short count,
                                                        KelvarisSDK_ProtocolPortPair* ports,
                                                        KelvarisSDK_FirewallSettingsCallback callback,
                                                        void* userData);
    KelvarisSDK_LocalProxySettingsResult
    getLocalProxySettings(KelvarisSDK_LocalProxySettingsCallback callback, void* userData);
    KelvarisSDK_LocalProxySettingsResult
    setLocalProxyEnabled(bool enabled, KelvarisSDK_LocalProxySettingsCallback callback, void* userData);
    KelvarisSDK_LocalProxySettingsResult setLocalProxyDomains(unsigned short count, char (*domains)[50],
                                                              KelvarisSDK_LocalProxySettingsCallback callback,
                                                              void* userData);
    KelvarisSDK_LocalProxySettingsResult setLocalProxyIPv4(unsigned short count, in_addr* addresses,
                                                           KelvarisSDK_LocalProxySettingsCallback callback,
                                                           void* userData);
    KelvarisSDK_LocalProxySettingsResult setLocalProxyIPv6(unsigned short count, in6_addr* addresses,
                                                           KelvarisSDK_LocalProxySettingsCallback callback,
                                                           void* userData);
    KelvarisSDK_LocalProxySettingsResult setLocalProxyPorts(unsigned short count,
                                                            KelvarisSDK_ProtocolPortPair* ports,
                                                            KelvarisSDK_LocalProxySettingsCallback callback,
                                                            void* userData);
    KelvarisSDK_LocalProxySettingsResult
    setLocalProxyDomainWatchlistEnable(char const* title, bool enabled,
                                       KelvarisSDK_LocalProxySettingsCallback callback, void* userData);
    KelvarisSDK_StreamingSettingsResult getStreamingSettings(KelvarisSDK_StreamingSettingsCallback callback,
                                                             void* userData);
    KelvarisSDK_StreamingSettingsResult setStreamingDomains(unsigned short count, char (*domains)[50],
                                                            KelvarisSDK_StreamingSettingsCallback callback,
                                                            void* userData);
    KelvarisSDK_StreamingSettingsResult setStreamingIPv4(unsigned short count, in_addr* addresses,
                                                         KelvarisSDK_StreamingSettingsCallback callback,
                                                         void* userData);
    KelvarisSDK_StreamingSettingsResult setStreamingIPv6(unsigned short count, in6_addr* addresses,
                                                         KelvarisSDK_StreamingSettingsCallback callback,
                                                         void* userData);
    KelvarisSDK_StreamingSettingsResult setStreamingPorts(unsigned short count,
                                                          KelvarisSDK_ProtocolPortPair* ports,
                                                          KelvarisSDK_StreamingSettingsCallback callback,
                                                          void* userData);

    // telemetry
    KelvarisSDK_BaseResult enableStatUpdates(bool enable, unsigned char periodCount, unsigned int* periods);
    KelvarisSDK_ConnectionStatsResult getConnectionStats(KelvarisSDK_ConnectionStatsCallback callback,
                                                         void* userData);
    KelvarisSDK_SessionStatsResult getSessionStats(KelvarisSDK_SessionStatsCallback callback, void* userData);
    KelvarisSDK_StreamingStatsResult getStreamingStats(KelvarisSDK_StreamingStatsCallback callback,
                                                       void* userData);
    KelvarisSDK_DisconnectEventResult getLastDisconnectEvent(KelvarisSDK_DisconnectEventCallback callback,
                                                             void* userData);
    KelvarisSDK_SpeedTestResult getSpeedTestResults(KelvarisSDK_SpeedTestCallback callback, void* userData);
    KelvarisSDK_SpeedTestResult startSpeedTest(KelvarisSDK_SpeedTestCallback callback, void* userData);
    KelvarisSDK_SpeedTestResult startStreamTest(KelvarisSDK_SpeedTestCallback callback, void* userData);

    // safebrowsing
    KelvarisSDK_SafeBrowsingResult
    initSafeBrowsing(char const* config, KelvarisSDK_SafeBrowsingCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingResult
    setSafeBrowsingConfig(char const* config, KelvarisSDK_SafeBrowsingCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingResult
    setSafeBrowsingEnabled(bool enable, KelvarisSDK_SafeBrowsingCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingResult setSafeBrowsingLogLevel(KelvarisSDK_SafeBrowsingLogLevel level,
                                                           KelvarisSDK_SafeBrowsingCallback callback,
                                                           void* userData);
    KelvarisSDK_SafeBrowsingResult
    setSafeBrowsingSafeNetworkOverride(KelvarisSDK_SafeBrowsingSafeNetworkOverride value,
                                       KelvarisSDK_SafeBrowsingCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingResult
    refreshSafeBrowsingToken(char const* token, KelvarisSDK_SafeBrowsingCallback callback, void* userData);
    // Unlike the other methods, this one has its own arguments last.
    KelvarisSDK_SafeBrowsingResult reportSafeBrowsingHomeNetwork(KelvarisSDK_SafeBrowsingCallback callback,
                                                                 void* userData, unsigned int retries,
                                                                 unsigned long long delay,
                                                                 unsigned long long timeout);
    KelvarisSDK_SafeBrowsingResult
    updateSafeBrowsingExtraInfo(char const* info, KelvarisSDK_SafeBrowsingCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingResult getSafeBrowsing(KelvarisSDK_SafeBrowsingCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingErrorResult
    listenForSafeBrowsingError(KelvarisSDK_SafeBrowsingErrorCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingBlockResult
    listenForSafeBrowsingBlock(KelvarisSDK_SafeBrowsingBlockCallback callback, void* userData);
    KelvarisSDK_SafeBrowsingStatsResult getSafeBrowsingStats(KelvarisSDK_SafeBrowsingStatsCallback callback,
                                                             void* userData);

protected: // tests make objects without a link
    // Repeats the subscription to statistics while it is wanted; the body of statsThread.
    void statsEnabledRunner();
    // Each is called with statsLock held. The first starts that thread with the first subscription; false: it can't be
    // started. The second sends a subscription or its end.
    bool startStatsThread();
    void sendStatSubscription(bool enable, unsigned char periodCount, unsigned int const* periods);

    std::mutex statsLock;                 // held while a subscription is sent
    bool statsEnabled = false;            // guarded by statsLock, as is the next; a subscription is wanted
    bool statsRunnerActive = true;        // the thread goes on; false for good once the object ends
    std::condition_variable statsChanged; // tells the thread that one of the two flags has changed

    // Constant after construction.
    char appName[32];
    std::unique_ptr<WebsocketImpl> websocket; // no method starts a call without it

    KelvarisSDK* nextKept = nullptr; // of those that destroyInherited() had to leave as they were

    // Guarded by statsLock until the destructor joins it. It stands last because it uses all of the above.
    std::thread statsThread;
};

} // namespace kelvarissdk
