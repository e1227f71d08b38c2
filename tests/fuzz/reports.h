#pragma once

// The reports that finish calls, or subscriptions' callbacks, without "report_".
// As the corpus numbers them.
// clang-format off
inline constexpr char const* reports[] = {
    "current_state", "version_data", "accounting_data", "login_error", "directory", "connected_server", "connect_error",
    "server_settings", "directory_settings", "networks", "connection_settings", "privacy_settings", "captive_networks",
    "cplogin_network", "firewall_settings", "localproxy_settings", "streaming_settings", "connection_stats",
    "session_stats", "streaming_stats", "disconnect_reason", "speedtest_results", "safe_browsing_settings",
    "safe_browsing_connect_error", "safe_browsing_stats", "safe_browsing_lookup_error", "safe_browsing_block",
    "setting_locked"};
// clang-format on
