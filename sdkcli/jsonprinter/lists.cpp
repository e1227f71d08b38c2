#include "jsonprinter.h"

#include <arpa/inet.h>

#include "recordtext.h"

namespace {

template <class Record>
Json::Value domainsDocument(Record const& record, decltype(KelvarisSDK_ListBlock::domains) const& domains,
                            unsigned count) {
    Json::Value document(Json::arrayValue);
    for (unsigned i = 0; i < count; ++i) {
        document.append(recordText(record, domains[i]));
    }
    return document;
}

template <int family, class Address> Json::Value addressesDocument(Address const* addresses, unsigned count) {
    Json::Value document(Json::arrayValue);
    for (unsigned i = 0; i < count; ++i) {
        char text[INET6_ADDRSTRLEN];
        document.append(inet_ntop(family, &addresses[i], text, sizeof(text)));
    }
    return document;
}

// Adds the keys of the four lists to a document that may have others.
template <class Record> void addLists(Json::Value& document, Record const& record) {
    KelvarisSDK_ListBlock const& lists = record.lists;
    document["domains"] = domainsDocument(record, lists.domains, lists.domainCount);
    document["ipv4"] = addressesDocument<AF_INET>(lists.ipv4, lists.ipv4Count);
    document["ipv6"] = addressesDocument<AF_INET6>(lists.ipv6, lists.ipv6Count);
    document["ports"] = portsDocument(lists.ports, lists.portCount);
}

} // namespace

void printFirewallResult(KelvarisSDK_FirewallSettingsResult const& result) {
    Json::Value document;
    document["mode"] = KelvarisSDK_FirewallMode_toString(result.mode);
    addLists(document, result);
    writeDocument(document);
}

void printLocalProxyResult(KelvarisSDK_LocalProxySettingsResult const& result) {
    Json::Value document;
    document["enabled"] = result.enabled;
    writeDocument(document);
}

void printStreamingBypass(KelvarisSDK_LocalProxySettingsResult const& result) {
    Json::Value document;
    Json::Value& services = document["services"] = Json::Value(Json::arrayValue);
    for (unsigned i = 0; i < result.watchlistCount; ++i) {
        Json::Value& service = services.append(Json::Value());
        service["title"] = recordText(result, result.watchlist[i].title);
        service["enabled"] = result.watchlist[i].enabled;
    }
    addLists(document, result);
    writeDocument(document);
}

void printStreamingResult(KelvarisSDK_StreamingSettingsResult const& result) {
    Json::Value document;
    addLists(document, result);
    writeDocument(document);
}
