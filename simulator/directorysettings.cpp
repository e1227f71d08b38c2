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

const DirectorySettings defaults{"directory.example.com", "", false};

Json::Value settingsReport(const DirectorySettings& settings) {
    Json::Value report;
    report["domain"] = settings.domain;
    report["enableEsni"] = settings.enableEsni;
    report["gatewayUri"] = settings.gatewayUri;
    return report;
}

// A request without a payload asks for the default.
void setText(std::string& target, const Json::Value& value, const std::string& byDefault) {
    target = value.isNull() ? byDefault : value.asString();
}

} // namespace

void registerDirectorySettings(Registry& registry) {
    auto settings = std::make_shared<DirectorySettings>(defaults);
    const auto onChange = [&registry, settings](const std::string& name, auto apply) {
        registry.on(name, [settings, apply](const Request& request) {
            apply(*settings, request.payload);
            request.daemon.broadcast("report_directory_settings", settingsReport(*settings));
        });
    };
    onChange("set_directory_domain", [](DirectorySettings& target, const Json::Value& payload) {
        setText(target.domain, payload["domain"], defaults.domain);
    });
    onChange("set_directory_gateway_uri", [](DirectorySettings& target, const Json::Value& payload) {
        setText(target.gatewayUri, payload["url"], defaults.gatewayUri);
    });
    onChange("set_esni_enabled", [](DirectorySettings& target, const Json::Value& payload) {
        target.enableEsni = payload["enableEsni"].asBool();
    });
    registry.on("request_directory_url", [settings](const Request& request) {
        request.answer("report_directory_settings", settingsReport(*settings));
    });
}

} // namespace kelvarissim
