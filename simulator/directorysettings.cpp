#include "families.h"
#include "registry.h"

#include <memory>

namespace kelvarissim {

namespace {

struct DirectorySettings {
    std::string domain;
    std::string gatewayUri;
    bool enableEsni = false;
};

DirectorySettings const defaults{"directory.example.com", "", false};

Json::Value settingsReport(DirectorySettings const& settings) {
    Json::Value report;
    report["domain"] = settings.domain;
    report["enableEsni"] = settings.enableEsni;
    report["gatewayUri"] = settings.gatewayUri;
    return report;
}

// A request without the value resets the setting to its default.
void setText(std::string& target, Json::Value const& value, std::string const& defaultText) {
    target = value.isNull() ? defaultText : value.asString();
}

} // namespace

void registerDirectorySettings(Registry& registry) {
    auto settings = std::make_shared<DirectorySettings>(defaults);
    auto const onChange = [&registry, settings](std::string const& name, auto apply) {
        registry.on(name, [settings, apply](Request const& request) {
            apply(*settings, request.payload);
            request.daemon.broadcast("report_directory_settings", settingsReport(*settings));
        });
    };
    onChange("set_directory_domain", [](DirectorySettings& target, Json::Value const& payload) {
        setText(target.domain, payload["domain"], defaults.domain);
    });
    onChange("set_directory_gateway_uri", [](DirectorySettings& target, Json::Value const& payload) {
        setText(target.gatewayUri, payload["url"], defaults.gatewayUri);
    });
    onChange("set_esni_enabled", [](DirectorySettings& target, Json::Value const& payload) {
        target.enableEsni = payload["enableEsni"].asBool();
    });
    registry.on("request_directory_url", [settings](Request const& request) {
        request.answer("report_directory_settings", settingsReport(*settings));
    });
}

} // namespace kelvarissim
