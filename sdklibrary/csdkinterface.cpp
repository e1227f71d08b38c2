// The C interface: each function hands its arguments to the method of its name.

#include <kelvarissdk/csdkinterface.h>

#include <exception>
#include <functional>
#include <pthread.h>
#include <system_error>
#include <type_traits>

#include "kelvarissdk.h"
#include "wswrapper.h"

using kelvarissdk::KelvarisSDK;

namespace {

KelvarisSDK* object(KelvarisSDK_Handle* sdk) {
    return reinterpret_cast<KelvarisSDK*>(sdk);
}

// True for a null text, or a null array of more than no elements, anywhere among the arguments.
bool lacksOne() {
    return false;
}
template <class... Rest> bool lacksOne(char const* text, Rest... rest);
template <class Item, class... Rest> bool lacksOne(unsigned short count, Item* items, Rest... rest);
template <class Other, class... Rest> bool lacksOne(Other /*other*/, Rest... rest) {
    return lacksOne(rest...);
}
template <class... Rest> bool lacksOne(char const* text, Rest... rest) {
    return text == nullptr || lacksOne(rest...);
}
template <class Item, class... Rest> bool lacksOne(unsigned short count, Item* items, Rest... rest) {
    return (count > 0 && items == nullptr) || lacksOne(rest...);
}

// While one lives, a request to cancel the calling thread has to wait. Making and destroying a handle wait for threads and
// close descriptors in destructors, and a cancellation that leaves a destructor ends the process.
class CancellationDelayed {
public:
    CancellationDelayed() {
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &previous);
    }
    ~CancellationDelayed() {
        pthread_setcancelstate(previous, nullptr);
    }
    CancellationDelayed(CancellationDelayed const&) = delete;
    CancellationDelayed& operator=(CancellationDelayed const&) = delete;

private:
    int previous = PTHREAD_CANCEL_ENABLE;
};

// What fills the head of a record with the reason why a call failed.
using Reason = void (*)(KelvarisSDK_BaseResult*);

// Returns why a call isn't made, or null. A handle has no link to the daemon of its own when it is null or a parent
// process owns it. It is not inlined, because each of the functions below would grow by it.
[[gnu::noinline]] Reason whyNot(KelvarisSDK_Handle* sdk, bool lacksArgument) {
    if (sdk == nullptr || object(sdk)->isInherited()) {
        return kelvarissdk::noWebsocketImplementation;
    }
    return lacksArgument ? kelvarissdk::invalidArgument : nullptr;
}

// Makes a call, unless there is a reason not to. Memory that runs out ends in a record that says so. There is one
// place that fills a refused call's record, as what stands here is compiled for each function.
template <auto method, class... Arguments>
auto callUnless(Reason reason, KelvarisSDK_Handle* sdk, Arguments... arguments) {
    using Result = std::invoke_result_t<decltype(method), KelvarisSDK&, Arguments...>;
    if (reason == nullptr) {
        try {
            return std::invoke(method, *object(sdk), arguments...);
        } catch (std::exception const&) {
            reason = kelvarissdk::setSdkError;
        }
    }
    return kelvarissdk::refused<Result>(reason);
}

template <auto method, class... Arguments>
auto callWithOptionalText(KelvarisSDK_Handle* sdk, Arguments... arguments) {
    return callUnless<method>(whyNot(sdk, false), sdk, arguments...);
}

// The same for a method whose texts and arrays have to be there.
template <auto method, class... Arguments> auto call(KelvarisSDK_Handle* sdk, Arguments... arguments) {
    return callUnless<method>(whyNot(sdk, lacksOne(arguments...)), sdk, arguments...);
}

// Starting and stopping safe browsing take two requests, and an asynchronous caller's callback runs for both answers. When
// the second can't be made, it must not run for the first either, because the caller is told that the call failed.
KelvarisSDK_SafeBrowsingResult switchSafeBrowsing(KelvarisSDK& sdk, bool enable, char const* config,
                                                  KelvarisSDK_SafeBrowsingCallback callback, void* userData) {
    auto const enabled = sdk.setSafeBrowsingEnabled(enable, callback, userData);
    try {
        return sdk.initSafeBrowsing(config, callback, userData);
    } catch (std::exception const&) {
        if (callback != nullptr) {
            sdk.unregisterCallback(enabled.base.callbackId);
        }
        throw;
    }
}

} // namespace

// core

void KelvarisSDK_InitializeCreateSettings(KelvarisSDK_CreateSettings* settings) {
    if (settings != nullptr) {
        *settings = {.appName = "", .address = "127.0.0.1", .port = 9330};
    }
}

KelvarisSDK_Handle* KelvarisSDK_CreateWithSettings(KelvarisSDK_CreateSettings settings) {
    CancellationDelayed const delayed;
    try {
        return reinterpret_cast<KelvarisSDK_Handle*>(new KelvarisSDK(settings));
    } catch (std::system_error const&) {
        throw;
    } catch (std::exception const&) {
        return nullptr;
    }
}

void KelvarisSDK_Destroy(KelvarisSDK_Handle* sdk) {
    CancellationDelayed const delayed;
    if (sdk != nullptr && object(sdk)->isInherited()) {
        KelvarisSDK::destroyInherited(object(sdk));
    } else {
        delete object(sdk);
    }
}

void KelvarisSDK_UnregisterCallback(KelvarisSDK_Handle* sdk, unsigned long long callbackId) {
    if (sdk != nullptr && !object(sdk)->isInherited()) {
        object(sdk)->unregisterCallback(callbackId);
    }
}

KelvarisSDK_StateResult KelvarisSDK_GetState(KelvarisSDK_Handle* sdk, KelvarisSDK_StateCallback callback,
                                             void* userData) {
    return call<&KelvarisSDK::getState>(sdk, callback, userData);
}

KelvarisSDK_VersionResult KelvarisSDK_GetVersion(KelvarisSDK_Handle* sdk,
                                                 KelvarisSDK_VersionCallback callback, void* userData) {
    return call<&KelvarisSDK::getVersion>(sdk, callback, userData);
}

KelvarisSDK_BaseResult KelvarisSDK_DaemonExit(KelvarisSDK_Handle* sdk) {
    return call<&KelvarisSDK::daemonExit>(sdk);
}

// session

KelvarisSDK_StateResult KelvarisSDK_Login(KelvarisSDK_Handle* sdk, char const* username, char const* password,
                                          KelvarisSDK_StateCallback callback, void* userData) {
    return call<&KelvarisSDK::login>(sdk, username, password, callback, userData);
}

KelvarisSDK_StateResult KelvarisSDK_LoginOAuth(KelvarisSDK_Handle* sdk, char const* token,
                                               KelvarisSDK_StateCallback callback, void* userData) {
    return call<&KelvarisSDK::loginOAuth>(sdk, token, callback, userData);
}

KelvarisSDK_StateResult KelvarisSDK_LoginAutoAccount(KelvarisSDK_Handle* sdk,
                                                     KelvarisSDK_StateCallback callback, void* userData) {
    return call<&KelvarisSDK::loginAutoAccount>(sdk, callback, userData);
}

KelvarisSDK_StateResult KelvarisSDK_Logout(KelvarisSDK_Handle* sdk, KelvarisSDK_StateCallback callback,
                                           void* userData) {
    return call<&KelvarisSDK::logout>(sdk, callback, userData);
}

KelvarisSDK_AccountingResult KelvarisSDK_GetAccountingData(KelvarisSDK_Handle* sdk,
                                                           KelvarisSDK_AccountingCallback callback,
                                                           void* userData) {
    return call<&KelvarisSDK::getAccountingData>(sdk, callback, userData);
}

KelvarisSDK_DirectoryResult KelvarisSDK_GetDirectory(KelvarisSDK_Handle* sdk,
                                                     KelvarisSDK_DirectoryCallback callback, void* userData) {
    return call<&KelvarisSDK::getDirectory>(sdk, callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK_ConnectAuto(KelvarisSDK_Handle* sdk,
                                                  KelvarisSDK_AutoConnectMethod method,
                                                  KelvarisSDK_ConnectCallback callback, void* userData) {
    return call<&KelvarisSDK::connectAuto>(sdk, method, callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK_ConnectCountry(KelvarisSDK_Handle* sdk, char const* country,
                                                     KelvarisSDK_ConnectCallback callback, void* userData) {
    return call<&KelvarisSDK::connectCountry>(sdk, country, callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK_ConnectCity(KelvarisSDK_Handle* sdk, char const* country,
                                                  char const* city, KelvarisSDK_ConnectCallback callback,
                                                  void* userData) {
    return call<&KelvarisSDK::connectCity>(sdk, country, city, callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK_ConnectServer(KelvarisSDK_Handle* sdk, char const* country,
                                                    char const* city, int num,
                                                    KelvarisSDK_ConnectCallback callback, void* userData) {
    return call<&KelvarisSDK::connectServer>(sdk, country, city, num, callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK_ConnectProxy(KelvarisSDK_Handle* sdk,
                                                   KelvarisSDK_ConnectCallback callback, void* userData) {
    return call<&KelvarisSDK::connectProxy>(sdk, callback, userData);
}

KelvarisSDK_StateResult KelvarisSDK_Disconnect(KelvarisSDK_Handle* sdk, KelvarisSDK_StateCallback callback,
                                               void* userData) {
    return call<&KelvarisSDK::disconnect>(sdk, callback, userData);
}

KelvarisSDK_ConnectResult KelvarisSDK_GetConnectedServer(KelvarisSDK_Handle* sdk,
                                                         KelvarisSDK_ConnectCallback callback,
                                                         void* userData) {
    return call<&KelvarisSDK::getConnectedServer>(sdk, callback, userData);
}

KelvarisSDK_ServerSettingsResult KelvarisSDK_GetServerSettings(KelvarisSDK_Handle* sdk,
                                                               KelvarisSDK_ServerSettingsCallback callback,
                                                               void* userData) {
    return call<&KelvarisSDK::getServerSettings>(sdk, callback, userData);
}

KelvarisSDK_ServerSettingsResult KelvarisSDK_SetConnectMethodAuto(KelvarisSDK_Handle* sdk,
                                                                  KelvarisSDK_AutoConnectMethod method,
                                                                  KelvarisSDK_ServerSettingsCallback callback,
                                                                  void* userData) {
    return call<&KelvarisSDK::setConnectMethodAuto>(sdk, method, callback, userData);
}

KelvarisSDK_ServerSettingsResult
KelvarisSDK_SetConnectMethodCountry(KelvarisSDK_Handle* sdk, char const* country,
                                    KelvarisSDK_ServerSettingsCallback callback, void* userData) {
    return call<&KelvarisSDK::setConnectMethodCountry>(sdk, country, callback, userData);
}

KelvarisSDK_ServerSettingsResult KelvarisSDK_SetConnectMethodCity(KelvarisSDK_Handle* sdk,
                                                                  char const* country, char const* city,
                                                                  KelvarisSDK_ServerSettingsCallback callback,
                                                                  void* userData) {
    return call<&KelvarisSDK::setConnectMethodCity>(sdk, country, city, callback, userData);
}

KelvarisSDK_ServerSettingsResult
KelvarisSDK_SetConnectMethodServer(KelvarisSDK_Handle* sdk, char const* country, char const* city, int num,
                                   KelvarisSDK_ServerSettingsCallback callback, void* userData) {
    return call<&KelvarisSDK::setConnectMethodServer>(sdk, country, city, num, callback, userData);
}

KelvarisSDK_DirectorySettingsResult
KelvarisSDK_GetDirectorySettings(KelvarisSDK_Handle* sdk, KelvarisSDK_DirectorySettingsCallback callback,
                                 void* userData) {
    return call<&KelvarisSDK::getDirectorySettings>(sdk, callback, userData);
}

KelvarisSDK_DirectorySettingsResult KelvarisSDK_SetESNIEnabled(KelvarisSDK_Handle* sdk, bool enabled,
                                                               KelvarisSDK_DirectorySettingsCallback callback,
                                                               void* userData) {
    return call<&KelvarisSDK::setESNIEnabled>(sdk, enabled, callback, userData);
}

KelvarisSDK_DirectorySettingsResult
KelvarisSDK_SetDirectoryDomain(KelvarisSDK_Handle* sdk, char const* domain,
                               KelvarisSDK_DirectorySettingsCallback callback, void* userData) {
    return callWithOptionalText<&KelvarisSDK::setDirectoryDomain>(sdk, domain, callback, userData);
}

KelvarisSDK_DirectorySettingsResult
KelvarisSDK_ResetDirectoryDomain(KelvarisSDK_Handle* sdk, KelvarisSDK_DirectorySettingsCallback callback,
                                 void* userData) {
    return call<&KelvarisSDK::resetDirectoryDomain>(sdk, callback, userData);
}

KelvarisSDK_DirectorySettingsResult
KelvarisSDK_SetDirectoryGatewayURI(KelvarisSDK_Handle* sdk, char const* uri,
                                   KelvarisSDK_DirectorySettingsCallback callback, void* userData) {
    return callWithOptionalText<&KelvarisSDK::setDirectoryGatewayURI>(sdk, uri, callback, userData);
}

KelvarisSDK_DirectorySettingsResult
KelvarisSDK_ResetDirectoryGatewayURI(KelvarisSDK_Handle* sdk, KelvarisSDK_DirectorySettingsCallback callback,
                                     void* userData) {
    return call<&KelvarisSDK::resetDirectoryGatewayURI>(sdk, callback, userData);
}

// settings

KelvarisSDK_SettingsResult KelvarisSDK_GetSettings(KelvarisSDK_Handle* sdk,
                                                   KelvarisSDK_SettingsCallback callback, void* userData) {
    return call<&KelvarisSDK::getSettings>(sdk, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetMode(KelvarisSDK_Handle* sdk, KelvarisSDK_BondingMode mode,
                                               KelvarisSDK_SettingsCallback callback, void* userData) {
    return call<&KelvarisSDK::setMode>(sdk, mode, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetConnectionTransportMode(KelvarisSDK_Handle* sdk,
                                                                  KelvarisSDK_TransportMode mode,
                                                                  KelvarisSDK_SettingsCallback callback,
                                                                  void* userData) {
    return call<&KelvarisSDK::setConnectionTransportMode>(sdk, mode, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetTunnelEncrypted(KelvarisSDK_Handle* sdk, bool enable,
                                                          KelvarisSDK_SettingsCallback callback,
                                                          void* userData) {
    return call<&KelvarisSDK::setTunnelEncrypted>(sdk, enable, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetJumboPackets(KelvarisSDK_Handle* sdk, bool enable,
                                                       KelvarisSDK_SettingsCallback callback,
                                                       void* userData) {
    return call<&KelvarisSDK::setJumboPackets>(sdk, enable, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetPacketAggregation(KelvarisSDK_Handle* sdk, bool enable,
                                                            KelvarisSDK_SettingsCallback callback,
                                                            void* userData) {
    return call<&KelvarisSDK::setPacketAggregation>(sdk, enable, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetHeaderCompression(KelvarisSDK_Handle* sdk, bool enable,
                                                            KelvarisSDK_SettingsCallback callback,
                                                            void* userData) {
    return call<&KelvarisSDK::setHeaderCompression>(sdk, enable, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetStartupConnect(KelvarisSDK_Handle* sdk, bool connect,
                                                         KelvarisSDK_SettingsCallback callback,
                                                         void* userData) {
    return call<&KelvarisSDK::setStartupConnect>(sdk, connect, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetOverflowThreshold(KelvarisSDK_Handle* sdk, double speed,
                                                            KelvarisSDK_SettingsCallback callback,
                                                            void* userData) {
    return call<&KelvarisSDK::setOverflowThreshold>(sdk, speed, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetEnableDefaultRoute(KelvarisSDK_Handle* sdk, bool enable,
                                                             KelvarisSDK_SettingsCallback callback,
                                                             void* userData) {
    return call<&KelvarisSDK::setEnableDefaultRoute>(sdk, enable, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetForwardPorts(KelvarisSDK_Handle* sdk, unsigned short count,
                                                       KelvarisSDK_ProtocolPortPair* ports,
                                                       KelvarisSDK_SettingsCallback callback,
                                                       void* userData) {
    return call<&KelvarisSDK::setForwardPorts>(sdk, count, ports, callback, userData);
}

KelvarisSDK_SettingsResult KelvarisSDK_SetConnectionEncryption(KelvarisSDK_Handle* sdk, char const* adapterID,
                                                               bool enable,
                                                               KelvarisSDK_SettingsCallback callback,
                                                               void* userData) {
    return call<&KelvarisSDK::setConnectionEncryption>(sdk, adapterID, enable, callback, userData);
}

KelvarisSDK_PrivacySettingsResult KelvarisSDK_GetPrivacySettings(KelvarisSDK_Handle* sdk,
                                                                 KelvarisSDK_PrivacySettingsCallback callback,
                                                                 void* userData) {
    return call<&KelvarisSDK::getPrivacySettings>(sdk, callback, userData);
}

KelvarisSDK_PrivacySettingsResult KelvarisSDK_SetDNSServers(KelvarisSDK_Handle* sdk, unsigned short count,
                                                            char (*addresses)[46],
                                                            KelvarisSDK_PrivacySettingsCallback callback,
                                                            void* userData) {
    return call<&KelvarisSDK::setDNSServers>(sdk, count, addresses, callback, userData);
}

KelvarisSDK_CaptivePortalCheckResult
KelvarisSDK_CheckForCaptivePortals(KelvarisSDK_Handle* sdk, KelvarisSDK_CaptivePortalCheckCallback callback,
                                   void* userData) {
    return call<&KelvarisSDK::checkForCaptivePortals>(sdk, callback, userData);
}

KelvarisSDK_CaptivePortalLoginResult
KelvarisSDK_SetCaptivePortalLoginMode(KelvarisSDK_Handle* sdk, bool enable, char const* adapterID,
                                      KelvarisSDK_CaptivePortalLoginCallback callback, void* userData) {
    return callWithOptionalText<&KelvarisSDK::setCaptivePortalLoginMode>(sdk, enable, adapterID, callback,
                                                                         userData);
}

// adapters

KelvarisSDK_AdaptersResult KelvarisSDK_GetAdapters(KelvarisSDK_Handle* sdk,
                                                   KelvarisSDK_AdaptersCallback callback, void* userData) {
    return call<&KelvarisSDK::getAdapters>(sdk, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetConnectionPriorities(KelvarisSDK_Handle* sdk, char const* adapterID,
                                                               KelvarisSDK_ConnectionPriority priority,
                                                               KelvarisSDK_AdaptersCallback callback,
                                                               void* userData) {
    return call<&KelvarisSDK::setConnectionPriorities>(sdk, adapterID, priority, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetConnectionRateLimit(KelvarisSDK_Handle* sdk, char const* adapterID,
                                                              long long bitsPerSecond,
                                                              KelvarisSDK_AdaptersCallback callback,
                                                              void* userData) {
    return call<&KelvarisSDK::setConnectionRateLimit>(sdk, adapterID, bitsPerSecond, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_ResetConnectionRateLimit(KelvarisSDK_Handle* sdk,
                                                                char const* adapterID,
                                                                KelvarisSDK_AdaptersCallback callback,
                                                                void* userData) {
    return call<&KelvarisSDK::resetConnectionRateLimit>(sdk, adapterID, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetAdapterMonthlyDataLimit(KelvarisSDK_Handle* sdk,
                                                                  char const* adapterID, long long bytes,
                                                                  long long resetDay,
                                                                  KelvarisSDK_AdaptersCallback callback,
                                                                  void* userData) {
    return call<&KelvarisSDK::setAdapterMonthlyDataLimit>(sdk, adapterID, bytes, resetDay, callback,
                                                          userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_DisableAdapterMonthlyDataLimit(KelvarisSDK_Handle* sdk,
                                                                      char const* adapterID,
                                                                      KelvarisSDK_AdaptersCallback callback,
                                                                      void* userData) {
    return call<&KelvarisSDK::disableAdapterMonthlyDataLimit>(sdk, adapterID, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetAdapterDailyDataLimit(KelvarisSDK_Handle* sdk,
                                                                char const* adapterID, long long bytes,
                                                                KelvarisSDK_AdaptersCallback callback,
                                                                void* userData) {
    return call<&KelvarisSDK::setAdapterDailyDataLimit>(sdk, adapterID, bytes, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_DisableAdapterDailyDataLimit(KelvarisSDK_Handle* sdk,
                                                                    char const* adapterID,
                                                                    KelvarisSDK_AdaptersCallback callback,
                                                                    void* userData) {
    return call<&KelvarisSDK::disableAdapterDailyDataLimit>(sdk, adapterID, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_AddAdapterDailyDataLimitBoost(KelvarisSDK_Handle* sdk,
                                                                     char const* adapterID, long long bytes,
                                                                     KelvarisSDK_AdaptersCallback callback,
                                                                     void* userData) {
    return call<&KelvarisSDK::addAdapterDailyDataLimitBoost>(sdk, adapterID, bytes, callback, userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_SetAdapterOverlimitRateLimit(KelvarisSDK_Handle* sdk,
                                                                    char const* adapterID,
                                                                    long long bitsPerSecond,
                                                                    KelvarisSDK_AdaptersCallback callback,
                                                                    void* userData) {
    return call<&KelvarisSDK::setAdapterOverlimitRatelimit>(sdk, adapterID, bitsPerSecond, callback,
                                                            userData);
}

KelvarisSDK_AdaptersResult KelvarisSDK_ResetAdapterUsage(KelvarisSDK_Handle* sdk, char const* adapterID,
                                                         KelvarisSDK_AdaptersCallback callback,
                                                         void* userData) {
    return call<&KelvarisSDK::resetAdapterUsage>(sdk, adapterID, callback, userData);
}

// lists

KelvarisSDK_FirewallSettingsResult
KelvarisSDK_GetFirewallSettings(KelvarisSDK_Handle* sdk, KelvarisSDK_FirewallSettingsCallback callback,
                                void* userData) {
    return call<&KelvarisSDK::getFirewallSettings>(sdk, callback, userData);
}

KelvarisSDK_FirewallSettingsResult KelvarisSDK_SetFirewallMode(KelvarisSDK_Handle* sdk,
                                                               KelvarisSDK_FirewallMode mode,
                                                               KelvarisSDK_FirewallSettingsCallback callback,
                                                               void* userData) {
    return call<&KelvarisSDK::setFirewallMode>(sdk, mode, callback, userData);
}

KelvarisSDK_FirewallSettingsResult
KelvarisSDK_SetFirewallDomains(KelvarisSDK_Handle* sdk, unsigned short count, char (*domains)[50],
                               KelvarisSDK_FirewallSettingsCallback callback, void* userData) {
    return call<&KelvarisSDK::setFirewallDomains>(sdk, count, domains, callback, userData);
}

KelvarisSDK_FirewallSettingsResult KelvarisSDK_SetFirewallIPv4(KelvarisSDK_Handle* sdk, unsigned short count,
                                                               in_addr* addresses,
                                                               KelvarisSDK_FirewallSettingsCallback callback,
                                                               void* userData) {
    return call<&KelvarisSDK::setFirewallIPv4>(sdk, count, addresses, callback, userData);
}

KelvarisSDK_FirewallSettingsResult KelvarisSDK_SetFirewallIPv6(KelvarisSDK_Handle* sdk, unsigned short count,
                                                               in6_addr* addresses,
                                                               KelvarisSDK_FirewallSettingsCallback callback,
                                                               void* userData) {
    return call<&KelvarisSDK::setFirewallIPv6>(sdk, count, addresses, callback, userData);
}

KelvarisSDK_FirewallSettingsResult KelvarisSDK_SetFirewallPorts(KelvarisSDK_Handle* sdk, unsigned short count,
                                                                KelvarisSDK_ProtocolPortPair* ports,
                                                                KelvarisSDK_FirewallSettingsCallback callback,
                                                                void* userData) {
    return call<&KelvarisSDK::setFirewallPorts>(sdk, count, ports, callback, userData);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_GetLocalProxySettings(KelvarisSDK_Handle* sdk, KelvarisSDK_LocalProxySettingsCallback callback,
                                  void* userData) {
    return call<&KelvarisSDK::getLocalProxySettings>(sdk, callback, userData);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyEnabled(KelvarisSDK_Handle* sdk, bool enabled,
                                 KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    return call<&KelvarisSDK::setLocalProxyEnabled>(sdk, enabled, callback, userData);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyDomains(KelvarisSDK_Handle* sdk, unsigned short count, char (*domains)[50],
                                 KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    return call<&KelvarisSDK::setLocalProxyDomains>(sdk, count, domains, callback, userData);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyIPv4(KelvarisSDK_Handle* sdk, unsigned short count, in_addr* addresses,
                              KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    return call<&KelvarisSDK::setLocalProxyIPv4>(sdk, count, addresses, callback, userData);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyIPv6(KelvarisSDK_Handle* sdk, unsigned short count, in6_addr* addresses,
                              KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    return call<&KelvarisSDK::setLocalProxyIPv6>(sdk, count, addresses, callback, userData);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyPorts(KelvarisSDK_Handle* sdk, unsigned short count,
                               KelvarisSDK_ProtocolPortPair* ports,
                               KelvarisSDK_LocalProxySettingsCallback callback, void* userData) {
    return call<&KelvarisSDK::setLocalProxyPorts>(sdk, count, ports, callback, userData);
}

KelvarisSDK_LocalProxySettingsResult
KelvarisSDK_SetLocalProxyDomainWatchlistEnable(KelvarisSDK_Handle* sdk, char const* title, bool enabled,
                                               KelvarisSDK_LocalProxySettingsCallback callback,
                                               void* userData) {
    return call<&KelvarisSDK::setLocalProxyDomainWatchlistEnable>(sdk, title, enabled, callback, userData);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK_GetStreamingSettings(KelvarisSDK_Handle* sdk, KelvarisSDK_StreamingSettingsCallback callback,
                                 void* userData) {
    return call<&KelvarisSDK::getStreamingSettings>(sdk, callback, userData);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK_SetStreamingDomains(KelvarisSDK_Handle* sdk, unsigned short count, char (*domains)[50],
                                KelvarisSDK_StreamingSettingsCallback callback, void* userData) {
    return call<&KelvarisSDK::setStreamingDomains>(sdk, count, domains, callback, userData);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK_SetStreamingIPv4(KelvarisSDK_Handle* sdk, unsigned short count, in_addr* addresses,
                             KelvarisSDK_StreamingSettingsCallback callback, void* userData) {
    return call<&KelvarisSDK::setStreamingIPv4>(sdk, count, addresses, callback, userData);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK_SetStreamingIPv6(KelvarisSDK_Handle* sdk, unsigned short count, in6_addr* addresses,
                             KelvarisSDK_StreamingSettingsCallback callback, void* userData) {
    return call<&KelvarisSDK::setStreamingIPv6>(sdk, count, addresses, callback, userData);
}

KelvarisSDK_StreamingSettingsResult
KelvarisSDK_SetStreamingPorts(KelvarisSDK_Handle* sdk, unsigned short count,
                              KelvarisSDK_ProtocolPortPair* ports,
                              KelvarisSDK_StreamingSettingsCallback callback, void* userData) {
    return call<&KelvarisSDK::setStreamingPorts>(sdk, count, ports, callback, userData);
}

// telemetry

KelvarisSDK_BaseResult KelvarisSDK_EnableStatUpdates(KelvarisSDK_Handle* sdk, bool enable,
                                                     unsigned char periodCount, unsigned int* periods) {
    return call<&KelvarisSDK::enableStatUpdates>(sdk, enable, periodCount, periods);
}

KelvarisSDK_ConnectionStatsResult KelvarisSDK_GetConnectionStats(KelvarisSDK_Handle* sdk,
                                                                 KelvarisSDK_ConnectionStatsCallback callback,
                                                                 void* userData) {
    return call<&KelvarisSDK::getConnectionStats>(sdk, callback, userData);
}

KelvarisSDK_SessionStatsResult KelvarisSDK_GetSessionStats(KelvarisSDK_Handle* sdk,
                                                           KelvarisSDK_SessionStatsCallback callback,
                                                           void* userData) {
    return call<&KelvarisSDK::getSessionStats>(sdk, callback, userData);
}

KelvarisSDK_StreamingStatsResult KelvarisSDK_GetStreamingStats(KelvarisSDK_Handle* sdk,
                                                               KelvarisSDK_StreamingStatsCallback callback,
                                                               void* userData) {
    return call<&KelvarisSDK::getStreamingStats>(sdk, callback, userData);
}

KelvarisSDK_DisconnectEventResult
KelvarisSDK_GetLastDisconnectEvent(KelvarisSDK_Handle* sdk, KelvarisSDK_DisconnectEventCallback callback,
                                   void* userData) {
    return call<&KelvarisSDK::getLastDisconnectEvent>(sdk, callback, userData);
}

KelvarisSDK_SpeedTestResult KelvarisSDK_GetSpeedTestResults(KelvarisSDK_Handle* sdk,
                                                            KelvarisSDK_SpeedTestCallback callback,
                                                            void* userData) {
    return call<&KelvarisSDK::getSpeedTestResults>(sdk, callback, userData);
}

KelvarisSDK_SpeedTestResult
KelvarisSDK_StartSpeedTest(KelvarisSDK_Handle* sdk, KelvarisSDK_SpeedTestCallback callback, void* userData) {
    return call<&KelvarisSDK::startSpeedTest>(sdk, callback, userData);
}

KelvarisSDK_SpeedTestResult
KelvarisSDK_StartStreamTest(KelvarisSDK_Handle* sdk, KelvarisSDK_SpeedTestCallback callback, void* userData) {
    return call<&KelvarisSDK::startStreamTest>(sdk, callback, userData);
}

// safebrowsing

KelvarisSDK_SafeBrowsingResult KelvarisSDK_StartSafeBrowsing(KelvarisSDK_Handle* sdk, char const* config,
                                                             KelvarisSDK_SafeBrowsingCallback callback,
                                                             void* userData) {
    return call<switchSafeBrowsing>(sdk, true, config, callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_StopSafeBrowsing(KelvarisSDK_Handle* sdk,
                                                            KelvarisSDK_SafeBrowsingCallback callback,
                                                            void* userData) {
    return call<switchSafeBrowsing>(sdk, false, "", callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_InitSafeBrowsing(KelvarisSDK_Handle* sdk, char const* config,
                                                            KelvarisSDK_SafeBrowsingCallback callback,
                                                            void* userData) {
    return call<&KelvarisSDK::initSafeBrowsing>(sdk, config, callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_SetSafeBrowsingConfig(KelvarisSDK_Handle* sdk, char const* config,
                                                                 KelvarisSDK_SafeBrowsingCallback callback,
                                                                 void* userData) {
    return call<&KelvarisSDK::setSafeBrowsingConfig>(sdk, config, callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_SetSafeBrowsingEnabled(KelvarisSDK_Handle* sdk, bool enable,
                                                                  KelvarisSDK_SafeBrowsingCallback callback,
                                                                  void* userData) {
    return call<&KelvarisSDK::setSafeBrowsingEnabled>(sdk, enable, callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_SetSafeBrowsingLogLevel(KelvarisSDK_Handle* sdk,
                                                                   KelvarisSDK_SafeBrowsingLogLevel level,
                                                                   KelvarisSDK_SafeBrowsingCallback callback,
                                                                   void* userData) {
    return call<&KelvarisSDK::setSafeBrowsingLogLevel>(sdk, level, callback, userData);
}

KelvarisSDK_SafeBrowsingResult
KelvarisSDK_SetSafeBrowsingSafeNetworkOverride(KelvarisSDK_Handle* sdk,
                                               KelvarisSDK_SafeBrowsingSafeNetworkOverride value,
                                               KelvarisSDK_SafeBrowsingCallback callback, void* userData) {
    return call<&KelvarisSDK::setSafeBrowsingSafeNetworkOverride>(sdk, value, callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_RefreshSafeBrowsingToken(KelvarisSDK_Handle* sdk,
                                                                    char const* token,
                                                                    KelvarisSDK_SafeBrowsingCallback callback,
                                                                    void* userData) {
    return call<&KelvarisSDK::refreshSafeBrowsingToken>(sdk, token, callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_ReportSafeBrowsingHomeNetworkWithParameters(
    KelvarisSDK_Handle* sdk, unsigned int retries, unsigned long long delay, unsigned long long timeout,
    KelvarisSDK_SafeBrowsingCallback callback, void* userData) {
    return call<&KelvarisSDK::reportSafeBrowsingHomeNetwork>(sdk, callback, userData, retries, delay,
                                                             timeout);
}

KelvarisSDK_SafeBrowsingResult
KelvarisSDK_UpdateSafeBrowsingExtraInfo(KelvarisSDK_Handle* sdk, char const* info,
                                        KelvarisSDK_SafeBrowsingCallback callback, void* userData) {
    return call<&KelvarisSDK::updateSafeBrowsingExtraInfo>(sdk, info, callback, userData);
}

KelvarisSDK_SafeBrowsingResult KelvarisSDK_GetSafeBrowsing(KelvarisSDK_Handle* sdk,
                                                           KelvarisSDK_SafeBrowsingCallback callback,
                                                           void* userData) {
    return call<&KelvarisSDK::getSafeBrowsing>(sdk, callback, userData);
}

KelvarisSDK_SafeBrowsingErrorResult
KelvarisSDK_ListenForSafeBrowsingError(KelvarisSDK_Handle* sdk,
                                       KelvarisSDK_SafeBrowsingErrorCallback callback, void* userData) {
    return call<&KelvarisSDK::listenForSafeBrowsingError>(sdk, callback, userData);
}

KelvarisSDK_SafeBrowsingBlockResult
KelvarisSDK_ListenForSafeBrowsingBlock(KelvarisSDK_Handle* sdk,
                                       KelvarisSDK_SafeBrowsingBlockCallback callback, void* userData) {
    return call<&KelvarisSDK::listenForSafeBrowsingBlock>(sdk, callback, userData);
}

KelvarisSDK_SafeBrowsingStatsResult
KelvarisSDK_GetSafeBrowsingStats(KelvarisSDK_Handle* sdk, KelvarisSDK_SafeBrowsingStatsCallback callback,
                                 void* userData) {
    return call<&KelvarisSDK::getSafeBrowsingStats>(sdk, callback, userData);
}
