#pragma once

#include <microhttpd.h>

namespace monitor {

// The functions of libmicrohttpd, which is loaded when they are first asked for: it brings a library for TLS along, with
// which all other commands would need 3 MiB more and start 5 ms later.
class Microhttpd {
public:
    // Throws when the library isn't there.
    static Microhttpd const& get();

    decltype(&MHD_start_daemon) startDaemon;
    decltype(&MHD_stop_daemon) stopDaemon;
    decltype(&MHD_get_daemon_info) daemonInfo;
    decltype(&MHD_run) run;
    decltype(&MHD_get_timeout) timeout;
    decltype(&MHD_get_connection_info) connectionInfo;
    decltype(&MHD_lookup_connection_value) lookup;
    decltype(&MHD_create_response_from_buffer) createResponse;
    decltype(&MHD_add_response_header) addHeader;
    decltype(&MHD_queue_response) queueResponse;
    decltype(&MHD_destroy_response) destroyResponse;

private:
    Microhttpd();
};

} // namespace monitor
