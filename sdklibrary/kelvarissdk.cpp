#include "kelvarissdk.h"

#include <algorithm>
#include <cstring>
#include <string>

#include "locationnames.h"
#include "websockets.h"

namespace kelvarissdk {

namespace {

// The address as C callers see it: a full field runs on to the record's end.
std::string addressOf(KelvarisSDK_CreateSettings const& settings) {
    char const* const begin = settings.address;
    char const* const end = reinterpret_cast<char const*>(&settings + 1);
    return std::string(begin, std::find(begin, end, '\0'));
}

} // namespace

KelvarisSDK::KelvarisSDK(KelvarisSDK_CreateSettings const& settings) {
    kelvaris::localization::load_sdklibraryTranslationTable();
    std::memcpy(appName, settings.appName, sizeof(appName));
    websocket = std::make_unique<WebsocketImpl>(addressOf(settings).c_str(), settings.port);
    std::string const name(appName, strnlen(appName, sizeof(appName)));
    if (!name.empty()) {
        setAppName(name.c_str());
    }
}

KelvarisSDK::~KelvarisSDK() = default;

} // namespace kelvarissdk
