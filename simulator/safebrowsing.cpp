#include "families.h"
#include "registry.h"

#include <algorithm>
#include <array>
#include <limits>
#include <memory>
#include <optional>
#include <string>

namespace kelvarissim {

namespace {

constexpr char const* settingsReport = "report_safe_browsing_settings";

struct SafeBrowsing {
    bool isInitialized = false;
    bool isConfigSet = false;
    bool isEnabled = false;
    std::string logLevel = "info";
    std::string networkOverride = "none";

    std::optional<int> connectError; // the service's error code, from --safebrowsing-error
    TimerId traffic = 0;             // the timer that runs while the service is enabled

    // These count from the daemon's start.
    unsigned rounds = 0;
    unsigned lookups = 0;
    unsigned minMs = 0;
    unsigned maxMs = 0;
    unsigned totalMs = 0;
    unsigned errors = 0;
    unsigned blocks = 0;
    unsigned redirects = 0;
    unsigned packets = 0;
};

Json::Value settings(SafeBrowsing const& filter) {
    Json::Value report;
    report["initialized"] = filter.isInitialized;
    report["config_set"] = filter.isConfigSet;
    report["enabled"] = filter.isEnabled;
    report["log_level"] = filter.logLevel;
    report["network_override"] = filter.networkOverride;
    return report;
}

Json::Value stats(SafeBrowsing const& filter) {
    unsigned const lookups = std::max(filter.lookups, 1U);
    Json::Value report;
    report["min"] = filter.minMs;
    report["max"] = filter.maxMs;
    report["average"] = filter.totalMs / lookups;
    report["num_errors"] = filter.errors;
    report["num_blocks"] = filter.blocks;
    report["failure_rate"] = static_cast<double>(filter.errors) / lookups;
    report["num_block_responses"] = filter.redirects;
    report["num_safe_browsing_lookups"] = filter.lookups;
    report["num_safe_browsing_packets_filtered"] = filter.packets;
    return report;
}

void countLookup(SafeBrowsing& filter, unsigned ms) {
    filter.minMs = filter.lookups == 0 ? ms : std::min(filter.minMs, ms);
    filter.maxMs = std::max(filter.maxMs, ms);
    filter.totalMs += ms;
    ++filter.lookups;
}

// Simulates the traffic of one interval: some allowed pages, one that is blocked, and one whose look-up
// fails.
void browse(SafeBrowsing& filter, Daemon& daemon) {
    constexpr std::array blocked{"malware.example", "phishing.example", "tracker.example"};
    constexpr std::array unknown{"slow.example", "nowhere.example"};
    constexpr unsigned pages = 5;
    constexpr unsigned timeoutMs = 400;
    unsigned const round = filter.rounds++;

    for (unsigned page = 0; page < pages; ++page) {
        countLookup(filter, 12 + (round * pages + page) * 7 % 50);
    }
    filter.packets += 40 * pages;

    Json::Value block;
    block["host"] = blocked[round % blocked.size()];
    block["redirected"] = round % 2 == 0;
    countLookup(filter, 20);
    ++filter.blocks;
    filter.redirects += block["redirected"].asBool() ? 1 : 0;
    daemon.broadcast("report_safe_browsing_block", block);

    Json::Value error;
    error["host"] = unknown[round % unknown.size()];
    error["error"] = 28;
    error["safebro_msg"] = "The look-up timed out";
    countLookup(filter, timeoutMs);
    ++filter.errors;
    daemon.broadcast("report_safe_browsing_lookup_error", error);
}

void reportSettings(SafeBrowsing const& filter, Request const& request) {
    request.daemon.broadcast(settingsReport, settings(filter));
}

// Returns whether the service can be reached, and reports the error to the client when it can't.
bool connectService(SafeBrowsing const& filter, Request const& request) {
    if (filter.connectError) {
        Json::Value report;
        report["error"] = *filter.connectError;
        report["safebro_msg"] = "The service refused the token";
        request.answer("report_safe_browsing_connect_error", report);
    }
    return !filter.connectError;
}

// An empty configuration stops the service. Stopping needs no connection, so it succeeds even with
// --safebrowsing-error.
void initialize(SafeBrowsing& filter, Request const& request) {
    bool const starts = !request.payload["config"].asString().empty();
    if (starts && !connectService(filter, request)) {
        return;
    }
    filter.isInitialized = starts;
    filter.isConfigSet = starts;
    reportSettings(filter, request);
}

void setConfig(SafeBrowsing& filter, Request const& request) {
    filter.isConfigSet = !request.payload["config"].asString().empty();
    reportSettings(filter, request);
}

// A token, a home network or extra information initializes the service, because the client's calls wait for
// settings that are initialized.
void contactService(SafeBrowsing& filter, Request const& request) {
    if (connectService(filter, request)) {
        filter.isInitialized = true;
        reportSettings(filter, request);
    }
}

void enable(std::shared_ptr<SafeBrowsing> const& filter, Request const& request) {
    Daemon& daemon = request.daemon;
    bool const enabled = request.payload["enable"].asBool();
    if (enabled && !filter->isEnabled) {
        filter->traffic = daemon.every(daemon.interval(), [filter, &daemon] {
            browse(*filter, daemon);
            return true;
        });
    } else if (!enabled) {
        daemon.cancel(filter->traffic);
    }
    filter->isEnabled = enabled;
    reportSettings(*filter, request);
}

void setText(std::string SafeBrowsing::*setting, char const* key, SafeBrowsing& filter,
             Request const& request) {
    filter.*setting = request.payload[key].asString();
    reportSettings(filter, request);
}

} // namespace

void registerSafeBrowsing(Registry& registry) {
    auto filter = std::make_shared<SafeBrowsing>();
    registry.options.number(
        "--safebrowsing-error", "CODE", "the safe browsing service refuses with this code",
        std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), filter->connectError);

    registry.on("initialize_safe_browsing",
                [filter](Request const& request) { initialize(*filter, request); });
    registry.on("set_safe_browsing_config",
                [filter](Request const& request) { setConfig(*filter, request); });
    registry.on("enable_safe_browsing", [filter](Request const& request) { enable(filter, request); });
    registry.on("set_safe_browsing_log_level", [filter](Request const& request) {
        setText(&SafeBrowsing::logLevel, "log_level", *filter, request);
    });
    registry.on("set_safe_browsing_safe_network_override", [filter](Request const& request) {
        setText(&SafeBrowsing::networkOverride, "network_override", *filter, request);
    });
    for (char const* request : {"safe_browsing_token_refresh", "safe_browsing_report_home_network",
                                "set_safe_browsing_extra_info"}) {
        registry.on(request, [filter](Request const& each) { contactService(*filter, each); });
    }
    registry.alsoLockedBy("set_safe_browsing_config", "initialize_safe_browsing");
    registry.alsoLockedBy("safe_browsing_report_home_network", "safe_browsing_token_refresh");
    registry.on("request_safe_browsing_settings",
                [filter](Request const& request) { request.answer(settingsReport, settings(*filter)); });
    registry.on("request_safe_browsing_stats", [filter](Request const& request) {
        request.answer("report_safe_browsing_stats", stats(*filter));
    });
}

} // namespace kelvarissim
